#include "kaldo/dxf/KeptMlines.h"

#include "kaldo/db/VarNumber.h"

namespace kaldo::dxf {

namespace {

// Signed steps, small either way, as whole numbers: 0, -1, 1, -2, ...
std::uint64_t zigzag(long step)
{
    return step < 0 ? 2 * std::uint64_t(-(step + 1)) + 1 : 2 * std::uint64_t(step);
}

long unzigzag(std::uint64_t number)
{
    return number % 2 ? -long(number / 2) - 1 : long(number / 2);
}

}  // namespace

// Per entry: the step of the id's serial, of the style's line, the style's
// handle, the style's name (0 when the same as the one before, else its
// length plus one and its characters), the vertices and the elements plus
// one.
void KeptMlines::push_back(const Entry& entry)
{
    appendVarNumber(m_bytes, entry.mline.asOldId() - m_last.mline.asOldId());
    appendVarNumber(m_bytes, zigzag(entry.style.line - m_last.style.line));
    appendVarNumber(m_bytes, entry.style.handle);
    if (entry.style.name == m_last.style.name) {
        appendVarNumber(m_bytes, 0);
    } else {
        appendVarNumber(m_bytes, entry.style.name.size() + 1);
        for (const wchar_t c : entry.style.name)
            appendVarNumber(m_bytes, std::uint32_t(c));
    }
    appendVarNumber(m_bytes, entry.outline.vertices);
    appendVarNumber(m_bytes, std::uint64_t(entry.outline.elements + 1));
    m_last = entry;
}

KeptMlines::Cursor::Cursor(const KeptMlines& kept)
    : m_at(kept.m_bytes.data()), m_end(kept.m_bytes.data() + kept.m_bytes.size())
{
    next();
}

void KeptMlines::Cursor::next()
{
    if (m_at == m_end) {
        m_done = true;
        return;
    }
    m_entry.mline = KxDbObjectId::fromOldId(m_entry.mline.asOldId() + takeVarNumber(m_at));
    m_entry.style.line += unzigzag(takeVarNumber(m_at));
    m_entry.style.handle = takeVarNumber(m_at);
    if (const std::uint64_t length = takeVarNumber(m_at); length > 0) {
        m_entry.style.name.resize(std::size_t(length - 1));
        for (wchar_t& c : m_entry.style.name)
            c = wchar_t(takeVarNumber(m_at));
    }
    m_entry.outline.vertices = std::size_t(takeVarNumber(m_at));
    m_entry.outline.elements = long(takeVarNumber(m_at)) - 1;
}

}  // namespace kaldo::dxf
