// The number of this process.
#pragma once

#include <unistd.h>

namespace quillmere {

inline int ProcessId() {
    return static_cast<int>(getpid());
}

}  // namespace quillmere
