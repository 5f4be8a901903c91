// The element lists of one element of a multiline, as cut and weld rewrite
// them: read vertex by vertex as an edit reaches them, so that an edit of a
// few segments costs the same on a multiline of any length.
#pragma once

#include <map>
#include <vector>

#include "kxdbmline.h"
#include "mledit/MlineEditContext.h"

namespace kdml {

// runs[v] is the element list of the element at vertex v: entry 0 the miter
// offset, then the distances along segment v where drawn runs start and
// stop in turn.
using ElementRuns = std::vector<std::vector<double>>;

// One element of a multiline open for write: its points are computed and
// its lists copied only at the vertices asked for; writeChanged writes back
// the lists that differ from what was read.
class ElementListEdit {
public:
    ElementListEdit(KxDbMline* mline, int element);

    int size() const { return mline_->numVertices(); }
    // The element's point at vertex v (see ElementLine).
    KxGePoint3d point(int v) const;
    std::vector<double>& list(int v);
    void writeChanged();

private:
    struct Lists {
        std::vector<double> before;
        std::vector<double> after;
    };
    KxDbMline* mline_;
    int element_;
    std::map<int, Lists> lists_;
};

// The same access over an element line and its lists held as plain values.
struct ElementLineRuns {
    const ElementLine& line;
    ElementRuns& runs;

    int size() const { return static_cast<int>(line.size()); }
    const KxGePoint3d& point(int v) const { return line[std::size_t(v)]; }
    std::vector<double>& list(int v) { return runs[std::size_t(v)]; }
};

}  // namespace kdml
