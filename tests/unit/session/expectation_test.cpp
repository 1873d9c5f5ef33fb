#include "session/expectation.h"
#include "tests/support/problems.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::MoveOf;

std::vector<TMove> Moves(std::initializer_list<const char*> texts) {
    std::vector<TMove> moves;
    for (const char* text : texts)
        moves.push_back(MoveOf(text));
    return moves;
}

TEngineOutcome Done(std::initializer_list<const char*> keys) {
    TEngineOutcome outcome;
    outcome.end = EEngineEnd::kDone;
    outcome.result.keys = Moves(keys);
    outcome.result.verdict =
        keys.size() > 0 ? ESolveVerdict::kProvedMate : ESolveVerdict::kProvedNoMate;
    outcome.result.isComplete = true;
    return outcome;
}

TStatement Stated(std::initializer_list<const char*> answer) {
    TStatement statement;
    statement.isAnswerStated = true;
    statement.answer = Moves(answer);
    return statement;
}

TStatement VariantOnly(const char* move) {
    TStatement statement;
    statement.variantMove = MoveOf(move);
    return statement;
}

std::string TextOf(const std::vector<TMove>& moves) {
    return test::TextOfMoves(moves.data(), static_cast<int>(moves.size()));
}

TEST(Expectation, FoundAndStated_AreComparedAsSets) {
    const struct {
        const char* name;
        TStatement statement;
        TEngineOutcome outcome;
        ETestVerdict verdict;
        EResultLine line;
        const char* found;
        const char* expected;
    } kRows[] = {
        {"the same",
         Stated({"a1a2"}),
         Done({"a1a2"}),
         ETestVerdict::kAsExpected,
         EResultLine::kOk,
         "a1a2",
         "a1a2"},
        {"in another order",
         Stated({"b1b2", "a1a2"}),
         Done({"a1a2", "b1b2"}),
         ETestVerdict::kAsExpected,
         EResultLine::kOk,
         "a1a2 b1b2",
         "a1a2 b1b2"},
        {"stated twice",
         Stated({"a1a2", "a1a2"}),
         Done({"a1a2"}),
         ETestVerdict::kAsExpected,
         EResultLine::kOk,
         "a1a2",
         "a1a2"},
        {"no solution stated and none found",
         Stated({}),
         Done({}),
         ETestVerdict::kAsExpected,
         EResultLine::kOk,
         "",
         ""},
        {"another move",
         Stated({"a1a2"}),
         Done({"a1a3"}),
         ETestVerdict::kDifferent,
         EResultLine::kFailedLists,
         "a1a3",
         "a1a2"},
        {"another promotion",
         Stated({"a7a8q"}),
         Done({"a7a8r"}),
         ETestVerdict::kDifferent,
         EResultLine::kFailedLists,
         "a7a8r",
         "a7a8q"},
        {"one too many",
         Stated({"a1a2"}),
         Done({"b1b2", "a1a2"}),
         ETestVerdict::kDifferent,
         EResultLine::kFailedLists,
         "a1a2 b1b2",
         "a1a2"},
        {"one missing",
         Stated({"b1b2", "a1a2"}),
         Done({"a1a2"}),
         ETestVerdict::kDifferent,
         EResultLine::kFailedLists,
         "a1a2",
         "a1a2 b1b2"},
        {"a solution where none is stated",
         Stated({}),
         Done({"a1a2"}),
         ETestVerdict::kDifferent,
         EResultLine::kFailedLists,
         "a1a2",
         ""},
        {"none where one is stated",
         Stated({"a1a2"}),
         Done({}),
         ETestVerdict::kDifferent,
         EResultLine::kFailedLists,
         "",
         "a1a2"},
        {"the move of the main variant",
         VariantOnly("a1a2"),
         Done({"a1a2"}),
         ETestVerdict::kAsExpected,
         EResultLine::kOk,
         "a1a2",
         "a1a2"},
        {"more than the move of the main variant",
         VariantOnly("a1a2"),
         Done({"a1a2", "b1b2"}),
         ETestVerdict::kDifferent,
         EResultLine::kFailedLists,
         "a1a2 b1b2",
         "a1a2"},
        {"nothing stated",
         TStatement(),
         Done({"b1b2", "a1a2"}),
         ETestVerdict::kNotStated,
         EResultLine::kProblem,
         "a1a2 b1b2",
         ""},
        {"nothing stated and nothing found",
         TStatement(),
         Done({}),
         ETestVerdict::kNotStated,
         EResultLine::kProblem,
         "",
         ""},
    };
    for (const auto& row : kRows) {
        const TJudgement judgement = JudgeOutcome(row.statement, row.outcome);
        EXPECT_EQ(judgement.verdict, row.verdict) << row.name;
        EXPECT_EQ(judgement.line, row.line) << row.name;
        EXPECT_EQ(TextOf(judgement.found), row.found) << row.name;
        EXPECT_EQ(TextOf(judgement.expected), row.expected) << row.name;
    }
}

TEST(Expectation, AllSolutionsNotAllDecided_AreNotCalledRight) {
    TStatement statement = Stated({"a1a2", "b1b2"});
    statement.areAllWanted = true;
    TEngineOutcome outcome = Done({"a1a2", "b1b2"});
    outcome.result.isComplete = false;
    EXPECT_EQ(JudgeOutcome(statement, outcome).undecided, EUndecided::kNotAllDecided);
    // The problem itself ends the search there.
    outcome.stopAfterKeys = 2;
    EXPECT_EQ(JudgeOutcome(statement, outcome).verdict, ETestVerdict::kAsExpected);
    outcome.stopAfterKeys = 3;
    EXPECT_EQ(JudgeOutcome(statement, outcome).verdict, ETestVerdict::kUndecided);
    // A solution that is not stated is a difference, whatever else there may be.
    statement.answer = Moves({"a1a2"});
    EXPECT_EQ(JudgeOutcome(statement, outcome).verdict, ETestVerdict::kDifferent);
    statement.areAllWanted = false;
    EXPECT_EQ(JudgeOutcome(statement, Done({"a1a2"})).verdict, ETestVerdict::kAsExpected);
}

TEST(Expectation, Answer_GoesBeforeTheMainVariant) {
    TStatement statement = Stated({"b1b2"});
    statement.variantMove = MoveOf("a1a2");
    EXPECT_EQ(JudgeOutcome(statement, Done({"b1b2"})).verdict, ETestVerdict::kAsExpected);
    EXPECT_EQ(JudgeOutcome(statement, Done({"a1a2"})).verdict, ETestVerdict::kDifferent);
}

TEST(Expectation, OrderOfFirstMoves_IsComparedFirst) {
    TStatement statement = Stated({"a1a2"});
    statement.isOrderStated = true;
    TEngineOutcome outcome = Done({"a1a2"});
    EXPECT_EQ(JudgeOutcome(statement, outcome).line, EResultLine::kOk);
    outcome.expectedSortFailure = "not as expected";
    const TJudgement failed = JudgeOutcome(statement, outcome);
    EXPECT_EQ(failed.line, EResultLine::kFailedOrder);
    EXPECT_EQ(failed.verdict, ETestVerdict::kDifferent);
    EXPECT_EQ(failed.text, "not as expected");
}

TEST(Expectation, OrderOnly_EndsTheTestWhateverWasFound) {
    TStatement statement;
    statement.isOrderStated = statement.isOrderOnly = true;
    const TJudgement judgement = JudgeOutcome(statement, Done({"h1h2"}));
    EXPECT_EQ(judgement.line, EResultLine::kOrderOk);
    EXPECT_EQ(judgement.verdict, ETestVerdict::kAsExpected);
}

TEST(Expectation, OrderOnly_IsJudgedOfAStoppedSolveOnceTheOrderIsKnown) {
    TStatement statement;
    statement.isOrderStated = statement.isOrderOnly = true;
    TEngineOutcome outcome = Done({});
    outcome.end = EEngineEnd::kStopped;
    EXPECT_EQ(JudgeOutcome(statement, outcome).verdict, ETestVerdict::kUndecided);
    outcome.result.firstMoves = Moves({"a1a2"});
    EXPECT_EQ(JudgeOutcome(statement, outcome).line, EResultLine::kOrderOk);
    outcome.expectedSortFailure = "other";
    EXPECT_EQ(JudgeOutcome(statement, outcome).line, EResultLine::kFailedOrder);
    statement.isOrderOnly = false;
    EXPECT_EQ(JudgeOutcome(statement, outcome).verdict, ETestVerdict::kUndecided);
}

TEST(Expectation, WhatDidNotComeToItsEnd_IsNeitherRightNorWrong) {
    const TStatement kStatements[] = {
        Stated({"a1a2"}), Stated({}), VariantOnly("a1a2"), TStatement()};
    for (const TStatement& statement : kStatements) {
        for (const auto& keys : {Done({"a1a2"}), Done({}), Done({"h1h2"})}) {
            TEngineOutcome limited = keys;
            limited.end = EEngineEnd::kStopped;
            limited.isTimeLimitHit = true;
            TEngineOutcome stopped = keys;
            stopped.end = EEngineEnd::kStopped;
            TEngineOutcome recorded = keys;
            recorded.isFromRecord = true;
            TEngineOutcome refused = keys;
            refused.end = EEngineEnd::kTooMany;
            const std::pair<TEngineOutcome, EUndecided> kRows[] = {
                {limited, EUndecided::kTimeLimit},
                {stopped, EUndecided::kStopped},
                {recorded, EUndecided::kFromRecord},
                {refused, EUndecided::kStopped}};
            for (const auto& [outcome, reason] : kRows) {
                const TJudgement judgement = JudgeOutcome(statement, outcome);
                EXPECT_EQ(judgement.verdict, ETestVerdict::kUndecided);
                EXPECT_EQ(judgement.line, EResultLine::kNone);
                EXPECT_EQ(judgement.undecided, reason);
            }
        }
    }
}

TEST(Expectation, NothingFoundWhereLinesWereLeftOut_IsUndecided) {
    TEngineOutcome outcome = Done({});
    outcome.result.verdict = ESolveVerdict::kDoubt;
    for (const TStatement& statement : {Stated({"a1a2"}), Stated({}), TStatement()}) {
        EXPECT_EQ(JudgeOutcome(statement, outcome).verdict, ETestVerdict::kUndecided);
        EXPECT_EQ(JudgeOutcome(statement, outcome).undecided, EUndecided::kLinesLeftOut);
    }
}

TEST(Expectation, BadPosition_IsFaultyWithItsText) {
    TEngineOutcome outcome;
    outcome.end = EEngineEnd::kBadPosition;
    outcome.faultText = "no king";
    const TJudgement judgement = JudgeOutcome(Stated({"a1a2"}), outcome);
    EXPECT_EQ(judgement.verdict, ETestVerdict::kFaulty);
    EXPECT_EQ(judgement.text, "no king");
}

TEST(Statement, OfAProblem_ReadsFlagsAnswerAndMainVariant) {
    const auto problem = test::DirectMate(1, test::kMateInOne, 1, {"h1h8"});
    EXPECT_TRUE(StatementOf(*problem).isAnswerStated);
    EXPECT_FALSE(StatementOf(*problem).variantMove.has_value());
    test::AddMainVariant(*problem, {"h1h2", "a8b8"});
    ASSERT_TRUE(StatementOf(*problem).variantMove.has_value());
    EXPECT_TRUE(MovesEqual(*StatementOf(*problem).variantMove, MoveOf("h1h2")));
    problem->variants.begin()->second.doesBlackBegin = true;
    EXPECT_FALSE(StatementOf(*problem).variantMove.has_value());
    problem->flags = kProblemHasExpectedSort | kProblemExpectedSortOnly;
    EXPECT_TRUE(StatementOf(*problem).isOrderStated);
    EXPECT_TRUE(StatementOf(*problem).isOrderOnly);
    EXPECT_FALSE(StatementOf(*problem).isAnswerStated);
}

}  // namespace
}  // namespace quillmere
