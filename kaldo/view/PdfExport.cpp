#include "kaldo/view/PdfExport.h"

#include "kaldo/util/FileAccess.h"
#include "kaldo/util/FileWriting.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PlotPainter.h"

#include <QFile>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace kaldo::view {

namespace {

// Device units of the page: fine enough that no coordinate the writer
// rounds moves a line by a visible amount.
constexpr int kDotsPerInch = 1200;
constexpr double kMillimetresPerInch = 25.4;
constexpr double kPointsPerInch = 72;

void paintPage(QIODevice& device, const Scene& scene, const SheetPlacement& placement, const PlotLook& look,
               const std::wstring& title)
{
    QPdfWriter writer(&device);
    writer.setCreator(QStringLiteral("kaldo"));
    writer.setTitle(QString::fromStdWString(title));
    writer.setResolution(kDotsPerInch);
    // The size exactly as given: a near standard size is not taken instead.
    const QPageSize size(QSizeF(placement.width, placement.height), QPageSize::Millimeter, QString(),
                         QPageSize::ExactMatch);
    writer.setPageLayout(QPageLayout(size, QPageLayout::Portrait, QMarginsF()));
    QPainter painter;
    if (!painter.begin(&writer))
        throw FileError("the PDF writer did not start");
    // The writer's page is the sheet in whole points; the sheet lies on it
    // from its lower-left corner, where the plot's offsets are measured.
    const double devicePerMillimetre = kDotsPerInch / kMillimetresPerInch;
    const double pageHeight = writer.pageLayout().fullRectPoints().height() * kDotsPerInch / kPointsPerInch;
    const double sheetHeight = placement.height * devicePerMillimetre;
    paintPlot(painter, scene, placement,
              QRectF(0, pageHeight - sheetHeight, placement.width * devicePerMillimetre, sheetHeight), look);
    if (!painter.end())
        throw FileError("the PDF writer did not finish");
}

}  // namespace

std::string writePdf(const Scene& scene, const SheetPlacement& placement, const PlotLook& look,
                     const std::filesystem::path& file, const std::wstring& title)
{
    try {
        replaceFile(file, [&](int fd) {
            QFile out;
            if (!out.open(fd, QIODevice::WriteOnly, QFileDevice::DontCloseHandle))
                throw FileError(out.errorString().toStdString());
            paintPage(out, scene, placement, look, title);
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

}  // namespace kaldo::view
