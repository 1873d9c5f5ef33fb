// What the rules about a reply ask in common.
#include "heuristics/reply_rules.h"

#include "core/attacks.h"
#include "core/direct_mates.h"
#include "core/legality.h"
#include "core/move_generation.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"

#include <algorithm>

namespace quillmere {

u8 CBlackReply::Captured() const {
    if (Move().IsNull())
        return 0;
    return Move().enPassant != 0 ? kWhitePawn : BlackNode().m_board[Move().to];
}

bool CBlackReply::IsMatedAtOnce() {
    if (m_mate == EKnown::kUnknown)
        m_mate = IsMateInOne(m_child) ? EKnown::kYes : EKnown::kNo;
    return m_mate == EKnown::kYes;
}

// Castling takes nothing, and en passant only a pawn beside the square, so that the square where the
// reply ended is the whole question.
bool CBlackReply::CanBeTaken() const {
    const int square = Move().to;
    if (!IsAttackedByWhite(m_child, square))
        return false;
    TMoveList list;
    list.count = m_child.m_whiteInCheck >= 0 ? GetWhiteEvasions(m_child, list.moves)
                                             : GetAllWhiteMoves(m_child, list.moves);
    return std::any_of(list.begin(), list.end(), [this, square](TMove move) {
        return move.to == square && IsLegalMove(m_child, move);
    });
}

const THeuristicSettings& CBlackReply::Settings() const {
    return m_child.m_threadContext->heuristics;
}

void CBlackReply::SetFlags(u16 searchFlags) {
    m_child.m_searchFlags |= searchFlags;
    ComputeHeurParams(m_child);
}

}  // namespace quillmere
