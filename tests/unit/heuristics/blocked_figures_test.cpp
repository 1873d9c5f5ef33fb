#include "tests/support/reply_cases.h"

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::SettingsOf;
using test::TReplyCase;

constexpr u32 kHeur = SH_DONTLETFIGUREUNBLOCK;

void TrackRookA8(CSearchBoard& board) {
    board.Root().m_trackedFigures[0] = SquareAt(0, 7);
    SettingsOf(board).BlockedFigureCount = 1;
    SettingsOf(board).BlockedFigureSquares[0] = SquareAt(0, 7);
    SettingsOf(board).BlockedFigureInitialSquares[0] = SquareAt(0, 7);
}

class BlockedFigures : public test::ReplyRule {};

TEST_P(BlockedFigures, AreNotLetOut) {
    test::CheckReplyCase(GetParam());
}

constexpr const char* kOpen = "r3k3/8/8/8/8/8/8/4K2Q";
// After any rook move white mates on the last rank, unless the rook guards it.
constexpr const char* kMating = "r5k1/5ppp/8/8/8/8/7P/4R1K1";

INSTANTIATE_TEST_SUITE_P(
    Rows,
    BlockedFigures,
    testing::Values(
        TReplyCase{"TheFigureMoves", kHeur, kOpen, 4, "a8b8", true, TrackRookA8},
        TReplyCase{
            "TheFigureCaptures", kHeur, "r3k3/8/8/8/8/8/8/N3K2Q", 4, "a8a1", true, TrackRookA8},
        TReplyCase{"TheFigureCastles", kHeur, kOpen, 4, "e8c8", true, TrackRookA8},
        TReplyCase{"AnotherManMoves", kHeur, kOpen, 4, "e8e7", false, TrackRookA8},
        TReplyCase{"AFigureThatIsNotListed", kHeur, kOpen, 4, "a8b8", false},
        TReplyCase{"WithAMateAtOnce", kHeur, kMating, 4, "a8a2", false, TrackRookA8},
        TReplyCase{"WithoutTheMate", kHeur, kMating, 4, "a8b8", true, TrackRookA8},
        TReplyCase{"BeforeTheLastMove", kHeur, kOpen, 2, "a8b8", false, TrackRookA8}),
    test::NameOfCase);

TEST(BlockedFigures, AFreedFigureIsMarkedOnlyWithLessExceptions) {
    test::CReplyLine loose(kMating, 4, kHeur, TrackRookA8);
    loose.Play("a8a2");
    EXPECT_EQ(loose.Node().m_lastMove.flags & kMoveMarkEvent, 0);
    test::CReplyLine strict(kMating, 4, kHeur, [](CSearchBoard& board) {
        TrackRookA8(board);
        SettingsOf(board).LessExceptions = true;
    });
    strict.Play("a8a2");
    EXPECT_NE(strict.Node().m_lastMove.flags & kMoveMarkEvent, 0);
}

TEST(BlockedFigures, AreFollowedThroughTheLine) {
    // The rook has left its square in a move that another heuristic let through; it still counts.
    test::CReplyLine line(kOpen, 6, kHeur, TrackRookA8);
    line.Play("a8b8 e1e2 b8c8");
    EXPECT_TRUE(line.IsLeftOut());
}

}  // namespace
}  // namespace quillmere
