// The drawable previewer in a control: entities that do not belong to the
// drawing drawn by the host's renderer, fitted to the control, on the
// background colour; redrawn after the entities change.
#include "DialogFixture.h"

#include "kxgipreview.h"

#include <QImage>
#include <QWidget>

namespace {

class PreviewerTest : public DialogFixture {};

// The pixels of row y that are drawn red (lines are smoothed: mostly red).
int countInRow(const QImage& image, int y)
{
    int n = 0;
    for (int x = 0; x < image.width(); ++x) {
        const QColor c = image.pixelColor(x, y);
        n += c.red() > 120 && c.green() < 90 && c.blue() < 90;
    }
    return n;
}

}  // namespace

TEST_F(PreviewerTest, EntitiesFittedToTheControlOnItsBackground)
{
    QWidget control;
    control.resize(200, 100);
    KxDbLine top({0, 10, 0}, {40, 10, 0});
    KxDbLine bottom({0, 0, 0}, {40, 0, 0});
    for (KxDbLine* line : {&top, &bottom}) {
        line->setDatabaseDefaults(&db);
        line->setColorIndex(1);
    }
    KdVector<KxGiDrawable*> drawables{&top, &bottom};
    auto previewer = std::make_unique<KaldGiDrawablePreviewer>(&control, &db, drawables, KxGePoint2d::kOrigin,
                                                               KxGePoint2d{1.0, 1.0}, -1);
    previewer->setBackground(0x203040);
    QImage picture = control.grab().toImage();
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(0x20, 0x30, 0x40));
    // 40 by 10 units in 200 by 100 pixels: the width decides, both lines
    // span nearly all of it, a quarter of the height apart either side of
    // the middle.
    int rows = 0;
    for (int y = 0; y < picture.height(); ++y) {
        const int n = countInRow(picture, y);
        if (n > 0) {
            EXPECT_GT(n, 180) << y;
            ++rows;
        }
    }
    EXPECT_GE(rows, 2);
    EXPECT_EQ(countInRow(picture, 50), 0) << "nothing between the lines";
    EXPECT_GT(previewer->unitSquarePerPixel(), 0.0);

    // A larger control halves the size of a pixel in drawing units.
    const double before = previewer->unitSquarePerPixel();
    control.resize(400, 200);
    previewer->onSize(400, 200);
    picture = control.grab().toImage();
    EXPECT_NEAR(previewer->unitSquarePerPixel() * 4, before, before * 0.1);

    // Moved entities show after update.
    top.setEndPoint({20, 10, 0});
    previewer->update();
    picture = control.grab().toImage();
    int longest = 0;
    for (int y = 0; y < picture.height(); ++y)
        longest = std::max(longest, countInRow(picture, y));
    EXPECT_GT(longest, 300);
    int shorter = 0;
    for (int y = 0; y < picture.height(); ++y) {
        const int n = countInRow(picture, y);
        if (n > 0 && n < longest / 2 + 20)
            ++shorter;
    }
    EXPECT_GT(shorter, 0) << "the top line is half as long now";

    previewer.reset();
    EXPECT_TRUE(control.findChildren<QWidget*>().isEmpty()) << "the previewer leaves nothing behind";
}
