#include "styledlg/EditLimited.h"

#include <QString>
#include <QTextBoundaryFinder>

namespace kdml {

namespace {

// The length, in the string's code units, of its first count characters.
qsizetype characterPrefixLength(const QString& text, int count)
{
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    for (int i = 0; i < count; ++i) {
        if (characters.toNextBoundary() < 0)
            return text.size();
    }
    return characters.position();
}

}  // namespace

bool CEditLimited::onTextChanged()
{
    if (!m_notify)
        return false;
    // Characters as the caret steps over them: a character made of several
    // code units or code points is kept or cut whole.
    const QString text = QString::fromStdWString(GetWindowText());
    const qsizetype kept = characterPrefixLength(text, m_maxChars);
    if (kept < text.size()) {
        m_notify = false;
        const std::wstring cut = text.left(kept).toStdWString();
        SetWindowText(cut);
        SetSel(int(cut.size()), int(cut.size()));
        m_notify = true;
    }
    return true;
}

}  // namespace kdml
