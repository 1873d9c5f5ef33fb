#include "registers/temporary_register.h"

#include "core/fen.h"
#include "registers/aggregated_register.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

namespace quillmere {
namespace {

constexpr u64 kRepaintMilliseconds = 600;

bool IsIncoherent(const TRegisterElement& element) {
    return element.nMovesMate != 0 && element.nMovesNoMate >= element.nMovesMate;
}

bool IsKnownNoMate(const TRegisterElement& element, u16 nMoves) {
    return element.nMovesNoMate != 0 && nMoves <= element.nMovesNoMate;
}

bool IsKnownMate(const TRegisterElement& element, u16 nMoves) {
    return element.nMovesMate != 0 && nMoves >= element.nMovesMate;
}

}  // namespace

CTableRegister::CTableRegister(TEnvironmentPointer environment,
                               TAggregatedTemporaryChessboardRegister* owner)
    : TChessboardRegister<bool>(std::move(environment), owner),
      m_table(Memory(), FirstLinearCapacity(Memory().LimitBytes())) {}

TTemporaryChessboardRegister<false>::TTemporaryChessboardRegister(const TRegisterSettings& settings)
    : CTableRegister(std::make_shared<TRegisterEnvironment>(settings), nullptr) {}

TTemporaryChessboardRegister<true>::TTemporaryChessboardRegister(const TRegisterSettings& settings)
    : CTableRegister(std::make_shared<TRegisterEnvironment>(settings), nullptr) {}

TTemporaryChessboardRegister<true>::TTemporaryChessboardRegister(
    TEnvironmentPointer environment, TAggregatedTemporaryChessboardRegister* owner)
    : CTableRegister(std::move(environment), owner) {}

// Look-ups

TVerdict TTemporaryChessboardRegister<false>::Find(u16 nMoves,
                                                   const TChessboardRegisterItem& item,
                                                   u32 hash) const {
    const CSharedHold hold(TableLock());
    const TRegisterElement* element = FindElement(item, hash);
    if (element == nullptr)
        return kNothingKnown;
    if (IsKnownNoMate(*element, nMoves))
        return kNoMate;
    return IsKnownMate(*element, nMoves) ? kMate : kNothingKnown;
}

TVerdict TTemporaryChessboardRegister<false>::FindForQuickerMate(
    u16 nMoves, u16 nMovesFloor, const TChessboardRegisterItem& item, u32 hash) const {
    const CSharedHold hold(TableLock());
    const TRegisterElement* element = FindElement(item, hash);
    if (element == nullptr)
        return kNothingKnown;
    if (IsKnownNoMate(*element, nMoves))
        return kNoMate;
    if (IsKnownMate(*element, nMoves))
        return kMate;
    return element->nMovesMate != 0 && nMoves >= nMovesFloor ? kLongerMate : kNothingKnown;
}

TVerdict TTemporaryChessboardRegister<true>::FindDoubtful(u16 nMoves,
                                                          const TChessboardRegisterItem& item,
                                                          u32 hash) const {
    const CSharedHold hold(TableLock());
    const TRegisterElement* element = FindElement(item, hash);
    return element != nullptr && IsKnownNoMate(*element, nMoves) ? kNoMate : kNothingKnown;
}

TVerdict TTemporaryChessboardRegister<true>::FindNotDoubtful(u16 nMovesDoubtful,
                                                             u16 nMovesNotDoubtful,
                                                             const TChessboardRegisterItem& item,
                                                             u32 hash) const {
    const CSharedHold hold(TableLock());
    const TRegisterElement* element = FindElement(item, hash);
    if (element == nullptr)
        return kNothingKnown;
    const u16 notDoubtful = element->nMovesMate;
    const u16 doubtful = element->nMovesNoMate;
    return notDoubtful != 0 && nMovesNotDoubtful <= notDoubtful &&
                   (doubtful == 0 || doubtful < nMovesDoubtful)
               ? TVerdict{1}
               : TVerdict{0};
}

// Inserts

void CTableRegister::AddElement(const TRegisterElement& element, u32 hash) {
    // Without buckets there is no place; that is no failure of this insert.
    if (!m_table.HasArray())
        return;
    m_table.Add(element, hash);
    m_tableElementsIn.fetch_add(1, std::memory_order_relaxed);
}

auto TTemporaryChessboardRegister<false>::CheckCoherence(TRegisterElement& element,
                                                         bool wasIncoherent,
                                                         bool bMend) -> TCoherence {
    if (!IsIncoherent(element))
        return {};
    if (!wasIncoherent)
        m_environment->incoherentElements.fetch_add(1, std::memory_order_relaxed);
    const TCoherence seen{true, element.nMovesMate, element.nMovesNoMate};
    // The mate was proved; what is said about depths from it on is wrong, and the next lower depth
    // of the same side is the most that may be true.
    if (bMend)
        element.nMovesNoMate = static_cast<u16>(std::max(element.nMovesMate - 2, 0));
    return seen;
}

auto TTemporaryChessboardRegister<false>::StoreVerdict(u16 nMoves,
                                                       const TChessboardRegisterItem& item,
                                                       bool bThereIsMate,
                                                       bool bMend) -> TCoherence {
    const u32 hash = Hash(item);
    const CExclusiveHold hold(TableLock());
    // Step 1. While memory is short, shallow results are not worth their place.
    if (IsTooShallow(nMoves))
        return {};
    // Step 2. Look for the element.
    TRegisterElement* element = FindElement(item, hash);
    if (element == nullptr) {
        // Step 5. A new one.
        AddElement({item, bThereIsMate ? nMoves : u16{0}, bThereIsMate ? u16{0} : nMoves}, hash);
        return {};
    }
    // Step 3. Depths only get better.
    const bool wasIncoherent = IsIncoherent(*element);
    if (!bThereIsMate)
        element->nMovesNoMate = std::max(element->nMovesNoMate, nMoves);
    else if (element->nMovesMate == 0 || nMoves < element->nMovesMate)
        element->nMovesMate = nMoves;
    // Step 4. Coherence.
    const TCoherence seen = CheckCoherence(*element, wasIncoherent, bMend);
    NoteDepths(*element);
    return seen;
}

void TTemporaryChessboardRegister<false>::Insert(u16 nMoves,
                                                 const TChessboard& node,
                                                 bool bThereIsMate,
                                                 bool bPassWithHeuristics) {
    const bool bMend = node.m_pass < kPassComplete && !bPassWithHeuristics;
    TCoherence seen;
    try {
        seen = StoreVerdict(nMoves, MakeRegisterItem(node), bThereIsMate, bMend);
    } catch (const std::exception&) {
        AnswerFailedInsert();
        return;
    }
    if (seen.isIncoherent && !bMend && g_options.CheckTempRegCoherency)
        WarnOfIncoherence(nMoves, node, bThereIsMate, seen);
}

void TTemporaryChessboardRegister<false>::WarnOfIncoherence(u16 nMoves,
                                                            const TChessboard& node,
                                                            bool bThereIsMate,
                                                            const TCoherence& seen) const {
    if (m_environment->settings.warnings == nullptr)
        return;
    m_environment->settings.warnings->Warn(EMessage::kTitleError,
                                           EMessage::kIncoherentElement,
                                           {GetFENCode(node),
                                            std::to_string(nMoves),
                                            std::to_string(static_cast<int>(bThereIsMate)),
                                            std::to_string(seen.nMovesMate),
                                            std::to_string(seen.nMovesNoMate)});
}

void TTemporaryChessboardRegister<false>::InsertLoaded(u16 nMoves,
                                                       const TChessboardRegisterItem& item,
                                                       bool bThereIsMate) {
    try {
        StoreVerdict(nMoves, item, bThereIsMate, true);
    } catch (const std::exception&) {
        AnswerFailedInsert();
    }
}

void TTemporaryChessboardRegister<true>::StoreDoubtful(u16 nMoves,
                                                       const TChessboardRegisterItem& item,
                                                       u32 hash,
                                                       bool bFirstField) {
    const CExclusiveHold hold(TableLock());
    if (IsTooShallow(nMoves))
        return;
    TRegisterElement* element = FindElement(item, hash);
    if (element == nullptr) {
        AddElement({item, bFirstField ? nMoves : u16{0}, bFirstField ? u16{0} : nMoves}, hash);
        return;
    }
    u16& field = bFirstField ? element->nMovesMate : element->nMovesNoMate;
    field = std::max(field, nMoves);
    NoteDepths(*element);
}

void TTemporaryChessboardRegister<true>::InsertDoubtful(u16 nMoves,
                                                        const TChessboardRegisterItem& item,
                                                        bool bFirstField) {
    try {
        StoreDoubtful(nMoves, item, Hash(item), bFirstField);
    } catch (const std::exception&) {
        AnswerFailedInsert();
    }
}

// The whole table

// Lets the count fall while a large table is being freed, so that the user sees it.
TRegisterCombinedMap::TClearProgress CTableRegister::MakeClearProgress(bool bQuiet) {
    const TRegisterSettings& settings = m_environment->settings;
    if (bQuiet || !settings.repaint)
        return {};
    return [this, &settings, elements = TableElementsIn(), last = settings.tickCount()](
               u32 freedElements) mutable {
        const u64 now = settings.tickCount();
        if (now - last < kRepaintMilliseconds)
            return;
        last = now;
        m_tableElementsIn.store(elements - freedElements, std::memory_order_relaxed);
        settings.repaint();
    };
}

void CTableRegister::ClearTable(bool bReleaseArray, bool bQuiet) {
    {
        const CExclusiveHold hold(m_tableLock);
        m_table.Clear(bReleaseArray, MakeClearProgress(bQuiet));
        m_tableElementsIn.store(0, std::memory_order_relaxed);
    }
    ClearMap();
}

bool CTableRegister::ResizeTable(u32 nBuckets, bool bKeepIfSameSize) {
    const CExclusiveHold hold(TableLock());
    const u32 buckets = BucketsWithin(nBuckets, Memory().LimitBytes());
    const bool isKept = bKeepIfSameSize && m_table.HasArray() && m_table.BucketCount() == buckets;
    const bool isThere = m_table.Resize(buckets, bKeepIfSameSize);
    if (!isKept)
        m_tableElementsIn.store(0, std::memory_order_relaxed);
    return isThere;
}

u32 CTableRegister::SweepTable(u16 mateLimit, u16 noMateLimit) {
    const CExclusiveHold hold(TableLock());
    const u32 removed = m_table.RemoveElements(mateLimit, noMateLimit);
    m_tableElementsIn.fetch_sub(removed, std::memory_order_relaxed);
    return removed;
}

void CTableRegister::SwapTable(CTableRegister& other) {
    SwapMap(other);
    m_table.Swap(other.m_table);
    other.m_tableElementsIn.store(m_tableElementsIn.exchange(other.m_tableElementsIn));
}

}  // namespace quillmere
