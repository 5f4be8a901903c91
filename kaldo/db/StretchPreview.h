// A copy of an entity that shows some of its stretch points moved, frame
// after frame, as a grip drag needs: for a multiline each frame costs the
// moved vertices and their neighbours, not the multiline's length (the copy
// is made once and only the vertices the stretch changes are set again).
#pragma once

#include "kxtypes.h"

#include <memory>
#include <vector>

class KxDbEntity;

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

private:
    std::unique_ptr<KxDbEntity> m_source;
    std::unique_ptr<KxDbEntity> m_copy;
    std::vector<int> m_indices;
};

}  // namespace kaldo
