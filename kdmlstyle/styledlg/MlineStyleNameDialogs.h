// The two small dialogs of the style manager that ask for a style name: the
// new style's name and the style it starts from, and a new name for the
// selected style. Both keep OK disabled while the name breaks the naming
// rules; neither changes the drawing.
#pragma once

#include "styledlg/EditLimited.h"
#include "ui/DialogPlacement.h"

#include "kxdbid.h"
#include "kxuictrl.h"
#include "kxuidialog.h"

#include <string>

namespace kdml {

// What both name dialogs share: the limited name edit, the combo box of the
// existing names (filled from the style dictionary, the names the rules
// compare with), OK following the rules on each change of the name, and the
// placement restored on opening and stored on OK.
class CKaldMlineStyleNameDialog : public CDialog {
public:
    void setDictionary(KxDbObjectId id) { m_dictionaryId = id; }
    const std::wstring& newName() const { return m_newName; }

protected:
    CKaldMlineStyleNameDialog(unsigned templateId, int nameItem, int stylesItem, const PlacementKeys& placement,
                              CWnd* parent);

    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;
    bool OnCommand(int id, int code) override;
    void OnOK() override;

    CComboBox m_styles;

private:
    int m_nameItem;
    int m_stylesItem;
    PlacementKeys m_placement;
    CEditLimited m_nameEdit;
    std::wstring m_newName;
    KxDbObjectId m_dictionaryId;
};

class CKaldMlineStyleNewDialog : public CKaldMlineStyleNameDialog {
public:
    static constexpr unsigned kTemplateId = 107;

    explicit CKaldMlineStyleNewDialog(CWnd* parent = nullptr);

    void setStartStyle(const std::wstring& name) { m_startStyle = name; }
    const std::wstring& startStyle() const { return m_startStyle; }

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;

private:
    std::wstring m_startStyle;
};

class CKaldMlineStyleRenameDialog : public CKaldMlineStyleNameDialog {
public:
    static constexpr unsigned kTemplateId = 109;

    explicit CKaldMlineStyleRenameDialog(CWnd* parent = nullptr);

    void setCurrentName(const std::wstring& name) { m_currentName = name; }

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;

private:
    std::wstring m_currentName;
};

}  // namespace kdml
