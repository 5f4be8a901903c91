// The records of large sections read ahead on a second thread give the
// same drawing, the same saved bytes, the same progress and the same
// errors, at the same line, as records read one by one on the caller's
// thread.
#include "DxfText.h"
#include "GroupText.h"

#include "kaldo/dxf/DxfError.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using Progress = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

// A drawing in code page 1251 of blocks and entities of every common kind,
// some with handles and some without, texts with bytes to decode and
// escapes, lines ended by CR LF here and there, count entities in all.
std::string largeDrawing(int count)
{
    std::string text = groupText({"0", "SECTION", "2", "HEADER", "9", "$ACADVER", "1", "AC1015", "9", "$DWGCODEPAGE",
                                  "3", "ANSI_1251", "9", "$HANDSEED", "5", "FFFFF", "0", "ENDSEC", "0", "SECTION", "2",
                                  "BLOCKS"});
    std::string entities;
    for (int i = 0; i < count; ++i) {
        const std::string n = std::to_string(i);
        const std::string real = std::to_string(i) + "." + std::to_string(i % 997);
        std::string record;
        switch (i % 5) {
        case 0:
            record = "  0\nLINE\n  5\n" + std::to_string(0x1000 + i) + "\n  8\nL" + std::to_string(i % 7)
                     + "\n 10\n" + real + "\n 20\n-" + real + "\n 30\n0\n 11\n1e3\n 21\n+" + n + "\n 31\n 0.5 \n";
            break;
        case 1:
            record = "  0\r\nCIRCLE\r\n  8\r\n0\r\n 10\r\n" + real + "\r\n 20\r\n" + n + "\r\n 40\r\n0.1234567890123456789\r\n";
            break;
        case 2:
            record = "  0\nTEXT\n  8\n\xD1\xD2\xC5\xCD\xC0\n 10\n" + real + "\n 20\n1\n 40\n2.5\n  1\nN" + n
                     + " \xE9 \\U+0416\n1001\nAPP\n1040\n" + real + "\n";
            break;
        case 3:
            record = "  0\nLWPOLYLINE\n  5\n" + std::to_string(0x90000 + i) + "\n  8\n0\n 90\n3\n 70\n1\n 10\n0\n 20\n"
                     + real + "\n 42\n0.25\n 10\n1\n 20\n2\n 10\n" + n + "\n 20\n-1.5\n";
            break;
        default:
            record = "  0\nARC\n  8\n0\n 10\n" + real + "\n 20\n2\n 40\n" + n + "\n 50\n90\n 51\n180.5\n";
            break;
        }
        if (i == count / 10) {
            text += groupText({"0", "BLOCK", "8", "0", "2", "PARTS", "70", "0", "10", "0", "20", "0", "30", "0", "3",
                               "PARTS"})
                    + entities + groupText({"0", "ENDBLK", "8", "0", "0", "ENDSEC", "0", "SECTION", "2", "ENTITIES"});
            entities.clear();
        }
        entities += record;
    }
    return text + entities + groupText({"0", "ENDSEC", "0", "EOF"});
}

struct Outcome {
    std::string saved;
    std::string error;
    Progress progress;
};

// Reads through the given reader, ahead on a thread from readAheadFrom
// bytes left on, that thread taking every entity apart.
Outcome readWith(kaldo::dxf::GroupReader& reader, std::uint64_t readAheadFrom, std::uint64_t total,
                 bool measureBytes)
{
    Outcome outcome;
    reader.setReadAheadFrom(readAheadFrom);
    reader.setWorkAhead(kaldo::dxf::GroupReader::WorkAhead::Always);
    const auto report = [&outcome](std::uint64_t done, std::uint64_t all) {
        outcome.progress.emplace_back(done, all);
        return true;
    };
    const auto position = [&reader] { return reader.position(); };
    try {
        kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxf(
            reader, measureBytes ? kaldo::dxf::ProgressMeter(report, total, position)
                                 : kaldo::dxf::ProgressMeter(report, total));
        outcome.saved = toDxfText(drawing);
    } catch (const kaldo::dxf::DxfError& e) {
        outcome.error = e.what();
    }
    return outcome;
}

Outcome readText(const std::string& text, std::uint64_t readAheadFrom)
{
    kaldo::dxf::GroupReader reader{std::string_view(text)};
    return readWith(reader, readAheadFrom, 1000000, false);
}

constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

}  // namespace

TEST(DxfReadAhead, ALargeFileReadAheadGivesTheSameDrawingAndProgress)
{
    // Large enough for the reader's own threshold and for many blocks of
    // the file and batches of records.
    const std::string text = largeDrawing(80000);
    ASSERT_GT(text.size(), 1.5 * kaldo::dxf::GroupReader::kReadAheadFrom);
    QTemporaryDir dir;
    const std::filesystem::path path = dir.filePath("large.dxf").toStdString();
    std::ofstream(path, std::ios::binary) << text;

    Outcome ahead;
    kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(path, [&ahead](std::uint64_t done, std::uint64_t all) {
        ahead.progress.emplace_back(done, all);
        return true;
    });
    std::FILE* file = std::fopen(path.c_str(), "rb");
    ASSERT_TRUE(file);
    kaldo::dxf::GroupReader reader(file);
    const Outcome inPlace = readWith(reader, kNever, text.size(), true);
    std::fclose(file);

    ASSERT_EQ(inPlace.error, "");
    EXPECT_TRUE(toDxfText(drawing) == inPlace.saved);
    EXPECT_GT(inPlace.progress.size(), 20u);
    EXPECT_EQ(ahead.progress, inPlace.progress);
}

TEST(DxfReadAhead, ErrorsLateInTheSectionsAreTheSameAtTheSameLine)
{
    const std::string text = largeDrawing(6000);
    const std::size_t late = text.rfind("  0\nLINE");
    const std::size_t lateBlock = text.find("0\nENDBLK");
    std::vector<std::string> broken = {text};
    // A code that is no number; a coordinate that is none; a record cut
    // short; a group where an entity should begin; a block never ended.
    broken.push_back(text.substr(0, late) + " 1x\n0\n" + text.substr(late));
    broken.push_back(text.substr(0, late) + text.substr(late).replace(text.substr(late).find("\n 10\n") + 5, 1, "x"));
    broken.push_back(text.substr(0, text.rfind("0\nENDSEC") - 3));
    broken.push_back(text.substr(0, text.find("ENTITIES\n") + 9) + "  8\n0\n" + text.substr(text.find("ENTITIES\n") + 9));
    broken.push_back(text.substr(0, lateBlock) + text.substr(text.find("0\nENDSEC", lateBlock)));
    for (std::size_t i = 0; i < broken.size(); ++i) {
        const Outcome inPlace = readText(broken[i], kNever);
        const Outcome ahead = readText(broken[i], 0);
        EXPECT_EQ(inPlace.error.empty(), i == 0) << i << " " << inPlace.error;
        EXPECT_EQ(ahead.error, inPlace.error) << i;
        EXPECT_TRUE(ahead.saved == inPlace.saved) << i;
        EXPECT_EQ(ahead.progress, inPlace.progress) << i;
    }
}
