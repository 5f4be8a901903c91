// Dialog placement in the profile and the item resizer, on a real dialog
// (the template of the style manager, the dialog a user can resize)
// driven by scripts.
#include "DialogFixture.h"

#include "ui/DialogPlacement.h"
#include "ui/DlgItemResizer.h"

#include "kxuidialog.h"

#include <map>

namespace {

// A dialog that restores its placement when it opens and stores it on OK;
// it remembers where it opened and where it was confirmed.
class PlacedDialog : public CDialog {
public:
    PlacedDialog(const kdml::PlacementKeys& keys, bool onlyWhenNotSmaller)
        : CDialog(101), keys_(keys), onlyWhenNotSmaller_(onlyWhenNotSmaller)
    {
    }

    CRect opened;
    CRect confirmed;

protected:
    bool OnInitDialog() override
    {
        CDialog::OnInitDialog();
        kdml::restorePlacement(*this, keys_, onlyWhenNotSmaller_);
        GetWindowRect(&opened);
        return true;
    }
    void OnOK() override
    {
        GetWindowRect(&confirmed);
        kdml::storePlacement(*this, keys_);
        CDialog::OnOK();
    }

private:
    kdml::PlacementKeys keys_;
    bool onlyWhenNotSmaller_;
};

class PlacementTest : public DialogFixture {
protected:
    void store(const kdml::PlacementKeys& keys, const CRect& rect)
    {
        profile.setInt(L"Settings", keys.left, rect.left);
        profile.setInt(L"Settings", keys.top, rect.top);
        profile.setInt(L"Settings", keys.right, rect.right);
        profile.setInt(L"Settings", keys.bottom, rect.bottom);
    }
    CRect stored(const kdml::PlacementKeys& keys)
    {
        auto value = [&](const wchar_t* key) { return profile.getInt(L"Settings", key).value_or(-1); };
        return {value(keys.left), value(keys.top), value(keys.right), value(keys.bottom)};
    }
    struct Placed {
        CRect opened;
        CRect confirmed;
    };
    // Opens the dialog and closes it; where it opened and was confirmed.
    Placed open(const kdml::PlacementKeys& keys, bool onlyWhenNotSmaller, const char* close = "CLICK 1\n")
    {
        script(close);
        PlacedDialog dialog(keys, onlyWhenNotSmaller);
        dialog.DoModal();
        return {dialog.opened, dialog.confirmed};
    }
};

}  // namespace

TEST_F(PlacementTest, StoredOnOkOnlyAndRestoredByTheRules)
{
    const kdml::PlacementKeys& keys = kdml::kStyleManagerPlacement;
    open(keys, true, "CLICK 2\n");
    EXPECT_FALSE(profile.getInt(L"Settings", keys.left)) << "Cancel writes nothing";

    const Placed first = open(keys, true);
    EXPECT_EQ(stored(keys), first.confirmed);
    const int designedWidth = first.confirmed.Width();
    const int designedHeight = first.confirmed.Height();

    const CRect larger{100, 120, 700, 620};
    store(keys, larger);
    EXPECT_EQ(open(keys, true).confirmed, larger) << "the shown window keeps the stored place";

    // Three of four keys: the stored values are not used.
    profile.setInt(L"Settings", keys.bottom, kdml::kPlacementNotStored);
    const Placed three = open(keys, true);
    EXPECT_NE(three.opened.left, larger.left);
    EXPECT_EQ(three.opened.Width(), designedWidth);

    // A rectangle smaller than the dialog: the style manager's rule keeps
    // its own place; the rule of the other dialogs of four keys takes it
    // (for a window that can be resized).
    const CRect smaller{100, 120, 300, 300};
    store(keys, smaller);
    EXPECT_EQ(open(keys, true).opened.Height(), designedHeight);
    store(kdml::kLoadDialogPlacement, smaller);
    EXPECT_EQ(open(kdml::kLoadDialogPlacement, false).confirmed, smaller);

    // Two keys: the position only.
    const kdml::PlacementKeys& corner = kdml::kNewStylePlacement;
    open(corner, false);
    EXPECT_TRUE(profile.getInt(L"Settings", corner.left));
    profile.setInt(L"Settings", corner.left, 40);
    profile.setInt(L"Settings", corner.top, 50);
    EXPECT_EQ(open(corner, false).confirmed, (CRect{40, 50, 40 + designedWidth, 50 + designedHeight}));
}

namespace {

// A dialog whose items follow its edges: the style list stretches, Set
// Current moves with the right edge, the current name stays, OK keeps to
// the bottom-right corner.
class ResizedDialog : public CDialog {
public:
    ResizedDialog() : CDialog(101) {}

    std::map<int, CRect> confirmed;  // item rectangles on OK, by id
    CRect window;
    CRect leftDragged;  // a drag of the left edge inwards, as limited

protected:
    bool OnInitDialog() override
    {
        CDialog::OnInitDialog();
        for (const auto& [id, anchors] : kAnchors)
            resizer_.addItem(GetDlgItem(id), anchors);
        resizer_.layout(*this);
        return true;
    }
    void OnSize(int type, int cx, int cy) override
    {
        CDialog::OnSize(type, cx, cy);
        if (IsWindowVisible())
            resizer_.layout(*this);
    }
    void OnSizing(int edge, CRect* rect) override
    {
        CDialog::OnSizing(edge, rect);
        resizer_.limitSizing(*this, rect);
    }
    void OnOK() override
    {
        for (const auto& [id, anchors] : kAnchors) {
            CRect rect;
            GetDlgItem(id)->GetWindowRect(&rect);
            ScreenToClient(&rect);
            confirmed[id] = rect;
        }
        GetWindowRect(&window);
        leftDragged = {window.left + 50, window.top, window.right, window.bottom};
        resizer_.limitSizing(*this, &leftDragged);
        CDialog::OnOK();
    }

private:
    using Anchors = kdml::CDlgItemResizer;
    static constexpr std::pair<int, unsigned> kAnchors[] = {
        {1021, Anchors::kLeft | Anchors::kRight | Anchors::kTop},
        {1026, Anchors::kRight | Anchors::kTop},
        {1022, Anchors::kLeft | Anchors::kTop},
        {IDOK, Anchors::kRight | Anchors::kBottom},
    };
    kdml::CDlgItemResizer resizer_;
};

}  // namespace

TEST_F(PlacementTest, ResizerAnchorsOnWideningAndLimitsOnShrinking)
{
    script("CLICK 1\n");
    ResizedDialog designed;
    designed.DoModal();
    const int designedWidth = designed.window.Width();
    const int designedHeight = designed.window.Height();
    script("SIZE " + std::to_string(designedWidth + 100) + " " + std::to_string(designedHeight + 50) + "\nCLICK 1\n");
    ResizedDialog wider;
    wider.DoModal();
    ASSERT_EQ(wider.window.Width(), designedWidth + 100);
    auto moved = [&](int id) {
        const CRect& a = designed.confirmed[id];
        const CRect& b = wider.confirmed[id];
        return CRect{b.left - a.left, b.top - a.top, b.right - a.right, b.bottom - a.bottom};
    };
    EXPECT_EQ(moved(1021), (CRect{0, 0, 100, 0})) << "anchored left and right: grows";
    EXPECT_EQ(moved(1026), (CRect{100, 0, 100, 0})) << "anchored right: moves";
    EXPECT_EQ(moved(1022), (CRect{0, 0, 0, 0})) << "anchored left: stays";
    EXPECT_EQ(moved(IDOK), (CRect{100, 50, 100, 50})) << "anchored right and bottom: follows the corner";

    // Shrinking below the designed size stops there with the top-left
    // corner fixed; dragging the left edge in stops with the right fixed.
    script("SIZE 300 200\nCLICK 1\n");
    ResizedDialog smaller;
    smaller.DoModal();
    EXPECT_EQ(smaller.window.Width(), designedWidth);
    EXPECT_EQ(smaller.window.Height(), designedHeight);
    EXPECT_EQ(smaller.confirmed[1021], designed.confirmed[1021]);
    EXPECT_EQ(smaller.leftDragged,
              (CRect{smaller.window.right - designedWidth, smaller.window.top, smaller.window.right,
                     smaller.window.bottom}));
}
