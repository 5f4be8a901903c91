#include "kaldo/view/SvgExport.h"

#include <QBuffer>
#include <QIODevice>

#include <charconv>
#include <cstdio>
#include <cmath>
#include <numbers>
#include <span>

#include "kaldo/view/SaveFile.h"

namespace kaldo::view {

namespace {

// SVG text on its way to a device: gathered in a buffer of about a
// megabyte that goes out whenever it fills, so that memory stays flat
// however large the drawing. Numbers in pixels with two decimals.
class SvgText {
public:
    explicit SvgText(QIODevice& device) : m_device(device) { m_buffer.reserve(kChunk + 4096); }

    SvgText& operator<<(const char* text)
    {
        m_buffer += text;
        flushWhenFull();
        return *this;
    }
    SvgText& operator<<(double value)
    {
        char buffer[32];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 2);
        m_buffer.append(buffer, result.ptr);
        return *this;
    }
    SvgText& operator<<(int value)
    {
        char buffer[16];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
        m_buffer.append(buffer, result.ptr);
        return *this;
    }
    SvgText& rgb(std::uint32_t color)
    {
        char buffer[8];
        std::snprintf(buffer, sizeof buffer, "#%06x", static_cast<unsigned>(color & 0xFFFFFF));
        m_buffer += buffer;
        return *this;
    }

    // Writes what is left; false when any write failed.
    bool finish()
    {
        flush();
        return m_written;
    }

private:
    static constexpr std::size_t kChunk = std::size_t(1) << 20;

    void flushWhenFull()
    {
        if (m_buffer.size() >= kChunk)
            flush();
    }
    void flush()
    {
        if (m_written && !m_buffer.empty())
            m_written = m_device.write(m_buffer.data(), qint64(m_buffer.size())) == qint64(m_buffer.size());
        m_buffer.clear();
    }

    QIODevice& m_device;
    std::string m_buffer;
    bool m_written = true;
};

class SvgWriter {
public:
    SvgWriter(const Scene& scene, const PictureOptions& options, QIODevice& device)
        : m_scene(scene), m_options(options), m_frame(scene.bounds(), options.size), m_svg(device)
    {
    }

    // False when the device refused a write.
    bool write()
    {
        m_svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << m_frame.width() << "\" height=\""
              << m_frame.height() << "\" viewBox=\"0 0 " << m_frame.width() << " " << m_frame.height() << "\">\n"
              << "<rect width=\"100%\" height=\"100%\" fill=\"";
        m_svg.rgb(backgroundRgb(m_options.background)) << "\"/>\n";
        writeFills();
        const LineGroups lines = groupLines(m_scene);
        const PenGroups arcs = groupByPen(m_scene.arcs(), m_scene.pens().size());
        for (std::size_t p = 0; p < m_scene.pens().size(); ++p) {
            if (lines.starts[p] == lines.starts[p + 1] && arcs.starts[p] == arcs.starts[p + 1])
                continue;
            openPenGroup(m_scene.pens()[p]);
            for (std::uint32_t i = lines.starts[p]; i < lines.starts[p + 1]; ++i) {
                const SceneItem item = lines.order[i];
                if (!item.instance) {
                    const Polyline& polyline = m_scene.polylines()[item.index];
                    writePolyline(polyline.closed, {m_scene.points().data() + polyline.first, polyline.count});
                    continue;
                }
                m_scene.visitPolylines(m_scene.instances()[item.index],
                                       [&](int pen, bool closed, std::span<const Point2> points) {
                                           if (pen == int(p))
                                               writePolyline(closed, points);
                                       });
            }
            for (std::uint32_t i = arcs.starts[p]; i < arcs.starts[p + 1]; ++i)
                writeArc(m_scene.arcs()[arcs.order[i]]);
            m_svg << "</g>\n";
        }
        m_svg << "</svg>\n";
        return m_svg.finish();
    }

private:
    void point(const Point2& p) { m_svg << m_frame.x(p.x) << "," << m_frame.y(p.y); }

    // All fills of one colour in one path, so that neighbouring pieces
    // show no seams.
    void writeFills()
    {
        const FillGroups fills = groupFills(m_scene);
        for (std::size_t c = 0; c < fills.colors.size(); ++c) {
            m_svg << "<path fill-rule=\"nonzero\" stroke=\"none\" fill=\"";
            m_svg.rgb(pictureRgb(fills.colors[c], m_options.background)) << "\" d=\"";
            const auto writePolygon = [&](std::span<const Point2> corners) {
                for (std::size_t i = 0; i < corners.size(); ++i) {
                    m_svg << (i == 0 ? "M" : " L");
                    point(corners[i]);
                }
                m_svg << " Z ";
            };
            for (std::uint32_t f = fills.starts[c]; f < fills.starts[c + 1]; ++f) {
                const SceneItem item = fills.order[f];
                if (!item.instance) {
                    const Polygon& polygon = m_scene.polygons()[item.index];
                    writePolygon({m_scene.points().data() + polygon.first, polygon.count});
                    continue;
                }
                m_scene.visitPolygons(m_scene.instances()[item.index],
                                      [&](const DrawColor& color, std::span<const Point2> corners) {
                                          if (color == fills.colors[c])
                                              writePolygon(corners);
                                      });
            }
            m_svg << "\"/>\n";
        }
    }

    void openPenGroup(const Pen& pen)
    {
        m_svg << "<g fill=\"none\" stroke-width=\"1\" stroke-linejoin=\"round\" stroke=\"";
        m_svg.rgb(pictureRgb(pen.color, m_options.background)) << "\"";
        const PixelDashes dashes = pixelDashes(m_scene.patterns()[std::size_t(pen.pattern)], m_frame.scale());
        if (dashes.lengths.empty()) {
            m_svg << " stroke-linecap=\"round\">\n";
            return;
        }
        m_svg << " stroke-linecap=\"butt\" stroke-dasharray=\"";
        for (std::size_t i = 0; i < dashes.lengths.size(); ++i)
            m_svg << (i == 0 ? "" : " ") << dashes.lengths[i];
        m_svg << "\" stroke-dashoffset=\"" << dashes.offset << "\">\n";
    }

    void writePolyline(bool closed, std::span<const Point2> points)
    {
        m_svg << (closed ? "<polygon points=\"" : "<polyline points=\"");
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (i > 0)
                m_svg << " ";
            point(points[i]);
        }
        m_svg << "\"/>\n";
    }

    // Pixels have y downwards: an arc counter-clockwise in the drawing is
    // drawn with the sweep flag 0.
    void writeArc(const Arc& arc)
    {
        const double radius = arc.radius * m_frame.scale();
        if (std::abs(arc.sweep) >= 2 * std::numbers::pi - 1e-12) {
            m_svg << "<circle cx=\"" << m_frame.x(arc.centre.x) << "\" cy=\"" << m_frame.y(arc.centre.y) << "\" r=\""
                  << radius << "\"/>\n";
            return;
        }
        const auto at = [&](double angle) {
            return Point2{arc.centre.x + arc.radius * std::cos(angle), arc.centre.y + arc.radius * std::sin(angle)};
        };
        m_svg << "<path d=\"M";
        point(at(arc.start));
        m_svg << " A" << radius << "," << radius << " 0 " << (std::abs(arc.sweep) > std::numbers::pi ? 1 : 0) << ","
              << (arc.sweep > 0 ? 0 : 1) << " ";
        point(at(arc.start + arc.sweep));
        m_svg << "\"/>\n";
    }

    const Scene& m_scene;
    const PictureOptions& m_options;
    PictureFrame m_frame;
    SvgText m_svg;
};

}  // namespace

std::string svgDocument(const Scene& scene, const PictureOptions& options)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    SvgWriter(scene, options, buffer).write();
    return buffer.data().toStdString();
}

std::string writeSvg(const Scene& scene, const std::filesystem::path& file, const PictureOptions& options)
{
    return saveAtomically(file, [&](QIODevice& device, std::string&) { return SvgWriter(scene, options, device).write(); });
}

}  // namespace kaldo::view
