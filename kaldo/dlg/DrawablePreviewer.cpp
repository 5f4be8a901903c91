// The drawable previewer: a canvas laid over the control that paints the
// renderer's scene of the drawables, fitted to the canvas with a margin.
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/Picture.h"
#include "kaldo/view/PngExport.h"
#include "kxgipreview.h"

#include <QPainter>
#include <QPointer>
#include <QWidget>

#include <algorithm>

const KxGePoint2d KxGePoint2d::kOrigin{};

class KaldGiDrawablePreviewer::Canvas : public QWidget {
public:
    Canvas(QWidget* window, KxDbDatabase* database, const KdVector<KxGiDrawable*>& drawables)
        : QWidget(window), database_(database), drawables_(drawables)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(window->rect());
        show();
    }

    void setBackground(std::uint32_t rgb)
    {
        background_ = rgb;
        picture_ = {};
        QWidget::update();
    }

    void render()
    {
        std::vector<const KxDbEntity*> entities(drawables_.cbegin(), drawables_.cend());
        scene_ = database_ ? kaldo::view::renderEntities(*database_, entities) : kaldo::view::Scene();
        picture_ = {};
        QWidget::update();
    }

    double unitSquarePerPixel() const { return pixelSize_ * pixelSize_; }

protected:
    void resizeEvent(QResizeEvent*) override { picture_ = {}; }

    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), QColor::fromRgb(background_));
        if (picture_.isNull())
            picture_ = paintPicture();
        painter.drawImage(QPoint((width() - picture_.width()) / 2, (height() - picture_.height()) / 2), picture_);
    }

private:
    // The scene as large as fits the canvas; null when there is nothing.
    QImage paintPicture()
    {
        const kaldo::view::Bounds bounds = scene_.bounds();
        if (bounds.empty || width() <= 0 || height() <= 0)
            return {};
        const double w = std::max(bounds.maxX - bounds.minX, 1e-9);
        const double h = std::max(bounds.maxY - bounds.minY, 1e-9);
        const double longer = w >= h ? std::min(double(width()), height() * w / h)
                                     : std::min(double(height()), width() * h / w);
        const int size = std::max(1, int(longer));
        const bool dark = qGray(QRgb(background_)) < 128;
        const kaldo::view::PictureOptions options{size, dark ? kaldo::view::Background::Dark
                                                             : kaldo::view::Background::White};
        pixelSize_ = 1.0 / kaldo::view::PictureFrame(bounds, size).scale();
        QImage picture = kaldo::view::paintScene(scene_, options, 1).convertToFormat(QImage::Format_ARGB32);
        // The ground of the picture becomes the canvas's own.
        const QRgb ground = picture.pixel(0, 0);
        for (int y = 0; y < picture.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
            std::replace(line, line + picture.width(), ground, QRgb(0));
        }
        return picture;
    }

    KxDbDatabase* database_;
    KdVector<KxGiDrawable*> drawables_;
    kaldo::view::Scene scene_;
    std::uint32_t background_ = 0xffffff;
    QImage picture_;
    double pixelSize_ = 0;
};

KaldGiDrawablePreviewer::KaldGiDrawablePreviewer(QWidget* window, KxDbDatabase* database,
                                                 const KdVector<KxGiDrawable*>& drawables, const KxGePoint2d&,
                                                 const KxGePoint2d&, int)
    : m_canvas(window ? new Canvas(window, database, drawables) : nullptr)
{
    if (Canvas* canvas = this->canvas())
        canvas->render();
}

KaldGiDrawablePreviewer::~KaldGiDrawablePreviewer()
{
    delete m_canvas.data();
}

KaldGiDrawablePreviewer::Canvas* KaldGiDrawablePreviewer::canvas() const
{
    return static_cast<Canvas*>(m_canvas.data());
}

void KaldGiDrawablePreviewer::setBackground(std::uint32_t rgb)
{
    if (Canvas* canvas = this->canvas())
        canvas->setBackground(rgb);
}

void KaldGiDrawablePreviewer::update()
{
    if (Canvas* canvas = this->canvas())
        canvas->render();
}

void KaldGiDrawablePreviewer::invalidate(bool)
{
    if (m_canvas)
        m_canvas->update();
}

void KaldGiDrawablePreviewer::onSize(int cx, int cy)
{
    if (m_canvas)
        m_canvas->setGeometry(0, 0, cx, cy);
}

double KaldGiDrawablePreviewer::unitSquarePerPixel() const
{
    const Canvas* canvas = this->canvas();
    return canvas ? canvas->unitSquarePerPixel() : 0;
}

std::uint32_t getBKGColor(bool modelSpace, void*, void*)
{
    return kaldo::view::backgroundRgb(kaldo::view::windowBackground(modelSpace));
}
