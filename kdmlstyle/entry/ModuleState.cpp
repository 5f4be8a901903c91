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

// Runs when the library is loaded: remembers where the module lives, once.
__attribute__((constructor)) void attachModule()
{
    ModuleState& state = moduleState();
    Dl_info info{};
    if (!state.instance && dladdr(reinterpret_cast<void*>(&attachModule), &info))
        state.instance = info.dli_fbase;
}

// Runs when the library is unloaded.
__attribute__((destructor)) void detachModule()
{
    moduleState().instance = nullptr;
}

}  // namespace

}  // namespace kdml
