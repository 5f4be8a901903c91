// Records of a drawing file that the host reads but does not model: other
// kinds of entities (text, splines, hatches, ...) and objects (layouts,
// groups, ...). They keep their kind and every group as read, their handle
// and their owner, and are written back unchanged.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "kxdbobject.h"

// The groups of a file record packed one after another: per group its code
// (two bytes), its part (one byte), the length of its value (one byte below
// 128, else more) and the value's bytes. A record of many short values costs
// about what the file spends on it, where a group object per value costs
// several times as much. A view reads them where they lie.
class KxDbPackedGroupsView {
public:
    KxDbPackedGroupsView() = default;
    explicit KxDbPackedGroupsView(std::string_view bytes) : m_bytes(bytes) {}

    bool empty() const { return m_bytes.empty(); }
    std::string_view bytes() const { return m_bytes; }

    // Calls visit(code, part, value) for every group, in order; a visit
    // that returns a bool stops the walk by returning false.
    template <class Visit>
    void forEach(Visit&& visit) const
    {
        using Result = std::invoke_result_t<Visit&, std::int16_t, std::uint8_t, std::string_view>;
        const auto* at = reinterpret_cast<const unsigned char*>(m_bytes.data());
        const auto* end = at + m_bytes.size();
        while (at < end) {
            const auto code = std::int16_t(std::uint16_t(at[0] | (at[1] << 8)));
            const std::uint8_t part = at[2];
            at += 3;
            // A length below 128, the usual one, takes its one byte.
            std::size_t length = *at++;
            if (length & 0x80) {
                length &= 0x7F;
                for (int shift = 7;; shift += 7) {
                    length |= std::size_t(*at & 0x7F) << shift;
                    if (!(*at++ & 0x80))
                        break;
                }
            }
            const std::string_view value(reinterpret_cast<const char*>(at), length);
            at += length;
            if constexpr (std::is_same_v<Result, bool>) {
                if (!visit(code, part, value))
                    return;
            } else {
                visit(code, part, value);
            }
        }
    }
    std::vector<KxDbFileGroup> unpacked() const;

private:
    std::string_view m_bytes;
};

// Packs groups one after another, as KxDbPackedGroupsView reads them.
class KxDbPackedGroups {
public:
    KxDbPackedGroups() = default;
    explicit KxDbPackedGroups(const std::vector<KxDbFileGroup>& groups);

    void append(int code, std::uint8_t part, std::string_view value);
    // Drops the groups and keeps the room, to pack the next record.
    void clear() { m_bytes.clear(); }
    KxDbPackedGroupsView view() const { return KxDbPackedGroupsView(m_bytes); }

private:
    std::string m_bytes;
};

// The kind and groups of an unmodelled record, shared by objects and
// entities: the kind and the packed groups lie in one allocation, eight
// bytes in the object, so that a drawing of many small records costs
// little more than their bytes.
class KxDbUnmodelledRecord {
public:
    KxDbUnmodelledRecord() = default;
    KxDbUnmodelledRecord(std::string_view dxfName, const std::vector<KxDbFileGroup>& groups)
        : KxDbUnmodelledRecord(dxfName, KxDbPackedGroups(groups).view())
    {
    }
    KxDbUnmodelledRecord(std::string_view dxfName, KxDbPackedGroupsView groups);
    KxDbUnmodelledRecord(const KxDbUnmodelledRecord& other);
    KxDbUnmodelledRecord& operator=(const KxDbUnmodelledRecord& other);

    // The record's kind as the file names it ("LAYOUT", "XRECORD", ...).
    std::string_view dxfName() const;
    // Every group after the kind, handle and owner included, unpacked.
    std::vector<KxDbFileGroup> groups() const { return packedGroups().unpacked(); }
    // The same as stored, to walk without unpacking.
    KxDbPackedGroupsView packedGroups() const;
    // The bytes held, for the host's accounting of memory.
    std::size_t byteSize() const;

protected:
    void copyRecord(const KxDbUnmodelledRecord& other) { *this = other; }

private:
    // The kind (a byte for the common kinds) and the groups, with their
    // lengths in a byte or two; null for an empty record.
    std::unique_ptr<char[]> m_record;
};

class KxDbUnmodelledObject : public KxDbObject, public KxDbUnmodelledRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbUnmodelledObject)
    KxDbUnmodelledObject() = default;
    using KxDbUnmodelledRecord::KxDbUnmodelledRecord;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }
};

class KxDbUnmodelledEntity : public KxDbEntity, public KxDbUnmodelledRecord {
public:
    KX_RX_DECLARE_MEMBERS(KxDbUnmodelledEntity)
    KxDbUnmodelledEntity() = default;
    using KxDbUnmodelledRecord::KxDbUnmodelledRecord;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }
};
