#include "kaldo/db/MlineGeometry.h"

#include "kaldo/db/FiniteValues.h"
#include "kaldo/db/MlineLayout.h"

#include <cmath>
#include <numbers>

#include "kxdbmline.h"
#include "kxdbmlstyle.h"

namespace kaldo {

double planeAngle(const KxGePoint3d& from, const KxGePoint3d& to)
{
    const double a = std::atan2(to.y - from.y, to.x - from.x);
    return a < 0 ? a + 2 * std::numbers::pi : a;
}

double bisectorAngle(double a, double b)
{
    double m = (a + b) / 2;
    if (a > b)
        m += std::numbers::pi;
    else if (a == b)
        m += std::numbers::pi / 2;
    return m;
}

double miterDistance(double offset, double miterAngle, double axisAngle)
{
    const double turn = miterAngle - axisAngle;
    return offset / std::sin(turn + (turn == 0 ? 0.005 : 0.0));
}

}  // namespace kaldo

std::vector<double> kxdbMlineElementOffsets(const KxDbMlineStyle& style, double scale, int justification)
{
    const int n = style.numElements();
    std::vector<double> offsets(std::size_t(n), 0.0);
    if (n == 0)
        return offsets;
    KxCmColor color;
    KxDbObjectId linetype;
    for (int i = 0; i < n; ++i)
        style.getElementAt(i, offsets[std::size_t(i)], color, linetype);
    const double last = offsets.back();
    for (double& o : offsets)
        o = (o - last) * scale;
    const double top = offsets.front();
    const double shift = justification == Mline::kTop ? top : justification == Mline::kZero ? top / 2 : 0.0;
    for (double& o : offsets)
        o -= shift;
    return offsets;
}

namespace kaldo {

MlineLayout mlineLayout(const KxDbMlineStyle* style, double scale, int justification, const KxGeVector3d& normal)
{
    MlineLayout layout{EntityPlane(normal), {}};
    if (style) {
        layout.offsets = kxdbMlineElementOffsets(*style, scale, justification);
        layout.startAngle = style->startAngle();
        layout.endAngle = style->endAngle();
    }
    return layout;
}

bool frameFinite(const MlineLayout& layout, const VertexFrame& frame)
{
    if (!isFinite(frame.axis) || !isFinite(frame.miter))
        return false;
    for (std::size_t e = 0; e < layout.offsets.size(); ++e)
        if (!std::isfinite(frame.entry0(layout, e)))
            return false;
    return true;
}

}  // namespace kaldo
