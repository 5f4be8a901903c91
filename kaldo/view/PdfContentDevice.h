// A PDF page's content stream painted through QPainter: each path becomes
// PDF operators as it is painted, deflated into a device, so that no more
// of the page stays in memory than the deflater's buffers, however much is
// painted. It draws what a plot draws: paths and polygons, stroked in
// solid colours with the pen's width, caps, joins and dashes, and filled
// with solid colours, under rectangular or path clips. Texts and images
// are not drawn. The operators are those Qt's own PDF writer gives the
// same painting, so that a page shows the same either way.
#pragma once

#include <QByteArray>
#include <QPaintDevice>
#include <QSize>

#include <memory>

class QIODevice;

namespace kaldo::view {

class PdfContentEngine;

class PdfContentDevice : public QPaintDevice {
public:
    // size and dotsPerInch describe the device units painted in; prologue
    // is what the stream starts with (the page's own state and the matrix
    // from device units to the page's).
    PdfContentDevice(QIODevice& out, QSize size, int dotsPerInch, QByteArray prologue);
    ~PdfContentDevice() override;

    QPaintEngine* paintEngine() const override;
    // Whether every byte reached the device (known once painting ended).
    bool written() const;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    std::unique_ptr<PdfContentEngine> m_engine;
    QSize m_size;
    int m_dotsPerInch;
};

}  // namespace kaldo::view
