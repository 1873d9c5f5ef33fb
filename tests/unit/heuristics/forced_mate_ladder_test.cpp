#include "heuristics/forced_mate_ladder.h"
#include "heuristics/relaxation.h"
#include "heuristics/relaxation_log.h"
#include "search/forcing_moves.h"
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

// Positions for the rungs of the modes. Where a plus is useful, a quiet first move threatens a
// longer mate by checks.
constexpr const char* kPlusUseful = "8/4k3/8/8/8/8/R7/KR6 w - - 0 1";
constexpr const char* kPlusUseless = "8/8/8/3k4/8/8/8/K7 w - - 0 1";
constexpr const char* kThreeFigures = "8/8/8/3k4/8/8/8/KRRB4 w - - 0 1";
constexpr const char* kThreeFiguresAndQueens = "1q6/8/8/3k4/8/8/8/KRRB4 w - - 0 1";
constexpr const char* kTwoRooks = "8/8/8/3k4/8/8/8/KR5R w - - 0 1";
constexpr const char* kQueenAndRook = "8/8/8/3k4/8/8/8/KR4Q1 w - - 0 1";
constexpr const char* kBlackHasMore = "8/1rrr4/1qq5/3k4/8/8/8/KRRB4 w - - 0 1";
constexpr const char* kQueenAndStuckKing = "k7/8/1Q6/8/8/8/8/KR5R w - - 0 1";
constexpr const char* kFourFiguresAtTheEdge = "k7/7R/8/8/8/8/8/KR1BN3 w - - 0 1";

u64 g_milliseconds = 0;
u64 TestClock() {
    return g_milliseconds;
}

// A root under SH_FINDFORCEDMATE alone, or with others; the analysis starts at 0.
class CLadderBoard : public test::CSearchBoard {
public:
    explicit CLadderBoard(const char* fen, u16 halfMoves = 23, u32 others = 0)
        : CSearchBoard(fen, halfMoves) {
        Root().Heur = SH_FINDFORCEDMATE | others;
        Root().m_pass = kPassHeuristics;
        Context().relaxationClock = TestClock;
        g_milliseconds = 0;
        Context().ResetAnalysis();
    }
    THeuristicSettings& Settings() { return Thread().heuristics; }
    void Start(u8 mode, u8 relaxations = 0) {
        Settings().FfmStartMode = Settings().FfmMode = mode;
        Settings().FfmRelaxations = relaxations;
    }
    int Relax() { return TryRelaxSpecialHeuristics(Root()); }
    int Mode() { return (Root().Heur & SH_FINDFORCEDMATE) != 0 ? Settings().FfmMode : 0; }
};

TEST(ForcedMateLadder, ModeWithoutRelaxations_HasOnePass) {
    CLadderBoard board(kOpen, 23, SH_AREKINGSNEAR);
    board.Start(kForcedThreatOfOne);
    EXPECT_EQ(board.Relax(), 1);
    EXPECT_EQ(board.Root().Heur, u32{SH_AREKINGSNEAR});
    EXPECT_EQ(board.Settings().FfmMode, kForcedThreatOfOne);
}

TEST(ForcedMateLadder, PlannedRelaxations_RaiseTheMode) {
    const struct {
        const char* fen;
        u8 mode;
        u8 relaxations;
        int next[4];  // modes behind each relaxation, 0 once the bit has gone
    } rows[] = {
        {kPlusUseful, 3, 1, {4, 0, 0, 0}},
        {kPlusUseful, 3, 2, {4, 5, 6, 0}},  // 6 of a white side without a queen, at most 21
        {kPlusUseless, 3, 1, {5, 6, 0, 0}},
        {kPlusUseless, 2, 1, {3, 0, 0, 0}},
        {kPlusUseless, 5, 1, {7, 0, 0, 0}},
        {kPlusUseful, 8, 1, {9, 0, 0, 0}},
        {kPlusUseful, 9, 1, {0, 0, 0, 0}},  // there is no greater mode
    };
    for (const auto& row : rows) {
        CLadderBoard board(row.fen, 21);
        board.Start(row.mode, row.relaxations);
        for (const int next : row.next) {
            if (board.Mode() != 0) {
                EXPECT_EQ(board.Relax(), next != 0 ? 1 : 0);
            }
            EXPECT_EQ(board.Mode(), next) << row.fen << ", mode " << int{row.mode};
        }
    }
}

TEST(ForcedMateLadder, WithoutAQueen_ThreatsOfTwoGetTheirPlus) {
    const struct {
        const char* fen;
        u16 halfMoves;
        bool hasManyReplies;
        int next;
    } rows[] = {
        {kThreeFigures, 21, false, 6},
        {kThreeFigures, 23, false, 0},
        {kThreeFigures, 23, true, 0},  // black has no queen
        {kThreeFiguresAndQueens, 23, true, 6},
        {kThreeFiguresAndQueens, 23, false, 0},
        {kQueenAndRook, 21, false, 0},
    };
    for (const auto& row : rows) {
        CLadderBoard board(row.fen, row.halfMoves);
        board.Root().m_positionFlags &= ~kPositionManyReplies;
        if (row.hasManyReplies)
            board.Root().m_positionFlags |= kPositionManyReplies;
        board.Start(kForcedThreatOfTwo);
        board.Relax();
        EXPECT_EQ(board.Mode(), row.next) << row.fen << ", " << row.halfMoves;
    }
}

TEST(ForcedMateLadder, FastPasses_AddAMode) {
    const struct {
        const char* fen;
        u8 mode;
        u64 milliseconds;
        int answer;
        int next;
    } rows[] = {
        {kThreeFigures, 3, 999, -1, 4},
        {kThreeFigures, 3, 1000, 0, 0},
        {kThreeFigures, 2, 0, -1, 4},
        {kThreeFigures, 4, 0, -1, 6},
        {kThreeFigures, 5, 0, -1, 6},
        {kThreeFigures, 6, 0, 0, 0},
        {kQueenAndRook, 3, 0, -1, 4},
        {kQueenAndRook, 2, 0, 0, 0},          // checks are enough for a queen
        {kTwoRooks, 3, 0, 0, 0},              // too few figures
        {kBlackHasMore, 3, 0, 0, 0},          // white forces too little
        {kQueenAndStuckKing, 3, 0, 0, 0},     // held already
        {kFourFiguresAtTheEdge, 3, 0, 0, 0},  // the same
    };
    for (const auto& row : rows) {
        CLadderBoard board(row.fen);
        board.Context().mayRelaxByTime = true;
        board.Start(row.mode);
        g_milliseconds = row.milliseconds;
        EXPECT_EQ(board.Relax(), row.answer) << row.fen << ", mode " << int{row.mode};
        EXPECT_EQ(board.Mode(), row.next) << row.fen << ", mode " << int{row.mode};
    }
}

TEST(ForcedMateLadder, WhereEqualWorkIsPromised_TimeAddsNothing) {
    CLadderBoard board(kThreeFigures);
    board.Start(kForcedThreatOfOne);
    EXPECT_EQ(board.Relax(), 0);
    EXPECT_EQ(board.Root().Heur, 0U);
}

TEST(ForcedMateLadder, CycleThatRunsTwice_BeginsAgainOnce) {
    CLadderBoard board(kPlusUseful, 23, SH_AREKINGSNEAR);
    board.Start(kForcedThreatOfOne, 2);
    board.Settings().FfmCustom = true;
    board.Settings().FfmCustomRelaxations = 1;
    const int modes[] = {4, 3, 4, 5, 0};
    const bool isFirstRound[] = {true, false, false, false, false};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(board.Relax(), 1);
        EXPECT_EQ(board.Mode(), modes[i]) << i;
        EXPECT_EQ(board.Settings().FfmCustom, isFirstRound[i]) << i;
    }
    EXPECT_EQ(board.Root().Heur, u32{SH_AREKINGSNEAR});
}

TEST(ForcedMateLadder, PositionOfTheTables_EarnsNoModeMore) {
    class CTables : public IMaterialTables {
    public:
        bool HasTables(const TChessboard& /*node*/) const override { return true; }
        bool IsSmallMaterial(const TChessboard& /*node*/) const override { return false; }
    } tables;
    for (const i8 withOther : {i8{-1}, i8{1}}) {
        CLadderBoard board(kThreeFigures);
        board.Context().mayRelaxByTime = true;
        board.Context().materialTables = &tables;
        board.Settings().FfmWithOther = withOther;
        board.Start(kForcedThreatOfOne);
        EXPECT_EQ(board.Relax(), withOther > 0 ? 0 : -1);
    }
}

}  // namespace
}  // namespace quillmere
