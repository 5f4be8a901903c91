// ZOOM: changes what the view shows. Extents fits the drawing, Window the
// box between two corners, Previous goes back to the view before; a number,
// with or without a trailing X, scales the current view by that factor
// (2 shows things twice as large).
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/core/Host.h"
#include "kaldo/dxf/DrawingExtents.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kxed.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace kaldo {

namespace {

// A tenth more room than the box needs, so that nothing touches the edges.
constexpr double kFitMargin = 1.1;

// Centres the view on the box between a and b (world) and fits it in.
void fitBox(View& view, const KxGePoint3d& a, const KxGePoint3d& b)
{
    ViewPlacement placement = view.placement();
    placement.centre = {(a.x + b.x) / 2, (a.y + b.y) / 2, 0};
    const double fit = std::max(std::abs(b.x - a.x) / std::max(1, placement.widthPixels),
                                std::abs(b.y - a.y) / std::max(1, placement.heightPixels));
    if (fit > 0 && std::isfinite(fit))
        placement.unitsPerPixel = fit * kFitMargin;
    view.place(placement);
}

void zoomExtents(Editor& editor)
{
    const KxDbDatabase* db = host().database;
    if (!db)
        return;
    const dxf::Extents extents = dxf::drawingExtents(*db);
    if (extents.min.x > extents.max.x)
        return;
    fitBox(editor.view(), extents.min, extents.max);
}

void zoomWindow(Editor& editor, const KxGePoint3d* firstCorner)
{
    KxGePoint3d first;
    if (firstCorner)
        first = *firstCorner;
    else if (editor.getPoint(nullptr, L"\nSpecify first corner: ", first) != RTNORM)
        return;
    KxGePoint3d second;
    if (editor.getCorner(first, L"\nSpecify opposite corner: ", second) != RTNORM)
        return;
    const Ucs ucs = currentUcs();
    fitBox(editor.view(), ucsToWorld(ucs, first), ucsToWorld(ucs, second));
}

// A scale factor as typed ("2", "0.5x"); nothing for other text.
std::optional<double> scaleFactor(std::wstring_view text)
{
    if (!text.empty() && (text.back() == L'x' || text.back() == L'X'))
        text.remove_suffix(1);
    const auto factor = parseReal(text);
    if (!factor || !(*factor > 0) || !std::isfinite(*factor))
        return std::nullopt;
    return factor;
}

}  // namespace

void zoomCommand()
{
    Editor* editor = currentEditor();
    if (!editor)
        return;
    const std::wstring_view prompt =
        L"\nSpecify corner of window, enter a scale factor (nX), or [Extents/Window/Previous]: ";
    for (;;) {
        editor->initGet(RSG_OTHER, L"Extents Window Previous _Extents Window Previous");
        KxGePoint3d corner;
        const int result = editor->getPoint(nullptr, prompt, corner);
        if (result == RTNORM) {
            zoomWindow(*editor, &corner);
            break;
        }
        if (result != RTKWORD)
            return;
        std::wstring word;
        editor->lastKeyword(word);
        if (word == L"Extents") {
            zoomExtents(*editor);
        } else if (word == L"Window") {
            zoomWindow(*editor, nullptr);
        } else if (word == L"Previous") {
            if (!editor->view().previous())
                editor->write(L"\nNo previous view saved.\n");
        } else if (const auto factor = scaleFactor(trimmed(word))) {
            ViewPlacement placement = editor->view().placement();
            placement.unitsPerPixel /= *factor;
            editor->view().place(placement);
        } else {
            editor->write(L"\nRequires a scale factor or an option keyword.\n");
            continue;
        }
        break;
    }
    editor->view().announce();
}

}  // namespace kaldo
