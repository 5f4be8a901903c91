// Moves and stretches a dialog's items when the dialog changes size: each
// anchored side of an item keeps its distance to the same side of the
// dialog's client area. The dialog cannot be made smaller than it was when
// the first item was registered.
#pragma once

#include "kxuiwnd.h"

#include <memory>
#include <vector>

namespace kdml {

class CDlgItemResizer {
public:
    enum Anchor : unsigned { kLeft = 0x1, kRight = 0x2, kTop = 0x4, kBottom = 0x8 };

    virtual ~CDlgItemResizer();

    // Registers an item of the dialog that is its parent; null items and
    // anchors 0 are ignored.
    void addItem(CWnd* item, unsigned anchors);
    // Moves and sizes every registered item for the dialog's client size.
    void layout(CWnd& dialog);
    // Keeps a proposed window rectangle from shrinking below the designed
    // size, holding the edge that is not being dragged.
    void limitSizing(CWnd& dialog, CRect* proposed) const;

private:
    struct Item {
        unsigned anchors;
        CWnd* window;
        CRect rect;  // in the dialog's client coordinates when registered
    };

    std::vector<std::unique_ptr<Item>> items_;
    int designedWidth_ = 0;
    int designedHeight_ = 0;
    int minimumWidth_ = 0;
    int minimumHeight_ = 0;
};

}  // namespace kdml
