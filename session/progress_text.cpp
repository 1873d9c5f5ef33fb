#include "session/progress_text.h"

#include "heuristics/catalogue.h"
#include "session/session_texts.h"

#include <fmt/format.h>

namespace quillmere {

std::string SearchProgressText(
    int depth, double percent, std::string_view suffix, int ofAtLeast, ELanguage language) {
    std::vector<std::string> values = {std::to_string(depth), std::string(suffix)};
    if (ofAtLeast > 0)
        values.push_back(std::to_string(ofAtLeast));
    values.push_back(fmt::format("{:.2f}", percent));
    return FormatMessage(ofAtLeast > 0 ? EMessage::kSearchProgressAtLeast
                                       : EMessage::kSearchProgress,
                         language,
                         values);
}

std::string DataSizeText(u64 bytes) {
    constexpr u64 kMegabyte = u64{1} << 20;
    constexpr u64 kGigabyte = u64{1} << 30;
    if (bytes < kGigabyte)
        return fmt::format("{}MB", bytes / kMegabyte);
    return fmt::format("{:.1f}GB", static_cast<double>(bytes) / static_cast<double>(kGigabyte));
}

std::string
SettingsInForceText(const TChessboard& node, const TStatusFigures& figures, ELanguage language) {
    std::string text;
    if (node.Heur != 0)
        text += HeuristicsText(node) + " ";
    if (figures.isSafeMode)
        text += FormatMessage(EMessage::kSafeModeOn, language) + " ";
    return text + fmt::format("Thrds={} GR={} TR={}",
                              figures.threads,
                              DataSizeText(figures.globalBytes),
                              DataSizeText(figures.temporaryBytes));
}

std::string
FoundSoFarText(const std::vector<std::string>& moves, bool areRefutations, ELanguage language) {
    if (moves.empty())
        return {};
    const EMessage id = areRefutations ? EMessage::kRefutationsSoFar : EMessage::kSolutionsSoFar;
    return FormatMessage(id, language, {JoinTexts(moves, ", ")});
}

}  // namespace quillmere
