// Trial searches: what would a pass under this word find, within a little work?
//
// The selection of heuristics asks so before the first pass, and a node that falls back on a stricter
// word asks so in the middle of one. A trial searches the first moves in their order, each to the full
// length, until one mates or the work is used up. The work is counted in made moves of the thread, so
// that the same trial ends at the same place on any machine.
//
// A trial is safe: it is searched as a complete search, so that "no mate" is only said of what no
// assumption touched. What it leaves behind is in the register alone, and in a proof-number search if
// it was made by one:
//   - mates, and exact "no mate" of nodes without a word, which are true for every search;
//   - doubts, filed under the very word and parameters that they were found with. A later pass under
//     them would only find them again, so that they spare it work; they go with the word, like those
//     of a pass. ForgetDoubts() throws them away at once.
// After a stop or at the limit nothing more is stored; what was stored before had been finished.
// The node, the thread and its settings are put back on every path. A stop from outside is honoured at
// once and stays latched; the node limit of the context counts trials too, and is such a stop.
//
// Threads: the calling thread, which needs the stack of a search of that length.
#pragma once

#include "core/chessboard.h"
#include "core/heuristics.h"
#include "core/move.h"

#include <optional>
#include <vector>

namespace quillmere {

class CProofNumberSearch;

constexpr u64 kNoTrialLimit = 0;

struct TTrialRequest {
    // The word. Its parameters are those of the node's thread and context, see StoreChoice.
    u32 heur = 0;
    // Odd, from 1 to the half-moves of the root: a shorter task on the same position is allowed.
    int halfMoves = 1;
    // Made moves after which the trial ends, within the nodes of the last two moves; kNoTrialLimit
    // for none. The sort of the first moves counts.
    u64 workLimit = kNoTrialLimit;
    // Try this legal move alone.
    std::optional<TMove> firstMove = {};
    // The legal first moves in the order in which they are tried; not owned. Null: they are listed
    // and sorted as for a solve, which costs work each time.
    const TMoveList* firstMoves = nullptr;
    // Made for this root, it searches in place of the nodes of a pass, with all first moves but
    // `decided`; it keeps what it learns and goes on with it in the next trial. Not owned, null for
    // none. firstMove and firstMoves are not read then, nor does triedMoves come back.
    CProofNumberSearch* proof = nullptr;
    std::vector<TMove> decided = {};
};

enum class ETrialVerdict {
    kMate,      // a mate was seen: it is proved
    kDoubtful,  // none was seen, but lines were left out
    kNoMate,    // proved: none of the moves mates
    kLimit,     // the work was used up
    kStopped,   // from outside, or by the node limit of the context
};

struct TTrialResult {
    ETrialVerdict verdict = ETrialVerdict::kStopped;
    TMove mate{};        // the first move that mates, with kMate
    int triedMoves = 0;  // first moves that were searched to the end
    u64 madeMoves = 0;
    u64 nodes = 0;  // as the search context counts them
};

// `root`: a root node with white to move, with thread and search context, not in one-colour play, and
// nothing else being searched on its thread.
TTrialResult RunTrial(TChessboard& root, const TTrialRequest& request);

// Takes the doubts of all words that are not pinned out of the register, as a pass does at its end.
void ForgetDoubts(TChessboard& root);

// Short forms: is a mate seen in `moves` full moves, at most those of the node? `workLimit` as above.

// Under `mask`, and SH_KEYWHITEFIGURE if the node has it.
bool TryHeur(TChessboard& node, u32 mask, int moves, u64 workLimit);
// Under the word of the node.
bool TrySearch(TChessboard& node, int moves, u64 workLimit);

// SH_KEEPKINGONTHEEDGE in its forms; the settings of the thread are put back. With TryStrictKing the
// trial is of six moves at most; extraBit adds SH_DONTLETPROMOTEDQUEENMOVE.
bool TryStrictKing(TChessboard& node, int moves);
bool TryKing(TChessboard& node, bool strict, bool exceptions, bool extraBit, int moves);

}  // namespace quillmere
