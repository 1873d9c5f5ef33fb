// The white king on an island.
//
// A king that walks through a gap in a chain of black pawns may find the gap closed behind it by the
// next pawn's step. The question is asked of one square: the king is put there, a black pawn on it is
// taken, and each black pawn near it is pushed in turn. If after one of these pushes the king cannot
// get back to where it came from, cannot take anything, and has less than half of the squares that it
// could walk on before, it is caught.
//
// The pawns are those of the king's new file and of the two files beside it, in each rank its own
// file first, from the bottom of the files to their end: only they can change what the king may enter
// next to it. Every step that the rules allow is tried, the double step too. Nothing moves but the
// one pawn and then the king, so that the answer says nothing about what black's figures or white's
// other men could change; that is what makes it cheap.
//
// All of it happens on a copy on the stack. No rule of the heuristics is asked on it: what is tested
// is walking, and SH_DONTLETFIGUREUNBLOCK, which might forbid the very push, must not be heard.
#include "heuristics/island.h"

#include "core/attacks.h"
#include "core/chess_exception.h"
#include "core/legality.h"
#include "core/move_generation.h"
#include "heuristics/heur_params.h"
#include "heuristics/king_walk.h"

#include <algorithm>

namespace quillmere {
namespace {

// What the king has left after the push, against what it had: fewer than one in so many is an island.
constexpr int kShareLeft = 2;

// The copy on which the king has walked to the square; black is to move.
class CIslandTrial {
public:
    CIslandTrial(const TChessboard& node, int square)
        : m_home(node.WhiteKingSquare()),
          m_landSize(std::popcount(KingRegion(m_home, SafeForWhiteKing(node)))),
          m_node(node) {
        m_node.Heur &= ~u32{SH_DONTLETFIGUREUNBLOCK};
        ComputeHeurParams(m_node);
        PutKing(square);
    }

    bool IsAttacked() const { return IsAttackedByBlack(m_node, m_node.WhiteKingSquare()); }

    bool IsCaughtByPush(int pawn) {
        TMove pushes[kMoveListSize];
        const int count = GetPawnMoves(m_node, pawn, pushes);
        return std::any_of(pushes, pushes + count, [this](TMove push) {
            return FileOf(push.from) == FileOf(push.to) && IsLegalMove(m_node, push) &&
                   IsCaughtAfter(push);
        });
    }

private:
    void PutKing(int square) {
        if (m_node.m_board[square] == kBlackPawn)
            --m_node.m_counts[kBlackPawns];
        m_node.m_board[m_home] = 0;
        m_node.m_board[square] = kWhiteKing;
        m_node.m_whiteKingFile = static_cast<i8>(FileOf(square));
        m_node.m_whiteKingRank = static_cast<i8>(RankOf(square));
        m_node.m_whiteInCheck = kNotInCheck;
        int count = 0;
        TAttacker attackers[16];
        m_node.m_blackInCheck = GetChecksOnBlackKing(
            m_node, m_node.m_blackKingFile, m_node.m_blackKingRank, attackers, &count);
        // The king came from elsewhere: nothing can be taken in passing.
        m_node.m_lastMove = MakeMove(m_home, square);
        m_node.m_nMoves = kBlackToMove;
    }

    bool IsCaughtAfter(TMove push) const {
        TChessboard after = m_node;
        after.m_board[push.from] = 0;
        after.m_board[push.to] =
            push.Promotion() != 0 ? static_cast<u8>(kBlack | push.Promotion()) : kBlackPawn;
        const TSquareSet land = KingRegion(after.WhiteKingSquare(), SafeForWhiteKing(after));
        TSquareSet white = 0;
        TSquareSet black = 0;
        TakeMen(after.m_board, &white, &black);
        return (land & SetOf(m_home)) == 0 && (land & black) == 0 &&
               std::popcount(land) * kShareLeft < m_landSize;
    }

    static constexpr u16 kBlackToMove = 2;

    int m_home;
    int m_landSize;
    TChessboard m_node;
};

}  // namespace

bool CanWhiteKingBeCaughtOnAnIsland(TChessboard& node, int file, int rank) {
    const int square = SquareAt(file, rank);
    if (node.m_board[square] != 0 && node.m_board[square] != kBlackPawn)
        throw ChessException(EMessage::kIslandSquareTaken);
    CIslandTrial trial(node, square);
    if (trial.IsAttacked())
        return false;
    constexpr int kFirstPawnRank = 1;
    constexpr int kLastPawnRank = 6;
    for (int r = kFirstPawnRank; r <= kLastPawnRank; ++r) {
        for (const int f : {file, file - 1, file + 1}) {
            if (f < 0 || f > 7 || SquareAt(f, r) == square)
                continue;
            if (node.m_board[SquareAt(f, r)] == kBlackPawn && trial.IsCaughtByPush(SquareAt(f, r)))
                return true;
        }
    }
    return false;
}

}  // namespace quillmere
