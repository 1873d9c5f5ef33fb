// Laws of the mirror image: whatever holds of a problem holds of its image in mirrored squares.

#include "core/legality.h"
#include "core/platform/thread.h"
#include "session/mirror.h"
#include "session/run_engine.h"
#include "tests/support/problems.h"
#include "tests/support/random_positions.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

constexpr u64 kSeed = 20261121;

std::unique_ptr<TChessProblem> ProblemOf(const reference::TPosition& position, int fullMoves) {
    TChessboard board;
    bridge::FillBoard(board, position);
    auto problem = std::make_unique<TChessProblem>();
    problem->SetStipulation(kDirectMate, static_cast<u16>(HalfMovesOfMate(fullMoves)));
    problem->SetPosition(board.m_board);
    return problem;
}

// As text, sorted; mirrored if asked for.
std::vector<std::string> Texts(const std::vector<TMove>& moves, bool doMirror) {
    std::vector<std::string> texts;
    for (const TMove move : moves)
        texts.push_back(test::TextOfMove(doMirror ? MirrorMove(move) : move));
    std::ranges::sort(texts);
    return texts;
}

std::vector<TMove> LegalMoves(TChessProblem& problem) {
    TMoveList list;
    list.count = GetLegalMoves(*problem.position, list.moves);
    return {list.begin(), list.end()};
}

TSolveResult SolveAll(TChessProblem& problem) {
    TEngineRequest request;
    request.allSolutions = true;
    request.isRegression = true;
    request.mayUseSolvedRecord = false;
    request.wantMainLine = false;
    request.threads = 1;
    TEngineOutcome outcome;
    SetStop(problem, kStopNone);
    RunOnThreadWithStack(SolveStackBytes(problem.maxHalfMoves),
                         [&] { outcome = RunEngine(problem, request, {}); });
    EXPECT_EQ(outcome.end, EEngineEnd::kDone);
    return outcome.result;
}

TEST(MirrorProperty, MirroredPosition_HasTheMirroredMoves) {
    test::CRandom random(kSeed);
    int count = 0;
    for (int i = 0; i < 3000; ++i) {
        const auto position = reference::RandomMelee(random, random.Between(3, 32));
        const auto problem = ProblemOf(position, 2);
        if (!IsMirrorPossible(*problem))
            continue;
        ++count;
        const std::vector<std::string> expected = Texts(LegalMoves(*problem), true);
        const CMirroredProblem mirrored(*problem);
        ASSERT_EQ(Texts(LegalMoves(*problem), false), expected) << reference::ToFen(position);
    }
    EXPECT_GT(count, 1000);
}

TEST(MirrorProperty, MirroredProblem_HasTheMirroredSolutions) {
    test::CRandom random(kSeed);
    int mates = 0;
    for (int i = 0; i < 300; ++i) {
        const int fullMoves = random.Between(1, 3);
        const auto position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 9), fullMoves));
        const auto problem = ProblemOf(position, fullMoves);
        if (!IsMirrorPossible(*problem) || problem->position->m_blackInCheck >= 0)
            continue;
        const TSolveResult plain = SolveAll(*problem);
        mates += plain.keys.empty() ? 0 : 1;
        const CMirroredProblem mirrored(*problem);
        const TSolveResult image = SolveAll(*problem);
        ASSERT_EQ(Texts(image.keys, false), Texts(plain.keys, true)) << reference::ToFen(position);
        ASSERT_EQ(image.verdict, plain.verdict);
    }
    EXPECT_GT(mates, 30);
}

}  // namespace
}  // namespace quillmere
