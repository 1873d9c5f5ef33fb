#include "heuristics/surrounded_king.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr u32 kWord = SH_ASSERTBLACKKINGSURROUNDED;

struct TLimitCase {
    const char* fen;
    const char* line;
    int allowed;
    u16 halfMoves = 7;
    u32 heur = kWord;
};

TEST(SurroundedKing, LimitFollowsMaterialAndTheLastMoves) {
    constexpr TLimitCase kCases[] = {
        {"4k3/8/8/8/8/8/8/R3K3", "e1e2", 2},
        {"4k3/8/8/8/8/8/8/R3K3", "e1e2", 3, 7, kWord | SH_SAVEQUEENROOK},
        {"4k3/8/8/8/8/8/8/RN2K3", "e1e2", 2, 7, kWord | SH_SAVEQUEENROOK},
        // Queens
        {"n3k3/8/8/8/8/8/8/QQ2K3", "e1e2", 3},
        {"n3k3/8/8/8/8/8/8/QQQ1K3", "e1e2", 4},
        {"n3k3/8/8/8/8/8/8/QQQ1KBB1", "e1e2", 3},
        {"n3k3/8/8/8/8/8/8/QR2K3", "e1e2", 3},
        {"n7/4k3/8/8/8/8/8/QR2K3", "e1f2", 2},  // not on the edge
        {"n3k3/P7/8/8/8/8/8/1R2K3", "e1e2", 3},
        {"n3k3/8/P7/8/8/8/8/1R2K3", "e1e2", 2},
        // Promotions
        {"4k3/8/8/8/P7/8/8/4K3", "e1e2", 3, 9},
        {"4k3/8/8/8/P7/8/8/4K3", "e1e2", 2, 7},
        {"n3k3/8/8/8/P7/8/8/4K3", "e1e2", 2, 9},
        {"8/P3k3/8/8/8/8/8/4K3", "a7a8Q", 3},
        {"8/P3k3/8/8/8/8/8/4K3", "a7a8R", 2},
        // A figure was lost the move before
        {"4k3/8/8/8/8/8/r7/N3K2Q", "e1f1 a2a1 f1g2", 3},
        {"4k3/8/8/8/8/r7/P7/4K2Q", "e1f1 a3a2 f1g1", 2},
        // Black has no figures
        {"4k3/8/8/8/8/8/8/BBN1K3", "e1e2", 3},
        {"4k3/8/8/8/8/8/4p3/BBN1K3", "e1e2", 4},
        {"4k3/8/8/8/8/8/8/BB2K3", "e1e2", 2},
        {"n3k3/8/8/8/8/8/4p3/BBN1K3", "e1e2", 2},
        {"8/P3k3/8/8/8/8/8/BN2K3", "a7a8N", 2},  // a promotion lies behind
        // Checks
        {"n3k3/8/8/8/8/8/8/3RK3", "d1d8", 3},
        {"n3k3/8/8/8/8/8/8/R2QK3", "d1d8", 4},
        {"n3k3/8/8/8/8/8/8/QQQ1K3", "a1e5", 5},
        {"4k3/P7/8/8/8/8/8/4K3", "a7a8Q", 4},
        {"4k3/8/8/8/8/8/8/BBN1K1R1", "g1g8", 3},
        {"4k3/8/8/8/4B3/8/8/K3R3", "e4g6", kAnyFlights},
    };
    for (const TLimitCase& c : kCases) {
        test::CWhiteRuleBoard board(c.fen, c.halfMoves, c.heur);
        EXPECT_EQ(AllowedFlights(board.Line(c.line)), c.allowed) << c.fen << ' ' << c.line;
    }
}

TEST(SurroundedKing, Strict_AllowsTwoFlightsAlways) {
    for (const char* line : {"a1a2", "a1e5"}) {
        test::CWhiteRuleBoard board("n3k3/8/8/8/8/8/8/QQQ1K3", 7, kWord);
        board.Settings().SurroundedStrict = true;
        EXPECT_EQ(AllowedFlights(board.Line(line)), 2) << line;
    }
}

struct TCase {
    const char* fen;
    const char* move;
    bool isLeftOut;
    const char* why;
};

TEST(SurroundedKing, MoreFlightsThanAllowed_IsLeftOut) {
    constexpr TCase kCases[] = {
        {"8/8/8/4k3/8/8/8/R3K3", "e1e2", true, "the king is free"},
        {"k7/8/8/8/8/8/8/1R2K3", "e1e2", false, "two flights at most"},
        {"8/8/8/4k3/8/8/8/KQ6", "b1c1", false, "the queen comes and goes"},
        {"8/7q/8/4k3/8/8/8/KQ6", "b1c1", true, "black has a queen"},
        {"8/8/8/4k3/8/8/8/KQ6", "a1a2", true, "the queen did not move"},
        {"8/8/8/4k3/8/4P3/8/K3Q3", "e1d1", true, "the queen leaves its line"},
        {"8/8/8/4k3/8/4P3/8/K3Q3", "e1e2", false, "the queen stays on its line"},
        {"K7/8/6Q1/3n4/3k4/8/7q/8", "g6f6", true, "the knight can take the queen"},
        {"K2R4/8/6Q1/3n4/3k4/8/7q/8", "g6f6", false, "the knight is pinned"},
    };
    for (const TCase& c : kCases)
        EXPECT_EQ(test::IsLineLeftOut(c.fen, 7, kWord, c.move), c.isLeftOut)
            << c.fen << ' ' << c.move << ": " << c.why;
}

}  // namespace
}  // namespace quillmere
