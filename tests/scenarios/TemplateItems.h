// The items of the dialog templates the scenarios act on; the Plot
// dialog's are its own (kaldo/dlg/PlotDialog.h).
#pragma once

namespace scenario {

enum Item : int {
    kOk = 1,
    kCancel = 2,
    kYes = 6,
    kNo = 7,
    kStyleList = 1021,
    kSetCurrent = 1026,
    kNew = 1028,
    kModify = 1029,
    kRename = 1030,
    kDelete = 1031,
    kLoad = 1032,
    kSave = 1033,
    kNewName = 1035,
    kStartStyle = 1036,
    kDescription = 1037,
    kStartLine = 1038,
    kStartAngle = 1044,
    kElements = 1046,
    kFillColor = 1048,
    kElementColor = 1049,
    kOffset = 1050,
    kAddElement = 1051,
    kDeleteElement = 1052,
    kFill = 1054,
    kLinetype = 1055,
    kBrowse = 1056,
    kFileStyles = 1058,
    kRenameNew = 1060,
    kPlainButton = 5771,
};

}  // namespace scenario
