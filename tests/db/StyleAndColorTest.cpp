#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "kxdb.h"

namespace {

std::vector<double> offsetsOf(const KxDbMlineStyle& style)
{
    std::vector<double> out;
    for (int i = 0; i < style.numElements(); ++i) {
        double offset = 0;
        KxCmColor color;
        KxDbObjectId linetype;
        style.getElementAt(i, offset, color, linetype);
        out.push_back(offset);
    }
    return out;
}

}  // namespace

TEST(MlineStyle, ElementsStaySortedByOffsetDescending)
{
    KxDbMlineStyle style;
    EXPECT_EQ(style.numElements(), 0);
    int index = -1;
    KxCmColor red;
    red.setColorIndex(1);
    style.addElement(index, 0.0, red, {});
    EXPECT_EQ(index, 0);
    style.addElement(index, 1.0, KxCmColor(), {});
    EXPECT_EQ(index, 0);
    style.addElement(index, -2.0, KxCmColor(), {});
    EXPECT_EQ(index, 2);
    EXPECT_EQ(offsetsOf(style), (std::vector<double>{1.0, 0.0, -2.0}));

    style.setElement(0, -3.0, KxCmColor(), {});  // moves to the end
    EXPECT_EQ(offsetsOf(style), (std::vector<double>{0.0, -2.0, -3.0}));
    double offset = 0;
    KxCmColor color;
    KxDbObjectId linetype;
    style.getElementAt(0, offset, color, linetype);
    EXPECT_EQ(color, red);

    EXPECT_EQ(style.removeElementAt(1), Kald::eOk);
    EXPECT_EQ(style.removeElementAt(5), Kald::eInvalidIndex);
    EXPECT_EQ(style.getElementAt(2, offset, color, linetype), Kald::eInvalidIndex);
    EXPECT_EQ(offsetsOf(style), (std::vector<double>{0.0, -3.0}));
}

TEST(MlineStyle, SetCopiesEverythingAndRespectsReferences)
{
    KxDbDatabase db;
    KxDbMlineStyle source;
    source.setName(L"Source");
    source.setDescription(L"three lines");
    source.setFilled(true);
    source.setEndRoundCap(true);
    source.setStartAngle(1.0);
    int index = 0;
    for (double o : {0.25, 0.0, -0.25})
        source.addElement(index, o, KxCmColor(), db.continuousLinetype());

    KxDbMlineStyle copy;
    ASSERT_EQ(copy.set(source, true), Kald::eOk);
    EXPECT_STREQ(copy.name(), L"Source");
    EXPECT_STREQ(copy.description(), L"three lines");
    EXPECT_TRUE(copy.filled());
    EXPECT_TRUE(copy.endRoundCap());
    EXPECT_FALSE(copy.startRoundCap());
    EXPECT_EQ(copy.startAngle(), 1.0);
    EXPECT_EQ(offsetsOf(copy), offsetsOf(source));
    copy.initMlineStyle();
    EXPECT_STREQ(copy.name(), L"Source");
    EXPECT_EQ(copy.numElements(), 0);
    EXPECT_FALSE(copy.filled());

    // STANDARD in use by a multiline refuses checked changes.
    auto* mline = new KxDbMline;
    mline->setDatabaseDefaults(&db);
    db.addToCurrentSpace(mline);
    mline->close();
    KxDbObjectPtr<KxDbMlineStyle> standard(db.cmlstyleID(), KxDb::kForWrite);
    EXPECT_EQ(standard->set(source, true), Kald::eNotApplicable);
    EXPECT_EQ(standard->addElement(index, 0.1, KxCmColor(), {}, true), Kald::eNotApplicable);
    EXPECT_EQ(standard->set(source, false), Kald::eOk);
}

// Writing one element must leave the list as a stable sort of the whole
// list would: every list of up to five offsets drawn from three values,
// every element rewritten with every offset around them. The colour index
// tells the elements apart.
TEST(MlineStyle, RewrittenElementTakesTheStableSortPlace)
{
    const double values[] = {1.0, 0.0, -1.0};
    const double rewrites[] = {2.0, 1.0, 0.5, 0.0, -1.0, -2.0};
    for (int length = 1; length <= 5; ++length) {
        int combinations = 1;
        for (int i = 0; i < length; ++i)
            combinations *= 3;
        for (int code = 0; code < combinations; ++code) {
            std::vector<double> offsets;
            for (int c = code, i = 0; i < length; ++i, c /= 3)
                offsets.push_back(values[c % 3]);
            std::sort(offsets.begin(), offsets.end(), std::greater<>());
            for (int index = 0; index < length; ++index) {
                for (const double rewrite : rewrites) {
                    KxDbMlineStyle style;
                    for (int i = 0; i < length; ++i) {
                        KxCmColor color;
                        color.setColorIndex(i + 1);
                        int at = 0;
                        style.addElement(at, offsets[std::size_t(i)], color, {});
                    }
                    std::vector<std::pair<double, int>> expected;
                    for (int i = 0; i < length; ++i)
                        expected.emplace_back(i == index ? rewrite : offsets[std::size_t(i)], i + 1);
                    std::stable_sort(expected.begin(), expected.end(),
                                     [](const auto& a, const auto& b) { return a.first > b.first; });

                    KxCmColor color;
                    color.setColorIndex(index + 1);
                    style.setElement(index, rewrite, color, {});
                    std::vector<std::pair<double, int>> actual;
                    for (int i = 0; i < length; ++i) {
                        double offset = 0;
                        KxDbObjectId linetype;
                        style.getElementAt(i, offset, color, linetype);
                        actual.emplace_back(offset, color.colorIndex());
                    }
                    ASSERT_EQ(actual, expected) << "list " << code << " of " << length << ", element " << index
                                                << " rewritten to " << rewrite;
                }
            }
        }
    }
}

TEST(Color, MethodsIndicesAndDisplayNames)
{
    KxCmColor c;
    EXPECT_TRUE(c.isByLayer());
    EXPECT_EQ(c.colorIndex(), 256);
    EXPECT_EQ(c.colorNameForDisplay(), L"ByLayer");
    c.setColorIndex(0);
    EXPECT_EQ(c.colorNameForDisplay(), L"ByBlock");
    const wchar_t* basics[] = {L"red", L"yellow", L"green", L"cyan", L"blue", L"magenta", L"white"};
    for (int i = 1; i <= 7; ++i) {
        ASSERT_EQ(c.setColorIndex(i), Kald::eOk);
        EXPECT_EQ(c.colorNameForDisplay(), basics[i - 1]);
        EXPECT_EQ(c.colorMethod(), KxCmColor::kByACI);
    }
    c.setColorIndex(8);
    EXPECT_EQ(c.colorNameForDisplay(), L"Color 8");
    EXPECT_EQ(c.setColorIndex(257), Kald::eOutOfRange);
    EXPECT_EQ(c.colorIndex(), 8);

    c.setRGB(255, 128, 0);
    EXPECT_EQ(c.colorMethod(), 0xC2);
    EXPECT_EQ(c.color(), 0xC2FF8000u);
    EXPECT_EQ(c.colorNameForDisplay(), L"255,128,0");

    KxCmColor viaValue;
    viaValue.setColorMethod(KxCmColor::kByColor);
    viaValue.setColor(0x123456u | 0xC2000000u);
    EXPECT_EQ(viaValue.red(), 0x12);
    EXPECT_EQ(viaValue.green(), 0x34);
    EXPECT_EQ(viaValue.blue(), 0x56);
    EXPECT_NE(viaValue, c);
    viaValue.setRGB(255, 128, 0);
    EXPECT_EQ(viaValue, c);
}

TEST(Color, BookNamesAndDictionaryKey)
{
    KxCmColor c;
    EXPECT_STREQ(c.getDictionaryKey(), L"");
    EXPECT_EQ(c.dictionaryKeyLength(), 0);
    c.setRGB(10, 20, 30);
    ASSERT_TRUE(c.setNamesFromDictionaryKey(L"Paints$Sky Blue"));
    EXPECT_STREQ(c.bookName(), L"Paints");
    EXPECT_STREQ(c.colorName(), L"Sky Blue");
    EXPECT_STREQ(c.getDictionaryKey(), L"Paints$Sky Blue");
    EXPECT_EQ(c.dictionaryKeyLength(), 15);
    EXPECT_EQ(c.colorNameForDisplay(), L"Sky Blue");

    KxCmColor plain = c;
    EXPECT_TRUE(plain.setNamesFromDictionaryKey(L""));
    EXPECT_STREQ(plain.getDictionaryKey(), L"");
    EXPECT_EQ(plain.colorNameForDisplay(), L"10,20,30");
    EXPECT_NE(plain, c);
    EXPECT_FALSE(plain.setNamesFromDictionaryKey(L"a$b$c"));
    EXPECT_STREQ(plain.getDictionaryKey(), L"");
}
