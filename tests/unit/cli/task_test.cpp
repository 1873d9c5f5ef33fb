#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/task.h"
#include "core/chess_exception.h"
#include "core/notation.h"
#include "core/play_board.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TTask TaskOf(const char* fen, int halfMoves) {
    return MakeTask(ReadPosition(fen), halfMoves);
}

std::vector<std::string> Uci(const std::vector<TMove>& moves) {
    std::vector<std::string> texts;
    for (const TMove move : moves)
        texts.push_back(MoveToUci(move));
    return texts;
}

using TTexts = std::vector<std::string>;

TEST(MakeTask, SideAndLength_DecideWhoMates) {
    EXPECT_FALSE(TaskOf("8/8/8/8/8/Q7/4p3/5k1K", 9).isSwapped);
    EXPECT_FALSE(TaskOf("8/8/8/8/8/Q7/4p3/5k1K w", 9).isSwapped);
    EXPECT_TRUE(TaskOf("8/8/8/8/8/Q7/4p3/5k1K b", 9).isSwapped);
    EXPECT_FALSE(TaskOf("8/8/8/8/8/Q7/4p3/5k1K b", 8).isSwapped);
    EXPECT_THROW(TaskOf("8/8/8/8/8/Q7/4p3/5k1K w", 8), CUsageException);
    EXPECT_THROW(TaskOf("8/8/8/8/8/Q7/4p3/5k1K", 8), CUsageException);
    // Without a side white is to move, and black's king is in check.
    EXPECT_THROW(TaskOf("8/8/8/8/8/8/8/Q4k1K", 3), ChessException);
}

TEST(RunTask, BlackMates_IsToldInHisSquares) {
    const char* white = "8/8/8/8/8/Q7/4p3/5k1K w - -";
    const char* black = "5K1k/4P3/q7/8/8/8/8/8 b - -";
    TTaskRequest request;
    request.wantAllKeys = true;
    request.wantTries = true;
    const TTaskOutcome one = RunTask(TaskOf(white, 9), request);
    const TTaskOutcome two = RunTask(TaskOf(black, 9), request);
    EXPECT_EQ(one.result.verdict, ESolveVerdict::kProvedMate);
    EXPECT_EQ(two.result.verdict, ESolveVerdict::kProvedMate);
    EXPECT_EQ(Uci(one.result.keys), TTexts{"a3f8"});
    EXPECT_EQ(Uci(two.result.keys), TTexts{"a6f1"});
    EXPECT_EQ(one.result.tries.size(), two.result.tries.size());
    // The main line is legal in the user's own position and ends in mate.
    const TPosition position = ReadPosition(black);
    const auto line = WriteLine(position.board, true, two.result.mainLine);
    ASSERT_EQ(line.size(), 9U);
    EXPECT_EQ(line.back().check, "#");
}

TEST(RunTask, MateDefence_NamesTheDefencesThatHold) {
    // Only the promotion to a knight holds.
    TTaskRequest request;
    request.wantAllKeys = true;
    const TTaskOutcome outcome = RunTask(TaskOf("8/8/8/8/8/1KN5/2p1Q3/k7 b - -", 2), request);
    EXPECT_EQ(outcome.result.verdict, ESolveVerdict::kProvedNoMate);
    EXPECT_EQ(Uci(outcome.result.defences), TTexts{"c2c1n"});
}

TEST(RunTask, NodeLimit_IsTheSameInEveryRun) {
    const TTask task = TaskOf("8/Bk3p1p/1P3p2/KP2n2p/1P1p4/1Pp2p2/B1P5/7B w - -", 539);
    TTaskRequest request;
    request.nodes = 20000;
    const TTaskOutcome one = RunTask(task, request);
    const TTaskOutcome two = RunTask(task, request);
    EXPECT_EQ(one.result.verdict, ESolveVerdict::kLimit);
    EXPECT_EQ(one.result.nodes, two.result.nodes);
    EXPECT_EQ(one.result.madeMoves, two.result.madeMoves);
}

TEST(RunTaskThread, TimeLimit_StopsTheSearch) {
    const TTask task = TaskOf("8/Bk3p1p/1P3p2/KP2n2p/1P1p4/1Pp2p2/B1P5/7B w - -", 539);
    TTaskRequest request;
    request.seconds = 0.3;
    int told = 0;
    u64 lastNodes = 0;
    const TTaskOutcome outcome = RunTask(task, request, [&](const TTaskProgress& progress) {
        ++told;
        EXPECT_GE(progress.nodes, lastNodes);
        EXPECT_LE(progress.number, progress.count);
        lastNodes = progress.nodes;
    });
    EXPECT_EQ(outcome.result.verdict, ESolveVerdict::kLimit);
    ASSERT_FALSE(outcome.result.passes.empty());
    EXPECT_EQ(outcome.result.passes.back().verdict, ESolveVerdict::kLimit)
        << "the pass that was cut off ended for the same reason";
    EXPECT_FALSE(outcome.isInterrupted);
    EXPECT_GE(told, 1);
}

// A mate in 6, solved within a moment.
constexpr const char* kLongTask = "8/4p2p/nn6/2p2N2/8/8/4NK2/7k w - -";
constexpr u64 kRoom = u64{16} << 20;

TEST(RunTask, LongTask_TellsTheFiguresOfItsRegister) {
    CTaskRegister solved(kRoom, {});
    TTaskRequest request;
    request.solved = &solved;
    const TTaskOutcome withIt = RunTask(TaskOf(kLongTask, 11), request);
    ASSERT_TRUE(withIt.registerFigures);
    EXPECT_GT(withIt.registerFigures->elements, 0U);
    EXPECT_EQ(withIt.registerFigures->byteLimit, kRoom);
    request.solved = nullptr;
    const TTaskOutcome without = RunTask(TaskOf(kLongTask, 11), request);
    EXPECT_FALSE(without.registerFigures);
    EXPECT_EQ(Uci(without.result.keys), Uci(withIt.result.keys));
    EXPECT_GT(without.result.nodes, withIt.result.nodes);
}

TEST(RunTask, ClearRegister_DecidesWhetherEarlierPositionsHelp) {
    CTaskRegister solved(kRoom, {});
    TTaskRequest request;
    request.solved = &solved;
    const u64 first = RunTask(TaskOf(kLongTask, 11), request).result.nodes;
    EXPECT_EQ(RunTask(TaskOf(kLongTask, 11), request).result.nodes, first);
    request.clearRegister = false;
    EXPECT_LT(RunTask(TaskOf(kLongTask, 11), request).result.nodes, first);
}

TEST(RunTask, IncoherentRegister_IsAFault) {
    CTaskRegister solved(kRoom, {});
    TTaskRequest request;
    request.solved = &solved;
    const TTask task = TaskOf(kLongTask, 11);
    RunTask(task, request);
    TAggregatedTemporaryChessboardRegister& store = *solved.ForHalfMoves(11);
    store.Insert(11, task.board, true);
    store.Insert(11, task.board, false);
    ASSERT_GT(store.IncoherentElements(), 0U);
    try {
        RunTask(task, request);
        FAIL() << "an answer from a register that contradicts itself";
    } catch (const ChessException& fault) {
        EXPECT_EQ(fault.Id(), EMessage::kRegisterIncoherent);
        EXPECT_EQ(ExitCodeOfFault(fault), kExitFault);
    }
}

TEST(WriteLine, BlackBegins_WithItsNumber) {
    const TPosition position = ReadPosition("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b");
    const auto line =
        WriteLine(position.board, true, {MakeMove(52, 36), MakeMove(6, 21), MakeMove(57, 42)});
    EXPECT_EQ(NumberedLine(line, true), "1...e7-e5 2.Ng1-f3 Nb8-c6");
}

TEST(WriteLine, ChecksAndMates_AreMarked) {
    const TPosition position = ReadPosition("7k/5Q2/6K1/8/8/8/8/8 w");
    const auto mate = WriteMove(position.board, false, MakeMove(53, 54));
    EXPECT_EQ(mate.text + mate.check, "Qf7-g7#");
    const auto check = WriteMove(position.board, false, MakeMove(53, 45));
    EXPECT_EQ(check.text + check.check, "Qf7-f6+");
}

TEST(WriteLine, IllegalMove_IsAFault) {
    const TPosition position = ReadPosition("4r2k/8/8/8/8/8/4N3/4K3 w");
    EXPECT_THROW(WriteMove(position.board, false, MakeMove(12, 18)), ChessException);
}

TEST(WritePosition, IsTheNormalisedFen) {
    EXPECT_EQ(WritePosition(ReadPosition("r3k2r/8/8/8/8/8/8/4K2R b")),
              "r3k2r/8/8/8/8/8/8/4K2R b Kkq - 0 1");
    EXPECT_TRUE(ReadPosition("4k3/8/8/8/8/8/8/4K2R w - -").NeedsCastlingNote());
    EXPECT_TRUE(ReadPosition("4k3/8/8/8/8/8/8/4K3 w - e3").NeedsCastlingNote());
    EXPECT_FALSE(ReadPosition("4k3/8/8/8/8/8/8/4K2R w K -").NeedsCastlingNote());
}

TEST(VerdictWord, IsAlwaysOneOfFive) {
    EXPECT_EQ(VerdictWord(ESolveVerdict::kProvedMate), "mate");
    EXPECT_EQ(VerdictWord(ESolveVerdict::kProvedNoMate), "no mate");
    EXPECT_EQ(VerdictWord(ESolveVerdict::kDoubt), "doubtful");
    EXPECT_EQ(VerdictWord(ESolveVerdict::kStopped), "stopped");
    EXPECT_EQ(VerdictWord(ESolveVerdict::kLimit), "limit");
}

}  // namespace
}  // namespace quillmere
