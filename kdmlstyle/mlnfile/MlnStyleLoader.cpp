#include "mlnfile/MlnStyleLoader.h"

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "kxdb.h"
#include "kxed.h"
#include "kxhost.h"
#include "host/FormattedText.h"
#include "mlnfile/MlnReader.h"
#include "mlnfile/StyleElementSetters.h"

namespace kdml {

namespace {

constexpr unsigned kFileNotFoundText = 6018;
constexpr const wchar_t* kFileNotFoundDefault = L"\nUnable to find file \"%ls\".";

// The style the load dialog makes for a name the drawing lacks.
std::unique_ptr<KxDbMlineStyle> newDefaultStyle(const wchar_t* name, KxDbDatabase* database)
{
    auto style = std::make_unique<KxDbMlineStyle>();
    style->initMlineStyle();
    style->setName(name);
    style->setDescription(L"");
    setStyleElementCount(style.get(), 2);
    const std::array<std::optional<std::wstring>, 2> linetypes = {L"BYLAYER", L"BYLAYER"};
    setStyleElementLinetypes(style.get(), linetypes, database);
    const std::array<double, 2> offsets = {0.5, -0.5};
    setStyleElementOffsets(style.get(), offsets);
    std::array<std::int32_t, 2> indices = {KxCmColor::kIndexByLayer, KxCmColor::kIndexByLayer};
    setStyleElementColorIndices(style.get(), indices);
    return style;
}

}  // namespace

KxDbObjectId loadMlnStyleIntoDictionary(KxDbObjectId dictionaryId, const wchar_t* name, const wchar_t* path)
{
    if (!name)
        return KxDbObjectId::kNull;
    KxDbDatabase* database = dictionaryId.database();
    KxDbObjectId target;
    {
        KxDbObjectPtr<KxDbDictionary> dictionary(dictionaryId, KxDb::kForWrite);
        if (!dictionary)
            return KxDbObjectId::kNull;
        if (dictionary->getAt(name, target) != Kald::eOk) {
            auto style = newDefaultStyle(name, database);
            if (dictionary->setAt(name, style.get(), target) == Kald::eOk)
                style.release()->close();
            else
                target.setNull();
        }
    }
    KxDbMlineStyle* style = nullptr;
    if (kxdbOpenObject(style, target, KxDb::kForWrite) == Kald::eOk)
        readMlnStyle(path, name, style, database, MlnReadMode::lenient);
    return target;
}

bool loadMlnStyleIntoDatabase(KxDbDatabase* database, const wchar_t* name, const wchar_t* fileName)
{
    if (!database || !name || !fileName)
        return false;
    std::array<wchar_t, KXED_TEXT_SIZE> found{};
    if (kxedFindFile(fileName, found.data(), found.size()) != RTNORM) {
        const std::wstring message =
            formattedText(kxmdKxResourceString(kFileNotFoundText, kFileNotFoundDefault), fileName);
        kxedPrompt(message.c_str());
        return false;
    }
    auto style = std::make_unique<KxDbMlineStyle>();
    style->initMlineStyle();
    style->setName(name);
    if (readMlnStyle(found.data(), name, style.get(), database, MlnReadMode::strict) != MlnReadResult::found)
        return false;

    KxDbDictionary* opened = nullptr;
    database->getMLStyleDictionary(opened, KxDb::kForWrite);
    KxDbObjectPtr<KxDbDictionary> dictionary(opened);
    if (!dictionary)
        return false;
    KxDbObjectId id;
    if (dictionary->setAt(name, style.get(), id) != Kald::eOk)
        return false;
    style.release()->close();
    return true;
}

}  // namespace kdml
