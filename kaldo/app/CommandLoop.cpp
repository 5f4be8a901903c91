#include "kaldo/app/CommandLoop.h"

#include "kaldo/app/Session.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/db/StretchPreview.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kaldo/rx/Runtime.h"
#include "kaldo/util/CrashRecorder.h"
#include "kxcrash.h"
#include "kxdb.h"
#include "kxstring.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace kaldo {

namespace {

void reportFailure(Session& session, const std::wstring& name, const std::wstring& what)
{
    session.editor().write(L"\nCommand " + name + L" failed: " + what + L"\n");
}

// Runs a handler; whatever it throws ends the command, not the session.
void runGuarded(Session& session, const std::wstring& name, KxRxFunctionPtr handler)
{
    CrashRecorder& recorder = session.crashRecorder();
    try {
        handler();
    } catch (const KdExceptionWithMsg& e) {
        recorder.receiveError(e);
        reportFailure(session, name, e.message());
    } catch (const KdErrorStatus& e) {
        recorder.receiveError(e);
        reportFailure(session, name, L"error status " + std::to_wstring(e.status()));
    } catch (const std::exception& e) {
        recorder.report("Command " + kxutToMultiByte(name) + " threw: " + e.what());
        reportFailure(session, name, kxutFromMultiByte(e.what()));
    } catch (...) {
        recorder.report("Command " + kxutToMultiByte(name) + " threw an unknown exception");
        reportFailure(session, name, L"unknown exception");
    }
}

// One command is one step of the drawing's undo history. The step ends on
// the working drawing of the command's end: when the command opened
// another drawing, that one has no step open and the old history is gone.
class UndoStep {
public:
    UndoStep(Session& session, const std::wstring& name) : m_session(session)
    {
        m_session.database().undoHistory().beginStep(name);
    }
    ~UndoStep() { m_session.database().undoHistory().endStep(); }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

private:
    Session& m_session;
};

}  // namespace

bool runCommand(Session& session, const std::wstring& name)
{
    if (const KxEdCommand* found = session.findCommand(name)) {
        const KxEdCommand command = *found;
        const UndoStep step(session, command.globalName);
        session.editor().setRunningCommand(command.globalName);
        runGuarded(session, command.globalName, command.handler);
        session.editor().setRunningCommand({});
        return true;
    }
    if (session.editor().variables().exists(name)) {
        const UndoStep step(session, toUpper(name));
        promptForVariable(name);
        return true;
    }
    return false;
}

void runGripDrag(Session& session, const KxDbObjectId& entity, int index, const KxGePoint3d& grip)
{
    std::optional<StretchPreview> preview;
    if (const KxDbObjectPtr<KxDbEntity> opened(entity, KxDb::kForRead); opened)
        preview.emplace(*opened, std::vector<int>{index});
    if (!preview)
        return;
    Editor& editor = session.editor();
    const std::wstring_view prompt = L"\n** STRETCH **\nSpecify stretch point: ";
    bool writePrompt = true;
    while (true) {
        const Editor::DragInput input = editor.readDragInput(prompt, writePrompt, L"", false, &grip);
        writePrompt = false;
        if (input.kind == Editor::DragInput::Kind::Motion) {
            const KxDbEntity* shown = &preview->changedAt(input.world - grip);
            editor.dragged(std::span(&shown, 1));
            continue;
        }
        if (input.kind != Editor::DragInput::Kind::Point)
            return;
        const UndoStep step(session, L"GRIP_STRETCH");
        const std::array indices{index};
        KxDbObjectPtr<KxDbEntity> opened(entity, KxDb::kForWrite);
        if (!opened || opened->moveStretchPointsAt(indices, input.world - grip) != Kald::eOk)
            editor.write(L"\nThe point cannot be moved there.\n");
        return;
    }
}

void runCommandLoop(Session& session)
{
    Editor& editor = session.editor();
    std::wstring last;
    while (!session.quitRequested()) {
        std::wstring name;
        const int result = editor.getCommand(name);
        if (result == Editor::kEndOfInput)
            break;
        if (result == RTNONE)
            name = last;
        else if (result != RTNORM)
            continue;
        // An apostrophe asks for a transparent run, which the prompt gives anyway.
        if (name.starts_with(L'\''))
            name.erase(0, 1);
        if (name.empty())
            continue;
        if (runCommand(session, name)) {
            // A selection made before the command was for it alone.
            editor.setImpliedSelection({});
            last = name;
        } else {
            editor.write(L"\nUnknown command \"" + toUpper(name) + L"\". Type COMMANDS to list the commands.\n");
        }
    }
}

}  // namespace kaldo
