// The number of a move as people count it.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// Of the move to be made in the node. White's first move is number 1, and so is the reply to it;
// where black begins, black's first move is number 1 and white's reply number 2.
inline int MoveNumberOf(const TChessboard& node) {
    const bool blackBegins = node.m_nRootMoves % 2 == 0;
    return (node.Ply() + (blackBegins ? 1 : 0)) / 2 + 1;
}

}  // namespace quillmere
