#include "heuristics/standing_moves.h"

#include "core/attacks.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/move_generation.h"

namespace quillmere {
namespace {

constexpr u16 kBlackToMove = 2;

int ValueOf(u8 figure) {
    return figure == 0 ? 0 : kFigureValues[KindOf(figure)];
}

// Worth of the cheapest white man that takes on the square; -1 if none does. A pinned man and a king
// in front of a protected square take nothing.
int CheapestCapture(const TChessboard& node, int square, bool isProtected) {
    u8 capturers[16];
    const int count = GetWhiteCapturers(node, FileOf(square), RankOf(square), capturers);
    int cheapest = -1;
    for (int i = 0; i < count; ++i) {
        if ((capturers[i] & kPinnedMark) != 0)
            continue;
        const u8 figure = node.m_board[capturers[i]];
        if (figure == kWhiteKing && isProtected)
            continue;
        // A king loses nothing where it takes safely.
        const int value = figure == kWhiteKing ? 0 : ValueOf(figure);
        if (cheapest < 0 || value < cheapest)
            cheapest = value;
    }
    return cheapest;
}

}  // namespace

TChessboard WithBlackToMove(TChessboard& node) {
    TChessboard black = node;
    black.m_parent = &node;
    black.m_lastMove = TMove{};
    black.m_nMoves = kBlackToMove;
    return black;
}

TChessboard AfterBlackMove(const TChessboard& blackNode, TMove move) {
    TChessboard after = blackNode;
    u8 figure = after.m_board[move.from];
    const bool isPassing =
        figure == kBlackPawn && after.m_board[move.to] == 0 && FileOf(move.from) != FileOf(move.to);
    const int capturedAt = isPassing ? move.to + 8 : move.to;
    if (move.Promotion() != 0)
        figure = static_cast<u8>(kBlack | move.Promotion());
    after.m_board[capturedAt] = 0;
    after.m_board[move.from] = 0;
    after.m_board[move.to] = figure;
    ValidateBoard(after, false);
    after.m_lastMove = TMove{};
    return after;
}

bool IsSafeBlackMove(const TChessboard& blackNode, TMove move) {
    const TChessboard after = AfterBlackMove(blackNode, move);
    if (after.m_board[move.to] == kBlackKing)
        return true;
    const bool isProtected = IsAttackedByBlack(after, move.to);
    const int attacker = CheapestCapture(after, move.to, isProtected);
    if (attacker < 0)
        return true;
    const int lost = ValueOf(after.m_board[move.to]) - ValueOf(blackNode.m_board[move.to]);
    return lost - (isProtected ? attacker : 0) <= 0;
}

int GetSafeBlackMoves(TChessboard& blackNode, int square, TMove* list) {
    const int all = GetBlackMoves(blackNode, square, list);
    int count = 0;
    for (int i = 0; i < all; ++i) {
        if (blackNode.m_board[list[i].to] == kWhiteKing)
            continue;  // white stands still in check
        if (IsLegalMove(blackNode, list[i]) && IsSafeBlackMove(blackNode, list[i]))
            list[count++] = list[i];
    }
    return count;
}

}  // namespace quillmere
