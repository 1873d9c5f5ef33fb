// The words that the selection tries, as rows of data.
//
// What decides a long mate is a restriction of the play that fits: the black king is never let off
// the edge, or never gets more than two squares, or white only checks. Which of them fits is seldom
// seen on the board, but quickly tried: under a strict word that does not fit a search soon comes to
// its end. So the words are tried in turn, the strict and cheap ones first.
#pragma once

#include "core/chessboard.h"
#include "heuristics/selection_facts.h"

#include <span>

namespace quillmere {

// Forms of the heuristics of a row, bits of TCandidateWord::forms
enum ECandidateForm : u8 {
    kStrictKing = 0x1,        // SH_DONTLETKINGMOVE
    kKingExceptions = 0x2,    // with exceptions
    kExtStrict = 0x4,         // SH_KEEPKINGWITHINEXTEDGE(strict)
    kSurroundedStrict = 0x8,  // SH_ASSERTBLACKKINGSURROUNDED(strict)
    kWithBlocked = 0x10,      // with SH_DONTLETFIGUREUNBLOCK; only where the block finder finds any
};

struct TCandidateWord {
    u32 heur;
    u8 forms;                                     // ECandidateForm
    u8 ffmMode;                                   // of SH_FINDFORCEDMATE; 0 without it
    bool (*suits)(const TSelectionFacts& facts);  // the position may fit
};

// In the order in which they are tried.
std::span<const TCandidateWord> CandidateWords();
// Those under which white only checks, which cost next to nothing.
std::span<const TCandidateWord> CheckCandidates();
// Those of the edge choice: the black king on the edge or beside it.
std::span<const TCandidateWord> EdgeCandidates();

// The restriction `a` leaves out whatever `b` does: when `b` failed, `a` need not be tried.
bool IsAtLeastAsStrict(const TCandidateWord& a, const TCandidateWord& b);

// Writes the row into the node and the settings of its thread, over the word `base`. A row that
// blocks takes the figures from the facts.
void TakeCandidate(TChessboard& node,
                   const TCandidateWord& row,
                   u32 base,
                   const TSelectionFacts& facts);

// Makes the blocked figures of the facts those of the settings and of the node.
void PutBlockedFigures(TChessboard& node, const TSelectionFacts& facts);

}  // namespace quillmere
