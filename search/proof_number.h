// Proof-number search: which half-open line is nearest to a proof?
//
// The nodes of mate_search.h decide one child after the other, each to the end. That is fast where
// the tree is small or the order of the moves good, and hopeless where the first wrong move costs
// more than the whole proof. This search grows the tree where it is narrowest: the proof number of a
// node counts the leaves that must still be proved to prove it, the disproof number those to
// disprove it, and the next leaf is always the one that brings both nearest to zero. Black with few
// replies means small proof numbers, so that forcing play and zugzwang, what long compositions are
// made of, is found by itself.
//
// It is the depth-first form with a table (A. Nagai, Df-pn algorithm for searching AND/OR trees and
// its applications, 2002), with thresholds that let the best child overtake the second by a quarter
// (J. Pawlewicz and L. Lew, Improving depth-first pn-search: 1+epsilon trick, 2007), and with weak
// numbers, the greatest child plus the count of the others in place of the sum, since lines that
// meet again would be counted twice (T. Ueda et al., Weak proof-number search, 2008). The half-moves
// left are part of a node's key, so that the graph has no cycles and no verdict depends on the way
// to it.
//
// It follows the rules of heuristics as the nodes do: what they leave out counts as disproved, so
// that a mate is a mate under any word. Nodes with three half-moves left go to FindMate. Every white
// node that is proved is stored in the register of solved positions, where the passes find it.
//
// With a width it is narrow: white keeps to moves after which black has at most so many replies that
// are not mated at once. Long compositions live on such moves (a king walks while black's last free
// rook goes to and fro, and every other reply is mate), and all the others, some thirty in each
// position, are left out. A narrow search that finds nothing is over soon.
//
// Threads: one, alone in its search context while a search runs.
#pragma once

#include "core/chessboard.h"
#include "core/verdict.h"
#include "search/proof_table.h"

#include <cstddef>
#include <vector>

namespace quillmere {

struct TProofAnswer {
    // kMate; kNoMate, exact: nothing was left out; else kDoubtful.
    TVerdict verdict = kDoubtful;
    // It ended by its limit or by a stop, with the node still open.
    bool isLimit = false;
    // Of a proved white node a mating move, of a disproved black node a move that holds; null where
    // the node itself is a mate or has no move.
    TMove move{};
};

class CProofNumberSearch {
public:
    // `root`: prepared as for the passes, with its thread and search context; it must stay where it
    // is. Throws std::bad_alloc.
    CProofNumberSearch(TChessboard& root, std::size_t tableBytes);
    CProofNumberSearch(const CProofNumberSearch&) = delete;
    CProofNumberSearch& operator=(const CProofNumberSearch&) = delete;

    // The node, the root or one below it with its true line of parents, under its present word and
    // within its half-moves. Ends after so many more made moves, limits of the context apart, but not
    // before it has learned something. What an earlier search learned is used, and a search cut off
    // goes on where it was. `skipped`: moves of the node that are left out of it; the answer is about
    // the others. `width`: see above, 0 for none.
    TProofAnswer
    Search(TChessboard& node, u64 madeMoves, const std::vector<TMove>& skipped = {}, int width = 0);

    // The width of the search that proved a mate of the root last: what it found is found again under it.
    int WidthOfMate() const { return m_widthOfMate; }

    // The fewest half-moves within which a mate of the node is known, 0 for none.
    int ShortestMate(const TChessboard& node) const;

private:
    struct TChild {
        TProofKey key;
        TProofNumbers numbers;
        TMove move;
    };
    // Of the children in m_children from `first` on.
    struct TFrame {
        std::size_t first = 0;
        std::size_t count = 0;
    };
    // Of a node from its children: its numbers, the child to go to, and that child's thresholds.
    struct TStep {
        TProofNumbers numbers;
        std::size_t best = 0;
        TProofNumbers thresholds;
    };
    enum class EMade { kMade, kNone, kRefutes };

    TProofNumbers Visit(TChessboard& node, const TProofKey& key, TProofNumbers thresholds);
    TProofNumbers VisitLastMoves(TChessboard& node);
    TProofNumbers GoThrough(TChessboard& node, const TFrame& frame, TProofNumbers thresholds);
    // Lists and values the children; true if that settles the node.
    bool Expand(TChessboard& node, TFrame& frame, TProofNumbers* settled);
    TProofKey KeyOf(const TChessboard& node) const;
    TProofNumbers FirstNumbers(TChessboard& child);
    TProofNumbers NarrowNumbers(TChessboard& child, TMoveList& replies);
    EMade Make(TChessboard& node, TChessboard& child, TMove move);
    TStep NextStep(const TChessboard& node, const TFrame& frame, TProofNumbers thresholds) const;
    void TakeSettled(const TChessboard& node, const TFrame& frame);
    void Keep(const TChessboard& node, const TProofKey& key, TProofNumbers numbers, u64 work);
    bool IsOver(TChessboard& node);
    void NoteLeftOut(const TChessboard& node, bool isLeftOut);
    bool IsSkipped(const TChessboard& node, TMove move) const;

    TThreadContext& m_thread;
    TSearchContext& m_context;
    CProofTable m_table;
    std::vector<TChessboard> m_nodes;  // the child of a node with n half-moves stands in place n
    std::vector<TChild> m_children;    // of all nodes on the way down, one after the other
    const TChessboard* m_top = nullptr;
    const std::vector<TMove>* m_skipped = nullptr;
    TMove m_topMove{};
    int m_width = 0;
    int m_widthOfMate = 0;
    u64 m_limit = 0;  // of the thread's made moves
    u64 m_visits = 0;
    bool m_isOver = false;
    bool m_hasLearned = false;  // a node below the top was left with new numbers
    // From a node without a word, since the beginning: its "no mate" may be a doubt.
    bool m_isAnythingLeftOut = false;
};

}  // namespace quillmere
