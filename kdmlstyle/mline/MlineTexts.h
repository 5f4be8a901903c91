// The command-line texts of MLINE by resource id, each with the module's
// built-in text for a resource library that lacks it.
#pragma once

#include "kxhost.h"

namespace kdml {

struct MlineText {
    unsigned id;
    const wchar_t* builtIn;
};

// The text from the current resource library, else the built-in one.
inline const wchar_t* textOf(const MlineText& text)
{
    return kxmdKxResourceString(text.id, text.builtIn);
}

namespace mlinetext {

inline constexpr MlineText kStartKeywords{6001, L"Justification Scale STyle _Justification Scale STyle"};
inline constexpr MlineText kStartPrompt{6002, L"\nSpecify start point or [Justification/Scale/STyle]: "};
inline constexpr MlineText kTop{6003, L"Top"};
inline constexpr MlineText kZero{6004, L"Zero"};
inline constexpr MlineText kBottom{6016, L"Bottom"};
inline constexpr MlineText kJustificationKeywords{6005, L"Top Zero Bottom _Top Zero Bottom"};
inline constexpr MlineText kJustificationPrompt{6006, L"\nEnter justification type [Top/Zero/Bottom] <%ls>: "};
inline constexpr MlineText kScalePrompt{6007, L"Enter mline scale <%.4f> :"};
inline constexpr MlineText kStylePrompt{6008, L"\nEnter mline style name or [?]: "};
inline constexpr MlineText kListingHeader{
    6009, L"\n\n       Multiline Style                      Description                         "};
inline constexpr MlineText kListingRule{
    6010, L"\n----------------------------------  ---------------------------------------------"};
inline constexpr MlineText kStyleMissing{6011, L"\nThe \"%ls\" multiline style does not exist"};
inline constexpr MlineText kSettings{6017, L"\nCurrent settings: Justification = %ls, Scale = %.4f, Style = %ls\n"};
inline constexpr MlineText kLoadDialogTitle{6019, L"Load Multiline Style from File"};
inline constexpr MlineText kFilePrompt{6021, L"\nMultiline style to load: "};

inline constexpr MlineText kNextPoint{6015, L"\nNext point :"};
inline constexpr MlineText kNextOrUndo{6012, L"\nSpecify next point or [Undo]:"};
inline constexpr MlineText kUndoKeywords{6023, L"Undo _Undo"};
inline constexpr MlineText kNextOrCloseUndo{6014, L"\nSpecify next point or [Close/Undo]: "};
inline constexpr MlineText kCloseUndoKeywords{6013, L"Close Undo _Close Undo"};

}  // namespace mlinetext

}  // namespace kdml
