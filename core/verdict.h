// Result codes of a search.
//
// Law: a pass with heuristics may prove a mate, never its absence; merging verdicts never turns
// doubtful into no mate.
#pragma once

#include "core/types.h"

namespace quillmere {

using TVerdict = i8;

constexpr TVerdict kMate = 1;           // white forces mate
constexpr TVerdict kNoMate = 0;         // proved that there is none, or a defence holds
constexpr TVerdict kDoubtful = -1;      // no mate found, but the search was not complete
constexpr TVerdict kNothingKnown = -2;  // answer of a lookup only
constexpr TVerdict kRepetition = -3;    // depends on a repetition higher up
constexpr TVerdict kEndOfForced = -4;   // end of the depth of a forced search; never stored
constexpr TVerdict kNoSplit = -128;     // between a thread split and its node only

// Something was left out: neither a mate nor its absence is proved.
constexpr bool IsDoubtful(TVerdict verdict) {
    return verdict == kDoubtful || verdict == kEndOfForced;
}

}  // namespace quillmere
