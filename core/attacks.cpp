// Attack tests by sliders come in two forms. Where the figures of the attacker stand in lists
// (white, lists valid), each slider is asked whether it shares a line with the square: a problem
// has few of them. Otherwise the rays from the square are walked outward, and the figure counts
// tell which rays can be left out.
#include "core/attacks.h"

#include "core/geometry.h"

namespace quillmere {
namespace {

// Does a knight of this code stand a knight's step from the square?
inline bool HasKnightAt(const u8* board, int square, u8 knight) {
    const auto& targets = kGeometry.knightTargets[square];
    int hits = 0;
    for (int i = 0; i < 8; ++i)
        hits += board[targets[i]] == knight ? 1 : 0;
    return hits != 0;
}

// The first figure met from the square in the direction (index of kStep), or -1 for none.
inline int FirstOnRay(const u8* board, int square, int direction) {
    const int step = kStep[direction];
    int target = square;
    for (int left = kGeometry.rayLength[square][direction]; left > 0; --left) {
        target += step;
        if (board[target] != 0)
            return target;
    }
    return -1;
}

// Does a slider of the colour see the square? Rays of a kind are walked only if `kinds` has its bit.
inline bool SeesSquareByRays(const u8* board, int square, u8 colour, u8 kinds) {
    for (int d = 0; d < kDirections; ++d) {
        const u8 bit = kSliderBit[d];
        if ((kinds & bit) == 0)
            continue;
        const int target = FirstOnRay(board, square, d);
        if (target >= 0) {
            const u8 mask = colour | bit;
            if ((board[target] & mask) == mask)
                return true;
        }
    }
    return false;
}

// Kinds of slider (kRook, kBishop bits) that the colour has on the board.
inline u8 WhiteSliderKinds(const TChessboard& board) {
    const u8* c = board.m_counts;
    return static_cast<u8>((c[kWhiteQueens] + c[kWhiteRooks] != 0 ? kRook : 0) |
                           (c[kWhiteQueens] + c[kWhiteBishops] != 0 ? kBishop : 0));
}
inline u8 BlackSliderKinds(const TChessboard& board) {
    const u8* c = board.m_counts;
    return static_cast<u8>((c[kBlackQueens] + c[kBlackRooks] != 0 ? kRook : 0) |
                           (c[kBlackQueens] + c[kBlackBishops] != 0 ? kBishop : 0));
}

inline bool SeesAlongLine(const u8* board, int from, int square, u8 kinds) {
    return (LineBit(from, square) & kinds) != 0 &&
           IsLineClear(board, from, square, LineStep(from, square));
}

// The listed white figures; the lists must be valid. An entry of -1 ends a list.
inline bool ListedFigureSees(const TChessboard& board, int square) {
    const u8* b = board.m_board;
    if (board.m_whiteQueen >= 0 && SeesAlongLine(b, board.m_whiteQueen, square, kQueen))
        return true;
    for (const i8 rook : board.m_whiteRooks) {
        if (rook < 0)
            break;
        if (SeesAlongLine(b, rook, square, kRook))
            return true;
    }
    for (const i8 bishop : board.m_whiteBishops) {
        if (bishop < 0)
            break;
        if (SeesAlongLine(b, bishop, square, kBishop))
            return true;
    }
    for (const i8 knight : board.m_whiteKnights) {
        if (knight < 0)
            break;
        if (IsKnightStep(knight, square))
            return true;
    }
    return false;
}

}  // namespace

bool IsAttackedByWhite(const TChessboard& board, int square) {
    const u8* b = board.m_board;
    if (KingDistance(board.WhiteKingSquare(), square) <= 1)
        return true;
    if (board.m_counts[kWhitePawns] != 0 && square >= 16) {
        if (FileOf(square) > 0 && b[square - 9] == kWhitePawn)
            return true;
        if (FileOf(square) < 7 && b[square - 7] == kWhitePawn)
            return true;
    }
    if (board.m_figureListValid != 0)
        return ListedFigureSees(board, square);
    if (board.m_counts[kWhiteKnights] != 0 && HasKnightAt(b, square, kWhiteKnight))
        return true;
    const u8 kinds = WhiteSliderKinds(board);
    return kinds != 0 && SeesSquareByRays(b, square, kWhite, kinds);
}

bool IsAttackedByBlack(const TChessboard& board, int square) {
    const u8* b = board.m_board;
    if (KingDistance(board.BlackKingSquare(), square) <= 1)
        return true;
    if (board.m_counts[kBlackPawns] != 0 && square < 48) {
        if (FileOf(square) > 0 && b[square + 7] == kBlackPawn)
            return true;
        if (FileOf(square) < 7 && b[square + 9] == kBlackPawn)
            return true;
    }
    if (board.m_counts[kBlackKnights] != 0 && HasKnightAt(b, square, kBlackKnight))
        return true;
    const u8 kinds = BlackSliderKinds(board);
    return kinds != 0 && SeesSquareByRays(b, square, kBlack, kinds);
}

namespace {

// Collects the checkers of a king square.
class CCheckers {
public:
    CCheckers(TAttacker* attackers, int* count) : m_attackers(attackers), m_total(count) {
        if (m_total != nullptr)
            *m_total = 0;
    }
    void Add(int square) {
        m_field = m_field == kNotInCheck ? static_cast<i8>(square) : kDoubleCheck;
        if (m_attackers != nullptr)
            m_attackers[m_count] =
                TAttacker{static_cast<i8>(FileOf(square)), static_cast<i8>(RankOf(square))};
        ++m_count;
        if (m_total != nullptr)
            *m_total = m_count;
    }
    i8 Field() const { return m_field; }

private:
    TAttacker* m_attackers;
    int* m_total;
    int m_count = 0;
    i8 m_field = kNotInCheck;
};

void AddKnightsAndSliders(
    const TChessboard& board, int square, u8 colour, u8 kinds, CCheckers& checkers) {
    const u8* b = board.m_board;
    for (int i = 0; i < kGeometry.knightCount[square]; ++i) {
        const int target = kGeometry.knightTargets[square][i];
        if (b[target] == (colour | kKnight))
            checkers.Add(target);
    }
    for (int d = 0; d < kDirections; ++d) {
        const u8 bit = kSliderBit[d];
        const int target = (kinds & bit) != 0 ? FirstOnRay(b, square, d) : -1;
        const u8 mask = colour | bit;
        if (target >= 0 && (b[target] & mask) == mask)
            checkers.Add(target);
    }
}

}  // namespace

// Twin: GetChecksOnBlackKing.
i8 GetChecksOnWhiteKing(
    const TChessboard& board, int file, int rank, TAttacker* attackers, int* count) {
    CCheckers checkers(attackers, count);
    const int square = SquareAt(file, rank);
    const u8* b = board.m_board;
    if (KingDistance(board.BlackKingSquare(), square) == 1)
        checkers.Add(board.BlackKingSquare());
    if (square < 48) {
        if (file > 0 && b[square + 7] == kBlackPawn)
            checkers.Add(square + 7);
        if (file < 7 && b[square + 9] == kBlackPawn)
            checkers.Add(square + 9);
    }
    AddKnightsAndSliders(board, square, kBlack, BlackSliderKinds(board), checkers);
    return checkers.Field();
}

// Twin: GetChecksOnWhiteKing.
i8 GetChecksOnBlackKing(
    const TChessboard& board, int file, int rank, TAttacker* attackers, int* count) {
    CCheckers checkers(attackers, count);
    const int square = SquareAt(file, rank);
    const u8* b = board.m_board;
    if (KingDistance(board.WhiteKingSquare(), square) == 1)
        checkers.Add(board.WhiteKingSquare());
    if (square >= 16) {
        if (file > 0 && b[square - 9] == kWhitePawn)
            checkers.Add(square - 9);
        if (file < 7 && b[square - 7] == kWhitePawn)
            checkers.Add(square - 7);
    }
    AddKnightsAndSliders(board, square, kWhite, WhiteSliderKinds(board), checkers);
    return checkers.Field();
}

namespace {

// The figure on `square` stands between its king and an enemy slider of the line's kind.
inline bool IsPinned(const u8* board, int king, int square, u8 enemy, u8 enemyKinds) {
    const u8 bit = LineBit(king, square);
    if ((bit & enemyKinds) == 0)
        return false;
    const int step = LineStep(king, square);
    if (!IsLineClear(board, king, square, step))
        return false;
    // Behind the figure: walk on while the square stays on the line from the king.
    int target = square + step;
    while (target >= 0 && target < kSquareCount && LineStep(king, target) == step) {
        const u8 figure = board[target];
        if (figure != 0) {
            const u8 mask = enemy | bit;
            return (figure & mask) == mask;
        }
        target += step;
    }
    return false;
}

}  // namespace

bool IsPinnedToWhiteKing(const TChessboard& board, int square) {
    return IsPinned(
        board.m_board, board.WhiteKingSquare(), square, kBlack, BlackSliderKinds(board));
}

bool IsPinnedToBlackKing(const TChessboard& board, int square) {
    return IsPinned(
        board.m_board, board.BlackKingSquare(), square, kWhite, WhiteSliderKinds(board));
}

namespace {

// Capturers of a square by one colour. pawnLeft and pawnRight are the steps from the square back
// to the pawns that capture on it, in the files to the left and to the right.
template <u8 kColour>
int GetCapturers(const TChessboard& board, int square, u8* list) {
    constexpr bool kIsWhite = kColour == kWhite;
    constexpr int kPawnLeft = kIsWhite ? -9 : 7;
    constexpr int kPawnRight = kIsWhite ? -7 : 9;
    const u8* b = board.m_board;
    const u8* counts = board.m_counts + (kIsWhite ? 0 : 1);
    const int king = kIsWhite ? board.WhiteKingSquare() : board.BlackKingSquare();
    int count = 0;
    const auto add = [&](int from) {
        const bool isPinned =
            kIsWhite ? IsPinnedToWhiteKing(board, from) : IsPinnedToBlackKing(board, from);
        list[count++] = static_cast<u8>(from + (isPinned ? kPinnedMark : 0));
    };
    if (KingDistance(king, square) == 1)
        list[count++] = static_cast<u8>(king);
    if (counts[kWhitePawns] != 0 && (kIsWhite ? square >= 16 : square < 48)) {
        if (FileOf(square) > 0 && b[square + kPawnLeft] == (kColour | kPawn))
            add(square + kPawnLeft);
        if (FileOf(square) < 7 && b[square + kPawnRight] == (kColour | kPawn))
            add(square + kPawnRight);
    }
    if (counts[kWhiteKnights] != 0) {
        for (int i = 0; i < kGeometry.knightCount[square]; ++i) {
            const int from = kGeometry.knightTargets[square][i];
            if (b[from] == (kColour | kKnight))
                add(from);
        }
    }
    const u8 kinds = kIsWhite ? WhiteSliderKinds(board) : BlackSliderKinds(board);
    for (int d = 0; d < kDirections && kinds != 0; ++d) {
        const u8 bit = kSliderBit[d];
        const int from = (kinds & bit) != 0 ? FirstOnRay(b, square, d) : -1;
        const u8 mask = kColour | bit;
        if (from >= 0 && (b[from] & mask) == mask)
            add(from);
    }
    return count;
}

}  // namespace

int GetWhiteCapturers(const TChessboard& board, int file, int rank, u8* list) {
    return GetCapturers<kWhite>(board, SquareAt(file, rank), list);
}

int GetBlackCapturers(const TChessboard& board, int file, int rank, u8* list) {
    return GetCapturers<kBlack>(board, SquareAt(file, rank), list);
}

u8 PickLeastValuable(const TChessboard& board, int count, const u8* list) {
    u8 best = kNoSquare;
    int bestValue = 0;
    for (int i = 0; i < count; ++i) {
        if (list[i] >= kPinnedMark)
            continue;
        const int value = kFigureValues[KindOf(board.m_board[list[i]])];
        if (best == kNoSquare || value < bestValue) {
            best = list[i];
            bestValue = value;
        }
    }
    return best;
}

namespace {

// White attacks the square once the black king has gone there: what stands behind the king on the
// line of a slider that checks it is no shelter.
bool IsGuardedAgainstKing(const TChessboard& board, int square) {
    if (board.m_blackInCheck < 0)
        return IsAttackedByWhite(board, square);
    TChessboard lifted = board;
    lifted.m_board[board.BlackKingSquare()] = 0;
    return IsAttackedByWhite(lifted, square);
}

}  // namespace

bool CanBlackCaptureSafely(const TChessboard& board, int file, int rank, u8* out) {
    const int square = SquareAt(file, rank);
    u8 list[16];
    const int count = GetBlackCapturers(board, file, rank, list);
    for (int i = 0; i < count; ++i) {
        if (list[i] >= kPinnedMark)
            continue;
        if (list[i] == board.BlackKingSquare() && IsGuardedAgainstKing(board, square))
            continue;
        *out = list[i];
        return true;
    }
    return false;
}

bool CanBlackInterpose(const TChessboard& board, int square) {
    const u8* b = board.m_board;
    const u8* counts = board.m_counts;
    const auto canMove = [&](int from) { return !IsPinnedToBlackKing(board, from); };
    if (counts[kBlackPawns] != 0 && square < 48) {
        const int behind = square + 8;
        if (b[behind] == kBlackPawn) {
            if (canMove(behind))
                return true;
        } else if (b[behind] == 0 && RankOf(square) == 4 && b[square + 16] == kBlackPawn &&
                   canMove(square + 16)) {
            return true;
        }
    }
    if (counts[kBlackKnights] != 0) {
        for (int i = 0; i < kGeometry.knightCount[square]; ++i) {
            const int from = kGeometry.knightTargets[square][i];
            if (b[from] == kBlackKnight && canMove(from))
                return true;
        }
    }
    const u8 kinds = BlackSliderKinds(board);
    for (int d = 0; d < kDirections && kinds != 0; ++d) {
        const u8 bit = kSliderBit[d];
        const int from = (kinds & bit) != 0 ? FirstOnRay(b, square, d) : -1;
        const u8 mask = kBlack | bit;
        if (from >= 0 && (b[from] & mask) == mask && canMove(from))
            return true;
    }
    return false;
}

}  // namespace quillmere
