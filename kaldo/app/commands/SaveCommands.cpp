// SAVE and SAVEAS: write the working drawing as a DXF file. SAVE writes to
// the drawing's own file and asks for a name only for a new drawing; SAVEAS
// always asks. A failed save leaves the old file whole and says why; a
// read-only file is replaced only when the user answers Yes. A save
// cancelled before the file is replaced leaves it as it was too. The keyword
// Exploded at SAVEAS's file prompt asks for the file version (2000, or R12
// for the oldest readers) and the file of a copy with every multiline
// exploded; in the file dialog the copy is a file type. The working drawing
// keeps its multilines and its own file.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/util/FileWriting.h"
#include "kxed.h"
#include "kxstring.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kaldo {

namespace {

// Asks whether the read-only file at path may be replaced.
bool userAllowsReplacing(const std::filesystem::path& path)
{
    const std::wstring prompt = L"\nThe file \"" + path.wstring() + L"\" is read-only. Replace it? [Yes/No] <No>: ";
    wchar_t answer[KXED_TEXT_SIZE] = {};
    kxedInitGet(0, L"Yes No _Yes No");
    return kxedGetKword(prompt.c_str(), answer) == RTNORM && std::wstring_view(answer) == L"Yes";
}

}  // namespace

void saveDrawingReporting(Session& session, const std::filesystem::path& path, const dxf::ProgressReport& report)
{
    const bool readOnly = isReadOnlyFile(path);
    if (readOnly && !userAllowsReplacing(path)) {
        kxutPrintf(L"\nThe drawing was not saved: \"%ls\" stays as it was.\n", path.wstring().c_str());
        return;
    }
    try {
        session.saveDrawing(path, readOnly, report);
        kxutPrintf(L"\nSaved \"%ls\".\n", path.wstring().c_str());
    } catch (const dxf::DxfError& e) {
        kxutPrintf(L"\nThe drawing was not saved: %ls\n", kxutFromMultiByte(e.what()).c_str());
    } catch (const dxf::Cancelled&) {
        kxutPrintf(L"\nSave cancelled.\n");
    }
}

namespace {

// The file name chosen in a file dialog or on the command line; empty when
// none was. Keywords set before come back as RTKWORD in result.
std::filesystem::path chooseFile(const wchar_t* title, const std::wstring& current, int& result,
                                 int* fileType = nullptr, const wchar_t* fileTypes = nullptr)
{
    wchar_t* name = nullptr;
    result = getFileNameByFileDialog(title, current.c_str(), L"dxf", 1, name, nullptr, fileType, fileTypes);
    if (result != 0 || !name)
        return {};
    const std::unique_ptr<wchar_t, decltype(&kald_free)> owned(name, kald_free);
    return name;
}

// Asks for the file version of an exploded copy; Enter keeps the usual one.
std::optional<CopyVersion> askCopyVersion()
{
    wchar_t answer[KXED_TEXT_SIZE] = {};
    kxedInitGet(0, L"2000 R12 _2000 R12");
    switch (kxedGetKword(L"\nDXF version of the copy [2000/R12] <2000>: ", answer)) {
    case RTNONE:
        return CopyVersion::Current;
    case RTNORM:
        return std::wstring_view(answer) == L"R12" ? CopyVersion::R12 : CopyVersion::Current;
    default:
        return std::nullopt;
    }
}

void saveExplodedReporting(Session& session, const std::filesystem::path& path, CopyVersion version)
{
    std::error_code ec;
    if (!session.drawingPath().empty() && std::filesystem::equivalent(path, session.drawingPath(), ec)) {
        kxutPrintf(L"\nThe copy was not saved: \"%ls\" is the drawing's own file.\n", path.wstring().c_str());
        return;
    }
    const bool readOnly = isReadOnlyFile(path);
    if (readOnly && !userAllowsReplacing(path)) {
        kxutPrintf(L"\nThe copy was not saved: \"%ls\" stays as it was.\n", path.wstring().c_str());
        return;
    }
    try {
        const int exploded = session.saveExplodedCopy(path, readOnly, version);
        kxutPrintf(L"\nSaved \"%ls\" with %d multilines exploded.\n", path.wstring().c_str(), exploded);
    } catch (const dxf::DxfError& e) {
        kxutPrintf(L"\nThe copy was not saved: %ls\n", kxutFromMultiByte(e.what()).c_str());
    }
}

// SAVEAS's keyword: the version of the copy, then its file.
void askAndSaveExploded(Session& session)
{
    const std::optional<CopyVersion> version = askCopyVersion();
    if (!version)
        return;
    std::filesystem::path copy = session.drawingPath().empty() ? L"Drawing1.dxf" : session.drawingPath();
    const wchar_t* suffix = *version == CopyVersion::R12 ? L"-exploded-r12.dxf" : L"-exploded.dxf";
    copy.replace_filename(copy.stem().wstring() + suffix);
    int result = 0;
    const std::filesystem::path target = chooseFile(L"Save Exploded Copy As", copy.wstring(), result);
    if (!target.empty())
        saveExplodedReporting(session, target, *version);
}

void askAndSave(Session& session, bool saveAs)
{
    const std::wstring current = session.drawingPath().empty() ? L"Drawing1.dxf" : session.drawingPath().wstring();
    if (saveAs)
        kxedInitGet(0, L"Exploded _Exploded");
    int result = 0;
    int fileType = 0;
    const std::filesystem::path chosen =
        chooseFile(L"Save Drawing As", current, result, &fileType, saveAs ? kSaveAsFileTypes : nullptr);
    if (result == RTKWORD)
        askAndSaveExploded(session);
    else if (!chosen.empty())
        saveAsReporting(session, chosen, SaveAsType(fileType));
}

}  // namespace

void saveWorkingDrawing(Session& session)
{
    if (session.drawingPath().empty())
        askAndSave(session, false);
    else
        saveDrawingReporting(session, session.drawingPath());
}

std::wstring saveChangesQuestion(const std::filesystem::path& drawingPath)
{
    const std::wstring name = drawingPath.empty() ? L"Drawing1.dxf" : drawingPath.filename().wstring();
    return L"Save changes to " + name + L"?";
}

void saveAsReporting(Session& session, const std::filesystem::path& path, SaveAsType type,
                     const dxf::ProgressReport& report)
{
    if (type == SaveAsType::Drawing)
        saveDrawingReporting(session, path, report);
    else
        saveExplodedReporting(session, path, type == SaveAsType::ExplodedR12 ? CopyVersion::R12 : CopyVersion::Current);
}

void saveCommand()
{
    if (Session* session = Session::current())
        saveWorkingDrawing(*session);
}

void saveasCommand()
{
    if (Session* session = Session::current())
        askAndSave(*session, true);
}

}  // namespace kaldo
