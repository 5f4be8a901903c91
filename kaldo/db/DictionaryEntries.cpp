#include "kaldo/db/DictionaryEntries.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "kaldo/db/MixedBits.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/db/VarNumber.h"

namespace kaldo {

namespace {

// The characters of a packed name one by one.
class PackedReader {
public:
    explicit PackedReader(std::string_view packed) : m_at(packed.data()), m_end(packed.data() + packed.size()) {}
    bool done() const { return m_at == m_end; }
    wchar_t next() { return static_cast<wchar_t>(takeVarNumber(m_at)); }

private:
    const char* m_at;
    const char* m_end;
};

std::uint64_t hashOfName(std::wstring_view name)
{
    return std::hash<std::wstring>()(foldName(name));
}

// Serials are consecutive: mixed so that their slots spread and the top
// bits the slots keep differ.
std::uint64_t hashOfId(KxDbObjectId id)
{
    return mixedBits(id.asOldId() + 0x9E3779B97F4A7C15ull);
}

bool sameFolded(std::string_view packed, std::wstring_view key)
{
    PackedReader reader(packed);
    for (const wchar_t c : key)
        if (reader.done() || foldChar(reader.next()) != c)
            return false;
    return reader.done();
}

// Orders as the names' upper-case strings compare.
bool foldedLess(std::string_view a, std::string_view b)
{
    PackedReader left(a);
    PackedReader right(b);
    while (!left.done() && !right.done()) {
        const wchar_t l = foldChar(left.next());
        const wchar_t r = foldChar(right.next());
        if (l != r)
            return l < r;
    }
    return left.done() && !right.done();
}

}  // namespace

std::wstring DictionaryEntries::unpackName(std::string_view packed)
{
    std::wstring name;
    for (PackedReader reader(packed); !reader.done();)
        name.push_back(reader.next());
    return name;
}

std::string_view DictionaryEntries::packedName(std::size_t entry) const
{
    return std::string_view(m_names).substr(m_entries[entry].nameStart, m_entries[entry].nameBytes);
}

std::uint64_t DictionaryEntries::nameHashOf(std::size_t entry) const
{
    return hashOfName(name(entry));
}

std::uint64_t DictionaryEntries::idHashOf(std::size_t entry) const
{
    return hashOfId(m_entries[entry].id);
}

std::size_t DictionaryEntries::find(std::wstring_view name) const
{
    const std::wstring key = foldName(name);
    return std::size_t(m_byName.find(std::hash<std::wstring>()(key),
                                     [&](std::uint64_t value) { return sameFolded(packedName(value - 1), key); }))
           - 1;
}

std::size_t DictionaryEntries::find(KxDbObjectId id) const
{
    return std::size_t(m_byId.find(hashOfId(id), [&](std::uint64_t value) { return m_entries[value - 1].id == id; }))
           - 1;
}

void DictionaryEntries::index(std::size_t entry)
{
    m_byName.insert(nameHashOf(entry), entry + 1, [this](std::uint64_t value) { return nameHashOf(value - 1); });
    m_byId.insert(idHashOf(entry), entry + 1, [this](std::uint64_t value) { return idHashOf(value - 1); });
}

void DictionaryEntries::unindex(std::size_t entry)
{
    m_byName.erase(nameHashOf(entry), entry + 1);
    m_byId.erase(idHashOf(entry), entry + 1);
}

void DictionaryEntries::put(std::wstring_view name, KxDbObjectId id)
{
    if (const std::size_t old = find(id); old != npos && !sameFolded(packedName(old), foldName(name)))
        erase(old);
    std::size_t entry = find(name);
    if (entry != npos && m_entries[entry].id != id) {
        erase(entry);
        entry = npos;
    }
    std::string packed;
    for (const wchar_t c : name)
        appendVarNumber(packed, static_cast<std::uint32_t>(c));
    if (entry != npos && packedName(entry) == packed)
        return;
    if (m_names.size() + packed.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("a dictionary's names outgrow its store.");
    const Entry spelled{id, std::uint32_t(m_names.size()), std::uint32_t(packed.size())};
    m_names += packed;
    if (entry != npos) {
        m_deadNameBytes += m_entries[entry].nameBytes;
        m_entries[entry] = spelled;
        dropDeadNames();
        return;
    }
    m_entries.push_back(spelled);
    index(m_entries.size() - 1);
}

void DictionaryEntries::erase(std::size_t entry)
{
    const std::size_t last = m_entries.size() - 1;
    unindex(entry);
    m_deadNameBytes += m_entries[entry].nameBytes;
    if (entry != last) {
        unindex(last);
        m_entries[entry] = m_entries[last];
        m_entries.pop_back();
        index(entry);
    } else {
        m_entries.pop_back();
    }
    dropDeadNames();
}

void DictionaryEntries::dropDeadNames()
{
    if (m_deadNameBytes <= m_names.size() / 2)
        return;
    std::string names;
    names.reserve(m_names.size() - m_deadNameBytes);
    for (Entry& entry : m_entries) {
        const std::string_view packed = std::string_view(m_names).substr(entry.nameStart, entry.nameBytes);
        entry.nameStart = std::uint32_t(names.size());
        names += packed;
    }
    m_names = std::move(names);
    m_deadNameBytes = 0;
}

std::vector<std::size_t> DictionaryEntries::inNameOrder() const
{
    std::vector<std::size_t> order(m_entries.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::sort(order.begin(), order.end(),
              [this](std::size_t a, std::size_t b) { return foldedLess(packedName(a), packedName(b)); });
    return order;
}

}  // namespace kaldo
