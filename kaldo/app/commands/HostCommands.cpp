#include "kaldo/app/commands/HostCommands.h"

#include "kxed.h"
#include "kxrxcommands.h"

namespace kaldo {

void registerHostCommands(KxEdCommandStack& stack)
{
    struct Entry {
        const wchar_t* name;
        KxRxFunctionPtr handler;
    };
    static constexpr Entry commands[] = {
        {L"SETVAR", setvarCommand},       {L"LINE", lineCommand},
        {L"ERASE", eraseCommand},         {L"UCS", ucsCommand},
        {L"QUIT", quitCommand},           {L"EXIT", quitCommand},
        {L"APPLOAD", apploadCommand},     {L"APPUNLOAD", appunloadCommand},
        {L"COMMANDS", commandsCommand},   {L"LIST", listCommand},
        {L"OPEN", openCommand},           {L"SAVE", saveCommand},
        {L"SAVEAS", saveasCommand},       {L"ZOOM", zoomCommand},
        {L"EXPLODE", explodeCommand},     {L"U", uCommand},
        {L"UNDO", undoCommand},           {L"REDO", redoCommand},
        {L"PLOT", plotCommand},           {L"-PLOT", plotCommandLine},
    };
    for (const Entry& entry : commands)
        stack.addCommand(kHostCommandGroup, entry.name, entry.name, KxCmdFlags::kModal, entry.handler);
}

bool pickMissed()
{
    kxresbuf rb;
    return kxedGetVar(L"ERRNO", &rb) == RTNORM && rb.restype == RTSHORT && rb.resval.rint == OL_ENTSELPICK;
}

}  // namespace kaldo
