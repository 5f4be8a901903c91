#include "mlnfile/StyleElementSetters.h"

#include <algorithm>
#include <vector>

#include "kxdb.h"
#include "mlnfile/LinetypeResolver.h"

namespace kdml {

namespace {

struct Element {
    double offset = 0.0;
    KxCmColor color;
    KxDbObjectId linetype;
};

// Reads element i (defaults when it cannot be read), lets change alter it
// and writes it back.
template <class Change>
void changeElement(KxDbMlineStyle& style, int i, Change change)
{
    Element e;
    style.getElementAt(i, e.offset, e.color, e.linetype);
    change(e);
    style.setElement(i, e.offset, e.color, e.linetype);
}

}  // namespace

bool setStyleElementCount(KxDbMlineStyle* style, int count)
{
    if (!style)
        return false;
    const int wanted = std::max(count, 0);
    KxCmColor placeholder;
    placeholder.setColor(0xC0);
    for (int missing = wanted - style->numElements(); missing > 0; --missing) {
        int index = 0;
        style->addElement(index, 0.5, placeholder, KxDbObjectId::kNull, true);
    }
    for (int surplus = style->numElements() - wanted; surplus > 0; --surplus)
        style->removeElementAt(0);
    return true;
}

bool setStyleElementLinetypes(KxDbMlineStyle* style, std::span<const std::optional<std::wstring>> names,
                              KxDbDatabase* database)
{
    if (!style)
        return false;
    const int count = std::min(style->numElements(), static_cast<int>(names.size()));
    for (int i = 0; i < count; ++i) {
        if (!names[i])
            continue;
        const KxDbObjectId linetype = resolveLinetype(names[i]->c_str(), database);
        if (!linetype.isNull())
            changeElement(*style, i, [&](Element& e) { e.linetype = linetype; });
    }
    return true;
}

bool setStyleElementOffsets(KxDbMlineStyle* style, std::span<const double> offsets)
{
    if (!style)
        return false;
    if (!offsets.data())
        return true;
    // The host sorts the elements by offset on every write, so writing them
    // one by one would move elements not yet written. Instead every element
    // is taken out and put back with its new offset.
    std::vector<Element> elements(static_cast<std::size_t>(style->numElements()));
    for (std::size_t i = 0; i < elements.size(); ++i) {
        Element& e = elements[i];
        style->getElementAt(static_cast<int>(i), e.offset, e.color, e.linetype);
        e.offset = i < offsets.size() ? offsets[i] : 0.0;
    }
    while (style->numElements() > 0)
        style->removeElementAt(style->numElements() - 1);
    for (const Element& e : elements) {
        int index = 0;
        style->addElement(index, e.offset, e.color, e.linetype, false);
    }
    return true;
}

bool setStyleElementColorIndices(KxDbMlineStyle* style, std::span<std::int32_t> indices)
{
    if (!style)
        return false;
    if (!indices.data())
        return true;
    for (int i = 0; i < style->numElements(); ++i) {
        int index = KxCmColor::kIndexByLayer;
        if (static_cast<std::size_t>(i) < indices.size()) {
            std::int32_t& entry = indices[static_cast<std::size_t>(i)];
            if (static_cast<std::uint32_t>(entry) > KxCmColor::kIndexByLayer)
                entry = KxCmColor::kIndexByLayer;
            index = entry;
        }
        changeElement(*style, i, [&](Element& e) { e.color.setColorIndex(index); });
    }
    return true;
}

bool setStyleElementTrueColors(KxDbMlineStyle* style, std::span<const std::int32_t> trueColors)
{
    if (!style)
        return false;
    const int count = std::min(style->numElements(), static_cast<int>(trueColors.size()));
    for (int i = 0; i < count; ++i) {
        const auto rgb = static_cast<std::uint32_t>(trueColors[static_cast<std::size_t>(i)]);
        if (rgb > 0xFFFFFFu)
            continue;
        changeElement(*style, i, [&](Element& e) {
            e.color.setColorMethod(KxCmColor::kByColor);
            e.color.setColor(rgb | kMlnTrueColorMethodBits);
        });
    }
    return true;
}

bool setStyleElementColorBookKeys(KxDbMlineStyle* style, std::span<const std::optional<std::wstring>> keys)
{
    if (!style)
        return false;
    if (keys.empty() || !keys.front())
        return true;
    const int count = std::min(style->numElements(), static_cast<int>(keys.size()));
    for (int i = 0; i < count; ++i) {
        const std::optional<std::wstring>& key = keys[static_cast<std::size_t>(i)];
        const wchar_t* text = key && isColorBookKey(key->c_str()) ? key->c_str() : L"";
        changeElement(*style, i, [&](Element& e) { e.color.setNamesFromDictionaryKey(text); });
    }
    return true;
}

bool setStyleFlags(KxDbMlineStyle* style, int flags)
{
    if (!style)
        return false;
    style->setFilled(flags & kMlnFill);
    style->setShowMiters(flags & kMlnShowJoints);
    style->setStartSquareCap(flags & kMlnStartLineCap);
    style->setStartInnerArcs(flags & kMlnStartInnerArcs);
    style->setStartRoundCap(flags & kMlnStartOuterArc);
    style->setEndSquareCap(flags & kMlnEndLineCap);
    style->setEndInnerArcs(flags & kMlnEndInnerArcs);
    style->setEndRoundCap(flags & kMlnEndOuterArc);
    return true;
}

int styleFlags(const KxDbMlineStyle& style)
{
    return (style.filled() ? kMlnFill : 0) | (style.showMiters() ? kMlnShowJoints : 0)
        | (style.startSquareCap() ? kMlnStartLineCap : 0) | (style.startInnerArcs() ? kMlnStartInnerArcs : 0)
        | (style.startRoundCap() ? kMlnStartOuterArc : 0) | (style.endSquareCap() ? kMlnEndLineCap : 0)
        | (style.endInnerArcs() ? kMlnEndInnerArcs : 0) | (style.endRoundCap() ? kMlnEndOuterArc : 0);
}

bool getStyleElementOffsets(const KxDbMlineStyle* style, std::span<double> offsets)
{
    if (!style)
        return false;
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        Element e;
        if (static_cast<int>(i) < style->numElements())
            style->getElementAt(static_cast<int>(i), e.offset, e.color, e.linetype);
        offsets[i] = e.offset;
    }
    return true;
}

bool isColorBookKey(const wchar_t* text)
{
    if (!text || !*text || *text == L'$')
        return false;
    const std::wstring_view key(text);
    const std::size_t dollar = key.find(L'$');
    if (dollar == std::wstring_view::npos)
        return true;
    return dollar + 1 < key.size() && key.find(L'$', dollar + 1) == std::wstring_view::npos;
}

}  // namespace kdml
