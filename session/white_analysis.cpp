#include "session/white_analysis.h"

#include "core/legality.h"
#include "core/make_move.h"
#include "registers/register_limits.h"
#include "search/mate_search.h"
#include "search/move_ordering.h"
#include "search/pause.h"
#include "search/register_access.h"
#include "session/problem_register.h"
#include "session/session_texts.h"

#include <algorithm>
#include <chrono>

namespace quillmere {
namespace {

// Mates of up to three moves are looked for before the whole length: a short mate is what people
// want to see, and to look for it costs little.
constexpr int kShortHalfMoves = 5;
// Behind a move and its reply so many half-moves are left as the register begins with.
constexpr int kKnownHalfMoves = kRegisterLevel + 2;
// From here on the order of the moves is worth the sort.
constexpr int kSortedHalfMoves = 5;

class CWhiteMoves {
public:
    CWhiteMoves(TChessboard& node, const TAnalysisRequest& request)
        : m_node(node), m_request(request) {
        m_list.count = GetLegalMoves(node, m_list.moves);
        if (node.m_nMoves < kSortedHalfMoves)
            return;
        // The list is legal, so that nothing is dropped.
        int mateFound = 0;
        u8 quietCount = 0;
        u8 retry = 0;
        SortWhiteMoves(node, m_list.count, m_list.moves, &mateFound, &quietCount, false, &retry);
        for (TMove& move : m_list)
            move.enPassant = 0;  // the key of the sort
    }

    void Find(TWhiteAnalysis& analysis) {
        const bool wantAll = m_request.wantAll;
        const int length = m_node.m_nMoves;
        if (length >= kKnownHalfMoves)
            FindKnown(analysis);
        for (int halfMoves = 1; halfMoves <= kShortHalfMoves && halfMoves < length; halfMoves += 2)
            FindWithin(halfMoves, false, analysis);
        if (analysis.moves.empty() || wantAll)
            FindWithin(length, wantAll, analysis);
    }

private:
    static bool Holds(const std::vector<TMove>& moves, TMove move) {
        return std::any_of(
            moves.begin(), moves.end(), [move](TMove other) { return MovesEqual(move, other); });
    }

    bool MakeChild(TChessboard& child, TMove move) {
        child = m_node;
        child.m_parent = &m_node;
        return MakeWhiteMoveLegal(child, move) == kMoveMade;
    }

    // Every reply leads to a position that is known as a mate, or is mated in two at once: mates so
    // short are not kept.
    bool IsKnown(TMove move) {
        constexpr int kMateInTwo = 3;
        TChessboard child{};
        if (!MakeChild(child, move))
            return false;
        TMoveList replies;
        replies.count = GetLegalMoves(child, replies.moves);
        bool isAnyKept = false;
        for (const TMove reply : replies) {
            TChessboard node = child;
            node.m_parent = &child;
            MakeBlackMoveLegal(node, reply);
            const bool isKept = VerdictOfRegister(node) == kMate;
            if (!isKept && VerdictWithin(node, kMateInTwo) != kMate)
                return false;
            isAnyKept |= isKept;
        }
        return isAnyKept;
    }

    void FindKnown(TWhiteAnalysis& analysis) {
        const auto* const known = std::find_if(
            m_list.begin(), m_list.end(), [this](TMove move) { return IsKnown(move); });
        if (known == m_list.end())
            return;
        analysis.isFromRegister = true;
        Add(*known, analysis);
    }

    void Tell(TMove move) const {
        if (m_request.observer == nullptr)
            return;
        const auto* const place = std::find_if(
            m_list.begin(), m_list.end(), [move](TMove other) { return MovesEqual(move, other); });
        m_request.observer->OnFirstMove(
            move, static_cast<int>(place - m_list.begin()) + 1, m_list.count);
    }
    void Add(TMove move, TWhiteAnalysis& analysis) const {
        analysis.moves.push_back(move);
        if (m_request.observer != nullptr)
            m_request.observer->OnKey(move);
    }

    // Adds the first move that mates within the half-moves, unless one is found already; or all.
    void FindWithin(int halfMoves, bool wantAll, TWhiteAnalysis& analysis) {
        bool isDecided = true;
        const u16 length = m_node.m_nMoves;
        m_node.m_nMoves = static_cast<u16>(halfMoves);
        for (const TMove move : m_list) {
            if (MustLeave(m_node) || (!wantAll && !analysis.moves.empty()))
                break;
            TChessboard child{};
            if (Holds(analysis.moves, move) || !MakeChild(child, move))
                continue;
            Tell(move);
            const TVerdict verdict = CheckDefences(child);
            if (IsStopped(m_node))
                break;
            if (verdict == kMate)
                Add(move, analysis);
            isDecided &= !IsDoubtful(verdict);
        }
        m_node.m_nMoves = length;
        analysis.isStopped = IsStopped(m_node);
        analysis.isProved = isDecided && halfMoves == length && !analysis.isStopped;
    }

    TChessboard& m_node;
    const TAnalysisRequest& m_request;
    TMoveList m_list;
};

}  // namespace

TWhiteAnalysis AnalyseWhite(TChessProblem& problem, const TAnalysisRequest& request) {
    const auto start = std::chrono::steady_clock::now();
    TWhiteAnalysis analysis;
    CLineNode line(problem, request.line);
    TChessboard& node = line.Node();
    auto* const solved =
        RegisterOf(problem, node.m_nRootMoves, request.memoryBytes, request.programFolder);
    if (solved != nullptr)
        solved->Resize(BucketsOfRoot(node.m_nRootMoves), true);
    const CProblemInUse inUse(problem, solved, nullptr, request.progress);
    const CPastLeftOut pastLeftOut(node);
    CWhiteMoves(node, request).Find(analysis);
    FlushNodeCount(node);
    for (const TMove move : analysis.moves)
        analysis.texts.push_back(LineMoveText(node, move));
    analysis.milliseconds = MillisecondsSince(start);
    return analysis;
}

std::string
WhiteAnalysisText(const TWhiteAnalysis& analysis, bool isFinalPassOff, ELanguage language) {
    const auto text = [language](EMessage id, const std::vector<std::string>& values = {}) {
        return FormatMessage(id, language, values);
    };
    if (analysis.moves.empty()) {
        const std::string seconds = SecondsText(analysis.milliseconds);
        if (analysis.isStopped)
            return StopText(analysis.isTimeLimitHit, language);
        if (isFinalPassOff)
            return text(EMessage::kNoSolution) + " " + text(EMessage::kNoteNoFinalPass);
        return analysis.isProved ? text(EMessage::kNoSolutionWithin, {seconds})
                                 : text(EMessage::kNoSolution);
    }
    std::string found = text(EMessage::kFollowingMovesFound);
    for (const std::string& move : analysis.texts)
        found += "\n" + move;
    if (analysis.isFromRegister)
        found += " " + text(EMessage::kFromRegister);
    if (analysis.isStopped)
        found += StopMark(analysis.isTimeLimitHit, language);
    return found;
}

}  // namespace quillmere
