// The main line of a proved mate against the judge: legal, to mate, and as long as black can make it;
// and what white does against every other defence.
#include "core/legality.h"
#include "search/proof_line.h"
#include "tests/support/families.h"
#include "tests/support/proof_root.h"
#include "tests/support/random_positions.h"
#include "tests/support/remembering_judge.h"

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using bridge::CRememberingJudge;
using bridge::TJudgement;
using reference::TPosition;
using test::CProofRoot;
using test::CRandom;
using test::kManyMoves;

constexpr std::uint64_t kJudgeMoves = 3'000'000;

// The fewest half-moves within which white mates.
int LengthOf(const TPosition& position, int atMost) {
    CRememberingJudge judge(10 * kJudgeMoves);
    int halfMoves = position.isWhiteToMove ? 1 : 0;
    while (halfMoves < atMost && !judge.WhiteMates(position, halfMoves))
        halfMoves += 2;
    return halfMoves;
}

// White plays what the search says, black what is drawn: mate within the half-moves of the root.
void ExpectVariantMates(CProofRoot& proof, const TPosition& position, CRandom& random) {
    std::deque<TChessboard> line{proof.Root()};
    TPosition at = position;
    while (!reference::IsMate(at)) {
        TChessboard& node = line.back();
        ASSERT_GT(node.m_nMoves, 0) << reference::ToFen(at);
        TMoveList list;
        list.count = GetLegalMoves(node, list.moves);
        ASSERT_GT(list.count, 0) << "stalemate: " << reference::ToFen(at);
        TMove move = list[random.Below(list.count)];
        if (node.IsWhiteToMove()) {
            const TProofAnswer answer = proof.Search().Search(node, kManyMoves);
            ASSERT_EQ(answer.verdict, kMate) << reference::ToFen(at);
            move = answer.move;
        }
        TChessboard& child = line.emplace_back(node);
        child.m_parent = &node;
        ASSERT_EQ(node.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move)
                                       : MakeBlackMoveLegal(child, move),
                  kMoveMade);
        at = reference::After(at, bridge::ToPlain(move));
    }
}

struct TRow {
    int halfMoves;
    int cases;
};

void PrintTo(const TRow& row, std::ostream* out) {
    *out << row.halfMoves;
}

class ProofLine : public ::testing::TestWithParam<TRow> {};

TPosition DrawPosition(CRandom& random, int halfMoves) {
    const int fullMoves = (halfMoves + 1) / 2;
    const auto& families = reference::Families();
    const auto& family =
        families[static_cast<std::size_t>(random.Below(static_cast<int>(families.size())))];
    if (halfMoves % 2 != 0 && fullMoves <= family.fullMoves && random.Chance(40))
        return reference::DrawBeforeMate(random, family, fullMoves);
    reference::TRecipe recipe =
        reference::RandomMateRecipe(random, random.Between(3, 7), fullMoves);
    recipe.isWhiteToMove = halfMoves % 2 != 0;
    return reference::RandomPosition(random, recipe);
}

void CheckLine(const TPosition& position,
               int halfMoves,
               const std::optional<TMove>& key,
               CRandom& random) {
    CProofRoot proof(position, halfMoves);
    ASSERT_EQ(proof.Search().Search(proof.Root(), kManyMoves).verdict, kMate);
    const TMove* const given = key ? &*key : nullptr;
    const std::vector<TMove> line = FindProofLine(proof.Search(), proof.Root(), given, kManyMoves);
    std::vector<reference::TPlainMove> plain;
    std::transform(line.begin(), line.end(), std::back_inserter(plain), bridge::ToPlain);
    const auto fault = reference::FaultOfLine(position, plain, halfMoves);
    ASSERT_FALSE(fault.has_value()) << *fault;
    const TPosition begin = key ? reference::After(position, bridge::ToPlain(*key)) : position;
    const std::size_t keyMoves = key ? 1 : 0;
    ASSERT_EQ(line.size(), keyMoves + static_cast<std::size_t>(LengthOf(begin, halfMoves)))
        << reference::ToText(plain);
    if (key) {
        ASSERT_TRUE(MovesEqual(line.front(), *key));
        const TMove defence = FindProofDefence(proof.Search(), proof.Root(), *key, kManyMoves);
        ASSERT_EQ(defence.IsNull(), line.size() == 1);
        if (!defence.IsNull()) {
            const TPosition behind = reference::After(begin, bridge::ToPlain(defence));
            ASSERT_EQ(line.size(), static_cast<std::size_t>(LengthOf(behind, halfMoves)) + 2);
        }
    }
    for (int variant = 0; variant < 3; ++variant)
        ASSERT_NO_FATAL_FAILURE(ExpectVariantMates(proof, position, random));
}

TEST_P(ProofLine, IsTheLongestAndEveryVariantMates) {
    const auto [halfMoves, cases] = GetParam();
    CRandom random(81'000'000 + static_cast<u64>(halfMoves));
    int lines = 0;
    for (int i = 0; i < bridge::CasesOf(cases); ++i) {
        const TPosition position = DrawPosition(random, halfMoves);
        const std::optional<TJudgement> judgement =
            bridge::JudgeFar(position, halfMoves, kJudgeMoves);
        if (!judgement || !judgement->isMate)
            continue;
        SCOPED_TRACE(reference::ToFen(position) + ", " + std::to_string(halfMoves) + " half-moves");
        std::optional<TMove> key;
        TMoveList list;
        CProofRoot proof(position, halfMoves);
        list.count = GetLegalMoves(proof.Root(), list.moves);
        for (const TMove move : list) {
            const auto& keys = judgement->keys;
            const bool isKey =
                std::find(keys.begin(), keys.end(), bridge::ToPlain(move)) != keys.end();
            if (isKey && (!key || random.Chance(30)))
                key = move;
        }
        ASSERT_NO_FATAL_FAILURE(CheckLine(position, halfMoves, key, random));
        ++lines;
    }
    EXPECT_TRUE(bridge::kIsSanitized || lines > cases / 20) << lines;
}

INSTANTIATE_TEST_SUITE_P(
    Property,
    ProofLine,
    ::testing::Values(
        TRow{1, 200}, TRow{2, 600}, TRow{3, 600}, TRow{4, 400}, TRow{5, 300}, TRow{7, 80}),
    [](const auto& row) { return std::to_string(row.param.halfMoves) + "HalfMoves"; });

}  // namespace
}  // namespace quillmere
