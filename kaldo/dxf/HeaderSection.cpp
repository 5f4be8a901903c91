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

struct Variable {
    std::string name;
    long line = 0;
    std::vector<KxDbFileGroup> groups;
    std::vector<long> lines;
    Group at(std::size_t i) const { return Group{groups[i].code, groups[i].value, lines[i]}; }
};

KxGePoint3d pointOf(const Variable& v)
{
    double xyz[3] = {};
    for (std::size_t i = 0; i < v.groups.size(); ++i) {
        const int c = v.groups[i].code;
        if (c >= 10 && c <= 30 && c % 10 == 0)
            xyz[c / 10 - 1] = toReal(v.at(i));
    }
    return {xyz[0], xyz[1], xyz[2]};
}

void apply(const Variable& v, ReadContext& context, KxGePoint3d ucs[3])
{
    KxDbDatabase& db = context.db;
    if (v.groups.empty())
        throw DxfError(v.line, "the header variable " + v.name + " has no value.");
    const Group first = v.at(0);
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
        for (std::size_t i = 0; i < v.groups.size(); ++i)
            readColorGroup(v.at(i), color);
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
    std::vector<Variable> modelled;
    std::string version;
    std::string codePage(kDefaultCodePage);
    Variable* current = nullptr;
    KeptHeaderVariable* kept = nullptr;
    Group g;
    while (reader.next(g)) {
        if (g.code == 0) {
            if (trimmed(g.value) != "ENDSEC")
                throw DxfError(g.line, "the header ends without ENDSEC.");
            break;
        }
        if (g.code == 9) {
            const std::string name(trimmed(g.value));
            current = nullptr;
            kept = nullptr;
            if (isModelled(name)) {
                modelled.push_back(Variable{name, g.line, {}, {}});
                current = &modelled.back();
            } else {
                context.kept.header.push_back(KeptHeaderVariable{name, {}});
                kept = &context.kept.header.back();
            }
            continue;
        }
        const KxDbFileGroup group{std::int16_t(g.code), 0, std::string(g.value)};
        // The values after these are read in the encoding they give.
        if (current && current->groups.empty() && (current->name == "$ACADVER" || current->name == "$DWGCODEPAGE")) {
            (current->name == "$ACADVER" ? version : codePage) = std::string(trimmed(g.value));
            reader.decodeAs(version, codePage);
        }
        if (current) {
            current->groups.push_back(group);
            current->lines.push_back(g.line);
        } else if (kept) {
            kept->groups.push_back(group);
        } else {
            throw DxfError(g.line, "a header variable name (group 9) was expected.");
        }
    }
    if (g.code != 0)
        throw DxfError(g.line, "the file ends inside the header.");
    // The handle seed first: records made up while reading get handles above it.
    std::stable_partition(modelled.begin(), modelled.end(), [](const Variable& v) { return v.name == "$HANDSEED"; });
    KxGePoint3d ucs[3] = {{}, {1, 0, 0}, {0, 1, 0}};
    for (const Variable& v : modelled)
        apply(v, context, ucs);
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
    const Extents extents = drawingExtents(db, chunks);
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
    for (const KeptHeaderVariable& v : kept.header) {
        w.text(9, v.name);
        for (const KxDbFileGroup& g : v.groups)
            w.text(g.code, g.value);
    }
    w.text(0, "ENDSEC");
}

}  // namespace kaldo::dxf
