// A case of the search, solved by the program and by the judge.
#pragma once

#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace quillmere::bridge {

inline TSolveResult
SolveAll(const reference::TPosition& position, int halfMoves, u16 repetitionBound = 65535) {
    TChessboard board;
    FillBoard(board, position);
    TSearchContext context;
    context.repetitionBound = repetitionBound;
    TSolveRequest request;
    request.halfMoves = static_cast<u16>(halfMoves);
    request.wantAllKeys = true;
    return Solve(board, request, context);
}

inline std::string NameOf(ESolveVerdict verdict) {
    switch (verdict) {
    case ESolveVerdict::kProvedMate:
        return "mate";
    case ESolveVerdict::kProvedNoMate:
        return "no mate";
    case ESolveVerdict::kDoubt:
        return "doubtful";
    case ESolveVerdict::kStopped:
        return "stopped";
    case ESolveVerdict::kLimit:
        return "limit";
    }
    return "no verdict";
}

// What the judge says of a case, for both kinds of task.
struct TJudgement {
    bool isMate = false;                          // white mates, against every defence
    std::vector<reference::TPlainMove> keys;      // odd tasks
    std::vector<reference::TPlainMove> defences;  // even tasks: those that hold
    // Even the next shorter task of the kind has no mate, so that the main line has full length.
    bool isExact = false;
};

// Nothing if the brute force would need more moves than it may make.
inline std::optional<TJudgement>
Judge(const reference::TPosition& position, int halfMoves, std::uint64_t moveLimit = 30'000'000) {
    try {
        reference::CBruteForce judge(moveLimit);
        TJudgement judgement;
        if (halfMoves % 2 != 0) {
            judgement.keys = judge.Keys(position, (halfMoves + 1) / 2);
            judgement.isMate = !judgement.keys.empty();
        } else {
            judgement.defences = judge.HoldingDefences(position, halfMoves);
            judgement.isMate = judge.BlackLosesIn(position, halfMoves);
        }
        judgement.isExact =
            judgement.isMate && (halfMoves < 2 || !judge.WhiteMates(position, halfMoves - 2));
        return judgement;
    } catch (const reference::COutOfMoves&) {
        return std::nullopt;
    }
}

// The program's answer is the judge's: verdict, all keys or holding defences, and a main line that
// is legal, ends in mate, and has full length where no shorter mate exists. `name` names the case.
inline ::testing::AssertionResult IsAnswerOf(const TJudgement& judgement,
                                             const reference::TPosition& position,
                                             int halfMoves,
                                             const TSolveResult& result,
                                             const std::string& name) {
    const std::string expected = judgement.isMate ? "mate" : "no mate";
    if (NameOf(result.verdict) != expected || !result.isComplete) {
        return ::testing::AssertionFailure()
               << name << ": verdict " << NameOf(result.verdict)
               << (result.isComplete ? "" : " (incomplete)") << ", the judge says " << expected
               << "; keys " << reference::ToText(ToSortedPlain(result.keys)) << ", the judge has "
               << reference::ToText(judgement.keys);
    }
    if (ToSortedPlain(result.keys) != judgement.keys) {
        return ::testing::AssertionFailure()
               << name << ": keys " << reference::ToText(ToSortedPlain(result.keys))
               << ", the judge has " << reference::ToText(judgement.keys);
    }
    if (ToSortedPlain(result.defences) != judgement.defences) {
        return ::testing::AssertionFailure()
               << name << ": defences " << reference::ToText(ToSortedPlain(result.defences))
               << ", the judge has " << reference::ToText(judgement.defences);
    }
    std::vector<reference::TPlainMove> line;
    std::transform(
        result.mainLine.begin(), result.mainLine.end(), std::back_inserter(line), ToPlain);
    if (!judgement.isMate) {
        return line.empty()
                   ? ::testing::AssertionSuccess()
                   : ::testing::AssertionFailure() << name << ": a main line without a mate";
    }
    if (const std::optional<std::string> fault =
            reference::FaultOfLine(position, line, halfMoves)) {
        return ::testing::AssertionFailure() << name << ": main line: " << *fault;
    }
    if (judgement.isExact && static_cast<int>(line.size()) != halfMoves) {
        return ::testing::AssertionFailure()
               << name << ": the main line is short: " << reference::ToText(line);
    }
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult AgreesWith(const TJudgement& judgement,
                                             const reference::TPosition& position,
                                             int halfMoves,
                                             u16 repetitionBound = 65535) {
    return IsAnswerOf(judgement,
                      position,
                      halfMoves,
                      SolveAll(position, halfMoves, repetitionBound),
                      reference::ToFen(position) + ", " + std::to_string(halfMoves) +
                          " half-moves, repetition bound " + std::to_string(repetitionBound));
}

}  // namespace quillmere::bridge
