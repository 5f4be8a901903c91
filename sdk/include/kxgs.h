// The view the user looks at: how drawing units map to the screen.
#pragma once

#include "kxtypes.h"

class KxGsView {
public:
    virtual ~KxGsView() = default;
    // Drawing units covered by one pixel (the side of a pixel's square).
    virtual double unitSquarePerPixel() const = 0;
    // A world point in display coordinates: drawing units in the view's
    // plane, origin at the view's centre, x to the right, y up, z 0.
    virtual KxGePoint3d worldToDisplay(const KxGePoint3d& world) const = 0;
};

// The active view, or null when the host has no editor.
KxGsView* kxgsActiveView();
