// What the selection asks the board, where a count does not tell.
//
// Rules of thumb about a root with white to move: a wrong answer costs a pass that finds nothing, never
// a verdict. They leave the node as it was.
#pragma once

#include "core/chessboard.h"
#include "heuristics/selection_facts.h"

namespace quillmere {

// Black has a figure or a pawn that attacks, or can attack with its next move, a queen or rook of white.
bool CanAttackHeavyFigures(TChessboard& root);
// The black king is shut in behind its own men: white comes at it only with what it can afford to give.
bool IsFortress(const TSelectionFacts& facts);
// A black pawn can promote within the task: no man of white stands before it on its file.
bool CanBlackPromote(const TChessboard& root, const TSelectionFacts& facts);
// A black queen is there, or can come, and has a square from which it checks in two moves.
bool CanQueenCheck(TChessboard& root);
// White's king must come to the black king: what white has cannot mate by itself.
bool IsWhiteKingNeeded(const TChessboard& root, const TSelectionFacts& facts);
// White mates with what it has: losing a figure leaves too little.
bool NeedsItsFigures(const TChessboard& root, const TSelectionFacts& facts);
// A figure (not a pawn) of white is attacked.
bool IsWhiteFigureEnPrise(const TChessboard& root);

}  // namespace quillmere
