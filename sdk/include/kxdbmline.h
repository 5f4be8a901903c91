// Multilines: parallel element lines along a path of vertices, drawn in the
// look of a multiline style.
//
// Per vertex v the multiline keeps: its position; its axis, the unit
// direction of segment v (towards v+1, towards vertex 0 for the closing
// segment of a closed multiline; the last vertex of an open one keeps the
// previous axis); its miter, the unit direction along which the elements
// cross the vertex; and a parameter record with, per element, two lists:
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

// The two lists of one element at one vertex: area fill first, element second.
struct KxDbMlineElementParams {
    std::vector<double> areaFill;
    std::vector<double> element;
    friend bool operator==(const KxDbMlineElementParams&, const KxDbMlineElementParams&) = default;
};

// A vertex's reference-counted parameter record; equal neighbours may share one.
class KxDbMlineVertexParams {
public:
    // A new record with one reference, held by the caller.
    static KxDbMlineVertexParams* create();
    // The record the first entry of a parameter array leads to, or null.
    static KxDbMlineVertexParams* fromArray(const KxArray& params);

    void addRef() { ++m_refs; }
    void release();
    int refCount() const { return m_refs; }

    std::vector<KxDbMlineElementParams> elements;  // one per element

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

// One vertex of a multiline as a drawing file stores it.
struct KxDbMlineStoredVertex {
    KxGePoint3d position;
    KxGeVector3d axis;
    KxGeVector3d miter;
    std::vector<KxDbMlineElementParams> elements;
};

// One vertex of a multiline with its parameter record, which neighbours may
// share.
struct KxDbMlineVertex {
    KxGePoint3d position;
    KxGeVector3d axis;
    KxGeVector3d miter;
    KxDbMlineParamsPtr params;
};

// Raw access to a multiline's stored geometry, for editing tools that
// compute it themselves and for file readers: nothing is recomputed.
// Values that are not finite are refused (eInvalidInput), and the
// multiline keeps what it had.
class KxDbMlineImp {
public:
    // Replaces every vertex by the given ones, taking their records over as
    // they are (shared where the caller shares them); every vertex needs a
    // record.
    Kald::ErrorStatus setStoredVertices(std::vector<KxDbMlineVertex> vertices);
    // Replaces every vertex by stored ones the caller keeps (a file reader
    // reuses their room from multiline to multiline): their lists are
    // copied, and neighbours whose lists are equal bit for bit share one
    // record.
    void copyStoredVertices(std::span<const KxDbMlineStoredVertex> vertices);
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
    // Appends a vertex that shares the record of the one before, when their
    // lists are equal; false, with nothing appended, otherwise.
    bool appendSharingPrevious(const KxDbMlineStoredVertex& vertex);
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

    // Clears params and appends one entry: the vertex's record, with a reference added
    // for the caller, who releases it. To change it, set a changed copy (setParametersAt).
    Kald::ErrorStatus getParametersAt(int index, KxArray& params) const;
    // The vertex's record for reading while the multiline is open (null for
    // an index out of range).
    const KxDbMlineVertexParams* parametersAt(int index) const;
    // Makes the record params leads to the vertex's record (a reference is
    // added for the multiline); a list value that is not finite is refused
    // (eInvalidInput).
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

    // Copies style, flags and every vertex; the copy shares the records
    // (none changes while a multiline holds it).
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

    KxDbObjectId m_style;
    int m_justification = Mline::kTop;
    double m_scale = 1.0;
    KxGeVector3d m_normal{0, 0, 1};
    bool m_closed = false;
    bool m_supressStartCaps = false;
    bool m_supressEndCaps = false;
    std::vector<Vertex> m_vertices;
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
