#include "search/main_line.h"

#include "core/legality.h"
#include "core/make_move.h"
#include "core/thread_context.h"
#include "search/mate_search.h"
#include "search/pause.h"

#include <algorithm>
#include <deque>

namespace quillmere {
namespace {

// A copy of the node with fewer half-moves left; parent and last move stay, so that rights, en
// passant and repetition are judged by the whole line.
TChessboard WithHalfMoves(const TChessboard& node, int halfMoves) {
    TChessboard copy = node;
    copy.m_nMoves = static_cast<u16>(halfMoves);
    return copy;
}

// A move of the search, made on a copy that has `parent` as its parent.
bool MakeSearchMove(TChessboard& child, TChessboard& parent, TMove move) {
    child = parent;
    child.m_parent = &parent;
    return (parent.IsWhiteToMove() ? MakeWhiteMove(child, move)
                                   : MakeBlackMove(child, move, false)) == kMoveMade;
}

// The first move that mates within the node's half-moves.
bool FindMatingMove(TChessboard& node, TMove* mate) {
    TMoveList list;
    list.count = GetLegalMoves(node, list.moves);
    for (const TMove move : list) {
        TChessboard child{};
        if (MakeSearchMove(child, node, move) && CheckDefences(child) == kMate &&
            !IsStopped(node)) {
            *mate = move;
            return true;
        }
    }
    return false;
}

}  // namespace

bool FindLongestDefence(TChessboard& node, TMove* defence, int* halfMoves) {
    TMoveList list;
    list.count = GetLegalMoves(node, list.moves);
    if (list.count == 0)
        return false;
    std::vector<int> candidates(list.count);
    for (int i = 0; i < list.count; ++i)
        candidates[i] = i;
    const int limit = node.m_nMoves - 1;
    int round = 1;
    // Everything left after the last round but one needs the full length; the first is enough.
    for (; round < limit && !candidates.empty(); round += 2) {
        const bool isLastRound = round + 2 >= limit;
        std::vector<int> survivors;
        for (const int index : candidates) {
            TChessboard child{};
            const bool isMated = MakeSearchMove(child, node, list[index]) && [&child, round] {
                TChessboard test = WithHalfMoves(child, round);
                return FindMate(test, true) == kMate;
            }();
            if (IsStopped(node))
                return false;
            if (!isMated)
                survivors.push_back(index);
            if (!isMated && isLastRound)
                break;
        }
        if (survivors.empty())
            break;
        candidates = std::move(survivors);
    }
    *defence = list[candidates.front()];
    *halfMoves = std::min(round, limit);
    return true;
}

std::vector<TMove> FindMainLine(TChessboard& root, const TMove* key) {
    std::vector<TMove> line;
    // Nodes of the line, each the parent of the next; they must not move.
    std::deque<TChessboard> nodes;
    TChessboard* node = &root;
    const auto play = [&](TMove move) {
        nodes.emplace_back();
        if (!MakeSearchMove(nodes.back(), *node, move))
            return false;
        node = &nodes.back();
        line.push_back(move);
        return true;
    };
    if (key != nullptr && !play(*key))
        return {};
    while (!IsStopped(root)) {
        TMove defence{};
        int halfMoves = 0;
        if (!FindLongestDefence(*node, &defence, &halfMoves))
            break;
        if (!play(defence))
            return {};
        nodes.back().m_nMoves = static_cast<u16>(halfMoves);
        TMove mate{};
        if (!FindMatingMove(*node, &mate) || !play(mate))
            return {};
    }
    if (IsStopped(root))
        return {};
    return line;
}

}  // namespace quillmere
