#include "search/proof_line.h"

#include "core/direct_mates.h"
#include "core/legality.h"
#include "core/thread_context.h"
#include "search/pause.h"
#include "search/search_move.h"

#include <algorithm>
#include <deque>

namespace quillmere {
namespace {

// Made moves for a mate that was proved before and dropped from the table.
constexpr u64 kAgainMoves = 1'000'000;

bool HasLegalMove(TChessboard& node) {
    TMoveList list;
    return GetLegalMoves(node, list.moves) != 0;
}

// A defence and the half-moves within which white mates it.
struct TDefence {
    TMove move{};
    int halfMoves = 0;
};

class CProofLine {
public:
    CProofLine(CProofNumberSearch& search, u64 madeMoves)
        : m_search(search), m_width(search.WidthOfMate()), m_left(madeMoves) {}

    // Black's longest defence; false if black has no move, or a mate was not found again.
    bool FindDefence(TChessboard& node, TDefence* longest) {
        std::vector<TDefence> defences;
        TMoveList list;
        list.count = GetLegalMoves(node, list.moves);
        for (const TMove move : list) {
            TChessboard child{};
            if (!MakeSearchMove(child, node, move))
                return false;
            const int halfMoves = LengthOf(child);
            if (halfMoves == 0)
                return false;
            defences.push_back({move, halfMoves});
        }
        if (defences.empty())
            return false;
        *longest = Tighten(node, defences);
        return true;
    }

    // A move that mates within the node's half-moves.
    bool FindMate(TChessboard& node, TMove* mate) {
        if (FindMateInOne(node, mate))
            return true;
        const TProofAnswer answer = AskAgain(node);
        *mate = answer.move;
        return answer.verdict == kMate;
    }

private:
    // What was proved and forgotten: at first as narrow as it was proved.
    TProofAnswer AskAgain(TChessboard& node) {
        const TProofAnswer answer = Ask(node, kAgainMoves, m_width);
        return answer.verdict == kMate || m_width == 0 ? answer : Ask(node, kAgainMoves);
    }

    TProofAnswer Ask(TChessboard& node, u64 madeMoves, int width = 0) {
        const u64 start = node.m_threadContext->madeMoves;
        const TProofAnswer answer = m_search.Search(node, madeMoves, {}, width);
        const u64 made = node.m_threadContext->madeMoves - start;
        m_left -= std::min(m_left, made);
        return answer;
    }

    // Half-moves within which white, to move, is known to mate; 0 for not.
    int LengthOf(TChessboard& child) {
        if (IsMateInOne(child))
            return 1;
        const int known = m_search.ShortestMate(child);
        if (known != 0 && known <= child.m_nMoves)
            return known;
        return AskAgain(child).verdict == kMate ? child.m_nMoves : 0;
    }

    // The defence that looks longest is asked for a shorter mate until it has none, or until the
    // made moves of this turn are spent: half of what is left, so that later turns have theirs. A
    // narrow proof is asked narrowly: without the width the question has no end.
    TDefence Tighten(TChessboard& node, std::vector<TDefence>& defences) {
        const u64 reserve = m_left / 2;
        for (;;) {
            auto longest = std::max_element(
                defences.begin(), defences.end(), [](const TDefence& a, const TDefence& b) {
                    return a.halfMoves < b.halfMoves;
                });
            if (longest->halfMoves <= 1 || m_left <= reserve || IsStopped(node))
                return *longest;
            TChessboard child{};
            MakeSearchMove(child, node, longest->move);
            child.m_nMoves = static_cast<u16>(longest->halfMoves - 2);
            if (Ask(child, m_left - reserve, m_width).verdict != kMate)
                return *longest;
            const int known = m_search.ShortestMate(child);
            longest->halfMoves = known != 0 && known < child.m_nMoves ? known : child.m_nMoves;
        }
    }

    CProofNumberSearch& m_search;
    const int m_width;
    u64 m_left;
};

}  // namespace

std::vector<TMove>
FindProofLine(CProofNumberSearch& search, TChessboard& root, const TMove* key, u64 madeMoves) {
    CProofLine finder(search, madeMoves);
    std::vector<TMove> line;
    std::deque<TChessboard> nodes;  // each the parent of the next; they must not move
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
    while (!IsStopped(root) && HasLegalMove(*node)) {
        TDefence defence;
        if (!finder.FindDefence(*node, &defence) || !play(defence.move))
            return {};
        node->m_nMoves = static_cast<u16>(defence.halfMoves);
        TMove mate{};
        if (!finder.FindMate(*node, &mate) || !play(mate))
            return {};
    }
    return IsStopped(root) ? std::vector<TMove>{} : line;
}

TMove FindProofDefence(CProofNumberSearch& search, TChessboard& root, TMove key, u64 madeMoves) {
    CProofLine finder(search, madeMoves);
    TChessboard child{};
    TDefence defence;
    return MakeSearchMove(child, root, key) && finder.FindDefence(child, &defence) ? defence.move
                                                                                   : TMove{};
}

}  // namespace quillmere
