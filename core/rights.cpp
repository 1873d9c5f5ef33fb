#include "core/rights.h"

#include "core/thread_context.h"

namespace quillmere {
namespace {

// No move of the line, from this node up to the root, went to one of the two squares. A pass moves
// nothing, whatever square its record names.
bool IsLineOffSquares(const TChessboard& node, int kingHome, int rookHome) {
    for (const TChessboard* n = &node; n->m_parent != nullptr; n = n->m_parent) {
        const TMove move = n->m_lastMove;
        if (!move.IsNull() && (move.to == kingHome || move.to == rookHome))
            return false;
    }
    return true;
}

// The root of the game tree: the thread's, or the end of the chain for a free-standing board.
const TChessboard& RootOf(const TChessboard& node) {
    if (node.m_threadContext != nullptr && node.m_threadContext->rootNode != nullptr)
        return *node.m_threadContext->rootNode;
    const TChessboard* n = &node;
    while (n->m_parent != nullptr)
        n = n->m_parent;
    return *n;
}

bool StandAtHome(const TChessboard& board, int kingHome, int rookHome, u8 colour) {
    return board.m_board[kingHome] == (colour | kKing) &&
           board.m_board[rookHome] == (colour | kRook);
}

bool HasRight(const TChessboard& node, int kingHome, int rookHome, u8 colour) {
    return StandAtHome(node, kingHome, rookHome, colour) &&
           StandAtHome(RootOf(node), kingHome, rookHome, colour) &&
           IsLineOffSquares(node, kingHome, rookHome);
}

}  // namespace

bool HasWhiteCastlingRight(const TChessboard& node, bool kingSide) {
    return HasRight(node, kSquareE1, kingSide ? kSquareH1 : kSquareA1, kWhite);
}

bool HasBlackCastlingRight(const TChessboard& node, bool kingSide) {
    return HasRight(node, kSquareE8, kingSide ? kSquareH8 : kSquareA8, kBlack);
}

int DerivedCastlingRights(const TChessboard& node) {
    return (HasWhiteCastlingRight(node, true) ? 1 : 0) |
           (HasWhiteCastlingRight(node, false) ? 2 : 0) |
           (HasBlackCastlingRight(node, true) ? 4 : 0) |
           (HasBlackCastlingRight(node, false) ? 8 : 0);
}

int DoubleStepSquare(const TChessboard& node) {
    if (node.m_parent == nullptr)
        return kNoSquare;
    const TMove move = node.m_lastMove;
    const int step = move.to - move.from;
    if ((step != 16 && step != -16) || KindOf(node.m_board[move.to]) != kPawn)
        return kNoSquare;
    return move.to;
}

bool IsEnPassantPossible(const TChessboard& node) {
    const int square = DoubleStepSquare(node);
    if (square == kNoSquare)
        return false;
    const u8 capturer = IsWhite(node.m_board[square]) ? kBlackPawn : kWhitePawn;
    return (FileOf(square) > 0 && node.m_board[square - 1] == capturer) ||
           (FileOf(square) < 7 && node.m_board[square + 1] == capturer);
}

bool HasLostCastlingRightAtHome(const TChessboard& node) {
    const auto isLost = [&](int kingHome, int rookHome, u8 colour) {
        return StandAtHome(node, kingHome, rookHome, colour) &&
               !HasRight(node, kingHome, rookHome, colour);
    };
    if (node.m_board[kSquareE1] == kWhiteKing &&
        (isLost(kSquareE1, kSquareH1, kWhite) || isLost(kSquareE1, kSquareA1, kWhite)))
        return true;
    return node.m_board[kSquareE8] == kBlackKing &&
           (isLost(kSquareE8, kSquareH8, kBlack) || isLost(kSquareE8, kSquareA8, kBlack));
}

}  // namespace quillmere
