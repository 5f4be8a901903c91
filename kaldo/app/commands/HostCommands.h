// The commands the host itself brings, each in its own file. They live in
// the command stack like module commands, in the group "KALDO_HOSTCOMMANDS",
// with local names equal to their global names.
#pragma once

#include "kaldo/dxf/Progress.h"

#include <filesystem>
#include <string>

class KxEdCommandStack;

namespace kaldo {

inline constexpr const wchar_t* kHostCommandGroup = L"KALDO_HOSTCOMMANDS";

void registerHostCommands(KxEdCommandStack& stack);

void setvarCommand();
void lineCommand();
void eraseCommand();
void ucsCommand();
void quitCommand();
void apploadCommand();
void appunloadCommand();
void commandsCommand();
void listCommand();
void openCommand();
void saveCommand();
void saveasCommand();
void zoomCommand();
void explodeCommand();
void uCommand();
void undoCommand();
void redoCommand();

class Session;

// What OPEN and SAVE do once they have a file name, messages included; the
// window's menus call them too, with a progress report that may stop the
// work ("Open cancelled." or "Save cancelled." is then printed).
void openDrawingReporting(Session& session, const std::filesystem::path& path, const dxf::ProgressReport& report = {});
void saveDrawingReporting(Session& session, const std::filesystem::path& path, const dxf::ProgressReport& report = {});
// What SAVE does: saves the working drawing to its file, or to a file
// asked for when it has none yet.
void saveWorkingDrawing(Session& session);

// The question asked before a drawing's unsaved changes would be lost, in
// the window's message box and by OPEN: "Save changes to NAME?", NAME the
// drawing's file name (Drawing1.dxf for a new drawing).
std::wstring saveChangesQuestion(const std::filesystem::path& drawingPath);

// The file types SAVEAS offers in a file dialog, in the order of SaveAsType:
// the drawing itself, or a copy with every multiline exploded (2000 or R12).
enum class SaveAsType { Drawing, Exploded, ExplodedR12 };
inline constexpr const wchar_t* kSaveAsFileTypes =
    L"Drawing (*.dxf);;Copy, multilines exploded (*.dxf);;R12 copy, multilines exploded (*.dxf)";
// What SAVEAS does with a file chosen under a type, messages included; a
// copy is never written over the drawing's own file, and takes no report.
void saveAsReporting(Session& session, const std::filesystem::path& path, SaveAsType type,
                     const dxf::ProgressReport& report = {});

// Whether the last entity selection failed because its point hit nothing
// (ERRNO 7; the editor has said so): the picking commands then ask again.
bool pickMissed();

// Asks for the new value of the system variable name, as SETVAR does once it
// has the name; Enter keeps the value.
void promptForVariable(const std::wstring& name);

}  // namespace kaldo
