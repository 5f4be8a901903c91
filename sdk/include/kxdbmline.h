// Multilines: parallel element lines along a path of vertices, drawn in the
// look of a multiline style.
//
// Per vertex v the multiline keeps: its position; its axis, the unit
// direction of segment v (towards v+1, towards vertex 0 for the closing
// segment of a closed multiline; the last vertex of an open one keeps the
// previous axis); its miter, the unit direction along which the elements
// cross the vertex; and, per element, two parameter lists:
//   areaFill  the same kind of list for the style's fill;
//   element   entry 0: distance along the miter from the vertex to the
//             element line, so that element point = vertex + miter * entry 0;
//             entries 1, 2, ...: distances along segment v from that point
//             at which drawn runs start and stop in turn (an odd count after
//             entry 0 ends with a run to the segment's end; entry 0 alone
//             draws nothing along the segment).
// A fresh vertex gets [entry0, 0] in both lists: the whole segment drawn
// and filled.
//
// All angles are taken in the plane of the multiline's normal, in its
// entity coordinate system (arbitrary-axis rule). The host recomputes
// axes, miters and parameter lists when vertices are appended, removed or
// moved and when the closed flag, scale, justification, normal or style
// change; lists of segments whose ends did not move keep their runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kxdbobject.h"
#include "kxgematrix.h"

class KxDbMlineStyle;

using KxGePoint3dArray = std::vector<KxGePoint3d>;
using KxGeVector3dArray = std::vector<KxGeVector3d>;

// A host array of untyped pointers.
class KxArray {
public:
    int length() const { return static_cast<int>(m_items.size()); }
    bool isEmpty() const { return m_items.empty(); }
    void* at(int index) const { return m_items.at(static_cast<std::size_t>(index)); }
    void* operator[](int index) const { return at(index); }
    void append(void* item) { m_items.push_back(item); }
    void setAt(int index, void* item) { m_items.at(static_cast<std::size_t>(index)) = item; }
    void removeAll() { m_items.clear(); }

private:
    std::vector<void*> m_items;
};

// One vertex's parameter lists read in place: per element its element list
// and its area-fill list. It reads the storage it was taken from and holds
// only while that storage is unchanged.
class KxDbMlineVertexLists {
public:
    KxDbMlineVertexLists() = default;
    // ends holds 2 * elements ends into values, one per list: element e's
    // element list ends at ends[2e], its area-fill list at ends[2e + 1];
    // each list starts where the one before ends.
    KxDbMlineVertexLists(const double* values, const std::uint32_t* ends, int elements)
        : m_values(values), m_ends(ends), m_elements(elements)
    {
    }

    int numElements() const { return m_elements; }
    std::span<const double> element(int element) const { return list(2 * element); }
    std::span<const double> areaFill(int element) const { return list(2 * element + 1); }
    // Every value, list after list, and the end of each list.
    std::span<const double> values() const { return {m_values, m_elements > 0 ? m_ends[2 * m_elements - 1] : 0u}; }
    std::span<const std::uint32_t> ends() const { return {m_ends, std::size_t(2 * m_elements)}; }
    // Whether both hold the same lists bit for bit (0 and -0 differ).
    bool sameAs(const KxDbMlineVertexLists& other) const;
    // Whether both read the same storage (lists a multiline shares).
    bool sharesStorageWith(const KxDbMlineVertexLists& other) const { return m_ends == other.m_ends; }

private:
    std::span<const double> list(int index) const
    {
        const std::uint32_t begin = index > 0 ? m_ends[index - 1] : 0;
        return {m_values + begin, m_ends[index] - begin};
    }

    const double* m_values = nullptr;
    const std::uint32_t* m_ends = nullptr;
    int m_elements = 0;
};

// One vertex's parameter lists, owned and editable, in two flat arrays.
class KxDbMlineListSet {
public:
    KxDbMlineListSet() = default;
    explicit KxDbMlineListSet(KxDbMlineVertexLists lists) { assign(lists); }

    KxDbMlineVertexLists view() const { return {m_values.data(), m_ends.data(), numElements()}; }
    int numElements() const { return static_cast<int>(m_ends.size() / 2); }
    std::span<const double> element(int element) const { return view().element(element); }
    std::span<const double> areaFill(int element) const { return view().areaFill(element); }

    void assign(KxDbMlineVertexLists lists);
    // Keeps the first n elements, or adds elements with empty lists.
    void setNumElements(int n);
    void setElement(int element, std::span<const double> values) { setList(2 * element, values); }
    void setAreaFill(int element, std::span<const double> values) { setList(2 * element + 1, values); }
    // The entries of a list to change in place (its length stays).
    std::span<double> editElement(int element) { return editList(2 * element); }
    std::span<double> editAreaFill(int element) { return editList(2 * element + 1); }
    // Sets entry 0 of both lists of an element; an empty list becomes [value, 0].
    void setEntry0(int element, double value);
    // Multiplies every value by factor.
    void scale(double factor);

private:
    void setList(int index, std::span<const double> values);
    std::span<double> editList(int index);
    std::vector<double> m_values;
    std::vector<std::uint32_t> m_ends;
};

// Where one vertex's lists lie in a KxDbMlineListStore.
struct KxDbMlineListsRef {
    std::uint32_t values = 0;
    std::uint32_t ends = 0;
    std::uint32_t elements = 0;
    friend bool operator==(const KxDbMlineListsRef&, const KxDbMlineListsRef&) = default;
};

// The parameter lists of many vertices in two flat arrays, so that a
// multiline's lists take no allocation of their own. Lists once added never
// change: an edit adds the vertex's new lists, and vertices with equal lists
// may refer to the same ones.
class KxDbMlineListStore {
public:
    KxDbMlineVertexLists at(KxDbMlineListsRef ref) const
    {
        return {m_values.data() + ref.values, m_ends.data() + ref.ends, int(ref.elements)};
    }
    // Whether ref lies within the store.
    bool holds(KxDbMlineListsRef ref) const;
    KxDbMlineListsRef add(KxDbMlineVertexLists lists);

    // For file readers, which add a vertex's lists as they read them:
    // opens a vertex with no elements, adds an element with empty lists to
    // it, and appends a value to the element list (fill false; only while
    // the area-fill list is empty) or the area-fill list of its last element.
    KxDbMlineListsRef openVertex();
    void openElement(KxDbMlineListsRef& vertex);
    void appendValue(bool fill, double value);

    std::size_t numValues() const { return m_values.size(); }
    std::size_t byteSize() const { return m_values.size() * sizeof(double) + m_ends.size() * sizeof(std::uint32_t); }
    // Empties the store and keeps its room.
    void clear();
    void reserve(std::size_t values, std::size_t ends);

private:
    std::vector<double> m_values;
    std::vector<std::uint32_t> m_ends;
};

// A vertex's parameter record for the host array of getParametersAt and
// setParametersAt, reference-counted.
class KxDbMlineVertexParams {
public:
    // A new record with one reference, held by the caller.
    static KxDbMlineVertexParams* create();
    // The record the first entry of a parameter array leads to, or null.
    static KxDbMlineVertexParams* fromArray(const KxArray& params);

    void addRef() { ++m_refs; }
    void release();
    int refCount() const { return m_refs; }

    KxDbMlineListSet lists;

private:
    KxDbMlineVertexParams() = default;
    ~KxDbMlineVertexParams() = default;
    int m_refs = 1;
};

// Holds one reference to a vertex record (adds one on copy, releases one
// when it goes).
class KxDbMlineParamsPtr {
public:
    KxDbMlineParamsPtr() = default;
    // Takes over a reference the caller holds.
    static KxDbMlineParamsPtr adopt(KxDbMlineVertexParams* record);
    // Adds a reference of its own.
    static KxDbMlineParamsPtr share(KxDbMlineVertexParams* record);
    KxDbMlineParamsPtr(const KxDbMlineParamsPtr& other);
    KxDbMlineParamsPtr& operator=(const KxDbMlineParamsPtr& other);
    KxDbMlineParamsPtr(KxDbMlineParamsPtr&& other) noexcept;
    KxDbMlineParamsPtr& operator=(KxDbMlineParamsPtr&& other) noexcept;
    ~KxDbMlineParamsPtr();

    KxDbMlineVertexParams* get() const { return m_record; }
    KxDbMlineVertexParams* operator->() const { return m_record; }
    explicit operator bool() const { return m_record != nullptr; }

private:
    KxDbMlineVertexParams* m_record = nullptr;
};

class KxDbMline;

// One vertex of a multiline: its geometry and where its lists lie in the
// list store that goes with it.
struct KxDbMlineVertex {
    KxGePoint3d position;
    KxGeVector3d axis;
    KxGeVector3d miter;
    KxDbMlineListsRef lists;
};

// Raw access to a multiline's stored geometry, for editing tools that
// compute it themselves and for file readers: nothing is recomputed.
// Values that are not finite are refused (eInvalidInput), and the
// multiline keeps what it had.
class KxDbMlineImp {
public:
    // Replaces every vertex by the given ones, with a copy of their lists,
    // which lie in the given store; neighbours whose lists are equal bit for
    // bit share them. Every vertex's lists must lie in the store.
    Kald::ErrorStatus setStoredVertices(std::vector<KxDbMlineVertex> vertices, const KxDbMlineListStore& lists);
    // Sets style, justification, scale, normal and flags as stored (a null
    // style is allowed; a normal must not be null, else eInvalidInput).
    Kald::ErrorStatus setStoredProperties(KxDbObjectId style, int justification, double scale,
                                          const KxGeVector3d& normal, bool closed, bool supressStartCaps,
                                          bool supressEndCaps);

    // Replaces every vertex position; points holds one per vertex
    // (eInvalidInput otherwise).
    Kald::ErrorStatus appendSegments(const KxGePoint3dArray& points);
    // Replaces every axis (axes true) or every miter (false); one per vertex.
    Kald::ErrorStatus appendSeg(const KxGeVector3dArray& vectors, bool axes);

private:
    friend class KxDbMline;
    explicit KxDbMlineImp(KxDbMline& mline) : m_mline(mline) {}
    KxDbMline& m_mline;
};

namespace Mline {
enum MlineJustification : int { kTop = 0, kZero = 1, kBottom = 2 };
}

class KxDbMline : public KxDbEntity {
public:
    KX_RX_DECLARE_MEMBERS(KxDbMline)
    KxDbMline();
    ~KxDbMline() override;

    // The setters of style, justification, scale and normal lay the
    // multiline out anew; one that would give it a number that is not
    // finite is refused (eInvalidInput) and changes nothing.
    KxDbObjectId style() const { return m_style; }
    Kald::ErrorStatus setStyle(KxDbObjectId style);
    int justification() const { return m_justification; }
    Kald::ErrorStatus setJustification(int justification);  // 0 top, 1 zero, 2 bottom
    double scale() const { return m_scale; }
    Kald::ErrorStatus setScale(double scale);
    const KxGeVector3d& normal() const { return m_normal; }
    Kald::ErrorStatus setNormal(const KxGeVector3d& normal);
    bool closedMline() const { return m_closed; }
    Kald::ErrorStatus setClosedMline(bool closed);
    bool supressStartCaps() const { return m_supressStartCaps; }
    Kald::ErrorStatus setSupressStartCaps(bool on);
    bool supressEndCaps() const { return m_supressEndCaps; }
    Kald::ErrorStatus setSupressEndCaps(bool on);

    int numVertices() const { return static_cast<int>(m_vertices.size()); }
    // Out-of-range indices give the origin and a null vector.
    KxGePoint3d vertexAt(int index) const;
    KxGeVector3d axisAt(int index) const;
    KxGeVector3d miterAt(int index) const;

    Kald::ErrorStatus appendSeg(const KxGePoint3d& point);
    // Removes the last vertex and gives its position; eInvalidIndex when
    // there is none. Removing down to two vertices opens a closed multiline.
    Kald::ErrorStatus removeLastSeg(KxGePoint3d& lastPoint);
    Kald::ErrorStatus moveVertexAt(int index, const KxGePoint3d& point);

    // Clears params and appends one entry: a new record holding a copy of
    // the vertex's lists, with the caller's reference, which the caller
    // releases. To change the lists, set a changed record (setParametersAt).
    Kald::ErrorStatus getParametersAt(int index, KxArray& params) const;
    // The vertex's lists read in place, while the multiline is open and
    // unchanged (no elements for an index out of range).
    KxDbMlineVertexLists parametersAt(int index) const;
    // Copies the lists of the record params leads to into the vertex; a
    // list value that is not finite is refused (eInvalidInput).
    Kald::ErrorStatus setParametersAt(int index, const KxArray& params);

    // Positions, directions and miters are transformed; the scale and every
    // list entry (miter distances, runs, fill runs) are multiplied by m's
    // factor k. The normal is transformed as a direction (a mirror line in
    // the plan keeps it); a reflection then turns the scale's sign, which
    // swaps the sides the elements lie on, so that each element line lands
    // on the image of its own while the entries stay as they were (times k).
    Kald::ErrorStatus transformBy(const KxGeMatrix3d& m) override;
    // Stretch points: the vertices.
    void getStretchPoints(std::vector<KxGePoint3d>& points) const override;
    // stretchFrom(*this, indices, offset).
    Kald::ErrorStatus moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset) override;
    // Gives the vertices that moving source's vertices at indices by offset
    // changes (those vertices, their neighbours and the vertices before
    // those) what the stretch makes of them, and leaves every other vertex
    // as it is. So this multiline must hold source's vertices elsewhere: be
    // source itself, a copy of it, or a copy stretched from it before at the
    // same indices; a drag then stretches its copy frame after frame at the
    // cost of the moved vertices, not of the multiline.
    // Vertices whose segments turn get the host's directions and miters,
    // except the free ends of an open multiline, whose miters turn with
    // their segments (keeping the cap angle as drawn). Runs stay where they
    // were drawn on segments that keep their direction (a segment moved
    // whole, or along itself); a segment that turns keeps them measured
    // from its end that did not move. Where a segment grows, the new part
    // is drawn as the element was at the end that moved, and what lay
    // beyond an end that moved is dropped.
    Kald::ErrorStatus stretchFrom(const KxDbMline& source, std::span<const int> indices, const KxGeVector3d& offset);

    // Copies style, flags, every vertex and its lists.
    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

protected:
    // Also takes the drawing's current multiline style, justification and scale.
    void subSetDatabaseDefaults(KxDbDatabase* db) override;

private:
    friend class KxDbMlineImp;
    friend class KxDbSystemInternals;
    using Vertex = KxDbMlineVertex;
    // Rebuilds every vertex after a property changed; when a number would
    // not be finite, puts the vertices back as they were, undoes the change
    // (restore) and refuses.
    template <class Restore>
    Kald::ErrorStatus rebuildAllOrRestore(Restore restore);
    // Recomputes axes, miters and entry 0 of every list of the given
    // vertices; those among freshVertices (or whose lists do not fit the
    // element count) get [entry0, 0]. An edit names only the vertices it
    // touches, so its cost does not grow with the multiline.
    void rebuild(std::span<const std::size_t> vertices, std::span<const std::size_t> freshVertices);
    void rebuildAll();
    // The same for a range of vertex indices, isFresh(v) telling the fresh.
    template <class Vertices, class IsFresh>
    void rebuildVertices(const Vertices& vertices, const IsFresh& isFresh);
    // The lists of a vertex, and the store's lists that no vertex uses any
    // more dropped once they outweigh those in use (every edit adds lists).
    KxDbMlineVertexLists listsOf(const Vertex& vertex) const { return m_lists.at(vertex.lists); }
    void dropUnusedLists();

    KxDbObjectId m_style;
    int m_justification = Mline::kTop;
    double m_scale = 1.0;
    KxGeVector3d m_normal{0, 0, 1};
    bool m_closed = false;
    bool m_supressStartCaps = false;
    bool m_supressEndCaps = false;
    std::vector<Vertex> m_vertices;
    KxDbMlineListStore m_lists;
    std::size_t m_bytesInUse = 0;  // the size of m_lists when it last dropped unused lists
    KxDbMlineImp m_imp{*this};
};

class KxDbSystemInternals {
public:
    // The implementation object of a multiline, or null for other objects.
    static KxDbMlineImp* getImpObject(KxDbObject* obj);
};

// The perpendicular distances of a style's elements from a multiline's
// axis, in element order, for a multiline of this scale and justification:
// with offsets o_0..o_n-1, o_i' = (o_i - o_n-1) * scale; then top (0)
// subtracts o_0' from all, zero (1) subtracts o_0' / 2, bottom (2) keeps them.
std::vector<double> kxdbMlineElementOffsets(const KxDbMlineStyle& style, double scale, int justification);
