// A move and the list that holds the moves of one node.
#pragma once

#include "core/types.h"

namespace quillmere {

// Marks on the flags byte of a move, besides the promotion kind in the low five bits.
constexpr u8 kMoveMarkEvent = 0x20;   // set by the rules of the heuristics
constexpr u8 kMoveMarkForced = 0x80;  // keeps the "fresh line" mark of a node

//  byte 0  from        source square 0..63
//  byte 1  to          destination square 0..63
//  byte 2  flags       low five bits: 0 or the kind of a promotion (4, 8, 12, 16); marks above
//  byte 3  enPassant   written by the make-move: 1 if this pawn move captured en passant;
//                      between generation and play the sort may keep its key here
struct TMove {
    u8 from;
    u8 to;
    u8 flags;
    u8 enPassant;

    constexpr u8 Promotion() const { return flags & kKindMask; }
    // from == to: a pass of black in one-colour play, also a null move of a test.
    constexpr bool IsNull() const { return from == to; }
};
static_assert(sizeof(TMove) == 4);

constexpr TMove MakeMove(int from, int to, u8 promotion = 0) {
    return TMove{static_cast<u8>(from), static_cast<u8>(to), promotion, 0};
}

// Equal in from, to and promotion; marks and the fourth byte do not count.
constexpr bool MovesEqual(TMove a, TMove b) {
    return a.from == b.from && a.to == b.to && a.Promotion() == b.Promotion();
}

// Room of one move list. The root refuses positions that could need more than kMaxMoves.
constexpr int kMoveListSize = 256;
constexpr int kMaxMoves = 248;

// Lists stand on the frame of their node; the entries beyond `count` are not initialised.
struct TMoveList {
    TMove moves[kMoveListSize];
    int count = 0;

    // The entries stay as they are, for it is one kilobyte and the hot path.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init,modernize-use-equals-default)
    TMoveList() {}
    TMove* begin() { return moves; }
    TMove* end() { return moves + count; }
    const TMove* begin() const { return moves; }
    const TMove* end() const { return moves + count; }
    TMove& operator[](int index) { return moves[index]; }
    const TMove& operator[](int index) const { return moves[index]; }
};

}  // namespace quillmere
