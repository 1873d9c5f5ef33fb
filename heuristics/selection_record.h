// What the automatic choice of heuristics did, for whoever asks why.
#pragma once

#include "core/messages.h"
#include "core/types.h"

#include <string>
#include <vector>

namespace quillmere {

// A heuristic of the chosen word.
struct TChosenHeuristic {
    u32 bit = 0;
    std::string text;  // its name with the parameters, in the user's squares
    EMessage reason = EMessage::kCount;
    std::vector<std::string> values;  // of the reason
};

enum class ETrialOutcome : u8 {
    kMateSeen,    // a mate was seen: it is one
    kFailed,      // the trial came to its end without one
    kProvedNone,  // the same, and nothing was left out: there is none
    kLimit,       // the limit came first
    kStopped,     // the user or the clock came first
};

// A search that was made only to see what a word is good for.
struct TTrialRecord {
    std::string heuristics;  // the word with its parameters
    u16 halfMoves = 0;
    u64 limit = 0;  // made moves
    ETrialOutcome outcome = ETrialOutcome::kFailed;
    u64 madeMoves = 0;
};

struct TSelectionRecord {
    bool wasMade = false;
    // In the order of the catalogue.
    std::vector<TChosenHeuristic> heuristics;
    // Why there is none; kCount if there are.
    EMessage whyNothing = EMessage::kCount;
    std::vector<TTrialRecord> trials;
    u64 madeMoves = 0;  // of all trials and tests
};

}  // namespace quillmere
