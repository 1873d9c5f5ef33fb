// What a list of forcing moves holds, judged by brute force: every check, every move that threatens
// the mate of its mode, and nothing else; and what a search of such lists says.
#include "core/legality.h"
#include "core/move_generation.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "search/forcing_moves.h"
#include "search/mate_search.h"
#include "tests/support/bridge.h"
#include "tests/support/judged_solve.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using reference::CRandom;
using reference::TPlainMove;
using reference::TPosition;
using test::CSearchBoard;

constexpr u16 kHalfMoves = 9;

// White, to move, mates in at most so many moves, each a check.
bool MatesByChecks(const TPosition& position, int moves) {
    const auto list = reference::LegalMoves(position);
    return moves > 0 && std::any_of(list.begin(), list.end(), [&](TPlainMove move) {
               const TPosition child = reference::After(position, move);
               if (!reference::IsInCheck(child, false))
                   return false;
               const auto replies = reference::LegalMoves(child);
               return std::all_of(replies.begin(), replies.end(), [&](TPlainMove reply) {
                   return MatesByChecks(reference::After(child, reply), moves - 1);
               });
           });
}

bool IsForcing(const TPosition& position, TPlainMove move, u8 mode) {
    TPosition passed = reference::After(position, move);
    if (reference::IsInCheck(passed, false))
        return true;
    passed.isWhiteToMove = true;
    passed.enPassantFile = -1;
    reference::CBruteForce judge;
    switch (mode) {
    case 2:
        return false;
    case 3:
        return judge.MateIn(passed, 1);
    case 4:
        return judge.MateIn(passed, 1) || MatesByChecks(passed, 2);
    case 5:
        return judge.MateIn(passed, 2);
    case 6:
        return judge.MateIn(passed, 2) || MatesByChecks(passed, 3);
    default:
        return judge.MateIn(passed, mode - 4);
    }
}

void TurnOn(CSearchBoard& board, u8 mode) {
    board.Root().Heur = SH_FINDFORCEDMATE;
    board.Root().m_pass = kPassHeuristics;
    board.Thread().heuristics.FfmMode = mode;
    ComputeHeurParams(board.Root());
}

// The legal moves that were kept.
std::vector<TPlainMove> KeptMoves(TChessboard& node) {
    TMoveList list;
    list.count = GetAllWhiteMoves(node, list.moves);
    list.count = KeepForcingMoves(node, list.count, list.moves);
    std::vector<TMove> legal;
    std::copy_if(list.begin(), list.end(), std::back_inserter(legal), [&node](TMove move) {
        return IsLegalMove(node, move);
    });
    return bridge::ToSortedPlain(legal);
}

struct TCount {
    int kept = 0;
    int dropped = 0;
};

void CheckList(TChessboard& node, const TPosition& position, u8 mode, TCount& count) {
    std::vector<TPlainMove> expected;
    for (const TPlainMove move : reference::LegalMoves(position)) {
        if (IsForcing(position, move, mode))
            expected.push_back(move);
        else
            ++count.dropped;
    }
    std::sort(expected.begin(), expected.end());
    count.kept += static_cast<int>(expected.size());
    ASSERT_EQ(reference::ToText(KeptMoves(node)), reference::ToText(expected))
        << reference::ToFen(position) << ", mode " << int{mode};
}

struct TModeRow {
    u8 mode;
    int cases;
    int fullMoves;  // of the mates that the positions are drawn for
};

class ForcingLists : public ::testing::TestWithParam<TModeRow> {};

TEST_P(ForcingLists, HoldChecksAndThreatsAndNothingElse) {
    const TModeRow& row = GetParam();
    CRandom random(61'000'000 + u64{row.mode});
    TCount count;
    for (int i = 0; i < bridge::CasesOf(row.cases); ++i) {
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 10), row.fullMoves));
        if (reference::IsInCheck(position, true))
            continue;
        CSearchBoard board(reference::ToFen(position), kHalfMoves);
        TurnOn(board, row.mode);
        ASSERT_TRUE(IsForcedListOn(board.Root()));
        ASSERT_NO_FATAL_FAILURE(CheckList(board.Root(), position, row.mode, count));
    }
    EXPECT_GT(count.kept, bridge::CasesOf(row.cases) / 2);
    EXPECT_GT(count.dropped, bridge::CasesOf(row.cases) / 2);
}

INSTANTIATE_TEST_SUITE_P(Modes,
                         ForcingLists,
                         ::testing::Values(TModeRow{2, 3000, 2},
                                           TModeRow{3, 3000, 2},
                                           TModeRow{4, 400, 3},
                                           TModeRow{5, 300, 3},
                                           TModeRow{6, 60, 3},
                                           TModeRow{7, 25, 3}),
                         [](const auto& row) { return "Mode" + std::to_string(row.param.mode); });

// Castling rights and en passant decide here and there what a move threatens.
TEST(ForcingLists, OfSpecialMoves_AreTheSame) {
    CRandom random(61'100'000);
    TCount count;
    for (int i = 0; i < bridge::CasesOf(1500); ++i) {
        const TPosition before = reference::RandomEnPassantNest(random, false);
        const auto replies = reference::LegalMoves(before);
        const auto isDoubleStep = [&before](TPlainMove move) {
            return before.squares[move.from] == 'p' && move.from - move.to == 16;
        };
        const auto step = std::find_if(replies.begin(), replies.end(), isDoubleStep);
        if (step == replies.end())
            continue;
        const TPosition position = reference::After(before, *step);
        CSearchBoard board(reference::ToFen(before), kHalfMoves + 1);
        const u8 mode = i % 2 == 0 ? 2 : 3;
        TurnOn(board, mode);
        if (board.Play(reference::ToText(*step)) != kMoveMade || !IsForcedListOn(board.Node()))
            continue;
        ASSERT_NO_FATAL_FAILURE(CheckList(board.Node(), position, mode, count));
    }
    reference::TRecipe home;
    home.isWhiteAtHome = true;
    home.whiteMen = 4;
    home.blackMen = 2;
    home.whiteLetters = "RRBNP";
    for (int i = 0; i < bridge::CasesOf(1500); ++i) {
        const TPosition position = reference::RandomPosition(random, home);
        CSearchBoard board(reference::ToFen(position), kHalfMoves);
        const u8 mode = i % 2 == 0 ? 2 : 3;
        TurnOn(board, mode);
        if (IsForcedListOn(board.Root())) {
            ASSERT_NO_FATAL_FAILURE(CheckList(board.Root(), position, mode, count));
        }
    }
    EXPECT_GT(count.kept, bridge::CasesOf(500));
    EXPECT_GT(count.dropped, bridge::CasesOf(500));
}

// A mate of a restricted node is one, and "no mate" is never its word.
TEST(ForcedSearch, Verdict_IsAMateOrDoubt) {
    CRandom random(61'200'000);
    int mates = 0;
    int ends = 0;
    for (int i = 0; i < bridge::CasesOf(1500); ++i) {
        const int fullMoves = random.Between(3, 4);
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 7), fullMoves));
        CSearchBoard board(reference::ToFen(position), static_cast<u16>(2 * fullMoves - 1));
        TurnOn(board, static_cast<u8>(random.Between(2, 9)));
        board.Thread().heuristics.FfmAddCaptures = random.Chance(50);
        if (!IsForcedListOn(board.Root()))
            continue;
        const TVerdict verdict = FindMate(board.Root(), true);
        ASSERT_TRUE(verdict == kMate || verdict == kDoubtful || verdict == kEndOfForced)
            << int{verdict};
        ends += verdict == kEndOfForced ? 1 : 0;
        if (verdict != kMate)
            continue;
        ++mates;
        ASSERT_TRUE(reference::CBruteForce().MateIn(position, fullMoves))
            << reference::ToFen(position) << ", " << fullMoves;
    }
    EXPECT_GT(mates, bridge::CasesOf(40));
    EXPECT_GT(ends, bridge::CasesOf(40));
}

// Each mode takes what the mode before took.
TEST(ForcingLists, OfAWiderMode_HoldTheNarrowerOne) {
    CRandom random(61'300'000);
    int grown = 0;
    for (int i = 0; i < bridge::CasesOf(100); ++i) {
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(4, 6), 4));
        CSearchBoard board(reference::ToFen(position), 11);
        std::vector<TPlainMove> narrower;
        for (u8 mode = 2; mode <= 8; ++mode) {
            TurnOn(board, mode);
            if (!IsForcedListOn(board.Root()))
                break;
            const std::vector<TPlainMove> kept = KeptMoves(board.Root());
            ASSERT_TRUE(std::includes(kept.begin(), kept.end(), narrower.begin(), narrower.end()))
                << reference::ToFen(position) << ", mode " << int{mode};
            grown += kept.size() > narrower.size() ? 1 : 0;
            narrower = kept;
        }
    }
    EXPECT_GT(grown, bridge::CasesOf(60));
}

}  // namespace
}  // namespace quillmere
