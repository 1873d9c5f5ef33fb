#include "heuristics/king_walk.h"

namespace quillmere {
namespace {

TSquareSet BlackPawnAttacks(TSquareSet pawns) {
    return ((pawns & ~kFileA) >> 9) | ((pawns & ~kFileH) >> 7);
}

TSquareSet AttacksOf(u8 figure, int square, TSquareSet occupied) {
    return figure == kBlackPawn ? BlackPawnAttacks(SetOf(square))
                                : WhiteAttacks(KindOf(figure), square, occupied);
}

TSquareSet AttackedBy(const TChessboard& node, TSquareSet men, TSquareSet occupied) {
    TSquareSet attacked = 0;
    ForEachSquare(
        men, [&](int square) { attacked |= AttacksOf(node.m_board[square], square, occupied); });
    return attacked;
}

}  // namespace

TSquareSet AttackedByBlackMen(const TChessboard& node) {
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    return AttackedBy(node, black, (white | black) & ~SetOf(node.WhiteKingSquare()));
}

TSquareSet AttackedByWhiteMen(const TChessboard& node) {
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    return AttackedBy(node, white, (white | black) & ~SetOf(node.BlackKingSquare()));
}

TSquareSet SafeForWhiteKing(const TChessboard& node) {
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    return ~AttackedByBlackMen(node) & ~(white & ~SetOf(node.WhiteKingSquare()));
}

TSquareSet SafeForBlackKing(const TChessboard& node) {
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(node.m_board, &white, &black);
    return ~AttackedByWhiteMen(node) & ~(black & ~SetOf(node.BlackKingSquare()));
}

TSquareSet NeighboursOf(TSquareSet set) {
    const TSquareSet wide = set | (set & ~kFileA) >> 1 | (set & ~kFileH) << 1;
    return (wide | wide << 8 | wide >> 8) & ~set;
}

TSquareSet KingRegion(int from, TSquareSet enterable) {
    TSquareSet region = SetOf(from);
    for (TSquareSet edge = region; edge != 0;) {
        edge = NeighboursOf(edge) & enterable & ~region;
        region |= edge;
    }
    return region;
}

TKingDistances KingDistancesTo(int to, TSquareSet enterable) {
    TKingDistances distances;
    distances.fill(kUnreachable);
    TSquareSet seen = SetOf(to);
    TSquareSet edge = seen;
    for (u8 distance = 0; edge != 0; ++distance) {
        ForEachSquare(edge, [&](int square) { distances[square] = distance; });
        edge = NeighboursOf(edge) & enterable & ~seen;
        seen |= edge;
    }
    return distances;
}

}  // namespace quillmere
