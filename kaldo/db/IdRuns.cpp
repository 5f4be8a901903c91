#include "kxdbidruns.h"

#include <algorithm>

void KxDbIdRuns::push_back(KxDbObjectId id)
{
    const std::uint64_t serial = id.asOldId();
    ++m_size;
    if (!m_words.empty()) {
        std::uint64_t& last = m_words.back();
        if (isRunCount(last)) {
            const std::uint64_t count = last & kValueBits;
            if (serial == (m_words[m_words.size() - 2] & kValueBits) + count) {
                last = kRunCount | (count + 1);
                return;
            }
        } else if (serial == last + 1) {
            last |= kRunStart;
            m_words.push_back(kRunCount | 2);
            return;
        }
    }
    m_words.push_back(serial);
}

std::vector<KxDbObjectId> KxDbIdRuns::cutAfter(std::size_t keep)
{
    // Taken from the back, the last id first; the list is cut at its end,
    // where undo takes back what was appended.
    std::vector<KxDbObjectId> cut;
    while (m_size > keep) {
        const std::uint64_t last = m_words.back();
        if (!isRunCount(last)) {
            cut.push_back(KxDbObjectId::fromOldId(last));
            m_words.pop_back();
            --m_size;
            continue;
        }
        const std::uint64_t first = m_words[m_words.size() - 2] & kValueBits;
        const std::uint64_t count = last & kValueBits;
        const std::uint64_t left = count - std::min<std::uint64_t>(count, m_size - keep);
        for (std::uint64_t i = count; i > left; --i)
            cut.push_back(KxDbObjectId::fromOldId(first + i - 1));
        m_size -= std::size_t(count - left);
        m_words.pop_back();
        if (left >= 2)
            m_words.push_back(kRunCount | left);
        else if (left == 1)
            m_words.back() = first;
        else
            m_words.pop_back();
    }
    std::reverse(cut.begin(), cut.end());
    return cut;
}

KxDbObjectId KxDbIdRuns::idAt(Place at) const
{
    const std::uint64_t word = m_words[at.word];
    return KxDbObjectId::fromOldId(isRunStart(word) ? (word & kValueBits) + at.offset : word);
}

void KxDbIdRuns::step(Place& at) const
{
    if (!isRunStart(m_words[at.word])) {
        ++at.word;
        return;
    }
    if (++at.offset == (m_words[at.word + 1] & kValueBits))
        at = Place{at.word + 2, 0};
}
