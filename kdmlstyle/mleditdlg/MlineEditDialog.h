// The MLEDIT tool dialog: twelve image buttons, one per multiline editing
// tool, and a plain button that chooses none. One click chooses and closes
// the dialog; the tool runs after the dialog is gone.
#pragma once

#include "mleditdlg/NewBitMapButton.h"

#include "kxuibutton.h"
#include "kxuidialog.h"

#include <array>

namespace kdml {

class CKaldMlineEditDialog : public CDialog {
public:
    static constexpr unsigned kTemplateId = 5758;

    // Loads every button's images from the current resource library.
    CKaldMlineEditDialog();

    // The tool of the button clicked last (1 to 12, 13 for the plain
    // button), 0 when the dialog closed another way.
    int selectedTool() const { return m_selectedTool; }

    // The button control of tool 1 to 12.
    static int toolControlId(int tool);

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;
    bool OnCommand(int id, int code) override;

private:
    int m_selectedTool = 0;
    std::array<CNewBitMapButton, 12> m_toolButtons;
    CButton m_plainButton;
};

}  // namespace kdml
