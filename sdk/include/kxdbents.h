// Simple entities: lines, arcs, circles and light-weight polylines.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kxdbobject.h"
#include "kxgematrix.h"

class KxDbLine : public KxDbEntity {
public:
    KX_RX_DECLARE_MEMBERS(KxDbLine)
    KxDbLine() = default;
    KxDbLine(const KxGePoint3d& start, const KxGePoint3d& end) : m_start(start), m_end(end) {}

    const KxGePoint3d& startPoint() const { return m_start; }
    Kald::ErrorStatus setStartPoint(const KxGePoint3d& point);
    const KxGePoint3d& endPoint() const { return m_end; }
    Kald::ErrorStatus setEndPoint(const KxGePoint3d& point);
    const KxGeVector3d& normal() const { return planeNormal(); }
    Kald::ErrorStatus setNormal(const KxGeVector3d& normal);

    // Stretch points: the two ends.
    Kald::ErrorStatus transformBy(const KxGeMatrix3d& m) override;
    void getStretchPoints(std::vector<KxGePoint3d>& points) const override;
    Kald::ErrorStatus moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset) override;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    KxGePoint3d m_start;
    KxGePoint3d m_end;
};

// An arc in the plane of its normal: centre in world coordinates, angles
// in radians, counter-clockwise about the normal, measured from the x axis
// of the normal's entity coordinate system.
class KxDbArc : public KxDbEntity {
public:
    KX_RX_DECLARE_MEMBERS(KxDbArc)
    KxDbArc() = default;
    KxDbArc(const KxGePoint3d& center, double radius, double startAngle, double endAngle)
        : m_center(center), m_radius(radius), m_startAngle(startAngle), m_endAngle(endAngle)
    {
    }
    KxDbArc(const KxGePoint3d& center, const KxGeVector3d& normal, double radius, double startAngle, double endAngle)
        : m_center(center), m_radius(radius), m_startAngle(startAngle), m_endAngle(endAngle)
    {
        setPlaneNormal(normal);
    }

    const KxGePoint3d& center() const { return m_center; }
    Kald::ErrorStatus setCenter(const KxGePoint3d& center);
    double radius() const { return m_radius; }
    Kald::ErrorStatus setRadius(double radius);
    double startAngle() const { return m_startAngle; }
    Kald::ErrorStatus setStartAngle(double radians);
    double endAngle() const { return m_endAngle; }
    Kald::ErrorStatus setEndAngle(double radians);
    const KxGeVector3d& normal() const { return planeNormal(); }
    Kald::ErrorStatus setNormal(const KxGeVector3d& normal);

    // Points of the arc at its start and end, in world coordinates.
    KxGePoint3d startPoint() const;
    KxGePoint3d endPoint() const;

    // Stretch point: the centre (a stretch moves the whole arc). The normal
    // is transformed as a direction; a reflection then runs the arc from
    // the image of its end to the image of its start.
    Kald::ErrorStatus transformBy(const KxGeMatrix3d& m) override;
    void getStretchPoints(std::vector<KxGePoint3d>& points) const override;
    Kald::ErrorStatus moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset) override;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    KxGePoint3d m_center;
    double m_radius = 0;
    double m_startAngle = 0;
    double m_endAngle = 0;
};

class KxDbCircle : public KxDbEntity {
public:
    KX_RX_DECLARE_MEMBERS(KxDbCircle)
    KxDbCircle() = default;
    KxDbCircle(const KxGePoint3d& center, double radius) : m_center(center), m_radius(radius) {}

    const KxGePoint3d& center() const { return m_center; }
    Kald::ErrorStatus setCenter(const KxGePoint3d& center);
    double radius() const { return m_radius; }
    Kald::ErrorStatus setRadius(double radius);
    const KxGeVector3d& normal() const { return planeNormal(); }
    Kald::ErrorStatus setNormal(const KxGeVector3d& normal);

    // Stretch point: the centre.
    Kald::ErrorStatus transformBy(const KxGeMatrix3d& m) override;
    void getStretchPoints(std::vector<KxGePoint3d>& points) const override;
    Kald::ErrorStatus moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset) override;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    KxGePoint3d m_center;
    double m_radius = 0;
};

// A polyline of straight and arc segments in the plane of its normal.
// Vertex positions are 2D in the entity coordinate system at the
// elevation; a vertex's bulge is the tangent of a quarter of the included
// angle of the segment that starts there (0 straight).
class KxDbPolyline : public KxDbEntity {
public:
    KX_RX_DECLARE_MEMBERS(KxDbPolyline)
    KxDbPolyline() = default;
    ~KxDbPolyline() override;
    // A polyline with room for count vertices in its own allocation: a
    // reader that knows the count makes one allocation instead of two.
    static std::unique_ptr<KxDbPolyline> withRoom(std::uint32_t count);

    struct Vertex {
        double x = 0, y = 0;
        double startWidth = 0, endWidth = 0;
        double bulge = 0;
        friend bool operator==(const Vertex&, const Vertex&) = default;
    };

    int numVerts() const { return static_cast<int>(m_count); }
    // The vertex at index (0 <= index < numVerts()). Inline: walks over
    // the vertices (extents, drawing, saving) ask for each in turn.
    Vertex vertexAt(int index) const
    {
        const Position& p = m_positions[std::size_t(index)];
        if (!m_shaping || m_shaping->shapes.empty())
            return Vertex{p.x, p.y};
        const Shape& s = m_shaping->shapes[std::size_t(index)];
        return Vertex{p.x, p.y, s.startWidth, s.endWidth, s.bulge};
    }
    // Every vertex, in order, as a copy.
    std::vector<Vertex> vertices() const;
    void setVertices(const std::vector<Vertex>& vertices);
    void addVertexAt(const Vertex& vertex);
    // Room for count vertices, keeping those held, so that as many added
    // one by one take no more (a reader that counted them first); adding
    // past the room at least doubles it.
    void reserve(std::uint32_t count);
    // The vertex in world coordinates (origin for an index out of range).
    KxGePoint3d pointAt(int index) const;

    bool isClosed() const { return m_closed; }
    void setClosed(bool closed) { m_closed = closed; }
    // Linetype pattern runs on over vertices instead of restarting at each.
    bool plinegen() const { return m_plinegen; }
    void setPlinegen(bool on) { m_plinegen = on; }
    double constantWidth() const { return m_shaping ? m_shaping->constantWidth : 0; }
    void setConstantWidth(double width);
    double elevation() const { return m_shaping ? m_shaping->elevation : 0; }
    void setElevation(double elevation);
    double thickness() const { return m_shaping ? m_shaping->thickness : 0; }
    void setThickness(double thickness);
    const KxGeVector3d& normal() const { return planeNormal(); }
    Kald::ErrorStatus setNormal(const KxGeVector3d& normal);

    // Stretch points: the vertices; arc segments keep their bulges. The
    // normal is transformed as a direction; a reflection turns the bulges'
    // signs.
    Kald::ErrorStatus transformBy(const KxGeMatrix3d& m) override;
    void getStretchPoints(std::vector<KxGePoint3d>& points) const override;
    Kald::ErrorStatus moveStretchPointsAt(std::span<const int> indices, const KxGeVector3d& offset) override;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    // The copy holds its vertices in its own allocation (see withRoom).
    std::unique_ptr<KxDbObject> clone() const override;

    // The bytes the vertices hold, for the host's accounting of memory.
    std::size_t vertexBytes() const;

private:
    // Positions of the vertices (sixteen bytes a vertex), in the object's
    // own allocation when made by withRoom and still there, else in a
    // block of their own; and what most polylines lack apart: widths and
    // bulges (one per vertex, when some vertex has any), a constant width,
    // an elevation and a thickness. A straight polyline of no width, at
    // elevation 0, costs its positions and a null pointer.
    struct Position {
        double x = 0, y = 0;
    };
    struct Shape {
        double startWidth = 0, endWidth = 0, bulge = 0;
    };
    struct Shaping {
        std::vector<Shape> shapes;
        double constantWidth = 0;
        double elevation = 0;
        double thickness = 0;
    };
    // The shaping, made when there is none yet; let go again once it
    // holds only defaults.
    Shaping& shapingForWrite();
    void dropShapingIfDefault();
    // Room for count positions, those held dropped: the object's own room
    // when it holds them, else a block of exactly their size.
    void makeRoomFor(std::uint32_t count);
    void freeRoom();

    Position* m_positions = nullptr;
    std::uint32_t m_count = 0;
    std::uint32_t m_room = 0;
    std::unique_ptr<Shaping> m_shaping;
    bool m_closed = false;
    bool m_plinegen = false;
    // Whether the positions lie in the object's own allocation.
    bool m_roomInObject = false;
};
