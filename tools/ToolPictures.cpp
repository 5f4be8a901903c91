// Build tool: draws the pictures of the multiline editing tools' buttons.
// Each picture is a small drawing of real multilines in a three-element
// style, with the element runs a tool leaves behind, rendered by the host's
// renderer; the pressed and focus images are the same drawing on a tinted
// ground and with a focus frame. Usage: kdml_tool_pictures OUTPUT_FOLDER
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/PngExport.h"
#include "kxdb.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kPictureSize = 96;

// Element runs of one element at one vertex (entry 0 is kept as the host
// computed it): distances along the segment where drawn runs start and stop.
using Runs = std::vector<double>;

void setRuns(KxDbMline& mline, int vertex, int element, Runs runs)
{
    KxArray array;
    mline.getParametersAt(vertex, array);
    const auto record = KxDbMlineParamsPtr::adopt(KxDbMlineVertexParams::fromArray(array));
    runs.insert(runs.begin(), record->lists.element(element).front());
    record->lists.setElement(element, runs);
    mline.setParametersAt(vertex, array);
}

class ToolDrawing {
public:
    ToolDrawing()
    {
        auto* style = new KxDbMlineStyle;
        style->setName(L"TOOLS");
        KxCmColor color;
        color.setColorIndex(256);
        int index = 0;
        for (double offset : {0.5, 0.0, -0.5})
            style->addElement(index, offset, color, db_.byLayerLinetype());
        KxDbObjectPtr<KxDbDictionary> dict(db_.mlineStyleDictionaryId(), KxDb::kForWrite);
        dict->setAt(L"TOOLS", style, style_);
        style->close();
    }

    // A multiline through points; edit sets its runs.
    void mline(std::initializer_list<KxGePoint3d> points, const std::function<void(KxDbMline&)>& edit = {})
    {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db_);
        mline->setStyle(style_);
        mline->setJustification(Mline::kZero);
        mline->setScale(1.0);
        for (const KxGePoint3d& p : points)
            mline->appendSeg(p);
        if (edit)
            edit(*mline);
        db_.addToCurrentSpace(mline);
        mline->close();
    }

    // A small circle that marks a vertex.
    void marker(const KxGePoint3d& centre)
    {
        auto* circle = new KxDbCircle(centre, 0.25);
        circle->setDatabaseDefaults(&db_);
        circle->setColorIndex(1);
        db_.addToCurrentSpace(circle);
        circle->close();
    }

    // The picture, always framed by the same square of the drawing so that
    // every tool is drawn at one scale.
    QImage picture() const
    {
        kaldo::view::Scene scene = kaldo::view::renderDrawing(db_);
        const int frame = scene.pen({kaldo::view::DrawColor::fixed(0xffffff), 0});
        scene.addLine({-3.6, -3.6}, {-3.6, -3.6}, frame);
        scene.addLine({3.6, 3.6}, {3.6, 3.6}, frame);
        return kaldo::view::paintScene(scene, {kPictureSize, kaldo::view::Background::White}, 1);
    }

private:
    KxDbDatabase db_;
    KxDbObjectId style_;
};

// The runs of a horizontal segment from x = -3 cut between x = -0.5 and 0.5.
const Runs kGapAtCentre{0.0, 2.5, 3.5};

struct Tool {
    const char* name;
    std::function<void(ToolDrawing&)> draw;
};

const std::vector<Tool>& tools()
{
    static const std::vector<Tool> list{
        {"CLOSE_CROSS",
         [](ToolDrawing& d) {
             d.mline({{-3, 0, 0}, {3, 0, 0}}, [](KxDbMline& m) {
                 for (int e = 0; e < 3; ++e)
                     setRuns(m, 0, e, kGapAtCentre);
             });
             d.mline({{0, -3, 0}, {0, 3, 0}});
         }},
        {"OPEN_CROSS",
         [](ToolDrawing& d) {
             d.mline({{-3, 0, 0}, {3, 0, 0}}, [](KxDbMline& m) {
                 for (int e = 0; e < 3; ++e)
                     setRuns(m, 0, e, kGapAtCentre);
             });
             d.mline({{0, -3, 0}, {0, 3, 0}}, [](KxDbMline& m) {
                 setRuns(m, 0, 0, kGapAtCentre);
                 setRuns(m, 0, 2, kGapAtCentre);
             });
         }},
        {"MERGED_CROSS",
         [](ToolDrawing& d) {
             for (auto [from, to] : {std::pair{KxGePoint3d{-3, 0, 0}, KxGePoint3d{3, 0, 0}},
                                     std::pair{KxGePoint3d{0, -3, 0}, KxGePoint3d{0, 3, 0}}}) {
                 d.mline({from, to}, [](KxDbMline& m) {
                     setRuns(m, 0, 0, kGapAtCentre);
                     setRuns(m, 0, 2, kGapAtCentre);
                 });
             }
         }},
        {"CLOSE_TREE",
         [](ToolDrawing& d) {
             d.mline({{-3, 1, 0}, {3, 1, 0}});
             d.mline({{0, -3, 0}, {0, 0.5, 0}});
         }},
        {"OPEN_TREE",
         [](ToolDrawing& d) {
             d.mline({{-3, 1, 0}, {3, 1, 0}}, [](KxDbMline& m) { setRuns(m, 0, 2, kGapAtCentre); });
             d.mline({{0, -3, 0}, {0, 0.5, 0}});
         }},
        {"MERGED_TREE",
         [](ToolDrawing& d) {
             d.mline({{-3, 1, 0}, {3, 1, 0}}, [](KxDbMline& m) {
                 setRuns(m, 0, 1, kGapAtCentre);
                 setRuns(m, 0, 2, kGapAtCentre);
             });
             d.mline({{0, -3, 0}, {0, 1, 0}}, [](KxDbMline& m) {
                 setRuns(m, 0, 0, {0.0, 3.5});
                 setRuns(m, 0, 2, {0.0, 3.5});
             });
         }},
        {"CORNER_JOINT", [](ToolDrawing& d) { d.mline({{-3, -2, 0}, {2, -2, 0}, {2, 3, 0}}); }},
        {"ADD_VERTEX",
         [](ToolDrawing& d) {
             d.mline({{-3, -1, 0}, {0, 1, 0}, {3, -1, 0}});
             d.marker({0, 1, 0});
         }},
        {"DELETE_VERTEX",
         [](ToolDrawing& d) {
             d.mline({{-3, -1, 0}, {3, -1, 0}});
             d.marker({0, 1, 0});
         }},
        {"CUT_SINGLE",
         [](ToolDrawing& d) { d.mline({{-3, 0, 0}, {3, 0, 0}}, [](KxDbMline& m) { setRuns(m, 0, 0, {0.0, 2.2, 3.8}); }); }},
        {"CUT_ALL",
         [](ToolDrawing& d) {
             d.mline({{-3, 0, 0}, {3, 0, 0}}, [](KxDbMline& m) {
                 for (int e = 0; e < 3; ++e)
                     setRuns(m, 0, e, {0.0, 2.2, 3.8});
             });
         }},
        {"WELD_ALL",
         [](ToolDrawing& d) {
             d.mline({{-3, 0, 0}, {3, 0, 0}});
             d.marker({-0.8, 0, 0});
             d.marker({0.8, 0, 0});
         }},
    };
    return list;
}

// The pressed image: the picture on a tinted ground, shifted by a pixel.
QImage pressed(const QImage& picture)
{
    QImage image(picture.size(), QImage::Format_ARGB32);
    image.fill(QColor(0xd0, 0xdc, 0xec));
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    painter.drawImage(QPoint(1, 1), picture);
    return image;
}

// The focus image: the picture inside a frame.
QImage focused(const QImage& picture)
{
    QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.setPen(QPen(QColor(0x2a, 0x6f, 0xd6), 3));
    painter.drawRect(image.rect().adjusted(1, 1, -2, -2));
    return image;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: kdml_tool_pictures OUTPUT_FOLDER\n");
        return 64;
    }
    QGuiApplication app(argc, argv);
    const QString folder = QString::fromLocal8Bit(argv[1]);
    for (const Tool& tool : tools()) {
        ToolDrawing drawing;
        tool.draw(drawing);
        const QImage picture = drawing.picture();
        const QString base = folder + QStringLiteral("/IDB_") + QLatin1String(tool.name);
        if (!picture.save(base + QStringLiteral("_UP.png")) || !pressed(picture).save(base + QStringLiteral("_DOWN.png"))
            || !focused(picture).save(base + QStringLiteral("_FOCUS.png"))) {
            std::fprintf(stderr, "kdml_tool_pictures: cannot write %s\n", qPrintable(base));
            return 1;
        }
    }
    return 0;
}
