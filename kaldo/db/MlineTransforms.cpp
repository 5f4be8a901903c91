// Transforms and stretches of multilines: the stored vertices, directions,
// miters and parameter lists change so that the element lines and runs lie
// where the transformed (or stretched) picture of the multiline puts them.
#include "kxdbmline.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "kaldo/db/EntityPlane.h"
#include "kaldo/db/FiniteValues.h"
#include "kaldo/db/MlineGeometry.h"
#include "kaldo/db/MlineRuns.h"
#include "kaldo/util/Translations.h"

namespace {

using kaldo::isFinite;

double planeAngleOf(const kaldo::EntityPlane& plane, const KxGeVector3d& world)
{
    const KxGeVector3d d = plane.toPlane(world);
    return kaldo::planeAngle(KxGePoint3d(), KxGePoint3d(d.x, d.y));
}

// The perpendicular distance of an element from the segment, from its
// distance along the miter (the inverse of miterDistance).
double elementOffset(double entry0, double miterAngle, double axisAngle)
{
    const double turn = miterAngle - axisAngle;
    return entry0 * std::sin(turn + (turn == 0 ? 0.005 : 0.0));
}

bool sortedHolds(const std::vector<int>& sorted, int value)
{
    return std::ranges::binary_search(sorted, value);
}

void sortUnique(std::vector<int>& values)
{
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
}

}  // namespace

Kald::ErrorStatus KxDbMline::transformBy(const KxGeMatrix3d& m)
{
    // A translation changes the positions alone, so that the undo history
    // may keep only those for it (UndoHistory::upgradeOpenToTranslate).
    if (kaldo::isTranslation(m)) {
        const KxGeVector3d offset = kaldo::translationOf(m);
        if (!std::ranges::all_of(m_vertices, [&](const Vertex& v) { return isFinite(v.position + offset); }))
            return Kald::eInvalidInput;
        for (Vertex& v : m_vertices)
            v.position = v.position + offset;
        return Kald::eOk;
    }
    const double k = m.uniformScale();
    if (k == 0)
        return Kald::eInvalidInput;
    const KxGeVector3d normalImage = m * m_normal;
    if (!isFinite(normalImage) || normalImage.length() <= kxGeTolerance)
        return Kald::eInvalidInput;
    const double scale = m_scale * (m.determinant() < 0 ? -k : k);
    if (!std::isfinite(scale))
        return Kald::eInvalidInput;
    // Every image is checked before any is written (a refused transform
    // leaves the multiline as it was); the vertices are written in place,
    // and the lists are touched only when scaled: scaled lists go to a store
    // of their own, and neighbours that shared lists share their scaled copy.
    const auto imageOf = [&m](const Vertex& v) {
        return Vertex{m * v.position, normalized(m * v.axis), normalized(m * v.miter), v.lists};
    };
    for (const Vertex& v : m_vertices) {
        const Vertex image = imageOf(v);
        if (!isFinite(image.position) || !isFinite(image.axis) || !isFinite(image.miter))
            return Kald::eInvalidInput;
    }
    KxDbMlineListStore scaled;
    std::vector<KxDbMlineListsRef> scaledLists;
    if (k != 1) {
        scaledLists.reserve(m_vertices.size());
        KxDbMlineListSet lists;
        for (std::size_t i = 0; i < m_vertices.size(); ++i) {
            if (i > 0 && m_vertices[i - 1].lists == m_vertices[i].lists) {
                scaledLists.push_back(scaledLists.back());
                continue;
            }
            lists.assign(listsOf(m_vertices[i]));
            lists.scale(k);
            if (!kaldo::finiteLists(lists.view()))
                return Kald::eInvalidInput;
            scaledLists.push_back(scaled.add(lists.view()));
        }
    }
    for (std::size_t i = 0; i < m_vertices.size(); ++i) {
        Vertex& v = m_vertices[i];
        const Vertex image = imageOf(v);
        v.position = image.position;
        v.axis = image.axis;
        v.miter = image.miter;
        if (k != 1)
            v.lists = scaledLists[i];
    }
    if (k != 1) {
        m_lists = std::move(scaled);
        m_bytesInUse = m_lists.byteSize();
    }
    m_normal = normalized(normalImage);
    m_scale = scale;
    return Kald::eOk;
}

void KxDbMline::getStretchPoints(std::vector<KxGePoint3d>& points) const
{
    points.clear();
    for (const Vertex& v : m_vertices)
        points.push_back(v.position);
}

Kald::ErrorStatus KxDbMline::moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset)
{
    return stretchFrom(*this, indices, offset);
}

Kald::ErrorStatus KxDbMline::stretchFrom(const KxDbMline& source, std::span<const int> indices,
                                         const KxGeVector3d& offset)
{
    const int n = source.numVertices();
    if (numVertices() != n)
        return Kald::eInvalidInput;
    if (!std::ranges::all_of(indices, [n](int i) { return i >= 0 && i < n; }))
        return Kald::eInvalidIndex;
    if (!isFinite(offset))
        return Kald::eInvalidInput;
    std::vector<int> moved(indices.begin(), indices.end());
    sortUnique(moved);
    const std::vector<Vertex>& old = source.m_vertices;
    const bool closed = source.m_closed;
    const auto isMoved = [&](int v) { return sortedHolds(moved, v); };
    const auto next = [&](int v) { return v + 1 < n ? v + 1 : closed && n > 1 ? 0 : -1; };
    const auto previous = [&](int v) { return v > 0 ? v - 1 : closed && n > 1 ? n - 1 : -1; };
    const auto position = [&](int v) { return isMoved(v) ? old[std::size_t(v)].position + offset : old[std::size_t(v)].position; };
    // A segment turns when one of its ends moved and the other did not.
    const auto turns = [&](int s) { return s >= 0 && next(s) >= 0 && isMoved(s) != isMoved(next(s)); };

    // Vertices whose direction or miter change (the ends of turning
    // segments), segments whose runs are refit (those at such a vertex),
    // and every vertex written.
    std::vector<int> turned;
    for (const int v : moved) {
        for (const int s : {previous(v), v}) {
            if (turns(s)) {
                turned.push_back(s);
                turned.push_back(next(s));
            }
        }
    }
    sortUnique(turned);
    std::vector<int> refit;
    for (const int v : turned) {
        if (next(v) >= 0)
            refit.push_back(v);
        if (previous(v) >= 0)
            refit.push_back(previous(v));
    }
    sortUnique(refit);
    std::vector<int> written = moved;
    written.insert(written.end(), turned.begin(), turned.end());
    written.insert(written.end(), refit.begin(), refit.end());
    sortUnique(written);

    const kaldo::EntityPlane plane(source.m_normal);
    const auto planePoint = [&](std::size_t i) { return plane.toPlane(position(int(i))); };
    // The written vertices, each with its lists in a set of its own until
    // they go to this multiline's store.
    std::vector<Vertex> updated;
    std::vector<KxDbMlineListSet> updatedLists;
    updated.reserve(written.size());
    updatedLists.reserve(written.size());
    const auto indexOf = [&](int v) { return std::size_t(std::ranges::lower_bound(written, v) - written.begin()); };
    for (const int v : written) {
        const Vertex& was = old[std::size_t(v)];
        Vertex now{position(v), was.axis, was.miter, {}};
        KxDbMlineListSet lists(source.listsOf(was));
        if (sortedHolds(turned, v)) {
            const double oldAxis = planeAngleOf(plane, was.axis);
            const double oldMiter = planeAngleOf(plane, was.miter);
            kaldo::VertexAngles a = kaldo::vertexAnglesAt(planePoint, std::size_t(n), std::size_t(v), closed, 0, 0);
            // A free end's miter turns with its segment: the cap keeps its
            // angle to the segment as it was drawn.
            if (!closed && (v == 0 || v == n - 1))
                a.miter = oldMiter + (a.axis - oldAxis);
            now.axis = plane.toWorld(KxGeVector3d(std::cos(a.axis), std::sin(a.axis)));
            now.miter = plane.toWorld(KxGeVector3d(std::cos(a.miter), std::sin(a.miter)));
            for (int e = 0; e < lists.numElements(); ++e) {
                const std::span<double> element = lists.editElement(e);
                if (element.empty())
                    continue;
                const double entry0 =
                    kaldo::miterDistance(elementOffset(element.front(), oldMiter, oldAxis), a.miter, a.axis);
                element.front() = entry0;
                if (const std::span<double> fill = lists.editAreaFill(e); !fill.empty())
                    fill.front() = entry0;
            }
        }
        updated.push_back(now);
        updatedLists.push_back(std::move(lists));
    }

    for (const int s : refit) {
        const int t = next(s);
        const std::size_t at = indexOf(s);
        const Vertex& start = updated[at];
        const bool endWritten = sortedHolds(written, t);
        const Vertex& end = endWritten ? updated[indexOf(t)] : old[std::size_t(t)];
        const Vertex& oldStart = old[std::size_t(s)];
        const Vertex& oldEnd = old[std::size_t(t)];
        const KxDbMlineVertexLists startLists = updatedLists[at].view();
        const KxDbMlineVertexLists endLists = endWritten ? updatedLists[indexOf(t)].view() : source.listsOf(oldEnd);
        const KxDbMlineVertexLists oldStartLists = source.listsOf(oldStart);
        const KxDbMlineVertexLists oldEndLists = source.listsOf(oldEnd);
        // A segment whose ends both moved moved whole; otherwise an end
        // that moved changed.
        const KxGeVector3d wholeMove = isMoved(s) && isMoved(t) ? offset : KxGeVector3d();
        const bool keepsDirection = isMoved(s) == isMoved(t) || (start.axis - oldStart.axis).length() <= kxGeTolerance;
        KxDbMlineListSet refitLists(startLists);
        const int elements = std::min({startLists.numElements(), endLists.numElements(), oldStartLists.numElements(),
                                       oldEndLists.numElements()});
        for (int e = 0; e < elements; ++e) {
            const auto entry0 = [e](const KxDbMlineVertexLists& lists) {
                const std::span<const double> list = lists.element(e);
                return list.empty() ? 0.0 : list.front();
            };
            const KxGePoint3d a = oldStart.position + oldStart.miter * entry0(oldStartLists);
            const KxGePoint3d b = oldEnd.position + oldEnd.miter * entry0(oldEndLists);
            const KxGePoint3d aNow = start.position + start.miter * entry0(startLists);
            const KxGePoint3d bNow = end.position + end.miter * entry0(endLists);
            kaldo::SegmentChange change;
            change.oldLength = std::max(0.0, dot(b - a, oldStart.axis));
            change.newLength = std::max(0.0, dot(bNow - aNow, start.axis));
            if (keepsDirection) {
                change.shift = dot(aNow - (a + wholeMove), oldStart.axis);
                change.startChanged = (aNow - (a + wholeMove)).length() > kxGeTolerance;
                change.endChanged = (bNow - (b + wholeMove)).length() > kxGeTolerance;
            } else if (isMoved(s)) {
                // Kept from the end that stayed.
                change.shift = change.oldLength - change.newLength;
                change.startChanged = true;
            } else {
                change.endChanged = true;
            }
            refitLists.setElement(e, kaldo::refitRuns(startLists.element(e), change));
            refitLists.setAreaFill(e, kaldo::refitRuns(startLists.areaFill(e), change));
        }
        updatedLists[at] = std::move(refitLists);
    }

    for (std::size_t i = 0; i < written.size(); ++i)
        if (!kaldo::finiteVertex(updated[i], updatedLists[i].view()))
            return Kald::eInvalidInput;
    for (std::size_t i = 0; i < written.size(); ++i) {
        Vertex& target = m_vertices[std::size_t(written[i])];
        target = updated[i];
        target.lists = m_lists.add(updatedLists[i].view());
    }
    dropUnusedLists();
    return Kald::eOk;
}
