// A scene with its instances (blocks' and texts' copies) placed as plain
// polylines and fills, in the scene's order: what the renderer's tests
// look at, whichever way the scene keeps what repeats.
#pragma once

#include <span>

#include "kaldo/view/Scene.h"

inline kaldo::view::Scene placedScene(const kaldo::view::Scene& scene)
{
    using namespace kaldo::view;
    Scene plain;
    for (std::size_t p = 1; p < scene.patterns().size(); ++p)
        plain.addPattern(scene.patterns()[p]);
    for (const Pen& pen : scene.pens())
        plain.pen(pen);
    scene.visitPolylines([&](int pen, bool closed, std::span<const Point2> points) {
        plain.beginPolyline(pen);
        for (const Point2& p : points)
            plain.addPoint(p);
        plain.endPolyline(closed);
    });
    for (const Arc& arc : scene.arcs())
        plain.addArc(arc);
    scene.visitPolygons([&](const DrawColor& color, std::span<const Point2> corners) {
        plain.beginPolygon();
        for (const Point2& p : corners)
            plain.addPoint(p);
        plain.endPolygon(color);
    });
    return plain;
}
