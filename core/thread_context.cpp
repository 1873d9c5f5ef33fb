#include "core/thread_context.h"

#include <cstddef>

namespace quillmere {

// Level n is used for 0 <= n <= rootHalfMoves; one more slot serves null-move copies.
TThreadContext::TThreadContext(u16 rootHalfMoves, i16 id)
    : nodes(static_cast<std::size_t>(rootHalfMoves) + 2),
      threadId(id),
      levels(static_cast<std::size_t>(rootHalfMoves) + 2) {}

}  // namespace quillmere
