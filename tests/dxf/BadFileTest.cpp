// Files that are no drawing, or broken ones: a clear message naming the
// line, never a crash. Saving that fails or is cancelled leaves the old
// file whole.
#include "DxfText.h"
#include "TestMlines.h"
#include "FileText.h"
#include "GroupText.h"

#include "kaldo/dxf/AtomicFile.h"
#include "kaldo/dxf/DrawingExtents.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/RecordWriting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>
#include <sys/resource.h>
#include <unistd.h>

using ::testing::EndsWith;

namespace {

// The message of reading text, or "" when it reads.
std::string readError(const std::string& text)
{
    try {
        fromDxfText(text);
    } catch (const kaldo::dxf::DxfError& e) {
        return e.what();
    }
    return {};
}

const std::string kLine = groupText({"0", "LINE", "5", "30", "100", "AcDbEntity", "8", "0", "100", "AcDbLine",
                                     "10", "1", "20", "2", "30", "0", "11", "3", "21", "4", "31", "0"});

}  // namespace

TEST(DxfBadFiles, MessagesNameTheLine)
{
    const std::string good = smallDrawing(kLine, "");
    EXPECT_EQ(readError(good), "");

    // Cut short: in the middle of a record, and after a code without value.
    EXPECT_NE(readError(good.substr(0, good.find("11\n3"))).find("ends"), std::string::npos);
    EXPECT_EQ(readError(groupText({"0", "SECTION", "2"})), "line 3: the file ends after group code 2 without its value.");
    EXPECT_EQ(readError(""), "the file ends without EOF: it is cut short.");

    // A group code that is no number, and one that does not belong.
    std::string badCode = good;
    badCode.replace(badCode.find("\n21\n4\n") + 1, 2, "X1");
    EXPECT_EQ(readError(badCode), "line 33: a group code was expected, not \"X1\".");
    EXPECT_EQ(readError(smallDrawing(groupText({"5", "30"}), "")),
              "line 15: an entity (group 0) was expected.");

    // A value that is no number.
    std::string badValue = good;
    badValue.replace(badValue.find("\n21\n4\n") + 4, 1, "four");
    EXPECT_EQ(readError(badValue), "line 34: group 21 needs a number, not \"four\".");

    // A dictionary entry that points nowhere.
    EXPECT_EQ(readError(smallDrawing("", groupText({"0", "DICTIONARY", "5", "C", "100", "AcDbDictionary", "3",
                                                    "ACAD_GROUP", "350", "D0"}))),
              "line 27: the dictionary entry \"ACAD_GROUP\" points to handle D0, which no object has.");

    // A parameter list that announces more values than follow.
    std::string shortList = groupText({"0", "MLINE", "5", "31", "100", "AcDbMline", "72", "1", "73", "1", "11", "0",
                                       "21", "0", "31", "0", "74", "3", "41", "0.5"});
    EXPECT_EQ(readError(smallDrawing(shortList, "")), "line 31: the list announces more parameters than follow it.");
}

TEST(DxfBadFiles, NumbersThatAreNotFiniteAreNeitherReadNorWritten)
{
    for (const char* value : {"nan", "inf", "-Infinity", "1e999"}) {
        std::string line = kLine;
        line.replace(line.find("\n10\n1\n") + 4, 1, value);
        EXPECT_EQ(readError(smallDrawing(line, "")),
                  std::string("line 26: group 10 needs a number, not \"") + value + "\".");
    }

    // A drawing that came to hold one is not saved: the old file stays.
    QTemporaryDir dir;
    const std::filesystem::path target = dir.filePath("drawing.dxf").toStdString();
    KxDbDatabase db;
    kaldo::dxf::KeptSections kept;
    kaldo::dxf::saveDxfFile(target, db, kept);
    const std::string old = fileText(target);
    auto* line = addEntity(db, new KxDbLine({0, 0, 0}, {std::numeric_limits<double>::infinity(), 0, 0}));
    try {
        kaldo::dxf::saveDxfFile(target, db, kept);
        FAIL() << "a number that is not finite was written";
    } catch (const kaldo::dxf::DxfError& e) {
        EXPECT_THAT(e.what(), EndsWith(": the entity with handle " + kaldo::dxf::handleText(line->handle())
                                       + ": the drawing holds a number that is not finite (group 11)."));
    }
    EXPECT_EQ(fileText(target), old);

    // The entities of a large drawing are written in chunks on two threads:
    // the first refused one in the drawing's order is named, whichever
    // thread met it, and once they are finite all are written in order.
    KxDbDatabase large;
    std::vector<KxDbObjectId> lines;
    for (int i = 0; i < 10000; ++i) {
        const double x = i == 5000 || i == 9000 ? std::numeric_limits<double>::infinity() : i;
        lines.push_back(addEntity(large, new KxDbLine({double(i), 0, 0}, {x, 1, 0}))->objectId());
    }
    const auto handleOf = [&](int i) { return kaldo::dxf::handleText(large.peekObject(lines[i])->handle()); };
    try {
        kaldo::dxf::saveDxfFile(target, large, kept);
        FAIL() << "a number that is not finite was written";
    } catch (const kaldo::dxf::DxfError& e) {
        EXPECT_THAT(e.what(), EndsWith(": the entity with handle " + handleOf(5000)
                                       + ": the drawing holds a number that is not finite (group 11)."));
    }
    EXPECT_EQ(fileText(target), old);
    for (const int i : {5000, 9000})
        KxDbLine::cast(large.peekObject(lines[i]))->setEndPoint({double(i), 1, 0});
    kaldo::dxf::saveDxfFile(target, large, kept);
    const std::string saved = fileText(target);
    std::size_t at = 0;
    for (int i = 0; i < 10000; ++i) {
        at = saved.find("LINE\n  5\n" + handleOf(i) + "\n", at);
        ASSERT_NE(at, std::string::npos) << i;
    }
}

// The entities of model and paper space are written in chunks, their texts
// made and their extents measured on two threads: the bytes and the
// progress are those of one thread whatever the chunks' size (of extents
// equal but for the sign of 0, the first entity's stays), and a write that
// fails in any chunk (a file grown past the process's limit, as a full disk
// would stop it) leaves the old file whole with the system's reason.
TEST(DxfBadFiles, EntitiesWrittenOnTwoThreadsAreThoseOfOneAndAFailedWriteKeepsTheOldFile)
{
    std::string entities;
    for (int i = 0; i < 12000; ++i) {
        const std::string xText = std::to_string(i * 1.37 + 0.001 * (i % 7));
        const std::string yText = std::to_string(i % 101 * 0.25 + 1e-9 * i);
        const std::string words = "Room " + xText;
        const char* const x = xText.c_str();
        const char* const y = yText.c_str();
        const char* const layer = i % 3 ? "0" : "WALLS";
        switch (i % 5) {
        case 0:
            entities += groupText({"0", "LINE", "8", layer, "10", x, "20", y, "11", y, "21", x});
            break;
        case 1:
            entities += groupText({"0", "ARC", "8", layer, "10", x, "20", y, "40", "2.5", "50", "10.5", "51", "190.25"});
            break;
        case 2:
            entities += groupText({"0", "CIRCLE", "8", layer, "10", x, "20", y, "40", y});
            break;
        case 3:
            entities += groupText({"0", "LWPOLYLINE", "8", layer, "90", "3", "70", "1", "10", x, "20", y, "10", y,
                                   "20", x, "42", "0.5", "10", "1", "20", "2"});
            break;
        default:
            entities += groupText({"0", "TEXT", "8", layer, "10", x, "20", y, "40", "2.5", "1", words.c_str()});
        }
    }
    kaldo::dxf::DxfDrawing drawing = fromDxfText(smallDrawing(entities, ""));
    using Report = std::pair<std::uint64_t, std::uint64_t>;
    const auto save = [&](int fd, kaldo::dxf::EntityChunks chunks, std::vector<Report>& reports) {
        kaldo::dxf::writeDxf(
            fd, *drawing.database, drawing.kept,
            [&](std::uint64_t done, std::uint64_t total) {
                reports.emplace_back(done, total);
                return true;
            },
            chunks);
    };
    const auto saved = [&](kaldo::dxf::EntityChunks chunks, std::vector<Report>& reports) {
        std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
        save(fileno(file.get()), chunks, reports);
        std::string text(std::size_t(std::ftell(file.get())), '\0');
        std::rewind(file.get());
        text.resize(std::fread(text.data(), 1, text.size(), file.get()));
        return text;
    };
    std::vector<Report> oneThreadReports;
    const std::string oneThread = saved({4096, true}, oneThreadReports);
    ASSERT_GT(oneThread.size(), 1000000u);
    // Of extents equal but for the sign of 0, the first entity's stays.
    const kaldo::dxf::DxfDrawing zeros = fromDxfText(
        smallDrawing(groupText({"0", "LINE", "8", "0", "10", "0", "20", "-0", "11", "1", "21", "1", "0", "LINE", "8",
                                "0", "10", "-0", "20", "0", "11", "1", "21", "1"}),
                     ""));
    ASSERT_TRUE(zeros.kept.extents.holdFor(*zeros.database)) << "measured as read, in the same order";
    EXPECT_FALSE(std::signbit(zeros.kept.extents.extents.min.x));
    EXPECT_TRUE(std::signbit(zeros.kept.extents.extents.min.y));
    for (const kaldo::dxf::EntityChunks chunks : {kaldo::dxf::EntityChunks{1, false}, kaldo::dxf::EntityChunks{1, true},
                                                  kaldo::dxf::EntityChunks{}}) {
        const kaldo::dxf::Extents extents = kaldo::dxf::drawingExtents(*zeros.database, chunks);
        EXPECT_FALSE(std::signbit(extents.min.x)) << chunks.records;
        EXPECT_TRUE(std::signbit(extents.min.y)) << chunks.records;
    }
    for (const std::size_t size : {std::size_t(1), std::size_t(7), std::size_t(4096)}) {
        std::vector<Report> reports;
        EXPECT_TRUE(saved({size, false}, reports) == oneThread) << size;
        EXPECT_EQ(reports, oneThreadReports) << size;
    }

    QTemporaryDir dir;
    const std::filesystem::path target = dir.filePath("drawing.dxf").toStdString();
    std::ofstream(target) << "old";
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
    for (const double share : {0.2, 0.45, 0.6, 0.85}) {
        rlimit smaller = limit;
        smaller.rlim_cur = rlim_t(share * double(oneThread.size()));
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &smaller), 0);
        std::string message;
        try {
            kaldo::dxf::saveDxfFile(target, *drawing.database, drawing.kept);
        } catch (const kaldo::dxf::DxfError& e) {
            message = e.what();
        }
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        EXPECT_THAT(message, ::testing::HasSubstr("File too large")) << share;
        EXPECT_EQ(fileText(target), "old");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path().toStdString()), {}), 1);
    }
    std::signal(SIGXFSZ, ignored);
    kaldo::dxf::saveDxfFile(target, *drawing.database, drawing.kept);
    EXPECT_TRUE(fileText(target) == oneThread);
}

// What the reader would refuse is not saved either: the message names it,
// and the old file stays.
TEST(DxfBadFiles, WhatWouldNotOpenIsNotSaved)
{
    QTemporaryDir dir;
    const std::filesystem::path target = dir.filePath("drawing.dxf").toStdString();
    const auto refusal = [&](KxDbDatabase& db) {
        kaldo::dxf::KeptSections kept;
        std::ofstream(target) << "old";
        try {
            kaldo::dxf::saveDxfFile(target, db, kept);
        } catch (const kaldo::dxf::DxfError& e) {
            EXPECT_EQ(fileText(target), "old");
            return std::string(e.what());
        }
        return std::string("saved");
    };

    // A multiline whose style was erased.
    KxDbDatabase erasedStyle;
    const KxDbObjectId styleId = addTestStyle(erasedStyle, L"WALL", {0.1});
    auto* mline = addEntity(erasedStyle, new KxDbMline);
    KxDbObjectPtr<KxDbMline>(mline->objectId(), KxDb::kForWrite)->setStyle(styleId);
    KxDbObjectPtr<KxDbMlineStyle>(styleId, KxDb::kForWrite)->erase();
    EXPECT_THAT(refusal(erasedStyle), EndsWith(": the entity with handle " + kaldo::dxf::handleText(mline->handle())
                                        + ": the multiline has no multiline style (it was erased); give it one "
                                          "before saving."));

    // An entry of the style dictionary that names no style.
    KxDbDatabase oddEntry;
    KxDbObjectId entry;
    KxDbObjectPtr<KxDbDictionary> styles(oddEntry.mlineStyleDictionaryId(), KxDb::kForWrite);
    auto* dictionary = new KxDbDictionary;
    styles->setAt(L"ODD", dictionary, entry);
    dictionary->close();
    const std::uint64_t stylesHandle = styles->handle();
    styles.close();
    EXPECT_THAT(refusal(oddEntry), EndsWith(": the object with handle " + kaldo::dxf::handleText(stylesHandle)
                                            + ": the multiline style dictionary's entry \"ODD\" names no multiline "
                                              "style."));
}

TEST(DxfBadFiles, AHugeLineIsRefusedWithoutReadingItWhole)
{
    QTemporaryDir dir;
    const std::filesystem::path path = dir.filePath("huge.dxf").toStdString();
    {
        std::ofstream out(path, std::ios::binary);
        out << "  0\nSECTION\n  2\nENTITIES\n  0\nTEXT\n  1\n";
        const std::string block(1 << 20, 'x');
        for (int i = 0; i < 8; ++i)
            out << block;
        out << "\n  0\nENDSEC\n  0\nEOF\n";
    }
    try {
        kaldo::dxf::readDxfFile(path);
        FAIL() << "the huge line was read";
    } catch (const kaldo::dxf::DxfError& e) {
        EXPECT_EQ(std::string(e.what()), "huge.dxf, line 8: the line is longer than 65536 characters.");
        EXPECT_EQ(e.line(), 8);
    }
}

TEST(DxfBadFiles, AFailedOrCancelledSaveLeavesTheOldFileAndNoLeftovers)
{
    QTemporaryDir dir;
    const std::filesystem::path target = dir.filePath("drawing.dxf").toStdString();
    KxDbDatabase db;
    kaldo::dxf::KeptSections kept;
    kaldo::dxf::saveDxfFile(target, db, kept);
    const std::string old = fileText(target);
    ASSERT_NE(old.find("EOF"), std::string::npos);

    // Reading reports bytes of the file's size, from none through what is
    // read at each section to all, and stops when its report says so.
    using Report = std::pair<std::uint64_t, std::uint64_t>;
    std::vector<Report> reports;
    kaldo::dxf::readDxfFile(target, [&](std::uint64_t done, std::uint64_t total) {
        reports.emplace_back(done, total);
        return true;
    });
    ASSERT_GE(reports.size(), 3u);
    EXPECT_EQ(reports.front(), Report(0, old.size()));
    EXPECT_GT(reports[reports.size() - 2].first, 0u);
    EXPECT_EQ(reports.back(), Report(old.size(), old.size()));
    EXPECT_TRUE(std::is_sorted(reports.begin(), reports.end()));
    EXPECT_THROW(kaldo::dxf::readDxfFile(target, [](std::uint64_t, std::uint64_t) { return false; }),
                 kaldo::dxf::Cancelled);

    // A save stopped by its report at the first report, or at the last one
    // just before the file is replaced.
    for (const bool atLast : {false, true}) {
        EXPECT_THROW(kaldo::dxf::saveDxfFile(target, db, kept, false,
                                             [atLast](std::uint64_t done, std::uint64_t total) {
                                                 return atLast && done < total;
                                             }),
                     kaldo::dxf::Cancelled);
        EXPECT_EQ(fileText(target), old);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path().toStdString()), {}), 1);
    }

    // A read that fails (this process's memory from address 0) is no end
    // of the file.
    try {
        kaldo::dxf::readDxfFile("/proc/self/mem");
        FAIL();
    } catch (const kaldo::dxf::DxfError& e) {
        EXPECT_NE(std::string(e.what()).find("the file cannot be read: Input/output error."), std::string::npos)
            << e.what();
    }

    // A writer that fails half-way (as a full disk would).
    EXPECT_THROW(kaldo::dxf::writeFileAtomically(target,
                                                 [](int fd) {
                                                     ASSERT_EQ(::write(fd, "  0\n", 4), 4);
                                                     throw kaldo::dxf::DxfError(0, "No space left on device");
                                                 }),
                 kaldo::dxf::DxfError);
    EXPECT_EQ(fileText(target), old);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path().toStdString()), {}), 1);

    // A target that is a folder.
    std::filesystem::create_directory(dir.filePath("folder.dxf").toStdString());
    EXPECT_THROW(kaldo::dxf::saveDxfFile(dir.filePath("folder.dxf").toStdString(), db, kept), kaldo::dxf::DxfError);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path().toStdString()), {}), 2);
}
