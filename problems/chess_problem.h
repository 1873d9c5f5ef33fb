// One problem of a collection: everything that its file says about it, and the state of its solving.
//
// The problem is the search context of its own analysis, so that the threads of a solve reach it
// from every node. What only a solve needs (the register above all) is made at the first start of
// one, not when the problem is read: collections hold many thousands of problems.
//
// Texts are UTF-8. Bytes of a file that are no UTF-8 though the file says so are kept as they are,
// so that a save gives back what was read.
//
// Threads: a problem with a running solve is changed by its session only; the solving threads read it.
#pragma once

#include "core/chessboard.h"
#include "core/search_context.h"
#include "problems/solved_record.h"
#include "problems/variant.h"
#include "search/sort_indication.h"

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace quillmere {

// What the solve of a problem keeps with it; session/run_state.h has the record.
struct TProblemRun {
    virtual ~TProblemRun() = default;
};

enum EProblemType : i32 {
    kDirectMate = 1,     // #n
    kSelfmate = 2,       // s#n
    kHelpmate = 3,       // reserved
    kNoStipulation = 4,  // a bare position, with or without played moves
};

enum EProblemFlag : u32 {
    kProblemNoMirror = 0x1,               // do not run the mirrored position
    kProblemAllSolutions = 0x2,           // look for all solutions
    kProblemHasAnswer = 0x4,              // `answer` is present
    kProblemStopOnDual = 0x8,             // stop at the second solution
    kProblemStopOn3Sol = 0x10,            // stop at the third solution
    kProblemUseMainVariant = 0x20,        // sort indications from the main variant
    kProblemNoGlobReg = 0x40,             // no precalculated data
    kProblemSafeMode = 0x80,              // force safe mode
    kProblemMirrorOnly = 0x100,           // run only the mirrored position
    kProblemHasExpectedSort = 0x200,      // `expectedSortWhiteMoves` is present
    kProblemExpectedSortOnly = 0x400,     // the run ends once the order is compared
    kProblemGuiCheckBestDefence = 0x800,  // the best defence is checked along the main variant
    kProblemGuiCheck = 0x1000,            // the same, and white's moves too
    kProblemRequiresSyzygy = 0x2000,      // only if the online tablebase answers for it
    kProblemAllSolutionsRequiresSyzygy = 0x4000,  // the same for all solutions
    // Two options share this bit, and a file written with it holds both words.
    kProblemStopOn4Sol = 0x8000,
    kProblemUsePredefinedSettings = 0x8000,
};

constexpr u8 kThreadsNotForced = 255;
constexpr u16 kLevelsNotForced = 65535;
constexpr u16 kHalfMovesWithoutStipulation = 255;

// Moves whose half-moves fit the field: 2n-1 of a direct mate, 2n+1 of a selfmate.
constexpr u32 kMostMovesToMate = 32768;
constexpr u32 kMostMovesToSelfmate = 32767;

// The word by which a problem switches a heuristic off.
constexpr std::string_view kOverrideOff = "OFF";

struct TChessProblem : TSearchContext {
    // An empty board with this problem as its search context, #2, nothing forced.
    TChessProblem();
    ~TChessProblem() override;
    TChessProblem(const TChessProblem&) = delete;
    TChessProblem& operator=(const TChessProblem&) = delete;

    i32 type = kDirectMate;
    i32 number = 0;
    // Stipulation in half-moves: 2n-1 for #n, 2n+1 for s#n, 255 without one.
    u16 maxHalfMoves = 3;
    u16 initialHalfMoves = 3;
    std::unique_ptr<TChessboard> position;  // the root board; never null
    // The moves played from the root, each node the parent of the next; nodes never move.
    std::deque<TChessboard> playedNodes;
    TChessboard* currentNode;  // the last of them, or `position`
    std::vector<TMove> answer;
    std::vector<TMove> expectedSortWhiteMoves;
    u32 flags = 0;  // EProblemFlag
    u8 threads = kThreadsNotForced;
    // multithreadingLevels (of the search context) was given by the file.
    bool areLevelsGiven = false;
    u16 schedulerLevels = kLevelsNotForced;
    u16 lichessLevels = kLevelsNotForced;
    i32 globRegMB = -1;  // megabytes; -1 for not forced
    bool stopRelaxHeuristicsOnFirstSolution = false;
    std::string description;  // one line
    i32 guiCheckRepeat = 1;
    // Parameters by heuristic, one bit of the word; kOverrideOff switches it off.
    std::map<u32, std::set<std::string>> heuristicOverrides;
    // Material as figure letters. `requires` is a word of the language, hence the underscore.
    std::set<std::string> requires_;
    std::set<std::string> allSolutionsRequires;
    TVariants variants;
    bool useMainVariantAsSortIndications = false;
    std::set<std::string> tags;
    TSortIndications sortIndications;
    TSolvedRecord solvedRecord;

    // What a save of the problem loses, as it was met by the reader: words of the grammar that the
    // writer does not write, and comments. See problems/save_losses.h.
    std::set<std::string> lostBySave;

    // The solve of this problem; null before the first start. RunStateOf (session/run_state.h) makes it.
    std::unique_ptr<TProblemRun> run;

    bool Has(EProblemFlag flag) const { return (flags & flag) != 0; }

    // Stipulation of the problem and of its root board, which gets both half-move counters.
    void SetStipulation(i32 newType, u16 halfMoves);
    // The 64 squares of the root. Played moves are dropped, the bookkeeping of the board is derived
    // where the position is legal (see IsPositionValid), and the solved record is told.
    void SetPosition(const u8 squares[kSquareCount]);
    // The root passes ValidateBoard.
    bool IsPositionValid() const;
    // Plays a move behind currentNode. Without a test of legality beyond the make-move's own: false
    // if that refuses it, and nothing is changed.
    bool PlayMove(TMove move);
    // Takes back every played move.
    void GoToStart();
    // Moves from the root to currentNode.
    std::vector<TMove> PlayedMoves() const;
};

}  // namespace quillmere
