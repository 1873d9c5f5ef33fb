// What the selection of heuristics knows about a root before it decides anything.
#pragma once

#include "core/chessboard.h"

#include <vector>

namespace quillmere {

// The class of a position, built bit by bit; it lives as long as the selection. 0x20 and 0x400 go to
// the node under the same values, the tied test as kPositionTied.
enum EMobilityClass : u32 {
    kClassSmallMaterial = 0x1,  // under eight figures in all
    kClassKingOnEdge = 0x2,     // the black king stands on the edge or beside it
    kClassWalledKing = 0x4,     // black's own men leave its king hardly a step
    kClassClosed = 0x8,         // many men, and black has hardly a move
    kClassForcedMates = 0x10,   // suits the search for forced mates
    kClassManyReplies = 0x20,   // black has 12 or more legal moves
    kClassPawnsOnly = 0x40,     // neither side has a figure
    kClassLoneBishop = 0x80,    // white has one bishop and nothing else
    kClassTied = 0x100,         // hardly a man of black can move
    kClassBareKing = 0x400,     // black has only its king
};

struct TSelectionFacts {
    int halfMoves = 0;
    int moveCount = 0;    // white's legal first moves
    int forcedMoves = 0;  // of them, those that check or threaten
    int QuietMoves() const { return moveCount - forcedMoves; }

    int men = 0;  // of both sides
    int whiteMaterial = 0;
    int blackMaterial = 0;
    int whiteFigures = 0;
    int blackFigures = 0;
    int WhiteHeavy() const { return whiteQueens + whiteRooks; }
    int whiteQueens = 0;
    int whiteRooks = 0;

    // Black's if it were to move; none while white is in check.
    int blackMoves = 0;
    int movableBlackMen = 0;  // besides the king
    int flights = 0;          // squares that the black king could step to
    int edgeDistance = 0;     // of the black king, 0..3
    int kingDistance = 0;     // king moves between the kings

    // Squares of black men that cannot move safely; filled by the step of the selection.
    std::vector<u8> blocked;

    u32 classWord = 0;  // EMobilityClass
};

// Of a root with white to move. `moveCount` and `forcedMoves` are those of its sorted list. The node
// needs a thread context and is left as it was.
TSelectionFacts FindSelectionFacts(TChessboard& root, int moveCount, int forcedMoves);

}  // namespace quillmere
