#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"

namespace kaldo {

void quitCommand()
{
    if (Session* session = Session::current())
        session->requestQuit();
}

}  // namespace kaldo
