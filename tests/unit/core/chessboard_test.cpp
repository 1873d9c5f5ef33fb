#include "core/chess_exception.h"
#include "core/chessboard.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "tests/support/boards.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::FilledBoard;
using test::SquareOf;
using test::ValidBoard;

// The message that the setting up of the board ends in; nothing if it is accepted.
std::optional<EMessage> FaultOf(TChessboard board) {
    try {
        ValidateBoard(board, true);
    } catch (const ChessException& e) {
        return e.Id();
    }
    return std::nullopt;
}

std::optional<EMessage> FaultOfRoot(TChessboard& board, u16 halfMoves) {
    try {
        SetupAnalysisRoot(board, halfMoves, true);
    } catch (const ChessException& e) {
        return e.Id();
    }
    return std::nullopt;
}

// The record

TEST(TChessboard, Fields_StandInTheirOrder) {
    EXPECT_EQ(offsetof(TChessboard, m_board), 0u);
    EXPECT_EQ(offsetof(TChessboard, m_searchContext), 64u);
    EXPECT_EQ(offsetof(TChessboard, m_trackedFigures), 72u);
    EXPECT_EQ(offsetof(TChessboard, m_parent), 80u);
    EXPECT_EQ(offsetof(TChessboard, m_threadContext), 88u);
    EXPECT_EQ(offsetof(TChessboard, m_lastMove), 96u);
    EXPECT_EQ(offsetof(TChessboard, m_nMoves), 100u);
    EXPECT_EQ(offsetof(TChessboard, m_nRootMoves), 102u);
    EXPECT_EQ(offsetof(TChessboard, Heur), 104u);
    EXPECT_EQ(offsetof(TChessboard, HeurParams), 108u);
    EXPECT_EQ(offsetof(TChessboard, m_positionFlags), 112u);
    EXPECT_EQ(offsetof(TChessboard, m_searchFlags), 114u);
    EXPECT_EQ(offsetof(TChessboard, m_captureState), 116u);
    EXPECT_EQ(offsetof(TChessboard, m_pass), 117u);
    EXPECT_EQ(offsetof(TChessboard, m_whiteKingFile), 118u);
    EXPECT_EQ(offsetof(TChessboard, m_blackKingRank), 121u);
    EXPECT_EQ(offsetof(TChessboard, m_whiteInCheck), 122u);
    EXPECT_EQ(offsetof(TChessboard, m_blackInCheck), 123u);
    EXPECT_EQ(offsetof(TChessboard, m_counts), 124u);
    EXPECT_EQ(offsetof(TChessboard, m_whiteRooks), 134u);
    EXPECT_EQ(offsetof(TChessboard, m_whiteBishops), 136u);
    EXPECT_EQ(offsetof(TChessboard, m_whiteKnights), 138u);
    EXPECT_EQ(offsetof(TChessboard, m_whiteQueen), 140u);
    EXPECT_EQ(offsetof(TChessboard, m_figureListValid), 141u);
}

TEST(Types, FigureCodes_LetOneMaskFindTheSlidersOfALine) {
    EXPECT_EQ(kWhiteKing, 65);
    EXPECT_EQ(kBlackKing, 129);
    EXPECT_EQ(kWhitePawn, 66);
    EXPECT_EQ(kBlackPawn, 130);
    EXPECT_EQ(kWhiteQueen, 76);
    EXPECT_EQ(kBlackQueen, 140);
    EXPECT_EQ(kWhiteRook, 72);
    EXPECT_EQ(kBlackRook, 136);
    EXPECT_EQ(kWhiteBishop, 68);
    EXPECT_EQ(kBlackBishop, 132);
    EXPECT_EQ(kWhiteKnight, 80);
    EXPECT_EQ(kBlackKnight, 144);
    for (const u8 figure : {kBlackKing, kBlackPawn, kBlackKnight, kBlackRook, kBlackBishop}) {
        EXPECT_LT(static_cast<i8>(figure), 0);
        EXPECT_TRUE(IsBlack(figure));
        EXPECT_FALSE(IsWhite(figure));
    }
    EXPECT_EQ(kBlackQueen & 0x88, 0x88);
    EXPECT_EQ(kBlackQueen & 0x84, 0x84);
    EXPECT_NE(kBlackKnight & 0x88, 0x88);
}

TEST(Types, FigureValues_AreThoseOfExchanges) {
    int others = 0;
    for (int kind = 0; kind < 32; ++kind)
        others += kFigureValues[kind];
    EXPECT_EQ(kFigureValues[kKing], 10);
    EXPECT_EQ(kFigureValues[kPawn], 1);
    EXPECT_EQ(kFigureValues[kBishop], 3);
    EXPECT_EQ(kFigureValues[kRook], 5);
    EXPECT_EQ(kFigureValues[kQueen], 9);
    EXPECT_EQ(kFigureValues[kKnight], 3);
    EXPECT_EQ(others, 10 + 1 + 3 + 5 + 9 + 3);
}

TEST(Types, Units_ConvertBothWays) {
    EXPECT_EQ(HalfMovesOfMate(1), 1);
    EXPECT_EQ(HalfMovesOfMate(4), 7);
    EXPECT_EQ(FullMovesOf(7), 4);
    EXPECT_EQ(FullMovesOf(6), 3);
    EXPECT_EQ(FullMovesOf(0), 0);
}

TEST(Types, SquareParity_TellsLightFromDark) {
    EXPECT_EQ(SquareParity(SquareOf("a1")), 0);
    EXPECT_EQ(SquareParity(SquareOf("h1")), 1);
    EXPECT_EQ(SquareParity(SquareOf("a8")), 1);
    EXPECT_EQ(SquareParity(SquareOf("h8")), 0);
    EXPECT_EQ(SquareParity(SquareOf("e4")), 1);
}

TEST(Types, EdgeDistance_IsTheSmallerOfRankAndFile) {
    EXPECT_EQ(EdgeDistance(SquareOf("a4")), 0);
    EXPECT_EQ(EdgeDistance(SquareOf("d8")), 0);
    EXPECT_EQ(EdgeDistance(SquareOf("b5")), 1);
    EXPECT_EQ(EdgeDistance(SquareOf("e7")), 1);
    EXPECT_EQ(EdgeDistance(SquareOf("c4")), 2);
    EXPECT_EQ(EdgeDistance(SquareOf("e5")), 3);
}

TEST(TMove, Equality_PassesOverMarksAndTheFourthByte) {
    const TMove move = {8, 16, kQueen, 0};
    EXPECT_TRUE(MovesEqual(move, {8, 16, kQueen | kMoveMarkEvent | kMoveMarkForced, 1}));
    EXPECT_FALSE(MovesEqual(move, {8, 16, kRook, 0}));
    EXPECT_FALSE(MovesEqual(move, {8, 17, kQueen, 0}));
    EXPECT_FALSE(MovesEqual(move, {9, 16, kQueen, 0}));
}

TEST(InitBoard, EmptyNode_HasTheDefaults) {
    TChessboard board;
    std::fill_n(reinterpret_cast<u8*>(&board), sizeof(board), static_cast<u8>(0xaa));
    InitBoard(board);
    for (const u8 figure : board.m_board)
        EXPECT_EQ(figure, 0);
    for (const i8 tracked : board.m_trackedFigures)
        EXPECT_EQ(tracked, -1);
    EXPECT_EQ(board.m_pass, kPassHeuristics);
    EXPECT_EQ(board.m_nMoves, 0);
    EXPECT_EQ(board.m_nRootMoves, 0);
    EXPECT_EQ(board.m_positionFlags, 0);
    EXPECT_EQ(board.m_searchFlags, 0);
    EXPECT_EQ(board.m_captureState, 0);
    EXPECT_EQ(board.Heur, 0u);
    EXPECT_EQ(board.HeurParams, 0u);
    EXPECT_EQ(board.m_parent, nullptr);
    EXPECT_EQ(board.m_searchContext, nullptr);
    EXPECT_EQ(board.m_threadContext, nullptr);
    EXPECT_EQ(board.m_whiteInCheck, kNotInCheck);
    EXPECT_EQ(board.m_blackInCheck, kNotInCheck);
    EXPECT_EQ(board.m_whiteQueen, -1);
    EXPECT_EQ(board.m_figureListValid, 1);
}

// ValidateBoard: what is derived

TEST(ValidateBoard, EveryKind_IsCountedForItsSide) {
    const TChessboard board = ValidBoard("k6q/qrrrbb2/nnnnpppp/p7/P7/PPPPPNNN/BBRR3Q/K7");
    const int expected[kCountFields] = {1, 2, 2, 3, 2, 2, 3, 4, 6, 5};
    for (int i = 0; i < kCountFields; ++i)
        EXPECT_EQ(board.m_counts[i], expected[i]) << "count " << i;
}

TEST(ValidateBoard, Kings_AreFound) {
    const TChessboard board = ValidBoard("8/8/2k5/8/8/6K1/8/8");
    EXPECT_EQ(board.m_whiteKingFile, 6);
    EXPECT_EQ(board.m_whiteKingRank, 2);
    EXPECT_EQ(board.m_blackKingFile, 2);
    EXPECT_EQ(board.m_blackKingRank, 5);
    EXPECT_EQ(board.WhiteKingSquare(), SquareOf("g3"));
    EXPECT_EQ(board.BlackKingSquare(), SquareOf("c6"));
}

TEST(ValidateBoard, FigureLists_HoldTheFirstOfEachKindInScanOrder) {
    const TChessboard board = ValidBoard("k7/8/3Q4/1R6/6N1/4B3/2N1B3/K6R");
    EXPECT_EQ(board.m_figureListValid, 1);
    EXPECT_EQ(board.m_whiteRooks[0], SquareOf("h1"));
    EXPECT_EQ(board.m_whiteRooks[1], SquareOf("b5"));
    EXPECT_EQ(board.m_whiteKnights[0], SquareOf("c2"));
    EXPECT_EQ(board.m_whiteKnights[1], SquareOf("g4"));
    EXPECT_EQ(board.m_whiteBishops[0], SquareOf("e2"));
    EXPECT_EQ(board.m_whiteBishops[1], SquareOf("e3"));
    EXPECT_EQ(board.m_whiteQueen, SquareOf("d6"));
}

TEST(ValidateBoard, FigureListValid_FollowsTheOverflowOfAKind) {
    const struct {
        const char* fen;
        int valid;
    } rows[] = {
        {"k7/8/8/8/8/8/8/K7", 1},
        {"7k/8/8/8/8/8/8/KQ6", 1},
        {"7k/8/8/8/8/8/Q7/KQ6", 0},
        {"7k/8/8/8/8/8/8/KRR5", 1},
        {"7k/8/8/8/8/8/8/KRRR4", 0},
        {"7k/8/8/8/8/8/8/KNN5", 1},
        {"7k/8/8/8/8/8/8/KNNN4", 0},
        // Bishops on b1 (light) and c1 (dark), then b1 and d1 (both light)
        {"7k/8/8/8/8/8/8/KBB5", 1},
        {"7k/8/8/8/8/8/8/KB1B4", 0},
        {"7k/8/8/8/8/8/8/KBBB4", 0},
        // The third bishop has the colour of the second one only
        {"7k/8/8/8/8/8/8/KBB1B3", 0},
        // Black figures never overflow
        {"7k/qqq5/rrrr4/bbbb4/nnnn4/8/8/K7", 1},
    };
    for (const auto& row : rows) {
        // Placed boards may hold checks; they are single ones.
        EXPECT_EQ(ValidBoard(row.fen).m_figureListValid, row.valid) << row.fen;
    }
}

TEST(ValidateBoard, ThreeRooks_AreCountedThoughTheListOverflows) {
    const TChessboard board = ValidBoard("7k/8/8/8/8/8/8/KRRR4");
    EXPECT_EQ(board.m_figureListValid, 0);
    EXPECT_EQ(board.m_counts[kWhiteRooks], 3);
}

TEST(ValidateBoard, BishopsOfTwoColours_AreBothRecorded) {
    const TChessboard board = ValidBoard("7k/8/8/8/8/8/8/KBB5");
    EXPECT_EQ(board.m_whiteBishops[0], SquareOf("b1"));
    EXPECT_EQ(board.m_whiteBishops[1], SquareOf("c1"));
}

TEST(ValidateBoard, UnusedListEntries_AreMinusOne) {
    TChessboard board = ValidBoard("7k/8/8/8/8/8/8/KRNB3Q");
    board.m_board[SquareOf("b1")] = 0;
    board.m_board[SquareOf("c1")] = 0;
    board.m_board[SquareOf("d1")] = 0;
    board.m_board[SquareOf("h1")] = 0;
    ValidateBoard(board, true);
    for (const i8 entry : {board.m_whiteRooks[0],
                           board.m_whiteRooks[1],
                           board.m_whiteBishops[0],
                           board.m_whiteBishops[1],
                           board.m_whiteKnights[0],
                           board.m_whiteKnights[1],
                           board.m_whiteQueen})
        EXPECT_EQ(entry, -1);
}

TEST(ValidateBoard, CheckFields_NameTheCheckerOrSixtyFour) {
    const struct {
        const char* fen;
        int white;
        int black;
    } rows[] = {
        {"k7/8/8/8/8/8/8/K7", -1, -1},
        {"k6R/8/8/8/8/8/8/K7", -1, SquareOf("h8")},
        {"k7/8/8/8/8/8/1p6/K7", SquareOf("b2"), -1},
        {"k7/8/8/8/8/8/1P6/K6r", SquareOf("h1"), -1},
        {"k6R/8/1N6/8/8/8/8/K7", -1, kDoubleCheck},
        {"k7/8/8/8/3b4/8/8/K6r", kDoubleCheck, -1},
        // Three checkers
        {"k6R/8/1N6/8/4B3/8/8/K7", -1, kDoubleCheck},
        // A pawn does not check backwards or straight ahead
        {"1P6/k7/P7/8/8/8/8/K7", -1, -1},
    };
    for (const auto& row : rows) {
        TChessboard board = FilledBoard(row.fen);
        if (board.m_board[SquareOf("b8")] == kWhitePawn)
            board.m_board[SquareOf("b8")] = 0;
        ValidateBoard(board, true);
        EXPECT_EQ(board.m_whiteInCheck, row.white) << row.fen;
        EXPECT_EQ(board.m_blackInCheck, row.black) << row.fen;
    }
}

TEST(ValidateBoard, EdgeBits_FollowTheBlackKing) {
    const struct {
        const char* king;
        int distance;
    } rows[] = {{"a8", 0}, {"d8", 0}, {"g5", 1}, {"c7", 1}, {"c6", 2}, {"f3", 2}, {"d4", 3}};
    for (const auto& row : rows) {
        TChessboard board = FilledBoard("8/8/8/8/8/8/8/7K");
        board.m_board[SquareOf(row.king)] = kBlackKing;
        board.m_searchFlags = 0xffff;
        ValidateBoard(board, true);
        EXPECT_EQ(board.BlackKingEdgeDistance(), row.distance) << row.king;
        EXPECT_EQ(board.m_searchFlags & ~kSearchEdgeMask, 0xffff & ~kSearchEdgeMask);
    }
}

TEST(ValidateBoard, CaptureState_LosesOnlyItsCounts) {
    TChessboard board = FilledBoard("k7/8/8/8/8/8/8/K7");
    board.m_captureState = 0xff;
    ValidateBoard(board, true);
    EXPECT_EQ(board.m_captureState, 0xc3);
}

TEST(ValidateBoard, ClearSearchState_DecidesOverHeuristicsAndPositionFlags) {
    TChessboard board = FilledBoard("k7/8/8/8/8/8/8/K7");
    board.Heur = 5;
    board.m_positionFlags = 0x0822;
    ValidateBoard(board, false);
    EXPECT_EQ(board.Heur, 5u);
    EXPECT_EQ(board.m_positionFlags, 0x0822);
    ValidateBoard(board, true);
    EXPECT_EQ(board.Heur, 0u);
    EXPECT_EQ(board.m_positionFlags, 0);
}

// ValidateBoard: what is refused, and in which order

TEST(ValidateBoard, Faults_HaveTheirMessages) {
    const struct {
        const char* fen;
        EMessage fault;
    } rows[] = {
        {"k7/8/8/8/8/8/8/KP6", EMessage::kPawnOnEdgeRank},
        {"kP6/8/8/8/8/8/8/K7", EMessage::kPawnOnEdgeRank},
        {"k7/8/8/8/8/8/8/Kp6", EMessage::kPawnOnEdgeRank},
        {"kp6/8/8/8/8/8/8/K7", EMessage::kPawnOnEdgeRank},
        {"8/8/8/8/8/8/8/8", EMessage::kIllegalKingCount},
        {"k7/8/8/8/8/8/8/8", EMessage::kIllegalKingCount},
        {"8/8/8/8/8/8/8/K7", EMessage::kIllegalKingCount},
        {"k6k/8/8/8/8/8/8/K7", EMessage::kIllegalKingCount},
        {"k7/8/8/8/8/8/8/K6K", EMessage::kIllegalKingCount},
        {"k6R/8/8/8/8/8/8/K6r", EMessage::kBothKingsAttacked},
        {"8/8/8/8/8/8/1k6/K7", EMessage::kBothKingsAttacked},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FaultOf(FilledBoard(row.fen)), row.fault) << row.fen;
}

TEST(ValidateBoard, PawnOnTheFirstRank_IsToldBeforeTheKings) {
    EXPECT_EQ(FaultOf(FilledBoard("k7/8/8/8/8/8/8/PKK5")), EMessage::kPawnOnEdgeRank);
    // The last square of the scan as well
    EXPECT_EQ(FaultOf(FilledBoard("k6p/8/8/8/8/8/8/KK6")), EMessage::kPawnOnEdgeRank);
}

TEST(ValidateBoard, Kings_AreToldBeforeTheChecks) {
    EXPECT_EQ(FaultOf(FilledBoard("k6R/8/8/8/8/8/8/KK5r")), EMessage::kIllegalKingCount);
}

TEST(ValidateBoard, Messages_AreToTheLetter) {
    const auto textOf = [](const char* fen) {
        TChessboard board = FilledBoard(fen);
        try {
            ValidateBoard(board, true);
        } catch (const ChessException& e) {
            return std::string(e.what());
        }
        return std::string("nothing thrown");
    };
    EXPECT_EQ(textOf("k7/8/8/8/8/8/8/KP6"),
              "Pawns cannot occupy 1st nor 8th line of the chessboard.");
    EXPECT_EQ(textOf("8/8/8/8/8/8/8/8"), "Illegal number of kings.");
    EXPECT_EQ(textOf("k6R/8/8/8/8/8/8/K6r"), "Both kings attacked.");
}

TEST(ValidateBoard, ByteThatIsNoFigure_IsRefused) {
    for (const int code : {0x03, 0x0c, 0x40, 0x43, 0x80, 0xc2, 0xc1, 0x62, 0xa2, 0x61, 0x5c, 0x20})
        EXPECT_TRUE([&] {
            TChessboard board = FilledBoard("k7/8/8/8/8/8/8/K7");
            board.m_board[SquareOf("d4")] = static_cast<u8>(code);
            return FaultOf(board) == EMessage::kUnknownFigureCode;
        }()) << code;
}

// SetupAnalysisRoot

TEST(SetupAnalysisRoot, Root_IsAFreshNodeWithoutParent) {
    TChessboard board = FilledBoard("k7/8/8/8/8/8/8/KQ6");
    TChessboard other = board;
    board.m_parent = &other;
    board.m_lastMove = MakeMove(8, 24);
    board.m_searchFlags = 0xffff;
    board.m_captureState = 0x3c;
    board.HeurParams = 77;
    SetupAnalysisRoot(board, 7, true);
    EXPECT_EQ(board.m_nMoves, 7);
    EXPECT_EQ(board.m_nRootMoves, 7);
    EXPECT_EQ(board.Ply(), 0);
    EXPECT_TRUE(board.IsWhiteToMove());
    EXPECT_EQ(board.m_parent, nullptr);
    EXPECT_TRUE(board.m_lastMove.IsNull());
    EXPECT_EQ(board.m_searchFlags, kSearchFresh);
    EXPECT_EQ(board.m_captureState, 0);
    EXPECT_EQ(board.HeurParams, 0u);
}

TEST(SetupAnalysisRoot, SideThatJustMoved_MayNotStandInCheck) {
    TChessboard blackChecked = FilledBoard("k6R/8/8/8/8/8/8/K7");
    EXPECT_EQ(FaultOfRoot(blackChecked, 3), EMessage::kBlackKingCheckedInMateTask);
    EXPECT_EQ(FaultOfRoot(blackChecked, 4), std::nullopt);
    TChessboard whiteChecked = FilledBoard("k7/8/8/8/8/8/8/K6r");
    EXPECT_EQ(FaultOfRoot(whiteChecked, 4), EMessage::kWhiteKingCheckedInDefenceTask);
    EXPECT_EQ(FaultOfRoot(whiteChecked, 0), EMessage::kWhiteKingCheckedInDefenceTask);
    EXPECT_EQ(FaultOfRoot(whiteChecked, 3), std::nullopt);
}

TEST(SetupAnalysisRoot, Messages_AreToTheLetter) {
    const auto textOf = [](const char* fen, u16 halfMoves) {
        TChessboard board = FilledBoard(fen);
        try {
            SetupAnalysisRoot(board, halfMoves, true);
        } catch (const ChessException& e) {
            return std::string(e.what());
        }
        return std::string("nothing thrown");
    };
    EXPECT_EQ(textOf("k6R/8/8/8/8/8/8/K7", 1),
              "Black king cannot be checked in the mate task starting postition.");
    EXPECT_EQ(textOf("k7/8/8/8/8/8/8/K6r", 2),
              "White king cannot be checked in the mate-defence task starting postition.");
}

TEST(SetupAnalysisRoot, IllegalPosition_IsToldBeforeTheTask) {
    TChessboard board = FilledBoard("k6R/8/8/8/8/8/8/KP6");
    EXPECT_EQ(FaultOfRoot(board, 3), EMessage::kPawnOnEdgeRank);
}

TEST(SetupAnalysisRoot, BareKing_IsFlaggedFromTheStart) {
    TChessboard bare = FilledBoard("k7/8/8/8/8/8/8/KQ6");
    SetupAnalysisRoot(bare, 3, true);
    EXPECT_EQ(bare.m_positionFlags, kPositionBareKing);
    TChessboard withPawn = FilledBoard("k7/p7/8/8/8/8/8/KQ6");
    SetupAnalysisRoot(withPawn, 3, true);
    EXPECT_EQ(withPawn.m_positionFlags, 0);
}

TEST(SetupAnalysisRoot, KeptSearchState_KeepsTheHeuristics) {
    TChessboard board = FilledBoard("k7/p7/8/8/8/8/8/KQ6");
    board.Heur = 6;
    board.HeurParams = 7;
    board.m_positionFlags = kPositionTied;
    SetupAnalysisRoot(board, 3, false);
    EXPECT_EQ(board.Heur, 6u);
    EXPECT_EQ(board.HeurParams, 7u);
    EXPECT_EQ(board.m_positionFlags, kPositionTied);
    SetupAnalysisRoot(board, 3, true);
    EXPECT_EQ(board.Heur, 0u);
    EXPECT_EQ(board.m_positionFlags, 0);
}

// A board that is set up again with its state kept may have got men since.
TEST(SetupAnalysisRoot, KeptSearchState_DoesNotKeepAnOldBareKing) {
    TChessboard board = FilledBoard("k7/8/8/8/8/8/8/KQ6");
    SetupAnalysisRoot(board, 3, true);
    board.m_board[SquareOf("a7")] = kBlackPawn;
    SetupAnalysisRoot(board, 3, false);
    EXPECT_EQ(board.m_positionFlags & kPositionBareKing, 0);
}

TEST(SetupAnalysisRoot, CountersOfTheAnalysis_AreResetAndTheStopSlotStays) {
    TSearchContext context;
    context.nodeCount = 5;
    context.isNodeLimitReached = true;
    SetStop(context, kStopAll, 3);
    TChessboard board = FilledBoard("k7/8/8/8/8/8/8/KQ6");
    board.m_searchContext = &context;
    SetupAnalysisRoot(board, 3, true);
    EXPECT_EQ(context.nodeCount.load(), 0u);
    EXPECT_FALSE(context.isNodeLimitReached.load());
    EXPECT_EQ(context.stopKind.load(), kStopAll);
    EXPECT_EQ(context.stopThread.load(), 3);
}

TEST(SetupAnalysisRoot, RefusedPosition_LeavesTheCounters) {
    TSearchContext context;
    context.nodeCount = 5;
    TChessboard board = FilledBoard("k6R/8/8/8/8/8/8/K7");
    board.m_searchContext = &context;
    EXPECT_TRUE(FaultOfRoot(board, 3).has_value());
    EXPECT_EQ(context.nodeCount.load(), 5u);
}

TEST(SetupAnalysisRoot, MovesBeyondTheRoomOfAList_AreRefusedForEitherSide) {
    // Twelve queens cannot come from a game, and could have more than 248 moves.
    TChessboard white = FilledBoard("7k/6p1/8/8/8/8/K7/8");
    for (const char* square :
         {"b1", "b2", "b3", "b4", "b5", "b6", "c1", "c2", "c3", "c4", "c5", "c6"})
        white.m_board[SquareOf(square)] = kWhiteQueen;
    EXPECT_EQ(FaultOfRoot(white, 3), EMessage::kTooManyMoves);
    TChessboard black = FilledBoard("7K/6P1/8/8/8/8/k7/8");
    for (const char* square :
         {"b1", "b2", "b3", "b4", "b5", "b6", "c1", "c2", "c3", "c4", "c5", "c6"})
        black.m_board[SquareOf(square)] = kBlackQueen;
    EXPECT_EQ(FaultOfRoot(black, 3), EMessage::kTooManyMoves);
    // Nine queens are of a game.
    TChessboard nine = FilledBoard("7k/8/8/8/8/8/K7/8");
    for (const char* square : {"b1", "b2", "b3", "b4", "b5", "b6", "c1", "c2", "c3"})
        nine.m_board[SquareOf(square)] = kWhiteQueen;
    nine.m_board[SquareOf("b2")] = 0;
    EXPECT_EQ(FaultOfRoot(nine, 4), std::nullopt);
}

// IsFigureListValid

TEST(IsFigureListValid, Lists_AreRebuiltFromTheBoard) {
    TChessboard board = ValidBoard("7k/8/8/8/8/8/8/KRRR4");
    board.m_board[SquareOf("c1")] = 0;
    EXPECT_TRUE(IsFigureListValid(board));
    EXPECT_EQ(board.m_figureListValid, 1);
    EXPECT_EQ(board.m_whiteRooks[0], SquareOf("b1"));
    EXPECT_EQ(board.m_whiteRooks[1], SquareOf("d1"));
    board.m_board[SquareOf("c1")] = kWhiteRook;
    EXPECT_FALSE(IsFigureListValid(board));
    EXPECT_EQ(board.m_figureListValid, 0);
}

}  // namespace
}  // namespace quillmere
