// A drawing another program writes: ezdxf writes one of every entity kind
// it makes, each in its own cell of a grid, in every DXF version from R12
// to R2018. The real kaldo opens it, draws it (each cell has ink in the
// picture, but for the construction lines RAY and XLINE, which reach
// beyond every extent), and saves it; the saved file keeps every entity
// and attribute (ezdxf counts them), in the version kaldo writes or the
// file's own when newer, and kaldo opens and draws it again.
// KaldoProcess then checks that both files reopen to the same bytes and
// that ezdxf's audit finds nothing in the saved one.
#include "EzdxfReport.h"
#include "KaldoProcess.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QJsonArray>

#include <algorithm>
#include <set>
#include <string>

namespace {

// Construction lines are not drawn: they have no extents to draw them to.
const std::set<QString> kUndrawn = {"RAY", "XLINE"};

// The cells of the grid whose square (less a margin of one unit, for the
// neighbours' antialiasing) has no pixel but the background, in a picture
// of size pixels of the grid width by height units.
QStringList blankCells(const QImage& image, const QJsonObject& grid, int size)
{
    const double width = grid["width"].toDouble(), height = grid["height"].toDouble();
    const int margin = std::max(2, size / 40);
    const double scale = (size - 2.0 * margin) / std::max(width, height);
    const QRgb background = image.pixel(0, 0);
    QStringList blank;
    const QJsonObject cells = grid["cells"].toObject();
    for (auto cell = cells.begin(); cell != cells.end(); ++cell) {
        if (kUndrawn.count(cell.key()))
            continue;
        const double left = cell.value().toArray()[0].toDouble() * 10, bottom = cell.value().toArray()[1].toDouble() * 10;
        bool inked = false;
        for (double x = left + 1; x <= left + 9 && !inked; x += 1 / scale)
            for (double y = bottom + 1; y <= bottom + 9 && !inked; y += 1 / scale)
                inked = image.pixel(int(margin + x * scale), int(image.height() - margin - y * scale)) != background;
        if (!inked)
            blank << cell.key();
    }
    return blank;
}

class EzdxfDrawingSession : public ::testing::TestWithParam<const char*> {};

TEST_P(EzdxfDrawingSession, OpensDrawsSavesAndReopensEveryEntityKind)
{
    constexpr int kSize = 600;
    KaldoProcess kaldo;
    const std::string version = GetParam();
    const std::string written = (kaldo.dir() / ("ezdxf-" + version + ".dxf")).string();
    const EzdxfReport grid = readWithEzdxf(written, "ezdxf_every_entity.py", {QString::fromStdString(version)});
    ASSERT_TRUE(grid.ran) << grid.problem;

    const auto drawAndSave = [&](const std::string& drawing, const std::string& name) {
        const QString picture = QString::fromStdString((kaldo.dir() / (name + ".png")).string());
        const KaldoRun run = kaldo.runScript("", {QString::fromStdString(drawing), "--export", picture, "--size",
                                                  QString::number(kSize), "--save",
                                                  QString::fromStdString((kaldo.dir() / (name + ".dxf")).string())});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const QImage image(picture);
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(blankCells(image, grid.file, kSize).join(", ").toStdString(), "") << name << ": " << run.out;
    };
    drawAndSave(written, "saved");
    const std::string saved = (kaldo.dir() / "saved.dxf").string();
    drawAndSave(saved, "saved-again");

    const EzdxfReport before = readWithEzdxf(written, "ezdxf_contents.py");
    const EzdxfReport after = readWithEzdxf(saved, "ezdxf_contents.py");
    ASSERT_TRUE(before.ran) << before.problem;
    ASSERT_TRUE(after.ran) << after.problem;
    EXPECT_EQ(after.file["kinds"], before.file["kinds"]);
    EXPECT_EQ(after.file["attributes"], QJsonArray({QJsonArray({"NAME", "A1"})}));
    EXPECT_EQ(after.file["version"].toString().toStdString(),
              std::max(before.file["version"].toString().toStdString(), std::string("AC1015")));
}

INSTANTIATE_TEST_SUITE_P(Versions, EzdxfDrawingSession,
                         ::testing::Values("R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"));

}  // namespace
