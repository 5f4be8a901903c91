#include "entry/CommandBodies.h"

#include "styledlg/MlineStyleDialog.h"

#include "kxcrash.h"

namespace kdml {

// MLSTYLE: the style manager runs through the host's crash recorder; its
// actions change the drawing while it is open, so nothing is left to do
// after it closes. Without a recorder nothing is shown; a dialog the
// recorder would not run goes to its fallback.
void runMlstyle()
{
    CKaldMlineStyleDialog dialog;
    KxCrashRecorder* recorder = kaldGetCrashRecorder();
    if (!recorder)
        return;
    if (!recorder->runModal(&dialog, nullptr))
        recorder->runModalFallback(&dialog);
}

}  // namespace kdml
