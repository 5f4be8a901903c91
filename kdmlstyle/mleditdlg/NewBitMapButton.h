// An image button whose image, chosen by the button's state, is stretched
// over the whole button face whatever its own size.
#pragma once

#include "kxuibutton.h"

namespace kdml {

class CNewBitMapButton : public CBitmapButton {
public:
    void DrawItem(DRAWITEMSTRUCT* item) override;
};

}  // namespace kdml
