#include "kaldo/dxf/R12Writer.h"

#include "kaldo/db/NameKey.h"
#include "kaldo/db/PackedGroupValue.h"
#include "kaldo/db/RecordRun.h"
#include "kaldo/dxf/AtomicFile.h"
#include "kaldo/dxf/DrawingExtents.h"
#include "kaldo/dxf/GroupReader.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <set>
#include <vector>

namespace kaldo::dxf {

namespace {

// The groups of a kept record that R12 gives the same meaning, by kind;
// the common part (layer, linetype, colour) is written from the entity.
const std::set<int>* keptGeometryCodes(const std::string& kind)
{
    static const std::set<int> solid = {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 39, 210, 220, 230};
    static const std::set<int> point = {10, 20, 30, 39, 210, 220, 230};
    static const std::set<int> text = {1, 7, 10, 20, 30, 11, 21, 31, 39, 40, 41, 50, 51, 71, 72, 73, 210, 220, 230};
    static const std::set<int> insert = {2, 10, 20, 30, 41, 42, 43, 44, 45, 50, 70, 71, 210, 220, 230};
    static const std::set<int> polyline = {66, 10, 20, 30, 39, 40, 41, 70, 71, 72, 73, 74, 75, 210, 220, 230};
    static const std::set<int> vertex = {10, 20, 30, 40, 41, 42, 50, 70, 71, 72, 73, 74};
    static const std::set<int> seqend = {};
    static const std::map<std::string, const std::set<int>*, std::less<>> byKind = {
        {"SOLID", &solid},       {"POINT", &point},   {"TEXT", &text},    {"INSERT", &insert},
        {"POLYLINE", &polyline}, {"VERTEX", &vertex}, {"SEQEND", &seqend}};
    const auto found = byKind.find(kind);
    return found == byKind.end() ? nullptr : found->second;
}

// Text in another style than STANDARD would need that style's record,
// which the drawing keeps only as read: it is left out.
bool inStandardStyle(const std::vector<KxDbFileGroup>& groups)
{
    return std::none_of(groups.begin(), groups.end(), [](const KxDbFileGroup& g) {
        return g.code == 7 && !kaldo::sameName(wideFromUtf8(trimmed(g.value)), L"STANDARD");
    });
}

bool hasAttributes(const std::vector<KxDbFileGroup>& groups)
{
    return std::any_of(groups.begin(), groups.end(),
                       [](const KxDbFileGroup& g) { return g.code == 66 && trimmed(g.value) == "1"; });
}

constexpr const char* kVersion = "AC1009";

bool isWorldNormal(const KxGeVector3d& n)
{
    return std::abs(n.x) < kxGeTolerance && std::abs(n.y) < kxGeTolerance && std::abs(n.z - 1) < kxGeTolerance;
}

class R12Writer {
public:
    R12Writer(int fd, const KxDbDatabase& db, const KeptSections& kept, NearestColorIndex nearestIndex)
        : w_(fd), db_(db), kept_(kept), nearestIndex_(nearestIndex), extents_(drawingExtents(db, kept.extents))
    {
        w_.encodeAs(kVersion, kept.codePage);
    }

    LeftOutKinds write()
    {
        writeHeader();
        writeTables();
        writeBlocks();
        w_.text(0, "SECTION");
        w_.text(2, "ENTITIES");
        writeEntitiesOf(db_.modelSpaceId(), false);
        writeEntitiesOf(db_.paperSpaceId(), true);
        w_.text(0, "ENDSEC");
        w_.text(0, "EOF");
        w_.flush();
        return leftOut_;
    }

private:
    std::string nameOf(KxDbObjectId id, const char* fallback) const
    {
        const auto* record = KxDbSymbolTableRecord::cast(db_.peekObject(id));
        return record ? utf8FromWide(record->name()) : fallback;
    }

    // 0 by block, 256 by layer, an index as it is, a true colour the
    // nearest index.
    int indexOf(const KxCmColor& color) const
    {
        return color.isByColor() ? nearestIndex_(color.color() & 0xFFFFFFu) : color.colorIndex();
    }

    void writeHeader()
    {
        w_.text(0, "SECTION");
        w_.text(2, "HEADER");
        w_.text(9, "$ACADVER");
        w_.text(1, kVersion);
        w_.text(9, "$DWGCODEPAGE");
        w_.text(3, w_.codePage());
        w_.text(9, "$INSBASE");
        w_.point(10, 0, 0, 0);
        w_.text(9, "$EXTMIN");
        w_.point(10, extents_.min);
        w_.text(9, "$EXTMAX");
        w_.point(10, extents_.max);
        w_.text(9, "$CLAYER");
        w_.text(8, nameOf(db_.clayer(), "0"));
        w_.text(0, "ENDSEC");
    }

    template <class Table>
    std::vector<KxDbObjectId> recordsOf(KxDbObjectId tableId) const
    {
        std::vector<KxDbObjectId> records;
        if (const auto* table = Table::cast(db_.peekObject(tableId)))
            for (auto it = table->newIterator(); !it->done(); it->step())
                records.push_back(it->getRecordId());
        return records;
    }

    void tableHead(const char* name, std::size_t count)
    {
        w_.text(0, "TABLE");
        w_.text(2, name);
        w_.integer(70, std::int64_t(count));
    }

    void writeTables()
    {
        w_.text(0, "SECTION");
        w_.text(2, "TABLES");
        writeViewportTable();
        writeLinetypeTable();
        writeLayerTable();
        tableHead("STYLE", 1);
        w_.text(0, "STYLE");
        w_.text(2, "STANDARD");
        w_.integer(70, 0);
        w_.real(40, 0);
        w_.real(41, 1);
        w_.real(50, 0);
        w_.integer(71, 0);
        w_.real(42, 2.5);
        w_.text(3, "txt");
        w_.text(4, "");
        w_.text(0, "ENDTAB");
        for (const char* empty : {"VIEW", "UCS"}) {
            tableHead(empty, 0);
            w_.text(0, "ENDTAB");
        }
        tableHead("APPID", 1);
        w_.text(0, "APPID");
        w_.text(2, "ACAD");
        w_.integer(70, 0);
        w_.text(0, "ENDTAB");
        tableHead("DIMSTYLE", 1);
        w_.text(0, "DIMSTYLE");
        w_.text(2, "STANDARD");
        w_.integer(70, 0);
        w_.text(0, "ENDTAB");
        w_.text(0, "ENDSEC");
    }

    // The active viewport shows the drawing's extents.
    void writeViewportTable()
    {
        const bool empty = extents_.min.x > extents_.max.x;
        // Extents may span more than the largest number: the middle is taken
        // without overflow and the height kept to the largest number.
        const double cx = empty ? 0 : std::midpoint(extents_.min.x, extents_.max.x);
        const double cy = empty ? 0 : std::midpoint(extents_.min.y, extents_.max.y);
        const double height = empty ? 10
                                    : std::clamp(extents_.max.y - extents_.min.y, 1e-3,
                                                 std::numeric_limits<double>::max());
        tableHead("VPORT", 1);
        w_.text(0, "VPORT");
        w_.text(2, "*ACTIVE");
        w_.integer(70, 0);
        w_.point(10, 0, 0, 0);
        w_.point(11, 1, 1, 0);
        w_.real(12, cx);
        w_.real(22, cy);
        w_.real(13, 0);
        w_.real(23, 0);
        w_.real(14, 1);
        w_.real(24, 1);
        w_.real(15, 0);
        w_.real(25, 0);
        w_.point(16, 0, 0, 1);
        w_.point(17, 0, 0, 0);
        w_.real(40, height);
        w_.real(41, 1.5);
        w_.real(42, 50);
        w_.real(43, 0);
        w_.real(44, 0);
        w_.real(50, 0);
        w_.real(51, 0);
        for (const auto& [code, value] : {std::pair{71, 0}, {72, 100}, {73, 1}, {74, 3}, {75, 0}, {76, 0}, {77, 0},
                                          {78, 0}})
            w_.integer(code, value);
        w_.text(0, "ENDTAB");
    }

    // ByLayer and ByBlock are no records in R12.
    void writeLinetypeTable()
    {
        std::vector<const KxDbLinetypeTableRecord*> linetypes;
        for (const KxDbObjectId id : recordsOf<KxDbLinetypeTable>(db_.linetypeTableId()))
            if (id != db_.byLayerLinetype() && id != db_.byBlockLinetype())
                if (const auto* lt = KxDbLinetypeTableRecord::cast(db_.peekObject(id)))
                    linetypes.push_back(lt);
        tableHead("LTYPE", linetypes.size());
        for (const KxDbLinetypeTableRecord* lt : linetypes) {
            w_.text(0, "LTYPE");
            w_.wide(2, lt->name());
            w_.integer(70, 0);
            w_.wide(3, lt->description());
            w_.integer(72, 65);
            w_.integer(73, lt->numDashes());
            w_.real(40, lt->patternLength());
            for (int i = 0; i < lt->numDashes(); ++i)
                w_.real(49, lt->dashLengthAt(i));
        }
        w_.text(0, "ENDTAB");
    }

    void writeLayerTable()
    {
        std::vector<const KxDbLayerTableRecord*> layers;
        for (const KxDbObjectId id : recordsOf<KxDbLayerTable>(db_.layerTableId()))
            if (const auto* layer = KxDbLayerTableRecord::cast(db_.peekObject(id)))
                layers.push_back(layer);
        tableHead("LAYER", layers.size());
        for (const KxDbLayerTableRecord* layer : layers) {
            w_.text(0, "LAYER");
            w_.wide(2, layer->name());
            w_.integer(70, layer->isFrozen() ? 1 : 0);
            const int index = indexOf(layer->color());
            const int shown = index < 1 || index > 255 ? 7 : index;
            w_.integer(62, layer->isOff() ? -shown : shown);
            const KxDbObjectId linetype = layer->linetypeObjectId();
            w_.text(6, linetype.isNull() ? std::string("CONTINUOUS") : nameOf(linetype, "CONTINUOUS"));
        }
        w_.text(0, "ENDTAB");
    }

    // The layout blocks, empty: their entities are in the ENTITIES section;
    // then every other block but further layouts, with its base point and
    // flags as read.
    void writeBlocks()
    {
        w_.text(0, "SECTION");
        w_.text(2, "BLOCKS");
        writeLayoutBlocks();
        for (const KxDbObjectId id : recordsOf<KxDbBlockTable>(db_.blockTableId())) {
            const auto* block = KxDbBlockTableRecord::cast(db_.peekObject(id));
            if (!block || id == db_.modelSpaceId() || id == db_.paperSpaceId() || isLayoutName(block->name()))
                continue;
            const std::optional<BlockEnds::Ends> ends = kept_.blockEnds.find(id);
            const std::optional<BlockEndRecord> begin = ends ? blockEndRecord(db_, ends->begin) : std::nullopt;
            const auto number = [&begin](int code) {
                const auto found = begin ? kaldo::firstGroupValue(begin->groups, code) : std::nullopt;
                return found ? std::string(trimmed(*found)) : std::string("0");
            };
            w_.text(0, "BLOCK");
            w_.text(8, "0");
            w_.wide(2, block->name());
            w_.text(70, number(70));
            w_.text(10, number(10));
            w_.text(20, number(20));
            w_.text(30, number(30));
            w_.wide(3, block->name());
            writeEntitiesOf(id, false);
            w_.text(0, "ENDBLK");
            w_.text(8, "0");
        }
        w_.text(0, "ENDSEC");
    }

    static bool isLayoutName(const std::wstring& name)
    {
        const std::wstring start = name.substr(0, 12);
        return kaldo::sameName(start, L"*Paper_Space") || kaldo::sameName(start, L"*Model_Space");
    }

    void writeLayoutBlocks()
    {
        for (const auto& [name, paper] : {std::pair{"$MODEL_SPACE", false}, {"$PAPER_SPACE", true}}) {
            w_.text(0, "BLOCK");
            if (paper)
                w_.integer(67, 1);
            w_.text(8, "0");
            w_.text(2, name);
            w_.integer(70, 0);
            w_.point(10, 0, 0, 0);
            w_.text(3, name);
            w_.text(1, "");
            w_.text(0, "ENDBLK");
            if (paper)
                w_.integer(67, 1);
            w_.text(8, "0");
        }
    }

    void writeEntitiesOf(KxDbObjectId blockId, bool paper)
    {
        const auto* block = KxDbBlockTableRecord::cast(db_.peekObject(blockId));
        if (!block)
            return;
        for (auto it = block->newIterator(); !it->done(); it->step())
            if (const auto* entity = KxDbEntity::cast(db_.peekObject(it->getEntityId())))
                writeEntity(*entity, paper);
    }

    void head(const char* kind, const KxDbEntity& e, bool paper)
    {
        w_.text(0, kind);
        if (paper)
            w_.integer(67, 1);
        w_.text(8, nameOf(e.layerId(), "0"));
        if (e.linetypeId() == db_.byBlockLinetype())
            w_.text(6, "BYBLOCK");
        else if (e.linetypeId() != db_.byLayerLinetype() && !e.linetypeId().isNull())
            w_.text(6, nameOf(e.linetypeId(), "BYLAYER"));
        if (!e.color().isByLayer())
            w_.integer(62, indexOf(e.color()));
    }

    void normal(const KxGeVector3d& n)
    {
        if (!isWorldNormal(n))
            w_.vector(210, n);
    }

    void writeEntity(const KxDbEntity& e, bool paper)
    {
        if (const auto* line = KxDbLine::cast(&e)) {
            head("LINE", e, paper);
            w_.point(10, line->startPoint());
            w_.point(11, line->endPoint());
            normal(line->normal());
        } else if (const auto* arc = KxDbArc::cast(&e)) {
            head("ARC", e, paper);
            w_.point(10, arc->center());
            w_.real(40, arc->radius());
            normal(arc->normal());
            w_.degrees(50, arc->startAngle());
            w_.degrees(51, arc->endAngle());
        } else if (const auto* circle = KxDbCircle::cast(&e)) {
            head("CIRCLE", e, paper);
            w_.point(10, circle->center());
            w_.real(40, circle->radius());
            normal(circle->normal());
        } else if (const auto* pline = KxDbPolyline::cast(&e)) {
            writePolyline(*pline, paper);
        } else if (const auto* kept = KxDbUnmodelledEntity::cast(&e)) {
            writeKept(*kept, paper);
        } else if (KxDbMline::cast(&e)) {
            ++leftOut_["MLINE"];
        }
    }

    // A light polyline in the old form: the polyline, a VERTEX per vertex
    // in its plane (elevation as every vertex's z), SEQEND.
    void writePolyline(const KxDbPolyline& pline, bool paper)
    {
        head("POLYLINE", pline, paper);
        w_.integer(66, 1);
        w_.point(10, 0, 0, pline.elevation());
        w_.integer(70, (pline.isClosed() ? 1 : 0) | (pline.plinegen() ? 128 : 0));
        if (pline.thickness() != 0)
            w_.real(39, pline.thickness());
        if (pline.constantWidth() != 0) {
            w_.real(40, pline.constantWidth());
            w_.real(41, pline.constantWidth());
        }
        normal(pline.normal());
        for (const KxDbPolyline::Vertex& v : pline.vertices()) {
            head("VERTEX", pline, paper);
            w_.point(10, v.x, v.y, pline.elevation());
            if (v.startWidth != 0 || v.endWidth != 0) {
                w_.real(40, v.startWidth);
                w_.real(41, v.endWidth);
            }
            if (v.bulge != 0)
                w_.real(42, v.bulge);
        }
        head("SEQEND", pline, paper);
    }

    // An INSERT with attributes is left out with them: its ATTRIB records
    // and their SEQEND go unwritten and uncounted.
    void writeKept(const KxDbUnmodelledEntity& kept, bool paper)
    {
        const std::string kind(kept.dxfName());
        if (skippingAttributes_) {
            skippingAttributes_ = kind == "ATTRIB";
            if (kind == "ATTRIB" || kind == "SEQEND")
                return;
        }
        const std::set<int>* codes = keptGeometryCodes(kind);
        const bool attributed = kind == "INSERT" && hasAttributes(kept.groups());
        if (!codes || attributed || (kind == "TEXT" && !inStandardStyle(kept.groups()))) {
            leftOut_[kind] += int(kaldo::keptRecordCount(kept));
            skippingAttributes_ = attributed;
            return;
        }
        head(kind.c_str(), kept, paper);
        for (const KxDbFileGroup& g : kept.groups())
            if (codes->count(g.code))
                w_.text(g.code, trimmed(g.value));
    }

    GroupWriter w_;
    const KxDbDatabase& db_;
    const KeptSections& kept_;
    NearestColorIndex nearestIndex_;
    // Measured once for the header and the active viewport, unless known
    // from the reading.
    const Extents extents_;
    LeftOutKinds leftOut_;
    bool skippingAttributes_ = false;
};

}  // namespace

LeftOutKinds writeDxfR12(int fd, const KxDbDatabase& db, const KeptSections& kept, NearestColorIndex nearestIndex)
{
    return R12Writer(fd, db, kept, nearestIndex).write();
}

LeftOutKinds saveDxfFileR12(const std::filesystem::path& path, const KxDbDatabase& db, const KeptSections& kept,
                            NearestColorIndex nearestIndex, bool replaceReadOnly)
{
    LeftOutKinds leftOut;
    writeFileAtomically(path, [&](int fd) { leftOut = writeDxfR12(fd, db, kept, nearestIndex); }, replaceReadOnly);
    return leftOut;
}

}  // namespace kaldo::dxf
