// Counting the passes by taking them off.
//
// Which steps the ladder takes depends on the position, so the honest way to know the plan is to
// walk it on the very node and to undo the walk. A mate or a stop may end the passes earlier, and
// the time that a pass takes may add one.
#include "heuristics/planned_passes.h"

#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/catalogue.h"
#include "heuristics/forced_mate_ladder.h"
#include "heuristics/relaxation.h"

namespace quillmere {
namespace {

// Keeps all that a walk down the ladder may change, and puts it back at the end.
class CKeptAnalysis {
public:
    explicit CKeptAnalysis(TChessboard& node)
        : m_node(node),
          m_context(node.m_searchContext),
          m_keptNode(node),
          m_keptSettings(node.m_threadContext->heuristics) {
        if (node.m_parent != nullptr)
            m_keptParent = *node.m_parent;
        if (m_context != nullptr) {
            m_isExact = m_context->isExact;
            m_times = m_context->relaxationTimes.Save();
        }
    }
    ~CKeptAnalysis() {
        m_node = m_keptNode;
        m_node.m_threadContext->heuristics = m_keptSettings;
        if (m_node.m_parent != nullptr)
            *m_node.m_parent = m_keptParent;
        if (m_context != nullptr) {
            m_context->isExact = m_isExact;
            m_context->relaxationTimes.Restore(m_times);
        }
    }
    CKeptAnalysis(const CKeptAnalysis&) = delete;
    CKeptAnalysis& operator=(const CKeptAnalysis&) = delete;

private:
    TChessboard& m_node;
    TSearchContext* m_context;
    const TChessboard m_keptNode;
    TChessboard m_keptParent{};
    const THeuristicSettings m_keptSettings;
    bool m_isExact = false;
    CRelaxationTimes::TSlots m_times;
};

// Calls visit(answer) behind every relaxation; it answers whether to go on.
template <class Visit>
void WalkLadder(TChessboard& node, Visit visit) {
    while (node.Heur != 0) {
        const int answer = TryRelaxSpecialHeuristics(node);
        if (answer == 0 || !visit(answer))
            return;
    }
}

}  // namespace

TPlannedPasses PlannedPasses(TChessboard& node, bool untilEdgeRulesEnd) {
    const CKeptAnalysis kept(node);
    ApplyFfmPreliminary(node);
    TPlannedPasses planned;
    WalkLadder(node, [&](int answer) {
        ++planned.relaxations;
        planned.optional += answer < 0 ? 1 : 0;
        constexpr u32 kEdgeRules = SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED;
        return !untilEdgeRulesEnd || (node.Heur & kEdgeRules) != 0;
    });
    return planned;
}

std::vector<TPlannedPass> PlannedPath(TChessboard& node) {
    const CKeptAnalysis kept(node);
    ApplyFfmPreliminary(node);
    std::vector<TPlannedPass> path;
    if (node.Heur != 0)
        path.push_back({HeuristicsText(node), false});
    WalkLadder(node, [&](int answer) {
        path.push_back({HeuristicsText(node), answer < 0});
        return true;
    });
    return path;
}

}  // namespace quillmere
