// Reads the words of the heuristics: the text of HeuristicsText, and the settings of problem files.
//
// A text is a list of names with parameters in brackets, parted by commas:
//
//   SH_KEEPKINGONTHEEDGE(STRICT, C2f, A, D3,M5), SH_FINDFORCEDMATE(#2-Preliminary)
//
// Names and parameters may be written in any case, with blanks anywhere between them, and a name
// alone is fine. SH_DONTLETKINGMOVE is SH_KEEPKINGONTHEEDGE with the parameter STRICT. What
// HeuristicsText adds behind the list is read too: "QuickMode" says nothing about the word, and
// "(CannotApplyDLFUDynamically)" switches ApplyBlockDynamically off, which is on without it.
//
// What no text carries stays as it is in the settings: the moves before a sea snake (their number
// must be the right one), the squares of SH_ZUGZWANGTRIANGLES, and what the relaxation keeps. Where
// both edge rules are on, relaxations that only SH_KEEPKINGWITHINEXTEDGE names are for it alone.
#pragma once

#include "core/chessboard.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Sets `Heur`, HeurParams and the parameters of the node, of its thread and of its search context
// by the text; an empty text is the word 0. The node is a root: blocked figures stand where the
// text says. Throws ChessException that tells the character (from 0) or the parameter and what is
// wrong with it; then nothing is changed.
void ParseHeuristics(TChessboard& node, std::string_view text);

// A name as of a text, in any case of letters.
struct TNamedHeuristic {
    u32 bit = 0;  // 0 for an unknown name
    // Stands before the given ones: STRICT for SH_DONTLETKINGMOVE, else empty.
    std::string_view impliedParameter;
};
TNamedHeuristic FindHeuristic(std::string_view name);

// Lays one setting of a problem file, NAME(parameters) or NAME OFF, over the word of the node: the
// bit comes on with these parameters alone, or goes off with the single parameter "OFF". The order
// of the parameters matters for SH_SEASNAKE only. Throws ChessException on a bit that is no entry
// and on a bad parameter; then nothing is changed.
void ApplyHeuristicOverride(TChessboard& node, u32 bit, const std::vector<std::string>& parameters);

}  // namespace quillmere
