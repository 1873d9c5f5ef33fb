// The head of a problem: number, stipulation, options; and the default clauses at the top of a file,
// which are options of all problems of one stipulation.

#include "core/chess_exception.h"
#include "core/text.h"
#include "heuristics/heuristics_parser.h"
#include "problems/problem_options.h"
#include "problems/problem_parts.h"
#include "problems/save_losses.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

constexpr std::string_view kDefaultClause = "//!default";
constexpr std::string_view kDefaultAllSolutions = "ALLSOLUTIONS";

constexpr u32 kMostProblems = std::numeric_limits<i32>::max();
// A number that is higher is read as this one: there is no fault for it. Forcing 255 threads, or
// 65535 levels, would read as forcing none.
constexpr u32 kMostThreads = kThreadsNotForced - 1;
constexpr u32 kMostThreadLevels = std::numeric_limits<u8>::max();
constexpr u32 kMostLevels = kLevelsNotForced - 1;
constexpr u32 kMostMegabytes = std::numeric_limits<i32>::max();
constexpr u32 kMostRepeats = std::numeric_limits<i32>::max();

std::vector<std::string_view> SplitAtBlanks(std::string_view text) {
    std::vector<std::string_view> parts;
    for (text = StripBlanks(text); !text.empty(); text = StripBlanks(text)) {
        const std::size_t length = std::find_if(text.begin(), text.end(), IsBlank) - text.begin();
        parts.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return parts;
}

void ReadDefaultClause(TReading& reading, std::string_view line) {
    const std::vector<std::string_view> parts = SplitAtBlanks(line);
    if (parts.size() != 3 || parts[0] != kDefaultClause)
        throw ChessException(EMessage::kIncorrectDefault);
    const u32 moves =
        parts[1].starts_with('#') ? DecimalPrefix(parts[1].substr(1), kMostMovesToMate) : 0;
    if (moves == 0)
        throw ChessException(EMessage::kErrorInDefault);
    reading.defaults[moves].insert(std::string(parts[2]));
}

void ApplyDefaults(TReading& reading, TChessProblem& problem, u32 moves) {
    const auto found = reading.defaults.find(moves);
    if (found == reading.defaults.end())
        return;
    for (const std::string& option : found->second) {
        if (ToUpper(option) != kDefaultAllSolutions)
            throw ChessException(EMessage::kUnrecognizableOption, {option});
        problem.flags |= kProblemAllSolutions;
    }
}

void ReadNumber(TReading& reading, TChessProblem& problem) {
    const std::string_view token = reading.lexer.NextIdentifier();
    const u32 number = DecimalPrefix(token, kMostProblems + 1);
    if (number > kMostProblems)
        throw ChessException(EMessage::kProblemNumberOutOfRange,
                             {std::string(token), "0", std::to_string(kMostProblems)});
    problem.number = static_cast<i32>(number);
}

// The moves behind the "#", which was read.
void ReadMoveCount(TReading& reading, TChessProblem& problem, bool isSelfmate) {
    const std::string_view token = reading.lexer.NextIdentifier();
    const u32 most = isSelfmate ? kMostMovesToSelfmate : kMostMovesToMate;
    const u32 moves = DecimalPrefix(token, most + 1);
    if (moves == 0 || moves > most)
        throw ChessException(EMessage::kStipulationOutOfRange,
                             {"#" + std::string(token), "1", std::to_string(most)});
    const u32 halfMoves = isSelfmate ? 2 * moves + 1 : 2 * moves - 1;
    problem.SetStipulation(isSelfmate ? kSelfmate : kDirectMate, static_cast<u16>(halfMoves));
    ApplyDefaults(reading, problem, moves);
}

void ReadStipulation(TReading& reading, TChessProblem& problem) {
    CProblemLexer& lexer = reading.lexer;
    const CProblemLexer::TMark mark = lexer.Mark();
    std::string_view token = lexer.NextOptionToken();
    const bool isSelfmate = token == "s";
    if (isSelfmate)
        token = lexer.NextOptionToken();
    if (token == "#") {
        ReadMoveCount(reading, problem, isSelfmate);
        return;
    }
    lexer.GoBack(mark);
    problem.SetStipulation(kNoStipulation, kHalfMovesWithoutStipulation);
}

// Options

u32 ReadNumberOption(TReading& reading, u32 highest) {
    return DecimalPrefix(reading.lexer.NextIdentifier(), highest);
}

void ReadThreads(TReading& reading, TChessProblem& problem) {
    const std::string_view token = reading.lexer.NextIdentifier();
    problem.threads = static_cast<u8>(DecimalPrefix(token, kMostThreads));
    const std::size_t caret = token.find('^');
    if (caret == std::string_view::npos)
        return;
    problem.multithreadingLevels =
        static_cast<u8>(DecimalPrefix(token.substr(caret + 1), kMostThreadLevels));
    problem.areLevelsGiven = true;
}

// The count may be left out: the next token is taken only if it is a number.
void ReadGuiCheck(TReading& reading, TChessProblem& problem) {
    const CProblemLexer::TMark mark = reading.lexer.Mark();
    const std::string_view token = reading.lexer.NextOptionToken();
    u32 count = 1;
    if (IsDigit(token.front()))
        count = DecimalPrefix(token, kMostRepeats);
    else
        reading.lexer.GoBack(mark);
    problem.guiCheckRepeat = static_cast<i32>(std::max(count, u32{1}));
}

std::string ReadMaterial(TReading& reading) {
    reading.lexer.SkipGaps(true, true);
    const std::string_view word = reading.lexer.NextWordWithSlash();
    if (word.empty())
        throw ChessException(EMessage::kIdentifierExpected,
                             {std::string(reading.lexer.NextOptionToken())});
    return std::string(word);
}

void ReadOption(TReading& reading, TChessProblem& problem, const TProblemOptionRow& row) {
    problem.flags |= row.flag;
    if (row.isLost)
        problem.lostBySave.insert(std::string(row.keyword));
    switch (row.kind) {
    case EOptionKind::kFlag:
        break;
    case EOptionKind::kUseMainVariant:
        problem.useMainVariantAsSortIndications = true;
        break;
    case EOptionKind::kGuiCheck:
        ReadGuiCheck(reading, problem);
        break;
    case EOptionKind::kThreads:
        ReadThreads(reading, problem);
        break;
    case EOptionKind::kRequires:
        problem.requires_.insert(ReadMaterial(reading));
        break;
    case EOptionKind::kAllSolutionsRequires:
        problem.allSolutionsRequires.insert(ReadMaterial(reading));
        break;
    case EOptionKind::kSchedulerLevels:
        problem.schedulerLevels = static_cast<u16>(ReadNumberOption(reading, kMostLevels));
        break;
    case EOptionKind::kLichessLevels:
        problem.lichessLevels = static_cast<u16>(ReadNumberOption(reading, kMostLevels));
        break;
    case EOptionKind::kGlobRegMB:
        problem.globRegMB = static_cast<i32>(ReadNumberOption(reading, kMostMegabytes));
        break;
    case EOptionKind::kStopRelax:
        problem.stopRelaxHeuristicsOnFirstSolution = true;
        break;
    }
}

// Parameters are parted by commas or blanks; what stands together is one of them, though the lexer
// takes "#2-Preliminary" for four tokens.
std::set<std::string> ReadParameters(CProblemLexer& lexer) {
    std::set<std::string> parameters;
    std::string parameter;
    const char* end = nullptr;
    for (;;) {
        const std::string_view token = lexer.NextTokenNoCR(true, false);
        const bool isPart = token != "," && token != ")";
        if ((!isPart || token.data() != end) && !parameter.empty())
            parameters.insert(std::exchange(parameter, {}));
        if (token == ")")
            return parameters;
        if (isPart)
            parameter += token;
        end = token.data() + token.size();
    }
}

void ReadHeuristic(TReading& reading, TChessProblem& problem, std::string_view name) {
    const TNamedHeuristic heuristic = FindHeuristic(name);
    if (heuristic.bit == 0)
        throw ChessException(EMessage::kBracketOrOptionExpected, {std::string(name)});
    const std::string_view token = reading.lexer.NextTokenNoCR(true, false);
    std::set<std::string>& parameters = problem.heuristicOverrides[heuristic.bit];
    if (token == "(") {
        parameters.merge(ReadParameters(reading.lexer));
        if (!heuristic.impliedParameter.empty())
            parameters.insert(std::string(heuristic.impliedParameter));
    } else if (ToUpper(token) == kOverrideOff) {
        parameters.insert(std::string(kOverrideOff));
    } else {
        throw ChessException(EMessage::kUnexpectedAfterHeuristic,
                             {std::string(name), std::string(token)});
    }
}

bool IsStopper(std::string_view token) {
    const std::string_view line = StripBlanks(token);
    return token == "{" || line == "//#TAGS" || line == "//!VARIANTS" || token.starts_with("//@");
}

}  // namespace

bool ReadDefaultClauses(TReading& reading) {
    bool hasAny = false;
    for (;;) {
        const CProblemLexer::TMark mark = reading.lexer.Mark();
        const std::string_view token = reading.lexer.NextTokenNoCR(false, true);
        if (!token.starts_with(kDefaultClause)) {
            reading.lexer.GoBack(mark);
            return hasAny;
        }
        ReadDefaultClause(reading, token);
        hasAny = true;
    }
}

void ReadHead(TReading& reading, TChessProblem& problem) {
    ReadNumber(reading, problem);
    ReadStipulation(reading, problem);
    for (;;) {
        const CProblemLexer::TMark mark = reading.lexer.Mark();
        std::string_view token = reading.lexer.NextOptionToken();
        token = token.substr(0, token.find('\r'));
        if (IsStopper(token)) {
            reading.lexer.GoBack(mark);
            return;
        }
        const auto row =
            std::ranges::find(kProblemOptionRows, ToUpper(token), &TProblemOptionRow::keyword);
        if (row != std::end(kProblemOptionRows))
            ReadOption(reading, problem, *row);
        else
            ReadHeuristic(reading, problem, token);
    }
}

}  // namespace quillmere
