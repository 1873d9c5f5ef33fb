// PGN text taken apart: games with their tags, and every line of play from the root, variations and
// comments included. What a game means as a problem is the affair of problems/convert_pgn.h.
//
// The reader takes what other programs write: tag pairs, comments in braces and behind ';', lines that
// begin with '%', marks of moves, variations within variations, null moves at the head of a line, short
// and long notation. Texts that are no UTF-8 are taken as Latin-1, the code page of PGN.
#pragma once

#include "problems/conversion.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Longest line of play, and deepest nesting of variations.
constexpr int kMaxPgnHalfMoves = 2000;
constexpr int kMaxPgnDepth = 32;

struct TPgnTag {
    std::string name;
    std::string value;
    int line = 0;
};

struct TPgnMove {
    TMove move = {};
    std::string comment;  // what stands behind the move, and before the next
};

// A line of play from the root. A variation repeats the moves before it, without their comments.
struct TPgnLine {
    // A comment stood before the first move of the line's own.
    bool hasLead = false;
    std::string lead;
    // The line began with a null move, which is left out: the other side plays its first move.
    bool hasNullMove = false;
    std::vector<TPgnMove> moves;
};

struct TPgnGame {
    int line = 0;  // where it begins, from 1
    std::vector<TPgnTag> tags;
    TForeignPosition position;
    // The main line, perhaps without moves, and the variations in the order in which they begin.
    std::vector<TPgnLine> lines;
    std::string result;
    bool hasMarks = false;          // NAGs, '!' and '?'
    bool hasLooseComments = false;  // before or between the tags

    // Null if there is none.
    const TPgnTag* Tag(std::string_view name) const;
};

// Calls `take` with one game after the other. Throws CProblemFileFault on the first fault.
void ForEachPgnGame(std::string_view text, const std::function<void(const TPgnGame& game)>& take);

}  // namespace quillmere
