// Milliseconds of a clock that never goes back, from an arbitrary start.
#pragma once

#include "core/types.h"

#include <chrono>

namespace quillmere {

inline u64 TickCount() {
    using namespace std::chrono;
    return static_cast<u64>(
        duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace quillmere
