// Per-element values on their way into a multiline style: the .mln readers
// and the new/modify dialog fill a table, the element setters apply it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class KxDbDatabase;
class KxDbMlineStyle;

namespace kdml {

// The number of element slots the .mln readers fill.
inline constexpr std::size_t kMlnReaderSlots = 256;

// Five parallel tables, one entry per element slot. A true colour of -1
// means none; a null colour-book key or linetype name means none (a null
// linetype name leaves the element's linetype).
struct MlnElementTable {
    explicit MlnElementTable(std::size_t rows);

    // A new table's numbers are 0 and its strings null.
    std::size_t size() const { return offsets.size(); }

    std::vector<double> offsets;
    std::vector<std::int32_t> colorIndices;
    std::vector<std::int32_t> trueColors;
    std::vector<std::optional<std::wstring>> colorBookKeys;
    std::vector<std::optional<std::wstring>> linetypeNames;
};

// Gives the style count elements (at most the table's slots) and applies the
// first count rows of the table: linetypes (resolved in database), offsets,
// colour indices, true colours, colour-book keys. The host keeps a style's
// elements sorted by offset, largest first; the rows are put in that order
// before they are applied, so that each element keeps its own colour and
// linetype whatever order the rows came in. False for a null style.
bool applyMlnElementTable(KxDbMlineStyle* style, const MlnElementTable& table, int count, KxDbDatabase* database);

}  // namespace kdml
