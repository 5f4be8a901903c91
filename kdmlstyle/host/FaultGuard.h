// A guard that turns a hardware fault (an invalid memory access, a bus
// error, an arithmetic or illegal-instruction trap) in a guarded step into
// a result the caller can act on, instead of the end of the host.
//
// How it stays sound. A step runs between sigsetjmp in runStep and a
// siglongjmp from the signal handler, so a fault abandons the frames of the
// step. That is well defined only when those frames hold no object with a
// non-trivial destructor (a longjmp that would skip one is undefined) and
// when the fault cannot interrupt code that holds a lock or half-updates
// shared data (the lock would stay taken, the data broken). A step given to
// run() therefore has to be written to that contract: trivially
// destructible locals only, no allocation, no stdio, no locks; it works on
// memory its caller owns and hands results back through it. After a fault
// that memory is in an unknown state and the caller must drop it. The .mln
// scanner is written this way; everything that allocates or calls the host
// happens between steps, outside the guard.
//
// The jump buffer is per thread: the handler acts only for the thread whose
// step faulted. A fault on a thread without an armed step, or outside any
// step, goes to the handler that was installed before the guard.
#pragma once

#include <csetjmp>
#include <csignal>
#include <ucontext.h>

namespace kdml {

class FaultGuard {
public:
    // Installs the handler for SIGSEGV, SIGBUS, SIGFPE and SIGILL; the
    // destructor puts the previous handlers back. One guard at a time.
    FaultGuard();
    ~FaultGuard();
    FaultGuard(const FaultGuard&) = delete;
    FaultGuard& operator=(const FaultGuard&) = delete;

    // Runs step() (see the contract above). True when it returned, false
    // when a hardware fault ended it; faultSignal() and faultContext() then
    // describe the fault.
    template <class Step>
    bool run(Step& step)
    {
        return runStep(&invoke<Step>, &step);
    }

    // The signal of the latest fault, 0 before any.
    int faultSignal() const { return faultSignal_; }
    // The machine context of the latest fault (registers at the fault), or
    // null before any.
    const ucontext_t* faultContext() const { return faultSignal_ ? &faultContext_ : nullptr; }

private:
    template <class Step>
    static void invoke(void* step)
    {
        (*static_cast<Step*>(step))();
    }
    bool runStep(void (*step)(void*), void* argument);
    static void onFault(int signal, siginfo_t* info, void* context);

    sigjmp_buf jump_;
    int faultSignal_ = 0;
    ucontext_t faultContext_{};
};

}  // namespace kdml
