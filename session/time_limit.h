// Stops an analysis when its time is up.
#pragma once

#include "core/search_context.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace quillmere {

// Watches from its making to its end, on a thread of its own; without a limit there is none.
//
// Locking: guards the end of the watch; the stop slot is taken behind it.
class CTimeLimit {
public:
    // `seconds` above 0; 0 for no limit.
    CTimeLimit(TSearchContext& context, double seconds);
    ~CTimeLimit();
    CTimeLimit(const CTimeLimit&) = delete;
    CTimeLimit& operator=(const CTimeLimit&) = delete;

    bool IsHit() const { return m_isHit.load(std::memory_order_relaxed); }

private:
    void Watch(double seconds);

    TSearchContext& m_context;
    std::atomic<bool> m_isHit{false};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_isDone = false;
    std::thread m_thread;  // last: it uses all of the above
};

}  // namespace quillmere
