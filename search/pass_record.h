// What is told of a pass over the first moves.
#pragma once

#include "core/chessboard.h"
#include "core/heuristics.h"
#include "core/verdict.h"

#include <string>

namespace quillmere {

enum class ESolveVerdict {
    kProvedMate,    // proved: white forces mate
    kProvedNoMate,  // proved by a complete search: white does not
    kDoubt,         // no mate found, but lines were left out
    kStopped,       // stopped from outside before it was decided
    kLimit,         // the node or time limit was reached before it was decided
};

struct TPassRecord {
    // "1o" one-colour play, "0" the scan, "1a", "1b" and so on a pass with heuristics and its
    // relaxations, "2" the pass without heuristics.
    std::string name;
    // What it proves is proved by a search under its word. The scan and one-colour play prove
    // without it.
    bool isUnderWord = true;
    u8 pass = kPassComplete;
    u32 Heur = 0;
    THeuristicSettings settings;
    // The word with its parameters; empty in the pass without heuristics.
    std::string heuristics;
    // A pass with heuristics never says "no mate".
    ESolveVerdict verdict = ESolveVerdict::kDoubt;
    // Of all threads; with several of them passes may overlap in time.
    u64 nodes = 0;
    u64 madeMoves = 0;
    u64 milliseconds = 0;
};

}  // namespace quillmere
