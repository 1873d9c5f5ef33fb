// The squares around the black king, as sets of eight bits.
//
// Bit i of a zone set stands for kGeometry.kingTargets[king][i]. Tables tell which of these squares
// a white man attacks from anywhere on an empty board, so that all of them are judged with one
// look-up a man, and lines are walked only where a slider may really see one.
#pragma once

#include "core/chessboard.h"

#include <array>

namespace quillmere {

struct TKingZone {
    // Attacked squares of the zone by a white man of the kind, by the king's square and the man's.
    // Lines are taken as clear. Indexed by ZoneIndex of the kind.
    std::array<std::array<std::array<u8, 64>, 64>, 6> attack{};
    // The bit of a square itself, 0 where it does not neighbour the king.
    std::array<std::array<u8, 64>, 64> bit{};
};

extern const TKingZone kKingZone;

constexpr int ZoneIndex(u8 kind) {
    constexpr u8 kIndex[32] = {0, 0, 1, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0, 5};
    return kIndex[kind];
}
inline u8 ZoneAttack(u8 kind, int king, int from) {
    return kKingZone.attack[ZoneIndex(kind)][king][from];
}
inline u8 ZoneBit(int king, int square) {
    return kKingZone.bit[king][square];
}

// The squares that the black king can step to: not held by black, and not attacked by white with
// the king off its square. Castling is not among them. The board is changed while this runs and
// restored before it returns.
u8 SafeKingSteps(TChessboard& board);

}  // namespace quillmere
