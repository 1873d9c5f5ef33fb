// The lines of RegressionTest.log, to the letter.
//
// A test is told by one of the lines of its result, which carry the thread text of the run, the
// number of the problem and the pass mark:
//
//     [SnglSolution, 1thrd(s)] Test #7 M0 ok (5 msec).
//
// Other lines are told as they occur, without a number. So that the log says of every test whether
// it was finished, a test that ends without a line of result, or whose main variant was walked after
// it, gets an end line:
//
//     Test #7 M0 undecided: Solving time limit hit.
//
// The pass mark is left out where the end line is about the whole problem. The log has one form
// whatever the language of the program, because it is read back (session/regression_resume.h).
#pragma once

#include "core/types.h"
#include "session/run_state.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

struct TTestName {
    ESolveMode mode = kSolveFirst;
    int threads = 1;
    i32 number = 0;
    int pass = 0;  // 1 for the mirror pass
};

// Other lines, whole

constexpr std::string_view kRequiresLine = "Requires clause not satisfied\n";
constexpr std::string_view kAllSolutionsRequiresLine =
    "AllSolutionsRequires clause not satisfied\n";
constexpr std::string_view kRequiresSyzygyLine = "RequiresSyzygy not satisfied\n";
constexpr std::string_view kAllSolutionsRequiresSyzygyLine =
    "AllSolutionsRequiresSyzygy not satisfied\n";
std::string TimeLimitLine(u32 seconds);
// The move that the main variant has, and the one that was found there, as texts.
std::string BestDefenceLine(const std::string& expected, const std::string& found);
std::string AuxMateLine(const std::string& expected, const std::string& found);

// Lines of result

// "SnglSolution, 1thrd(s)"
std::string ThreadText(ESolveMode mode, int threads);
std::string OkLine(const TTestName& name, u64 milliseconds);
// The lists, a move a line.
std::string FailedListsLines(const TTestName& name,
                             const std::vector<std::string>& found,
                             const std::vector<std::string>& expected);
// `text` becomes one line.
std::string FailedOrderLine(const TTestName& name, const std::string& text);
std::string OrderOkLine(const TTestName& name, u64 milliseconds);
// No moves: "No solution".
std::string
ProblemLine(const TTestName& name, const std::vector<std::string>& found, u64 milliseconds);

// End lines

enum class ETestEnd { kSkipped, kUndecided, kFaulty, kLineOk, kLineFailed, kLineUndecided };
std::string_view TestEndWord(ETestEnd end);
std::string EndLine(i32 number, std::optional<int> pass, ETestEnd end, const std::string& note);

// Line ends become blanks.
std::string OneLine(std::string text);

// Behind a last line that was cut by the end of a run; a line that ends so tells nothing.
constexpr std::string_view kCutMark = " [cut]";

}  // namespace quillmere
