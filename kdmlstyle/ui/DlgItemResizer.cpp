#include "ui/DlgItemResizer.h"

namespace kdml {

namespace {

CRect clientRectOf(const CWnd& item, const CWnd& dialog)
{
    CRect rect;
    item.GetWindowRect(&rect);
    dialog.ScreenToClient(&rect);
    return rect;
}

}  // namespace

CDlgItemResizer::~CDlgItemResizer() = default;

void CDlgItemResizer::addItem(CWnd* item, unsigned anchors)
{
    if (!item || anchors == 0 || !item->GetParent())
        return;
    CWnd& dialog = *item->GetParent();
    items_.push_back(std::make_unique<Item>(Item{anchors, item, clientRectOf(*item, dialog)}));
    if (designedWidth_ == 0 && designedHeight_ == 0) {
        CRect client;
        dialog.GetClientRect(&client);
        designedWidth_ = client.Width();
        designedHeight_ = client.Height();
    }
    if (minimumWidth_ == 0 && minimumHeight_ == 0) {
        CRect window;
        dialog.GetWindowRect(&window);
        minimumWidth_ = window.Width();
        minimumHeight_ = window.Height();
    }
}

void CDlgItemResizer::layout(CWnd& dialog)
{
    if (designedWidth_ == 0 || designedHeight_ == 0 || dialog.IsIconic())
        return;
    CRect client;
    dialog.GetClientRect(&client);
    const int dx = client.Width() - designedWidth_;
    const int dy = client.Height() - designedHeight_;
    // Every new place is worked out from the present ones before any item
    // moves.
    std::vector<std::pair<CWnd*, CRect>> moves;
    for (const auto& item : items_) {
        const CRect now = clientRectOf(*item->window, dialog);
        const CRect& at = item->rect;
        CRect next = now;
        if ((item->anchors & kLeft) && (item->anchors & kRight)) {
            next.left = at.left;
            next.right = at.right + dx;
        } else if (item->anchors & kRight) {
            next.right = at.right + dx;
            next.left = next.right - now.Width();
        } else if (item->anchors & kLeft) {
            next.left = at.left;
            next.right = next.left + now.Width();
        }
        if ((item->anchors & kTop) && (item->anchors & kBottom)) {
            next.top = at.top;
            next.bottom = at.bottom + dy;
        } else if (item->anchors & kBottom) {
            next.bottom = at.bottom + dy;
            next.top = next.bottom - now.Height();
        } else if (item->anchors & kTop) {
            next.top = at.top;
            next.bottom = next.top + now.Height();
        }
        moves.emplace_back(item->window, next);
    }
    for (const auto& [window, rect] : moves)
        window->SetWindowPos(rect.left, rect.top, rect.Width(), rect.Height(), SWP_NOZORDER);
}

void CDlgItemResizer::limitSizing(CWnd& dialog, CRect* proposed) const
{
    if (!proposed)
        return;
    CRect now;
    dialog.GetWindowRect(&now);
    if (proposed->Width() < minimumWidth_) {
        if (proposed->right < now.right) {
            proposed->left = now.left;
            proposed->right = proposed->left + minimumWidth_;
        } else if (proposed->left > now.left) {
            proposed->left = proposed->right - minimumWidth_;
        }
    }
    if (proposed->Height() < minimumHeight_) {
        if (proposed->bottom < now.bottom) {
            proposed->top = now.top;
            proposed->bottom = proposed->top + minimumHeight_;
        } else if (proposed->top > now.top) {
            proposed->top = proposed->bottom - minimumHeight_;
        }
    }
}

}  // namespace kdml
