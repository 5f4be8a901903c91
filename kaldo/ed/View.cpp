#include "kaldo/ed/View.h"

#include "kaldo/ed/Editor.h"

namespace kaldo {

namespace {
constexpr std::size_t kRemembered = 10;
}

void View::place(const ViewPlacement& placement)
{
    const bool moved = placement.centre.x != centre.x || placement.centre.y != centre.y
        || placement.unitsPerPixel != unitsPerPixel;
    if (moved) {
        history_.push_back(*this);
        if (history_.size() > kRemembered)
            history_.pop_front();
    }
    static_cast<ViewPlacement&>(*this) = placement;
}

bool View::previous()
{
    if (history_.empty())
        return false;
    centre = history_.back().centre;
    unitsPerPixel = history_.back().unitsPerPixel;
    history_.pop_back();
    return true;
}

void View::announce() const
{
    if (listener_)
        listener_(*this);
}

}  // namespace kaldo

KxGsView* kxgsActiveView()
{
    kaldo::Editor* editor = kaldo::currentEditor();
    return editor ? &editor->view() : nullptr;
}
