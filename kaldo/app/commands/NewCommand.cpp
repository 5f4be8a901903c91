// NEW: replaces the working drawing with a new, empty one without a file,
// after asking about unsaved changes as OPEN does.
#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kxed.h"

namespace kaldo {

void newCommand()
{
    Session* session = Session::current();
    if (!session)
        return;
    if (!mayReplaceDrawing(*session)) {
        kxutPrintf(L"\nNew drawing cancelled.\n");
        return;
    }
    session->newDrawing();
    kxutPrintf(L"\nNew drawing.\n");
}

}  // namespace kaldo
