#include "registers/rw_spin_lock.h"

#include <cassert>
#include <thread>

namespace quillmere {
namespace {

// Looks in a tight loop before the time slice is given up. Empirical figure of the design: long
// enough for any look-up or insert, short against a sweep.
constexpr u32 kTightRounds = 64'000;

// Small numbers, given out at a thread's first use: the lock has one word for its holder. They are
// not used again after a thread has ended, so that a number never means two threads.
u32 ThisThreadNumber() {
    static std::atomic<u32> last{0};
    thread_local const u32 number = last.fetch_add(1, std::memory_order_relaxed) + 1;
    return number;
}

// Counts the rounds of one wait.
class CRounds {
public:
    // Once in kTightRounds.
    void NextAttempt() {
        if (++m_rounds % kTightRounds == 0)
            std::this_thread::yield();
    }
    // Every time, once the tight rounds are over.
    void NextLook() {
        if (m_rounds < kTightRounds)
            ++m_rounds;
        else
            std::this_thread::yield();
    }

private:
    u32 m_rounds = 0;
};

}  // namespace

bool TRWSpinLock::IsHeldByThisThread() const {
    // Only this thread ever writes its own number, so that a stale value cannot equal it.
    return m_holder.load(std::memory_order_relaxed) == ThisThreadNumber();
}

bool TRWSpinLock::TryHold() {
    return m_isHeld.load(std::memory_order_relaxed) == 0 &&
           m_isHeld.exchange(1, std::memory_order_seq_cst) == 0;
}

void TRWSpinLock::LockExclusive() {
    if (IsHeldByThisThread()) {
        ++m_recursion;
        return;
    }
    CRounds attempts;
    while (!TryHold())
        attempts.NextAttempt();
    m_holder.store(ThisThreadNumber(), std::memory_order_relaxed);
    m_writersWaiting.fetch_add(1, std::memory_order_relaxed);
    CRounds looks;
    while (m_readers.load(std::memory_order_seq_cst) != 0)
        looks.NextLook();
    m_writersWaiting.fetch_sub(1, std::memory_order_relaxed);
}

void TRWSpinLock::UnlockExclusive() {
    assert(IsHeldByThisThread());
    if (m_recursion > 0) {
        --m_recursion;
        return;
    }
    m_holder.store(0, std::memory_order_relaxed);
    m_isHeld.store(0, std::memory_order_release);
}

void TRWSpinLock::LockSharedSlowly() {
    if (IsHeldByThisThread()) {
        m_readers.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    CRounds looks;
    for (;;) {
        while (m_writersWaiting.load(std::memory_order_relaxed) != 0 ||
               m_isHeld.load(std::memory_order_relaxed) != 0)
            looks.NextLook();
        m_readers.fetch_add(1, std::memory_order_seq_cst);
        if (m_isHeld.load(std::memory_order_seq_cst) == 0)
            return;
        m_readers.fetch_sub(1, std::memory_order_release);
    }
}

}  // namespace quillmere
