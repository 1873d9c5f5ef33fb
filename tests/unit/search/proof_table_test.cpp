#include "search/proof_table.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr std::size_t kBytes = std::size_t{1} << 20;

TProofKey NumberedKey(u64 number) {
    TProofKey key;
    key.squares[0] = number;
    return key;
}

TProofKey KeyBehind(const char* fen, u16 halfMoves, std::initializer_list<const char*> moves) {
    CSearchBoard board(fen, halfMoves);
    for (const char* move : moves)
        EXPECT_EQ(board.Play(move), kMoveMade) << move;
    return ProofKeyOf(board.Node());
}

TEST(ProofKey, OfEqualBoards_KnowsTheSideToMove) {
    const char* const fen = "7k/8/8/8/8/8/8/K5R1 w - - 0 1";
    EXPECT_NE(KeyBehind(fen, 5, {}), KeyBehind(fen, 4, {}));
}

TEST(ProofKey, OfEqualBoards_KnowsLostCastlingRights) {
    const char* const fen = "7k/8/8/8/8/8/8/R3K3 w - - 0 1";
    const TProofKey before = KeyBehind(fen, 9, {});
    EXPECT_NE(before, KeyBehind(fen, 9, {"e1e2", "h8h7", "e2e1", "h7h8"}));
    EXPECT_EQ(KeyBehind(fen, 9, {"e1e2", "h8h7", "e2e1", "h7h8"}),
              KeyBehind(fen, 9, {"a1a2", "h8g8", "a2a1", "g8h8"}));
}

TEST(ProofKey, OfEqualBoards_KnowsACaptureInPassing) {
    const TProofKey twoSteps = KeyBehind("7k/3p4/8/4P3/8/8/8/K7 w - - 0 1", 5, {"a1a2", "d7d5"});
    const TProofKey oneStep = KeyBehind("7k/8/3p4/4P3/8/8/8/K7 w - - 0 1", 5, {"a1a2", "d6d5"});
    EXPECT_NE(twoSteps, oneStep);
    // Where no pawn can capture it, the step leaves nothing behind.
    EXPECT_EQ(KeyBehind("7k/3p4/8/6P1/8/8/8/K7 w - - 0 1", 5, {"a1a2", "d7d5"}),
              KeyBehind("7k/8/3p4/6P1/8/8/8/K7 w - - 0 1", 5, {"a1a2", "d6d5"}));
}

TEST(ProofKey, UnderAWord_IsAnother_ButBareTheSame) {
    CSearchBoard board("7k/8/8/8/8/8/8/K5R1 w - - 0 1", 5);
    const TProofKey plain = ProofKeyOf(board.Root());
    board.Root().Heur = 0x400;
    const TProofKey word = ProofKeyOf(board.Root());
    board.Root().HeurParams = 1;
    EXPECT_NE(word, plain);
    EXPECT_NE(ProofKeyOf(board.Root()), word);
    EXPECT_EQ(word.Bare(), plain);
    EXPECT_EQ(plain.Bare(), plain);
}

TEST(ProofTable, Mate_HoldsWithMoreHalfMovesAndNotWithFewer) {
    CProofTable table(kBytes);
    const TProofKey key = NumberedKey(7);
    TProofNumbers numbers;
    table.Store(key, 9, kProved, 1);
    EXPECT_FALSE(table.Find(key, 7, &numbers));
    EXPECT_TRUE(table.FindSettled(key, 9, &numbers) && numbers.proof == 0);
    EXPECT_TRUE(table.FindSettled(key, 21, &numbers) && numbers.proof == 0);
    table.Store(key, 15, kProved, 1);
    EXPECT_EQ(table.ShortestMate(key), 9);
    table.Store(key, 5, kProved, 1);
    EXPECT_EQ(table.ShortestMate(key), 5);
}

TEST(ProofTable, NoMate_HoldsWithFewerHalfMovesAndNotWithMore) {
    CProofTable table(kBytes);
    const TProofKey key = NumberedKey(7);
    TProofNumbers numbers;
    table.Store(key, 9, kDisproved, 1);
    table.Store(key, 3, kDisproved, 1);
    EXPECT_TRUE(table.FindSettled(key, 9, &numbers) && numbers.disproof == 0);
    EXPECT_TRUE(table.FindSettled(key, 3, &numbers) && numbers.disproof == 0);
    EXPECT_FALSE(table.Find(key, 11, &numbers));
    table.Store(key, 11, kProved, 1);
    EXPECT_TRUE(table.FindSettled(key, 11, &numbers) && numbers.proof == 0);
    EXPECT_TRUE(table.FindSettled(key, 9, &numbers) && numbers.disproof == 0);
}

TEST(ProofTable, UnderAWord_AMateIsForAllAndNoMateForItself) {
    CProofTable table(kBytes);
    const TProofKey plain = NumberedKey(7);
    TProofKey word = plain;
    word.rest |= u64{5} << 32;
    TProofNumbers numbers;
    table.Store(word, 9, kDisproved, 1);
    EXPECT_FALSE(table.Find(plain, 9, &numbers));
    EXPECT_TRUE(table.Find(word, 9, &numbers));
    table.Store(word, 11, kProved, 1);
    EXPECT_TRUE(table.FindSettled(plain, 11, &numbers) && numbers.proof == 0);
}

TEST(ProofTable, OpenNumbers_BelongToTheHalfMoves) {
    CProofTable table(kBytes);
    const TProofKey key = NumberedKey(7);
    TProofNumbers numbers;
    table.Store(key, 9, {3, 4}, 1);
    EXPECT_FALSE(table.Find(key, 7, &numbers));
    ASSERT_TRUE(table.Find(key, 9, &numbers));
    EXPECT_EQ(numbers.proof, 3U);
    EXPECT_EQ(numbers.disproof, 4U);
    EXPECT_FALSE(table.FindSettled(key, 9, &numbers));
}

// Growing deals out everything; full, it forgets but never mixes up.
TEST(ProofTable, ManyEntries_AreKeptWhileItGrowsAndNeverMixedUpWhenFull) {
    constexpr u64 kCount = 20'000;
    for (const std::size_t bytes : {std::size_t{64} << 20, std::size_t{1}}) {
        CProofTable table(bytes);
        for (u64 i = 1; i <= kCount; ++i)
            table.Store(NumberedKey(i), static_cast<int>(1 + 2 * (i % 20)), kProved, i);
        u64 found = 0;
        for (u64 i = 1; i <= kCount; ++i) {
            const int mate = table.ShortestMate(NumberedKey(i));
            ASSERT_TRUE(mate == 0 || mate == static_cast<int>(1 + 2 * (i % 20)));
            found += mate != 0 ? 1 : 0;
        }
        // A cluster of four may run over while half of the places are free.
        EXPECT_TRUE(bytes == 1 ? found > 1000 && found <= 4096 : found > kCount * 9 / 10) << found;
    }
}

}  // namespace
}  // namespace quillmere
