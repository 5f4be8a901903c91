#include <gtest/gtest.h>

#include "kaldo/db/HandleTable.h"

#include <cstdint>
#include <vector>

// Handles taken out in any order (not only the last added first) leave
// every other handle naming its id, however the handles lie: consecutive
// as files hold them, spread far apart, or all but equal in their low bits.
TEST(HandleTable, EveryHandleLeftNamesItsIdAfterOthersGo)
{
    std::vector<std::uint64_t> handles;
    for (std::uint64_t i = 1; i <= 6000; ++i) {
        handles.push_back(i);
        handles.push_back(0x7000000000000000ull + i * 0x100000000ull);
        handles.push_back(i << 40);
    }
    kaldo::HandleTable table;
    for (std::size_t i = 0; i < handles.size(); ++i)
        table.insert(handles[i], KxDbObjectId::fromOldId(i + 1));
    for (std::size_t i = 0; i < handles.size(); i += 3)
        table.erase(handles[i]);
    for (std::size_t i = 0; i < handles.size(); ++i) {
        const KxDbObjectId expected = i % 3 == 0 ? KxDbObjectId::kNull : KxDbObjectId::fromOldId(i + 1);
        ASSERT_EQ(table.find(handles[i]), expected) << std::hex << handles[i];
    }
    table.erase(0x123456789ull);
    for (std::size_t i = 0; i < handles.size(); i += 3)
        table.insert(handles[i], KxDbObjectId::fromOldId(i + 1));
    table.insert(handles[1], KxDbObjectId::fromOldId(99999));
    for (std::size_t i = 0; i < handles.size(); ++i)
        ASSERT_EQ(table.find(handles[i]), KxDbObjectId::fromOldId(i == 1 ? 99999 : i + 1)) << std::hex << handles[i];
    EXPECT_TRUE(table.find(0).isNull());
    EXPECT_FALSE(table.contains(0x5555));

    // Consecutive handles and a few that meet them in their low bits, a
    // small table's size (64) further on: those wait a few slots beyond
    // their home, where searches must still reach them, and searches for
    // handles that are not there must end.
    kaldo::HandleTable near;
    std::vector<std::uint64_t> nearHandles;
    for (std::uint64_t i = 1; i <= 10; ++i)
        nearHandles.push_back(i);
    for (std::uint64_t i = 65; i <= 70; ++i)
        nearHandles.push_back(i);
    for (const std::uint64_t handle : nearHandles)
        near.insert(handle, KxDbObjectId::fromOldId(handle));
    EXPECT_FALSE(near.contains(129));
    EXPECT_FALSE(near.contains(11));
    near.erase(3);
    near.erase(66);
    for (const std::uint64_t handle : nearHandles)
        EXPECT_EQ(near.find(handle), handle == 3 || handle == 66 ? KxDbObjectId::kNull : KxDbObjectId::fromOldId(handle))
            << handle;
    for (std::uint64_t i = 1000; i < 1060; ++i)
        near.insert(i, KxDbObjectId::fromOldId(i));
    for (const std::uint64_t handle : {1ull, 65ull, 70ull, 1000ull, 1059ull})
        EXPECT_EQ(near.find(handle), KxDbObjectId::fromOldId(handle)) << handle;
}
