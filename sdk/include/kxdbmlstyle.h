// Multiline styles: how a multiline looks. Elements are kept sorted by
// offset, largest first; index 0 is the top element.
#pragma once

#include <string>
#include <vector>

#include "kxdbobject.h"

// The most elements a style holds: as many as the style editor's list holds.
inline constexpr int kxdbMaxMlineStyleElements = 2049;

class KxDbMlineStyle : public KxDbObject {
public:
    KX_RX_DECLARE_MEMBERS(KxDbMlineStyle)
    KxDbMlineStyle();

    // Resets everything but the name: empty description, no fill (fill
    // colour by layer), no joints, no caps, cap angles pi/2, no elements.
    void initMlineStyle();
    // Copies every property of src, its name included. With
    // checkIfReferenced, fails (eNotApplicable) while a multiline of this
    // style's database uses this style.
    Kald::ErrorStatus set(const KxDbMlineStyle& src, bool checkIfReferenced = true);

    const wchar_t* name() const { return m_name.c_str(); }
    Kald::ErrorStatus setName(const wchar_t* name);
    const wchar_t* description() const { return m_description.c_str(); }
    Kald::ErrorStatus setDescription(const wchar_t* text);

    bool filled() const { return m_filled; }
    void setFilled(bool on) { m_filled = on; }
    const KxCmColor& fillColor() const { return m_fillColor; }
    void setFillColor(const KxCmColor& color) { m_fillColor = color; }
    bool showMiters() const { return m_showMiters; }
    void setShowMiters(bool on) { m_showMiters = on; }

    bool startSquareCap() const { return m_startSquareCap; }
    void setStartSquareCap(bool on) { m_startSquareCap = on; }
    bool startRoundCap() const { return m_startRoundCap; }  // outer arc
    void setStartRoundCap(bool on) { m_startRoundCap = on; }
    bool startInnerArcs() const { return m_startInnerArcs; }
    void setStartInnerArcs(bool on) { m_startInnerArcs = on; }
    bool endSquareCap() const { return m_endSquareCap; }
    void setEndSquareCap(bool on) { m_endSquareCap = on; }
    bool endRoundCap() const { return m_endRoundCap; }
    void setEndRoundCap(bool on) { m_endRoundCap = on; }
    bool endInnerArcs() const { return m_endInnerArcs; }
    void setEndInnerArcs(bool on) { m_endInnerArcs = on; }

    // Cap angles in radians, measured from the multiline's direction. An
    // angle that is not finite in radians, or in degrees as files carry it,
    // is refused (eInvalidInput).
    double startAngle() const { return m_startAngle; }
    Kald::ErrorStatus setStartAngle(double radians);
    double endAngle() const { return m_endAngle; }
    Kald::ErrorStatus setEndAngle(double radians);

    int numElements() const { return static_cast<int>(m_elements.size()); }
    Kald::ErrorStatus getElementAt(int index, double& offset, KxCmColor& color, KxDbObjectId& linetype) const;
    // Offsets that are not finite are refused (eInvalidInput).
    // Replaces element index; the element moves to its place by offset.
    Kald::ErrorStatus setElement(int index, double offset, const KxCmColor& color, KxDbObjectId linetype);
    // Inserts an element at its place by offset; index gets that place.
    // An element of the same offset goes after those already there.
    // checkIfReferenced as in set(). A style that holds
    // kxdbMaxMlineStyleElements already refuses it (eOutOfRange).
    Kald::ErrorStatus addElement(int& index, double offset, const KxCmColor& color, KxDbObjectId linetype,
                                 bool checkIfReferenced = true);
    Kald::ErrorStatus removeElementAt(int index);

    Kald::ErrorStatus copyFrom(const KxDbObject* other) override;
    std::unique_ptr<KxDbObject> clone() const override { return kxdbCloneOf(*this); }

private:
    struct Element {
        double offset = 0;
        KxCmColor color;
        KxDbObjectId linetype;
    };
    void placeElement(int index);
    bool isReferenced() const;

    std::wstring m_name;
    std::wstring m_description;
    bool m_filled = false;
    KxCmColor m_fillColor;
    bool m_showMiters = false;
    bool m_startSquareCap = false;
    bool m_startRoundCap = false;
    bool m_startInnerArcs = false;
    bool m_endSquareCap = false;
    bool m_endRoundCap = false;
    bool m_endInnerArcs = false;
    double m_startAngle;
    double m_endAngle;
    std::vector<Element> m_elements;
};
