// Finding files and asking the user for a file name.
#include "kaldo/core/Host.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kaldo/util/GuiThread.h"
#include "kxed.h"
#include "kxstring.h"

#include <QApplication>
#include <QFileDialog>
#include <QString>

#include <filesystem>
#include <system_error>

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

int chooseOnCommandLine(kaldo::Editor& editor, const wchar_t* defaultName, const wchar_t* extension, int flags,
                        std::wstring& chosen)
{
    const std::wstring fallback = defaultName ? defaultName : L"";
    const std::wstring prompt =
        fallback.empty() ? L"\nEnter file name: " : L"\nEnter file name <" + fallback + L">: ";
    std::wstring typed;
    const int result = editor.getString(true, prompt, typed);
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
                   const wchar_t* filter, std::wstring& chosen)
{
    const QString caption = QString::fromWCharArray(title ? title : L"");
    const QString start = QString::fromWCharArray(defaultName ? defaultName : L"");
    QString filters = filter ? QString::fromWCharArray(filter) : QString();
    if (filters.isEmpty() && extension && *extension)
        filters = QStringLiteral("*.%1").arg(QString::fromWCharArray(extension));
    QString name;
    kaldo::runOnGuiThread([&] {
        QWidget* owner = QApplication::activeModalWidget();
        name = (flags & 0x1) ? QFileDialog::getSaveFileName(owner, caption, start, filters)
                             : QFileDialog::getOpenFileName(owner, caption, start, filters);
    });
    if (name.isEmpty())
        return RTCAN;
    chosen = name.toStdWString();
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
                            wchar_t*& outName, int*, int*, const wchar_t* filter)
{
    outName = nullptr;
    kaldo::Editor* editor = kaldo::currentEditor();
    if (!editor)
        return RTERROR;
    std::wstring chosen;
    int result = RTCAN;
    if (editor->scriptFeedsInput() && QApplication::activeModalWidget())
        result = chooseFromScriptLine(*editor, chosen);
    else if (editor->asksOnCommandLine())
        result = chooseOnCommandLine(*editor, defaultName, extension, flags, chosen);
    else
        result = chooseInDialog(title, defaultName, extension, flags, filter, chosen);
    if (result == 0)
        outName = kxutNewString(chosen.c_str());
    return result;
}
