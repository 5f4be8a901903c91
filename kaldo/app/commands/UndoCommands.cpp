// U, UNDO and REDO: take back whole commands and restore them, through the
// working drawing's undo history. U takes back the last command; UNDO takes
// back a number of them, sets a mark (Mark) or takes back everything after
// the last mark (Back); REDO restores what the last U or UNDO took back.
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/core/Host.h"
#include "kaldo/db/UndoHistory.h"
#include "kxed.h"

#include <cwchar>
#include <string_view>

namespace kaldo {

namespace {

UndoHistory* history()
{
    return host().database ? &host().database->undoHistory() : nullptr;
}

void reportUndone(const std::vector<std::wstring>& names)
{
    if (names.empty())
        kxutPrintf(L"\nNothing to undo.\n");
    for (const std::wstring& name : names)
        kxutPrintf(L"\n%ls undone.\n", name.c_str());
}

// A whole number above 0, or 0 when text is not one.
int positiveCount(const wchar_t* text)
{
    wchar_t* end = nullptr;
    const long value = std::wcstol(text, &end, 10);
    return end != text && *end == L'\0' && value > 0 && value <= 1'000'000 ? int(value) : 0;
}

}  // namespace

void uCommand()
{
    if (UndoHistory* undo = history())
        reportUndone(undo->undo(1));
}

void undoCommand()
{
    UndoHistory* undo = history();
    if (!undo)
        return;
    for (;;) {
        kxedInitGet(RSG_OTHER, L"Mark Back _Mark Back");
        wchar_t answer[KXED_TEXT_SIZE] = {};
        int result = kxedGetKword(L"\nEnter the number of operations to undo or [Mark/Back] <1>: ", answer);
        if (result == RTKWORD)
            result = kxedGetInput(answer);
        if (result == RTNONE || (result == RTNORM && !*answer)) {
            reportUndone(undo->undo(1));
            return;
        }
        if (result != RTNORM)
            return;
        if (std::wstring_view(answer) == L"Mark") {
            undo->mark();
            return;
        }
        if (std::wstring_view(answer) == L"Back") {
            reportUndone(undo->undoToMark());
            return;
        }
        if (const int count = positiveCount(answer)) {
            reportUndone(undo->undo(count));
            return;
        }
        kxutPrintf(L"\nRequires a positive whole number or an option keyword.\n");
    }
}

void redoCommand()
{
    UndoHistory* undo = history();
    if (!undo)
        return;
    const std::vector<std::wstring> names = undo->redo();
    if (names.empty())
        kxutPrintf(L"\nNothing to redo.\n");
    for (const std::wstring& name : names)
        kxutPrintf(L"\n%ls redone.\n", name.c_str());
}

}  // namespace kaldo
