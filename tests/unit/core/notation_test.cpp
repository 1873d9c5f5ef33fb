#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/notation.h"
#include "tests/support/game_line.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

using test::CGameLine;
using test::kStartPosition;

// A square by name, independent of the code under test.
constexpr int At(const char* name) {
    return SquareAt(name[0] - 'a', name[1] - '1');
}

constexpr TMove Move(const char* from, const char* to, u8 promotion = 0) {
    return MakeMove(At(from), At(to), promotion);
}

// All four bytes, so that a leftover mark or en passant byte shows.
bool IsExactly(TMove a, TMove b) {
    return a.from == b.from && a.to == b.to && a.flags == b.flags && a.enPassant == b.enPassant;
}

constexpr TMove kUntouched = {11, 22, 0x80, 1};

std::string MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const ChessException& e) {
        return e.what();
    }
    return "nothing thrown";
}

std::string TextToMoveMessage(const std::string& text) {
    TMove move = kUntouched;
    const std::string message = MessageOf([&] { TextToMove(move, text, true); });
    EXPECT_TRUE(IsExactly(move, kUntouched)) << text;
    return message;
}

TMove Described(const std::string& text, bool whiteToMove = true) {
    TMove move = kUntouched;
    TextToMove(move, text, whiteToMove);
    return move;
}

std::string ParseMessage(const TChessboard& node, const std::string& text) {
    TMove move = kUntouched;
    const std::string message = MessageOf([&] { ParseMove(node, move, text); });
    EXPECT_TRUE(message == "nothing thrown" || IsExactly(move, kUntouched)) << text;
    return message;
}

std::string ParseMessage(const std::string& fen, u16 halfMoves, const std::string& text) {
    CGameLine line(fen, halfMoves);
    return ParseMessage(line.Node(), text);
}

void ExpectParsed(const TChessboard& node, const std::string& text, TMove expected) {
    TMove move = kUntouched;
    EXPECT_EQ(MessageOf([&] { ParseMove(node, move, text); }), "nothing thrown") << text;
    EXPECT_TRUE(IsExactly(move, expected)) << text;
}

void ExpectParsed(const std::string& fen, u16 halfMoves, const std::string& text, TMove expected) {
    CGameLine line(fen, halfMoves);
    ExpectParsed(line.Node(), text, expected);
}

std::string Written(TMove move, u8 figure, bool isCapture) {
    char text[kMoveTextSize];
    MoveToText(move, text, figure, isCapture);
    return text;
}

// Verdicts of ParseMove
const char* const kEmpty = "Empty string";
const char* const kShort = "Short notation not supported.";
const char* const kLength = "Improper string length";
const char* const kFull = "Improper full description of move";
const char* const kImproper = "Improper move description";
const char* const kIllegal = "Illegal move";

// Writing

TEST(MoveToText, MoveFromASquareToItself_IsADash) {
    EXPECT_EQ(Written(MakeMove(0, 0), kWhiteKing, false), "-");
    EXPECT_EQ(Written(MakeMove(9, 9), kBlackPawn, true), "-");
}

TEST(MoveToText, EveryKind_HasItsLetterInFrontButThePawn) {
    const struct {
        u8 kind;
        const char* text;
    } rows[] = {{kKing, "Ke4-d5"},
                {kQueen, "Qe4-d5"},
                {kRook, "Re4-d5"},
                {kBishop, "Be4-d5"},
                {kKnight, "Ne4-d5"},
                {kPawn, "e4-d5"},
                {0, "Ee4-d5"},
                {3, "Ee4-d5"}};
    for (const auto& row : rows) {
        EXPECT_EQ(Written(Move("e4", "d5"), kWhite | row.kind, false), row.text);
        EXPECT_EQ(Written(Move("e4", "d5"), kBlack | row.kind, false), row.text);
    }
}

TEST(MoveToText, Capture_HasAColon) {
    EXPECT_EQ(Written(Move("e4", "d5"), kWhitePawn, true), "e4:d5");
    EXPECT_EQ(Written(Move("a1", "h8"), kBlackBishop, true), "Ba1:h8");
}

TEST(MoveToText, Promotion_AppendsTheLetterAndDropsTheFigure) {
    const struct {
        u8 promotion;
        const char* text;
    } rows[] = {{kQueen, "e7:d8Q"},
                {kRook, "e7:d8R"},
                {kBishop, "e7:d8B"},
                {kKnight, "e7:d8N"},
                {kKing, "e7:d8K"},
                {kPawn, "e7:d8 "},
                {3, "e7:d8E"}};
    for (const auto& row : rows)
        EXPECT_EQ(Written(Move("e7", "d8", row.promotion), kWhitePawn, true), row.text);
    EXPECT_EQ(Written(Move("e2", "e1", kQueen), kBlackPawn, false), "e2-e1Q");
}

TEST(MoveToText, MarksOnTheFlags_AreNotShown) {
    EXPECT_EQ(Written({12, 28, kMoveMarkEvent | kMoveMarkForced, 1}, kWhitePawn, false), "e2-e4");
}

TEST(MoveToText, KingMovingTwoFiles_IsCastling) {
    EXPECT_EQ(Written(Move("e1", "g1"), kWhiteKing, false), "0-0");
    EXPECT_EQ(Written(Move("e1", "c1"), kWhiteKing, false), "0-0-0");
    EXPECT_EQ(Written(Move("e8", "g8"), kBlackKing, false), "0-0");
    EXPECT_EQ(Written(Move("e8", "c8"), kBlackKing, false), "0-0-0");
    EXPECT_EQ(Written(Move("e1", "f1"), kWhiteKing, false), "Ke1-f1");
    EXPECT_EQ(Written(Move("e1", "e2"), kWhiteKing, true), "Ke1:e2");
    EXPECT_EQ(Written(Move("e1", "g1"), kWhiteRook, false), "Re1-g1");
}

TEST(MoveToText, SquareOutsideTheBoard_GivesAnEmptyText) {
    EXPECT_EQ(Written(MakeMove(4, 64), kWhiteKing, false), "");
    EXPECT_EQ(Written(MakeMove(255, 4), kWhiteKing, false), "");
}

TEST(MoveToText, NodeForm_ReadsFigureAndCaptureOffTheBoard) {
    CGameLine line("3qk2r/4P3/8/8/4Pp2/8/8/R3K1N1", 5);
    const TChessboard& node = line.Node();
    EXPECT_EQ(MoveToText(node, Move("g1", "f3")), "Ng1-f3");
    EXPECT_EQ(MoveToText(node, Move("e7", "d8", kKnight)), "e7:d8N");
    EXPECT_EQ(MoveToText(node, Move("e1", "c1")), "0-0-0");
    EXPECT_EQ(MoveToText(node, Move("f4", "e3")), "f4:e3");
    EXPECT_EQ(MoveToText(node, MakeMove(7, 7)), "-");
    EXPECT_EQ(MoveToText(node, MakeMove(64, 3)), "");
}

TEST(MoveToUci, EveryForm_IsSquaresAndASmallLetter) {
    EXPECT_EQ(MoveToUci(Move("e2", "e4")), "e2e4");
    EXPECT_EQ(MoveToUci(Move("e7", "e8", kQueen)), "e7e8q");
    EXPECT_EQ(MoveToUci(Move("a2", "b1", kRook)), "a2b1r");
    EXPECT_EQ(MoveToUci(Move("h7", "h8", kBishop)), "h7h8b");
    EXPECT_EQ(MoveToUci(Move("h7", "g8", kKnight)), "h7g8n");
    EXPECT_EQ(MoveToUci(Move("e1", "g1")), "e1g1");
    EXPECT_EQ(MoveToUci(MakeMove(5, 5)), "0000");
    EXPECT_EQ(MoveToUci({12, 28, kMoveMarkForced, 1}), "e2e4");
}

TEST(MoveToPlainText, EveryForm_HasNoFigure) {
    EXPECT_EQ(MoveToPlainText(Move("g1", "f3")), "g1-f3");
    EXPECT_EQ(MoveToPlainText(Move("e1", "g1")), "e1-g1");
    EXPECT_EQ(MoveToPlainText(Move("e7", "d8", kKnight)), "e7-d8N");
}

// Squares

TEST(SquareToText, EverySquare_ReadsBack) {
    EXPECT_EQ(SquareToText(0), "a1");
    EXPECT_EQ(SquareToText(7), "h1");
    EXPECT_EQ(SquareToText(63), "h8");
    for (int square = 0; square < kSquareCount; ++square)
        EXPECT_EQ(String2Square(SquareToText(square)), square);
}

TEST(SquareToText, SquareOutsideTheBoard_IsQuestionMarks) {
    for (const int square : {-1, 64, 255})
        EXPECT_EQ(SquareToText(square), "??");
}

TEST(String2Square, EitherCase_IsRead) {
    EXPECT_EQ(String2Square("a1"), 0);
    EXPECT_EQ(String2Square("A1"), 0);
    EXPECT_EQ(String2Square("H8"), 63);
    EXPECT_EQ(String2Square("e4"), 28);
}

TEST(String2Square, FurtherCharacters_AreNotLookedAt) {
    EXPECT_EQ(String2Square("e4xyz"), 28);
}

TEST(String2Square, AnythingElse_ThrowsWithTheText) {
    for (const char* text :
         {"", "e", "4", "e0", "e9", "i1", "I1", "@1", "`1", "4e", " e4", "ee", "\xc4\x85"})
        EXPECT_EQ(MessageOf([&] { String2Square(text); }),
                  std::string("Error in String2Square() ") + text);
}

// The full description

TEST(TextToMove, BothCastlings_GoFromHomeForEitherSide) {
    EXPECT_TRUE(IsExactly(Described("0-0", true), MakeMove(4, 6)));
    EXPECT_TRUE(IsExactly(Described("0-0", false), MakeMove(60, 62)));
    EXPECT_TRUE(IsExactly(Described("0-0-0", true), MakeMove(4, 2)));
    EXPECT_TRUE(IsExactly(Described("0-0-0", false), MakeMove(60, 58)));
    EXPECT_TRUE(IsExactly(Described("  0-0  ", true), MakeMove(4, 6)));
}

TEST(TextToMove, FullDescription_GivesSquaresAndPromotion) {
    const struct {
        const char* text;
        TMove move;
    } rows[] = {{"e2-e4", Move("e2", "e4")},           {"E2-E4", Move("e2", "e4")},
                {"e2:d3", Move("e2", "d3")},           {"e2xd3", Move("e2", "d3")},
                {"e2 e4", Move("e2", "e4")},           {"e2?e4", Move("e2", "e4")},
                {"a1-h8", Move("a1", "h8")},           {"Ng1-f3", Move("g1", "f3")},
                {"ng1-f3", Move("g1", "f3")},          {"Pe2-e4", Move("e2", "e4")},
                {"e7-e8Q", Move("e7", "e8", kQueen)},  {"e7-e8h", Move("e7", "e8", kQueen)},
                {"e7-e8W", Move("e7", "e8", kRook)},   {"e7-e8g", Move("e7", "e8", kBishop)},
                {"e7-e8S", Move("e7", "e8", kKnight)}, {"e7-e8K", Move("e7", "e8", kKing)},
                {"e7-e8P", Move("e7", "e8", kPawn)},   {"Pe7:d8n", Move("e7", "d8", kKnight)},
                {"e2-e2", Move("e2", "e2")},           {"\t e2-e4 \n", Move("e2", "e4")}};
    for (const auto& row : rows) {
        EXPECT_TRUE(IsExactly(Described(row.text, true), row.move)) << row.text;
        EXPECT_TRUE(IsExactly(Described(row.text, false), row.move)) << row.text;
    }
}

TEST(TextToMove, FirstOfSixCharacters_IsPassedOver) {
    EXPECT_TRUE(IsExactly(Described("Xg1-f3"), Move("g1", "f3")));
    EXPECT_TRUE(IsExactly(Described("?g1-f3"), Move("g1", "f3")));
}

TEST(TextToMove, AnyRankDigit_IsAcceptedAndLeadsOffTheBoard) {
    for (const char* text : {"a9-a1", "h9-a1", "a0-a1", "h0-a1", "a1-a9", "a1-h0"}) {
        const TMove move = Described(text);
        EXPECT_FALSE(IsOnBoard(move)) << text;
    }
    EXPECT_EQ(Described("a9-b1").from, 64);
    EXPECT_EQ(Described("b1-h9").to, 71);
    EXPECT_EQ(Described("a0-b1").from, 248);
    EXPECT_TRUE(IsOnBoard(Described("a1-h8")));
}

TEST(TextToMove, FaultyText_ThrowsItsMessage) {
    const struct {
        const char* text;
        const char* message;
    } rows[] = {{"", kEmpty},
                {" ", kEmpty},
                {" \t\r\n ", kEmpty},
                {"e2e4", kLength},
                {"e2-e", "Unknown figure letter: e"},
                {"e2-", kLength},
                {"-", kLength},
                {"Q", kLength},
                {"0", kLength},
                {"0-0Q", kLength},
                {"0-0-", kLength},
                {"0-0-0-0", kLength},
                {"0-0-0-0-0-0-0", kLength},
                {"Ng1--f3", kLength},
                {"Qd1-h5+", kLength},
                {"e7-e8X", "Unknown figure letter: X"},
                {"e7-e8a", "Unknown figure letter: a"},
                {"e2-e4x", "Unknown figure letter: x"},
                {"12-34", kFull},
                {"e2-34", kFull},
                {"12-e4", kFull},
                {"ee-e4", kFull},
                {"e2-e-", kFull},
                {"e7-e8=Q", kFull},
                {"0e-e4", kFull},
                {"e2-e?", kFull},
                {"?2-e4", kFull},
                {"\xc4\x85-e4", kFull},
                {"i1-a3", kFull},
                {"a1-i3", kFull},
                {"z1-a3", kFull}};
    for (const auto& row : rows)
        EXPECT_EQ(TextToMoveMessage(row.text), row.message) << '"' << row.text << '"';
}

TEST(TextToMove, VeryLongText_IsRefused) {
    EXPECT_EQ(TextToMoveMessage(std::string(1 << 20, '1')), kLength);
    EXPECT_EQ(TextToMoveMessage(std::string(1 << 20, 'Q')), kLength);
    EXPECT_EQ(TextToMoveMessage(std::string(1 << 20, ' ')), kEmpty);
}

// Parsing: the form of the text

TEST(ParseMove, EmptyText_Throws) {
    for (const char* text : {"", " ", "\t\n"})
        EXPECT_EQ(ParseMessage(kStartPosition, 3, text), kEmpty);
}

TEST(ParseMove, CaptureMarkAtTheStart_IsImproper) {
    for (const char* text : {":", "x", ":e4", "xe2-e4", ":e2-e4", " :e2-e4"})
        EXPECT_EQ(ParseMessage(kStartPosition, 3, text), kImproper) << text;
}

TEST(ParseMove, ShortNotation_IsNotSupported) {
    for (const char* text : {"e4",
                             "Nf3",
                             "e2e4",
                             "-",
                             "Nbd2",
                             "Nxf3",
                             "N:f3",
                             "exd5",
                             "ex",
                             "Q",
                             "O-O",
                             "Nbxd2",
                             "e:d5",
                             "e2e",
                             "Nxe2-e4",
                             "Be:c1-d2"})
        EXPECT_EQ(ParseMessage(kStartPosition, 3, text), kShort) << text;
}

TEST(ParseMove, ColonIsLookedForBeforeX) {
    // The colon follows a digit, so the x in front of it, behind a letter, is no capture mark.
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Nx1:f3"), kFull);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "xe2:e4"), "Unknown figure letter: x");
}

TEST(ParseMove, FaultyDescription_ThrowsAsTextToMoveDoes) {
    const struct {
        const char* text;
        const char* message;
    } rows[] = {{"e2-e4-e5", kLength},
                {"Ng1-f3+", kLength},
                {"0", kLength},
                {"0-1", kLength},
                {"0-0-", kLength},
                {"12-34", kFull},
                {"e2-e9-", kFull},
                {"e7-e8=Q", kFull},
                {"e2-e4Z", "Unknown figure letter: Z"},
                {"Xe2-e4", "Unknown figure letter: X"},
                {"?e2-e4", "Unknown figure letter: ?"},
                {"0e2-e4", "Unknown figure letter: 0"}};
    for (const auto& row : rows)
        EXPECT_EQ(ParseMessage(kStartPosition, 3, row.text), row.message) << row.text;
}

TEST(ParseMove, SquareOffTheBoard_IsImproper) {
    for (const char* text : {"e2-e9", "e2-e0", "e9-e4", "e0-e4", "Ng1-h0", "Ng9-f3", "a0-h9"})
        EXPECT_EQ(ParseMessage(kStartPosition, 3, text), kImproper) << text;
}

// Parsing: the figure

TEST(ParseMove, KnightMove_NeedsItsLetter) {
    CGameLine line(kStartPosition, 3);
    ExpectParsed(line.Node(), "Ng1-f3", Move("g1", "f3"));
    ExpectParsed(line.Node(), "Sg1-f3", Move("g1", "f3"));
    ExpectParsed(line.Node(), "ng1-f3", Move("g1", "f3"));
    ExpectParsed(line.Node(), "  Ng1-f3  ", Move("g1", "f3"));
    EXPECT_EQ(ParseMessage(line.Node(), "g1-f3"), kImproper);
}

TEST(ParseMove, FigureThatDoesNotStandThere_IsImproper) {
    EXPECT_EQ(ParseMessage("4k3/8/8/8/8/8/8/4K1B1", 3, "Ng1-f3"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Ne2-e4"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Ne4-f6"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "e4-e5"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Qg1-f3"), kImproper);
}

TEST(ParseMove, FigureOfTheOtherSide_IsImproper) {
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "e7-e5"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Ng8-f6"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 4, "e2-e4"), kImproper);
    ExpectParsed(kStartPosition, 4, "e7-e5", Move("e7", "e5"));
    ExpectParsed(kStartPosition, 4, "Ng8-f6", Move("g8", "f6"));
}

TEST(ParseMove, DestinationHeldByAnOwnFigure_IsImproper) {
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Ng1-e2"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Ra1-a2"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Ke1-e1"), kImproper);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "e2-e2"), kImproper);
}

TEST(ParseMove, PawnMayBeNamed) {
    ExpectParsed(kStartPosition, 3, "Pe2-e4", Move("e2", "e4"));
}

TEST(ParseMove, FirstLetterOfAFile_IsNoFigure) {
    ExpectParsed(kStartPosition, 3, "b2-b4", Move("b2", "b4"));
    ExpectParsed(kStartPosition, 3, "g2-g4", Move("g2", "g4"));
    ExpectParsed("4k3/8/8/8/8/8/8/2B1K3", 3, "bc1-b2", Move("c1", "b2"));
}

TEST(ParseMove, CaptureMark_IsNotVerified) {
    CGameLine line(kStartPosition, 3);
    ExpectParsed(line.Node(), "e2xe4", Move("e2", "e4"));
    ExpectParsed(line.Node(), "e2:e4", Move("e2", "e4"));
    ExpectParsed(line.Node(), "Ng1xf3", Move("g1", "f3"));
    ExpectParsed("4k3/8/8/3p4/4P3/8/8/4K3", 3, "e4-d5", Move("e4", "d5"));
    ExpectParsed("4k3/8/8/3p4/4P3/8/8/4K3", 3, "e4xd5", Move("e4", "d5"));
    ExpectParsed("4k3/8/8/3p4/4P3/8/8/4K3", 3, "e4:d5", Move("e4", "d5"));
}

// Parsing: the way of the figure

TEST(ParseMove, FigureThatCannotReachTheSquare_IsIllegal) {
    const struct {
        const char* fen;
        const char* text;
    } rows[] = {{kStartPosition, "Ng1-g3"},
                {kStartPosition, "Ra1-a3"},
                {kStartPosition, "Bc1-e3"},
                {kStartPosition, "Qd1-d3"},
                {kStartPosition, "Ke1-e3"},
                {kStartPosition, "e2-e5"},
                {kStartPosition, "e2-d3"},
                {kStartPosition, "e2-f4"},
                {"4k3/8/8/8/8/8/8/R3K3", "Ra1-b2"},
                {"4k3/8/8/8/8/8/8/B3K3", "Ba1-a2"},
                {"4k3/8/8/8/p7/8/8/R3K3", "Ra1-a5"}};
    for (const auto& row : rows)
        EXPECT_EQ(ParseMessage(row.fen, 3, row.text), kIllegal) << row.fen << ' ' << row.text;
}

TEST(ParseMove, PawnSteps_NeedEmptySquares) {
    const char* const fen = "4k3/8/8/2n5/4n3/1n1P4/1P1PP2P/4K3";
    EXPECT_EQ(ParseMessage(fen, 3, "b2-b3"), kIllegal);   // blocked
    EXPECT_EQ(ParseMessage(fen, 3, "b2-b4"), kIllegal);   // blocked between
    EXPECT_EQ(ParseMessage(fen, 3, "e2-e4"), kIllegal);   // blocked at the end
    EXPECT_EQ(ParseMessage(fen, 3, "d3-d5"), kIllegal);   // not from its home rank
    EXPECT_EQ(ParseMessage(fen, 3, "h2-h1"), kIllegal);   // backwards
    EXPECT_EQ(ParseMessage(fen, 3, "d2-d3"), kImproper);  // an own figure
    ExpectParsed(fen, 3, "e2-e3", Move("e2", "e3"));
    ExpectParsed(fen, 3, "h2-h4", Move("h2", "h4"));
    ExpectParsed(fen, 3, "d3:e4", Move("d3", "e4"));
    EXPECT_EQ(ParseMessage(fen, 3, "d3-c4"), kIllegal);  // nothing to take there
}

TEST(ParseMove, BlackPawnSteps_GoDownwards) {
    const char* const fen = "4k3/p3p3/8/8/4p3/3P4/8/4K3";
    ExpectParsed(fen, 2, "a7-a6", Move("a7", "a6"));
    ExpectParsed(fen, 2, "a7-a5", Move("a7", "a5"));
    ExpectParsed(fen, 2, "e4:d3", Move("e4", "d3"));
    ExpectParsed(fen, 2, "e4-e3", Move("e4", "e3"));
    EXPECT_EQ(ParseMessage(fen, 2, "e4-e2"), kIllegal);
    EXPECT_EQ(ParseMessage(fen, 2, "e4-f3"), kIllegal);
    EXPECT_EQ(ParseMessage(fen, 2, "e4-e5"), kIllegal);
}

TEST(ParseMove, EnPassant_NeedsTheDoubleStepJustMade) {
    CGameLine line("4k3/3p1p2/8/4P3/8/8/7P/4K3", 9);
    EXPECT_EQ(ParseMessage(line.Node(), "e5:d6"), kIllegal);
    line.Play("h2h3");
    line.Play("d7d5");
    ExpectParsed(line.Node(), "e5:d6", Move("e5", "d6"));
    ExpectParsed(line.Node(), "e5-d6", Move("e5", "d6"));
    EXPECT_EQ(ParseMessage(line.Node(), "e5:f6"), kIllegal);
    line.Play("h3h4");
    line.Play("f7f5");
    ExpectParsed(line.Node(), "e5:f6", Move("e5", "f6"));
    EXPECT_EQ(ParseMessage(line.Node(), "e5:d6"), kIllegal);
}

TEST(ParseMove, EnPassantAfterASingleStep_IsIllegal) {
    CGameLine line("4k3/8/3p4/4P3/8/8/7P/4K3", 9);
    line.Play("h2h3");
    line.Play("d6d5");
    EXPECT_EQ(ParseMessage(line.Node(), "e5:d6"), kIllegal);
}

TEST(ParseMove, EnPassantAtTheRoot_IsIllegalWhateverTheTextOfThePosition) {
    EXPECT_EQ(ParseMessage("4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", 3, "e5:d6"), kIllegal);
}

TEST(ParseMove, EnPassantByBlack_IsRead) {
    CGameLine line("4k3/8/8/8/5p2/8/4P3/4K3", 5);
    line.Play("e2e4");
    ExpectParsed(line.Node(), "f4:e3", Move("f4", "e3"));
    EXPECT_EQ(ParseMessage(line.Node(), "f4:g3"), kIllegal);
}

TEST(ParseMove, EnPassantThatOpensTheRankOfTheKing_IsIllegal) {
    CGameLine line("4k3/3p4/8/r3P2K/8/8/8/8", 5);
    line.Play("h5g5");
    line.Play("d7d5");
    EXPECT_EQ(ParseMessage(line.Node(), "e5:d6"), kIllegal);
    ExpectParsed(line.Node(), "e5-e6", Move("e5", "e6"));
}

// Parsing: promotion

TEST(ParseMove, PromotionMark_IsNeededOnTheLastRank) {
    const char* const fen = "3r4/4P2k/8/8/8/8/8/4K3";
    ExpectParsed(fen, 3, "e7-e8Q", Move("e7", "e8", kQueen));
    ExpectParsed(fen, 3, "e7-e8r", Move("e7", "e8", kRook));
    ExpectParsed(fen, 3, "e7:d8B", Move("e7", "d8", kBishop));
    ExpectParsed(fen, 3, "e7xd8S", Move("e7", "d8", kKnight));
    EXPECT_EQ(Move("e7", "e8", kQueen).flags, 12);
    EXPECT_EQ(ParseMessage(fen, 3, "e7-e8"), kIllegal);
    EXPECT_EQ(ParseMessage(fen, 3, "e7:d8"), kIllegal);
}

TEST(ParseMove, PromotionToKingOrPawn_IsIllegal) {
    const char* const fen = "8/4P2k/8/8/8/8/8/4K3";
    EXPECT_EQ(ParseMessage(fen, 3, "e7-e8K"), kIllegal);
    EXPECT_EQ(ParseMessage(fen, 3, "e7-e8P"), kIllegal);
}

TEST(ParseMove, PromotionMarkElsewhere_IsIllegal) {
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "e2-e4Q"), kIllegal);
    EXPECT_EQ(ParseMessage(kStartPosition, 3, "Ng1-f3Q"), kIllegal);
    EXPECT_EQ(ParseMessage("7k/8/8/8/8/8/8/R3K3", 3, "Ra1-a8Q"), kIllegal);
    EXPECT_EQ(ParseMessage("7k/8/8/8/8/8/8/R3K3", 3, "Ke1-e2N"), kIllegal);
}

TEST(ParseMove, BlackPromotion_IsOnTheFirstRank) {
    const char* const fen = "4k3/8/8/8/8/8/p6K/1N6";
    ExpectParsed(fen, 2, "a2-a1Q", Move("a2", "a1", kQueen));
    ExpectParsed(fen, 2, "a2:b1N", Move("a2", "b1", kKnight));
    EXPECT_EQ(ParseMessage(fen, 2, "a2-a1"), kIllegal);
}

// Parsing: castling

TEST(ParseMove, Castling_IsReadForBothSides) {
    const char* const fen = "r3k2r/8/8/8/8/8/8/R3K2R";
    ExpectParsed(fen, 3, "0-0", MakeMove(4, 6));
    ExpectParsed(fen, 3, "0-0-0", MakeMove(4, 2));
    ExpectParsed(fen, 3, " 0-0 ", MakeMove(4, 6));
    ExpectParsed(fen, 4, "0-0", MakeMove(60, 62));
    ExpectParsed(fen, 4, "0-0-0", MakeMove(60, 58));
}

TEST(ParseMove, CastlingAsAMoveOfTheKing_IsRead) {
    const char* const fen = "r3k2r/8/8/8/8/8/8/R3K2R";
    ExpectParsed(fen, 3, "Ke1-g1", MakeMove(4, 6));
    ExpectParsed(fen, 4, "Ke8-c8", MakeMove(60, 58));
    EXPECT_EQ(ParseMessage(fen, 3, "e1-g1"), kImproper);
    EXPECT_EQ(ParseMessage("4k3/8/8/8/8/8/8/4K3", 3, "Ke1-g1"), kIllegal);
}

TEST(ParseMove, CastlingOfWhiteThatBreaksARule_IsIllegal) {
    const struct {
        const char* fen;
        const char* text;
    } rows[] = {
        {"4k3/8/8/8/8/8/8/4K3", "0-0"},   // no rook
        {"4k3/8/8/8/8/8/8/R3K3", "0-0"},  // the rook of the other wing
        {"4k3/8/8/8/8/8/8/4K2R", "0-0-0"},
        {"4k3/8/8/8/8/8/8/4K2r", "0-0"},  // not an own rook (and a check)
        {"4k3/8/8/8/8/8/8/4K2B", "0-0"},  // no rook at all
        {"4k3/8/8/8/8/8/8/3K3R", "0-0"},  // king not at home
        {"4k3/8/8/8/8/8/8/R2K4", "0-0-0"},
        {"k7/8/8/8/8/8/1K6/4Q2R", "0-0"},  // a queen stands on the home square
        {"k7/8/8/8/8/8/1K6/4R2R", "0-0"},  // a rook stands there
        {"4k3/8/8/8/8/8/8/4KB1R", "0-0"},  // a figure between
        {"4k3/8/8/8/8/8/8/4K1nR", "0-0"},
        {"4k3/8/8/8/8/8/8/RN2K3", "0-0-0"},  // next to the rook
        {"4k3/8/8/8/8/8/8/R1n1K3", "0-0-0"},
        {"4k3/8/8/8/8/8/8/R2QK3", "0-0-0"},
        {"4k3/4r3/8/8/8/8/8/R3K2R", "0-0"},  // in check
        {"4k3/4r3/8/8/8/8/8/R3K2R", "0-0-0"},
        {"4k3/5r2/8/8/8/8/8/R3K2R", "0-0"},  // through an attacked square
        {"4k3/3r4/8/8/8/8/8/R3K2R", "0-0-0"},
        {"4k3/6r1/8/8/8/8/8/R3K2R", "0-0"},  // onto an attacked square
        {"4k3/2r5/8/8/8/8/8/R3K2R", "0-0-0"},
        {"4k3/8/8/8/8/8/6p1/R3K2R", "0-0"},  // a pawn attacks f1
        {"4k3/8/8/8/8/8/7p/R3K2R", "0-0"},   // a pawn attacks g1
    };
    for (const auto& row : rows)
        EXPECT_EQ(ParseMessage(row.fen, 3, row.text), kIllegal) << row.fen << ' ' << row.text;
}

TEST(ParseMove, AttackOnTheRookOrItsNeighbour_DoesNotHinderCastling) {
    ExpectParsed("4k3/8/8/8/8/8/1r6/R3K3", 3, "0-0-0", MakeMove(4, 2));
    ExpectParsed("r3k2r/8/8/8/8/8/8/R3K2R", 3, "0-0-0", MakeMove(4, 2));
    ExpectParsed("4k2r/8/8/8/8/8/8/4K2R", 3, "0-0", MakeMove(4, 6));
}

TEST(ParseMove, CastlingOfBlackThatBreaksARule_IsIllegal) {
    const struct {
        const char* fen;
        const char* text;
    } rows[] = {{"4k3/8/8/8/8/8/8/4K3", "0-0"},
                {"3k3r/8/8/8/8/8/8/4K3", "0-0"},
                {"4k1nr/8/8/8/8/8/8/4K3", "0-0"},
                {"rn2k3/8/8/8/8/8/8/4K3", "0-0-0"},
                {"r3k2r/8/8/8/8/8/5R2/4K3", "0-0"},
                {"r3k2r/8/8/8/8/8/6R1/4K3", "0-0"},
                {"r3k2r/8/8/8/8/8/3R4/4K3", "0-0-0"},
                {"r3k2r/8/8/8/8/8/2R5/4K3", "0-0-0"},
                {"r3k2r/8/8/8/8/8/4R3/4K3", "0-0"}};
    for (const auto& row : rows)
        EXPECT_EQ(ParseMessage(row.fen, 4, row.text), kIllegal) << row.fen << ' ' << row.text;
}

TEST(ParseMove, CastlingWithAKingThatCameBack_IsIllegal) {
    CGameLine line("r3k2r/8/8/8/8/8/8/R3K2R", 9);
    line.Play("e1f1");
    line.Play("a8b8");
    line.Play("f1e1");
    line.Play("b8a8");
    EXPECT_EQ(ParseMessage(line.Node(), "0-0"), kIllegal);
    EXPECT_EQ(ParseMessage(line.Node(), "0-0-0"), kIllegal);
    line.Play("e1f1");
    EXPECT_EQ(ParseMessage(line.Node(), "0-0-0"), kIllegal);  // the rook of black came back
    // The other rook of black has never moved, and no white figure looks at f8 or g8.
    ExpectParsed(line.Node(), "0-0", MakeMove(60, 62));
}

TEST(ParseMove, CastlingNotNamedByTheTextOfThePosition_IsStillPossible) {
    ExpectParsed("4k3/8/8/8/8/8/8/4K2R w - - 0 1", 3, "0-0", MakeMove(4, 6));
}

// Parsing: the own king

TEST(ParseMove, KingOntoAnAttackedSquare_IsIllegal) {
    const char* const fen = "4k3/8/8/8/3r4/8/8/4K3";
    EXPECT_EQ(ParseMessage(fen, 3, "Ke1-d1"), kIllegal);
    EXPECT_EQ(ParseMessage(fen, 3, "Ke1-d2"), kIllegal);
    ExpectParsed(fen, 3, "Ke1-e2", Move("e1", "e2"));
    EXPECT_EQ(ParseMessage("8/8/8/8/8/4k3/8/4K3", 3, "Ke1-e2"), kIllegal);
}

TEST(ParseMove, KingBehindItselfOnTheLineOfACheck_IsIllegal) {
    const char* const fen = "4k3/8/8/8/r3K3/8/8/8";
    EXPECT_EQ(ParseMessage(fen, 3, "Ke4-f4"), kIllegal);
    ExpectParsed(fen, 3, "Ke4-f5", Move("e4", "f5"));
}

TEST(ParseMove, KingTakingAProtectedFigure_IsIllegal) {
    EXPECT_EQ(ParseMessage("4k3/8/8/8/8/2b5/3q4/4K3", 3, "Ke1:d2"), kIllegal);
    ExpectParsed("4k3/8/8/8/8/8/3q4/4K3", 3, "Ke1:d2", Move("e1", "d2"));
}

TEST(ParseMove, PinnedFigure_KeepsToItsLine) {
    const char* const fen = "4r1k1/8/8/8/4R3/8/8/4K3";
    ExpectParsed(fen, 3, "Re4-e7", Move("e4", "e7"));
    ExpectParsed(fen, 3, "Re4:e8", Move("e4", "e8"));
    EXPECT_EQ(ParseMessage(fen, 3, "Re4-d4"), kIllegal);
    EXPECT_EQ(ParseMessage("4r1k1/8/8/8/4N3/8/8/4K3", 3, "Ne4-f6"), kIllegal);
    EXPECT_EQ(ParseMessage("6k1/8/8/8/7b/8/5P2/4K3", 3, "f2-f3"), kIllegal);
    EXPECT_EQ(ParseMessage("6k1/8/8/8/8/6b1/5P2/4K3", 3, "f2-f4"), kIllegal);
    ExpectParsed("6k1/8/8/8/8/6b1/5P2/4K3", 3, "f2:g3", Move("f2", "g3"));
}

TEST(ParseMove, CheckThatIsNotAnswered_IsIllegal) {
    const char* const fen = "4r1k1/8/8/8/8/8/3B1R2/4K3";
    EXPECT_EQ(ParseMessage(fen, 3, "Rf2-f3"), kIllegal);
    ExpectParsed(fen, 3, "Rf2-e2", Move("f2", "e2"));
    ExpectParsed(fen, 3, "Bd2-e3", Move("d2", "e3"));
    ExpectParsed(fen, 3, "Ke1-d1", Move("e1", "d1"));
}

TEST(ParseMove, DoubleCheck_LeavesOnlyTheKing) {
    const char* const fen = "4r1k1/8/8/8/7b/8/2Q5/4K3";
    EXPECT_EQ(ParseMessage(fen, 3, "Qc2-e2"), kIllegal);
    ExpectParsed(fen, 3, "Ke1-d1", Move("e1", "d1"));
}

TEST(ParseMove, KingOfTheOtherSide_IsNeverTaken) {
    // A mate-defence task may start with black in check from a figure that white could use to
    // take the king if it were white's turn.
    CGameLine line("4k3/4R3/8/8/8/8/8/4K3", 4);
    TChessboard node = line.Node();
    node.m_nMoves = 3;
    EXPECT_EQ(ParseMessage(node, "Re7:e8"), kIllegal);
}

TEST(ParseMove, CaptureThatLeavesTooLittleToMate_IsLegal) {
    ExpectParsed("8/8/8/8/8/5k2/4r3/3BK3", 3, "Bd1:e2", Move("d1", "e2"));
    ExpectParsed("8/8/8/8/8/8/5k2/r1K5", 3, "Kc1-d2", Move("c1", "d2"));
    ExpectParsed("7k/8/8/8/8/8/6r1/7K", 3, "Kh1:g2", Move("h1", "g2"));
}

// Parsing: the node

TEST(ParseMove, AfterTheLastHalfMove_BlackIsToMove) {
    CGameLine line("7k/8/8/8/8/8/8/R3K3", 1);
    line.Play("a1a8");
    ASSERT_EQ(line.Node().m_nMoves, 0);
    ExpectParsed(line.Node(), "Kh8-g7", Move("h8", "g7"));
    EXPECT_EQ(ParseMessage(line.Node(), "Kh8-g8"), kIllegal);
}

TEST(ParseMove, BoardWithoutAThread_IsJudgedAsARoot) {
    TChessboard board;
    InitBoard(board);
    ASSERT_TRUE(SetFromFENCode(board, "r3k2r/8/8/8/8/8/8/R3K2R", nullptr, nullptr));
    board.m_nMoves = 3;
    ExpectParsed(board, "0-0", MakeMove(4, 6));
    board.m_nMoves = 4;
    ExpectParsed(board, "0-0-0", MakeMove(60, 58));
    EXPECT_EQ(ParseMessage(board, "Ke8-e6"), kIllegal);
}

TEST(ParseMove, MessagesOfALanguage_AreTranslated) {
    CGameLine line(kStartPosition, 3);
    TMove move = {};
    try {
        ParseMove(line.Node(), move, "Nf3");
        FAIL();
    } catch (const ChessException& e) {
        EXPECT_EQ(e.Id(), EMessage::kShortNotation);
        EXPECT_EQ(e.Text(ELanguage::kPolish), "Notacja skrócona nie jest obsługiwana.");
        EXPECT_FALSE(e.Text(ELanguage::kUkrainian).empty());
    }
}

// Completing a short move

struct TFound {
    int square;
    int count;
};

TFound Find(const TChessboard& node, int figure, const char* to) {
    TFound found = {0, -1};
    found.square = FindPosFrom(node, static_cast<u8>(figure), At(to), &found.count);
    return found;
}

TEST(FindPosFrom, King_IsItsOwnCandidate) {
    CGameLine line("4k3/8/8/8/8/8/8/4K3", 3);
    EXPECT_EQ(Find(line.Node(), kKing, "a5").square, At("e1"));
    EXPECT_EQ(Find(line.Node(), kKing, "a5").count, 1);
    EXPECT_EQ(Find(line.Node(), kBlackKing, "a5").square, At("e8"));
}

TEST(FindPosFrom, CodeWithoutColour_TakesTheSideToMove) {
    const char* const fen = "4k1n1/8/8/8/8/8/8/4K1N1";
    CGameLine white(fen, 3);
    EXPECT_EQ(Find(white.Node(), kKnight, "f3").square, At("g1"));
    EXPECT_EQ(Find(white.Node(), kKnight, "f6").count, 0);
    EXPECT_EQ(Find(white.Node(), kBlackKnight, "f6").square, At("g8"));
    CGameLine black(fen, 4);
    EXPECT_EQ(Find(black.Node(), kKnight, "f6").square, At("g8"));
    EXPECT_EQ(Find(black.Node(), kWhiteKnight, "f3").square, At("g1"));
}

TEST(FindPosFrom, EachKind_IsFoundAlongItsLines) {
    CGameLine line("4k3/8/8/8/8/8/6p1/RNBQK3", 3);
    const TChessboard& node = line.Node();
    EXPECT_EQ(Find(node, kRook, "a8").square, At("a1"));
    EXPECT_EQ(Find(node, kKnight, "c3").square, At("b1"));
    EXPECT_EQ(Find(node, kBishop, "h6").square, At("c1"));
    EXPECT_EQ(Find(node, kQueen, "d8").square, At("d1"));
    EXPECT_EQ(Find(node, kQueen, "a4").square, At("d1"));
    EXPECT_EQ(Find(node, kRook, "b2").count, 0);
    EXPECT_EQ(Find(node, kRook, "b2").square, kNoSquare);
    EXPECT_EQ(Find(node, kRook, "c1").count, 0);  // the knight stands between
    EXPECT_EQ(Find(node, kBishop, "c2").count, 0);
    EXPECT_EQ(Find(node, kRook, "a1").count, 0);  // it stands there already
}

TEST(FindPosFrom, SeveralCandidates_AreCounted) {
    CGameLine line("4k3/8/8/8/R6R/2N3N1/8/1K6", 3);
    const TFound rook = Find(line.Node(), kRook, "d4");
    EXPECT_EQ(rook.count, 2);
    EXPECT_TRUE(rook.square == At("a4") || rook.square == At("h4"));
    EXPECT_EQ(Find(line.Node(), kKnight, "e4").count, 2);
    EXPECT_EQ(Find(line.Node(), kKnight, "d5").count, 1);
    EXPECT_EQ(FindPosFrom(line.Node(), kKnight, At("d5"), nullptr), At("c3"));
}

TEST(FindPosFrom, PinnedFigure_IsStillACandidate) {
    CGameLine line("4r1k1/8/8/8/4R3/8/8/4K3", 3);
    EXPECT_EQ(Find(line.Node(), kRook, "d4").square, At("e4"));
}

TEST(FindPosFrom, PawnStep_IsFoundBehindTheSquare) {
    CGameLine line("4k3/p7/8/8/8/3P4/4P3/4K3", 3);
    const TChessboard& node = line.Node();
    EXPECT_EQ(Find(node, kPawn, "e3").square, At("e2"));
    EXPECT_EQ(Find(node, kPawn, "e4").square, At("e2"));
    EXPECT_EQ(Find(node, kPawn, "d4").square, At("d3"));
    EXPECT_EQ(Find(node, kPawn, "d5").count, 0);
    EXPECT_EQ(Find(node, kPawn, "h4").count, 0);
    EXPECT_EQ(Find(node, kPawn, "h1").count, 0);
    EXPECT_EQ(Find(node, kPawn, "h2").count, 0);
    EXPECT_EQ(Find(node, kPawn, "h8").count, 0);
    EXPECT_EQ(Find(node, kBlackPawn, "a6").square, At("a7"));
    EXPECT_EQ(Find(node, kBlackPawn, "a5").square, At("a7"));
    EXPECT_EQ(Find(node, kBlackPawn, "a4").count, 0);
    EXPECT_EQ(Find(node, kBlackPawn, "a8").count, 0);
}

TEST(FindPosFrom, BlockedDoubleStep_Throws) {
    CGameLine line("4k3/p7/n7/8/8/4n3/4P3/4K3", 3);
    EXPECT_EQ(MessageOf([&] { Find(line.Node(), kPawn, "e4"); }), "Error in FindPosFrom()");
    EXPECT_EQ(MessageOf([&] { Find(line.Node(), kBlackPawn, "a5"); }), "Error in FindPosFrom()");
}

TEST(FindPosFrom, PawnCapture_IsFoundBesideTheSquareBehind) {
    CGameLine line("4k3/8/8/n3n3/1P1P1P2/8/8/4K3", 3);
    const TChessboard& node = line.Node();
    EXPECT_EQ(Find(node, kPawn, "a5").square, At("b4"));
    EXPECT_EQ(Find(node, kPawn, "a5").count, 1);
    EXPECT_EQ(Find(node, kPawn, "e5").count, 2);
    EXPECT_EQ(Find(node, kPawn, "h5").count, 0);
}

TEST(FindPosFrom, EnPassant_IsFoundAfterTheDoubleStep) {
    CGameLine line("4k3/3p4/8/2P1P3/8/8/7P/4K3", 9);
    EXPECT_EQ(Find(line.Node(), kPawn, "d6").count, 0);
    line.Play("h2h3");
    line.Play("d7d5");
    EXPECT_EQ(Find(line.Node(), kPawn, "d6").count, 2);
    line.Play("h3h4");
    EXPECT_EQ(Find(line.Node(), kBlackPawn, "h3").count, 0);
    line.Play("e8e7");
    EXPECT_EQ(Find(line.Node(), kPawn, "d6").count, 0);
}

TEST(FindPosFrom, PawnBehindItsOwnDoubleStep_IsAPlainStep) {
    CGameLine line("4k3/8/8/8/8/3P4/4P3/4K3", 9);
    line.Play("e2e4");
    EXPECT_EQ(Find(line.Node(), kWhitePawn, "e5").square, At("e4"));
    EXPECT_EQ(Find(line.Node(), kWhitePawn, "e5").count, 1);
}

TEST(FindPosFrom, UnknownKind_Throws) {
    CGameLine line(kStartPosition, 3);
    for (const int figure : {0, 3, 5, 6, 7, 9, 20, 31, kWhite | 0, kBlack | 3})
        EXPECT_EQ(MessageOf([&] { Find(line.Node(), figure, "e4"); }), "Error in FindPosFrom()")
            << figure;
}

TEST(FindPosFrom, SquareOutsideTheBoard_Throws) {
    CGameLine line(kStartPosition, 3);
    int count = 0;
    for (const int to : {-1, 64, 255})
        EXPECT_EQ(MessageOf([&] { FindPosFrom(line.Node(), kKnight, to, &count); }),
                  "Error in FindPosFrom()");
}

}  // namespace
}  // namespace quillmere
