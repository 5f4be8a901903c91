#include "kaldo/dxf/PendingDictionaryEntries.h"

namespace kaldo::dxf {

void PendingDictionaryEntries::startDictionary()
{
    m_dictionaries.push_back({{}, m_bytes.size(), 0, m_lastLine});
}

void PendingDictionaryEntries::add(std::string_view name, std::uint64_t handle, long line)
{
    const std::int64_t step = std::int64_t(line) - std::int64_t(m_lastLine);
    appendVarNumber(m_bytes, (std::uint64_t(step) << 1) ^ std::uint64_t(step >> 63));
    appendVarNumber(m_bytes, handle);
    appendVarNumber(m_bytes, name.size());
    m_bytes += name;
    m_lastLine = line;
    ++m_dictionaries.back().count;
}

void PendingDictionaryEntries::finishDictionary(KxDbObjectId dictionary)
{
    m_dictionaries.back().id = dictionary;
}

}  // namespace kaldo::dxf
