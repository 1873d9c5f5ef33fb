#include "core/geometry.h"
#include "heuristics/reply_rules.h"
#include "tests/support/boards.h"
#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::SquareOf;
using test::TReplyCase;

void FileC(CSearchBoard& board) {
    board.Context().KeyLineFile = 2;
}
void DiagonalB2E5(CSearchBoard& board) {
    board.Context().KeyDiagonalSquares[0] = SquareAt(1, 1);
    board.Context().KeyDiagonalSquares[1] = SquareAt(4, 4);
}
void NoDiagonal(CSearchBoard& board) {
    board.Context().KeyDiagonalSquares[0] = SquareAt(1, 1);
    board.Context().KeyDiagonalSquares[1] = SquareAt(1, 4);
}
void HalfDiagonal(CSearchBoard& board) {
    board.Context().KeyDiagonalSquares[0] = SquareAt(1, 1);
}

class KeyLines : public test::ReplyRule {};

TEST_P(KeyLines, AreNotWalkedAlong) {
    test::CheckReplyCase(GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Rook,
    KeyLines,
    testing::Values(
        TReplyCase{"Along", SH_KEYLINE, "2r4k/3r4/8/8/8/8/8/4KR2", 4, "c8c5", true, FileC},
        TReplyCase{"Off", SH_KEYLINE, "2r4k/3r4/8/8/8/8/8/4KR2", 4, "c8b8", false, FileC},
        TReplyCase{"Onto", SH_KEYLINE, "2r4k/3r4/8/8/8/8/8/4KR2", 4, "d7c7", false, FileC},
        TReplyCase{"OnAnotherFile", SH_KEYLINE, "2r4k/3r4/8/8/8/8/8/4KR2", 4, "d7d5", false, FileC},
        TReplyCase{"Queen", SH_KEYLINE, "2q4k/8/8/8/8/8/8/4KR2", 4, "c8c5", false, FileC},
        TReplyCase{"WithoutAFile", SH_KEYLINE, "2r4k/8/8/8/8/8/8/4KR2", 4, "c8c5", false}),
    test::NameOfCase);

INSTANTIATE_TEST_SUITE_P(
    Bishop,
    KeyLines,
    testing::Values(
        TReplyCase{
            "Along", SH_KEYDIAGONAL, "6k1/8/8/4b3/8/8/8/4K2R", 4, "e5d4", true, DiagonalB2E5},
        TReplyCase{
            "Beyond", SH_KEYDIAGONAL, "6k1/8/8/4b3/8/8/8/4K2R", 4, "e5h8", true, DiagonalB2E5},
        TReplyCase{"BeyondTheOther",
                   SH_KEYDIAGONAL,
                   "6k1/8/8/4b3/8/8/8/4K2R",
                   4,
                   "e5a1",
                   true,
                   DiagonalB2E5},
        TReplyCase{"Off", SH_KEYDIAGONAL, "6k1/8/8/4b3/8/8/8/4K2R", 4, "e5d6", false, DiagonalB2E5},
        TReplyCase{
            "Onto", SH_KEYDIAGONAL, "6k1/8/3b4/8/8/8/8/4K2R", 4, "d6e5", false, DiagonalB2E5},
        TReplyCase{
            "Queen", SH_KEYDIAGONAL, "6k1/8/8/4q3/8/8/8/3K3R", 4, "e5d4", false, DiagonalB2E5},
        TReplyCase{"SquaresOfAFile",
                   SH_KEYDIAGONAL,
                   "6k1/8/8/4b3/8/8/8/4K2R",
                   4,
                   "e5d4",
                   false,
                   NoDiagonal},
        TReplyCase{
            "OneSquare", SH_KEYDIAGONAL, "6k1/8/8/4b3/8/8/8/4K2R", 4, "e5d4", false, HalfDiagonal}),
    test::NameOfCase);

TEST(IsOnLineOf, HoldsForTheWholeLineAndNoOther) {
    int found = 0;
    for (int square = 0; square < kSquareCount; ++square)
        found += IsOnLineOf(quillmere::kBishop, SquareOf("c3"), SquareOf("e5"), square) ? 1 : 0;
    EXPECT_EQ(found, 8);
    EXPECT_TRUE(IsOnLineOf(quillmere::kBishop, SquareOf("c3"), SquareOf("e5"), SquareOf("a1")));
    EXPECT_TRUE(IsOnLineOf(quillmere::kBishop, SquareOf("c3"), SquareOf("e5"), SquareOf("h8")));
    EXPECT_FALSE(IsOnLineOf(quillmere::kRook, SquareOf("c3"), SquareOf("e5"), SquareOf("d4")));
    EXPECT_TRUE(IsOnLineOf(quillmere::kRook, SquareOf("c3"), SquareOf("c5"), SquareOf("c8")));
    EXPECT_FALSE(IsOnLineOf(quillmere::kRook, SquareOf("c3"), SquareOf("c5"), SquareOf("d3")));
}

}  // namespace
}  // namespace quillmere
