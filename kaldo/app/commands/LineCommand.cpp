// LINE: draws line segments point by point. Undo takes back the latest
// segment, Close joins the last point to the first and ends; Enter or
// cancel ends and keeps what was drawn.
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/core/Host.h"
#include "kxdb.h"
#include "kxed.h"

#include <memory>
#include <vector>

namespace kaldo {

namespace {

KxGePoint3d toWorld(const KxGePoint3d& user)
{
    const double in[3] = {user.x, user.y, user.z};
    double out[3] = {};
    kxdbUcs2Wcs(in, out, 0);
    return {out[0], out[1], out[2]};
}

// Appends a line between two user points to the current space; the null id
// when the drawing refuses it.
KxDbObjectId appendLine(const KxGePoint3d& from, const KxGePoint3d& to)
{
    KxDbDatabase* db = host().database;
    auto line = std::make_unique<KxDbLine>(toWorld(from), toWorld(to));
    line->setDatabaseDefaults(db);
    KxDbObjectId id;
    if (!db || db->addToCurrentSpace(line.get(), id) != Kald::eOk)
        return {};
    KxDbObjectPtr<KxDbLine> added(line.release());
    return id;
}

void eraseSegment(KxDbObjectId id)
{
    KxDbObjectPtr<KxDbLine> line(id, KxDb::kForWrite);
    if (line)
        line->erase();
}

}  // namespace

void lineCommand()
{
    std::vector<KxGePoint3d> points;
    std::vector<KxDbObjectId> segments;
    for (;;) {
        double p[3] = {};
        if (points.empty()) {
            if (kxedGetPoint(nullptr, L"\nSpecify first point: ", p) != RTNORM)
                return;
            points.push_back({p[0], p[1], p[2]});
            continue;
        }
        const bool canClose = segments.size() >= 2;
        kxedInitGet(0, canClose ? L"Close Undo _Close Undo" : L"Undo _Undo");
        const double base[3] = {points.back().x, points.back().y, points.back().z};
        const int result = kxedGetPoint(base, canClose ? L"\nSpecify next point or [Close/Undo]: "
                                                       : L"\nSpecify next point or [Undo]: ",
                                        p);
        if (result == RTNORM) {
            const KxGePoint3d next{p[0], p[1], p[2]};
            const KxDbObjectId id = appendLine(points.back(), next);
            if (id.isNull())
                return;
            segments.push_back(id);
            points.push_back(next);
            continue;
        }
        if (result != RTKWORD)
            return;
        wchar_t keyword[KXED_TEXT_SIZE] = {};
        kxedGetInput(keyword);
        if (std::wstring_view(keyword) == L"Close") {
            appendLine(points.back(), points.front());
            return;
        }
        points.pop_back();
        if (!segments.empty()) {
            eraseSegment(segments.back());
            segments.pop_back();
        }
    }
}

}  // namespace kaldo
