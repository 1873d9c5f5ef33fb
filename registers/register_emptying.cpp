// Emptying of a full register.
//
// What a verdict is worth is what it costs to find it again, and that grows with its depth. So the
// sets of doubtful verdicts that nobody has pinned go first, then verdicts of depth 3, then of 5 and
// 4, 7 and 6, and so on, until about a twenty-fifth of the elements have gone or a fifth of the limit
// is free. The figures are those of the design; they are empirical.
//
// A register can be full by its number of elements or by its bytes. The two are weighed alike: "a
// part is free" means that part of both. A sweep may remove elements and free few bytes, because a
// container gives its array back only when it has shrunk enough; so a register that is still short
// of bytes goes on to the next depth, however many elements have gone.
//
// There is always an end: the last depth is 255, and if even that did not help, the next verdicts
// are dropped by the test of the limits.
#include "registers/aggregated_register.h"

#include <algorithm>
#include <mutex>

namespace quillmere {
namespace {

// One for all registers: they compete for the same memory.
std::mutex& EmptyingSection() {
    static std::mutex section;
    return section;
}

constexpr u64 kEmptyingPauseMilliseconds = 16;
constexpr std::size_t kProbeBytes = 1024;

// Elements whose removal is enough. Hard: an operation of the search failed, not an insert.
constexpr u32 kEnough = 4'096;
constexpr u32 kEnoughDoubtfulHard = 262'144;
constexpr u32 kEnoughHard = 524'288;
constexpr u32 kEnoughPart = 25;
constexpr u32 kEnoughPartHard = 12;
// Parts of the limit
constexpr u32 kShallowPart = 3;   // less gained by dropping depth 3: it is not stored any more
constexpr u32 kFreePart = 5;      // so much free is enough
constexpr u32 kFreePartHard = 4;  // so much free: a failure has another cause
// Depths in half-moves
constexpr u16 kFirstDepth = 3;
constexpr u16 kLastDepth = 255;

}  // namespace

bool TAggregatedTemporaryChessboardRegister::IsFreePartAtLeast(u32 divisor) const {
    const u64 limit = ElementLimit();
    const u64 free = limit - std::min<u64>(limit, GetElementsIn());
    return free * divisor >= limit && Memory().FreeBytes() * divisor >= Memory().LimitBytes();
}

// The count is an estimate only; the real measure is what the account and the system still give.
bool TAggregatedTemporaryChessboardRegister::IsMemoryAtHand() const {
    return Memory().FreeBytes() * kEnoughPart >= Memory().LimitBytes() &&
           Memory().CanAllocate(kProbeBytes);
}

void TAggregatedTemporaryChessboardRegister::EmptySomeDataWhenRegisterFull(bool bHard) {
    const auto& tickCount = m_environment->settings.tickCount;
    Log("EmptySomeDataWhenRegisterFull started", bHard ? 1 : 0);
    const std::lock_guard section(EmptyingSection());
    // Those who queued here while another thread emptied the register find it done.
    if (tickCount() - m_lastEmptyingTick <= kEmptyingPauseMilliseconds)
        return;
    if (bHard && IsFreePartAtLeast(kFreePartHard))
        return;
    EmptyByDepth(bHard);
    Log("EmptySomeDataWhenRegisterFull complete");
    m_lastEmptyingTick = tickCount();
}

void TAggregatedTemporaryChessboardRegister::EmptyByDepth(bool bHard) {
    const u32 limit = ElementLimit();
    const u32 enough = bHard ? std::max(limit / kEnoughPartHard, kEnoughHard)
                             : std::max(limit / kEnoughPart, kEnough);

    u32 removed = RemoveUnpinnedDoubtful();
    if (!IsMemoryAtHand())
        FreeEmptySubRegisters();
    bool isSatisfied = removed > (bHard ? kEnoughDoubtfulHard : kEnough);
    if (!isSatisfied && KeepsThreeMovers()) {
        removed += RemoveNMovers(kFirstDepth);
        isSatisfied = removed > kEnough;
        if (removed < limit / kShallowPart)
            StopKeepingThreeMovers();
    }
    for (u16 n = kFirstDepth + 2; !isSatisfied || !IsMemoryAtHand(); n += 2) {
        removed += RemoveNMovers(n);
        removed += RemoveNMovers(static_cast<u16>(n - 1));
        isSatisfied = isSatisfied || removed > enough || IsFreePartAtLeast(kFreePart);
        if (n == kLastDepth) {
            Log("!!!! EmptySomeDataWhenRegisterFull failed.");
            break;
        }
    }
}

// Their bucket arrays are all they hold; with many settings under a small limit that is a lot.
void TAggregatedTemporaryChessboardRegister::FreeEmptySubRegisters() {
    const CExclusiveHold hold(m_mapLock);
    for (auto sub = m_subRegisters.begin(); sub != m_subRegisters.end();) {
        const auto pin = m_pins.find(sub->first);
        const bool isPinned = pin != m_pins.end() && pin->second > 0;
        if (isPinned || sub->second->TableElementsIn() != 0) {
            ++sub;
            continue;
        }
        if (pin != m_pins.end())
            m_pins.erase(pin);
        sub = m_subRegisters.erase(sub);
    }
}

void TAggregatedTemporaryChessboardRegister::StopKeepingThreeMovers() {
    const CExclusiveHold hold(m_mapLock);
    m_bKeepThreeMovers.store(false, std::memory_order_relaxed);
    for (const auto& [key, sub] : m_subRegisters)
        sub->StopKeepingThreeMovers();
}

u32 TAggregatedTemporaryChessboardRegister::RemoveNMovers(u16 n) {
    const auto sweep = [&](CTableRegister& table, u16 mateLimit, u16 noMateLimit) {
        Log("TTemporaryChessboardRegister::RemoveNMovers start.", n);
        const u32 removed = table.SweepTable(mateLimit, noMateLimit);
        Log("TTemporaryChessboardRegister::RemoveNMovers complete.", n);
        return removed;
    };
    Log("TAggregatedTemporaryChessboardRegister::RemoveNMovers start.", n);
    u32 total = sweep(*this, n, n);
    {
        // The own table's lock was left before this one is taken, so that the search goes on between
        // the two. The set of sub-registers must stand still.
        const CExclusiveHold hold(m_mapLock);
        const auto noMateLimit = static_cast<u16>(n < 2 ? 0 : n - 2);
        for (const auto& [key, sub] : m_subRegisters) {
            const u32 removed = sweep(*sub, n, noMateLimit);
            m_doubtfulElementsIn.fetch_sub(removed, std::memory_order_relaxed);
            total += removed;
        }
    }
    Log("TAggregatedTemporaryChessboardRegister::RemoveNMovers complete.", n);
    return total;
}

}  // namespace quillmere
