#include "heuristics/promotion_marks.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;

constexpr u32 kEdge = SH_KEEPKINGONTHEEDGE;
constexpr u32 kExtEdge = SH_KEEPKINGWITHINEXTEDGE;
constexpr u32 kSurrounded = SH_ASSERTBLACKKINGSURROUNDED;
constexpr u32 kSave = SH_SAVEQUEENROOK;

struct TCase {
    const char* fen;
    const char* move;
    u32 before;
    u32 after;
    const char* why;
};

TEST(UpdateAfterWhiteMove, RookTakenBesideTheKeySquare_EndsIt) {
    constexpr TCase kCases[] = {
        {"4k3/8/8/3r4/8/8/8/3RK3", "d1d5", SH_KEYSQUARE, 0, "beside e4"},
        {"4k3/8/3r4/8/8/8/8/3RK3", "d1d6", SH_KEYSQUARE, SH_KEYSQUARE, "too far"},
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", SH_KEYSQUARE, SH_KEYSQUARE, "a knight"},
        {"4k3/8/8/3r4/8/8/8/3RK3", "d1d4", SH_KEYSQUARE, SH_KEYSQUARE, "no capture"},
        {"4k3/8/8/3r4/8/8/8/3RK3", "d1d5", SH_KEYLINE, SH_KEYLINE, "another heuristic"},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 5, c.before);
        board.Settings().KeySquare = static_cast<u8>(test::SquareOf("e4"));
        EXPECT_EQ(board.Line(c.move).Heur, c.after) << c.fen << ' ' << c.move << ": " << c.why;
    }
}

TEST(UpdateAfterWhiteMove, KnightTaken_EndsTheHuntForIt) {
    constexpr u32 kHunt = SH_CAPTUREKNIGHT;
    constexpr TCase kCases[] = {
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", kHunt | kEdge, kExtEdge, "the edge widens"},
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", kHunt | kExtEdge, 0, "the wider edge goes"},
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", kHunt, 0, "nothing else"},
        {"4k3/8/8/3b4/8/8/8/3RK3", "d1d5", kHunt | kEdge, kHunt | kEdge, "a bishop"},
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", kEdge, kEdge, "no hunt"},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 5, c.before);
        EXPECT_EQ(board.Line(c.move).Heur, c.after) << c.fen << ' ' << c.move << ": " << c.why;
    }
}

TEST(UpdateAfterWhiteMove, DecisiveCapture_RelaxesTheEdgeRules) {
    constexpr TCase kCases[] = {
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", kEdge, kExtEdge | kSave, "the last figure"},
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", kSurrounded, kSave, "the last figure"},
        {"4k3/8/8/3n4/8/8/8/3RK3",
         "d1d5",
         kSurrounded | kEdge,
         kEdge | kSave,
         "one step at a time"},
        {"4k3/8/8/3n4/8/8/8/R2RK3", "d1d5", kEdge, kExtEdge, "two rooks"},
        {"4k3/8/8/3n4/8/8/8/3QK3", "d1d5", kEdge, kExtEdge | kSave, "a queen"},
        {"n3k3/8/8/3n4/8/8/8/3QK3", "d1d5", kEdge, kExtEdge | kSave, "a queen against one"},
        {"n3k3/8/8/3n4/8/8/8/3RK3", "d1d5", kEdge, kEdge, "a rook against one"},
        {"nn2k3/8/8/3n4/8/8/8/3QK3", "d1d5", kEdge, kEdge, "two are left"},
        {"4k3/8/8/3p4/8/8/8/3RK3", "d1d5", kEdge, kEdge, "a pawn"},
        {"4k3/8/8/3n4/8/5B2/8/4K1N1", "f3d5", kEdge, kEdge, "no queen or rook"},
        {"4k3/8/8/3n4/8/8/8/3RK3", "d1d5", kExtEdge, kExtEdge, "nothing to relax"},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 11, c.before);
        board.Settings().AutomaticDynamicRelax = true;
        EXPECT_EQ(board.Line(c.move).Heur, c.after) << c.fen << ' ' << c.move << ": " << c.why;
    }
}

TEST(UpdateAfterWhiteMove, DecisiveCapture_NeedsTimeAndALooseKing) {
    const char* fen = "4k3/8/8/3n4/8/8/8/3RK3";
    CWhiteRuleBoard late(fen, 9, kEdge);
    late.Settings().AutomaticDynamicRelax = true;
    EXPECT_EQ(late.Line("d1d5").Heur, kEdge);
    CWhiteRuleBoard off(fen, 11, kEdge);
    EXPECT_EQ(off.Line("d1d5").Heur, kEdge);
    CWhiteRuleBoard strict(fen, 11, kEdge);
    strict.Settings().AutomaticDynamicRelax = true;
    strict.Settings().StrictKingMove = true;
    EXPECT_EQ(strict.Line("d1d5").Heur, kEdge);
    CWhiteRuleBoard released(fen, 11, kEdge);
    released.Settings() = strict.Settings();
    released.Root().m_searchFlags |= kSearchEdgeReleased;
    EXPECT_EQ(released.Line("d1d5").Heur, kExtEdge | kSave);
}

TEST(UpdateAfterWhiteMove, PromotionThatChecksAlongTheEdge_EndsTheEdgeRules) {
    constexpr u32 kWord = kEdge | kSurrounded | SH_AREKINGSNEAR;
    constexpr TCase kCases[] = {
        {"6k1/P7/8/8/8/8/8/R3K3", "a7a8Q", kWord, SH_AREKINGSNEAR, "along the rank"},
        {"8/P7/8/8/8/8/k7/3RK3", "a7a8Q", kWord, SH_AREKINGSNEAR, "along the file"},
        {"6k1/P7/8/8/8/8/8/4K3", "a7a8Q", kWord, kWord, "no helper"},
        {"6k1/P7/8/8/8/8/8/R3K3", "a7a8R", kWord, kWord, "a rook"},
        {"8/P7/8/8/4k3/8/8/R3K3", "a7a8Q", kWord, kWord, "along a diagonal"},
        {"6k1/P7/1n6/8/8/8/8/R3K3", "a7a8Q", kWord, kWord, "can be taken"},
        {"6kn/P7/8/8/8/8/8/R3K3", "e1e2", kWord, kWord, "another move"},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(c.fen, 5, c.before);
        EXPECT_EQ(board.Line(c.move).Heur, c.after) << c.fen << ' ' << c.move << ": " << c.why;
    }
    CWhiteRuleBoard safe(kCases[0].fen, 5, kWord);
    safe.Settings().PromotionSafety = true;
    EXPECT_EQ(safe.Line(kCases[0].move).Heur, kWord);
}

TEST(MarkPromotions, FreePawnInTimeLiesAhead) {
    struct TAhead {
        const char* fen;
        u16 halfMoves;
        bool isAhead;
    };
    constexpr TAhead kCases[] = {
        {"4k3/8/8/8/P7/8/8/4K3", 7, true},
        {"4k3/8/8/8/P7/8/8/4K3", 5, false},
        {"4k3/8/8/8/8/8/P7/4K3", 9, true},  // with the double step
        {"4k3/8/8/8/8/8/P7/4K3", 7, false},
        {"4k3/8/8/8/8/P7/8/4K3", 9, true},
        {"n3k3/8/8/8/P7/8/8/4K3", 15, false},
        {"4k3/8/8/8/8/8/8/4K2R", 15, false},
        {"4k3/8/8/8/P7/8/8/4K3", 8, true},
        {"4k3/8/8/8/P7/8/8/4K3", 6, false},
    };
    for (const TAhead& c : kCases) {
        test::CSearchBoard board(c.fen, c.halfMoves);
        EXPECT_EQ(IsPromotionAhead(board.Root()), c.isAhead) << c.fen << ' ' << c.halfMoves;
    }
}

TEST(MarkPromotions, MarksFollowTheLine) {
    CWhiteRuleBoard board("4k3/P6p/8/8/8/8/8/4K3", 9, kSurrounded);
    EXPECT_NE(board.Line("e1e2").m_searchFlags & kSearchPromotionAhead, 0);
    const u16 flags = board.Line("h7h6 a7a8N").m_searchFlags;
    EXPECT_EQ(flags & kSearchPromotionAhead, 0);
    EXPECT_NE(flags & kSearchPromotionPassed, 0);
    EXPECT_NE(board.Line("h6h5 e2e3").m_searchFlags & kSearchPromotionPassed, 0);
}

TEST(NoteSingleQueen, NotesAQueenThatHuntsAlone) {
    struct THunt {
        const char* fen;
        const char* move;
        int square;
    };
    const THunt kCases[] = {
        {"8/8/8/8/8/1k1K4/7r/5Q2", "f1f8", test::SquareOf("f8")},
        {"8/8/8/8/8/1k1K4/7r/5Q2", "d3d4", kNoSquare},
        {"8/8/8/8/8/1k2K3/7r/5Q2", "f1f8", kNoSquare},  // kings too far
        {"8/8/8/8/8/1k1K4/7r/5Q2", "f1h1", kNoSquare},  // can be taken
        {"8/8/8/8/8/1k1K4/7r/4NQ2", "f1f8", kNoSquare},
        {"n7/8/8/8/8/1k1K4/7r/5Q2", "f1f8", kNoSquare},
    };
    for (const THunt& c : kCases) {
        test::CSearchBoard board(c.fen, 7);
        ASSERT_EQ(board.Play(c.move), kMoveMade);
        NoteSingleQueen(board.Node());
        EXPECT_EQ(board.Thread().singleQueenSquare, c.square) << c.fen << ' ' << c.move;
    }
}

}  // namespace
}  // namespace quillmere
