#include "core/chess_exception.h"
#include "core/legality.h"
#include "search/sort_indication.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::MoveOf;
using test::SquareOf;
using test::TextOfMoves;

SortIndication Parsed(std::string_view text) {
    SortIndication indication;
    ParseSortIndication(indication, text);
    return indication;
}

TSortIndications ParsedList(std::string_view text) {
    TSortIndications indications;
    ParseSortIndications(indications, text);
    return indications;
}

// Reading

struct TParseCase {
    const char* text;
    SortIndication expected;
};

TEST(ParseSortIndication, EveryForm_IsRead) {
    const TParseCase cases[] = {
        {"d3", {.to = 19}},
        {"Kd3", {.figure = kWhiteKing, .to = 19}},
        {"kd3", {.figure = kWhiteKing, .to = 19}},
        {"bc4", {.figure = kWhiteBishop, .to = 26}},
        {"Pe4", {.figure = kWhitePawn, .to = 28}},
        {"a1-a2", {.from = 0, .to = 8}},
        {"Qa1-a2", {.figure = kWhiteQueen, .from = 0, .to = 8}},
        {"a1:a2", {.from = 0, .to = 8, .captureKind = 1}},
        {"a1>a2", {.from = 0, .to = 8, .captureKind = 0}},
        {":a2", {.to = 8, .captureKind = 1}},
        {">a2", {.to = 8, .captureKind = 0}},
        {"-a2", {.to = 8}},
        {"R:a2", {.figure = kWhiteRook, .to = 8, .captureKind = 1}},
        {"Qd1-h5+", {.figure = kWhiteQueen, .from = 3, .to = 39, .checkKind = 1}},
        {"Qd1-h5++", {.figure = kWhiteQueen, .from = 3, .to = 39, .checkKind = 2}},
        {"h5 +", {.to = 39, .checkKind = 1}},
        {"e8Q", {.to = 60, .promotion = kQueen}},
        {"e7-e8n+", {.from = 52, .to = 60, .checkKind = 1, .promotion = kKnight}},
        {"~Ra1", {.figure = kWhiteRook, .to = 0, .negated = true}},
        {"~12.Qd1:h5",
         {.figure = kWhiteQueen,
          .from = 3,
          .to = 39,
          .captureKind = 1,
          .moveNumber = 12,
          .negated = true}},
        {" ~ 12. Qd1:h5 ",
         {.figure = kWhiteQueen,
          .from = 3,
          .to = 39,
          .captureKind = 1,
          .moveNumber = 12,
          .negated = true}},
        {"1.Kd3", {.figure = kWhiteKing, .to = 19, .moveNumber = 1}},
        {"0.Kd3", {.figure = kWhiteKing, .to = 19}},
        {"32767.d3", {.to = 19, .moveNumber = 32767}},
        {"0-0", {.from = 4, .to = 6, .captureKind = 0}},
        {"0-0-0", {.from = 4, .to = 2, .captureKind = 0}},
        {"~3.0-0-0+",
         {.from = 4, .to = 2, .captureKind = 0, .checkKind = 1, .moveNumber = 3, .negated = true}},
    };
    for (const TParseCase& c : cases)
        EXPECT_TRUE(Parsed(c.text) == c.expected)
            << c.text << " is " << SortIndicationToText(Parsed(c.text));
}

void ExpectRefused(std::string_view text, EMessage id, const std::string& english) {
    SortIndication indication = {.figure = 99, .from = 98, .to = 97, .negated = true};
    const SortIndication before = indication;
    try {
        ParseSortIndication(indication, text);
        ADD_FAILURE() << "read: " << text;
    } catch (const ChessException& fault) {
        EXPECT_EQ(fault.Id(), id) << text << ": " << fault.what();
        EXPECT_EQ(fault.what(), english);
    }
    EXPECT_TRUE(indication == before) << text;
}

TEST(ParseSortIndication, EmptyText_HasItsMessage) {
    for (const char* text : {"", " ", "\t \r\n"})
        ExpectRefused(
            text, EMessage::kEmptySortIndication, "Invalid description of SortIndication");
    EXPECT_EQ(MessageText(EMessage::kEmptySortIndication, ELanguage::kPolish),
              "Niepoprawny opis SortIndication");
}

TEST(ParseSortIndication, BadText_IsToldWithTheText) {
    for (const char* text :
         {"1.",      "1",     "K",      "Ka",      "a",        "~",
          "+",       "++",    "a9",     "i1",      "Xd3",      "a1-",
          "a1-b",    "0",     "0-",     "0-1",     "0-0-",     "0-0-0-0",
          "1.0-0-1", "K0-0",  "a-b2",   "a1:",     "--a1",     "1...Kd3",
          ".Kd3",    "x.Kd3", "-1.Kd3", "1 2.Kd3", "32768.d3", "99999999999999999999.d3",
          "e7-e8K",  "e8P",   "e8x",    "1.2",     "~1.~d3",   "a1--a2",
          "0-0Q",    "Kd3."})
        ExpectRefused(text,
                      EMessage::kBadSortIndication,
                      "Invalid description of SortIndication: " + std::string(text));
    try {
        Parsed("  q ");
    } catch (const ChessException& fault) {
        EXPECT_EQ(fault.Text(ELanguage::kPolish), "Niepoprawny opis SortIndication: q");
    }
}

TEST(ParseSortIndication, SomethingLeft_IsTooLong) {
    for (const char* text : {"Kd3 Kd4", "a1-a2-a3", "e7-e8Qx", "e7-e8 Q", "d3+++", "d3!", "d31"})
        ExpectRefused(text,
                      EMessage::kLongSortIndication,
                      "Move description too long (note that moves should be separated with a "
                      "comma or semicolon)");
}

TEST(ParseSortIndication, BytesAboveAscii_AreRefusedLikeAnyOther) {
    ExpectRefused("\xc3\xb3"
                  "1",
                  EMessage::kBadSortIndication,
                  "Invalid description of SortIndication: \xc3\xb3"
                  "1");
}

TEST(SortIndicationToText, ReadsAsTheSameRule) {
    for (const char* text : {"d3",
                             "Kd3",
                             "Qa1-a2",
                             "a1:a2",
                             "a1>a2",
                             ":a2",
                             ">a2",
                             "R:a2",
                             "Qd1-h5++",
                             "e7-e8N+",
                             "~12.Qd1:h5",
                             "e1>g1"})
        EXPECT_EQ(SortIndicationToText(Parsed(text)), text);
    EXPECT_EQ(SortIndicationToText(Parsed("0-0-0")), "e1>c1");
}

// Lists

TEST(ParseSortIndications, Commas_SeparateWhereThereIsOne) {
    const TSortIndications list = ParsedList("1.Kd3, ~Qa1-a2 ,1.d4");
    ASSERT_EQ(list.byMoveNumber.size(), 2u);
    ASSERT_EQ(list.byMoveNumber.at(1).size(), 2u);
    EXPECT_TRUE(list.byMoveNumber.at(1)[0] == Parsed("1.Kd3"));
    EXPECT_TRUE(list.byMoveNumber.at(1)[1] == Parsed("1.d4"));
    EXPECT_TRUE(list.byMoveNumber.at(0)[0] == Parsed("~Qa1-a2"));
    EXPECT_TRUE(list.hasGeneralIndications);
}

TEST(ParseSortIndications, Semicolons_SeparateWhereThereIsNoComma) {
    const TSortIndications list = ParsedList("1.Kd3; 2.Qa1-a2");
    EXPECT_EQ(list.byMoveNumber.size(), 2u);
    EXPECT_FALSE(list.hasGeneralIndications);
}

TEST(ParseSortIndications, BothSigns_TheSemicolonBelongsToARule) {
    EXPECT_THROW(ParsedList("Kd3, Kd4; Kd5"), ChessException);
}

TEST(ParseSortIndications, BadRule_LeavesTheListAsItWas) {
    TSortIndications list = ParsedList("1.Kd3");
    const TSortIndications before = list;
    for (const char* text : {"", "Kd4,", ",Kd4", "Kd4,,Kd5", "Kd4; ;Kd5", "Kd4, nonsense"}) {
        EXPECT_THROW(ParseSortIndications(list, text), ChessException) << text;
        EXPECT_TRUE(list == before) << text;
    }
    ParseSortIndications(list, "1.Kd4");
    EXPECT_EQ(list.byMoveNumber.at(1).size(), 2u) << "added to what is there";
}

// Matching

bool Matches(const std::string& fen, const std::string& move, const std::string& text) {
    CSearchBoard board(fen, 3);
    return MatchesSortIndication(board.Root(), MoveOf(move), Parsed(text));
}

constexpr const char* kMany = "3r3k/4P1pp/8/8/2n5/8/1P3PPP/R3K2R";

TEST(MatchesSortIndication, FigureAndSquares_MustFitWhereNamed) {
    EXPECT_TRUE(Matches(kMany, "a1a4", "a4"));
    EXPECT_TRUE(Matches(kMany, "a1a4", "Ra4"));
    EXPECT_TRUE(Matches(kMany, "a1a4", "Ra1-a4"));
    EXPECT_FALSE(Matches(kMany, "a1a4", "Qa4"));
    EXPECT_FALSE(Matches(kMany, "a1a4", "a5"));
    EXPECT_FALSE(Matches(kMany, "a1a4", "h1-a4"));
    EXPECT_TRUE(Matches(kMany, "f2f3", "Pf3"));
}

TEST(MatchesSortIndication, CaptureKind_TellsCapturesFromOthers) {
    EXPECT_TRUE(Matches(kMany, "e7d8q", "e7:d8"));
    EXPECT_FALSE(Matches(kMany, "e7d8q", "e7>d8"));
    EXPECT_TRUE(Matches(kMany, "e7d8q", "e7-d8"));
    EXPECT_FALSE(Matches(kMany, "a1a4", ":a4"));
    EXPECT_TRUE(Matches(kMany, "a1a4", ">a4"));
}

TEST(MatchesSortIndication, EnPassant_IsACapture) {
    CSearchBoard board("7k/3p4/8/4P3/8/8/8/K7", 4);
    ASSERT_EQ(board.Play("d7d5"), kMoveMade);
    EXPECT_TRUE(MatchesSortIndication(board.Node(), MoveOf("e5d6"), Parsed(":d6")));
    EXPECT_FALSE(MatchesSortIndication(board.Node(), MoveOf("e5d6"), Parsed(">d6")));
}

TEST(MatchesSortIndication, Promotion_MustFitWhereNamed) {
    EXPECT_TRUE(Matches(kMany, "e7e8n", "e8N"));
    EXPECT_FALSE(Matches(kMany, "e7e8q", "e8N"));
    EXPECT_TRUE(Matches(kMany, "e7e8q", "e8"));
    EXPECT_FALSE(Matches(kMany, "a1a4", "a4Q"));
}

TEST(MatchesSortIndication, Castling_IsAMoveOfTheKing) {
    EXPECT_TRUE(Matches(kMany, "e1g1", "0-0"));
    EXPECT_TRUE(Matches(kMany, "e1c1", "0-0-0"));
    EXPECT_FALSE(Matches(kMany, "e1g1", "0-0-0"));
}

TEST(MatchesSortIndication, CheckKind_AsksForCheckOrForDoubleCheckAndMate) {
    // Rb8 checks, Ra8 mates.
    const char* fen = "6k1/5ppp/8/8/8/8/1R6/R3K3";
    EXPECT_TRUE(Matches(fen, "a1a8", "a8+"));
    EXPECT_TRUE(Matches(fen, "a1a8", "a8++")) << "mate";
    EXPECT_FALSE(Matches(fen, "a1a7", "a7+"));
    EXPECT_TRUE(Matches(fen, "a1a7", "a7"));
    const char* flight = "6k1/5pp1/8/8/8/8/8/R3K3";
    EXPECT_TRUE(Matches(flight, "a1a8", "a8+"));
    EXPECT_FALSE(Matches(flight, "a1a8", "a8++")) << "a check that is no mate";
    const char* battery = "4k3/8/8/8/4N3/8/8/4RK2";
    EXPECT_TRUE(Matches(battery, "e4f6", "f6++")) << "double check";
    EXPECT_FALSE(Matches(battery, "e4g5", "g5++"));
    EXPECT_TRUE(Matches(battery, "e4g5", "g5+")) << "discovered";
}

TEST(MatchesSortIndication, PinnedFigure_GivesNoCheck) {
    EXPECT_FALSE(Matches("4k3/4r3/8/8/8/8/4R3/4K3", "e2a2", "a2+"));
}

TEST(MatchesSortIndication, MoveNumber_IsThatOfTheNode) {
    CSearchBoard board("7k/8/8/8/8/8/8/RR5K", 5);
    EXPECT_TRUE(MatchesSortIndication(board.Root(), MoveOf("b1b7"), Parsed("1.b7")));
    EXPECT_FALSE(MatchesSortIndication(board.Root(), MoveOf("b1b7"), Parsed("2.b7")));
    ASSERT_EQ(board.Play("b1b7"), kMoveMade);
    ASSERT_EQ(board.Play("h8g8"), kMoveMade);
    EXPECT_TRUE(MatchesSortIndication(board.Node(), MoveOf("a1a8"), Parsed("2.a8++")))
        << "deeper nodes look at checks too";
    EXPECT_FALSE(MatchesSortIndication(board.Node(), MoveOf("a1a8"), Parsed("1.a8++")));
    EXPECT_TRUE(MatchesSortIndication(board.Node(), MoveOf("a1a8"), Parsed("a8")));
}

TEST(MatchesSortIndication, BlackBegins_WhitesFirstMoveIsNumberTwo) {
    CSearchBoard board("7k/8/8/8/8/8/8/RR5K", 4);
    ASSERT_EQ(board.Play("h8g8"), kMoveMade);
    EXPECT_TRUE(MatchesSortIndication(board.Node(), MoveOf("b1b7"), Parsed("2.b7")));
}

// Order

std::string Ordered(const std::string& rules, const std::string& fen = "7k/8/8/8/8/8/8/R6K") {
    CSearchBoard board(fen, 5);
    TMoveList list;
    for (const char* move : {"a1a2", "a1a3", "a1a8", "h1g1", "h1h2"})
        list[list.count++] = MoveOf(move);
    ApplySortIndications(
        board.Root(), list, rules.empty() ? TSortIndications{} : ParsedList(rules));
    return TextOfMoves(list.moves, list.count);
}

TEST(ApplySortIndications, NoRule_LeavesTheList) {
    EXPECT_EQ(Ordered(""), "a1a2 a1a3 a1a8 h1g1 h1h2");
    EXPECT_EQ(Ordered("Qa4"), "a1a2 a1a3 a1a8 h1g1 h1h2");
}

TEST(ApplySortIndications, Matches_ComeFirstInTheOrderOfTheRules) {
    EXPECT_EQ(Ordered("h2, a3"), "h1h2 a1a3 a1a2 a1a8 h1g1");
    EXPECT_EQ(Ordered("a3, h2"), "a1a3 h1h2 a1a2 a1a8 h1g1");
}

TEST(ApplySortIndications, NegatedMatches_ComeLast) {
    EXPECT_EQ(Ordered("~a2"), "a1a3 a1a8 h1g1 h1h2 a1a2");
    EXPECT_EQ(Ordered("~a3, ~a2, h2"), "h1h2 a1a8 h1g1 a1a2 a1a3") << "equals keep their order";
}

TEST(ApplySortIndications, FirstRuleThatMatches_Decides) {
    EXPECT_EQ(Ordered("h2, ~Kh2, a8"), "h1h2 a1a8 a1a2 a1a3 h1g1");
    EXPECT_EQ(Ordered("~Kh2, h2"), "a1a2 a1a3 a1a8 h1g1 h1h2");
}

TEST(ApplySortIndications, RulesOfTheMove_GoBeforeThoseForAnyMove) {
    EXPECT_EQ(Ordered("a3, 1.h2"), "h1h2 a1a3 a1a2 a1a8 h1g1");
    EXPECT_EQ(Ordered("a3, 2.h2"), "a1a3 a1a2 a1a8 h1g1 h1h2");
}

TEST(ApplySortIndications, Check_IsAskedOfEachMove) {
    EXPECT_EQ(Ordered("Ra8+, Ra3+"), "a1a8 a1a2 a1a3 h1g1 h1h2");
}

TEST(ApplySortIndications, EmptyList_StaysEmpty) {
    CSearchBoard board("7k/8/8/8/8/8/8/R6K", 5);
    TMoveList list;
    ApplySortIndications(board.Root(), list, ParsedList("a3"));
    EXPECT_EQ(list.count, 0);
}

TEST(ApplySortIndications, WholeMovesTravel) {
    CSearchBoard board("7k/8/8/8/8/8/8/R6K", 5);
    TMoveList list;
    list[list.count++] = TMove{0, 8, 0, 7};
    list[list.count++] = TMove{0, 16, kMoveMarkEvent, 9};
    ApplySortIndications(board.Root(), list, ParsedList("a3"));
    EXPECT_EQ(list[0].flags, kMoveMarkEvent);
    EXPECT_EQ(list[0].enPassant, 9);
    EXPECT_EQ(list[1].enPassant, 7);
}

// Expected order

std::vector<TMove> Moves(const std::vector<std::string>& texts) {
    std::vector<TMove> moves;
    for (const std::string& text : texts)
        moves.push_back(MoveOf(text));
    return moves;
}

TMoveList ListOf(const std::vector<std::string>& texts) {
    TMoveList list;
    for (const std::string& text : texts)
        list[list.count++] = MoveOf(text);
    return list;
}

std::string Checked(const std::vector<std::string>& expected,
                    const std::vector<std::string>& list,
                    ELanguage language = ELanguage::kEnglish) {
    std::vector<TMove> moves = Moves(expected);
    MarkExpectedSortWhiteMoves(moves, ListOf(list));
    const std::string text = CheckExpectedSortWhiteMoves(moves, language);
    EXPECT_EQ(TextOfMoves(moves.data(), static_cast<int>(moves.size())),
              TextOfMoves(Moves(expected).data(), static_cast<int>(expected.size())))
        << "the marks are off again";
    return text;
}

TEST(CheckExpectedSortWhiteMoves, AllInPlace_IsAnEmptyText) {
    EXPECT_EQ(Checked({"a1a2", "a1a3"}, {"a1a2", "a1a3", "a1a4"}), "");
    EXPECT_EQ(Checked({}, {"a1a2"}), "");
    EXPECT_EQ(Checked({"h8h7"}, {"h8h7"}), "");
}

TEST(CheckExpectedSortWhiteMoves, FirstEntryOutOfPlace_IsNamed) {
    EXPECT_EQ(Checked({"a1a2", "a1a3", "a1a4"}, {"a1a2", "a1a4", "a1a3"}),
              "ExpectedSortWhiteMoves failed: move 2");
    EXPECT_EQ(Checked({"a1a2", "a1a3", "a1a4"}, {"a1a3", "a1a2", "a1a4"}),
              "ExpectedSortWhiteMoves failed: move 1");
    EXPECT_EQ(Checked({"a1a2", "a1a3"}, {"a1a2"}), "ExpectedSortWhiteMoves failed: move 2");
    EXPECT_EQ(Checked({"a1a2"}, {}), "ExpectedSortWhiteMoves failed: move 1");
    EXPECT_EQ(Checked({"e7e8q"}, {"e7e8r"}), "ExpectedSortWhiteMoves failed: move 1");
}

TEST(MarkExpectedSortWhiteMoves, Mark_IsSixtyFourOnBothSquares) {
    std::vector<TMove> moves = Moves({"a1a2", "a1a4"});
    MarkExpectedSortWhiteMoves(moves, ListOf({"a1a2", "a1a3"}));
    EXPECT_EQ(moves[0].from, SquareOf("a1") + 64);
    EXPECT_EQ(moves[0].to, SquareOf("a2") + 64);
    EXPECT_EQ(moves[1].from, SquareOf("a1"));
    MarkExpectedSortWhiteMoves(moves, ListOf({"a1a2", "a1a4"}));
    EXPECT_EQ(moves[0].from, SquareOf("a1") + 64) << "marked once";
    EXPECT_EQ(moves[1].to, SquareOf("a4") + 64);
}

}  // namespace
}  // namespace quillmere
