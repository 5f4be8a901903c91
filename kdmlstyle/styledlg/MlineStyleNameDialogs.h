// The two small dialogs of the style manager that ask for a style name: the
// new style's name and the style it starts from, and a new name for the
// selected style. Both keep OK disabled while the name breaks the naming
// rules; neither changes the drawing.
#pragma once

#include "styledlg/EditLimited.h"

#include "kxdbid.h"
#include "kxuictrl.h"
#include "kxuidialog.h"

#include <string>

namespace kdml {

class CKaldMlineStyleNewDialog : public CDialog {
public:
    static constexpr unsigned kTemplateId = 107;

    explicit CKaldMlineStyleNewDialog(CWnd* parent = nullptr);

    void setStartStyle(const std::wstring& name) { m_startStyle = name; }
    void setDictionary(KxDbObjectId id) { m_dictionaryId = id; }
    const std::wstring& newName() const { return m_newName; }
    const std::wstring& startStyle() const { return m_startStyle; }

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;
    bool OnCommand(int id, int code) override;
    void OnOK() override;

private:
    CEditLimited m_nameEdit;
    CComboBox m_styles;
    std::wstring m_newName;
    std::wstring m_startStyle;
    KxDbObjectId m_dictionaryId;
};

class CKaldMlineStyleRenameDialog : public CDialog {
public:
    static constexpr unsigned kTemplateId = 109;

    explicit CKaldMlineStyleRenameDialog(CWnd* parent = nullptr);

    void setCurrentName(const std::wstring& name) { m_currentName = name; }
    void setDictionary(KxDbObjectId id) { m_dictionaryId = id; }
    const std::wstring& newName() const { return m_newName; }

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;
    bool OnCommand(int id, int code) override;
    void OnOK() override;

private:
    CEditLimited m_nameEdit;
    CComboBox m_styles;
    std::wstring m_currentName;
    std::wstring m_newName;
    KxDbObjectId m_dictionaryId;
};

}  // namespace kdml
