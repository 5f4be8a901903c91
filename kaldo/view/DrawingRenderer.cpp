#include "kaldo/view/DrawingRenderer.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
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

// Blocks inside blocks are drawn this deep at most.
constexpr int kDeepestBlock = 8;
constexpr int kBlockArcSegments = 64;

// Where a block's points go: p -> origin + rotation * (scaleX x, scaleY y).
class Placement {
public:
    Placement() = default;
    Placement(const Point2& origin, double scaleX, double scaleY, double angle)
        : m_origin(origin), m_scaleX(scaleX), m_scaleY(scaleY), m_cos(std::cos(angle)), m_sin(std::sin(angle))
    {
    }
    Point2 operator()(const Point2& p) const
    {
        const double x = p.x * m_scaleX, y = p.y * m_scaleY;
        return {m_origin.x + x * m_cos - y * m_sin, m_origin.y + x * m_sin + y * m_cos};
    }

private:
    Point2 m_origin;
    double m_scaleX = 1, m_scaleY = 1, m_cos = 1, m_sin = 0;
};

// Points of the polyline that stands for a block's arc when it is placed.
int placedArcSteps(const Arc& arc)
{
    return std::max(2, int(std::ceil(kBlockArcSegments * std::abs(arc.sweep) / (2 * std::numbers::pi))));
}

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
        const int steps = placedArcSteps(arc);
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

// A block drawn in its own coordinates, placed at each of its references.
struct BlockDrawing {
    Scene scene;
    Bounds bounds;
    std::size_t placedPoints = 0;  // what placing it adds to a scene
};

// What drawing one picture shares among the blocks it enters: the budget,
// and each block's drawing, made at its first reference (an empty slot
// while the block is being drawn).
struct DrawingPass {
    DrawingPass(const KxDbDatabase& db, RenderNotes* notes, std::size_t points = PointBudget::kPicture)
        : db(db), notes(notes), budget(points)
    {
    }

    const KxDbDatabase& db;
    RenderNotes* notes;
    PointBudget budget;
    std::unordered_map<KxDbObjectId, std::unique_ptr<BlockDrawing>> blocks;
};

// Draws entities one by one into a scene.
class EntityDrawer {
public:
    EntityDrawer(DrawingPass& pass, Scene& scene, int depth = 0)
        : m_pass(pass), m_scene(scene), m_pens(pass.db, scene), m_mlines(m_pens), m_depth(depth)
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
            if (!drawRecord(*record, layer) && m_pass.notes)
                m_pass.notes->undrawnKinds.insert(record->dxfName());
    }

private:
    bool drawRecord(const KxDbUnmodelledEntity& record, const LayerLook& layer)
    {
        const std::string& kind = record.dxfName();
        const auto& groups = record.groups();
        const int pen = m_pens.pen(record.color(), record.linetypeId(), layer);
        if (kind == "TEXT" || kind == "ATTRIB")
            return drawTextRecord(groups, pen, m_scene, m_pass.budget);
        if (kind == "MTEXT")
            return drawMtextRecord(groups, pen, m_scene, m_pass.budget);
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
            return drawBlock(groups,
                             {{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)}, groupNumber(groups, 41, 1),
                              groupNumber(groups, 42, 1), groupNumber(groups, 50, 0) * std::numbers::pi / 180},
                             pen);
        if (kind == "DIMENSION")
            return drawBlock(groups, {}, pen);
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
        const int flags = groupInteger(groups, 70, 0);
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

    // The block named by group 2, placed; as the box of its drawing when
    // the budget cannot pay for a copy, and without the references that
    // lead back into a block being drawn.
    bool drawBlock(const std::vector<KxDbFileGroup>& groups, const Placement& place, int pen)
    {
        const KxDbFileGroup* name = findGroup(groups, 2);
        if (!name || m_depth >= kDeepestBlock)
            return false;
        KxDbBlockTable* opened = nullptr;
        if (m_pass.db.getBlockTable(opened, KxDb::kForRead) != Kald::eOk)
            return false;
        const KxDbObjectPtr<KxDbBlockTable> table(opened);
        KxDbObjectId id;
        if (table->getAt(kxutFromMultiByte(name->value).c_str(), id) != Kald::eOk)
            return false;
        const KxDbObjectPtr<KxDbBlockTableRecord> block(id, KxDb::kForRead);
        if (!block)
            return false;
        const BlockDrawing* drawing = blockDrawing(id, *block);
        if (!drawing)
            return true;
        if (m_pass.budget.take(drawing->placedPoints))
            appendPlaced(drawing->scene, place, m_scene);
        else
            drawBox(drawing->bounds, place, pen);
        return true;
    }

    // The block's drawing, made now at its first reference; null for a
    // reference inside the block itself (noted).
    const BlockDrawing* blockDrawing(KxDbObjectId id, const KxDbBlockTableRecord& block)
    {
        if (const auto found = m_pass.blocks.find(id); found != m_pass.blocks.end()) {
            const wchar_t* name = nullptr;
            if (!found->second && m_pass.notes && block.getName(name) == Kald::eOk)
                m_pass.notes->selfReachingBlocks.insert(kxutToMultiByte(name));
            return found->second.get();
        }
        // References to the slot stay valid while the blocks inside add theirs.
        std::unique_ptr<BlockDrawing>& slot = m_pass.blocks[id];
        auto drawing = std::make_unique<BlockDrawing>();
        EntityDrawer inner(m_pass, drawing->scene, m_depth + 1);
        const auto it = block.newIterator();
        for (it->start(); !it->done(); it->step()) {
            KxDbEntity* entity = nullptr;
            if (it->getEntity(entity, KxDb::kForRead) != Kald::eOk)
                continue;
            const KxDbObjectPtr<KxDbEntity> open(entity);
            inner.draw(*open);
        }
        drawing->bounds = drawing->scene.bounds();
        drawing->placedPoints = drawing->scene.points().size();
        for (const Arc& arc : drawing->scene.arcs())
            drawing->placedPoints += std::size_t(placedArcSteps(arc)) + 1;
        slot = std::move(drawing);
        return slot.get();
    }

    // The placed corners of a block's extents, as a closed polyline.
    void drawBox(const Bounds& bounds, const Placement& place, int pen)
    {
        if (bounds.empty)
            return;
        m_scene.beginPolyline(pen);
        for (const Point2& corner : {Point2{bounds.minX, bounds.minY}, Point2{bounds.maxX, bounds.minY},
                                     Point2{bounds.maxX, bounds.maxY}, Point2{bounds.minX, bounds.maxY}})
            m_scene.addPoint(place(corner));
        m_scene.endPolyline(true);
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

    DrawingPass& m_pass;
    Scene& m_scene;
    PenResolver m_pens;
    MlineRenderer m_mlines;
    OpenStyles m_styles;
    int m_depth;
    // The old-form polyline whose vertices are being read.
    std::unique_ptr<KxDbPolyline> m_oldPolyline;
    std::vector<KxDbPolyline::Vertex> m_oldVertices;
    int m_oldPolylinePen = 0;
};

}  // namespace

Scene renderDrawing(const KxDbDatabase& db, RenderNotes* notes, std::size_t points)
{
    Scene scene;
    KxDbObjectPtr<KxDbBlockTableRecord> space(db.modelSpaceId(), KxDb::kForRead);
    if (!space)
        return scene;
    // Room for a typical multiline per entity: pages only count once
    // written, and growing by copies would write everything twice.
    const std::size_t entities = std::size_t(space->numEntities());
    scene.reserve(entities * 48, entities * 8);
    DrawingPass pass(db, notes, points);
    EntityDrawer drawer(pass, scene);
    const auto it = space->newIterator();
    for (it->start(); !it->done(); it->step()) {
        KxDbEntity* opened = nullptr;
        if (it->getEntity(opened, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbEntity> entity(opened);
        drawer.draw(*entity);
    }
    if (notes)
        notes->coarse = notes->coarse || pass.budget.spent();
    return scene;
}

Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities)
{
    Scene scene;
    DrawingPass pass(db, nullptr);
    EntityDrawer drawer(pass, scene);
    for (const KxDbEntity* entity : entities) {
        if (entity)
            drawer.draw(*entity);
    }
    return scene;
}

std::wstring describeNotes(const RenderNotes& notes, const std::wstring& picture)
{
    const auto listed = [](const std::set<std::string>& names) {
        std::wstring list;
        for (const std::string& name : names)
            list += (list.empty() ? L"" : L", ") + kxutFromMultiByte(name);
        return list;
    };
    std::wstring text;
    if (!notes.undrawnKinds.empty())
        text += L"Not drawn in " + picture + L": " + listed(notes.undrawnKinds) + L".\n";
    if (!notes.selfReachingBlocks.empty())
        text += L"Blocks that contain themselves, drawn once in " + picture + L": " + listed(notes.selfReachingBlocks)
            + L".\n";
    if (notes.coarse)
        text += L"Drawn as boxes in " + picture + L" beyond " + std::to_wstring(PointBudget::kPicture)
            + L" points: copies of blocks and lines of text.\n";
    return text;
}

std::string failureReason(const std::exception_ptr& failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::bad_alloc&) {
        return "the memory ran out";
    } catch (const std::exception& e) {
        return e.what();
    } catch (...) {
        return "an unknown error";
    }
}

}  // namespace kaldo::view
