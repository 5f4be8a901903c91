// The command loop: prompts "Command: " and runs what is typed until QUIT
// or the end of input.
//
// A typed name runs the registered command of that name (host and module
// commands alike, "_" forcing the global name, a leading apostrophe left
// aside), else the command of that alias (kaldo.pgp); else the name of a
// system variable asks for its new value as SETVAR does; else the loop says
// the command is unknown. Enter at an empty prompt repeats the last command. A
// command that throws is reported to the crash recorder and the loop goes on.
//
// A point given at the command prompt on a grip of the selection made
// there drags that grip: the entity follows the cursor as STRETCH of that
// one point would leave it, and the point given moves it, one undo step.
#pragma once

#include "kxdbid.h"
#include "kxtypes.h"

#include <string>

namespace kaldo {

class Session;

void runCommandLoop(Session& session);

// Runs one command by the name typed; false when the name is unknown.
bool runCommand(Session& session, const std::wstring& name);

// Drags the grip of entity that is its stretch point at index, at world
// point grip (see Editor::GripHandler).
void runGripDrag(Session& session, const KxDbObjectId& entity, int index, const KxGePoint3d& grip);

}  // namespace kaldo
