#include "kaldo/view/DrawingRenderer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <numbers>
#include <unordered_map>

#include "kaldo/db/ArcAngles.h"
#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/MlineRenderer.h"
#include "kaldo/view/OldPolylines.h"
#include "kaldo/view/PenResolver.h"
#include "kaldo/view/PlaneArc.h"
#include "kaldo/view/PolylineRenderer.h"
#include "kaldo/util/Utf8.h"
#include "kaldo/view/RecordShapes.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

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

// Where a block's points go: p -> origin + rotation * (scaleX x, scaleY y).
Affine blockPlacement(const Point2& origin, double scaleX, double scaleY, double angle)
{
    const double c = std::cos(angle), s = std::sin(angle);
    return {c * scaleX, -s * scaleY, s * scaleX, c * scaleY, origin.x, origin.y};
}

// A block drawn in its own coordinates, placed at each of its references.
struct BlockDrawing {
    Scene scene;
    Bounds bounds;
};

// What drawing one picture shares among the blocks it enters: the budget,
// and each block's drawing, made at its first reference (an empty slot
// while the block is being drawn).
struct DrawingPass {
    DrawingPass(const KxDbDatabase& db, RenderNotes* notes, const TextStyleFonts& styles,
                std::size_t points = PointBudget::kPicture)
        : db(db), notes(notes), styles(styles), budget(points)
    {
    }

    const KxDbDatabase& db;
    RenderNotes* notes;
    const TextStyleFonts& styles;
    PointBudget budget;
    std::unordered_map<KxDbObjectId, std::unique_ptr<BlockDrawing>> blocks;

    // The block of a name, looked up once for each name.
    KxDbObjectId blockId(const std::string& name)
    {
        if (const auto found = blockIds.find(name); found != blockIds.end())
            return found->second;
        KxDbObjectId id;
        KxDbBlockTable* opened = nullptr;
        if (db.getBlockTable(opened, KxDb::kForRead) == Kald::eOk) {
            const KxDbObjectPtr<KxDbBlockTable> table(opened);
            if (table->getAt(wideFromUtf8(name).c_str(), id) != Kald::eOk)
                id = {};
        }
        return blockIds.emplace(name, id).first->second;
    }
    std::unordered_map<std::string, KxDbObjectId> blockIds;
};

// A block as a shape of one scene: what placing it costs and the box
// drawn instead when the budget cannot pay.
struct BlockShape {
    std::uint32_t shape = 0;
    std::size_t points = 0;
    Bounds bounds;
};

// Draws entities one by one into a scene.
class EntityDrawer {
public:
    EntityDrawer(DrawingPass& pass, Scene& scene, int depth = 0)
        : m_pass(pass),
          m_scene(scene),
          m_pens(pass.db, scene),
          m_mlines(m_pens),
          m_text(scene, pass.budget, pass.styles),
          m_depth(depth)
    {
    }

    // Whether the entities drawn so far are whole (no old-form polyline
    // waits for more vertices).
    bool betweenEntities() const { return !m_oldPolyline.open(); }

    void draw(const KxDbEntity& entity)
    {
        const LayerLook& layer = m_pens.layer(entity.layerId());
        if (!layer.visible)
            return;
        m_pens.takeLineWeight(entity, layer);
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
                m_pass.notes->undrawnKinds.insert(std::string(record->dxfName()));
    }

private:
    bool drawRecord(const KxDbUnmodelledEntity& record, const LayerLook& layer)
    {
        const std::string_view kind = record.dxfName();
        const auto& groups = record.groups();
        const int pen = m_pens.pen(record.color(), record.linetypeId(), layer);
        if (kind == "TEXT")
            return drawTextRecord(groups, pen, m_text);
        if (kind == "ATTRIB")
            return drawAttributeRecord(groups, false, pen, m_text);
        // A definition of an attribute shows in the drawing of its own
        // space, not in the references of the block it belongs to.
        if (kind == "ATTDEF")
            return m_depth > 0 || drawAttributeRecord(groups, true, pen, m_text);
        if (kind == "MTEXT")
            return drawMtextRecord(groups, pen, m_text);
        if (kind == "SOLID" || kind == "TRACE")
            return drawSolidRecord(groups, m_scene.pens()[std::size_t(pen)].color, m_scene);
        if (kind == "3DFACE")
            return drawFaceRecord(groups, pen, m_scene);
        if (kind == "ELLIPSE")
            return drawEllipseRecord(groups, pen, m_scene);
        if (kind == "SPLINE")
            return drawSplineRecord(groups, pen, m_scene);
        if (kind == "HATCH")
            return drawHatchRecord(groups, pen, m_scene, m_pass.budget);
        if (kind == "LEADER")
            return drawLeaderRecord(groups, pen, m_scene);
        if (kind == "MESH")
            return drawMeshRecord(groups, pen, m_scene);
        if (kind == "WIPEOUT" || kind == "IMAGE")
            return drawFrameRecord(groups, pen, m_scene);
        if (kind == "POINT") {
            // A dot: a line of no length, which the painters show as a pixel.
            const Point2 at{groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)};
            m_scene.addLine(at, at, pen);
            return true;
        }
        if (kind == "INSERT")
            return drawBlock(groups,
                             blockPlacement({groupNumber(groups, 10, 0), groupNumber(groups, 20, 0)},
                                            groupNumber(groups, 41, 1), groupNumber(groups, 42, 1),
                                            groupNumber(groups, 50, 0) * std::numbers::pi / 180),
                             pen);
        if (kind == "DIMENSION")
            return drawBlock(groups, dimensionPlacement(groups), pen);
        if (kind == "POLYLINE") {
            m_oldPolyline.begin(groups, pen);
            return true;
        }
        if (kind == "VERTEX")
            return m_oldPolyline.addVertex(groups);
        if (kind == "SEQEND")
            m_oldPolyline.end(m_scene);
        // What the file keeps beside its entities draws nothing by itself.
        return kind == "SEQEND";
    }

    // A dimension's block holds its drawing where it is; the block moves
    // by the dimension's insertion point (12-32, in the dimension's plane)
    // when it has one.
    static Affine dimensionPlacement(const std::vector<KxDbFileGroup>& groups)
    {
        const EntityPlane plane({groupNumber(groups, 210, 0), groupNumber(groups, 220, 0), groupNumber(groups, 230, 1)});
        const KxGePoint3d insert = plane.toWorld(
            KxGePoint3d(groupNumber(groups, 12, 0), groupNumber(groups, 22, 0), groupNumber(groups, 32, 0)));
        return {1, 0, 0, 1, insert.x, insert.y};
    }

    // The block named by group 2, placed; as the box of its drawing when
    // the budget cannot pay for a copy, and without the references that
    // lead back into a block being drawn.
    bool drawBlock(const std::vector<KxDbFileGroup>& groups, const Affine& place, int pen)
    {
        const KxDbFileGroup* name = findGroup(groups, 2);
        if (!name || m_depth >= kDeepestBlock)
            return false;
        const KxDbObjectId id = m_pass.blockId(name->value);
        if (id.isNull())
            return false;
        const KxDbObjectPtr<KxDbBlockTableRecord> block(id, KxDb::kForRead);
        if (!block)
            return false;
        const BlockShape* shape = blockShape(id, *block);
        if (!shape)
            return true;
        if (!m_pass.budget.take(shape->points) || !m_scene.addInstance(shape->shape, place, pen))
            drawBox(shape->bounds, place, pen);
        return true;
    }

    // The block as a shape of this scene, its drawing made at the first
    // reference of the picture; null for a reference inside the block
    // itself (noted).
    const BlockShape* blockShape(KxDbObjectId id, const KxDbBlockTableRecord& block)
    {
        if (const auto found = m_blockShapes.find(id); found != m_blockShapes.end())
            return &found->second;
        const BlockDrawing* drawing = blockDrawing(id, block);
        if (!drawing)
            return nullptr;
        const std::uint32_t part = m_scene.addPart(drawing->scene);
        const ShapeRun run{part, 0};
        const std::uint32_t shape = m_scene.addShape({&run, 1}, drawing->bounds, false);
        return &m_blockShapes.emplace(id, BlockShape{shape, m_scene.shapePoints(shape), drawing->bounds})
                    .first->second;
    }

    // The block's drawing, made now at its first reference; null for a
    // reference inside the block itself (noted).
    const BlockDrawing* blockDrawing(KxDbObjectId id, const KxDbBlockTableRecord& block)
    {
        if (const auto found = m_pass.blocks.find(id); found != m_pass.blocks.end()) {
            const wchar_t* name = nullptr;
            if (!found->second && m_pass.notes && block.getName(name) == Kald::eOk)
                m_pass.notes->selfReachingBlocks.insert(utf8FromWide(name));
            return found->second.get();
        }
        // References to the slot stay valid while the blocks inside add theirs.
        std::unique_ptr<BlockDrawing>& slot = m_pass.blocks[id];
        auto drawing = std::make_unique<BlockDrawing>();
        drawing->scene.keepTexts(m_scene.keepsTexts());
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
        slot = std::move(drawing);
        return slot.get();
    }

    // The placed corners of a block's extents, as a closed polyline.
    void drawBox(const Bounds& bounds, const Affine& place, int pen)
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
    TextShapes m_text;
    std::unordered_map<KxDbObjectId, BlockShape> m_blockShapes;
    int m_depth;
    // The old-form polyline whose vertices are being read.
    OldPolyline m_oldPolyline;
};

// Draws model space into scenes of at most entitiesPerPiece entities
// (more to finish an old-form polyline), calling done with each.
void drawModelSpace(const KxDbDatabase& db, std::size_t entitiesPerPiece, const std::function<void(Scene&)>& done,
                    RenderNotes* notes, std::size_t points, const TextStyleFonts& styles, bool keepTexts,
                    const std::function<void()>& between = {})
{
    KxDbObjectPtr<KxDbBlockTableRecord> space(db.modelSpaceId(), KxDb::kForRead);
    if (!space) {
        Scene scene;
        scene.keepTexts(keepTexts);
        done(scene);
        return;
    }
    // Room for a typical multiline, and an arc, per entity: pages only
    // count once written, and growing by copies would write everything
    // twice (and leave the old copies' pages to the process).
    const std::size_t entities = std::min(std::size_t(space->numEntities()), entitiesPerPiece);
    DrawingPass pass(db, notes, styles, points);
    const auto newPiece = [&] {
        auto scene = std::make_unique<Scene>();
        scene->keepTexts(keepTexts);
        scene->reserve(entities * 48, entities * 8, entities);
        return scene;
    };
    std::unique_ptr<Scene> scene = newPiece();
    auto drawer = std::make_unique<EntityDrawer>(pass, *scene);
    std::size_t drawn = 0;
    std::size_t sinceBetween = 0;
    const auto it = space->newIterator();
    for (it->start(); !it->done(); it->step()) {
        if (between && ++sinceBetween == kEntitiesBetween) {
            sinceBetween = 0;
            between();
        }
        KxDbEntity* opened = nullptr;
        if (it->getEntity(opened, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbEntity> entity(opened);
        if (drawn >= entitiesPerPiece && drawer->betweenEntities()) {
            drawer.reset();
            done(*scene);
            scene.reset();
            scene = newPiece();
            drawer = std::make_unique<EntityDrawer>(pass, *scene);
            drawn = 0;
        }
        drawer->draw(*entity);
        ++drawn;
    }
    drawer.reset();
    if (notes)
        notes->coarse = notes->coarse || pass.budget.spent();
    done(*scene);
}

}  // namespace

Scene renderDrawing(const KxDbDatabase& db, RenderNotes* notes, std::size_t points, const TextStyleFonts& styles,
                    bool keepTexts, const std::function<void()>& between)
{
    Scene drawing;
    drawModelSpace(db, std::numeric_limits<std::size_t>::max(), [&](Scene& scene) { drawing = std::move(scene); },
                   notes, points, styles, keepTexts, between);
    return drawing;
}

void renderDrawingInPieces(const KxDbDatabase& db, std::size_t entitiesPerPiece,
                           const std::function<void(const Scene&)>& piece, RenderNotes* notes, std::size_t points,
                           const TextStyleFonts& styles, bool keepTexts)
{
    drawModelSpace(db, entitiesPerPiece, piece, notes, points, styles, keepTexts);
}

Scene renderEntities(const KxDbDatabase& db, const std::vector<const KxDbEntity*>& entities)
{
    Scene scene;
    const TextStyleFonts styles;
    DrawingPass pass(db, nullptr, styles);
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
            list += (list.empty() ? L"" : L", ") + wideFromUtf8(name);
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
