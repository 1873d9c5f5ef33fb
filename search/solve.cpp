#include "search/solve.h"

#include "core/legality.h"
#include "core/make_move.h"
#include "core/platform/system_info.h"
#include "core/thread_context.h"
#include "core/warning_sink.h"
#include "heuristics/blocked_list.h"
#include "heuristics/forced_mate_ladder.h"
#include "heuristics/heur_params.h"
#include "heuristics/predefined_tables.h"
#include "heuristics/rules.h"
#include "heuristics/selection.h"
#include "registers/aggregated_register.h"
#include "search/best_defence.h"
#include "search/first_move_search.h"
#include "search/first_moves.h"
#include "search/main_line.h"
#include "search/mate_search.h"
#include "search/moves_log.h"
#include "search/pause.h"
#include "search/proof_line.h"
#include "search/proof_pass.h"
#include "search/register_access.h"
#include "search/root.h"
#include "search/wished_threads.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <memory>

namespace quillmere {
namespace {

// Two frames with a move list each stand on the stack for every two half-moves.
constexpr std::size_t kStackBytesPerHalfMove = 4096;

constexpr std::size_t kStackFloorBytes = std::size_t{1} << 20;

class CNobodyWarned final : public IWarningSink {
public:
    void Warn(EMessage, EMessage, const std::vector<std::string>&) override {}
};

// The depth that a request gives stands in the context while it is solved.
class CGivenQuickMateDepth {
public:
    CGivenQuickMateDepth(TSearchContext& context, i16 given)
        : m_context(context), m_kept(context.m_shLookForQuickerMateDepth) {
        if (given != kQuickMateDepthUnset)
            context.m_shLookForQuickerMateDepth = given;
    }
    ~CGivenQuickMateDepth() { m_context.m_shLookForQuickerMateDepth = m_kept; }
    CGivenQuickMateDepth(const CGivenQuickMateDepth&) = delete;
    CGivenQuickMateDepth& operator=(const CGivenQuickMateDepth&) = delete;

private:
    TSearchContext& m_context;
    const i16 m_kept;
};

class CSolver {
public:
    CSolver(const TChessboard& board,
            const TSolveRequest& request,
            TSearchContext& context,
            ISolveObserver* observer)
        : m_request(request),
          m_context(context),
          m_observer(observer != nullptr ? *observer : m_silent),
          m_thread(request.halfMoves) {
        InitBoard(m_root);
        std::memcpy(m_root.m_board, board.m_board, sizeof m_root.m_board);
        m_root.m_searchContext = &context;
        m_root.m_threadContext = &m_thread;
        m_root.m_pass = kPassComplete;
        SetupAnalysisRoot(m_root, request.halfMoves, true);
        m_thread.rootNode = &m_root;
        m_thread.moveMemory = m_memory.get();
        m_thread.computeHeurParams = ComputeHeurParams;
        context.nodeLimit = request.nodeLimit;
        PrepareRegister();
    }

    TSolveResult Run() {
        m_firstMoves.count = GetLegalMoves(m_root, m_firstMoves.moves);
        SortList();
        m_result.firstMoves.assign(m_firstMoves.begin(), m_firstMoves.end());
        if (m_request.heuristics != nullptr)
            TakeHeuristics(m_root, *m_request.heuristics);
        m_result.wishedThreads = FindWishedThreads();
        if (m_result.wishedThreads > 0) {
            PlanPasses();
            m_result.verdict = ESolveVerdict::kStopped;
            return m_result;
        }
        const bool isWhite = m_root.IsWhiteToMove();
        CFirstMoves moves(m_firstMoves, {isWhite, WantedSolutions()}, m_observer);
        RunFirstProofPass(moves);
        if (m_request.selectsHeuristics)
            ChooseHeuristics(moves);
        PlanPasses();
        ApplyFfmPreliminary(m_root);
        const CGivenQuickMateDepth quickMateDepth(m_context, m_request.quickMateDepth);
        RunSecondProofPass(moves);
        SearchFirstMoves(moves);
        m_observer.OnAfterKeys();
        if (m_request.wantTries && m_root.IsWhiteToMove() && !IsStopped(m_root))
            m_result.isComplete &= FindTries();
        if (m_request.wantMainLine)
            FindLines();
        FlushNodeCount(m_root);
        m_result.nodes = m_context.nodeCount.load(std::memory_order_relaxed);
        m_result.madeMoves += m_thread.madeMoves;
        return m_result;
    }

private:
    // The one place where the register is cleared. A task too short for it leaves it alone.
    void PrepareRegister() {
        TAggregatedTemporaryChessboardRegister* store = m_context.tempRegister;
        if (store == nullptr || m_request.halfMoves < m_context.registerRoot)
            return;
        if (m_request.clearRegister)
            store->Clear(0, false);
        store->Resize(BucketsOfRoot(m_request.halfMoves), true);
    }

    // Keys are found sooner in a good order, and told in the order of generation.
    void SortList() {
        m_listedMoves = m_firstMoves;
        m_quietCount = SortFirstMoves(m_root, m_firstMoves, m_request.sortIndications);
    }

    // Part of the root analysis: on this thread, with the register of the passes.
    void ChooseHeuristics(const CFirstMoves& moves) {
        if (!m_root.IsWhiteToMove() || m_request.halfMoves < kSelectionHalfMoves)
            return;
        if (m_proof != nullptr && moves.IsDone()) {
            TakeNoWord();
            m_result.selection.wasMade = true;
            m_result.selection.whyNothing = EMessage::kReasonDecided;
            return;
        }
        TSelectionRequest request;
        request.moveCount = m_firstMoves.count;
        request.forcedMoves = m_firstMoves.count - m_quietCount;
        request.firstMoves = &m_firstMoves;
        request.proof = m_proof.get();
        request.decided = moves.DecidedMoves();
        SelectHeuristics(m_root, request, m_result.selection);
        const u32 chosen = m_root.Heur;
        ApplyPredefinedAdditionalHeuristics(
            m_root, m_request.warnings != nullptr ? *m_request.warnings : m_nobody);
        TellSettings(m_root, chosen, m_result.selection);
        PrepareWord(m_root, m_root.Heur);
    }

    int PlaceInList(TMove move) const {
        const auto place = std::find_if(m_listedMoves.begin(),
                                        m_listedMoves.end(),
                                        [move](TMove listed) { return MovesEqual(listed, move); });
        return static_cast<int>(place - m_listedMoves.begin());
    }

    void PlanPasses() {
        const THeuristicSettings& settings = m_thread.heuristics;
        if (m_root.Heur != 0) {
            m_root.m_pass = kPassHeuristics;
            m_result.plannedPasses = PlannedPath(m_root);
            m_root.m_pass = kPassComplete;
        }
        if (settings.RunPassWithoutHeuristics)
            m_result.plannedPasses.push_back(TPlannedPass{"", false});
        m_result.isFinalPassOff = !settings.RunPassWithoutHeuristics;
    }

    int FindWishedThreads() {
        if (!m_request.mayAskForThreads || !m_root.IsWhiteToMove())
            return 0;
        return WishedThreads(AskForThreads(m_root,
                                           m_firstMoves,
                                           m_quietCount,
                                           m_request.threads,
                                           ReadSystemInfo().logicalProcessors));
    }

    // Solutions after which the work ends; 0 for all.
    int WantedSolutions() const {
        if (m_request.wantTries)
            return 0;
        return m_request.wantAllKeys ? m_request.stopAfterKeys : 1;
    }

    void SearchFirstMoves(CFirstMoves& moves) {
        TRootRequest request;
        request.startsAtPassOne = m_request.clearRegister;
        request.stopsRelaxingOnFirstSolution = m_request.stopsRelaxingOnFirstSolution;
        request.movesLogs = m_request.movesLogs;
        TRootWork work;
        const TRootResult ended = FindMateThreaded(m_root, moves, request, m_request.threads, work);
        m_result.threads = ended.threads;
        m_result.isMaskFailed = ended.isMaskFailed;
        m_result.madeMoves = work.madeMoves;
        if (ended.isStopped)
            m_thread.stopLevel.store(kThreadStops, std::memory_order_relaxed);
        TakeDecisions(moves);
        m_result.isComplete = moves.IsDone();
    }

    bool MayRunProofPass() const {
        return m_request.proofMoves != 0 && m_firstMoves.count != 0 &&
               m_request.halfMoves >= kProofRoot;
    }

    // Without a word, before one is chosen. Where words are required none may be missing, so that
    // nothing is searched before the choice.
    void RunFirstProofPass(CFirstMoves& moves) {
        if (!MayRunProofPass() || m_context.requiredHeuristics != 0)
            return;
        m_proof = MakeProofSearch(m_root);
        const TChessboard root = m_root;
        TakeNoWord();
        const u64 start = m_thread.madeMoves;
        RunProofPass(*m_proof,
                     m_root,
                     moves,
                     kFirstProofPassName,
                     std::min(kFirstProofMoves, m_request.proofMoves));
        m_firstProofMoves = m_thread.madeMoves - start;
        m_root = root;
        m_isStoppedEarly = IsStopped(m_root);
    }

    // A key is known and the others are wanted: to refute first moves one by one is what the passes do
    // best, as long as they come to an end.
    bool IsRestForPasses(const CFirstMoves& moves) const {
        constexpr int kHopeless = 19;
        return moves.SolutionCount() != 0 && m_request.halfMoves < kHopeless;
    }

    // Under the word of the passes and without, with what the first one and the trials learned. A
    // request whose word lacks what is required is not searched at all: the passes tell. A stop that
    // came in the trials is told as that of this pass.
    void RunSecondProofPass(CFirstMoves& moves) {
        const u32 required = m_context.requiredHeuristics;
        if (!MayRunProofPass() || moves.IsDone() || m_isStoppedEarly ||
            (m_root.Heur & required) != required || m_firstProofMoves >= m_request.proofMoves ||
            IsRestForPasses(moves))
            return;
        if (m_proof == nullptr)
            m_proof = MakeProofSearch(m_root);
        RunProofPass(*m_proof,
                     m_root,
                     moves,
                     kSecondProofPassName,
                     m_request.proofMoves - m_firstProofMoves);
    }

    // Solutions come in the order of generation, each with its pass; then the verdict.
    void TakeDecisions(const CFirstMoves& moves) {
        const bool isWhite = m_root.IsWhiteToMove();
        bool areAllDecided = true;
        std::vector<CFirstMoves::TDecision> decisions = moves.Decisions();
        std::sort(decisions.begin(), decisions.end(), [this](const auto& a, const auto& b) {
            return PlaceInList(a.move) < PlaceInList(b.move);
        });
        for (const CFirstMoves::TDecision& decision : decisions) {
            areAllDecided &= decision.isDecided;
            if (!decision.isDecided || decision.isMate != isWhite)
                continue;
            (isWhite ? m_result.keys : m_result.defences).push_back(decision.move);
            if (isWhite)
                m_result.keyPasses.push_back(decision.passIndex);
        }
        const bool isFound = !m_result.keys.empty() || !m_result.defences.empty();
        m_result.verdict = VerdictOf(isWhite, isFound, areAllDecided);
        m_result.passes = moves.Passes();
        const bool isStopped = m_result.verdict == ESolveVerdict::kStopped ||
                               m_result.verdict == ESolveVerdict::kLimit;
        if (isStopped && !m_result.passes.empty())
            m_result.passes.back().verdict = m_result.verdict;
    }

    ESolveVerdict VerdictOf(bool isWhite, bool isFound, bool areAllDecided) const {
        if (isFound)
            return isWhite ? ESolveVerdict::kProvedMate : ESolveVerdict::kProvedNoMate;
        if (IsStopped(m_root))
            return m_context.isNodeLimitReached.load(std::memory_order_relaxed)
                       ? ESolveVerdict::kLimit
                       : ESolveVerdict::kStopped;
        if (!areAllDecided)
            return ESolveVerdict::kDoubt;
        if (isWhite)
            return ESolveVerdict::kProvedNoMate;
        // Every defence fails; with none to try black is mated, or stalemated.
        const bool isStalemate = m_firstMoves.count == 0 && m_root.m_blackInCheck < 0;
        return isStalemate ? ESolveVerdict::kProvedNoMate : ESolveVerdict::kProvedMate;
    }

    // The word under which the key was proved: what follows it is found again under the same.
    void TakeWordOf(std::size_t key) {
        const int index = key < m_result.keyPasses.size() ? m_result.keyPasses[key] : -1;
        const bool isKnown = index >= 0 && m_result.passes[index].isUnderWord;
        m_root.m_pass = isKnown ? m_result.passes[index].pass : kPassComplete;
        if (isKnown) {
            m_thread.heuristics = m_result.passes[index].settings;
            TrackBlockedFigures(m_root);
        }
        SetHeur(m_root, isKnown ? m_result.passes[index].Heur : 0);
    }

    void TakeNoWord() {
        SetHeur(m_root, 0);
        m_root.m_pass = kPassComplete;
    }

    // The key was proved by the proof-number search.
    bool IsProvedByNumbers(std::size_t key) const {
        const int index = key < m_result.keyPasses.size() ? m_result.keyPasses[key] : -1;
        return m_proof != nullptr && index >= 0 && IsProofPass(m_result.passes[index].name);
    }

    // So was the first key, or the mate against every defence.
    bool IsMateOfNumbers() const {
        if (m_root.IsWhiteToMove())
            return IsProvedByNumbers(0);
        return m_proof != nullptr && m_result.passes.back().verdict == ESolveVerdict::kProvedMate &&
               IsProofPass(m_result.passes.back().name);
    }

    // Made moves for the length of a line: as many as its proof, and some for short proofs.
    u64 LineMoves() const {
        constexpr u64 kLeast = 500'000;
        u64 proof = m_result.selection.madeMoves;
        for (const TPassRecord& pass : m_result.passes)
            proof += IsProofPass(pass.name) ? pass.madeMoves : 0;
        return std::max(kLeast, proof);
    }

    void FindLines() {
        if (IsMateOfNumbers() && !IsStopped(m_root)) {
            TakeNoWord();
            const TMove* const key = m_root.IsWhiteToMove() ? &m_result.keys.front() : nullptr;
            m_result.mainLine = FindProofLine(*m_proof, m_root, key, LineMoves());
        }
        if (m_result.mainLine.empty() && IsLineSearchable())
            FindMainLineBySearch();
        FindBestDefences();
    }

    // A line whose proof was forgotten for want of memory is searched for only where that has an end.
    bool IsLineSearchable() const {
        constexpr int kSearchable = 21;
        return !IsMateOfNumbers() || m_request.halfMoves <= kSearchable;
    }

    void FindMainLineBySearch() {
        const bool hasKey = m_root.IsWhiteToMove();
        if (m_result.verdict == ESolveVerdict::kProvedMate && !IsStopped(m_root)) {
            // The replies of a mate-defence task have a pass each: no word fits all of them.
            TakeWordOf(0);
            const TMove* const key = hasKey ? &m_result.keys.front() : nullptr;
            m_result.mainLine = FindMainLine(m_root, key);
            // The word may give the line up even so: rules look at the half-moves that are left, and
            // the register knew mates that were proved under other words.
            if (m_result.mainLine.empty() && m_root.Heur != 0 && !IsStopped(m_root)) {
                TakeNoWord();
                m_result.mainLine = FindMainLine(m_root, key);
            }
        }
    }

    void FindBestDefences() {
        for (std::size_t i = 0; i < m_result.keys.size(); ++i) {
            const bool isTold = i == 0 && m_result.mainLine.size() > 1;
            TakeWordOf(i);
            m_result.bestDefences.push_back(isTold ? m_result.mainLine[1] : BestDefenceTo(i));
        }
    }

    TMove BestDefenceTo(std::size_t index) {
        const TMove key = m_result.keys[index];
        if (IsProvedByNumbers(index))
            return FindProofDefence(*m_proof, m_root, key, LineMoves());
        TChessboard child = m_root;
        child.m_parent = &m_root;
        TMove defence{};
        if (!IsStopped(m_root) && MakeWhiteMove(child, key) == kMoveMade) {
            UpdateAfterWhiteMove(child);
            GetBestDefence(child, &defence);  // leaves the null move if it is stopped
        }
        return defence;
    }

    // Looks for first moves, other than keys, with exactly one refutation. False if stopped, or if a
    // first move stayed undecided.
    bool FindTries() {
        TakeNoWord();  // a refutation must be proved
        bool isComplete = true;
        for (const TMove move : m_listedMoves) {
            const bool isKey = std::any_of(m_result.keys.begin(),
                                           m_result.keys.end(),
                                           [move](TMove key) { return MovesEqual(key, move); });
            if (isKey)
                continue;
            std::vector<TMove> refutations;
            bool isDoubtful = false;
            if (!FindRefutations(move, refutations, &isDoubtful))
                return false;
            // A reply that may or may not refute leaves the move undecided.
            isComplete &= !isDoubtful || refutations.size() > 1;
            if (refutations.size() == 1 && !isDoubtful)
                m_result.tries.push_back(TTry{move, refutations.front()});
        }
        return isComplete;
    }

    // Does white mate against this legal reply with the moves it has left? After its last move it
    // has none, and any reply refutes.
    static TVerdict VerdictOfReply(TChessboard& child, TMove reply) {
        if (child.m_nMoves == 0)
            return kNoMate;
        TChessboard node = child;
        node.m_parent = &child;
        return MakeBlackMoveLegal(node, reply) == kMoveMade ? FindMate(node, true) : kNoMate;
    }

    // Up to two replies against which the first move does not mate; *isDoubtful if it is not known
    // of a reply. False if stopped.
    bool FindRefutations(TMove move, std::vector<TMove>& refutations, bool* isDoubtful) {
        // Not a slot of the node stack: it must outlive the searches below it.
        TChessboard child = m_root;
        child.m_parent = &m_root;
        if (MakeWhiteMoveLegal(child, move) != kMoveMade)
            return true;
        TMoveList replies;
        replies.count = GetLegalMoves(child, replies.moves);
        for (const TMove reply : replies) {
            const TVerdict verdict = VerdictOfReply(child, reply);
            if (IsStopped(m_root))
                return false;
            if (IsDoubtful(verdict))
                *isDoubtful = true;
            else if (verdict != kMate)
                refutations.push_back(reply);
            if (refutations.size() > 1)
                return true;
        }
        return true;
    }

    const TSolveRequest& m_request;
    TSearchContext& m_context;
    ISolveObserver m_silent;
    CNobodyWarned m_nobody;
    ISolveObserver& m_observer;
    std::unique_ptr<TMoveMemory> m_memory = std::make_unique<TMoveMemory>();
    TThreadContext m_thread;
    TChessboard m_root{};
    std::unique_ptr<CProofNumberSearch> m_proof;  // null without such a pass
    u64 m_firstProofMoves = 0;                    // that the first of them made
    bool m_isStoppedEarly = false;                // in the first of them
    u8 m_quietCount = 0;                          // of the first moves, by the sort
    TMoveList m_firstMoves;                       // in the order in which they are tried
    TMoveList m_listedMoves;                      // the same in the order of generation
    TSolveResult m_result;
};

}  // namespace

TSolveResult Solve(const TChessboard& board,
                   const TSolveRequest& request,
                   TSearchContext& context,
                   ISolveObserver* observer) {
    return CSolver(board, request, context, observer).Run();
}

std::size_t SolveStackBytes(int halfMoves) {
    return std::max(kStackFloorBytes, static_cast<std::size_t>(halfMoves) * kStackBytesPerHalfMove);
}

}  // namespace quillmere
