#include "session/regression_lines.h"

#include <cstddef>
#include <fmt/printf.h>

namespace quillmere {
namespace {

std::string PassMark(int pass) {
    return fmt::sprintf(" M%d", pass);
}

// "\t\tQa3-c1\n" for each move.
std::string ListLines(const std::vector<std::string>& moves) {
    std::string lines;
    for (const std::string& move : moves)
        lines += "\t\t" + move + "\n";
    return lines;
}

}  // namespace

std::string TimeLimitLine(u32 seconds) {
    return "Solving time limit hit: " + std::to_string(seconds) + " seconds\n";
}

std::string BestDefenceLine(const std::string& expected, const std::string& found) {
    return "Failed: Error in best defence:\n\nexpected " + expected + "\nfound " + found + "\n";
}

std::string AuxMateLine(const std::string& expected, const std::string& found) {
    return "Failed: Error in auxMate:\n\nexpected " + expected + "\nfound " + found + "\n";
}

std::string ThreadText(ESolveMode mode, int threads) {
    return (mode == kSolveAll ? "AllSolutions," : "SnglSolution,") +
           fmt::sprintf("%2zdthrd(s)", static_cast<std::ptrdiff_t>(threads));
}

std::string OkLine(const TTestName& name, u64 milliseconds) {
    return fmt::sprintf("[%s] Test #%d%s ok (%lld msec).\n",
                        ThreadText(name.mode, name.threads),
                        name.number,
                        PassMark(name.pass),
                        static_cast<long long>(milliseconds));
}

std::string FailedListsLines(const TTestName& name,
                             const std::vector<std::string>& found,
                             const std::vector<std::string>& expected) {
    return fmt::sprintf("[%s] Test #%d%s failed:\n\tfound:\n%s\tshould be:\n%s",
                        ThreadText(name.mode, name.threads),
                        name.number,
                        PassMark(name.pass),
                        ListLines(found),
                        ListLines(expected));
}

std::string FailedOrderLine(const TTestName& name, const std::string& text) {
    return fmt::sprintf("[%s] Test #%d%s failed: %s\n",
                        ThreadText(name.mode, name.threads),
                        name.number,
                        PassMark(name.pass),
                        OneLine(text));
}

std::string OrderOkLine(const TTestName& name, u64 milliseconds) {
    return fmt::sprintf("[%s] Test #%d%s ok (%lld msec) - ExpectedSortWhiteMovesOnly.\n",
                        ThreadText(name.mode, name.threads),
                        name.number,
                        PassMark(name.pass),
                        static_cast<long long>(milliseconds));
}

std::string
ProblemLine(const TTestName& name, const std::vector<std::string>& found, u64 milliseconds) {
    std::string moves;
    for (const std::string& move : found)
        moves += (moves.empty() ? "" : ", ") + move;
    return fmt::sprintf("[%s] Prob.#%d%s %s (%lld msec).\n",
                        ThreadText(name.mode, name.threads),
                        name.number,
                        PassMark(name.pass),
                        moves.empty() ? "No solution" : moves,
                        static_cast<long long>(milliseconds));
}

std::string_view TestEndWord(ETestEnd end) {
    switch (end) {
    case ETestEnd::kSkipped:
        return "skipped";
    case ETestEnd::kUndecided:
        return "undecided";
    case ETestEnd::kFaulty:
        return "faulty";
    case ETestEnd::kLineOk:
        return "main variant ok";
    case ETestEnd::kLineFailed:
        return "main variant failed";
    case ETestEnd::kLineUndecided:
        break;
    }
    return "main variant undecided";
}

std::string EndLine(i32 number, std::optional<int> pass, ETestEnd end, const std::string& note) {
    return fmt::sprintf("Test #%d%s %s: %s\n",
                        number,
                        pass ? PassMark(*pass) : "",
                        std::string(TestEndWord(end)),
                        OneLine(note));
}

std::string OneLine(std::string text) {
    for (char& c : text) {
        if (c == '\n' || c == '\r')
            c = ' ';
    }
    return text;
}

}  // namespace quillmere
