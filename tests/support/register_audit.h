// What the tests of registers/ know about a register from outside: boards whose keys share a hash,
// and a recount of elements and bytes.
#pragma once

#include "registers/aggregated_register.h"

#include <cstddef>
#include <vector>

namespace quillmere::test {

// Different boards with one and the same hash, 2^kEqualHashBits of them at most; boards of another
// `figure` have another hash. No legal positions, as a key asks for none.
constexpr int kEqualHashBits = 6;
std::vector<TChessboard> EqualHashBoards(u8 figure, int count);

struct TRecount {
    u32 tableElements = 0;
    u32 doubtfulElements = 0;
    u32 mapElements = 0;
    u64 bytes = 0;  // without pins, which cannot be seen from outside
};
// Walks everything. No other thread may use the register.
TRecount RecountRegister(const TAggregatedTemporaryChessboardRegister& aRegister);
// What one pin takes of the account.
u64 PinBytes();

// Counts and bytes of the register are those of a recount, and within the limit. It may have up to
// `pins` pins, unpinned settings included.
void ExpectRegisterAddsUp(const TAggregatedTemporaryChessboardRegister& aRegister, u32 pins);

}  // namespace quillmere::test
