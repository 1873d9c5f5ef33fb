// The order in which the nodes try their moves.
//
// A proof search ends a white node with the first move that mates and a black node with the first
// defence that holds, so the order decides the running time. It decides nothing else: whatever is
// dropped here is illegal, or proved to lose nothing.
//
// The sorts make each move on a copy in the level's slot of the node stack, count it as a made move,
// and write their key into the fourth byte of the move, which the make-move overwrites.
#pragma once

#include "core/chessboard.h"
#include "core/move_memory.h"

namespace quillmere {

// Keys of white's sorts. SortWhiteMoves compares them as unsigned, SortWhiteMovesLean as signed
// bytes; the smaller key comes first.
constexpr int kKeyDropped = 127;    // illegal or hopeless: cut off after the sort
constexpr int kKeyStalemate = 126;  // black has no move and is not in check
constexpr int kKeyLoses = 125;      // a quiet move without a threat that loses the moved figure
constexpr int kKeyGreatest = 124;   // of the other moves

// Results of SortBlackMoves besides the new count
constexpr int kSortDoubtful = -1;
constexpr int kSortRefuted = -2;     // a defence is known to hold
constexpr int kSortRepetition = -3;  // and lower

// Every legal move of a node with few half-moves left: checks first, then quiet moves that threaten
// mate, each a little later if black can safely take the moved figure. Returns the new count; the
// moves cut off are illegal.
int SortWhiteMovesLean(TChessboard& node, int count, TMove* list);

// The full order of a node further from the end: few black replies, few flights, threats first.
// *mateFound: a move of the list mates at once, and the node ends. *quietCount: moves of the new
// list that neither check nor threaten, at most 255. forced: moves that do not check are dropped,
// which a forced search would skip. *retry: the list was cut by a heuristic and may be wanted in
// full. Returns the new count.
int SortWhiteMoves(TChessboard& node,
                   int count,
                   TMove* list,
                   int* mateFound,
                   u8* quietCount,
                   bool forced,
                   u8* retry);

// Black's moves, the best defence first: what refuted here before, then what refutes often; except
// where the edge heuristics hunt with a lone knight: there defences that lose at once go first. King
// moves into check are dropped, so that the make-move need not test them. Returns the new count or
// one of the results above, which rest on exact knowledge only.
int SortBlackMoves(TChessboard& node, int count, TMove* list);

// Drops king steps into check from a black list. Returns the new count.
int DropUnsafeKingSteps(TChessboard& node, int count, TMove* list);

// Moves that worked in like nodes come to the front of the list. Returns how many were found.
int BringRememberedForward(const TChessboard& node, int count, TMove* list);

// What is remembered for the node, newest first, without moves met twice; whether the moves are
// possible here is not asked. Returns the count, at most kRememberedMoves.
constexpr int kRememberedMoves = 4;
int GetRememberedMoves(const TChessboard& node, TMove* list);

// The move ended its node: it mated (white) or refuted (black). Null moves are not noted.
void RememberMove(const TChessboard& node, TMove move);

}  // namespace quillmere
