// Pictures written by the real binary after a script: --export as SVG and
// PNG with --size and --background, and a picture that cannot be written.
#include "FileText.h"
#include "KaldoProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <QXmlStreamReader>

#include <filesystem>

#include <sys/stat.h>

using ::testing::HasSubstr;

namespace {

// A square of side 100 from the origin and its diagonal.
const std::string kSquareScript = "LINE\n0,0\n100,0\n100,100\n0,100\nc\nLINE\n0,0\n100,100\n\n";

int countElements(const QString& file, const QString& name)
{
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly))
        return -1;
    QXmlStreamReader reader(&in);
    int count = 0;
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == name)
            ++count;
    return reader.hasError() ? -1 : count;
}

// The brightest green within a pixel of p: lines on pixel edges are shared
// by two rows of half intensity.
int greenNear(const QImage& image, const QPoint& p)
{
    int best = 0;
    for (int dx = -1; dx <= 1; ++dx)
        for (int dy = -1; dy <= 1; ++dy)
            best = std::max(best, qGreen(image.pixel(p + QPoint(dx, dy))));
    return best;
}

}  // namespace

TEST(ExportSession, SvgAndPngOfLinesDrawnByScript)
{
    KaldoProcess kaldo;
    const QString svg = QString::fromStdString((kaldo.dir() / "square.svg").string());
    KaldoRun run = kaldo.runScript(kSquareScript, {"--export", svg});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(countElements(svg, "polyline"), 5);
    EXPECT_EQ(countElements(svg, "svg"), 1);

    const QString png = QString::fromStdString((kaldo.dir() / "square.png").string());
    run = kaldo.runScript(kSquareScript, {"--export", png, "--size", "200", "--background", "dark"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const QImage image(png);
    ASSERT_EQ(image.size(), QSize(200, 200));
    // Margin 5 px: the square's sides run along 5 and 195, the diagonal
    // through the middle; colour 7 is white on the dark background.
    const QRgb background = image.pixel(1, 1);
    ASSERT_LT(qGreen(background), 60);
    for (const QPoint& p : {QPoint(100, 195), QPoint(195, 100), QPoint(100, 5), QPoint(5, 100), QPoint(100, 100)})
        EXPECT_GT(greenNear(image, p), 120) << p.x() << "," << p.y();
    EXPECT_EQ(image.pixel(150, 100), background);
}

TEST(ExportSession, PictureThatCannotBeWrittenEndsWithExitTwo)
{
    KaldoProcess kaldo;
    const std::string target = (kaldo.dir() / "missing" / "out.svg").string();
    KaldoRun run = kaldo.runScript(kSquareScript, {"--export", QString::fromStdString(target)});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("cannot write '" + target + "'"));

    // A FIFO is refused without waiting for a reader.
    const std::string fifo = (kaldo.dir() / "pipe.png").string();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);
    run = kaldo.runScript(kSquareScript, {"--export", QString::fromStdString(fifo)});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_THAT(run.err, HasSubstr("cannot write '" + fifo + "': it is a FIFO, not a regular file."));

    // On a full disk the old picture stays whole, and no empty one is left.
    const std::filesystem::path old = kaldo.writeFile("old.png", "an old picture");
    const std::filesystem::path fresh = kaldo.dir() / "fresh.png";
    kaldo.limitFileSize(2000);
    for (const std::filesystem::path& picture : {old, fresh}) {
        run = kaldo.runScript(kSquareScript, {"--export", QString::fromStdString(picture.string())});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_THAT(run.err, HasSubstr("cannot write '" + picture.string() + "': File too large."));
    }
    EXPECT_EQ(fileText(old), "an old picture");
    EXPECT_FALSE(std::filesystem::exists(fresh));
}
