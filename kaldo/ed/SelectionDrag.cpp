#include "kaldo/ed/SelectionDrag.h"

#include "kxdb.h"

namespace kaldo {

SelectionDrag::SelectionDrag(std::span<const KxDbObjectId> ids)
{
    for (std::size_t i = 0; i < ids.size() && m_originals.size() < kMostShown; ++i) {
        const KxDbObjectPtr<KxDbEntity> entity(ids[i], KxDb::kForRead);
        if (!entity)
            continue;
        std::unique_ptr<KxDbObject> original = entity->clone();
        std::unique_ptr<KxDbObject> shown = entity->clone();
        m_indices.push_back(i);
        m_originals.emplace_back(static_cast<KxDbEntity*>(original.release()));
        m_shown.emplace_back(static_cast<KxDbEntity*>(shown.release()));
    }
}

SelectionDrag::~SelectionDrag() = default;

Editor::DragInput SelectionDrag::ask(std::wstring_view prompt, std::wstring_view keywords, bool acceptEnter,
                                     const KxGePoint3d* worldBase, Editor::DragNumbers numbers, const Follow& follow)
{
    Editor* editor = currentEditor();
    if (!editor)
        return {};
    std::vector<const KxDbEntity*> shown;
    for (const auto& entity : m_shown)
        shown.push_back(entity.get());
    bool writePrompt = true;
    while (true) {
        const Editor::DragInput input = editor->readDragInput(prompt, writePrompt, keywords, acceptEnter, worldBase, numbers);
        writePrompt = false;
        if (input.kind != Editor::DragInput::Kind::Motion)
            return input;
        for (std::size_t i = 0; i < m_shown.size(); ++i) {
            m_shown[i]->copyFrom(m_originals[i].get());
            follow(input.world, m_indices[i], *m_shown[i]);
        }
        editor->dragged(shown);
    }
}

}  // namespace kaldo
