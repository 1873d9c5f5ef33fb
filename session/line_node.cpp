#include "session/line_node.h"

#include "core/chess_exception.h"
#include "core/direct_mates.h"
#include "core/make_move.h"
#include "core/notation.h"
#include "heuristics/heur_params.h"
#include "search/mate_search.h"
#include "search/pause.h"
#include "search/register_access.h"
#include "search/repetition.h"

#include <algorithm>
#include <cstring>

namespace quillmere {

CLineNode::CLineNode(TChessProblem& problem, const std::optional<std::vector<TMove>>& line)
    : m_thread(problem.maxHalfMoves) {
    TChessboard& root = m_nodes.emplace_back();
    InitBoard(root);
    std::memcpy(root.m_board, problem.position->m_board, sizeof root.m_board);
    root.m_searchContext = &problem;
    root.m_threadContext = &m_thread;
    root.m_pass = kPassComplete;
    SetupAnalysisRoot(root, problem.maxHalfMoves, true);
    m_thread.rootNode = &root;
    m_thread.moveMemory = m_memory.get();
    m_thread.computeHeurParams = ComputeHeurParams;
    for (const TMove played : line ? *line : problem.PlayedMoves()) {
        TChessboard& parent = m_nodes.back();
        TChessboard child = parent;
        child.m_parent = &parent;
        const TMove move = MakeMove(played.from, played.to, played.Promotion());
        const int made = parent.IsWhiteToMove() ? MakeWhiteMoveLegal(child, move)
                                                : MakeBlackMoveLegal(child, move);
        if (made != kMoveMade)
            throw ChessException(EMessage::kIllegalMove);
        m_nodes.push_back(child);
    }
}

bool CLineNode::IsRepetition() const {
    int level = 0;
    return quillmere::IsRepetition(m_nodes.back(), &level);
}

CPastLeftOut::CPastLeftOut(const TChessboard& node)
    : m_context(*node.m_searchContext), m_bound(m_context.repetitionBound) {
    const int levelBehind = node.m_nMoves - 1;
    m_context.repetitionBound = static_cast<u16>(std::min<int>(m_bound, levelBehind));
}

bool MustLeave(TChessboard& node) {
    TListState noList;
    return CheckPause(node, noList) == EPause::kStop;
}

TVerdict VerdictWithin(const TChessboard& node, int halfMoves) {
    constexpr int kMateInOne = 1;
    constexpr int kMateInTwo = 3;
    // A copy on the frame: the search below writes to the node stack.
    TChessboard test = node;
    test.m_nMoves = static_cast<u16>(halfMoves);
    if (halfMoves == kMateInOne)
        return IsMateInOne(test) ? kMate : kNoMate;
    if (halfMoves == kMateInTwo)
        return IsMateInTwo(test) ? kMate : kNoMate;
    return FindMate(test, true);
}

TVerdict VerdictOfRegister(const TChessboard& node) {
    return node.m_nMoves >= kRegisterLevel && MayUseRegister(node) ? FindInRegister(node)
                                                                   : kNothingKnown;
}

std::string LineMoveText(const TChessboard& node, TMove move) {
    return move.IsNull() ? "-" : MoveToText(node, move);
}

}  // namespace quillmere
