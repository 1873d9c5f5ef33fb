// Which black men stand blocked at the root.
//
// A man of black that could not move safely if it were black's turn is taken to be blocked: it has
// no legal move, or only such as lose it. Pawns go first, for a chain of pawns that stand is what
// holds the figures behind it; after them the figures. The king is never listed.
//
// Castling is no way out for a rook here: the king's moves belong to other rules.
#include "heuristics/block_finder.h"

#include "core/thread_context.h"
#include "heuristics/blocked_list.h"
#include "heuristics/choice.h"
#include "heuristics/heur_params.h"
#include "heuristics/standing_moves.h"

namespace quillmere {

std::vector<u8> FindBlockedFigures(TChessboard& node) {
    std::vector<u8> squares;
    if (!node.IsWhiteToMove() || node.m_whiteInCheck != kNotInCheck)
        return squares;
    TChessboard black = WithBlackToMove(node);
    for (const bool arePawns : {true, false}) {
        for (int square = 0; square < kSquareCount; ++square) {
            const u8 figure = node.m_board[square];
            if (!IsBlack(figure) || figure == kBlackKing || (figure == kBlackPawn) != arePawns ||
                squares.size() == kMaxBlockedFigures)
                continue;
            TMove moves[kMoveListSize];
            if (GetSafeBlackMoves(black, square, moves) == 0)
                squares.push_back(static_cast<u8>(square));
        }
    }
    return squares;
}

int BlockFinder(TChessboard& node) {
    if (node.m_nMoves < kBlockFinderHalfMoves)
        return 0;
    const std::vector<u8> squares = FindBlockedFigures(node);
    if (squares.empty())
        return 0;
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    settings.BlockedFigureCountBefore = settings.BlockedFigureCount;
    ClearBlockedFigures(settings);
    for (const u8 square : squares)
        AddBlockedFigure(settings, square);
    TrackBlockedFigures(node);
    SetHeur(node, node.Heur | SH_DONTLETFIGUREUNBLOCK);
    return settings.BlockedFigureCount;
}

}  // namespace quillmere
