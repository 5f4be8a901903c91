#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>

#include "MlnFixture.h"
#include "mlnfile/LinetypeResolver.h"
#include "mlnfile/MlnElementTable.h"
#include "mlnfile/StyleElementSetters.h"

using mlntest::elementOf;
using mlntest::IsElement;

namespace {

class StyleElementSettersTest : public mlntest::MlnFixture {
protected:
    // A style with elements at the given offsets, colour indices 1, 2, ...
    static void fill(KxDbMlineStyle& style, std::initializer_list<double> offsets)
    {
        style.initMlineStyle();
        int color = 1;
        for (double offset : offsets) {
            KxCmColor c;
            c.setColorIndex(color++);
            int index = 0;
            style.addElement(index, offset, c, KxDbObjectId::kNull);
        }
    }

    KxDbMlineStyle style;
};

}  // namespace

TEST_F(StyleElementSettersTest, CountGrowsAtTheEndAndShrinksFromTheFront)
{
    fill(style, {4, 3, 2, 1});
    ASSERT_TRUE(kdml::setStyleElementCount(&style, 2));
    ASSERT_EQ(style.numElements(), 2);
    EXPECT_DOUBLE_EQ(elementOf(style, 0).offset, 2);
    EXPECT_DOUBLE_EQ(elementOf(style, 1).offset, 1);

    fill(style, {-1});
    kdml::setStyleElementCount(&style, 3);
    ASSERT_EQ(style.numElements(), 3);
    EXPECT_DOUBLE_EQ(elementOf(style, 0).offset, 0.5);
    EXPECT_DOUBLE_EQ(elementOf(style, 1).offset, 0.5);
    EXPECT_DOUBLE_EQ(elementOf(style, 2).offset, -1);

    kdml::setStyleElementCount(&style, -7);
    EXPECT_EQ(style.numElements(), 0);
    EXPECT_FALSE(kdml::setStyleElementCount(nullptr, 1));
}

TEST_F(StyleElementSettersTest, OffsetsKeepEachElementsOtherProperties)
{
    fill(style, {0.5, 0.5, 0.5});
    const std::array<double, 2> offsets = {0.25, 2.0};
    kdml::setStyleElementOffsets(&style, offsets);
    // 2.0 sorts first, carrying its colour; the element beyond the table gets 0.
    ASSERT_EQ(style.numElements(), 3);
    EXPECT_THAT(elementOf(style, 0), IsElement(2.0, 2, L""));
    EXPECT_THAT(elementOf(style, 1), IsElement(0.25, 1, L""));
    EXPECT_DOUBLE_EQ(elementOf(style, 2).offset, 0.0);

    std::array<double, 4> out{};
    kdml::getStyleElementOffsets(&style, out);
    EXPECT_EQ(out, (std::array<double, 4>{2.0, 0.25, 0.0, 0.0}));
    kdml::setStyleElementOffsets(&style, {});
    EXPECT_DOUBLE_EQ(elementOf(style, 0).offset, 2.0);
}

TEST_F(StyleElementSettersTest, ColourIndicesTrueColoursAndBookKeys)
{
    fill(style, {1, 0, -1});
    std::array<std::int32_t, 2> indices = {300, -1};
    kdml::setStyleElementColorIndices(&style, indices);
    EXPECT_EQ(indices, (std::array<std::int32_t, 2>{256, 256}));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(elementOf(style, i).color.isByLayer()) << i;

    const std::array<std::int32_t, 3> trueColors = {-1, 0, 0x123456};
    kdml::setStyleElementTrueColors(&style, trueColors);
    EXPECT_TRUE(elementOf(style, 0).color.isByLayer());
    EXPECT_TRUE(elementOf(style, 1).color.isByColor());
    EXPECT_EQ(elementOf(style, 1).color.color() & 0xFFFFFFu, 0u);
    EXPECT_EQ(elementOf(style, 2).color.color() & 0xFFFFFFu, 0x123456u);

    using Key = std::optional<std::wstring>;
    const std::array<Key, 3> keys = {L"BOOK$RED", L"BOOK$GREEN", L"BOOK$BLUE"};
    kdml::setStyleElementColorBookKeys(&style, keys);
    EXPECT_STREQ(elementOf(style, 0).color.getDictionaryKey(), L"BOOK$RED");
    EXPECT_STREQ(elementOf(style, 1).color.getDictionaryKey(), L"BOOK$GREEN");
    EXPECT_STREQ(elementOf(style, 2).color.getDictionaryKey(), L"BOOK$BLUE");

    // A null first entry: no element is touched.
    const std::array<Key, 2> nullFirst = {std::nullopt, L"BOOK$GREY"};
    kdml::setStyleElementColorBookKeys(&style, nullFirst);
    EXPECT_STREQ(elementOf(style, 1).color.getDictionaryKey(), L"BOOK$GREEN");

    // A key that is refused clears the element's names.
    const std::array<Key, 3> refused = {L"BOOK$RED", L"BOOK$GREEN", L"$BAD"};
    kdml::setStyleElementColorBookKeys(&style, refused);
    EXPECT_STREQ(elementOf(style, 2).color.getDictionaryKey(), L"");

    EXPECT_TRUE(kdml::isColorBookKey(L"BOOK$COLOUR"));
    EXPECT_TRUE(kdml::isColorBookKey(L"PLAIN"));
    for (const wchar_t* refused : {L"", L"$COLOUR", L"BOOK$", L"A$B$C"})
        EXPECT_FALSE(kdml::isColorBookKey(refused)) << refused;
    EXPECT_FALSE(kdml::isColorBookKey(nullptr));
}

TEST_F(StyleElementSettersTest, FlagWordSetsAllEightPropertiesAndReadsBack)
{
    for (int flags : {0, 0x1 | 0x20 | 0x400, 0x7F3, 0xFFFF}) {
        kdml::setStyleFlags(&style, flags);
        EXPECT_EQ(kdml::styleFlags(style), flags & 0x773) << flags;
    }
    kdml::setStyleFlags(&style, 0x2 | 0x100);
    EXPECT_TRUE(style.showMiters());
    EXPECT_TRUE(style.endSquareCap());
    EXPECT_FALSE(style.filled());
    EXPECT_FALSE(style.startRoundCap());
}

TEST_F(StyleElementSettersTest, TableRowsTravelWithTheirOffsets)
{
    kdml::MlnElementTable table(kdml::kMlnReaderSlots);
    table.offsets[0] = -1.0;
    table.colorIndices[0] = 1;
    table.trueColors[0] = -1;
    table.colorBookKeys[0] = L"";
    table.linetypeNames[0] = L"Continuous";
    table.offsets[1] = 1.0;
    table.colorIndices[1] = 2;
    table.trueColors[1] = -1;
    table.colorBookKeys[1] = L"";
    ASSERT_TRUE(kdml::applyMlnElementTable(&style, table, 2, &db));
    ASSERT_EQ(style.numElements(), 2);
    EXPECT_THAT(elementOf(style, 0), IsElement(1.0, 2, L""));
    EXPECT_THAT(elementOf(style, 1), IsElement(-1.0, 1, L"Continuous"));
}

TEST_F(StyleElementSettersTest, LinetypesComeFromTheDrawingOrTheFileMeasurementChooses)
{
    EXPECT_EQ(linetypeName(kdml::resolveLinetype(L"continuous", &db)), L"Continuous");

    // CENTER is 1.25 long in inches and 31.75 in millimetres.
    const auto firstDash = [](KxDbObjectId id) {
        KxDbObjectPtr<KxDbLinetypeTableRecord> record(id, KxDb::kForRead);
        return record && record->numDashes() > 0 ? record->dashLengthAt(0) : 0.0;
    };
    {
        KxDbDatabase metric;
        metric.setMeasurement(1);
        kaldo::host().database = &metric;
        const KxDbObjectId center = kdml::resolveLinetype(L"CENTER", &metric);
        EXPECT_EQ(linetypeName(center), L"CENTER");
        EXPECT_GT(firstDash(center), 10.0);
        kaldo::host().database = &db;
    }
    const KxDbObjectId center = kdml::resolveLinetype(L"CENTER", &db);
    EXPECT_EQ(linetypeName(center), L"CENTER");
    EXPECT_DOUBLE_EQ(firstDash(center), 1.25);
    EXPECT_EQ(kdml::resolveLinetype(L"CENTER", &db), center);

    EXPECT_EQ(linetypeName(kdml::resolveLinetype(L"NO_SUCH_TYPE", &db)), L"Continuous");

    fill(style, {1, -1});
    using Name = std::optional<std::wstring>;
    const std::array<Name, 2> names = {L"HIDDEN", std::nullopt};
    kdml::setStyleElementLinetypes(&style, names, &db);
    EXPECT_EQ(elementOf(style, 0).linetype, L"HIDDEN");
    EXPECT_EQ(elementOf(style, 1).linetype, L"");

    // Without an editor MEASUREMENT cannot be read: a missing name gives none.
    kaldo::host().editor = nullptr;
    EXPECT_TRUE(kdml::resolveLinetype(L"DASHDOT", &db).isNull());
    EXPECT_FALSE(kdml::resolveLinetype(L"Continuous", &db).isNull());
}
