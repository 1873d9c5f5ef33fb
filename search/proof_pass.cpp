#include "search/proof_pass.h"

#include "core/platform/tick_count.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "registers/aggregated_register.h"
#include "search/pause.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace quillmere {
namespace {

constexpr u64 kFirstRound = 250'000;  // made moves under a word
constexpr u64 kRoundFactor = 4;

// Bytes of the tables: a quarter of what the register may take, as far as that is of any use.
constexpr std::size_t kTableBytes = std::size_t{512} << 20;
constexpr std::size_t kLeastTableBytes = std::size_t{1} << 20;

std::size_t TableBytes(const TSearchContext& context) {
    constexpr u64 kShare = 4;
    if (context.tempRegister == nullptr)
        return kTableBytes;
    const u64 share = context.tempRegister->Figures().byteLimit / kShare;
    return std::clamp(static_cast<std::size_t>(share), kLeastTableBytes, kTableBytes);
}

// What a pass asks the search: under which word, and how narrow.
struct TQuestion {
    u32 word = 0;
    int width = 0;

    bool operator==(const TQuestion&) const = default;
};
// Replies that a narrow search leaves open. Few fail at once; the long compositions that fall to it
// need about seven.
constexpr TQuestion kNarrow[] = {{0, 3}, {0, 5}, {0, 7}, {0, 10}};

class CProofPass {
public:
    CProofPass(CProofNumberSearch& search,
               TChessboard& root,
               CFirstMoves& moves,
               u64 madeMoves,
               bool isNarrowToo)
        : m_search(search),
          m_root(root),
          m_moves(moves),
          m_worker(moves.AddWorker(*root.m_threadContext)),
          m_end(root.m_threadContext->madeMoves + madeMoves),
          m_given(root.Heur),
          m_isNarrowToo(isNarrowToo),
          m_decided(moves.DecidedMoves()) {}

    void Run(const char* name) {
        const TThreadContext& thread = *m_root.m_threadContext;
        const TChessboard kept = m_root;
        const u64 startTick = TickCount();
        const u64 startNodes = thread.flushedNodes + thread.pendingNodes;
        const u64 startMoves = thread.madeMoves;
        m_root.m_pass = PassOf(m_given);
        m_moves.EnterPass(m_worker, m_root, name, false);
        ListQuestions(thread.heuristics.RunPassWithoutHeuristics);
        for (u64 round = kFirstRound; !IsOver(); round *= kRoundFactor)
            PlayRound(round);
        m_root = kept;
        m_moves.LeavePass(m_worker,
                          thread.flushedNodes + thread.pendingNodes - startNodes,
                          thread.madeMoves - startMoves,
                          TickCount() - startTick);
        m_moves.RemoveWorker(m_worker);
        m_moves.CloseLeadPass();
    }

private:
    static u8 PassOf(u32 word) { return word != 0 ? kPassHeuristics : kPassComplete; }
    u64 Left() const {
        const u64 made = m_root.m_threadContext->madeMoves;
        return m_end - std::min(m_end, made);
    }
    bool IsOver() const {
        return m_questions.empty() || m_moves.IsDone() || IsStopped(m_root) || Left() == 0;
    }

    // A narrow search is a bet like a word, so it is not made where the user wants none but the word's.
    void ListQuestions(bool isFullSearchWanted) {
        if (m_given != 0)
            m_questions.push_back({m_given, 0});
        if (!isFullSearchWanted)
            return;
        if (m_isNarrowToo)
            m_questions.insert(m_questions.end(), std::begin(kNarrow), std::end(kNarrow));
        m_questions.push_back({0, 0});
    }

    void PlayRound(u64 madeMoves) {
        const std::vector<TQuestion> questions = m_questions;
        for (const TQuestion& question : questions) {
            SetHeur(m_root, question.word);
            m_root.m_pass = PassOf(question.word);
            // A key leads to the same question again: is there another?
            while (!IsOver() && Ask(question, std::min(madeMoves, Left()))) {
            }
        }
    }

    // False if nothing more is to be had of this question in this round.
    bool Ask(const TQuestion& question, u64 madeMoves) {
        const TProofAnswer answer = m_search.Search(m_root, madeMoves, m_decided, question.width);
        if (IsStopped(m_root) || answer.isLimit)
            return false;
        if (answer.verdict == kMate && m_root.IsWhiteToMove()) {
            Decide(answer.move, kMate);
            return true;
        }
        std::erase(m_questions, question);
        if (m_root.IsWhiteToMove() && answer.verdict == kNoMate)
            DecideOthers(kNoMate);
        if (!m_root.IsWhiteToMove() && answer.verdict == kMate)
            DecideOthers(kMate);
        if (!m_root.IsWhiteToMove() && answer.verdict == kNoMate)
            Decide(answer.move, kNoMate);
        return false;
    }

    void Decide(TMove move, TVerdict verdict) {
        m_decided.push_back(move);
        m_moves.Decide(m_worker, move, verdict);
    }

    void DecideOthers(TVerdict verdict) {
        const std::vector<TMove> list(m_moves.List().begin(), m_moves.List().end());
        for (const TMove move : list) {
            const bool isDecided =
                std::any_of(m_decided.begin(), m_decided.end(), [move](TMove decided) {
                    return MovesEqual(decided, move);
                });
            if (!isDecided)
                Decide(move, verdict);
        }
    }

    CProofNumberSearch& m_search;
    TChessboard& m_root;
    CFirstMoves& m_moves;
    const int m_worker;
    const u64 m_end;  // of the thread's made moves
    const u32 m_given;
    const bool m_isNarrowToo;
    std::vector<TQuestion> m_questions;  // still worth asking, in this order
    std::vector<TMove> m_decided;
};

}  // namespace

u64 ProofMovesOf(int halfMoves) {
    struct TRow {
        int halfMoves;
        u64 madeMoves;
    };
    constexpr u64 kMillion = 1'000'000;
    // A full search grows with every move; what it would cost is what the proof may.
    constexpr TRow kRows[] = {{kProofRoot, 0},
                              {15, 12 * kMillion},
                              {19, 20 * kMillion},
                              {27, 30 * kMillion},
                              {65536, 200 * kMillion}};
    for (const TRow& row : kRows) {
        if (halfMoves < row.halfMoves)
            return row.madeMoves;
    }
    return 0;
}

bool IsProofPass(std::string_view name) {
    return name == kFirstProofPassName || name == kSecondProofPassName;
}

std::unique_ptr<CProofNumberSearch> MakeProofSearch(TChessboard& root) {
    return std::make_unique<CProofNumberSearch>(root, TableBytes(*root.m_searchContext));
}

void RunProofPass(CProofNumberSearch& search,
                  TChessboard& root,
                  CFirstMoves& moves,
                  const char* name,
                  u64 madeMoves) {
    // The narrow searches stand behind the first pass, which is over before they pay, and not in
    // tasks that are short enough to be searched whole.
    constexpr int kNarrowRoot = 19;
    const bool isNarrowToo =
        std::string_view(name) != kFirstProofPassName && root.m_nMoves >= kNarrowRoot;
    CProofPass(search, root, moves, madeMoves, isNarrowToo).Run(name);
}

}  // namespace quillmere
