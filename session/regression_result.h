// What a batch run knows of one test: one problem in one pass, as it stands or mirrored.
#pragma once

#include "core/move.h"
#include "core/types.h"
#include "core/verdict.h"
#include "session/run_state.h"

#include <optional>
#include <string>
#include <vector>

namespace quillmere {

enum class ETestVerdict {
    kAsExpected,  // what was found is what the file states
    kDifferent,   // it is not, or black's or white's play along the main variant is not
    kNotStated,   // the file states nothing; what was found is told
    kUndecided,   // stopped by a limit, or lines were left out: neither right nor wrong
    kSkipped,     // never begun, for a reason that is told: neither right nor wrong
    kFaulty       // the position cannot be solved
};
constexpr int kTestVerdictCount = 6;

// A move as the log prints it, and its engine form; the second is empty where only the log is known.
struct TToldMove {
    std::string text;
    std::string uci;

    bool operator==(const TToldMove&) const = default;
};

struct TTestResult {
    i32 number = 0;
    // 0 as it stands, 1 mirrored; nothing where the whole problem was skipped.
    std::optional<int> pass;
    ETestVerdict verdict = ETestVerdict::kUndecided;
    std::string remark;      // why it is not as expected, one line; may be empty
    bool isFromLog = false;  // finished by an earlier run: only what the log tells is known

    ESolveMode mode = kSolveNone;
    int threads = 0;  // 0 where nothing was solved
    std::vector<TToldMove> found;
    std::vector<TToldMove> expected;
    u64 milliseconds = 0;

    // The following are not known from a log.
    std::string description;
    std::string fen;  // of the pass: the mirrored one in a mirror pass
    int halfMoves = 0;
    std::optional<ESolveVerdict> solved;
    bool isComplete = false;
    u64 nodes = 0;
    u64 madeMoves = 0;
    u64 registerElements = 0;
    u64 registerBytes = 0;
};

struct TRegressionSummary {
    int counts[kTestVerdictCount] = {};
    int fromLog = 0;  // of them
    bool isInterrupted = false;

    int Count(ETestVerdict verdict) const { return counts[static_cast<int>(verdict)]; }
    int Total() const {
        int total = 0;
        for (const int count : counts)
            total += count;
        return total;
    }
};

}  // namespace quillmere
