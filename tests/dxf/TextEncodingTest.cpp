// Names and texts outside ASCII in drawing files: files before AC1021 in
// their code page, with "\U+XXXX" for the characters it lacks, later
// ones in UTF-8; ezdxf reads what we write, and we read what it writes,
// with the same names.
#include "DxfText.h"
#include "GroupText.h"
#include "TestMlines.h"
#include "TreePaths.h"

#include "kaldo/dxf/TextCodec.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>


using kaldo::dxf::TextCodec;

namespace {

// A drawing of the given version and code page (none when empty) whose
// one line lies on layer and whose one text says text.
std::string namedDrawing(const char* version, const char* codePage, const std::string& layer, const std::string& text)
{
    std::string header = groupText({"0", "SECTION", "2", "HEADER"});
    if (*version)
        header += groupText({"9", "$ACADVER", "1", version});
    if (*codePage)
        header += groupText({"9", "$DWGCODEPAGE", "3", codePage});
    header += groupText({"9", "$HANDSEED", "5", "100", "0", "ENDSEC", "0", "SECTION", "2", "ENTITIES"});
    return header + "0\nLINE\n5\n30\n100\nAcDbEntity\n8\n" + layer +
           "\n100\nAcDbLine\n10\n0\n20\n0\n30\n0\n11\n1\n21\n1\n31\n0\n"
           "0\nTEXT\n5\n31\n100\nAcDbEntity\n8\n0\n100\nAcDbText\n10\n0\n20\n0\n30\n0\n40\n1\n1\n" +
           text + "\n100\nAcDbText\n" + groupText({"0", "ENDSEC", "0", "SECTION", "2", "OBJECTS", "0", "ENDSEC", "0", "EOF"});
}

std::wstring layerOfLine(KxDbDatabase& db)
{
    const auto* layer = KxDbLayerTableRecord::cast(db.peekObject(firstEntity<KxDbLine>(db)->layerId()));
    return layer ? layer->name() : L"";
}

std::string textOf(KxDbDatabase& db)
{
    for (const KxDbFileGroup& g : firstEntity<KxDbUnmodelledEntity>(db)->groups())
        if (g.code == 1)
            return g.value;
    return {};
}

QJsonObject runNames(const QStringList& args)
{
    QProcess python;
    python.start("/usr/bin/python3", QStringList{sourceFile("tests/dxf/ezdxf_names.py")} + args);
    python.waitForFinished(120000);
    EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().toStdString();
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

QStringList strings(const QJsonValue& array)
{
    QStringList list;
    for (const QJsonValue& v : array.toArray())
        list << v.toString();
    return list;
}

}  // namespace

TEST(DxfTextEncoding, CodePagesAndEscapesDecodeAndEncode)
{
    TextCodec western("AC1015", "ANSI_1252");
    EXPECT_EQ(western.codePage(), "ANSI_1252");
    EXPECT_FALSE(western.isUtf8());
    EXPECT_EQ(western.decode("MUR_\xC9PAIS"), "MUR_\u00C9PAIS");
    // Escapes in either case, a pair for a character beyond 16 bits; a
    // lone half of a pair and what is no escape stay as written.
    EXPECT_EQ(western.decode("\\U+0416 \\u+00e9\\U+D83D\\U+DE00 \\U+D83D \\U+12G4 \\U+04"),
              "\u0416 \u00E9\U0001F600 \\U+D83D \\U+12G4 \\U+04");
    EXPECT_EQ(western.encode("MUR_\u00C9PAIS \u0416\U0001F600"), "MUR_\xC9PAIS \\U+0416\\U+D83D\\U+DE00");
    // A byte the code page leaves undefined reads as the character of its
    // number, which is then written as its escape; bytes that are no UTF-8
    // are written as '?'.
    EXPECT_EQ(western.decode("\x81"), "\u0081");
    EXPECT_EQ(western.encode("\u0081"), "\\U+0081");
    EXPECT_EQ(western.encode("a\xFF" "b"), "a?b");

    TextCodec cyrillic("AC1015", "ansi_1251");
    EXPECT_EQ(cyrillic.codePage(), "ANSI_1251");
    EXPECT_EQ(cyrillic.decode("\xD1\xD2\xC5\xCD\xC0"), "\u0421\u0422\u0415\u041D\u0410");
    EXPECT_EQ(cyrillic.encode("\u0421\u0422\u0415\u041D\u0410 \u00C9"), "\xD1\xD2\xC5\xCD\xC0 \\U+00C9");
    EXPECT_EQ(TextCodec("AC1015", "KLINGON").codePage(), "ANSI_1252");

    // From AC1021 on files hold UTF-8: only escapes are decoded, nothing
    // is encoded.
    TextCodec unicode("AC1032", "ANSI_1252");
    EXPECT_TRUE(unicode.isUtf8());
    EXPECT_FALSE(unicode.needsEncoding("\u0416"));
    EXPECT_FALSE(unicode.needsDecoding("\u0416"));
    EXPECT_EQ(unicode.decode("\u0416 \\U+00C9"), "\u0416 \u00C9");
    EXPECT_TRUE(western.needsEncoding("\u0416"));
    EXPECT_TRUE(western.needsDecoding("\xC9"));
    EXPECT_FALSE(western.needsDecoding("plain 1.5"));
}

TEST(DxfTextEncoding, NamesAndTextsSurviveFilesOfEveryEncoding)
{
    struct Case {
        const char* version;
        const char* codePage;
        std::string layer;  // as the file holds them
        std::string text;
        std::wstring layerRead;  // as read
        std::string textRead;
        std::string written;  // the header's start as written again
        std::string layerWritten;
        std::string textWritten;
    };
    const Case cases[] = {
        {"AC1015", "ANSI_1252", "MUR_\xC9PAIS", "\\U+0416\\u+00e9", L"MUR_\u00C9PAIS", "\u0416\u00E9",
         "$ACADVER\n  1\nAC1015\n  9\n$DWGCODEPAGE\n  3\nANSI_1252\n", "MUR_\xC9PAIS", "\\U+0416\xE9"},
        {"AC1015", "ANSI_1251", "\xD1\xD2\xC5\xCD\xC0", "\xD1 \\U+00C9", L"\u0421\u0422\u0415\u041D\u0410",
         "\u0421 \u00C9", "$ACADVER\n  1\nAC1015\n  9\n$DWGCODEPAGE\n  3\nANSI_1251\n", "\xD1\xD2\xC5\xCD\xC0",
         "\xD1 \\U+00C9"},
        {"AC1032", "ANSI_1252", "MUR_\u00C9PAIS", "\u0416 \\U+00C9", L"MUR_\u00C9PAIS", "\u0416 \u00C9",
         "$ACADVER\n  1\nAC1032\n  9\n$DWGCODEPAGE\n  3\nANSI_1252\n", "MUR_\u00C9PAIS", "\u0416 \u00C9"},
        // Without a version or a code page: ANSI_1252, written as AC1015.
        {"", "", "MUR_\xC9PAIS", "\xC9", L"MUR_\u00C9PAIS", "\u00C9",
         "$ACADVER\n  1\nAC1015\n  9\n$DWGCODEPAGE\n  3\nANSI_1252\n", "MUR_\xC9PAIS", "\xC9"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.version) + " " + c.codePage);
        kaldo::dxf::DxfDrawing drawing = fromDxfText(namedDrawing(c.version, c.codePage, c.layer, c.text));
        EXPECT_EQ(layerOfLine(*drawing.database), c.layerRead);
        EXPECT_EQ(textOf(*drawing.database), c.textRead);
        const std::string written = toDxfText(drawing);
        EXPECT_NE(written.find(c.written), std::string::npos) << written.substr(0, 200);
        EXPECT_NE(written.find("\n  8\n" + c.layerWritten + "\n"), std::string::npos);
        EXPECT_NE(written.find("\n  1\n" + c.textWritten + "\n"), std::string::npos);
        kaldo::dxf::DxfDrawing again = fromDxfText(written);
        EXPECT_EQ(layerOfLine(*again.database), c.layerRead);
        EXPECT_EQ(textOf(*again.database), c.textRead);
        EXPECT_EQ(toDxfText(again), written);
    }
}

TEST(DxfTextEncoding, NamesOutsideAsciiRoundTripThroughEzdxf)
{
    // A style, layers and a text in names inside the code page (É) and
    // outside it (Cyrillic, and a Greek letter whose escape has letters).
    const std::wstring wall = L"MUR_\u00C9PAIS";
    const std::wstring stone = L"\u0421\u0422\u0415\u041D\u0410\u038F";
    const std::string text = "\u0416 \u00C9";
    KxDbDatabase db;
    KxDbLayerTable* layers = nullptr;
    ASSERT_EQ(db.getLayerTable(layers, KxDb::kForWrite), Kald::eOk);
    for (const std::wstring& name : {wall, stone}) {
        auto* layer = new KxDbLayerTableRecord;
        layer->setName(name.c_str());
        layers->add(layer);
        layer->close();
    }
    layers->close();
    addTestStyle(db, wall.c_str(), {0.5, -0.5});
    addEntity(db, new KxDbUnmodelledEntity("TEXT", {{100, 0, "AcDbEntity"}, {8, 0, "0"}, {100, 0, "AcDbText"},
                                                     {10, 0, "0"}, {20, 0, "0"}, {30, 0, "0"}, {40, 0, "1"},
                                                     {1, 0, text}, {100, 0, "AcDbText"}}));
    QTemporaryDir dir;
    const QString ours = dir.filePath("ours.dxf");
    kaldo::dxf::KeptSections kept;
    kaldo::dxf::saveDxfFile(ours.toStdString(), db, kept);

    const QString copy2000 = dir.filePath("copy2000.dxf"), copy2018 = dir.filePath("copy2018.dxf");
    const QString own = dir.filePath("own.dxf");
    const QJsonObject result = runNames({ours, copy2000, copy2018, own});
    EXPECT_TRUE(result["errors"].toArray().isEmpty()) << QJsonDocument(result).toJson().toStdString();
    EXPECT_TRUE(result["fixes"].toArray().isEmpty()) << QJsonDocument(result).toJson().toStdString();
    EXPECT_EQ(result["codepage"].toString(), "ANSI_1252");
    // ezdxf reads the code page's characters as they are, and leaves the
    // escapes of the others to its recovering reader.
    const QString wallName = QString::fromStdWString(wall), stoneName = QString::fromStdWString(stone);
    EXPECT_TRUE(strings(result["read"]["layers"]).contains(wallName));
    EXPECT_TRUE(strings(result["read"]["styles"]).contains(wallName));
    EXPECT_TRUE(strings(result["read"]["layers"]).contains("\\U+0421\\U+0422\\U+0415\\U+041D\\U+0410\\U+038F"));
    EXPECT_TRUE(strings(result["recovered"]["layers"]).contains(stoneName));
    EXPECT_EQ(strings(result["recovered"]["texts"]), QStringList{QString::fromStdString(text)});

    // What ezdxf writes, its copies of our file and a drawing of its own
    // (whose escapes are in small letters), we read with the same names.
    for (const QString& path : {copy2000, copy2018, own}) {
        SCOPED_TRACE(path.toStdString());
        kaldo::dxf::DxfDrawing theirs = kaldo::dxf::readDxfFile(path.toStdString());
        KxDbDatabase& read = *theirs.database;
        KxDbLayerTable* table = nullptr;
        ASSERT_EQ(read.getLayerTable(table, KxDb::kForRead), Kald::eOk);
        EXPECT_TRUE(table->has(wall.c_str()));
        EXPECT_TRUE(table->has(stone.c_str()));
        table->close();
        KxDbDictionary* readStyles = nullptr;
        ASSERT_EQ(read.getMLStyleDictionary(readStyles, KxDb::kForRead), Kald::eOk);
        EXPECT_TRUE(readStyles->has(wall.c_str()));
        readStyles->close();
        EXPECT_EQ(textOf(read), text);
    }
}
