#include "kaldo/app/MlineExplosion.h"

#include <charconv>
#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "kaldo/db/ArcAngles.h"
#include "kaldo/db/EntityPlane.h"
#include "kaldo/view/MlinePieces.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"
#include "kxstring.h"

namespace kaldo {

namespace {

// Runs shorter than this are left out: they draw nothing.
constexpr double kShortest = 1e-10;

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

// Turns the pieces of one multiline into new entities.
class Exploder : private view::MlinePieceSink {
public:
    Exploder(const KxDbDatabase& db, const KxDbMline& mline, const KxDbMlineStyle* style)
        : m_db(db), m_mline(mline)
    {
        const int stylePens = style ? style->numElements() : 0;
        for (int e = 0; e < stylePens; ++e) {
            double offset = 0;
            ElementLook look;
            style->getElementAt(e, offset, look.color, look.linetype);
            m_looks.push_back(look);
        }
        view::MlinePieces().collect(mline, style, *this);
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
        entity->setLinetype(continuous ? m_db.continuousLinetype() : how.linetype);
        m_entities.push_back(std::move(entity));
    }

    void addLine(const KxGePoint3d& from, const KxGePoint3d& to, int element, bool continuous)
    {
        if (distance(from, to) <= kShortest)
            return;
        place(std::make_unique<KxDbLine>(from, to), element, continuous);
    }

    void fill(const view::MlineFill& fill) override { m_fills.push_back(fill.corners); }
    void run(const view::MlineRun& run) override { addLine(run.from, run.to, run.element, false); }
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
        place(std::make_unique<KxDbArc>(arc.centre, normal, arc.radius, wrappedAngle(start), wrappedAngle(end)),
              arc.element, true);
    }

    const KxDbDatabase& m_db;
    const KxDbMline& m_mline;
    std::vector<ElementLook> m_looks;
    std::vector<std::unique_ptr<KxDbEntity>> m_entities;
    std::vector<std::array<KxGePoint3d, 4>> m_fills;
};

std::string layerName(KxDbObjectId layer)
{
    const KxDbObjectPtr<KxDbLayerTableRecord> record(layer, KxDb::kForRead);
    return record ? kxutToMultiByte(record->name()) : "0";
}

}  // namespace

Explosion explodeMline(KxDbDatabase& db, KxDbObjectId id, FillForm fillForm)
{
    Explosion made;
    KxDbObjectPtr<KxDbMline> mline(id, KxDb::kForWrite);
    if (!mline)
        return made;
    KxDbObjectPtr<KxDbBlockTableRecord> block(mline->ownerId(), KxDb::kForWrite);
    if (!block)
        return made;
    KxDbObjectPtr<KxDbMlineStyle> style;
    if (!mline->style().isNull())
        style.open(mline->style(), KxDb::kForRead);
    Exploder exploder(db, *mline, style.get());
    for (std::unique_ptr<KxDbEntity>& entity : exploder.entities()) {
        const bool arc = KxDbArc::cast(entity.get()) != nullptr;
        if (block->appendKxDbEntity(entity.get()) != Kald::eOk)
            continue;
        KxDbObjectPtr<KxDbEntity> added(entity.release());
        ++(arc ? made.arcs : made.lines);
    }
    const auto addFill = [&](const char* kind, std::vector<KxDbFileGroup> groups) {
        auto fill = std::make_unique<KxDbUnmodelledEntity>(kind, std::move(groups));
        fill->setLayer(mline->layerId());
        fill->setColor(style->fillColor());
        fill->setLinetype(db.byLayerLinetype());
        if (block->appendKxDbEntity(fill.get()) != Kald::eOk)
            return false;
        KxDbObjectPtr<KxDbEntity> added(fill.release());
        return true;
    };
    if (!exploder.fills().empty() && style) {
        const std::string owner = kxutToMultiByte(block->handleText());
        const std::string layer = layerName(mline->layerId());
        if (fillForm == FillForm::Hatch)
            made.hatches += addFill("HATCH", hatchGroups(exploder.fills(), EntityPlane(mline->normal()), owner, layer,
                                                         style->fillColor()));
        else
            for (const auto& quad : exploder.fills())
                made.solids += addFill("SOLID", solidGroups(quad, mline->normal(), owner, layer, style->fillColor()));
    }
    made.exploded = mline->erase() == Kald::eOk;
    return made;
}

int explodeAllMlines(KxDbDatabase& db, FillForm fillForm)
{
    std::vector<KxDbObjectId> mlines;
    {
        KxDbBlockTable* opened = nullptr;
        if (db.getBlockTable(opened, KxDb::kForRead) != Kald::eOk)
            return 0;
        const KxDbObjectPtr<KxDbBlockTable> table(opened);
        const auto blocks = table->newIterator();
        for (blocks->start(); !blocks->done(); blocks->step()) {
            KxDbObjectId blockId;
            if (blocks->getRecordId(blockId) != Kald::eOk)
                continue;
            const KxDbObjectPtr<KxDbBlockTableRecord> block(blockId, KxDb::kForRead);
            if (!block)
                continue;
            const auto entities = block->newIterator();
            for (entities->start(); !entities->done(); entities->step()) {
                KxDbEntity* entity = nullptr;
                if (entities->getEntity(entity, KxDb::kForRead) != Kald::eOk)
                    continue;
                const KxDbObjectPtr<KxDbEntity> open(entity);
                if (KxDbMline::cast(entity))
                    mlines.push_back(entity->objectId());
            }
        }
    }
    int exploded = 0;
    for (const KxDbObjectId& id : mlines)
        exploded += explodeMline(db, id, fillForm).exploded ? 1 : 0;
    return exploded;
}

}  // namespace kaldo
