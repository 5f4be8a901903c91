#include "kaldo/view/PdfContentDevice.h"

#include <QIODevice>
#include <QPaintEngine>
#include <QPainterPath>
#include <QRegion>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

namespace kaldo::view {

namespace {

// Deflates what is written into a device in pieces of a fixed size. The
// fastest level: page content is long runs of numbers, which the higher
// levels shrink little further at several times the cost.
class Deflater {
public:
    explicit Deflater(QIODevice& out) : m_out(out) { m_ok = deflateInit(&m_stream, Z_BEST_SPEED) == Z_OK; }
    ~Deflater() { deflateEnd(&m_stream); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    void write(const std::string& text) { run(text.data(), text.size(), Z_NO_FLUSH); }
    bool finish()
    {
        run(nullptr, 0, Z_FINISH);
        return m_ok;
    }

private:
    void run(const char* data, std::size_t size, int flush)
    {
        if (!m_ok)
            return;
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
        m_stream.avail_in = uInt(size);
        int result = Z_OK;
        do {
            m_stream.next_out = m_buffer.data();
            m_stream.avail_out = uInt(m_buffer.size());
            result = deflate(&m_stream, flush);
            const qint64 produced = qint64(m_buffer.size() - m_stream.avail_out);
            const char* bytes = reinterpret_cast<const char*>(m_buffer.data());
            if (result == Z_STREAM_ERROR || (produced > 0 && m_out.write(bytes, produced) != produced)) {
                m_ok = false;
                return;
            }
        } while (m_stream.avail_out == 0 || (flush == Z_FINISH && result != Z_STREAM_END));
    }

    QIODevice& m_out;
    z_stream m_stream{};
    std::array<Bytef, 1 << 16> m_buffer{};
    bool m_ok = false;
};

// Device units to three decimals (a millionth of an inch at 1200 dots
// per inch), colours to four; no trailing zeros, as PDF readers take them.
void appendNumber(std::string& text, double value, int decimals = 3)
{
    std::array<char, 64> digits{};
    auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                      std::chars_format::fixed, decimals);
    if (error != std::errc())
        end = digits.data();
    char* dot = std::find(digits.data(), end, '.');
    if (dot != end) {
        while (end[-1] == '0')
            --end;
        if (end[-1] == '.')
            --end;
    }
    const std::string_view number(digits.data(), std::size_t(end - digits.data()));
    text.append(number == "-0" ? "0" : number);
    text += ' ';
}

void appendPoint(std::string& text, const QPointF& point)
{
    appendNumber(text, point.x());
    appendNumber(text, point.y());
}

bool samePoint(const QPointF& a, const QPointF& b)
{
    return std::abs(a.x() - b.x()) <= 1e-10 && std::abs(a.y() - b.y()) <= 1e-10;
}

void appendColor(std::string& text, const QColor& color, const char* operation)
{
    appendNumber(text, color.redF(), 4);
    appendNumber(text, color.greenF(), 4);
    appendNumber(text, color.blueF(), 4);
    text += operation;
}

// The operators that set a pen: colour, width, cap, join and dashes (in
// widths of the pen; a dot is a dash of almost no length).
std::string penOperators(const QPen& pen)
{
    std::string text;
    appendColor(text, pen.color(), "SCN\n");
    appendNumber(text, pen.widthF());
    text += "w ";
    text += pen.capStyle() == Qt::FlatCap ? "0 J " : pen.capStyle() == Qt::RoundCap ? "1 J " : "2 J ";
    if (pen.joinStyle() == Qt::RoundJoin) {
        text += "1 j ";
    } else if (pen.joinStyle() == Qt::BevelJoin) {
        text += "2 j ";
    } else {
        text += "0 j ";
        appendNumber(text, pen.miterLimit());
        text += "M ";
    }
    const double width = pen.widthF() < 0.001 ? 1.0 : pen.widthF();
    text += '[';
    for (const double dash : pen.dashPattern())
        appendNumber(text, std::max(dash * width, 0.0001), 4);
    text += "] ";
    appendNumber(text, pen.dashOffset() * width);
    text += "d\n";
    return text;
}

}  // namespace

class PdfContentEngine final : public QPaintEngine {
public:
    PdfContentEngine(QIODevice& out, QByteArray prologue)
        : QPaintEngine(QPaintEngine::AllFeatures), m_out(out), m_prologue(std::move(prologue))
    {
    }

    bool written() const { return m_written; }

    bool begin(QPaintDevice*) override
    {
        m_deflater.emplace(m_out);
        // Nothing the stream sets outlasts it: the page's other content
        // streams start from the page's own state.
        m_text = "q\n";
        m_text.append(m_prologue.constData(), std::size_t(m_prologue.size()));
        m_text += "q\n";
        return true;
    }

    bool end() override
    {
        m_text += "Q\nQ\n";
        flush();
        m_written = m_deflater->finish();
        m_deflater.reset();
        return m_written;
    }

    void updateState(const QPaintEngineState& state) override
    {
        const DirtyFlags flags = state.state();
        if (flags & DirtyTransform)
            m_transform = state.transform();
        if (flags & DirtyPen) {
            m_stroke = state.pen().style() != Qt::NoPen;
            m_penOperators = penOperators(state.pen());
        }
        if (flags & DirtyBrush) {
            m_fill = state.brush().style() != Qt::NoBrush;
            m_brushOperators.clear();
            appendColor(m_brushOperators, state.brush().color(), "scn\n");
        }
        if (flags & (DirtyClipPath | DirtyClipRegion | DirtyClipEnabled))
            updateClip(state, flags);
    }

    void drawPath(const QPainterPath& path) override
    {
        if (!startPainting(true))
            return;
        appendPath(path);
        finishPainting(path.fillRule(), true);
    }

    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        const bool filled = mode != PolylineMode;
        if (count < 1 || !startPainting(filled))
            return;
        for (int i = 0; i < count; ++i) {
            appendPoint(m_text, m_transform.map(points[i]));
            m_text += i == 0 ? "m\n" : "l\n";
        }
        if (filled)
            m_text += "h\n";
        finishPainting(mode == OddEvenMode ? Qt::OddEvenFill : Qt::WindingFill, filled);
    }

    // Plots paint no images.
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}

    Type type() const override { return QPaintEngine::User; }

private:
    // Sets the pen and the fill colour the next painting takes; false when
    // it would show nothing.
    bool startPainting(bool filled)
    {
        const bool fill = filled && m_fill;
        if (!m_stroke && !fill)
            return false;
        if (m_stroke && m_penOperators != m_penSet) {
            m_text += m_penOperators;
            m_penSet = m_penOperators;
        }
        if (fill && m_brushOperators != m_brushSet) {
            m_text += m_brushOperators;
            m_brushSet = m_brushOperators;
        }
        return true;
    }

    void finishPainting(Qt::FillRule rule, bool filled)
    {
        const bool winding = rule == Qt::WindingFill;
        if (filled && m_fill)
            m_text += m_stroke ? (winding ? "B\n" : "B*\n") : (winding ? "f\n" : "f*\n");
        else
            m_text += "S\n";
        if (m_text.size() >= kFlushSize)
            flush();
    }

    // A subpath that ends where it began is closed.
    void appendPath(const QPainterPath& path)
    {
        int start = -1;
        const auto closeAt = [&](int last) {
            if (start >= 0 && samePoint(path.elementAt(start), path.elementAt(last)))
                m_text += "h\n";
        };
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element& element = path.elementAt(i);
            if (element.isMoveTo()) {
                closeAt(i - 1);
                start = i;
                appendPoint(m_text, m_transform.map(QPointF(element)));
                m_text += "m\n";
            } else if (element.isLineTo()) {
                appendPoint(m_text, m_transform.map(QPointF(element)));
                m_text += "l\n";
            } else {
                for (int c = 0; c < 3; ++c)
                    appendPoint(m_text, m_transform.map(QPointF(path.elementAt(i + c))));
                m_text += "c\n";
                i += 2;
            }
        }
        closeAt(path.elementCount() - 1);
    }

    // A clip replacing the last goes back to the state outside all clips
    // (which forgets the pen and fill colour set); one intersecting it adds
    // to it.
    void updateClip(const QPaintEngineState& state, DirtyFlags flags)
    {
        const Qt::ClipOperation operation = state.clipOperation();
        if (operation != Qt::IntersectClip || !state.isClipEnabled()) {
            m_text += "Q q\n";
            m_penSet.clear();
            m_brushSet.clear();
        }
        if (!state.isClipEnabled() || operation == Qt::NoClip)
            return;
        QPainterPath clip = state.clipPath();
        if (flags & DirtyClipRegion) {
            clip = QPainterPath();
            clip.addRegion(state.clipRegion());
        }
        appendPath(clip);
        m_text += clip.fillRule() == Qt::WindingFill ? "W n\n" : "W* n\n";
    }

    void flush()
    {
        m_deflater->write(m_text);
        m_text.clear();
    }

    static constexpr std::size_t kFlushSize = 1 << 16;

    QIODevice& m_out;
    QByteArray m_prologue;
    std::optional<Deflater> m_deflater;
    std::string m_text;
    QTransform m_transform;
    bool m_stroke = true;
    bool m_fill = false;
    std::string m_penOperators;
    std::string m_brushOperators;
    std::string m_penSet;  // as the stream last set them
    std::string m_brushSet;
    bool m_written = false;
};

PdfContentDevice::PdfContentDevice(QIODevice& out, QSize size, int dotsPerInch, QByteArray prologue)
    : m_engine(std::make_unique<PdfContentEngine>(out, std::move(prologue))), m_size(size), m_dotsPerInch(dotsPerInch)
{
}

PdfContentDevice::~PdfContentDevice() = default;

QPaintEngine* PdfContentDevice::paintEngine() const
{
    return m_engine.get();
}

bool PdfContentDevice::written() const
{
    return m_engine->written();
}

int PdfContentDevice::metric(PaintDeviceMetric metric) const
{
    switch (metric) {
    case PdmWidth:
        return m_size.width();
    case PdmHeight:
        return m_size.height();
    case PdmWidthMM:
        return int(std::lround(m_size.width() * 25.4 / m_dotsPerInch));
    case PdmHeightMM:
        return int(std::lround(m_size.height() * 25.4 / m_dotsPerInch));
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return m_dotsPerInch;
    case PdmDevicePixelRatio:
        return 1;
    case PdmDevicePixelRatioScaled:
        return int(devicePixelRatioFScale());
    default:
        return QPaintDevice::metric(metric);
    }
}

}  // namespace kaldo::view
