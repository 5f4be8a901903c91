// COMMANDS: lists the registered commands by group, oldest group first: the
// global name (with the "_" that forces it) and the local name.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/rx/Runtime.h"
#include "kxed.h"

namespace kaldo {

void commandsCommand()
{
    Session* session = Session::current();
    if (!session)
        return;
    std::wstring listing;
    for (const KxEdCommandGroup& group : session->runtime().commands().groups()) {
        listing += L"\nGroup " + group.name + L":\n";
        for (const KxEdCommand& command : group.commands) {
            std::wstring global = L"  _" + command.globalName;
            global.resize(std::max<std::size_t>(global.size() + 1, 24), L' ');
            listing += global + command.localName + L"\n";
        }
    }
    kxedPrompt(listing.c_str());
}

}  // namespace kaldo
