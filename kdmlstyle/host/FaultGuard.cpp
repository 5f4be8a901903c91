#include "host/FaultGuard.h"

#include <array>
#include <cstring>

namespace kdml {

namespace {

constexpr std::array<int, 4> kFaultSignals = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};

// Signal dispositions are process-wide, so the handlers the guard replaced
// are kept process-wide too, for faults that are not the guard's to catch.
std::array<struct sigaction, kFaultSignals.size()> replacedHandlers{};

// The guard whose step runs on this thread, if any. It is written before
// every step, so the thread's storage for it exists before a handler reads it.
thread_local FaultGuard* armedGuard = nullptr;

std::size_t slotOf(int signal)
{
    for (std::size_t i = 0; i < kFaultSignals.size(); ++i) {
        if (kFaultSignals[i] == signal)
            return i;
    }
    return 0;
}

// Sets armedGuard for the span of one step.
class ArmedScope {
public:
    explicit ArmedScope(FaultGuard* guard) : previous_(armedGuard) { armedGuard = guard; }
    ~ArmedScope() { armedGuard = previous_; }
    ArmedScope(const ArmedScope&) = delete;
    ArmedScope& operator=(const ArmedScope&) = delete;

private:
    FaultGuard* previous_;
};

}  // namespace

FaultGuard::FaultGuard()
{
    struct sigaction action {};
    action.sa_sigaction = &FaultGuard::onFault;
    action.sa_flags = SA_SIGINFO;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < kFaultSignals.size(); ++i)
        sigaction(kFaultSignals[i], &action, &replacedHandlers[i]);
}

FaultGuard::~FaultGuard()
{
    for (std::size_t i = 0; i < kFaultSignals.size(); ++i)
        sigaction(kFaultSignals[i], &replacedHandlers[i], nullptr);
}

bool FaultGuard::runStep(void (*step)(void*), void* argument)
{
    ArmedScope armed(this);
    // The signal mask is saved, so that the fault's signal, blocked while
    // its handler runs, is unblocked again when the handler jumps back here.
    if (sigsetjmp(jump_, 1) != 0)
        return false;
    step(argument);
    return true;
}

void FaultGuard::onFault(int signal, siginfo_t*, void* context)
{
    FaultGuard* guard = armedGuard;
    if (!guard) {
        // Not ours: the previous handler takes it once this one returns.
        sigaction(signal, &replacedHandlers[slotOf(signal)], nullptr);
        raise(signal);
        return;
    }
    guard->faultSignal_ = signal;
    std::memcpy(&guard->faultContext_, context, sizeof(ucontext_t));
#if defined(__x86_64__)
    // It pointed into the signal frame that the jump abandons.
    guard->faultContext_.uc_mcontext.fpregs = nullptr;
#endif
    siglongjmp(guard->jump_, 1);
}

}  // namespace kdml
