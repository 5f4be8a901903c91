// LIST: shows each selected entity: its kind, handle and points in world
// coordinates, in the drawing's units. A multiline also shows its style and
// normal, and per vertex its segment direction, miter and the element and
// fill parameter lists.
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kaldo/db/EntityKinds.h"
#include "kxdb.h"
#include "kxed.h"
#include "kxedunits.h"

namespace kaldo {

namespace {

std::wstring distance(double value)
{
    wchar_t text[KXED_NUMBER_SIZE] = {};
    kxdbRToS(value == 0.0 ? 0.0 : value, -1, -1, text);
    return text;
}

std::wstring angle(double radians)
{
    wchar_t text[KXED_NUMBER_SIZE] = {};
    kxdbAngToS(radians, -1, -1, text);
    return text;
}

std::wstring point(const KxGePoint3d& p)
{
    return L"X=" + distance(p.x) + L"  Y=" + distance(p.y) + L"  Z=" + distance(p.z);
}

std::wstring vector(const KxGeVector3d& v)
{
    return point({v.x, v.y, v.z});
}

std::wstring numbers(std::span<const double> values)
{
    std::wstring text;
    for (double value : values)
        text += L" " + distance(value);
    return text;
}

std::wstring styleName(const KxDbMline& mline)
{
    const KxDbObjectPtr<KxDbMlineStyle> style(mline.style(), KxDb::kForRead);
    return style ? style->name() : L"";
}

// Direction, miter and per element the element and fill lists of a vertex.
std::wstring vertexDetails(const KxDbMline& mline, int vertex)
{
    std::wstring text = L"\n    direction: " + vector(mline.axisAt(vertex)) + L"\n    miter: " + vector(mline.miterAt(vertex));
    const KxDbMlineVertexLists lists = mline.parametersAt(vertex);
    for (int e = 0; e < lists.numElements(); ++e) {
        text += L"\n    element " + std::to_wstring(e) + L":" + numbers(lists.element(e)) + L"  fill:"
            + numbers(lists.areaFill(e));
    }
    return text;
}

// The entity's kind, handle and geometry.
std::wstring describe(const KxDbEntity& entity)
{
    const std::wstring handle = L"  handle: " + entity.handleText();
    if (const KxDbLine* line = KxDbLine::cast(&entity)) {
        return L"LINE" + handle + L"\n  from point: " + point(line->startPoint()) + L"\n    to point: " + point(line->endPoint())
            + L"\n      length: " + distance(::distance(line->startPoint(), line->endPoint()));
    }
    if (const KxDbArc* arc = KxDbArc::cast(&entity)) {
        return L"ARC" + handle + L"\n  center point: " + point(arc->center()) + L"\n        radius: " + distance(arc->radius())
            + L"\n   start angle: " + angle(arc->startAngle()) + L"\n     end angle: " + angle(arc->endAngle());
    }
    if (const KxDbMline* mline = KxDbMline::cast(&entity)) {
        std::wstring text = L"MLINE" + handle + L"\n  scale: " + distance(mline->scale()) + L"  justification: "
            + std::to_wstring(mline->justification()) + (mline->closedMline() ? L"  closed" : L"")
            + L"\n  style: " + styleName(*mline) + L"  normal: " + vector(mline->normal());
        for (int i = 0; i < mline->numVertices(); ++i)
            text += L"\n  vertex " + std::to_wstring(i) + L": " + point(mline->vertexAt(i)) + vertexDetails(*mline, i);
        return text;
    }
    return entityKindName(entity) + handle;
}

}  // namespace

void listCommand()
{
    SelectionSet set;
    if (!selectForCommand(set))
        return;
    for (const KxDbObjectId& id : set.ids()) {
        KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForRead);
        if (!entity)
            continue;
        const std::wstring text = L"\n" + describe(*entity) + L"\n";
        kxedPrompt(text.c_str());
    }
}

}  // namespace kaldo
