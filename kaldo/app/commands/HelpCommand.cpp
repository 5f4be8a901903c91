// HELP: at the command prompt, asks for a command and says what it does
// (its description, from the command table, and its aliases); Enter lists
// every command with its description. Typed as 'HELP at a prompt of a
// running command, it describes that command and the prompt stands again.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kaldo/rx/Runtime.h"
#include "kxed.h"

#include <algorithm>

namespace kaldo {

namespace {

std::wstring describe(const Session& session, const KxEdCommand& command)
{
    std::wstring text = command.localName + L": "
        + (command.description.empty() ? std::wstring(L"(no description)") : command.description);
    const std::vector<std::wstring> aliases = session.aliases().aliasesOf(command.globalName);
    if (!aliases.empty()) {
        text += L"\n  Aliases:";
        for (const std::wstring& alias : aliases)
            text += L" " + alias;
    }
    if (!equalsNoCase(command.localName, command.globalName))
        text += L"\n  Global name: _" + command.globalName;
    return text;
}

std::wstring listing(Session& session)
{
    std::wstring text = L"\nCommands (HELP and a name says more):\n";
    for (const KxEdCommandGroup& group : session.runtime().commands().groups()) {
        for (const KxEdCommand& command : group.commands) {
            std::wstring name = L"  " + command.localName;
            name.resize(std::max<std::size_t>(name.size() + 1, 14), L' ');
            text += name + command.description + L"\n";
        }
    }
    return text;
}

}  // namespace

void helpCommand()
{
    Session* session = Session::current();
    if (!session)
        return;
    const std::wstring running = session->editor().runningCommand();
    if (!running.empty() && running != L"HELP") {
        if (const KxEdCommand* command = session->findCommand(L"_" + running))
            kxedPrompt((L"\n" + describe(*session, *command) + L"\n").c_str());
        return;
    }
    wchar_t name[KXED_TEXT_SIZE] = {};
    const int result = kxedGetString(0, L"\nEnter a command name or <list all>: ", name);
    if (result == RTCAN)
        return;
    if (result != RTNORM || !*name) {
        kxedPrompt(listing(*session).c_str());
        return;
    }
    if (const KxEdCommand* command = session->findCommand(name))
        kxedPrompt((L"\n" + describe(*session, *command) + L"\n").c_str());
    else
        kxutPrintf(L"\nUnknown command \"%ls\".\n", toUpper(name).c_str());
}

}  // namespace kaldo
