#include "core/chess_exception.h"
#include "search/answers.h"
#include "tests/support/boards.h"
#include "tests/support/search_board.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace quillmere {
namespace {

using test::CSearchBoard;
using test::MoveOf;

// Answer counts

const TAnswersMap kMap = {
    {2, {MoveOf("a1a2"), MoveOf("e7e8q")}}, {-1, {MoveOf("b1b2")}}, {7, {MoveOf("a1a2")}}};

TEST(GetAnswerCountFromMap, IsTheSmallestCountUnderWhichTheMoveIsFiled) {
    EXPECT_EQ(GetAnswerCountFromMap(MoveOf("a1a2"), kMap), 2);
    EXPECT_EQ(GetAnswerCountFromMap(MoveOf("b1b2"), kMap), -1);
    EXPECT_EQ(GetAnswerCountFromMap(MoveOf("e7e8q"), kMap), 2);
}

TEST(GetAnswerCountFromMap, MarksAndFourthByte_DoNotCount) {
    TMove marked = MoveOf("b1b2");
    marked.flags |= kMoveMarkEvent | kMoveMarkForced;
    marked.enPassant = 99;
    EXPECT_EQ(GetAnswerCountFromMap(marked, kMap), -1);
}

void ExpectNotThere(TMove move, const TAnswersMap& map) {
    try {
        GetAnswerCountFromMap(move, map);
        ADD_FAILURE() << "found";
    } catch (const ChessException& fault) {
        EXPECT_STREQ(fault.what(), "Error in GetAnswerCountFromMap!");
    }
}

TEST(GetAnswerCountFromMap, MoveThatIsNotThere_Throws) {
    ExpectNotThere(MoveOf("e7e8r"), kMap);  // another promotion
    ExpectNotThere(MoveOf("e7e8"), kMap);
    ExpectNotThere(MoveOf("a1a3"), kMap);
    ExpectNotThere(MoveOf("b1a2"), kMap);
    ExpectNotThere(MoveOf("a1a2"), {});
}

// Defence text

std::string TextOf(const std::string& fen, ELanguage language = ELanguage::kEnglish) {
    CSearchBoard board(fen, 2);
    board.Root().m_nMoves = 0;
    return GetDefenceText(board.Root(), language);
}

TEST(GetDefenceText, NodeWithHalfMovesLeft_IsEmpty) {
    CSearchBoard board("k7/8/8/8/8/8/8/R3K3", 2);
    EXPECT_EQ(GetDefenceText(board.Root(), ELanguage::kEnglish), "");
    board.Root().m_nMoves = 1;
    EXPECT_EQ(GetDefenceText(board.Root(), ELanguage::kEnglish), "");
}

TEST(GetDefenceText, NoCheck_SaysOnlyThatThereIsNoMate) {
    EXPECT_EQ(TextOf("7k/8/8/8/8/8/8/R3K3"), "Last move, no mate. ");
    EXPECT_EQ(TextOf("7k/8/8/8/8/8/8/R3K3", ELanguage::kPolish), "Ostatni ruch, brak mata. ");
}

TEST(GetDefenceText, OneEvasion_IsADefence) {
    const char* fen = "k7/8/1K6/8/8/8/8/R7";
    EXPECT_EQ(TextOf(fen), "Last move, no mate. Defence: Ka8-b8");
    EXPECT_EQ(TextOf(fen, ELanguage::kPolish), "Ostatni ruch, brak mata. Obrona: Ka8-b8");
    EXPECT_EQ(TextOf(fen, ELanguage::kUkrainian), "Останній хід, мату немає. Захист: Ka8-b8");
}

TEST(GetDefenceText, SeveralEvasions_AreDefencesWithCommas) {
    EXPECT_EQ(TextOf("k7/8/8/8/8/8/8/R3K3"), "Last move, no mate. Defences: Ka8-b7, Ka8-b8");
    EXPECT_EQ(TextOf("k7/8/8/8/8/8/8/R3K3", ELanguage::kPolish),
              "Ostatni ruch, brak mata. Obrony: Ka8-b7, Ka8-b8");
}

TEST(GetDefenceText, NoEvasion_IsAnEmptyListOfDefences) {
    EXPECT_EQ(TextOf("k7/1Q6/1K6/8/8/8/8/8"), "Last move, no mate. Defences: ");
}

TEST(GetDefenceText, CapturesOfFigureAndPawn_AreMarked) {
    EXPECT_EQ(TextOf("k7/1Q6/8/8/8/8/8/4K3"), "Last move, no mate. Defence: Ka8:b7");
    EXPECT_EQ(TextOf("7k/5Npp/8/8/8/3b4/8/4K2R"), "Last move, no mate. Defence: Kh8-g8");
    EXPECT_EQ(TextOf("6rk/5Npp/6p1/8/8/1b6/8/4K3"), "Last move, no mate. Defence: Bb3:f7");
    EXPECT_EQ(TextOf("6rk/6pp/5pNp/8/8/8/8/4K3"), "Last move, no mate. Defence: h7:g6");
}

TEST(GetDefenceText, PinnedFigures_DoNotDefend) {
    // The rook could go between on b8, were it not for the bishop on the long diagonal.
    EXPECT_EQ(TextOf("k6R/1r6/8/8/8/8/8/4K2B"), "Last move, no mate. Defence: Ka8-a7");
    EXPECT_EQ(TextOf("k6R/1r6/8/8/8/8/8/4K3"), "Last move, no mate. Defences: Ka8-a7, Rb7-b8");
}

TEST(GetDefenceText, EnPassantCapture_IsMarkedAsACapture) {
    // The pawn's double step gives check; black's pawn takes it in passing.
    CSearchBoard board("8/8/8/2k5/2p5/8/1P6/4K3", 3);
    ASSERT_EQ(board.Play("b2b4"), kMoveMade);
    board.Node().m_nMoves = 0;
    const std::string text = GetDefenceText(board.Node(), ELanguage::kEnglish);
    EXPECT_NE(text.find("c4:b3"), std::string::npos) << text;
    EXPECT_NE(text.find("Kc5:b4"), std::string::npos) << text;
}

// Tree

std::string Printed(const TAnswerTree& tree, int indent = 0) {
    std::ostringstream out;
    PrintAnswers(tree, out, indent);
    return out.str();
}

TEST(PrintAnswers, EveryLevel_IsOneBlankDeeper) {
    const TAnswerTree tree = {MoveOf("a1a2"),
                              {{MoveOf("h8g8"), {{MoveOf("e7e8q"), {}}}}, {MoveOf("h8h7"), {}}}};
    EXPECT_EQ(Printed(tree), "a1-a2\n h8-g8\n  e7-e8\n h8-h7\n");
    EXPECT_EQ(Printed(tree, 2), "  a1-a2\n   h8-g8\n    e7-e8\n   h8-h7\n");
}

TEST(PrintAnswers, BareNode_OnlyCarriesItsChildren) {
    EXPECT_EQ(Printed({}), "");
    const TAnswerTree tree = {
        {}, {{MoveOf("a1a2"), {{{}, {{MoveOf("h8g8"), {}}}}}}, {MoveOf("a1a3"), {}}}};
    EXPECT_EQ(Printed(tree), "a1-a2\n h8-g8\na1-a3\n");
}

TEST(PrintAnswers, StubOfTheRegister_HasItsOwnLine) {
    const TAnswerTree tree = {MoveOf("a1a2"), {{kMoveFromRegister, {}}}};
    EXPECT_EQ(Printed(tree), "a1-a2\n From temporary register\n");
}

TEST(PrintAnswers, OneZeroSquare_IsAMove) {
    EXPECT_EQ(Printed({MoveOf("a1b1"), {}}), "a1-b1\n");
    EXPECT_EQ(Printed({MoveOf("b1a1"), {}}), "b1-a1\n");
    EXPECT_EQ(Printed({MakeMove(9, 10), {}}), "b2-c2\n");
}

}  // namespace
}  // namespace quillmere
