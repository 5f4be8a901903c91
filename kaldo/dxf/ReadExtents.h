// The extents of model space measured while a drawing is read: each
// entity as it is added to model space, so in the order model space lists
// them, which is what measuring them all once read gives (drawingExtents),
// without that pass over every entity when the drawing is saved unchanged.
#pragma once

#include "kaldo/dxf/ExtentsBox.h"
#include "kxdbid.h"

class KxDbDatabase;

namespace kaldo::dxf {

class ReadExtents {
public:
    // The box to add an entity added to block to, when block is model
    // space (modelSpace, the reader's as it stands) and its entities are
    // measured so far; else null.
    ExtentsBox* boxFor(KxDbObjectId block, KxDbObjectId modelSpace)
    {
        if (!m_asked)
            m_space = modelSpace;
        m_asked = true;
        m_lost = m_lost || m_space != modelSpace;
        return !m_lost && block == m_space ? &m_box : nullptr;
    }
    // An entity of model space is not measured as read: nothing is known.
    void lose() { m_lost = true; }
    // Measures an entity added to block. A multiline is measured as read:
    // laying it out anew once its style is found sets its axes and miters,
    // never its vertices, which are all the box takes.
    // The entity is of the kind given.
    void add(KxDbObjectId block, KxDbObjectId modelSpace, const KxDbEntity& entity, kaldo::EntityKind kind)
    {
        if (ExtentsBox* const box = boxFor(block, modelSpace))
            box->add(entity, kind);
    }

    // What is known once the drawing db is read: the box, when every
    // entity model space lists was measured.
    KnownExtents known(const KxDbDatabase& db) const;

private:
    ExtentsBox m_box;
    // Model space as it stood when an entity was first added: it must stay.
    KxDbObjectId m_space;
    bool m_asked = false;
    bool m_lost = false;
};

}  // namespace kaldo::dxf
