#include "kaldo/view/DrawingRenderer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <cmath>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <numbers>
#include <unordered_map>
#include <unordered_set>

#include "kaldo/db/ArcAngles.h"
#include "kaldo/db/EntityPlane.h"
#include "kaldo/util/TwoThreads.h"
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
    // A reference reached a block while it was being drawn: a block's
    // drawing then depends on where it was first drawn from.
    bool metBlockBeingDrawn = false;
    // Blocks whose drawing asked the budget: it depends on what was left.
    std::unordered_set<KxDbObjectId> askingBlocks;
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

    // The shapes of this scene that draw blocks, by block.
    const std::unordered_map<KxDbObjectId, BlockShape>& blockShapes() const { return m_blockShapes; }

    void draw(const KxDbEntity& entity)
    {
        const LayerLook& layer = m_pens.layer(entity.layerId());
        if (!layer.visible)
            return;
        const auto* record = KxDbUnmodelledEntity::cast(&entity);
        if (record)
            unpackGroups(*record, m_groups);
        m_pens.takeLineWeight(record ? record->packedGroups() : entity.keptGroups(), entity.lineWeight(), layer);
        if (record) {
            if (!drawRecord(*record, record->dxfName(), m_groups, layer) && m_pass.notes)
                m_pass.notes->undrawnKinds.insert(std::string(record->dxfName()));
        } else if (const auto* mline = KxDbMline::cast(&entity))
            drawMline(*mline, layer);
        else if (const auto* line = KxDbLine::cast(&entity))
            drawLine(*line, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* arc = KxDbArc::cast(&entity))
            drawArc(*arc, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* circle = KxDbCircle::cast(&entity))
            drawCircle(*circle, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
        else if (const auto* polyline = KxDbPolyline::cast(&entity))
            drawPolyline(*polyline, m_pens.pen(entity.color(), entity.linetypeId(), layer), m_scene);
    }

private:
    bool drawRecord(const KxDbUnmodelledEntity& record, std::string_view kind,
                    const std::vector<KxDbFileGroup>& groups, const LayerLook& layer)
    {
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
        // A block already shaped here was opened then; nothing changes it
        // while the drawing is drawn.
        const BlockShape* shape = shapedBlock(id);
        if (!shape) {
            const KxDbObjectPtr<KxDbBlockTableRecord> block(id, KxDb::kForRead);
            if (!block)
                return false;
            shape = blockShape(id, *block);
            if (!shape)
                return true;
        }
        if (!m_pass.budget.take(shape->points) || !m_scene.addInstance(shape->shape, place, pen))
            drawBox(shape->bounds, place, pen);
        return true;
    }

    // The block's shape in this scene; null when it has none yet.
    const BlockShape* shapedBlock(KxDbObjectId id) const
    {
        const auto found = m_blockShapes.find(id);
        return found == m_blockShapes.end() ? nullptr : &found->second;
    }

    // The block as a new shape of this scene, its drawing made at the
    // first reference of the picture; null for a reference inside the
    // block itself (noted).
    const BlockShape* blockShape(KxDbObjectId id, const KxDbBlockTableRecord& block)
    {
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
            m_pass.metBlockBeingDrawn = m_pass.metBlockBeingDrawn || !found->second;
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
        const std::size_t asked = m_pass.budget.asked();
        const auto it = block.newIterator();
        for (it->start(); !it->done(); it->step()) {
            KxDbEntity* entity = nullptr;
            if (it->getEntity(entity, KxDb::kForRead) != Kald::eOk)
                continue;
            const KxDbObjectPtr<KxDbEntity> open(entity);
            inner.draw(*open);
        }
        if (m_pass.budget.asked() != asked)
            m_pass.askingBlocks.insert(id);
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
    // The groups of the record being drawn, their room kept for the next.
    std::vector<KxDbFileGroup> m_groups;
};

// Model space of this many entities or more is drawn on two threads.
constexpr std::size_t kEntitiesForTwoThreads = 16384;

// A scene with room for about this many entities: for a typical
// multiline, and an arc, per entity: pages only count once written, and
// growing by copies would write everything twice (and leave the old
// copies' pages to the process).
std::unique_ptr<Scene> sceneFor(std::size_t entities, bool keepTexts)
{
    auto scene = std::make_unique<Scene>();
    scene->keepTexts(keepTexts);
    scene->reserve(entities * 48, entities * 8, entities);
    return scene;
}

// Opens at most count entities from it on for read and hands each to
// draw; asks goOn after every `every` entities, and ends when it says no.
void forEntities(KxDbBlockTableRecordIterator& it, std::size_t count, std::size_t every,
                 const std::function<bool()>& goOn, const std::function<void(const KxDbEntity&)>& draw)
{
    std::size_t sinceAsked = 0;
    for (; count > 0 && !it.done(); it.step(), --count) {
        if (++sinceAsked == every) {
            sinceAsked = 0;
            if (!goOn())
                return;
        }
        KxDbEntity* opened = nullptr;
        if (it.getEntity(opened, KxDb::kForRead) != Kald::eOk)
            continue;
        const KxDbObjectPtr<KxDbEntity> entity(opened);
        draw(*entity);
    }
}

// between as forEntities asks it.
std::function<bool()> goingOnAfter(const std::function<void()>& between)
{
    return [&between] {
        if (between)
            between();
        return true;
    };
}

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
    const std::size_t entities = std::min(std::size_t(space->numEntities()), entitiesPerPiece);
    DrawingPass pass(db, notes, styles, points);
    std::unique_ptr<Scene> scene = sceneFor(entities, keepTexts);
    auto drawer = std::make_unique<EntityDrawer>(pass, *scene);
    std::size_t drawn = 0;
    const auto it = space->newIterator();
    it->start();
    forEntities(*it, std::numeric_limits<std::size_t>::max(), kEntitiesBetween, goingOnAfter(between),
                [&](const KxDbEntity& entity) {
                    if (drawn >= entitiesPerPiece && drawer->betweenEntities()) {
                        drawer.reset();
                        done(*scene);
                        scene = sceneFor(entities, keepTexts);
                        drawer = std::make_unique<EntityDrawer>(pass, *scene);
                        drawn = 0;
                    }
                    drawer->draw(entity);
                    ++drawn;
                });
    drawer.reset();
    if (notes)
        notes->coarse = notes->coarse || pass.budget.spent();
    done(*scene);
}

// Moves it on past the entities that go on an old-form polyline (its
// vertices and end); returns how many it passed.
std::size_t pastOldPolyline(KxDbBlockTableRecordIterator& it)
{
    std::size_t passed = 0;
    for (; !it.done(); it.step(), ++passed) {
        KxDbEntity* opened = nullptr;
        if (it.getEntity(opened, KxDb::kForRead) != Kald::eOk)
            break;
        const KxDbObjectPtr<KxDbEntity> entity(opened);
        const auto* record = KxDbUnmodelledEntity::cast(entity.get());
        if (!record || (record->dxfName() != "VERTEX" && record->dxfName() != "SEQEND"))
            break;
    }
    return passed;
}

// Moves it on by count entities, or to the end, and then past an old-form
// polyline; returns how many entities it passed.
std::size_t skipEntities(KxDbBlockTableRecordIterator& it, std::size_t count)
{
    std::size_t passed = 0;
    for (; !it.done() && passed < count; it.step())
        ++passed;
    return passed + pastOldPolyline(it);
}

// Moves it (started) to the entity halfway through model space, or past
// it to the first that does not go on an old-form polyline; returns how
// many entities lie before it.
std::size_t halfway(KxDbBlockTableRecordIterator& it, std::size_t entities)
{
    it.start();
    return skipEntities(it, entities / 2);
}

// Whether the second half, drawn with a pass of its own, drew all as it
// would have drawing on after the first: no block's drawing depended on
// where it was first drawn from (a block reaching itself, or one both
// drew that asked the budget), and a budget of what the first left
// answers the second's questions as its own did (then taking from
// budget, a copy of the first's, what the second took).
bool drawnAlike(const DrawingPass& first, const DrawingPass& second, PointBudget& budget)
{
    if (first.metBlockBeingDrawn || second.metBlockBeingDrawn)
        return false;
    for (const auto& [block, drawing] : second.blocks)
        if (first.blocks.contains(block)
            && (first.askingBlocks.contains(block) || second.askingBlocks.contains(block)))
            return false;
    return second.budget.answersAlike(budget);
}

// Draws model space, of so many entities, on two threads, each half of
// them into a scene of its own, and joins the halves into the scene one
// thread makes. The second half is drawn with a pass of its own, with
// the whole budget, or none once the first half has spent it: then it
// starts again further on, and the first half draws on to there, so that
// both end about together (or from its start when the first has ended).
// Where it might have drawn otherwise than one thread would (drawnAlike),
// it is drawn again after the first. between, when given, is called after
// every kEntitiesBetween entities of both halves, while both wait.
Scene drawInHalves(const KxDbDatabase& db, const KxDbBlockTableRecord& space, std::size_t entities,
                   RenderNotes* notes, std::size_t points, const TextStyleFonts& styles, bool keepTexts,
                   const std::function<void()>& between)
{
    const std::array iterators{space.newIterator(), space.newIterator()};
    iterators[0]->start();
    const std::size_t boundary = halfway(*iterators[1], entities);
    KxDbBlockTableRecordIterator secondStart = *iterators[1];
    std::size_t secondFirst = boundary;  // the entities before the second half
    DrawingPass firstPass(db, notes, styles, points);
    RenderNotes secondNotes;
    std::unique_ptr<DrawingPass> secondPass;
    std::array<std::unique_ptr<Scene>, 2> scenes;
    std::array<std::unique_ptr<EntityDrawer>, 2> drawers;
    const auto beginSecond = [&](std::size_t budget) {
        drawers[1].reset();
        scenes[1].reset();
        secondNotes = {};
        secondPass = std::make_unique<DrawingPass>(db, &secondNotes, styles, budget);
        secondPass->budget.keepQuestions();
        scenes[1] = sceneFor(entities - secondFirst, keepTexts);
        drawers[1] = std::make_unique<EntityDrawer>(*secondPass, *scenes[1]);
    };
    scenes[0] = sceneFor(entities, keepTexts);
    drawers[0] = std::make_unique<EntityDrawer>(firstPass, *scenes[0]);
    // The shapes of blocks the second half drew, kept when its drawer goes.
    std::unordered_map<KxDbObjectId, BlockShape> secondBlockShapes;

    std::atomic<bool> stop = false;
    std::atomic<bool> firstSpent = false;
    // How many entities the first half had drawn when its budget was
    // found spent.
    std::atomic<std::size_t> drawnWhenSpent = 0;
    // Whether the first half has ended its entities, and whether the
    // second started again further on (secondFirst, secondStart), which
    // the first then draws on to: decided under the lock.
    std::mutex meetingAfterSpending;
    bool firstEnded = false;
    bool secondMoved = false;
    std::exception_ptr stopped;
    std::array<std::exception_ptr, 2> failures;
    // The halves meet after every half of kEntitiesBetween entities each,
    // and between is called there, while neither reads the drawing.
    std::barrier meeting(2, [&]() noexcept {
        if (!between || stop)
            return;
        try {
            between();
        } catch (...) {
            stopped = std::current_exception();
            stop = true;
        }
    });
    // Where the second half starts again with none of the budget: where
    // the first, drawing on from its end, has as many entities left as
    // the second (the entities of both cost alike once the budget is
    // spent), past an old-form polyline.
    const auto moveSecond = [&] {
        const std::size_t left = entities - boundary;
        const std::size_t firstLeft = boundary - std::min(boundary, drawnWhenSpent.load());
        const std::size_t moved = left > firstLeft ? (left - firstLeft) / 2 : 0;
        secondFirst += skipEntities(*iterators[1], moved);
        secondStart = *iterators[1];
    };
    // The first half is drawn on this thread and the second on the other:
    // fonts are made for the thread that uses them and must go before it
    // ends, and the first half's drawer may go on here.
    onTwoThreads(true, [&](int thread) {
        const int half = 1 - thread;
        try {
            bool again = half == 1;
            if (half == 1)
                beginSecond(points);
            std::size_t drawn = 0;
            const auto draw = [&](const KxDbEntity& entity) {
                drawers[std::size_t(half)]->draw(entity);
                ++drawn;
            };
            bool restart = false;
            const auto goOn = [&] {
                if (half == 0 && !firstSpent && firstPass.budget.spent()) {
                    drawnWhenSpent = drawn;
                    firstSpent = true;
                }
                if (between)
                    meeting.arrive_and_wait();
                restart = again && firstSpent;
                return !stop && !restart;
            };
            while (true) {
                restart = false;
                forEntities(*iterators[std::size_t(half)], half == 0 ? boundary : entities, kEntitiesBetween / 2,
                            goOn, draw);
                if (half == 0) {
                    bool drawOn = false;
                    {
                        const std::lock_guard lock(meetingAfterSpending);
                        firstEnded = true;
                        drawOn = secondMoved;
                    }
                    if (drawOn && !stop)
                        forEntities(*iterators[0], secondFirst - boundary, kEntitiesBetween / 2, goOn, draw);
                    break;
                }
                if (!restart || stop)
                    break;
                again = false;
                {
                    const std::lock_guard lock(meetingAfterSpending);
                    *iterators[1] = secondStart;
                    if (!firstEnded) {
                        moveSecond();
                        secondMoved = true;
                    }
                }
                beginSecond(0);
            }
        } catch (...) {
            failures[std::size_t(half)] = std::current_exception();
            // What the first half throws, one thread would have thrown.
            if (half == 0)
                stop = true;
        }
        if (half == 1 && drawers[1]) {
            secondBlockShapes = drawers[1]->blockShapes();
            drawers[1].reset();
            for (auto& [block, drawing] : secondPass->blocks)
                drawing.reset();
        }
        if (between)
            meeting.arrive_and_drop();
    });
    if (stopped)
        std::rethrow_exception(stopped);
    if (failures[0])
        std::rethrow_exception(failures[0]);

    PointBudget budget = firstPass.budget;
    if (!failures[1] && drawers[0]->betweenEntities() && drawnAlike(firstPass, *secondPass, budget)) {
        std::unordered_map<std::uint32_t, std::uint32_t> sameShapes;
        for (const auto& [block, shape] : secondBlockShapes)
            if (const auto found = drawers[0]->blockShapes().find(block); found != drawers[0]->blockShapes().end())
                sameShapes.emplace(shape.shape, found->second.shape);
        drawers[0].reset();
        scenes[0]->append(std::move(*scenes[1]), sameShapes);
        scenes[1].reset();
        if (notes) {
            notes->undrawnKinds.merge(secondNotes.undrawnKinds);
            notes->coarse = notes->coarse || budget.spent();
        }
        return std::move(*scenes[0]);
    }
    scenes[1].reset();
    KxDbBlockTableRecordIterator it = secondStart;
    forEntities(it, entities, kEntitiesBetween, goingOnAfter(between),
                [&](const KxDbEntity& entity) { drawers[0]->draw(entity); });
    drawers[0].reset();
    if (notes)
        notes->coarse = notes->coarse || firstPass.budget.spent();
    return std::move(*scenes[0]);
}

}  // namespace

Scene renderDrawing(const KxDbDatabase& db, RenderNotes* notes, std::size_t points, const TextStyleFonts& styles,
                    bool keepTexts, const std::function<void()>& between)
{
    {
        const KxDbObjectPtr<KxDbBlockTableRecord> space(db.modelSpaceId(), KxDb::kForRead);
        const std::size_t entities = space ? std::size_t(space->numEntities()) : 0;
        if (entities >= kEntitiesForTwoThreads)
            return drawInHalves(db, *space, entities, notes, points, styles, keepTexts, between);
    }
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
