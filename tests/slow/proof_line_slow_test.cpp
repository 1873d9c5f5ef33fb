// A mate-defence task that the proof-number search decides, and whose line no full search would end.
#include "core/platform/thread.h"
#include "search/proof_pass.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

namespace quillmere {
namespace {

TEST(ProofLineSlow, OfAMateDefenceTask_ComesFromTheProof) {
    const reference::TPosition position =
        reference::FromFen("1n1k4/3pN3/p1pP4/P1P1pN2/KBP1p3/P1P1P3/8/8 b - - 0 1");
    TChessboard board;
    bridge::FillBoard(board, position);
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(u64{256} << 20));
    TSearchContext context;
    context.tempRegister = &store;
    TSolveRequest request;
    request.halfMoves = 34;
    request.proofMoves = 30'000'000;
    request.nodeLimit = 3'000'000;
    TSolveResult result;
    RunOnThreadWithStack(SolveStackBytes(request.halfMoves),
                         [&] { result = Solve(board, request, context); });
    ASSERT_EQ(result.verdict, ESolveVerdict::kProvedMate);
    ASSERT_EQ(result.passes.size(), 1U);
    ASSERT_FALSE(context.isNodeLimitReached.load());
    std::vector<reference::TPlainMove> line;
    std::transform(
        result.mainLine.begin(), result.mainLine.end(), std::back_inserter(line), bridge::ToPlain);
    const auto fault = reference::FaultOfLine(position, line, request.halfMoves);
    ASSERT_FALSE(fault.has_value()) << *fault;
}

}  // namespace
}  // namespace quillmere
