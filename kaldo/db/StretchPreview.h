// A copy of an entity that shows some of its stretch points moved, frame
// after frame, as a grip drag needs: for a multiline each frame costs the
// moved vertices and their neighbours, not the multiline's length (the copy
// is made once and only the vertices the stretch changes are set again),
// and what a window draws over the drawing is the part the stretch
// changed, not the whole multiline again.
#pragma once

#include "kxtypes.h"

#include <memory>
#include <vector>

class KxDbEntity;
class KxDbMline;

namespace kaldo {

class StretchPreview {
public:
    // source is copied; indices are into its getStretchPoints list.
    StretchPreview(const KxDbEntity& source, std::vector<int> indices);
    ~StretchPreview();
    StretchPreview(const StretchPreview&) = delete;
    StretchPreview& operator=(const StretchPreview&) = delete;

    // The copy with those points moved by offset from where the source
    // has them; it stays as the last offset left it when that stretch is
    // refused.
    const KxDbEntity& at(const KxGeVector3d& offset);

    // What at(offset) changed, to draw over the drawing where the rest of
    // the entity stands as it was: for a multiline whose moved vertices
    // follow one another, a multiline of them and the two vertices either
    // side (the segments a stretch changes), without caps where it is cut
    // off; else the whole copy.
    const KxDbEntity& changedAt(const KxGeVector3d& offset);

private:
    std::unique_ptr<KxDbEntity> m_source;
    std::unique_ptr<KxDbEntity> m_copy;
    std::vector<int> m_indices;
    // The source's vertices the changed part holds, in order (empty when
    // it would be the whole copy), and that part.
    std::vector<int> m_partVertices;
    std::unique_ptr<KxDbMline> m_part;
};

}  // namespace kaldo
