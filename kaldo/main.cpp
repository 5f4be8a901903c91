// The kaldo executable, a launcher that loads no Qt: where the system grants
// huge pages only on request it first starts itself again with a heap that
// asks for them, which costs about a millisecond; then it loads the program's
// library and runs it (kaldo/program/Program.cpp).
#include "kaldo/launch/HeapPages.h"
#include "kaldo/program/ProgramEntry.h"

#include <cstdio>

#include <dlfcn.h>

int main(int argc, char** argv)
{
    kaldo::restartWithHugeHeapPages(argv);
    // Global, as the libraries of an executable are: modules loaded later
    // find the host's symbols whichever library holds them.
    void* program = dlopen(kaldo::kProgramLibrary, RTLD_NOW | RTLD_GLOBAL);
    const auto run = program ? reinterpret_cast<decltype(&kaldoRunProgram)>(dlsym(program, kaldo::kProgramEntry))
                             : nullptr;
    if (!run) {
        std::fprintf(stderr, "kaldo: cannot start the program: %s\n", dlerror());
        return 1;
    }
    return run(argc, argv);
}
