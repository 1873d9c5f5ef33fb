#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

struct TCase {
    const char* line;  // '!' marks an event
    bool isLeftOut;
    const char* why;
};

TEST(FreedFigures, PromotedQueen_MustBeAnswered) {
    constexpr TCase kCases[] = {
        {"h1h2 a2a1Q e1e2 a1b1! e2f2", true, "no answer"},
        {"h1h2 a2a1Q e1e2 a1b1! h2h1", false, "attacks it"},
        {"h1h2 a2a1Q e1e2 a1b1! h2h8", false, "checks"},
        {"h1h2 a2a1Q e1e2 a1b1 e2f2", false, "no event"},
        {"h1h2 a2a1Q! e1e2", false, "the promotion itself"},
        {"h1h2 a2a1Q e1e2 e8e7! e2f2", false, "another man"},
        {"h1h2 a2a1R e1e2 a1b1! e2f2", false, "a rook"},
    };
    for (const TCase& c : kCases) {
        test::CWhiteRuleBoard board("4k3/8/8/8/8/8/p7/4K2R", 9, SH_DONTLETPROMOTEDQUEENMOVE);
        board.Settings().LessExceptions = true;
        EXPECT_EQ(IsMoveLeftOut(board.Line(c.line)), c.isLeftOut) << c.line << ": " << c.why;
    }
}

TEST(FreedFigures, AnyPromotedFigure_MustBeAnsweredUnderItsOwnBit) {
    constexpr TCase kCases[] = {
        {"h1h2 a2a1R e1e2 a1b1! e2f2", true, "a promoted rook"},
        {"h1h2 a2a1Q e1e2 a1b1! e2f2", true, "a promoted queen"},
        {"h1h2 a2a1R e1e2 c8d7! e2f2", false, "an old bishop"},
    };
    for (const TCase& c : kCases) {
        test::CWhiteRuleBoard board("2b1k3/8/8/8/8/8/p7/4K2R", 9, SH_DONTLETPROMOTEDFIGUREMOVE);
        board.Settings().LessExceptions = true;
        EXPECT_EQ(IsMoveLeftOut(board.Line(c.line)), c.isLeftOut) << c.line << ": " << c.why;
    }
}

TEST(FreedFigures, BlockedFigureOffItsSquare_GivesUpTheNode) {
    constexpr TCase kCases[] = {
        {"e1e2", false, "all stand"},
        {"e1e2 a8a7 e2e3", true, "the rook left"},
        {"e1e2 a8a7 h1h8", true, "a check does not help"},
        {"e1e2 a8a7! e2e3", true, "an event without an answer"},
        {"e1e2 a8a7! h1h8", false, "an event with an answer"},
        {"e1e2 a8a7! h1h8 e8d7 h8h7", true, "it is still off"},
        {"e1e2 a8a1 h1a1", true, "all moves, captures too"},
        {"e1e2 a8a1! h1a1", false, "taken after an event"},
        {"e1e2 a8a1! h1a1 e8d7 e2e3", false, "a captured figure stands nowhere"},
        {"e1e2 e8e7 e2e3", false, "another man"},
    };
    for (const bool isStrict : {true, false}) {
        for (const TCase& c : kCases) {
            test::CWhiteRuleBoard board("r3k3/8/8/8/8/8/8/4K2R", 9, SH_DONTLETFIGUREUNBLOCK);
            board.Settings().LessExceptions = isStrict;
            board.Settings().BlockedFigureCount = 1;
            board.Settings().BlockedFigureSquares[0] = static_cast<u8>(test::SquareOf("a8"));
            board.Root().m_trackedFigures[0] = static_cast<i8>(test::SquareOf("a8"));
            EXPECT_EQ(IsMoveLeftOut(board.Line(c.line)), isStrict && c.isLeftOut)
                << c.line << ": " << c.why;
        }
    }
}

}  // namespace
}  // namespace quillmere
