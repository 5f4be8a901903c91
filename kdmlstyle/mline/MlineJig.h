// The point loop of MLINE: a drag on the host's jig that builds a new
// multiline vertex by vertex while its last segment follows the cursor,
// with Undo and Close, and hands the result to the drawing.
#pragma once

#include "kxdb.h"
#include "kxedjig.h"

#include <memory>
#include <string>

namespace kdml {

class KaldMLineJig : public KxEdJig {
public:
    KaldMLineJig();
    ~KaldMLineJig() override;

    // Gives the new multiline the drawing's entity defaults, the style of
    // that name (when the drawing has it), the start point (world
    // coordinates) as its first vertex, the scale, the justification
    // (0 top, 1 zero, 2 bottom) and the normal UCSXDIR x UCSYDIR.
    void setUp(KxDbDatabase* database, const KxGePoint3d& startPoint, short justification, double scale,
               const std::wstring& styleName);
    // Reads points until Enter, cancel or Close. The multiline goes into the
    // current space when it has a segment and is deleted otherwise. Returns
    // the last drag result, kNull after Close.
    int run();

    DragStatus sampler() override;
    bool update() override;
    KxDbEntity* entity() const override;

private:
    void setStyle(KxDbDatabase& database, const std::wstring& styleName);
    void setNormalFromUcs();
    // Gives up the last vertex (the rubber band, or a fixed one on Undo).
    void removeLastVertex();
    // Writes lastPoint_ to LASTPOINT in user coordinates.
    void writeLastPoint() const;
    // Appends the multiline to the current space, or deletes it when it has
    // no segment (or the drawing refuses it).
    void finish();

    // Owned until the drawing takes it over.
    std::unique_ptr<KxDbMline> mline_;
    KxGePoint3d cursorPoint_;
    KxGePoint3d lastPoint_;
};

}  // namespace kdml
