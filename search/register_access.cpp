#include "search/register_access.h"

#include "core/rights.h"
#include "core/search_context.h"
#include "registers/aggregated_register.h"
#include "search/pause.h"

#include <cassert>

namespace quillmere {
namespace {

TAggregatedTemporaryChessboardRegister* RegisterOf(const TChessboard& node) {
    // One pair of depths for both sides: even depths would mix with these.
    assert(node.IsWhiteToMove() && MayUseRegister(node));
    return node.m_searchContext->tempRegister;
}

}  // namespace

bool MayUseRegister(const TChessboard& node) {
    return node.m_nRootMoves >= node.m_searchContext->registerRoot &&
           node.m_nMoves >= kRegisterLevel && node.OneColourMode() == kOneColourOff &&
           !IsEnPassantPossible(node) && !HasLostCastlingRightAtHome(node);
}

TVerdict FindInRegister(const TChessboard& node) {
    const auto* known = RegisterOf(node);
    return known == nullptr
               ? kNothingKnown
               : known->FindInRegister(node.m_nMoves, node, node.Heur, node.HeurParams);
}

void StoreMate(const TChessboard& node) {
    auto* store = RegisterOf(node);
    if (store != nullptr && !IsStopped(node))
        store->InsertVerdict(node.m_nMoves, node, true);
}

void StoreNoMate(const TChessboard& node) {
    if (node.Heur != 0) {
        StoreDoubtful(node);
        return;
    }
    auto* store = RegisterOf(node);
    if (store != nullptr && !IsStopped(node))
        store->InsertVerdict(node.m_nMoves, node, false);
}

void StoreDoubtful(const TChessboard& node) {
    auto* store = RegisterOf(node);
    if (store != nullptr && !IsStopped(node))
        store->InsertDoubtful(node.m_nMoves, node, node.Heur, node.HeurParams);
}

void CheckMateAgainstRegister([[maybe_unused]] const TChessboard& node) {
#ifndef NDEBUG
    if (!MayUseRegister(node))
        return;
    const TVerdict known = FindInRegister(node);
    assert(known != kNoMate && "the register must not call a proved mate no mate");
#endif
}

}  // namespace quillmere
