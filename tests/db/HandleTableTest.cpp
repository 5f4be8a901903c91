#include <gtest/gtest.h>

#include "kaldo/db/HandleTable.h"

#include <cstdint>
#include <map>
#include <random>
#include <set>
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

    // A file's handles name consecutive ids: runs of them take no slots.
    // Taking handles out of a run's middle, its ends, giving one of them
    // another id, and handles that continue no run must all read back.
    kaldo::HandleTable runs;
    std::vector<std::uint64_t> named(3000);
    for (std::uint64_t h = 0x100; h < 0x100 + 2000; ++h) {
        runs.insert(h, KxDbObjectId::fromOldId(h + 7));
        named[h - 0x100] = h + 7;
    }
    for (std::uint64_t h = 0x100 + 2000; h < 0x100 + 3000; h += 2) {
        runs.insert(h, KxDbObjectId::fromOldId(h + 0x10000));
        named[h - 0x100] = h + 0x10000;
    }
    for (const std::uint64_t gone : {0x100ull + 1000, 0x100ull + 999, 0x100ull, 0x100ull + 1999, 0x100ull + 2500}) {
        runs.erase(gone);
        named[gone - 0x100] = 0;
    }
    runs.insert(0x100 + 500, KxDbObjectId::fromOldId(123456));
    named[500] = 123456;
    runs.insert(0x100 + 1000, KxDbObjectId::fromOldId(0x100 + 1000 + 7));
    named[1000] = 0x100 + 1000 + 7;
    runs.insert(~0ull, KxDbObjectId::fromOldId(42));
    // The run that holds an id, where the writer takes the handles of the
    // ids after it, gives the same handles.
    std::size_t inRuns = 0;
    for (std::uint64_t h = 0x100; h < 0x100 + 3000; ++h) {
        ASSERT_EQ(runs.find(h), KxDbObjectId::fromOldId(named[h - 0x100])) << std::hex << h;
        if (named[h - 0x100] != 0) {
            ASSERT_EQ(runs.handleOf(KxDbObjectId::fromOldId(named[h - 0x100])), h) << std::hex << h;
            const kaldo::RunMap::Run run = runs.handleRunOf(KxDbObjectId::fromOldId(named[h - 0x100]));
            if (run.count != 0) {
                ++inRuns;
                ASSERT_LT(named[h - 0x100] - run.firstKey, run.count) << std::hex << h;
                ASSERT_EQ(run.firstValue + (named[h - 0x100] - run.firstKey), h) << std::hex << h;
            }
        }
    }
    EXPECT_GT(inRuns, 1900u);
    EXPECT_EQ(runs.handleOf(KxDbObjectId::fromOldId(0x100 + 500 + 7)), 0u);
    EXPECT_EQ(runs.handleRunOf(KxDbObjectId::fromOldId(0x100 + 500 + 7)).count, 0u);
    EXPECT_EQ(runs.find(~0ull), KxDbObjectId::fromOldId(42));
    EXPECT_EQ(runs.greatestHandle(), ~0ull);
    runs.erase(~0ull);
    EXPECT_EQ(runs.greatestHandle(), 0x100u + 2998);
    EXPECT_EQ(kaldo::HandleTable().greatestHandle(), 0u);
    EXPECT_TRUE(runs.find(0xFF).isNull());
    EXPECT_TRUE(runs.find(0x100 + 3000).isNull());

    // A handle far above a run (a record made at the handle seed before a
    // file's entities) and one that the run reaches later, named before it
    // gets there: the run grows past the first and stops at the second,
    // which insertNew leaves as it is.
    kaldo::HandleTable seeded;
    const auto id = [](std::uint64_t handle) { return KxDbObjectId::fromOldId(handle + 10); };
    seeded.insert(0x187A0, KxDbObjectId::fromOldId(1));
    for (std::uint64_t h = 0x100; h < 0x110; ++h)
        seeded.insert(h, id(h));
    seeded.insert(0x120, KxDbObjectId::fromOldId(99));
    for (std::uint64_t h = 0x110; h < 0x130; ++h)
        EXPECT_EQ(seeded.insertNew(h, id(h)), h != 0x120) << std::hex << h;
    for (std::uint64_t h = 0x100; h < 0x130; ++h)
        EXPECT_EQ(seeded.find(h), h == 0x120 ? KxDbObjectId::fromOldId(99) : id(h)) << std::hex << h;
    EXPECT_EQ(seeded.handleOf(id(0x120)), 0u);
    EXPECT_EQ(seeded.find(0x187A0), KxDbObjectId::fromOldId(1));
}

// Additions in runs (as files and new objects make them), handles in any
// order, ids given another handle, handles given another id, and handles
// taken out of runs' middles and ends, in a seeded random mix, some
// additions only where the handle names nothing (insertNew, which tells
// whether it did): the table always answers both ways as a pair of plain
// maps does, an id having one handle at most. Handles reserved among them
// (close together, in any order) and far apart over the whole range are
// taken, and no others.
TEST(HandleTable, AnswersAsAPlainMapUnderAnyMixOfChanges)
{
    std::mt19937_64 random(20261126);
    kaldo::HandleTable table;
    std::map<std::uint64_t, std::uint64_t> idOf, handleOf;
    std::set<std::uint64_t> reserved;
    const auto reserve = [&](std::uint64_t handle) {
        table.reserve(handle);
        reserved.insert(handle);
    };
    const auto isTaken = [&](std::uint64_t handle) { return idOf.contains(handle) || reserved.contains(handle); };
    const auto insert = [&](std::uint64_t handle, std::uint64_t serial) {
        if (random() % 2) {
            const bool named = idOf.contains(handle);
            ASSERT_EQ(table.insertNew(handle, KxDbObjectId::fromOldId(serial)), !named) << "handle " << handle;
            if (named)
                return;
        } else {
            table.insert(handle, KxDbObjectId::fromOldId(serial));
        }
        if (const auto named = idOf.find(handle); named != idOf.end())
            handleOf.erase(named->second);
        if (const auto held = handleOf.find(serial); held != handleOf.end())
            idOf.erase(held->second);
        idOf[handle] = serial;
        handleOf[serial] = handle;
    };
    std::uint64_t nextHandle = 1, nextSerial = 1;
    for (int step = 0; step < 20000; ++step) {
        const int what = int(random() % 10);
        if (what < 5) {
            // The next handle and the next id, as a read or a drawing session gives them.
            insert(nextHandle++, nextSerial++);
        } else if (what < 7) {
            insert(1 + random() % (nextHandle + 50), 1 + random() % (nextSerial + 50));
        } else if (what < 9) {
            const std::uint64_t handle = 1 + random() % (nextHandle + 50);
            table.erase(handle);
            if (const auto named = idOf.find(handle); named != idOf.end()) {
                handleOf.erase(named->second);
                idOf.erase(named);
            }
        } else {
            // A gap in the handles, or ids given to something else meanwhile.
            (random() % 2 ? nextHandle : nextSerial) += 1 + random() % 40;
        }
        if (step % 3 == 0)
            reserve(random() % 2 ? 1 + random() % (nextHandle + 50) : 1 + random() % (~0ull - 1));
        if (step % 500 == 0 || step == 19999) {
            for (std::uint64_t handle = 1; handle < nextHandle + 60; ++handle) {
                const auto it = idOf.find(handle);
                ASSERT_EQ(table.find(handle), KxDbObjectId::fromOldId(it == idOf.end() ? 0 : it->second))
                    << "step " << step << ", handle " << handle;
                ASSERT_EQ(table.isTaken(handle), isTaken(handle)) << "step " << step << ", handle " << handle;
            }
            for (const std::uint64_t handle : reserved)
                for (const std::uint64_t near : {handle - 1, handle, handle + 1})
                    ASSERT_EQ(table.isTaken(near), isTaken(near)) << "step " << step << ", handle " << near;
            ASSERT_EQ(table.greatestHandle(), idOf.empty() ? 0 : idOf.rbegin()->first) << "step " << step;
            for (std::uint64_t serial = 1; serial < nextSerial + 60; ++serial) {
                const auto it = handleOf.find(serial);
                ASSERT_EQ(table.handleOf(KxDbObjectId::fromOldId(serial)), it == handleOf.end() ? 0 : it->second)
                    << "step " << step << ", id " << serial;
            }
        }
    }
}
