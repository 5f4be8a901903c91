// The modal run of dialogs and message boxes under a script: errors thrown
// inside a dialog reach the crash recorder and the host goes on, nested
// boxes take the lines while they are top-most, the end of the script
// closes every open dialog innermost first, and a file choice inside a
// dialog takes the next line as typed.
#include "DialogFixture.h"
#include "FileText.h"

#include "kxcrash.h"
#include "kxed.h"
#include "kxstring.h"
#include "kxuidialog.h"
#include "kxuimsgbox.h"

#include <gmock/gmock.h>


using ::testing::HasSubstr;

namespace {

// The MLEDIT template with handlers of the test's own: 5759 throws, 5760
// asks a Yes/No question, 5761 asks for a file.
class ProbeDialog : public CDialog {
public:
    ProbeDialog() : CDialog(5758) {}

    int answer = 0;
    std::wstring file;
    int fileResult = 1;

protected:
    bool OnCommand(int id, int code) override
    {
        if (code == BN_CLICKED && id == 5759)
            throw KdExceptionWithMsg(L"the handler broke", "ProbeDialog.cpp", 7);
        if (code == BN_CLICKED && id == 5760) {
            answer = AfxMessageBox(L"Go on?", MB_YESNO | MB_ICONQUESTION);
            return true;
        }
        if (code == BN_CLICKED && id == 5761) {
            wchar_t* name = nullptr;
            fileResult = getFileNameByFileDialog(L"Open", nullptr, L"mln", 0, name, nullptr, nullptr, nullptr);
            if (name)
                file = name;
            kxutDelBuffer(name);
            return true;
        }
        return CDialog::OnCommand(id, code);
    }
};

// Ends itself while it initialises, as a dialog with nothing to show does.
class EndingDialog : public CDialog {
public:
    EndingDialog() : CDialog(5758) {}

protected:
    bool OnInitDialog() override
    {
        CDialog::OnInitDialog();
        EndDialog(7);
        return true;
    }
};

class ModalRunTest : public DialogFixture {};

}  // namespace

TEST_F(ModalRunTest, ErrorInsideADialogReachesTheRecorderAndTheHostGoesOn)
{
    script("CLICK 5759\nCLICK 1\n");
    ProbeDialog broken;
    int result = 0;
    EXPECT_TRUE(recorder.runModal(&broken, &result));
    EXPECT_EQ(result, IDCANCEL);
    EXPECT_EQ(broken.GetSafeHwnd(), nullptr) << "the window is gone";
    EXPECT_THAT(fileText(recorder.latestReport() / "report.txt"), HasSubstr("the handler broke at ProbeDialog.cpp:7"));
    EXPECT_THAT(kxutToMultiByte(transcript), HasSubstr("Dialog 5758 closed: Cancel\n"));

    // The next line goes to the next dialog.
    ProbeDialog next;
    EXPECT_TRUE(recorder.runModal(&next, &result));
    EXPECT_EQ(result, IDOK);

    // A dialog that ends while it initialises reads no line.
    script("CLICK 1\n");
    EndingDialog ending;
    EXPECT_EQ(ending.DoModal(), 7);
    EXPECT_EQ(editor.nextDialogInput().text, L"CLICK 1");

    // A template the resource library does not hold: nothing runs.
    CDialog missing(9999);
    EXPECT_EQ(missing.DoModal(), -1);

    // Without the recorder's guard the error reaches the caller.
    script("CLICK 5759\n");
    ProbeDialog unguarded;
    EXPECT_THROW(recorder.runModalFallback(&unguarded), KdExceptionWithMsg);
    EXPECT_EQ(unguarded.GetSafeHwnd(), nullptr);
}

TEST_F(ModalRunTest, NestedBoxesEndOfScriptAndFileChoices)
{
    // The box opened by a click takes the lines while it is open.
    script("CLICK 5760\nSHOW\nCLICK 2\nCLICK 6\nCLICK 1\n");
    ProbeDialog asking;
    EXPECT_EQ(asking.DoModal(), IDOK);
    EXPECT_EQ(asking.answer, IDYES);
    EXPECT_EQ(kxutToMultiByte(transcript), "Dialog 5758: Multiline Edit Tools\n"
                                           "Message: Go on?\n"
                                           "Message: Go on?\n"
                                           "  6 button enabled \"&Yes\"\n"
                                           "  7 button enabled \"&No\"\n"
                                           "Dialog action refused: CLICK 2 (no item 2 in this dialog)\n"
                                           "Message closed: Yes\n"
                                           "Dialog 5758 closed: OK\n");

    // The script ends with both open: the box closes as by No, then the
    // dialog as by Cancel.
    script("CLICK 5760\n");
    ProbeDialog ended;
    EXPECT_EQ(ended.DoModal(), IDCANCEL);
    EXPECT_EQ(ended.answer, IDNO);
    EXPECT_EQ(kxutToMultiByte(transcript), "Dialog 5758: Multiline Edit Tools\nMessage: Go on?\n"
                                           "Message closed: No\nDialog 5758 closed: Cancel\n");

    // Escape answers Cancel where the box has it, OK where it has only OK.
    script("^C\n\n");
    EXPECT_EQ(AfxMessageBox(L"Save?", MB_OKCANCEL), IDCANCEL);
    EXPECT_EQ(AfxMessageBox(L"Done."), IDOK);

    // A file choice inside a dialog: the next line as typed; an empty line
    // chooses nothing.
    script("CLICK 5761\nsome folder/Styles.MLN\nCLICK 5761\n\nCLICK 2\n");
    ProbeDialog choosing;
    EXPECT_EQ(choosing.DoModal(), IDCANCEL);
    EXPECT_EQ(choosing.fileResult, RTCAN);
    script("CLICK 5761\nsome folder/Styles.MLN\nCLICK 2\n");
    ProbeDialog chosen;
    chosen.DoModal();
    EXPECT_EQ(chosen.fileResult, 0);
    EXPECT_EQ(chosen.file, L"some folder/Styles.MLN");
}
