// Message boxes: the product's name as caption, the application icon and
// buttons that carry the usual item ids, so that scripts answer them like
// any dialog.
#include "kaldo/dlg/ModalLoop.h"
#include "kaldo/util/GuiThread.h"
#include "kxhost.h"
#include "kxuimsgbox.h"
#include "kxuiwnd.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <vector>

namespace {

struct BoxButton {
    int id;
    QMessageBox::StandardButton standard;
};

std::vector<BoxButton> buttonsOf(unsigned type)
{
    switch (type & 0xF) {
    case MB_OKCANCEL: return {{IDOK, QMessageBox::Ok}, {IDCANCEL, QMessageBox::Cancel}};
    case MB_YESNOCANCEL:
        return {{IDYES, QMessageBox::Yes}, {IDNO, QMessageBox::No}, {IDCANCEL, QMessageBox::Cancel}};
    case MB_YESNO: return {{IDYES, QMessageBox::Yes}, {IDNO, QMessageBox::No}};
    default: return {{IDOK, QMessageBox::Ok}};
    }
}

QMessageBox::Icon iconOf(unsigned type)
{
    switch (type & 0xF0) {
    case MB_ICONSTOP: return QMessageBox::Critical;
    case MB_ICONQUESTION: return QMessageBox::Question;
    case MB_ICONEXCLAMATION: return QMessageBox::Warning;
    case MB_ICONINFORMATION: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
    }
}

// Escape answers Cancel, else No, else OK.
int escapeId(const std::vector<BoxButton>& buttons)
{
    for (int id : {IDCANCEL, IDNO}) {
        for (const BoxButton& button : buttons) {
            if (button.id == id)
                return id;
        }
    }
    return IDOK;
}

int runMessageBox(const std::wstring& text, unsigned type)
{
    QMessageBox box(QApplication::activeModalWidget());
    box.setWindowTitle(QString::fromWCharArray(GetOemProductName()));
    box.setWindowIcon(GetOemAppIcon());
    box.setIcon(iconOf(type));
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdWString(text));
    const std::vector<BoxButton> buttons = buttonsOf(type);
    const int escape = escapeId(buttons);
    for (const BoxButton& b : buttons) {
        QPushButton* button = box.addButton(b.standard);
        button->setProperty("itemId", b.id);
        if (b.id == escape)
            box.setEscapeButton(button);
    }
    kaldo::dlg::ModalSubject subject;
    subject.window = &box;
    subject.title = L"Message: " + text;
    subject.closedPrefix = L"Message closed: ";
    subject.escape = [&box] { box.escapeButton()->click(); };
    subject.result = [&box, escape](int) {
        const QAbstractButton* clicked = box.clickedButton();
        return clicked ? clicked->property("itemId").toInt() : escape;
    };
    return kaldo::dlg::runModalLoop(subject);
}

}  // namespace

int AfxMessageBox(const wchar_t* text, unsigned type)
{
    const std::vector<BoxButton> buttons = buttonsOf(type);
    int result = escapeId(buttons);
    // Without the application of a program with a user interface the box
    // cannot show: it answers as Escape would.
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        kaldo::runOnGuiThread([&] { result = runMessageBox(text ? text : L"", type); });
    return result;
}
