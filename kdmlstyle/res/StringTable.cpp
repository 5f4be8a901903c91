// The string table of the resource library: local command names, prompts,
// keyword lists, messages and dialog texts, by resource id. The host and the
// module read it through the exported kxresString.
#include "kxrxlibrary.h"

#include <algorithm>
#include <iterator>

namespace {

struct ResourceString {
    unsigned id;
    const wchar_t* text;
};

// Sorted by id: looked up by binary search.
constexpr ResourceString kStrings[] = {
    {1, L"Offset"},
    {2, L"Color"},
    {3, L"Linetype"},
    {4, L"New Multiline Style: "},
    {5, L"Modify Multiline Style: "},
    {13, L"Delete the multiline style "},
    {15, L"Save Multiline Style to File"},
    {16, L"A multiline in this drawing uses a style of this name; it cannot be loaded."},
    {25, L"A multiline style cannot hold more elements."},
    {26, L"Load Multiline Style From File"},
    {27, L"Color %d"},
    {101, L"Multiline Style"},
    {105, L"Multiline Style"},
    {107, L"Create New Multiline Style"},
    {108, L"Load Multiline Styles"},
    {109, L"Rename Multiline Style"},
    {4000, L"CC OC MC CT OT MT CJ AV DV CS CA WA _CC OC MC CT OT MT CJ AV DV CS CA WA"},
    {4001, L"\nEnter mline editing option [CC/OC/MC/CT/OT/MT/CJ/AV/DV/CS/CA/WA]: "},
    {4002, L"Undo _UNDO"},
    {4003, L"\nSelect first mline or [Undo]: "},
    {4004, L"\nSelect first mline: "},
    {4005, L"\nSelect second mline: "},
    {4006, L"\nA closed multiline cannot be used with this tool."},
    {4007, L"\nThe selected multilines do not intersect."},
    {4008, L"\nSelect mline or [Undo]: "},
    {4009, L"\nSelect mline: "},
    {4010, L"\nSelect mline or [Undo]: "},
    {4011, L"\nSelect mline: "},
    {4012, L"\nSelect second point: "},
    {4013, L"MLSTYLE"},
    {4014, L"MLEDIT"},
    {4015, L"-MLEDIT"},
    {4016, L"\nThe last edit was undone."},
    {4017, L"\nPick the stem on the side that keeps the bar."},
    {4018, L"\nThe object selected is not a multiline."},
    {5000, L"MLINE"},
    {5800, L"Multiline Edit Tools"},
    {6001, L"Justification Scale STyle _Justification Scale STyle"},
    {6002, L"\nSpecify start point or [Justification/Scale/STyle]: "},
    {6003, L"Top"},
    {6004, L"Zero"},
    {6005, L"Top Zero Bottom _Top Zero Bottom"},
    {6006, L"\nEnter justification type [Top/Zero/Bottom] <%ls>: "},
    {6007, L"Enter mline scale <%.4f> :"},
    {6008, L"\nEnter mline style name or [?]: "},
    {6009, L"\n\n       Multiline Style                      Description                         "},
    {6010, L"\n----------------------------------  ---------------------------------------------"},
    {6011, L"\nThe \"%ls\" multiline style does not exist"},
    {6012, L"\nSpecify next point or [Undo]:"},
    {6013, L"Close Undo _Close Undo"},
    {6014, L"\nSpecify next point or [Close/Undo]: "},
    {6015, L"\nNext point :"},
    {6016, L"Bottom"},
    {6017, L"\nCurrent settings: Justification = %ls, Scale = %.4f, Style = %ls\n"},
    {6018, L"\nUnable to find file \"%ls\"."},
    {6019, L"Load Multiline Style from File"},
    {6021, L"\nMultiline style to load: "},
    {6023, L"Undo _Undo"},
    {7001, L"Creates, changes, loads and saves multiline styles."},
    {7002, L"Edits crossings, tees, corners, vertices, cuts and welds of multilines, chosen from a dialog."},
    {7003, L"Edits crossings, tees, corners, vertices, cuts and welds of multilines, chosen by keyword."},
    {7004, L"Draws a multiline in the current style, justification and scale."},
};

static_assert(std::adjacent_find(std::begin(kStrings), std::end(kStrings),
                                 [](const ResourceString& a, const ResourceString& b) {
                                     return a.id >= b.id;
                                 }) == std::end(kStrings),
              "resource ids must be unique and ascending");

}  // namespace

extern "C" __attribute__((visibility("default"))) const wchar_t* kxresString(unsigned id)
{
    const auto it = std::lower_bound(std::begin(kStrings), std::end(kStrings), id,
                                     [](const ResourceString& s, unsigned key) { return s.id < key; });
    return it != std::end(kStrings) && it->id == id ? it->text : nullptr;
}
