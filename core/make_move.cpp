// The make-moves. Each form of a move (search, legal, fast) is an instance of one routine per
// colour; what a form leaves out is left out by `if constexpr`.
#include "core/make_move.h"

#include "core/attacks.h"
#include "core/direct_mates.h"
#include "core/figure_lists.h"
#include "core/geometry.h"
#include "core/mate_impossible.h"
#include "core/material.h"
#include "core/rights.h"
#include "core/search_context.h"
#include "core/thread_context.h"

#include <cassert>

namespace quillmere {
namespace {

enum class EForm {
    kSearch,  // everything
    kLegal,   // bookkeeping, but neither assumptions nor rules about mating material
    kFast,    // what the tests of the last plies need
};

inline bool HasWhiteSlider(const TChessboard& board) {
    return (board.m_counts[kWhiteQueens] | board.m_counts[kWhiteRooks] |
            board.m_counts[kWhiteBishops]) != 0;
}
inline bool HasBlackSlider(const TChessboard& board) {
    return (board.m_counts[kBlackQueens] | board.m_counts[kBlackRooks] |
            board.m_counts[kBlackBishops]) != 0;
}

// The enemy slider that sees the king along the line through a square that was just left, or -1.
// The board stands after the move, so that the first figure met from the king decides.
template <u8 kEnemy>
inline int SliderThrough(const u8* board, int king, int left) {
    const u8 bit = LineBit(king, left);
    if (bit == 0)
        return -1;
    const int step = LineStep(king, left);
    int square = king + step;
    while (square >= 0 && square < kSquareCount && LineStep(king, square) == step) {
        const u8 figure = board[square];
        if (figure != 0) {
            constexpr u8 kMask = kEnemy;
            const u8 mask = kMask | bit;
            return (figure & mask) == mask ? square : -1;
        }
        square += step;
    }
    return -1;
}

inline void AddCheck(i8& field, int checker) {
    if (field == kNotInCheck)
        field = static_cast<i8>(checker);
    else if (field != checker)
        field = kDoubleCheck;
}

// The figure (no king) on its square attacks the king's square.
inline bool AttacksKing(const u8* board, u8 figure, int square, int king) {
    switch (KindOf(figure)) {
    case kPawn: {
        const int ahead = IsWhite(figure) ? square + 8 : square - 8;
        return RankOf(king) == RankOf(ahead) && KingDistance(king, ahead) == 1;
    }
    case kKnight:
        return IsKnightStep(square, king);
    default: {
        const u8 bit = LineBit(square, king);
        return (figure & bit) != 0 && IsLineClear(board, square, king, LineStep(square, king));
    }
    }
}

// One-colour play leaves out every move that could meet the bishop that was taken off the board.
bool IsLeftOutByOneColourPlay(const TChessboard& node, TMove move, u8 figure) {
    const bool isDoubleStep = figure == kWhitePawn && move.to - move.from == 16;
    switch (node.OneColourMode()) {
    case kOneColourParity1:
        return SquareParity(move.to) != 1 || isDoubleStep;
    case kOneColourParity0:
        return SquareParity(move.to) != 0 || isDoubleStep;
    case kOneColourSeparated: {
        const TThreadContext& thread = *node.m_threadContext;
        const auto isIn = [](u64 set, int square) { return (set >> square & 1) != 0; };
        if (isIn(thread.separatedSquares, move.to))
            return true;
        if (node.Ply() > 2 && isIn(thread.separatedSquares, move.from))
            return true;
        if ((KindOf(figure) & kQueen) == 0)
            return false;
        const int step = LineStep(move.from, move.to);
        for (int square = move.from + step; square != move.to; square += step) {
            if (isIn(thread.separatedPassSquares, square))
                return true;
        }
        return false;
    }
    default:
        return false;
    }
}

void RecordCapture(TChessboard& node, TCaptureList& list, u8 mask, int shift, u8 figure, int at) {
    const int count = (node.m_captureState & mask) >> shift;
    if (count == 3)
        return;
    list.figure[count] = figure;
    list.square[count] = static_cast<u8>(at);
    node.m_captureState = static_cast<u8>(node.m_captureState + (1 << shift));
}

// Marks of the endgame tables; without tables nothing is asked.
inline void MarkTables(TChessboard& node) {
    if (node.m_nMoves < 11 || node.m_searchContext == nullptr)
        return;
    const IMaterialTables* tables = node.m_searchContext->materialTables;
    if (tables != nullptr && tables->HasTables(node))
        node.m_positionFlags |= kPositionHasTables;
}

bool IsSmallMaterial(const TChessboard& node) {
    const TSearchContext* context = node.m_searchContext;
    return context != nullptr && context->materialTables != nullptr &&
           context->materialTables->IsSmallMaterial(node);
}

// White has one bishop and no other figure, and a rook's pawn that promotes on a corner which the
// bishop does not cover. A hint for rules of thumb; it prunes nothing by itself.
void UpdateWrongCorner(TChessboard& node) {
    bool isWrong = false;
    if (node.m_counts[kWhiteBishops] == 1 && CountWhiteFigures(node) == 1 &&
        node.m_counts[kWhitePawns] != 0) {
        const int bishop = node.m_figureListValid != 0 ? node.m_whiteBishops[0] : -1;
        for (int rank = 1; rank < 7 && bishop >= 0 && !isWrong; ++rank) {
            for (const int file : {0, 7}) {
                const int square = SquareAt(file, rank);
                isWrong |= node.m_board[square] == kWhitePawn &&
                           !IsPromotionCornerOfBishop(square, bishop) &&
                           IsCornerReachable(node, square);
            }
        }
    }
    if (isWrong)
        node.m_searchFlags |= kSearchWrongCorner;
    else
        node.m_searchFlags &= static_cast<u16>(~kSearchWrongCorner);
}

void PromoteWhite(TChessboard& node, u8 kind, int to) {
    --node.m_counts[kWhitePawns];
    ++node.m_counts[WhiteCountOf(kind)];
    if (node.m_figureListValid != 0)
        EnterWhiteFigure(node, kWhite | kind, to);
    if (kind == kQueen)
        node.m_searchFlags |= kSearchWhitePromoted;
    if ((node.m_positionFlags & kPositionSmallMaterial) != 0 &&
        ((kind & kRook) != 0 || !IsSmallMaterial(node)))
        node.m_positionFlags &= static_cast<u16>(~kPositionSmallMaterial);
}

// Twin: MakeBlack.
template <EForm kForm>
int MakeWhite(TChessboard& node, TMove move) {
    constexpr bool kFull = kForm != EForm::kFast;
    constexpr bool kSearch = kForm == EForm::kSearch;
    u8* b = node.m_board;
    const int from = move.from;
    const int to = move.to;
    const u8 figure = b[from];
    TThreadContext& thread = *node.m_threadContext;
    assert(node.m_nMoves > 0 && IsWhite(figure) && !IsWhite(b[to]));
    ++thread.madeMoves;

    // Step 1. Moves that an assumption leaves out. Whether the move is legal at all is still
    // found out below: an illegal move is never "left out".
    bool isLeftOut = false;
    if constexpr (kSearch) {
        if (node.OneColourMode() != kOneColourOff)
            isLeftOut = IsLeftOutByOneColourPlay(node, move, figure);
    }

    // Step 2. The captured figure, and its square if it was passed.
    u8 captured = b[to];
    int capturedAt = to;
    move.enPassant = 0;
    if (figure == kWhitePawn && captured == 0 && ((to - from) & 7) != 0) {
        move.enPassant = 1;
        capturedAt = to - 8;
        captured = kBlackPawn;
    }

    // Step 3. The board.
    const bool isCastling =
        figure == kWhiteKing && from == kSquareE1 && (to == kSquareG1 || to == kSquareC1);
    // The copy still carries its parent's last move, so the right is asked of the parent.
    if (isCastling && !HasWhiteCastlingRight(*node.m_parent, to == kSquareG1))
        return kMoveIllegal;
    b[from] = 0;
    b[capturedAt] = 0;
    b[to] = figure;
    int rookTo = -1;
    if (captured != 0)
        --node.m_counts[WhiteCountOf(KindOf(captured)) + 1];
    if (move.Promotion() != 0) {
        b[to] = kWhite | move.Promotion();
        PromoteWhite(node, move.Promotion(), to);
    } else if (node.m_figureListValid != 0) {
        MoveInFigureLists(node, figure, from, to);
    }

    // Steps 4 to 6. King moves, and the king's safety after any other move.
    if (figure == kWhiteKing) {
        if (isCastling) {
            const int rookFrom = to == kSquareG1 ? kSquareH1 : kSquareA1;
            rookTo = to == kSquareG1 ? kSquareF1 : kSquareD1;
            b[rookFrom] = 0;
            b[rookTo] = kWhiteRook;
            if (node.m_figureListValid != 0)
                MoveInFigureLists(node, kWhiteRook, rookFrom, rookTo);
        }
        if constexpr (kSearch) {
            if ((node.Heur & SH_SINGLEQUEENMATE) != 0 &&
                (thread.forbiddenKingSquares >> to & 1) != 0)
                isLeftOut = true;
        }
        if (IsAttackedByBlack(node, to))
            return kMoveIllegal;
        node.m_whiteKingFile = static_cast<i8>(FileOf(to));
        node.m_whiteKingRank = static_cast<i8>(RankOf(to));
    } else {
        const int king = node.WhiteKingSquare();
        if (node.m_whiteInCheck >= 0 || move.enPassant != 0) {
            if (IsAttackedByBlack(node, king))
                return kMoveIllegal;
        } else if (HasBlackSlider(node) && SliderThrough<kBlack>(b, king, from) >= 0) {
            return kMoveIllegal;
        }
    }

    if constexpr (kFull) {
        // Step 7. What was captured.
        if (captured != 0) {
            if ((node.m_searchFlags & kSearchPromotionsMask) != 0 && node.m_parent != nullptr &&
                WasPromotedInLine(*node.m_parent, capturedAt))
                --node.m_searchFlags;
            RecordCapture(node,
                          thread.blackCaptured,
                          kBlackCapturedMask,
                          kBlackCapturedShift,
                          captured,
                          capturedAt);
            for (i8& tracked : node.m_trackedFigures) {
                if (tracked == capturedAt)
                    tracked = -1;
            }
        }

        // Step 8. Against a bare king some material can never mate.
        if (IsBlackBare(node)) {
            if constexpr (kSearch) {
                if (IsHopelessAgainstBareKing(node))
                    return kMoveIllegal;
            }
            node.m_positionFlags |= kPositionBareKing;
        }

        // Step 9. The wrong corner. Without a rook's pawn or a single bishop it stays clear.
        if (node.m_counts[kWhiteBishops] == 1 || (node.m_searchFlags & kSearchWrongCorner) != 0)
            UpdateWrongCorner(node);
    }

    // Step 10. The check field of black, from this move alone.
    node.m_lastMove = move;
    const int blackKing = node.BlackKingSquare();
    i8 check = kNotInCheck;
    if (isCastling) {
        // King and rook leave the first rank to no slider but the castled rook.
        if (AttacksKing(b, kWhiteRook, rookTo, blackKing))
            check = static_cast<i8>(rookTo);
    } else {
        if (figure != kWhiteKing && AttacksKing(b, b[to], to, blackKing))
            check = static_cast<i8>(to);
        if (HasWhiteSlider(node)) {
            const int discovered = SliderThrough<kWhite>(b, blackKing, from);
            if (discovered >= 0)
                AddCheck(check, discovered);
            if (move.enPassant != 0) {
                const int opened = SliderThrough<kWhite>(b, blackKing, capturedAt);
                if (opened >= 0)
                    AddCheck(check, opened);
            }
        }
    }
    node.m_blackInCheck = check;
    node.m_whiteInCheck = kNotInCheck;
    --node.m_nMoves;

    if constexpr (kFull) {
        // Steps 11 to 13. Marks of the line, tables, repetition horizon.
        if ((move.flags & kMoveMarkForced) == 0)
            node.m_searchFlags &= static_cast<u16>(~kSearchFresh);
        if constexpr (kSearch)
            MarkTables(node);
        thread.ClearHorizon(node.m_nMoves);
    }
    return isLeftOut ? kMoveLeftOut : kMoveMade;
}

void UpdateTracked(TChessboard& node, int from, int to) {
    for (i8& tracked : node.m_trackedFigures) {
        if (tracked == from)
            tracked = static_cast<i8>(to);
    }
}

// Black's move carries the event mark of the "save queen/rook" rule.
void MarkSaveEvent(TChessboard& node, const TThreadContext& thread) {
    node.m_searchFlags |= thread.isSaveEventSecond ? kSearchSaveEventSecond : kSearchSaveEvent;
    if (thread.computeHeurParams != nullptr)
        thread.computeHeurParams(node);
}

// Twin: MakeWhite.
template <EForm kForm>
int MakeBlack(TChessboard& node, TMove move, bool skipKingTest) {
    constexpr bool kSearch = kForm == EForm::kSearch;
    u8* b = node.m_board;
    const int from = move.from;
    const int to = move.to;
    TThreadContext& thread = *node.m_threadContext;
    ++thread.madeMoves;

    // Step 1. The null move: nothing moves.
    if (move.IsNull()) {
        MakeNullMove(node);
        node.m_lastMove = move;
        thread.ClearHorizon(node.m_nMoves);
        return kMoveMade;
    }
    const u8 figure = b[from];
    assert(node.m_nMoves > 0 && IsBlack(figure) && !IsBlack(b[to]));

    // Step 2. Pawn moves that an assumption leaves out, if they are legal.
    bool isLeftOut = false;
    if constexpr (kSearch) {
        isLeftOut = figure == kBlackPawn && (node.Heur & SH_USEBLOCKBLACKPAWNSLEVEL) != 0 &&
                    node.m_nMoves == thread.blockLevel;
    }

    // Step 3. The board, promotion and en passant.
    u8 captured = b[to];
    int capturedAt = to;
    move.enPassant = 0;
    if (figure == kBlackPawn && captured == 0 && ((to - from) & 7) != 0) {
        move.enPassant = 1;
        capturedAt = to + 8;
        captured = kWhitePawn;
    }
    const bool isCastling =
        figure == kBlackKing && from == kSquareE8 && (to == kSquareE8 + 2 || to == kSquareE8 - 2);
    if (isCastling && !HasBlackCastlingRight(*node.m_parent, to > from))
        return kMoveIllegal;
    b[from] = 0;
    b[capturedAt] = 0;
    b[to] = figure;
    UpdateTracked(node, from, to);
    if (move.Promotion() != 0) {
        b[to] = kBlack | move.Promotion();
        --node.m_counts[kBlackPawns];
        ++node.m_counts[WhiteCountOf(move.Promotion()) + 1];
        if ((node.m_searchFlags & kSearchPromotionsMask) != kSearchPromotionsMask)
            ++node.m_searchFlags;
        thread.isPromotionSquareFree = false;
    }

    // Step 4. Castling moves the rook, and its tracked entry.
    int rookTo = -1;
    if (isCastling) {
        const int rookFrom = to > from ? kSquareH8 : kSquareA8;
        rookTo = to > from ? to - 1 : to + 1;
        b[rookFrom] = 0;
        b[rookTo] = kBlackRook;
        UpdateTracked(node, rookFrom, rookTo);
    }

    // Step 5. A captured white figure leaves its list; a list that overflowed may be whole again.
    if (captured != 0) {
        --node.m_counts[WhiteCountOf(KindOf(captured))];
        if (node.m_figureListValid != 0)
            RemoveFromFigureLists(node, captured, capturedAt);
        else
            RebuildFigureLists(node);
        RecordCapture(node,
                      thread.whiteCaptured,
                      kWhiteCapturedMask,
                      kWhiteCapturedShift,
                      captured,
                      capturedAt);
    }

    // Steps 6 and 7. Marks of the rules and of the tables.
    if constexpr (kSearch) {
        if ((move.flags & kMoveMarkEvent) != 0 && (node.Heur & SH_SAVEQUEENROOK) != 0)
            MarkSaveEvent(node, thread);
        if (captured != 0 && (node.m_positionFlags & kPositionSmallMaterial) == 0 &&
            IsSmallMaterial(node))
            node.m_positionFlags |= kPositionSmallMaterial;
    }

    // Step 8. The black king's safety.
    if (figure == kBlackKing) {
        if (!skipKingTest && IsAttackedByWhite(node, to))
            return kMoveIllegal;
        node.m_blackKingFile = static_cast<i8>(FileOf(to));
        node.m_blackKingRank = static_cast<i8>(RankOf(to));
        node.m_searchFlags = static_cast<u16>((node.m_searchFlags & ~kSearchEdgeMask) |
                                              (EdgeDistance(to) << kSearchEdgeShift));
    } else {
        const int king = node.BlackKingSquare();
        if (node.m_blackInCheck >= 0 || move.enPassant != 0) {
            if (IsAttackedByWhite(node, king))
                return kMoveIllegal;
        } else if (HasWhiteSlider(node) && SliderThrough<kWhite>(b, king, from) >= 0) {
            return kMoveIllegal;
        }
    }
    if (isLeftOut)
        return kMoveLeftOut;

    // Step 9. The check field of white.
    node.m_lastMove = move;
    const int whiteKing = node.WhiteKingSquare();
    i8 check = kNotInCheck;
    if (isCastling) {
        if (AttacksKing(b, kBlackRook, rookTo, whiteKing))
            check = static_cast<i8>(rookTo);
    } else {
        if (figure != kBlackKing && AttacksKing(b, b[to], to, whiteKing))
            check = static_cast<i8>(to);
        if (HasBlackSlider(node)) {
            const int discovered = SliderThrough<kBlack>(b, whiteKing, from);
            if (discovered >= 0)
                AddCheck(check, discovered);
            if (move.enPassant != 0) {
                const int opened = SliderThrough<kBlack>(b, whiteKing, capturedAt);
                if (opened >= 0)
                    AddCheck(check, opened);
            }
        }
    }
    node.m_whiteInCheck = check;
    node.m_blackInCheck = kNotInCheck;
    --node.m_nMoves;
    thread.ClearHorizon(node.m_nMoves);

    if constexpr (kSearch) {
        // Step 10. Can white still mate?
        const int impossible = TestMateImpossible(node, captured != 0);
        if (impossible != kMoveMade)
            return impossible;
        // Step 11. Tables.
        MarkTables(node);
    }
    return kMoveMade;
}

}  // namespace

int MakeWhiteMove(TChessboard& node, TMove move) {
    return MakeWhite<EForm::kSearch>(node, move);
}

int MakeWhiteMoveFast(TChessboard& node, TMove move) {
    return MakeWhite<EForm::kFast>(node, move);
}

int MakeWhiteMoveLegal(TChessboard& node, TMove move) {
    return MakeWhite<EForm::kLegal>(node, move);
}

int MakeBlackMove(TChessboard& node, TMove move, bool skipKingTest) {
    return MakeBlack<EForm::kSearch>(node, move, skipKingTest);
}

int MakeBlackMoveLegal(TChessboard& node, TMove move) {
    return MakeBlack<EForm::kLegal>(node, move, false);
}

void MakeNullMove(TChessboard& node) {
    assert(node.m_nMoves > 0);
    const int king = node.IsWhiteToMove() ? node.WhiteKingSquare() : node.BlackKingSquare();
    node.m_lastMove = MakeMove(king, king);
    if (node.IsWhiteToMove())
        node.m_whiteInCheck = kNotInCheck;
    else
        node.m_blackInCheck = kNotInCheck;
    --node.m_nMoves;
}

bool WasPromotedInLine(const TChessboard& node, int square) {
    // The figure is followed back: a move that ended on its square brought it there.
    for (const TChessboard* n = &node; n->m_parent != nullptr; n = n->m_parent) {
        const TMove move = n->m_lastMove;
        if (move.IsNull())
            continue;
        // A rook that castled has never been a pawn, and its square may have been another's before.
        const bool isCastlingRook = n->m_board[move.to] == kBlackKing &&
                                    KingDistance(move.from, move.to) == 2 &&
                                    square == (move.from + move.to) / 2;
        if (isCastlingRook)
            return false;
        if (move.to != square)
            continue;
        if (move.Promotion() != 0)
            return true;
        square = move.from;
    }
    return false;
}

}  // namespace quillmere
