// Small parts of the texts of sessions.
#pragma once

#include "core/messages.h"
#include "core/types.h"

#include <chrono>
#include <string>
#include <vector>

namespace quillmere {

// "1.25": seconds to hundredths.
std::string SecondsText(u64 milliseconds);
std::string JoinTexts(const std::vector<std::string>& texts, const std::string& between);
// Who ended it before anything was found, and the same as a mark behind what was found, with its blank:
// the time limit, or else the user.
std::string StopText(bool isTimeLimitHit, ELanguage language);
std::string StopMark(bool isTimeLimitHit, ELanguage language);
u64 MillisecondsSince(std::chrono::steady_clock::time_point start);

}  // namespace quillmere
