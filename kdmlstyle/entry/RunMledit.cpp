#include "entry/CommandBodies.h"

#include "mledit/MleditDispatch.h"

namespace kdml {

// MLEDIT: the tool dialog's chosen button gives the tool id. The dialog
// template is not in the resource library yet, so no tool is chosen and the
// dispatcher runs none, as when the dialog is cancelled.
void runMledit()
{
    dispatchMleditTool(kNoTool);
}

}  // namespace kdml
