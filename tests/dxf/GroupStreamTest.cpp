// The group reader's quick ways for plain lines (a group, or a record's short groups) and
// its general way for other line ends, blanks and signs give the same groups and line numbers,
// and a record keeps values of every length wherever they lie;
// its quick way for plain decimals gives the values from_chars gives, and
// refuses what it refuses or reads as no finite number, and handles as
// from_chars reads hexadecimal numbers; the
// writer's quick ways for codes, whole numbers, decimals and repeated values
// give the shortest form's text, and for degrees the text of fifteen digits;
// it writes values of every length and handles of every count of digits.
#include "kaldo/dxf/GroupReader.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/QuickReal.h"
#include "kaldo/dxf/Record.h"
#include "kaldo/dxf/TextCodec.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace {
struct ReadGroup {
    int code;
    std::string value;
    long line;
    friend bool operator==(const ReadGroup&, const ReadGroup&) = default;
};

// The groups of text that starts with a record, read as a record does
// (whose quick way takes short groups whole), then the group after it as
// next() reads it.
std::vector<ReadGroup> recordGroups(const std::string& text)
{
    kaldo::dxf::GroupReader reader{std::string_view(text)};
    kaldo::dxf::Group g;
    if (!reader.next(g))
        return {};
    kaldo::dxf::Record record;
    record.read(reader, g);
    std::vector<ReadGroup> read = {{g.code, std::string(g.value), g.line}};
    record.forEach([&](const kaldo::dxf::Group& group) {
        read.push_back({group.code, std::string(group.value), group.line});
        return true;
    });
    if (reader.next(g))
        read.push_back({g.code, std::string(g.value), g.line});
    return read;
}

// The text a writer to a file writes.
std::string writtenText(const std::function<void(kaldo::dxf::GroupWriter&)>& write)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    if (!file)
        return "no temporary file";
    {
        kaldo::dxf::GroupWriter writer(fileno(file.get()));
        write(writer);
        writer.flush();
    }
    std::string written(std::size_t(std::ftell(file.get())), '\0');
    std::rewind(file.get());
    written.resize(std::fread(written.data(), 1, written.size(), file.get()));
    return written;
}
}  // namespace

TEST(DxfGroupStream, PlainAndOtherLinesGiveTheSameGroupsAndLineNumbers)
{
    const std::string text = "  0\nSECTION\n  2\r\nHEADER\r\n 70 \n3\n-4\nneg\n\t10\n1.5\r  20\n\n 41\n8\n105\nA\r\n"
                             "  5\n\n  1\n\r\n999\n7\n1071\nlast";
    struct Expected {
        int code;
        std::string value;
        long line;
    };
    const std::vector<Expected> expected = {{0, "SECTION", 1}, {2, "HEADER", 3}, {70, "3", 5}, {-4, "neg", 7},
                                            {10, "1.5", 9},    {20, "", 11},     {41, "8", 13},    {105, "A", 15},
                                            {5, "", 17},       {1, "", 19},      {999, "7", 21},   {1071, "last", 23}};
    kaldo::dxf::GroupReader reader{std::string_view(text)};
    kaldo::dxf::Group g;
    for (const Expected& e : expected) {
        ASSERT_TRUE(reader.next(g)) << e.value;
        EXPECT_EQ(g.code, e.code) << e.value;
        EXPECT_EQ(g.value, e.value);
        EXPECT_EQ(g.line, e.line) << e.value;
    }
    EXPECT_FALSE(reader.next(g));

    // A record reads the groups next() reads, wherever their line feeds
    // fall in its quick way's bytes, and leaves the reader on the line
    // after them.
    std::string record = "  0\nKIND\n";
    for (std::size_t length = 0; length <= 34; ++length)
        for (const char* code : {"  5\n", " 40\n", "105\n", "1000\n", "5\n", " 7 \n", "-4\n", " 42\r\n"})
            record += code + std::string(length, char('a' + length % 26)) + (length % 7 == 3 ? "\r\n" : "\n");
    record += "  0\nNEXT\n";
    std::vector<ReadGroup> groups;
    kaldo::dxf::GroupReader byGroup{std::string_view(record)};
    while (byGroup.next(g))
        groups.push_back({g.code, std::string(g.value), g.line});
    EXPECT_EQ(recordGroups(record), groups);
}

// A byte with its high bit set, or a backslash, anywhere in a value makes
// the reader decode the value, whether more of the file follows or not;
// one in the next line does not. A character beyond ASCII anywhere in a
// text makes the writer encode it.
TEST(DxfGroupStream, ValuesWithBytesToDecodeOrEncodeAreCodedWhereverTheBytesStand)
{
    kaldo::dxf::TextCodec codec("", kaldo::dxf::kDefaultCodePage);
    for (const std::string marker : {"\xE9", "\\U+00E9"}) {
        for (std::size_t length = 1; length <= 30; ++length) {
            for (std::size_t at = 0; at <= length; ++at) {
                std::string value(length, 'a');
                std::string next = "b";
                (at < length ? value : next).replace(at < length ? at : 0, 1, marker);
                const std::string text = "  1\n" + value + "\n  1\n" + next + "\n  1\n" + value + "\n";
                kaldo::dxf::GroupReader reader{std::string_view(text)};
                kaldo::dxf::Group g;
                // Read by group, and as a record's, which takes short groups whole.
                const std::vector<ReadGroup> record = recordGroups("  0\nKIND\n" + text + "  0\nEND\n");
                ASSERT_EQ(record.size(), 5u);
                std::size_t index = 1;
                for (const std::string& expected : {value, next, value}) {
                    ASSERT_TRUE(reader.next(g));
                    const std::string decoded = codec.needsDecoding(expected) ? codec.decode(expected) : expected;
                    EXPECT_EQ(g.value, decoded) << length << " " << at;
                    EXPECT_EQ(record[index++].value, decoded) << length << " " << at;
                }
            }
        }
    }
    std::string expected;
    const std::string written = writtenText([&](kaldo::dxf::GroupWriter& writer) {
        for (std::size_t length = 1; length <= 20; ++length) {
            for (std::size_t at = 0; at < length; ++at) {
                std::string value(length, 'a');
                value.replace(at, 1, "\xC3\xA9");
                writer.text(1, value);
                std::string encoded(length, 'a');
                encoded[at] = '\xE9';
                expected += "  1\n" + encoded + "\n";
            }
        }
        // Plain values of every length up to past the two words copied, with
        // codes written from the table and not.
        for (std::size_t length = 0; length <= 20; ++length) {
            std::string value;
            for (std::size_t i = 0; i < length; ++i)
                value += char('a' + i);
            for (const auto& [code, line] : {std::pair{1, "  1\n"}, std::pair{1000, "1000\n"}}) {
                writer.text(code, value);
                expected += line + value + "\n";
            }
        }
    });
    EXPECT_EQ(written, expected);
}

// A record keeps values of every length as they were, whether far from the
// end of the input (copied by words of a fixed size) or close to it.
TEST(DxfGroupStream, RecordsKeepValuesOfEveryLengthWhereverTheInputEnds)
{
    for (std::size_t length = 0; length <= 40; ++length) {
        for (std::size_t apart = 0; apart <= 40; ++apart) {
            std::string value;
            for (std::size_t i = 0; i < length; ++i)
                value += char('a' + i % 26);
            const std::vector<std::string> values = {value, std::string(apart, '-'), value};
            std::string text = "  0\nKIND\n";
            for (const std::string& v : values)
                text += "  1\n" + v + "\n";
            kaldo::dxf::GroupReader reader{std::string_view(text)};
            kaldo::dxf::Group head;
            ASSERT_TRUE(reader.next(head));
            kaldo::dxf::Record record;
            record.read(reader, head);
            std::vector<std::string> read;
            record.forEach([&](const kaldo::dxf::Group& g) {
                read.emplace_back(g.value);
                return true;
            });
            EXPECT_EQ(read, values) << length << " " << apart;
        }
    }
}

// A record comes with the numbers of its groups read ahead as toReal and
// toHandle read them, each at its own group, the reals in records of
// modelled kinds only (told by the whole text of the kind, kept as read);
// so does one assigned its packed groups. A large record's later groups
// and values the quick ways refuse come without; a handle seed (one above
// the highest handle) is read too.
TEST(DxfGroupStream, RecordsComeWithTheNumbersOfTheirGroups)
{
    std::string groups;
    for (int i = 0; i < 1500; ++i) {
        const std::string n = std::to_string(i);
        const std::string values[] = {std::to_string(0x1A0 + i), n + "." + n, "-" + n, n, " 2.5 ", "1e" + n,
                                      "x" + n, "ffffffff0000000" + n.substr(0, 1)};
        const char* const codes[] = {"  5", " 10", " 20", "  8", " 40", " 42", "330", "340"};
        groups += std::string(codes[i % 8]) + "\n" + values[i % 8] + "\n";
    }
    // Each kind as written, and as read (trimmed, decoded).
    const std::pair<std::string, std::string> kinds[] = {
        {"LWPOLYLINE", "LWPOLYLINE"}, {"KIND", "KIND"}, {"ARC", "ARC"}, {"ARCS", "ARCS"},
        {"LWPOLYLINF", "LWPOLYLINF"}, {"MLINESTYLE", "MLINESTYLE"}, {" CIRCLE\t", "CIRCLE"},
        {"LINE\xC4", "LINE\xC3\x84"}, {std::string(40, 'L'), std::string(40, 'L')}};
    for (const auto& [written, kind] : kinds) {
        const std::string text = "  0\n" + written + "\n" + groups + "  0\nEND\n";
        kaldo::dxf::GroupReader reader{std::string_view(text)};
        kaldo::dxf::Group head;
        ASSERT_TRUE(reader.next(head));
        kaldo::dxf::Record read;
        read.read(reader, head);
        kaldo::dxf::Record assigned;
        assigned.assign(kind, read.packedGroups());
        const bool modelled = kind == "LWPOLYLINE" || kind == "ARC" || kind == "MLINESTYLE" || kind == "CIRCLE";
        for (const kaldo::dxf::Record* record : {&read, &assigned}) {
            EXPECT_EQ(record->kind(), kind);
            std::size_t index = 0;
            std::size_t reals = 0;
            std::size_t handles = 0;
            record->forEach([&](const kaldo::dxf::Group& g) {
                double real = 0;
                const bool quickReal = kaldo::dxf::isRealCode(g.code) && kaldo::dxf::readQuickReal(g.value, real);
                std::uint64_t handle = 0;
                const bool quickHandle = kaldo::dxf::isHandleCode(g.code)
                                         && kaldo::dxf::tryHandle(g.value, handle, kxdbHighestHandle + 1);
                if (!std::isnan(g.real)) {
                    EXPECT_TRUE(modelled && quickReal && std::bit_cast<std::uint64_t>(real)
                                == std::bit_cast<std::uint64_t>(g.real)) << index << " " << g.value;
                    ++reals;
                } else {
                    EXPECT_FALSE(modelled && quickReal && index < 500) << index << " " << g.value;
                }
                if (g.handle != kaldo::dxf::Group::kNoHandle) {
                    EXPECT_TRUE(quickHandle && handle == g.handle) << index << " " << g.value;
                    ++handles;
                } else {
                    EXPECT_FALSE(quickHandle && index < 500) << index << " " << g.value;
                }
                ++index;
                return true;
            });
            EXPECT_EQ(index, 1500u);
            EXPECT_EQ(record->size(), 1500u);
            EXPECT_GT(handles, 0u) << kind;
            EXPECT_EQ(reals > 0, modelled) << kind;
        }
    }
}

TEST(DxfGroupStream, RealsReadBackAsFromCharsReadsThem)
{
    std::vector<std::string> texts = {"0", "-0", "7", "-627", "0.5999999999999998", "-0.6666666666666665",
                                      "-1.3333333333333335", "9007199254740992", "9007199254740993",
                                      "0.9007199254740993", "12345678901234567", "123456789012345678",
                                      "1.00000000000000000", "0.1", "2.50", "00012.5", "1e5", "6.123233995736766e-17",
                                      "1.", ".5", "-.5", "+3.25", " 4.5\t", "0.00000000000000001",
                                      "1234567:", "0.1234567/9", "0.12345678123456789", "-98765432.12345678",
                                      "-0.0", "+0", "4.9406564584124654e-324", "2.2250738585072009e-308", "1e-320",
                                      "1E+300", "1e400", "-1e-400", "+-1", "++1", "-+1", "--1", "1.5.5", "0x10",
                                      "inf", "-nan", "1 2", "1\t.5", " ", "", "+", "-", ".", "-.", "12345678.",
                                      "12345678.87654321", "1234567812345678.1", "123456781234567812",
                                      "00000000000000000001", "0.000000000000000000001", "1\xFA", "\xFF" "5", "5\xFF",
                                      "1234567\xFA" "9", "9\x3A", "12/", "1234567/", "12345678/", "/12345678",
                                      "+-1.5", " -2.25", "-2.25 ", "\t+7", "+ 7", "- 7", "7 .5"};
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        double value;
        const std::uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
        if (i % 2)
            value = double(bits % 100000000) / double(1 + random() % 1000000);
        if (!std::isfinite(value))
            continue;
        char text[64];
        texts.emplace_back(text, std::to_chars(text, text + sizeof text, value).ptr);
        texts.emplace_back(text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr);
    }
    // Seventeen random digits around a random point: their quotients fall
    // anywhere, now and then on a midpoint between two doubles.
    for (int i = 0; i < 100000; ++i) {
        std::string text = std::to_string(10000000000000000u + random() % 90000000000000000u);
        text.insert(1 + random() % 16, ".");
        texts.push_back(std::move(text));
    }
    // Seventeen digits on and next to the midpoint between a random double
    // and the next one (a long double holds it exactly); quotients that are
    // exactly doubles, and odd halves from 2^52 to 2^53, ties to round to
    // even.
    for (int i = 0; i < 20000; ++i) {
        const double below = std::ldexp(1 + double(random() >> 12) / 0x1p52, int(random() % 57));
        const long double midpoint = (static_cast<long double>(below) + std::nextafter(below, 2 * below)) / 2;
        const int decimals = 17 - int(std::to_string(std::uint64_t(below)).size());
        char text[64];
        std::string digits(text, std::to_chars(text, text + sizeof text, midpoint, std::chars_format::fixed,
                                                std::max(decimals, 0)).ptr);
        const std::size_t point = digits.find('.');
        if (point != digits.npos)
            digits.erase(point, 1);
        for (const std::uint64_t next : {std::stoull(digits) - 1, std::stoull(digits), std::stoull(digits) + 1}) {
            std::string nextText = (i % 2 ? "-" : "") + std::to_string(next);
            if (point != digits.npos && nextText.size() == digits.size() + i % 2)
                texts.push_back(nextText.insert(point + i % 2, "."));
        }
        const double exact = double(random() % (std::uint64_t(1) << 49)) / 8;
        texts.emplace_back(text, std::to_chars(text, text + sizeof text, exact, std::chars_format::fixed, 3).ptr);
        texts.push_back(std::to_string((std::uint64_t(1) << 52) + (random() >> 12)) + ".5");
    }
    // Every length of a whole part and of decimals (or no point) of random
    // digits, either sign, and each with one byte that is no digit in turn
    // at each place: the digits read four or eight at once stop at it.
    for (int whole = 0; whole <= 10; ++whole) {
        for (int decimals = -1; decimals <= 16; ++decimals) {
            std::string text = whole % 2 ? "-" : "";
            for (int digit = 0; digit < whole + std::max(decimals, 0); ++digit)
                text += char('0' + random() % 10);
            if (decimals >= 0)
                text.insert(text.size() - std::size_t(decimals), ".");
            texts.push_back(text);
            for (std::size_t at = 0; at < text.size(); ++at)
                for (const char other : {'/', ':', '\xFA'})
                    texts.push_back(text.substr(0, at) + other + text.substr(at + 1));
        }
    }
    // A plain decimal of up to 15 digits, blanks and a plus sign around it
    // aside, is read by the quick way, as it is read ahead.
    const auto plain = [](std::string_view digits) {
        if (digits.starts_with('-'))
            digits.remove_prefix(1);
        const std::size_t point = digits.find('.');
        const std::string_view whole = digits.substr(0, point);
        const std::string_view decimals = point == digits.npos ? "" : digits.substr(point + 1);
        const auto allDigits = [](std::string_view part) {
            return part.find_first_not_of("0123456789") == part.npos;
        };
        return !whole.empty() && allDigits(whole) && allDigits(decimals)
               && (point == digits.npos || !decimals.empty()) && whole.size() + decimals.size() <= 15;
    };
    for (const std::string& text : texts) {
        std::string_view digits = kaldo::dxf::trimmed(text);
        if (digits.starts_with('+'))
            digits.remove_prefix(1);
        double expected = 0;
        const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), expected);
        const kaldo::dxf::Group g{40, text, 1};
        double quick = 0;
        const bool readQuickly = kaldo::dxf::readQuickReal(text, quick);
        EXPECT_TRUE(readQuickly || !plain(digits)) << text;
        if (ec != std::errc() || end != digits.data() + digits.size() || !std::isfinite(expected)) {
            EXPECT_FALSE(readQuickly) << text;
            EXPECT_THROW(kaldo::dxf::toReal(g), std::exception) << text;
            continue;
        }
        const double read = kaldo::dxf::toReal(g);
        EXPECT_EQ(std::memcmp(&read, &expected, sizeof read), 0) << text << " read as " << read;
        EXPECT_TRUE(!readQuickly || std::memcmp(&quick, &expected, sizeof quick) == 0) << text << " read as " << quick;
    }
}

TEST(DxfGroupStream, HandlesReadBackAsFromCharsReadsThem)
{
    std::vector<std::string> texts = {"0", "1F", "1f", "aBcDeF", " 2A\t", "", " ", "-1", "+1", "0x1F", "1 F",
                                      "00000000000000000000001F", "FFFFFFFFFFFFFFFF", "10000000000000000",
                                      "7FFFFFFFFFFFFFFF", "8000000000000000", "FFFFFFFFFFFFFFFFF"};
    // Each byte before and after the digits' and letters' ranges.
    for (const char c : {'/', '0', '9', ':', '@', 'A', 'F', 'G', '`', 'a', 'f', 'g', '\xC1'})
        texts.push_back(std::string("1") + c);
    for (const std::uint64_t highest : {kxdbHighestHandle, std::uint64_t(0x1F), ~std::uint64_t(0)}) {
        for (const std::string& text : texts) {
            const std::string_view digits = kaldo::dxf::trimmed(text);
            std::uint64_t expected = 0;
            const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), expected, 16);
            const bool valid = ec == std::errc() && end == digits.data() + digits.size() && expected <= highest;
            std::uint64_t handle = 0;
            ASSERT_EQ(kaldo::dxf::tryHandle(text, handle, highest), valid) << text;
            if (valid) {
                EXPECT_EQ(handle, expected) << text;
            }
        }
    }
    // Handles are written in upper-case hexadecimal digits, of every count,
    // with codes written from the table and not.
    std::string expected;
    const std::string written = writtenText([&](kaldo::dxf::GroupWriter& writer) {
        for (int digits = 0; digits <= 16; ++digits) {
            const std::uint64_t handle = digits == 0 ? 0 : 0xFEDCBA9876543210 >> (64 - 4 * digits);
            for (const auto& [code, line] : {std::pair{5, "  5\n"}, std::pair{1005, "1005\n"}}) {
                writer.handle(code, handle);
                char text[16];
                std::string hex(text, std::to_chars(text, text + sizeof text, handle, 16).ptr);
                std::transform(hex.begin(), hex.end(), hex.begin(), [](char c) { return char(std::toupper(c)); });
                expected += line + hex + "\n";
            }
        }
    });
    EXPECT_EQ(written, expected);
}

TEST(DxfGroupStream, RealsAreWrittenInTheirShortestForm)
{
    std::vector<double> values = {-0.0, 1e15, 99999.5, 0.1, 0.1, 6.123233995736766e-17, 6.123233995736766e-17,
                                  -6.123233995736766e-17, 4503599627370497.0};
    for (int whole = -100000; whole <= 100000; ++whole)
        values.push_back(whole);
    // The longest texts, and more reals than the writer keeps texts for,
    // twice over: texts kept, evicted and made again must all be right.
    for (const double longest : {-2.2250738585072014e-308, 4.9406564584124654e-324, -1.7976931348623157e308})
        values.push_back(longest);
    for (int pass = 0; pass < 2; ++pass)
        for (int i = 0; i < 20000; ++i)
            values.push_back((i % 2 ? -0.001 : 0.001) * (i * 7919 % 20000) + 1e-7);
    // Values with few decimals and their neighbours, which need many: every
    // count of decimals, magnitudes from 1 to 10^15, near whole numbers too.
    std::mt19937_64 random(11);
    for (int decimals = 1; decimals <= 17; ++decimals) {
        for (int i = 0; i < 4000; ++i) {
            const double scale = std::pow(10.0, decimals);
            const double value = double(random() % (std::uint64_t(1) << (10 + random() % 44))) / scale
                                 * (i % 2 ? -1 : 1);
            for (const double near : {value, std::nextafter(value, 0.0), std::nextafter(value, 2 * value)})
                values.push_back(near);
        }
    }
    // Edges of the ways; 4 + 2^-17 ends halfway at seventeen digits and
    // reads back with sixteen.
    for (const double edge : {1.5, 0.5, 0.9999999, 1.0000000000000002, 99999.99999, 562949953421311.5,
                              562949953421312.5, 1e14 + 0.25, 4503599627370495.5, 0x1p49 / 1e3, 123456.1e-3,
                              9.9999999999999982, 0x1p52 - 0.5, 0x1p52, 0x1p52 + 1, 1e15 - 0.125, 0x1p50 + 0.25,
                              0x1p50 + 0.75, 0x1p49 + 0.125, 4 + 0x1p-17, 4 + 3 * 0x1p-17})
        values.push_back(edge);
    // Whole numbers of thousandths below 1 (where 0.001 is as long as
    // 1e-03), up to 3 and about 10^5, where the way for them stops; their
    // neighbours and the halves between them.
    for (const int first : {0, 99997000}) {
        for (int thousandths = first; thousandths < first + 4000; ++thousandths) {
            const double value = thousandths / 1000.0;
            for (const double near : {value, -value, std::nextafter(value, 0.0), std::nextafter(value, 1e6),
                                      value + 0.0005})
                values.push_back(near);
        }
    }
    // Up to three decimals about 2^42, where the quick way for them stops,
    // and 2^43, above which two such texts may read back as one value; and
    // their neighbours.
    for (const double around : {0x1p42, 0x1p43}) {
        for (int i = -10000; i < 10000; ++i) {
            const double value = std::round(around * 1000 + 3 * i) / 1000;
            for (const double near : {value, std::nextafter(value, 0.0), std::nextafter(value, 2 * value), -value})
                values.push_back(near);
        }
    }
    // Any bits of every exponent from 1 to 2^53, and halves (ties at some
    // count of decimals).
    for (int i = 0; i < 200000; ++i) {
        const std::uint64_t bits = (random() & ((std::uint64_t(1) << 52) - 1))
                                   | (std::uint64_t(1023 + random() % 53) << 52) | (random() % 2) << 63;
        values.push_back(std::bit_cast<double>(bits));
        values.push_back((double(random() % 1000000) + 0.5) / std::pow(10.0, double(random() % 12)));
    }
    // The codes right-aligned in three places, wider ones as they are.
    const std::vector<std::pair<int, std::string>> codes = {
        {0, "  0"}, {5, "  5"}, {40, " 40"}, {105, "105"}, {999, "999"}, {1071, "1071"}, {-4, "-4"}};
    // Angles in degrees, to fifteen significant digits: the same values as
    // radians, and whole and rounded degrees.
    std::vector<double> radians;
    for (const double value : values)
        radians.push_back(value / (180.0 / std::numbers::pi));
    for (int i = -3600; i <= 3600; ++i)
        radians.push_back(i * 0.1 * std::numbers::pi / 180);
    const std::string written = writtenText([&](kaldo::dxf::GroupWriter& writer) {
        for (std::size_t i = 0; i < values.size(); ++i)
            writer.real(codes[i % codes.size()].first, values[i]);
        for (const double angle : radians)
            writer.degrees(50, angle);
    });
    std::size_t at = 0;
    const auto expect = [&](const std::string& code, const char* text, const char* end, double value) {
        const std::string expected = code + "\n" + std::string(text, end) + "\n";
        EXPECT_EQ(written.substr(at, expected.size()), expected) << value;
        at += expected.size();
        return written.compare(at - expected.size(), expected.size(), expected) == 0;
    };
    for (std::size_t i = 0; i < values.size(); ++i) {
        char text[64];
        if (!expect(codes[i % codes.size()].second, text, std::to_chars(text, text + sizeof text, values[i]).ptr,
                    values[i]))
            return;
    }
    for (const double angle : radians) {
        char text[64];
        const double degrees = angle * (180.0 / std::numbers::pi);
        if (!expect(" 50", text, std::to_chars(text, text + sizeof text, degrees, std::chars_format::general, 15).ptr,
                    degrees))
            return;
    }
    EXPECT_EQ(at, written.size());
}
