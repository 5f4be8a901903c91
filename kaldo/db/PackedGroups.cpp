#include "kxdbpackedgroups.h"

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
