#include "heuristics/sweeping_white_rook.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

struct TCase {
    const char* fen;
    const char* move;
    bool isLeftOut;
    const char* why;
};

constexpr u16 kHalfMoves = 5;

TEST(SweepingWhiteRook, RookGoesUpOnlyForAReason) {
    constexpr TCase kCases[] = {
        {"6k1/5pp1/8/8/8/8/8/R3K1n1", "a1a2", true, "no reason"},
        {"6k1/5pp1/8/8/8/8/8/R3K1n1", "a1b1", false, "sweeps"},
        {"6k1/5pp1/8/8/8/8/8/R3K1n1", "e1d1", false, "the king's move"},
        {"6k1/5pp1/8/8/8/8/8/R3K1n1", "a1a8", true, "a check alone"},
        {"6k1/5ppp/8/8/8/8/8/R3K1n1", "a1a2", false, "threatens mate"},
        {"6k1/5ppp/8/8/8/8/8/R3K1n1", "a1a8", false, "mates"},
        {"6k1/5pp1/8/8/8/8/8/RN2K3", "a1a2", false, "black has no figure"},
        {"6k1/5pp1/8/8/8/8/8/R3K3", "a1a2", true, "white has no other figure"},
        {"7k/6pp/8/8/8/8/8/4K1nR", "h1h5", false, "along the king's edge"},
        {"6k1/6pp/8/8/8/8/8/4K1nR", "h1h5", true, "the king is on another edge"},
        {"6k1/5pp1/8/8/8/8/Rp6/4K1n1", "a2b2", false, "takes a pawn that promotes"},
        {"6k1/5pp1/8/8/8/8/Rp6/1n2K3", "a2b2", true, "takes a pawn that is blocked"},
        {"6k1/5pp1/Rp6/8/8/8/8/4K1n1", "a6b6", true, "takes a pawn that is too slow"},
    };
    for (const TCase& c : kCases)
        EXPECT_EQ(test::IsLineLeftOut(c.fen, kHalfMoves, SH_SWEEPINGWHITEROOK, c.move), c.isLeftOut)
            << c.fen << ' ' << c.move << ": " << c.why;
}

TEST(SweepingWhiteRook, FigureLostForNothing_EndsTheHeuristic) {
    constexpr u32 kWord = SH_SWEEPINGWHITEROOK | SH_DONTLOSEANYFIGURES;
    struct TLoss {
        const char* fen;
        const char* move;
        u32 heur;
    };
    constexpr TLoss kLosses[] = {
        {"6k1/1b3pp1/8/3N4/8/8/8/R3K3", "a1c1", SH_DONTLOSEANYFIGURES},
        {"6k1/1b3pp1/8/3N4/4P3/8/8/R3K3", "a1c1", kWord},  // the pawn takes back
        {"6k1/5bp1/8/3N4/2P5/8/8/3R2K1", "d1c1", kWord},
        {"6k1/1b3pp1/8/3P4/8/8/8/R3K3", "a1c1", kWord},  // only a pawn is lost
        {"6k1/5pp1/8/8/8/8/8/R3K1n1", "a1a2", kWord},    // left out
        // The pawn may not take back: it is pinned.
        {"4r1k1/1b3pp1/8/3N4/4P3/8/8/R3K3", "a1c1", SH_DONTLOSEANYFIGURES},
    };
    for (const TLoss& c : kLosses) {
        test::CWhiteRuleBoard board(c.fen, kHalfMoves, kWord);
        TChessboard& child = board.Line(c.move);
        IsMoveLeftOut(child);
        EXPECT_EQ(child.Heur, c.heur) << c.fen << ' ' << c.move;
    }
}

}  // namespace
}  // namespace quillmere
