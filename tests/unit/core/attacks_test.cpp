#include "core/attacks.h"
#include "tests/support/boards.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace quillmere {
namespace {

using test::FilledBoard;
using test::SquareOf;
using test::TextOfSquare;
using test::ValidBoard;

// A board with its lists as they are, and one whose lists are switched off: the attack tests take
// another way then.
TChessboard WithoutLists(TChessboard board) {
    board.m_figureListValid = 0;
    return board;
}

std::string SquaresAttackedByWhite(const TChessboard& board) {
    std::string squares;
    for (int square = 0; square < kSquareCount; ++square) {
        if (IsAttackedByWhite(board, square))
            squares += TextOfSquare(square) + " ";
    }
    return squares;
}

std::string SquaresAttackedByBlack(const TChessboard& board) {
    std::string squares;
    for (int square = 0; square < kSquareCount; ++square) {
        if (IsAttackedByBlack(board, square))
            squares += TextOfSquare(square) + " ";
    }
    return squares;
}

// "e4+ d2" with a plus behind pinned ones, in order of squares.
std::string TextOfCapturers(const u8* list, int count) {
    std::string text;
    std::set<int> entries(list, list + count);
    for (int square = 0; square < kSquareCount; ++square) {
        if (entries.count(square) != 0)
            text += TextOfSquare(square) + " ";
        if (entries.count(square + kPinnedMark) != 0)
            text += TextOfSquare(square) + "+ ";
    }
    return text;
}

std::string WhiteCapturers(const TChessboard& board, const char* square) {
    u8 list[16];
    const int count =
        GetWhiteCapturers(board, FileOf(SquareOf(square)), RankOf(SquareOf(square)), list);
    return TextOfCapturers(list, count);
}

std::string BlackCapturers(const TChessboard& board, const char* square) {
    u8 list[16];
    const int count =
        GetBlackCapturers(board, FileOf(SquareOf(square)), RankOf(SquareOf(square)), list);
    return TextOfCapturers(list, count);
}

// Attack tests

TEST(IsAttacked, EachFigure_AttacksItsSquares) {
    const struct {
        const char* fen;
        const char* attacked;
    } rows[] = {
        // The king alone; its own square counts as attacked, it can never be entered.
        {"8/8/8/8/8/8/7k/K7", "a1 b1 a2 b2 "},
        {"7k/8/8/8/3P4/8/8/K7", "a1 b1 a2 b2 c5 e5 "},
        {"7k/8/8/8/P7/8/8/K7", "a1 b1 a2 b2 b5 "},
        {"7k/8/8/8/7P/8/8/K7", "a1 b1 a2 b2 g5 "},
        {"7k/7P/8/8/8/8/8/K7", "a1 b1 a2 b2 g8 "},
        {"7k/8/8/7N/8/8/8/K7", "a1 b1 a2 b2 g3 f4 f6 g7 "},
        // A rook up to the first man, that man's square with it
        {"7k/8/8/8/2pR1P2/8/3p4/K7", "a1 b1 a2 b2 d2 d3 c4 e4 f4 d5 e5 g5 d6 d7 d8 "},
        {"7k/8/8/8/2B5/1p6/8/K7", "a1 f1 b1 a2 b2 e2 b3 d3 b5 d5 a6 e6 f7 g8 "},
    };
    for (const auto& row : rows) {
        const TChessboard board = ValidBoard(row.fen);
        std::set<std::string> expected;
        std::string text = row.attacked;
        for (std::size_t at = 0; at < text.size(); at += 3)
            expected.insert(text.substr(at, 2));
        for (const TChessboard& each : {board, WithoutLists(board)}) {
            for (int square = 0; square < kSquareCount; ++square)
                EXPECT_EQ(IsAttackedByWhite(each, square),
                          expected.count(TextOfSquare(square)) != 0)
                    << row.fen << " " << TextOfSquare(square);
        }
    }
}

TEST(IsAttacked, ColoursSwapped_AttackTheMirroredSquares) {
    for (const char* fen : {"8/8/8/8/8/8/7k/K7",
                            "7k/8/8/8/3P4/8/8/K7",
                            "7k/P6P/8/8/8/8/8/K7",
                            "7k/8/8/7N/8/8/8/K7",
                            "7k/8/8/8/2pR1P2/8/3p4/K7",
                            "7k/8/8/8/2B5/1p6/8/K7",
                            "4k3/8/2n5/1Q6/2pB4/8/3p4/K7"}) {
        const TChessboard board = ValidBoard(fen);
        TChessboard swapped;
        InitBoard(swapped);
        for (int square = 0; square < kSquareCount; ++square) {
            if (board.m_board[square] != 0)
                swapped.m_board[square ^ 56] = board.m_board[square] ^ (kWhite | kBlack);
        }
        ValidateBoard(swapped, true);
        for (int square = 0; square < kSquareCount; ++square) {
            EXPECT_EQ(IsAttackedByWhite(board, square), IsAttackedByBlack(swapped, square ^ 56));
            EXPECT_EQ(IsAttackedByBlack(board, square), IsAttackedByWhite(swapped, square ^ 56));
        }
    }
}

// The tests see the board as it stands: a square behind the king is shaded by it.
TEST(IsAttacked, SquareBehindTheKing_IsSeenOnlyWithTheKingLifted) {
    TChessboard board = ValidBoard("8/8/8/R2k4/8/8/8/K7");
    EXPECT_FALSE(IsAttackedByWhite(board, SquareOf("e5")));
    EXPECT_FALSE(IsAttackedByWhite(WithoutLists(board), SquareOf("e5")));
    board.m_board[SquareOf("d5")] = 0;
    EXPECT_TRUE(IsAttackedByWhite(board, SquareOf("e5")));
    EXPECT_TRUE(IsAttackedByWhite(WithoutLists(board), SquareOf("e5")));
    TChessboard white = ValidBoard("8/8/8/r2K4/8/8/8/k7");
    EXPECT_FALSE(IsAttackedByBlack(white, SquareOf("e5")));
    white.m_board[SquareOf("d5")] = 0;
    EXPECT_TRUE(IsAttackedByBlack(white, SquareOf("e5")));
}

// With the counters at 0 no figure of the kind is looked for.
TEST(IsAttacked, Counters_AreAskedFirst) {
    TChessboard board = WithoutLists(ValidBoard("8/8/8/R6k/8/2N5/8/K7"));
    board.m_counts[kWhiteRooks] = 0;
    board.m_counts[kWhiteKnights] = 0;
    EXPECT_EQ(SquaresAttackedByWhite(board), "a1 b1 a2 b2 ");
    TChessboard black = ValidBoard("k7/8/2n5/r6K/8/8/8/8");
    black.m_counts[kBlackRooks] = 0;
    black.m_counts[kBlackKnights] = 0;
    EXPECT_EQ(SquaresAttackedByBlack(black), "a7 b7 a8 b8 ");
}

TEST(IsAttacked, FileAndRankForm_AsksTheSame) {
    const TChessboard board = ValidBoard("8/8/8/R6k/8/2n5/8/K7");
    for (int square = 0; square < kSquareCount; ++square) {
        EXPECT_EQ(IsAttackedByWhite(board, FileOf(square), RankOf(square)),
                  IsAttackedByWhite(board, square));
        EXPECT_EQ(IsAttackedByBlack(board, FileOf(square), RankOf(square)),
                  IsAttackedByBlack(board, square));
    }
}

// Checks

TEST(GetChecks, EachAttacker_IsListed) {
    // Knight, pawn, rook and queen; the bishop is shut out by its pawn.
    const TChessboard board = ValidBoard("3rr3/8/2P5/3k3R/4P3/2N5/8/K2Q3B");
    TAttacker attackers[16];
    int count = 0;
    const int king = SquareOf("d5");
    EXPECT_EQ(GetChecksOnBlackKing(board, FileOf(king), RankOf(king), attackers, &count),
              kDoubleCheck);
    std::set<std::string> squares;
    for (int i = 0; i < count; ++i)
        squares.insert(TextOfSquare(SquareAt(attackers[i].file, attackers[i].rank)));
    EXPECT_EQ(squares, (std::set<std::string>{"c3", "d1", "e4", "h5"}));
    EXPECT_EQ(count, 4);
}

TEST(GetChecks, WithoutAList_OnlyTheFieldIsGiven) {
    const TChessboard board = ValidBoard("8/8/8/R2k4/8/8/8/K7");
    EXPECT_EQ(GetChecksOnBlackKing(board, 3, 4, nullptr, nullptr), SquareOf("a5"));
    EXPECT_EQ(GetChecksOnBlackKing(board, 4, 3, nullptr, nullptr), kNotInCheck);
    EXPECT_EQ(GetChecksOnWhiteKing(board, 0, 0, nullptr, nullptr), kNotInCheck);
}

TEST(GetChecks, AdjacentEnemyKing_Counts) {
    const TChessboard board = ValidBoard("8/8/8/3k4/8/8/8/K7");
    TAttacker attackers[16];
    int count = 0;
    EXPECT_EQ(GetChecksOnWhiteKing(board, 4, 3, attackers, &count), SquareOf("d5"));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(GetChecksOnBlackKing(board, 1, 1, attackers, &count), SquareOf("a1"));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(GetChecksOnBlackKing(board, 3, 4, attackers, &count), kNotInCheck);
    EXPECT_EQ(count, 0);
}

TEST(GetChecks, OnTheWhiteKing_ArePawnsFromAboveAndTheFiguresOfBlack) {
    const struct {
        const char* fen;
        int field;
    } rows[] = {
        {"7k/8/8/3p4/4K3/8/8/8", SquareOf("d5")},
        {"7k/8/8/5p2/4K3/8/8/8", SquareOf("f5")},
        {"7k/8/8/4p3/4K3/8/8/8", kNotInCheck},
        {"7k/8/8/8/4K3/3p4/8/8", kNotInCheck},
        {"7k/8/8/8/K7/7p/8/8", kNotInCheck},
        {"7k/8/5n2/8/4K3/8/8/8", SquareOf("f6")},
        {"7k/1b6/8/8/4K3/8/8/8", SquareOf("b7")},
        {"7k/1r6/8/8/4K3/8/8/8", kNotInCheck},
        {"4r2k/8/8/4p3/4K3/8/8/8", kNotInCheck},
        {"4q2k/8/8/8/4K3/8/8/7q", kDoubleCheck},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ValidBoard(row.fen).m_whiteInCheck, row.field) << row.fen;
}

// More attackers than a game can bring about: eight knights and eight queens fit the list.
TEST(GetChecks, SixteenAttackers_FitTheList) {
    TChessboard board = FilledBoard("8/8/8/8/3k4/8/8/8");
    for (const char* square : {"b3", "b5", "c2", "c6", "e2", "e6", "f3", "f5"})
        board.m_board[SquareOf(square)] = kWhiteKnight;
    for (const char* square : {"a1", "d1", "g1", "a4", "h4", "a7", "d8", "h8"})
        board.m_board[SquareOf(square)] = kWhiteQueen;
    board.m_board[SquareOf("h1")] = kWhiteKing;
    ValidateBoard(board, true);
    TAttacker attackers[16];
    int count = 0;
    EXPECT_EQ(GetChecksOnBlackKing(board, 3, 3, attackers, &count), kDoubleCheck);
    EXPECT_EQ(count, 16);
    u8 list[16];
    EXPECT_EQ(GetWhiteCapturers(board, 3, 3, list), 16);
}

// Pins

TEST(IsPinned, FigureBetweenItsKingAndAMatchingSlider_IsPinned) {
    const struct {
        const char* fen;  // the figure asked about stands on d4
        bool isPinned;
    } rows[] = {
        {"3r3k/8/8/8/3N4/8/8/3K4", true},
        {"3q3k/8/8/8/3N4/8/8/3K4", true},
        {"3b3k/8/8/8/3N4/8/8/3K4", false},
        {"3r3k/8/8/3P4/3N4/8/8/3K4", false},  // another man behind
        {"3r3k/3p4/8/8/3N4/8/8/3K4", false},  // a black man behind
        {"3r3k/8/8/8/3N4/3P4/8/3K4", false},  // another man in front
        {"3R3k/8/8/8/3N4/8/8/3K4", false},    // an own slider
        {"7k/6b1/8/8/3N4/8/1K6/8", true},     // diagonals
        {"7k/6r1/8/8/3N4/8/1K6/8", false},
        {"8/b6k/8/8/3N4/8/8/6K1", true},
        {"7k/8/8/8/r2N3K/8/8/8", true},  // along the rank
        {"7k/8/8/8/K2N3q/8/8/8", true},
        {"7k/8/8/8/3K4/8/8/3q4", false},    // the king itself
        {"3r3k/8/8/8/3N4/8/8/6K1", false},  // off the line
    };
    for (const auto& row : rows) {
        const TChessboard board = ValidBoard(row.fen);
        EXPECT_EQ(IsPinnedToWhiteKing(board, SquareOf("d4")), row.isPinned) << row.fen;
        EXPECT_EQ(IsPinnedToWhiteKing(board, 3, 3), row.isPinned) << row.fen;
        TChessboard swapped;
        InitBoard(swapped);
        for (int square = 0; square < kSquareCount; ++square) {
            if (board.m_board[square] != 0)
                swapped.m_board[square ^ 56] = board.m_board[square] ^ (kWhite | kBlack);
        }
        ValidateBoard(swapped, true);
        EXPECT_EQ(IsPinnedToBlackKing(swapped, SquareOf("d5")), row.isPinned) << row.fen;
    }
}

// The line stops at the edge of the board: h4 and a5 are neighbours in memory only.
TEST(IsPinned, LineDoesNotGoRoundTheEdge) {
    EXPECT_FALSE(IsPinnedToWhiteKing(ValidBoard("7k/8/8/r7/5K1N/8/8/8"), SquareOf("h4")));
    EXPECT_FALSE(IsPinnedToBlackKing(ValidBoard("7K/8/8/R7/5k1n/8/8/8"), SquareOf("h4")));
    EXPECT_FALSE(IsPinnedToWhiteKing(ValidBoard("k7/8/8/b7/7N/6K1/8/8"), SquareOf("h4")));
}

// Capturers

TEST(GetCapturers, AllKinds_AreFoundAndPinnedOnesMarked) {
    // d5 is attacked by pawn, knight, bishop, rook, queen and king; the knight is pinned.
    const TChessboard board = ValidBoard("b2r3k/8/4K3/3p4/2P4Q/2N5/8/1r1R3B");
    EXPECT_EQ(WhiteCapturers(board, "d5"), "d1 h1 c3 c4 e6 ");
    const TChessboard pinned = ValidBoard("3r3k/b7/8/3p4/2PN4/8/5K2/3R4");
    EXPECT_EQ(WhiteCapturers(pinned, "d5"), "c4 ");
    const TChessboard knight = ValidBoard("7k/8/8/2p5/q2N1K2/8/8/8");
    EXPECT_EQ(WhiteCapturers(knight, "e6"), "d4+ ");
    EXPECT_EQ(WhiteCapturers(knight, "f5"), "d4+ f4 ");
}

TEST(GetCapturers, OfBlack_AreMirrored) {
    const TChessboard board = ValidBoard("3r3b/2n5/2p5/3P4/4k3/8/8/K7");
    EXPECT_EQ(BlackCapturers(board, "d5"), "e4 c6 c7 d8 ");
    const TChessboard knight = ValidBoard("8/8/8/Q2n1k2/2P5/8/8/7K");
    EXPECT_EQ(BlackCapturers(knight, "f4"), "d5+ f5 ");
    EXPECT_EQ(BlackCapturers(knight, "e3"), "d5+ ");
}

// The adjacent king is entered whether its capture is legal or not.
TEST(GetCapturers, King_IsEnteredEvenWhereTheSquareIsGuarded) {
    EXPECT_EQ(WhiteCapturers(ValidBoard("3r3k/8/8/3p4/4K3/8/8/8"), "d5"), "e4 ");
    EXPECT_EQ(BlackCapturers(ValidBoard("8/8/8/3k4/4P3/8/8/4R2K"), "e4"), "d5 ");
}

TEST(GetCapturers, PawnsCapture_OnlyByTheirSteps) {
    const TChessboard board = ValidBoard("7k/8/8/1PPP4/8/8/8/7K");
    EXPECT_EQ(WhiteCapturers(board, "c6"), "b5 d5 ");
    EXPECT_EQ(WhiteCapturers(board, "a6"), "b5 ");
    EXPECT_EQ(WhiteCapturers(board, "h5"), "");
    const TChessboard edge = ValidBoard("7k/8/8/8/P6P/8/8/K7");
    EXPECT_EQ(WhiteCapturers(edge, "h5"), "");
    EXPECT_EQ(WhiteCapturers(edge, "g5"), "h4 ");
    const TChessboard black = ValidBoard("7k/8/8/8/P6p/8/8/K7");
    EXPECT_EQ(BlackCapturers(black, "g3"), "h4 ");
    EXPECT_EQ(BlackCapturers(black, "a2"), "");
}

TEST(PickLeastValuable, LowestValueThatIsNotPinned_IsTaken) {
    const TChessboard board = ValidBoard("7k/8/8/8/8/1P6/QRBN4/K7");
    const u8 queen = static_cast<u8>(SquareOf("a2"));
    const u8 rook = static_cast<u8>(SquareOf("b2"));
    const u8 bishop = static_cast<u8>(SquareOf("c2"));
    const u8 knight = static_cast<u8>(SquareOf("d2"));
    const u8 pawn = static_cast<u8>(SquareOf("b3"));
    const u8 king = static_cast<u8>(SquareOf("a1"));
    const u8 all[] = {king, queen, rook, bishop, knight, pawn};
    EXPECT_EQ(PickLeastValuable(board, 6, all), pawn);
    EXPECT_EQ(PickLeastValuable(board, 5, all), bishop);  // the first of two equals
    EXPECT_EQ(PickLeastValuable(board, 3, all), rook);
    EXPECT_EQ(PickLeastValuable(board, 2, all), queen);
    EXPECT_EQ(PickLeastValuable(board, 1, all), king);
    const u8 knightFirst[] = {knight, bishop};
    EXPECT_EQ(PickLeastValuable(board, 2, knightFirst), knight);
    const u8 pinned[] = {static_cast<u8>(pawn + kPinnedMark), queen};
    EXPECT_EQ(PickLeastValuable(board, 2, pinned), queen);
    EXPECT_EQ(PickLeastValuable(board, 1, pinned), kNoSquare);
    EXPECT_EQ(PickLeastValuable(board, 0, pinned), kNoSquare);
}

TEST(CanBlackCaptureSafely, EachKindOfCapturer_IsFound) {
    const struct {
        const char* fen;  // the square asked about is d4
        const char* capturer;
    } rows[] = {
        {"7k/8/8/8/3P4/8/8/K7", ""},
        {"7k/8/8/4p3/3P4/8/8/K7", "e5"},
        {"7k/8/8/3p4/3P4/8/8/K7", ""},
        {"7k/8/2n5/8/3P4/8/8/K7", "c6"},
        {"7k/6b1/8/8/3P4/8/8/K7", "g7"},
        {"3r3k/8/8/8/3P4/8/8/K7", "d8"},
        {"7k/8/8/8/q2P4/8/8/K7", "a4"},
        // The king where the square is not guarded
        {"8/8/8/2k5/3P4/8/8/K7", "c5"},
        {"8/8/8/2k5/3P4/8/8/K2R4", ""},
    };
    for (const auto& row : rows) {
        u8 capturer = kNoSquare;
        const bool can = CanBlackCaptureSafely(ValidBoard(row.fen), 3, 3, &capturer);
        EXPECT_EQ(can, *row.capturer != 0) << row.fen;
        EXPECT_EQ(can ? TextOfSquare(capturer) : "", row.capturer) << row.fen;
    }
}

TEST(CanBlackCaptureSafely, PinnedCapturer_IsPassedOver) {
    u8 capturer = kNoSquare;
    // The bishop is pinned along the rank, the rook is not.
    EXPECT_TRUE(CanBlackCaptureSafely(ValidBoard("3r4/8/8/k3b2R/3P4/8/8/7K"), 3, 3, &capturer));
    EXPECT_EQ(TextOfSquare(capturer), "d8");
    EXPECT_FALSE(CanBlackCaptureSafely(ValidBoard("8/8/8/k3b2R/3P4/8/8/7K"), 3, 3, &capturer));
}

// A slider that checks the king covers the square behind it as well.
TEST(CanBlackCaptureSafely, KingStaysOnTheLineOfTheChecker_IsNotSafe) {
    u8 capturer = kNoSquare;
    EXPECT_FALSE(CanBlackCaptureSafely(ValidBoard("7B/8/8/4k3/3P4/8/8/7K"), 3, 3, &capturer));
    EXPECT_TRUE(CanBlackCaptureSafely(ValidBoard("7N/8/8/4k3/3P4/8/8/7K"), 3, 3, &capturer));
    EXPECT_EQ(TextOfSquare(capturer), "e5");
}

TEST(CanBlackInterpose, EveryKindOfMove_IsSeen) {
    const struct {
        const char* fen;
        const char* square;
        bool can;
    } rows[] = {
        {"7k/3p4/8/8/8/8/8/K7", "d6", true},
        {"7k/3p4/8/8/8/8/8/K7", "d5", true},
        {"7k/3p4/3P4/8/8/8/8/K7", "d5", false},  // the double step is blocked
        {"7k/8/3p4/8/8/8/8/K7", "d4", false},    // no double step from there
        {"7k/3p4/8/8/8/8/8/K7", "e6", false},    // a pawn does not go there
        {"7k/8/8/8/8/8/3p4/K7", "d1", true},     // a promotion
        {"7k/8/4n3/8/8/8/8/K7", "d4", true},
        {"7k/8/4b3/8/8/8/8/K7", "a2", true},
        {"7k/8/4r3/8/8/8/8/K7", "a6", true},
        {"7k/8/4q3/8/8/8/8/K7", "e1", true},
        {"7k/8/4q3/4P3/8/8/8/K7", "e1", false},
        {"7k/8/8/8/8/8/8/K7", "g8", false},      // not by the king
        {"7k/6n1/8/4B3/8/8/8/K7", "f5", false},  // pinned
        {"R3n2k/8/8/8/8/8/8/K7", "d6", false},   // pinned
        {"7k/6p1/8/4B3/8/8/8/K7", "g6", false},  // a pinned pawn
        {"7k/6p1/8/4B3/8/8/8/K7", "g5", false},
        {"7k/6b1/8/4B3/8/8/8/K7", "f6", false},  // along its line it could; the rule leaves it out
    };
    for (const auto& row : rows)
        EXPECT_EQ(CanBlackInterpose(ValidBoard(row.fen), SquareOf(row.square)), row.can)
            << row.fen << " " << row.square;
}

}  // namespace
}  // namespace quillmere
