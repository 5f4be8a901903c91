#include "entry/CommandTable.h"

#include "entry/CommandBodies.h"
#include "host/ResourceLibraryScope.h"
#include "mleditdlg/MlineEditDialog.h"

#include <memory>

namespace kdml {

namespace {

// Every handler runs its body inside the resource library scope, and not at
// all when the command-time library cannot be loaded.
template <void (*body)()>
void handler()
{
    const ResourceLibraryScope scope;
    if (scope.isLoaded())
        body();
}

// MLEDIT: the dialog is made while the library is the resource source (it
// loads its images then) and destroyed after the library is freed.
void mleditHandler()
{
    std::unique_ptr<CKaldMlineEditDialog> dialog;
    const ResourceLibraryScope scope;
    if (!scope.isLoaded())
        return;
    dialog = std::make_unique<CKaldMlineEditDialog>();
    runMledit(*dialog);
}

constexpr CommandRow kRows[] = {
    {L"MLSTYLE", 4013, 7001, 2, &handler<runMlstyle>},
    {L"MLEDIT", 4014, 7002, 2, &mleditHandler},
    {L"-MLEDIT", 4015, 7003, 2, &handler<runMleditKeywords>},
    {L"MLINE", 5000, 7004, 0, &handler<runMline>},
};

}  // namespace

std::span<const CommandRow> commandTable()
{
    return kRows;
}

}  // namespace kdml
