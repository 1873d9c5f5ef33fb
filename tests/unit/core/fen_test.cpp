#include "core/chess_exception.h"
#include "core/fen.h"
#include "tests/support/game_line.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CGameLine;
using test::kStartPosition;

// Every byte of the board, so that "unchanged" means each of them.
std::string BytesOf(const TChessboard& board) {
    std::string bytes(sizeof(board), '\0');
    std::memcpy(bytes.data(), static_cast<const void*>(&board), sizeof(board));
    return bytes;
}

TChessboard FreshBoard() {
    TChessboard board;
    InitBoard(board);
    return board;
}

bool Reads(const std::string& text) {
    TChessboard board = FreshBoard();
    return SetFromFENCode(board, text.c_str(), nullptr, nullptr);
}

TChessboard BoardOf(const std::string& text) {
    TChessboard board = FreshBoard();
    EXPECT_TRUE(SetFromFENCode(board, text.c_str(), nullptr, nullptr)) << text;
    return board;
}

std::string MessageOf(const std::string& text) {
    TChessboard board = FreshBoard();
    try {
        SetFromFENCode(board, text.c_str(), nullptr, nullptr);
    } catch (const ChessException& e) {
        return e.what();
    }
    return "nothing thrown";
}

struct TFlags {
    bool castlingDenied = false;
    bool enPassantGiven = false;
};

TFlags FlagsOf(const std::string& text) {
    TFlags flags;
    TChessboard board = FreshBoard();
    EXPECT_TRUE(SetFromFENCode(board, text.c_str(), &flags.castlingDenied, &flags.enPassantGiven))
        << text;
    return flags;
}

// Figure letters

TEST(FigureFromLetter, EveryLetterOfBothAlphabets_GivesItsKindInEitherCase) {
    const struct {
        char letter;
        u8 kind;
    } rows[] = {{'K', kKing},
                {'P', kPawn},
                {'Q', kQueen},
                {'H', kQueen},
                {'R', kRook},
                {'W', kRook},
                {'B', kBishop},
                {'G', kBishop},
                {'N', kKnight},
                {'S', kKnight}};
    for (const auto& row : rows) {
        EXPECT_EQ(FigureFromLetter(row.letter), row.kind) << row.letter;
        EXPECT_EQ(FigureFromLetter(static_cast<char>(row.letter + 32)), row.kind) << row.letter;
    }
}

TEST(FigureFromLetter, AnyOtherByte_Throws) {
    const std::string known = "KPQHRWBGNSkpqhrwbgns";
    for (int byte = 0; byte < 256; ++byte) {
        const char letter = static_cast<char>(byte);
        if (known.find(letter) != std::string::npos)
            continue;
        EXPECT_THROW(FigureFromLetter(letter), ChessException) << byte;
    }
}

TEST(FigureFromLetter, UnknownLetter_IsNamedInTheMessage) {
    const struct {
        char letter;
        const char* message;
    } rows[] = {{'x', "Unknown figure letter: x"},
                {'Z', "Unknown figure letter: Z"},
                {'?', "Unknown figure letter: ?"},
                {'\xc5', "Unknown figure letter: \\xc5"},
                {'\n', "Unknown figure letter: \\x0a"}};
    for (const auto& row : rows) {
        try {
            FigureFromLetter(row.letter);
            FAIL() << row.message;
        } catch (const ChessException& e) {
            EXPECT_STREQ(e.what(), row.message);
            EXPECT_EQ(e.Id(), EMessage::kUnknownFigureLetter);
        }
    }
}

TEST(LetterFromFigure, EveryKind_GivesItsLetterForBothColours) {
    const struct {
        u8 kind;
        char letter;
    } rows[] = {{kKing, 'K'},
                {kPawn, 'P'},
                {kQueen, 'Q'},
                {kRook, 'R'},
                {kBishop, 'B'},
                {kKnight, 'N'},
                {0, 'E'},
                {3, 'E'},
                {31, 'E'}};
    for (const auto& row : rows) {
        EXPECT_EQ(LetterFromFigure(row.kind), row.letter);
        EXPECT_EQ(LetterFromFigure(kWhite | row.kind), row.letter);
        EXPECT_EQ(LetterFromFigure(kBlack | row.kind), row.letter);
    }
}

// Reading

TEST(SetFromFENCode, StartPosition_PutsEveryFigureOnItsSquare) {
    const TChessboard board = BoardOf(kStartPosition);
    const u8 kinds[8] = {kRook, kKnight, kBishop, kQueen, kKing, kBishop, kKnight, kRook};
    for (int file = 0; file < 8; ++file) {
        EXPECT_EQ(board.m_board[SquareAt(file, 0)], kWhite | kinds[file]);
        EXPECT_EQ(board.m_board[SquareAt(file, 1)], kWhitePawn);
        for (int rank = 2; rank < 6; ++rank)
            EXPECT_EQ(board.m_board[SquareAt(file, rank)], 0);
        EXPECT_EQ(board.m_board[SquareAt(file, 6)], kBlackPawn);
        EXPECT_EQ(board.m_board[SquareAt(file, 7)], kBlack | kinds[file]);
    }
}

TEST(SetFromFENCode, GoodText_DerivesTheBookkeeping) {
    const TChessboard board = BoardOf("4k3/8/8/8/8/8/3PR3/3QK3");
    EXPECT_EQ(board.WhiteKingSquare(), 4);
    EXPECT_EQ(board.BlackKingSquare(), 60);
    EXPECT_EQ(board.m_counts[kWhiteQueens], 1);
    EXPECT_EQ(board.m_counts[kWhiteRooks], 1);
    EXPECT_EQ(board.m_counts[kWhitePawns], 1);
    EXPECT_EQ(board.m_blackInCheck, 12);
    EXPECT_EQ(board.m_whiteInCheck, kNotInCheck);
    EXPECT_EQ(board.m_whiteQueen, 3);
}

TEST(SetFromFENCode, PolishLetters_ReadAsQueenRookBishopKnight) {
    const TChessboard board = BoardOf("hwgsk3/8/8/8/8/8/8/HWGSK3");
    const u8 kinds[4] = {kQueen, kRook, kBishop, kKnight};
    for (int file = 0; file < 4; ++file) {
        EXPECT_EQ(board.m_board[SquareAt(file, 0)], kWhite | kinds[file]);
        EXPECT_EQ(board.m_board[SquareAt(file, 7)], kBlack | kinds[file]);
    }
}

TEST(SetFromFENCode, RankOfH7_HasAWhiteQueenInTheCorner) {
    EXPECT_EQ(BoardOf("8/8/5k2/8/8/4K3/8/H7").m_board[0], kWhiteQueen);
}

TEST(SetFromFENCode, CallersNodeFields_StayAsTheyWere) {
    TThreadContext thread(9);
    TChessboard parent = FreshBoard();
    TChessboard board = FreshBoard();
    board.m_parent = &parent;
    board.m_threadContext = &thread;
    board.m_nMoves = 7;
    board.m_nRootMoves = 9;
    board.m_pass = kPassComplete;
    board.m_trackedFigures[3] = 17;
    board.m_lastMove = MakeMove(1, 18);
    board.m_captureState = 0xc0;
    ASSERT_TRUE(SetFromFENCode(board, "4k3/8/8/8/8/8/8/4K3", nullptr, nullptr));
    EXPECT_EQ(board.m_parent, &parent);
    EXPECT_EQ(board.m_threadContext, &thread);
    EXPECT_EQ(board.m_nMoves, 7);
    EXPECT_EQ(board.m_nRootMoves, 9);
    EXPECT_EQ(board.m_pass, kPassComplete);
    EXPECT_EQ(board.m_trackedFigures[3], 17);
    EXPECT_TRUE(MovesEqual(board.m_lastMove, MakeMove(1, 18)));
    EXPECT_EQ(board.m_captureState, 0xc0);
}

TEST(SetFromFENCode, GoodText_ClearsTheSearchState) {
    TChessboard board = FreshBoard();
    board.Heur = 0x40;
    board.m_positionFlags = kPositionBareKing;
    ASSERT_TRUE(SetFromFENCode(board, "4k3/8/8/8/8/8/8/4K3", nullptr, nullptr));
    EXPECT_EQ(board.Heur, 0u);
    EXPECT_EQ(board.m_positionFlags, 0);
}

TEST(SetFromFENCode, BlanksAtTheEnds_AreStripped) {
    EXPECT_TRUE(Reads("   4k3/8/8/8/8/8/8/4K3   "));
    EXPECT_TRUE(Reads("\t4k3/8/8/8/8/8/8/4K3\r\n"));
    EXPECT_TRUE(Reads("  4k3/8/8/8/8/8/8/4K3   w   -   -   0   1  "));
}

TEST(SetFromFENCode, TabBetweenFields_SeparatesThem) {
    const TFlags flags = FlagsOf("r3k2r/8/8/8/8/8/8/R3K2R\tw\tKQkq\te3");
    EXPECT_FALSE(flags.castlingDenied);
    EXPECT_TRUE(flags.enPassantGiven);
}

TEST(SetFromFENCode, SideField_IsNotRead) {
    for (const char* side : {"w", "b", "-", "nonsense"})
        EXPECT_TRUE(Reads(std::string("4k3/8/8/8/8/8/8/4K3 ") + side + " - - 0 1")) << side;
}

TEST(SetFromFENCode, TextThatIsNoBoard_IsRefused) {
    const char* const texts[] = {
        "",
        " ",
        "     \t  ",
        "/",
        "////////",
        "4k3",
        "hello",
        "4k3 8/8/8/8/8/8/8/4K3",
        // A brace marks a whole problem
        "{4k3/8/8/8/8/8/8/4K3",
        "4k3/8/8/8/8/8/8/4K3{",
        // Too few or too many ranks
        "4k3/8/8/8/8/8/4K3",
        "4k3/8/8/8/8/8/8/8/4K3",
        "4k3/8/8/8/8/8/8/4K3/",
        "4k3/8/8/8/8/8/8/4K3/8",
        "/4k3/8/8/8/8/8/8/4K3",
        // Ranks of another length
        "4k3/7/8/8/8/8/8/4K3",
        "4k3/71/8/8/8/8/8/4K2",
        "4k3/81/8/8/8/8/8/4K3",
        "4k3/8p/8/8/8/8/8/4K3",
        "4k3/ppppppppp/8/8/8/8/8/4K3",
        "4k3/44p/8/8/8/8/8/4K3",
        "4k3/54/8/8/8/8/8/4K3",
        "4k3//8/8/8/8/8/4K3",
        // Digits that are no run
        "4k3/9/8/8/8/8/8/4K3",
        "4k3/0/8/8/8/8/8/4K3",
        "4k3/08/8/8/8/8/8/4K3",
        // Other characters
        "4k3/8/8/8/+7/8/8/4K3",
        "4k3/8/8/8/-/8/8/4K3",
        "4k3/8/8/8/\xc5\x82/8/8/4K3",
        "\xff\xfe/8/8/8/8/8/8/8",
        "4k3/8/8/8/8/8/8/4K3?",
        // A blank inside the board cuts it
        "4k3/8/8/8/8/8/8 /4K3",
        "4k3/8/8/8/8\t/8/8/4K3",
    };
    for (const char* text : texts) {
        EXPECT_FALSE(Reads(text)) << '"' << text << '"';
        EXPECT_FALSE(IsValidFENCode(text)) << '"' << text << '"';
    }
}

TEST(SetFromFENCode, IllegalPosition_IsRefused) {
    const char* const texts[] = {
        "8/8/8/8/8/8/8/8",          // no kings
        "8/8/8/8/8/8/8/4K3",        // no black king
        "4k3/8/8/8/8/8/8/8",        // no white king
        "4k3/8/8/8/8/8/8/3KK3",     // two white kings
        "4k3/8/8/8/8/8/8/P3K3",     // pawn on the first rank
        "4k2p/8/8/8/8/8/8/4K3",     // pawn on the last rank
        "8/8/8/8/8/8/8/P2KK3",      // both faults
        "8/8/8/3kK3/8/8/8/8",       // adjacent kings
        "4k3/4R3/8/8/8/8/4r3/4K3",  // both in check
        "kkkkkkkk/8/8/8/8/8/8/KKKKKKKK w - -",
    };
    for (const char* text : texts) {
        EXPECT_FALSE(Reads(text)) << text;
        EXPECT_FALSE(IsValidFENCode(text)) << text;
    }
}

TEST(SetFromFENCode, OneKingInCheck_IsAccepted) {
    EXPECT_TRUE(Reads("4k3/4R3/8/8/8/8/8/4K3"));
    EXPECT_TRUE(Reads("4k3/8/8/8/8/8/4r3/4K3"));
    EXPECT_EQ(BoardOf("4k3/4R3/8/1B6/8/8/8/4K3").m_blackInCheck, kDoubleCheck);
}

TEST(SetFromFENCode, UnknownFigureLetter_Throws) {
    EXPECT_EQ(MessageOf("4k3/8/8/8/3x4/8/8/4K3"), "Unknown figure letter: x");
    EXPECT_EQ(MessageOf("4k3/8/8/8/3X4/8/8/4K3"), "Unknown figure letter: X");
    EXPECT_EQ(MessageOf("a/b"), "Unknown figure letter: a");
    EXPECT_EQ(MessageOf("x"), "nothing thrown");  // no slash: not even a board
}

TEST(SetFromFENCode, FirstFaultFromTheLeft_Decides) {
    EXPECT_EQ(MessageOf("4k3/9/8/8/3x4/8/8/4K3"), "nothing thrown");
    EXPECT_EQ(MessageOf("4k3/81x/8/8/8/8/8/4K3"), "nothing thrown");
    EXPECT_EQ(MessageOf("Note{4k3/8/8/8/8/8/8/4K3"), "nothing thrown");
    EXPECT_EQ(MessageOf("4k3/x/9/8/8/8/8/4K3"), "Unknown figure letter: x");
    EXPECT_EQ(MessageOf("4k3/8/8/8/8/8/8/4Kx1/8"), "Unknown figure letter: x");
    EXPECT_EQ(MessageOf("4k3/x7"), "Unknown figure letter: x");
}

TEST(SetFromFENCode, TextRefused_LeavesBoardAndFlagsUnchanged) {
    TChessboard board = FreshBoard();
    ASSERT_TRUE(SetFromFENCode(board, kStartPosition, nullptr, nullptr));
    board.m_nMoves = 5;
    board.Heur = 0x11;
    const std::string before = BytesOf(board);
    const char* const texts[] = {"",
                                 "4k3/8/8/8/8/8/8/8 w - e3",
                                 "4k3/8/8/8/8/8/8/P3K3 w - e3",
                                 "4k3/4R3/8/8/8/8/4r3/4K3 w - e3",
                                 "r3k2r/8/8/8/8/8/8/R3K2R/8 w - e3",
                                 "r3k2r/8/8/8/8/8/8/R3K1xR w - e3"};
    for (const char* text : texts) {
        bool castlingDenied = false;
        bool enPassantGiven = false;
        try {
            EXPECT_FALSE(SetFromFENCode(board, text, &castlingDenied, &enPassantGiven)) << text;
        } catch (const ChessException&) {
        }
        EXPECT_EQ(BytesOf(board), before) << text;
        EXPECT_FALSE(castlingDenied) << text;
        EXPECT_FALSE(enPassantGiven) << text;
    }
}

TEST(SetFromFENCode, NoText_IsRefused) {
    TChessboard board = FreshBoard();
    EXPECT_FALSE(SetFromFENCode(board, nullptr, nullptr, nullptr));
    EXPECT_FALSE(IsValidFENCode(nullptr));
}

TEST(SetFromFENCode, VeryLongText_IsJudgedLikeAnyOther) {
    const std::string tail(1 << 20, 'x');
    EXPECT_TRUE(Reads("4k3/8/8/8/8/8/8/4K3 w - - " + tail));
    EXPECT_FALSE(Reads("4k3/8/8/8/8/8/8/4K3" + std::string(1 << 20, '/')));
    EXPECT_FALSE(Reads(std::string(1 << 20, '1') + "/8"));
    EXPECT_FALSE(Reads(std::string(1 << 20, ' ')));
}

// Flags of reading

TEST(SetFromFENCode, TextWithoutFields_GrantsAllRights) {
    EXPECT_FALSE(FlagsOf("r3k2r/8/8/8/8/8/8/R3K2R").castlingDenied);
    EXPECT_FALSE(FlagsOf("r3k2r/8/8/8/8/8/8/R3K2R  ").castlingDenied);
    EXPECT_FALSE(FlagsOf("r3k2r/8/8/8/8/8/8/R3K2R").enPassantGiven);
}

TEST(SetFromFENCode, DerivableRightNotNamed_IsReportedAsDenied) {
    const struct {
        const char* text;
        bool isDenied;
    } rows[] = {{"r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", false},
                {"r3k2r/8/8/8/8/8/8/R3K2R w Qkq -", true},
                {"r3k2r/8/8/8/8/8/8/R3K2R w Kkq -", true},
                {"r3k2r/8/8/8/8/8/8/R3K2R w KQq -", true},
                {"r3k2r/8/8/8/8/8/8/R3K2R w KQk -", true},
                {"r3k2r/8/8/8/8/8/8/R3K2R w - -", true},
                {"r3k2r/8/8/8/8/8/8/R3K2R w", true},
                {"4k2r/8/8/8/8/8/8/R3K3 w Qk -", false},
                {"4k2r/8/8/8/8/8/8/R3K3 w Kq -", true},
                {"4k3/8/8/8/8/8/8/4K3 w - -", false},
                {"4k3/8/8/8/8/8/8/4K3 w KQkq -", false},
                {"3k4/8/8/8/8/8/8/R2K3R w - -", false}};
    for (const auto& row : rows)
        EXPECT_EQ(FlagsOf(row.text).castlingDenied, row.isDenied) << row.text;
}

TEST(SetFromFENCode, RightsLetters_CountInAnyField) {
    EXPECT_FALSE(FlagsOf("r3k2r/8/8/8/8/8/8/R3K2R w - - 0 KQkq").castlingDenied);
    EXPECT_FALSE(FlagsOf("r3k2r/8/8/8/8/8/8/R3K2R qkQK").castlingDenied);
}

TEST(SetFromFENCode, RootOfTheCallersThread_DoesNotDenyRights) {
    CGameLine line("4k3/8/8/8/8/8/8/4K3", 5);
    bool castlingDenied = false;
    ASSERT_TRUE(
        SetFromFENCode(line.Node(), "r3k2r/8/8/8/8/8/8/R3K2R w - -", &castlingDenied, nullptr));
    EXPECT_TRUE(castlingDenied);
}

TEST(SetFromFENCode, EnPassantField_IsTheFourthAndGivenUnlessADash) {
    const struct {
        const char* text;
        bool isGiven;
    } rows[] = {{"4k3/8/8/8/4P3/8/8/4K3 b - e3", true},
                {"4k3/8/8/8/4P3/8/8/4K3 b - E3 0 1", true},
                {"4k3/8/8/8/4P3/8/8/4K3 b - - 0 1", false},
                {"4k3/8/8/8/4P3/8/8/4K3 b - -e3 0 1", false},
                {"4k3/8/8/8/4P3/8/8/4K3 b -", false},
                {"4k3/8/8/8/4P3/8/8/4K3 b", false},
                {"4k3/8/8/8/4P3/8/8/4K3 b e3", false},
                {"4k3/8/8/8/4P3/8/8/4K3  b   KQkq   0 1", true}};
    for (const auto& row : rows)
        EXPECT_EQ(FlagsOf(row.text).enPassantGiven, row.isGiven) << row.text;
}

TEST(SetFromFENCode, FlagsAlreadySet_AreLeftAlone) {
    TChessboard board = FreshBoard();
    bool castlingDenied = true;
    bool enPassantGiven = true;
    ASSERT_TRUE(SetFromFENCode(
        board, "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -", &castlingDenied, &enPassantGiven));
    EXPECT_TRUE(castlingDenied);
    EXPECT_TRUE(enPassantGiven);
}

TEST(IsValidFENCode, GoodText_IsValid) {
    EXPECT_TRUE(IsValidFENCode(kStartPosition));
    EXPECT_TRUE(IsValidFENCode("4k3/8/8/8/8/8/8/4K3 w - - 0 1"));
}

TEST(IsValidFENCode, UnknownFigureLetter_IsInvalid) {
    EXPECT_FALSE(IsValidFENCode("4k3/8/8/8/3x4/8/8/4K3"));
}

// Writing

TEST(GetFENCode, StartPosition_HasAllFields) {
    CGameLine line(kStartPosition, 3);
    EXPECT_EQ(GetFENCode(line.Node()), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1");
    EXPECT_EQ(GetFENCode(line.Node(), true), kStartPosition);
}

TEST(GetFENCode, BothForms_WriteTheSame) {
    CGameLine line("r3k2r/pp3ppp/8/2Q5/4P3/8/PPP2PPP/R3K2R", 3);
    char text[kFenBufferSize];
    for (const bool boardOnly : {false, true}) {
        GetFENCode(line.Node(), text, boardOnly, 65535);
        EXPECT_EQ(text, GetFENCode(line.Node(), boardOnly, 65535));
    }
}

TEST(GetFENCode, LongestText_FitsTheBuffer) {
    CGameLine line("r1b1k2r/p1p1p1p1/1p1p1p1p/n1n1q1b1/1B1Q1N1N/P1P1P1P1/1P1P1P1P/R3KB1R", 3);
    line.Play("a3a4");
    EXPECT_LT(GetFENCode(line.Node(), false, 65535).size(), std::size_t{kFenBufferSize});
}

TEST(GetFENCode, SideField_FollowsTheHalfMovesLeft) {
    TChessboard board = BoardOf("4k3/8/8/8/8/8/8/4K3");
    board.m_nRootMoves = 4;
    board.m_nMoves = 3;
    EXPECT_EQ(GetFENCode(board), "4k3/8/8/8/8/8/8/4K3 w - - 0 1");
    board.m_nMoves = 4;
    EXPECT_EQ(GetFENCode(board), "4k3/8/8/8/8/8/8/4K3 b - - 0 1");
}

TEST(GetFENCode, MoveNumber_FollowsFromThePlyUnlessGiven) {
    CGameLine line("4k3/8/8/8/8/8/8/4K3", 9);
    const char* const moves[] = {"e1e2", "e8e7", "e2e3", "e7e6"};
    const char* const numbers[] = {" 0 1", " 0 1", " 0 2", " 0 2", " 0 3"};
    for (int i = 0; i < 5; ++i) {
        const std::string text = GetFENCode(line.Node());
        EXPECT_EQ(text.substr(text.size() - 4), numbers[i]);
        if (i < 4)
            line.Play(moves[i]);
    }
    EXPECT_EQ(GetFENCode(line.Node(), false, 17), "8/8/4k3/8/8/4K3/8/8 w - - 0 17");
}

TEST(GetFENCode, BoardOutsideOfAnAnalysis_IsAtMoveOne) {
    TChessboard board = BoardOf("4k3/8/8/8/8/8/8/4K3");
    board.m_nMoves = 65535;
    EXPECT_EQ(GetFENCode(board), "4k3/8/8/8/8/8/8/4K3 w - - 0 1");
}

TEST(GetFENCode, DoubleStep_GivesThePassedSquareInUpperCase) {
    CGameLine line(kStartPosition, 9);
    line.Play("e2e4");
    EXPECT_EQ(GetFENCode(line.Node()),
              "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq E3 0 1");
    line.Play("a7a5");
    EXPECT_EQ(GetFENCode(line.Node()),
              "rnbqkbnr/1ppppppp/8/p7/4P3/8/PPPP1PPP/RNBQKBNR w KQkq A6 0 2");
    line.Play("h2h3");
    EXPECT_EQ(GetFENCode(line.Node()),
              "rnbqkbnr/1ppppppp/8/p7/4P3/7P/PPPP1PP1/RNBQKBNR b KQkq - 0 2");
    line.Play("a8a6");
    line.Play("d1g4");
    line.Play("a6h6");
    line.Play("g4g6");
    EXPECT_EQ(GetFENCode(line.Node()),
              "1nbqkbnr/1ppppppp/6Qr/p7/4P3/7P/PPPP1PP1/RNB1KBNR b KQk - 0 4");
}

TEST(GetFENCode, RootWithoutParent_HasNoEnPassantSquare) {
    CGameLine line("4k3/8/8/8/4Pp2/8/8/4K3 b - e3 0 1", 4);
    EXPECT_EQ(GetFENCode(line.Node()), "4k3/8/8/8/4Pp2/8/8/4K3 b - - 0 1");
}

TEST(GetFENCode, KingThatCameBack_HasLostItsRights) {
    CGameLine line("r3k2r/8/8/8/8/8/8/R3K2R", 9);
    line.Play("e1f1");
    line.Play("a8b8");
    line.Play("f1e1");
    line.Play("b8a8");
    EXPECT_EQ(GetFENCode(line.Node()), "r3k2r/8/8/8/8/8/8/R3K2R w k - 0 3");
}

TEST(GetFENCode, DamagedBoard_ShowsALowerCaseE) {
    for (const int code : {1, 3, 0x43, 0x83, 0x61, 0xc1, 0xff}) {
        TChessboard board = BoardOf("4k3/8/8/8/8/8/8/4K3");
        board.m_board[20] = static_cast<u8>(code);
        EXPECT_EQ(GetFENCode(board, true), "4k3/8/8/8/8/4e3/8/4K3") << code;
    }
}

TEST(GetFENCode, PolishLettersRead_AreWrittenInEnglish) {
    EXPECT_EQ(GetFENCode(BoardOf("hwgsk3/8/8/8/8/8/8/HWGSK3"), true), "qrbnk3/8/8/8/8/8/8/QRBNK3");
}

}  // namespace
}  // namespace quillmere
