// A runtime installed as the running host's for the length of a test.
#pragma once

#include "kaldo/core/Host.h"
#include "kaldo/rx/Runtime.h"

class InstalledRuntime {
public:
    InstalledRuntime() { kaldo::host().runtime = &runtime; }
    ~InstalledRuntime()
    {
        runtime.linker().unloadAll();
        kaldo::host().runtime = nullptr;
    }
    InstalledRuntime(const InstalledRuntime&) = delete;
    InstalledRuntime& operator=(const InstalledRuntime&) = delete;

    kaldo::Runtime runtime;
};
