#include "search/register_access.h"

#include "core/rights.h"
#include "core/search_context.h"
#include "core/thread_context.h"
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

// In a quick search: a mate that is longer than the node, but not than the node that asked for the
// quick search allows, counts too. The look-up tells only that a longer one is known.
TVerdict FindQuicker(const TChessboard& node, const TAggregatedTemporaryChessboardRegister& known) {
    TQuickSearch& quick = node.m_threadContext->quickSearch;
    const auto find = [&](u16 halfMoves) {
        return known.FindInRegister(halfMoves, node, node.Heur, node.HeurParams);
    };
    const TVerdict verdict =
        known.FindInRegisterQuicker(node.m_nMoves, node.m_nMoves, node, node.Heur, node.HeurParams);
    if (verdict != kLongerMate)
        return verdict;
    if (find(static_cast<u16>(node.m_nMoves + quick.additional)) != kMate)
        return find(node.m_nMoves);
    quick.hasUsedAdditional = true;
    return kMate;
}

// The length for which the node's mate is proved.
u16 ProvedHalfMoves(const TChessboard& node) {
    const TQuickSearch& quick = node.m_threadContext->quickSearch;
    return static_cast<u16>(node.m_nMoves + (quick.hasUsedAdditional ? quick.additional : 0));
}

}  // namespace

bool MayUseRegister(const TChessboard& node) {
    return node.m_nRootMoves >= node.m_searchContext->registerRoot &&
           node.m_nMoves >= kRegisterLevel && node.OneColourMode() == kOneColourOff &&
           !IsEnPassantPossible(node) && !HasLostCastlingRightAtHome(node);
}

TVerdict FindInRegister(const TChessboard& node) {
    const auto* known = RegisterOf(node);
    if (known == nullptr)
        return kNothingKnown;
    if (node.m_threadContext->quickSearch.additional != 0)
        return FindQuicker(node, *known);
    return known->FindInRegister(node.m_nMoves, node, node.Heur, node.HeurParams);
}

void StoreMate(const TChessboard& node) {
    auto* store = RegisterOf(node);
    if (store != nullptr && !IsStopped(node))
        store->InsertVerdict(ProvedHalfMoves(node), node, true);
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
    // With additional half-moves the proof is of a longer mate than the node asks for.
    if (!MayUseRegister(node) || node.m_threadContext->quickSearch.hasUsedAdditional)
        return;
    const TVerdict known = FindInRegister(node);
    assert(known != kNoMate && "the register must not call a proved mate no mate");
#endif
}

}  // namespace quillmere
