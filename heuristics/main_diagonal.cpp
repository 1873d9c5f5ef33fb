// SH_DONTLEAVEMAINDIAGONAL on white's side.
//
// In problems where the black king is shut in for good in a corner, the bishop on the long diagonal
// is the lid: it moves to and fro along the diagonal, and the first step off it lets black out. The
// rule leaves out white bishop moves from a long diagonal with the black king on it to any square
// off it. It needs the assumption that the king does not move at all: both heuristics on and
// `StrictKingMove`. What is lost are solutions in which the bishop changes its post. The test is a
// few comparisons.
#include "heuristics/main_diagonal.h"

#include "core/thread_context.h"
#include "heuristics/last_white_move.h"

namespace quillmere {
namespace {

enum class EDiagonal { kNone, kRising, kFalling };

// a1-h8 or h1-a8; they have no square in common.
EDiagonal LongDiagonalOf(int square) {
    if (FileOf(square) == RankOf(square))
        return EDiagonal::kRising;
    return FileOf(square) + RankOf(square) == 7 ? EDiagonal::kFalling : EDiagonal::kNone;
}

}  // namespace

bool HasBishopLeftMainDiagonal(const TChessboard& child) {
    if ((child.Heur & SH_KEEPKINGONTHEEDGE) == 0 ||
        !child.m_threadContext->heuristics.StrictKingMove || MovedByWhite(child) != kWhiteBishop)
        return false;
    const EDiagonal kings = LongDiagonalOf(child.BlackKingSquare());
    return kings != EDiagonal::kNone && LongDiagonalOf(child.m_lastMove.from) == kings &&
           LongDiagonalOf(child.m_lastMove.to) != kings;
}

}  // namespace quillmere
