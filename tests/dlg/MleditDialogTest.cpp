// The MLEDIT tool dialog on its real template: its thirteen controls, the
// tool each click chooses, and its image buttons' faces.
#include "DialogFixture.h"

#include "mleditdlg/MlineEditDialog.h"
#include "mleditdlg/NewBitMapButton.h"

#include <gmock/gmock.h>

#include <QImage>
#include <QPainter>

#include <regex>

using ::testing::ElementsAre;

namespace {

class MleditDialogTest : public DialogFixture {};

}  // namespace

TEST_F(MleditDialogTest, ThirteenControlsAndTheToolEachClickChooses)
{
    script("SHOW\n^C\n");
    kdml::CKaldMlineEditDialog shown;
    EXPECT_EQ(shown.DoModal(), IDCANCEL);
    EXPECT_EQ(shown.selectedTool(), 0);
    std::vector<int> ids;
    const std::string text = kxutToMultiByte(transcript);
    const std::regex item("\n  ([0-9]+) button enabled ");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), item); it != std::sregex_iterator(); ++it)
        ids.push_back(std::stoi((*it)[1]));
    EXPECT_THAT(ids, ElementsAre(5759, 5760, 5761, 5762, 5763, 5764, 5765, 5767, 5766, 5768, 5769, 5770, 5771));

    // Controls 5759 to 5770 choose tools 1 to 12 (5767 adds a vertex, 5766
    // deletes one); 5771 chooses none of them.
    const std::pair<int, int> clicks[] = {{5759, 1}, {5760, 2},  {5761, 3},  {5762, 4},  {5763, 5},
                                          {5764, 6}, {5765, 7},  {5767, 8},  {5766, 9},  {5768, 10},
                                          {5769, 11}, {5770, 12}, {5771, 13}};
    for (const auto& [control, tool] : clicks) {
        script("CLICK " + std::to_string(control) + "\n");
        kdml::CKaldMlineEditDialog dialog;
        EXPECT_EQ(dialog.DoModal(), IDOK) << control;
        EXPECT_EQ(dialog.selectedTool(), tool) << control;
    }
    // OK without a click chooses nothing either.
    script("CLICK 1\n");
    kdml::CKaldMlineEditDialog confirmed;
    EXPECT_EQ(confirmed.DoModal(), IDOK);
    EXPECT_EQ(confirmed.selectedTool(), 0);
}

TEST_F(MleditDialogTest, ImageButtonFaceFollowsTheStateAndFillsTheButton)
{
    class Face : public kdml::CNewBitMapButton {
    public:
        // Paints the face of a button of the given size in this state.
        QImage paint(QSize size, unsigned state)
        {
            QImage image(size, QImage::Format_ARGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            DRAWITEMSTRUCT item;
            item.itemState = state;
            item.hDC = &painter;
            item.rcItem = {0, 0, size.width(), size.height()};
            DrawItem(&item);
            return image;
        }
    };
    Face face;
    ASSERT_TRUE(face.LoadBitmaps(L"IDB_CUT_ALL_UP", L"IDB_CUT_ALL_DOWN", L"IDB_CUT_ALL_FOCUS", L"IDB_CUT_ALL_FOCUS"));
    for (const QSize size : {QSize(30, 20), QSize(300, 150)}) {
        const QImage normal = face.paint(size, 0);
        // The image covers the whole face: no corner keeps the black ground.
        for (const QPoint corner : {QPoint(0, 0), QPoint(size.width() - 1, size.height() - 1)})
            EXPECT_NE(normal.pixelColor(corner), QColor(Qt::black)) << size.width();
        EXPECT_EQ(normal.pixelColor(0, 0), QColor(Qt::white));
        // Pressed: the tinted ground; focus and disabled: the framed image.
        EXPECT_NE(face.paint(size, ODS_SELECTED).pixelColor(0, 0), QColor(Qt::white));
        const QImage focus = face.paint(size, ODS_FOCUS);
        EXPECT_EQ(face.paint(size, ODS_DISABLED), focus);
        EXPECT_EQ(face.paint(size, ODS_SELECTED | ODS_FOCUS), face.paint(size, ODS_SELECTED));
        EXPECT_NE(focus, normal);
    }

    // A missing pressed image falls back to the normal one; without a
    // normal image nothing is drawn.
    Face partial;
    EXPECT_TRUE(partial.LoadBitmaps(L"IDB_CUT_ALL_UP", L"IDB_NO_SUCH_IMAGE"));
    EXPECT_EQ(partial.paint(QSize(40, 40), ODS_SELECTED), partial.paint(QSize(40, 40), 0));
    Face none;
    EXPECT_FALSE(none.LoadBitmaps(L"IDB_NO_SUCH_IMAGE"));
    EXPECT_EQ(none.paint(QSize(40, 40), 0).pixelColor(20, 20), QColor(Qt::black));
}
