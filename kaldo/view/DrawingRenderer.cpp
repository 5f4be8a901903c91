#include "kaldo/view/DrawingRenderer.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <unordered_map>

#include "kaldo/db/ArcAngles.h"
#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/MlineRenderer.h"
#include "kaldo/view/PenResolver.h"
#include "kaldo/view/PlaneArc.h"
#include "kaldo/view/PolylineRenderer.h"
#include "kaldo/view/RecordShapes.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"
#include "kxstring.h"

namespace kaldo::view {

namespace {

void drawLine(const KxDbLine& line, int pen, Scene& scene)
{
    scene.addLine({line.startPoint().x, line.startPoint().y}, {line.endPoint().x, line.endPoint().y}, pen);
}

void drawArc(const KxDbArc& arc, int pen, Scene& scene)
{
    addPlaneArc(scene, EntityPlane(arc.normal()), arc.center(), arc.radius(), arc.startAngle(),
                arcSweep(arc.startAngle(), arc.endAngle()), pen);
}

void drawCircle(const KxDbCircle& circle, int pen, Scene& scene)
{
    addPlaneArc(scene, EntityPlane(circle.normal()), circle.center(), circle.radius(), 0, 2 * std::numbers::pi, pen);
}

// Styles stay open for read while a drawing is rendered: many multilines
// share a few styles.
using OpenStyles = std::unordered_map<KxDbObjectId, KxDbObjectPtr<KxDbMlineStyle>>;

// Blocks inside blocks are drawn this deep at most (a block that holds
// itself would go on for ever).
constexpr int kDeepestBlock = 8;
constexpr int kBlockArcSegments = 64;

// Where a block's points go: p -> origin + rotation * (scaleX x, scaleY y).
struct Placement {
    Point2 origin;
    double scaleX = 1, scaleY = 1, angle = 0;
    Point2 operator()(const Point2& p) const
    {
        const double x = p.x * scaleX, y = p.y * scaleY;
        const double c = std::cos(angle), s = std::sin(angle);
        return {origin.x + x * c - y * s, origin.y + x * s + y * c};
    }
};

// Adds a block's scene to scene, placed; arcs become polylines, as a
// scaled block may turn them into ellipses.
void appendPlaced(const Scene& block, const Placement& place, Scene& scene)
{
    std::vector<int> patterns(block.patterns().size(), 0);
    for (std::size_t p = 1; p < patterns.size(); ++p)
        patterns[p] = scene.addPattern(block.patterns()[p]);
    std::vector<int> pens;
    for (const Pen& pen : block.pens())
        pens.push_back(scene.pen({pen.color, patterns[std::size_t(pen.pattern)]}));
    for (const Polyline& polyline : block.polylines()) {
        scene.beginPolyline(pens[std::size_t(polyline.pen)]);
        for (std::uint32_t i = 0; i < polyline.count; ++i)
            scene.addPoint(place(block.points()[polyline.first + i]));
        scene.endPolyline(polyline.closed);
    }
    for (const Arc& arc : block.arcs()) {
        const int steps = std::max(2, int(std::ceil(kBlockArcSegments * std::abs(arc.sweep) / (2 * std::numbers::pi))));
        scene.beginPolyline(pens[std::size_t(arc.pen)]);
        for (int i = 0; i <= steps; ++i) {
            const double a = arc.start + arc.sweep * i / steps;
            scene.addPoint(place({arc.centre.x + arc.radius * std::cos(a), arc.centre.y + arc.radius * std::sin(a)}));
        }
        scene.endPolyline();
    }
    for (const Polygon& polygon : block.polygons()) {
        scene.beginPolygon();
        for (std::uint32_t i = 0; i < polygon.count; ++i)
            scene.addPoint(place(block.points()[polygon.first + i]));
        scene.endPolygon(polygon.color);
    }
}

// Draws entities one by one into a scene.
class EntityDrawer {
public:
    EntityDrawer(const KxDbDatabase& db, Scene& scene, std::set<std::string>* undrawn = nullptr, int depth = 0)
        : m_db(db), m_scene(scene), m_pens(db, scene), m_mlines(m_pens), m_undrawn(undrawn), m_depth(depth)
    {
    }

    void draw(const KxDbEntity& entity)
    {
        const LayerLook& layer = m_pens.layer(entity.layerId());
        if (!layer.visible)
            return;
        if (const auto* mline = KxDbMline::cast(&entity))
            drawMline(*mline, layer);
        else if (const auto* line = KxDbLine::cast(&entity))
            drawLine(*line, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* arc = KxDbArc::cast(&entity))
            drawArc(*arc, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* circle = KxDbCircle::cast(&entity))
            drawCircle(*circle, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* polyline = KxDbPolyline::cast(&entity))
            drawPolyline(*polyline, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* record = KxDbUnmodelledEntity::cast(&entity))
            if (!drawRecord(*record, layer) && m_undrawn)
                m_undrawn->insert(record->dxfName());
    }

private:
    bool drawRecord(const KxDbUnmodelledEntity& record, const LayerLook& layer)
    {
        const std::string& kind = record.dxfName();
        const auto& groups = record.groups();
        const int pen = m_pens.pen(record.color(), record.linetypeId(), layer);
        if (kind == "TEXT" || kind == "ATTRIB")
            return drawTextRecord(groups, pen, m_scene);
        if (kind == "MTEXT")
            return drawMtextRecord(groups, pen, m_scene);
        if (kind == "SOLID")
            return drawSolidRecord(groups, m_scene.pens()[std::size_t(pen)].color, m_scene);
        if (kind == "ELLIPSE")
            return drawEllipseRecord(groups, pen, m_scene);
        if (kind == "SPLINE")
            return drawSplineRecord(groups, pen, m_scene);
        if (kind == "HATCH")
            return drawHatchRecord(groups, m_scene.pens()[std::size_t(pen)].color, m_scene);
        if (kind == "POINT") {
            // A dot: a line of no length, which the painters show as a pixel.
            const Point2 at{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
            m_scene.addLine(at, at, pen);
            return true;
        }
        if (kind == "INSERT")
            return drawBlock(groups, {{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)},
                                      groupNumber(groups, 41, 1), groupNumber(groups, 42, 1),
                                      groupNumber(groups, 50, 0) * std::numbers::pi / 180});
        if (kind == "DIMENSION")
            return drawBlock(groups, {});
        if (kind == "POLYLINE" || kind == "VERTEX")
            return collectOldPolyline(kind, groups, pen);
        if (kind == "SEQEND" && m_oldPolyline) {
            m_oldPolyline->setVertices(std::move(m_oldVertices));
            drawPolyline(*m_oldPolyline, m_oldPolylinePen, m_scene);
            m_oldPolyline.reset();
            m_oldVertices.clear();
        }
        // What the file keeps beside its entities draws nothing by itself.
        return kind == "SEQEND" || kind == "ATTDEF";
    }

    // A polyline of the old form is its POLYLINE record, a VERTEX record
    // per vertex and SEQEND, which draws it. Only plane polylines are
    // drawn (not 3D polylines or meshes, flags 8, 16 and 64).
    bool collectOldPolyline(const std::string& kind, const std::vector<KxDbFileGroup>& groups, int pen)
    {
        if (kind == "VERTEX") {
            if (!m_oldPolyline)
                return false;
            m_oldVertices.push_back({groupNumber(groups, 10, 0), groupNumber(groups, 20, 0), groupNumber(groups, 40, 0),
                                     groupNumber(groups, 41, 0), groupNumber(groups, 42, 0)});
            return true;
        }
        const auto flags = static_cast<long>(groupNumber(groups, 70, 0));
        m_oldVertices.clear();
        m_oldPolyline.reset();
        if (flags & (8 | 16 | 64))
            return false;
        m_oldPolyline = std::make_unique<KxDbPolyline>();
        m_oldPolyline->setClosed(flags & 1);
        m_oldPolyline->setElevation(groupNumber(groups, 30, 0));
        m_oldPolyline->setConstantWidth(groupNumber(groups, 40, 0));
        m_oldPolyline->setNormal(
            {groupNumber(groups, 210, 0), groupNumber(groups, 220, 0), groupNumber(groups, 230, 1)});
        m_oldPolylinePen = pen;
        return true;
    }

    // The block named by group 2, placed.
    bool drawBlock(const std::vector<KxDbFileGroup>& groups, const Placement& place)
    {
        const KxDbFileGroup* name = findGroup(groups, 2);
        if (!name || m_depth >= kDeepestBlock)
            return false;
        KxDbBlockTable* opened = nullptr;
        if (m_db.getBlockTable(opened, KxDb::kForRead) != Kald::eOk)
            return false;
        const KxDbObjectPtr<KxDbBlockTable> table(opened);
        KxDbObjectId id;
        if (table->getAt(kxutFromMultiByte(name->value).c_str(), id) != Kald::eOk)
            return false;
        const KxDbObjectPtr<KxDbBlockTableRecord> block(id, KxDb::kForRead);
        if (!block)
            return false;
        Scene drawn;
        EntityDrawer inner(m_db, drawn, m_undrawn, m_depth + 1);
        const auto it = block->newIterator();
        for (it->start(); !it->done(); it->step()) {
            KxDbEntity* entity = nullptr;
            if (it->getEntity(entity, KxDb::kForRead) != Kald::eOk)
                continue;
            const KxDbObjectPtr<KxDbEntity> open(entity);
            inner.draw(*open);
        }
        appendPlaced(drawn, place, m_scene);
        return true;
    }

    void drawMline(const KxDbMline& mline, const LayerLook& layer)
    {
        const KxDbMlineStyle* style = nullptr;
        if (!mline.style().isNull()) {
            auto found = m_styles.find(mline.style());
            if (found == m_styles.end())
                found =
                    m_styles.emplace(mline.style(), KxDbObjectPtr<KxDbMlineStyle>(mline.style(), KxDb::kForRead)).first;
            style = found->second.get();
        }
        m_mlines.draw(mline, style, layer);
    }

    const KxDbDatabase& m_db;
    Scene& m_scene;
    PenResolver m_pens;
    MlineRenderer m_mlines;
    OpenStyles m_styles;
    std::set<std::string>* m_undrawn;
    int m_depth;
    // The old-form polyline whose vertices are being read.
    std::unique_ptr<KxDbPolyline> m_oldPolyline;
    std::vector<KxDbPolyline::Vertex> m_oldVertices;
    int m_oldPolylinePen = 0;
};

}  // namespace

Scene renderDrawing(const KxDbDatabase& db, std::set<std::string>* undrawn)
{
    Scene scene;
    KxDbObjectPtr<KxDbBlockTableRecord> space(db.modelSpaceId(), KxDb::kForRead);
    if (!space)
        return scene;
    // Room for a typical multiline per entity: pages only count once
    // written, and growing by copies would write everything twice.
    const std::size_t entities = std::size_t(space->numEntities());
    scene.reserve(entities * 48, entities * 8);
    EntityDrawer drawer(db, scene, undrawn);
    const auto it = space->newIterator();
    for (it->start(); !it->done(); it->step()) {
        KxDbEntity* opened = nullptr;
        if (it->getEntity(opened, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbEntity> entity(opened);
        drawer.draw(*entity);
    }
    return scene;
}

Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities)
{
    Scene scene;
    EntityDrawer drawer(db, scene);
    for (const KxDbEntity* entity : entities) {
        if (entity)
            drawer.draw(*entity);
    }
    return scene;
}

}  // namespace kaldo::view
