#include "heuristics/heur_params.h"
#include "heuristics/island.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;
using test::SquareOf;

// Black's pawns keep the fourth rank but for a gap on the g file, which g5-g4 closes.
constexpr const char* kGap = "k7/4K3/8/6p1/pppppp2/8/8/8";

bool IsCaught(TChessboard& node, const std::string& square) {
    return CanWhiteKingBeCaughtOnAnIsland(node, square[0] - 'a', square[1] - '1');
}

struct TIslandCase {
    const char* name;
    const char* fen;
    const char* square;
    bool isCaught;
};

std::string NameOfCase(const testing::TestParamInfo<TIslandCase>& info) {
    return info.param.name;
}

class Island : public testing::TestWithParam<TIslandCase> {};

TEST_P(Island, CatchesTheKing) {
    CWhiteRuleBoard board(GetParam().fen, 9, 0);
    EXPECT_EQ(IsCaught(board.Root(), GetParam().square), GetParam().isCaught);
}

INSTANTIATE_TEST_SUITE_P(
    Squares,
    Island,
    testing::Values(TIslandCase{"BehindTheGap", kGap, "h2", true},
                    TIslandCase{"InTheGapItTakesThePawn", kGap, "h3", false},
                    TIslandCase{"AtHome", kGap, "e6", false},
                    TIslandCase{"Attacked", kGap, "c3", false},
                    TIslandCase{"OnThePawnThatWouldCloseTheGap", kGap, "g5", false},
                    TIslandCase{"ThePawnIsPinned", "3k4/8/4K3/6p1/pppppp1B/8/8/8", "h2", false},
                    TIslandCase{"ThePawnIsNotPinned", "k7/8/4K3/6p1/pppppp1B/8/8/8", "h2", true},
                    TIslandCase{
                        "AManStandsBeforeThePawn", "k7/4K3/8/6p1/ppppppP1/8/8/8", "h2", false},
                    TIslandCase{"TheSmallerPartIsHome", "k7/8/8/6p1/pppppp2/8/8/4K3", "h5", false},
                    TIslandCase{"NoPawns", "k7/4K3/8/8/8/8/8/8", "h2", false}),
    NameOfCase);

TEST(Island, OccupiedSquareIsRefused) {
    CWhiteRuleBoard board("k7/4K3/8/6p1/pppppp2/8/P7/n7", 9, 0);
    for (const char* square : {"a2", "a1", "e7", "a8"}) {
        try {
            IsCaught(board.Root(), square);
            ADD_FAILURE() << square;
        } catch (const std::exception& error) {
            EXPECT_STREQ(error.what(), "Error in CanWhiteKingBeCaughtOnAnIsland");
        }
    }
}

TEST(Island, LeavesTheNodeAsItWas) {
    CWhiteRuleBoard board("k7/4K3/8/6p1/pppppp2/8/P7/8", 9, SH_DONTLETFIGUREUNBLOCK);
    THeuristicSettings& settings = board.Settings();
    settings.BlockedFigureCount = 1;
    settings.BlockedFigureSquares[0] = static_cast<u8>(SquareOf("g5"));
    SetHeur(board.Root(), SH_DONTLETFIGUREUNBLOCK | SH_ZUGZWANG);
    const TChessboard before = board.Root();
    const THeuristicSettings settingsBefore = settings;
    EXPECT_NE(before.HeurParams, 0u);
    for (const char* square : {"h2", "h3", "c3", "g5", "a2"}) {
        try {
            const bool isCaught = IsCaught(board.Root(), square);
            EXPECT_EQ(isCaught, std::string(square) == "h2");
        } catch (const std::exception&) {
            EXPECT_STREQ(square, "a2");
        }
        EXPECT_EQ(std::memcmp(&before, &board.Root(), sizeof before), 0) << square;
        EXPECT_EQ(settings, settingsBefore) << square;
    }
}

}  // namespace
}  // namespace quillmere
