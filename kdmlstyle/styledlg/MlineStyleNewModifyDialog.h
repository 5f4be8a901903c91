// Edits one multiline style: description, elements (offset, colour,
// linetype), caps and cap angles, fill and joints. Every edit goes into a
// working copy outside the drawing and from there into the style manager's
// preview at once; the drawing's style is written only on OK. In new mode
// the new style is added to the drawing when the dialog opens and removed
// again on Cancel.
#pragma once

#include "ui/SortListCtrl.h"

#include "kxdbid.h"
#include "kxuibutton.h"
#include "kxuicolorcombo.h"
#include "kxuictrl.h"
#include "kxuidialog.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class KxCmColor;
class KxDbMlineStyle;

namespace kdml {

class CKaldMlineStyleDialog;

class CKaldMlineStyleNewModifyDialog : public CDialog {
public:
    static constexpr unsigned kTemplateId = 105;
    // The most elements a style takes from the list.
    static constexpr int kMaxElements = 2049;

    // manager: the style manager whose preview follows the edits.
    explicit CKaldMlineStyleNewModifyDialog(CKaldMlineStyleDialog* manager);
    ~CKaldMlineStyleNewModifyDialog() override;

    void setNewMode(const std::wstring& newName, const std::wstring& startStyle);
    void setModifyMode(const std::wstring& styleName);
    void setDictionary(KxDbObjectId id) { m_dictionaryId = id; }

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;
    bool OnCommand(int id, int code) override;
    bool OnNotify(int id, int code, int index) override;
    void OnOK() override;
    void OnCancel() override;
    void OnDestroy() override;

private:
    void fillControls(KxDbObjectId styleId);
    // Adds the new style, a copy of the start style; false when there is
    // no start style or the dictionary refuses the name.
    bool addStyleToDictionary(KxDbObjectId startId);
    void fillElementRows(const KxDbMlineStyle& style);
    int addRow(const std::wstring& offset, const KxCmColor& color, const std::wstring& linetype);
    void showRow();
    void enableElementControls(bool enable);
    int checkedFlags() const;
    void onFlagsClicked();
    void onOffsetChanged();
    void onAnglesLeft();
    void onElementColor();
    void onElementLinetype();
    void addElement();
    void deleteElement();
    // The list's rows into style's elements.
    void pushRows(KxDbMlineStyle* style);
    // The working copy into the manager's preview.
    void pushPreview();

    CKaldMlineStyleDialog* m_manager;
    bool m_modify = false;
    std::wstring m_newName;
    std::wstring m_styleName;
    KxDbObjectId m_dictionaryId;
    KxDbObjectId m_styleId;
    std::unique_ptr<KxDbMlineStyle> m_working;
    std::wstring m_description;
    std::wstring m_startAngleText;
    std::wstring m_endAngleText;

    CSortListCtrl m_elements;
    CKxUiTrueColorComboBox m_fillColor;
    CKxUiTrueColorComboBox m_elementColor;
    CKxUiLineTypeComboBox m_linetype;
    CEdit m_offset;
    std::array<CButton, 8> m_flagBoxes;  // fill, joints, then the caps
    std::vector<std::unique_ptr<KxCmColor>> m_rowColors;  // the rows' user pointers
};

// Whether text is a number the dialog accepts: digits, at most one full
// stop, and a minus sign only as the first character; not empty; its value
// finite.
bool isValidNumberText(const std::wstring& text);

}  // namespace kdml
