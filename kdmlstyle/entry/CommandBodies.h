// The bodies of the module's commands. Each runs inside the command's
// ResourceLibraryScope; the command issues fill them in.
#pragma once

namespace kdml {

void runMlstyle();         // MLSTYLE: the style manager
void runMledit();          // MLEDIT: the tool dialog
void runMleditKeywords();  // -MLEDIT: the tools by keyword
void runMline();           // MLINE: draw multilines

}  // namespace kdml
