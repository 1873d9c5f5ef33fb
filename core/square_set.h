// Sets of squares as 64-bit words, bit n for square n, and attacks on them.
//
// Boards hold no such sets: they are built where many questions are asked about one position.
#pragma once

#include "core/geometry.h"

#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace quillmere {

using TSquareSet = u64;

constexpr TSquareSet SetOf(int square) {
    return u64{1} << square;
}
inline int FirstOf(TSquareSet set) {
    return std::countr_zero(set);
}
// Calls `visit` with each square of the set, upward.
template <class TVisit>
inline void ForEachSquare(TSquareSet set, TVisit visit) {
    for (; set != 0; set &= set - 1)
        visit(FirstOf(set));
}

struct TSetTables {
    // Squares of the ray from a square in a direction, the square itself left out.
    std::array<std::array<TSquareSet, kDirections>, 64> ray{};
    std::array<TSquareSet, 64> knight{};
    std::array<TSquareSet, 64> king{};
    // Squares strictly between two squares of a line; empty for others.
    std::array<std::array<TSquareSet, 64>, 64> between{};
    // Squares beyond the second one, seen from the first along their common line.
    std::array<std::array<TSquareSet, 64>, 64> beyond{};
    // Index of the direction from a square to another of the same line.
    std::array<std::array<u8, 64>, 64> direction{};
};

constexpr TSetTables MakeSetTables() {
    TSetTables t;
    for (int square = 0; square < 64; ++square) {
        for (int d = 0; d < kDirections; ++d) {
            TSquareSet passed = 0;
            for (int i = 1; i <= kGeometry.rayLength[square][d]; ++i) {
                const int to = square + i * kStep[d];
                t.between[square][to] = passed;
                t.direction[square][to] = static_cast<u8>(d);
                passed |= SetOf(to);
            }
            t.ray[square][d] = passed;
            for (int i = 1; i <= kGeometry.rayLength[square][d]; ++i) {
                const int to = square + i * kStep[d];
                t.beyond[square][to] = passed & ~t.between[square][to] & ~SetOf(to);
            }
        }
        for (int i = 0; i < kGeometry.knightCount[square]; ++i)
            t.knight[square] |= SetOf(kGeometry.knightTargets[square][i]);
        for (int i = 0; i < kGeometry.kingCount[square]; ++i)
            t.king[square] |= SetOf(kGeometry.kingTargets[square][i]);
    }
    return t;
}

extern const TSetTables kSetTables;

// Squares that a slider sees in one direction: up to the first occupied square, that one included.
inline TSquareSet RayAttacks(int square, int direction, TSquareSet occupied) {
    const TSquareSet ray = kSetTables.ray[square][direction];
    const TSquareSet met = ray & occupied;
    if (met == 0)
        return ray;
    const int first = kStep[direction] > 0 ? std::countr_zero(met) : 63 - std::countl_zero(met);
    return ray ^ kSetTables.ray[first][direction];
}

// Attacks of a slider by its kind bits (kRook, kBishop or both).
inline TSquareSet SliderAttacks(u8 kind, int square, TSquareSet occupied) {
    TSquareSet set = 0;
    for (int d = 0; d < kDirections; ++d) {
        if ((kSliderBit[d] & kind) != 0)
            set |= RayAttacks(square, d, occupied);
    }
    return set;
}

// Squares that a white pawn on the square attacks; and the squares from which one attacks it.
constexpr TSquareSet kFileA = 0x0101010101010101;
constexpr TSquareSet kFileH = 0x8080808080808080;
constexpr TSquareSet WhitePawnAttacks(TSquareSet pawns) {
    return ((pawns & ~kFileA) << 7) | ((pawns & ~kFileH) << 9);
}
constexpr TSquareSet WhitePawnSources(TSquareSet targets) {
    return ((targets & ~kFileH) >> 7) | ((targets & ~kFileA) >> 9);
}

// Attacks of any white man.
inline TSquareSet WhiteAttacks(u8 kind, int square, TSquareSet occupied) {
    switch (kind) {
    case kKing:
        return kSetTables.king[square];
    case kPawn:
        return WhitePawnAttacks(SetOf(square));
    case kKnight:
        return kSetTables.knight[square];
    default:
        return SliderAttacks(kind, square, occupied);
    }
}
// The squares from which a white man of the kind attacks the square.
inline TSquareSet WhiteSources(u8 kind, int square, TSquareSet occupied) {
    return kind == kPawn ? WhitePawnSources(SetOf(square)) : WhiteAttacks(kind, square, occupied);
}

// The squares of white's men and of black's.
inline void TakeMen(const u8* board, TSquareSet* white, TSquareSet* black) {
#ifdef __SSE2__
    // Black's mark is the sign bit of a byte, white's the bit below it.
    TSquareSet w = 0;
    TSquareSet b = 0;
    for (int i = 0; i < kSquareCount; i += 16) {
        const __m128i row = _mm_loadu_si128(reinterpret_cast<const __m128i*>(board + i));
        b |= static_cast<TSquareSet>(static_cast<u32>(_mm_movemask_epi8(row))) << i;
        w |= static_cast<TSquareSet>(static_cast<u32>(_mm_movemask_epi8(_mm_add_epi8(row, row))))
             << i;
    }
    *white = w;
    *black = b;
#else
    *white = 0;
    *black = 0;
    for (int square = 0; square < kSquareCount; ++square) {
        *white |= static_cast<TSquareSet>(IsWhite(board[square])) << square;
        *black |= static_cast<TSquareSet>(IsBlack(board[square])) << square;
    }
#endif
}

}  // namespace quillmere
