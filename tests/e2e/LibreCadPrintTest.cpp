// Our files as a program without multilines prints them: LibreCAD
// ("librecad dxf2pdf") prints kaldo's copies, 2000 and R12, of a filled
// multiline with arc and line caps, a dashed element and a cut through
// all its elements; the print, rasterised by pdftoppm, is compared with
// kaldo's own picture of the drawing by what a person sees: each
// element's colour where kaldo draws it (not hidden under the fill), the
// fill, a gap in the elements where the cut is, and the dashed element's
// gaps. Texts outside ASCII print from kaldo's saved copy as from the
// original another program wrote.
#include "FileText.h"
#include "KaldoProcess.h"
#include "TreePaths.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QProcess>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>

namespace {

// The gallery's wall (docs/gallery/wall.scr): from (0,0) to (40,0),
// scale 4, so that its elements lie at y = 2, 0.8, -0.8 (dashed) and -2;
// the arc caps reach x = -2 and 42. The cut takes every element out
// between x = 18 and 24.
constexpr double kLeft = -2, kRight = 42, kBottom = -2, kTop = 2;

enum class Ink { Red, Orange, Green, Blue, Fill, Other, Paper };

// What a pixel shows, anti-aliased lines over the fill or the paper
// included: the gallery's element colours (1, 30, 3, 5) and its fill (9).
Ink inkOf(QRgb p)
{
    const int r = qRed(p), g = qGreen(p), b = qBlue(p);
    if (std::min({r, g, b}) > 235)
        return Ink::Paper;
    if (r - std::max(g, b) > 50)
        return g - b > 40 ? Ink::Orange : Ink::Red;
    if (g - std::max(r, b) > 50)
        return Ink::Green;
    if (b - std::max(r, g) > 50)
        return Ink::Blue;
    if (std::max({r, g, b}) - std::min({r, g, b}) < 20 && r > 150)
        return Ink::Fill;
    return Ink::Other;
}

// A picture with the drawing's extents found on it: the box of the
// pixels that are not paper.
class Print {
public:
    explicit Print(const QImage& image) : m_image(image.convertToFormat(QImage::Format_RGB32))
    {
        int left = m_image.width(), right = -1, top = m_image.height(), bottom = -1;
        for (int y = 0; y < m_image.height(); ++y)
            for (int x = 0; x < m_image.width(); ++x)
                if (inkOf(m_image.pixel(x, y)) != Ink::Paper) {
                    left = std::min(left, x);
                    right = std::max(right, x);
                    top = std::min(top, y);
                    bottom = std::max(bottom, y);
                }
        m_box = QRect(QPoint(left, top), QPoint(right, bottom));
    }

    bool valid() const { return m_box.width() > 100 && m_box.height() > 10; }

    // The fraction of the columns between x0 and x1 (drawing units) that
    // show ink within a few pixels of the row at y.
    double coverage(Ink ink, double x0, double x1, double y) const
    {
        const int from = column(x0), to = column(x1), at = row(y);
        int inked = 0;
        for (int x = from; x <= to; ++x)
            inked += hasInkNear(ink, x, at) ? 1 : 0;
        return double(inked) / double(to - from + 1);
    }

    // The longest run of columns between x0 and x1 without that ink near
    // the row at y, in drawing units.
    double longestGap(Ink ink, double x0, double x1, double y) const
    {
        int longest = 0, current = 0;
        for (int x = column(x0); x <= column(x1); ++x) {
            current = hasInkNear(ink, x, row(y)) ? 0 : current + 1;
            longest = std::max(longest, current);
        }
        return longest * (kRight - kLeft) / m_box.width();
    }

private:
    int column(double x) const { return m_box.left() + int(std::lround((x - kLeft) / (kRight - kLeft) * m_box.width())); }
    int row(double y) const { return m_box.top() + int(std::lround((kTop - y) / (kTop - kBottom) * m_box.height())); }
    bool hasInkNear(Ink ink, int x, int y) const
    {
        for (int dy = -3; dy <= 3; ++dy)
            if (m_image.valid(x, y + dy) && inkOf(m_image.pixel(x, y + dy)) == ink)
                return true;
        return false;
    }

    QImage m_image;
    QRect m_box;
};

struct Element {
    const char* name;
    Ink ink;
    double y;
};
constexpr std::array<Element, 4> kElements = {
    {{"red", Ink::Red, 2}, {"orange", Ink::Orange, 0.8}, {"green, dashed", Ink::Green, -0.8}, {"blue", Ink::Blue, -2}}};

// Runs a program to its end and says what went wrong, if anything.
std::string runTool(const QString& program, const QStringList& args, const QProcessEnvironment& env)
{
    QProcess tool;
    tool.setProcessEnvironment(env);
    tool.start(program, args);
    if (!tool.waitForFinished(180000))
        return program.toStdString() + " did not finish";
    if (tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
        return program.toStdString() + " failed: " + tool.readAllStandardError().toStdString();
    return {};
}

// LibreCAD's print of a drawing, rasterised: LibreCAD keeps its settings
// in a home of its own in the test's folder.
class LibreCad {
public:
    explicit LibreCad(const std::filesystem::path& folder)
        : m_home(QString::fromStdString((folder / "home").string())), m_env(QProcessEnvironment::systemEnvironment())
    {
        m_env.insert("QT_QPA_PLATFORM", "offscreen");
        m_env.insert("HOME", m_home);
        m_env.insert("XDG_CONFIG_HOME", m_home + "/config");
        m_env.insert("XDG_RUNTIME_DIR", m_home);
        std::filesystem::create_directories(folder / "home");
        QFile::setPermissions(m_home, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    // Prints drawing.dxf fitted to its page into drawing.pdf and reads the
    // page at 150 dpi; a null image when either program failed.
    QImage print(const QString& drawing) const
    {
        const QString pdf = drawing + ".pdf";
        const std::string printed = runTool("librecad", {"dxf2pdf", "--fit", "-o", pdf, drawing + ".dxf"}, m_env);
        const std::string rasterised =
            printed.empty() ? runTool("pdftoppm", {"-png", "-r", "150", "-singlefile", pdf, drawing}, m_env) : printed;
        EXPECT_EQ(rasterised, "") << drawing.toStdString();
        return rasterised.empty() ? QImage(drawing + ".png").convertToFormat(QImage::Format_RGB32) : QImage();
    }

private:
    QString m_home;
    QProcessEnvironment m_env;
};

// What a person sees on one picture of the wall.
void expectWallSeen(const Print& print, const std::string& what)
{
    SCOPED_TRACE(what);
    ASSERT_TRUE(print.valid());
    for (const Element& element : kElements) {
        SCOPED_TRACE(element.name);
        for (const auto& [x0, x1] : {std::pair{1.0, 17.0}, std::pair{25.0, 39.0}}) {
            const double seen = print.coverage(element.ink, x0, x1, element.y);
            if (element.ink == Ink::Green) {
                // DASHED: dashes of 0.5 and gaps of 0.25, as kaldo draws it.
                EXPECT_GT(seen, 0.5);
                EXPECT_LT(seen, 0.85);
                EXPECT_GT(print.longestGap(element.ink, x0, x1, element.y), 0.15);
                EXPECT_LT(print.longestGap(element.ink, x0, x1, element.y), 0.4);
            } else {
                EXPECT_GT(seen, 0.97);
            }
        }
        // The cut: no element there, the fill goes on.
        EXPECT_LT(print.coverage(element.ink, 18.5, 23.5, element.y), 0.03);
    }
    for (const double x0 : {1.0, 18.5, 25.0})
        EXPECT_GT(print.coverage(Ink::Fill, x0, x0 + 5, 1.4), 0.97) << "the fill from x " << x0;
}

}  // namespace

TEST(LibreCadPrint, ExplodedCopiesPrintAsKaldoDrawsThem)
{
    KaldoProcess kaldo;
    const auto gallery = [](const char* name) {
        return fileText(sourceDir() / "docs/gallery" / name);
    };
    kaldo.writeFile("gallery.mln", gallery("gallery.mln"));
    const std::string wall = gallery("wall.scr");
    ASSERT_FALSE(wall.empty());
    const auto path = [&](const char* name) { return QString::fromStdString((kaldo.dir() / name).string()); };
    const KaldoRun run = kaldo.runScript(wall, {"--save-exploded", path("wall-2000.dxf"), "--save-exploded-r12",
                                                       path("wall-r12.dxf"), "--export", path("kaldo.png")});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    expectWallSeen(Print(QImage(path("kaldo.png"))), "kaldo's picture");

    const LibreCad libreCad(kaldo.dir());
    for (const char* copy : {"wall-2000", "wall-r12"})
        expectWallSeen(Print(libreCad.print(path(copy))), std::string("LibreCAD's print of ") + copy);
}

// Names and texts outside ASCII as LibreCAD reads them: a drawing ezdxf
// writes (2000: code page and \U+ escapes; 2010: UTF-8), opened and saved
// by kaldo, prints exactly as the original does, while the same drawing
// with its letters decoded in the wrong code page prints otherwise.
TEST(LibreCadPrint, TextsOutsideAsciiReadAsTheOriginalAfterKaldoSavesThem)
{
    KaldoProcess kaldo;
    const auto path = [&](const std::string& name) { return QString::fromStdString((kaldo.dir() / name).string()); };
    const LibreCad libreCad(kaldo.dir());
    const std::string writer = "import ezdxf, sys\n"
                               "d = ezdxf.new(sys.argv[1], units=4)\n"
                               "d.layers.add(sys.argv[2])\n"
                               "d.modelspace().add_text(sys.argv[2] + ' Kl\u00e4ger \u00d8re \u03a9', "
                               "dxfattribs={'height': 5, 'layer': sys.argv[2]})\n"
                               "d.modelspace().add_line((0, -5), (100, -5))\n"
                               "d.saveas(sys.argv[3])\n";
    for (const char* version : {"R2000", "R2010"}) {
        SCOPED_TRACE(version);
        const std::string original = std::string("ezdxf-") + version, saved = std::string("kaldo-") + version,
                          misread = std::string("misread-") + version;
        ASSERT_EQ(runTool("/usr/bin/python3", {"-c", QString::fromStdString(writer), version,
                                               QStringLiteral("MUR_\u00c9PAIS"), path(original + ".dxf")},
                          QProcessEnvironment::systemEnvironment()),
                  "");
        ASSERT_EQ(runTool("/usr/bin/python3", {"-c", QString::fromStdString(writer), version,
                                               QStringLiteral("MUR_\u00c3\u2030PAIS"), path(misread + ".dxf")},
                          QProcessEnvironment::systemEnvironment()),
                  "");
        const KaldoRun run = kaldo.runArgs({"--no-modules", "--script", "-", "--save", path(saved + ".dxf"),
                                            path(original + ".dxf")});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const QImage printedOriginal = libreCad.print(path(original));
        ASSERT_FALSE(printedOriginal.isNull());
        EXPECT_EQ(libreCad.print(path(saved)), printedOriginal);
        EXPECT_NE(libreCad.print(path(misread)), printedOriginal) << "the print shows which letters were read";
    }
}
