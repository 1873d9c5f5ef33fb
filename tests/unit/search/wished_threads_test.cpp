#include "core/legality.h"
#include "search/solve.h"
#include "search/wished_threads.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

struct TCase {
    const char* name;
    TThreadQuestion question;
    int wish;
};

// Plausible moves here: quiet moves less a third of what exceeds the checks.
const TCase kCases[] = {
    {"short tasks ask for nothing", {13, 2, 30, 30, 30, 8, true, 5, false}, 0},
    {"few plausible moves go on", {15, 8, 30, 6, 6, 8, true, 5, false}, 0},
    {"none plausible among many moves asks for half as many again",
     {15, 2, 17, 0, 4, 8, true, 5, false},
     3},
    {"none plausible among eight a thread goes on", {15, 2, 16, 0, 4, 8, true, 5, false}, 0},
    {"up to twice the threads asks for twice as many", {15, 4, 30, 8, 8, 8, true, 5, false}, 8},
    {"a third of the surplus over the checks is left out",
     {15, 4, 30, 13, 1, 3, true, 5, false},
     8},  // 9 are left, more than twice the threads, and the processors do not matter
    {"with bare kings and a tied king half as many again",
     {15, 4, 30, 6, 6, 8, false, 1, false},
     6},
    {"a free black king counts as much as a figure", {15, 4, 30, 6, 6, 8, false, 2, false}, 8},
    {"not more than there are moves", {15, 4, 7, 6, 6, 8, true, 5, false}, 7},
    {"not more than twice the processors", {15, 4, 30, 6, 6, 3, true, 5, false}, 6},
    {"twice the processors are at work already", {15, 4, 30, 6, 6, 2, true, 5, false}, 0},
    {"many plausible moves ask for twice as many", {15, 2, 30, 9, 9, 1, true, 5, false}, 4},
    {"the check on the rook's line asks for three times as many",
     {15, 2, 30, 9, 9, 1, true, 5, true},
     6},
    {"never more than 127", {15, 64, 248, 220, 220, 99, true, 5, true}, 127},
};

class WishedThreadsTable : public ::testing::TestWithParam<TCase> {};

TEST_P(WishedThreadsTable, Row) {
    EXPECT_EQ(WishedThreads(GetParam().question), GetParam().wish) << GetParam().name;
}

TEST(AskForThreads, RootIsCounted) {
    // Rh1-h8 checks on the rook's rank; nothing else does.
    test::CSearchBoard board("r3k3/8/4K3/8/8/8/P7/7R", 15);
    TMoveList list;
    list.count = GetLegalMoves(board.Root(), list.moves);
    const TThreadQuestion question = AskForThreads(board.Root(), list, 7, 2, 4);
    EXPECT_EQ(question.halfMoves, 15);
    EXPECT_EQ(question.moves, list.count);
    EXPECT_EQ(question.quietMoves, 7);
    EXPECT_EQ(question.threads, 2);
    EXPECT_EQ(question.processors, 4);
    EXPECT_EQ(question.checks, 1);
    EXPECT_EQ(question.blackKingMoves, 2);  // d8, f8
    EXPECT_TRUE(question.hasFigures);
    EXPECT_FALSE(question.hasRookThreat) << "the king stands between";
    test::CSearchBoard open("4k2r/8/4K3/8/8/8/P7/R7", 15);
    list.count = GetLegalMoves(open.Root(), list.moves);
    EXPECT_FALSE(AskForThreads(open.Root(), list, 7, 2, 4).hasRookThreat);
    test::CSearchBoard seen("r3k3/8/4K3/8/8/8/1R6/8", 15);
    list.count = GetLegalMoves(seen.Root(), list.moves);
    EXPECT_TRUE(AskForThreads(seen.Root(), list, 7, 2, 4).hasRookThreat) << "Rb8 on its rank";
    test::CSearchBoard bare("4k3/8/8/8/8/8/8/4K3", 15);
    list.count = GetLegalMoves(bare.Root(), list.moves);
    EXPECT_FALSE(AskForThreads(bare.Root(), list, 0, 2, 4).hasFigures);
}

TEST(Solve, MayAskForThreads_AnswersWithAWishAndSearchesNothing) {
    TSearchContext context;
    TSolveRequest request;
    request.halfMoves = 17;
    request.mayAskForThreads = true;
    TChessboard root = test::CSearchBoard("3k4/2p2p2/2P2P2/3r4/4R3/8/8/4K3", 17).Root();
    const TSolveResult wish = Solve(root, request, context);
    EXPECT_GT(wish.wishedThreads, 1);
    EXPECT_TRUE(wish.passes.empty());
    EXPECT_EQ(wish.nodes, 0u);
    request.threads = 64;
    request.nodeLimit = 1000;
    EXPECT_EQ(Solve(root, request, context).wishedThreads, 0) << "there are no more moves";
}

INSTANTIATE_TEST_SUITE_P(WishedThreads, WishedThreadsTable, ::testing::ValuesIn(kCases));

}  // namespace
}  // namespace quillmere
