// The line that tells a user where the search is.
#pragma once

#include "core/chessboard.h"

#include <string>

namespace quillmere {

struct TProgressFigures {
    int movesDone = 0;  // first moves that are decided
    int moveCount = 0;
    u64 nodes = 0;
    // Elements of the register, and how many more than in the line before
    u32 registerSize = 0;
    i64 registerDelta = 0;
};

// "Pass 1b, 1. Kc3-d3, Kd1-c1, 2. ... 37.5% 123456" and blanks that cover a longer line before it,
// with a carriage return at its end; the word and the register come first if there are any. Called on
// the thread of the node, whose parents it walks; allocates.
std::string ProgressLine(const TChessboard& node, const TProgressFigures& figures);

}  // namespace quillmere
