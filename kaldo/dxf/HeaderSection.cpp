#include "kaldo/dxf/HeaderSection.h"

#include "kaldo/dxf/DrawingExtents.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/ReadContext.h"
#include "kaldo/dxf/RecordColor.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdict.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"

#include <algorithm>
#include <array>
#include <exception>

namespace kaldo::dxf {

namespace {

// The variables the database holds; every other one is kept.
constexpr std::array<std::string_view, 17> kModelled = {
    "$ACADVER", "$DWGCODEPAGE", "$HANDSEED", "$CMLSTYLE", "$CMLJUST", "$CMLSCALE", "$MEASUREMENT", "$DIMZIN",
    "$TILEMODE", "$CLAYER", "$CELTYPE", "$CECOLOR", "$UCSORG", "$UCSXDIR", "$UCSYDIR", "$EXTMIN", "$EXTMAX"};

bool isModelled(std::string_view name)
{
    return std::find(kModelled.begin(), kModelled.end(), name) != kModelled.end();
}

// A variable the database holds, as read: its groups packed, each two lines
// after the one before.
struct Variable {
    std::string name;
    long line = 0;
    KxDbPackedGroups groups;
    // Calls visit(group) for every group in order while it returns true.
    template <class Visit>
    void forEach(Visit&& visit) const
    {
        long at = line;
        groups.view().forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
            at += 2;
            return bool(visit(Group{code, value, at}));
        });
    }
};

KxGePoint3d pointOf(const Variable& v)
{
    double xyz[3] = {};
    v.forEach([&](const Group& g) {
        if (g.code >= 10 && g.code <= 30 && g.code % 10 == 0)
            xyz[g.code / 10 - 1] = toReal(g);
        return true;
    });
    return {xyz[0], xyz[1], xyz[2]};
}

void apply(const Variable& v, ReadContext& context, KxGePoint3d ucs[3])
{
    KxDbDatabase& db = context.db;
    if (v.groups.view().empty())
        throw DxfError(v.line, "the header variable " + v.name + " has no value.");
    Group first;
    v.forEach([&](const Group& g) {
        first = g;
        return false;
    });
    const auto badValue = [&] { throw DxfError(first.line + 1, "the value of " + v.name + " is out of range."); };
    if (v.name == "$ACADVER") {
        context.kept.version = std::string(trimmed(first.value));
    } else if (v.name == "$DWGCODEPAGE") {
        context.kept.codePage = std::string(trimmed(first.value));
    } else if (v.name == "$HANDSEED") {
        const std::uint64_t seed = toHandle(first, kxdbHighestHandle + 1);
        if (db.setHandseed(std::max<std::uint64_t>(seed, db.handseed())) != Kald::eOk)
            badValue();
    } else if (v.name == "$CMLSTYLE") {
        context.cmlstyleName = std::string(first.value);
    } else if (v.name == "$CMLJUST") {
        if (db.setCmljust(int(toInteger(first))) != Kald::eOk)
            badValue();
    } else if (v.name == "$CMLSCALE") {
        if (db.setCmlscale(toReal(first)) != Kald::eOk)
            badValue();
    } else if (v.name == "$MEASUREMENT") {
        if (db.setMeasurement(int(toInteger(first))) != Kald::eOk)
            badValue();
    } else if (v.name == "$DIMZIN") {
        if (db.setDimzin(int(toInteger(first))) != Kald::eOk)
            badValue();
    } else if (v.name == "$TILEMODE") {
        if (db.setTilemode(int(toInteger(first))) != Kald::eOk)
            badValue();
    } else if (v.name == "$CLAYER") {
        context.clayerName = std::string(trimmed(first.value));
    } else if (v.name == "$CELTYPE") {
        context.celtypeName = std::string(trimmed(first.value));
    } else if (v.name == "$CECOLOR") {
        KxCmColor color;
        v.forEach([&](const Group& g) {
            readColorGroup(g, color);
            return true;
        });
        db.setCecolor(color);
    } else if (v.name == "$UCSORG") {
        ucs[0] = pointOf(v);
    } else if (v.name == "$UCSXDIR") {
        ucs[1] = pointOf(v);
    } else if (v.name == "$UCSYDIR") {
        ucs[2] = pointOf(v);
    }
}

}  // namespace

void readHeaderSection(GroupReader& reader, ReadContext& context)
{
    std::string version;
    std::string codePage(kDefaultCodePage);
    // Each variable the database holds is applied once its groups are read,
    // so that only one is held. A value refused waits until the whole header
    // is read, the first of $HANDSEED's before any other's, as when the seed
    // was applied first (records made up while reading get handles above it;
    // no variable makes one).
    Variable current;
    bool inModelled = false;
    std::exception_ptr seedError, otherError;
    KxGePoint3d ucs[3] = {{}, {1, 0, 0}, {0, 1, 0}};
    const auto applyCurrent = [&] {
        if (!inModelled)
            return;
        inModelled = false;
        try {
            apply(current, context, ucs);
        } catch (const DxfError&) {
            std::exception_ptr& first = current.name == "$HANDSEED" ? seedError : otherError;
            if (!first)
                first = std::current_exception();
        }
    };
    KxDbPackedGroups& kept = context.kept.header;
    bool inKept = false;
    Group g;
    while (reader.next(g)) {
        if (g.code == 0) {
            if (trimmed(g.value) != "ENDSEC")
                throw DxfError(g.line, "the header ends without ENDSEC.");
            break;
        }
        if (g.code == 9) {
            const std::string_view name = trimmed(g.value);
            applyCurrent();
            inKept = !isModelled(name);
            if (inKept) {
                kept.append(9, 0, name);
            } else {
                current.name = name;
                current.line = g.line;
                current.groups.clear();
                inModelled = true;
            }
            continue;
        }
        // The values after these are read in the encoding they give.
        if (inModelled && current.groups.view().empty()
            && (current.name == "$ACADVER" || current.name == "$DWGCODEPAGE")) {
            (current.name == "$ACADVER" ? version : codePage) = std::string(trimmed(g.value));
            reader.decodeAs(version, codePage);
        }
        if (inModelled)
            current.groups.append(g.code, 0, g.value);
        else if (inKept)
            kept.append(g.code, 0, g.value);
        else
            throw DxfError(g.line, "a header variable name (group 9) was expected.");
    }
    if (g.code != 0)
        throw DxfError(g.line, "the file ends inside the header.");
    applyCurrent();
    if (seedError)
        std::rethrow_exception(seedError);
    if (otherError)
        std::rethrow_exception(otherError);
    context.db.setUcs(ucs[0], ucs[1] - KxGePoint3d(), ucs[2] - KxGePoint3d());
}

void resolveHeaderReferences(ReadContext& context)
{
    if (!context.clayerName.empty())
        context.db.setClayer(context.layer(context.clayerName));
    if (!context.celtypeName.empty())
        context.db.setCeltype(context.linetype(context.celtypeName));
    if (context.cmlstyleName.empty())
        return;
    const auto* styles = KxDbDictionary::cast(context.db.peekObject(context.db.mlineStyleDictionaryId()));
    KxDbObjectId style;
    const std::wstring name = wideFromUtf8(context.cmlstyleName);
    if (styles && styles->getAt(name.c_str(), style) == Kald::eOk)
        context.db.setCmlstyleID(style, name.c_str());
}

namespace {

std::string recordName(const KxDbDatabase& db, KxDbObjectId id, const char* fallback)
{
    const auto* record = KxDbSymbolTableRecord::cast(db.peekObject(id));
    return record ? utf8FromWide(record->name()) : fallback;
}

}  // namespace

std::string writtenVersion(const KeptSections& kept)
{
    return kept.version > kWrittenVersion ? kept.version : std::string(kWrittenVersion);
}

void writeHeaderSection(GroupWriter& w, const KxDbDatabase& db, const KeptSections& kept, const EntityChunks& chunks)
{
    w.text(0, "SECTION");
    w.text(2, "HEADER");
    w.text(9, "$ACADVER");
    w.text(1, writtenVersion(kept));
    w.text(9, "$DWGCODEPAGE");
    w.text(3, w.codePage());
    w.text(9, "$HANDSEED");
    w.handle(5, db.handseed());
    const std::wstring cmlstyle = db.cmlstyleName();
    w.text(9, "$CMLSTYLE");
    w.wide(2, cmlstyle.empty() ? std::wstring(kxdbStandardStyleName) : cmlstyle);
    w.text(9, "$CMLJUST");
    w.integer(70, db.cmljust());
    w.text(9, "$CMLSCALE");
    w.real(40, db.cmlscale());
    w.text(9, "$MEASUREMENT");
    w.integer(70, db.measurement());
    w.text(9, "$DIMZIN");
    w.integer(70, db.dimzin());
    w.text(9, "$CLAYER");
    w.text(8, recordName(db, db.clayer(), "0"));
    w.text(9, "$CELTYPE");
    w.text(6, recordName(db, db.celtype(), "ByLayer"));
    w.text(9, "$CECOLOR");
    writeColor(w, db.cecolor());
    w.text(9, "$UCSORG");
    w.point(10, db.ucsorg());
    w.text(9, "$UCSXDIR");
    w.vector(10, db.ucsxdir());
    w.text(9, "$UCSYDIR");
    w.vector(10, db.ucsydir());
    const Extents extents = drawingExtents(db, kept.extents, chunks);
    w.text(9, "$EXTMIN");
    w.point(10, extents.min);
    w.text(9, "$EXTMAX");
    w.point(10, extents.max);
    // Model space shown is the default: a drawing that never left it is
    // written without the variable.
    if (db.tilemode() != 1) {
        w.text(9, "$TILEMODE");
        w.integer(70, db.tilemode());
    }
    kept.header.view().forEach([&](int code, std::uint8_t, std::string_view value) { w.text(code, value); });
    w.text(0, "ENDSEC");
}

}  // namespace kaldo::dxf
