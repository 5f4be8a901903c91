// The group reader's quick way for plain lines and its general way for
// other line ends, blanks and signs give the same groups and line numbers;
// the writer's quick way for whole numbers gives the shortest form's text.
#include "kaldo/dxf/GroupReader.h"
#include "kaldo/dxf/GroupWriter.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

TEST(DxfGroupStream, PlainAndOtherLinesGiveTheSameGroupsAndLineNumbers)
{
    const std::string text = "  0\nSECTION\n  2\r\nHEADER\r\n 70 \n3\n-4\nneg\n\t10\n1.5\r  20\n\n1071\nlast";
    struct Expected {
        int code;
        std::string value;
        long line;
    };
    const std::vector<Expected> expected = {{0, "SECTION", 1}, {2, "HEADER", 3}, {70, "3", 5}, {-4, "neg", 7},
                                            {10, "1.5", 9},    {20, "", 11},     {1071, "last", 13}};
    kaldo::dxf::GroupReader reader{std::string_view(text)};
    kaldo::dxf::Group g;
    for (const Expected& e : expected) {
        ASSERT_TRUE(reader.next(g)) << e.value;
        EXPECT_EQ(g.code, e.code) << e.value;
        EXPECT_EQ(g.value, e.value);
        EXPECT_EQ(g.line, e.line) << e.value;
    }
    EXPECT_FALSE(reader.next(g));
}

TEST(DxfGroupStream, RealsAreWrittenInTheirShortestForm)
{
    std::vector<double> values = {-0.0, 1e15, 99999.5, 0.1, 6.123233995736766e-17, 4503599627370497.0};
    for (int whole = -100000; whole <= 100000; ++whole)
        values.push_back(whole);
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    ASSERT_TRUE(file);
    {
        kaldo::dxf::GroupWriter writer(fileno(file.get()));
        for (const double value : values)
            writer.real(40, value);
        writer.flush();
    }
    std::string written(std::size_t(std::ftell(file.get())), '\0');
    std::rewind(file.get());
    written.resize(std::fread(written.data(), 1, written.size(), file.get()));
    std::size_t at = 0;
    for (const double value : values) {
        char text[64];
        char* const end = std::to_chars(text, text + sizeof text, value).ptr;
        const std::string expected = " 40\n" + std::string(text, end) + "\n";
        ASSERT_EQ(written.substr(at, expected.size()), expected) << value;
        at += expected.size();
    }
    EXPECT_EQ(at, written.size());
}
