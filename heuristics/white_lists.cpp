// White's list under the heuristics that bring one: each stands in a file of its own.
//
// A list holds moves of the ordinary generators only, and never none: a heuristic whose list would
// be empty has no list. In check white answers the check, whatever the plan. One-colour play, the
// fifth of kListHeuristics, acts in the make-move and needs no list.
#include "core/search_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/key_white_figure.h"
#include "heuristics/rules.h"
#include "heuristics/sea_snake.h"
#include "heuristics/zugzwang.h"
#include "heuristics/zugzwang_triangles.h"

#include <algorithm>

namespace quillmere {
namespace {

// With fewer half-moves left there is no time to come back to the position of a zugzwang.
constexpr int kZugzwangHalfMoves = 14;

// How much of a sorted list SH_SKIPWORSTWHITEMOVES drops, and what it keeps in any case. Chosen, not
// measured: the heuristic is an experiment.
constexpr int kDroppedShare = 3;
constexpr int kKeptMoves = 12;

bool TakeTriangleMoves(const TChessboard& node, TMoveList& list) {
    return (node.Heur & SH_ZUGZWANGTRIANGLES) != 0 && TriangleMoves(node, list);
}

bool TakeSeaSnakeMoves(TChessboard& node, TMoveList& list) {
    if ((node.Heur & SH_SEASNAKE) == 0)
        return false;
    if (!HasPawnCaptureUnblocked(node))
        return SeaSnakeMoves(node, list);
    SetHeur(node, node.Heur & ~u32{SH_SEASNAKE});
    return false;
}

bool TakeZugzwangMoves(TChessboard& node, TMoveList& list) {
    if ((node.Heur & SH_ZUGZWANG) == 0)
        return false;
    if (ZugzwangMoves(node, list))
        return true;
    if (node.m_searchContext->HasZugzwangPosition && node.m_nMoves < kZugzwangHalfMoves)
        SetHeur(node, node.Heur & ~u32{SH_ZUGZWANG});
    return false;
}

bool TakeKeyFigureMoves(TChessboard& node, TMoveList& list) {
    return (node.Heur & SH_KEYWHITEFIGURE) != 0 && KeyFigureMoves(node, list);
}

}  // namespace

bool rules::ReplaceWhiteMoves(TChessboard& node, TMoveList& list) {
    return node.m_whiteInCheck < 0 &&
           (TakeTriangleMoves(node, list) || TakeSeaSnakeMoves(node, list) ||
            TakeZugzwangMoves(node, list) || TakeKeyFigureMoves(node, list));
}

int rules::CountWithoutWorst(int count) {
    return count <= kKeptMoves ? count : std::max(kKeptMoves, count - count / kDroppedShare);
}

bool TakeFullList(TChessboard& node) {
    if ((node.Heur & SH_DONTLETFIGUREUNBLOCK) == 0)
        return false;
    SetHeur(node, node.Heur & ~u32{SH_DONTLETFIGUREUNBLOCK});
    return true;
}

}  // namespace quillmere
