#include "heuristics/conflicts.h"

#include "core/search_context.h"
#include "heuristics/parameter_words.h"
#include "heuristics/pinned_figure.h"

#include <algorithm>
#include <cstdlib>

namespace quillmere {
namespace {

// Black has no more men than this besides its king.
constexpr int kMostCaptures = 15;
// Twice as many half-moves still fit the field of the limit.
constexpr int kMostDeferredMoves = 32767;
// The mode of forced mates and its relaxations stay below it.
constexpr int kForcedModes = 10;

bool IsBlackFigureAt(const TChessboard& board, u8 square) {
    return square < kSquareCount && IsBlack(board.m_board[square]) &&
           KindOf(board.m_board[square]) != kKing;
}

bool IsWhiteFigureAt(const TChessboard& board, u8 square) {
    return square < kSquareCount && IsWhite(board.m_board[square]) &&
           KindOf(board.m_board[square]) != kKing;
}

bool IsDiagonal(const u8 (&squares)[2]) {
    if (squares[0] >= kSquareCount || squares[1] >= kSquareCount || squares[0] == squares[1])
        return false;
    return std::abs(FileOf(squares[0]) - FileOf(squares[1])) ==
           std::abs(RankOf(squares[0]) - RankOf(squares[1]));
}

// The more relaxations of the two rounds.
int ForcedMateRelaxations(const THeuristicSettings& settings) {
    return std::max(settings.FfmRelaxations,
                    settings.FfmCustom ? settings.FfmCustomRelaxations : u8{0});
}

// 1 and up for the first blocked figure whose square holds none; 0 for none such.
int BadBlockedFigure(const THeuristicSettings& settings, const TChessboard& board) {
    for (int i = 0; i < settings.BlockedFigureCount && i < kMaxBlockedFigures; ++i) {
        if (!IsBlackFigureAt(board, settings.BlockedFigureSquares[i]))
            return i + 1;
    }
    return 0;
}

}  // namespace

std::optional<THeuristicConflict> FindHeuristicConflict(u32 heur,
                                                        const THeuristicSettings& settings,
                                                        const TSearchContext& context,
                                                        const TChessboard& board) {
    using enum EMessage;
    const auto has = [heur](u32 bits) { return (heur & bits) == bits; };
    const bool isStrictKing = has(SH_KEEPKINGONTHEEDGE) && settings.StrictKingMove;
    const int corner = settings.NearCornerDistance;
    const int badBlocked = has(SH_DONTLETFIGUREUNBLOCK) ? BadBlockedFigure(settings, board) : 0;

    // In the order in which the fields of the dialog are looked at.
    if (settings.KingMoveExceptions && !isStrictKing)
        return {{kConflictExceptionsAlone, {}}};
    if (isStrictKing && has(SH_KEEPKINGWITHINEXTEDGE))
        return {{kConflictKingMoveAndEdge, {}}};
    if (has(SH_KEEPKINGNEARCORNER) &&
        (corner == 0 || corner > kMaxCornerSquares || corner < -kMaxCornerMoves))
        return {{kConflictCornerDistance, {}}};
    if (settings.RelaxAfterCaptures > kMostCaptures)
        return {{kConflictCaptures, {}}};
    if (settings.DeferCheckMoves > kMostDeferredMoves)
        return {{kConflictDeferMoves, {}}};
    if (settings.DeferCheckMoves != 0 && !settings.RelaxOnAdvancedPawn &&
        settings.RelaxAfterCaptures == 0)
        return {{kConflictDeferAlone, {}}};
    if (settings.LoseFiguresMode >= kLoseFiguresWords.size())
        return {{kConflictLoseFigures, {}}};
    if (settings.BlackFigureOnDiagonal != kNoSquare &&
        !IsBlackFigureAt(board, settings.BlackFigureOnDiagonal))
        return {{kConflictFigureOnDiagonal, {}}};
    if (badBlocked != 0)
        return {{kConflictBlockedFigure, {std::to_string(badBlocked)}}};
    if (has(SH_KEYWHITEFIGURE) && !IsWhiteFigureAt(board, settings.KeyWhiteFigureSquare))
        return {{kConflictKeyWhiteFigure, {}}};
    if (has(SH_KEYWHITEFIGURE) &&
        PinnedByKeyFigure(board, settings.KeyWhiteFigureSquare) == kNoSquare)
        return {{kConflictPinnedPiece, {}}};
    if (has(SH_KEYLINE) && context.KeyLineFile > 7)
        return {{kConflictKeyLine, {}}};
    if (has(SH_KEYDIAGONAL) && !IsDiagonal(context.KeyDiagonalSquares))
        return {{kConflictKeyDiagonal, {}}};
    if (has(SH_FINDFORCEDMATE) &&
        ForcedMateRelaxations(settings) > kForcedModes - settings.FfmMode - 1)
        return {{kConflictForcedMateTooManyRelaxations,
                 {std::to_string(kForcedModes - settings.FfmMode - 1)}}};
    if (has(SH_FINDFORCEDMATE | SH_SEASNAKE))
        return {{kConflictForcedMateAndSeaSnake, {}}};
    if (has(SH_ZUGZWANG) && !context.HasZugzwangPosition)
        return {{kConflictZugzwangMove, {}}};
    if (heur == 0)
        return {{kConflictNothingSelected, {}}};
    return std::nullopt;
}

}  // namespace quillmere
