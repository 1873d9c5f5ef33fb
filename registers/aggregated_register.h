// The register that a search context owns and that all threads of its analysis share.
//
// Its own hash table holds verdicts that are true without any assumption. A verdict reached under
// heuristics is true under them only, "doubtful"; those go into one sub-register per setting, whose
// key is the heuristics word and the word of parameters of the node. A pass with other settings does
// not see them, and a setting that is done with is thrown away at once.
//
// It also keeps all of it within the memory limit, by throwing away what is cheapest to find again:
// the shallowest verdicts.
//
// Nothing here throws, except Insert and InsertDefence of the map store on a contradiction. Results
// of look-ups are verdicts; kRepetition is never one of them.
//
// Locking. Order: the emptying section (one for all aggregates) or the section of doubtful inserts,
// then MapLock(), then TableLock(). MapLock() also guards the set of sub-registers and the pins:
// look-ups that need a sub-register take it shared, so that the set stands still, and look-ups that
// the own table answers do not; a new sub-register enters under the exclusive lock. The section of doubtful inserts serialises these; it is left before anything is
// emptied. The counts are atomics, see the bases.
#pragma once

#include "registers/temporary_register.h"

#include <memory>
#include <mutex>

namespace quillmere {

// From this depth on FindLowestMate is asked for the result line of a position.
constexpr u16 kLowestMateStart = 599;

// For a progress line. The parts are read one after the other and need not fit together.
struct TRegisterFigures {
    u32 elements = 0;
    u32 doubtfulElements = 0;
    u64 bytesUsed = 0;
    u64 byteLimit = 0;
};

// The doubtful verdicts of one setting, with their own size on the account of the aggregate.
class CSubRegister final : public TTemporaryChessboardRegister<true> {
public:
    CSubRegister(const std::shared_ptr<TRegisterEnvironment>& environment,
                 TAggregatedTemporaryChessboardRegister* owner)
        : TTemporaryChessboardRegister<true>(environment, owner),
          m_charge(environment->memory, sizeof(CSubRegister)) {}

    void SetOwner(TAggregatedTemporaryChessboardRegister* owner) { m_owner = owner; }
    void StopKeepingThreeMovers() { m_bKeepThreeMovers.store(false, std::memory_order_relaxed); }
    using TTemporaryChessboardRegister<true>::StoreDoubtful;

private:
    CRegisterMemory::CCharge m_charge;
};

class TAggregatedTemporaryChessboardRegister final : public TTemporaryChessboardRegister<false> {
public:
    explicit TAggregatedTemporaryChessboardRegister(
        const TRegisterSettings& settings = DefaultRegisterSettings());
    ~TAggregatedTemporaryChessboardRegister() override;

    // Own table, sub-registers and map store together.
    u32 GetElementsIn() const override;
    u32 GetDoubtfulElementsIn() const override {
        return m_doubtfulElementsIn.load(std::memory_order_relaxed);
    }
    TRegisterFigures Figures() const;

    // Look-ups; `heuristics` and `params` are the node's Heur and HeurParams.

    // kMate, kNoMate, kDoubtful or kNothingKnown. What the own table knows is not looked for in a
    // sub-register.
    TVerdict FindInRegister(u16 nMoves, const TChessboard& node, u32 heuristics, u32 params) const;
    // The same, and kLongerMate if only a mate longer than nMoves is known and nMoves is not below
    // nMovesFloor.
    TVerdict FindInRegisterQuicker(
        u16 nMoves, u16 nMovesFloor, const TChessboard& node, u32 heuristics, u32 params) const;
    // 1 if found not doubtful at nMovesNotDoubtful and not doubtful at nMovesDoubtful, 0 if not, -1
    // if nothing is known of it.
    TVerdict FindNotDoubtfulInRegister(u16 nMovesDoubtful,
                                       u16 nMovesNotDoubtful,
                                       const TChessboard& node,
                                       u32 heuristics,
                                       u32 params) const;
    // The depth of the shortest known mate of at most nMoves; if none is known, what FindInRegister
    // answers at nMoves.
    int FindLowestMate(u16 nMoves, const TChessboard& node, u32 heuristics, u32 params) const;

    // Inserts

    using TTemporaryChessboardRegister<false>::Insert;
    // Insert of the own table behind the test of the limits: a full register is emptied first, and
    // if that does not help, the verdict is dropped. This is what the search calls.
    void InsertVerdict(u16 nMoves,
                       const TChessboard& node,
                       bool bThereIsMate,
                       bool bPassWithHeuristics = false);
    // Doubtful up to nMoves.
    void InsertDoubtful(u16 nMoves, const TChessboard& node, u32 heuristics, u32 params);
    // Doubtful, or found not to be.
    void InsertDoubtfulResult(
        u16 nMoves, const TChessboard& node, u32 heuristics, u32 params, bool bDoubtful);

    // Pins. A pass pins a setting that is still needed after its present use. A pin for which there
    // is no memory is forgotten: the setting is then emptied one removal earlier, and what was
    // doubtful in it must be found again.

    void PinDoubtful(u32 heuristics, u32 params);
    // Takes one pin off (0 then), or, without a pin, empties the sub-register; returns the number of
    // elements removed.
    u32 RemoveDoubtful(u32 heuristics, u32 params);
    // RemoveDoubtful for every setting without a pin.
    u32 RemoveUnpinnedDoubtful() override;

    // Emptying

    // Throws away the shallowest verdicts until enough is free. bHard: an operation of the search
    // failed for want of memory and is about to be tried again. Does nothing within 16 ms of the last
    // emptying. No lock of the register may be held. Where bytes are short, sub-registers that are
    // empty and not pinned are destroyed.
    void EmptySomeDataWhenRegisterFull(bool bHard);
    // One sweep over everything: own elements up to n half-moves, in sub-registers first fields up
    // to n and second ones up to n - 2. Returns the number removed.
    u32 RemoveNMovers(u16 n);

    // The whole register

    // Mode 1: the own table and the map store; -1: the sub-registers; 0: both, and the own bucket
    // array is freed. bQuiet forbids the repaint call.
    void Clear(int mode, bool bQuiet);
    // Buckets of the own table and of all sub-registers, present and future; fewer under a small
    // limit. False if the own table got none, so that it stays empty.
    bool Resize(u32 nBuckets, bool bKeepIfSameSize);
    // Exchanges contents, limits and accounts. No other thread may use either, not even its counts.
    void Swap(TAggregatedTemporaryChessboardRegister& other);

    // Sub-registers, for files and checks; MapLock() must be held. Calls visit(heuristics, params,
    // const TTemporaryChessboardRegister<true>&) in the order of the keys, as signed numbers.
    template <class FVisit>
    void ForEachSubRegister(FVisit visit) const {
        for (const auto& [key, sub] : m_subRegisters) {
            visit(HeuristicsOf(key),
                  ParamsOf(key),
                  static_cast<const TTemporaryChessboardRegister<true>&>(*sub));
        }
    }

private:
    template <class T>
    using TMapByKey = std::map<i64, T, std::less<>, CRegisterAllocator<std::pair<const i64, T>>>;

    // A key packs the heuristics word (low) and the word of parameters (high).
    static i64 KeyOf(u32 heuristics, u32 params) {
        return static_cast<i64>(u64{params} << 32 | heuristics);
    }
    static u32 HeuristicsOf(i64 key) { return static_cast<u32>(static_cast<u64>(key)); }
    static u32 ParamsOf(i64 key) { return static_cast<u32>(static_cast<u64>(key) >> 32); }

    CSubRegister* FindSubRegister(i64 key) const;
    TVerdict FindDoubt(u16 nMoves, const TChessboardRegisterItem& item, u32 hash, i64 key) const;

    void
    StoreInSubRegister(u16 nMoves, const TChessboardRegisterItem& item, i64 key, bool bFirstField);
    void CreateSubRegister(
        u16 nMoves, const TChessboardRegisterItem& item, u32 hash, i64 key, bool bFirstField);
    bool IsTotalFull() const { return IsFull(GetElementsIn()); }

    bool IsFreePartAtLeast(u32 divisor) const;
    bool IsMemoryAtHand() const;
    void EmptyByDepth(bool bHard);
    void StopKeepingThreeMovers();
    void FreeEmptySubRegisters();
    void ClearSubRegisters(bool bQuiet);
    void OwnSubRegisters();

    TMapByKey<std::unique_ptr<CSubRegister>> m_subRegisters;
    std::atomic<u32> m_doubtfulElementsIn{0};
    TMapByKey<u32> m_pins;
    std::mutex m_doubtfulSection;
    u64 m_lastEmptyingTick;  // guarded by the emptying section
    u32 m_nSubBuckets = 0;   // guarded by MapLock()
};

}  // namespace quillmere
