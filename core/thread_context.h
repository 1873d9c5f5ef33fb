// The state of one search thread: its node stack, and what each level of it remembers.
//
// A thread context belongs to one thread. Two bytes are for others: the stop level, which a
// controlling thread writes, and the public move index of a level, which the progress display
// reads; both are relaxed atomics, since a stale value only costs a second look.
#pragma once

#include "core/chessboard.h"
#include "core/move_memory.h"
#include "core/reply_filter.h"

#include <array>
#include <atomic>
#include <vector>

namespace quillmere {

class CMovesLog;

// What a level (indexed by m_nMoves) remembers while its node is searched.
struct TLevelState {
    const TMove* list = nullptr;
    u16 moveCount = 0;
    u16 moveIndex = 0;
    // moveIndex again, for the progress display.
    std::atomic<u16> publicMoveIndex{0};
    // Repetition horizon: the highest level (half-moves) whose repetition the answer of this level
    // depends on; 0 for none.
    u16 horizon = 0;
    // Something was left out below a result that depends on a repetition; handed up with it.
    bool isHorizonDoubtful = false;
};

// The next white node takes this list instead of generating its own: a thread that takes over a
// split node. With flag 1 the list must hold every move of the node, since the node's verdict is
// stored as its own. Above 1 it may be a share of them: the verdict is that of the share, nothing is
// stored, and who split the node puts the shares together.
struct TReplay {
    u8 flag = 0;
    u16 count = 0;
    const TMove* list = nullptr;
};

// A search for a quicker mate, inside the node that asked for it.
struct TQuickSearch {
    bool isRunning = false;
    bool isChecksOnly = false;  // white's moves that give no check are left out
    // Half-moves that the node has beyond the depth of the quick search: a known mate that is longer
    // by no more is a mate for the node all the same.
    u16 additional = 0;
    // Such a mate was met: from here on what the quick search proves needs the additional half-moves.
    bool hasUsedAdditional = false;
};

// Figures captured on the line of play, the first three of each colour.
struct TCaptureList {
    u8 square[3] = {};
    u8 figure[3] = {};
};

// Why the thread doubted last, for the moves log.
struct TDoubtCause {
    // 0 unknown; bits of the heuristics word; from kDoubtImpossible on a result of MakeBlackMove;
    // with isFromRegister the level (half-moves) that the register was asked for.
    u32 code = 0;
    bool isFromRegister = false;
};
constexpr u32 kDoubtImpossible = 0xfffffffe;

constexpr u16 kNoTakeOver = 0xffff;

// Stop levels of a thread
constexpr u8 kThreadRuns = 0;
constexpr u8 kThreadWaits = 1;
constexpr u8 kThreadStops = 2;
constexpr u8 kThreadAtLimit = 3;  // stops by its own limit of work

constexpr u64 kNoWorkLimit = ~u64{0};

struct TThreadContext {
    // Room for a root of `rootHalfMoves` half-moves. The root node itself is the caller's.
    explicit TThreadContext(u16 rootHalfMoves, i16 id = 0);

    // Node stack: the child of a node of level n stands in slot n.
    std::vector<TChessboard> nodes;
    // Used by a thread that takes over a line of another one: children of levels up to the bound
    // stand here, so that they cannot overwrite the ancestors copied with the line.
    std::vector<TChessboard> takeOverNodes;
    u16 takeOverBound = kNoTakeOver;

    // Root of the game tree, read by castling, FEN and the sort.
    TChessboard* rootNode = nullptr;
    i16 threadId = 0;

    std::vector<TLevelState> levels;

    std::atomic<u8> stopLevel{kThreadRuns};

    TReplay replay;
    TCaptureList whiteCaptured;  // white figures that black took
    TCaptureList blackCaptured;  // black figures that white took

    // Log of the moves of this thread (search/moves_log.h), null for none. The search of a thread
    // with a log is the slower twin of the one without.
    CMovesLog* movesLog = nullptr;
    // Nothing is written while set: a search inside the search, which nobody wants to read.
    bool isLogHidden = false;
    // Kept only while there is a log.
    TDoubtCause doubtCause;

    // Milliseconds of the last periodic check.
    u64 lastCheckTick = 0;

    // Moves made by this thread, every kind of make-move counted.
    u64 madeMoves = 0;
    // The search of the thread stops itself (kThreadAtLimit) at the first white node, but for those
    // of the last move, that finds as many moves made.
    u64 workLimit = kNoWorkLimit;
    // The search for a quicker mate that the thread is in (search/quick_mate.h).
    TQuickSearch quickSearch;
    // As TSearchContext::isExact, for the search that the thread is in.
    bool isSafe = false;
    // What it remembers about moves, null for nothing. Whoever made it owns it.
    TMoveMemory* moveMemory = nullptr;
    // Room for the replies that a node with three half-moves left filters its moves by; such nodes
    // never lie below each other.
    std::array<CReplyFilter, 6> replyFilters;
    // Nodes not yet added to the shared counter, and those that were.
    u32 pendingNodes = 0;
    u64 flushedNodes = 0;

    // Black's promotion and white's mate: set when white answered a queen promotion with an
    // immediate mate that does not capture on the promotion square.
    bool isPromotionSquareFree = false;

    // The root as the selection of heuristics weighed it: 9 a queen, 5 a rook, 3 a bishop or knight, 1
    // a pawn; and black's men besides the king that have a legal move.
    u16 rootWhiteMaterial = 0;
    u16 rootBlackMaterial = 0;
    u8 rootMovableBlackMen = 0;

    // Assumptions, and what the make-moves read of them
    THeuristicSettings heuristics;
    u64 forbiddenKingSquares = 0;      // bit per square, with SH_SINGLEQUEENMATE
    u8 singleQueenSquare = kNoSquare;  // white's queen hunts alone from here; noted once
    u16 blockLevel = 0;                // half-moves; with SH_USEBLOCKBLACKPAWNSLEVEL
    bool isSaveEventSecond = false;
    u64 separatedSquares = 0;      // one-colour play, separated bishop: squares not to enter
    u64 separatedPassSquares = 0;  // the same: squares that a slider may not pass
    // Recomputes HeurParams of a node after a write of Heur or a parameter; null without a
    // catalogue.
    void (*computeHeurParams)(TChessboard& node) = nullptr;

    TChessboard& ChildSlot(int level) {
        return takeOverBound == kNoTakeOver || takeOverBound < level ? nodes[level]
                                                                     : takeOverNodes[level];
    }
    void ClearHorizon(int level) {
        levels[level].horizon = 0;
        levels[level].isHorizonDoubtful = false;
    }
};

}  // namespace quillmere
