#include "heuristics/heur_params.h"
#include "heuristics/relaxation.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>

namespace quillmere {
namespace {

using test::CSearchBoard;

constexpr u16 kHalfMoves = 9;

// Positions. In the open ones the black king has its eight squares.
constexpr const char* kOpen = "8/8/8/3k4/8/8/8/KR5R w - - 0 1";
constexpr const char* kOpenWithBishop = "8/8/8/3k4/8/8/8/KBR4R w - - 0 1";
constexpr const char* kOpenLoneFigure = "8/8/8/3k4/8/8/8/K6R w - - 0 1";
constexpr const char* kPinAtCorner = "R5rk/8/8/8/8/8/8/KB6 w - - 0 1";
constexpr const char* kFacedByQueen = "k1K5/8/8/8/8/8/7Q/3nn3 w - - 0 1";
constexpr const char* kPawnWalks = "8/8/8/3k4/8/P7/8/KB6 w - - 0 1";
constexpr const char* kPawnsAlone = "7k/3p4/8/8/8/8/P7/K7 w - - 0 1";
constexpr const char* kPawnsAloneOffEdge = "8/3p2k1/8/8/8/8/P7/K7 w - - 0 1";
constexpr const char* kPawnsAloneStopped = "7k/3p4/3P4/8/8/8/P7/K7 w - - 0 1";
constexpr const char* kTwoMinorFigures = "8/p7/8/5K1k/8/8/8/NN6 w - - 0 1";
constexpr const char* kTwoMinorFiguresFarKing = "8/p7/8/4N2k/4N3/8/8/K7 w - - 0 1";
constexpr const char* kTwoMinorFiguresFourMen = "8/8/8/5K1k/8/8/8/NN6 w - - 0 1";
constexpr const char* kPawnsAloneShutIn = "7k/3p3b/8/8/8/8/PP6/K7 w - - 0 1";
constexpr const char* kBishopAgainstMore = "8/6rr/7r/3k4/8/8/PP6/KBR4R w - - 0 1";
constexpr const char* kWalledWithTwoFlights = "kr6/8/8/8/8/8/8/K1R5 w - - 0 1";
constexpr const char* kQueenFar = "7k/8/8/8/8/8/K7/3Q4 w - - 0 1";
constexpr const char* kOneFlight = "7k/5K2/8/8/8/8/8/R7 w - - 0 1";
constexpr const char* kBlockable = "r7/7p/8/3k4/8/8/8/1K5R w - - 0 1";
constexpr const char* kClosed = "6Nk/8/7K/8/8/p7/P7/8 w - - 0 1";

void Block(TChessboard& node, std::initializer_list<const char*> squares) {
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    settings.BlockedFigureCount = 0;
    for (const char* text : squares) {
        const int square = test::SquareOf(text);
        const int entry = settings.BlockedFigureCount++;
        settings.BlockedFigureSquares[entry] = static_cast<u8>(square);
        settings.BlockedFigureInitialSquares[entry] = static_cast<u8>(square);
        node.m_trackedFigures[entry] = static_cast<i8>(square);
    }
}

void SetBlock(THeuristicSettings& settings, int countBefore, std::initializer_list<int> squares) {
    settings.BlockedFigureCountBefore = static_cast<u8>(countBefore);
    settings.BlockedFigureCount = static_cast<u8>(squares.size());
    for (int entry = 0; entry < kMaxBlockedFigures; ++entry) {
        const bool isOn = entry < static_cast<int>(squares.size());
        const u8 square = isOn ? static_cast<u8>(squares.begin()[entry]) : kNoSquare;
        settings.BlockedFigureSquares[entry] = square;
        settings.BlockedFigureInitialSquares[entry] = square;
    }
}

constexpr int kA8 = 56;
constexpr int kH7 = 55;

struct TRow {
    const char* name;
    const char* fen;
    u32 word;
    // Before the step: settings and flags of the node.
    void (*prepare)(TChessboard& node, THeuristicSettings& settings);
    u32 expectedWord;
    int expectedAnswer;
    // What the step changes in the settings, besides the count of relaxations.
    void (*change)(THeuristicSettings& settings);
};

void Nothing(THeuristicSettings& /*settings*/) {}
void Plain(TChessboard& /*node*/, THeuristicSettings& /*settings*/) {}

#define SETTINGS []([[maybe_unused]] TChessboard & node, [[maybe_unused]] THeuristicSettings & s)
#define CHANGE [](THeuristicSettings & s)

// clang-format off
const TRow kRows[] = {
    {"1 not wanted", kOpen, 0x4004,
     SETTINGS { s.LetRelaxHeuristics = false; }, 0, 0, CHANGE { s.RelaxationCount = 0; }},
    {"3 nothing on", kOpen, 0, Plain, 0, 0, CHANGE { s.RelaxationCount = 0; }},
    {"3 block comes back", kOpen, 0x4001,
     SETTINGS { s.IsReapplyBlockPending = true; }, 0x81, 1,
     CHANGE { s.IsReapplyBlockPending = false; }},
    {"4 key figure for the block", kOpen, 0x84,
     SETTINGS { s.StrictKingMove = true; s.IsSwapBlockAndKeyFigurePending = true; },
     0x400004, 1, Nothing},
    {"4 block again, and on to 11", kOpen, 0x400004,
     SETTINGS { s.StrictKingMove = true; s.IsSwapBlockAndKeyFigurePending = true; },
     0x84, 1, CHANGE { s.IsSwapBlockAndKeyFigurePending = false; s.StrictKingMove = false; }},
    {"5 sweeping rook first", kOpen, 0x8c00000a, Plain, 0x8c000008, 1, Nothing},
    {"5 zugzwang", kOpen, 0x8c000008, Plain, 0x0c000008, 1, Nothing},
    {"5 sea snake", kOpen, 0x0c000008, Plain, 0x04000008, 1, Nothing},
    {"5 one-colour play", kOpen, 0x04000008,
     SETTINGS { node.m_captureState |= kOneColourParity0; }, 0x04000000, 1, Nothing},
    {"5 near corner", kOpen, 0x04000001, Plain, 1, 1, Nothing},
    {"5 surrounded for strict", kOpen, 0x84,
     SETTINGS { s.StrictKingMove = s.KingMoveExceptions = true;
                s.AllowSwitchToSurrounded = 1; }, 0x80080, 1, Nothing},
    {"5 last drop ends", kOpen, 0x2, Plain, 0, 0, Nothing},
    {"6 forced mate", kOpen, 0x206, Plain, 0x6, 1, Nothing},
    {"6 forced mate alone", kOpen, 0x200, Plain, 0, 0, Nothing},
    {"6 preliminary pass", kOpen, 0x240,
     SETTINGS { s.FfmPreliminary = true; s.FfmSavedHeur = 0x204; }, 0x204, 1,
     CHANGE { s.FfmPreliminary = false; }},
    {"7 marked figure", kBlockable, 0xa0,
     SETTINGS { Block(node, {"a8", "h7"}); s.InitialBlackCounts[1] = 3;
                s.PendingBlockRemovals[0] = kA8; s.PendingBlockRemovalCount = 1; }, 0xa0, 1,
     CHANGE { SetBlock(s, 2, {kH7}); s.PendingBlockRemovalCount = 0; }},
    {"7 all marked", kBlockable, 0xa0,
     SETTINGS { Block(node, {"a8", "h7"}); s.InitialBlackCounts[3] = 3;
                s.CanApplyBlockDynamically2 = true; s.PendingBlockRemovals[0] = kA8;
                s.PendingBlockRemovals[1] = kH7; s.PendingBlockRemovalCount = 2; }, 0x20, 1,
     CHANGE { SetBlock(s, 1, {}); s.PendingBlockRemovalCount = 0; s.ApplyBlockDynamically = false;
              s.CanApplyBlockDynamically2 = false; }},
    {"7 few figures, on to 8", kBlockable, 0xa0,
     SETTINGS { Block(node, {"a8", "h7"}); s.InitialBlackCounts[1] = 2; s.InitialBlackCounts[4] = 8;
                s.PendingBlockRemovals[0] = kA8; s.PendingBlockRemovalCount = 1; }, 0x80, 1, Nothing},
    {"7 not dynamic, on to 8", kBlockable, 0xa0,
     SETTINGS { Block(node, {"a8", "h7"}); s.InitialBlackCounts[1] = 3; s.ApplyBlockDynamically = false;
                s.PendingBlockRemovals[0] = kA8; s.PendingBlockRemovalCount = 1; }, 0x80, 1, Nothing},
    {"8 main diagonal", kOpen, 0x400020, Plain, 0x400000, 1, Nothing},
    {"9 key figure at the corner", kPinAtCorner, 0x400084,
     SETTINGS { s.StrictKingMove = true; s.KeyWhiteFigureSquare = 56;
                s.KeyWhiteFigurePinned = 62; }, 0x84, 1,
     CHANGE { s.IsSwapBlockAndKeyFigurePending = true; }},
    {"9 without the block", kPinAtCorner, 0x400004,
     SETTINGS { s.StrictKingMove = true; s.KeyWhiteFigureSquare = 56;
                s.KeyWhiteFigurePinned = 62; }, 0x4, 1, Nothing},
    {"9 no pin, on to 11", kPinAtCorner, 0x400084,
     SETTINGS { s.StrictKingMove = s.KingMoveExceptions = true; s.KeyWhiteFigureSquare = 1;
                s.KeyWhiteFigurePinned = 62; }, 0x400084, 1, CHANGE { s.StrictKingMove = false; }},
    {"10 exceptions", kFacedByQueen, 0x4,
     SETTINGS { s.StrictKingMove = true; }, 0x4, 1,
     CHANGE { s.KingMoveExceptions = true; }},
    {"10 block rests, and exceptions", kFacedByQueen, 0x84,
     SETTINGS { Block(node, {"d1", "e1", "h8"}); s.StrictKingMove = true; }, 0x4, 1,
     CHANGE { s.KingMoveExceptions = s.IsReapplyBlockPending = true; }},
    {"10 block rests, and on to 11", kOpenLoneFigure, 0x84,
     SETTINGS { Block(node, {"d1", "e1", "h8"}); s.StrictKingMove = true; }, 0x4, 1,
     CHANGE { s.StrictKingMove = false; s.IsReapplyBlockPending = true; }},
    {"10 two blocked figures do not rest", kOpenLoneFigure, 0x84,
     SETTINGS { Block(node, {"d1", "e1"}); s.StrictKingMove = true; }, 0x84, 1,
     CHANGE { s.StrictKingMove = false; }},
    {"10 more white figures let it stand", kOpen, 0x84,
     SETTINGS { Block(node, {"d1", "e1", "h8"}); s.StrictKingMove = true; }, 0x84, 1,
     CHANGE { s.StrictKingMove = false; }},
    {"11 no longer strict", kOpenWithBishop, 0x4,
     SETTINGS { s.StrictKingMove = true; s.AllowSwitchToSurrounded = 1; }, 0x4, 1,
     CHANGE { s.StrictKingMove = false; }},
    {"11 surrounded at once", kOpenWithBishop, 0x4,
     SETTINGS { s.StrictKingMove = true; s.AllowSwitchToSurrounded = 2; }, 0x80000, 1,
     CHANGE { s.StrictKingMove = false; }},
    {"11 no bishop", kOpen, 0x4,
     SETTINGS { s.StrictKingMove = true; s.AllowSwitchToSurrounded = 2; }, 0x4, 1,
     CHANGE { s.StrictKingMove = false; }},
    {"11 black has more", kBishopAgainstMore, 0x4,
     SETTINGS { s.StrictKingMove = true; s.AllowSwitchToSurrounded = 2; }, 0x4, 1,
     CHANGE { s.StrictKingMove = false; }},
    {"11 a promotion passed", kOpenWithBishop, 0x4,
     SETTINGS { node.m_searchFlags |= kSearchPromotionPassed; s.StrictKingMove = true;
                s.AllowSwitchToSurrounded = 2; }, 0x4, 1, CHANGE { s.StrictKingMove = false; }},
    {"11 edge released, on to 15", kOpen, 0x100004,
     SETTINGS { node.m_searchFlags |= kSearchEdgeReleased; s.StrictKingMove = true; }, 0x4, 1, Nothing},
    {"12 marked figure of few", kBlockable, 0x80,
     SETTINGS { Block(node, {"a8", "h7"}); s.PendingBlockRemovals[0] = kH7;
                s.PendingBlockRemovalCount = 1; }, 0x80, 1,
     CHANGE { SetBlock(s, 2, {kA8}); s.PendingBlockRemovalCount = 0; }},
    {"12 the only one, nothing else on", kBlockable, 0x80,
     SETTINGS { Block(node, {"h7"}); s.PendingBlockRemovals[0] = kH7;
                s.PendingBlockRemovalCount = 1; }, 0, 0,
     CHANGE { SetBlock(s, 1, {}); s.PendingBlockRemovalCount = 0; s.ApplyBlockDynamically = false; }},
    {"13 key figure", kOpen, 0x400001, Plain, 0x1, 1, Nothing},
    {"13 key figure, to be swapped", kOpen, 0x400084,
     SETTINGS { node.m_searchFlags |= kSearchEdgeReleased; s.StrictKingMove = true; }, 0x84, 1,
     CHANGE { s.IsSwapBlockAndKeyFigurePending = true; }},
    {"13 queen checks twice", kOpen, 0x10800,
     SETTINGS { s.AllowRelaxQueenCheckTwice = s.AllowRelaxPromotedQueen = true; }, 0x800, 1,
     Nothing},
    {"13 promoted queen", kOpen, 0x10800,
     SETTINGS { s.AllowRelaxPromotedQueen = true; }, 0x10000, 1, Nothing},
    {"14 block effective", kBlockable, 0x100080, SETTINGS { Block(node, {"a8"}); }, 0x100080, 1,
     CHANGE { s.BlockedFiguresEffective = true; }},
    {"15 single queen mate", kOpen, 0x108000, Plain, 0x8000, 1, Nothing},
    {"16 losing figures", kPawnWalks, 0x88000, Plain, 0x80000, 1, Nothing},
    {"16 kept, and on to 17", kPawnWalks, 0x88000,
     SETTINGS { node.m_searchFlags |= kSearchPromotionAhead; }, 0x8000, 1, Nothing},
    {"16 kept only with surrounded", kPawnWalks, 0x8001,
     SETTINGS { node.m_searchFlags |= kSearchPromotionAhead; }, 0x1, 1, Nothing},
    {"16 a rook is there", kOpen, 0x88000,
     SETTINGS { node.m_searchFlags |= kSearchPromotionAhead; }, 0x80000, 1, Nothing},
    {"17 surrounded no longer strict", kOpen, 0x80004,
     SETTINGS { s.SurroundedStrict = true; }, 0x80004, 1,
     CHANGE { s.SurroundedStrict = false; }},
    {"17 surrounded", kOpen, 0x80004, Plain, 0x4, 1, Nothing},
    {"18 edge, nothing instead", kOpen, 0x4, Plain, 0, 0, Nothing},
    {"18 pawns alone", kPawnsAlone, 0x4,
     SETTINGS { s.EdgeSquaresInclCorner = true; }, 0x40, 1,
     CHANGE { s.EdgeSquaresInclCorner = false; }},
    {"18 pawns alone, king off the edge", kPawnsAloneOffEdge, 0x4, Plain, 0x40, 1,
     CHANGE { s.EdgeSquaresInclCorner = true; }},
    {"18 pawns alone, black's is stopped", kPawnsAloneStopped, 0x4, Plain, 0, 0, Nothing},
    {"18 pawns alone, white's king is shut in", kPawnsAloneShutIn, 0x4, Plain, 0, 0, Nothing},
    {"18 two minor figures, four men", kTwoMinorFiguresFourMen, 0x4, Plain, 0, 0, Nothing},
    {"18 two minor figures", kTwoMinorFigures, 0x4, Plain, 0x80000, 1, Nothing},
    {"18 two minor figures, far king", kTwoMinorFiguresFarKing, 0x4, Plain, 0, 0, Nothing},
    {"18 a promotion passed", kQueenFar, 0x4,
     SETTINGS { node.m_searchFlags |= kSearchPromotionPassed; }, 0x40, 1, Nothing},
    {"18 a promotion ahead is none", kQueenFar, 0x4,
     SETTINGS { node.m_searchFlags |= kSearchPromotionAhead; }, 0, 0, Nothing},
    {"18 no room", kOneFlight, 0x4, Plain, 0x80000, 1, Nothing},
    {"18 no room, extended edge on already", kOneFlight, 0x44, Plain, 0x40, 1, Nothing},
    {"19 freest figure goes", kBlockable, 0xc0,
     SETTINGS { Block(node, {"h7", "a8"}); s.BlockedFiguresEffective = true; }, 0xc0, 1,
     CHANGE { SetBlock(s, 2, {kH7}); }},
    {"19 no figure left", kBlockable, 0xc0, Plain, 0x40, 1,
     CHANGE { s.ApplyBlockDynamically = false; }},
    {"19 dynamic flag alone", kBlockable, 0x40,
     SETTINGS { s.CanApplyBlockDynamically2 = true; }, 0x40, 1,
     CHANGE { s.ApplyBlockDynamically = s.CanApplyBlockDynamically2 = false; }},
    {"19 closed position, on to 21", kClosed, 0xc0,
     SETTINGS { Block(node, {"a3"}); s.BlockedFiguresEffective = true; }, 0x80080, 1, Nothing},
    {"20 queen checks twice", kOpen, 0x1014001, Plain, 0x1014001 & ~0x10000, 1, Nothing},
    {"20 worst moves", kOpen, 0x1004001, Plain, 0x4001, 1, Nothing},
    {"20 save queen or rook", kOpen, 0x4001, Plain, 0x1, 1, Nothing},
    {"20 kings near", kOpen, 0x11, Plain, 0x10, 1, Nothing},
    {"20 the rest at once", kOpen, 0x42843410, Plain, 0, 0, Nothing},
    {"21 no longer strict", kOpen, 0x40, SETTINGS { s.ExtEdgeStrict = true; }, 0x40, 1,
     CHANGE { s.ExtEdgeStrict = false; }},
    {"21 extended edge", kOpen, 0x41, Plain, 0x1, 1, Nothing},
    {"21 extended edge alone", kOpen, 0x40, Plain, 0, 0, Nothing},
    {"21 no room", kOneFlight, 0x40, Plain, 0x80000, 1, Nothing},
    {"21 two squares are room", kTwoMinorFigures, 0x41, Plain, 0x1, 1, Nothing},
    {"21 stuck among its own", kWalledWithTwoFlights, 0x40, Plain, 0x80000, 1, Nothing},
};
// clang-format on

TEST(Relaxation, EveryStep_ChangesWhatItSays) {
    for (const TRow& row : kRows) {
        SCOPED_TRACE(row.name);
        CSearchBoard board(row.fen, kHalfMoves);
        TChessboard& node = board.Root();
        THeuristicSettings& settings = board.Thread().heuristics;
        SetHeur(node, row.word);
        row.prepare(node, settings);
        THeuristicSettings expected = settings;
        ++expected.RelaxationCount;
        row.change(expected);
        EXPECT_EQ(TryRelaxSpecialHeuristics(node), row.expectedAnswer);
        EXPECT_EQ(node.Heur, row.expectedWord);
        EXPECT_TRUE(settings == expected);
        const u32 params = node.HeurParams;
        ComputeHeurParams(node);
        EXPECT_EQ(node.HeurParams, params);
    }
}

TEST(Relaxation, StruckFigure_LeavesTheNodeToo) {
    CSearchBoard board(kBlockable, kHalfMoves);
    Block(board.Root(), {"a8", "h7"});
    board.Thread().heuristics.BlockedFiguresEffective = true;
    SetHeur(board.Root(), 0xc0);
    ASSERT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().m_trackedFigures[0], kH7);
    EXPECT_EQ(board.Root().m_trackedFigures[1], -1);
}

TEST(Relaxation, OneColourPlay_EndsWithItsBit) {
    CSearchBoard board(kOpen, kHalfMoves);
    board.Root().m_captureState = 0xc0 | kOneColourSeparated;
    SetHeur(board.Root(), SH_ONECOLORPLAYPOSSIBLE | SH_AREKINGSNEAR);
    ASSERT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().m_captureState, 0xc0);
}

TEST(Relaxation, SeaSnakeOfTheProgram_MakesTheNextPassesSafe) {
    for (const bool isByUser : {false, true}) {
        CSearchBoard board(kOpen, kHalfMoves);
        board.Thread().heuristics.SeaSnakeByUser = isByUser;
        SetHeur(board.Root(), SH_SEASNAKE | SH_AREKINGSNEAR);
        ASSERT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
        EXPECT_EQ(board.Root().Heur, u32{SH_AREKINGSNEAR});
        EXPECT_EQ(board.Context().isExact, !isByUser);
    }
}

TEST(Relaxation, OtherDrop_LeavesSafeModeAlone) {
    CSearchBoard board(kOpen, kHalfMoves);
    SetHeur(board.Root(), SH_ZUGZWANG | SH_SEASNAKE);
    ASSERT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_FALSE(board.Context().isExact);
}

TEST(Relaxation, BlackToMoveWithoutParent_HasNoStep) {
    CSearchBoard board("8/8/8/3k4/8/8/8/KR5R b - - 0 1", 8);
    SetHeur(board.Root(), 0x4001);
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Root()), 0);
    EXPECT_EQ(board.Root().Heur, 0U);
    EXPECT_EQ(board.Thread().heuristics.RelaxationCount, 0);
}

TEST(Relaxation, BlackToMove_RelaxesTheParent) {
    CSearchBoard board(kOpen, kHalfMoves);
    SetHeur(board.Root(), 0x4001);
    ASSERT_EQ(board.Play("h1h2"), kMoveMade);
    TChessboard expected = board.Node();
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Node()), 1);
    EXPECT_EQ(board.Root().Heur, 0x1U);
    EXPECT_EQ(board.Thread().heuristics.RelaxationCount, 1);
    expected.Heur = board.Root().Heur;
    expected.HeurParams = board.Root().HeurParams;
    EXPECT_EQ(std::memcmp(&board.Node(), &expected, sizeof expected), 0);
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Node()), 0);
    EXPECT_EQ(board.Node().Heur, 0U);
    EXPECT_EQ(board.Root().Heur, 0U);
}

TEST(Relaxation, BlackToMove_StruckFigureLeavesBothNodes) {
    CSearchBoard board(kBlockable, kHalfMoves);
    Block(board.Root(), {"a8", "h7"});
    board.Thread().heuristics.BlockedFiguresEffective = true;
    SetHeur(board.Root(), 0xc0);
    ASSERT_EQ(board.Play("h1h7"), kMoveMade);  // takes the pawn
    ASSERT_EQ(TryRelaxSpecialHeuristics(board.Node()), 1);
    EXPECT_EQ(board.Root().m_trackedFigures[0], kH7);
    EXPECT_EQ(board.Node().m_trackedFigures[0], -1);
    EXPECT_EQ(board.Node().m_trackedFigures[1], -1);
}

TEST(Relaxation, SwapOfBlockAndKeyFigure_RunsOverThreeSteps) {
    CSearchBoard board(kPinAtCorner, kHalfMoves);
    THeuristicSettings& settings = board.Thread().heuristics;
    settings.StrictKingMove = settings.KingMoveExceptions = true;
    settings.KeyWhiteFigureSquare = 56;
    settings.KeyWhiteFigurePinned = 62;
    SetHeur(board.Root(), 0x400084);
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x84U);
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x400004U);
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x84U);
    EXPECT_FALSE(settings.IsSwapBlockAndKeyFigurePending);
    EXPECT_FALSE(settings.StrictKingMove);
}

TEST(Relaxation, RestingBlock_ComesBackWithTheNextStep) {
    CSearchBoard board(kFacedByQueen, kHalfMoves);
    Block(board.Root(), {"d1", "e1", "h8"});
    board.Thread().heuristics.StrictKingMove = true;
    SetHeur(board.Root(), 0xa4);
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x84U);
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x4U);
    board.Thread().heuristics.StrictKingMove = false;
    EXPECT_EQ(TryRelaxSpecialHeuristics(board.Root()), 1);
    EXPECT_EQ(board.Root().Heur, 0x84U);
}

}  // namespace
}  // namespace quillmere
