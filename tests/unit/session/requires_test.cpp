#include "session/regression_lines.h"
#include "session/requires.h"
#include "tests/support/problems.h"

#include <gtest/gtest.h>
#include <vector>

namespace quillmere {
namespace {

// Knows the tables of one kind of material, by the count of its men.
class CTables final : public ITableAvailability {
public:
    explicit CTables(int men) : m_men(men) {}
    bool UseTablesFor(const TChessboard& board) override {
        int men = 0;
        for (const u8 figure : board.m_board)
            men += figure != 0 ? 1 : 0;
        ++asked;
        return men == m_men;
    }
    void ReleaseUsed() override {}

    int asked = 0;

private:
    int m_men;
};

class CTablebase final : public ITablebaseService {
public:
    explicit CTablebase(bool answers) : m_answers(answers) {}
    bool HasVerdict(const TChessboard& /*board*/) override {
        ++asked;
        return m_answers;
    }

    int asked = 0;

private:
    bool m_answers;
};

TEST(RequiresBoard, Letters_StandFromTheNinthSquareOnWithTheKingsAtTheirPlaces) {
    const auto board = RequiresBoard("Qrp");
    ASSERT_TRUE(board.has_value());
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 expected = square == 8    ? kWhiteQueen
                            : square == 9  ? kBlackRook
                            : square == 10 ? kBlackPawn
                            : square == 61 ? kWhiteKing
                            : square == 63 ? kBlackKing
                                           : u8{0};
        EXPECT_EQ(board->m_board[square], expected) << square;
    }
    EXPECT_EQ(board->m_counts[kWhiteQueens], 1);
}

TEST(RequiresBoard, PolishLetters_AreRead) {
    EXPECT_EQ(RequiresBoard("Hw")->m_board[8], kWhiteQueen);
    EXPECT_EQ(RequiresBoard("Hw")->m_board[9], kBlackRook);
}

TEST(RequiresBoard, LettersThatMakeNoBoard_GiveNone) {
    EXPECT_FALSE(RequiresBoard("Qx").has_value());
    EXPECT_FALSE(RequiresBoard("KQ").has_value());
    EXPECT_FALSE(RequiresBoard("Q1").has_value());
    EXPECT_FALSE(RequiresBoard(std::string(60, 'N')).has_value());
}

TEST(TableClauses, WithoutClauses_NothingIsAskedOrTold) {
    CNoTables none;
    const auto problem = test::DirectMate(1, test::kMateInOne, 1);
    const TClauseResult result = CheckTableClauses(*problem, true, none);
    EXPECT_FALSE(result.isSkipped);
    EXPECT_TRUE(result.allSolutions);
    EXPECT_EQ(result.lines, "");
}

TEST(TableClauses, MissingTables_SkipTheProblem) {
    CNoTables none;
    const auto problem = test::DirectMate(1, test::kMateInOne, 1);
    problem->requires_ = {"Q"};
    const TClauseResult result = CheckTableClauses(*problem, false, none);
    EXPECT_TRUE(result.isSkipped);
    EXPECT_EQ(result.lines, kRequiresLine);
}

TEST(TableClauses, EachOfSeveralClauses_MustHold) {
    CTables tables(3);
    const auto problem = test::DirectMate(1, test::kMateInOne, 1);
    problem->requires_ = {"Q"};
    EXPECT_FALSE(CheckTableClauses(*problem, false, tables).isSkipped);
    problem->requires_ = {"Q", "Rr"};
    EXPECT_TRUE(CheckTableClauses(*problem, false, tables).isSkipped);
}

TEST(TableClauses, MissingTablesForAllSolutions_TurnTheRunIntoOneForTheFirst) {
    CNoTables none;
    const auto problem = test::DirectMate(1, test::kMateInOne, 1);
    problem->allSolutionsRequires = {"Q", "R"};
    const TClauseResult result = CheckTableClauses(*problem, true, none);
    EXPECT_FALSE(result.isSkipped);
    EXPECT_FALSE(result.allSolutions);
    EXPECT_EQ(result.lines, kAllSolutionsRequiresLine);
    const TClauseResult first = CheckTableClauses(*problem, false, none);
    EXPECT_EQ(first.lines, "");
}

TEST(TablebaseClauses, ServiceWithoutAVerdict_SkipsOrGivesUpAllSolutions) {
    CNoTablebase none;
    const auto problem = test::DirectMate(1, test::kMateInOne, 1);
    problem->flags |= kProblemRequiresSyzygy;
    EXPECT_TRUE(CheckTablebaseClauses(*problem, true, none).isSkipped);
    EXPECT_EQ(CheckTablebaseClauses(*problem, true, none).lines, kRequiresSyzygyLine);
    problem->flags = kProblemAllSolutionsRequiresSyzygy;
    const TClauseResult result = CheckTablebaseClauses(*problem, true, none);
    EXPECT_FALSE(result.isSkipped);
    EXPECT_FALSE(result.allSolutions);
    EXPECT_EQ(result.lines, kAllSolutionsRequiresSyzygyLine);
}

TEST(TablebaseClauses, ServiceWithAVerdict_SatisfiesBoth) {
    CTablebase service(true);
    const auto problem = test::DirectMate(1, test::kMateInOne, 1);
    problem->flags |= kProblemRequiresSyzygy | kProblemAllSolutionsRequiresSyzygy;
    const TClauseResult result = CheckTablebaseClauses(*problem, true, service);
    EXPECT_FALSE(result.isSkipped);
    EXPECT_TRUE(result.allSolutions);
    EXPECT_EQ(result.lines, "");
    EXPECT_EQ(service.asked, 1);
}

TEST(TablebaseClauses, PositionOfMoreThanSevenMen_IsNotAskedFor) {
    CTablebase service(false);
    const auto problem = test::DirectMate(1, "k7/pppppp2/8/8/8/8/8/K7", 2);
    problem->flags |= kProblemRequiresSyzygy;
    EXPECT_FALSE(CheckTablebaseClauses(*problem, true, service).isSkipped);
    EXPECT_EQ(service.asked, 0);
}

}  // namespace
}  // namespace quillmere
