#include "search/refuted_moves.h"

#include "core/geometry.h"
#include "core/king_zone.h"
#include "core/thread_context.h"

#include <algorithm>
#include <bit>

namespace quillmere {

void CRefutedMoves::Start() {
    // One-colour play has a bishop off the board, which the filter does not see.
    TMoveMemory* memory = m_node.m_threadContext->moveMemory;
    if (m_node.OneColourMode() != kOneColourOff)
        return;
    if (memory != nullptr) {
        const TMovePair& killers = memory->Killers(m_node.m_nMoves - 1);
        Add(killers.first);
        Add(killers.second);
    }
    const int king = m_node.BlackKingSquare();
    for (unsigned steps = SafeKingSteps(m_node); steps != 0 && m_filterCount == 0;
         steps &= steps - 1)
        Add(MakeMove(king, kGeometry.kingTargets[king][std::countr_zero(steps)]));
}

void CRefutedMoves::Learn() {
    TMoveMemory* memory = m_node.m_threadContext->moveMemory;
    if (memory != nullptr && m_node.OneColourMode() == kOneColourOff)
        Add(memory->Killers(m_node.m_nMoves - 1).first);
}

void CRefutedMoves::Add(TMove reply) {
    auto& filters = m_node.m_threadContext->replyFilters;
    if (m_filterCount == static_cast<int>(filters.size()) || m_triedCount == kMaxTried)
        return;
    if (std::any_of(m_tried, m_tried + m_triedCount, [reply](TMove tried) {
            return MovesEqual(tried, reply);
        }))
        return;
    m_tried[m_triedCount++] = reply;
    if (filters[m_filterCount].Build(m_node, reply))
        ++m_filterCount;
}

bool CRefutedMoves::Contains(TMove move) {
    CReplyFilter* filters = m_node.m_threadContext->replyFilters.data();
    return move.Promotion() == 0 &&
           std::any_of(filters, filters + m_filterCount, [move](CReplyFilter& filter) {
               return !filter.MayMate(move);
           });
}

}  // namespace quillmere
