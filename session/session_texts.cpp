#include "session/session_texts.h"

#include <fmt/format.h>

namespace quillmere {

std::string SecondsText(u64 milliseconds) {
    return fmt::format("{}.{:02}", milliseconds / 1000, milliseconds % 1000 / 10);
}

std::string JoinTexts(const std::vector<std::string>& texts, const std::string& between) {
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : between) + text;
    return joined;
}

std::string StopText(bool isTimeLimitHit, ELanguage language) {
    return FormatMessage(isTimeLimitHit ? EMessage::kAnalysisTimeLimit : EMessage::kAnalysisStopped,
                         language);
}

std::string StopMark(bool isTimeLimitHit, ELanguage language) {
    return " " +
           FormatMessage(isTimeLimitHit ? EMessage::kStoppedByTimeLimit : EMessage::kStoppedByUser,
                         language);
}

u64 MillisecondsSince(std::chrono::steady_clock::time_point start) {
    const auto elapsed = std::chrono::steady_clock::now() - start;
    return static_cast<u64>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
}

}  // namespace quillmere
