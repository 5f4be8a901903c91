// The style manager's Load dialog: lists the styles of a .mln file (the
// Support folder's KALDO.mln, or the file chosen last), lets the user choose
// another file, and copies the confirmed style into the drawing. A style
// name that a multiline of the drawing uses is refused with a message and
// the dialog stays open. Enter and Space cancel: only OK and a double click
// confirm a style.
#pragma once

#include "kxdbid.h"
#include "kxuictrl.h"
#include "kxuidialog.h"

#include <string>

namespace kdml {

class CKaldMlineStyleLoadDialog : public CDialog {
public:
    static constexpr unsigned kTemplateId = 108;

    explicit CKaldMlineStyleLoadDialog(CWnd* parent = nullptr);

    void setDictionary(KxDbObjectId id) { m_dictionaryId = id; }
    // After OK: the loaded style's name and id.
    const std::wstring& styleName() const { return m_name; }
    KxDbObjectId styleId() const { return m_styleId; }
    const std::wstring& path() const { return m_path; }

    // Lists the styles of the file at path; a file that cannot be opened
    // changes nothing.
    void listFileStyles(const std::wstring& path);

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* dx) override;
    bool OnCommand(int id, int code) override;
    void OnOK() override;
    bool PreTranslateMessage(MSG* msg) override;

private:
    void browse();

    KxDbObjectId m_styleId;
    CListBox m_list;
    std::wstring m_name;
    std::wstring m_path;
    KxDbObjectId m_dictionaryId;
};

}  // namespace kdml
