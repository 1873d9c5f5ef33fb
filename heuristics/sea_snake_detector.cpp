// Finding the sea snake.
//
// The pattern is read off the root as if white stood still:
//   1. The pendulum. But for its pawns black can safely move one man only, to one square only, and
//      from there only back again. A king's legal moves all count as safe.
//   2. The stroke. For each of the two squares: the white king, put next to the other one, takes the
//      swing away while the man stands here. What is left to black are pawn moves, or moves that
//      lose a man; it must not be stalemate.
//   3. The approach, a square next to the stroke on which the king may stand in both phases of the
//      pendulum without disturbing it, and to which it can walk by such squares.
//   4. The triangle. The approach, the square to turn back to and a third one neighbour each other, and
//      all are of that kind. Walking round it takes three moves, an odd number, and the pendulum
//      takes two: so the king can come to the approach with the man on either square.
// Of several, the approach nearest to the king is taken, then the turn back farthest from the
// pendulum, then the lower squares.
//
// Nothing is proved here: whether the zugzwang is worth anything the search will tell. The price
// is a few dozen legality tests, once a solve.
#include "heuristics/sea_snake_detector.h"

#include "core/legality.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/king_walk.h"
#include "heuristics/standing_moves.h"

#include <optional>
#include <tuple>

namespace quillmere {
namespace {

TSquareSet FreeSquares(const TChessboard& node) {
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    return ~(white | black);
}

// The only safe move of all men of black but the pawns; none if there are more or none.
struct TFigureMoves {
    int count = 0;
    TMove first{};
};
TFigureMoves SafeFigureMoves(TChessboard& blackNode) {
    TFigureMoves result;
    for (int square = 0; square < kSquareCount; ++square) {
        if (!IsBlack(blackNode.m_board[square]) || blackNode.m_board[square] == kBlackPawn)
            continue;
        TMove moves[kMoveListSize];
        const int count = GetSafeBlackMoves(blackNode, square, moves);
        if (result.count == 0 && count != 0)
            result.first = moves[0];
        result.count += count;
    }
    return result;
}

// The pendulum in its two phases; black is to move in both.
struct TPendulum {
    int squares[2];
    TChessboard phases[2];
};

std::optional<TPendulum> FindPendulum(TChessboard& node) {
    TPendulum pendulum{};
    pendulum.phases[0] = WithBlackToMove(node);
    const TFigureMoves there = SafeFigureMoves(pendulum.phases[0]);
    const TMove swing = there.first;
    // A man that takes something does not come back to the same position, and castling swings two.
    const bool isCastling =
        node.m_board[swing.from] == kBlackKing && KingDistance(swing.from, swing.to) > 1;
    if (there.count != 1 || node.m_board[swing.to] != 0 || isCastling)
        return std::nullopt;
    pendulum.phases[1] = AfterBlackMove(pendulum.phases[0], swing);
    if (pendulum.phases[1].m_whiteInCheck != kNotInCheck)
        return std::nullopt;
    const TFigureMoves back = SafeFigureMoves(pendulum.phases[1]);
    if (back.count != 1 || back.first.from != swing.to || back.first.to != swing.from)
        return std::nullopt;
    pendulum.squares[0] = swing.from;
    pendulum.squares[1] = swing.to;
    return pendulum;
}

class CSnakeFinder {
public:
    CSnakeFinder(const TChessboard& node, const TPendulum& pendulum)
        : m_pendulum(pendulum),
          m_home(node.WhiteKingSquare()),
          m_quiet((SafeForWhiteKing(pendulum.phases[0]) & SafeForWhiteKing(pendulum.phases[1]) &
                   FreeSquares(pendulum.phases[0]) & FreeSquares(pendulum.phases[1])) |
                  SetOf(m_home)),
          m_walk(KingDistancesTo(m_home, m_quiet)) {}

    // With the pendulum on the square of this phase at the stroke.
    void Find(int phase, TSeaSnakeSquares& result) {
        const int other = m_pendulum.squares[1 - phase];
        TSquareSet strokes = kSetTables.king[other] & SafeForWhiteKing(m_pendulum.phases[phase]) &
                             FreeSquares(m_pendulum.phases[phase]);
        TSquareSet zugzwangs = 0;
        ForEachSquare(strokes, [&](int square) {
            if (IsZugzwangWithKingOn(square, phase))
                zugzwangs |= SetOf(square);
        });
        const TSquareSet calm = m_quiet & ~zugzwangs;
        ForEachSquare(NeighboursOf(zugzwangs) & calm, [&](int approach) {
            ForEachSquare(kSetTables.king[approach] & calm, [&](int turnBack) {
                if ((kSetTables.king[approach] & kSetTables.king[turnBack] & calm) != 0)
                    Offer(approach, turnBack, phase, result);
            });
        });
    }

private:
    // Smaller is better.
    using TRank = std::tuple<int, int, int, int, int>;

    bool IsZugzwangWithKingOn(int square, int phase) const {
        TChessboard node = m_pendulum.phases[phase];
        node.m_board[m_home] = 0;
        node.m_board[square] = kWhiteKing;
        ValidateBoard(node, false);
        TMoveList replies;
        return SafeFigureMoves(node).count == 0 && GetLegalMoves(node, replies.moves) != 0;
    }

    void Offer(int approach, int turnBack, int phase, TSeaSnakeSquares& result) {
        if (m_walk[approach] == kUnreachable)
            return;
        const int pendulum = m_pendulum.squares[1 - phase];
        const TRank rank(
            m_walk[approach], -KingDistance(turnBack, pendulum), approach, turnBack, phase);
        if (result.approach != kNoSquare && m_best <= rank)
            return;
        m_best = rank;
        result.approach = static_cast<u8>(approach);
        result.turnBack = static_cast<u8>(turnBack);
        result.pendulum1 = static_cast<u8>(m_pendulum.squares[phase]);
        result.pendulum2 = static_cast<u8>(m_pendulum.squares[1 - phase]);
    }

    const TPendulum& m_pendulum;
    int m_home;
    TSquareSet m_quiet;  // free, and safe for the king in both phases
    TKingDistances m_walk;
    TRank m_best{};
};

}  // namespace

void SeaSnakeDetect(TChessboard& node, TSeaSnakeSquares& result, int moves) {
    result = TSeaSnakeSquares{};
    if (moves < kSeaSnakeHalfMoves || !node.IsWhiteToMove() || node.m_whiteInCheck != kNotInCheck)
        return;
    const std::optional<TPendulum> pendulum = FindPendulum(node);
    if (!pendulum)
        return;
    CSnakeFinder finder(node, *pendulum);
    finder.Find(0, result);
    finder.Find(1, result);
}

void StoreSeaSnake(TChessboard& node, const TSeaSnakeSquares& squares) {
    if (squares.approach == kNoSquare)
        return;
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    settings.SeaSnakeApproach = squares.approach;
    settings.SeaSnakeTurnBack = squares.turnBack;
    settings.SeaSnakePendulum1 = squares.pendulum1;
    settings.SeaSnakePendulum2 = squares.pendulum2;
    settings.SeaSnakeByUser = false;
    node.m_searchContext->SeaSnakeOnlyAfter = squares.onlyAfter;
    SetHeur(node, node.Heur | SH_SEASNAKE);
}

}  // namespace quillmere
