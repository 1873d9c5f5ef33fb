// Settings and lines of known compositions that no rule would guess, by position.
//
// The rows stand in heuristics/predefined_tables.def. The key of a row is the first field of the FEN
// text (the placement of the men, nothing else), and a look-up is exact: a single moved man is another
// position. So one composition may have rows for several positions of its solution.
//
// Threads: the tables are filled before main and only read after that.
#pragma once

#include "core/chessboard.h"
#include "core/warning_sink.h"
#include "search/sort_indication.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Rows by the placement field; the texts of a row in the order in which they are applied.
using TPredefinedTable = std::map<std::string, std::vector<std::string>, std::less<>>;

extern const TPredefinedTable
    PredefinedHeuristics;                       // options, as in heuristics/predefined_option.h
extern const TPredefinedTable PredefinedLines;  // whole lines: "1.Ka8-b8 Bd3-e2 2.Qc6-e4 ..."
extern const TPredefinedTable PredefinedMoves;  // the move to try first: "Ne2-d4"

// The key of a board.
std::string PredefinedKey(const TChessboard& node);

// Applies the options of the position of the root to the node, its thread and its search context, in
// order. A position without a row is left alone. An error goes to `warnings` under the title
// "Information"; what was applied before it stays.
void ApplyPredefinedAdditionalHeuristics(TChessboard& node,
                                         IWarningSink& warnings,
                                         const TPredefinedTable& table = PredefinedHeuristics);

// Tells the exception that is being handled, as above; for a handler only.
void TellPredefinedError(IWarningSink& warnings);

// What the tables know about the order of white's moves at the position.
struct TPredefinedIndications {
    std::vector<std::string> lines;
    std::vector<std::string> moves;
};
TPredefinedIndications PredefinedIndications(const TChessboard& node,
                                             const TPredefinedTable& lines = PredefinedLines,
                                             const TPredefinedTable& moves = PredefinedMoves);

// Adds them behind `indications`: the moves under move number 1, then white's moves of the lines under
// their numbers; what is there already is not added again. A move or a line that does not read adds
// nothing. Returns how many rules were added.
int AddPredefinedIndications(TSortIndications& indications,
                             const TChessboard& node,
                             const TPredefinedTable& lines = PredefinedLines,
                             const TPredefinedTable& moves = PredefinedMoves);

}  // namespace quillmere
