// The style manager that MLSTYLE shows: the drawing's multiline styles, the
// current one, the selected one's description and a drawn preview, and the
// actions Set Current, New, Modify, Rename, Delete, Load and Save. Every
// action changes the drawing at once; closing the dialog changes nothing
// more.
#pragma once

#include "styledlg/StyleDictionary.h"
#include "styledlg/StylePreviewData.h"
#include "styledlg/StylePreviewPicture.h"
#include "ui/DlgItemResizer.h"

#include "kxuictrl.h"
#include "kxuidialog.h"

#include <string>

namespace kdml {

class CKaldMlineStyleDialog : public CDialog {
public:
    static constexpr unsigned kTemplateId = 101;

    CKaldMlineStyleDialog();

    // The record the preview draws: the new/modify dialog rewrites it while
    // the user edits and then calls invalidatePreview.
    StylePreviewData& previewRecord() { return m_record; }
    void invalidatePreview() { m_preview.invalidatePreview(); }
    const CMlStylePreviewPicture& preview() const { return m_preview; }

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;
    bool OnCommand(int id, int code) override;
    void OnSize(int type, int cx, int cy) override;
    void OnSizing(int edge, CRect* rect) override;
    void OnOK() override;

private:
    // What the rules let the user do with a style: the buttons follow it,
    // and each action checks it again for the style it acts on when it is
    // clicked.
    struct Allowed {
        bool setCurrent = false;
        bool remove = false;  // STANDARD's Delete is refused when clicked
        bool rename = false;
        bool modify = false;
    };
    Allowed allowedFor(const std::wstring& name) const;

    std::wstring selectedName() const;
    void enableItem(int id, bool enable);
    // Selects the first entry that begins with name, case ignored.
    void selectStartingWith(const std::wstring& name);
    void refresh();
    void refreshPreview();
    void showStyle(KxDbObjectId styleId, bool withDescription);
    void setCurrent(bool fromButton);
    void createStyle();
    void modifyStyle();
    void renameStyle();
    void deleteStyle();
    void loadStyle();

    CListBox m_list;
    StylePreviewData m_record;
    CMlStylePreviewPicture m_preview;
    CDlgItemResizer m_resizer;
    std::wstring m_currentName;
    StyleDictionary m_dictionary;
};

}  // namespace kdml
