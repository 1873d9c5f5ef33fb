#include "session/defence_analysis.h"

#include "core/legality.h"
#include "core/make_move.h"
#include "registers/register_limits.h"
#include "search/best_defence.h"
#include "search/mate_search.h"
#include "search/pause.h"
#include "session/problem_register.h"
#include "session/session_texts.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quillmere {
namespace {

struct TReply {
    TMove move{};
    TVerdict known = kNothingKnown;  // of the register, at the full length
    TVerdict verdict = kNothingKnown;
};

class CReplies {
public:
    CReplies(TChessboard& node, const TAnalysisRequest& request)
        : m_node(node), m_request(request) {
        TMoveList list;
        list.count = GetLegalMoves(node, list.moves);
        for (const TMove move : list)
            m_replies.push_back({move, VerdictOfRegister(Child(move)), kNothingKnown});
    }

    void Find(TDefenceAnalysis& analysis) {
        const bool wantAll = m_request.wantAll;
        if (m_replies.empty()) {
            analysis.kind = EDefence::kNoMoves;
            return;
        }
        // 1. What needs no long search
        analysis.isOnlyReply = m_replies.size() == 1;
        DropFastMated();
        analysis.isOnlySlowReply = !analysis.isOnlyReply && m_replies.size() == 1;
        if (MustLeave(m_node))
            return;

        // 2. Does a reply hold? Every reply that is mated fast is no candidate.
        SearchAll(wantAll, analysis);
        if (analysis.kind == EDefence::kRefutes || IsStopped(m_node))
            return;

        // 3. None was found: the one that lasts longest
        FindLongest(wantAll, analysis);
    }

private:
    TChessboard Child(TMove move) const {
        TChessboard child = m_node;
        child.m_parent = &m_node;
        MakeBlackMoveLegal(child, move);
        return child;
    }

    // White provably cannot mate any more after the reply.
    bool IsDecisive(TMove move) const {
        TChessboard child = m_node;
        child.m_parent = &m_node;
        return MakeBlackMove(child, move, false) == kMateImpossible;
    }

    // Takes away the replies that are mated fast, but leaves the list as it is if all of them are.
    void DropFastMated() {
        for (int halfMoves = 1; halfMoves <= kFastMateHalfMoves && halfMoves < m_node.m_nMoves - 1;
             halfMoves += 2) {
            std::vector<TReply> left;
            for (const TReply& reply : m_replies) {
                if (MustLeave(m_node) || VerdictWithin(Child(reply.move), halfMoves) != kMate)
                    left.push_back(reply);
            }
            if (left.empty() || IsStopped(m_node))
                return;
            m_replies = std::move(left);
        }
    }

    void SearchAll(bool wantAll, TDefenceAnalysis& analysis) {
        int number = 0;
        for (TReply& reply : m_replies) {
            if (m_request.observer != nullptr)
                m_request.observer->OnFirstMove(
                    reply.move, ++number, static_cast<int>(m_replies.size()));
            reply.verdict = IsDecisive(reply.move)
                                ? kNoMate
                                : VerdictWithin(Child(reply.move), m_node.m_nMoves - 1);
            if (MustLeave(m_node))
                return;
            if (reply.verdict == kMate || IsDoubtful(reply.verdict))
                continue;
            if (m_request.observer != nullptr)
                m_request.observer->OnKey(reply.move);
            if (analysis.kind == EDefence::kRefutes) {
                analysis.equivalent.push_back(reply.move);
                continue;
            }
            analysis.kind = EDefence::kRefutes;
            analysis.move = reply.move;
            analysis.isProved = true;
            analysis.isFromRegister = reply.known == kNoMate;
            if (!wantAll)
                return;
        }
    }

    void FindLongest(bool wantAll, TDefenceAnalysis& analysis) {
        analysis.kind = EDefence::kLoses;
        const auto doubtful =
            std::find_if(m_replies.begin(), m_replies.end(), [](const TReply& reply) {
                return IsDoubtful(reply.verdict);
            });
        if (doubtful != m_replies.end()) {
            analysis.move = doubtful->move;
            return;
        }
        analysis.isFromRegister = std::all_of(
            m_replies.begin(), m_replies.end(), [](const TReply& r) { return r.known == kMate; });
        if (!FindLongestDefence(m_node, &analysis.move, &analysis.mateHalfMoves)) {
            analysis.kind = EDefence::kNone;
            return;
        }
        analysis.isProved = true;
        // The one that was left of replies which are all mated fast prevents nothing.
        analysis.isOnlySlowReply &= analysis.mateHalfMoves > kFastMateHalfMoves;
        if (wantAll)
            FindAsLong(analysis);
    }

    void FindAsLong(TDefenceAnalysis& analysis) {
        const int shorter = analysis.mateHalfMoves - 2;
        for (const TReply& reply : m_replies) {
            if (MovesEqual(reply.move, analysis.move))
                continue;
            const bool isShorter =
                shorter > 0 && VerdictWithin(Child(reply.move), shorter) == kMate;
            if (IsStopped(m_node))
                return;
            if (!isShorter)
                analysis.equivalent.push_back(reply.move);
        }
    }

    TChessboard& m_node;
    const TAnalysisRequest& m_request;
    std::vector<TReply> m_replies;
};

EMessage MessageOf(const TDefenceAnalysis& analysis) {
    const bool holds = analysis.kind == EDefence::kRefutes;
    if (analysis.isOnlyReply)
        return holds ? EMessage::kOnlyReply : EMessage::kOnlyLosingReply;
    if (analysis.isOnlySlowReply)
        return holds ? EMessage::kOnlySlowReply : EMessage::kOnlySlowLosingReply;
    return holds ? EMessage::kMateRefutedWith : EMessage::kBestLosingDefence;
}

}  // namespace

TDefenceAnalysis AnalyseDefence(TChessProblem& problem, const TAnalysisRequest& request) {
    const auto start = std::chrono::steady_clock::now();
    TDefenceAnalysis analysis;
    CLineNode line(problem, request.line);
    TChessboard& node = line.Node();
    if (line.IsRepetition()) {
        analysis.kind = EDefence::kRepeats;
        analysis.milliseconds = MillisecondsSince(start);
        return analysis;
    }
    auto* const solved =
        RegisterOf(problem, node.m_nRootMoves, request.memoryBytes, request.programFolder);
    if (solved != nullptr)
        solved->Resize(BucketsOfRoot(node.m_nRootMoves), true);
    const CProblemInUse inUse(problem, solved, nullptr, request.progress);
    const CPastLeftOut pastLeftOut(node);
    CReplies(node, request).Find(analysis);
    FlushNodeCount(node);
    analysis.isStopped = IsStopped(node);
    const bool hasMove = analysis.kind == EDefence::kRefutes || analysis.kind == EDefence::kLoses;
    if (hasMove)
        analysis.text = LineMoveText(node, analysis.move);
    for (const TMove move : analysis.equivalent)
        analysis.equivalentTexts.push_back(LineMoveText(node, move));
    analysis.milliseconds = MillisecondsSince(start);
    return analysis;
}

std::string DefenceAnalysisText(const TDefenceAnalysis& analysis, ELanguage language) {
    const auto text = [language](EMessage id, const std::vector<std::string>& values = {}) {
        return FormatMessage(id, language, values);
    };
    switch (analysis.kind) {
    case EDefence::kRepeats:
        return text(EMessage::kPositionRepetition);
    case EDefence::kNone:
        return StopText(analysis.isTimeLimitHit, language);
    case EDefence::kNoMoves:
        return text(EMessage::kNoValidMove);
    case EDefence::kRefutes:
    case EDefence::kLoses:
        break;
    }
    std::string found = text(MessageOf(analysis), {analysis.text});
    if (analysis.isFromRegister)
        found += " " + text(EMessage::kFromRegister);
    if (!analysis.equivalentTexts.empty())
        found += text(EMessage::kEquivalentMoves, {JoinTexts(analysis.equivalentTexts, " | ")});
    if (analysis.isStopped)
        found += StopMark(analysis.isTimeLimitHit, language);
    return found;
}

}  // namespace quillmere
