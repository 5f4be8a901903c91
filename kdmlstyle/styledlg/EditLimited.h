// An edit control that never holds more than a set number of characters:
// a longer text (typed or pasted) is cut after the maximum, the caret put
// at its end. Characters are counted as the caret steps over them, so a
// cut never splits one. The cut is the control's own; its owner hears only
// of the change the user made, with the text already cut.
#pragma once

#include "kxuictrl.h"

namespace kdml {

class CEditLimited : public CEdit {
public:
    // The most characters the control keeps; 8 until set.
    void setMaxChars(int count) { m_maxChars = count; }
    int maxChars() const { return m_maxChars; }

    // Runs on every change notice of the control, before its owner acts on
    // it: cuts the text when it is too long. False for the notice of the
    // control's own put-back, which the owner does not handle.
    bool onTextChanged();

private:
    int m_maxChars = 8;
    bool m_notify = true;
};

}  // namespace kdml
