// The words of the heuristics and their settings.
//
// A heuristic is an assumption about the solution of a composition. While it is on, a line that
// breaks it is not searched further, and the verdict of the node becomes doubtful instead of "no
// mate". A node carries the word in `Heur` (one bit an entry) and the digest of the parameters in
// `HeurParams`; the parameters themselves stand here, one record for each search thread. The rules
// live in heuristics/; the make-moves and nodes read what they must from this header.
//
// Threads: the root fills the record of its thread before the others start, and they copy it.
#pragma once

#include "core/types.h"

namespace quillmere {

// The catalogue. Bits 0x100, 0x10000000 and 0x20000000 are unused.
enum EHeuristic : u32 {
    SH_AREKINGSNEAR = 0x1,
    SH_SWEEPINGWHITEROOK = 0x2,
    SH_KEEPKINGONTHEEDGE = 0x4,
    SH_ONECOLORPLAYPOSSIBLE = 0x8,
    SH_ZUGZWANGTRIANGLES = 0x10,
    SH_DONTLEAVEMAINDIAGONAL = 0x20,
    SH_KEEPKINGWITHINEXTEDGE = 0x40,
    SH_DONTLETFIGUREUNBLOCK = 0x80,
    SH_FINDFORCEDMATE = 0x200,
    SH_DONTRECEDEBLACKKING = 0x400,
    SH_DONTLETPROMOTEDQUEENMOVE = 0x800,
    SH_KEYLINE = 0x1000,
    SH_KEYDIAGONAL = 0x2000,
    SH_SAVEQUEENROOK = 0x4000,  // its text is "SH_SAVEQUEEN/ROOK"
    SH_DONTLOSEANYFIGURES = 0x8000,
    SH_DONTLETBLACKQUEENCHECKTWICE = 0x10000,
    SH_USEBLOCKBLACKPAWNSLEVEL = 0x20000,
    SH_KEYSQUARE = 0x40000,
    SH_ASSERTBLACKKINGSURROUNDED = 0x80000,
    SH_SINGLEQUEENMATE = 0x100000,
    SH_3MOVESTOMATE = 0x200000,
    SH_KEYWHITEFIGURE = 0x400000,
    SH_CAPTUREKNIGHT = 0x800000,
    SH_SKIPWORSTWHITEMOVES = 0x1000000,
    SH_DONTLETPROMOTEDFIGUREMOVE = 0x2000000,
    SH_KEEPKINGNEARCORNER = 0x4000000,
    SH_SEASNAKE = 0x8000000,
    SH_REDUCTIONTOGLOBREGPOS = 0x40000000,
    SH_ZUGZWANG = 0x80000000,
};

// White's list is replaced under one of these.
constexpr u32 kListHeuristics =
    SH_ONECOLORPLAYPOSSIBLE | SH_ZUGZWANGTRIANGLES | SH_KEYWHITEFIGURE | SH_SEASNAKE | SH_ZUGZWANG;
// White's move is judged after it was made under one of these.
constexpr u32 kMoveHeuristics = SH_SWEEPINGWHITEROOK | SH_KEEPKINGONTHEEDGE |
                                SH_DONTLEAVEMAINDIAGONAL | SH_DONTLETFIGUREUNBLOCK |
                                SH_DONTLETPROMOTEDQUEENMOVE | SH_ASSERTBLACKKINGSURROUNDED |
                                SH_DONTLETPROMOTEDFIGUREMOVE;
static_assert(kListHeuristics == 0x88400018);
static_assert(kMoveHeuristics == 0x20808a6);

constexpr int kMaxBlockedFigures = 8;

struct THeuristicSettings {
    // Zugzwang triangles: two squares, kNoSquare for none
    u8 ZugzwangTriangleSquares[2] = {kNoSquare, kNoSquare};

    // Blocked black figures
    bool BlockedFiguresEffective = false;
    u8 BlockedFigureCount = 0;
    u8 BlockedFigureCountBefore = 0;  // before the last change
    // As given, in order; the rest is kNoSquare. A node follows them in m_trackedFigures.
    u8 BlockedFigureSquares[kMaxBlockedFigures] = {
        kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare};
    u8 BlockedFigureInitialSquares[kMaxBlockedFigures] = {
        kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare, kNoSquare};
    bool ApplyBlockDynamically = true;
    bool CanApplyBlockDynamically2 = false;
    bool RetriedBlockDynamically = false;
    // Squares to strike from the blocked list at the next relaxation
    u8 PendingBlockRemovals[kMaxBlockedFigures] = {};
    u8 PendingBlockRemovalCount = 0;
    bool BlockCountsKingPawns = false;
    bool BlockHashByFigure = false;

    // Relaxation
    bool AllowRelaxPromotedQueen = false;
    bool AllowRelaxQueenCheckTwice = false;
    // SH_ASSERTBLACKKINGSURROUNDED may take the place of a strict SH_KEEPKINGONTHEEDGE: 0 no, 1 once
    // its exceptions are on, 2 also when strictness ends.
    u8 AllowSwitchToSurrounded = 0;
    bool IsReapplyBlockPending = false;
    bool IsSwapBlockAndKeyFigurePending = false;
    bool LetRelaxHeuristics = true;
    bool RunPassWithoutHeuristics = true;
    bool HeurFallback = false;
    u8 RelaxationCount = 0;  // in this run; gives the letter of the pass
    u32 ActiveHeur = 0;      // `Heur` of the root in the pass that runs

    // Material at the root, by ECount order of kinds: queens, rooks, bishops, knights, pawns
    u8 InitialWhiteCounts[5] = {};
    u8 InitialBlackCounts[5] = {};

    // Edge rules
    bool StrictKingMove = false;
    bool KingMoveExceptions = false;  // only with StrictKingMove
    bool ExtEdgeStrict = false;
    bool SurroundedStrict = false;
    bool EdgeSquaresInclCorner = false;
    // Above 0: sum of the edge distances, 1..5; below 0: minus the greater one, -1..-2; 0 unset.
    i8 NearCornerDistance = 0;

    // Dynamic relaxation of the edge rules
    u8 RelaxAfterCaptures = 0;  // figures; 0 off
    bool RelaxCapturesCountPawns = false;
    bool RelaxOnlyExtEdge = false;
    bool RelaxOnAdvancedPawn = false;
    bool SkipDeferIfBalanceFixed = false;
    bool AutomaticDynamicRelax = false;
    u16 DeferCheckMoves = 0;  // 0 off
    u16 DeferCheckLimit = 0;  // half-moves below which a deferred test falls due

    // Key figures
    u8 KeySquare = kNoSquare;
    u8 KeyWhiteFigureSquare = kNoSquare;
    u8 KeyWhiteFigurePinned = kNoSquare;
    bool KeyWhiteFigureChecked = false;

    // Figures to lose and to take
    u8 LoseFiguresMode = 0;  // 0 figures, 1 pawns too, 2 pawns that can promote too
    u8 LoseFiguresAllowance = 0;
    u8 CaptureKnightParam = 0;

    // Sea snake, squares
    u8 SeaSnakePendulum2 = kNoSquare;
    u8 SeaSnakePendulum1 = kNoSquare;
    u8 SeaSnakeApproach = kNoSquare;
    u8 SeaSnakeTurnBack = kNoSquare;
    bool SeaSnakeByUser = false;

    u8 BlackFigureOnDiagonal = kNoSquare;
    bool LessExceptions = false;
    // A promoted black figure is left to itself only where it is safe.
    bool PromotionSafety = false;

    // Forced mate first
    u8 FfmMode = 2;  // 2..9
    u8 FfmStartMode = 2;
    u8 FfmRelaxations = 0;
    i8 FfmWithOther = -1;
    bool FfmCustom = false;
    u8 FfmCustomRelaxations = 0;
    bool FfmPreliminary = false;
    u32 FfmSavedHeur = 0;
    bool FfmAddCaptures = false;  // from mode 5 on: of figures next to the black king

    // How far the hunt of a single queen has come, 0..3
    u8 QueenMateStage = 0;

    bool operator==(const THeuristicSettings&) const = default;
};

}  // namespace quillmere
