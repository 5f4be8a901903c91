// APPUNLOAD: unloads a module by name or path.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kxed.h"

namespace kaldo {

void appunloadCommand()
{
    Session* session = Session::current();
    wchar_t name[KXED_TEXT_SIZE] = {};
    if (!session || kxedGetString(1, L"\nEnter module name: ", name) != RTNORM || !*name)
        return;
    std::wstring message;
    if (session->unloadModule(name, message))
        kxutPrintf(L"\nModule \"%ls\" unloaded.\n", name);
    else
        kxutPrintf(L"\n%ls\n", message.c_str());
}

}  // namespace kaldo
