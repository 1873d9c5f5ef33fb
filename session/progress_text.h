// What the status area tells while a search is on.
#pragma once

#include "core/chessboard.h"
#include "core/messages.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Behind the depth while black's replies are searched.
constexpr std::string_view kBlackSearchSuffix = " (b)";

// "Searching for #5: 12.50%": depth in moves, percent of the first moves that are done. ofAtLeast:
// the mate is known to need so many moves; 0 for unknown.
std::string SearchProgressText(
    int depth, double percent, std::string_view suffix, int ofAtLeast, ELanguage language);

// "34MB", "1.5GB": the size of the temporary data.
std::string DataSizeText(u64 bytes);

struct TStatusFigures {
    bool isSafeMode = false;
    int threads = 1;
    u64 globalBytes = 0;     // precalculated data in memory
    u64 temporaryBytes = 0;  // the register of the problem
};

// "SH_KEYLINE(A) Safe mode ON Thrds=4 GR=0MB TR=34MB": what is in force in the pass of the node.
// Called on the thread of the node.
std::string
SettingsInForceText(const TChessboard& node, const TStatusFigures& figures, ELanguage language);

// "Solutions found so far: Qa1-a8, ..."; empty without a move.
std::string
FoundSoFarText(const std::vector<std::string>& moves, bool areRefutations, ELanguage language);

}  // namespace quillmere
