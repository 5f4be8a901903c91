// The module-wide state, written only while the library attaches and the
// module initialises.
#pragma once

namespace kdml {

struct ModuleState {
    void* instance = nullptr;        // load address of the module's own file while attached
    void* entryResources = nullptr;  // entry-time resource library, never freed
};

ModuleState& moduleState();

}  // namespace kdml
