// Draws multilines from what they store alone: vertices, segment
// directions, miters and per vertex and element the parameter lists, with
// the look of their style (element colours and linetypes, caps, joints,
// fill). The parameter records are read where the multiline keeps them,
// without taking references. Scratch arrays are kept between multilines so that drawing many of
// them allocates only in the scene.
#pragma once

#include <vector>

#include "kaldo/view/PenResolver.h"
#include "kxdbmline.h"

class KxDbMlineStyle;

namespace kaldo::view {

class MlineRenderer {
public:
    explicit MlineRenderer(PenResolver& pens) : m_pens(pens) {}

    // style may be null: elements then take the multiline's own colour and
    // linetype, and nothing but the elements is drawn.
    void draw(const KxDbMline& mline, const KxDbMlineStyle* style, const LayerLook& layer);

private:
    struct ElementPens {
        int line = 0;        // colour and linetype of the element
        int continuous = 0;  // colour only: caps and joints
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

    // Where an element crosses a vertex's miter.
    const KxGePoint3d& elementPoint(int vertex, int element) const;
    void drawElement(int element, bool closed);
    void drawFill(const DrawColor& color, bool closed);
    void drawJoints(bool closed);
    void drawLineCap(int vertex);
    void drawArcCaps(int vertex, const KxGeVector3d& outward, bool outer, bool inner);
    void drawArcPair(int vertex, int first, int second, const KxGeVector3d& outward);

    PenResolver& m_pens;
    const KxDbMline* m_mline = nullptr;
    int m_elements = 0;
    std::vector<const KxDbMlineVertexParams*> m_params;  // read in place, not shared
    std::vector<KxGePoint3d> m_positions;
    std::vector<KxGeVector3d> m_axes;
    std::vector<KxGeVector3d> m_miters;
    std::vector<KxGePoint3d> m_elementPoints;  // per vertex, per element
    std::vector<ElementPens> m_elementPens;
    Look m_penLook;
};

}  // namespace kaldo::view
