// Positions with their stipulations and expected keys, as EPD text holds them.
//
// A line is a position of four fields (board, side, castling, en passant) or of six (and the two
// counters), then operations, each ended by a semicolon:
//
//   dm n;      mate in n moves
//   bm #n;     the same
//   bm MOVE;   the expected key, several if there are several; long or short notation
//   id "...";  name of the position
//
// Other operations are kept as they are. Empty lines and lines that begin with '#' are comments.
#pragma once

#include "cli/task.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillmere {

struct TEpdRecord {
    int line = 0;    // from 1
    std::string id;  // "line-N" where the file gives none
    TTask task;
    std::vector<TMove> expectedKeys;  // in the user's squares; empty if the file names none
    // Operations that are none of the four above, in their order; quotation marks are taken off.
    std::vector<std::pair<std::string, std::string>> otherOperations;

    // The value of one of the other operations; empty if there is none.
    std::string_view Operation(std::string_view name) const;
};

// `name` is the name of the file for the place of a fault. Every line is read and judged, the
// moves included. Throws CPlacedException on the first fault.
std::vector<TEpdRecord> ReadEpdText(std::string_view text, const std::string& name);
// The same for a file; "-" is standard input. Throws ChessException if it cannot be read.
std::vector<TEpdRecord> ReadEpdFile(const std::string& file);

}  // namespace quillmere
