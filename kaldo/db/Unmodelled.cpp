#include "kxdbunmodelled.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// A record's storage: its kind's tag and the length of its groups, each a
// number of seven bits a byte, then the kind's bytes when it is not one of
// the common kinds, then the groups. The tag is twice the kind's place in
// kCommonKinds plus one, or twice the length of a kind spelled out: a text
// of a hundred bytes of groups takes two bytes more than them.
constexpr std::string_view kCommonKinds[] = {
    "TEXT",   "INSERT",   "MTEXT",  "ATTRIB",     "ATTDEF",  "HATCH",   "DIMENSION", "SPLINE",
    "ELLIPSE", "POINT",   "SOLID",  "TRACE",      "3DFACE",  "LEADER",  "POLYLINE",  "VERTEX",
    "SEQEND", "VIEWPORT", "BLOCK",  "ENDBLK",     "LAYOUT",  "XRECORD", "DICTIONARY", "ACDBPLACEHOLDER",
};

std::size_t numberSize(std::size_t value)
{
    std::size_t size = 1;
    for (; value >= 0x80; value >>= 7)
        ++size;
    return size;
}

char* putNumber(char* at, std::size_t value)
{
    for (; value >= 0x80; value >>= 7)
        *at++ = char((value & 0x7F) | 0x80);
    *at++ = char(value);
    return at;
}

const char* takeNumber(const char* at, std::size_t& value)
{
    value = 0;
    for (int shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(*at++);
        value |= std::size_t(byte & 0x7F) << shift;
        if (!(byte & 0x80))
            return at;
    }
}

std::size_t kindTag(std::string_view kind)
{
    const auto common = std::find(std::begin(kCommonKinds), std::end(kCommonKinds), kind);
    return common != std::end(kCommonKinds) ? 2 * std::size_t(common - std::begin(kCommonKinds)) + 1 : 2 * kind.size();
}

struct RecordParts {
    std::string_view kind;
    std::string_view groups;
    std::size_t size = 0;
};

RecordParts partsOf(const char* record)
{
    if (!record)
        return {};
    std::size_t tag = 0, groupsLength = 0;
    const char* at = takeNumber(takeNumber(record, tag), groupsLength);
    RecordParts parts;
    if (tag % 2 == 1) {
        parts.kind = kCommonKinds[tag / 2];
    } else {
        parts.kind = {at, tag / 2};
        at += tag / 2;
    }
    parts.groups = {at, groupsLength};
    parts.size = std::size_t(at + groupsLength - record);
    return parts;
}

}  // namespace

std::size_t KxDbUnmodelledRecord::recordSize(std::string_view dxfName, KxDbPackedGroupsView groups)
{
    if (dxfName.empty() && groups.empty())
        return 0;
    const std::size_t tag = kindTag(dxfName);
    const std::size_t spelled = tag % 2 == 1 ? 0 : dxfName.size();
    return numberSize(tag) + numberSize(groups.bytes().size()) + spelled + groups.bytes().size();
}

char* KxDbUnmodelledRecord::writeRecord(char* room, std::string_view dxfName, KxDbPackedGroupsView groups)
{
    if (dxfName.empty() && groups.empty())
        return nullptr;
    const std::size_t tag = kindTag(dxfName);
    const std::string_view spelled = tag % 2 == 1 ? std::string_view() : dxfName;
    const std::string_view bytes = groups.bytes();
    char* at = putNumber(putNumber(room, tag), bytes.size());
    // Either part may be empty, its data then null.
    std::copy(spelled.begin(), spelled.end(), at);
    std::copy(bytes.begin(), bytes.end(), at + spelled.size());
    return room;
}

KxDbUnmodelledRecord::KxDbUnmodelledRecord(std::string_view dxfName, KxDbPackedGroupsView groups)
{
    if (const std::size_t size = recordSize(dxfName, groups))
        m_record = reinterpret_cast<std::uintptr_t>(writeRecord(new char[size], dxfName, groups));
}

template <class T>
std::unique_ptr<T> KxDbUnmodelledRecord::makeWithRecord(std::string_view dxfName, KxDbPackedGroupsView groups)
{
    const std::size_t size = recordSize(dxfName, groups);
    std::unique_ptr<T> made(new (KxDbTrailingRoom{size}) T);
    if (size != 0) {
        char* room = reinterpret_cast<char*>(made.get()) + sizeof(T);
        made->m_record = reinterpret_cast<std::uintptr_t>(writeRecord(room, dxfName, groups)) | kInObject;
    }
    return made;
}

KxDbUnmodelledRecord::KxDbUnmodelledRecord(const KxDbUnmodelledRecord& other)
{
    *this = other;
}

KxDbUnmodelledRecord& KxDbUnmodelledRecord::operator=(const KxDbUnmodelledRecord& other)
{
    if (this == &other)
        return *this;
    freeRecord();
    if (other.m_record) {
        const std::size_t size = partsOf(other.record()).size;
        char* copy = new char[size];
        std::memcpy(copy, other.record(), size);
        m_record = reinterpret_cast<std::uintptr_t>(copy);
    }
    return *this;
}

KxDbUnmodelledRecord::~KxDbUnmodelledRecord()
{
    freeRecord();
}

void KxDbUnmodelledRecord::freeRecord()
{
    if (!(m_record & kInObject))
        delete[] reinterpret_cast<char*>(m_record);
    m_record = 0;
}

std::string_view KxDbUnmodelledRecord::dxfName() const
{
    return partsOf(record()).kind;
}

KxDbPackedGroupsView KxDbUnmodelledRecord::packedGroups() const
{
    return KxDbPackedGroupsView(partsOf(record()).groups);
}

std::size_t KxDbUnmodelledRecord::byteSize() const
{
    return partsOf(record()).size;
}

KX_RX_DEFINE_MEMBERS(KxDbUnmodelledObject, KxDbObject)
KX_RX_DEFINE_MEMBERS(KxDbUnmodelledEntity, KxDbEntity)

std::unique_ptr<KxDbUnmodelledObject> KxDbUnmodelledObject::make(std::string_view dxfName,
                                                                 KxDbPackedGroupsView groups)
{
    return makeWithRecord<KxDbUnmodelledObject>(dxfName, groups);
}

std::unique_ptr<KxDbUnmodelledEntity> KxDbUnmodelledEntity::make(std::string_view dxfName,
                                                                 KxDbPackedGroupsView groups)
{
    return makeWithRecord<KxDbUnmodelledEntity>(dxfName, groups);
}

std::unique_ptr<KxDbObject> KxDbUnmodelledObject::clone() const
{
    std::unique_ptr<KxDbUnmodelledObject> copy = make(dxfName(), packedGroups());
    copy->KxDbObject::copyFrom(this);
    return copy;
}

std::unique_ptr<KxDbObject> KxDbUnmodelledEntity::clone() const
{
    std::unique_ptr<KxDbUnmodelledEntity> copy = make(dxfName(), packedGroups());
    copy->KxDbEntity::copyFrom(this);
    return copy;
}

Kald::ErrorStatus KxDbUnmodelledObject::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    copyRecord(*static_cast<const KxDbUnmodelledObject*>(other));
    return Kald::eOk;
}

Kald::ErrorStatus KxDbUnmodelledEntity::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    copyRecord(*static_cast<const KxDbUnmodelledEntity*>(other));
    return Kald::eOk;
}
