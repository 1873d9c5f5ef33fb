// A root whose heuristics the program has chosen, as in a solve.
#pragma once

#include "core/legality.h"
#include "heuristics/heur_params.h"
#include "heuristics/selection.h"
#include "search/first_move_search.h"
#include "tests/support/search_board.h"

#include <memory>
#include <string>

namespace quillmere::test {

class CSelectedRoot {
public:
    CSelectedRoot(const std::string& fen, u16 halfMoves) : m_board(fen, halfMoves) {
        m_board.Thread().computeHeurParams = ComputeHeurParams;
    }

    // Returns the flags of the node.
    u16 Select() {
        TMoveList list;
        list.count = GetLegalMoves(Root(), list.moves);
        const int quiet = SortFirstMoves(Root(), list, nullptr);
        return SelectHeuristics(Root(), {list.count, list.count - quiet, &list}, m_record);
    }

    TChessboard& Root() { return m_board.Root(); }
    TSearchContext& Context() { return m_board.Context(); }
    TThreadContext& Thread() { return m_board.Thread(); }
    THeuristicSettings& Settings() { return m_board.Thread().heuristics; }
    const TSelectionRecord& Record() const { return m_record; }
    bool Has(u32 bits) { return (Root().Heur & bits) == bits; }

private:
    CSearchBoard m_board;
    TSelectionRecord m_record;
};

}  // namespace quillmere::test
