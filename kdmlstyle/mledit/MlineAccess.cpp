#include "mledit/MlineAccess.h"

#include <algorithm>
#include <optional>
#include <span>

namespace kdml {

namespace {

enum class List { element, areaFill };

std::span<const double> listOf(KxDbMlineVertexLists lists, int element, List list)
{
    return list == List::element ? lists.element(element) : lists.areaFill(element);
}

bool inRange(const KxDbMline* mline, int vertex, int element)
{
    return mline && vertex >= 0 && vertex < mline->numVertices() && element >= 0
        && element < mline->parametersAt(vertex).numElements();
}

// The list of element at vertex, both clamped into range, read in place;
// none when the multiline has no vertex or the vertex no element.
std::optional<std::span<const double>> clampedList(const KxDbMline* mline, int vertex, int element, List list)
{
    if (!mline || mline->numVertices() == 0)
        return std::nullopt;
    const KxDbMlineVertexLists lists = mline->parametersAt(std::clamp(vertex, 0, mline->numVertices() - 1));
    if (lists.numElements() == 0)
        return std::nullopt;
    return listOf(lists, std::clamp(element, 0, lists.numElements() - 1), list);
}

bool readCount(const KxDbMline* mline, int& n, int vertex, int element, List list)
{
    const auto values = clampedList(mline, vertex, element, list);
    if (!values)
        return false;
    n = static_cast<int>(values->size());
    return true;
}

bool readList(const KxDbMline* mline, std::vector<double>& out, int vertex, int element, List list)
{
    const auto values = clampedList(mline, vertex, element, list);
    if (!values)
        return false;
    out.assign(values->begin(), values->end());
    return true;
}

// Rewrites one list in the vertex's record, a copy the multiline hands out,
// and sets the record back.
template <class Change>
bool changeList(KxDbMline* mline, int vertex, int element, List list, Change change)
{
    KxArray params;
    if (!inRange(mline, vertex, element) || mline->getParametersAt(vertex, params) != Kald::eOk)
        return false;
    const KxDbMlineParamsPtr record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(params));
    const std::span<const double> current = listOf(record->lists.view(), element, list);
    std::vector<double> values(current.begin(), current.end());
    if (!change(values))
        return false;
    if (list == List::element)
        record->lists.setElement(element, values);
    else
        record->lists.setAreaFill(element, values);
    return mline->setParametersAt(vertex, params) == Kald::eOk;
}

bool resizeList(KxDbMline* mline, int n, int vertex, int element, List list)
{
    return n >= 0 && changeList(mline, vertex, element, list, [n](std::vector<double>& values) {
        values.assign(static_cast<std::size_t>(n), 0.0);
        return true;
    });
}

bool overwriteList(KxDbMline* mline, const std::vector<double>& values, int vertex, int element, List list)
{
    return changeList(mline, vertex, element, list, [&values](std::vector<double>& target) {
        if (target.empty() || values.size() < target.size())
            return false;
        std::copy_n(values.begin(), target.size(), target.begin());
        return true;
    });
}

}  // namespace

bool readMlineFlags(const KxDbMline* mline, int& flags)
{
    if (!mline)
        return false;
    flags = (mline->numVertices() > 0 ? kHasVertices : 0) | (mline->closedMline() ? kClosed : 0)
        | (mline->supressStartCaps() ? kStartCapsSuppressed : 0) | (mline->supressEndCaps() ? kEndCapsSuppressed : 0);
    return true;
}

bool applyMlineFlags(KxDbMline* mline, int flags)
{
    if (!mline)
        return false;
    const bool closed = (flags & kClosed) != 0;
    if (mline->numVertices() > 2 && closed != mline->closedMline())
        mline->setClosedMline(closed);
    const bool start = (flags & kStartCapsSuppressed) != 0;
    if (start != mline->supressStartCaps())
        mline->setSupressStartCaps(start);
    const bool end = (flags & kEndCapsSuppressed) != 0;
    if (end != mline->supressEndCaps())
        mline->setSupressEndCaps(end);
    return true;
}

bool setVertexCount(KxDbMline* mline, int n)
{
    if (!mline || n < 2)
        return false;
    KxGePoint3d removed;
    while (mline->numVertices() > n)
        mline->removeLastSeg(removed);
    while (mline->numVertices() < n)
        mline->appendSeg(KxGePoint3d(0, 0, 0));
    return true;
}

bool getElementCount(const KxDbMline* mline, int& n)
{
    if (!mline || mline->numVertices() == 0)
        return false;
    n = mline->parametersAt(0).numElements();
    return true;
}

bool setElementCountAll(KxDbMline* mline, int n)
{
    if (!mline || n < 1)
        return false;
    for (int v = 0; v < mline->numVertices(); ++v) {
        KxArray params;
        mline->getParametersAt(v, params);
        const KxDbMlineParamsPtr record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(params));
        record->lists.setNumElements(n);
        mline->setParametersAt(v, params);
    }
    return true;
}

bool getElementParamCount(const KxDbMline* mline, int& n, int vertex, int element)
{
    return readCount(mline, n, vertex, element, List::element);
}

bool getElementParams(const KxDbMline* mline, std::vector<double>& values, int vertex, int element)
{
    return readList(mline, values, vertex, element, List::element);
}

bool setElementParamCount(KxDbMline* mline, int n, int vertex, int element)
{
    return resizeList(mline, n, vertex, element, List::element);
}

bool setElementParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element)
{
    return overwriteList(mline, values, vertex, element, List::element);
}

bool writeElementParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element)
{
    return setElementParamCount(mline, static_cast<int>(values.size()), vertex, element)
        && setElementParams(mline, values, vertex, element);
}

bool getFillParamCount(const KxDbMline* mline, int& n, int vertex, int element)
{
    return readCount(mline, n, vertex, element, List::areaFill);
}

bool getFillParams(const KxDbMline* mline, std::vector<double>& values, int vertex, int element)
{
    return readList(mline, values, vertex, element, List::areaFill);
}

bool setFillParamCount(KxDbMline* mline, int n, int vertex, int element)
{
    return resizeList(mline, n, vertex, element, List::areaFill);
}

bool setFillParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element)
{
    return overwriteList(mline, values, vertex, element, List::areaFill);
}

bool getVertices(const KxDbMline* mline, std::vector<KxGePoint3d>& points)
{
    if (!mline)
        return false;
    points.clear();
    for (int v = 0; v < mline->numVertices(); ++v)
        points.push_back(mline->vertexAt(v));
    return true;
}

bool setVertices(KxDbMline* mline, const std::vector<KxGePoint3d>& points)
{
    KxDbMlineImp* imp = KxDbSystemInternals::getImpObject(mline);
    return imp && imp->appendSegments(points) == Kald::eOk;
}

bool getAxes(const KxDbMline* mline, std::vector<KxGeVector3d>& axes)
{
    if (!mline)
        return false;
    axes.clear();
    for (int v = 0; v < mline->numVertices(); ++v)
        axes.push_back(mline->axisAt(v));
    return true;
}

bool setAxes(KxDbMline* mline, const std::vector<KxGeVector3d>& axes)
{
    KxDbMlineImp* imp = KxDbSystemInternals::getImpObject(mline);
    return imp && imp->appendSeg(axes, true) == Kald::eOk;
}

bool getMiters(const KxDbMline* mline, std::vector<KxGeVector3d>& miters)
{
    if (!mline)
        return false;
    miters.clear();
    for (int v = 0; v < mline->numVertices(); ++v)
        miters.push_back(mline->miterAt(v));
    return true;
}

bool setMiters(KxDbMline* mline, const std::vector<KxGeVector3d>& miters)
{
    KxDbMlineImp* imp = KxDbSystemInternals::getImpObject(mline);
    return imp && imp->appendSeg(miters, false) == Kald::eOk;
}

bool getNormal(const KxDbMline* mline, KxGeVector3d& normal)
{
    if (!mline)
        return false;
    normal = mline->normal();
    return true;
}

bool openMlineStyle(const KxDbMline* mline, KxDbObjectPtr<KxDbMlineStyle>& style)
{
    if (!mline || !mline->style().isValid())
        return false;
    return style.open(mline->style(), KxDb::kForRead) == Kald::eOk;
}

std::vector<MlineVertexData> readMlineSnapshot(const KxDbMline* mline)
{
    std::vector<MlineVertexData> snapshot;
    if (!mline)
        return snapshot;
    snapshot.reserve(std::size_t(mline->numVertices()));
    for (int v = 0; v < mline->numVertices(); ++v) {
        MlineVertexData data{mline->vertexAt(v), mline->axisAt(v), mline->miterAt(v), {}};
        const KxDbMlineVertexLists lists = mline->parametersAt(v);
        data.elements.reserve(std::size_t(lists.numElements()));
        for (int e = 0; e < lists.numElements(); ++e) {
            const auto element = lists.element(e);
            const auto fill = lists.areaFill(e);
            data.elements.push_back(MlineElementParams{{element.begin(), element.end()}, {fill.begin(), fill.end()}});
        }
        snapshot.push_back(std::move(data));
    }
    return snapshot;
}

KxGePoint3d elementPointAt(const KxDbMline* mline, int vertex, int element)
{
    const KxDbMlineVertexLists lists = mline->parametersAt(vertex);
    const bool listed = element >= 0 && element < lists.numElements() && !lists.element(element).empty();
    return mline->vertexAt(vertex) + mline->miterAt(vertex) * (listed ? lists.element(element).front() : 0.0);
}

std::vector<ElementLine> buildElementLines(const KxDbMline* mline)
{
    const int n = mline ? mline->numVertices() : 0;
    const std::size_t elements = n > 0 ? std::size_t(mline->parametersAt(0).numElements()) : 0;
    std::vector<ElementLine> lines(elements, ElementLine(std::size_t(n)));
    for (int v = 0; v < n; ++v)
        for (std::size_t e = 0; e < elements; ++e)
            lines[e][std::size_t(v)] = elementPointAt(mline, v, int(e));
    return lines;
}

}  // namespace kdml
