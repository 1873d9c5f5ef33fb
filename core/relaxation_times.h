// When the passes of one analysis ended, by the number of the relaxation that followed.
//
// A step of the ladder may hang on how long the passes took. Every thread walks the ladder on its
// own node, and all must come to the same word; so the time of each relaxation is measured once:
// the first thread that reaches it stores the time, the others read what it stored.
//
// Locking: a 16-bit spin counter guards the slots, a leaf: nothing else is taken while it is held,
// and it is held for one read or write of a slot (longer only by Save and Restore). A thread that
// has tried 100 times in vain lets others run between its further tries.
#pragma once

#include "core/types.h"

#include <array>
#include <atomic>
#include <memory>
#include <optional>

namespace quillmere {

class CRelaxationTimes {
public:
    // One for every value of THeuristicSettings::RelaxationCount. Ticks of TickCount(), nothing
    // where no thread has arrived.
    using TSlots = std::array<std::optional<u64>, 256>;

    // The analysis starts at the tick; nothing is measured.
    void Start(u64 tick);
    // Milliseconds from the start to the time at which the first thread asked for this index; `now`
    // if none has before.
    u64 Elapsed(u8 index, u64 now);

    // For a walk down the ladder that nobody shall know of.
    TSlots Save();
    void Restore(const TSlots& slots);

private:
    class CHold;
    TSlots& Slots();

    std::atomic<u16> m_spin{0};
    u64 m_start = 0;
    // Made at the start of the analysis: a collection holds many thousands of problems that were
    // never started, and each is a search context.
    std::unique_ptr<TSlots> m_slots;
};

}  // namespace quillmere
