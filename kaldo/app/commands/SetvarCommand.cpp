// SETVAR: shows and changes system variables; "?" lists them all.
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kaldo/ed/VariableText.h"
#include "kxed.h"

#include <algorithm>

namespace kaldo {

namespace {

void listVariables(const SystemVariables& variables)
{
    std::wstring listing = L"\n";
    for (const std::wstring& name : variables.names()) {
        std::wstring line = name;
        line.resize(std::max<std::size_t>(line.size() + 1, 20), L' ');
        listing += line + variableAsText(name) + L"\n";
    }
    kxedPrompt(listing.c_str());
}

}  // namespace

void promptForVariable(const std::wstring& typedName)
{
    Editor* editor = currentEditor();
    const std::wstring name = toUpper(typedName);
    const auto current = editor ? editor->variables().get(name) : std::nullopt;
    if (!current) {
        kxutPrintf(L"\nUnknown variable name \"%ls\".\n", name.c_str());
        return;
    }
    const std::wstring currentText = variableAsText(name);
    const std::wstring prompt = L"\nEnter new value for " + name + L" <" + currentText + L">: ";
    const bool acceptBlanks = std::holds_alternative<std::wstring>(*current);
    wchar_t typed[KXED_TEXT_SIZE] = {};
    if (kxedGetString(acceptBlanks ? 1 : 0, prompt.c_str(), typed) != RTNORM || !*typed)
        return;
    if (setVariableFromText(name, typed) != RTNORM)
        kxutPrintf(L"\n%ls cannot be set to \"%ls\"; it keeps %ls.\n", name.c_str(), typed, currentText.c_str());
}

void setvarCommand()
{
    Editor* editor = currentEditor();
    wchar_t name[KXED_TEXT_SIZE] = {};
    if (!editor || kxedGetString(0, L"\nEnter variable name or [?]: ", name) != RTNORM || !*name)
        return;
    if (std::wstring_view(name) == L"?")
        listVariables(editor->variables());
    else
        promptForVariable(name);
}

}  // namespace kaldo
