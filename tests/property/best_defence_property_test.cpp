// The best defence against the judge: it survives longest of all, and the main line names the same.
//
// A node is met in two ways: as the root of a mate-defence task, and as the child of a first move of
// white, standing in the node stack as a search leaves it there. Every failing case is printed with
// its position.
#include "core/make_move.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "search/best_defence.h"
#include "tests/support/bridge.h"
#include "tests/support/families.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using reference::CBruteForce;
using reference::CRandom;
using reference::TPlainMove;
using reference::TPosition;

constexpr std::uint64_t kMoveLimit = 3'000'000;
constexpr int kMostFailures = 5;

// The slow way: every defence is followed for itself, one length after another.
struct TSurvival {
    TPlainMove move;
    int halfMoves;  // of white's shortest mate against it, cap + 2 if there is none up to the cap
};

std::optional<std::vector<TSurvival>> Survivals(const TPosition& position, int cap) {
    try {
        CBruteForce judge(kMoveLimit);
        std::vector<TSurvival> survivals;
        for (const TPlainMove move : reference::LegalMoves(position)) {
            const TPosition after = reference::After(position, move);
            int halfMoves = 1;
            while (halfMoves <= cap && !judge.WhiteMates(after, halfMoves))
                halfMoves += 2;
            survivals.push_back({move, halfMoves});
        }
        return survivals;
    } catch (const reference::COutOfMoves&) {
        return std::nullopt;
    }
}

struct TTally {
    int cases = 0;
    int choices = 0;  // cases in which some defence survives longer than another
    int lost = 0;     // cases in which every defence loses
};

class CBench {
public:
    CBench(const TPosition& position, int halfMoves) : m_thread(static_cast<u16>(halfMoves)) {
        bridge::FillBoard(m_root, position);
        m_root.m_searchContext = &m_context;
        m_root.m_threadContext = &m_thread;
        m_root.m_pass = kPassComplete;
        m_thread.rootNode = &m_root;
        SetupAnalysisRoot(m_root, static_cast<u16>(halfMoves), true);
    }
    TChessboard& Root() { return m_root; }
    // The child of a first move in its slot; null if the search would not make the move.
    TChessboard* Child(TPlainMove move) {
        TChessboard& child = m_thread.ChildSlot(m_root.m_nMoves);
        child = m_root;
        child.m_parent = &m_root;
        const u8 promotion = move.promotion == 'q'   ? kQueen
                             : move.promotion == 'r' ? kRook
                             : move.promotion == 'b' ? kBishop
                             : move.promotion == 'n' ? kKnight
                                                     : u8{0};
        const bool isMade =
            MakeWhiteMove(child, MakeMove(move.from, move.to, promotion)) == kMoveMade;
        return isMade ? &child : nullptr;
    }

private:
    TSearchContext m_context;
    TThreadContext m_thread;
    TChessboard m_root{};
};

void CheckNode(TChessboard& node, const TPosition& position, TTally& tally) {
    const std::string name =
        reference::ToFen(position) + ", " + std::to_string(node.m_nMoves) + " half-moves";
    const int cap = std::min(node.m_nMoves - 1, kMaxDefenceRound);
    const auto survivals = Survivals(position, cap);
    if (!survivals)
        return;
    TMove best = MakeMove(1, 2);
    ASSERT_TRUE(GetBestDefence(node, &best)) << name;
    ++tally.cases;
    if (survivals->empty()) {
        EXPECT_TRUE(best.from == 0 && best.to == 0 && best.flags == 0) << name;
        return;
    }
    const auto byLength = [](const TSurvival& a, const TSurvival& b) {
        return a.halfMoves < b.halfMoves;
    };
    const int longest = std::max_element(survivals->begin(), survivals->end(), byLength)->halfMoves;
    const int least = std::min_element(survivals->begin(), survivals->end(), byLength)->halfMoves;
    const auto found = std::find_if(survivals->begin(), survivals->end(), [&](const TSurvival& s) {
        return s.move == bridge::ToPlain(best);
    });
    ASSERT_NE(found, survivals->end()) << name << ": no legal move";
    EXPECT_EQ(found->halfMoves, longest) << name << ": " << reference::ToText(found->move);
    tally.choices += least < longest ? 1 : 0;
    if (longest > node.m_nMoves - 1)
        return;
    ++tally.lost;
    TMove ofLine{};
    int halfMoves = 0;
    ASSERT_TRUE(FindLongestDefence(node, &ofLine, &halfMoves)) << name;
    EXPECT_EQ(halfMoves, longest) << name;
    EXPECT_EQ(bridge::ToPlain(ofLine), bridge::ToPlain(best)) << name;
}

bool HasFailedOften() {
    const auto* result = testing::UnitTest::GetInstance()->current_test_info()->result();
    return result->total_part_count() >= kMostFailures;
}

// A node below each of white's keys, and below another first move.
void CheckFirstMoves(const TPosition& position, int fullMoves, CRandom& random, TTally& tally) {
    std::vector<TPlainMove> moves;
    try {
        moves = CBruteForce(kMoveLimit).Keys(position, fullMoves);
    } catch (const reference::COutOfMoves&) {
        return;
    }
    const std::vector<TPlainMove> legal = reference::LegalMoves(position);
    moves.push_back(legal[static_cast<std::size_t>(random.Below(static_cast<int>(legal.size())))]);
    for (const TPlainMove move : moves) {
        CBench bench(position, 2 * fullMoves - 1);
        if (TChessboard* child = bench.Child(move))
            CheckNode(*child, reference::After(position, move), tally);
    }
}

TEST(BestDefence, SurvivesLongestBelowWhitesFirstMoves) {
    TTally tally;
    for (const reference::TFamily& family : reference::Families()) {
        CRandom random(4711);
        for (int i = 0; i < 12 && !HasFailedOften(); ++i) {
            const int fullMoves = std::min(2 + i % 3, std::max(2, family.fullMoves));
            CheckFirstMoves(
                reference::DrawBeforeMate(random, family, fullMoves), fullMoves, random, tally);
        }
    }
    EXPECT_GT(tally.cases, 100);
    EXPECT_GT(tally.choices, tally.cases / 10);
    EXPECT_GT(tally.lost, tally.cases / 10);
}

TEST(BestDefence, SurvivesLongestAtTheRootOfADefenceTask) {
    TTally tally;
    CRandom random(815);
    for (int i = 0; i < 400 && !HasFailedOften(); ++i) {
        const int fullMoves = 1 + i % 3;
        reference::TRecipe recipe =
            reference::RandomMateRecipe(random, random.Between(3, 7), fullMoves);
        recipe.isWhiteToMove = false;
        const TPosition position = reference::RandomPosition(random, recipe);
        CBench bench(position, 2 * fullMoves);
        CheckNode(bench.Root(), position, tally);
    }
    EXPECT_GT(tally.cases, 300);
    EXPECT_GT(tally.choices, tally.cases / 10);
    EXPECT_GT(tally.lost, 10);
}

}  // namespace
}  // namespace quillmere
