#include "kxdbunmodelled.h"

#include <cstring>

namespace {

struct RecordLengths {
    std::uint32_t kind = 0;
    std::uint32_t groups = 0;
};

RecordLengths lengthsOf(const char* record)
{
    RecordLengths lengths;
    if (record)
        std::memcpy(&lengths, record, sizeof lengths);
    return lengths;
}

std::size_t recordSize(const RecordLengths& lengths)
{
    return sizeof(RecordLengths) + lengths.kind + lengths.groups;
}

}  // namespace

KxDbPackedGroups::KxDbPackedGroups(const std::vector<KxDbFileGroup>& groups)
{
    for (const KxDbFileGroup& g : groups)
        append(g.code, g.part, g.value);
}

void KxDbPackedGroups::append(int code, std::uint8_t part, std::string_view value)
{
    const auto bits = std::uint16_t(code);
    m_bytes.push_back(char(bits & 0xFF));
    m_bytes.push_back(char(bits >> 8));
    m_bytes.push_back(char(part));
    std::size_t length = value.size();
    for (; length >= 0x80; length >>= 7)
        m_bytes.push_back(char((length & 0x7F) | 0x80));
    m_bytes.push_back(char(length));
    m_bytes.append(value);
}

std::vector<KxDbFileGroup> KxDbPackedGroupsView::unpacked() const
{
    std::vector<KxDbFileGroup> groups;
    forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        groups.push_back(KxDbFileGroup{code, part, std::string(value)});
    });
    return groups;
}

KxDbUnmodelledRecord::KxDbUnmodelledRecord(std::string_view dxfName, KxDbPackedGroupsView groups)
{
    if (dxfName.empty() && groups.empty())
        return;
    const RecordLengths lengths{std::uint32_t(dxfName.size()), std::uint32_t(groups.bytes().size())};
    m_record = std::make_unique_for_overwrite<char[]>(recordSize(lengths));
    std::memcpy(m_record.get(), &lengths, sizeof lengths);
    std::memcpy(m_record.get() + sizeof lengths, dxfName.data(), dxfName.size());
    std::memcpy(m_record.get() + sizeof lengths + dxfName.size(), groups.bytes().data(), groups.bytes().size());
}

KxDbUnmodelledRecord::KxDbUnmodelledRecord(const KxDbUnmodelledRecord& other)
{
    *this = other;
}

KxDbUnmodelledRecord& KxDbUnmodelledRecord::operator=(const KxDbUnmodelledRecord& other)
{
    if (this == &other)
        return *this;
    m_record.reset();
    if (other.m_record) {
        const std::size_t size = recordSize(lengthsOf(other.m_record.get()));
        m_record = std::make_unique_for_overwrite<char[]>(size);
        std::memcpy(m_record.get(), other.m_record.get(), size);
    }
    return *this;
}

std::string_view KxDbUnmodelledRecord::dxfName() const
{
    if (!m_record)
        return {};
    return {m_record.get() + sizeof(RecordLengths), lengthsOf(m_record.get()).kind};
}

KxDbPackedGroupsView KxDbUnmodelledRecord::packedGroups() const
{
    if (!m_record)
        return {};
    const RecordLengths lengths = lengthsOf(m_record.get());
    return KxDbPackedGroupsView({m_record.get() + sizeof lengths + lengths.kind, lengths.groups});
}

std::size_t KxDbUnmodelledRecord::byteSize() const
{
    return m_record ? recordSize(lengthsOf(m_record.get())) : 0;
}

KX_RX_DEFINE_MEMBERS(KxDbUnmodelledObject, KxDbObject)
KX_RX_DEFINE_MEMBERS(KxDbUnmodelledEntity, KxDbEntity)

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
