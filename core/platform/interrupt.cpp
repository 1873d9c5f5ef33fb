#include "core/platform/interrupt.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

namespace quillmere {
namespace {

// Lock-free, hence safe in a handler; relaxed, since nothing else is handed over with it.
std::atomic<bool> interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void OnInterrupt(int /*signal*/) {
    if (interrupted.exchange(true, std::memory_order_relaxed))
        _exit(kInterruptExitCode);
}

}  // namespace

void CatchInterrupts() {
    struct sigaction action = {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    // A read of standard input ends with the interrupt instead of being taken up again.
    action.sa_flags = 0;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool WasInterrupted() {
    return interrupted.load(std::memory_order_relaxed);
}

}  // namespace quillmere
