// SH_KEYWHITEFIGURE, white's list.
//
// A white figure that stands safely and pins an important black figure to an immobile king holds the
// whole position; the solution plays around it. Left out of white's list are
//   - all moves of the key figure itself, except a safe capture of the pinned figure;
//   - captures of the pinned figure by any man that black can safely take back;
//   - moves of other men onto the line between the key figure and the black king, which end the pin.
// The list is used as long as the pin stands in the node and kPinHalfMoves remain: near the end the
// pin has done its work, and the figure may mate itself. What is lost are solutions that change the
// pinning figure or give it up. It costs a copy of the node for each capture of the pinned figure.
#include "heuristics/key_white_figure.h"

#include "core/attacks.h"
#include "core/geometry.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/thread_context.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr int kPinHalfMoves = 8;

// Strictly between two squares of a line.
bool IsBetween(int square, int a, int b) {
    return square != a && square != b && LineStep(a, b) != 0 &&
           LineStep(a, square) == LineStep(a, b) && LineStep(square, b) == LineStep(a, b);
}

bool IsPinStanding(const TChessboard& node, int key, int pinned) {
    if (key >= kSquareCount || pinned >= kSquareCount)
        return false;
    const int king = node.BlackKingSquare();
    return IsWhite(node.m_board[key]) && IsBlack(node.m_board[pinned]) &&
           IsBetween(pinned, key, king) && (node.m_board[key] & LineBit(key, king)) != 0 &&
           IsLineClear(node.m_board, key, pinned, LineStep(key, king)) &&
           IsLineClear(node.m_board, pinned, king, LineStep(key, king));
}

// The square of the man that the pseudo-legal move takes, if any.
int CapturedSquare(const TChessboard& node, TMove move) {
    const bool isPassing = node.m_board[move.from] == kWhitePawn && node.m_board[move.to] == 0 &&
                           FileOf(move.from) != FileOf(move.to);
    return isPassing ? move.to - 8 : move.to;
}

bool IsSafeCapture(TChessboard& node, TMove move) {
    TChessboard child = node;
    child.m_parent = &node;
    u8 capturer = 0;
    return MakeWhiteMoveFast(child, move) == kMoveMade &&
           !CanBlackCaptureSafely(child, FileOf(move.to), RankOf(move.to), &capturer);
}

bool KeepsPin(TChessboard& node, int key, int pinned, TMove move) {
    if (CapturedSquare(node, move) == pinned)
        return IsSafeCapture(node, move);
    return move.from != key && !IsBetween(move.to, key, node.BlackKingSquare());
}

}  // namespace

bool KeyFigureMoves(TChessboard& node, TMoveList& list) {
    const THeuristicSettings& settings = node.m_threadContext->heuristics;
    const int key = settings.KeyWhiteFigureSquare;
    const int pinned = settings.KeyWhiteFigurePinned;
    if (node.m_nMoves < kPinHalfMoves || !IsPinStanding(node, key, pinned))
        return false;
    const int all = GetAllWhiteMoves(node, list.moves);
    const TMove* end = std::remove_if(list.moves, list.moves + all, [&](TMove move) {
        return !KeepsPin(node, key, pinned, move);
    });
    list.count = static_cast<int>(end - list.moves);
    return list.count != 0 && list.count != all;
}

}  // namespace quillmere
