// The running host application: the one place through which the SDK's free
// functions reach the drawing, the editor and the runtime services. A
// Session (app/) fills it while it lives; each layer reads only the parts
// below it.
#pragma once

#include <filesystem>

class KxDbDatabase;

namespace kaldo {

class Editor;
class Runtime;
class Profile;
class CrashRecorder;

struct HostState {
    KxDbDatabase* database = nullptr;  // the working drawing
    Editor* editor = nullptr;          // command line, input, system variables
    Runtime* runtime = nullptr;        // registry, command stack, modules
    Profile* profile = nullptr;        // the user's settings (INI)
    CrashRecorder* crashRecorder = nullptr;
    std::filesystem::path supportDir;  // Support folder (KALDO.mln, *.lin)
    std::filesystem::path drawingDir;  // folder of the current drawing, if any
};

// The current host. Empty (all null) outside a session.
HostState& host();

}  // namespace kaldo
