// Buttons of the host's user-interface class library: push buttons, check
// boxes and radio buttons (CButton), and image buttons (CBitmapButton) whose
// face an owner-draw routine paints from images of the resource library.
#pragma once

#include "kxuiwnd.h"

#include <QImage>

#include <memory>

class QPainter;

class CButton : public CWnd {
public:
    int GetCheck() const;
    // Sets the check state without a click notification.
    void SetCheck(int state);
};

// Item states of an owner-drawn item.
inline constexpr unsigned ODS_SELECTED = 0x1;
inline constexpr unsigned ODS_DISABLED = 0x4;
inline constexpr unsigned ODS_FOCUS = 0x10;

// What an owner-draw routine draws: the item's state, a painter on the item
// and the item's rectangle.
struct DRAWITEMSTRUCT {
    unsigned itemState = 0;
    QPainter* hDC = nullptr;
    CRect rcItem;
};

// An image of the current resource library by name (its bitmaps folder);
// a null image when there is none.
QImage kxLoadResourceBitmap(const wchar_t* name);

class CBitmapButton : public CButton {
public:
    CBitmapButton();
    ~CBitmapButton() override;

    // Loads the normal, pressed, focus and disabled images by name from the
    // current resource library (null names load nothing); false when the
    // normal image is missing.
    bool LoadBitmaps(const wchar_t* normal, const wchar_t* pressed = nullptr, const wchar_t* focus = nullptr,
                     const wchar_t* disabled = nullptr);
    // Paints the button face; the base draws the chosen image at its own
    // size in the item's top-left corner.
    virtual void DrawItem(DRAWITEMSTRUCT* item);

protected:
    // The image for an item state: pressed, else focus, else disabled when
    // the state has it and that image is loaded; else the normal image.
    const QImage& imageForState(unsigned itemState) const;

    void OnAttached() override;
    void OnDetaching() override;

    QImage m_bitmap;
    QImage m_bitmapSel;
    QImage m_bitmapFocus;
    QImage m_bitmapDisabled;

private:
    class Painter;
    std::unique_ptr<Painter> m_painter;
};
