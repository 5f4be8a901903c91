#include "entry/CommandBodies.h"

#include "mledit/MleditDispatch.h"
#include "mleditdlg/MlineEditDialog.h"

#include "kxcrash.h"

namespace kdml {

// MLEDIT: the tool dialog runs through the host's crash recorder; the tool
// of the button clicked runs after it. Without a recorder nothing is shown;
// a dialog the recorder would not run goes to its fallback and no tool runs.
void runMledit(CKaldMlineEditDialog& dialog)
{
    KxCrashRecorder* recorder = kaldGetCrashRecorder();
    if (!recorder)
        return;
    if (recorder->runModal(&dialog, nullptr))
        dispatchMleditTool(dialog.selectedTool());
    else
        recorder->runModalFallback(&dialog);
}

}  // namespace kdml
