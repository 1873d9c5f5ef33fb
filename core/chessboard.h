// The position of the program and, at the same time, one node of the search.
//
// A TChessboard holds the 64 squares and all bookkeeping that the search wants in constant time.
// There is no separate position class and no undo: to try a move, the node is copied by value into
// the node stack of its thread, the parent pointer of the copy is set, and the move is applied to
// the copy (core/make_move.h). The record is flat, owns nothing and runs no constructor.
//
// White attacks and black defends; only orthodox chess is known. Castling and en passant rights
// are no fields: both follow from the chain of parents (core/rights.h).
//
// Threads: a board belongs to one thread at a time. The search context is shared by all threads
// of an analysis, the thread context belongs to one thread.
#pragma once

#include "core/heuristics.h"
#include "core/move.h"
#include "core/types.h"

#include <type_traits>

namespace quillmere {

struct TSearchContext;
struct TThreadContext;

// Index of a figure count: the white count of a kind, and black's beside it.
enum ECount : int {
    kWhiteQueens,
    kBlackQueens,
    kWhiteRooks,
    kBlackRooks,
    kWhiteBishops,
    kBlackBishops,
    kWhiteKnights,
    kBlackKnights,
    kWhitePawns,
    kBlackPawns,
    kCountFields
};

// Count field of a white figure or pawn by kind; black's is the next one. Kings have none: -1.
constexpr int WhiteCountOf(u8 kind) {
    constexpr i8 kFields[32] = {-1,
                                -1,
                                kWhitePawns,
                                -1,
                                kWhiteBishops,
                                -1,
                                -1,
                                -1,
                                kWhiteRooks,
                                -1,
                                -1,
                                -1,
                                kWhiteQueens,
                                -1,
                                -1,
                                -1,
                                kWhiteKnights,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1,
                                -1};
    return kFields[kind];
}

// Position flags (m_positionFlags)
enum EPositionFlag : u16 {
    kPositionTied = 0x0002,           // black is tied; read by the depth rules of the white node
    kPositionSmallMaterial = 0x0008,  // the material test of the endgame tables holds
    kPositionManyReplies = 0x0020,    // black had 12 or more legal moves at the root
    kPositionBareKing = 0x0400,       // black has only its king
    kPositionHasTables = 0x0800,      // may be answered from precalculated data
};

// Search flags (m_searchFlags)
enum ESearchFlag : u16 {
    kSearchPromotionsMask = 0x0003,    // black promotions on this line, saturating at 3
    kSearchFresh = 0x0004,             // until white's first move without kMoveMarkForced
    kSearchEdgeMask = 0x0018,          // distance of the black king from the edge, 0..3
    kSearchSaveEvent = 0x0020,         // black's marked move under the "save queen/rook" rule
    kSearchSaveEventSecond = 0x0040,   // the same, by the thread's parameter
    kSearchWhitePromoted = 0x0080,     // white has promoted to a queen
    kSearchEdgeReleased = 0x0100,      // the black king has left the zone of the edge rules
    kSearchImpossiblePassed = 0x0400,  // the mate-impossible rules were passed on this line
    kSearchWrongCorner = 0x0800,       // one white bishop and a rook's pawn of the wrong colour
    kSearchEdgeDeferred = 0x1000,      // the edge test is deferred
    kSearchPromotionAhead = 0x2000,    // a promotion lies ahead
    kSearchPromotionPassed = 0x4000,   // a promotion lies behind
};
constexpr int kSearchEdgeShift = 3;

// Capture state (m_captureState)
enum ECaptureState : u8 {
    kOneColourMask = 0x03,         // one-colour play, see EOneColour
    kWhiteCapturedMask = 0x0c,     // white figures captured on this line, saturating at 3
    kBlackCapturedMask = 0x30,     // black figures captured on this line, saturating at 3
    kCaptureStateKeepMask = 0xc0,  // left as it is by ValidateBoard
};
constexpr int kWhiteCapturedShift = 2;
constexpr int kBlackCapturedShift = 4;

// One-colour play: black's only bishop is taken off the board and white keeps to the squares of
// the other colour, so that the bishop can never meet a white man.
enum EOneColour : u8 {
    kOneColourOff = 0,
    kOneColourParity1 = 1,    // white moves only to squares of parity 1
    kOneColourParity0 = 2,    // white moves only to squares of parity 0
    kOneColourSeparated = 3,  // black's bishop is shut in; set by the root
};

// Search passes (m_pass)
constexpr u8 kPassScan = 0;
constexpr u8 kPassHeuristics = 1;
constexpr u8 kPassComplete = 2;

// Values of the check fields besides the square 0..63 of the only checker
constexpr i8 kNotInCheck = -1;
constexpr i8 kDoubleCheck = 64;

//    0  m_board[64]        figure codes by square
//   64  m_searchContext    shared by all threads of one analysis; null on a free-standing board
//   72  m_trackedFigures   squares of up to eight tracked black figures, -1 unused or captured
//   80  m_parent           the node this one was copied from; null at the root of the game tree
//   88  m_threadContext    the owning search thread
//   96  m_lastMove         the move that led to this node
//  100  m_nMoves           HALF-moves still to play, in spite of its name: odd with white to move,
//                          even with black to move, 0 after the last white move
//  102  m_nRootMoves       m_nMoves at the root of this analysis; the difference is the ply
//  104  Heur               active heuristics (EHeuristic), one bit each; 0 is a complete search
//  108  HeurParams         digest of the parameters of the active heuristics
//  112  m_positionFlags    EPositionFlag
//  114  m_searchFlags      ESearchFlag
//  116  m_captureState     ECaptureState
//  117  m_pass             pass of the search; written by the root only
//  118  m_whiteKingFile, m_whiteKingRank, m_blackKingFile, m_blackKingRank
//  122  m_whiteInCheck, m_blackInCheck   kNotInCheck, square of the only checker, kDoubleCheck
//  124  m_counts[10]       figure counts by ECount; kings carry none
//  134  m_whiteRooks[2]    squares of the white rooks, -1 for none
//  136  m_whiteBishops[2]  squares of the white bishops, never two of one colour
//  138  m_whiteKnights[2]
//  140  m_whiteQueen
//  141  m_figureListValid  1 while the four lists hold every white figure of their kinds; else the
//                          lists mean nothing and the board must be scanned
//  142  two bytes of padding
struct TChessboard {
    u8 m_board[kSquareCount];
    TSearchContext* m_searchContext;
    i8 m_trackedFigures[8];
    TChessboard* m_parent;
    TThreadContext* m_threadContext;
    TMove m_lastMove;
    u16 m_nMoves;
    u16 m_nRootMoves;
    u32 Heur;
    u32 HeurParams;
    u16 m_positionFlags;
    u16 m_searchFlags;
    u8 m_captureState;
    u8 m_pass;
    i8 m_whiteKingFile;
    i8 m_whiteKingRank;
    i8 m_blackKingFile;
    i8 m_blackKingRank;
    i8 m_whiteInCheck;
    i8 m_blackInCheck;
    u8 m_counts[kCountFields];
    i8 m_whiteRooks[2];
    i8 m_whiteBishops[2];
    i8 m_whiteKnights[2];
    i8 m_whiteQueen;
    u8 m_figureListValid;

    int WhiteKingSquare() const { return SquareAt(m_whiteKingFile, m_whiteKingRank); }
    int BlackKingSquare() const { return SquareAt(m_blackKingFile, m_blackKingRank); }
    bool IsWhiteToMove() const { return (m_nMoves & 1) != 0; }
    // Distance from the root of the analysis in half-moves.
    int Ply() const { return m_nRootMoves - m_nMoves; }
    u8 OneColourMode() const { return m_captureState & kOneColourMask; }
    // Distance of the black king from the nearest edge, 0..3.
    int BlackKingEdgeDistance() const {
        return (m_searchFlags & kSearchEdgeMask) >> kSearchEdgeShift;
    }
};
static_assert(sizeof(TChessboard) == 144);
static_assert(std::is_trivially_copyable_v<TChessboard>);

// Setting up a position

// Makes an empty node: no figures, no pointers, pass 1, no tracked figures, all flags clear.
void InitBoard(TChessboard& board);

// Derives all bookkeeping from m_board and checks the position. With clearSearchState it also
// zeroes `Heur` and the position flags. Throws ChessException, in this order of tests: a pawn on
// rank 1 or 8 (met in the scan), other than one king a side, both kings attacked. After a throw
// the bookkeeping is undefined and the board must not be searched.
void ValidateBoard(TChessboard& board, bool clearSearchState);

// Makes the board the root of an analysis of `halfMoves` half-moves: odd for a mate (white moves
// first; the black king must not be attacked), even for a mate-defence task (black moves first;
// the white king must not be attacked). Runs ValidateBoard; resets the counters of the board's
// search context if it has one. Throws ChessException on an illegal position, and on one whose
// lists could pass kMaxMoves.
void SetupAnalysisRoot(TChessboard& board, u16 halfMoves, bool clearSearchState);

// The white figure lists of the board, rebuilt by the rule of ValidateBoard. True if they hold
// every white figure, false (and m_figureListValid 0) if a kind overflows.
bool IsFigureListValid(TChessboard& board);

}  // namespace quillmere
