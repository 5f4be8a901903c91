// Multiline styles and their multilines as other programs write them.
#include "DxfText.h"
#include "GroupText.h"
#include "MlineLists.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

const std::string kRootAndStyles = groupText({
    "0", "DICTIONARY", "5", "C", "330", "0", "100", "AcDbDictionary", "3", "ACAD_MLINESTYLE", "350", "17",
    "0", "DICTIONARY", "5", "17", "330", "C", "100", "AcDbDictionary", "3", "Fancy", "350", "40", "3", "Nameless",
    "350", "41"});

// Code 62 stands for the fill colour before the element count (71), for an
// element's colour after it; the true colours (420) follow their 62.
const std::string kFancyStyle = groupText({
    "0", "MLINESTYLE", "5", "40", "330", "17", "100", "AcDbMlineStyle", "2", "Fancy", "70", "1107", "3",
    "Two walls", "62", "3", "420", "1193046", "51", "45", "52", "135", "71", "2", "49", "0.75", "62", "1", "6",
    "BYLAYER", "49", "-0.25", "62", "5", "420", "16711680", "6", "BYLAYER"});

const std::string kNamelessStyle = groupText({
    "0", "MLINESTYLE", "5", "41", "330", "17", "100", "AcDbMlineStyle", "2", "", "70", "0", "3", "", "62", "256",
    "51", "90", "52", "90", "71", "1", "49", "0", "62", "256", "6", "BYLAYER"});

// A multiline that names its style wrongly: the handle (340) decides.
std::string mlineOfStyle(const char* handle)
{
    return groupText({"0", "MLINE", "5", "30", "100", "AcDbEntity", "8", "0", "100", "AcDbMline", "2", "WRONGNAME",
                      "340", handle, "40", "1", "70", "0", "71", "1", "72", "1", "73", "2", "10", "0", "20", "0",
                      "30", "0", "210", "0", "220", "0", "230", "1", "11", "0", "21", "0", "31", "0", "12", "1",
                      "22", "0", "32", "0", "13", "0", "23", "1", "33", "0", "74", "2", "41", "0.75", "41", "0",
                      "75", "1", "42", "0.75", "74", "2", "41", "-0.25", "41", "0", "75", "0"});
}

}  // namespace

TEST(DxfMlineStyles, StylesAreReadInOrderAndFoundByHandle)
{
    kaldo::dxf::DxfDrawing drawing = fromDxfText(smallDrawing(mlineOfStyle("40"), kRootAndStyles + kFancyStyle + kNamelessStyle));
    KxDbDatabase& db = *drawing.database;
    const auto* fancy = KxDbMlineStyle::cast(db.peekObject(db.objectIdFromHandle(0x40)));
    ASSERT_NE(fancy, nullptr);
    EXPECT_STREQ(fancy->name(), L"Fancy");
    EXPECT_STREQ(fancy->description(), L"Two walls");
    EXPECT_TRUE(fancy->filled());
    EXPECT_TRUE(fancy->showMiters());
    EXPECT_TRUE(fancy->startSquareCap());
    EXPECT_TRUE(fancy->startRoundCap());
    EXPECT_FALSE(fancy->startInnerArcs());
    EXPECT_TRUE(fancy->endRoundCap());
    EXPECT_FALSE(fancy->endSquareCap());
    EXPECT_NEAR(fancy->startAngle(), std::numbers::pi / 4, 1e-15);
    EXPECT_NEAR(fancy->endAngle(), 3 * std::numbers::pi / 4, 1e-15);
    EXPECT_TRUE(fancy->fillColor().isByColor());
    EXPECT_EQ(fancy->fillColor().color() & 0xFFFFFF, 1193046u);
    ASSERT_EQ(fancy->numElements(), 2);
    double offset = 0;
    KxCmColor color;
    KxDbObjectId linetype;
    fancy->getElementAt(0, offset, color, linetype);
    EXPECT_EQ(offset, 0.75);
    EXPECT_EQ(color.colorIndex(), 1);
    EXPECT_EQ(linetype, db.byLayerLinetype());
    fancy->getElementAt(1, offset, color, linetype);
    EXPECT_EQ(offset, -0.25);
    EXPECT_TRUE(color.isByColor());
    EXPECT_EQ(color.red(), 255);

    // The multiline's style comes from its handle, not its name copy.
    const auto* mline = firstEntity<KxDbMline>(db);
    ASSERT_NE(mline, nullptr);
    EXPECT_EQ(mline->style(), fancy->objectId());

    // A style without a name is kept, and written back without one.
    const auto* nameless = KxDbMlineStyle::cast(db.peekObject(db.objectIdFromHandle(0x41)));
    ASSERT_NE(nameless, nullptr);
    EXPECT_STREQ(nameless->name(), L"");
    const std::string text = toDxfText(drawing);
    EXPECT_NE(text.find("MLINESTYLE\n  5\n41\n330\n17\n100\nAcDbMlineStyle\n  2\n\n"), std::string::npos);
    EXPECT_NE(text.find("MLINE\n  5\n30\n"), std::string::npos);
    EXPECT_NE(text.find("  2\nFancy\n340\n40\n"), std::string::npos);

    // Read again, the style is the same object by handle.
    kaldo::dxf::DxfDrawing again = fromDxfText(text);
    const auto* mline2 = firstEntity<KxDbMline>(*again.database);
    EXPECT_EQ(again.database->peekObject(mline2->style())->handle(), 0x40u);
}

TEST(DxfMlineStyles, MissingDictionaryAndStandardAreAddedAboveTheSeed)
{
    // No objects at all: the dictionaries and STANDARD are made up.
    kaldo::dxf::DxfDrawing bare = fromDxfText(smallDrawing("", ""));
    KxDbDatabase& db = *bare.database;
    KxDbDictionary* styles = nullptr;
    ASSERT_EQ(db.getMLStyleDictionary(styles, KxDb::kForRead), Kald::eOk);
    KxDbObjectId standard;
    EXPECT_EQ(styles->getAt(kxdbStandardStyleName, standard), Kald::eOk);
    EXPECT_GE(styles->handle(), 0x100u);
    styles->close();
    const auto* style = KxDbMlineStyle::cast(db.peekObject(standard));
    ASSERT_NE(style, nullptr);
    EXPECT_EQ(style->numElements(), 2);
    EXPECT_GE(style->handle(), 0x100u);
    EXPECT_EQ(db.cmlstyleID(), standard);

    // A style dictionary without STANDARD gets it too, and keeps the others.
    kaldo::dxf::DxfDrawing partial = fromDxfText(smallDrawing("", kRootAndStyles + kFancyStyle + kNamelessStyle));
    ASSERT_EQ(partial.database->getMLStyleDictionary(styles, KxDb::kForRead), Kald::eOk);
    EXPECT_TRUE(styles->has(L"STANDARD"));
    EXPECT_TRUE(styles->has(L"Fancy"));
    EXPECT_TRUE(styles->has(L"Nameless"));
    EXPECT_EQ(styles->handle(), 0x17u);
    styles->close();
}

TEST(DxfMlineStyles, ElementsListedOutOfOrderKeepTheirListsWithThem)
{
    // The file lists the lower element first; the style keeps the upper one
    // first, and the multiline's lists move with their elements.
    const std::string reversed = groupText({
        "0", "MLINESTYLE", "5", "40", "330", "17", "100", "AcDbMlineStyle", "2", "Fancy", "70", "0", "3", "", "62",
        "256", "51", "90", "52", "90", "71", "2", "49", "-0.25", "62", "5", "6", "BYLAYER", "49", "0.75", "62", "1",
        "6", "BYLAYER"});
    std::string mline = mlineOfStyle("40");
    const auto swap = [&mline](const std::string& from, const std::string& to) {
        mline.replace(mline.find(from), from.size(), to);
    };
    swap("41\n0.75\n41\n0\n75\n1\n42\n0.75\n", "41\n-0.25\n41\n0\n75\n1\n42\n-0.2\n");
    swap("41\n-0.25\n41\n0\n75\n0\n", "41\n0.75\n41\n0\n75\n0\n");
    kaldo::dxf::DxfDrawing drawing = fromDxfText(smallDrawing(mline, kRootAndStyles + reversed + kNamelessStyle));
    const auto* style = KxDbMlineStyle::cast(drawing.database->peekObject(drawing.database->objectIdFromHandle(0x40)));
    double offset = 0;
    KxCmColor color;
    KxDbObjectId linetype;
    style->getElementAt(0, offset, color, linetype);
    EXPECT_EQ(offset, 0.75);
    EXPECT_EQ(color.colorIndex(), 1);
    const auto* read = firstEntity<KxDbMline>(*drawing.database);
    const auto& elements = listsOf(read->parametersAt(0));
    ASSERT_EQ(elements.size(), 2u);
    EXPECT_EQ(elements[0].element, (std::vector<double>{0.75, 0}));
    EXPECT_EQ(elements[0].areaFill, std::vector<double>{});
    EXPECT_EQ(elements[1].element, (std::vector<double>{-0.25, 0}));
    EXPECT_EQ(elements[1].areaFill, std::vector<double>{-0.2});
}

TEST(DxfMlineStyles, LinesEndingInCarriageReturnsAndPaddedCodesRead)
{
    std::string text = smallDrawing(mlineOfStyle("40"), kRootAndStyles + kFancyStyle + kNamelessStyle);
    std::string crlf;
    for (const char c : text)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    crlf.replace(0, 1, "  0");
    kaldo::dxf::DxfDrawing drawing = fromDxfText(crlf);
    const auto* mline = firstEntity<KxDbMline>(*drawing.database);
    ASSERT_NE(mline, nullptr);
    EXPECT_EQ(drawing.database->peekObject(mline->style())->handle(), 0x40u);
    EXPECT_STREQ(KxDbMlineStyle::cast(drawing.database->peekObject(mline->style()))->description(), L"Two walls");
}
