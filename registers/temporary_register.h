// The hash tables of the search: what is known about a position, without moves, and the map store
// that they derive from.
//
// TTemporaryChessboardRegister<false> holds verdicts that are true without any assumption;
// TTemporaryChessboardRegister<true> holds doubtful verdicts, those of one setting of heuristics.
// Depths are half-moves, as everywhere in registers/. That only odd depths are stored is a matter of
// the nodes that call, not of the tables.
//
// Verdicts are never lost half: an insert for which there is no memory changes nothing, is logged,
// has the owning aggregate emptied a little, and is forgotten.
//
// Locking: one lock per table, TableLock(), behind the map-store lock. Look-ups take it shared,
// inserts, sweeps and clearing exclusive. There are no locks per bucket. Counts are atomics.
#pragma once

#include "registers/chessboard_register.h"
#include "registers/combined_map.h"

namespace quillmere {

// Answer of FindForQuickerMate besides the verdicts: a mate is known, but a longer one.
constexpr TVerdict kLongerMate = 2;

// What both kinds of tables have in common.
class CTableRegister : public TChessboardRegister<bool> {
public:
    u32 GetElementsIn() const override { return TableElementsIn(); }

    // Elements of the hash table; any thread, no lock.
    u32 TableElementsIn() const { return m_tableElementsIn.load(std::memory_order_relaxed); }

    // Empties table and map store; shallow results are kept again. With bReleaseArray the bucket
    // array is freed too. bQuiet forbids the repaint call of the settings.
    void ClearTable(bool bReleaseArray, bool bQuiet);
    // Gives the table nBuckets buckets, fewer under a small limit. False if there is no memory for
    // them: nothing can be stored then.
    bool ResizeTable(u32 nBuckets, bool bKeepIfSameSize);
    // One sweep: removes elements by both fields (see TRegisterCombinedMap::RemoveElements).
    u32 SweepTable(u16 mateLimit, u16 noMateLimit);

    TRWSpinLock& TableLock() const { return m_tableLock; }
    // For files, checks and statistics; TableLock() must be held.
    const TRegisterCombinedMap& Table() const { return m_table; }

protected:
    CTableRegister(TEnvironmentPointer environment, TAggregatedTemporaryChessboardRegister* owner);

    // These two need TableLock(), the second one exclusive; it throws for want of memory, with
    // nothing changed.
    TRegisterElement* FindElement(const TChessboardRegisterItem& item, u32 hash) const {
        return m_table.Find(item, hash);
    }
    void AddElement(const TRegisterElement& element, u32 hash);
    // Behind each change of an element's depths; under TableLock(), exclusive.
    void NoteDepths(const TRegisterElement& element) { m_table.NoteDepths(element); }
    // While memory is short, shallow results are not worth their place.
    bool IsTooShallow(u16 nMoves) const {
        return !KeepsThreeMovers() && nMoves < kShallowHalfMoves;
    }
    // No other thread may use either.
    void SwapTable(CTableRegister& other);

private:
    TRegisterCombinedMap::TClearProgress MakeClearProgress(bool bQuiet);

    TRegisterCombinedMap m_table;
    std::atomic<u32> m_tableElementsIn{0};
    mutable TRWSpinLock m_tableLock;
};

template <bool bDoubtful>
class TTemporaryChessboardRegister;

// Verdicts without assumptions. `hash` is Hash(item).
template <>
class TTemporaryChessboardRegister<false> : public CTableRegister {
public:
    explicit TTemporaryChessboardRegister(
        const TRegisterSettings& settings = DefaultRegisterSettings());

    // kNoMate up to the greatest depth without a mate, else kMate from the smallest with one on,
    // else kNothingKnown. No mate is tested first, so that a contradictory element says no mate.
    TVerdict Find(u16 nMoves, const TChessboardRegisterItem& item, u32 hash) const;
    // The same, but where a mate is known only above nMoves: kLongerMate if nMoves is not below
    // nMovesFloor.
    TVerdict FindForQuickerMate(u16 nMoves,
                                u16 nMovesFloor,
                                const TChessboardRegisterItem& item,
                                u32 hash) const;

    // Stores the verdict of a node. An element that it makes contradictory is mended in a pass that
    // is complete by itself, that is one before kPassComplete (node.m_pass) without heuristics
    // (bPassWithHeuristics); else it stays, with a warning if the option CheckTempRegCoherency is on.
    void Insert(u16 nMoves,
                const TChessboard& node,
                bool bThereIsMate,
                bool bPassWithHeuristics = false);
    // The same for a verdict out of a file: always mended, no warning.
    void InsertLoaded(u16 nMoves, const TChessboardRegisterItem& item, bool bThereIsMate);

private:
    struct TCoherence {
        bool isIncoherent = false;
        u16 nMovesMate = 0;
        u16 nMovesNoMate = 0;
    };

    TCoherence
    StoreVerdict(u16 nMoves, const TChessboardRegisterItem& item, bool bThereIsMate, bool bMend);
    TCoherence CheckCoherence(TRegisterElement& element, bool wasIncoherent, bool bMend);
    void WarnOfIncoherence(u16 nMoves,
                           const TChessboard& node,
                           bool bThereIsMate,
                           const TCoherence& seen) const;
};

// Doubtful verdicts of one setting of heuristics. `hash` is Hash(item).
template <>
class TTemporaryChessboardRegister<true> : public CTableRegister {
public:
    explicit TTemporaryChessboardRegister(
        const TRegisterSettings& settings = DefaultRegisterSettings());

    // kNoMate if the position was found doubtful at nMoves or deeper, else kNothingKnown.
    TVerdict FindDoubtful(u16 nMoves, const TChessboardRegisterItem& item, u32 hash) const;
    // 1 if the position was found not doubtful at nMovesNotDoubtful or deeper, and not doubtful at
    // nMovesDoubtful or deeper; else 0; kNothingKnown if the element is absent.
    TVerdict FindNotDoubtful(u16 nMovesDoubtful,
                             u16 nMovesNotDoubtful,
                             const TChessboardRegisterItem& item,
                             u32 hash) const;

    // Raises the first field (not doubtful) or the second (doubtful) to nMoves. The fields are never
    // compared with each other.
    void InsertDoubtful(u16 nMoves, const TChessboardRegisterItem& item, bool bFirstField);

protected:
    TTemporaryChessboardRegister(TEnvironmentPointer environment,
                                 TAggregatedTemporaryChessboardRegister* owner);

    // InsertDoubtful without the answer to a failure: throws, with nothing changed, for want of
    // memory.
    void StoreDoubtful(u16 nMoves, const TChessboardRegisterItem& item, u32 hash, bool bFirstField);
};

}  // namespace quillmere
