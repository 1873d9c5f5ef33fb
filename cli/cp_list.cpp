// quillmere cp list: one line a problem.
#include "cli/columns.h"
#include "cli/cp_command.h"
#include "cli/json.h"
#include "core/fen.h"
#include "core/material.h"
#include "problems/problem_fields.h"
#include "problems/tags.h"

#include <algorithm>
#include <fmt/format.h>

namespace quillmere {
namespace {

struct TMen {
    int white = 0;
    int black = 0;
};

// Counted on the squares, for the counts of an illegal position are not there.
TMen MenOf(const TChessProblem& problem) {
    TMen men;
    for (const u8 figure : problem.position->m_board) {
        men.white += IsWhite(figure) ? 1 : 0;
        men.black += IsBlack(figure) ? 1 : 0;
    }
    return men;
}

std::string JoinedFlags(const TChessProblem& problem) {
    return JoinWords(FlagWordsOf(problem));
}

std::string LineText(const TChessProblem& problem, std::size_t flagsWidth) {
    constexpr std::size_t kStipulationWidth = 6;
    constexpr std::size_t kMenWidth = 7;
    const TMen men = MenOf(problem);
    const std::string stipulation = StipulationText(problem);
    std::string line = fmt::format(
        "{:>6}  {}{}",
        problem.number,
        PadRight(stipulation.empty() ? "-" : stipulation, kStipulationWidth),
        PadRight(std::to_string(men.white) + "+" + std::to_string(men.black), kMenWidth));
    if (flagsWidth > 0)
        line += PadRight(JoinedFlags(problem), flagsWidth + 2);
    line += problem.description;
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

TJson ProblemJson(const TChessProblem& problem) {
    const TMen men = MenOf(problem);
    TJson json = {{"schema", kSchema},
                  {"number", problem.number},
                  {"stipulation", StipulationText(problem)},
                  {"flags", FlagWordsOf(problem)},
                  {"description", problem.description},
                  {"tags", problem.tags},
                  {"whiteMen", men.white},
                  {"blackMen", men.black},
                  {"board", GetFENCode(*problem.position, true)}};
    return json;
}

}  // namespace

EExitCode RunCpList(const TCpCall& call) {
    const std::string& file = call.files.front();
    TProblemCollection collection;
    ReadCollection(call.arguments, call.console, file, collection);
    std::vector<const TChessProblem*> shown;
    const std::optional<std::string> tag = call.arguments.Value("--tag");
    // Tags are held in the language of the user, whichever one was asked for.
    const std::string wanted = tag ? TranslateTag(*tag, call.console.Language()) : "";
    std::size_t flagsWidth = 0;
    for (const auto& [number, problem] : collection.problems) {
        if (tag && !problem->tags.contains(wanted))
            continue;
        shown.push_back(problem.get());
        flagsWidth = std::max(flagsWidth, JoinedFlags(*problem).size());
    }
    for (const TChessProblem* problem : shown)
        call.console.Print(call.arguments.Has("--json") ? JsonLine(ProblemJson(*problem))
                                                        : LineText(*problem, flagsWidth));
    call.console.Note(call.console.Text(
        EMessage::kCpListSummary,
        {file, std::to_string(shown.size()), std::to_string(collection.problems.size())}));
    return kExitDone;
}

}  // namespace quillmere
