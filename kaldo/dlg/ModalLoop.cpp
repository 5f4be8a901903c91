#include "kaldo/dlg/ModalLoop.h"

#include "kaldo/dlg/ScriptActions.h"
#include "kaldo/ed/Editor.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>

#include <optional>

namespace kaldo::dlg {

namespace {

// How long a line waits for its window to become active, and how often it
// looks.
constexpr int kActivationWaitMs = 2000;
constexpr int kActivationLookMs = 2;

// Feeds the script's lines to the window, one each time its loop waits.
// A line waits until the window is active, as a person's hand does: the
// platform activates a window a moment after it shows (and the dialog
// under a closed one again), and until then no focus moves, so that the
// focus-lost handling of the actions would not run. A platform that never
// activates it gets the line after a while all the same.
class ScriptFeed {
public:
    ScriptFeed(ModalSubject& subject, Editor& editor) : subject_(subject), editor_(editor) {}

    void scheduleNext()
    {
        waiting_.start();
        QTimer::singleShot(0, subject_.window, [this] { step(); });
    }

private:
    void step()
    {
        if (!subject_.window->isVisible())
            return;
        if (!subject_.window->isActiveWindow() && waiting_.elapsed() < kActivationWaitMs) {
            QTimer::singleShot(kActivationLookMs, subject_.window, [this] { step(); });
            return;
        }
        const InputEvent event = editor_.nextDialogInput();
        switch (event.kind) {
        case InputEvent::Kind::Text: performScriptAction(event.text, subject_, editor_); break;
        case InputEvent::Kind::Enter: pressEnter(subject_); break;
        default: subject_.escape(); break;
        }
        if (subject_.window->isVisible())
            scheduleNext();
    }

    ModalSubject& subject_;
    Editor& editor_;
    QElapsedTimer waiting_;
};

}  // namespace

std::wstring resultName(int result)
{
    switch (result) {
    case 1: return L"OK";
    case 2: return L"Cancel";
    case 6: return L"Yes";
    case 7: return L"No";
    default: return std::to_wstring(result);
    }
}

int runModalLoop(ModalSubject& subject)
{
    // The opening and closing lines tell a script's reader what its lines
    // acted on; a person sees the dialog itself.
    Editor* editor = currentEditor();
    Editor* script = editor && editor->scriptFeedsInput() ? editor : nullptr;
    if (script)
        script->write(L"\n" + subject.title + L"\n");
    int result = subject.window->result();
    if (!subject.ended) {
        std::optional<ScriptFeed> feed;
        if (script)
            feed.emplace(subject, *script).scheduleNext();
        result = subject.window->exec();
        // The window a closed one was opened over becomes active again, as
        // window managers make it (a platform without one would leave none).
        if (QWidget* under = subject.window->parentWidget(); under && under->isVisible())
            under->activateWindow();
    }
    if (subject.result)
        result = subject.result(result);
    if (script)
        script->write(L"\n" + subject.closedPrefix + resultName(result) + L"\n");
    return result;
}

}  // namespace kaldo::dlg
