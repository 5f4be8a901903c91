// OPEN: reads a drawing file and makes it the working drawing. A file that
// cannot be read, or an opening cancelled, leaves the working drawing as it
// was and says why; what the reader repaired is listed after the opening.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/dxf/DxfError.h"
#include "kxed.h"
#include "kxstring.h"

#include <memory>
#include <string>
#include <vector>

namespace kaldo {

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
    openDrawingReporting(*session, name);
}

}  // namespace kaldo
