// APPLOAD: loads a module by path or by name from the modules folder.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kxed.h"

#include <filesystem>

namespace kaldo {

void apploadCommand()
{
    Session* session = Session::current();
    wchar_t name[KXED_TEXT_SIZE] = {};
    if (!session || kxedGetString(1, L"\nEnter module file name: ", name) != RTNORM || !*name)
        return;
    std::wstring message;
    if (session->loadModule(std::filesystem::path(name), message))
        kxutPrintf(L"\nModule \"%ls\" loaded.\n", name);
    else
        kxutPrintf(L"\n%ls\n", message.c_str());
}

}  // namespace kaldo
