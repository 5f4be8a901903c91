#include "mline/MlineCommand.h"

#include "host/FormattedText.h"
#include "mline/MlineJig.h"
#include "mline/MlineTexts.h"
#include "mline/MlnFileName.h"
#include "mline/StyleNameCase.h"
#include "mlnfile/MlnStyleLoader.h"

#include "kxdb.h"
#include "kxed.h"
#include "kxstring.h"

#include <algorithm>
#include <cwctype>
#include <string_view>

namespace kdml {

namespace {

// The input controls of the start-point prompt, passed to the host as they are.
constexpr int kStartPointControls = 0x8000000;
// File-dialog flags and in/out value of the style-file choice, passed as they are.
constexpr int kLoadDialogFlags = 0x1804;
constexpr int kLoadDialogValue = 1;

bool sameWord(std::wstring_view a, std::wstring_view b)
{
    return std::ranges::equal(a, b, [](wchar_t x, wchar_t y) { return std::towupper(x) == std::towupper(y); });
}

}  // namespace

CMLineCommand::CMLineCommand(KxDbDatabase* database) : database_(database) {}

int CMLineCommand::run()
{
    readSettings();
    printSettings();
    const wchar_t* keywords = textOf(mlinetext::kStartKeywords);
    const wchar_t* prompt = textOf(mlinetext::kStartPrompt);
    double start[3] = {0, 0, 0};
    for (;;) {
        kxedInitGet(kStartPointControls, keywords);
        const int result = kxedGetPoint(nullptr, prompt, start);
        if (result == RTNORM)
            break;
        if (result != RTKWORD)
            return result;
        wchar_t keyword[KXED_TEXT_SIZE] = {};
        if (kxedGetInput(keyword) != RTNORM)
            return RTERROR;
        std::optional<int> end;
        if (sameWord(keyword, L"Justification"))
            runJustificationOption();
        else if (sameWord(keyword, L"Scale"))
            end = runScaleOption();
        else if (sameWord(keyword, L"STyle"))
            end = runStyleOption();
        if (end)
            return *end;
        printSettings();
    }
    double world[3] = {};
    kxdbUcs2Wcs(start, world, 0);
    KaldMLineJig jig;
    jig.setUp(database_, {world[0], world[1], world[2]}, justification_, scale_, styleName_);
    jig.run();
    return RTNORM;
}

void CMLineCommand::readSettings()
{
    kxresbuf rb;
    justification_ = kxedGetVar(L"CMLJUST", &rb) == RTNORM ? rb.resval.rint : short(-1);
    scale_ = kxedGetVar(L"CMLSCALE", &rb) == RTNORM ? rb.resval.rreal : 0.0;
    if (kxedGetVar(L"CMLSTYLE", &rb) == RTNORM) {
        styleName_ = rb.resval.rstring ? rb.resval.rstring : L"";
        kxutDelBuffer(rb.resval.rstring);
    }
}

void CMLineCommand::printSettings() const
{
    kxedPrompt(formattedText(textOf(mlinetext::kSettings), justificationName(), scale_, styleName_.c_str()).c_str());
}

const wchar_t* CMLineCommand::justificationName() const
{
    switch (justification_) {
    case 0: return textOf(mlinetext::kTop);
    case 1: return textOf(mlinetext::kZero);
    case 2: return textOf(mlinetext::kBottom);
    default: return L"";
    }
}

int CMLineCommand::setJustification(short code)
{
    if (static_cast<unsigned short>(code) > 2 || code == justification_)
        return RTNORM;
    justification_ = code;
    kxresbuf rb;
    rb.restype = RTSHORT;
    rb.resval.rint = code;
    return kxedSetVar(L"CMLJUST", &rb);
}

int CMLineCommand::setScale(double value)
{
    scale_ = value;
    kxresbuf rb;
    rb.restype = RTREAL;
    rb.resval.rreal = value;
    return kxedSetVar(L"CMLSCALE", &rb);
}

int CMLineCommand::setStyleName(const std::wstring& name)
{
    styleName_ = upperCaseStyleName(name);
    kxresbuf rb;
    rb.restype = RTSTR;
    rb.resval.rstring = kxutNewString(styleName_.c_str());
    const int status = kxedSetVar(L"CMLSTYLE", &rb);
    kxutDelBuffer(rb.resval.rstring);
    return status;
}

void CMLineCommand::runJustificationOption()
{
    const std::wstring prompt = formattedText(textOf(mlinetext::kJustificationPrompt), justificationName());
    kxedInitGet(0, textOf(mlinetext::kJustificationKeywords));
    wchar_t keyword[KXED_TEXT_SIZE] = {};
    if (kxedGetKword(prompt.c_str(), keyword) != RTNORM)
        return;
    short code = justification_;
    if (sameWord(keyword, L"Top"))
        code = 0;
    else if (sameWord(keyword, L"Zero"))
        code = 1;
    else if (sameWord(keyword, L"Bottom"))
        code = 2;
    setJustification(code);
}

std::optional<int> CMLineCommand::runScaleOption()
{
    const std::wstring prompt = formattedText(textOf(mlinetext::kScalePrompt), scale_);
    kxedInitGet(0, nullptr);
    double value = scale_;
    const int result = kxedGetReal(prompt.c_str(), &value);
    if (result == RTERROR)
        return RTERROR;
    setScale(result == RTNORM ? value : scale_);
    return std::nullopt;
}

std::optional<int> CMLineCommand::runStyleOption()
{
    const wchar_t* prompt = textOf(mlinetext::kStylePrompt);
    for (;;) {
        wchar_t text[KXED_TEXT_SIZE] = {};
        const int result = kxedGetString(0, prompt, text);
        if (result == RTCAN || result == RTNONE)
            return std::nullopt;
        if (result != RTNORM)
            return result;
        if (sameWord(text, L"?")) {
            listStyles();
            continue;
        }
        const std::wstring name = lowerCaseStyleName(text);
        if (findStyle(name)) {
            setStyleName(name);
            return std::nullopt;
        }
    }
}

void CMLineCommand::listStyles() const
{
    KxDbDictionary* opened = nullptr;
    if (!database_ || database_->getMLStyleDictionary(opened, KxDb::kForRead) != Kald::eOk)
        return;
    const KxDbObjectPtr<KxDbDictionary> styles(opened);
    kxedTextScr();
    kxedPrompt(textOf(mlinetext::kListingHeader));
    kxedPrompt(textOf(mlinetext::kListingRule));
    for (const auto entries = styles->newIterator(); !entries->done(); entries->next()) {
        KxDbObject* entry = nullptr;
        if (entries->getObject(entry, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbObject> object(entry);
        // The name filling a column of 35 characters, so that every
        // description starts under the second part of the rule.
        if (const KxDbMlineStyle* style = KxDbMlineStyle::cast(object.get()))
            kxutPrintf(L"\n%-35.35ls %ls", style->name(), style->description());
    }
}

bool CMLineCommand::findStyle(const std::wstring& name)
{
    if (!database_)
        return false;
    KxDbDictionary* opened = nullptr;
    if (database_->getMLStyleDictionary(opened, KxDb::kForRead) != Kald::eOk)
        return false;
    KxDbObjectPtr<KxDbDictionary> styles(opened);
    const bool found = styles->has(name.c_str());
    styles.close();
    return found || loadStyle(name);
}

bool CMLineCommand::loadStyle(const std::wstring& name)
{
    const std::wstring path = askMlnPath();
    if (path.empty())
        return false;
    if (loadMlnStyleIntoDatabase(database_, name.c_str(), path.c_str()))
        return true;
    kxedPrompt(formattedText(textOf(mlinetext::kStyleMissing), name.c_str()).c_str());
    return false;
}

std::wstring CMLineCommand::askMlnPath() const
{
    kxresbuf hasMore;
    if (kxedGetVar(L"LISPCOMMANDHASMORE", &hasMore) != RTNORM)
        return {};
    if (hasMore.resval.rint != 0) {
        wchar_t text[KXED_TEXT_SIZE] = {};
        const int result = kxedGetString(0, textOf(mlinetext::kFilePrompt), text);
        if (result == RTCAN || result == RTERROR)
            return {};
        return typedMlnFileName(text);
    }
    wchar_t* chosen = nullptr;
    int value = kLoadDialogValue;
    const int result = getFileNameByFileDialog(textOf(mlinetext::kLoadDialogTitle), nullptr, L"mln", kLoadDialogFlags,
                                               chosen, nullptr, &value, nullptr);
    if (result != 0 || !chosen)
        return {};
    std::wstring path = barsToBlanks(chosen);
    kald_free(chosen);
    return path;
}

}  // namespace kdml
