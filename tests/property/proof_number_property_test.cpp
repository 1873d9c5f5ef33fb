// The proof-number search against the judge: what it says of a position, what it leaves in the
// register and in its own table, under any word, any limit and with moves left out.
#include "core/legality.h"
#include "search/mate_search.h"
#include "search/pause.h"
#include "search/proof_number.h"
#include "search/register_access.h"
#include "tests/support/families.h"
#include "tests/support/given_word.h"
#include "tests/support/proof_root.h"
#include "tests/support/random_positions.h"
#include "tests/support/remembering_judge.h"

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

using bridge::CRememberingJudge;
using bridge::TJudgement;
using reference::TPlainMove;
using reference::TPosition;
using test::CGivenWord;
using test::CProofRoot;
using test::CRandom;
using test::kManyMoves;

constexpr std::uint64_t kJudgeMoves = 3'000'000;

bool Holds(const std::vector<TPlainMove>& moves, TMove move) {
    return std::find(moves.begin(), moves.end(), bridge::ToPlain(move)) != moves.end();
}

std::string NameOf(const TPosition& position, int halfMoves) {
    return reference::ToFen(position) + ", " + std::to_string(halfMoves) + " half-moves";
}

// Decided, as the judge decides, and by a move that does it.
::testing::AssertionResult IsTrue(const TProofAnswer& answer, const TJudgement& judgement) {
    const TVerdict expected = judgement.isMate ? kMate : kNoMate;
    if (answer.isLimit || answer.verdict != expected)
        return ::testing::AssertionFailure()
               << "verdict " << static_cast<int>(answer.verdict) << (answer.isLimit ? " open" : "")
               << ", the judge says " << static_cast<int>(expected);
    const std::string move = reference::ToText(bridge::ToPlain(answer.move));
    if (!judgement.keys.empty() && !Holds(judgement.keys, answer.move))
        return ::testing::AssertionFailure() << move << " does not mate";
    if (!judgement.defences.empty() && !Holds(judgement.defences, answer.move))
        return ::testing::AssertionFailure() << move << " does not hold";
    return ::testing::AssertionSuccess();
}

// Random lines from the root, in both worlds: what register and table know of the nodes on them is
// what the judge says.
void ExpectNothingFalse(
    CProofRoot& proof, const TPosition& position, CRandom& random, int walks, int* known) {
    CRememberingJudge judge(kJudgeMoves);
    const u32 word = proof.Root().Heur;
    proof.UseWord(0);
    for (int walk = 0; walk < walks; ++walk) {
        std::deque<TChessboard> line{proof.Root()};
        TPosition at = position;
        while (line.back().m_nMoves > 1) {
            TChessboard& node = line.back();
            TMoveList list;
            list.count = GetLegalMoves(node, list.moves);
            if (list.count == 0)
                break;
            const TMove move = list[random.Below(list.count)];
            TChessboard& child = line.emplace_back(node);
            child.m_parent = &node;
            ASSERT_EQ(node.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move)
                                           : MakeBlackMoveLegal(child, move),
                      kMoveMade);
            at = reference::After(at, bridge::ToPlain(move));
            const int mate = proof.Search().ShortestMate(child);
            try {
                if (mate != 0) {
                    ++*known;
                    ASSERT_TRUE(judge.WhiteMates(at, mate)) << NameOf(at, mate);
                }
                if (!child.IsWhiteToMove() || !MayUseRegister(child))
                    continue;
                const TVerdict verdict = FindInRegister(child);
                if (verdict != kMate && verdict != kNoMate)
                    continue;
                ++*known;
                ASSERT_EQ(judge.WhiteMates(at, child.m_nMoves), verdict == kMate)
                    << NameOf(at, child.m_nMoves);
            } catch (const reference::COutOfMoves&) {
                break;
            }
        }
    }
    EXPECT_EQ(proof.Store().IncoherentElements(), 0U);
    proof.UseWord(word);
}

TPosition DrawPosition(CRandom& random, int halfMoves) {
    const int fullMoves = (halfMoves + 1) / 2;
    const bool isWhite = halfMoves % 2 != 0;
    const auto& families = reference::Families();
    const auto& family =
        families[static_cast<std::size_t>(random.Below(static_cast<int>(families.size())))];
    switch (random.Below(4)) {
    case 0:
        return family.draw(random, isWhite);
    case 1:
        if (isWhite && fullMoves <= family.fullMoves)
            return reference::DrawBeforeMate(random, family, fullMoves);
        break;
    default:
        break;
    }
    reference::TRecipe recipe =
        reference::RandomMateRecipe(random, random.Between(3, 8), fullMoves);
    recipe.isWhiteToMove = isWhite;
    return reference::RandomPosition(random, recipe);
}

struct TRow {
    int halfMoves;
    int cases;
};

void PrintTo(const TRow& row, std::ostream* out) {
    *out << row.halfMoves;
}

std::string NameOfRow(const ::testing::TestParamInfo<TRow>& info) {
    return std::to_string(info.param.halfMoves) + "HalfMoves";
}

class ProofNumber : public ::testing::TestWithParam<TRow> {
protected:
    // Runs `check` on positions that the judge can judge; how many of them had a mate.
    template <class Check>
    std::pair<int, int> ForCases(u64 seed, int share, Check check) {
        const TRow row = GetParam();
        CRandom random(seed + static_cast<u64>(row.halfMoves));
        std::pair<int, int> counts;
        for (int i = 0; i < bridge::CasesOf(row.cases) / share; ++i) {
            const TPosition position = DrawPosition(random, row.halfMoves);
            const std::optional<TJudgement> judgement =
                bridge::JudgeFar(position, row.halfMoves, kJudgeMoves);
            if (!judgement)
                continue;
            ++(judgement->isMate ? counts.first : counts.second);
            SCOPED_TRACE(NameOf(position, row.halfMoves));
            check(position, row.halfMoves, *judgement, random);
            if (::testing::Test::HasFailure())
                break;
        }
        return counts;
    }
};

TEST_P(ProofNumber, DecidesAsTheJudgeAndLeavesNothingFalse) {
    int known = 0;
    const auto [mates, others] = ForCases(
        71'000'000,
        1,
        [&](const TPosition& position,
            int halfMoves,
            const TJudgement& judgement,
            CRandom& random) {
            CProofRoot proof(position, halfMoves);
            const TProofAnswer answer = proof.Search().Search(proof.Root(), kManyMoves);
            ASSERT_TRUE(IsTrue(answer, judgement));
            // The question again is answered from the table alone.
            ASSERT_TRUE(IsTrue(proof.Search().Search(proof.Root(), kManyMoves), judgement));
            ExpectNothingFalse(proof, position, random, 10, &known);
        });
    if (!bridge::kIsSanitized) {
        EXPECT_GT(mates, (mates + others) / 10);
        EXPECT_GT(others, (mates + others) / 10);
        EXPECT_TRUE(known > mates || GetParam().halfMoves < 5);
    }
}

TEST_P(ProofNumber, SmallTablesAndSmallLimitsChangeNoAnswer) {
    ForCases(
        72'000'000,
        4,
        [](const TPosition& position, int halfMoves, const TJudgement& judgement, CRandom& random) {
            CProofRoot small(position, halfMoves, nullptr, 1);
            ASSERT_TRUE(IsTrue(small.Search().Search(small.Root(), kManyMoves), judgement));
            CProofRoot proof(position, halfMoves);
            const u64 limit = static_cast<u64>(random.Between(1, 500));
            TProofAnswer answer;
            int questions = 0;
            do {
                answer = proof.Search().Search(proof.Root(), limit);
                ASSERT_LT(++questions, 200'000) << "limit " << limit;
                ASSERT_TRUE(!answer.isLimit ||
                            (answer.verdict == kDoubtful && answer.move.IsNull()));
            } while (answer.isLimit);
            ASSERT_TRUE(IsTrue(answer, judgement));
        });
}

TEST_P(ProofNumber, CountsAreTheSameTwice) {
    ForCases(73'000'000, 20, [](const TPosition& position, int halfMoves, const auto&, CRandom&) {
        u64 made[2] = {};
        u64 nodes[2] = {};
        for (int i = 0; i < 2; ++i) {
            CProofRoot proof(position, halfMoves);
            proof.Search().Search(proof.Root(), kManyMoves);
            FlushNodeCount(proof.Root());
            made[i] = proof.Thread().madeMoves;
            nodes[i] = proof.Context().nodeCount.load();
        }
        ASSERT_EQ(made[0], made[1]);
        ASSERT_EQ(nodes[0], nodes[1]);
    });
}

TEST_P(ProofNumber, UnderAWordAMateIsAMateAndNothingElseIsSaid) {
    const std::vector<int> bits = test::UsedBits();
    int known = 0;
    int found = 0;
    ForCases(
        74'000'000,
        1,
        [&](const TPosition& position,
            int halfMoves,
            const TJudgement& judgement,
            CRandom& random) {
            TChessboard board;
            bridge::FillBoard(board, position);
            u32 heur = 0;
            for (int i = random.Between(1, 3); i > 0; --i)
                heur |=
                    u32{1}
                    << bits[static_cast<std::size_t>(random.Below(static_cast<int>(bits.size())))];
            CGivenWord word(heur, board, random);
            CProofRoot proof(position, halfMoves, &word.Node());
            const TProofAnswer answer = proof.Search().Search(proof.Root(), kManyMoves);
            ASSERT_FALSE(answer.isLimit);
            ASSERT_NE(answer.verdict, kNoMate);
            ASSERT_TRUE(answer.verdict != kMate || IsTrue(answer, judgement));
            found += answer.verdict == kMate ? 1 : 0;
            ExpectNothingFalse(proof, position, random, 5, &known);
            // What was learned under the word changes nothing without it.
            proof.UseWord(0);
            const TProofAnswer plain = proof.Search().Search(proof.Root(), kManyMoves);
            ASSERT_FALSE(plain.isLimit);
            ASSERT_TRUE(IsTrue(plain, judgement)) << "after " << std::hex << heur;
            ExpectNothingFalse(proof, position, random, 5, &known);
        });
    if (!bridge::kIsSanitized) {
        EXPECT_GT(found, 0);
        EXPECT_TRUE(known > 0 || GetParam().halfMoves < 5);
    }
}

TEST_P(ProofNumber, NarrowItSeesOnlyMatesAndChangesNoLaterAnswer) {
    int known = 0;
    int found = 0;
    int missed = 0;
    ForCases(77'000'000,
             4,
             [&](const TPosition& position,
                 int halfMoves,
                 const TJudgement& judgement,
                 CRandom& random) {
                 CProofRoot proof(position, halfMoves);
                 for (const int width : {1, random.Between(2, 10)}) {
                     const TProofAnswer answer =
                         proof.Search().Search(proof.Root(), kManyMoves, {}, width);
                     ASSERT_FALSE(answer.isLimit);
                     ASSERT_NE(answer.verdict, kNoMate) << "width " << width;
                     ASSERT_TRUE(answer.verdict != kMate || IsTrue(answer, judgement));
                     found += answer.verdict == kMate ? 1 : 0;
                     missed += answer.verdict != kMate && judgement.isMate ? 1 : 0;
                 }
                 ExpectNothingFalse(proof, position, random, 5, &known);
                 ASSERT_TRUE(IsTrue(proof.Search().Search(proof.Root(), kManyMoves), judgement));
             });
    if (!bridge::kIsSanitized) {
        EXPECT_GT(found, 0);
        // Short mates have no node that a width could leave out, and mated defenders few.
        EXPECT_TRUE(missed > 0 || GetParam().halfMoves < 5 || GetParam().halfMoves % 2 == 0);
    }
}

// One solution after the other, each left out of the next question.
TEST_P(ProofNumber, WithMovesLeftOutItAnswersForTheOthers) {
    ForCases(75'000'000,
             4,
             [](const TPosition& position, int halfMoves, const TJudgement& judgement, CRandom&) {
                 CProofRoot proof(position, halfMoves);
                 const bool isWhite = position.isWhiteToMove;
                 const auto& solutions = isWhite ? judgement.keys : judgement.defences;
                 std::vector<TMove> skipped;
                 for (std::size_t i = 0; i < solutions.size(); ++i) {
                     const TProofAnswer answer =
                         proof.Search().Search(proof.Root(), kManyMoves, skipped);
                     ASSERT_EQ(answer.verdict, isWhite ? kMate : kNoMate);
                     ASSERT_TRUE(Holds(solutions, answer.move));
                     ASSERT_TRUE(std::none_of(skipped.begin(), skipped.end(), [&](TMove move) {
                         return MovesEqual(move, answer.move);
                     }));
                     skipped.push_back(answer.move);
                 }
                 const TProofAnswer answer =
                     proof.Search().Search(proof.Root(), kManyMoves, skipped);
                 ASSERT_FALSE(answer.isLimit);
                 // A stalemated black king holds without a move.
                 const bool isStalemate = solutions.empty() && !judgement.isMate;
                 ASSERT_EQ(answer.verdict, isWhite || isStalemate ? kNoMate : kMate);
                 // Nothing of that sticks to the whole node.
                 ASSERT_TRUE(IsTrue(proof.Search().Search(proof.Root(), kManyMoves), judgement));
             });
}

TEST_P(ProofNumber, AStopAtAnyMomentLeavesNothingFalse) {
    int known = 0;
    int stops = 0;
    ForCases(76'000'000,
             4,
             [&](const TPosition& position,
                 int halfMoves,
                 const TJudgement& judgement,
                 CRandom& random) {
                 CProofRoot proof(position, halfMoves);
                 proof.Context().nodeLimit = static_cast<u64>(random.Between(1, 400));
                 const TProofAnswer answer = proof.Search().Search(proof.Root(), kManyMoves);
                 if (!IsStopped(proof.Root())) {
                     ASSERT_TRUE(IsTrue(answer, judgement));
                     return;
                 }
                 ++stops;
                 // Nodes are counted in lots, and looked at after so many visits.
                 constexpr u64 kLots = 3 * 256;
                 ASSERT_LE(proof.Context().nodeCount.load(), proof.Context().nodeLimit + kLots);
                 ASSERT_NE(answer.verdict, kNoMate);
                 ASSERT_TRUE(answer.verdict != kMate || judgement.isMate);
                 SetStop(proof.Context(), kStopNone);
                 proof.Thread().stopLevel.store(kThreadRuns);
                 proof.Context().nodeLimit = 0;
                 ExpectNothingFalse(proof, position, random, 10, &known);
                 // It goes on where it was.
                 ASSERT_TRUE(IsTrue(proof.Search().Search(proof.Root(), kManyMoves), judgement));
                 ExpectNothingFalse(proof, position, random, 10, &known);
             });
    if (!bridge::kIsSanitized) {
        EXPECT_TRUE(stops > 0 || GetParam().halfMoves < 5);
    }
}

INSTANTIATE_TEST_SUITE_P(Property,
                         ProofNumber,
                         ::testing::Values(TRow{1, 2000},
                                           TRow{2, 2000},
                                           TRow{3, 3000},
                                           TRow{4, 800},
                                           TRow{5, 800},
                                           TRow{6, 200},
                                           TRow{7, 160}),
                         NameOfRow);

}  // namespace
}  // namespace quillmere
