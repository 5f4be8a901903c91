#include "ui/DialogPlacement.h"

#include "kxuiapp.h"
#include "kxuiwnd.h"

#include <algorithm>
#include <array>

namespace kdml {

namespace {

constexpr const wchar_t* kSection = L"Settings";

bool hasSize(const PlacementKeys& keys)
{
    return keys.right && keys.bottom;
}

int read(const wchar_t* key)
{
    return AfxGetApp()->GetProfileInt(kSection, key, kPlacementNotStored);
}

}  // namespace

void restorePlacement(CWnd& dialog, const PlacementKeys& keys, bool onlyWhenNotSmaller)
{
    if (!hasSize(keys)) {
        const std::array<int, 2> corner{read(keys.left), read(keys.top)};
        if (std::ranges::find(corner, kPlacementNotStored) == corner.end())
            dialog.SetWindowPos(corner[0], corner[1], 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        return;
    }
    const std::array<int, 4> values{read(keys.left), read(keys.top), read(keys.right), read(keys.bottom)};
    if (std::ranges::find(values, kPlacementNotStored) != values.end())
        return;
    const CRect stored{values[0], values[1], values[2], values[3]};
    if (onlyWhenNotSmaller) {
        CRect now;
        dialog.GetWindowRect(&now);
        if (stored.Width() < now.Width() || stored.Height() < now.Height())
            return;
    }
    dialog.MoveWindow(stored, true);
}

void storePlacement(const CWnd& dialog, const PlacementKeys& keys)
{
    CRect rect;
    dialog.GetWindowRect(&rect);
    CWinApp* app = AfxGetApp();
    app->WriteProfileInt(kSection, keys.left, rect.left);
    app->WriteProfileInt(kSection, keys.top, rect.top);
    if (hasSize(keys)) {
        app->WriteProfileInt(kSection, keys.right, rect.right);
        app->WriteProfileInt(kSection, keys.bottom, rect.bottom);
    }
}

}  // namespace kdml
