// White's moves that are refuted by a reply already looked at.
//
// Used by a white node with three half-moves left, where one black reply mostly refutes nearly all
// of white's moves: each reply that refuted a move is laid as a filter over the rest of the list
// (core/reply_filter.h). A move that does not pass is proved not to mate in two; leaving it out
// loses nothing and taints nothing.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Half-moves left in the nodes that use it.
constexpr int kFilteredLevel = 3;

class CRefutedMoves {
public:
    // White to move, black not in check. The node must outlive the object, and the filters of its
    // thread are the object's.
    explicit CRefutedMoves(TChessboard& node) : m_node(node) {}

    // Replies that refuted in like nodes, or else a step of the king, are the first filters.
    void Start();
    // The reply that has just refuted a move of the node, if one is remembered.
    void Learn();
    // The move is known not to mate in two.
    bool Contains(TMove move);

private:
    // Further replies are tried only so often: each costs about as much as one move.
    static constexpr int kMaxTried = 12;

    void Add(TMove reply);

    TChessboard& m_node;
    int m_filterCount = 0;
    TMove m_tried[kMaxTried];
    int m_triedCount = 0;
};

}  // namespace quillmere
