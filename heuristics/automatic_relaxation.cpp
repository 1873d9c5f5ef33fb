// Automatic relaxation of the edge rules, inside a pass.
//
// The rules that keep the black king on the edge or surrounded describe the play up to a turning
// point. Behind it the king may be hunted across the board, and the rules would leave out the rest
// of the solution. Three turning points are known:
//   - the capture of a knight under SH_CAPTUREKNIGHT;
//   - a capture of a figure that leaves black none, or one against a white queen, while white keeps
//     a queen or a rook and kTimeToHunt half-moves remain. Asked for by `AutomaticDynamicRelax`, and
//     not while the king may not move at all: then there is no hunt. SH_SAVEQUEEN/ROOK comes on
//     with the last queen or rook, which must mate;
//   - a promotion to a queen with check along the edge on which the king stands, where the queen
//     cannot be taken and another figure stands by.
// A weaker word leaves out fewer lines, so nothing is lost here but time. Everything is a count or
// two, and behind the last conditions one test of the queen's safety.
#include "heuristics/automatic_relaxation.h"

#include "core/attacks.h"
#include "core/material.h"
#include "core/thread_context.h"
#include "heuristics/last_white_move.h"

namespace quillmere {
namespace {

constexpr int kTimeToHunt = 10;  // half-moves left behind the capture

// The word with the edge widened by one ring.
u32 WithWiderEdge(u32 heur) {
    return (heur & ~u32{SH_KEEPKINGONTHEEDGE}) | SH_KEEPKINGWITHINEXTEDGE;
}

bool IsBlackKingHeldStill(const TChessboard& child, u32 heur) {
    return (heur & SH_KEEPKINGONTHEEDGE) != 0 && child.m_threadContext->heuristics.StrictKingMove &&
           (child.m_searchFlags & kSearchEdgeReleased) == 0;
}

// Two squares of one edge of the board.
bool AreOnOneEdge(int a, int b) {
    return (RankOf(a) == RankOf(b) && kEdgeDistance[RankOf(a)] == 0) ||
           (FileOf(a) == FileOf(b) && kEdgeDistance[FileOf(a)] == 0);
}

}  // namespace

u32 RelaxAfterKnightCapture(u32 heur, u8 captured) {
    if ((heur & SH_CAPTUREKNIGHT) == 0 || captured != kBlackKnight)
        return heur;
    heur &= ~u32{SH_CAPTUREKNIGHT};
    return (heur & SH_KEEPKINGONTHEEDGE) != 0 ? WithWiderEdge(heur)
                                              : heur & ~u32{SH_KEEPKINGWITHINEXTEDGE};
}

u32 RelaxAfterDecision(const TChessboard& child, u32 heur, u8 captured) {
    constexpr u32 kRelaxed = SH_ASSERTBLACKKINGSURROUNDED | SH_KEEPKINGONTHEEDGE;
    if ((heur & kRelaxed) == 0 || !IsFigureCode(captured) || child.m_nMoves < kTimeToHunt ||
        !child.m_threadContext->heuristics.AutomaticDynamicRelax)
        return heur;
    const int blackFigures = CountBlackFigures(child);
    const int queens = child.m_counts[kWhiteQueens];
    const int heavyFigures = queens + child.m_counts[kWhiteRooks];
    if (blackFigures > (queens != 0 ? 1 : 0) || heavyFigures == 0 ||
        IsBlackKingHeldStill(child, heur))
        return heur;
    if (heavyFigures == 1)
        heur |= SH_SAVEQUEENROOK;
    return (heur & SH_ASSERTBLACKKINGSURROUNDED) != 0 ? heur & ~u32{SH_ASSERTBLACKKINGSURROUNDED}
                                                      : WithWiderEdge(heur);
}

u32 RelaxAfterPromotion(const TChessboard& child, u32 heur) {
    constexpr int kQueenAndHelper = 2;
    const int queen = child.m_lastMove.to;
    if ((heur & kEdgeRules) == 0 || child.m_lastMove.Promotion() != kQueen ||
        child.m_threadContext->heuristics.PromotionSafety ||
        CountWhiteFigures(child) < kQueenAndHelper || child.m_blackInCheck != queen ||
        !AreOnOneEdge(queen, child.BlackKingSquare()))
        return heur;
    u8 capturer = 0;
    return CanBlackCaptureSafely(child, FileOf(queen), RankOf(queen), &capturer)
               ? heur
               : heur & ~kEdgeRules;
}

}  // namespace quillmere
