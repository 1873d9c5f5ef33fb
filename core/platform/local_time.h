// The time of day where the machine stands.
#pragma once

#include <ctime>

namespace quillmere {

inline std::tm LocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local;
}

}  // namespace quillmere
