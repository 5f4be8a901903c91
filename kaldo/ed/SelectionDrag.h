// The rubber band of the modify commands: while the cursor moves, copies of
// the selected entities show what the command would make of them, through
// the editor's drag listener (the window draws them). At most kMostShown
// entities are shown, so that a frame costs the same for a large selection.
#pragma once

#include "kaldo/ed/Editor.h"
#include "kxdbid.h"

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

class KxDbEntity;

namespace kaldo {

class SelectionDrag {
public:
    static constexpr std::size_t kMostShown = 1000;

    // Makes shown (a copy of the entity at index among the ids given, as it
    // is) what the drag would make of it with the cursor at world.
    using Follow = std::function<void(const KxGePoint3d& world, std::size_t index, KxDbEntity& shown)>;

    explicit SelectionDrag(std::span<const KxDbObjectId> ids);
    ~SelectionDrag();
    SelectionDrag(const SelectionDrag&) = delete;
    SelectionDrag& operator=(const SelectionDrag&) = delete;

    // One answer to prompt (see Editor::readDragInput); while the cursor
    // moves, the copies follow it. worldBase anchors the rubber band.
    Editor::DragInput ask(std::wstring_view prompt, std::wstring_view keywords, bool acceptEnter,
                          const KxGePoint3d* worldBase, Editor::DragNumbers numbers, const Follow& follow);

private:
    std::vector<std::size_t> m_indices;  // of the shown entities among the ids
    std::vector<std::unique_ptr<KxDbEntity>> m_originals;
    std::vector<std::unique_ptr<KxDbEntity>> m_shown;
};

}  // namespace kaldo
