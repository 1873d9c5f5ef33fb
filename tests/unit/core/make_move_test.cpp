#include "core/direct_mates.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "tests/support/boards.h"
#include "tests/support/game_line.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CGameLine;
using test::MoveOf;
using test::SquareOf;
using test::TextOfSquare;

int WhiteCaptured(const TChessboard& node) {
    return (node.m_captureState & kWhiteCapturedMask) >> kWhiteCapturedShift;
}
int BlackCaptured(const TChessboard& node) {
    return (node.m_captureState & kBlackCapturedMask) >> kBlackCapturedShift;
}
int Promotions(const TChessboard& node) {
    return node.m_searchFlags & kSearchPromotionsMask;
}

void PlayAll(CGameLine& line, std::initializer_list<const char*> moves) {
    for (const char* move : moves)
        line.Play(move);
}

// A pair of a figure list as "e4 -".
std::string Pair(const i8* pair) {
    const auto one = [](i8 square) { return square < 0 ? std::string("-") : TextOfSquare(square); };
    return one(pair[0]) + " " + one(pair[1]);
}

// The tables of an engine that has them.
class CFakeTables : public IMaterialTables {
public:
    bool HasTables(const TChessboard& node) const override {
        ++asked;
        return has && node.m_nMoves > 0;
    }
    bool IsSmallMaterial(const TChessboard& node) const override {
        int men = 0;
        for (const u8 figure : node.m_board)
            men += figure != 0 ? 1 : 0;
        return men <= smallMen;
    }
    bool has = true;
    int smallMen = 0;
    mutable int asked = 0;
};

// The record of the move

TEST(MakeMove, LastMoveAndHalfMoves_AreWritten) {
    CGameLine line("7k/8/8/8/8/8/P7/K7", 5);
    TMove move = MoveOf("a2a4");
    move.enPassant = 77;  // a key that the sort left there
    line.Play(move);
    EXPECT_TRUE(MovesEqual(line.Node().m_lastMove, MoveOf("a2a4")));
    EXPECT_EQ(line.Node().m_lastMove.enPassant, 0);
    EXPECT_EQ(line.Node().m_nMoves, 4);
    EXPECT_EQ(line.Node().m_nRootMoves, 5);
    EXPECT_EQ(line.Node().Ply(), 1);
    TMove reply = MoveOf("h8g8");
    reply.enPassant = 55;
    line.Play(reply);
    EXPECT_EQ(line.Node().m_lastMove.enPassant, 0);
    EXPECT_EQ(line.Node().m_nMoves, 3);
}

TEST(MakeMove, EnPassant_TakesThePassedPawnAndMarksTheMove) {
    CGameLine white("4k3/4p3/8/3P4/8/8/8/4K3", 4);
    PlayAll(white, {"e7e5", "d5e6"});
    EXPECT_EQ(white.Node().m_board[SquareOf("e5")], 0);
    EXPECT_EQ(white.Node().m_board[SquareOf("e6")], kWhitePawn);
    EXPECT_EQ(white.Node().m_board[SquareOf("d5")], 0);
    EXPECT_EQ(white.Node().m_lastMove.enPassant, 1);
    EXPECT_EQ(white.Node().m_counts[kBlackPawns], 0);
    EXPECT_EQ(white.Node().m_counts[kWhitePawns], 1);
    CGameLine black("4k3/8/8/8/3p4/8/4P3/4K3", 3);
    PlayAll(black, {"e2e4", "d4e3"});
    EXPECT_EQ(black.Node().m_board[SquareOf("e4")], 0);
    EXPECT_EQ(black.Node().m_board[SquareOf("e3")], kBlackPawn);
    EXPECT_EQ(black.Node().m_lastMove.enPassant, 1);
    EXPECT_EQ(black.Node().m_counts[kWhitePawns], 0);
}

TEST(MakeMove, Promotion_ChangesTheFigureAndTheCounts) {
    const struct {
        const char* move;
        u8 figure;
        ECount count;
    } rows[] = {{"b7b8q", kWhiteQueen, kWhiteQueens},
                {"b7b8r", kWhiteRook, kWhiteRooks},
                {"b7b8b", kWhiteBishop, kWhiteBishops},
                {"b7b8n", kWhiteKnight, kWhiteKnights}};
    for (const auto& row : rows) {
        CGameLine line("8/1P6/7k/8/8/8/7p/K7", 3);
        line.Play(row.move);
        EXPECT_EQ(line.Node().m_board[SquareOf("b8")], row.figure);
        EXPECT_EQ(line.Node().m_counts[row.count], 1);
        EXPECT_EQ(line.Node().m_counts[kWhitePawns], 0);
    }
    const struct {
        const char* move;
        u8 figure;
        ECount count;
    } blackRows[] = {{"h2h1q", kBlackQueen, kBlackQueens},
                     {"h2h1r", kBlackRook, kBlackRooks},
                     {"h2h1b", kBlackBishop, kBlackBishops},
                     {"h2h1n", kBlackKnight, kBlackKnights}};
    for (const auto& row : blackRows) {
        CGameLine line("8/1P6/7k/8/8/8/K6p/8", 4);
        line.Play(row.move);
        EXPECT_EQ(line.Node().m_board[SquareOf("h1")], row.figure);
        EXPECT_EQ(line.Node().m_counts[row.count], 1);
        EXPECT_EQ(line.Node().m_counts[kBlackPawns], 0);
    }
}

// Castling

TEST(MakeMove, Castling_MovesTheRookForBothSides) {
    const struct {
        const char* white;
        const char* black;
        const char* after;
    } rows[] = {
        {"e1g1", "e8g8", "r4rk1/8/8/8/8/8/8/R4RK1"},
        {"e1c1", "e8c8", "2kr3r/8/8/8/8/8/8/2KR3R"},
    };
    for (const auto& row : rows) {
        CGameLine line("r3k2r/8/8/8/8/8/8/R3K2R", 3);
        PlayAll(line, {row.white, row.black});
        const TChessboard expected = test::FilledBoard(row.after);
        EXPECT_TRUE(std::equal(expected.m_board, expected.m_board + 64, line.Node().m_board));
    }
}

TEST(MakeMove, CastlingWithoutTheRight_IsIllegal) {
    CGameLine line("r3k2r/8/8/8/8/8/8/R3K2R", 9);
    PlayAll(line, {"e1f1", "e8f8", "f1e1", "f8e8"});
    EXPECT_EQ(line.PlayInSearch("e1g1"), kMoveIllegal);
    EXPECT_EQ(line.PlayInSearch("e1c1"), kMoveIllegal);
    line.Play("a1b1");
    EXPECT_EQ(line.PlayInSearch("e8g8"), kMoveIllegal);
    EXPECT_EQ(line.PlayInSearch("e8c8"), kMoveIllegal);
}

TEST(MakeMove, CastlingIntoAttack_IsIllegal) {
    CGameLine white("4k3/8/8/8/8/2r3r1/8/R3K2R", 3);
    EXPECT_EQ(white.PlayInSearch("e1g1"), kMoveIllegal);
    EXPECT_EQ(white.PlayInSearch("e1c1"), kMoveIllegal);
    CGameLine black("r3k2r/8/2R3R1/8/8/8/8/4K3", 4);
    EXPECT_EQ(black.PlayInSearch("e8g8"), kMoveIllegal);
    EXPECT_EQ(black.PlayInSearch("e8c8"), kMoveIllegal);
}

TEST(MakeMove, CastlingWithCheck_NamesTheRook) {
    const struct {
        const char* fen;
        const char* move;
        const char* checker;
    } rows[] = {
        {"5k2/8/8/8/8/8/8/4K2R", "e1g1", "f1"},
        {"3k4/8/8/8/8/8/8/R3K3", "e1c1", "d1"},
        {"8/8/8/8/8/8/8/k3K2R", "e1g1", "f1"},
        {"8/8/8/8/8/8/8/R3K2k", "e1c1", "d1"},
        {"3k4/8/8/8/8/8/8/4K2R", "e1g1", ""},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 3);
        line.Play(row.move);
        EXPECT_EQ(line.Node().m_blackInCheck,
                  *row.checker == 0 ? kNotInCheck : SquareOf(row.checker))
            << row.fen;
    }
    CGameLine black("4k2r/8/8/8/8/8/8/5K2", 4);
    black.Play("e8g8");
    EXPECT_EQ(black.Node().m_whiteInCheck, SquareOf("f8"));
    CGameLine blackLong("r3k3/8/8/8/8/8/8/3K4", 4);
    blackLong.Play("e8c8");
    EXPECT_EQ(blackLong.Node().m_whiteInCheck, SquareOf("d8"));
}

// Check fields

TEST(MakeMove, CheckField_NamesDirectDiscoveredAndDoubleChecks) {
    const struct {
        const char* name;
        const char* fen;
        const char* move;
        const char* checker;  // "" for none, "++" for a double check
    } rows[] = {
        {"rook", "7k/8/8/8/8/8/8/K2R4", "d1d8", "d8"},
        {"rook blocked", "4n2k/8/8/8/8/8/8/K2R4", "d1d8", ""},
        {"bishop", "7k/8/8/8/8/8/8/K1B5", "c1b2", "b2"},
        {"queen as a bishop", "7k/8/8/8/8/8/8/KQ6", "b1b2", "b2"},
        {"knight", "7k/8/8/6N1/8/8/8/K7", "g5f7", "f7"},
        {"pawn", "7k/8/6P1/8/8/8/8/K7", "g6g7", "g7"},
        {"pawn straight ahead", "7k/8/7P/8/8/8/8/K7", "h6h7", ""},
        {"promotion", "7k/P7/8/8/8/8/8/K7", "a7a8q", "a8"},
        {"promotion to a knight", "8/3P1k2/8/8/8/8/8/K7", "d7d8n", "d8"},
        {"promotion on the line it opens", "k7/2P5/8/8/8/8/8/K1R5", "c7c8q", "c8"},
        {"along the line of the king", "7k/8/8/8/8/8/7r/K6R", "h1h2", "h2"},
        {"discovered by a knight", "7k/8/8/8/8/8/1N6/B6K", "b2a4", "a1"},
        {"discovered by the king", "7k/8/8/8/7K/8/8/7R", "h4g4", "h1"},
        {"discovered by a pawn", "8/8/8/8/R2P3k/8/8/K7", "d4d5", "a4"},
        {"knight and bishop", "7k/8/5N2/8/3B4/8/8/K7", "f6g4", "d4"},
        {"double by a knight", "7k/8/8/4N3/3B4/8/8/K7", "e5f7", "++"},
        {"double by a promotion", "8/R4P1k/8/8/8/8/8/K7", "f7f8n", "++"},
        {"double by a bishop", "8/8/8/7k/8/7B/8/K6R", "h3g4", "++"},
        {"nothing", "7k/8/8/8/8/8/8/K2R4", "d1d2", ""},
    };
    for (const auto& row : rows) {
        const std::string checker = row.checker;
        try {
            CGameLine line(row.fen, 3);
            line.Play(row.move);
            EXPECT_EQ(line.Node().m_blackInCheck,
                      checker.empty()   ? kNotInCheck
                      : checker == "++" ? kDoubleCheck
                                        : SquareOf(checker))
                << row.name;
            EXPECT_EQ(line.Node().m_whiteInCheck, kNotInCheck) << row.name;
        } catch (const std::exception& e) {
            ADD_FAILURE() << row.name << ": " << e.what();
        }
        // Colours swapped, black moves.
        std::string swapped = reference::ToFen(reference::SwapColours(reference::FromFen(row.fen)));
        swapped = swapped.substr(0, swapped.find(' '));
        try {
            CGameLine line(swapped, 4);
            std::string move = row.move;
            move[1] = static_cast<char>('1' + '8' - move[1]);
            move[3] = static_cast<char>('1' + '8' - move[3]);
            line.Play(move);
            EXPECT_EQ(line.Node().m_whiteInCheck,
                      checker.empty()   ? kNotInCheck
                      : checker == "++" ? kDoubleCheck
                                        : SquareOf(checker) ^ 56)
                << row.name;
            EXPECT_EQ(line.Node().m_blackInCheck, kNotInCheck) << row.name;
        } catch (const std::exception& e) {
            ADD_FAILURE() << row.name << " swapped: " << e.what();
        }
    }
}

// The pawn that is taken en passant may be the one that shut the line.
TEST(MakeMove, EnPassant_DiscoversThroughEitherPawn) {
    // Through the captured pawn's square along the fifth rank
    CGameLine rank("8/4p3/8/R2P3k/8/8/8/K7", 4);
    PlayAll(rank, {"e7e5", "d5e6"});
    EXPECT_EQ(rank.Node().m_blackInCheck, SquareOf("a5"));
    // Through the captured pawn's square on a diagonal
    CGameLine diagonal("7k/4p3/8/3P4/8/2B5/8/K7", 4);
    PlayAll(diagonal, {"e7e5", "d5e6"});
    EXPECT_EQ(diagonal.Node().m_blackInCheck, SquareOf("c3"));
    // Through the capturing pawn's square, and a check by the pawn itself
    CGameLine both("3k4/4p3/8/3P4/8/8/8/K2R4", 4);
    PlayAll(both, {"e7e5", "d5e6"});
    EXPECT_EQ(both.Node().m_blackInCheck, SquareOf("d1"));
    CGameLine twice("8/4pk2/8/3P4/8/1B6/8/K7", 4);
    PlayAll(twice, {"e7e5", "d5e6"});
    EXPECT_EQ(twice.Node().m_blackInCheck, SquareOf("e6"));
    CGameLine black("k7/8/8/8/r2p3K/8/4P3/8", 3);
    PlayAll(black, {"e2e4", "d4e3"});
    EXPECT_EQ(black.Node().m_whiteInCheck, SquareOf("a4"));
}

// Captures

TEST(MakeMove, CaptureLists_KeepTheFirstThree) {
    CGameLine line("7k/8/p7/n7/p7/p7/8/R5K1", 9);
    line.Play("a1a3");
    EXPECT_EQ(BlackCaptured(line.Node()), 1);
    PlayAll(line, {"h8g8", "a3a4", "g8h8"});
    EXPECT_EQ(BlackCaptured(line.Node()), 2);
    PlayAll(line, {"a4a5", "h8g8"});
    EXPECT_EQ(BlackCaptured(line.Node()), 3);
    PlayAll(line, {"a5a6"});
    EXPECT_EQ(BlackCaptured(line.Node()), 3);
    EXPECT_EQ(WhiteCaptured(line.Node()), 0);
    const TCaptureList& list = line.Thread().blackCaptured;
    const struct {
        const char* square;
        u8 figure;
    } expected[3] = {{"a3", kBlackPawn}, {"a4", kBlackPawn}, {"a5", kBlackKnight}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(list.square[i], SquareOf(expected[i].square));
        EXPECT_EQ(list.figure[i], expected[i].figure);
    }
}

TEST(MakeMove, CaptureLists_OfWhiteMenAreBlacks) {
    CGameLine line("r5k1/8/P7/N7/P7/P7/8/7K", 10);
    PlayAll(line, {"a8a6", "h1g1", "a6a5", "g1h1", "a5a4", "h1g1", "a4a3"});
    EXPECT_EQ(WhiteCaptured(line.Node()), 3);
    EXPECT_EQ(BlackCaptured(line.Node()), 0);
    const TCaptureList& list = line.Thread().whiteCaptured;
    EXPECT_EQ(list.square[0], SquareOf("a6"));
    EXPECT_EQ(list.figure[0], kWhitePawn);
    EXPECT_EQ(list.square[1], SquareOf("a5"));
    EXPECT_EQ(list.figure[1], kWhiteKnight);
    EXPECT_EQ(list.square[2], SquareOf("a4"));
}

// A sibling writes over what the line before it had captured at this count.
TEST(MakeMove, CaptureLists_BelongToTheLine) {
    CGameLine line("7k/8/8/8/8/1p1n4/8/K1R5", 3);
    TChessboard first = line.Node();
    first.m_parent = &line.Node();
    ASSERT_EQ(MakeWhiteMoveLegal(first, MoveOf("c1c3")), kMoveMade);
    EXPECT_EQ(BlackCaptured(first), 0);
    CGameLine taking("7k/8/8/8/8/p1p5/1P6/K7", 3);
    for (const char* square : {"a3", "c3"}) {
        TChessboard child = taking.Node();
        child.m_parent = &taking.Node();
        ASSERT_EQ(MakeWhiteMoveLegal(child, MoveOf(std::string("b2") + square)), kMoveMade);
        EXPECT_EQ(BlackCaptured(child), 1);
        EXPECT_EQ(taking.Thread().blackCaptured.square[0], SquareOf(square));
    }
}

TEST(MakeMove, EnPassantCapture_IsRecordedWithThePassedPawn) {
    CGameLine white("4k3/4p3/8/3P4/8/8/8/4K3", 4);
    PlayAll(white, {"e7e5", "d5e6"});
    EXPECT_EQ(BlackCaptured(white.Node()), 1);
    EXPECT_EQ(white.Thread().blackCaptured.square[0], SquareOf("e5"));
    EXPECT_EQ(white.Thread().blackCaptured.figure[0], kBlackPawn);
    CGameLine black("4k3/8/8/8/3p4/8/4P3/4K3", 3);
    PlayAll(black, {"e2e4", "d4e3"});
    EXPECT_EQ(WhiteCaptured(black.Node()), 1);
    EXPECT_EQ(black.Thread().whiteCaptured.square[0], SquareOf("e4"));
    EXPECT_EQ(black.Thread().whiteCaptured.figure[0], kWhitePawn);
}

TEST(MakeMove, OtherBitsOfTheCaptureState_Stay) {
    CGameLine line("7k/8/8/8/8/p7/8/R5K1", 3);
    line.Node().m_captureState |= 0xc3;
    line.Play("a1a3");
    EXPECT_EQ(line.Node().m_captureState, 0xc3 | 1 << kBlackCapturedShift);
}

// Tracked figures

TEST(MakeMove, TrackedFigures_FollowMovesAndEndWithCaptures) {
    CGameLine line("7k/3r4/2n5/8/8/8/3R4/K7", 7);
    line.Node().m_trackedFigures[0] = static_cast<i8>(SquareOf("c6"));
    line.Node().m_trackedFigures[5] = static_cast<i8>(SquareOf("d7"));
    PlayAll(line, {"a1b1", "c6e5"});
    EXPECT_EQ(line.Node().m_trackedFigures[0], SquareOf("e5"));
    EXPECT_EQ(line.Node().m_trackedFigures[5], SquareOf("d7"));
    EXPECT_EQ(line.Node().m_trackedFigures[1], -1);
    line.Play("d2d7");
    EXPECT_EQ(line.Node().m_trackedFigures[0], SquareOf("e5"));
    EXPECT_EQ(line.Node().m_trackedFigures[5], -1);
    line.Play("e5d7");
    EXPECT_EQ(line.Node().m_trackedFigures[0], SquareOf("d7"));
    EXPECT_EQ(line.Node().m_trackedFigures[5], -1);
}

TEST(MakeMove, TrackedRook_GoesAlongWithCastling) {
    const struct {
        const char* move;
        const char* king;
        const char* a8;
        const char* h8;
    } rows[] = {{"e8g8", "g8", "a8", "f8"}, {"e8c8", "c8", "d8", "h8"}};
    for (const auto& row : rows) {
        CGameLine line("r3k2r/8/8/8/8/8/8/4K3", 4);
        line.Node().m_trackedFigures[0] = static_cast<i8>(SquareOf("a8"));
        line.Node().m_trackedFigures[1] = static_cast<i8>(SquareOf("h8"));
        line.Node().m_trackedFigures[2] = static_cast<i8>(SquareOf("e8"));
        line.Play(row.move);
        EXPECT_EQ(line.Node().m_trackedFigures[0], SquareOf(row.a8));
        EXPECT_EQ(line.Node().m_trackedFigures[1], SquareOf(row.h8));
        EXPECT_EQ(line.Node().m_trackedFigures[2], SquareOf(row.king));
    }
}

TEST(MakeMove, TrackedPawn_EndsWhenItIsTakenInPassing) {
    CGameLine line("4k3/4p3/8/3P4/8/8/8/4K3", 4);
    line.Node().m_trackedFigures[3] = static_cast<i8>(SquareOf("e7"));
    line.Play("e7e5");
    EXPECT_EQ(line.Node().m_trackedFigures[3], SquareOf("e5"));
    line.Play("d5e6");
    EXPECT_EQ(line.Node().m_trackedFigures[3], -1);
    CGameLine taker("4k3/8/8/8/3p4/8/4P3/4K3", 3);
    taker.Node().m_trackedFigures[0] = static_cast<i8>(SquareOf("d4"));
    PlayAll(taker, {"e2e4", "d4e3"});
    EXPECT_EQ(taker.Node().m_trackedFigures[0], SquareOf("e3"));
}

// Flags of the line

TEST(MakeMove, FreshFlag_EndsWithTheFirstUnmarkedWhiteMove) {
    CGameLine line("7k/8/8/8/8/8/8/KQ6", 7);
    TMove marked = MoveOf("b1b2");
    marked.flags |= kMoveMarkForced;
    line.Play("b1b3");
    EXPECT_EQ(line.Node().m_searchFlags & kSearchFresh, 0);
    CGameLine forced("7k/8/8/8/8/8/8/KQ6", 7);
    marked = MoveOf("b1b3");
    marked.flags |= kMoveMarkForced;
    forced.Play(marked);
    EXPECT_NE(forced.Node().m_searchFlags & kSearchFresh, 0);
    forced.Play("h8h7");
    EXPECT_NE(forced.Node().m_searchFlags & kSearchFresh, 0);
    forced.Play("a1a2");
    EXPECT_EQ(forced.Node().m_searchFlags & kSearchFresh, 0);
}

TEST(MakeMove, WhitePromotedFlag_IsTheQueensOnly) {
    const struct {
        const char* move;
        bool isSet;
    } rows[] = {{"b7b8q", true}, {"b7b8r", false}, {"b7b8b", false}, {"b7b8n", false}};
    for (const auto& row : rows) {
        CGameLine line("8/1P6/7k/8/8/8/7p/K7", 5);
        line.Play(row.move);
        EXPECT_EQ((line.Node().m_searchFlags & kSearchWhitePromoted) != 0, row.isSet) << row.move;
        line.Play("h6h5");
        EXPECT_EQ((line.Node().m_searchFlags & kSearchWhitePromoted) != 0, row.isSet) << row.move;
    }
}

TEST(MakeMove, EdgeBits_FollowTheBlackKing) {
    CGameLine line("8/8/8/8/8/2k5/8/K6R", 9);
    EXPECT_EQ(line.Node().BlackKingEdgeDistance(), 2);
    PlayAll(line, {"h1h2", "c3d4"});
    EXPECT_EQ(line.Node().BlackKingEdgeDistance(), 3);
    PlayAll(line, {"h2h3", "d4c5", "h3h4", "c5b6"});
    EXPECT_EQ(line.Node().BlackKingEdgeDistance(), 1);
    PlayAll(line, {"h4h5", "b6a6"});
    EXPECT_EQ(line.Node().BlackKingEdgeDistance(), 0);
}

TEST(MakeMove, EdgeBits_FollowCastling) {
    CGameLine line("r3k3/8/8/8/8/8/8/4K3", 4);
    line.Play("e8c8");
    EXPECT_EQ(line.Node().BlackKingEdgeDistance(), 0);
    EXPECT_EQ(line.Node().BlackKingSquare(), SquareOf("c8"));
}

TEST(MakeMove, BareKingFlag_IsSetByTheLastCapture) {
    CGameLine line("7k/8/8/p7/p7/8/8/R5K1", 7);
    line.Play("a1a4");
    EXPECT_EQ(line.Node().m_positionFlags & kPositionBareKing, 0);
    PlayAll(line, {"h8g8", "a4a5"});
    EXPECT_NE(line.Node().m_positionFlags & kPositionBareKing, 0);
    CGameLine enPassant("4k3/4p3/8/3P4/8/8/8/4K3", 4);
    PlayAll(enPassant, {"e7e5", "d5e6"});
    EXPECT_NE(enPassant.Node().m_positionFlags & kPositionBareKing, 0);
}

TEST(MakeMove, WrongCornerFlag_ComesAndGoes) {
    // The dark bishop does not cover a8; the black king stands there.
    CGameLine line("k7/8/8/1p6/P7/8/8/K1B5", 9);
    EXPECT_EQ(line.Node().m_searchFlags & kSearchWrongCorner, 0);
    line.Play("c1d2");
    EXPECT_NE(line.Node().m_searchFlags & kSearchWrongCorner, 0);
    line.Play("a8b7");
    line.Play("a4b5");
    EXPECT_EQ(line.Node().m_searchFlags & kSearchWrongCorner, 0);
}

TEST(MakeMove, WrongCornerFlag_NeedsEveryCondition) {
    const struct {
        const char* name;
        const char* fen;
        const char* move;
        bool isSet;
    } rows[] = {
        {"dark bishop, a-pawn", "k7/8/8/8/P7/8/8/K1B5", "c1d2", true},
        {"light bishop, a-pawn", "k7/8/8/8/P7/8/8/K4B2", "f1g2", false},
        {"light bishop, h-pawn", "7k/8/8/8/7P/8/8/K4B2", "f1g2", true},
        {"dark bishop, h-pawn", "7k/8/8/8/7P/8/8/K1B5", "c1d2", false},
        {"pawn off the edge file", "k7/8/8/8/1P6/8/8/K1B5", "c1d2", false},
        {"another figure", "k7/8/8/8/P7/8/8/K1B3N1", "c1d2", false},
        {"two bishops", "k7/8/8/8/P7/8/8/K1BB4", "c1d2", false},
        {"no pawn", "k7/p7/8/8/8/8/8/K1B5", "c1d2", false},
        {"king too far", "7k/8/8/8/P7/8/8/K1B5", "c1d2", false},
        {"the move is the king's", "k7/8/8/8/P7/8/8/K1B5", "a1b1", true},
        {"a capture onto the file", "k7/8/p7/1P6/8/8/8/K1B5", "b5a6", true},
        {"a promotion that leaves it", "k7/6P1/8/8/P7/8/8/K7", "g7g8b", false},
        {"a promotion to the wrong bishop", "k7/7P/8/8/P7/8/8/K7", "h7h8b", true},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 5);
        line.Play(row.move);
        EXPECT_EQ((line.Node().m_searchFlags & kSearchWrongCorner) != 0, row.isSet) << row.name;
    }
}

// Black promotions of the line

TEST(MakeMove, BlackPromotions_AreCountedUpToThree) {
    CGameLine line("8/8/7k/8/8/8/pppp4/7K", 20);
    PlayAll(line, {"a2a1n", "h1h2"});
    EXPECT_EQ(Promotions(line.Node()), 1);
    PlayAll(line, {"b2b1n", "h2h1", "c2c1n", "h1h2"});
    EXPECT_EQ(Promotions(line.Node()), 3);
    line.Play("d2d1n");
    EXPECT_EQ(Promotions(line.Node()), 3);
}

TEST(MakeMove, BlackPromotions_FallWhenSuchAFigureIsTaken) {
    CGameLine line("8/8/n6k/8/8/8/2p3R1/K7", 20);
    PlayAll(line, {"c2c1n"});
    EXPECT_EQ(Promotions(line.Node()), 1);
    // The promoted knight goes on and is taken elsewhere.
    PlayAll(line, {"g2h2", "h6g6", "h2g2", "g6h6", "g2g1", "c1d3", "g1g3", "a6c5", "g3d3"});
    EXPECT_EQ(Promotions(line.Node()), 0);
    EXPECT_TRUE(line.Node().m_counts[kBlackKnights] == 1);
    // The other knight was never a pawn.
    CGameLine other("8/8/n6k/8/8/8/2p5/K5R1", 20);
    PlayAll(other, {"c2c1n", "g1g8", "a6b8", "g8b8"});
    EXPECT_EQ(Promotions(other.Node()), 1);
}

// A rook that castled stands where another figure may have stood before it.
TEST(MakeMove, CastledRook_IsNotTakenForAPromotedFigure) {
    CGameLine line("4k2r/8/8/8/8/8/5pR1/K7", 30);
    PlayAll(line,
            {"f2f1n",
             "g2g3",
             "f1e3",
             "g3g4",
             "e3d5",
             "g4g5",
             "d5e7",
             "g5g1",
             "e7g6",
             "g1f1",
             "g6f8",
             "f1h1",
             "f8e6",
             "h1f1",
             "e8g8",
             "f1f8"});
    EXPECT_EQ(Promotions(line.Node()), 1);
    EXPECT_EQ(line.Node().m_counts[kBlackKnights], 1);
}

TEST(WasPromotedInLine, OnlyThePromotedFigure_Was) {
    CGameLine line("8/8/n6k/8/8/8/2p5/K7", 20);
    EXPECT_FALSE(WasPromotedInLine(line.Node(), SquareOf("a6")));
    PlayAll(line, {"c2c1n", "a1b1", "c1d3", "b1a1"});
    EXPECT_TRUE(WasPromotedInLine(line.Node(), SquareOf("d3")));
    EXPECT_FALSE(WasPromotedInLine(line.Node(), SquareOf("a6")));
    // The square that it left, where another knight stands now
    PlayAll(line, {"d3f4", "a1b1", "a6c5", "b1a1", "c5d3"});
    EXPECT_FALSE(WasPromotedInLine(line.Node(), SquareOf("d3")));
    EXPECT_TRUE(WasPromotedInLine(line.Node(), SquareOf("f4")));
}

TEST(MakeMove, PromotionOfBlack_ClearsTheMarkOfTheThread) {
    CGameLine line("8/8/7k/8/8/8/p7/7K", 4);
    line.Thread().isPromotionSquareFree = true;
    line.Play("h6h5");
    EXPECT_TRUE(line.Thread().isPromotionSquareFree);
    line.Play("h1h2");
    line.Play("a2a1q");
    EXPECT_FALSE(line.Thread().isPromotionSquareFree);
}

// Figure lists

TEST(MakeMove, FigureLists_FollowTheFigures) {
    CGameLine line("1k6/pp6/8/8/8/8/8/QRNBK1NR", 21);
    PlayAll(line,
            {"b1b3",
             "b8c8",
             "h1h5",
             "c8b8",
             "c1d3",
             "b8c8",
             "g1h3",
             "c8b8",
             "d1c2",
             "b8c8",
             "a1a4",
             "c8b8"});
    EXPECT_EQ(Pair(line.Node().m_whiteRooks), "b3 h5");
    EXPECT_EQ(Pair(line.Node().m_whiteKnights), "d3 h3");
    EXPECT_EQ(Pair(line.Node().m_whiteBishops), "c2 -");
    EXPECT_EQ(line.Node().m_whiteQueen, SquareOf("a4"));
    CGameLine bishops("1k6/pp6/8/8/8/8/8/2B1KB2", 5);
    PlayAll(bishops, {"c1d2", "b8c8", "f1g2"});
    EXPECT_EQ(Pair(bishops.Node().m_whiteBishops), "d2 g2");
    EXPECT_EQ(bishops.Node().m_figureListValid, 1);
}

TEST(MakeMove, FigureLists_FollowCastling) {
    CGameLine line("2k5/8/8/8/8/8/8/R3K2R", 3);
    line.Play("e1g1");
    EXPECT_EQ(Pair(line.Node().m_whiteRooks), "a1 f1");
    CGameLine longer("2k5/8/8/8/8/8/8/R3K2R", 3);
    longer.Play("e1c1");
    EXPECT_EQ(Pair(longer.Node().m_whiteRooks), "d1 h1");
}

TEST(MakeMove, FigureLists_ShiftWhenTheFirstIsTaken) {
    CGameLine first("7k/8/8/8/8/1b6/8/R2R3K", 4);
    first.Play("b3d1");
    EXPECT_EQ(Pair(first.Node().m_whiteRooks), "a1 -");
    CGameLine second("7k/8/8/8/8/1n6/8/R2R3K", 4);
    second.Play("b3a1");
    EXPECT_EQ(Pair(second.Node().m_whiteRooks), "d1 -");
    CGameLine bishop("6k1/8/8/8/8/1n6/8/B4B1K", 4);
    bishop.Play("b3a1");
    EXPECT_EQ(Pair(bishop.Node().m_whiteBishops), "f1 -");
    CGameLine knight("6k1/8/8/8/8/1n6/8/N1N4K", 4);
    knight.Play("b3c1");
    EXPECT_EQ(Pair(knight.Node().m_whiteKnights), "a1 -");
    CGameLine queen("7k/8/8/8/8/1n6/8/Q6K", 4);
    queen.Play("b3a1");
    EXPECT_EQ(queen.Node().m_whiteQueen, -1);
    EXPECT_EQ(queen.Node().m_figureListValid, 1);
}

TEST(MakeMove, FigureLists_TakePromotionsInOrOverflow) {
    const struct {
        const char* fen;
        const char* move;
        int valid;
    } rows[] = {
        {"8/1P6/7k/8/8/8/8/6QK", "b7b8q", 0},
        {"8/1P6/7k/8/8/8/8/6QK", "b7b8r", 1},
        {"8/1P6/7k/8/8/8/8/RR5K", "b7b8r", 0},
        {"8/1P6/7k/8/8/8/8/NN5K", "b7b8n", 0},
        {"8/1P6/7k/8/8/8/8/NN5K", "b7b8b", 1},
        // b8 is dark, as c1; b1 is light
        {"8/1P6/7k/8/8/2P5/8/4B2K", "b7b8b", 0},
        {"8/1P6/7k/8/8/8/8/1B5K", "b7b8b", 1},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 3);
        line.Play(row.move);
        EXPECT_EQ(line.Node().m_figureListValid, row.valid) << row.fen << " " << row.move;
        line.Play("h6h5");
        EXPECT_EQ(line.Node().m_figureListValid, row.valid) << row.fen << " " << row.move;
    }
    CGameLine queen("8/1P6/7k/8/8/8/8/7K", 3);
    queen.Play("b7b8q");
    EXPECT_EQ(queen.Node().m_whiteQueen, SquareOf("b8"));
    CGameLine rook("8/1P6/7k/8/8/8/8/R6K", 3);
    rook.Play("b7b8r");
    EXPECT_EQ(Pair(rook.Node().m_whiteRooks), "a1 b8");
}

TEST(MakeMove, CaptureThatEndsTheOverflow_RebuildsTheLists) {
    const struct {
        const char* name;
        const char* fen;
        const char* move;
        int valid;
    } rows[] = {
        {"second queen", "6k1/8/8/8/8/1n6/8/QQ5K", "b3a1", 1},
        {"third rook", "6k1/8/8/8/8/1n6/8/RRR4K", "b3a1", 1},
        {"fourth rook", "6k1/8/8/8/8/1n6/R7/RRR4K", "b3a1", 0},
        {"third knight", "6k1/8/8/8/8/1n6/8/NNN4K", "b3a1", 1},
        {"bishop of the same colour", "6k1/8/8/8/8/1n6/8/B1B4K", "b3a1", 1},
        {"bishop of the other colour", "6k1/8/8/8/8/2n5/8/BBB4K", "c3b1", 0},
        {"third bishop", "6k1/8/8/8/8/1n6/8/BBB4K", "b3a1", 1},
        {"two kinds", "6k1/8/8/8/8/1n6/NNN5/QQ5K", "b3a1", 0},
        {"another kind", "6k1/8/8/8/8/1n6/8/NQQ4K", "b3a1", 0},
        {"a pawn", "6k1/8/8/8/8/1n6/3P4/QQ5K", "b3d2", 0},
    };
    for (const auto& row : rows) {
        try {
            CGameLine line(row.fen, 4);
            line.Play(row.move);
            EXPECT_EQ(line.Node().m_figureListValid, row.valid) << row.name;
        } catch (const std::exception& e) {
            ADD_FAILURE() << row.name << ": " << e.what();
        }
    }
    CGameLine rooks("6k1/8/8/8/8/1n6/8/RRR4K", 4);
    rooks.Play("b3a1");
    EXPECT_EQ(Pair(rooks.Node().m_whiteRooks), "b1 c1");
}

// Marks of the tables

TEST(MakeMove, TablesFlag_IsSetWithElevenHalfMovesOrMore) {
    const struct {
        u16 halfMoves;
        bool isSet;
    } rows[] = {{13, true}, {12, true}, {11, false}, {10, false}, {3, false}};
    for (const auto& row : rows) {
        CFakeTables tables;
        TSearchContext context;
        context.materialTables = &tables;
        CGameLine line("7k/8/8/8/8/8/8/KQ6", row.halfMoves);
        line.Node().m_searchContext = &context;
        ASSERT_EQ(line.PlayInSearch(line.Node().IsWhiteToMove() ? "b1b3" : "h8g7"), kMoveMade);
        EXPECT_EQ((line.Node().m_positionFlags & kPositionHasTables) != 0, row.isSet)
            << row.halfMoves;
    }
}

TEST(MakeMove, TablesFlag_NeedsATable) {
    CFakeTables tables;
    tables.has = false;
    TSearchContext context;
    context.materialTables = &tables;
    CGameLine line("7k/8/8/8/8/8/8/KQ6", 15);
    line.Node().m_searchContext = &context;
    ASSERT_EQ(line.PlayInSearch("b1b3"), kMoveMade);
    EXPECT_EQ(tables.asked, 1);
    EXPECT_EQ(line.Node().m_positionFlags & kPositionHasTables, 0);
    // Without tables, or without a context, nothing is asked.
    context.materialTables = nullptr;
    EXPECT_EQ(line.PlayInSearch("h8g7"), kMoveMade);
    line.Node().m_searchContext = nullptr;
    EXPECT_EQ(line.PlayInSearch("b3b4"), kMoveMade);
    EXPECT_EQ(line.Node().m_positionFlags & kPositionHasTables, 0);
}

TEST(MakeMove, SmallMaterialFlag_EndsWithAPromotion) {
    const struct {
        const char* move;
        int smallMen;
        bool isKept;
    } rows[] = {
        {"b7b8q", 32, false},  // a queen or rook always ends it
        {"b7b8r", 32, false},
        {"b7b8b", 32, true},  // the others unless the test still holds
        {"b7b8n", 32, true},
        {"b7b8b", 0, false},
        {"b7b8n", 0, false},
        {"a1a2", 0, true},  // other moves leave it
    };
    for (const auto& row : rows) {
        CFakeTables tables;
        tables.smallMen = row.smallMen;
        TSearchContext context;
        context.materialTables = &tables;
        CGameLine line("8/1P6/7k/8/8/8/7p/K7", 3);
        line.Node().m_searchContext = &context;
        line.Node().m_positionFlags |= kPositionSmallMaterial;
        ASSERT_EQ(line.PlayInSearch(row.move), kMoveMade) << row.move;
        EXPECT_EQ((line.Node().m_positionFlags & kPositionSmallMaterial) != 0, row.isKept)
            << row.move << " " << row.smallMen;
    }
}

TEST(MakeMove, SmallMaterialFlag_ComesBackWithABlackCapture) {
    CFakeTables tables;
    tables.smallMen = 4;
    TSearchContext context;
    context.materialTables = &tables;
    CGameLine line("7k/8/8/8/8/1n6/8/R1Q4K", 4);
    line.Node().m_searchContext = &context;
    ASSERT_EQ(line.PlayInSearch("h8g8"), kMoveMade);
    EXPECT_EQ(line.Node().m_positionFlags & kPositionSmallMaterial, 0);
    CGameLine taking("7k/8/8/8/8/1n6/8/R1Q4K", 4);
    taking.Node().m_searchContext = &context;
    ASSERT_EQ(taking.PlayInSearch("b3a1"), kMoveMade);
    EXPECT_NE(taking.Node().m_positionFlags & kPositionSmallMaterial, 0);
    tables.smallMen = 3;
    CGameLine more("7k/8/8/8/8/1n6/8/R1Q4K", 4);
    more.Node().m_searchContext = &context;
    ASSERT_EQ(more.PlayInSearch("b3a1"), kMoveMade);
    EXPECT_EQ(more.Node().m_positionFlags & kPositionSmallMaterial, 0);
}

// Material that cannot mate

TEST(MakeWhiteMove, LastCaptureWithTooLittleMaterial_IsNoMoveForTheSearch) {
    const struct {
        const char* name;
        const char* fen;
        const char* move;
        bool isHopeless;
    } rows[] = {
        {"king alone", "7k/8/8/8/8/8/1p6/K7", "a1b2", true},
        {"one bishop", "7k/8/8/8/8/8/1n6/K1B5", "c1b2", true},
        {"one bishop, the king takes", "7k/8/8/8/8/8/1n6/K1B5", "a1b2", true},
        {"bishops of one colour", "7k/8/8/8/8/8/1n6/B1B4K", "a1b2", true},
        {"bishops of two colours", "7k/8/8/8/8/8/1n6/B4B1K", "a1b2", false},
        {"one knight", "7k/8/8/8/2N5/8/1n6/K7", "c4b2", false},
        {"pawn", "7k/8/8/8/8/p7/1P6/K7", "b2a3", false},
        {"rook", "7k/8/8/8/8/8/1n6/K1R5", "a1b2", false},
        {"queen", "7k/8/8/8/8/8/1n6/KQ6", "b1b2", false},
        {"black keeps a man", "7k/p7/8/8/8/8/1n6/K1B5", "c1b2", false},
        {"promotion to a bishop", "nk6/1P6/8/8/8/8/8/K7", "b7a8b", true},
        {"promotion to a knight", "nk6/1P6/8/8/8/8/8/K7", "b7a8n", false},
    };
    for (const auto& row : rows) {
        CGameLine search(row.fen, 5);
        EXPECT_EQ(search.PlayInSearch(row.move), row.isHopeless ? kMoveIllegal : kMoveMade)
            << row.name;
        if (!row.isHopeless && std::string(row.name) != "black keeps a man") {
            EXPECT_NE(search.Node().m_positionFlags & kPositionBareKing, 0) << row.name;
        }
        // For people the move is legal.
        CGameLine people(row.fen, 5);
        EXPECT_NO_THROW(people.Play(row.move)) << row.name;
    }
}

// Also where black was bare before.
TEST(MakeWhiteMove, QuietMoveWithTooLittleMaterial_IsNoMoveForTheSearch) {
    CGameLine line("7k/8/8/8/8/8/8/K1B5", 5);
    EXPECT_EQ(line.PlayInSearch("c1b2"), kMoveIllegal);
    EXPECT_EQ(line.PlayInSearch("a1a2"), kMoveIllegal);
    CGameLine promoting("7k/1P6/8/8/8/8/8/K7", 5);
    EXPECT_EQ(promoting.PlayInSearch("b7b8b"), kMoveIllegal);
    EXPECT_EQ(promoting.PlayInSearch("b7b8r"), kMoveMade);
}

// The null move

TEST(MakeBlackMove, NullMove_ChangesNoSquare) {
    CGameLine line("8/7k/8/8/8/8/P7/KR6", 5);
    line.Play("a2a4");
    TChessboard& node = line.Node();
    node.m_blackInCheck = static_cast<i8>(SquareOf("h1"));
    line.Thread().levels[3].horizon = 5;
    TChessboard child = node;
    child.m_parent = &node;
    const u8 king = static_cast<u8>(SquareOf("h7"));
    ASSERT_EQ(MakeBlackMove(child, MakeMove(king, king), false), kMoveMade);
    EXPECT_TRUE(std::equal(child.m_board, child.m_board + 64, node.m_board));
    EXPECT_EQ(child.m_nMoves, node.m_nMoves - 1);
    EXPECT_EQ(child.m_blackInCheck, kNotInCheck);
    EXPECT_TRUE(child.m_lastMove.IsNull());
    EXPECT_EQ(child.m_lastMove.from, king);
    EXPECT_EQ(line.Thread().levels[3].horizon, 0);
    EXPECT_TRUE(std::equal(child.m_counts, child.m_counts + kCountFields, node.m_counts));
    EXPECT_EQ(child.m_searchFlags, node.m_searchFlags);
    EXPECT_EQ(child.m_captureState, node.m_captureState);
}

TEST(MakeNullMove, EnPassantIsOffAndTheSideChanges) {
    CGameLine line("4k3/8/8/8/3p4/8/4P3/4K3", 5);
    line.Play("e2e4");
    TChessboard child = line.Node();
    child.m_parent = &line.Node();
    MakeNullMove(child);
    EXPECT_TRUE(child.IsWhiteToMove());
    EXPECT_TRUE(child.m_lastMove.IsNull());
    TChessboard back = child;
    back.m_parent = &child;
    MakeNullMove(back);
    EXPECT_FALSE(back.IsWhiteToMove());
    TMove list[kMoveListSize];
    const int count = GetBlackMoves(back, SquareOf("d4"), list);
    EXPECT_EQ(test::TextOfMoves(list, count), "d4d3");
}

// The check field of the side that passes is cleared, the other one stays.
TEST(MakeNullMove, CheckFieldOfTheSideToMove_IsCleared) {
    CGameLine white("7k/8/8/8/8/8/8/K6r", 5);
    ASSERT_EQ(white.Node().m_whiteInCheck, SquareOf("h1"));
    TChessboard child = white.Node();
    MakeNullMove(child);
    EXPECT_EQ(child.m_whiteInCheck, kNotInCheck);
    CGameLine black("7k/8/8/8/8/8/8/K6R", 4);
    ASSERT_EQ(black.Node().m_blackInCheck, SquareOf("h1"));
    child = black.Node();
    MakeNullMove(child);
    EXPECT_EQ(child.m_blackInCheck, kNotInCheck);
}

// Assumptions

TEST(MakeWhiteMove, OneColourPlay_LeavesOutTheWrongColour) {
    const struct {
        u8 mode;
        const char* move;
        int result;
    } rows[] = {
        // b1 is light (parity 1), a1 dark (parity 0)
        {kOneColourParity1, "c1b1", kMoveMade},
        {kOneColourParity1, "c1c2", kMoveMade},
        {kOneColourParity1, "c1a1", kMoveLeftOut},
        {kOneColourParity0, "c1a1", kMoveMade},
        {kOneColourParity0, "c1b1", kMoveLeftOut},
        // A double step meets both colours.
        {kOneColourParity1, "g2g4", kMoveLeftOut},
        {kOneColourParity0, "g2g4", kMoveLeftOut},
        {kOneColourParity0, "g2g3", kMoveMade},
        {kOneColourParity1, "g2g3", kMoveLeftOut},
        {kOneColourOff, "g2g4", kMoveMade},
        {kOneColourOff, "c1b1", kMoveMade},
    };
    for (const auto& row : rows) {
        CGameLine line("7k/p7/8/8/8/8/6P1/2R1K3", 5);
        line.Node().m_captureState |= row.mode;
        EXPECT_EQ(line.PlayInSearch(row.move), row.result) << int{row.mode} << " " << row.move;
        if (row.result == kMoveLeftOut) {
            EXPECT_NO_THROW(line.Play(row.move));  // people are free
        }
    }
}

// An illegal move is never called "left out": that would taint the node for nothing.
TEST(MakeWhiteMove, IllegalMoveOfTheWrongColour_StaysIllegal) {
    CGameLine line("4r2k/p7/8/8/8/8/4R1P1/4K3", 5);
    line.Node().m_captureState |= kOneColourParity1;
    EXPECT_EQ(line.PlayInSearch("e2d2"), kMoveIllegal);
    EXPECT_EQ(line.PlayInSearch("e2c2"), kMoveIllegal);
    EXPECT_EQ(line.PlayInSearch("e2e3"), kMoveLeftOut);
    EXPECT_EQ(line.PlayInSearch("e2e4"), kMoveMade);
}

TEST(MakeWhiteMove, SeparatedBishop_KeepsWhiteOffItsSquares) {
    const auto bit = [](const char* square) { return u64{1} << SquareOf(square); };
    const struct {
        const char* name;
        const char* move;
        int result;
    } rows[] = {
        {"onto a square of the first list", "c1c4", kMoveLeftOut},
        {"over a square of the second list", "c1h1", kMoveLeftOut},
        {"before it", "c1f1", kMoveMade},
        {"onto it", "c1g1", kMoveMade},
        {"away", "c1c3", kMoveMade},
        {"over a square of the first list", "c1c6", kMoveMade},
    };
    for (const auto& row : rows) {
        CGameLine line("7k/p7/8/8/8/8/K7/2R5", 9);
        line.Node().m_captureState |= kOneColourSeparated;
        line.Thread().separatedSquares = bit("c4") | bit("c1");
        line.Thread().separatedPassSquares = bit("g1");
        EXPECT_EQ(line.PlayInSearch(row.move), row.result) << row.name;
    }
    // From a square of the first list: only after the second ply.
    CGameLine late("7k/p7/8/8/8/8/K7/2R5", 9);
    late.Node().m_captureState |= kOneColourSeparated;
    ASSERT_EQ(late.PlayInSearch("c1c4"), kMoveMade);
    ASSERT_EQ(late.PlayInSearch("h8g8"), kMoveMade);
    late.Thread().separatedSquares = bit("c4");
    EXPECT_EQ(late.Node().Ply(), 2);
    ASSERT_EQ(late.PlayInSearch("a2a3"), kMoveMade);
    ASSERT_EQ(late.PlayInSearch("g8h8"), kMoveMade);
    EXPECT_EQ(late.PlayInSearch("c4c5"), kMoveLeftOut);
    EXPECT_EQ(late.PlayInSearch("a3a4"), kMoveMade);
}

TEST(MakeWhiteMove, ForbiddenKingSquares_ActWithTheirHeuristic) {
    CGameLine line("7k/8/2r5/8/8/8/8/KQ6", 5);
    line.Thread().forbiddenKingSquares =
        u64{1} << SquareOf("a2") | u64{1} << SquareOf("b3") | u64{1} << SquareOf("c2");
    EXPECT_EQ(line.PlayInSearch("b1b3"), kMoveMade);
    CGameLine free("7k/8/2r5/8/8/8/8/KQ6", 5);
    free.Thread().forbiddenKingSquares = u64{1} << SquareOf("a2");
    EXPECT_EQ(free.PlayInSearch("a1a2"), kMoveMade);
    CGameLine bound("7k/8/1r6/8/8/8/8/K1Q5", 5);
    bound.Node().Heur = SH_SINGLEQUEENMATE;
    bound.Thread().forbiddenKingSquares = u64{1} << SquareOf("a2") | u64{1} << SquareOf("b2");
    EXPECT_EQ(bound.PlayInSearch("a1a2"), kMoveLeftOut);
    EXPECT_EQ(bound.PlayInSearch("a1b2"), kMoveIllegal);  // attacked besides
    EXPECT_EQ(bound.PlayInSearch("c1c2"), kMoveMade);     // not the king
    CGameLine people("7k/8/1r6/8/8/8/8/K1Q5", 5);
    people.Node().Heur = SH_SINGLEQUEENMATE;
    people.Thread().forbiddenKingSquares = u64{1} << SquareOf("a2");
    EXPECT_NO_THROW(people.Play("a1a2"));
}

TEST(MakeBlackMove, BlockLevel_LeavesOutPawnMoves) {
    const auto prepare = [](CGameLine& line, u32 heur, u16 level) {
        line.Node().Heur = heur;
        line.Thread().blockLevel = level;
    };
    CGameLine line("r6k/p6p/8/8/8/8/8/K3R2R", 6);
    prepare(line, SH_USEBLOCKBLACKPAWNSLEVEL, 6);
    EXPECT_EQ(line.PlayInSearch("a7a6"), kMoveLeftOut);
    EXPECT_EQ(line.PlayInSearch("h7h6"), kMoveLeftOut);
    EXPECT_EQ(line.PlayInSearch("a8b8"), kMoveMade);
    CGameLine otherLevel("r6k/p6p/8/8/8/8/8/K3R2R", 6);
    prepare(otherLevel, SH_USEBLOCKBLACKPAWNSLEVEL, 4);
    EXPECT_EQ(otherLevel.PlayInSearch("a7a6"), kMoveMade);
    CGameLine otherHeur("r6k/p6p/8/8/8/8/8/K3R2R", 6);
    prepare(otherHeur, 0x10000, 6);
    EXPECT_EQ(otherHeur.PlayInSearch("a7a6"), kMoveMade);
    // A pinned pawn's move is illegal, not left out.
    CGameLine pinned("7k/6p1/8/8/8/8/1B6/K7", 6);
    prepare(pinned, SH_USEBLOCKBLACKPAWNSLEVEL, 6);
    EXPECT_EQ(pinned.PlayInSearch("g7g6"), kMoveIllegal);
    CGameLine people("r6k/p6p/8/8/8/8/8/K3R2R", 6);
    prepare(people, SH_USEBLOCKBLACKPAWNSLEVEL, 6);
    EXPECT_NO_THROW(people.Play("a7a6"));
}

int g_paramsComputed = 0;

TEST(MakeBlackMove, EventMark_SetsTheBitOfTheThread) {
    const struct {
        bool isMarked;
        u32 heur;
        bool isSecond;
        u16 flags;
    } rows[] = {
        {true, SH_SAVEQUEENROOK, false, kSearchSaveEvent},
        {true, SH_SAVEQUEENROOK, true, kSearchSaveEventSecond},
        {false, SH_SAVEQUEENROOK, false, 0},
        {true, 0, false, 0},
        {true, 0x2000, true, 0},
    };
    for (const auto& row : rows) {
        CGameLine line("7k/8/8/8/8/8/8/KQ6", 6);
        line.Node().Heur = row.heur;
        line.Thread().isSaveEventSecond = row.isSecond;
        line.Thread().computeHeurParams = [](TChessboard& node) {
            ++g_paramsComputed;
            // The digest is made of what the node shows after the mark.
            node.HeurParams = node.m_searchFlags;
        };
        g_paramsComputed = 0;
        TMove move = MoveOf("h8g8");
        if (row.isMarked)
            move.flags |= kMoveMarkEvent;
        ASSERT_EQ(line.PlayInSearch(move), kMoveMade);
        EXPECT_EQ(line.Node().m_searchFlags & (kSearchSaveEvent | kSearchSaveEventSecond),
                  row.flags);
        EXPECT_EQ(g_paramsComputed, row.flags != 0 ? 1 : 0);
        if (row.flags != 0) {
            EXPECT_NE(line.Node().HeurParams & row.flags, 0u);
        }
    }
    // Without a catalogue there is nobody to compute.
    CGameLine line("7k/8/8/8/8/8/8/KQ6", 6);
    line.Node().Heur = SH_SAVEQUEENROOK;
    TMove move = MoveOf("h8g8");
    move.flags |= kMoveMarkEvent;
    EXPECT_EQ(line.PlayInSearch(move), kMoveMade);
    EXPECT_NE(line.Node().m_searchFlags & kSearchSaveEvent, 0);
}

// Legality inside the make-move

TEST(MakeBlackMove, SkipKingTest_TrustsTheList) {
    CGameLine line("7k/8/8/8/8/8/8/K5R1", 4);
    EXPECT_EQ(line.PlayInSearch(MoveOf("h8g8"), false), kMoveIllegal);
    EXPECT_EQ(line.PlayInSearch(MoveOf("h8g8"), true), kMoveMade);
}

TEST(MakeMove, IllegalMoves_AreRefusedByEveryForm) {
    const struct {
        const char* name;
        const char* fen;
        const char* move;
    } rows[] = {
        {"king into a line", "7k/8/8/8/8/8/1r6/K7", "a1b1"},
        {"king beside the king", "8/8/8/8/8/k1K5/8/8", "c3b3"},
        {"king away along the line", "7k/8/8/8/r2K4/8/8/8", "d4e4"},
        {"king takes a guarded man", "7k/8/8/8/8/2n5/1p6/K7", "a1b1"},
        {"pinned rook", "4r2k/8/8/8/4R3/8/8/4K3", "e4d4"},
        {"pinned knight", "7k/6b1/8/8/3N4/8/1K6/8", "d4e6"},
        {"pinned pawn", "7k/8/8/8/K2P3r/8/8/8", "d4d5"},
        {"check not answered", "4r2k/8/8/8/8/8/P7/4K3", "a2a3"},
    };
    for (const auto& row : rows) {
        CGameLine line(row.fen, 5);
        TChessboard child = line.Node();
        child.m_parent = &line.Node();
        TChessboard legal = child;
        TChessboard fast = child;
        EXPECT_EQ(MakeWhiteMove(child, MoveOf(row.move)), kMoveIllegal) << row.name;
        EXPECT_EQ(MakeWhiteMoveLegal(legal, MoveOf(row.move)), kMoveIllegal) << row.name;
        EXPECT_EQ(MakeWhiteMoveFast(fast, MoveOf(row.move)), kMoveIllegal) << row.name;
    }
}

TEST(MakeMove, HorizonOfTheLevel_IsClearedAndMovesAreCounted) {
    CGameLine line("7k/8/8/8/8/8/8/KQ6", 5);
    for (TLevelState& level : line.Thread().levels) {
        level.horizon = 9;
        level.isHorizonDoubtful = true;
    }
    ASSERT_EQ(line.PlayInSearch("b1b3"), kMoveMade);
    EXPECT_EQ(line.Thread().levels[4].horizon, 0);
    EXPECT_FALSE(line.Thread().levels[4].isHorizonDoubtful);
    EXPECT_EQ(line.Thread().levels[5].horizon, 9);
    EXPECT_EQ(line.Thread().levels[3].horizon, 9);
    ASSERT_EQ(line.PlayInSearch("h8g7"), kMoveMade);
    EXPECT_EQ(line.Thread().levels[3].horizon, 0);
    EXPECT_EQ(line.Thread().levels[2].horizon, 9);
    EXPECT_EQ(line.Thread().madeMoves, 2u);
}

// The lean move

TEST(MakeWhiteMoveFast, BoardCountsAndCheck_AreRight) {
    CGameLine line("3nk2r/2P5/8/8/8/8/8/R3K2R", 3);
    TChessboard child = line.Node();
    child.m_parent = &line.Node();
    ASSERT_EQ(MakeWhiteMoveFast(child, MoveOf("c7d8q")), kMoveMade);
    EXPECT_EQ(child.m_blackInCheck, SquareOf("d8"));
    EXPECT_EQ(child.m_counts[kBlackKnights], 0);
    EXPECT_EQ(child.m_counts[kWhiteQueens], 1);
    EXPECT_EQ(child.m_nMoves, 2);
    EXPECT_EQ(child.m_whiteQueen, SquareOf("d8"));
    EXPECT_EQ(BlackCaptured(child), 0);
    child = line.Node();
    child.m_parent = &line.Node();
    ASSERT_EQ(MakeWhiteMoveFast(child, MoveOf("e1c1")), kMoveMade);
    EXPECT_EQ(child.m_board[SquareOf("d1")], kWhiteRook);
    EXPECT_EQ(child.m_blackInCheck, kNotInCheck);
    // Too little material is no matter of the last ply.
    CGameLine bare("7k/8/8/8/8/8/1n6/K1B5", 3);
    child = bare.Node();
    child.m_parent = &bare.Node();
    EXPECT_EQ(MakeWhiteMoveFast(child, MoveOf("c1b2")), kMoveMade);
}

TEST(MakeWhiteMoveFast, Assumptions_AreNotAsked) {
    CGameLine line("7k/p7/8/8/8/8/6P1/2R1K3", 3);
    line.Node().m_captureState |= kOneColourParity1;
    TChessboard child = line.Node();
    child.m_parent = &line.Node();
    EXPECT_EQ(MakeWhiteMoveFast(child, MoveOf("g2g4")), kMoveMade);
}

}  // namespace
}  // namespace quillmere
