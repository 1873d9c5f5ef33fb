#include "search/main_line.h"

#include "core/legality.h"
#include "core/thread_context.h"
#include "search/best_defence.h"
#include "search/mate_search.h"
#include "search/pause.h"
#include "search/search_move.h"

#include <deque>

namespace quillmere {
namespace {

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
