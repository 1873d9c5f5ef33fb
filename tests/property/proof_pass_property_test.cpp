// The pass of the proof-number search: what it decides of the first moves, and that a request with it
// is answered as one without it, whatever the word and the threads. Run under ThreadSanitizer too.
#include "core/legality.h"
#include "core/platform/thread.h"
#include "core/thread_context.h"
#include "search/first_moves.h"
#include "search/pause.h"
#include "search/proof_pass.h"
#include "search/solve.h"
#include "tests/support/families.h"
#include "tests/support/given_word.h"
#include "tests/support/proof_root.h"
#include "tests/support/random_positions.h"
#include "tests/support/remembering_judge.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using bridge::TJudgement;
using reference::TPosition;
using test::CGivenWord;
using test::CProofRoot;
using test::CRandom;
using test::kManyMoves;

constexpr std::uint64_t kJudgeMoves = 3'000'000;

u32 DrawWord(CRandom& random) {
    const std::vector<int> bits = test::UsedBits();
    u32 word = 0;
    for (int i = random.Between(1, 3); i > 0; --i)
        word |=
            u32{1} << bits[static_cast<std::size_t>(random.Below(static_cast<int>(bits.size())))];
    return word;
}

TPosition DrawPosition(CRandom& random, int halfMoves, int mostMen) {
    reference::TRecipe recipe =
        reference::RandomMateRecipe(random, random.Between(3, mostMen), (halfMoves + 1) / 2);
    recipe.isWhiteToMove = halfMoves % 2 != 0;
    return reference::RandomPosition(random, recipe);
}

// Short tasks, one pass

struct TRow {
    int halfMoves;
    int cases;
};

void PrintTo(const TRow& row, std::ostream* out) {
    *out << row.halfMoves;
}

class ProofPass : public ::testing::TestWithParam<TRow> {};

bool IsIn(const std::vector<reference::TPlainMove>& moves, TMove move) {
    return std::find(moves.begin(), moves.end(), bridge::ToPlain(move)) != moves.end();
}

void CheckPass(const TPosition& position,
               int halfMoves,
               const TJudgement& judgement,
               const TChessboard* word,
               u64 madeMoves) {
    CProofRoot proof(position, halfMoves, word);
    const TChessboard before = proof.Root();
    const bool isWhite = position.isWhiteToMove;
    TMoveList list;
    list.count = GetLegalMoves(proof.Root(), list.moves);
    ISolveObserver observer;
    CFirstMoves moves(list, {isWhite, 0}, observer);
    const auto search = MakeProofSearch(proof.Root());
    RunProofPass(*search, proof.Root(), moves, kSecondProofPassName, madeMoves);

    ASSERT_EQ(proof.Root().Heur, before.Heur);
    ASSERT_EQ(proof.Root().HeurParams, before.HeurParams);
    ASSERT_EQ(proof.Root().m_pass, before.m_pass);
    const auto& solutions = isWhite ? judgement.keys : judgement.defences;
    int found = 0;
    int undecided = 0;
    for (const CFirstMoves::TDecision& decision : moves.Decisions()) {
        undecided += decision.isDecided ? 0 : 1;
        if (!decision.isDecided)
            continue;
        const bool isSolution = decision.isMate == isWhite;
        ASSERT_EQ(isSolution, IsIn(solutions, decision.move))
            << reference::ToText(bridge::ToPlain(decision.move));
        ASSERT_EQ(decision.passIndex, 0);
        found += isSolution ? 1 : 0;
    }
    const std::vector<TPassRecord> passes = moves.Passes();
    ASSERT_EQ(passes.size(), 1U);
    ASSERT_EQ(passes.front().name, kSecondProofPassName);
    ASSERT_FALSE(passes.front().isUnderWord);
    ASSERT_EQ(passes.front().madeMoves, proof.Thread().madeMoves);
    if (madeMoves != kManyMoves)
        return;
    // White's moves are all decided; of black's that hold one is found.
    if (isWhite || judgement.isMate)
        ASSERT_EQ(undecided, 0);
    else
        ASSERT_GE(found, 1);
}

TEST_P(ProofPass, DecidesFirstMovesAsTheJudgeDoes) {
    const auto [halfMoves, cases] = GetParam();
    CRandom random(91'000'000 + static_cast<u64>(halfMoves));
    for (int i = 0; i < bridge::CasesOf(cases); ++i) {
        const TPosition position = DrawPosition(random, halfMoves, 8);
        const auto judgement = bridge::JudgeFar(position, halfMoves, kJudgeMoves);
        if (!judgement)
            continue;
        TChessboard board;
        bridge::FillBoard(board, position);
        CGivenWord word(DrawWord(random), board, random);
        const TChessboard* given = random.Chance(60) ? &word.Node() : nullptr;
        const u64 limit =
            random.Chance(30) ? static_cast<u64>(random.Between(1, 3000)) : kManyMoves;
        SCOPED_TRACE(reference::ToFen(position) + ", " + std::to_string(halfMoves) + " half-moves");
        ASSERT_NO_FATAL_FAILURE(CheckPass(position, halfMoves, *judgement, given, limit));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Property,
    ProofPass,
    ::testing::Values(
        TRow{1, 300}, TRow{2, 500}, TRow{3, 800}, TRow{4, 300}, TRow{5, 200}, TRow{6, 60}),
    [](const auto& row) { return std::to_string(row.param.halfMoves) + "HalfMoves"; });

// Whole requests, long enough for the pass

struct TAnswer {
    ESolveVerdict verdict = ESolveVerdict::kStopped;
    bool isComplete = false;
    std::string keys;
    std::string defences;
    std::string tries;
    std::vector<reference::TPlainMove> line;
    std::vector<TPassRecord> passes;
    std::vector<int> keyPasses;
};

TAnswer Ask(const TPosition& position, const TSolveRequest& request, u64 nodeLimit = 0) {
    TChessboard board;
    bridge::FillBoard(board, position);
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(u64{32} << 20));
    TSearchContext context;
    context.tempRegister = &store;
    TSolveRequest limited = request;
    limited.nodeLimit = nodeLimit;
    TSolveResult result;
    RunOnThreadWithStack(SolveStackBytes(request.halfMoves),
                         [&] { result = Solve(board, limited, context); });
    EXPECT_EQ(store.IncoherentElements(), 0U);
    TAnswer answer;
    answer.verdict = result.verdict;
    answer.isComplete = result.isComplete;
    answer.keys = reference::ToText(bridge::ToSortedPlain(result.keys));
    answer.defences = reference::ToText(bridge::ToSortedPlain(result.defences));
    for (const TTry& aTry : result.tries)
        answer.tries += reference::ToText(bridge::ToPlain(aTry.move)) + " " +
                        reference::ToText(bridge::ToPlain(aTry.refutation)) + ", ";
    std::transform(result.mainLine.begin(),
                   result.mainLine.end(),
                   std::back_inserter(answer.line),
                   bridge::ToPlain);
    answer.passes = result.passes;
    answer.keyPasses = result.keyPasses;
    return answer;
}

TEST(ProofPassRequests, AreAnsweredAsWithoutThePass) {
    CRandom random(92'000'000);
    int mates = 0;
    int others = 0;
    int byThePass = 0;
    for (int i = 0; i < bridge::CasesOf(80); ++i) {
        const int halfMoves = random.Chance(70) ? kProofRoot : kProofRoot + 1;
        const TPosition position = DrawPosition(random, halfMoves, 4);
        SCOPED_TRACE(reference::ToFen(position) + ", " + std::to_string(halfMoves) + " half-moves");
        TSolveRequest request;
        request.halfMoves = static_cast<u16>(halfMoves);
        request.wantAllKeys = true;
        request.wantTries = random.Chance(20);
        const TAnswer plain = Ask(position, request);
        TChessboard board;
        bridge::FillBoard(board, position);
        CGivenWord word(DrawWord(random), board, random);
        request.heuristics = random.Chance(40) ? &word.Node() : nullptr;
        request.threads = random.Between(1, 3);
        request.proofMoves = random.Chance(30) ? 20'000 : 2'000'000;
        const TAnswer proved = Ask(position, request);
        ASSERT_EQ(proved.verdict, plain.verdict);
        ASSERT_EQ(proved.isComplete, plain.isComplete);
        ASSERT_EQ(proved.keys, plain.keys);
        ASSERT_EQ(proved.defences, plain.defences);
        ASSERT_EQ(proved.tries, plain.tries);
        ASSERT_EQ(proved.passes.front().name, kFirstProofPassName);
        const bool isMate = plain.verdict == ESolveVerdict::kProvedMate;
        ASSERT_EQ(proved.line.empty(), !isMate);
        if (isMate) {
            const auto fault = reference::FaultOfLine(position, proved.line, halfMoves);
            ASSERT_FALSE(fault.has_value()) << *fault;
        }
        ++(isMate ? mates : others);
        byThePass += IsProofPass(proved.passes.back().name) ? 1 : 0;
    }
    if (!bridge::kIsSanitized) {
        EXPECT_GT(mates, 10);
        EXPECT_GT(others, 10);
        EXPECT_GT(byThePass, 10);
    }
}

TEST(ProofPassRequests, SayNothingFalseWhenTheirNodesAreSpent) {
    CRandom random(93'000'000);
    int limits = 0;
    for (int i = 0; i < bridge::CasesOf(60); ++i) {
        const TPosition position = DrawPosition(random, kProofRoot, 4);
        SCOPED_TRACE(reference::ToFen(position));
        TSolveRequest request;
        request.halfMoves = kProofRoot;
        request.wantAllKeys = true;
        request.wantMainLine = false;
        const TAnswer plain = Ask(position, request);
        request.proofMoves = 2'000'000;
        request.threads = random.Between(1, 2);
        const TAnswer cut = Ask(position, request, static_cast<u64>(random.Between(1, 20'000)));
        limits += cut.isComplete ? 0 : 1;
        ASSERT_TRUE(!cut.isComplete || cut.verdict == plain.verdict);
        ASSERT_TRUE(!cut.isComplete || cut.keys == plain.keys);
        ASSERT_TRUE(cut.verdict == ESolveVerdict::kLimit || cut.verdict == plain.verdict);
    }
    EXPECT_TRUE(bridge::kIsSanitized || limits > 10);
}

// The user has forbidden it.
TEST(ProofPassRequests, DoNotSearchWithoutAWordWhenThatIsOff) {
    CRandom random(94'000'000);
    for (int i = 0; i < bridge::CasesOf(20); ++i) {
        const TPosition position = DrawPosition(random, kProofRoot, 4);
        TChessboard board;
        bridge::FillBoard(board, position);
        CGivenWord word(DrawWord(random), board, random);
        word.Settings().RunPassWithoutHeuristics = false;
        word.Settings().LetRelaxHeuristics = false;
        TSolveRequest request;
        request.halfMoves = kProofRoot;
        request.wantAllKeys = true;
        request.wantMainLine = false;
        request.heuristics = &word.Node();
        request.proofMoves = 200'000;
        ASSERT_NE(Ask(position, request).verdict, ESolveVerdict::kProvedNoMate)
            << reference::ToFen(position);
    }
}

}  // namespace
}  // namespace quillmere
