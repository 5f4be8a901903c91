// The sortable element list on a real list view: headings, rows with their
// texts and user pointers, the numeric sort that the selection follows, and
// column widths restored from the profile.
#include "DialogFixture.h"

#include "ui/SortListCtrl.h"

#include <gmock/gmock.h>

#include <QHeaderView>
#include <QTreeWidget>

using ::testing::ElementsAre;

namespace {

class SortListTest : public DialogFixture {
protected:
    SortListTest() { view.setProperty("itemId", 1040); }

    std::vector<std::wstring> column(const kdml::CSortListCtrl& list, int c) const
    {
        std::vector<std::wstring> texts;
        for (int row = 0; row < list.GetItemCount(); ++row)
            texts.push_back(list.GetItemText(row, c));
        return texts;
    }

    QTreeWidget view;
};

}  // namespace

TEST_F(SortListTest, HeadingsRowsAndTheSortByOffset)
{
    kdml::CSortListCtrl list;
    list.Attach(&view);
    EXPECT_TRUE(list.SetHeadings(L"no columns here"));
    EXPECT_EQ(list.columnCount(), 0);
    ASSERT_TRUE(list.SetHeadings(L"Offset,70;Color,90;Linetype,110"));
    ASSERT_EQ(list.columnCount(), 3);
    EXPECT_EQ(view.headerItem()->text(1), QStringLiteral("Color"));
    EXPECT_EQ(list.GetColumnWidth(0), 70);
    EXPECT_EQ(list.GetColumnWidth(2), 110);
    EXPECT_EQ(list.sortColumn(), -1);

    int colours[4] = {1, 2, 3, 4};
    const std::vector<std::vector<std::wstring>> rows{{L"0.5", L"red", L"BYLAYER"},
                                                      {L"-0.5", L"yellow", L"DASHED"},
                                                      {L"0.25", L"green", L"BYBLOCK"},
                                                      {L"wall", L"cyan", L"CENTER"}};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(list.AddItem(rows[i]), int(i));
        EXPECT_TRUE(list.SetItemData(int(i), &colours[i]));
    }
    EXPECT_TRUE(list.SetItemText(2, 1, L"blue"));
    ASSERT_TRUE(list.SelectRow(2));

    list.Sort();
    EXPECT_EQ(list.sortColumn(), 0);
    // A text that is no number counts as 0.
    EXPECT_THAT(column(list, 0), ElementsAre(L"-0.5", L"wall", L"0.25", L"0.5"));
    EXPECT_THAT(column(list, 1), ElementsAre(L"yellow", L"cyan", L"blue", L"red"));
    EXPECT_EQ(list.GetItemData(0), &colours[1]);
    EXPECT_EQ(list.GetItemData(3), &colours[0]);
    EXPECT_EQ(list.GetSelectedRow(), 2) << "the selection follows its row";
    EXPECT_EQ(list.GetItemText(list.GetSelectedRow(), 0), L"0.25");
    EXPECT_TRUE(view.header()->isSortIndicatorShown());

    // Sorted again after an offset changed, from the list's own copies.
    EXPECT_TRUE(list.SetItemText(3, 0, L"-1"));
    list.Sort();
    EXPECT_THAT(column(list, 0), ElementsAre(L"-1", L"-0.5", L"wall", L"0.25"));
    EXPECT_EQ(list.GetItemData(0), &colours[0]);

    EXPECT_TRUE(list.DeleteItem(0));
    EXPECT_FALSE(list.DeleteItem(9));
    EXPECT_THAT(column(list, 0), ElementsAre(L"-0.5", L"wall", L"0.25"));
    EXPECT_EQ(colours[0], 1) << "user pointers are not the list's";
}

TEST_F(SortListTest, ColumnWidthsFromTheProfile)
{
    kdml::CSortListCtrl list;
    list.Attach(&view);
    ASSERT_TRUE(list.SetHeadings(L"Offset,70;Color,90;Linetype,110"));
    list.LoadColumnInfo();
    EXPECT_EQ(list.GetColumnWidth(1), 90) << "nothing stored: the widths of the headings";

    // The archive of another list's header with other widths.
    QTreeWidget other;
    other.setColumnCount(3);
    for (int c = 0; c < 3; ++c)
        other.header()->resizeSection(c, 40 + 30 * c);
    kdml::CSortHeaderCtrl header;
    header.Attach(other.header());
    std::vector<unsigned char> bytes;
    CArchive archive(bytes, true);
    header.Serialize(archive);
    EXPECT_EQ(bytes.size(), 16u);
    profile.setBinary(L"ListCtrls", L"1040", bytes);

    list.LoadColumnInfo();
    EXPECT_EQ(list.GetColumnWidth(0), 40);
    EXPECT_EQ(list.GetColumnWidth(1), 70);
    EXPECT_EQ(list.GetColumnWidth(2), 100);
}
