// SETVAR: shows and changes system variables; "?" lists them all.
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/VariableText.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kxed.h"

namespace kaldo {

namespace {

void listVariables(const SystemVariables& variables)
{
    std::wstring listing = L"\n";
    for (const std::wstring& name : variables.names()) {
        if (const auto value = variables.get(name)) {
            std::wstring line = name;
            line.resize(std::max<std::size_t>(line.size() + 1, 20), L' ');
            listing += line + variableText(*value) + L"\n";
        }
    }
    kxedPrompt(listing.c_str());
}

}  // namespace

void promptForVariable(const std::wstring& typedName)
{
    Editor* editor = currentEditor();
    if (!editor)
        return;
    SystemVariables& variables = editor->variables();
    const std::wstring name = toUpper(typedName);
    const auto current = variables.get(name);
    if (!current) {
        kxutPrintf(L"\nUnknown variable name \"%ls\".\n", name.c_str());
        return;
    }
    const std::wstring currentText = variableText(*current);
    const std::wstring prompt = L"\nEnter new value for " + name + L" <" + currentText + L">: ";
    const bool acceptBlanks = std::holds_alternative<std::wstring>(*current);
    wchar_t typed[KXED_TEXT_SIZE] = {};
    if (kxedGetString(acceptBlanks ? 1 : 0, prompt.c_str(), typed) != RTNORM || !*typed)
        return;
    const auto value = parseVariableText(*current, typed);
    if (!value) {
        kxutPrintf(L"\nInvalid value \"%ls\" for %ls.\n", typed, name.c_str());
        return;
    }
    if (variables.set(name, *value) != RTNORM)
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
