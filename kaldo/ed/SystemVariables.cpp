#include "kaldo/ed/SystemVariables.h"

#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kxdb.h"
#include "kxstring.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kaldo {

namespace {

using Reader = std::optional<VariableValue> (*)(const Editor&);
using Writer = bool (*)(const VariableValue&);

// One variable. A host variable has no reader and starts at initial; a
// variable with a reader but no writer is read-only. Numbers must lie in
// [low, high].
struct Definition {
    const wchar_t* name;
    short type;
    VariableValue initial;
    double low;
    double high;
    Reader read = nullptr;
    Writer write = nullptr;
};

constexpr double kAny = std::numeric_limits<double>::infinity();

KxDbDatabase* drawing()
{
    return host().database;
}

std::optional<VariableValue> readCmlstyle(const Editor&)
{
    if (!drawing())
        return std::nullopt;
    return VariableValue(drawing()->cmlstyleName());
}

bool writeCmlstyle(const VariableValue& value)
{
    KxDbDictionary* dict = nullptr;
    if (!drawing() || drawing()->getMLStyleDictionary(dict, KxDb::kForRead) != Kald::eOk)
        return false;
    KxDbObjectPtr<KxDbDictionary> styles(dict);
    KxDbObjectId id;
    const std::wstring& name = std::get<std::wstring>(value);
    return styles->getAt(name.c_str(), id) == Kald::eOk && drawing()->setCmlstyleID(id, name.c_str()) == Kald::eOk;
}

template <auto Getter>
std::optional<VariableValue> readShort(const Editor&)
{
    if (!drawing())
        return std::nullopt;
    return VariableValue(static_cast<short>((drawing()->*Getter)()));
}

template <auto Setter>
bool writeShort(const VariableValue& value)
{
    return drawing() && (drawing()->*Setter)(std::get<short>(value)) == Kald::eOk;
}

std::optional<VariableValue> readCmlscale(const Editor&)
{
    if (!drawing())
        return std::nullopt;
    return VariableValue(drawing()->cmlscale());
}

bool writeCmlscale(const VariableValue& value)
{
    return drawing() && drawing()->setCmlscale(std::get<double>(value)) == Kald::eOk;
}

template <auto Getter>
std::optional<VariableValue> readDirection(const Editor&)
{
    if (!drawing())
        return std::nullopt;
    const KxGeVector3d& v = (drawing()->*Getter)();
    return VariableValue(KxGePoint3d(v.x, v.y, v.z));
}

std::optional<VariableValue> readHasMore(const Editor& editor)
{
    return VariableValue(static_cast<short>(editor.scriptFeedsInput() ? 1 : 0));
}

const std::array kDefinitions = {
    Definition{L"ANGBASE", RTREAL, 0.0, -kAny, kAny},
    Definition{L"ANGDIR", RTSHORT, short(0), 0, 1},
    Definition{L"AUNITS", RTSHORT, short(0), 0, 4},
    Definition{L"AUPREC", RTSHORT, short(0), 0, 8},
    Definition{L"CMLJUST", RTSHORT, short(0), 0, 2, readShort<&KxDbDatabase::cmljust>,
               writeShort<&KxDbDatabase::setCmljust>},
    Definition{L"CMLSCALE", RTREAL, 1.0, -kAny, kAny, readCmlscale, writeCmlscale},
    Definition{L"CMLSTYLE", RTSTR, std::wstring(), 0, 0, readCmlstyle, writeCmlstyle},
    Definition{L"DIMZIN", RTSHORT, short(0), 0, 15, readShort<&KxDbDatabase::dimzin>,
               writeShort<&KxDbDatabase::setDimzin>},
    Definition{L"ERRNO", RTSHORT, short(0), -kAny, kAny},
    Definition{L"FILEDIA", RTSHORT, short(1), 0, 1},
    Definition{L"LASTPOINT", RT3DPOINT, KxGePoint3d(), 0, 0},
    Definition{L"LISPCOMMANDHASMORE", RTSHORT, short(0), 0, 1, readHasMore},
    Definition{L"LUNITS", RTSHORT, short(2), 1, 5},
    Definition{L"LUPREC", RTSHORT, short(4), 0, 8},
    Definition{L"MEASUREMENT", RTSHORT, short(0), 0, 1, readShort<&KxDbDatabase::measurement>,
               writeShort<&KxDbDatabase::setMeasurement>},
    Definition{L"PICKBOX", RTSHORT, short(3), 0, 50},
    Definition{L"TILEMODE", RTSHORT, short(1), 0, 1, readShort<&KxDbDatabase::tilemode>,
               writeShort<&KxDbDatabase::setTilemode>},
    Definition{L"UCSXDIR", RT3DPOINT, KxGePoint3d(), 0, 0, readDirection<&KxDbDatabase::ucsxdir>},
    Definition{L"UCSYDIR", RT3DPOINT, KxGePoint3d(), 0, 0, readDirection<&KxDbDatabase::ucsydir>},
};

const Definition* find(std::wstring_view name)
{
    const auto it = std::ranges::find_if(kDefinitions, [name](const Definition& d) { return equalsNoCase(d.name, name); });
    return it == kDefinitions.end() ? nullptr : &*it;
}

// The value converted to the variable's type and checked against its range.
std::optional<VariableValue> checked(const Definition& def, const VariableValue& value)
{
    std::optional<double> number;
    if (const auto* s = std::get_if<short>(&value))
        number = *s;
    else if (const auto* r = std::get_if<double>(&value))
        number = *r;
    switch (def.type) {
    case RTSHORT:
        if (!std::holds_alternative<short>(value) || *number < def.low || *number > def.high)
            return std::nullopt;
        return value;
    case RTREAL:
        if (!number || !std::isfinite(*number) || *number < def.low || *number > def.high)
            return std::nullopt;
        return VariableValue(*number);
    default:
        if (resultTypeOf(value) != def.type)
            return std::nullopt;
        return value;
    }
}

}  // namespace

SystemVariables::SystemVariables(const Editor& editor) : editor_(editor)
{
    for (const Definition& def : kDefinitions) {
        if (!def.read)
            hostValues_.emplace(def.name, def.initial);
    }
}

bool SystemVariables::exists(std::wstring_view name) const
{
    return find(name) != nullptr;
}

std::optional<VariableValue> SystemVariables::get(std::wstring_view name) const
{
    const Definition* def = find(name);
    if (!def)
        return std::nullopt;
    if (def->read)
        return def->read(editor_);
    return hostValues_.find(def->name)->second;
}

int SystemVariables::set(std::wstring_view name, const VariableValue& value)
{
    const Definition* def = find(name);
    if (!def || (def->read && !def->write))
        return RTERROR;
    const auto accepted = checked(*def, value);
    if (!accepted)
        return RTERROR;
    if (def->write)
        return def->write(*accepted) ? RTNORM : RTERROR;
    hostValues_.find(def->name)->second = *accepted;
    return RTNORM;
}

std::vector<std::wstring> SystemVariables::names() const
{
    std::vector<std::wstring> result;
    for (const Definition& def : kDefinitions)
        result.emplace_back(def.name);
    return result;
}

short SystemVariables::shortValue(std::wstring_view name, short fallback) const
{
    const auto value = get(name);
    const auto* s = value ? std::get_if<short>(&*value) : nullptr;
    return s ? *s : fallback;
}

double SystemVariables::realValue(std::wstring_view name, double fallback) const
{
    const auto value = get(name);
    const auto* r = value ? std::get_if<double>(&*value) : nullptr;
    return r ? *r : fallback;
}

KxGePoint3d SystemVariables::pointValue(std::wstring_view name) const
{
    const auto value = get(name);
    const auto* p = value ? std::get_if<KxGePoint3d>(&*value) : nullptr;
    return p ? *p : KxGePoint3d();
}

short resultTypeOf(const VariableValue& value)
{
    constexpr std::array<short, 4> types = {RTSHORT, RTREAL, RTSTR, RT3DPOINT};
    return types[value.index()];
}

void toResultBuffer(const VariableValue& value, kxresbuf& out)
{
    out.restype = resultTypeOf(value);
    if (const auto* s = std::get_if<short>(&value)) {
        out.resval.rint = *s;
    } else if (const auto* r = std::get_if<double>(&value)) {
        out.resval.rreal = *r;
    } else if (const auto* text = std::get_if<std::wstring>(&value)) {
        out.resval.rstring = kxutNewString(text->c_str());
    } else {
        const auto& p = std::get<KxGePoint3d>(value);
        out.resval.rpoint[0] = p.x;
        out.resval.rpoint[1] = p.y;
        out.resval.rpoint[2] = p.z;
    }
}

std::optional<VariableValue> fromResultBuffer(const kxresbuf& rb)
{
    switch (rb.restype) {
    case RTSHORT: return VariableValue(rb.resval.rint);
    case RTREAL: return VariableValue(rb.resval.rreal);
    case RTSTR: return VariableValue(std::wstring(rb.resval.rstring ? rb.resval.rstring : L""));
    case RT3DPOINT: return VariableValue(KxGePoint3d(rb.resval.rpoint[0], rb.resval.rpoint[1], rb.resval.rpoint[2]));
    default: return std::nullopt;
    }
}

}  // namespace kaldo
