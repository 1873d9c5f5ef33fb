// The rules that judge a reply of black, one technique a file, and what they share.
//
// A rule answers true when the line is given up: the black node is doubtful then. It is asked only
// with its bit on, behind a reply that leaves white a move before the mating one, and sees the node
// after the reply. Whoever asks first is the position test (heuristics/position_test.cpp), which
// has the order. No rule changes the squares of a board; the edge rules may write flags of the node
// (heuristics/dynamic_relaxation.cpp).
//
// Threads: a rule works on the node and the records of its own thread.
#pragma once

#include "core/chessboard.h"
#include "core/heuristics.h"
#include "core/move.h"

namespace quillmere {

// Queen, rook, bishop or knight of either colour.
constexpr bool IsFigure(u8 code) {
    return (code & (kQueen | kKnight)) != 0;
}

// One reply of black under test, with what several rules ask about it.
class CBlackReply {
public:
    // The white node after the reply; it must have a parent, and they must outlive this.
    explicit CBlackReply(TChessboard& child) : m_child(child) {}

    TChessboard& Child() const { return m_child; }
    TChessboard& BlackNode() const { return *m_child.m_parent; }
    // The white node before; null if the analysis begins with black.
    TChessboard* WhiteNode() const { return m_child.m_parent->m_parent; }

    TMove Move() const { return m_child.m_lastMove; }
    // The man that moved, as it stood before: a pawn, if it promoted. 0 for a pass.
    u8 Mover() const { return Move().IsNull() ? u8{0} : BlackNode().m_board[Move().from]; }
    bool IsKingMove() const { return Mover() == kBlackKing; }
    // The white man that was taken; 0 for none.
    u8 Captured() const;

    // White has a mate in one. Found once, for all rules.
    bool IsMatedAtOnce();
    // White has a legal move that takes on the square where the reply ended.
    bool CanBeTaken() const;

    const THeuristicSettings& Settings() const;
    // Writes flags of the white node; the digest follows.
    void SetFlags(u16 searchFlags);
    // Marks the move as an event: white's screens look at it again.
    void MarkEvent() { m_child.m_lastMove.flags |= kMoveMarkEvent; }

private:
    enum class EKnown : u8 { kUnknown, kNo, kYes };

    TChessboard& m_child;
    EKnown m_mate = EKnown::kUnknown;
};

namespace rules {

bool IsTooFreeForThreeMoves(CBlackReply& reply);       // three_moves_to_mate.cpp
bool HasPromotedQueenMoved(CBlackReply& reply);        // promoted_figures.cpp
bool HasPromotedFigureMoved(CBlackReply& reply);       // promoted_figures.cpp
bool HasBlockedFigureMoved(CBlackReply& reply);        // blocked_figures.cpp
bool HasRookMovedAlongKeyLine(CBlackReply& reply);     // key_lines.cpp
bool HasBishopMovedAlongDiagonal(CBlackReply& reply);  // key_lines.cpp
bool HasQueenCheckedTwice(CBlackReply& reply);         // queen_checks_twice.cpp
bool IsLastQueenOrRookLost(CBlackReply& reply);        // save_queen_rook.cpp
bool AreFiguresLost(CBlackReply& reply);               // lost_figures.cpp
bool AreKingsTooFar(CBlackReply& reply);               // kings_near.cpp
bool HasKingLeftCorner(CBlackReply& reply);            // king_near_corner.cpp
bool HasKingLeftEdge(CBlackReply& reply);              // king_on_edge.cpp
bool HasKingLeftExtEdge(CBlackReply& reply);           // king_within_ext_edge.cpp
bool IsKnightOutOfReach(CBlackReply& reply);           // knight_hunt.cpp
bool IsHopelessByTables(CBlackReply& reply);           // table_reduction.cpp
bool HasLeftPendulum(CBlackReply& reply);              // pendulum.cpp
bool IsKeyFigureGone(CBlackReply& reply);              // key_pin.cpp

}  // namespace rules

// Dynamic relaxation (dynamic_relaxation.cpp)

enum class EEdgeRule : u8 { kEdge, kExtEdge };

// An edge rule is about to give up the reply. True if it must not: the settings release it or put it
// off. May write kSearchEdgeDeferred and kSearchEdgeReleased of the node.
bool IsEdgeRuleRelaxed(CBlackReply& reply, EEdgeRule rule);
// A test that was put off in this line is still to be answered for.
inline bool IsEdgeTestDeferred(const TChessboard& node) {
    return (node.m_searchFlags & kSearchEdgeDeferred) != 0;
}
// Half-moves below which the deferred test falls due in the line of the node, which carries
// kSearchEdgeDeferred.
int DeferredUntil(const TChessboard& node);

// The black king stands on the edge, as the settings understand it.
bool IsOnEdge(const THeuristicSettings& settings, int square);  // king_on_edge.cpp

// Lines

// The square lies on the whole line of the two others, which must share one; a rook's line or a
// bishop's by `kind`.
bool IsOnLineOf(u8 kind, int a, int b, int square);  // key_lines.cpp

// What black's move does to the word

// The reply breaks the pin of the key figure, so that its bit goes.
bool EndsKeyPin(const CBlackReply& reply);  // key_pin.cpp
// The reply leaves the pendulum, and the plan was not the user's, so that the bit goes.
bool EndsSeaSnake(const CBlackReply& reply);  // pendulum.cpp
// A man of the frame around a single queen and the king has moved or fallen.
bool EndsSingleQueen(const CBlackReply& reply);  // queen_frame.cpp

}  // namespace quillmere
