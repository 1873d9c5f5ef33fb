#include "heuristics/selection_trials.h"

#include "core/thread_context.h"
#include "heuristics/catalogue.h"
#include "heuristics/heur_params.h"
#include "heuristics/trial_search.h"
#include "search/proof_pass.h"

#include <algorithm>

namespace quillmere {
namespace {

ETrialOutcome OutcomeOf(ETrialVerdict verdict) {
    switch (verdict) {
    case ETrialVerdict::kMate:
        return ETrialOutcome::kMateSeen;
    case ETrialVerdict::kDoubtful:
        return ETrialOutcome::kFailed;
    case ETrialVerdict::kNoMate:
        return ETrialOutcome::kProvedNone;
    case ETrialVerdict::kLimit:
        return ETrialOutcome::kLimit;
    case ETrialVerdict::kStopped:
        break;
    }
    return ETrialOutcome::kStopped;
}

}  // namespace

CSelectionTrials::CSelectionTrials(TChessboard& root,
                                   const TSelectionRequest& request,
                                   const TSelectionFacts& facts,
                                   TSelectionRecord& record)
    : m_root(root),
      m_request(request),
      m_facts(facts),
      m_record(record),
      m_limits(TrialLimits(facts)) {}

bool CSelectionTrials::TryOnce(std::span<const TCandidateWord> rows, u32 base) {
    return TryRound(rows, base, m_limits.first) == ERound::kMateSeen;
}

bool CSelectionTrials::TryInRounds(std::span<const TCandidateWord> rows, u32 base) {
    for (u64 limit = m_limits.first; limit != 0 && limit <= m_limits.last;
         limit *= static_cast<u64>(m_limits.factor)) {
        const ERound round = TryRound(rows, base, limit);
        if (round != ERound::kOpen)
            return round == ERound::kMateSeen;
    }
    return false;
}

const TCandidateWord* CSelectionTrials::Undecided(std::span<const TCandidateWord> rows) const {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [this](const TCandidateWord& candidate) {
            return candidate.suits(m_facts) && !IsRefuted(candidate);
        });
    return m_hasTried && row != rows.end() ? &*row : nullptr;
}

bool CSelectionTrials::IsRefuted(const TCandidateWord& row) const {
    return std::any_of(m_refuted.begin(), m_refuted.end(), [&row](const TCandidateWord& refuted) {
        return IsAtLeastAsStrict(row, refuted);
    });
}

// kOpen: a word may see a mate with more work. kClosed: nothing is left to try or to spend.
CSelectionTrials::ERound
CSelectionTrials::TryRound(std::span<const TCandidateWord> rows, u32 base, u64 limit) {
    bool isOpen = false;
    for (const TCandidateWord& row : rows) {
        if (m_isStopped || limit == 0 || WorkLeft() < limit)
            return ERound::kClosed;
        if (!row.suits(m_facts) || IsRefuted(row))
            continue;
        const ETrialOutcome outcome = Try(row, base, limit);
        if (outcome == ETrialOutcome::kMateSeen)
            return ERound::kMateSeen;
        isOpen |= outcome == ETrialOutcome::kLimit;
    }
    return isOpen ? ERound::kOpen : ERound::kClosed;
}

ETrialOutcome CSelectionTrials::Try(const TCandidateWord& row, u32 base, u64 limit) {
    const TChessboard keptNode = m_root;
    const THeuristicSettings keptSettings = m_root.m_threadContext->heuristics;
    TakeCandidate(m_root, row, base, m_facts);
    const ETrialOutcome outcome = Run(limit);
    if (outcome == ETrialOutcome::kFailed || outcome == ETrialOutcome::kProvedNone)
        m_refuted.push_back(row);
    if (outcome != ETrialOutcome::kMateSeen) {
        m_root = keptNode;
        m_root.m_threadContext->heuristics = keptSettings;
    }
    return outcome;
}

bool CSelectionTrials::TryWord() {
    const u64 limit = m_limits.first;
    return limit != 0 && !m_isStopped && limit <= WorkLeft() &&
           Run(limit) == ETrialOutcome::kMateSeen;
}

// The word of the node, with the parameters of its thread.
ETrialOutcome CSelectionTrials::Run(u64 limit) {
    TTrialRecord record;
    record.heuristics = HeuristicsText(m_root);
    record.halfMoves = m_root.m_nMoves;
    record.limit = limit;

    TTrialRequest request;
    request.heur = m_root.Heur;
    request.halfMoves = m_root.m_nMoves;
    request.workLimit = limit;
    request.firstMoves = m_request.firstMoves;
    if (m_root.m_nMoves >= kProofRoot) {
        request.proof = m_request.proof;
        request.decided = m_request.decided;
    }
    const TTrialResult result = RunTrial(m_root, request);

    record.outcome = OutcomeOf(result.verdict);
    record.madeMoves = result.madeMoves;
    m_record.trials.push_back(record);
    m_work += result.madeMoves;
    m_hasTried = true;
    m_hasSeenMate |= record.outcome == ETrialOutcome::kMateSeen;
    // "No mate" is the end of all words, but the pass without one must say it.
    m_isStopped |=
        record.outcome == ETrialOutcome::kStopped || record.outcome == ETrialOutcome::kProvedNone;
    return record.outcome;
}

u64 CSelectionTrials::WorkLeft() const {
    return m_work < m_limits.total ? m_limits.total - m_work : 0;
}

}  // namespace quillmere
