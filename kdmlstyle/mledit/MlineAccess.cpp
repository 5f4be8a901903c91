#include "mledit/MlineAccess.h"

#include <algorithm>

namespace kdml {

namespace {

using ParamList = std::vector<double> KxDbMlineElementParams::*;

// The vertex's parameter record, with a reference held for the caller.
KxDbMlineParamsPtr vertexRecord(const KxDbMline* mline, int vertex)
{
    KxArray params;
    if (mline->getParametersAt(vertex, params) != Kald::eOk)
        return {};
    return KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(params));
}

int elementCountAt(const KxDbMline* mline, int vertex)
{
    const KxDbMlineParamsPtr record = vertexRecord(mline, vertex);
    return record ? static_cast<int>(record->elements.size()) : 0;
}

bool inRange(const KxDbMline* mline, int vertex, int element)
{
    return mline && vertex >= 0 && vertex < mline->numVertices() && element >= 0
        && element < elementCountAt(mline, vertex);
}

// The list of element, clamped into range, in a vertex's record.
const std::vector<double>* clampedList(const KxDbMlineParamsPtr& record, int element, ParamList list)
{
    if (!record || record->elements.empty())
        return nullptr;
    const int last = static_cast<int>(record->elements.size()) - 1;
    return &(record->elements[static_cast<std::size_t>(std::clamp(element, 0, last))].*list);
}

KxDbMlineParamsPtr clampedRecord(const KxDbMline* mline, int vertex)
{
    if (!mline || mline->numVertices() == 0)
        return {};
    return vertexRecord(mline, std::clamp(vertex, 0, mline->numVertices() - 1));
}

bool readCount(const KxDbMline* mline, int& n, int vertex, int element, ParamList list)
{
    const KxDbMlineParamsPtr record = clampedRecord(mline, vertex);
    const std::vector<double>* values = clampedList(record, element, list);
    if (!values)
        return false;
    n = static_cast<int>(values->size());
    return true;
}

bool readList(const KxDbMline* mline, std::vector<double>& out, int vertex, int element, ParamList list)
{
    const KxDbMlineParamsPtr record = clampedRecord(mline, vertex);
    const std::vector<double>* values = clampedList(record, element, list);
    if (!values)
        return false;
    out = *values;
    return true;
}

// Rewrites one list in a copy of the vertex's record and hands the copy to
// the multiline, so that records shared elsewhere keep their lists.
template <class Change>
bool changeList(KxDbMline* mline, int vertex, int element, ParamList list, Change change)
{
    if (!inRange(mline, vertex, element))
        return false;
    const KxDbMlineParamsPtr old = vertexRecord(mline, vertex);
    const KxDbMlineParamsPtr copy = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::create());
    copy->elements = old->elements;
    if (!change(copy->elements[static_cast<std::size_t>(element)].*list))
        return false;
    KxArray params;
    params.append(copy.get());
    return mline->setParametersAt(vertex, params) == Kald::eOk;
}

bool resizeList(KxDbMline* mline, int n, int vertex, int element, ParamList list)
{
    return n >= 0 && changeList(mline, vertex, element, list, [n](std::vector<double>& values) {
        values.assign(static_cast<std::size_t>(n), 0.0);
        return true;
    });
}

bool overwriteList(KxDbMline* mline, const std::vector<double>& values, int vertex, int element, ParamList list)
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
    n = elementCountAt(mline, 0);
    return true;
}

bool setElementCountAll(KxDbMline* mline, int n)
{
    if (!mline || n < 1)
        return false;
    for (int v = 0; v < mline->numVertices(); ++v) {
        const KxDbMlineParamsPtr old = vertexRecord(mline, v);
        const KxDbMlineParamsPtr copy = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::create());
        copy->elements = old->elements;
        copy->elements.resize(static_cast<std::size_t>(n));
        KxArray params;
        params.append(copy.get());
        mline->setParametersAt(v, params);
    }
    return true;
}

bool getElementParamCount(const KxDbMline* mline, int& n, int vertex, int element)
{
    return readCount(mline, n, vertex, element, &KxDbMlineElementParams::element);
}

bool getElementParams(const KxDbMline* mline, std::vector<double>& values, int vertex, int element)
{
    return readList(mline, values, vertex, element, &KxDbMlineElementParams::element);
}

bool setElementParamCount(KxDbMline* mline, int n, int vertex, int element)
{
    return resizeList(mline, n, vertex, element, &KxDbMlineElementParams::element);
}

bool setElementParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element)
{
    return overwriteList(mline, values, vertex, element, &KxDbMlineElementParams::element);
}

bool writeElementParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element)
{
    return setElementParamCount(mline, static_cast<int>(values.size()), vertex, element)
        && setElementParams(mline, values, vertex, element);
}

bool getFillParamCount(const KxDbMline* mline, int& n, int vertex, int element)
{
    return readCount(mline, n, vertex, element, &KxDbMlineElementParams::areaFill);
}

bool getFillParams(const KxDbMline* mline, std::vector<double>& values, int vertex, int element)
{
    return readList(mline, values, vertex, element, &KxDbMlineElementParams::areaFill);
}

bool setFillParamCount(KxDbMline* mline, int n, int vertex, int element)
{
    return resizeList(mline, n, vertex, element, &KxDbMlineElementParams::areaFill);
}

bool setFillParams(KxDbMline* mline, const std::vector<double>& values, int vertex, int element)
{
    return overwriteList(mline, values, vertex, element, &KxDbMlineElementParams::areaFill);
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
        if (const KxDbMlineVertexParams* record = mline->parametersAt(v)) {
            data.elements.reserve(record->elements.size());
            for (const KxDbMlineElementParams& lists : record->elements)
                data.elements.push_back(MlineElementParams{lists.element, lists.areaFill});
        }
        snapshot.push_back(std::move(data));
    }
    return snapshot;
}

KxGePoint3d elementPointAt(const KxDbMline* mline, int vertex, int element)
{
    const KxDbMlineVertexParams* record = mline->parametersAt(vertex);
    const bool listed = record && element >= 0 && std::size_t(element) < record->elements.size()
        && !record->elements[std::size_t(element)].element.empty();
    return mline->vertexAt(vertex)
        + mline->miterAt(vertex) * (listed ? record->elements[std::size_t(element)].element.front() : 0.0);
}

std::vector<ElementLine> buildElementLines(const KxDbMline* mline)
{
    const int n = mline ? mline->numVertices() : 0;
    const KxDbMlineVertexParams* first = n > 0 ? mline->parametersAt(0) : nullptr;
    const std::size_t elements = first ? first->elements.size() : 0;
    std::vector<ElementLine> lines(elements, ElementLine(std::size_t(n)));
    for (int v = 0; v < n; ++v)
        for (std::size_t e = 0; e < elements; ++e)
            lines[e][std::size_t(v)] = elementPointAt(mline, v, int(e));
    return lines;
}

}  // namespace kdml
