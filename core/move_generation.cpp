#include "core/move_generation.h"

#include "core/attacks.h"
#include "core/geometry.h"
#include "core/rights.h"

namespace quillmere {
namespace {

inline bool IsOwn(u8 figure, u8 colour) {
    return (figure & colour) != 0;
}

// Slider moves along the directions of one kind, in the order of kStep.
template <u8 kBit>
int GetSliderMoves(const TChessboard& board, int square, TMove* list) {
    const u8* b = board.m_board;
    const u8 colour = b[square] & (kWhite | kBlack);
    int count = 0;
    for (int d = 0; d < kDirections; ++d) {
        if (kSliderBit[d] != kBit)
            continue;
        int target = square;
        for (int left = kGeometry.rayLength[square][d]; left > 0; --left) {
            target += kStep[d];
            const u8 figure = b[target];
            if (IsOwn(figure, colour))
                break;
            list[count++] = MakeMove(square, target);
            if (figure != 0)
                break;
        }
    }
    return count;
}

inline int AddPromotions(int from, int to, TMove* list) {
    for (int i = 0; i < 4; ++i)
        list[i] = MakeMove(from, to, kPromotionKinds[i]);
    return 4;
}

// One pawn move, expanded on the last rank of the colour.
template <u8 kColour>
int AddPawnMove(int from, int to, TMove* list) {
    if (RankOf(to) == (kColour == kWhite ? 7 : 0))
        return AddPromotions(from, to, list);
    list[0] = MakeMove(from, to);
    return 1;
}

template <u8 kColour>
int GetPawnMovesOf(const TChessboard& board, int square, TMove* list) {
    constexpr int kAhead = kColour == kWhite ? 8 : -8;
    constexpr int kStartRank = kColour == kWhite ? 1 : 6;
    constexpr u8 kEnemy = kColour == kWhite ? kBlack : kWhite;
    const u8* b = board.m_board;
    int count = 0;
    const int ahead = square + kAhead;
    if (b[ahead] == 0) {
        count += AddPawnMove<kColour>(square, ahead, list + count);
        if (RankOf(square) == kStartRank && b[ahead + kAhead] == 0)
            list[count++] = MakeMove(square, ahead + kAhead);
    }
    const int file = FileOf(square);
    if (file > 0 && (b[ahead - 1] & kEnemy) != 0)
        count += AddPawnMove<kColour>(square, ahead - 1, list + count);
    if (file < 7 && (b[ahead + 1] & kEnemy) != 0)
        count += AddPawnMove<kColour>(square, ahead + 1, list + count);
    const int passed = DoubleStepSquare(board);
    if (passed != kNoSquare && IsOwn(b[passed], kEnemy) && RankOf(passed) == RankOf(square)) {
        if (passed == square - 1)
            list[count++] = MakeMove(square, ahead - 1);
        else if (passed == square + 1)
            list[count++] = MakeMove(square, ahead + 1);
    }
    return count;
}

// Castling: the king at home and not in check, the right, free squares between, and no attack on
// the square that the king crosses. The make-move tests the destination.
template <u8 kColour>
int GetCastlings(const TChessboard& board, TMove* list) {
    constexpr bool kIsWhite = kColour == kWhite;
    constexpr int kHome = kIsWhite ? kSquareE1 : kSquareE8;
    const u8* b = board.m_board;
    if ((kIsWhite ? board.m_whiteInCheck : board.m_blackInCheck) >= 0)
        return 0;
    const auto isAttacked = [&](int square) {
        return kIsWhite ? IsAttackedByBlack(board, square) : IsAttackedByWhite(board, square);
    };
    const auto hasRight = [&](bool kingSide) {
        return kIsWhite ? HasWhiteCastlingRight(board, kingSide)
                        : HasBlackCastlingRight(board, kingSide);
    };
    int count = 0;
    if (b[kHome + 3] == (kColour | kRook) && b[kHome + 1] == 0 && b[kHome + 2] == 0 &&
        hasRight(true) && !isAttacked(kHome + 1))
        list[count++] = MakeMove(kHome, kHome + 2);
    if (b[kHome - 4] == (kColour | kRook) && b[kHome - 1] == 0 && b[kHome - 2] == 0 &&
        b[kHome - 3] == 0 && hasRight(false) && !isAttacked(kHome - 1))
        list[count++] = MakeMove(kHome, kHome - 2);
    return count;
}

template <u8 kColour>
int GetMovesOf(const TChessboard& board, int square, TMove* list) {
    switch (board.m_board[square]) {
    case kColour | kKing:
        return GetKingMoves(board, square, list);
    case kColour | kPawn:
        return GetPawnMovesOf<kColour>(board, square, list);
    case kColour | kKnight:
        return GetKnightMoves(board, square, list);
    case kColour | kRook:
        return GetRookMoves(board, square, list);
    case kColour | kBishop:
        return GetBishopMoves(board, square, list);
    case kColour | kQueen: {
        const int count = GetRookMoves(board, square, list);
        return count + GetBishopMoves(board, square, list + count);
    }
    default:
        return 0;
    }
}

template <u8 kColour>
int GetAllMovesOf(const TChessboard& board, TMove* list) {
    int count = 0;
    for (int square = NextFigureSquare(board.m_board, 0, kColour); square < kSquareCount;
         square = NextFigureSquare(board.m_board, square + 1, kColour))
        count += GetMovesOf<kColour>(board, square, list + count);
    return count;
}

// Figures but the king that can move to the empty square, unpinned.
template <u8 kColour>
int GetInterpositions(const TChessboard& board, int square, TMove* list) {
    constexpr bool kIsWhite = kColour == kWhite;
    constexpr int kBack = kIsWhite ? -8 : 8;
    const u8* b = board.m_board;
    const auto isPinned = [&](int from) {
        return kIsWhite ? IsPinnedToWhiteKing(board, from) : IsPinnedToBlackKing(board, from);
    };
    int count = 0;
    const int behind = square + kBack;
    if (behind >= 0 && behind < kSquareCount) {
        const int start = behind + kBack;
        if (b[behind] == (kColour | kPawn)) {
            if (!isPinned(behind))
                count += AddPawnMove<kColour>(behind, square, list + count);
        } else if (b[behind] == 0 && RankOf(square) == (kIsWhite ? 3 : 4) &&
                   b[start] == (kColour | kPawn) && !isPinned(start)) {
            list[count++] = MakeMove(start, square);
        }
    }
    // Pawns never capture an empty square, so that the capturers left are knights and sliders.
    u8 movers[16];
    const int moverCount = kIsWhite
                               ? GetWhiteCapturers(board, FileOf(square), RankOf(square), movers)
                               : GetBlackCapturers(board, FileOf(square), RankOf(square), movers);
    for (int i = 0; i < moverCount; ++i) {
        if (movers[i] >= kPinnedMark)
            continue;
        const u8 kind = KindOf(b[movers[i]]);
        if (kind != kKing && kind != kPawn)
            list[count++] = MakeMove(movers[i], square);
    }
    return count;
}

template <u8 kColour>
int GetEvasionsOf(const TChessboard& board, TMove* list) {
    constexpr bool kIsWhite = kColour == kWhite;
    const u8* b = board.m_board;
    const int king = kIsWhite ? board.WhiteKingSquare() : board.BlackKingSquare();
    const int checker = kIsWhite ? board.m_whiteInCheck : board.m_blackInCheck;
    int count = GetKingMoves(board, king, list);
    if (checker == kDoubleCheck)
        return count;
    u8 capturers[16];
    const int capturerCount =
        kIsWhite ? GetWhiteCapturers(board, FileOf(checker), RankOf(checker), capturers)
                 : GetBlackCapturers(board, FileOf(checker), RankOf(checker), capturers);
    for (int i = 0; i < capturerCount; ++i) {
        const int from = capturers[i];
        // A pinned figure cannot take a checker that is not its pinner; the king is listed above.
        if (from >= kPinnedMark || from == king)
            continue;
        if (KindOf(b[from]) == kPawn)
            count += AddPawnMove<kColour>(from, checker, list + count);
        else
            list[count++] = MakeMove(from, checker);
    }
    const u8 kind = KindOf(b[checker]);
    if ((kind & kQueen) != 0 && KingDistance(king, checker) >= 2) {
        const int step = LineStep(king, checker);
        for (int square = king + step; square != checker; square += step)
            count += GetInterpositions<kColour>(board, square, list + count);
    }
    if (kind == kPawn && DoubleStepSquare(board) == checker) {
        constexpr int kAhead = kIsWhite ? 8 : -8;
        if (FileOf(checker) > 0 && b[checker - 1] == (kColour | kPawn))
            list[count++] = MakeMove(checker - 1, checker + kAhead);
        if (FileOf(checker) < 7 && b[checker + 1] == (kColour | kPawn))
            list[count++] = MakeMove(checker + 1, checker + kAhead);
    }
    return count;
}

}  // namespace

int GetRookMoves(const TChessboard& board, int square, TMove* list) {
    return GetSliderMoves<kRook>(board, square, list);
}

int GetBishopMoves(const TChessboard& board, int square, TMove* list) {
    return GetSliderMoves<kBishop>(board, square, list);
}

int GetKnightMoves(const TChessboard& board, int square, TMove* list) {
    const u8 colour = board.m_board[square] & (kWhite | kBlack);
    int count = 0;
    for (int i = 0; i < kGeometry.knightCount[square]; ++i) {
        const int target = kGeometry.knightTargets[square][i];
        if (!IsOwn(board.m_board[target], colour))
            list[count++] = MakeMove(square, target);
    }
    return count;
}

int GetPawnMoves(const TChessboard& board, int square, TMove* list) {
    return IsWhite(board.m_board[square]) ? GetPawnMovesOf<kWhite>(board, square, list)
                                          : GetPawnMovesOf<kBlack>(board, square, list);
}

int GetKingMoves(const TChessboard& board, int square, TMove* list) {
    const u8 colour = board.m_board[square] & (kWhite | kBlack);
    int count = 0;
    for (int i = 0; i < kGeometry.kingCount[square]; ++i) {
        const int target = kGeometry.kingTargets[square][i];
        if (!IsOwn(board.m_board[target], colour))
            list[count++] = MakeMove(square, target);
    }
    if (colour == kWhite && square == kSquareE1)
        count += GetCastlings<kWhite>(board, list + count);
    else if (colour == kBlack && square == kSquareE8)
        count += GetCastlings<kBlack>(board, list + count);
    return count;
}

int GetWhiteMoves(const TChessboard& board, int square, TMove* list) {
    return GetMovesOf<kWhite>(board, square, list);
}

int GetBlackMoves(const TChessboard& board, int square, TMove* list) {
    return GetMovesOf<kBlack>(board, square, list);
}

int GetAllWhiteMoves(const TChessboard& board, TMove* list) {
    return GetAllMovesOf<kWhite>(board, list);
}

int GetAllBlackMoves(const TChessboard& board, TMove* list) {
    return GetAllMovesOf<kBlack>(board, list);
}

int GetWhiteEvasions(const TChessboard& board, TMove* list) {
    return GetEvasionsOf<kWhite>(board, list);
}

int GetBlackEvasions(const TChessboard& board, TMove* list) {
    return GetEvasionsOf<kBlack>(board, list);
}

}  // namespace quillmere
