// The key of every register: the 64 figure codes of a position, and nothing else.
//
// The side to move is not part of it, since the depth beside it (half-moves, odd with White to
// move) says it; castling and en passant rights are not either, so that the search asks only about
// positions that their squares describe in full.
#pragma once

#include "core/chessboard.h"
#include "core/types.h"

#include <bit>
#include <compare>
#include <cstring>

namespace quillmere {

//    0  bytes[64]  figure codes, square a1 first
struct TChessboardRegisterItem {
    u8 bytes[kSquareCount];

    // The squares as little-endian 64-bit words, 0 to 7.
    u64 Word(int index) const {
        u64 word = 0;
        std::memcpy(&word, bytes + 8 * index, sizeof(word));
        return word;
    }

    friend bool operator==(const TChessboardRegisterItem& a, const TChessboardRegisterItem& b) {
        u64 difference = 0;
        for (int i = 0; i < 8; ++i)
            difference |= a.Word(i) ^ b.Word(i);
        return difference == 0;
    }

    // The one order of all registers: the first unequal word decides, by the greater UNSIGNED
    // number. The sign of a wrapping difference must not decide: that relation runs in a circle
    // (a < b < c < a), and a search by halves in a sorted bucket would no longer find elements that
    // are there.
    friend std::strong_ordering operator<=>(const TChessboardRegisterItem& a,
                                            const TChessboardRegisterItem& b) {
        for (int i = 0; i < 8; ++i) {
            const u64 first = a.Word(i);
            const u64 second = b.Word(i);
            if (first != second)
                return first < second ? std::strong_ordering::less : std::strong_ordering::greater;
        }
        return std::strong_ordering::equal;
    }
};
static_assert(sizeof(TChessboardRegisterItem) == 64);
static_assert(std::endian::native == std::endian::little, "the words of a key are little-endian");

// What stands in a key for the bishop that one-colour play has taken off the board.
constexpr u8 kOneColourKeyFigure = kBlackBishop;

// The key of a node; the board is not touched. In one-colour play of mode 1 or 2, a black bishop is
// put on the first empty square of odd (mode 1) or even (mode 2) index, so that a node whose bishop
// is known to keep to one colour and the same squares without the bishop are two keys. The figure is
// a real one, as files of keys know no other: a position with a true bishop on just that square has
// the same key, so nothing may be stored under it that would be false of that position.
TChessboardRegisterItem MakeRegisterItem(const TChessboard& board);
// The 64 squares alone, for positions that are no nodes.
TChessboardRegisterItem RegisterItemOfSquares(const u8 (&squares)[kSquareCount]);

// Sum over the squares i of code[i] * (i + 1)^2.
u32 Hash(const TChessboardRegisterItem& item);

}  // namespace quillmere
