// The style dialogs under a person's hands (keys typed, clicks and double
// clicks on the real widgets) and, beside them, the same steps as script
// actions: what the lists and labels show, what the name edit keeps, which
// offsets the editor takes, and which dialogs can be resized.
#include "StyleDrawingFixture.h"
#include "kaldo/dlg/DialogItems.h"
#include "kaldo/dlg/DialogLabel.h"

#include "styledlg/MlineStyleDialog.h"
#include "styledlg/MlineStyleLoadDialog.h"
#include "styledlg/MlineStyleNameDialogs.h"
#include "styledlg/MlineStyleNewModifyDialog.h"
#include "scenarios/Gestures.h"
#include "ui/DialogPlacement.h"

#include "kxed.h"
#include "kxuiapp.h"

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <QToolTip>
#include <QTreeWidget>

#include <cmath>
#include <fstream>
#include <functional>

// Qt's strings in failure messages as their text.
void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

using ::testing::DoubleNear;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

constexpr double kTol = 1e-10;

class StyleDialogsByHandTest : public StyleDrawingFixture {
protected:
    std::vector<std::wstring> styleNames()
    {
        std::vector<std::wstring> names;
        const KxDbObjectPtr<KxDbDictionary> dictionary(db.mlineStyleDictionaryId(), KxDb::kForRead);
        for (auto it = dictionary->newIterator(); !it->done(); it->next())
            names.emplace_back(it->name());
        return names;
    }
};

// Runs act on the modal window whose caption begins with caption (any
// message box when caption is empty) as soon as it shows: the one the next
// click or DoModal opens; act ends with the window closed. A window that
// does not show, or stays open, fails the test and is closed, so that the
// test ends.
void whenShown(const QString& caption, std::function<void(QWidget*)> act, int triesLeft = 500)
{
    QTimer::singleShot(10, [caption, act = std::move(act), triesLeft]() mutable {
        QWidget* window = QApplication::activeModalWidget();
        const bool shown = window && window->isVisible()
                           && (caption.isEmpty() ? qobject_cast<QMessageBox*>(window) != nullptr
                                                 : window->windowTitle().startsWith(caption));
        if (shown) {
            const QPointer<QWidget> acted(window);
            act(window);
            if (acted && acted->isVisible()) {
                ADD_FAILURE() << "\"" << caption.toStdString() << "\" stayed open";
                acted->close();
            }
        } else if (triesLeft > 0)
            whenShown(caption, std::move(act), triesLeft - 1);
        else {
            ADD_FAILURE() << "no window \"" << caption.toStdString() << "\" showed";
            if (window)
                window->close();
        }
    });
}

template <class Widget>
Widget* item(QWidget* dialog, int id)
{
    return qobject_cast<Widget*>(kaldo::dlg::findItem(dialog, id));
}

void click(QWidget* dialog, int id)
{
    QTest::mouseClick(kaldo::dlg::findItem(dialog, id), Qt::LeftButton);
}

QListWidgetItem* row(QListWidget* list, const QString& text)
{
    const QList<QListWidgetItem*> found = list->findItems(text, Qt::MatchExactly);
    return found.isEmpty() ? nullptr : found.first();
}

// Moves the selection of list to the row text with the keys, as a person
// at the keyboard does.
void selectWithKeys(QListWidget* list, const QString& text)
{
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Home);
    while (list->currentItem()->text() != text && list->currentRow() + 1 < list->count())
        QTest::keyClick(list, Qt::Key_Down);
}

QStringList rows(const QListWidget* list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts << list->item(i)->text();
    return texts;
}

QStringList sortedCaseIgnored(QStringList names)
{
    std::sort(names.begin(), names.end(),
              [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    return names;
}

// The picture of label beside those of a label of the same place and kind
// showing its text as plain text and as markup.
struct LabelPictures {
    QImage shown;
    QImage plain;
    QImage markup;
};

LabelPictures picturesOf(QLabel* label)
{
    auto twin = [label](Qt::TextFormat format) {
        QLabel twin(label->parentWidget());
        twin.setTextFormat(format);
        twin.setText(label->text());
        twin.setGeometry(label->geometry());
        twin.setAlignment(label->alignment());
        twin.setWordWrap(label->wordWrap());
        twin.setMargin(label->margin());
        twin.setIndent(label->indent());
        twin.setContentsMargins(label->contentsMargins());
        twin.setTextInteractionFlags(label->textInteractionFlags());
        twin.setFont(label->font());
        twin.show();
        return twin.grab().toImage();
    };
    return {label->grab().toImage(), twin(Qt::PlainText), twin(Qt::RichText)};
}

void expectShownAsTyped(QLabel* label)
{
    ASSERT_TRUE(label);
    const LabelPictures pictures = picturesOf(label);
    EXPECT_NE(pictures.plain, pictures.markup) << "the text reads as markup";
    EXPECT_EQ(pictures.shown, pictures.plain) << label->text().toStdString();
}

// The tool tip a person pointing at label sees, as plain text.
QString toolTipOf(QLabel* label)
{
    const QPoint inside = label->rect().center();
    QHelpEvent help(QEvent::ToolTip, inside, label->mapToGlobal(inside));
    QApplication::sendEvent(label, &help);
    QTextDocument shown;
    shown.setHtml(QToolTip::text());
    return shown.toPlainText();
}

}  // namespace

TEST_F(StyleDialogsByHandTest, EditorColumnsReadOffsetLinetypeColorAndOffsetsBeyondTheLargestNumberAreRefused)
{
    addStyle(L"Pipes", 0, {{0.5, 1, true}, {-0.5}});
    kdml::CKaldMlineStyleDialog manager;
    const QString huge = QStringLiteral("1") + QString(320, QLatin1Char('0'));

    // By hand: a click on a row, the huge offset typed, OK clicked; then a
    // plain offset typed and OK clicked.
    QStringList headings;
    QStringList clickedRow;
    QString offsetShown;
    bool openAfterHugeOk = false;
    bool offsetKeepsFocus = false;
    QString rowAfterHugeOffset;
    whenShown("Modify Multiline Style", [&](QWidget* window) {
        auto* list = item<QTreeWidget>(window, 1046);
        for (int c = 0; c < list->columnCount(); ++c)
            headings << list->headerItem()->text(c);
        QTreeWidgetItem* pipe = list->topLevelItem(1);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(pipe).center());
        for (int c = 0; c < list->columnCount(); ++c)
            clickedRow << pipe->text(c);
        auto* offset = item<QLineEdit>(window, 1050);
        offsetShown = offset->text();
        offset->setFocus();
        offset->selectAll();
        QTest::keyClicks(offset, huge);
        click(window, IDOK);
        openAfterHugeOk = window->isVisible();
        offsetKeepsFocus = window->focusWidget() == offset;
        rowAfterHugeOffset = pipe->text(0);
        offset->setFocus();
        offset->selectAll();
        QTest::keyClicks(offset, QStringLiteral("2"));
        click(window, IDOK);
    });
    kdml::CKaldMlineStyleNewModifyDialog byHand(&manager);
    byHand.setModifyMode(L"Pipes");
    byHand.setDictionary(db.mlineStyleDictionaryId());
    EXPECT_EQ(byHand.DoModal(), IDOK);
    EXPECT_THAT(headings, ElementsAre("Offset", "Linetype", "Color"));
    EXPECT_THAT(clickedRow, ElementsAre("0.5", "Continuous", "red"));
    EXPECT_EQ(offsetShown, "0.5");
    EXPECT_TRUE(openAfterHugeOk) << "OK refused the offset";
    EXPECT_TRUE(offsetKeepsFocus);
    EXPECT_TRUE(std::isfinite(rowAfterHugeOffset.toDouble())) << "the row keeps a number it can hold";
    EXPECT_THAT(offsetsOf(L"Pipes"), ElementsAre(DoubleNear(2.0, kTol), DoubleNear(-0.5, kTol)));

    // By script: the whole text at once; OK is refused, the row keeps its
    // offset and nothing infinite reaches the style or the preview.
    script("SELECT 1046 2\nTEXT 1050 " + huge.toStdString() + "\nCLICK 1\nSHOW\nCLICK 2\n");
    kdml::CKaldMlineStyleNewModifyDialog scripted(&manager);
    scripted.setModifyMode(L"Pipes");
    scripted.setDictionary(db.mlineStyleDictionaryId());
    EXPECT_EQ(scripted.DoModal(), IDCANCEL);
    EXPECT_THAT(transcript, HasSubstr(L"selected 1\n    0: -0.5 | ByLayer | ByLayer\n    1: 2 | Continuous | red\n"));
    EXPECT_THAT(offsetsOf(L"Pipes"), ElementsAre(DoubleNear(2.0, kTol), DoubleNear(-0.5, kTol)));
    for (const auto& element : manager.previewRecord().elements)
        EXPECT_TRUE(std::isfinite(element.offset));
}

TEST_F(StyleDialogsByHandTest, ManagerListsTheDrawingsStylesSortedAndNewOnesStartFromAListedStyle)
{
    // Names as MLINE stores loaded styles (lower case), CMLSTYLE as it
    // writes them (capitals).
    addStyle(L"wall_200mm");
    addStyle(L"road_7m");
    addStyle(L"Alpha");
    setCurrentStyle(L"WALL_200MM");

    // By hand: the current style as listed; a style selected with the keys
    // and made current with a double click; New, a start style typed, a
    // name typed and OK clicked in both dialogs.
    QString currentShown;
    QString currentAfterDoubleClick;
    bool setCurrentEnabledOnSelection = false;
    bool startEditable = true;
    QString startAfterTyping;
    QStringList listedAfterNew;
    QString selectedAfterNew;
    whenShown("Multiline Style", [&](QWidget* window) {
        auto* list = item<QListWidget>(window, 1021);
        currentShown = item<QLabel>(window, 1022)->text();
        selectWithKeys(list, "road_7m");
        setCurrentEnabledOnSelection = kaldo::dlg::findItem(window, 1026)->isEnabled();
        gesture::doubleClick(*list->viewport(), list->visualItemRect(row(list, "road_7m")).center());
        currentAfterDoubleClick = item<QLabel>(window, 1022)->text();
        whenShown("Create New Multiline Style", [&](QWidget* names) {
            auto* start = item<QComboBox>(names, 1036);
            startEditable = start->isEditable();
            start->setFocus();
            QTest::keyClicks(start, QStringLiteral("NOPE"));
            startAfterTyping = start->currentText();
            auto* name = item<QLineEdit>(names, 1035);
            name->setFocus();
            QTest::keyClicks(name, QStringLiteral("Beta"));
            whenShown("New Multiline Style: Beta", [](QWidget* editor) { click(editor, IDOK); });
            click(names, IDOK);
        });
        click(window, 1028);
        listedAfterNew = rows(list);
        selectedAfterNew = list->currentItem()->text();
        click(window, IDCANCEL);
    });
    kdml::CKaldMlineStyleDialog byHand;
    EXPECT_EQ(byHand.DoModal(), IDCANCEL);
    EXPECT_EQ(currentShown, "wall_200mm");
    EXPECT_TRUE(setCurrentEnabledOnSelection);
    EXPECT_EQ(currentAfterDoubleClick, "road_7m");
    EXPECT_FALSE(startEditable);
    EXPECT_EQ(startAfterTyping, "road_7m") << "the manager's selection, whatever is typed";
    EXPECT_THAT(listedAfterNew, ElementsAre("Alpha", "Beta", "road_7m", "STANDARD", "wall_200mm"));
    EXPECT_EQ(selectedAfterNew, "Beta");
    EXPECT_EQ(offsetsOf(L"Beta"), offsetsOf(L"road_7m"));

    // By script: a start style typed is refused; the style made from the
    // selection and a renamed one sort in; every listed style is in the
    // drawing.
    script("CLICK 1028\nTEXT 1035 GHOST\nTEXT 1036 NOPE\nCLICK 1\nCLICK 1\n"
           "SELECT 1021 Alpha\nCLICK 1030\nTEXT 1060 zeta\nCLICK 1\nSHOW\nCLICK 2\n");
    kdml::CKaldMlineStyleDialog scripted;
    EXPECT_EQ(scripted.DoModal(), IDCANCEL);
    EXPECT_THAT(transcript, HasSubstr(L"Dialog action refused: TEXT 1036 NOPE"));
    EXPECT_THAT(transcript, HasSubstr(L"Dialog 105: New Multiline Style: GHOST\n"));
    EXPECT_THAT(transcript, HasSubstr(L"selected 5\n    0: Beta\n    1: GHOST\n    2: road_7m\n    3: STANDARD\n"
                                      L"    4: wall_200mm\n    5: zeta\n"));
    QStringList held;
    for (const std::wstring& name : styleNames())
        held << QString::fromStdWString(name);
    EXPECT_EQ(sortedCaseIgnored(held),
              QStringList({"Beta", "GHOST", "road_7m", "STANDARD", "wall_200mm", "zeta"}));

    // An editor asked to start a new style from a style the drawing lacks
    // does not open, adds nothing and ends as cancelled.
    editor.setInputSource(nullptr);
    QString opened;
    QTimer::singleShot(0, [&] {
        if (QWidget* window = QApplication::activeModalWidget()) {
            opened = window->windowTitle();
            window->close();
        }
    });
    kdml::CKaldMlineStyleNewModifyDialog phantom(&scripted);
    phantom.setNewMode(L"PHANTOM", L"NOPE");
    phantom.setDictionary(db.mlineStyleDictionaryId());
    EXPECT_EQ(phantom.DoModal(), IDCANCEL);
    QCoreApplication::processEvents();
    EXPECT_EQ(opened, "");
    EXPECT_FALSE(hasStyle(L"PHANTOM"));
}

TEST_F(StyleDialogsByHandTest, NameEditCutsAfterTheLastWholeCharacter)
{
    const QString grinning = QString::fromUcs4(U"\U0001F600");
    const QString accented = QStringLiteral("e\u0301");

    // By hand: forty emoji typed one key each, then forty accented letters
    // (a letter and a combining accent each) pasted over them.
    QString typed;
    int caretAfterTyping = -1;
    QString pasted;
    whenShown("Create New Multiline Style", [&](QWidget* window) {
        auto* name = item<QLineEdit>(window, 1035);
        name->setFocus();
        for (int i = 0; i < 40; ++i)
            QTest::sendKeyEvent(QTest::Click, name, Qt::Key_unknown, grinning, Qt::NoModifier);
        typed = name->text();
        caretAfterTyping = name->cursorPosition();
        QApplication::clipboard()->setText(accented.repeated(40));
        name->selectAll();
        QTest::keyClick(name, Qt::Key_V, Qt::ControlModifier);
        pasted = name->text();
        click(window, IDOK);
    });
    kdml::CKaldMlineStyleNewDialog byHand;
    byHand.setStartStyle(L"STANDARD");
    byHand.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(byHand.DoModal(), IDOK);
    EXPECT_EQ(typed, grinning.repeated(31));
    EXPECT_EQ(caretAfterTyping, typed.size());
    EXPECT_EQ(pasted, accented.repeated(31));
    EXPECT_EQ(byHand.newName(), accented.repeated(31).toStdWString());

    // By script: the whole text at once, cut the same way.
    script("TEXT 1035 " + grinning.repeated(40).toStdString() + "\nSHOW\nCLICK 1\n");
    kdml::CKaldMlineStyleNewDialog scripted;
    scripted.setStartStyle(L"STANDARD");
    scripted.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(scripted.DoModal(), IDOK);
    EXPECT_EQ(scripted.newName(), grinning.repeated(31).toStdWString());
    EXPECT_THAT(transcript, HasSubstr(L"1035 edit enabled \"" + grinning.repeated(31).toStdWString() + L"\""));
}

TEST_F(StyleDialogsByHandTest, TextsFromTheDrawingShowAsTypedAndLongOnesShortenedWithTheWholeAsToolTip)
{
    const std::wstring markup = L"Wall <b>A</b> &amp; more";
    const std::wstring longDescription =
        L"Outer wall of the north wing, two skins of brick with a cavity between them and insulation inside";
    addStyle(L"<i>X</i>", 0, {{0.5}, {-0.5}}, markup.c_str());
    addStyle(L"LONG", 0, {{0.5}, {-0.5}}, longDescription.c_str());
    const std::filesystem::path folder = root() / "a folder whose name is much longer than the label is wide"
                                         / "and another one" / "Support";
    std::filesystem::create_directories(folder);
    const std::filesystem::path file = folder / "KALDO.mln";
    std::ofstream(file) << "MLSTYLE\n2\n WALLS\n70\n 0\n3\n\n71\n 1\n49\n 0\n0\n";
    AfxGetApp()->WriteProfileString(L"Settings", L"MlstyleFile", file.wstring().c_str());

    bool questionChecked = false;
    QString questionText;
    QString longShown;
    QString longTip;
    QString pathShown;
    QString pathTip;
    whenShown("Multiline Style", [&](QWidget* window) {
        auto* list = item<QListWidget>(window, 1021);
        auto* description = item<kaldo::dlg::DialogLabel>(window, 1024);
        selectWithKeys(list, "<i>X</i>");
        expectShownAsTyped(description);
        whenShown("", [&](QWidget* box) {
            auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
            questionText = label->text();
            expectShownAsTyped(label);
            questionChecked = true;
            QTest::mouseClick(qobject_cast<QMessageBox*>(box)->button(QMessageBox::No), Qt::LeftButton);
        });
        click(window, 1031);

        selectWithKeys(list, "LONG");
        longShown = description->shownText();
        longTip = toolTipOf(description);

        whenShown("Load Multiline Styles", [&](QWidget* loader) {
            auto* path = item<kaldo::dlg::DialogLabel>(loader, 1057);
            pathShown = path->shownText();
            pathTip = toolTipOf(path);
            click(loader, IDCANCEL);
        });
        click(window, 1032);
        click(window, IDCANCEL);
    });
    kdml::CKaldMlineStyleDialog manager;
    EXPECT_EQ(manager.DoModal(), IDCANCEL);

    EXPECT_TRUE(questionChecked);
    EXPECT_EQ(questionText, "Delete the multiline style \"<i>X</i>\"?");
    EXPECT_TRUE(longShown.endsWith(QChar(0x2026))) << longShown.toStdString();
    EXPECT_TRUE(QString::fromStdWString(longDescription).startsWith(longShown.chopped(1)));
    EXPECT_EQ(longTip, QString::fromStdWString(longDescription));
    EXPECT_TRUE(pathShown.endsWith("/KALDO.mln")) << pathShown.toStdString();
    EXPECT_TRUE(pathShown.contains(QChar(0x2026))) << pathShown.toStdString();
    EXPECT_EQ(pathTip, QString::fromStdWString(file.wstring()));

    // Scripts read the whole texts.
    script("SELECT 1021 LONG\nSHOW\nCLICK 2\n");
    kdml::CKaldMlineStyleDialog scripted;
    scripted.DoModal();
    EXPECT_THAT(transcript, HasSubstr(L"1024 text enabled \"" + longDescription + L"\""));
}

TEST_F(StyleDialogsByHandTest, OnlyTheStyleManagerCanBeResized)
{
    const std::filesystem::path file = root() / "styles.mln";
    std::ofstream(file) << "MLSTYLE\n2\n WALLS\n70\n 0\n3\n\n71\n 1\n49\n 0\n0\n";
    AfxGetApp()->WriteProfileString(L"Settings", L"MlstyleFile", file.wstring().c_str());
    const kdml::PlacementKeys& keys = kdml::kLoadDialogPlacement;
    auto storedSize = [&] {
        auto value = [&](const wchar_t* key) { return AfxGetApp()->GetProfileInt(L"Settings", key, -10000); };
        return QSize(value(keys.right) - value(keys.left), value(keys.bottom) - value(keys.top));
    };

    // By hand: the window manager asked for a tiny window; a double click
    // confirms a style.
    QSize designed;
    QSize afterResize;
    whenShown("Load Multiline Styles", [&](QWidget* window) {
        designed = window->frameGeometry().size();
        window->resize(200, 100);
        afterResize = window->frameGeometry().size();
        auto* list = item<QListWidget>(window, 1058);
        gesture::doubleClick(*list->viewport(), list->visualItemRect(list->item(0)).center());
    });
    kdml::CKaldMlineStyleLoadDialog byHand;
    byHand.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(byHand.DoModal(), IDOK);
    EXPECT_EQ(afterResize, designed);
    EXPECT_EQ(storedSize(), designed);

    // By script: SIZE is refused; a tiny placement stored by an earlier
    // version is used for the position only.
    AfxGetApp()->WriteProfileInt(L"Settings", keys.right, AfxGetApp()->GetProfileInt(L"Settings", keys.left, 0) + 200);
    AfxGetApp()->WriteProfileInt(L"Settings", keys.bottom, AfxGetApp()->GetProfileInt(L"Settings", keys.top, 0) + 100);
    script("SIZE 200 100\nSELECT 1058 WALLS\nDBLCLICK 1058\n");
    kdml::CKaldMlineStyleLoadDialog scripted;
    scripted.setDictionary(db.mlineStyleDictionaryId());
    ASSERT_EQ(scripted.DoModal(), IDOK);
    EXPECT_THAT(transcript, HasSubstr(L"Dialog action refused: SIZE 200 100 (the dialog cannot be resized)"));
    EXPECT_EQ(storedSize(), designed);

    // The name dialogs and the editor keep their size; the manager grows.
    for (const int id : {kdml::CKaldMlineStyleNewDialog::kTemplateId, kdml::CKaldMlineStyleRenameDialog::kTemplateId}) {
        script("SIZE 700 700\nCLICK 2\n");
        if (id == kdml::CKaldMlineStyleNewDialog::kTemplateId) {
            kdml::CKaldMlineStyleNewDialog names;
            names.setDictionary(db.mlineStyleDictionaryId());
            names.DoModal();
        } else {
            kdml::CKaldMlineStyleRenameDialog names;
            names.setDictionary(db.mlineStyleDictionaryId());
            names.DoModal();
        }
        EXPECT_THAT(transcript, HasSubstr(L"Dialog action refused: SIZE 700 700")) << id;
    }
    kdml::CKaldMlineStyleDialog manager;
    script("SIZE 700 500\nCLICK 1029\nSIZE 700 700\nCLICK 2\nCLICK 1\n");
    manager.DoModal();
    EXPECT_EQ(transcript.find(L"refused: SIZE 700 500"), std::wstring::npos) << transcript;
    EXPECT_THAT(transcript, HasSubstr(L"Dialog action refused: SIZE 700 700"));
    EXPECT_EQ(AfxGetApp()->GetProfileInt(L"Settings", L"MlstylePosRight", 0)
                  - AfxGetApp()->GetProfileInt(L"Settings", L"MlstylePosLeft", 0),
              700);
}
