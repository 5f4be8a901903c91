#include "entry/CommandBodies.h"

#include "styledlg/MlineStyleDialog.h"

namespace kdml {

// MLSTYLE: the style manager; its actions change the drawing while it is
// open, so nothing is left to do after it closes.
void runMlstyle()
{
    CKaldMlineStyleDialog dialog;
    dialog.DoModal();
}

}  // namespace kdml
