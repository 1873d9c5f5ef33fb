// SH_SEASNAKE, white's list.
//
// Both sides are in zugzwang: black has one man that swings between two squares, and the white king
// must arrive on the approach square with the man on the first of them. Stepping on from there takes
// the swing away, and black must spoil something, a pawn's move mostly. Then the king turns back and
// comes again. So white's list is the king's way alone:
//   1. On the approach with the man on its first square: the steps that bring the king nearest to
//      the pendulum.
//   2. Elsewhere: the first steps of all shortest routes to the turn-back square and to the approach,
//      over free squares that black does not attack. On the turn-back square, also the steps to the
//      squares that neighbour the approach: the triangle that loses a move. Off both squares the
//      list does not ask where the king comes from, so that the same position has the same list on
//      every way to it; what is doubtful after one way is doubtful after the other.
//   3. White's other moves only if they stand in the list of moves after which the plan begins.
//
// The plain list is used
//   - before the plan begins, if the line differs from the moves it begins after; along them the
//     next of these moves is the only one;
//   - when there is no such way, on the approach also when the pendulum is not known;
//   - near the end: the stroke at last is no king's move.
//
// A black pawn may come to attack the turn-back square. A plan that the program found then turns
// back on another square that forms a triangle with the approach; a plan of the user is taken as it
// stands.
//
// The plan rests on pawns that block each other; when black captures with a pawn out of that block,
// or takes a man out of it, the plan is void, and the node drops the heuristic.
//
// What is lost are solutions with any other move of white. The list costs one walk over the board.
#include "heuristics/sea_snake.h"

#include "core/legality.h"
#include "core/move_generation.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/king_walk.h"

#include <algorithm>

namespace quillmere {
namespace {

// With fewer half-moves left the plain list is cheap, and the figures may mate.
constexpr int kStrokeHalfMoves = 7;

// The node stands behind the first `count` moves of the list, or on its way to there.
bool HasFollowed(const TChessboard& node, const std::vector<TMove>& moves) {
    const TChessboard* n = &node;
    for (; n->m_parent != nullptr && n->Ply() > 0; n = n->m_parent) {
        const auto index = static_cast<std::size_t>(n->Ply() - 1);
        if (index < moves.size() && !MovesEqual(n->m_lastMove, moves[index]))
            return false;
    }
    return n->Ply() == 0;
}

bool IsListed(const TMoveList& list, TMove move) {
    return std::any_of(list.begin(), list.end(), [move](TMove m) { return MovesEqual(m, move); });
}

// The move stands in the plain list and is legal.
bool IsPossible(TChessboard& node, TMove move) {
    TMoveList moves;
    moves.count = GetWhiteMoves(node, move.from, moves.moves);
    return IsListed(moves, move) && IsLegalMove(node, move);
}

class CSnakeList {
public:
    CSnakeList(TChessboard& node, TMoveList& list)
        : m_node(node),
          m_settings(node.m_threadContext->heuristics),
          m_list(list),
          m_king(node.WhiteKingSquare()),
          m_walkable(WalkableSquares(node)) {}

    bool Fill() {
        m_list.count = 0;
        const int approach = m_settings.SeaSnakeApproach;
        const int turnBack = TurnBack();
        if (m_king == approach && !IsPendulumKnown())
            return false;
        if (m_king == approach && IsPendulumOnFirst())
            StepIn();
        else
            Walk(approach, turnBack);
        if (m_list.count == 0)
            return false;
        AddListedMoves();
        return true;
    }

private:
    static TSquareSet WalkableSquares(const TChessboard& node) {
        TSquareSet white = 0;
        TSquareSet black = 0;
        TakeMen(node.m_board, &white, &black);
        return SafeForWhiteKing(node) & ~black;
    }

    bool IsPendulumKnown() const {
        return m_settings.SeaSnakePendulum1 < kSquareCount &&
               m_settings.SeaSnakePendulum2 < kSquareCount;
    }
    bool IsPendulumOnFirst() const { return IsBlack(m_node.m_board[m_settings.SeaSnakePendulum1]); }

    // Squares that form a triangle with the approach and a third one.
    TSquareSet TriangleSquares() const {
        const TSquareSet around = kSetTables.king[m_settings.SeaSnakeApproach] & m_walkable;
        TSquareSet squares = 0;
        ForEachSquare(around, [&](int square) {
            if ((kSetTables.king[square] & around) != 0)
                squares |= SetOf(square);
        });
        return squares;
    }

    int TurnBack() const {
        const int given = m_settings.SeaSnakeTurnBack;
        if (m_settings.SeaSnakeByUser || given == m_king || (m_walkable & SetOf(given)) != 0)
            return given;
        int nearest = given;
        int distance = kSquareCount;
        ForEachSquare(TriangleSquares(), [&](int square) {
            if (KingDistance(square, given) < distance) {
                distance = KingDistance(square, given);
                nearest = square;
            }
        });
        return nearest;
    }

    void Add(TSquareSet targets) {
        ForEachSquare(targets, [&](int to) {
            const TMove step = MakeMove(m_king, to);
            if (!IsListed(m_list, step))
                m_list[m_list.count++] = step;
        });
    }

    void StepIn() {
        const auto distance = [this](int square) {
            return std::min(KingDistance(square, m_settings.SeaSnakePendulum1),
                            KingDistance(square, m_settings.SeaSnakePendulum2));
        };
        int nearest = distance(m_king);
        TSquareSet steps = 0;
        ForEachSquare(kSetTables.king[m_king] & m_walkable, [&](int to) {
            if (distance(to) < nearest)
                steps = 0;
            if (distance(to) < nearest || (steps != 0 && distance(to) == nearest))
                steps |= SetOf(to);
            nearest = std::min(nearest, distance(to));
        });
        Add(steps);
    }

    // Steps that leave at most `spare` moves more than the shortest way.
    void StepTowards(int target, int spare) {
        const TKingDistances distances = KingDistancesTo(target, m_walkable);
        const TSquareSet around = kSetTables.king[m_king] & m_walkable;
        int shortest = kUnreachable;
        ForEachSquare(around, [&](int to) {
            shortest = std::min(shortest, static_cast<int>(distances[to]));
        });
        if (shortest == kUnreachable)
            return;
        ForEachSquare(around, [&](int to) {
            if (distances[to] <= shortest + spare)
                Add(SetOf(to));
        });
    }

    void Walk(int approach, int turnBack) {
        if (m_king != turnBack)
            StepTowards(turnBack, 0);
        if (m_king != approach)
            StepTowards(approach, m_king == turnBack ? 1 : 0);
    }

    void AddListedMoves() {
        const std::vector<TMove>& moves = m_node.m_searchContext->SeaSnakeOnlyAfter;
        for (std::size_t i = 0; i < moves.size(); i += 2) {
            if (moves[i].from != m_king && IsWhite(m_node.m_board[moves[i].from]) &&
                !IsListed(m_list, moves[i]) && IsPossible(m_node, moves[i]))
                m_list[m_list.count++] = moves[i];
        }
    }

    TChessboard& m_node;
    const THeuristicSettings& m_settings;
    TMoveList& m_list;
    int m_king;
    TSquareSet m_walkable;  // free squares that black does not attack
};

}  // namespace

bool SeaSnakeMoves(TChessboard& node, TMoveList& list) {
    const THeuristicSettings& settings = node.m_threadContext->heuristics;
    if (settings.SeaSnakeApproach >= kSquareCount || settings.SeaSnakeTurnBack >= kSquareCount ||
        node.m_nMoves < kStrokeHalfMoves)
        return false;
    const std::vector<TMove>& before = node.m_searchContext->SeaSnakeOnlyAfter;
    if (!before.empty() && !HasFollowed(node, before))
        return false;
    const auto ply = static_cast<std::size_t>(node.Ply());
    if (ply >= before.size())
        return CSnakeList(node, list).Fill();
    if (!IsPossible(node, before[ply]))
        return false;
    list.count = 1;
    list[0] = before[ply];
    return true;
}

bool HasPawnCaptureUnblocked(const TChessboard& node) {
    const TMove move = node.m_lastMove;
    if (node.m_parent == nullptr || move.IsNull() || FileOf(move.from) == FileOf(move.to))
        return false;
    const u8* before = node.m_parent->m_board;
    if (before[move.from] != kBlackPawn)
        return false;
    // The capturing pawn stood before a man, or the captured one was a pawn that did.
    const int captured = move.enPassant != 0 ? move.to + 8 : move.to;
    const bool wasBlocked = before[move.from - 8] != 0;
    const bool wasBlocker = before[captured] == kWhitePawn && before[captured + 8] != 0;
    return wasBlocked || wasBlocker;
}

}  // namespace quillmere
