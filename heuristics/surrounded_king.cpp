// SH_ASSERTBLACKKINGSURROUNDED.
//
// A short mate in a composition mostly has the black king surrounded from the first move to the
// last: white moves that leave it many free squares are tries of the solver, not of the author. The
// rule counts, after each white move, the squares that the black king can step to, and leaves the
// move out when there are more than a limit. The limit is wide where white has much to mate with or
// much has just changed; the table stands in AllowedFlights. What is lost are solutions that begin
// by letting the king out on purpose.
//
// Over the limit, but let through:
//   - with a white queen against none: queen moves that do not leave a line through the black king
//     (a queen behind another man looks at the king; from anywhere else it may come and go);
//   - checks by a queen that a black man could take if it were not pinned.
//
// The count is exact whatever attacks the squares, and costs one table look-up for each white man
// (core/king_zone.h), so that no cheaper one is wanted where white has few figures.
#include "heuristics/surrounded_king.h"

#include "core/attacks.h"
#include "core/geometry.h"
#include "core/material.h"
#include "core/move_generation.h"
#include "core/thread_context.h"
#include "heuristics/last_white_move.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr int kStrictFlights = 2;
constexpr int kQuietFlights = 2;
constexpr int kCheckFlights = 3;
constexpr int kManyQueens = 3;
constexpr int kManyFigures = 5;
constexpr int kFiguresAgainstBareSide = 3;

bool HasPawnBeforePromotion(const TChessboard& board) {
    const u8* rank = board.m_board + SquareAt(0, 6);
    return board.m_counts[kWhitePawns] != 0 && std::find(rank, rank + 8, kWhitePawn) != rank + 8;
}

// White has, or will have, a queen or two to hold the king with from afar.
int QueensAddition(const TChessboard& child) {
    const u8* c = child.m_counts;
    if (c[kWhiteQueens] >= kManyQueens && CountWhiteFigures(child) < kManyFigures)
        return 2;
    const bool isRookAtEdge = c[kWhiteRooks] != 0 && EdgeDistance(child.BlackKingSquare()) == 0 &&
                              (c[kWhiteQueens] != 0 || HasPawnBeforePromotion(child));
    return c[kWhiteQueens] >= 2 || (child.m_searchFlags & kSearchPromotionAhead) != 0 ||
                   isRookAtEdge
               ? 1
               : 0;
}

// The black move before white's took a figure.
bool HasBlackTakenFigure(const TChessboard& child) {
    const TChessboard& node = *child.m_parent;
    return node.m_parent != nullptr && !node.m_lastMove.IsNull() &&
           IsFigureCode(node.m_parent->m_board[node.m_lastMove.to]);
}

// What has just changed: a new queen takes its place, a lost figure must be made good.
int ChangesAddition(const TChessboard& child) {
    return (child.m_lastMove.Promotion() == kQueen ? 1 : 0) + (HasBlackTakenFigure(child) ? 1 : 0);
}

// Against a side without figures there is time to catch the king again.
int BareSideAddition(const TChessboard& child) {
    if ((child.m_searchFlags & kSearchPromotionPassed) != 0 || CountBlackFigures(child) != 0 ||
        CountWhiteFigures(child) < kFiguresAgainstBareSide)
        return 0;
    return CapturedByWhite(child) == kBlackPawn ? 2 : 1;
}

// The queen moved, and off a line that it had with the black king.
bool HasQueenLeftLine(const TChessboard& child) {
    const TMove move = child.m_lastMove;
    const int king = child.BlackKingSquare();
    const int line = LineStep(move.from, king);
    return line != 0 && LineStep(move.to, king) != line && LineStep(move.to, king) != -line;
}

bool IsQueenAtWork(const TChessboard& child) {
    return child.m_counts[kWhiteQueens] != 0 && child.m_counts[kBlackQueens] == 0 &&
           MovedByWhite(child) == kWhiteQueen && !HasQueenLeftLine(child);
}

bool IsCheckingQueenProtectedByPin(const TChessboard& child) {
    const int checker = child.m_blackInCheck;
    if (checker < 0 || checker == kDoubleCheck || child.m_board[checker] != kWhiteQueen)
        return false;
    u8 capturers[16];
    const int count = GetBlackCapturers(child, FileOf(checker), RankOf(checker), capturers);
    return std::any_of(capturers, capturers + count, [](u8 entry) { return entry >= kPinnedMark; });
}

}  // namespace

int AllowedFlights(const TChessboard& child) {
    if (child.m_threadContext->heuristics.SurroundedStrict)
        return kStrictFlights;
    if (child.m_blackInCheck == kDoubleCheck)
        return kAnyFlights;
    const int additions = QueensAddition(child) + ChangesAddition(child);
    if (child.m_blackInCheck >= 0)
        return kCheckFlights + additions;
    const bool isLastFigureSaved =
        (child.Heur & SH_SAVEQUEENROOK) != 0 && CountWhiteFigures(child) == 1;
    return kQuietFlights + (isLastFigureSaved ? 1 : 0) + additions + BareSideAddition(child);
}

bool IsKingLetOut(TChessboard& child) {
    const int allowed = AllowedFlights(child);
    return CountFlights(child, allowed + 1) > allowed && !IsQueenAtWork(child) &&
           !IsCheckingQueenProtectedByPin(child);
}

}  // namespace quillmere
