// The library's attach and detach hooks and the module-wide state.
#include "entry/ModuleState.h"

#include <dlfcn.h>

namespace kdml {

ModuleState& moduleState()
{
    static ModuleState state;
    return state;
}

namespace {

// Runs when the library is loaded: remembers where the module lives.
__attribute__((constructor)) void attachModule()
{
    ModuleState& state = moduleState();
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&attachModule), &info))
        state.instance = info.dli_fbase;
    state.attached = true;
}

// Runs when the library is unloaded.
__attribute__((destructor)) void detachModule()
{
    moduleState().attached = false;
}

}  // namespace

}  // namespace kdml
