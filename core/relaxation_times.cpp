#include "core/relaxation_times.h"

#include <thread>

namespace quillmere {
namespace {

constexpr int kTriesBeforeYield = 100;

}  // namespace

// Holds the spin counter.
class CRelaxationTimes::CHold {
public:
    explicit CHold(std::atomic<u16>& spin) : m_spin(spin) {
        for (int tries = 0; m_spin.fetch_add(1, std::memory_order_acquire) != 0; ++tries) {
            m_spin.fetch_sub(1, std::memory_order_relaxed);
            if (tries >= kTriesBeforeYield)
                std::this_thread::yield();
        }
    }
    ~CHold() { m_spin.fetch_sub(1, std::memory_order_release); }
    CHold(const CHold&) = delete;
    CHold& operator=(const CHold&) = delete;

private:
    std::atomic<u16>& m_spin;
};

// To be called under the lock only.
CRelaxationTimes::TSlots& CRelaxationTimes::Slots() {
    if (m_slots == nullptr)
        m_slots = std::make_unique<TSlots>();
    return *m_slots;
}

void CRelaxationTimes::Start(u64 tick) {
    const CHold hold(m_spin);
    m_start = tick;
    Slots().fill(std::nullopt);
}

u64 CRelaxationTimes::Elapsed(u8 index, u64 now) {
    const CHold hold(m_spin);
    std::optional<u64>& slot = Slots()[index];
    if (!slot)
        slot = now;
    return *slot - m_start;
}

CRelaxationTimes::TSlots CRelaxationTimes::Save() {
    const CHold hold(m_spin);
    return Slots();
}

void CRelaxationTimes::Restore(const TSlots& slots) {
    const CHold hold(m_spin);
    Slots() = slots;
}

}  // namespace quillmere
