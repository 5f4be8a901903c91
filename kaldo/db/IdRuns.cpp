#include "kxdbidruns.h"

#include <algorithm>

namespace {

// A run's count word: its count in the low bits, its step less one above.
constexpr int kCountBits = 40;
constexpr std::uint64_t kCountMask = (std::uint64_t(1) << kCountBits) - 1;
constexpr std::uint64_t kMaxStep = std::uint64_t(1) << 21;

std::uint64_t countOf(std::uint64_t word)
{
    return word & kCountMask;
}

// The step of a run's count word, below its two marking bits.
std::uint64_t stepOf(std::uint64_t word)
{
    return ((word << 2) >> (2 + kCountBits)) + 1;
}

}  // namespace

void KxDbIdRuns::push_back(KxDbObjectId id)
{
    const std::uint64_t serial = id.asOldId();
    ++m_size;
    if (!m_words.empty()) {
        std::uint64_t& last = m_words.back();
        if (isRunCount(last)) {
            const std::uint64_t count = countOf(last);
            if (serial == (m_words[m_words.size() - 2] & kValueBits) + count * stepOf(last) && count < kCountMask) {
                ++last;
                return;
            }
        } else if (serial > last && serial - last <= kMaxStep) {
            // Two ids take two words either way: as a run the next may follow.
            const std::uint64_t step = serial - last;
            last |= kRunStart;
            m_words.push_back(kRunCount | (step - 1) << kCountBits | 2);
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
        const std::uint64_t count = countOf(last);
        const std::uint64_t step = stepOf(last);
        const std::uint64_t left = count - std::min<std::uint64_t>(count, m_size - keep);
        for (std::uint64_t i = count; i > left; --i)
            cut.push_back(KxDbObjectId::fromOldId(first + (i - 1) * step));
        m_size -= std::size_t(count - left);
        m_words.pop_back();
        if (left >= 2)
            m_words.push_back((last & ~kCountMask) | left);
        else if (left == 1)
            m_words.back() = first;
        else
            m_words.pop_back();
    }
    std::reverse(cut.begin(), cut.end());
    return cut;
}

KxDbObjectId KxDbIdRuns::back() const
{
    const std::uint64_t last = m_words.back();
    if (!isRunCount(last))
        return KxDbObjectId::fromOldId(last);
    return KxDbObjectId::fromOldId((m_words[m_words.size() - 2] & kValueBits) + (countOf(last) - 1) * stepOf(last));
}

bool KxDbIdRuns::eraseLast(KxDbObjectId id)
{
    const std::uint64_t serial = id.asOldId();
    for (std::size_t end = m_words.size(); end > 0;) {
        const std::uint64_t last = m_words[end - 1];
        if (!isRunCount(last)) {
            --end;
            if (last != serial)
                continue;
            m_words.erase(m_words.begin() + std::ptrdiff_t(end));
            --m_size;
            return true;
        }
        end -= 2;
        const std::uint64_t first = m_words[end] & kValueBits;
        const std::uint64_t step = stepOf(last);
        const std::uint64_t count = countOf(last);
        if (serial < first || (serial - first) % step != 0 || (serial - first) / step >= count)
            continue;
        // The run's ids before and after serial, each as a run or a single id.
        const std::uint64_t before = (serial - first) / step;
        std::vector<std::uint64_t> pieces;
        const auto addPiece = [&](std::uint64_t start, std::uint64_t length) {
            if (length == 1)
                pieces.push_back(start);
            else if (length >= 2)
                pieces.insert(pieces.end(), {start | kRunStart, (last & ~kCountMask) | length});
        };
        addPiece(first, before);
        addPiece(serial + step, count - before - 1);
        const auto at = m_words.erase(m_words.begin() + std::ptrdiff_t(end), m_words.begin() + std::ptrdiff_t(end + 2));
        m_words.insert(at, pieces.begin(), pieces.end());
        --m_size;
        return true;
    }
    return false;
}

KxDbObjectId KxDbIdRuns::idAt(Place at) const
{
    const std::uint64_t word = m_words[at.word];
    return KxDbObjectId::fromOldId(isRunStart(word) ? (word & kValueBits) + at.offset * stepOf(m_words[at.word + 1])
                                                    : word);
}

void KxDbIdRuns::step(Place& at) const
{
    if (!isRunStart(m_words[at.word])) {
        ++at.word;
        return;
    }
    if (++at.offset == countOf(m_words[at.word + 1]))
        at = Place{at.word + 2, 0};
}
