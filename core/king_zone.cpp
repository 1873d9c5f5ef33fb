#include "core/king_zone.h"

#include "core/attacks.h"
#include "core/geometry.h"

#include <bit>

namespace quillmere {
namespace {

bool AttacksOnEmptyBoard(u8 kind, int from, int to) {
    if (kind == kPawn)
        return RankOf(to) == RankOf(from) + 1 && KingDistance(from, to) == 1 &&
               FileOf(to) != FileOf(from);
    return (Relation(from, to) & kind) != 0;
}

TKingZone MakeKingZone() {
    TKingZone zone;
    for (int king = 0; king < kSquareCount; ++king) {
        for (int i = 0; i < kGeometry.kingCount[king]; ++i) {
            const int square = kGeometry.kingTargets[king][i];
            const u8 bit = static_cast<u8>(1 << i);
            zone.bit[king][square] = bit;
            for (int from = 0; from < kSquareCount; ++from) {
                for (const u8 kind : {kKing, kPawn, kBishop, kRook, kQueen, kKnight}) {
                    if (AttacksOnEmptyBoard(kind, from, square))
                        zone.attack[ZoneIndex(kind)][king][from] |= bit;
                }
            }
        }
    }
    return zone;
}

// Takes the black king off the board for the time of a test, so that rays pass through its square.
class CKingLifted {
public:
    explicit CKingLifted(TChessboard& board) : m_square(board.m_board[board.BlackKingSquare()]) {
        m_square = 0;
    }
    ~CKingLifted() { m_square = kBlackKing; }
    CKingLifted(const CKingLifted&) = delete;
    CKingLifted& operator=(const CKingLifted&) = delete;

private:
    u8& m_square;
};

// Squares of `steps`, lowest first: calls visit(square, bit).
template <class Visit>
inline void ForEachStep(int king, u8 steps, Visit visit) {
    for (unsigned left = steps; left != 0; left &= left - 1) {
        const int index = std::countr_zero(left);
        visit(static_cast<int>(kGeometry.kingTargets[king][index]), static_cast<u8>(1 << index));
    }
}

// The steps that the listed white figures attack; the lists must be valid.
u8 AttackedByListed(const TChessboard& board, int king, u8 steps) {
    const u8* b = board.m_board;
    u8 attacked = 0;
    const auto addSlider = [&](u8 kind, int from) {
        const u8 seen = static_cast<u8>(ZoneAttack(kind, king, from) & steps & ~attacked);
        ForEachStep(king, seen, [&](int square, u8 bit) {
            if (IsLineClear(b, from, square, LineStep(from, square)))
                attacked |= bit;
        });
    };
    if (board.m_whiteQueen >= 0)
        addSlider(kQueen, board.m_whiteQueen);
    for (const i8 rook : board.m_whiteRooks) {
        if (rook < 0)
            break;
        addSlider(kRook, rook);
    }
    for (const i8 bishop : board.m_whiteBishops) {
        if (bishop < 0)
            break;
        addSlider(kBishop, bishop);
    }
    for (const i8 knight : board.m_whiteKnights) {
        if (knight < 0)
            break;
        attacked |= ZoneAttack(kKnight, king, knight);
    }
    return attacked;
}

bool IsAttackedByWhitePawn(const u8* board, int square) {
    return square >= 16 && ((FileOf(square) > 0 && board[square - 9] == kWhitePawn) ||
                            (FileOf(square) < 7 && board[square - 7] == kWhitePawn));
}

}  // namespace

const TKingZone kKingZone = MakeKingZone();

u8 SafeKingSteps(TChessboard& board) {
    const int king = board.BlackKingSquare();
    const u8* b = board.m_board;
    u8 steps = 0;
    for (int i = 0; i < kGeometry.kingCount[king]; ++i)
        steps |= static_cast<u8>(IsBlack(b[kGeometry.kingTargets[king][i]]) ? 0 : 1 << i);
    steps &= static_cast<u8>(~ZoneAttack(kKing, king, board.WhiteKingSquare()));
    if (steps == 0)
        return 0;
    const CKingLifted lifted(board);
    if (board.m_figureListValid == 0) {
        ForEachStep(king, steps, [&](int square, u8 bit) {
            if (IsAttackedByWhite(board, square))
                steps &= static_cast<u8>(~bit);
        });
        return steps;
    }
    steps &= static_cast<u8>(~AttackedByListed(board, king, steps));
    if (board.m_counts[kWhitePawns] != 0) {
        ForEachStep(king, steps, [&](int square, u8 bit) {
            if (IsAttackedByWhitePawn(b, square))
                steps &= static_cast<u8>(~bit);
        });
    }
    return steps;
}

}  // namespace quillmere
