// Simple entities: lines and arcs.
#pragma once

#include "kxdbobject.h"

class KxDbLine : public KxDbEntity {
public:
    KX_RX_DECLARE_MEMBERS(KxDbLine)
    KxDbLine() = default;
    KxDbLine(const KxGePoint3d& start, const KxGePoint3d& end) : m_start(start), m_end(end) {}

    const KxGePoint3d& startPoint() const { return m_start; }
    Kald::ErrorStatus setStartPoint(const KxGePoint3d& point);
    const KxGePoint3d& endPoint() const { return m_end; }
    Kald::ErrorStatus setEndPoint(const KxGePoint3d& point);
    const KxGeVector3d& normal() const { return m_normal; }
    Kald::ErrorStatus setNormal(const KxGeVector3d& normal);

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;

private:
    KxGePoint3d m_start;
    KxGePoint3d m_end;
    KxGeVector3d m_normal{0, 0, 1};
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
        : m_center(center), m_normal(normal), m_radius(radius), m_startAngle(startAngle), m_endAngle(endAngle)
    {
    }

    const KxGePoint3d& center() const { return m_center; }
    Kald::ErrorStatus setCenter(const KxGePoint3d& center);
    double radius() const { return m_radius; }
    Kald::ErrorStatus setRadius(double radius);
    double startAngle() const { return m_startAngle; }
    Kald::ErrorStatus setStartAngle(double radians);
    double endAngle() const { return m_endAngle; }
    Kald::ErrorStatus setEndAngle(double radians);
    const KxGeVector3d& normal() const { return m_normal; }
    Kald::ErrorStatus setNormal(const KxGeVector3d& normal);

    // Points of the arc at its start and end, in world coordinates.
    KxGePoint3d startPoint() const;
    KxGePoint3d endPoint() const;

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;

private:
    KxGePoint3d m_center;
    KxGeVector3d m_normal{0, 0, 1};
    double m_radius = 0;
    double m_startAngle = 0;
    double m_endAngle = 0;
};
