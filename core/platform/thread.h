// A thread with a given stack. The search recurses once a half-move, so that its stack grows with
// the stipulation and the default of the system is not enough.
#pragma once

#include <cstddef>
#include <functional>

namespace quillmere {

// Runs `work` on a new thread with a stack of at least `stackBytes` and waits for its end. An
// exception of `work` is thrown again here. Throws ChessException if the thread cannot be started.
void RunOnThreadWithStack(std::size_t stackBytes, const std::function<void()>& work);

}  // namespace quillmere
