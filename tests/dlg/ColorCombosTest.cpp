// The colour and linetype combo boxes on real combo boxes: their rows, the
// colours used lately, and finding and reading the selected entry.
#include "DialogFixture.h"

#include "kxuicolorcombo.h"

#include <gmock/gmock.h>

#include <QComboBox>

using ::testing::ElementsAre;

namespace {

class ColorCombosTest : public DialogFixture {
protected:
    static std::vector<std::wstring> rows(const CComboBox& combo)
    {
        std::vector<std::wstring> texts;
        for (int row = 0; row < combo.GetCount(); ++row)
            texts.push_back(combo.GetLBText(row));
        return texts;
    }
};

KxCmColor rgb(std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    KxCmColor color;
    color.setRGB(r, g, b);
    return color;
}

}  // namespace

TEST_F(ColorCombosTest, ColoursUsedLatelyAndTheSelectedColour)
{
    QComboBox widget;
    CKxUiTrueColorComboBox colors;
    colors.AddColorToMRU(rgb(10, 20, 30));  // before the rows exist
    colors.Attach(&widget);
    EXPECT_THAT(rows(colors), ElementsAre(L"ByLayer", L"ByBlock", L"Red", L"Yellow", L"Green", L"Cyan", L"Blue",
                                          L"Magenta", L"White", L"10,20,30"));
    KxCmColor index;
    index.setColorIndex(3);
    colors.AddColorToMRU(index);
    EXPECT_EQ(colors.GetCount(), 10) << "a colour of the list is not added twice";
    index.setColorIndex(141);
    colors.AddColorToMRU(index);
    EXPECT_EQ(colors.GetLBText(10), L"Color 141");
    EXPECT_EQ(colors.FindItemByColor(index), 10);
    EXPECT_EQ(colors.FindItemByColor(rgb(10, 20, 30)), 9);
    EXPECT_EQ(colors.FindItemByColor(rgb(10, 20, 31)), -1);

    EXPECT_TRUE(colors.GetCurrentItemColor().isByLayer());
    colors.SetCurSel(9);
    EXPECT_EQ(colors.GetCurrentItemColor().color(), rgb(10, 20, 30).color());
    colors.SetCurSel(1);
    EXPECT_TRUE(colors.GetCurrentItemColor().isByBlock());
    colors.SetCurSel(3);
    EXPECT_EQ(colors.GetCurrentItemColor().colorIndex(), 2);
}

TEST_F(ColorCombosTest, LinetypesOfTheWorkingDrawing)
{
    auto* dashed = new KxDbLinetypeTableRecord;
    dashed->setName(L"DASHED");
    dashed->setDashes({0.5, -0.25});
    KxDbObjectId dashedId;
    {
        KxDbObjectPtr<KxDbLinetypeTable> table(db.linetypeTableId(), KxDb::kForWrite);
        table->add(dashed, dashedId);
        dashed->close();
    }
    QComboBox widget;
    CKxUiLineTypeComboBox linetypes;
    linetypes.Attach(&widget);
    EXPECT_THAT(rows(linetypes), ElementsAre(L"ByLayer", L"ByBlock", L"Continuous", L"DASHED"));
    EXPECT_EQ(linetypes.FindItemByLinetype(dashedId), 3);
    EXPECT_EQ(linetypes.FindItemByLinetype(db.byBlockLinetype()), 1);
    EXPECT_EQ(linetypes.GetCurrentLinetype(), db.byLayerLinetype());
    linetypes.SetCurSel(2);
    EXPECT_EQ(linetypes.GetCurrentLinetype(), db.continuousLinetype());
    linetypes.SetCurSel(-1);
    EXPECT_TRUE(linetypes.GetCurrentLinetype().isNull());
}
