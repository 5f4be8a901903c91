#include "kxdbmlstyle.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

#include "kaldo/db/UnopenedRecords.h"
#include "kxdbdatabase.h"
#include "kxdbmline.h"

KX_RX_DEFINE_MEMBERS(KxDbMlineStyle, KxDbObject)

namespace {

// Multilines kept unopened that are laid out anew in the style when made
// are made before its elements or angles change, in the style as it was.
void makeLaidOutIn(const KxDbMlineStyle& style)
{
    if (KxDbDatabase* db = style.database(); db && !style.objectId().isNull())
        db->unopenedRecords().makeLaidOutIn(style.objectId());
}

}  // namespace

KxDbMlineStyle::KxDbMlineStyle()
{
    initMlineStyle();
}

void KxDbMlineStyle::initMlineStyle()
{
    makeLaidOutIn(*this);
    m_description.clear();
    m_filled = false;
    m_fillColor = KxCmColor();
    m_showMiters = false;
    m_startSquareCap = m_startRoundCap = m_startInnerArcs = false;
    m_endSquareCap = m_endRoundCap = m_endInnerArcs = false;
    m_startAngle = m_endAngle = std::numbers::pi / 2;
    m_elements.clear();
}

bool KxDbMlineStyle::isReferenced() const
{
    const KxDbDatabase* db = database();
    if (!db || objectId().isNull())
        return false;
    for (const KxDbObjectId& id : db->objectIds()) {
        // By the class first, so that no other entity is made to be read.
        const KxRxClass* cls = id.objectClass();
        if (!cls || !cls->isDerivedFrom(KxDbMline::desc()))
            continue;
        // One kept unopened answers by the style it was kept with.
        if (const auto kept = db->unopenedRecords().kept(id)) {
            if (kept->look->style == objectId())
                return true;
            continue;
        }
        const auto* mline = KxDbMline::cast(db->peekObject(id));
        if (mline && !mline->isErased() && mline->style() == objectId())
            return true;
    }
    return false;
}

Kald::ErrorStatus KxDbMlineStyle::set(const KxDbMlineStyle& src, bool checkIfReferenced)
{
    if (&src == this)
        return Kald::eOk;
    if (checkIfReferenced && isReferenced())
        return Kald::eNotApplicable;
    makeLaidOutIn(*this);
    m_name = src.m_name;
    m_description = src.m_description;
    m_filled = src.m_filled;
    m_fillColor = src.m_fillColor;
    m_showMiters = src.m_showMiters;
    m_startSquareCap = src.m_startSquareCap;
    m_startRoundCap = src.m_startRoundCap;
    m_startInnerArcs = src.m_startInnerArcs;
    m_endSquareCap = src.m_endSquareCap;
    m_endRoundCap = src.m_endRoundCap;
    m_endInnerArcs = src.m_endInnerArcs;
    m_startAngle = src.m_startAngle;
    m_endAngle = src.m_endAngle;
    m_elements = src.m_elements;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineStyle::setName(const wchar_t* name)
{
    if (!name)
        return Kald::eInvalidInput;
    m_name = name;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineStyle::setDescription(const wchar_t* text)
{
    m_description = text ? text : L"";
    return Kald::eOk;
}

namespace {

bool isCapAngle(double radians)
{
    return std::isfinite(radians * (180 / std::numbers::pi));
}

}  // namespace

Kald::ErrorStatus KxDbMlineStyle::setStartAngle(double radians)
{
    if (!isCapAngle(radians))
        return Kald::eInvalidInput;
    makeLaidOutIn(*this);
    m_startAngle = radians;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineStyle::setEndAngle(double radians)
{
    if (!isCapAngle(radians))
        return Kald::eInvalidInput;
    makeLaidOutIn(*this);
    m_endAngle = radians;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineStyle::getElementAt(int index, double& offset, KxCmColor& color,
                                               KxDbObjectId& linetype) const
{
    if (index < 0 || index >= numElements())
        return Kald::eInvalidIndex;
    const Element& e = m_elements[std::size_t(index)];
    offset = e.offset;
    color = e.color;
    linetype = e.linetype;
    return Kald::eOk;
}

// Puts element index at its place by offset. The others are in order
// already, so one move does what a stable sort of the whole list would:
// among elements of the same offset it keeps the place its index gives it.
// An element whose neighbours still enclose it (a new colour or linetype,
// the usual write) does not move at all.
void KxDbMlineStyle::placeElement(int index)
{
    const auto at = m_elements.begin() + index;
    const double offset = at->offset;
    const bool afterPrevious = at == m_elements.begin() || std::prev(at)->offset >= offset;
    const bool beforeNext = std::next(at) == m_elements.end() || std::next(at)->offset <= offset;
    if (afterPrevious && beforeNext)
        return;
    const Element moved = *at;
    m_elements.erase(at);
    const auto first = std::partition_point(m_elements.begin(), m_elements.end(),
                                            [offset](const Element& e) { return e.offset > offset; });
    const auto last = std::partition_point(first, m_elements.end(),
                                           [offset](const Element& e) { return !(e.offset < offset); });
    m_elements.insert(std::clamp(m_elements.begin() + index, first, last), moved);
}

Kald::ErrorStatus KxDbMlineStyle::setElement(int index, double offset, const KxCmColor& color, KxDbObjectId linetype)
{
    if (index < 0 || index >= numElements())
        return Kald::eInvalidIndex;
    if (!std::isfinite(offset))
        return Kald::eInvalidInput;
    makeLaidOutIn(*this);
    m_elements[std::size_t(index)] = Element{offset, color, linetype};
    placeElement(index);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineStyle::addElement(int& index, double offset, const KxCmColor& color,
                                             KxDbObjectId linetype, bool checkIfReferenced)
{
    index = -1;
    if (!std::isfinite(offset))
        return Kald::eInvalidInput;
    if (numElements() >= kxdbMaxMlineStyleElements)
        return Kald::eOutOfRange;
    if (checkIfReferenced && isReferenced())
        return Kald::eNotApplicable;
    makeLaidOutIn(*this);
    const auto place = std::partition_point(m_elements.begin(), m_elements.end(),
                                            [offset](const Element& e) { return !(e.offset < offset); });
    index = static_cast<int>(place - m_elements.begin());
    m_elements.insert(place, Element{offset, color, linetype});
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineStyle::removeElementAt(int index)
{
    if (index < 0 || index >= numElements())
        return Kald::eInvalidIndex;
    makeLaidOutIn(*this);
    m_elements.erase(m_elements.begin() + index);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbMlineStyle::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    return set(*static_cast<const KxDbMlineStyle*>(other), false);
}
