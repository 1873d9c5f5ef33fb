// The passes before all others: proof-number search from the root.
//
// The first one, without a word and with few made moves, ends what is easy before a word is chosen at
// all. The second one stands behind the choice. Both use one search, and so do the trials of the choice:
// what one of them learned the next one goes on from.
//
// A pass goes round the word of the root and, last, the search without any: first with few made moves
// each, then with four times as many, until something is proved or the made moves are spent.
// A word under which nothing is found by going through everything is not asked again: a strict word
// that does not fit costs next to nothing, and one that fits turns a hopeless task into a short one.
// Without a word the search is complete: what it disproves is exact, and a search cut off goes on in
// the next round where it was.
#pragma once

#include "core/chessboard.h"
#include "search/first_moves.h"
#include "search/proof_number.h"

#include <memory>
#include <string_view>

namespace quillmere {

// Half-moves of a task from which on the passes are worth their start.
constexpr int kProofRoot = 11;

// Made moves that both passes together may cost in a task of so many half-moves; 0 below kProofRoot.
u64 ProofMovesOf(int halfMoves);

// Made moves of the first pass: enough for what is easy, and little beside what a choice may cost.
constexpr u64 kFirstProofMoves = 250'000;

// Names of the passes in their records.
constexpr const char* kFirstProofPassName = "p1";
constexpr const char* kSecondProofPassName = "p2";
bool IsProofPass(std::string_view name);

// A search for the root with a table for it: a share of what its register may take. Throws
// std::bad_alloc.
std::unique_ptr<CProofNumberSearch> MakeProofSearch(TChessboard& root);

// Runs a pass of that name on the thread of the root, with at most so many made moves, and decides
// first moves. `root` carries the word, none for a pass without, and gets it back. Other threads must
// not search yet.
void RunProofPass(CProofNumberSearch& search,
                  TChessboard& root,
                  CFirstMoves& moves,
                  const char* name,
                  u64 madeMoves);

}  // namespace quillmere
