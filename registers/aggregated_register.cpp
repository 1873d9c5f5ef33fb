#include "registers/aggregated_register.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace quillmere {
namespace {

// The first emptying must not be taken for one that follows another.
constexpr u64 kTicksBeforeStart = 100;

}  // namespace

TAggregatedTemporaryChessboardRegister::TAggregatedTemporaryChessboardRegister(
    const TRegisterSettings& settings)
    : TTemporaryChessboardRegister<false>(settings),
      m_subRegisters(Memory()),
      m_pins(Memory()),
      m_lastEmptyingTick(settings.tickCount() - kTicksBeforeStart) {
    m_owner = this;
}

TAggregatedTemporaryChessboardRegister::~TAggregatedTemporaryChessboardRegister() = default;

u32 TAggregatedTemporaryChessboardRegister::GetElementsIn() const {
    return TableElementsIn() + GetDoubtfulElementsIn() + MapElementsIn();
}

TRegisterFigures TAggregatedTemporaryChessboardRegister::Figures() const {
    return {GetElementsIn(), GetDoubtfulElementsIn(), BytesUsed(), ByteLimit()};
}

// Look-ups

auto TAggregatedTemporaryChessboardRegister::FindSubRegister(i64 key) const -> CSubRegister* {
    const auto found = m_subRegisters.find(key);
    return found == m_subRegisters.end() ? nullptr : found->second.get();
}

// The map-store lock, which holds the set of sub-registers still, is taken only where that set is
// needed: most look-ups that answer at all do so from the own table, and that has its own lock.
TVerdict TAggregatedTemporaryChessboardRegister::FindDoubt(u16 nMoves,
                                                           const TChessboardRegisterItem& item,
                                                           u32 hash,
                                                           i64 key) const {
    const CSharedHold hold(m_mapLock);
    const CSubRegister* sub = FindSubRegister(key);
    if (sub == nullptr)
        return kNothingKnown;
    return sub->FindDoubtful(nMoves, item, hash) == kNoMate ? kDoubtful : kNothingKnown;
}

TVerdict TAggregatedTemporaryChessboardRegister::FindInRegister(u16 nMoves,
                                                                const TChessboard& node,
                                                                u32 heuristics,
                                                                u32 params) const {
    const TChessboardRegisterItem item = MakeRegisterItem(node);
    const u32 hash = Hash(item);
    const TVerdict known = Find(nMoves, item, hash);
    return known != kNothingKnown ? known
                                  : FindDoubt(nMoves, item, hash, KeyOf(heuristics, params));
}

TVerdict TAggregatedTemporaryChessboardRegister::FindInRegisterQuicker(
    u16 nMoves, u16 nMovesFloor, const TChessboard& node, u32 heuristics, u32 params) const {
    const TChessboardRegisterItem item = MakeRegisterItem(node);
    const u32 hash = Hash(item);
    const TVerdict known = FindForQuickerMate(nMoves, nMovesFloor, item, hash);
    return known != kNothingKnown ? known
                                  : FindDoubt(nMoves, item, hash, KeyOf(heuristics, params));
}

TVerdict TAggregatedTemporaryChessboardRegister::FindNotDoubtfulInRegister(u16 nMovesDoubtful,
                                                                           u16 nMovesNotDoubtful,
                                                                           const TChessboard& node,
                                                                           u32 heuristics,
                                                                           u32 params) const {
    const TChessboardRegisterItem item = MakeRegisterItem(node);
    const CSharedHold hold(m_mapLock);
    const CSubRegister* sub = FindSubRegister(KeyOf(heuristics, params));
    if (sub == nullptr)
        return kDoubtful;
    const TVerdict found =
        sub->FindNotDoubtful(nMovesDoubtful, nMovesNotDoubtful, item, Hash(item));
    return found == kNothingKnown ? kDoubtful : found;
}

int TAggregatedTemporaryChessboardRegister::FindLowestMate(u16 nMoves,
                                                           const TChessboard& node,
                                                           u32 heuristics,
                                                           u32 params) const {
    const TChessboardRegisterItem item = MakeRegisterItem(node);
    const u32 hash = Hash(item);
    const i64 key = KeyOf(heuristics, params);
    const auto ask = [&](u16 depth) {
        const TVerdict known = Find(depth, item, hash);
        return known != kNothingKnown ? known : FindDoubt(depth, item, hash, key);
    };
    const TVerdict known = ask(nMoves);
    if (known != kMate)
        return known;
    u16 depth = nMoves;
    while (depth > 2 && ask(static_cast<u16>(depth - 2)) == kMate)
        depth = static_cast<u16>(depth - 2);
    return depth;
}

// Inserts

void TAggregatedTemporaryChessboardRegister::InsertVerdict(u16 nMoves,
                                                           const TChessboard& node,
                                                           bool bThereIsMate,
                                                           bool bPassWithHeuristics) {
    if (IsFull(TableElementsIn())) {
        if (ElementLimit() == 0)
            return;
        EmptySomeDataWhenRegisterFull(false);
        if (IsFull(TableElementsIn()))
            return;
    }
    Insert(nMoves, node, bThereIsMate, bPassWithHeuristics);
}

void TAggregatedTemporaryChessboardRegister::InsertDoubtful(u16 nMoves,
                                                            const TChessboard& node,
                                                            u32 heuristics,
                                                            u32 params) {
    InsertDoubtfulResult(nMoves, node, heuristics, params, true);
}

void TAggregatedTemporaryChessboardRegister::InsertDoubtfulResult(
    u16 nMoves, const TChessboard& node, u32 heuristics, u32 params, bool bDoubtful) {
    constexpr u16 kThreeMover = 3;
    // Step 1. The limit. It is not tested again: one element too many does no harm, and one byte too
    // many is refused by the account.
    if (IsTotalFull()) {
        if (ElementLimit() == 0)
            return;
        EmptySomeDataWhenRegisterFull(false);
    }
    // Step 2. While memory is short, shallow results are not worth their place.
    if (bDoubtful && !KeepsThreeMovers() && nMoves == kThreeMover)
        return;
    // Steps 3 and 4.
    try {
        StoreInSubRegister(nMoves, MakeRegisterItem(node), KeyOf(heuristics, params), !bDoubtful);
    } catch (const std::exception&) {
        // Step 5. All locks are left.
        if (ElementLimit() != 0)
            EmptySomeDataWhenRegisterFull(false);
    }
}

void TAggregatedTemporaryChessboardRegister::StoreInSubRegister(u16 nMoves,
                                                                const TChessboardRegisterItem& item,
                                                                i64 key,
                                                                bool bFirstField) {
    const u32 hash = Hash(item);
    const std::lock_guard section(m_doubtfulSection);
    {
        // Shared until the element is in: the sub-register must not be emptied or destroyed
        // meanwhile.
        const CSharedHold hold(m_mapLock);
        if (CSubRegister* sub = FindSubRegister(key)) {
            const u32 before = sub->TableElementsIn();
            sub->StoreDoubtful(nMoves, item, hash, bFirstField);
            m_doubtfulElementsIn.fetch_add(sub->TableElementsIn() - before,
                                           std::memory_order_relaxed);
            return;
        }
    }
    CreateSubRegister(nMoves, item, hash, key, bFirstField);
}

void TAggregatedTemporaryChessboardRegister::CreateSubRegister(
    u16 nMoves, const TChessboardRegisterItem& item, u32 hash, i64 key, bool bFirstField) {
    // Nobody else creates one: the section of doubtful inserts is held. Without a bucket count, no
    // table was asked for yet, and there is no place.
    const CExclusiveHold hold(m_mapLock);
    if (m_nSubBuckets == 0)
        return;
    auto sub = std::make_unique<CSubRegister>(m_environment, this);
    if (!KeepsThreeMovers())
        sub->StopKeepingThreeMovers();
    if (!sub->ResizeTable(m_nSubBuckets, true))
        throw CMemoryRefused();
    sub->StoreDoubtful(nMoves, item, hash, bFirstField);
    const u32 elements = sub->TableElementsIn();
    // The pin entry, so that RemoveUnpinnedDoubtful finds the setting.
    m_pins.try_emplace(key, 0);
    m_subRegisters.try_emplace(key, std::move(sub));
    m_doubtfulElementsIn.fetch_add(elements, std::memory_order_relaxed);
}

// Pins

void TAggregatedTemporaryChessboardRegister::PinDoubtful(u32 heuristics, u32 params) {
    const CExclusiveHold hold(m_mapLock);
    // A pin is small and keeps a whole setting: it may have of the reserve.
    const CRegisterMemory::CReserve reserve(Memory());
    try {
        ++m_pins.try_emplace(KeyOf(heuristics, params), 0).first->second;
    } catch (const std::bad_alloc&) {
        // As told in the header: a setting without its pin is emptied earlier.
        return;
    }
}

u32 TAggregatedTemporaryChessboardRegister::RemoveDoubtful(u32 heuristics, u32 params) {
    const auto first = static_cast<i32>(heuristics);
    const auto second = static_cast<i32>(params);
    Log("RemoveDoubtful start.", first, second);
    u32 removed = 0;
    {
        const CExclusiveHold hold(m_mapLock);
        const i64 key = KeyOf(heuristics, params);
        const auto pin = m_pins.find(key);
        if (pin != m_pins.end() && pin->second > 0) {
            --pin->second;
        } else if (CSubRegister* sub = FindSubRegister(key)) {
            removed = sub->TableElementsIn();
            sub->ClearTable(false, true);
            // Clearing lets shallow results in again; that is for the whole register to say.
            if (!KeepsThreeMovers())
                sub->StopKeepingThreeMovers();
            m_doubtfulElementsIn.fetch_sub(removed, std::memory_order_relaxed);
        }
    }
    Log("RemoveDoubtful complete.", first, second);
    return removed;
}

u32 TAggregatedTemporaryChessboardRegister::RemoveUnpinnedDoubtful() {
    const CExclusiveHold hold(m_mapLock);
    u32 removed = 0;
    for (const auto& [key, pins] : m_pins) {
        if (pins == 0)
            removed += RemoveDoubtful(HeuristicsOf(key), ParamsOf(key));
    }
    return removed;
}

// The whole register

void TAggregatedTemporaryChessboardRegister::Clear(int mode, bool bQuiet) {
    const CExclusiveHold hold(m_mapLock);
    if (mode >= 0)
        ClearTable(mode == 0, bQuiet);
    if (mode <= 0)
        ClearSubRegisters(bQuiet);
}

void TAggregatedTemporaryChessboardRegister::ClearSubRegisters(bool bQuiet) {
    for (const auto& [key, sub] : m_subRegisters) {
        const u32 elements = sub->TableElementsIn();
        sub->ClearTable(true, bQuiet);
        m_doubtfulElementsIn.fetch_sub(elements, std::memory_order_relaxed);
    }
    m_subRegisters.clear();
    m_doubtfulElementsIn.store(0, std::memory_order_relaxed);
}

bool TAggregatedTemporaryChessboardRegister::Resize(u32 nBuckets, bool bKeepIfSameSize) {
    const CExclusiveHold hold(m_mapLock);
    m_nSubBuckets = nBuckets;
    const bool isThere = ResizeTable(nBuckets, bKeepIfSameSize);
    for (const auto& [key, sub] : m_subRegisters) {
        const u32 before = sub->TableElementsIn();
        sub->ResizeTable(nBuckets, bKeepIfSameSize);
        m_doubtfulElementsIn.fetch_sub(before - sub->TableElementsIn(), std::memory_order_relaxed);
    }
    return isThere;
}

void TAggregatedTemporaryChessboardRegister::Swap(TAggregatedTemporaryChessboardRegister& other) {
    if (this == &other)
        return;
    SwapTable(other);
    m_subRegisters.swap(other.m_subRegisters);
    m_pins.swap(other.m_pins);
    other.m_doubtfulElementsIn.store(m_doubtfulElementsIn.exchange(other.m_doubtfulElementsIn));
    std::swap(m_lastEmptyingTick, other.m_lastEmptyingTick);
    std::swap(m_nSubBuckets, other.m_nSubBuckets);
    OwnSubRegisters();
    other.OwnSubRegisters();
}

void TAggregatedTemporaryChessboardRegister::OwnSubRegisters() {
    for (const auto& [key, sub] : m_subRegisters)
        sub->SetOwner(this);
}

}  // namespace quillmere
