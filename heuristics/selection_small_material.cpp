// With few figures the kings take part: a lone rook or two minor figures mate with their king's help
// or not at all. So the limits are tighter than on a full board: what white has must be kept, and the
// kings must come together.
#include "heuristics/selection_small_material.h"

#include "core/material.h"
#include "heuristics/selection_tests.h"

namespace quillmere {
namespace {

// Without a queen, and with figures too few to mate by themselves.
bool MustKingsMeet(const TSelectionFacts& facts) {
    constexpr int kFewFigures = 2;
    return facts.whiteQueens == 0 && facts.whiteFigures <= kFewFigures;
}

bool IsOneHeavyFigure(const TSelectionFacts& facts) {
    return facts.WhiteHeavy() == 1 && facts.whiteFigures == 1;
}

}  // namespace

u32 SelectForSmallMaterial(CSelectionWork& work) {
    const TSelectionFacts& facts = work.Facts();
    if (!work.MayAssume())
        return 0;
    if (MustKingsMeet(facts))
        work.TurnOn(SH_AREKINGSNEAR, EMessage::kReasonKingsNear);
    if (IsOneHeavyFigure(facts) && CanAttackHeavyFigures(work.Node()))
        work.TurnOn(SH_SAVEQUEENROOK, EMessage::kReasonSaveHeavy, {"1"});
    return SH_AREKINGSNEAR | SH_SAVEQUEENROOK;
}

}  // namespace quillmere
