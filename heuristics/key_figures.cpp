// What the heuristics of key figures, lines and squares rest on, found at the root.
//
// Key line: a file on which black's only rook has safe moves up and down, and no other safe move. A
// rook that can leave the file anyway loses nothing by the rule, and one of two is no sole defender.
//
// Key diagonal: the same for black's only bishop and one of its two diagonals; its ends are told. On a
// diagonal of fewer than three squares it hardly walks.
//
// Key white figure: it pins a black man that is no pawn, black cannot take it safely, and the black
// king has no safe step. Of several the one that pins the dearest man, then the cheapest pinning
// figure, then the lower square.
//
// Key square: the empty square that most of black's men, the king left out, can safely come to, if
// they are two or more and no other square has as many. It only guides the sort.
//
// Sweeping rook: white has one rook and no queen; the rook stands on its first rank with two free
// squares beside it, not attacked, and black's king has no more than two safe steps, so that waiting
// can matter.
#include "heuristics/key_figures.h"

#include "core/attacks.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/king_walk.h"
#include "heuristics/pinned_figure.h"
#include "heuristics/standing_moves.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <tuple>

namespace quillmere {
namespace {

bool IsAsked(const TChessboard& node) {
    return node.IsWhiteToMove() && node.m_whiteInCheck == kNotInCheck;
}

int SquareOfOnly(const TChessboard& node, u8 figure) {
    int found = kNoSquare;
    for (int square = 0; square < kSquareCount; ++square) {
        if (node.m_board[square] != figure)
            continue;
        if (found != kNoSquare)
            return kNoSquare;
        found = square;
    }
    return found;
}

// Step of the only line along which the man can move safely, as a positive number; 0 if it has no
// safe move or such moves along two lines.
int OnlyLineOf(TChessboard& node, int square) {
    TChessboard black = WithBlackToMove(node);
    TMove moves[kMoveListSize];
    const int count = GetSafeBlackMoves(black, square, moves);
    int line = 0;
    for (int i = 0; i < count; ++i) {
        const int step = std::abs(LineStep(moves[i].from, moves[i].to));
        if (line != 0 && step != line)
            return 0;
        line = step;
    }
    return line;
}

// The last square of the board in a direction, by its step.
int EndOfLine(int square, int step) {
    for (int d = 0; d < kDirections; ++d) {
        if (kStep[d] == step)
            return square + kGeometry.rayLength[square][d] * step;
    }
    return square;
}

constexpr int kFileStepUp = 8;
constexpr int kShortDiagonal = 2;  // squares
constexpr int kMenOfKeySquare = 2;

}  // namespace

u8 FindKeyLine(TChessboard& node) {
    const int rook = SquareOfOnly(node, kBlackRook);
    if (!IsAsked(node) || rook == kNoSquare || OnlyLineOf(node, rook) != kFileStepUp)
        return kNoSquare;
    return static_cast<u8>(FileOf(rook));
}

bool FindKeyDiagonal(TChessboard& node, u8 (&squares)[2]) {
    squares[0] = squares[1] = kNoSquare;
    const int bishop = SquareOfOnly(node, kBlackBishop);
    if (!IsAsked(node) || bishop == kNoSquare)
        return false;
    const int step = OnlyLineOf(node, bishop);
    if (step == 0)
        return false;
    const int low = EndOfLine(bishop, -step);
    const int high = EndOfLine(bishop, step);
    if (KingDistance(low, high) + 1 <= kShortDiagonal)
        return false;
    squares[0] = static_cast<u8>(low);
    squares[1] = static_cast<u8>(high);
    return true;
}

u8 FindKeySquare(TChessboard& node) {
    if (!IsAsked(node))
        return kNoSquare;
    TChessboard black = WithBlackToMove(node);
    int men[kSquareCount] = {};
    for (int square = 0; square < kSquareCount; ++square) {
        if (!IsBlack(node.m_board[square]) || node.m_board[square] == kBlackKing)
            continue;
        TMove moves[kMoveListSize];
        const int count = GetSafeBlackMoves(black, square, moves);
        for (int i = 0; i < count; ++i)
            men[moves[i].to] += node.m_board[moves[i].to] == 0 ? 1 : 0;
    }
    const int* key = std::max_element(men, men + kSquareCount);
    const bool isUnique = std::count(men, men + kSquareCount, *key) == 1;
    return *key >= kMenOfKeySquare && isUnique ? static_cast<u8>(key - men) : kNoSquare;
}

TKeyWhiteFigure FindKeyWhiteFigure(TChessboard& node) {
    TKeyWhiteFigure found;
    if (!IsAsked(node) || (SafeForBlackKing(node) & kSetTables.king[node.BlackKingSquare()]) != 0)
        return found;
    std::tuple<int, int, int> best;
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 pinned = PinnedByKeyFigure(node, static_cast<u8>(square));
        if (pinned == kNoSquare || node.m_board[pinned] == kBlackPawn)
            continue;
        u8 capturer = 0;
        if (CanBlackCaptureSafely(node, FileOf(square), RankOf(square), &capturer))
            continue;
        const std::tuple<int, int, int> rank(-kFigureValues[KindOf(node.m_board[pinned])],
                                             kFigureValues[KindOf(node.m_board[square])],
                                             square);
        if (found.square != kNoSquare && best <= rank)
            continue;
        best = rank;
        found.square = static_cast<u8>(square);
        found.pinned = pinned;
    }
    return found;
}

bool UseKeyLine(TChessboard& node) {
    const u8 file = FindKeyLine(node);
    if (file == kNoSquare)
        return false;
    node.m_searchContext->KeyLineFile = file;
    SetHeur(node, node.Heur | SH_KEYLINE);
    return true;
}

bool UseKeyDiagonal(TChessboard& node) {
    u8 squares[2];
    if (!FindKeyDiagonal(node, squares))
        return false;
    node.m_searchContext->KeyDiagonalSquares[0] = squares[0];
    node.m_searchContext->KeyDiagonalSquares[1] = squares[1];
    SetHeur(node, node.Heur | SH_KEYDIAGONAL);
    return true;
}

bool UseKeySquare(TChessboard& node) {
    const u8 square = FindKeySquare(node);
    if (square == kNoSquare)
        return false;
    node.m_threadContext->heuristics.KeySquare = square;
    SetHeur(node, node.Heur | SH_KEYSQUARE);
    return true;
}

bool UseKeyWhiteFigure(TChessboard& node) {
    const TKeyWhiteFigure key = FindKeyWhiteFigure(node);
    if (key.square == kNoSquare)
        return false;
    THeuristicSettings& settings = node.m_threadContext->heuristics;
    settings.KeyWhiteFigureSquare = key.square;
    settings.KeyWhiteFigurePinned = key.pinned;
    settings.KeyWhiteFigureChecked = true;
    SetHeur(node, node.Heur | SH_KEYWHITEFIGURE);
    return true;
}

bool SuitsSweepingRook(const TChessboard& node) {
    constexpr int kFewSteps = 2;
    constexpr int kWaitingSquares = 2;
    const int rook = SquareOfOnly(node, kWhiteRook);
    if (rook == kNoSquare || RankOf(rook) != 0 || node.m_counts[kWhiteQueens] != 0 ||
        IsAttackedByBlack(node, rook))
        return false;
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    constexpr TSquareSet kFirstRank = 0xff;
    const TSquareSet waiting = SliderAttacks(kRook, rook, white | black) & kFirstRank &
                               ~(white | black) & ~AttackedByBlackMen(node);
    const TSquareSet steps = SafeForBlackKing(node) & kSetTables.king[node.BlackKingSquare()];
    return std::popcount(waiting) >= kWaitingSquares && std::popcount(steps) <= kFewSteps;
}

}  // namespace quillmere
