// The state that all threads of one analysis share.
//
// Locking: the stop slot (stopKind, stopThread and the saved pair) is guarded by its own one-byte
// spin lock, a leaf: nothing else is taken while it is held, and it is held for a few reads only.
// stopKind is polled without the lock, since a stale value only costs a second look; who finds it
// non-zero reads again under the lock.
#pragma once

#include "core/chessboard.h"
#include "core/platform/tick_count.h"
#include "core/relaxation_times.h"

#include <atomic>
#include <vector>

namespace quillmere {

class CRelaxationLog;
class TAggregatedTemporaryChessboardRegister;

// Values of stopKind
constexpr u8 kStopNone = 0;
constexpr u8 kStopPause = 1;
constexpr u8 kStopManual = 2;  // manual control: leave up to a level, rotate its list there
constexpr u8 kStopAll = 3;

constexpr u16 kAllThreads = 65535;

// Half-moves of the root from which on the register of solved positions is used: below it the task
// is solved faster than the register fills. (docs/measurements.md tells what a lower bound would bring.)
constexpr u16 kRegisterRoot = 10;

// m_shLookForQuickerMateDepth: the search chooses by itself. A user gives full moves, up to this many.
constexpr i16 kQuickMateDepthUnset = -1;
constexpr int kMaxQuickMateMoves = 16;

enum class ERotate : u8 { kNone = 0, kSwap = 1, kMoveToEnd = 2 };

// The precalculated endings as the make-moves see them.
class IMaterialTables {
public:
    virtual ~IMaterialTables() = default;
    // A table of the node's material exists and may answer it.
    virtual bool HasTables(const TChessboard& node) const = 0;
    // The material test that keeps kPositionSmallMaterial.
    virtual bool IsSmallMaterial(const TChessboard& node) const = 0;
};

// Called now and then by the searching threads; must be quick and must not throw.
class ISearchProgress {
public:
    virtual ~ISearchProgress() = default;
    virtual void OnPeriodicCheck(const TChessboard& node) = 0;
};

struct TSearchContext {
    virtual ~TSearchContext() = default;

    // Threads
    u8 multithreadingLevels = 0;

    // Stop slot
    std::atomic_flag stopLock = ATOMIC_FLAG_INIT;
    std::atomic<u8> stopKind{kStopNone};
    std::atomic<u16> stopThread{kAllThreads};
    u8 savedStopKind = kStopNone;
    u16 savedStopThread = kAllThreads;
    // Manual control: nodes below this level (half-moves) leave, the node at it rotates its list.
    std::atomic<u16> stopBoundLevel{0};
    std::atomic<ERotate> rotateMode{ERotate::kNone};

    // White nodes with fewer than four half-moves left, over all threads.
    std::atomic<u64> nodeCount{0};
    // The search stops itself (stopKind 3) when nodeCount reaches this; 0 for no limit. Threads
    // add their nodes in small lots, so that the limit is passed by a lot at most.
    u64 nodeLimit = 0;
    std::atomic<bool> isNodeLimitReached{false};

    // A search in pass 1 is taken as complete: safe mode, or quick mode off.
    std::atomic<bool> isExact{false};

    // Parameters of heuristics that all threads share (core/heuristics.h has the others)
    u8 KeyDiagonalSquares[2] = {kNoSquare, kNoSquare};  // the bits 0xc0 mean none
    u8 KeyLineFile = kNoSquare;                         // 0..7, kNoSquare for none
    // The sea snake begins after these moves only; white's and black's in turn.
    std::vector<TMove> SeaSnakeOnlyAfter;
    // The position to come back to under SH_ZUGZWANG.
    bool HasZugzwangPosition = false;
    u8 ZugzwangBoard[kSquareCount] = {};
    // When the passes of this analysis ended, for the ladder of heuristics.
    CRelaxationTimes relaxationTimes;
    // A pass that ended fast may be followed by one that was not planned: the word then hangs on the
    // speed of the machine. Off where equal work in every run is promised.
    bool mayRelaxByTime = false;
    // Milliseconds from any start, for that decision; tests put their own in its place.
    u64 (*relaxationClock)() = TickCount;
    // Where the ladder tells its steps (heuristics/relaxation_log.h); null for nowhere. Whoever
    // made it owns it.
    CRelaxationLog* relaxationLog = nullptr;
    // Heuristics that the word of a request must hold; else nothing is searched.
    u32 requiredHeuristics = 0;
    // The task was turned round for a black mate, so that texts tell squares the other way up.
    bool areColoursSwapped = false;
    // Half-moves of the search for quicker mates (search/quick_mate.h).
    i16 m_shLookForQuickerMateDepth = kQuickMateDepthUnset;
    // Highest level (half-moves) whose repetition counts; 0 switches the test off.
    u16 repetitionBound = 65535;

    // The register of solved positions of this analysis; null for none. Whoever made it owns it.
    TAggregatedTemporaryChessboardRegister* tempRegister = nullptr;
    // See kRegisterRoot; tests lower it to reach the register with short tasks.
    u16 registerRoot = kRegisterRoot;

    IMaterialTables* materialTables = nullptr;
    ISearchProgress* progress = nullptr;

    // Zeroes the counters of an analysis and starts its time. The stop slot stays: a stop asked for
    // before the start holds.
    void ResetAnalysis();
};

// Holds the lock of the stop slot.
class CStopSlotLock {
public:
    explicit CStopSlotLock(TSearchContext& context);
    ~CStopSlotLock();
    CStopSlotLock(const CStopSlotLock&) = delete;
    CStopSlotLock& operator=(const CStopSlotLock&) = delete;

private:
    TSearchContext& m_context;
};

// Asks the threads of the analysis to leave (kStopAll), pause, or run on (kStopNone).
void SetStop(TSearchContext& context, u8 stopKind, u16 stopThread = kAllThreads);

// Manual control: nodes below `boundLevel` (half-moves) leave, and the node at it rotates its list
// by `mode`. What stood in the slot is saved and comes back then, so that a paused analysis goes on
// being paused.
void SetManualControl(TSearchContext& context,
                      u16 boundLevel,
                      ERotate mode,
                      u16 stopThread = kAllThreads);

}  // namespace quillmere
