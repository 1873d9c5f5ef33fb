// What one search thread remembers about moves that worked, so that they are tried first where they
// may work again. A memory never decides anything: it only orders.
#pragma once

#include "core/king_zone.h"
#include "core/move.h"
#include "core/types.h"

#include <array>

namespace quillmere {

// Two moves, the newer one first; a null move where there is none.
struct TMovePair {
    TMove first{};
    TMove second{};

    void Note(TMove move) {
        if (MovesEqual(first, move))
            return;
        second = first;
        first = move;
    }
};

struct TMoveMemory {
    // Levels (half-moves) that are told apart; deeper ones share the last two, by parity.
    static constexpr int kLevels = 32;
    using TByMove = std::array<std::array<TMovePair, kSquareCount>, 6>;

    // Moves that answered the opponent's move: black's that refuted it, white's that mated after it;
    // by the opponent's figure and its destination.
    std::array<TByMove, kLevels> answers{};
    // Moves that worked last at the level, whatever they answered.
    std::array<TMovePair, kLevels> killers{};
    // How often a black figure's move to a square refuted, by figure and destination.
    std::array<std::array<u32, kSquareCount>, 6> refutations{};

    static int Index(int level) { return level < kLevels ? level : kLevels - 2 + (level & 1); }
    TMovePair& Answers(int level, u8 figure, int to) {
        return answers[Index(level)][ZoneIndex(KindOf(figure))][to];
    }
    TMovePair& Killers(int level) { return killers[Index(level)]; }
    u32& Refutations(u8 figure, int to) { return refutations[ZoneIndex(KindOf(figure))][to]; }
};

}  // namespace quillmere
