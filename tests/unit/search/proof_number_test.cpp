#include "core/legality.h"
#include "search/pause.h"
#include "tests/support/proof_root.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace quillmere {
namespace {

using reference::FromFen;
using test::CProofRoot;

// Mate in two by a quiet king move.
constexpr const char* kMateInTwo = "7k/8/5K2/8/8/8/8/R7 w - - 0 1";

TEST(ProofNumberSearch, WithTheHighestLimit_DecidesToTheEnd) {
    CProofRoot proof(FromFen(kMateInTwo), 5);
    proof.Thread().madeMoves = 1000;
    const auto answer = proof.Search().Search(proof.Root(), std::numeric_limits<u64>::max());
    EXPECT_EQ(answer.verdict, kMate);
    EXPECT_FALSE(answer.isLimit);
}

TEST(ProofNumberSearch, WithoutALimitToSpeakOf_GetsOnWithEachQuestion) {
    CProofRoot proof(FromFen(kMateInTwo), 5);
    int questions = 1;
    while (proof.Search().Search(proof.Root(), 0).isLimit && questions < 10'000)
        ++questions;
    EXPECT_GT(questions, 1);
    EXPECT_LT(questions, 10'000);
}

TEST(ProofNumberSearch, OfBlackWithAllMovesSkipped_SaysThatNoneOfTheOthersHolds) {
    // One move, after which white mates in one.
    CProofRoot proof(FromFen("8/8/8/8/8/5k2/R7/7K b - - 0 1"), 2);
    TMoveList list;
    list.count = GetLegalMoves(proof.Root(), list.moves);
    const std::vector<TMove> all(list.begin(), list.end());
    EXPECT_EQ(proof.Search().Search(proof.Root(), 1000, all).verdict, kMate);
    EXPECT_EQ(proof.Search().Search(proof.Root(), 1000).verdict, kNoMate);
}

TEST(ProofNumberSearch, OfStalemate_SaysNoMate) {
    CProofRoot proof(FromFen("7k/5K2/6Q1/8/8/8/8/8 b - - 0 1"), 4);
    EXPECT_EQ(proof.Search().Search(proof.Root(), 1000).verdict, kNoMate);
}

TEST(ProofNumberSearch, Stopped_SaysNothing) {
    CProofRoot proof(FromFen(kMateInTwo), 5);
    SetStop(proof.Context(), kStopAll);
    const TProofAnswer answer = proof.Search().Search(proof.Root(), test::kManyMoves);
    EXPECT_TRUE(answer.isLimit);
    EXPECT_EQ(answer.verdict, kDoubtful);
    EXPECT_TRUE(answer.move.IsNull());
    EXPECT_TRUE(IsStopped(proof.Root()));
}

TEST(ProofNumberSearch, LeavesTheBoundOfRepetitionsAsItWas) {
    CProofRoot proof(FromFen(kMateInTwo), 5);
    proof.Context().repetitionBound = 17;
    proof.Search().Search(proof.Root(), 10);
    EXPECT_EQ(proof.Context().repetitionBound, 17);
}

}  // namespace
}  // namespace quillmere
