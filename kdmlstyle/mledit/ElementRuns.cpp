#include "mledit/ElementRuns.h"

#include "mledit/MlineAccess.h"

namespace kdml {

ElementListEdit::ElementListEdit(KxDbMline* mline, int element) : mline_(mline), element_(element) {}

KxGePoint3d ElementListEdit::point(int v) const
{
    return elementPointAt(mline_, v, element_);
}

std::vector<double>& ElementListEdit::list(int v)
{
    const auto [it, added] = lists_.try_emplace(v);
    if (added) {
        getElementParams(mline_, it->second.before, v, element_);
        it->second.after = it->second.before;
    }
    return it->second.after;
}

void ElementListEdit::writeChanged()
{
    for (const auto& [v, lists] : lists_)
        if (lists.after != lists.before)
            writeElementParams(mline_, lists.after, v, element_);
}

}  // namespace kdml
