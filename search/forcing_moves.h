// White's list while forced mates are looked for first (SH_FINDFORCEDMATE).
//
// A long mate is mostly driven: white checks, or threatens something that black must see to. So a
// pass with the word keeps of white's list only the checks and, by the mode, the moves after which
// white would mate soon if black passed. What is kept is a small part of the list, and the pass
// reaches many times as deep. Nothing can be proved by what is left out: such a node is doubtful
// whatever comes of it, and one without a forcing move ends the line (kEndOfForced).
//
// Threads: the routines work on the node and the records of its own thread.
#pragma once

#include "core/chessboard.h"
#include "core/heuristics.h"

namespace quillmere {

// Values of THeuristicSettings::FfmMode from which on more than checks is taken. Up to 1 nothing is
// restricted. In the modes with a plus, moves that threaten a mate longer by one move, each move of
// it a check, are taken besides.
constexpr u8 kForcedChecks = 2;
constexpr u8 kForcedThreatOfOne = 3;
constexpr u8 kForcedThreatOfOnePlus = 4;
constexpr u8 kForcedThreatOfTwo = 5;
constexpr u8 kForcedThreatOfTwoPlus = 6;
constexpr u8 kForcedThreatOfThree = 7;
constexpr u8 kLastForcedMode = 9;  // threats of five

// Half-moves from which on lists are cut, by mode: checks are read off the board for less than any
// other list costs, while a mate in two, where all that is forcing threatens to mate at once, is
// refuted sooner by black's replies (search/refuted_moves.h) than its threats are told.
constexpr int kForcedChecksLevel = 3;
constexpr int kForcedLevel = 5;

// The list of this white node is to be cut: the word is on in a pass with heuristics, and white is
// not in check. Evasions are always all taken.
bool IsForcedListOn(const TChessboard& node);

// Of white's list, the moves that the mode of the node's thread lets through come to the front, in
// their order; returns how many. Checks are not asked whether they are legal. To be asked only
// where IsForcedListOn. Threats of mate in two and more are searched, in the slots and levels of
// the thread below the node.
int KeepForcingMoves(TChessboard& node, int count, TMove* list);

// Of a mode with a plus: a move of the node is taken by it that the mode before does not take. With
// too few half-moves left for lists to be cut, none is.
bool AddsForcingMoves(TChessboard& node, u8 mode);

}  // namespace quillmere
