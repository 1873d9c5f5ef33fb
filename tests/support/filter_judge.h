// The filter of white's moves by one reply, judged by the slow rules: of every move that it calls
// refuted, the reply is legal after it, and no mate follows.
#pragma once

#include "core/move_generation.h"
#include "core/reply_filter.h"
#include "tests/support/crowded_positions.h"

#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <vector>

namespace quillmere::test {

struct TFilterTally {
    long pairs = 0;
    long refuted = 0;
    long inCheck = 0;    // nodes with white in check
    long enPassant = 0;  // first moves that capture in passing
};

inline std::deque<CReplyFilter> FiltersOf(TChessboard& node, CRandom& random) {
    TMoveList replies;
    replies.count = GetAllBlackMoves(node, replies.moves);
    // Moves that come from other nodes may not even be possible here.
    for (int i = 0; i < 20; ++i)
        replies[replies.count++] =
            MakeMove(random.Below(64), random.Below(64), random.Chance(10) ? kQueen : u8{0});
    std::deque<CReplyFilter> filters;
    for (const TMove reply : replies) {
        if (!filters.emplace_back().Build(node, reply))
            filters.pop_back();
    }
    return filters;
}

inline bool IsLegalAfter(const reference::TPosition& after, TMove reply) {
    const std::vector<reference::TPlainMove> replies = LegalMoves(after);
    return std::find(replies.begin(), replies.end(), bridge::ToPlain(reply)) != replies.end();
}

inline void CheckFilters(TChessboard& node,
                         const reference::TPosition& position,
                         CRandom& random,
                         TFilterTally& tally) {
    std::deque<CReplyFilter> filters = FiltersOf(node, random);
    tally.inCheck += node.m_whiteInCheck >= 0;
    for (const reference::TPlainMove move : LegalMoves(position)) {
        const reference::TPosition after = After(position, move);
        const TMove made = MakeMove(move.from,
                                    move.to,
                                    move.promotion == 0     ? u8{0}
                                    : move.promotion == 'q' ? kQueen
                                                            : kKnight);
        const bool isEnPassant = (position.squares[move.from] == 'P') &&
                                 move.from % 8 != move.to % 8 && position.squares[move.to] == '.';
        tally.enPassant += isEnPassant;
        for (CReplyFilter& filter : filters) {
            ++tally.pairs;
            if (filter.MayMate(made))
                continue;
            ++tally.refuted;
            const TMove reply = filter.Reply();
            ASSERT_TRUE(IsLegalAfter(after, reply))
                << ToFen(position) << ' ' << ToText(move) << ": the reply "
                << ToText(bridge::ToPlain(reply)) << " is not legal";
            ASSERT_FALSE(reference::CBruteForce().MateIn(After(after, bridge::ToPlain(reply)), 1))
                << ToFen(position) << ' ' << ToText(move) << ' ' << ToText(bridge::ToPlain(reply))
                << " is mated at once";
        }
    }
}

inline TFilterTally JudgeCrowdedFilters(std::uint64_t firstSeed, int cases) {
    TFilterTally tally;
    for (int number = 0; number < cases && !testing::Test::HasFailure(); ++number) {
        CRandom random(firstSeed + static_cast<std::uint64_t>(number));
        test::CCrowdedNode crowded(random, 3);
        if (crowded.Node().m_blackInCheck >= 0)
            continue;
        CheckFilters(crowded.Node(), crowded.Position(), random, tally);
        if (testing::Test::HasFailure())
            ADD_FAILURE() << "seed " << firstSeed + static_cast<std::uint64_t>(number);
    }
    return tally;
}

}  // namespace quillmere::test
