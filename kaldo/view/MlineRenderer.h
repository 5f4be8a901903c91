// Draws multilines into a scene from their pieces (see MlinePieces) with
// the look of their style: element colours and linetypes; caps and joints
// in the element colours, continuous. A run that goes on across a vertex
// continues the polyline of the run before it when its pen is continuous;
// dashed runs are polylines of their own, so that the pattern starts anew
// on each segment, as on the lines EXPLODE makes of them. Scratch arrays
// are kept between multilines so that drawing many of them allocates only
// in the scene.
#pragma once

#include <vector>

#include "kaldo/view/MlinePieces.h"
#include "kaldo/view/PenResolver.h"

class KxDbMlineStyle;

namespace kaldo::view {

class MlineRenderer : private MlinePieceSink {
public:
    explicit MlineRenderer(PenResolver& pens) : m_pens(pens) {}

    // style may be null: elements then take the multiline's own colour and
    // linetype, and nothing but the elements is drawn.
    void draw(const KxDbMline& mline, const KxDbMlineStyle* style, const LayerLook& layer);

private:
    struct ElementPens {
        int line = 0;        // colour and linetype of the element
        int continuous = 0;  // colour only: caps and joints
        bool dashed = false;
    };
    // What the element pens were worked out from: the next multiline of
    // the same look takes them as they are.
    struct Look {
        const KxDbMlineStyle* style = nullptr;
        const LayerLook* layer = nullptr;
        KxCmColor color;
        KxDbObjectId linetype;
        int elements = -1;
        friend bool operator==(const Look&, const Look&) = default;
    };

    void fill(const MlineFill& fill) override;
    void run(const MlineRun& run) override;
    void capLine(const MlineCapLine& line) override;
    void capArc(const MlineCapArc& arc) override;
    void endOpenPolyline(bool closed);
    void choosePens(const KxDbMline& mline, const KxDbMlineStyle* style, const LayerLook& layer);

    PenResolver& m_pens;
    MlinePieces m_pieces;
    const KxDbMline* m_mline = nullptr;
    DrawColor m_fillColor;
    bool m_polylineOpen = false;
    std::vector<ElementPens> m_elementPens;
    Look m_penLook;
};

}  // namespace kaldo::view
