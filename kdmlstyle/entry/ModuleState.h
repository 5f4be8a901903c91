// The module-wide state, written only while the library attaches and the
// module initialises.
#pragma once

namespace kdml {

struct ModuleState {
    void* instance = nullptr;        // base address of the module's own file
    bool attached = false;           // between the attach and detach hooks
    void* entryResources = nullptr;  // entry-time resource library, never freed
};

ModuleState& moduleState();

}  // namespace kdml
