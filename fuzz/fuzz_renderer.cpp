// Feeds arbitrary bytes to the drawing reader, and what it reads to the
// renderer and the painter, as --export draws a PNG: no crash, no
// sanitizer report, no hang, only DxfError for bad input, and the picture
// of a drawing drawn on two threads the same as drawn on one.
#include <QBuffer>
#include <QGuiApplication>
#include <QImage>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/GroupReader.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PngExport.h"
#include "kxdbdatabase.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    // Texts need fonts, which need an application.
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    static QGuiApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        kaldo::dxf::GroupReader reader(std::string_view(reinterpret_cast<const char*>(data), size));
        const kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxf(reader);
        // A small budget, so that inputs reach the coarse drawing of block
        // copies and texts in a fraction of the time a full one takes here.
        constexpr std::size_t kBudget = std::size_t(1) << 16;
        kaldo::view::RenderNotes notes;
        const kaldo::view::Scene scene = kaldo::view::renderDrawing(*drawing.database, &notes, kBudget);
        // Two bands, as pictures are painted on threads.
        const QImage image = kaldo::view::paintScene(scene, {256, kaldo::view::Background::Dark}, 2);
        // A large drawing is drawn on two threads: the picture is the one
        // a single thread draws (in one piece).
        kaldo::view::Scene oneThread;
        kaldo::view::renderDrawingInPieces(
            *drawing.database, std::numeric_limits<std::size_t>::max(),
            [&](const kaldo::view::Scene& piece) { oneThread = piece; }, nullptr, kBudget);
        if (kaldo::view::paintScene(oneThread, {256, kaldo::view::Background::Dark}, 2) != image)
            std::abort();
        QBuffer png;
        png.open(QIODevice::WriteOnly);
        image.save(&png, "png");
    } catch (const kaldo::dxf::DxfError&) {
    }
    return 0;
}
