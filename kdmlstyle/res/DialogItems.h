// The items of the module's dialog templates (dialogs/*.ui) by number, one
// namespace per dialog: the dialogs' code finds its controls by them, and the
// tests drive the dialogs with them. OK, Cancel, Yes and No are the SDK's
// IDOK, IDCANCEL, IDYES and IDNO.
#pragma once

namespace kdml {

// The style manager MLSTYLE opens (template 101).
namespace styleManagerItem {
enum Item : int {
    kStyleList = 1021,
    kCurrentName = 1022,
    kDescriptionLabel = 1023,
    kDescription = 1024,
    kPreview = 1025,
    kSetCurrent = 1026,
    kNew = 1028,
    kModify = 1029,
    kRename = 1030,
    kDelete = 1031,
    kLoad = 1032,
    kSave = 1033,
};
}  // namespace styleManagerItem

// The dialog that defines a new style or modifies one (template 105).
namespace styleDefinitionItem {
enum Item : int {
    kDescription = 1037,
    kStartLine = 1038,
    kEndLine = 1039,
    kStartOuterArc = 1040,
    kStartInnerArcs = 1041,
    kEndOuterArc = 1042,
    kEndInnerArcs = 1043,
    kStartAngle = 1044,
    kEndAngle = 1045,
    kElementList = 1046,
    kJoints = 1047,
    kFillColor = 1048,
    kElementColor = 1049,
    kOffset = 1050,
    kAdd = 1051,
    kDelete = 1052,
    kFill = 1054,
    kLinetype = 1055,
};
}  // namespace styleDefinitionItem

// The new style's name (template 107) and a style's new name (template 109).
namespace styleNameItem {
enum Item : int {
    kNewName = 1035,
    kStartStyle = 1036,
    kRenameCurrent = 1059,
    kRenameNew = 1060,
    kRenameStyles = 1065,
};
}  // namespace styleNameItem

// The styles of a file to load (template 108).
namespace styleLoadItem {
enum Item : int {
    kBrowse = 1056,
    kFileName = 1057,
    kStyleList = 1058,
    kMessage = 1064,
};
}  // namespace styleLoadItem

// MLEDIT's tools (template 5758): the plain button that chooses no tool.
namespace mleditItem {
enum Item : int {
    kPlainButton = 5771,
};
}  // namespace mleditItem

}  // namespace kdml
