#include "kaldo/app/MlineExplosion.h"

#include <charconv>
#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "kaldo/app/SortTables.h"
#include "kaldo/db/EntityPlane.h"
#include "kaldo/util/Utf8.h"
#include "kaldo/view/MlinePieces.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

namespace kaldo {

namespace {

// Runs shorter than this are left out: they draw nothing.
constexpr double kShortest = 1e-10;
// A dashed run that would break into more pieces than this stays one LINE
// in its linetype: a pattern that fine prints as a line anyway.
constexpr double kMostDashes = 1000;

std::string numberText(double value)
{
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return {text, end};
}

struct ElementLook {
    KxCmColor color;
    KxDbObjectId linetype;
};

// The common part of a record made here: owner, layer and colour.
std::vector<KxDbFileGroup> entityHead(const std::string& owner, const std::string& layer, const KxCmColor& color)
{
    std::vector<KxDbFileGroup> groups;
    const auto add = [&](int code, std::string value) { groups.push_back({std::int16_t(code), 0, std::move(value)}); };
    add(330, owner);
    add(100, "AcDbEntity");
    add(8, layer);
    if (color.isByBlock() || color.isByACI() || color.isByColor())
        add(62, std::to_string(color.isByBlock() ? 0 : color.colorIndex()));
    if (color.isByColor())
        add(420, std::to_string(color.color() & 0xFFFFFFu));
    return groups;
}

bool isSeenFromBelow(const KxGeVector3d& normal)
{
    return std::abs(normal.x) < kShortest && std::abs(normal.y) < kShortest && normal.z < 0;
}

// The groups of a SOLID record filling one quadrilateral, its corners in
// the order 1, 2, 4, 3 that SOLID takes. In a plane seen from below the
// corners are world points about +Z, as for arc caps.
std::vector<KxDbFileGroup> solidGroups(const std::array<KxGePoint3d, 4>& quad, const KxGeVector3d& normal,
                                       const std::string& owner, const std::string& layer, const KxCmColor& color)
{
    const KxGeVector3d about = isSeenFromBelow(normal) ? KxGeVector3d(0, 0, 1) : normal;
    const EntityPlane plane(about);
    std::vector<KxDbFileGroup> groups = entityHead(owner, layer, color);
    const auto add = [&](int code, std::string value) { groups.push_back({std::int16_t(code), 0, std::move(value)}); };
    add(100, "AcDbTrace");
    const double elevation = plane.toPlane(quad[0]).z;
    int code = 10;
    for (const std::size_t corner : {0, 1, 3, 2}) {
        const KxGePoint3d p = plane.toPlane(quad[corner]);
        add(code, numberText(p.x));
        add(code + 10, numberText(p.y));
        add(code + 20, numberText(elevation));
        ++code;
    }
    add(210, numberText(about.x));
    add(220, numberText(about.y));
    add(230, numberText(about.z));
    return groups;
}

// The groups of a solid HATCH record in the plane of normal: each loop a
// closed polyline boundary path in plane coordinates.
std::vector<KxDbFileGroup> hatchGroups(const std::vector<std::array<KxGePoint3d, 4>>& loops, const EntityPlane& plane,
                                       const std::string& owner, const std::string& layer, const KxCmColor& color)
{
    std::vector<KxDbFileGroup> groups = entityHead(owner, layer, color);
    const auto add = [&](int code, std::string value) { groups.push_back({std::int16_t(code), 0, std::move(value)}); };
    add(100, "AcDbHatch");
    const double elevation = plane.toPlane(loops.front()[0]).z;
    add(10, "0");
    add(20, "0");
    add(30, numberText(elevation));
    add(210, numberText(plane.normal().x));
    add(220, numberText(plane.normal().y));
    add(230, numberText(plane.normal().z));
    add(2, "SOLID");
    add(70, "1");
    add(71, "0");
    add(91, std::to_string(loops.size()));
    for (const auto& loop : loops) {
        add(92, "3");  // an outer polyline path
        add(72, "0");
        add(73, "1");
        add(93, std::to_string(loop.size()));
        for (const KxGePoint3d& corner : loop) {
            const KxGePoint3d p = plane.toPlane(corner);
            add(10, numberText(p.x));
            add(20, numberText(p.y));
        }
        add(97, "0");
    }
    add(75, "1");
    add(76, "1");
    add(98, "0");
    return groups;
}

// What the pieces of one multiline share: where they go and how they are made.
struct PieceOwner {
    const KxDbDatabase& db;
    const KxDbMline& mline;
    std::string blockHandle;
    std::string layer;
    ExplodeForm form;
};

// Turns the pieces of one multiline into new entities.
class Exploder : private view::MlinePieceSink {
public:
    Exploder(const PieceOwner& owner, const KxDbMlineStyle* style) : m_owner(owner), m_mline(owner.mline)
    {
        const int stylePens = style ? style->numElements() : 0;
        for (int e = 0; e < stylePens; ++e) {
            double offset = 0;
            ElementLook look;
            style->getElementAt(e, offset, look.color, look.linetype);
            m_looks.push_back(look);
        }
        view::MlinePieces().collect(m_mline, style, *this);
    }

    std::vector<std::unique_ptr<KxDbEntity>>& entities() { return m_entities; }
    const std::vector<std::array<KxGePoint3d, 4>>& fills() const { return m_fills; }

private:
    ElementLook look(int element) const
    {
        if (element < static_cast<int>(m_looks.size()))
            return m_looks[std::size_t(element)];
        return {m_mline.color(), m_mline.linetypeId()};
    }

    void place(std::unique_ptr<KxDbEntity> entity, int element, bool continuous)
    {
        const ElementLook how = look(element);
        entity->setLayer(m_mline.layerId());
        entity->setColor(how.color);
        entity->setLinetype(continuous ? m_owner.db.continuousLinetype() : how.linetype);
        m_entities.push_back(std::move(entity));
    }

    void addLine(const KxGePoint3d& from, const KxGePoint3d& to, int element, bool continuous)
    {
        if (distance(from, to) <= kShortest)
            return;
        place(std::make_unique<KxDbLine>(from, to), element, continuous);
    }

    void addPoint(const KxGePoint3d& at, int element)
    {
        const ElementLook how = look(element);
        std::vector<KxDbFileGroup> groups = entityHead(m_owner.blockHandle, m_owner.layer, how.color);
        groups.push_back({100, 0, "AcDbPoint"});
        groups.push_back({10, 0, numberText(at.x)});
        groups.push_back({20, 0, numberText(at.y)});
        groups.push_back({30, 0, numberText(at.z)});
        auto point = std::make_unique<KxDbUnmodelledEntity>("POINT", std::move(groups));
        point->setLayer(m_mline.layerId());
        point->setColor(how.color);
        point->setLinetype(m_owner.db.byLayerLinetype());
        m_entities.push_back(std::move(point));
    }

    // The dashes of a linetype that has gaps, as drawn (ByLayer is the
    // layer's); null for continuous ones.
    const std::vector<double>* dashesOf(KxDbObjectId linetype) const
    {
        if (linetype == m_owner.db.byLayerLinetype())
            if (const auto* layer = KxDbLayerTableRecord::cast(m_owner.db.peekObject(m_mline.layerId())))
                linetype = layer->linetypeObjectId();
        const auto* record = KxDbLinetypeTableRecord::cast(m_owner.db.peekObject(linetype));
        if (!record || linetype == m_owner.db.byBlockLinetype() || linetype == m_owner.db.byLayerLinetype())
            return nullptr;
        const std::vector<double>& dashes = record->dashes();
        const bool gaps = std::any_of(dashes.begin(), dashes.end(), [](double d) { return d < -kShortest; });
        return gaps ? &dashes : nullptr;
    }

    // A run in a dashed linetype as its dashes, continuous, the pattern
    // starting at the run's start as the renderer starts it: dashes are
    // LINEs, dots POINTs, gaps nothing.
    void addDashes(const view::MlineRun& run, const std::vector<double>& dashes)
    {
        const double length = distance(run.from, run.to);
        double repeat = 0;
        for (const double d : dashes)
            repeat += std::abs(d);
        if (length <= kShortest || length / repeat * double(dashes.size()) > kMostDashes) {
            addLine(run.from, run.to, run.element, false);
            return;
        }
        const KxGeVector3d along = (run.to - run.from) * (1 / length);
        double at = 0;
        for (std::size_t i = 0; at < length - kShortest; i = (i + 1) % dashes.size()) {
            const double piece = dashes[i];
            if (piece > kShortest)
                addLine(run.from + along * at, run.from + along * std::min(at + piece, length), run.element, true);
            else if (piece >= -kShortest)
                addPoint(run.from + along * at, run.element);
            at += std::abs(piece);
        }
    }

    void fill(const view::MlineFill& fill) override { m_fills.push_back(fill.corners); }

    void run(const view::MlineRun& run) override
    {
        const std::vector<double>* dashes = m_owner.form.dashesAsLines ? dashesOf(look(run.element).linetype) : nullptr;
        if (dashes)
            addDashes(run, *dashes);
        else
            addLine(run.from, run.to, run.element, false);
    }

    void capLine(const view::MlineCapLine& line) override { addLine(line.from, line.to, line.element, true); }

    // An arc in a plane seen from below (normal -Z) is written as the same
    // arc about +Z, whose centre needs no turning into the plane's
    // coordinates.
    void capArc(const view::MlineCapArc& arc) override
    {
        const EntityPlane plane(m_mline.normal());
        double from = arc.start;
        double sweep = arc.sweep;
        KxGeVector3d normal = m_mline.normal();
        if (isSeenFromBelow(normal)) {
            const KxGeVector3d startDirection = plane.toWorld(KxGeVector3d(std::cos(from), std::sin(from), 0));
            from = std::atan2(startDirection.y, startDirection.x);
            sweep = -sweep;
            normal = KxGeVector3d(0, 0, 1);
        }
        const double start = sweep < 0 ? from + sweep : from;
        const double end = start + std::abs(sweep);
        const auto wrapped = [](double angle) {
            const double turn = 2 * std::numbers::pi;
            const double a = std::fmod(angle, turn);
            return a < 0 ? a + turn : a;
        };
        place(std::make_unique<KxDbArc>(arc.centre, normal, arc.radius, wrapped(start), wrapped(end)),
              arc.element, true);
    }

    const PieceOwner& m_owner;
    const KxDbMline& m_mline;
    std::vector<ElementLook> m_looks;
    std::vector<std::unique_ptr<KxDbEntity>> m_entities;
    std::vector<std::array<KxGePoint3d, 4>> m_fills;
};

std::string layerName(KxDbObjectId layer)
{
    const KxDbObjectPtr<KxDbLayerTableRecord> record(layer, KxDb::kForRead);
    return record ? utf8FromWide(record->name()) : "0";
}

// Adds the pieces of an open multiline to its open block, the fill first,
// and erases the multiline; pieces gets the new entities in that order.
Explosion explodeInto(KxDbDatabase& db, KxDbMline& mline, KxDbBlockTableRecord& block, const ExplodeForm& form,
                      std::vector<KxDbObjectId>& pieces)
{
    Explosion made;
    KxDbObjectPtr<KxDbMlineStyle> style;
    if (!mline.style().isNull())
        style.open(mline.style(), KxDb::kForRead);
    const PieceOwner owner{db, mline, utf8FromWide(block.handleText()), layerName(mline.layerId()), form};
    Exploder exploder(owner, style.get());
    const auto add = [&](KxDbEntity* entity) {
        KxDbObjectId id;
        if (block.appendKxDbEntity(id, entity) != Kald::eOk)
            return false;
        KxDbObjectPtr<KxDbEntity> added(entity);
        pieces.push_back(id);
        return true;
    };
    const auto addFill = [&](const char* kind, std::vector<KxDbFileGroup> groups) {
        auto fill = std::make_unique<KxDbUnmodelledEntity>(kind, std::move(groups));
        fill->setLayer(mline.layerId());
        fill->setColor(style->fillColor());
        fill->setLinetype(db.byLayerLinetype());
        return add(fill.get()) && fill.release();
    };
    if (!exploder.fills().empty() && style) {
        if (form.fill == FillForm::Hatch)
            made.hatches += addFill("HATCH", hatchGroups(exploder.fills(), EntityPlane(mline.normal()),
                                                         owner.blockHandle, owner.layer, style->fillColor()));
        else
            for (const auto& quad : exploder.fills())
                made.solids += addFill("SOLID", solidGroups(quad, mline.normal(), owner.blockHandle, owner.layer,
                                                            style->fillColor()));
    }
    for (std::unique_ptr<KxDbEntity>& entity : exploder.entities()) {
        int& count = KxDbArc::cast(entity.get())    ? made.arcs
                     : KxDbLine::cast(entity.get()) ? made.lines
                                                    : made.points;
        if (add(entity.get())) {
            entity.release();
            ++count;
        }
    }
    made.exploded = mline.erase() == Kald::eOk;
    return made;
}

}  // namespace

Explosion explodeMline(KxDbDatabase& db, KxDbObjectId id, const ExplodeForm& form)
{
    KxDbObjectPtr<KxDbMline> mline(id, KxDb::kForWrite);
    if (!mline)
        return {};
    KxDbObjectPtr<KxDbBlockTableRecord> block(mline->ownerId(), KxDb::kForWrite);
    if (!block)
        return {};
    // The pieces are appended (fill first): the undo history keeps a block's
    // list as appended to, so an undoable explosion never reorders it.
    std::vector<KxDbObjectId> pieces;
    return explodeInto(db, *mline, *block, form, pieces);
}

int explodeAllMlines(KxDbDatabase& db, const ExplodeForm& form)
{
    std::vector<KxDbObjectId> blocks;
    {
        KxDbBlockTable* opened = nullptr;
        if (db.getBlockTable(opened, KxDb::kForRead) != Kald::eOk)
            return 0;
        const KxDbObjectPtr<KxDbBlockTable> table(opened);
        for (auto it = table->newIterator(); !it->done(); it->step())
            blocks.push_back(it->getRecordId());
    }
    // Each block's entities are put in the order readers that honour its
    // sort table draw them, with the pieces in their multilines' places:
    // readers that draw in file order then agree with them.
    SortTables sortTables(db);
    int exploded = 0;
    for (const KxDbObjectId& blockId : blocks) {
        KxDbObjectPtr<KxDbBlockTableRecord> block(blockId, KxDb::kForWrite);
        if (!block)
            continue;
        const std::vector<KxDbObjectId> drawn = sortTables.drawingOrder(*block);
        std::vector<KxDbObjectId> order;
        bool changed = false;
        for (const KxDbObjectId& id : drawn) {
            if (KxDbMline::cast(db.peekObject(id))) {
                KxDbObjectPtr<KxDbMline> mline(id, KxDb::kForWrite);
                std::vector<KxDbObjectId> pieces;
                const Explosion made = mline ? explodeInto(db, *mline, *block, form, pieces) : Explosion{};
                order.insert(order.end(), pieces.begin(), pieces.end());
                if (!made.exploded)
                    order.push_back(id);
                exploded += made.exploded ? 1 : 0;
                changed = true;
            } else {
                order.push_back(id);
            }
        }
        if (!changed)
            continue;
        block->setEntityOrder(order);
        if (form.sortTables)
            sortTables.writeTable(*block);
    }
    return exploded;
}

}  // namespace kaldo
