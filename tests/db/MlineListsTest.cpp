// Parameter lists in flat arrays: lists of one vertex edited in the middle,
// grown and cut, a store that copies its own lists and takes a file's
// values one by one, and the comparison bit for bit that decides sharing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "kxdbmline.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(MlineLists, EditedInTheMiddleGrownAndCut)
{
    KxDbMlineListSet lists;
    lists.setNumElements(2);
    lists.setElement(0, std::array{1.0, 0.0});
    lists.setAreaFill(1, std::array{4.0});
    lists.setElement(1, std::array{3.0, 0.0, 5.0});
    // A longer list before others moves them; a shorter one too.
    lists.setAreaFill(0, std::array{2.0, 7.0, 8.0});
    lists.setElement(0, lists.element(0).subspan(0, 1));
    EXPECT_THAT(lists.element(0), ElementsAre(1.0));
    EXPECT_THAT(lists.areaFill(0), ElementsAre(2.0, 7.0, 8.0));
    EXPECT_THAT(lists.element(1), ElementsAre(3.0, 0.0, 5.0));
    EXPECT_THAT(lists.areaFill(1), ElementsAre(4.0));

    lists.editAreaFill(0)[1] = 9.0;
    lists.setEntry0(1, -3.0);
    lists.setNumElements(3);
    lists.setEntry0(2, 6.0);
    EXPECT_THAT(lists.areaFill(0), ElementsAre(2.0, 9.0, 8.0));
    EXPECT_THAT(lists.element(1), ElementsAre(-3.0, 0.0, 5.0));
    EXPECT_THAT(lists.areaFill(1), ElementsAre(-3.0));
    EXPECT_THAT(lists.element(2), ElementsAre(6.0, 0.0)) << "an empty list gets its entry 0 and a whole run";
    lists.scale(2);
    EXPECT_THAT(lists.areaFill(2), ElementsAre(12.0, 0.0));

    lists.setNumElements(1);
    EXPECT_EQ(lists.numElements(), 1);
    EXPECT_EQ(lists.view().values().size(), 4u);
    lists.setNumElements(2);
    EXPECT_THAT(lists.element(1), IsEmpty());
}

TEST(MlineLists, StoreCopiesItsOwnListsAndTakesValuesOneByOne)
{
    KxDbMlineListStore store;
    KxDbMlineListSet lists;
    lists.setNumElements(1);
    lists.setElement(0, std::array{1.0, 2.0});
    const KxDbMlineListsRef first = store.add(lists.view());
    // Lists of the store itself, added while the store grows.
    KxDbMlineListsRef again = first;
    for (int i = 0; i < 100; ++i)
        again = store.add(store.at(again));
    EXPECT_THAT(store.at(again).element(0), ElementsAre(1.0, 2.0));
    EXPECT_TRUE(store.at(again).sameAs(store.at(first)));
    EXPECT_FALSE(store.at(again).sharesStorageWith(store.at(first)));

    KxDbMlineListsRef read = store.openVertex();
    store.openElement(read);
    store.appendValue(false, 0.5);
    store.appendValue(false, 0.0);
    store.appendValue(true, 0.5);
    store.openElement(read);
    store.appendValue(true, -0.5);
    EXPECT_TRUE(store.holds(read));
    EXPECT_THAT(store.at(read).element(0), ElementsAre(0.5, 0.0));
    EXPECT_THAT(store.at(read).areaFill(0), ElementsAre(0.5));
    EXPECT_THAT(store.at(read).element(1), IsEmpty());
    EXPECT_THAT(store.at(read).areaFill(1), ElementsAre(-0.5));
    EXPECT_FALSE(store.holds({read.values, read.ends, read.elements + 1}));

    // 0 and -0 are written differently, so they are not the same lists.
    KxDbMlineListSet negative(store.at(read));
    negative.editElement(0)[1] = -0.0;
    EXPECT_FALSE(negative.view().sameAs(store.at(read)));
    EXPECT_TRUE(std::signbit(store.at(store.add(negative.view())).element(0)[1]));
}
