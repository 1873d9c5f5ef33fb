#include "heuristics/forced_mate_ladder.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

constexpr const char* kOpen = "8/8/8/3k4/8/8/8/KR5R w - - 0 1";

std::string NearLimit(u64 milliseconds, const std::string& decision) {
    return "Time dependent relaxation near the limit: calcTime=" + std::to_string(milliseconds) +
           " msec.; limit=1000 msec. (additional relaxation " + decision + ")";
}

TEST(AdditionalRelaxation, Limit_IsOneSecondAndIsToldNearby) {
    const struct {
        u64 milliseconds;
        bool isAccepted;
        std::string line;
    } rows[] = {
        {0, true, ""},
        {799, true, ""},
        {800, true, NearLimit(800, "accepted")},
        {999, true, NearLimit(999, "accepted")},
        {1000, false, NearLimit(1000, "refused")},
        {1200, false, NearLimit(1200, "refused")},
        {1201, false, ""},
    };
    for (const auto& row : rows) {
        std::string told;
        const auto log = [&](const std::string& line) { told += line; };
        EXPECT_EQ(IsAdditionalRelaxationAccepted(row.milliseconds, log), row.isAccepted)
            << row.milliseconds;
        EXPECT_EQ(told, row.line);
    }
}

TEST(FfmPreliminary, Word_IsKeptAndWeakened) {
    test::CSearchBoard board(kOpen, 9);
    board.Thread().heuristics.FfmPreliminary = true;
    board.Root().Heur = 0x80205;
    ApplyFfmPreliminary(board.Root());
    EXPECT_EQ(board.Root().Heur, 0x241U);
    EXPECT_EQ(board.Thread().heuristics.FfmSavedHeur, 0x80205U);
    EXPECT_EQ(TryRelaxFfm(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x80205U);
    EXPECT_EQ(TryRelaxFfm(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x80005U);
}

TEST(FfmPreliminary, WithoutForcedMateOrSetting_DoesNothing) {
    test::CSearchBoard board(kOpen, 9);
    board.Root().Heur = 0x204;
    ApplyFfmPreliminary(board.Root());
    EXPECT_EQ(board.Root().Heur, 0x204U);
    board.Thread().heuristics.FfmPreliminary = true;
    board.Root().Heur = 0x4;
    ApplyFfmPreliminary(board.Root());
    EXPECT_EQ(board.Root().Heur, 0x4U);
    EXPECT_EQ(board.Thread().heuristics.FfmSavedHeur, 0U);
}

}  // namespace
}  // namespace quillmere
