// The schematic drawing of a multiline style in the style manager's
// preview: the elements fill the middle half of the control's height and
// span the middle half of its width, whatever their offsets; joints, line
// caps and arc caps follow the record's flags, each piece in the colour of
// the element it belongs to.
#pragma once

#include <vector>

#include "kxtypes.h"
#include "styledlg/StylePreviewData.h"

namespace kdml {

struct PreviewLine {
    KxGePoint3d from;
    KxGePoint3d to;
    int element = 0;                // whose colour the line takes
    bool elementLinetype = false;   // the element's linetype, else Continuous
};

struct PreviewArc {
    KxGePoint3d centre;
    double startAngle = 0.0;  // radians, counter-clockwise
    double endAngle = 0.0;
    double radius = 0.0;
    int element = 0;          // whose colour the arc takes; always Continuous
};

struct PreviewGeometry {
    std::vector<PreviewLine> lines;
    std::vector<PreviewArc> arcs;
};

// The pieces for a control whose client rectangle is left, top, right,
// bottom. Empty when the record has no elements. When the first and the
// last element have the same offset, the elements are spread evenly over
// the middle half of the height in their order, so that each stays visible.
PreviewGeometry previewGeometry(const StylePreviewData& record, double left, double top, double right,
                                double bottom);

}  // namespace kdml
