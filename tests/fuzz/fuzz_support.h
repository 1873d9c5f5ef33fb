// What the fuzz targets share: the check of an invariant, and the bytes of a board.
#pragma once

#include "core/chessboard.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace quillmere::fuzz {

// Never compiled out: a broken invariant is a finding like a crash.
inline void Require(bool holds, const char* invariant) {
    if (holds)
        return;
    std::fprintf(stderr, "broken invariant: %s\n", invariant);
    std::abort();
}

inline std::string BytesOf(const TChessboard& board) {
    std::string bytes(sizeof(board), '\0');
    std::memcpy(bytes.data(), static_cast<const void*>(&board), sizeof(board));
    return bytes;
}

inline bool SameSquares(const u8* a, const u8* b) {
    return std::memcmp(a, b, kSquareCount) == 0;
}

}  // namespace quillmere::fuzz
