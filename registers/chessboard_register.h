// The map store: verdicts by depth and position, with the move that proves them.
//
// It is small and serves the presentation of solutions and answers; the search itself asks the hash
// table of the classes derived from it (registers/temporary_register.h). A depth is a count of
// half-moves, the m_nMoves of the board: odd with White to move, even with Black to move.
//
// Two kinds of records. At odd depths: White's verdict; the flag says that there is a mate, the move
// is its key. At even depths: Black's; the flag says that the defence holds, which means no mate
// within the depth.
//
// Locking: m_mapLock guards the map and, in the aggregate, the set of sub-registers. It stands
// behind the emptying section and in front of the table locks (docs/locking.md). The counts are
// atomics that any thread may read without a lock; a stale count only moves the moment at which the
// register is taken as full.
#pragma once

#include "core/chessboard.h"
#include "core/chessboard_id.h"
#include "core/verdict.h"
#include "registers/register_environment.h"
#include "registers/register_item.h"
#include "registers/rw_spin_lock.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillmere {

class TAggregatedTemporaryChessboardRegister;

constexpr u16 kRegisterStamp = 982;
// While shallow results are not kept, nothing below this depth (half-moves) is stored.
constexpr u16 kShallowHalfMoves = 4;
// Records in a register file at most: it never passes 1,048,572 bytes.
constexpr u32 kMaxFileRecords = 13'797;

template <class TFlag>
struct TSubproblemRegisterInfo;

//    0  nMoves        depth in half-moves
//    2  stamp         kRegisterStamp, not looked at by readers
//    4  move          key or defence, zeroes for none
//    8  bThereIsMate  low byte: the flag; at even depths "the defence holds"
template <>
struct TSubproblemRegisterInfo<bool> {
    u16 nMoves;
    u16 stamp;
    TMove move;
    u32 bThereIsMate;

    bool Flag() const { return (bThereIsMate & 0xff) != 0; }
};
static_assert(sizeof(TSubproblemRegisterInfo<bool>) == 12);

// The result of the last solves of a position, as its file holds it. Plain data: who keeps the
// database of solved problems reads, writes and interprets it; the register only carries it.
struct TProblemRecord {
    struct TRun {
        u32 date = 0;  // yyyymmdd
        u32 time = 0;  // hhmmss
        u32 durationMilliseconds = 0;
        u32 stamp = kRegisterStamp;
    };
    u16 halfMoves = 0;
    bool hasFirstSolution = false;
    bool hasAllSolutions = false;
    TRun firstRun;
    u32 isSolutionFound = 0;
    u8 solution[3] = {};  // from, to, promotion
    TRun allRun;
};

using TSubproblemMap = std::map<
    TChessboardRegisterItem,
    TSubproblemRegisterInfo<bool>,
    std::less<>,
    CRegisterAllocator<std::pair<const TChessboardRegisterItem, TSubproblemRegisterInfo<bool>>>>;
using TSubproblemMapByDepth = std::
    map<u16, TSubproblemMap, std::less<>, CRegisterAllocator<std::pair<const u16, TSubproblemMap>>>;

template <class TFlag>
class TChessboardRegister;

// The base is public for those who present its contents; they hold MapLock() shared meanwhile. It
// is changed through the operations below only.
template <>
class TChessboardRegister<bool> : public TSubproblemMapByDepth {
public:
    explicit TChessboardRegister(const TRegisterSettings& settings = DefaultRegisterSettings());
    virtual ~TChessboardRegister();
    TChessboardRegister(const TChessboardRegister&) = delete;
    TChessboardRegister& operator=(const TChessboardRegister&) = delete;

    // Figures, readable by any thread without a lock.

    // All elements that count against the limit.
    virtual u32 GetElementsIn() const { return MapElementsIn(); }
    virtual u32 GetDoubtfulElementsIn() const { return 0; }
    // Throws away what is doubtful and not pinned; returns the number of elements. Nothing here.
    virtual u32 RemoveUnpinnedDoubtful() { return 0; }

    // Records of the map store. Defences are not counted.
    u32 MapElementsIn() const { return m_elementsIn.load(std::memory_order_relaxed); }
    u32 ElementLimit() const { return m_environment->elementLimit; }
    u64 BytesUsed() const { return m_environment->memory.UsedBytes(); }
    u64 ByteLimit() const { return m_environment->memory.LimitBytes(); }
    u32 IncoherentElements() const {
        return m_environment->incoherentElements.load(std::memory_order_relaxed);
    }
    bool KeepsThreeMovers() const { return m_bKeepThreeMovers.load(std::memory_order_relaxed); }

    // Verdicts

    // For odd depths: stores the verdict and removes the records that it makes superfluous. Throws
    // ChessException if the store answers the opposite already. Drops the verdict silently when the
    // register is full and cannot be emptied, when memory runs out, and, while shallow results are
    // not kept, below kShallowHalfMoves. With bSave the file is written.
    void
    Insert(u16 nMoves, const TChessboard& board, bool bThereIsMate, TMove move, bool bSave = false);
    // The same for even depths.
    void InsertDefence(
        u16 nMoves, const TChessboard& board, bool bDefenceHolds, TMove move, bool bSave = false);

    // kMate, kNoMate or kNothingKnown, from the records of odd depths.
    TVerdict FindMove(u16 nMoves, const TChessboard& board) const;
    // 1 the defence holds, 0 it does not, kNothingKnown; from the records of even depths. With an
    // answer the record's move goes to *move, which may be null.
    TVerdict FindDefence(u16 nMoves, const TChessboard& board, TMove* move = nullptr) const;

    // The problem and its file

    // Makes the board the current problem. If it is another one than before, its identifier is
    // computed, map and problem record are emptied, and the file paths, which belonged to the old
    // one, are forgotten; true then, and the caller, who knows where problems are kept, sets the
    // paths and has the files read, at once or later. Throws ChessException, with nothing changed, if
    // the board has no identifier.
    bool SetProblem(const TChessboard& board);
    const TChessboardId& ProblemId() const { return m_problemId; }
    void SetFilePaths(const std::string& registerFile, const std::string& recordFile);
    const std::string& RegisterFile() const { return m_registerFile; }
    const std::string& RecordFile() const { return m_recordFile; }
    TProblemRecord& ProblemRecord() { return m_problemRecord; }
    // All solutions, as the record's file keeps them.
    std::vector<u32>& ProblemSolutions() { return m_problemSolutions; }

    // Reads the register file into the emptied map. False if persistence is off, the file cannot be
    // read, ends within a record, or holds a record that contradicts one before it; what was read
    // before that stays.
    bool LoadFile();
    // Writes the register file; the old one becomes a ".BAK". False if persistence is off, on a
    // failure, and when kMaxFileRecords were written, behind which records are left out.
    bool SaveFile();

    // Empties the map; shallow results are kept again.
    void ClearMap();

    TRWSpinLock& MapLock() const { return m_mapLock; }

protected:
    using TEnvironmentPointer = std::shared_ptr<TRegisterEnvironment>;

    // A register without files. `owner` is the aggregate that is asked for the count and for
    // emptying, null for none.
    TChessboardRegister(TEnvironmentPointer environment,
                        TAggregatedTemporaryChessboardRegister* owner);

    CRegisterMemory& Memory() const { return m_environment->memory; }
    // By elements or by bytes.
    bool IsFull(u32 elements) const;
    void Log(const char* message, i32 firstParameter = 0, i32 secondParameter = 0) const;
    // Behind an insert that failed for want of memory. No lock may be held.
    void AnswerFailedInsert();
    // No other thread may use either.
    void SwapMap(TChessboardRegister& other);

    TEnvironmentPointer m_environment;
    TAggregatedTemporaryChessboardRegister* m_owner;
    std::atomic<bool> m_bKeepThreeMovers{true};
    mutable TRWSpinLock m_mapLock;

private:
    enum class ESide { kMove, kDefence };

    void InsertRecord(ESide side,
                      const TChessboardRegisterItem& item,
                      const TSubproblemRegisterInfo<bool>& info,
                      bool bSave);
    bool IsRoomMade();
    void Store(ESide side,
               const TChessboardRegisterItem& item,
               const TSubproblemRegisterInfo<bool>& info);
    void Prune(ESide side,
               const TChessboardRegisterItem& item,
               const TSubproblemRegisterInfo<bool>& info);
    const TSubproblemRegisterInfo<bool>*
    FindRecord(ESide side, u16 nMoves, const TChessboardRegisterItem& item) const;
    TVerdict FindAnswer(ESide side, u16 nMoves, const TChessboard& board, TMove* move) const;
    bool InsertFileRecords(const std::string& bytes);

    TChessboardRegisterItem m_problem{};
    bool m_bPruneOnInsert = true;  // false while the file is read
    bool m_bNoPersistence = false;
    TChessboardId m_problemId;
    TProblemRecord m_problemRecord;
    std::vector<u32> m_problemSolutions;
    std::string m_registerFile;
    std::string m_recordFile;
    std::atomic<u32> m_elementsIn{0};
};

}  // namespace quillmere
