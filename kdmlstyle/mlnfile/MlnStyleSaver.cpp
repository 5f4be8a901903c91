#include "mlnfile/MlnStyleSaver.h"

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "kxdb.h"
#include "kxed.h"
#include "kxhost.h"
#include "kxstring.h"
#include "kxuimsgbox.h"
#include "mlnfile/MlnBlockWriter.h"
#include "mlnfile/MlnFileMerge.h"

namespace kdml {

namespace {

constexpr unsigned kSaveDialogTitle = 15;
constexpr const wchar_t* kSaveDialogTitleDefault = L"Save Multiline Style to File";
// Save mode of the host's file dialog.
constexpr int kSaveDialogFlags = 0x8080101;

// The host's Support folder, found through the default style file that the
// host installs there; empty when the host finds none.
std::wstring supportFolder()
{
    std::array<wchar_t, KXED_TEXT_SIZE> found{};
    if (kxedFindFile(L"KALDO.mln", found.data(), found.size()) != RTNORM)
        return {};
    const std::filesystem::path folder = std::filesystem::path(found.data()).parent_path();
    return (folder / "").wstring();
}

// The style's block, or nothing when the style cannot be opened.
std::optional<std::vector<std::wstring>> styleBlock(KxDbObjectId dictionaryId, const wchar_t* styleName)
{
    KxDbObjectId styleId;
    {
        KxDbObjectPtr<KxDbDictionary> dictionary(dictionaryId, KxDb::kForRead);
        if (!dictionary || dictionary->getAt(styleName, styleId) != Kald::eOk)
            return std::nullopt;
    }
    KxDbObjectPtr<KxDbMlineStyle> style(styleId, KxDb::kForRead);
    if (!style)
        return std::nullopt;
    return mlnStyleBlock(*style);
}

}  // namespace

void saveMlnStyle(KxDbObjectId dictionaryId, const wchar_t* styleName)
{
    const std::wstring start = supportFolder();
    wchar_t* chosen = nullptr;
    int preset = 0;
    if (getFileNameByFileDialog(kxmdKxResourceString(kSaveDialogTitle, kSaveDialogTitleDefault), start.c_str(),
                                L"mln", kSaveDialogFlags, chosen, nullptr, &preset, nullptr)
            != 0
        || !chosen)
        return;
    const std::wstring path = chosen;
    kald_free(chosen);
    std::wstring problem;
    if (!saveMlnStyleToFile(dictionaryId, styleName, path.c_str(), problem) && !problem.empty())
        AfxMessageBox(problem.c_str(), MB_OK | MB_ICONEXCLAMATION);
}

bool saveMlnStyleToFile(KxDbObjectId dictionaryId, const wchar_t* styleName, const wchar_t* path,
                        std::wstring& problem)
{
    if (!styleName || !path)
        return false;
    std::optional<std::vector<std::string>> oldLines = readMlnFileLines(path, problem);
    if (!oldLines)
        return false;
    const std::optional<std::vector<std::wstring>> block = styleBlock(dictionaryId, styleName);
    if (!block)
        return false;
    std::vector<std::string> narrowBlock;
    narrowBlock.reserve(block->size());
    for (const std::wstring& line : *block)
        narrowBlock.push_back(kxutToMultiByte(line));
    return writeMlnFileLines(path, mergeMlnStyleBlock(std::move(*oldLines), narrowBlock, styleName), problem);
}

}  // namespace kdml
