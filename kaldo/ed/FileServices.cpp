// Finding files and asking the user for a file name.
#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/FileDialog.h"
#include "kaldo/ed/Text.h"
#include "kaldo/util/GuiThread.h"
#include "kxed.h"
#include "kxstring.h"

#include <QApplication>
#include <QString>
#include <QWidget>

#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> findFile(const fs::path& name)
{
    std::error_code error;
    if (name.is_absolute())
        return fs::is_regular_file(name, error) ? std::optional(name) : std::nullopt;
    const kaldo::HostState& state = kaldo::host();
    for (const fs::path& folder : {state.supportDir, state.drawingDir, fs::current_path(error)}) {
        if (folder.empty())
            continue;
        const fs::path candidate = folder / name;
        if (fs::is_regular_file(candidate, error))
            return fs::absolute(candidate, error);
    }
    return std::nullopt;
}

// The name as the user gave it, with ".extension" added unless flag 0x4
// asks to keep it as typed or it has an extension already.
std::wstring withExtension(std::wstring name, const wchar_t* extension, int flags)
{
    // A folder gets no extension: whoever uses the name says it is a folder.
    std::error_code ec;
    const fs::path path(name);
    if (!(flags & 0x4) && extension && *extension && path.extension().empty() && path.has_filename()
        && !fs::is_directory(path, ec))
        name += L"." + std::wstring(extension);
    return name;
}

// "Enter file name or [Exploded] <default>: ", the keywords those that
// kxedInitGet set for this prompt.
std::wstring filePrompt(const std::wstring& fallback, const std::vector<kaldo::Keyword>& keywords)
{
    std::wstring prompt = L"\nEnter file name";
    std::wstring listed;
    for (const kaldo::Keyword& keyword : keywords)
        if (!keyword.local.empty())
            listed += (listed.empty() ? L"" : L"/") + keyword.local;
    if (!listed.empty())
        prompt += L" or [" + listed + L"]";
    if (!fallback.empty())
        prompt += L" <" + fallback + L">";
    return prompt + L": ";
}

int chooseOnCommandLine(kaldo::Editor& editor, const wchar_t* defaultName, const wchar_t* extension, int flags,
                        std::wstring& chosen)
{
    const std::wstring fallback = defaultName ? defaultName : L"";
    std::wstring typed;
    const int result = editor.getString(true, filePrompt(fallback, editor.pendingKeywords()), typed);
    if (result == RTKWORD)
        return RTKWORD;
    if (result == RTNONE && !fallback.empty())
        typed = fallback;
    else if (result != RTNORM)
        return RTCAN;
    const std::wstring name = withExtension(std::wstring(kaldo::trimmed(typed)), extension, flags);
    if (flags & 0x1) {
        chosen = name;
        return 0;
    }
    const auto found = findFile(name);
    if (!found) {
        editor.write(L"\nCannot find the file \"" + name + L"\".\n");
        return RTERROR;
    }
    chosen = found->wstring();
    return 0;
}

// A script answering a file choice of an open dialog: the next line is the
// path as typed; an empty line, cancel or the end of input choose nothing.
int chooseFromScriptLine(kaldo::Editor& editor, std::wstring& chosen)
{
    const kaldo::InputEvent event = editor.nextDialogInput();
    if (event.kind != kaldo::InputEvent::Kind::Text || event.text.empty())
        return RTCAN;
    chosen = event.text;
    return 0;
}

int chooseInDialog(const wchar_t* title, const wchar_t* defaultName, const wchar_t* extension, int flags,
                   const wchar_t* filter, int* fileType, std::wstring& chosen)
{
    kaldo::FileDialogRequest request;
    request.title = QString::fromWCharArray(title ? title : L"");
    request.start = QString::fromWCharArray(defaultName ? defaultName : L"");
    request.extension = QString::fromWCharArray(extension ? extension : L"");
    request.forWriting = flags & 0x1;
    request.asTyped = flags & 0x4;
    request.fileTypes = QString::fromWCharArray(filter ? filter : L"");
    request.fileType = fileType ? *fileType : 0;
    std::optional<kaldo::FileDialogChoice> choice;
    kaldo::runOnGuiThread([&] {
        QWidget* owner = QApplication::activeModalWidget();
        choice = kaldo::chooseFileInDialog(owner, request);
        // The dialog it opened over becomes active again, as window
        // managers make it (a platform without one would leave none).
        if (owner)
            owner->activateWindow();
    });
    if (!choice)
        return RTCAN;
    chosen = choice->path.toStdWString();
    if (fileType)
        *fileType = choice->fileType;
    return 0;
}

}  // namespace

bool kaldo::Editor::asksOnCommandLine()
{
    return variables().shortValue(L"FILEDIA", 1) == 0 || scriptFeedsInput()
           || !qobject_cast<QApplication*>(QCoreApplication::instance());
}

int kxedFindFile(const wchar_t* name, wchar_t* out, std::size_t size)
{
    if (!name || !*name || !out || size == 0)
        return RTERROR;
    const auto found = findFile(name);
    if (!found)
        return RTERROR;
    kaldo::copyToBuffer(found->wstring(), out, size);
    return RTNORM;
}

int getFileNameByFileDialog(const wchar_t* title, const wchar_t* defaultName, const wchar_t* extension, int flags,
                            wchar_t*& outName, int*, int* fileType, const wchar_t* filter)
{
    outName = nullptr;
    kaldo::Editor* editor = kaldo::currentEditor();
    if (!editor)
        return RTERROR;
    const bool scriptInDialog = editor->scriptFeedsInput() && QApplication::activeModalWidget();
    std::wstring chosen;
    int result = RTCAN;
    if (editor->asksOnCommandLine() && !scriptInDialog) {
        result = chooseOnCommandLine(*editor, defaultName, extension, flags, chosen);
    } else {
        // Keywords are typed on the command line only; kxedInitGet's end
        // here as at any other input.
        editor->clearControls();
        result = scriptInDialog ? chooseFromScriptLine(*editor, chosen)
                                : chooseInDialog(title, defaultName, extension, flags, filter, fileType, chosen);
    }
    if (result == 0)
        outName = kxutNewString(chosen.c_str());
    return result;
}
