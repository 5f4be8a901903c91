// The bodies of the module's commands. Each runs inside the command's
// ResourceLibraryScope (MLEDIT's dialog is made inside it and destroyed
// after it); the command issues fill them in.
#pragma once

namespace kdml {

class CKaldMlineEditDialog;

void runMlstyle();                             // MLSTYLE: the style manager
void runMledit(CKaldMlineEditDialog& dialog);  // MLEDIT: the tool dialog
void runMleditKeywords();                      // -MLEDIT: the tools by keyword
void runMline();                               // MLINE: draw multilines

}  // namespace kdml
