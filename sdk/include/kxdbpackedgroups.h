// Groups of a drawing file kept as read, one by one or packed one after
// another in a string of bytes.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// A group of a drawing file that the host keeps as read without modelling
// it, to write it back unchanged: its code, its text, and the part of its
// record it stood in (0 before the first subclass marker, n after the n-th,
// kxdbExtendedDataPart from the first extended-data group on).
struct KxDbFileGroup {
    std::int16_t code = 0;
    std::uint8_t part = 0;
    std::string value;
    friend bool operator==(const KxDbFileGroup&, const KxDbFileGroup&) = default;
};
inline constexpr std::uint8_t kxdbExtendedDataPart = 255;

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
            // The code, the part and the length's first byte in one load:
            // every group has them.
            std::uint32_t head;
            std::memcpy(&head, at, sizeof head);
            if constexpr (std::endian::native == std::endian::big)
                head = __builtin_bswap32(head);
            const auto code = std::int16_t(std::uint16_t(head));
            const auto part = std::uint8_t(head >> 16);
            at += 4;
            // A length below 128, the usual one, takes its one byte.
            std::size_t length = head >> 24;
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
    explicit KxDbPackedGroups(KxDbPackedGroupsView groups) : m_bytes(groups.bytes()) {}

    bool empty() const { return m_bytes.empty(); }
    void append(int code, std::uint8_t part, std::string_view value);
    // Drops the groups and keeps the room, to pack the next record.
    void clear() { m_bytes.clear(); }
    // Room for bytes of packed groups, so that appending as many makes no
    // copies of those before; and room beyond the groups given back.
    void reserve(std::size_t bytes) { m_bytes.reserve(bytes); }
    void shrinkToFit() { m_bytes.shrink_to_fit(); }
    KxDbPackedGroupsView view() const { return KxDbPackedGroupsView(m_bytes); }
    friend bool operator==(const KxDbPackedGroups&, const KxDbPackedGroups&) = default;

private:
    std::string m_bytes;
};
