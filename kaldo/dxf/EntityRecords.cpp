#include "kaldo/dxf/EntityRecords.h"

#include "kaldo/db/EntityKinds.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/RecordRun.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/MlineRecord.h"
#include "kaldo/dxf/ReadContext.h"
#include "kaldo/dxf/RecordColor.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/dxf/UnmodelledRecords.h"
#include "kaldo/util/Utf8.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <exception>
#include <iterator>
#include <memory>
#include <numbers>
#include <optional>
#include <variant>
#include <vector>

namespace kaldo::dxf {

namespace {

// The layer and linetype an entity's names give, and whether the names
// spell them otherwise: what an entity made at once takes of a Look.
struct ResolvedNames {
    KxDbObjectId layer, linetype;
    bool layerSpelledOtherwise = false;
    bool linetypeSpelledOtherwise = false;
};

// Layer, linetype and colour of every entity, the names and the index as
// the record in hand spells them.
struct EntityLook {
    std::string_view layer = "0";
    std::string_view linetype;
    KxCmColor color;
    std::string_view colorIndex;  // as read, for a true colour that has one
    bool take(const Group& g)
    {
        if (g.code == 62)
            colorIndex = g.value;
        if (g.code == 8) {
            layer = trimmed(g.value);
            return true;
        }
        if (g.code == 6) {
            linetype = trimmed(g.value);
            return true;
        }
        return readColorGroup(g, color);
    }
    // The layer and linetype the names give, added when missing, into a
    // Look or ResolvedNames.
    template <class Resolved>
    void resolve(ReadContext& context, Resolved& resolved) const
    {
        bool same = true;
        resolved.layer = context.layer(layer.empty() ? "0" : layer, &same);
        resolved.layerSpelledOtherwise = !same;
        resolved.linetype = linetype.empty() ? context.byLayerLinetype() : context.linetype(linetype, &same);
        resolved.linetypeSpelledOtherwise = !same && !linetype.empty();
    }
    // Names spelled otherwise than their records (other capitals) are
    // kept as spelled, so that they are written back so.
    template <class Resolved>
    void applyTo(KxDbEntity& entity, const Resolved& resolved, RecordBasics& basics) const
    {
        entity.setLayer(resolved.layer);
        if (resolved.layerSpelledOtherwise)
            basics.kept.append(8, 1, layer);
        entity.setLinetype(resolved.linetype);
        if (resolved.linetypeSpelledOtherwise)
            basics.kept.append(6, 1, linetype);
        // The index beside a true colour is the writer's own choice: kept.
        if (color.isByColor() && !colorIndex.empty())
            basics.kept.append(62, 1, colorIndex);
        entity.setColor(color);
    }
    void applyTo(KxDbEntity& entity, ReadContext& context, RecordBasics& basics) const
    {
        ResolvedNames resolved;
        resolve(context, resolved);
        applyTo(entity, resolved, basics);
    }
};

// Coordinates arrive as three groups: code, code + 10, code + 20.
void takeCoordinate(const Group& g, int baseCode, KxGePoint3d& p)
{
    const double v = toReal(g);
    if (g.code == baseCode)
        p.x = v;
    else if (g.code == baseCode + 10)
        p.y = v;
    else
        p.z = v;
}

bool isCoordinate(int code, int baseCode)
{
    return code == baseCode || code == baseCode + 10 || code == baseCode + 20;
}

KxGeVector3d asVector(const KxGePoint3d& p)
{
    return {p.x, p.y, p.z};
}

// Whether a normal read is the z axis bit for bit, which a new entity has:
// setting it costs a normalization that changes nothing.
bool isZAxis(const KxGePoint3d& normal)
{
    return std::bit_cast<std::uint64_t>(normal.x) == 0 && std::bit_cast<std::uint64_t>(normal.y) == 0
           && std::bit_cast<std::uint64_t>(normal.z) == std::bit_cast<std::uint64_t>(1.0);
}

// Whether a normal gives no direction: the entities refuse it.
bool isNullNormal(const KxGePoint3d& normal)
{
    return asVector(normal).length() <= kxGeTolerance;
}

// The entities below are read into what makes them, checked, and made
// apart: records are read on the reading thread and the objects made on
// the building thread, so that the drawing's memory comes from that
// thread's heap (the reading thread's grew a page at a time, a system call
// each) and a record kept unopened makes no object.
struct LineShape {
    KxGePoint3d start, end, normal{0, 0, 1};
};

LineShape readLine(const Record& record, RecordBasics& basics, EntityLook& look)
{
    LineShape shape;
    walkRecord(record, basics, [&](const Group& g) {
        if (isCoordinate(g.code, 10))
            takeCoordinate(g, 10, shape.start);
        else if (isCoordinate(g.code, 11))
            takeCoordinate(g, 11, shape.end);
        else if (isCoordinate(g.code, 210))
            takeCoordinate(g, 210, shape.normal);
        else
            return look.take(g);
        return true;
    });
    if (isNullNormal(shape.normal))
        throw DxfError(record.line(), "the line has a null normal.");
    return shape;
}

KxDbEntity* makeLine(const LineShape& shape)
{
    auto line = std::make_unique<KxDbLine>();
    line->setStartPoint(shape.start);
    line->setEndPoint(shape.end);
    if (!isZAxis(shape.normal))
        line->setNormal(asVector(shape.normal));
    return line.release();
}

struct CircleShape {
    KxGePoint3d center, normal{0, 0, 1};
    double radius = 0, startAngle = 0, endAngle = 0;
    bool isArc = false;
};

CircleShape readCircleOrArc(const Record& record, RecordBasics& basics, EntityLook& look, bool isArc)
{
    CircleShape shape;
    shape.isArc = isArc;
    walkRecord(record, basics, [&](const Group& g) {
        if (isCoordinate(g.code, 10))
            takeCoordinate(g, 10, shape.center);
        else if (isCoordinate(g.code, 210))
            takeCoordinate(g, 210, shape.normal);
        else if (g.code == 40)
            shape.radius = toReal(g);
        else if (isArc && g.code == 50)
            shape.startAngle = toReal(g) * (std::numbers::pi / 180.0);
        else if (isArc && g.code == 51)
            shape.endAngle = toReal(g) * (std::numbers::pi / 180.0);
        else
            return look.take(g);
        return true;
    });
    if (!(shape.radius >= 0) || isNullNormal(shape.normal))
        throw DxfError(record.line(), "the " + std::string(record.kind()) + " has a negative radius or a null normal.");
    return shape;
}

KxDbEntity* makeCircleOrArc(const CircleShape& shape)
{
    if (shape.isArc)
        return new KxDbArc(shape.center, asVector(shape.normal), shape.radius, shape.startAngle, shape.endAngle);
    auto circle = std::make_unique<KxDbCircle>(shape.center, shape.radius);
    if (!isZAxis(shape.normal))
        circle->setNormal(asVector(shape.normal));
    return circle.release();
}

// What a polyline's record gives beside its vertices.
struct PolylineHead {
    bool closed = false;
    bool plinegen = false;
    std::optional<double> constantWidth, elevation, thickness;
    KxGePoint3d normal{0, 0, 1};
    // What the vertices read into room or counted take in the polyline.
    std::size_t vertexBytes = 0;
};

void applyHead(KxDbPolyline& pline, const PolylineHead& head)
{
    pline.setClosed(head.closed);
    pline.setPlinegen(head.plinegen);
    if (head.constantWidth)
        pline.setConstantWidth(*head.constantWidth);
    if (head.elevation)
        pline.setElevation(*head.elevation);
    if (head.thickness)
        pline.setThickness(*head.thickness);
    if (!isZAxis(head.normal))
        pline.setNormal(asVector(head.normal));
}

KxDbEntity* makePolyline(const PolylineHead& head, const std::vector<KxDbPolyline::Vertex>& vertices)
{
    auto pline = KxDbPolyline::withRoom(std::uint32_t(vertices.size()));
    applyHead(*pline, head);
    pline->setVertices(vertices);
    return pline.release();
}

// The vertices of a polyline's record: read into room (reused from record
// to record), straight into the polyline with room for straight of them
// made first, or, with neither, only counted; read into room or counted,
// with whether any has a width or a bulge (so that what they take as an
// object is known).
struct PolylineVertices {
    std::vector<KxDbPolyline::Vertex>* room = nullptr;
    std::optional<std::uint32_t> straight;
    std::size_t count = 0;
    bool shaped = false;
    // What the vertices counted take in a polyline: their positions, and
    // their widths and bulges once any vertex has one.
    std::size_t objectBytes() const { return count * (shaped ? 5 : 2) * sizeof(double); }
};

// Reads a polyline's head and vertices; returns the polyline when its
// vertices are read straight into it, else null (makePolyline makes one
// read into room).
KxDbEntity* readPolyline(const Record& record, RecordBasics& basics, EntityLook& look, PolylineVertices& vertices,
                         PolylineHead& head)
{
    std::unique_ptr<KxDbPolyline> pline;
    std::vector<KxDbPolyline::Vertex>* const room = vertices.room;
    if (room)
        room->clear();
    // The vertex being read straight into the polyline, added at the next
    // vertex and at the end.
    KxDbPolyline::Vertex pending;
    KxDbPolyline::Vertex* const straight = vertices.straight ? &pending : nullptr;
    if (straight) {
        pline = KxDbPolyline::withRoom(*vertices.straight);
    }
    const auto addPending = [&] {
        if (straight && vertices.count > 0)
            pline->addVertexAt(pending);
    };
    head = {};
    long count = -1;
    walkRecord(record, basics, [&](const Group& g) {
        switch (g.code) {
        case 90:
            count = long(toInteger(g));
            // Room for the vertices at once, never more than the record's
            // groups can hold.
            if (count > 0 && room)
                room->reserve(std::min(std::size_t(count), record.size() / 2));
            if (count > 0 && pline)
                pline->reserve(std::uint32_t(std::min(std::size_t(count), record.size() / 2)));
            return true;
        case 70: {
            const auto flags = toInteger(g);
            head.closed = flags & 1;
            head.plinegen = flags & 128;
            return true;
        }
        case 43:
            head.constantWidth = toReal(g);
            return true;
        case 38:
            head.elevation = toReal(g);
            return true;
        case 39:
            head.thickness = toReal(g);
            return true;
        case 10: {
            const double x = toReal(g);
            addPending();
            ++vertices.count;
            if (room) {
                room->emplace_back();
                room->back().x = x;
            } else {
                pending = {x};
            }
            return true;
        }
        case 20:
        case 40:
        case 41:
        case 42: {
            if (vertices.count == 0)
                throw DxfError(g.line, "group " + std::to_string(g.code) + " comes before the first vertex.");
            const double value = toReal(g);
            if (KxDbPolyline::Vertex* const vertex = room ? &room->back() : straight)
                (g.code == 20 ? vertex->y
                              : g.code == 40 ? vertex->startWidth : g.code == 41 ? vertex->endWidth : vertex->bulge) =
                    value;
            if (g.code != 20 && value != 0)
                vertices.shaped = true;
            return true;
        }
        default:
            if (isCoordinate(g.code, 210)) {
                takeCoordinate(g, 210, head.normal);
                return true;
            }
            return look.take(g);
        }
    });
    addPending();
    if (count >= 0 && std::size_t(count) != vertices.count)
        throw DxfError(record.line(), "the polyline announces " + std::to_string(count) + " vertices but has "
                                          + std::to_string(vertices.count) + ".");
    if (isNullNormal(head.normal))
        throw DxfError(record.line(), "the polyline has a null normal.");
    // Widths and bulges read into room count where they stayed nonzero.
    if (room && vertices.shaped)
        vertices.shaped = std::any_of(room->begin(), room->end(), [](const KxDbPolyline::Vertex& v) {
            return v.startWidth != 0 || v.endWidth != 0 || v.bulge != 0;
        });
    head.vertexBytes = vertices.objectBytes();
    if (!pline)
        return nullptr;
    applyHead(*pline, head);
    return pline.release();
}

// The block an entity of the ENTITIES section goes to.
KxDbObjectId blockOf(const RecordBasics& basics, ReadContext& context)
{
    if (const KxDbObjectId owner = context.blockByHandle(basics.owner); !owner.isNull())
        return owner;
    bool inPaperSpace = false;
    basics.kept.view().forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
        inPaperSpace = code == 67 && trimmed(value) == "1";
        return !inPaperSpace;
    });
    return inPaperSpace ? context.roots.paperSpace : context.roots.modelSpace;
}

// Hands the entity, of the kind given, to its block; returns it, now the
// drawing's.
KxDbEntity* append(ReadContext& context, std::unique_ptr<KxDbEntity> entity, kaldo::EntityKind kind,
                   RecordBasics& basics, KxDbObjectId block, long line)
{
    const KxDbObjectId target = block.isNull() ? blockOf(basics, context) : block;
    // A block kept unopened takes the entity without being opened; model
    // and paper space never are.
    auto* space = context.openedBlock(target);
    if (!space && !(kaldo::isUnopened(target) && context.isBlock(target)))
        throw DxfError(line, "the entity belongs to no block.");
    basics.owner = 0;
    context.extents.add(target, context.roots.modelSpace, *entity, kind);
    KxDbEntity* owned = entity.release();
    context.add(owned, std::move(basics));
    if (!space && context.db.unopenedRecords().appendEntity(target, owned->objectId())) {
        owned->setOwnerId(target);
        return owned;
    }
    if (!space)
        space = KxDbBlockTableRecord::cast(context.db.peekObject(target));
    space->appendKxDbEntity(owned);
    return owned;
}

// An entity of the kinds readEntityAhead takes apart, as far as that
// goes without the drawing: what makes the entity (a polyline's vertices
// in vertices) or, for a polyline read straight into it, the entity; its
// basics and its look; or what refused the record.
struct EntityParts : RecordAhead {
    std::variant<std::monostate, LineShape, CircleShape, PolylineHead> unmade;
    std::unique_ptr<KxDbEntity> entity;
    RecordBasics basics;
    EntityLook look;
    std::exception_ptr error;
    std::vector<KxDbPolyline::Vertex> vertices;
    // A polyline checked and counted, its vertices not read (it is to be
    // kept unopened).
    bool verticesUnread = false;
};

// The class of the entity the parts make, made or not; null for a record
// kept whole.
const KxRxClass* entityClass(const EntityParts& parts)
{
    if (parts.entity)
        return parts.entity->isA();
    if (std::holds_alternative<LineShape>(parts.unmade))
        return KxDbLine::desc();
    if (const auto* circle = std::get_if<CircleShape>(&parts.unmade))
        return circle->isArc ? KxDbArc::desc() : KxDbCircle::desc();
    if (std::holds_alternative<PolylineHead>(parts.unmade))
        return KxDbPolyline::desc();
    return nullptr;
}

// Makes the entity of parts not made yet (none for a polyline whose
// vertices were not read), on the calling thread.
void makeEntity(EntityParts& parts)
{
    if (const auto* line = std::get_if<LineShape>(&parts.unmade))
        parts.entity.reset(makeLine(*line));
    else if (const auto* circle = std::get_if<CircleShape>(&parts.unmade))
        parts.entity.reset(makeCircleOrArc(*circle));
    else if (const auto* head = std::get_if<PolylineHead>(&parts.unmade); head && !parts.verticesUnread)
        parts.entity.reset(makePolyline(*head, parts.vertices));
    parts.unmade = {};
}

// The kind of the entity makeEntity makes of a record of the kind given.
kaldo::EntityKind madeKind(RecordKind kind)
{
    switch (kind) {
    case RecordKind::Line:
        return kaldo::EntityKind::Line;
    case RecordKind::Arc:
        return kaldo::EntityKind::Arc;
    case RecordKind::Circle:
        return kaldo::EntityKind::Circle;
    case RecordKind::LwPolyline:
        return kaldo::EntityKind::Polyline;
    default:
        return kaldo::EntityKind::Other;
    }
}

// Records of more groups than this, whose vertices might take more than
// twice their groups as an object, are checked and their vertices counted
// before they are read: one to be kept unopened is never made an object
// (another gets room for its count at once).
constexpr std::size_t kCountedFirst = 1024;

// The most a polyline's vertices may take as an object by its groups alone:
// each group 10 a vertex, 40 bytes each when a width or bulge is given.
PolylineVertices mostVertices(const Record& record)
{
    PolylineVertices most;
    record.packedGroups().forEach([&](std::int16_t code, std::uint8_t, std::string_view) {
        most.count += code == 10;
        most.shaped = most.shaped || code == 40 || code == 41 || code == 42;
    });
    return most;
}

// Reads a polyline into parts; one of many groups that takes less than half
// its object is only checked when countFirst (see keepUnopened). The
// vertices of one of many groups go straight into the polyline, room for
// them made at once, where a room of whole vertices took 40 bytes each
// beside it. Those of fewer groups go to the parts' room, reused from
// record to record, and are copied into the polyline once: adding them
// to it one by one took more on either thread.
void takePolylineApart(const Record& record, EntityParts& parts, bool countFirst)
{
    PolylineHead head;
    if (record.size() <= kCountedFirst) {
        PolylineVertices read;
        read.room = &parts.vertices;
        readPolyline(record, parts.basics, parts.look, read, head);
        parts.unmade = head;
        return;
    }
    const PolylineVertices most = mostVertices(record);
    const std::size_t bytes = record.packedGroups().bytes().size();
    if (countFirst && 2 * bytes < sizeof(KxDbPolyline) + most.objectBytes()) {
        PolylineVertices counted;
        readPolyline(record, parts.basics, parts.look, counted, head);
        if (2 * bytes < sizeof(KxDbPolyline) + counted.objectBytes()) {
            parts.unmade = head;
            parts.verticesUnread = true;
            return;
        }
        parts.basics = {};
        parts.look = {};
    }
    PolylineVertices read;
    read.straight = std::uint32_t(most.count);
    parts.entity.reset(readPolyline(record, parts.basics, parts.look, read, head));
}

// Takes a LINE, ARC, CIRCLE or LWPOLYLINE record apart into parts; no
// entity for any other kind, but the basics and the look of one kept
// whole (a multiline is left to readEntity). countFirst lets a large
// polyline to be kept unopened go without its vertices.
void takeApart(const Record& record, EntityParts& parts, bool countFirst = true)
{
    parts.unmade = {};
    parts.entity.reset();
    parts.basics = {};
    parts.look = {};
    parts.error = nullptr;
    parts.verticesUnread = false;
    const RecordKind kind = record.kindCode();
    if (kind == RecordKind::Line) {
        parts.unmade = readLine(record, parts.basics, parts.look);
    } else if (kind == RecordKind::Arc || kind == RecordKind::Circle) {
        parts.unmade = readCircleOrArc(record, parts.basics, parts.look, kind == RecordKind::Arc);
    } else if (kind == RecordKind::LwPolyline) {
        takePolylineApart(record, parts, countFirst);
    } else if (kind != RecordKind::Mline) {
        parts.basics = rawRecordBasics(record);
        // Its layer, linetype and colour, so that it is drawn in them; the
        // groups are written back as read.
        record.forEach([&](const Group& g) {
            if (g.code == 100 && g.value != "AcDbEntity")
                return false;
            parts.look.take(g);
            return true;
        });
    }
}

// What the entity taken apart from a record of groups takes as an object:
// an unmodelled one holds the groups beside itself. Told by what the parts
// hold, without asking for classes (only a polyline is made while taken
// apart).
std::size_t objectBytes(const EntityParts& parts, KxDbPackedGroupsView groups)
{
    if (parts.entity)
        return sizeof(KxDbPolyline) + static_cast<const KxDbPolyline&>(*parts.entity).vertexBytes();
    if (std::holds_alternative<LineShape>(parts.unmade))
        return sizeof(KxDbLine);
    if (const auto* circle = std::get_if<CircleShape>(&parts.unmade))
        return circle->isArc ? sizeof(KxDbArc) : sizeof(KxDbCircle);
    if (const auto* head = std::get_if<PolylineHead>(&parts.unmade))
        return sizeof(KxDbPolyline) + head->vertexBytes;
    return sizeof(KxDbUnmodelledEntity) + groups.bytes().size();
}

// Makes a multiline kept unopened as readEntity and the style's
// resolution once the file was read would have made it.
std::unique_ptr<KxDbEntity> makeUnopenedMline(const Record& record, const kaldo::UnopenedRecords::Look& look)
{
    RecordBasics basics;
    EntityLook entityLook;
    MlineStyleLink styleLink;
    KxDbMlineListStore scratch;
    std::unique_ptr<KxDbMline> mline(readMline(
        record, basics, [&entityLook](const Group& g) { return entityLook.take(g); }, styleLink, scratch));
    entityLook.applyTo(*mline, look, basics);
    mline->setKeptGroups(basics.takeKept());
    // Checked when the file was read: the layout gives numbers only.
    if (look.layOut)
        mline->setStyle(look.style);
    else
        KxDbSystemInternals::getImpObject(mline.get())
            ->setStoredProperties(look.style, mline->justification(), mline->scale(), mline->normal(),
                                  mline->closedMline(), mline->supressStartCaps(), mline->supressEndCaps());
    return mline;
}

// Makes an entity kept unopened as readEntity would have made it.
std::unique_ptr<KxDbObject> makeUnopened(const kaldo::UnopenedRecords::Look& look, KxDbPackedGroupsView groups)
{
    Record record;
    record.assign(look.kind, groups);
    if (look.kind == "MLINE")
        return makeUnopenedMline(record, look);
    EntityParts parts;
    takeApart(record, parts, false);
    makeEntity(parts);
    if (!parts.entity) {
        // Its groups are kept whole, the names spelled otherwise too.
        auto unmodelled = KxDbUnmodelledEntity::make(look.kind, groups);
        RecordBasics lookKept;
        parts.look.applyTo(*unmodelled, look, lookKept);
        return unmodelled;
    }
    parts.look.applyTo(*parts.entity, look, parts.basics);
    parts.entity->setKeptGroups(parts.basics.takeKept());
    return std::move(parts.entity);
}

// Puts the block of an entity kept unopened in its look when it is of the
// ENTITIES section (block null: model or paper space, owner), else with its
// record (one of a file's many blocks), so that the records of many blocks
// share their looks. Returns the block to keep with the record, or null.
KxDbObjectId placeKeptBlock(kaldo::UnopenedRecords::Look& look, KxDbObjectId block, KxDbObjectId owner)
{
    look.ownerInRecord = !block.isNull();
    look.owner = block.isNull() ? owner : KxDbObjectId();
    return block;
}

// A modelled entity takes its layer and linetype by id when it is made:
// the groups of its record but the names spelled as their records (the
// groups themselves when it has none or is large, where the names weigh
// little beside a copy, else made in room). Records of an entity each that
// name many layers cost about their bytes so.
KxDbPackedGroupsView withoutNames(KxDbPackedGroupsView groups, const kaldo::UnopenedRecords::Look& look,
                                  KxDbPackedGroups& room)
{
    constexpr std::size_t kLargest = 256;
    if (groups.bytes().size() > kLargest)
        return groups;
    const auto keptAgain = [&look](std::int16_t code) {
        return (code != 8 || look.layerSpelledOtherwise) && (code != 6 || look.linetypeSpelledOtherwise);
    };
    bool named = false;
    groups.forEach([&](std::int16_t code, std::uint8_t, std::string_view) {
        named = !keptAgain(code);
        return !named;
    });
    if (!named)
        return groups;
    groups.forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        if (keptAgain(code))
            room.append(code, part, value);
    });
    return room.view();
}

// Measures an entity kept unopened that goes to model space as the entity
// made from it measures (its shape holds the points as the entity does);
// a polyline whose vertices were only counted loses the extents.
void measureKept(const EntityParts& parts, ReadContext& context, KxDbObjectId block)
{
    ExtentsBox* const box = context.extents.boxFor(block, context.roots.modelSpace);
    if (!box)
        return;
    if (parts.entity) {
        box->add(*parts.entity);
    } else if (const auto* line = std::get_if<LineShape>(&parts.unmade)) {
        box->add(line->start);
        box->add(line->end);
    } else if (const auto* circle = std::get_if<CircleShape>(&parts.unmade)) {
        box->add(circle->center, circle->radius);
    } else if (const auto* head = std::get_if<PolylineHead>(&parts.unmade); head && !parts.verticesUnread) {
        const std::unique_ptr<KxDbEntity> made(makePolyline(*head, parts.vertices));
        box->add(*made);
    } else if (head) {
        context.extents.lose();
    }
}

// Keeps the entity taken apart from the record (of any kind but MLINE)
// unopened when its groups take less than half the object: records of a
// few groups, where the object would cost many times the file. Larger
// records, which their objects hold about as densely, are added as
// objects, so that nothing is read twice.
bool keepUnopened(const Record& record, const EntityParts& parts, ReadContext& context, KxDbObjectId block)
{
    const KxDbPackedGroupsView groups = record.packedGroups();
    if (2 * groups.bytes().size() >= objectBytes(parts, groups))
        return false;
    kaldo::UnopenedRecords::Look look;
    look.kind = record.kind();
    look.maker = &makeUnopened;
    parts.look.resolve(context, look);
    const KxDbObjectId target = block.isNull() ? blockOf(parts.basics, context) : block;
    const KxDbObjectId owner = placeKeptBlock(look, block, target);
    KxDbPackedGroups unnamed;
    const KxRxClass* const cls = entityClass(parts);
    const bool kept = !context.db.unopenedRecords()
                           .keep(cls ? cls : KxDbUnmodelledEntity::desc(), look,
                                 cls ? withoutNames(groups, look, unnamed) : groups,
                                 context.fileHandle(parts.basics.handle), false, owner)
                           .isNull();
    if (kept)
        measureKept(parts, context, target);
    return kept;
}

// Keeps a multiline unopened, checked in full, when its groups take less
// than half what it would as an object as listed: vertices of a few short
// groups, each of which costs its geometry and lists as an object. Its
// style is found once the whole file is read (see resolveMlineStyles).
bool keepMlineUnopened(const Record& record, ReadContext& context, KxDbObjectId block)
{
    const KxDbPackedGroupsView groups = record.packedGroups();
    if (2 * groups.bytes().size() >= mlineObjectBytes(record))
        return false;
    RecordBasics basics;
    EntityLook look;
    MlineStyleLink styleLink;
    // Its vertices go to a box of their own, as the multiline made from the
    // record measures (ExtentsBox::add), joined once it is kept.
    ExtentsBox vertices;
    const MlineOutline outline = checkMline(
        record, basics, [&look](const Group& g) { return look.take(g); }, styleLink, context.mlineLists, vertices);
    kaldo::UnopenedRecords::Look resolved;
    resolved.kind = record.kind();
    resolved.maker = &makeUnopened;
    look.resolve(context, resolved);
    const KxDbObjectId target = block.isNull() ? blockOf(basics, context) : block;
    const KxDbObjectId owner = placeKeptBlock(resolved, block, target);
    KxDbPackedGroups unnamed;
    const KxDbObjectId id =
        context.db.unopenedRecords().keep(KxDbMline::desc(), resolved, withoutNames(groups, resolved, unnamed),
                                          context.fileHandle(basics.handle), true, owner);
    if (id.isNull())
        return false;
    // Laying it out anew once its style is found keeps its vertices.
    if (ExtentsBox* const box = context.extents.boxFor(target, context.roots.modelSpace))
        box->add(vertices);
    context.keptMlines.push_back({id, styleLink, outline});
    return true;
}

// Kinds that something in the host reads by name (the renderer, the
// writers, the models); records of other kinds are only kept and written
// back, and may be held in runs.
bool readByName(std::string_view kind)
{
    static constexpr std::string_view kKnown[] = {
        "LINE",     "ARC",        "CIRCLE",     "LWPOLYLINE", "MLINE",           "TEXT",          "INSERT",
        "MTEXT",    "ATTRIB",     "ATTDEF",     "HATCH",      "DIMENSION",       "SPLINE",        "ELLIPSE",
        "POINT",    "SOLID",      "TRACE",      "3DFACE",     "LEADER",          "POLYLINE",      "VERTEX",
        "SEQEND",   "VIEWPORT",   "BLOCK",      "ENDBLK",     "MESH",            "WIPEOUT",       "IMAGE",
        "RAY",      "XLINE",      "DICTIONARY", "MLINESTYLE", "SORTENTSTABLE",   "LAYOUT",        "XRECORD",
        "ACDBPLACEHOLDER",
    };
    return std::find(std::begin(kKnown), std::end(kKnown), kind) != std::end(kKnown);
}

// The largest record a run holds: an object costs little beside a larger
// one, which a run would only copy once more while it is read.
constexpr std::size_t kLargestRunRecord = 256;
// The most records a run holds: splitting its last one off (a selection of
// the last entity) walks the run.
constexpr std::size_t kMostRunRecords = 4096;

// Whether a record may join a run: a small one of a kind nothing reads by
// name, with no owner of its own; one without a handle only while the
// handles after the seed are free (near the top of the range they may be
// taken, and records get handles one by one).
bool mayJoinRun(const Record& record, const RecordBasics& basics, const ReadContext& context)
{
    return record.packedGroups().bytes().size() <= kLargestRunRecord && basics.owner == 0
           && !readByName(record.kind())
           && (basics.handle != 0 || context.db.handseed() <= kxdbHighestHandle - kMostRunRecords);
}

// An entity record may join a run when it has no look of its own either.
bool mayJoinRun(const Record& record, const EntityParts& parts, const ReadContext& context)
{
    const EntityLook& look = parts.look;
    // Told by what the parts hold, as objectBytes tells it: no entity.
    return !parts.entity && std::holds_alternative<std::monostate>(parts.unmade) && look.layer == "0"
           && look.linetype.empty() && look.colorIndex.empty() && look.color == KxCmColor()
           && mayJoinRun(record, parts.basics, context);
}

// Whether a record of a run may keep the handle its file gives it: no object
// and no record of a run (the one being gathered too) has it.
bool mayKeepHandle(std::uint64_t handle, const ReadContext& context)
{
    return handle <= kxdbHighestHandle && (context.run.count == 0 || handle != context.run.firstHandle)
           && !context.runRecordHandles.contains(handle) && context.db.objectIdFromHandle(handle).isNull();
}

// Adds the record to the run being gathered, after finishing one it cannot
// join; block is null for objects. Records without handles join a run of
// such records, records with handles a run of such records, the run taking
// the first record's handle. False, with the run finished, when the
// record's handle cannot be kept so.
bool gather(const Record& record, ReadContext& context, KxDbObjectId block, std::uint64_t handle)
{
    ReadContext::PendingRun& run = context.run;
    const bool continues = run.count > 0 && run.block == block && run.kind == record.kind()
                           && run.count < kMostRunRecords && (handle == 0) == (run.firstHandle == 0);
    if (run.count > 0 && !continues)
        finishRecordRun(context);
    // The layer and linetype an entity of its own would make before its
    // handle is given, so that they take the same handles.
    if (run.count == 0 && !block.isNull()) {
        context.layer("0");
        context.byLayerLinetype();
    }
    if (handle != 0 && !mayKeepHandle(handle, context)) {
        finishRecordRun(context);
        return false;
    }
    if (run.count == 0) {
        run.block = block;
        run.kind = record.kind();
        run.firstHandle = handle;
        run.firstGroups = record.packedGroups().bytes();
    } else {
        kaldo::KeptRecordTail::append(run.further, run.lastHandle, handle, record.packedGroups());
        if (handle != 0)
            context.holdRunRecordHandle(handle);
    }
    run.lastHandle = handle;
    run.greatestHandle = run.count == 0 ? handle : std::max(run.greatestHandle, handle);
    ++run.count;
    return true;
}

}  // namespace

void finishRecordRun(ReadContext& context)
{
    ReadContext::PendingRun& run = context.run;
    if (run.count == 0)
        return;
    const KxDbPackedGroupsView first(run.firstGroups);
    kaldo::KeptRecordTail tail;
    if (run.count > 1)
        tail = kaldo::KeptRecordTail(run.further, run.count - 1);
    KxDbObject* added = nullptr;
    if (run.block.isNull()) {
        added = run.count == 1 ? new KxDbUnmodelledObject(run.kind, first)
                               : new kaldo::ObjectRecordRun(run.kind, first, std::move(tail));
        context.add(added, RecordBasics{run.firstHandle, 0, {}});
    } else {
        std::unique_ptr<KxDbUnmodelledEntity> entity;
        if (run.count == 1)
            entity = std::make_unique<KxDbUnmodelledEntity>(run.kind, first);
        else
            entity = std::make_unique<kaldo::RecordRun>(run.kind, first, std::move(tail));
        RecordBasics basics{run.firstHandle, 0, {}};
        EntityLook().applyTo(*entity, context, basics);
        added = append(context, std::move(entity), kaldo::EntityKind::Unmodelled, basics, run.block, 0);
    }
    if (run.count > 1) {
        // Records the file gave no handles take those after the run's.
        std::uint64_t greatest = run.greatestHandle;
        if (run.firstHandle == 0) {
            greatest = added->handle() + run.count - 1;
            for (std::uint64_t handle = added->handle() + 1; handle <= greatest; ++handle)
                context.holdRunRecordHandle(handle);
        }
        context.db.setHandseed(std::max(context.db.handseed(), greatest + 1));
        context.maxHandle = std::max(context.maxHandle, greatest);
        context.runs.push_back(added->objectId());
    }
    run.count = 0;
    run.further.clear();
}

void separateNamedRunRecords(ReadContext& context)
{
    std::vector<std::uint64_t> named;
    const auto note = [&](std::uint64_t handle) {
        if (context.runRecordHandles.contains(handle))
            named.push_back(handle);
    };
    context.dictionaryEntries.forEach([&](const PendingDictionaryEntries::Entry& entry) { note(entry.handle); });
    for (const ReadContext::OwnerReference& reference : context.ownerReferences)
        note(reference.owner);
    if (named.empty())
        return;
    std::sort(named.begin(), named.end());
    std::vector<KxDbObjectId> runs;
    for (const KxDbObjectId id : context.runs) {
        bool holdsNamed = false;
        const auto find = [&](KxDbPackedGroupsView, std::uint64_t handle) {
            holdsNamed = holdsNamed || std::binary_search(named.begin(), named.end(), handle);
        };
        const KxDbObject* run = context.db.peekObject(id);
        if (const auto* entity = KxDbUnmodelledEntity::cast(run))
            kaldo::forEachKeptRecord(*entity, entity->handle(), find);
        else if (const auto* object = KxDbUnmodelledObject::cast(run))
            kaldo::forEachKeptRecord(*object, object->handle(), find);
        if (holdsNamed)
            runs.push_back(id);
    }
    kaldo::separateRecords(context.db, runs);
}

bool gatherKeptObject(const Record& record, ReadContext& context)
{
    const RecordBasics basics = rawRecordBasics(record);
    if (!mayJoinRun(record, basics, context)) {
        finishRecordRun(context);
        return false;
    }
    return gather(record, context, KxDbObjectId(), basics.handle);
}

void readEntityAhead(const Record& record, std::unique_ptr<RecordAhead>& slot)
{
    if (!slot)
        slot = std::make_unique<EntityParts>();
    auto& parts = static_cast<EntityParts&>(*slot);
    try {
        takeApart(record, parts);
    } catch (...) {
        parts.unmade = {};
        parts.entity.reset();
        parts.error = std::current_exception();
    }
}

void readEntity(const Record& record, ReadContext& context, KxDbObjectId block, RecordAhead* ahead)
{
    if (record.kindCode() == RecordKind::Mline) {
        finishRecordRun(context);
        if (keepMlineUnopened(record, context, block))
            return;
        RecordBasics basics;
        EntityLook look;
        MlineStyleLink styleLink;
        std::unique_ptr<KxDbEntity> entity(readMline(record, basics, [&look](const Group& g) { return look.take(g); },
                                                     styleLink, context.mlineLists));
        look.applyTo(*entity, context, basics);
        const KxDbEntity* added =
            append(context, std::move(entity), kaldo::EntityKind::Mline, basics, block, record.line());
        context.styleReferences.push_back({added->objectId(), styleLink.handle, styleLink.name, styleLink.line});
        return;
    }
    // Held by the parts until its block takes it, so that a group refused on
    // the way adds nothing; taken apart here, into the parts the context
    // reuses, when not taken apart ahead.
    auto* parts = static_cast<EntityParts*>(ahead);
    if (!parts) {
        if (!context.entityParts)
            context.entityParts = std::make_unique<EntityParts>();
        parts = static_cast<EntityParts*>(context.entityParts.get());
        takeApart(record, *parts);
    } else if (parts->error) {
        std::rethrow_exception(parts->error);
    }
    if (mayJoinRun(record, *parts, context)
        && gather(record, context, block.isNull() ? context.roots.modelSpace : block, parts->basics.handle))
        return;
    finishRecordRun(context);
    if (keepUnopened(record, *parts, context, block))
        return;
    if (parts->verticesUnread)
        takeApart(record, *parts, false);
    makeEntity(*parts);
    if (!parts->entity) {
        auto unmodelled = KxDbUnmodelledEntity::make(record.kind(), record.packedGroups());
        RecordBasics lookKept;
        parts->look.applyTo(*unmodelled, context, lookKept);
        append(context, std::move(unmodelled), kaldo::EntityKind::Unmodelled, parts->basics, block, record.line());
        return;
    }
    parts->look.applyTo(*parts->entity, context, parts->basics);
    append(context, std::move(parts->entity), madeKind(record.kindCode()), parts->basics, block, record.line());
}

namespace {

// The name as the file spelled it when it still names the record.
std::string_view spelled(KxDbPackedGroupsView kept, int code, const std::string& name)
{
    std::string_view found = name;
    kept.forEach([&](std::int16_t groupCode, std::uint8_t part, std::string_view value) {
        if (groupCode != code || part != 1 || !kaldo::sameName(wideFromUtf8(value), wideFromUtf8(name)))
            return true;
        found = value;
        return false;
    });
    return found;
}

// kept: the entity's keptGroups().
void writeEntityHead(GroupWriter& w, const char* kind, const KxDbEntity& e, const KxDbDatabase& db, NameCache& names,
                     KxDbPackedGroupsView kept)
{
    // The entity is the drawing's, or made aside from its record under its
    // id: db is its database.
    writeRecordHead(w, kind, e, names.handle(e.objectId()), names.ownerHandle(e.ownerId()));
    w.plain(100, "AcDbEntity");
    const bool spelledOtherwise = !kept.empty();
    const std::string& layer = names(e.layerId(), "0");
    w.text(8, spelledOtherwise ? spelled(kept, 8, layer) : layer);
    if (e.linetypeId() != db.byLayerLinetype() && !e.linetypeId().isNull()) {
        const std::string& linetype = names(e.linetypeId(), "ByLayer");
        w.text(6, spelledOtherwise ? spelled(kept, 6, linetype) : linetype);
    }
    const KxCmColor color = e.color();
    if (!color.isByLayer())
        writeColor(w, color, false);
    const bool byColor = color.isByColor();
    kept.forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        if (part == 1 && code != 8 && code != 6 && (code != 62 || byColor))
            w.text(code, value);
    });
}

void writeNormal(GroupWriter& w, const KxGeVector3d& n)
{
    if (n.x != 0 || n.y != 0 || n.z != 1)
        w.vector(210, n);
}

}  // namespace

void writeEntity(GroupWriter& w, const KxDbDatabase& db, const KxDbEntity& entity, NameCache& names)
{
    const KxDbPackedGroupsView kept = entity.keptGroups();
    switch (entityKind(entity)) {
    case EntityKind::Unmodelled: {
        const auto& unmodelled = static_cast<const KxDbUnmodelledEntity&>(entity);
        const std::uint64_t owner = names.ownerHandle(entity.ownerId());
        const std::uint64_t handle = names.handle(entity.objectId());
        const std::string_view kind = unmodelled.dxfName();
        forEachKeptRecord(unmodelled, handle, [&](KxDbPackedGroupsView groups, std::uint64_t recordHandle) {
            writeUnmodelledRecord(w, kind, groups, recordHandle, owner);
        });
        return;
    }
    case EntityKind::Line: {
        const auto& line = static_cast<const KxDbLine&>(entity);
        writeEntityHead(w, "LINE", entity, db, names, kept);
        w.plain(100, "AcDbLine");
        w.point(10, line.startPoint());
        w.point(11, line.endPoint());
        writeNormal(w, line.normal());
        writeKeptPart(w, kept, 2);
        break;
    }
    case EntityKind::Arc: {
        const auto& arc = static_cast<const KxDbArc&>(entity);
        writeEntityHead(w, "ARC", entity, db, names, kept);
        w.plain(100, "AcDbCircle");
        w.point(10, arc.center());
        w.real(40, arc.radius());
        writeNormal(w, arc.normal());
        writeKeptPart(w, kept, 2);
        w.plain(100, "AcDbArc");
        w.degrees(50, arc.startAngle());
        w.degrees(51, arc.endAngle());
        writeKeptPart(w, kept, 3);
        break;
    }
    case EntityKind::Circle: {
        const auto& circle = static_cast<const KxDbCircle&>(entity);
        writeEntityHead(w, "CIRCLE", entity, db, names, kept);
        w.plain(100, "AcDbCircle");
        w.point(10, circle.center());
        w.real(40, circle.radius());
        writeNormal(w, circle.normal());
        writeKeptPart(w, kept, 2);
        break;
    }
    case EntityKind::Polyline: {
        const auto& pline = static_cast<const KxDbPolyline&>(entity);
        writeEntityHead(w, "LWPOLYLINE", entity, db, names, kept);
        w.plain(100, "AcDbPolyline");
        w.integer(90, pline.numVerts());
        w.integer(70, (pline.isClosed() ? 1 : 0) | (pline.plinegen() ? 128 : 0));
        if (pline.constantWidth() != 0)
            w.real(43, pline.constantWidth());
        if (pline.elevation() != 0)
            w.real(38, pline.elevation());
        if (pline.thickness() != 0)
            w.real(39, pline.thickness());
        for (int i = 0; i < pline.numVerts(); ++i) {
            const KxDbPolyline::Vertex v = pline.vertexAt(i);
            w.real(10, v.x);
            w.real(20, v.y);
            if (v.startWidth != 0 || v.endWidth != 0) {
                w.real(40, v.startWidth);
                w.real(41, v.endWidth);
            }
            if (v.bulge != 0)
                w.real(42, v.bulge);
        }
        writeNormal(w, pline.normal());
        writeKeptPart(w, kept, 2);
        break;
    }
    case EntityKind::Mline:
        writeEntityHead(w, "MLINE", entity, db, names, kept);
        writeMlineBody(w, db, static_cast<const KxDbMline&>(entity));
        writeKeptPart(w, kept, 2);
        break;
    case EntityKind::Other:
        return;
    }
    writeKeptPart(w, kept, kxdbExtendedDataPart);
}

}  // namespace kaldo::dxf
