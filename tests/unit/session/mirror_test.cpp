#include "heuristics/parameter_words.h"
#include "session/mirror.h"
#include "session/parked_line.h"
#include "session/run_state.h"
#include "tests/support/problems.h"

#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace quillmere {
namespace {

using test::MoveOf;
using test::SquareOf;

// Everything of a problem that its file side holds, as text.
std::string Dump(const TChessProblem& problem) {
    std::string text(reinterpret_cast<const char*>(problem.position.get()), sizeof(TChessboard));
    const auto add = [&](const std::vector<TMove>& moves) {
        text += "|" + test::TextOfMoves(moves.data(), static_cast<int>(moves.size()));
    };
    add(problem.answer);
    add(problem.expectedSortWhiteMoves);
    add(problem.SeaSnakeOnlyAfter);
    add(problem.PlayedMoves());
    for (const auto& [heuristic, parameters] : problem.heuristicOverrides) {
        text += "|" + std::to_string(heuristic);
        for (const std::string& parameter : parameters)
            text += "," + parameter;
    }
    for (const auto& [name, variant] : problem.variants) {
        text += "|" + name;
        for (const TVariantMove& move : variant.moves)
            text += "," + move.text + test::TextOfMove(move.move);
    }
    for (const auto& [number, list] : problem.sortIndications.byMoveNumber) {
        for (const SortIndication& indication : list)
            text += "|" + SortIndicationToText(indication);
    }
    text +=
        "|" + problem.description + "|" + std::to_string(problem.solvedRecord.needsLoad) +
        std::string(reinterpret_cast<const char*>(problem.solvedRecord.board.bytes), kSquareCount);
    text += std::to_string(problem.KeyLineFile) + "," +
            std::to_string(problem.KeyDiagonalSquares[0]) + "," +
            std::to_string(problem.KeyDiagonalSquares[1]);
    text.append(reinterpret_cast<const char*>(problem.ZugzwangBoard), kSquareCount);
    return text + std::to_string(problem.flags) + "," + std::to_string(problem.maxHalfMoves);
}

std::unique_ptr<TChessProblem> FullProblem() {
    auto problem = test::DirectMate(5, "k7/2p5/2K5/8/8/8/5P2/6R1", 3, {"g1g8", "f2f4"});
    problem->expectedSortWhiteMoves = {MoveOf("g1g8"), MoveOf("c6b6")};
    test::AddMainVariant(*problem, {"g1g8", "a8a7"});
    ParseSortIndications(problem->sortIndications, "1.Rg1-g8+; ~Kb6");
    problem->heuristicOverrides[SH_DONTLETFIGUREUNBLOCK] = {"EFF", "A2", "c7"};
    problem->heuristicOverrides[SH_KEYLINE] = {"A"};
    problem->description = "A study";
    problem->KeyLineFile = 2;
    problem->KeyDiagonalSquares[0] = 0;
    problem->KeyDiagonalSquares[1] = 63;
    problem->SeaSnakeOnlyAfter = {MoveOf("a1b1")};
    problem->ZugzwangBoard[1] = kWhiteKing;
    return problem;
}

TEST(MirrorSquare, File_BecomesSevenMinusFile) {
    EXPECT_EQ(MirrorSquare(static_cast<u8>(SquareOf("a1"))), SquareOf("h1"));
    EXPECT_EQ(MirrorSquare(static_cast<u8>(SquareOf("e5"))), SquareOf("d5"));
    EXPECT_EQ(MirrorSquare(kNoSquare), kNoSquare);
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 image = MirrorSquare(static_cast<u8>(square));
        EXPECT_EQ(FileOf(image), 7 - FileOf(square));
        EXPECT_EQ(RankOf(image), RankOf(square));
    }
}

TEST(MirrorMove, Promotion_Stays) {
    EXPECT_TRUE(MovesEqual(MirrorMove(MoveOf("b7c8n")), MoveOf("g7f8n")));
}

TEST(MirrorText, Squares_AreMirroredAndFigureLettersStay) {
    EXPECT_EQ(MirrorSquaresOfText("Ka1-b2"), "Kh1-g2");
    EXPECT_EQ(MirrorSquaresOfText("Bb2:c3"), "Bg2:f3");
    EXPECT_EQ(MirrorSquaresOfText("e7-e8B"), "d7-d8B");
    EXPECT_EQ(MirrorSquaresOfText("0-0"), "0-0");
    EXPECT_EQ(MirrorSquaresOfText(""), "");
}

TEST(MirrorHeuristics, OnlyWordsThatNamePlacesChange) {
    const struct {
        u32 heuristic;
        const char* word;
        const char* image;
    } kRows[] = {
        {SH_KEYLINE, "A", "H"},
        {SH_KEYLINE, "g", "b"},
        {SH_KEYDIAGONAL, "A1-H8", "H1-A8"},
        {SH_KEYDIAGONAL, "-", "-"},
        {SH_KEYSQUARE, "C3", "F3"},
        {SH_KEYWHITEFIGURE, "d1", "e1"},
        {SH_DONTLEAVEMAINDIAGONAL, "B2", "G2"},
        {SH_DONTLETFIGUREUNBLOCK, "EFF", "EFF"},
        {SH_DONTLETFIGUREUNBLOCK, "a2", "h2"},
        {SH_SEASNAKE, "A5", "H5"},
        {SH_SEASNAKE, "12", "12"},
        {SH_ONECOLORPLAYPOSSIBLE, "WHITESQUARESONLY", "BlackSquaresOnly"},
        {SH_ONECOLORPLAYPOSSIBLE, "BlackSquaresOnly", "WhiteSquaresOnly"},
        {SH_ONECOLORPLAYPOSSIBLE, "SeparatedBlackBishop", "SeparatedBlackBishop"},
        {SH_KEEPKINGONTHEEDGE, "C2", "C2"},
        {SH_KEEPKINGONTHEEDGE, "A", "A"},
        {SH_KEEPKINGWITHINEXTEDGE, "D3", "D3"},
        {SH_FINDFORCEDMATE, "#2", "#2"},
        {SH_KEYLINE, "OFF", "OFF"},
        {SH_KEYSQUARE, "OFF", "OFF"},
    };
    for (const auto& row : kRows)
        EXPECT_EQ(MirrorHeuristicParameter(row.heuristic, row.word), row.image) << row.word;
}

TEST(MirrorPossible, IsNotWhereARightToCastleIsOrWouldArise) {
    const struct {
        const char* name;
        const char* fen;
        bool isPossible;
    } kRows[] = {
        {"no rook", "k7/8/8/8/8/8/8/4K3", true},
        {"white king and rook at home", "k7/8/8/8/8/8/8/4K2R", false},
        {"black king and rook at home", "r3k3/8/8/8/8/8/8/4K3", false},
        {"at home in the image", "k7/8/8/8/8/8/8/R2K4", false},
        {"black at home in the image", "3k3r/8/8/8/8/8/8/K7", false},
        {"a rook of the other colour", "k7/8/8/8/8/8/8/r2K4", true},
        {"no king", "k7/8/8/8/8/8/8/8", false},
    };
    for (const auto& row : kRows)
        EXPECT_EQ(IsMirrorPossible(*test::DirectMate(1, row.fen, 2)), row.isPossible) << row.name;
}

TEST(MirroredProblem, HoldsTheImageOfAllThatNamesSquares) {
    const auto problem = FullProblem();
    const CMirroredProblem mirrored(*problem);
    EXPECT_EQ(problem->position->m_board[SquareOf("h8")], kBlackKing);
    EXPECT_EQ(problem->position->m_board[SquareOf("f6")], kWhiteKing);
    EXPECT_EQ(problem->position->m_board[SquareOf("a8")], 0);
    EXPECT_EQ(problem->position->BlackKingSquare(), SquareOf("h8"));
    EXPECT_EQ(problem->position->m_nMoves, 5);
    EXPECT_EQ(problem->position->m_searchContext, problem.get());
    EXPECT_EQ(problem->currentNode, problem->position.get());
    EXPECT_TRUE(MovesEqual(problem->answer[0], MoveOf("b1b8")));
    EXPECT_TRUE(MovesEqual(problem->answer[1], MoveOf("c2c4")));
    EXPECT_TRUE(MovesEqual(problem->expectedSortWhiteMoves[1], MoveOf("f6g6")));
    const TVariantMove& first = problem->variants.begin()->second.moves[0];
    EXPECT_TRUE(MovesEqual(first.move, MoveOf("b1b8")));
    EXPECT_EQ(first.text, "b1b8");
    EXPECT_EQ(SortIndicationToText(problem->sortIndications.byMoveNumber.at(1)[0]), "1.Rb1-b8+");
    EXPECT_EQ(problem->heuristicOverrides.at(SH_DONTLETFIGUREUNBLOCK),
              (std::set<std::string>{"EFF", "H2", "f7"}));
    EXPECT_EQ(problem->heuristicOverrides.at(SH_KEYLINE), std::set<std::string>{"H"});
    EXPECT_EQ(problem->description, "Mirror: A study");
    EXPECT_EQ(problem->KeyLineFile, 5);
    EXPECT_EQ(problem->KeyDiagonalSquares[0], SquareOf("h1"));
    EXPECT_EQ(problem->ZugzwangBoard[SquareOf("g1")], kWhiteKing);
    EXPECT_TRUE(RunStateOf(*problem).isMirrorRun);
}

TEST(MirroredProblem, GivesEverythingBack) {
    const auto problem = FullProblem();
    const std::string before = Dump(*problem);
    {
        const CMirroredProblem mirrored(*problem);
        EXPECT_NE(Dump(*problem), before);
        ASSERT_TRUE(problem->PlayMove(MoveOf("b1b8")));
    }
    EXPECT_EQ(Dump(*problem), before);
    EXPECT_FALSE(RunStateOf(*problem).isMirrorRun);
    EXPECT_EQ(problem->currentNode, problem->position.get());
}

TEST(MirroredProblem, GivesEverythingBackWhenAnExceptionLeaves) {
    const auto problem = FullProblem();
    const std::string before = Dump(*problem);
    try {
        const CMirroredProblem mirrored(*problem);
        throw std::runtime_error("in the midst");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(Dump(*problem), before);
}

TEST(ParkedLine, PlayedMoves_ComeBackWithTheirNodes) {
    const auto problem = FullProblem();
    ASSERT_TRUE(problem->PlayMove(MoveOf("g1g8")));
    ASSERT_TRUE(problem->PlayMove(MoveOf("a8a7")));
    const std::string before = Dump(*problem);
    TChessboard* const node = problem->currentNode;
    {
        const CParkedLine parked(*problem);
        EXPECT_TRUE(problem->PlayedMoves().empty());
        EXPECT_EQ(problem->currentNode, problem->position.get());
        const CMirroredProblem mirrored(*problem);
        ASSERT_TRUE(problem->PlayMove(MoveOf("b1b8")));
    }
    EXPECT_EQ(Dump(*problem), before);
    EXPECT_EQ(problem->currentNode, node);
    EXPECT_EQ(node->m_parent->m_parent, problem->position.get());
}

}  // namespace
}  // namespace quillmere
