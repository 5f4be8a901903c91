// SAVE and SAVEAS: write the working drawing as a DXF file. SAVE writes to
// the drawing's own file and asks for a name only for a new drawing; SAVEAS
// always asks. A failed save leaves the old file whole and says why; a
// read-only file is replaced only when the user answers Yes.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/dxf/AtomicFile.h"
#include "kaldo/dxf/DxfError.h"
#include "kxed.h"
#include "kxstring.h"

#include <memory>
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

void saveDrawingReporting(Session& session, const std::filesystem::path& path)
{
    const bool readOnly = dxf::isReadOnlyFile(path);
    if (readOnly && !userAllowsReplacing(path)) {
        kxutPrintf(L"\nThe drawing was not saved: \"%ls\" stays as it was.\n", path.wstring().c_str());
        return;
    }
    try {
        session.saveDrawing(path, readOnly);
        kxutPrintf(L"\nSaved \"%ls\".\n", path.wstring().c_str());
    } catch (const dxf::DxfError& e) {
        kxutPrintf(L"\nThe drawing was not saved: %ls\n", kxutFromMultiByte(e.what()).c_str());
    }
}

namespace {

void askAndSave(Session& session)
{
    wchar_t* name = nullptr;
    const std::wstring current = session.drawingPath().empty() ? L"Drawing1.dxf" : session.drawingPath().wstring();
    if (getFileNameByFileDialog(L"Save Drawing As", current.c_str(), L"dxf", 1, name) != 0 || !name)
        return;
    const std::unique_ptr<wchar_t, decltype(&kald_free)> owned(name, kald_free);
    saveDrawingReporting(session, name);
}

}  // namespace

void saveCommand()
{
    Session* session = Session::current();
    if (!session)
        return;
    if (session->drawingPath().empty())
        askAndSave(*session);
    else
        saveDrawingReporting(*session, session->drawingPath());
}

void saveasCommand()
{
    if (Session* session = Session::current())
        askAndSave(*session);
}

}  // namespace kaldo
