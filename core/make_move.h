// The make-move operations: they apply a move to a node that is a fresh copy of its parent.
//
// The caller copies the parent into the node stack, sets m_parent of the copy, and calls one of
// these; leaving the move means forgetting the copy. A result other than kMoveMade leaves a
// spoiled copy that the next copy overwrites. The node must have a thread context: the line's
// capture lists and the repetition horizons live there.
//
// White and black have separate routines: white's keeps the data of the attack, black's that of
// the defence.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

enum EMakeMove : int {
    // Illegal, or pointless for white by a rule that has a proof.
    kMoveIllegal = 0,
    kMoveMade = 1,
    // Black's move is legal, and white can never mate again: proved.
    kMateImpossible = -1,
    // The same by a rule of thumb: the node is doubtful, not "no mate".
    kMateImpossibleAssumed = -2,
    // Legal, but left out by an assumption: the node is tainted.
    kMoveLeftOut = -3,
};

// One full move of white: lists, counts, check field of black, capture lists, flags. Answers
// kMoveIllegal also where the move leaves white without mating material against a bare king.
// Returns kMoveMade, kMoveIllegal or kMoveLeftOut.
int MakeWhiteMove(TChessboard& node, TMove move);

// One full move of black, or the null move of one-colour play. skipKingTest says that the list was
// filtered for king moves into check. Returns any value of EMakeMove.
int MakeBlackMove(TChessboard& node, TMove move, bool skipKingTest);

// A lean white move for the tests of the last plies: board, counts, figure lists, kings, black's
// check field and m_nMoves are right after it. It records no capture, asks no rule about material,
// applies no assumption and leaves the marks of the line as they come. Returns kMoveMade or
// kMoveIllegal.
int MakeWhiteMoveFast(TChessboard& node, TMove move);

// The same full moves for people: pure legality, no rule about mating material and no assumption.
// Returns kMoveMade or kMoveIllegal.
int MakeWhiteMoveLegal(TChessboard& node, TMove move);
int MakeBlackMoveLegal(TChessboard& node, TMove move);

// A black figure that stands on the square in this node was promoted on this line.
bool WasPromotedInLine(const TChessboard& node, int square);

// A pass on a copy of a node, for tests that ask what the other side could do now: the side to
// move changes, en passant is off, m_nMoves falls by one. No check field is recomputed.
void MakeNullMove(TChessboard& node);

}  // namespace quillmere
