#include "kaldo/dlg/ModalLoop.h"

#include "kaldo/dlg/ScriptActions.h"
#include "kaldo/ed/Editor.h"

#include <QDialog>
#include <QTimer>

#include <optional>

namespace kaldo::dlg {

namespace {

// Feeds the script's lines to the window, one each time its loop waits.
class ScriptFeed {
public:
    ScriptFeed(ModalSubject& subject, Editor& editor) : subject_(subject), editor_(editor) {}

    void scheduleNext()
    {
        QTimer::singleShot(0, subject_.window, [this] { step(); });
    }

private:
    void step()
    {
        if (!subject_.window->isVisible())
            return;
        const InputEvent event = editor_.nextDialogInput();
        switch (event.kind) {
        case InputEvent::Kind::Text: performScriptAction(event.text, subject_, editor_); break;
        case InputEvent::Kind::Enter: performScriptAction(L"CLICK 1", subject_, editor_); break;
        default: subject_.escape(); break;
        }
        if (subject_.window->isVisible())
            scheduleNext();
    }

    ModalSubject& subject_;
    Editor& editor_;
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
    }
    if (subject.result)
        result = subject.result(result);
    if (script)
        script->write(L"\n" + subject.closedPrefix + resultName(result) + L"\n");
    return result;
}

}  // namespace kaldo::dlg
