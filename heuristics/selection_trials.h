// The trials of a selection: candidate words in turn, under limits of work.
//
// A trial that sees a mate has proved it, and what it proved is in the register and in the
// proof-number search, so that the pass behind the choice finds it again at once. A trial that came to
// its end without one refutes its word and every stricter one: they are not tried again, and should not
// be run as a pass.
#pragma once

#include "core/chessboard.h"
#include "heuristics/selection.h"
#include "heuristics/selection_candidates.h"
#include "heuristics/selection_limits.h"
#include "heuristics/selection_record.h"

#include <span>
#include <vector>

namespace quillmere {

class CSelectionTrials {
public:
    // `root` with thread and context stays where it is, and `request` is not owned; `record` takes
    // what is tried.
    CSelectionTrials(TChessboard& root,
                     const TSelectionRequest& request,
                     const TSelectionFacts& facts,
                     TSelectionRecord& record);

    // Tries the rows that suit, each under `base`, the limit of the first round. True if a mate was
    // seen: the word and its parameters are in the node then, else all is as it was.
    bool TryOnce(std::span<const TCandidateWord> rows, u32 base);
    // The same, round by round with growing limits, as long as there is work left and a word that is
    // not refuted.
    bool TryInRounds(std::span<const TCandidateWord> rows, u32 base);

    // Tries the word of the node as it is, under the limit of the first round. True if a mate was seen.
    bool TryWord();

    // The first row that suits and is not refuted; null for none, and before any trial.
    const TCandidateWord* Undecided(std::span<const TCandidateWord> rows) const;
    // A trial failed that was no stricter.
    bool IsRefuted(const TCandidateWord& row) const;
    // Any trial was made at all.
    bool HasTried() const { return m_hasTried; }
    bool HasSeenMate() const { return m_hasSeenMate; }

private:
    enum class ERound { kMateSeen, kOpen, kClosed };
    ERound TryRound(std::span<const TCandidateWord> rows, u32 base, u64 limit);
    ETrialOutcome Try(const TCandidateWord& row, u32 base, u64 limit);
    ETrialOutcome Run(u64 limit);
    u64 WorkLeft() const;

    TChessboard& m_root;
    const TSelectionRequest& m_request;
    const TSelectionFacts& m_facts;
    TSelectionRecord& m_record;
    const TTrialLimits m_limits;
    u64 m_work = 0;
    bool m_hasTried = false;
    bool m_hasSeenMate = false;
    bool m_isStopped = false;
    std::vector<TCandidateWord> m_refuted;
};

}  // namespace quillmere
