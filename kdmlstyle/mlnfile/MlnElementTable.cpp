#include "mlnfile/MlnElementTable.h"

#include <algorithm>
#include <numeric>

#include "kxdbmlstyle.h"
#include "mlnfile/StyleElementSetters.h"

namespace kdml {

MlnElementTable::MlnElementTable(std::size_t rows)
    : offsets(rows), colorIndices(rows), trueColors(rows), colorBookKeys(rows), linetypeNames(rows)
{
}

bool applyMlnElementTable(KxDbMlineStyle* style, const MlnElementTable& table, int count, KxDbDatabase* database)
{
    if (!style)
        return false;
    const std::size_t rows = std::min(static_cast<std::size_t>(std::max(count, 0)), table.size());
    std::vector<std::size_t> order(rows);
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) { return table.offsets[a] > table.offsets[b]; });

    MlnElementTable sorted(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        const std::size_t row = order[i];
        sorted.offsets[i] = table.offsets[row];
        sorted.colorIndices[i] = table.colorIndices[row];
        sorted.trueColors[i] = table.trueColors[row];
        sorted.colorBookKeys[i] = table.colorBookKeys[row];
        sorted.linetypeNames[i] = table.linetypeNames[row];
    }
    setStyleElementCount(style, static_cast<int>(rows));
    setStyleElementLinetypes(style, sorted.linetypeNames, database);
    setStyleElementOffsets(style, sorted.offsets);
    setStyleElementColorIndices(style, sorted.colorIndices);
    setStyleElementTrueColors(style, sorted.trueColors);
    setStyleElementColorBookKeys(style, sorted.colorBookKeys);
    return true;
}

}  // namespace kdml
