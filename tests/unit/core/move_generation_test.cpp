#include "core/legality.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/rights.h"
#include "core/thread_context.h"
#include "tests/support/boards.h"
#include "tests/support/game_line.h"
#include "tests/support/random_positions.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CGameLine;
using test::SquareOf;
using test::TextOfMoves;
using test::ValidBoard;

std::string MovesOf(const TChessboard& board, const char* square) {
    TMove list[kMoveListSize];
    const int from = SquareOf(square);
    const int count = IsWhite(board.m_board[from]) ? GetWhiteMoves(board, from, list)
                                                   : GetBlackMoves(board, from, list);
    return TextOfMoves(list, count);
}

std::string AllMoves(const TChessboard& board, bool isWhite) {
    TMove list[kMoveListSize];
    return TextOfMoves(list,
                       isWhite ? GetAllWhiteMoves(board, list) : GetAllBlackMoves(board, list));
}

std::string Evasions(const TChessboard& board, bool isWhite) {
    TMove list[kMoveListSize];
    return TextOfMoves(list,
                       isWhite ? GetWhiteEvasions(board, list) : GetBlackEvasions(board, list));
}

// The order of moves of each figure

TEST(KingMoves, Order_IsSouthFirstAndEastLast) {
    EXPECT_EQ(MovesOf(ValidBoard("8/8/8/8/3K4/8/8/k7"), "d4"),
              "d4d3 d4c3 d4e3 d4d5 d4c5 d4e5 d4c4 d4e4");
    EXPECT_EQ(MovesOf(ValidBoard("K7/8/8/8/3k4/8/8/8"), "d4"),
              "d4d3 d4c3 d4e3 d4d5 d4c5 d4e5 d4c4 d4e4");
    EXPECT_EQ(MovesOf(ValidBoard("7K/8/8/8/8/8/8/k7"), "h8"), "h8h7 h8g7 h8g8");
}

TEST(KingMoves, OwnMen_AreSteppedOverAndEnemiesTaken) {
    EXPECT_EQ(MovesOf(ValidBoard("8/8/8/3P4/2PKp3/3p4/8/k7"), "d4"),
              "d4d3 d4c3 d4e3 d4c5 d4e5 d4e4");
}

// Neither attacked squares nor the other king are left out: the make-move decides.
TEST(KingMoves, AttackedSquares_AreListed) {
    EXPECT_EQ(MovesOf(ValidBoard("8/8/8/8/8/2r5/8/K6k"), "a1"), "a1a2 a1b2 a1b1");
}

TEST(KingMoves, Castlings_FollowTheSteps) {
    EXPECT_EQ(MovesOf(ValidBoard("4k3/8/8/8/8/8/8/R3K2R"), "e1"),
              "e1e2 e1d2 e1f2 e1d1 e1f1 e1g1 e1c1");
    EXPECT_EQ(MovesOf(ValidBoard("r3k2r/8/8/8/8/8/8/4K3"), "e8"),
              "e8e7 e8d7 e8f7 e8d8 e8f8 e8g8 e8c8");
}

TEST(Castling, Conditions_DecideOverTheList) {
    const struct {
        const char* name;
        const char* fen;
        bool isShort;
        bool isLong;
    } rows[] = {
        {"free", "4k3/8/8/8/8/8/8/R3K2R", true, true},
        {"b1 held", "4k3/8/8/8/8/8/8/RN2K2R", true, false},
        {"c1 held", "4k3/8/8/8/8/8/8/R1b1K2R", true, false},
        {"d1 held", "4k3/8/8/8/8/8/8/R2QK2R", true, false},
        {"f1 held", "4k3/8/8/8/8/8/8/R3KB1R", false, true},
        {"g1 held", "4k3/8/8/8/8/8/8/R3K1nR", false, true},
        {"in check", "4k3/8/8/8/8/4r3/8/R3K2R", false, false},
        {"d1 and f1 attacked", "4k3/8/8/8/2b1n3/8/8/R3K2R", false, true},
        {"f1 attacked", "4k3/8/8/8/8/5r2/8/R3K2R", false, true},
        {"d1 attacked", "4k3/8/8/8/8/3r4/8/R3K2R", true, false},
        // The destination is the make-move's, the rook's way nobody's.
        {"g1 attacked", "4k3/8/8/8/8/6r1/8/R3K2R", true, true},
        {"c1 attacked", "4k3/8/8/8/8/2r5/8/R3K2R", true, true},
        {"b1 attacked", "4k3/8/8/8/8/1r6/8/R3K2R", true, true},
        {"a1 and h1 attacked", "4k3/8/8/3bb3/8/8/8/R3K2R", true, true},
        {"no rooks", "4k3/8/8/8/8/8/8/N3K2B", false, false},
        {"black rook in the corner", "4k3/8/8/8/8/8/P7/R3K1Nr", false, true},
    };
    for (const auto& row : rows) {
        const TChessboard board = ValidBoard(row.fen);
        const std::string moves = MovesOf(board, "e1");
        EXPECT_EQ(moves.find("e1g1") != std::string::npos, row.isShort) << row.name;
        EXPECT_EQ(moves.find("e1c1") != std::string::npos, row.isLong) << row.name;
        TChessboard swapped;
        InitBoard(swapped);
        for (int square = 0; square < kSquareCount; ++square) {
            if (board.m_board[square] != 0)
                swapped.m_board[square ^ 56] = board.m_board[square] ^ (kWhite | kBlack);
        }
        ValidateBoard(swapped, true);
        const std::string mirrored = MovesOf(swapped, "e8");
        EXPECT_EQ(mirrored.find("e8g8") != std::string::npos, row.isShort) << row.name;
        EXPECT_EQ(mirrored.find("e8c8") != std::string::npos, row.isLong) << row.name;
    }
}

TEST(Castling, LegalMoves_KeepTheDestinationSafe) {
    TChessboard board = ValidBoard("4k3/8/8/8/8/2r3r1/8/R3K2R");
    board.m_nMoves = 1;
    TMove list[kMoveListSize];
    const std::string legal = TextOfMoves(list, GetLegalMoves(board, list));
    EXPECT_EQ(legal.find("e1g1"), std::string::npos);
    EXPECT_EQ(legal.find("e1c1"), std::string::npos);
}

TEST(SliderMoves, Queen_GoesAsARookAndThenAsABishop) {
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/8/1PpP4/1PQp4/1NRbK3"), "c2"), "c2c3 c2d2 c2d1");
    EXPECT_EQ(MovesOf(ValidBoard("k7/8/8/8/8/8/8/K6Q"), "h1"),
              "h1h2 h1h3 h1h4 h1h5 h1h6 h1h7 h1h8 h1g1 h1f1 h1e1 h1d1 h1c1 h1b1 "
              "h1g2 h1f3 h1e4 h1d5 h1c6 h1b7 h1a8");
}

TEST(SliderMoves, Directions_FollowTheOrderOfTheKing) {
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/3p4/2pRp3/3p4/8/K7"), "d4"), "d4d3 d4d5 d4c4 d4e4");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/2p1p3/3B4/2p1p3/8/K7"), "d4"), "d4c3 d4e3 d4c5 d4e5");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/2PPP3/2PrP3/2PPP3/8/K7"), "d4"), "d4d3 d4d5 d4c4 d4e4");
}

TEST(KnightMoves, OwnMen_AreLeftOut) {
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/1p6/2P5/N7/2p5/1P6/K7"), "a4"), "a4c3 a4b6");
}

TEST(PawnMoves, StepsAndCaptures_AreThoseOfTheColour) {
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/8/3p1p2/4P3/K7"), "e2"), "e2e3 e2e4 e2d3 e2f3");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/4p3/8/4P3/K7"), "e2"), "e2e3");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/8/4p3/4P3/K7"), "e2"), "");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/8/4P3/8/K7"), "e3"), "e3e4");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/8/p6p/P6P/K7"), "a2"), "");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/8/1p4p1/P6P/K7"), "h2"), "h2h3 h2h4 h2g3");
    EXPECT_EQ(MovesOf(ValidBoard("7k/4p3/3P1P2/8/8/8/8/K7"), "e7"), "e7e6 e7e5 e7d6 e7f6");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/4p3/8/8/8/8/K7"), "e6"), "e6e5");
}

TEST(PawnMoves, Promotion_GivesQueenRookBishopKnight) {
    EXPECT_EQ(MovesOf(ValidBoard("r1r5/1P6/8/8/8/8/8/K6k"), "b7"),
              "b7b8q b7b8r b7b8b b7b8n b7a8q b7a8r b7a8b b7a8n b7c8q b7c8r b7c8b b7c8n");
    EXPECT_EQ(MovesOf(ValidBoard("7k/8/8/8/8/8/1p6/R1R4K"), "b2"),
              "b2b1q b2b1r b2b1b b2b1n b2a1q b2a1r b2a1b b2a1n b2c1q b2c1r b2c1b b2c1n");
}

TEST(PawnMoves, EnPassant_ComesFromTheLastMoveOfTheNode) {
    CGameLine line("4k3/8/8/8/3p1p2/8/4P3/4K3", 3);
    EXPECT_EQ(MovesOf(line.Node(), "d4"), "d4d3");
    line.Play("e2e4");
    EXPECT_EQ(MovesOf(line.Node(), "d4"), "d4d3 d4e3");
    EXPECT_EQ(MovesOf(line.Node(), "f4"), "f4f3 f4e3");
    CGameLine black("4k3/4p3/8/3P1P2/8/8/8/4K3", 4);
    black.Play("e7e5");
    EXPECT_EQ(MovesOf(black.Node(), "d5"), "d5d6 d5e6");
    EXPECT_EQ(MovesOf(black.Node(), "f5"), "f5f6 f5e6");
}

TEST(PawnMoves, EnPassant_IsGoneAfterAnyOtherMove) {
    CGameLine line("4k3/8/8/8/3p4/8/4P3/4K3", 5);
    for (const char* move : {"e2e4", "e8e7", "e1e2"})
        line.Play(move);
    EXPECT_EQ(MovesOf(line.Node(), "d4"), "d4d3");
    CGameLine single("4k3/8/8/8/3p4/4P3/8/4K3", 5);
    single.Play("e3e4");
    EXPECT_EQ(MovesOf(single.Node(), "d4"), "d4d3");
}

// Beside it in memory is not beside it on the board.
TEST(PawnMoves, EnPassant_DoesNotGoRoundTheEdge) {
    CGameLine line("4k3/8/8/p7/8/8/7P/4K3", 3);
    line.Play("h2h4");
    EXPECT_EQ(MovesOf(line.Node(), "a5"), "a5a4");
    CGameLine other("4k3/8/8/8/8/7p/P7/4K3", 3);
    other.Play("a2a4");
    EXPECT_EQ(MovesOf(other.Node(), "h3"), "h3h2");
}

TEST(MovesOfASquare, EmptySquareOrOtherSide_HasNone) {
    const TChessboard board = ValidBoard("7k/8/8/8/8/8/8/K7");
    TMove list[kMoveListSize];
    EXPECT_EQ(GetWhiteMoves(board, SquareOf("d4"), list), 0);
    EXPECT_EQ(GetWhiteMoves(board, SquareOf("h8"), list), 0);
    EXPECT_EQ(GetBlackMoves(board, SquareOf("a1"), list), 0);
}

TEST(AllMoves, Squares_AreScannedUpward) {
    const TChessboard board = ValidBoard("7k/7p/8/8/8/8/P7/KB6");
    EXPECT_EQ(AllMoves(board, true), "a1b2 b1c2 b1d3 b1e4 b1f5 b1g6 b1h7 a2a3 a2a4");
    EXPECT_EQ(AllMoves(board, false), "h7h6 h7h5 h8g7 h8g8");
}

// Evasions

// Only king moves, in the order of the eight directions.
TEST(Evasions, DoubleCheck_ListsOnlyKingMoves) {
    const TChessboard white = ValidBoard("4r2k/8/8/1q2b3/3n4/8/4K3/3R4");
    ASSERT_EQ(white.m_whiteInCheck, kDoubleCheck);
    EXPECT_EQ(Evasions(white, true), "e2e1 e2f1 e2e3 e2d3 e2f3 e2d2 e2f2");
    const TChessboard black = ValidBoard("8/8/3k4/8/4N3/8/8/3R3K");
    ASSERT_EQ(black.m_blackInCheck, kDoubleCheck);
    EXPECT_EQ(Evasions(black, false), "d6d5 d6c5 d6e5 d6d7 d6c7 d6e7 d6c6 d6e6");
}

TEST(Evasions, KingMovesCapturesAndInterpositions_ComeInThisOrder) {
    // Rook on e8 checks e1: bishop and knight can take or step between.
    const TChessboard board = ValidBoard("4r2k/8/8/1B6/8/2N5/8/4K3");
    EXPECT_EQ(Evasions(board, true), "e1e2 e1d2 e1f2 e1d1 e1f1 b5e8 c3e2 b5e2 c3e4");
}

TEST(Evasions, PinnedFigures_AreLeftOut) {
    // The knight on d2 is pinned by the bishop, and could else take on e4.
    const TChessboard board = ValidBoard("7k/8/8/8/1b2r3/8/3N4/4K3");
    const std::string evasions = Evasions(board, true);
    EXPECT_EQ(evasions, "e1e2 e1f2 e1d1 e1f1");
}

TEST(Evasions, PawnTakingTheCheckerOnTheLastRank_GivesFourEntries) {
    // White pawn takes the rook on e8.
    EXPECT_EQ(Evasions(ValidBoard("4r2k/3P4/8/8/8/8/8/4K3"), true),
              "e1e2 e1d2 e1f2 e1d1 e1f1 d7e8q d7e8r d7e8b d7e8n");
    EXPECT_EQ(Evasions(ValidBoard("4k3/8/8/8/8/8/3p4/4R2K"), false),
              "e8e7 e8d7 e8f7 e8d8 e8f8 d2e1q d2e1r d2e1b d2e1n");
}

TEST(Evasions, PawnsInterpose_WithBothStepsAndPromotion) {
    EXPECT_EQ(Evasions(ValidBoard("7k/8/8/8/K6r/8/2PP1P2/8"), true),
              "a4a3 a4b3 a4a5 a4b5 a4b4 c2c4 d2d4 f2f4");
    EXPECT_EQ(Evasions(ValidBoard("7k/8/8/8/K6r/2PP4/8/8"), true),
              "a4a3 a4b3 a4a5 a4b5 a4b4 c3c4 d3d4");
    // Rank 8: a white pawn promotes between.
    EXPECT_EQ(Evasions(ValidBoard("K6r/2P5/8/8/8/8/8/7k"), true),
              "a8a7 a8b7 a8b8 c7c8q c7c8r c7c8b c7c8n");
    EXPECT_EQ(Evasions(ValidBoard("7K/8/8/8/8/8/2p5/k6R"), false),
              "a1a2 a1b2 a1b1 c2c1q c2c1r c2c1b c2c1n");
    EXPECT_EQ(Evasions(ValidBoard("8/2p2p2/3p4/k6R/8/8/8/7K"), false),
              "a5a4 a5b4 a5a6 a5b6 a5b5 c7c5 d6d5 f7f5");
}

// A double step between is blocked by a man in front of the pawn.
TEST(Evasions, BlockedDoubleStep_DoesNotInterpose) {
    EXPECT_EQ(Evasions(ValidBoard("7k/8/8/8/K6r/3n4/3P4/8"), true), "a4a3 a4b3 a4a5 a4b5 a4b4");
}

TEST(Evasions, NeighbouringChecker_CanOnlyBeTaken) {
    EXPECT_EQ(Evasions(ValidBoard("7k/8/8/8/8/8/r7/K2B4"), true), "a1a2 a1b2 a1b1");
    EXPECT_EQ(Evasions(ValidBoard("7k/8/8/8/2B5/8/r7/K7"), true), "a1a2 a1b2 a1b1 c4a2");
    EXPECT_EQ(Evasions(ValidBoard("7k/8/8/8/2B5/1n6/8/K7"), true), "a1a2 a1b2 a1b1 c4b3");
}

TEST(Evasions, CheckingPawn_IsTakenEnPassant) {
    // The double step checks the king.
    CGameLine black("8/8/4k3/2p1p3/8/8/3P4/6K1", 3);
    black.Play("d2d4");
    EXPECT_EQ(black.Node().m_blackInCheck, kNotInCheck);
    CGameLine line("8/8/8/4k3/2p1p3/8/3P4/6K1", 3);
    line.Play("d2d4");
    ASSERT_EQ(line.Node().m_blackInCheck, SquareOf("d4"));
    EXPECT_EQ(Evasions(line.Node(), false), "e5d4 e5f4 e5e6 e5d6 e5f6 e5d5 e5f5 c4d3 e4d3");
    CGameLine white("6k1/3p4/8/2P1P3/4K3/8/8/8", 4);
    white.Play("d7d5");
    ASSERT_EQ(white.Node().m_whiteInCheck, SquareOf("d5"));
    EXPECT_EQ(Evasions(white.Node(), true), "e4e3 e4d3 e4f3 e4d5 e4f5 e4d4 e4f4 c5d6 e5d6");
}

// BlackHasEvasion

TEST(BlackHasEvasion, EachWayOut_IsFound) {
    const struct {
        const char* name;
        const char* fen;
        bool hasEvasion;
    } rows[] = {
        {"corner mate", "k7/1Q6/1K6/8/8/8/8/8", false},
        {"back rank", "4R1k1/5ppp/8/8/8/8/8/K7", false},
        {"back rank with a way out", "4R1k1/5pp1/8/8/8/8/8/K7", true},
        {"king takes the checker", "k7/1Q6/8/8/8/8/8/K7", true},
        {"checker protected", "k7/1Q6/8/8/4B3/8/8/K7", false},
        {"another man takes it", "k7/1Q5r/1K6/8/8/8/8/8", true},
        {"the taker is pinned", "k2n3R/1Q6/1K6/8/8/8/8/8", false},
        {"a man interposes", "4R1k1/5ppp/8/8/1b6/8/8/K7", true},
        {"a knight interposes", "4R1k1/5ppp/6n1/8/8/8/8/K7", true},
        {"a pawn interposes by its double step", "8/5p2/7R/k6R/7R/8/8/K7", true},
        {"no man interposes", "8/8/7R/k6R/7R/8/8/K7", false},
        {"the man between is pinned", "R5k1/5pbp/8/8/8/8/6R1/1K6", false},
        {"along the line of a slider is no way out", "8/8/8/8/8/k1K5/8/R7", false},
        {"smothered", "6rk/5Npp/8/8/8/8/8/K7", false},
        {"smothered with a taker", "6rk/3b1Npp/4b3/8/8/8/8/K7", true},
        {"double check cannot be taken", "5rrk/5Np1/8/8/8/8/8/K6R", false},
        {"double check with a step", "5r1k/5Np1/8/8/8/8/8/K6R", true},
    };
    for (const auto& row : rows) {
        TChessboard board = ValidBoard(row.fen);
        ASSERT_GE(board.m_blackInCheck, 0) << row.name;
        reference::TPosition position = reference::FromFen(row.fen);
        position.isWhiteToMove = false;
        ASSERT_EQ(reference::HasLegalMove(position), row.hasEvasion) << row.name;
        const TChessboard before = board;
        EXPECT_EQ(BlackHasEvasion(board), row.hasEvasion) << row.name;
        EXPECT_TRUE(std::equal(board.m_board, board.m_board + 64, before.m_board)) << row.name;
        board.m_figureListValid = 0;
        EXPECT_EQ(BlackHasEvasion(board), row.hasEvasion) << row.name;
    }
}

TEST(BlackHasEvasion, EnPassant_IsAWayOutUnlessThePawnIsPinned) {
    // Every flight is guarded; the pawn on e4 can take on d3, and on the e-file it is pinned.
    const struct {
        const char* fen;
        bool hasEvasion;
    } rows[] = {
        {"8/8/R7/4k3/4p3/1B6/2NP4/5RRK", true},
        {"8/8/R7/4k3/4p3/1B6/2NP4/4RR1K", false},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 3);
        line.Play("d2d4");
        ASSERT_EQ(line.Node().m_blackInCheck, SquareOf("d4"));
        EXPECT_EQ(BlackHasEvasion(line.Node()), row.hasEvasion) << row.fen;
        TMove list[kMoveListSize];
        EXPECT_EQ(TextOfMoves(list, GetLegalMoves(line.Node(), list)),
                  row.hasEvasion ? "e4d3" : "");
    }
}

// White pawns make their double step with check, which no other test meets often.
TEST(BlackHasEvasion, AfterADoubleStep_EqualsSomeLegalReply) {
    reference::CRandom random(5);
    int onlyReplies = 0;
    for (int i = 0; i < 60'000; ++i) {
        const reference::TPosition position = reference::RandomEnPassantNest(random, true);
        for (const reference::TPlainMove move : reference::LegalMoves(position)) {
            if (position.squares[move.from] != 'P' || move.to - move.from != 16)
                continue;
            const reference::TPosition after = reference::After(position, move);
            if (!reference::IsInCheck(after, false))
                continue;
            TThreadContext thread(3);
            TChessboard root;
            bridge::FillBoard(root, position);
            root.m_threadContext = &thread;
            thread.rootNode = &root;
            SetupAnalysisRoot(root, 3, true);
            TChessboard child = root;
            child.m_parent = &root;
            ASSERT_EQ(MakeWhiteMoveLegal(child, MakeMove(move.from, move.to)), kMoveMade);
            const std::vector<reference::TPlainMove> replies = reference::LegalMoves(after);
            EXPECT_EQ(BlackHasEvasion(child), !replies.empty()) << reference::ToFen(after);
            const bool isEnPassantOnly =
                !replies.empty() &&
                std::all_of(replies.begin(), replies.end(), [&](reference::TPlainMove reply) {
                    return after.squares[reply.from] == 'p' && after.squares[reply.to] == '.' &&
                           FileOf(reply.from) != FileOf(reply.to);
                });
            onlyReplies += isEnPassantOnly ? 1 : 0;
        }
    }
    EXPECT_GT(onlyReplies, 0);
}

// CountFlights

TEST(CountFlights, SafeSteps_AreCountedUpToTheLimit) {
    const struct {
        const char* fen;
        int flights;
    } rows[] = {
        {"8/8/8/3k4/8/8/8/K7", 8},
        {"k7/8/8/8/8/8/8/K7", 3},
        {"8/8/8/3k3R/8/8/8/K7", 6},   // the line of the checker, both ways
        {"8/8/3p4/3k4/8/8/8/K7", 7},  // an own man
        {"8/8/3P4/3k4/8/8/8/K7", 8},  // a man to take
        {"8/8/8/3k4/8/3P4/8/K7", 6},  // a pawn guards two squares ahead
        {"8/8/3N4/3k4/8/8/8/K7", 6},
        {"8/8/8/3k4/8/3K4/8/8", 5},  // the kings in opposition
    };
    for (const auto& row : rows) {
        TChessboard board = ValidBoard(row.fen);
        const TChessboard before = board;
        EXPECT_EQ(CountFlights(board, 8), row.flights) << row.fen;
        EXPECT_TRUE(std::equal(board.m_board, board.m_board + 64, before.m_board));
        for (int limit = 0; limit <= 8; ++limit)
            EXPECT_EQ(CountFlights(board, limit), std::min(limit, row.flights)) << row.fen;
    }
}

}  // namespace
}  // namespace quillmere
