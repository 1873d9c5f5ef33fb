#include "session/time_limit.h"

#include <chrono>

namespace quillmere {

CTimeLimit::CTimeLimit(TSearchContext& context, double seconds) : m_context(context) {
    if (seconds > 0)
        m_thread = std::thread([this, seconds] { Watch(seconds); });
}

CTimeLimit::~CTimeLimit() {
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isDone = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void CTimeLimit::Watch(double seconds) {
    const auto limit = std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds));
    const auto end = std::chrono::steady_clock::now() + limit;
    std::unique_lock lock(m_mutex);
    if (m_wake.wait_until(lock, end, [this] { return m_isDone; }))
        return;
    m_isHit.store(true, std::memory_order_relaxed);
    SetStop(m_context, kStopAll);
}

}  // namespace quillmere
