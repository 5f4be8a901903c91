// Multiline parameter lists in flat arrays: the read-only view of one
// vertex's lists, an editable set of them, the store a multiline keeps all
// of its vertices' lists in, and the reference-counted record of the host
// array.
#include "kxdbmline.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

namespace {

// Positions in a store are 32-bit: a store that would outgrow them refuses.
std::uint32_t position(std::size_t size)
{
    if (size > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("multiline parameter lists beyond 4G values");
    return static_cast<std::uint32_t>(size);
}

}  // namespace

bool KxDbMlineVertexLists::sameAs(const KxDbMlineVertexLists& other) const
{
    if (m_elements != other.m_elements)
        return false;
    const auto a = values();
    const auto b = other.values();
    return std::ranges::equal(ends(), other.ends()) &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

void KxDbMlineListSet::assign(KxDbMlineVertexLists lists)
{
    const auto values = lists.values();
    const auto ends = lists.ends();
    m_values.assign(values.begin(), values.end());
    m_ends.assign(ends.begin(), ends.end());
}

void KxDbMlineListSet::setNumElements(int n)
{
    const auto lists = std::size_t(std::max(n, 0)) * 2;
    if (lists < m_ends.size())
        m_values.resize(lists > 0 ? m_ends[lists - 1] : 0);
    m_ends.resize(lists, position(m_values.size()));
}

void KxDbMlineListSet::setList(int index, std::span<const double> values)
{
    const auto at = std::size_t(index);
    const std::uint32_t begin = at > 0 ? m_ends[at - 1] : 0;
    const std::uint32_t end = m_ends[at];
    // values may be a view of this very set.
    const std::vector<double> copy(values.begin(), values.end());
    m_values.erase(m_values.begin() + begin, m_values.begin() + end);
    m_values.insert(m_values.begin() + begin, copy.begin(), copy.end());
    const std::uint32_t newEnd = begin + position(copy.size());
    for (std::size_t k = at; k < m_ends.size(); ++k)
        m_ends[k] = m_ends[k] - end + newEnd;
}

std::span<double> KxDbMlineListSet::editList(int index)
{
    const std::uint32_t begin = index > 0 ? m_ends[std::size_t(index) - 1] : 0;
    return std::span(m_values).subspan(begin, m_ends[std::size_t(index)] - begin);
}

void KxDbMlineListSet::setEntry0(int element, double value)
{
    for (const int list : {2 * element, 2 * element + 1}) {
        if (const std::span<double> entries = editList(list); !entries.empty())
            entries.front() = value;
        else
            setList(list, std::array{value, 0.0});
    }
}

void KxDbMlineListSet::scale(double factor)
{
    for (double& value : m_values)
        value *= factor;
}

bool KxDbMlineListStore::holds(KxDbMlineListsRef ref) const
{
    if (std::size_t(ref.ends) + 2 * std::size_t(ref.elements) > m_ends.size())
        return false;
    const KxDbMlineVertexLists lists = at(ref);
    return std::ranges::is_sorted(lists.ends()) && std::size_t(ref.values) + lists.values().size() <= m_values.size();
}

KxDbMlineListsRef KxDbMlineListStore::add(KxDbMlineVertexLists lists)
{
    const auto values = lists.values();
    const auto ends = lists.ends();
    const bool inside = !m_values.empty() && values.data() >= m_values.data() &&
                        values.data() < m_values.data() + m_values.size();
    if (inside)
        return add(KxDbMlineListSet(lists).view());
    const KxDbMlineListsRef ref{position(m_values.size()), position(m_ends.size()), position(ends.size() / 2)};
    m_values.insert(m_values.end(), values.begin(), values.end());
    m_ends.insert(m_ends.end(), ends.begin(), ends.end());
    return ref;
}

KxDbMlineListsRef KxDbMlineListStore::openVertex()
{
    return {position(m_values.size()), position(m_ends.size()), 0};
}

void KxDbMlineListStore::openElement(KxDbMlineListsRef& vertex)
{
    const std::uint32_t end = position(m_values.size()) - vertex.values;
    m_ends.insert(m_ends.end(), {end, end});
    ++vertex.elements;
}

void KxDbMlineListStore::appendValue(bool fill, double value)
{
    m_values.push_back(value);
    ++m_ends.back();
    if (!fill)
        ++m_ends[m_ends.size() - 2];
}

void KxDbMlineListStore::clear()
{
    m_values.clear();
    m_ends.clear();
}

void KxDbMlineListStore::reserve(std::size_t values, std::size_t ends)
{
    m_values.reserve(values);
    m_ends.reserve(ends);
}

KxDbMlineVertexParams* KxDbMlineVertexParams::create()
{
    return new KxDbMlineVertexParams;
}

KxDbMlineVertexParams* KxDbMlineVertexParams::fromArray(const KxArray& params)
{
    return params.isEmpty() ? nullptr : static_cast<KxDbMlineVertexParams*>(params.at(0));
}

void KxDbMlineVertexParams::release()
{
    if (--m_refs == 0)
        delete this;
}

KxDbMlineParamsPtr KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams* record)
{
    KxDbMlineParamsPtr ptr;
    ptr.m_record = record;
    return ptr;
}

KxDbMlineParamsPtr KxDbMlineParamsPtr::share(KxDbMlineVertexParams* record)
{
    if (record)
        record->addRef();
    return adopt(record);
}

KxDbMlineParamsPtr::KxDbMlineParamsPtr(const KxDbMlineParamsPtr& other) : m_record(other.m_record)
{
    if (m_record)
        m_record->addRef();
}

KxDbMlineParamsPtr& KxDbMlineParamsPtr::operator=(const KxDbMlineParamsPtr& other)
{
    KxDbMlineParamsPtr copy(other);
    std::swap(m_record, copy.m_record);
    return *this;
}

KxDbMlineParamsPtr::KxDbMlineParamsPtr(KxDbMlineParamsPtr&& other) noexcept : m_record(other.m_record)
{
    other.m_record = nullptr;
}

KxDbMlineParamsPtr& KxDbMlineParamsPtr::operator=(KxDbMlineParamsPtr&& other) noexcept
{
    std::swap(m_record, other.m_record);
    return *this;
}

KxDbMlineParamsPtr::~KxDbMlineParamsPtr()
{
    if (m_record)
        m_record->release();
}
