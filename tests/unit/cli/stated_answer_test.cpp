#include "cli/stated_answer.h"
#include "tests/support/sessions.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr TMove kFirst = MakeMove(0, 56);   // Ra1-a8
constexpr TMove kSecond = MakeMove(0, 5);   // Ra1-f1
constexpr TMove kEmpty = MakeMove(10, 18);  // from an empty square

struct TRow {
    std::vector<TMove> stated;
    std::vector<TMove> found;
    ESolveVerdict verdict;
    bool isComplete;
    bool wereAllAsked;
    EStatedAnswer expected;
};

TEST(StatedAnswer, Comparison_FollowsWhatWasAskedAndProved) {
    using enum ESolveVerdict;
    using enum EStatedAnswer;
    const TRow rows[] = {
        {{kFirst}, {kFirst}, kProvedMate, true, false, kAgrees},
        {{kSecond, kFirst}, {kFirst}, kProvedMate, true, false, kOneFound},
        {{kSecond}, {kFirst}, kProvedMate, true, false, kDiffers},
        {{kSecond, kFirst}, {kFirst, kSecond}, kProvedMate, true, true, kAgrees},
        {{kSecond, kFirst}, {kFirst}, kProvedMate, true, true, kDiffers},
        {{kFirst}, {kFirst, kSecond}, kProvedMate, true, true, kDiffers},
        {{kFirst}, {kFirst}, kProvedMate, false, true, kNotCompared},
        {{kFirst}, {kSecond}, kProvedMate, false, true, kDiffers},
        {{kFirst}, {}, kProvedNoMate, true, false, kDiffers},
        {{}, {}, kProvedNoMate, true, false, kAgrees},
        {{}, {kFirst}, kProvedMate, true, false, kDiffers},
        {{kFirst}, {}, kDoubt, false, false, kNotCompared},
        {{kFirst}, {}, kLimit, false, true, kNotCompared},
        {{kFirst}, {}, kStopped, false, true, kNotCompared},
    };
    for (const TRow& row : rows) {
        TChessProblem problem;
        problem.flags = kProblemHasAnswer;
        problem.answer = row.stated;
        TTaskOutcome outcome;
        outcome.result.keys = row.found;
        outcome.result.verdict = row.verdict;
        outcome.result.isComplete = row.isComplete;
        outcome.wereAllAsked = row.wereAllAsked;
        EXPECT_EQ(CompareStated(problem, outcome), row.expected) << &row - rows;
        problem.flags = 0;
        EXPECT_EQ(CompareStated(problem, outcome), kNotCompared);
    }
}

TEST(StatedAnswer, Text_NamesMovesEvenThoseThatCannotBePlayed) {
    TChessProblem problem;
    test::SetProblem(problem, "6k1/8/6K1/8/8/8/8/R7 w - - 0 1", 3);
    problem.answer = {kFirst, kEmpty};
    EXPECT_EQ(StatedAnswerText(problem, EStatedAnswer::kDiffers, ELanguage::kEnglish),
              "Ra1-a8, c2-c3 (differs)");
    EXPECT_EQ(StatedAnswerText(problem, EStatedAnswer::kOneFound, ELanguage::kEnglish),
              "Ra1-a8, c2-c3 (one of those stated)");
    problem.answer.clear();
    EXPECT_EQ(StatedAnswerText(problem, EStatedAnswer::kAgrees, ELanguage::kEnglish),
              "none (as found)");
}

}  // namespace
}  // namespace quillmere
