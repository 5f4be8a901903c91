#include "kaldo/view/PdfExport.h"

#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PdfContentDevice.h"
#include "kaldo/view/PdfPageContents.h"
#include "kaldo/view/PlotPainter.h"

#include <QFile>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryFile>

#include <cmath>

namespace kaldo::view {

namespace {

// Device units of the page: fine enough that no coordinate the writer
// rounds moves a line by a visible amount.
constexpr int kDotsPerInch = 1200;
constexpr double kMillimetresPerInch = 25.4;
constexpr double kPointsPerInch = 72;

void openTemporary(QTemporaryFile& file)
{
    if (!file.open())
        throw FileError("cannot make a temporary file for the plot: " + file.errorString().toStdString());
}

void begin(QPainter& painter, QPaintDevice& device)
{
    if (!painter.begin(&device))
        throw FileError("the PDF writer did not start");
}

void end(QPainter& painter)
{
    if (!painter.end())
        throw FileError("the PDF writer did not finish");
}

// The state Qt's PDF writer gives its page before painting: its colour
// space and graphics state, and device units (y downwards) mapped to
// points from the page's foot.
QByteArray pagePrologue(double pageHeightPoints)
{
    const QByteArray scale = QByteArray::number(kPointsPerInch / kDotsPerInch, 'f', 9);
    return "/GSa gs /CSp cs /CSp CS\n" + scale + " 0 0 -" + scale + " 0 " + QByteArray::number(pageHeightPoints, 'f', 6)
        + " cm\n";
}

void paintPage(QIODevice& out, const ScenePieces& pieces, const SheetPlacement& placement, const PlotLook& look,
               const std::wstring& title)
{
    QTemporaryFile textPage, fills, lines;
    openTemporary(textPage);
    openTemporary(fills);
    openTemporary(lines);
    QPdfWriter writer(&textPage);
    writer.setCreator(QStringLiteral("kaldo"));
    writer.setTitle(QString::fromStdWString(title));
    writer.setResolution(kDotsPerInch);
    // The size exactly as given: a near standard size is not taken instead.
    const QPageSize size(QSizeF(placement.width, placement.height), QPageSize::Millimeter, QString(),
                         QPageSize::ExactMatch);
    writer.setPageLayout(QPageLayout(size, QPageLayout::Portrait, QMarginsF()));
    // The writer's page is the sheet in whole points; the sheet lies on it
    // from its lower-left corner, where the plot's offsets are measured.
    const double devicePerMillimetre = kDotsPerInch / kMillimetresPerInch;
    const QSizeF pagePoints = writer.pageLayout().fullRectPoints().size();
    const double pageHeight = pagePoints.height() * kDotsPerInch / kPointsPerInch;
    const double sheetHeight = placement.height * devicePerMillimetre;
    const QRectF sheet(0, pageHeight - sheetHeight, placement.width * devicePerMillimetre, sheetHeight);
    const QSize deviceSize(int(std::ceil(pagePoints.width() * kDotsPerInch / kPointsPerInch)),
                           int(std::ceil(pageHeight)));
    const QByteArray prologue = pagePrologue(pagePoints.height());
    PdfContentDevice fillDevice(fills, deviceSize, kDotsPerInch, prologue);
    PdfContentDevice lineDevice(lines, deviceSize, kDotsPerInch, prologue);
    QPainter textPainter, fillPainter, linePainter;
    begin(textPainter, writer);
    begin(fillPainter, fillDevice);
    begin(linePainter, lineDevice);
    pieces([&](const Scene& scene) {
        paintPlot(fillPainter, scene, placement, sheet, look, {true, false, false});
        paintPlot(linePainter, scene, placement, sheet, look, {false, true, false});
        paintPlot(textPainter, scene, placement, sheet, look, {false, false, true});
    });
    end(textPainter);
    end(fillPainter);
    end(linePainter);
    if (!fillDevice.written() || !lineDevice.written())
        throw FileError("cannot write a temporary file for the plot");
    addPageContentsUnder(textPage, {&fills, &lines}, out);
}

}  // namespace

Bounds piecesExtents(const ScenePieces& pieces)
{
    Bounds box;
    pieces([&](const Scene& scene) {
        const Bounds piece = scene.bounds();
        if (piece.empty)
            return;
        box.add({piece.minX, piece.minY});
        box.add({piece.maxX, piece.maxY});
    });
    return box;
}

std::string writePdf(const ScenePieces& pieces, const SheetPlacement& placement, const PlotLook& look,
                     const std::filesystem::path& file, const std::wstring& title)
{
    try {
        replaceFile(file, [&](int fd) {
            QFile out;
            if (!out.open(fd, QIODevice::WriteOnly, QFileDevice::DontCloseHandle))
                throw FileError(out.errorString().toStdString());
            paintPage(out, pieces, placement, look, title);
            if (!out.flush() || out.error() != QFileDevice::NoError)
                throw FileError(out.errorString().toStdString());
        });
    } catch (const FileError& e) {
        return e.what();
    } catch (...) {
        return "cannot plot '" + file.string() + "': " + failureReason(std::current_exception()) + ".";
    }
    return {};
}

std::string writePdf(const Scene& scene, const SheetPlacement& placement, const PlotLook& look,
                     const std::filesystem::path& file, const std::wstring& title)
{
    return writePdf([&](const std::function<void(const Scene&)>& paint) { paint(scene); }, placement, look, file,
                    title);
}

}  // namespace kaldo::view
