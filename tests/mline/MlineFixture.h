// A host with a new drawing and an editor fed by a script, for running the
// MLINE command and its jig in process; finds the multilines drawn.
#pragma once

#include "ed/EditorFixture.h"

#include "kxdb.h"

#include <gmock/gmock.h>

#include <cmath>

#include <vector>

namespace kdml {

class MlineFixture : public kaldo::EditorFixture {
protected:
    // The multilines of the drawing that are not erased, oldest first.
    std::vector<const KxDbMline*> mlines() const
    {
        std::vector<const KxDbMline*> found;
        for (const KxDbObjectId id : db.objectIds()) {
            const KxDbMline* mline = KxDbMline::cast(db.peekObject(id));
            if (mline && !mline->isErased())
                found.push_back(mline);
        }
        return found;
    }

    std::vector<KxGePoint3d> vertices(const KxDbMline& mline) const
    {
        std::vector<KxGePoint3d> points;
        for (int i = 0; i < mline.numVertices(); ++i)
            points.push_back(mline.vertexAt(i));
        return points;
    }

    KxGePoint3d lastPoint() { return editor.variables().pointValue(L"LASTPOINT"); }
};

// Points compare within 1e-9 in every coordinate.
MATCHER_P3(IsPoint, x, y, z, "")
{
    return std::abs(arg.x - x) < 1e-9 && std::abs(arg.y - y) < 1e-9 && std::abs(arg.z - z) < 1e-9;
}

}  // namespace kdml
