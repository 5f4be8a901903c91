// LIST: shows a picked entity: its kind, handle and points in world
// coordinates, in the drawing's units.
#include "kaldo/app/commands/HostCommands.h"
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
            + std::to_wstring(mline->justification()) + (mline->closedMline() ? L"  closed" : L"");
        for (int i = 0; i < mline->numVertices(); ++i)
            text += L"\n  vertex " + std::to_wstring(i) + L": " + point(mline->vertexAt(i));
        return text;
    }
    return entity.isA()->name() + handle;
}

}  // namespace

void listCommand()
{
    kxds_name name = {0, 0};
    double picked[3] = {};
    KxDbObjectId id;
    if (kxedEntSel(L"\nSelect object: ", name, picked) != RTNORM || kxdbGetObjectId(id, name) != Kald::eOk)
        return;
    KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForRead);
    if (!entity)
        return;
    const std::wstring text = L"\n" + describe(*entity) + L"\n";
    kxedPrompt(text.c_str());
}

}  // namespace kaldo
