#include "kaldo/app/commands/HostCommands.h"

#include "kxed.h"
#include "kxrxcommands.h"

namespace kaldo {

void registerHostCommands(KxEdCommandStack& stack)
{
    struct Entry {
        const wchar_t* name;
        KxRxFunctionPtr handler;
        int flags;
        const wchar_t* description;
    };
    using namespace KxCmdFlags;
    static constexpr Entry commands[] = {
        {L"SETVAR", setvarCommand, kModal, L"Shows or sets a system variable."},
        {L"LINE", lineCommand, kModal, L"Draws lines point by point."},
        {L"ERASE", eraseCommand, kUsePickSet, L"Erases the selected objects."},
        {L"MOVE", moveCommand, kUsePickSet, L"Moves the selected objects by a displacement."},
        {L"COPY", copyCommand, kUsePickSet, L"Copies the selected objects by one displacement after another."},
        {L"ROTATE", rotateCommand, kUsePickSet, L"Turns the selected objects about a base point."},
        {L"SCALE", scaleCommand, kUsePickSet, L"Scales the selected objects about a base point."},
        {L"MIRROR", mirrorCommand, kUsePickSet, L"Mirrors the selected objects in a line."},
        {L"STRETCH", stretchCommand, kUsePickSet, L"Moves the points of the selected objects that lie in a window."},
        {L"EXPLODE", explodeCommand, kUsePickSet, L"Turns multilines into the lines, arcs and fill they are drawn with."},
        {L"LIST", listCommand, kUsePickSet, L"Describes the selected objects."},
        {L"UCS", ucsCommand, kModal, L"Sets the user coordinate system."},
        {L"ZOOM", zoomCommand, kModal, L"Shows the whole drawing, a window of it or the view before."},
        {L"U", uCommand, kModal, L"Takes back the last command."},
        {L"UNDO", undoCommand, kModal, L"Takes back commands, or sets and goes back to marks."},
        {L"REDO", redoCommand, kModal, L"Restores what U or UNDO took back."},
        {L"NEW", newCommand, kModal, L"Starts a new, empty drawing."},
        {L"OPEN", openCommand, kModal, L"Opens a drawing."},
        {L"SAVE", saveCommand, kModal, L"Saves the drawing to its file."},
        {L"SAVEAS", saveasCommand, kModal, L"Saves the drawing under a new name, or an exploded copy."},
        {L"PLOT", plotCommand, kModal, L"Plots the drawing to a PDF at a scale on a paper size, in the Plot dialog."},
        {L"-PLOT", plotCommandLine, kModal, L"Plots the drawing to a PDF, asking on the command line."},
        {L"APPLOAD", apploadCommand, kModal, L"Loads a module."},
        {L"APPUNLOAD", appunloadCommand, kModal, L"Unloads a module."},
        {L"COMMANDS", commandsCommand, kModal, L"Lists the command groups with their global and local names."},
        {L"HELP", helpCommand, kTransparent, L"Says what a command does, or lists every command."},
        {L"QUIT", quitCommand, kModal, L"Ends the session."},
        {L"EXIT", quitCommand, kModal, L"Ends the session."},
    };
    for (const Entry& entry : commands) {
        stack.addCommand(kHostCommandGroup, entry.name, entry.name, entry.flags, entry.handler);
        stack.setDescription(kHostCommandGroup, entry.name, entry.description);
    }
}

}  // namespace kaldo
