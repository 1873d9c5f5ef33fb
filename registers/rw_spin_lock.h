// A reentrant spinning reader-writer lock of five 32-bit words.
//
// It is taken shared once or more at every look-up of the search, so the uncontended shared path is a
// handful of instructions: two plain loads, one atomic addition and one more load. Nobody sleeps in
// the kernel; who waits long gives up its time slice.
//
// Rules. The holder of the exclusive lock may take it again, exclusive or shared. A thread that
// holds it shared must neither take it exclusive nor take it shared a second time: a writer that
// came in between would wait for the first hold, and the second one for the writer.
//
// Writers come first: as soon as one holds the flag, new readers wait.
#pragma once

#include "core/types.h"

#include <atomic>

namespace quillmere {

class TRWSpinLock {
public:
    TRWSpinLock() = default;
    TRWSpinLock(const TRWSpinLock&) = delete;
    TRWSpinLock& operator=(const TRWSpinLock&) = delete;

    void LockExclusive();
    void UnlockExclusive();
    void LockShared();
    void UnlockShared() { m_readers.fetch_sub(1, std::memory_order_release); }

    // The calling thread holds it exclusively.
    bool IsHeldByThisThread() const;

private:
    bool TryHold();
    void LockSharedSlowly();

    // A reader announces itself and then looks at the held flag; a writer sets the flag and then
    // looks at the readers. Both pairs are sequentially consistent, so that at least one of the two
    // sees the other.
    std::atomic<u32> m_isHeld{0};
    u32 m_recursion = 0;  // further exclusive holds of the holder; touched by the holder only
    std::atomic<u32> m_writersWaiting{0};
    std::atomic<u32> m_readers{0};
    std::atomic<u32> m_holder{0};  // number of the holder's thread, 0 for none
};
static_assert(sizeof(TRWSpinLock) == 20);

inline void TRWSpinLock::LockShared() {
    if (m_isHeld.load(std::memory_order_relaxed) == 0 &&
        m_writersWaiting.load(std::memory_order_relaxed) == 0) {
        m_readers.fetch_add(1, std::memory_order_seq_cst);
        if (m_isHeld.load(std::memory_order_seq_cst) == 0)
            return;
        m_readers.fetch_sub(1, std::memory_order_release);
    }
    LockSharedSlowly();
}

// Hold the lock to the end of the scope.

class CSharedHold {
public:
    explicit CSharedHold(TRWSpinLock& lock) : m_lock(lock) { m_lock.LockShared(); }
    ~CSharedHold() { m_lock.UnlockShared(); }
    CSharedHold(const CSharedHold&) = delete;
    CSharedHold& operator=(const CSharedHold&) = delete;

private:
    TRWSpinLock& m_lock;
};

class CExclusiveHold {
public:
    explicit CExclusiveHold(TRWSpinLock& lock) : m_lock(lock) { m_lock.LockExclusive(); }
    ~CExclusiveHold() { m_lock.UnlockExclusive(); }
    CExclusiveHold(const CExclusiveHold&) = delete;
    CExclusiveHold& operator=(const CExclusiveHold&) = delete;

private:
    TRWSpinLock& m_lock;
};

}  // namespace quillmere
