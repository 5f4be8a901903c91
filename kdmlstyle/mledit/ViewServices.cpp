#include "mledit/ViewServices.h"

#include <cmath>
#include <numbers>

#include "KdCmdUtil.h"
#include "kxed.h"
#include "kxgs.h"

namespace kdml {

void getPickTolerance(double& out)
{
    kxresbuf pickbox;
    const short pixels = kxedGetVar(L"PICKBOX", &pickbox) == RTNORM && pickbox.restype == RTSHORT ? pickbox.resval.rint : 0;
    const KxGsView* view = kxgsActiveView();
    if (!view)
        return;
    out = std::numbers::sqrt2 * pixels * view->unitSquarePerPixel();
}

bool ucsToWcs(const KxGePoint3d& point, KxGePoint3d& out)
{
    kxresbuf from;
    from.restype = RTSHORT;
    from.resval.rint = 1;
    kxresbuf to;
    to.restype = RTSHORT;
    to.resval.rint = 0;
    const double in[3] = {point.x, point.y, point.z};
    double result[3] = {};
    if (kxedTrans(in, &from, &to, 0, result) != RTNORM)
        return false;
    out = KxGePoint3d(result[0], result[1], result[2]);
    return true;
}

int wcsToDisplay(const KxGePoint3d& point, KxGePoint3d& out)
{
    const KxGsView* view = kxgsActiveView();
    if (!view)
        return -1;
    const KxGePoint3d display = view->worldToDisplay(point);
    out = KxGePoint3d(display.x, display.y, 0.0);
    return 0;
}

double displayDistance(const KxGePoint3d& a, const KxGePoint3d& b)
{
    KxGePoint3d da = a;
    KxGePoint3d db = b;
    if (wcsToDisplay(a, da) != 0 || wcsToDisplay(b, db) != 0)
        return kxutDistance(a, b);
    return kxutDistance(da, db);
}

}  // namespace kdml
