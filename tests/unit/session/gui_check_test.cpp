#include "session/gui_check.h"
#include "tests/support/problems.h"

#include <gtest/gtest.h>
#include <map>
#include <string>

namespace quillmere {
namespace {

using test::MoveOf;

// Finds what is written down for the moves played so far.
class CAnalysis final : public ILineAnalysis {
public:
    TFound FindDefence(TChessProblem& problem) override { return Find(problem, false); }
    TFound FindWhiteMove(TChessProblem& problem) override { return Find(problem, true); }

    std::map<std::string, TFound> known;
    std::string asked;

private:
    TFound Find(TChessProblem& problem, bool isWhite) {
        const std::vector<TMove> played = problem.PlayedMoves();
        const std::string line = test::TextOfMoves(played.data(), static_cast<int>(played.size()));
        asked += (isWhite ? "w(" : "b(") + line + ")";
        EXPECT_EQ(problem.currentNode->IsWhiteToMove(), isWhite);
        return known[line];
    }
};

// 1.Kb6 Kb8 2.Rh8, and moves that lead nowhere for a longer line.
std::unique_ptr<TChessProblem> Problem(u32 flags, i32 repeat) {
    auto problem = test::DirectMate(1, "k7/8/2K5/8/8/8/8/7R", 3);
    problem->flags |= flags;
    problem->guiCheckRepeat = repeat;
    test::AddMainVariant(*problem, {"h1h2", "a8b8", "h2h1", "b8a8", "c6b6"});
    return problem;
}

CAnalysis Agreeing() {
    CAnalysis analysis;
    analysis.known["h1h2"].move = MoveOf("a8b8");
    analysis.known["h1h2 a8b8"].move = MoveOf("h2h1");
    analysis.known["h1h2 a8b8 h2h1"].move = MoveOf("b8a8");
    analysis.known["h1h2 a8b8 h2h1 b8a8"].move = MoveOf("c6b6");
    return analysis;
}

TEST(GuiCheck, IsNeededWithAFlagAndAMainVariantOfMoves) {
    EXPECT_FALSE(NeedsGuiCheck(*Problem(0, 1)));
    EXPECT_TRUE(NeedsGuiCheck(*Problem(kProblemGuiCheck, 1)));
    EXPECT_TRUE(NeedsGuiCheck(*Problem(kProblemGuiCheckBestDefence, 1)));
    const auto problem = Problem(kProblemGuiCheck, 1);
    problem->variants.begin()->second.moves.resize(1);
    EXPECT_FALSE(NeedsGuiCheck(*problem));
    problem->variants.clear();
    EXPECT_FALSE(NeedsGuiCheck(*problem));
}

TEST(GuiCheck, WalksTwiceTheRepetitionsLessOneMoves) {
    const struct {
        u32 flag;
        i32 repeat;
        const char* asked;
    } kRows[] = {
        {kProblemGuiCheckBestDefence, 1, "b(h1h2)"},
        {kProblemGuiCheckBestDefence, 2, "b(h1h2)b(h1h2 a8b8 h2h1)"},
        {kProblemGuiCheck, 1, "b(h1h2)"},
        {kProblemGuiCheck, 2, "b(h1h2)w(h1h2 a8b8)b(h1h2 a8b8 h2h1)"},
        {kProblemGuiCheck, 9, "b(h1h2)w(h1h2 a8b8)b(h1h2 a8b8 h2h1)w(h1h2 a8b8 h2h1 b8a8)"},
        {kProblemGuiCheck, 0, "b(h1h2)"},
    };
    for (const auto& row : kRows) {
        const auto problem = Problem(row.flag, row.repeat);
        CAnalysis analysis = Agreeing();
        const TGuiCheckResult result = WalkMainVariant(*problem, analysis);
        EXPECT_EQ(analysis.asked, row.asked);
        EXPECT_FALSE(result.isDifferent);
        EXPECT_FALSE(result.isUndecided);
        EXPECT_EQ(result.lines, "");
        EXPECT_EQ(problem->currentNode, problem->position.get());
    }
}

TEST(GuiCheck, OtherMoves_AreToldByTheirKindAndTheWalkGoesOn) {
    const auto problem = Problem(kProblemGuiCheck, 2);
    CAnalysis analysis = Agreeing();
    analysis.known["h1h2"].move = MoveOf("a8a7");
    analysis.known["h1h2 a8b8"].move = std::nullopt;
    const TGuiCheckResult result = WalkMainVariant(*problem, analysis);
    EXPECT_TRUE(result.isDifferent);
    EXPECT_EQ(result.lines,
              "Failed: Error in best defence:\n\nexpected Ka8-b8\nfound Ka8-a7\n"
              "Failed: Error in auxMate:\n\nexpected Rh2-h1\nfound -\n");
    EXPECT_EQ(result.remark, "best defence: expected Ka8-b8, found Ka8-a7");
    EXPECT_EQ(analysis.asked, "b(h1h2)w(h1h2 a8b8)b(h1h2 a8b8 h2h1)");
}

TEST(GuiCheck, StoppedAnalysis_IsUndecidedAndEndsTheWalk) {
    const auto problem = Problem(kProblemGuiCheck, 2);
    CAnalysis analysis = Agreeing();
    analysis.known["h1h2"] = {MoveOf("a8a7"), true};
    const TGuiCheckResult result = WalkMainVariant(*problem, analysis);
    EXPECT_TRUE(result.isUndecided);
    EXPECT_FALSE(result.isDifferent);
    EXPECT_EQ(result.lines, "");
    EXPECT_EQ(analysis.asked, "b(h1h2)");
    EXPECT_EQ(problem->currentNode, problem->position.get());
}

TEST(GuiCheck, VariantThatCannotBePlayed_IsDifferent) {
    const auto problem = Problem(kProblemGuiCheck, 2);
    problem->variants.begin()->second.moves[1].move = MoveOf("a8a1");
    CAnalysis analysis = Agreeing();
    const TGuiCheckResult result = WalkMainVariant(*problem, analysis);
    EXPECT_TRUE(result.isDifferent);
    EXPECT_EQ(problem->currentNode, problem->position.get());
}

TEST(GuiCheck, Promotion_CountsInTheComparison) {
    const auto problem = test::DirectMate(1, "k7/8/8/8/8/8/1p6/7K", 3);
    problem->flags |= kProblemGuiCheck;
    test::AddMainVariant(*problem, {"h1h2", "b2b1q"});
    CAnalysis analysis;
    analysis.known["h1h2"].move = MoveOf("b2b1r");
    EXPECT_TRUE(WalkMainVariant(*problem, analysis).isDifferent);
    analysis.known["h1h2"].move = MoveOf("b2b1q");
    EXPECT_FALSE(WalkMainVariant(*problem, analysis).isDifferent);
}

TEST(MoveTextForLog, MoveThatTheBoardDoesNotHave_IsStillText) {
    const TChessboard board = test::ValidBoard("k7/8/8/8/8/8/8/7K");
    EXPECT_EQ(MoveTextForLog(board, MoveOf("h1h2")), "Kh1-h2");
    EXPECT_EQ(MoveTextForLog(board, MoveOf("a1a2")), "a1-a2");
    EXPECT_EQ(MoveTextForLog(board, TMove{7, 71, 0, 0}), "7-71");
}

}  // namespace
}  // namespace quillmere
