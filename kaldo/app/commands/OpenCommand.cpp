// OPEN: reads a drawing file and makes it the working drawing. A working
// drawing with unsaved changes is not dropped unasked: once the file is
// chosen, OPEN asks whether to save the changes first, as the window does
// (Yes saves as SAVE does, No drops them, Cancel keeps everything). A file
// that cannot be read, or an opening cancelled, leaves the working drawing
// as it was and says why; what the reader repaired is listed after the
// opening.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/ed/Editor.h"
#include "kxed.h"
#include "kxstring.h"
#include "kxuimsgbox.h"
#include "kxuiwnd.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kaldo {

namespace {

enum class SaveFirst { Yes, No, Cancel };

// On the command line where file names are typed there (scripts, FILEDIA
// 0): Enter answers Yes; cancel and the end of input answer Cancel.
// Elsewhere in a message box.
SaveFirst askSaveChanges(Session& session)
{
    const std::wstring question = saveChangesQuestion(session.drawingPath());
    if (session.editor().asksOnCommandLine()) {
        wchar_t answer[KXED_TEXT_SIZE] = {};
        kxedInitGet(0, L"Yes No Cancel _Yes No Cancel");
        switch (kxedGetKword((L"\n" + question + L" [Yes/No/Cancel] <Yes>: ").c_str(), answer)) {
        case RTNONE:
            return SaveFirst::Yes;
        case RTNORM:
            return std::wstring_view(answer) == L"Yes"  ? SaveFirst::Yes
                   : std::wstring_view(answer) == L"No" ? SaveFirst::No
                                                        : SaveFirst::Cancel;
        default:
            return SaveFirst::Cancel;
        }
    }
    switch (AfxMessageBox(question.c_str(), MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES:
        return SaveFirst::Yes;
    case IDNO:
        return SaveFirst::No;
    default:
        return SaveFirst::Cancel;
    }
}

// Whether the working drawing may be replaced: it holds no unsaved changes,
// or they are to be dropped, or they were saved.
bool mayReplaceDrawing(Session& session)
{
    if (!session.modified())
        return true;
    switch (askSaveChanges(session)) {
    case SaveFirst::No:
        return true;
    case SaveFirst::Yes:
        saveWorkingDrawing(session);
        return !session.modified();
    case SaveFirst::Cancel:
        return false;
    }
    return false;
}

}  // namespace

void openDrawingReporting(Session& session, const std::filesystem::path& path, const dxf::ProgressReport& report)
{
    try {
        const std::vector<std::string> repairs = session.openDrawing(path, report);
        kxutPrintf(L"\nOpened \"%ls\".\n", path.wstring().c_str());
        for (const std::string& repair : repairs)
            kxutPrintf(L"Repaired: %ls\n", kxutFromMultiByte(repair).c_str());
    } catch (const dxf::DxfError& e) {
        kxutPrintf(L"\nCannot open the drawing: %ls\n", kxutFromMultiByte(e.what()).c_str());
    } catch (const dxf::Cancelled&) {
        kxutPrintf(L"\nOpen cancelled.\n");
    }
}

void openCommand()
{
    Session* session = Session::current();
    if (!session)
        return;
    wchar_t* name = nullptr;
    const std::wstring current = session->drawingPath().wstring();
    if (getFileNameByFileDialog(L"Select File", current.c_str(), L"dxf", 0, name) != 0 || !name)
        return;
    const std::unique_ptr<wchar_t, decltype(&kald_free)> owned(name, kald_free);
    if (!mayReplaceDrawing(*session)) {
        kxutPrintf(L"\nOpen cancelled.\n");
        return;
    }
    openDrawingReporting(*session, name);
}

}  // namespace kaldo
