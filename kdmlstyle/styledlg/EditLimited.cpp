#include "styledlg/EditLimited.h"

#include <string>

namespace kdml {

void CEditLimited::OnAttached()
{
    CEdit::OnAttached();
    SetLimitText(m_maxChars);
}

bool CEditLimited::onTextChanged()
{
    if (!m_notify)
        return false;
    // A wide character is a whole code point here: one step per character.
    const std::wstring text = GetWindowText();
    if (text.size() > std::size_t(m_maxChars)) {
        m_notify = false;
        SetWindowText(text.substr(0, std::size_t(m_maxChars)));
        SetSel(m_maxChars, m_maxChars);
        m_notify = true;
    }
    return true;
}

}  // namespace kdml
