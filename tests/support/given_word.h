// A word of heuristics with parameters drawn at random, as a user might give it.
#pragma once

#include "core/chessboard.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "tests/support/random.h"

#include <vector>

namespace quillmere::test {

constexpr u32 kUnusedBits = 0x100 | 0x10000000 | 0x20000000;

// Numbers of the bits that mean something.
inline std::vector<int> UsedBits() {
    std::vector<int> bits;
    for (int bit = 0; bit < 32; ++bit) {
        if ((kUnusedBits >> bit & 1) == 0)
            bits.push_back(bit);
    }
    return bits;
}

// A word with parameters drawn at random, sensible for the position or not.
class CGivenWord {
public:
    CGivenWord(u32 heur, const TChessboard& board, CRandom& random) {
        m_node = board;
        m_node.m_searchContext = &m_context;
        m_node.m_threadContext = &m_thread;
        m_node.Heur = heur;
        DrawSettings(board, random);
        if ((heur & SH_FINDFORCEDMATE) != 0)
            DrawForcedMate(random);
    }
    CGivenWord(const CGivenWord&) = delete;
    CGivenWord& operator=(const CGivenWord&) = delete;

    TChessboard& Node() { return m_node; }
    THeuristicSettings& Settings() { return m_thread.heuristics; }

private:
    void DrawSettings(const TChessboard& board, CRandom& random) {
        THeuristicSettings& s = m_thread.heuristics;
        const auto toss = [&random] { return random.Chance(50); };
        const auto square = [&random] { return static_cast<u8>(random.Below(kSquareCount)); };
        s.StrictKingMove = toss();
        s.KingMoveExceptions = s.StrictKingMove && toss();
        s.ExtEdgeStrict = toss();
        s.SurroundedStrict = toss();
        s.EdgeSquaresInclCorner = toss();
        s.NearCornerDistance =
            static_cast<i8>(toss() ? random.Between(1, 5) : -random.Between(1, 2));
        s.RelaxAfterCaptures = static_cast<u8>(random.Below(3));
        s.RelaxCapturesCountPawns = toss();
        s.RelaxOnlyExtEdge = toss();
        s.RelaxOnAdvancedPawn = toss();
        s.SkipDeferIfBalanceFixed = toss();
        s.AutomaticDynamicRelax = toss();
        s.DeferCheckMoves = static_cast<u16>(random.Below(4));
        s.LoseFiguresMode = static_cast<u8>(random.Below(3));
        s.LoseFiguresAllowance = static_cast<u8>(random.Below(2));
        s.CaptureKnightParam = static_cast<u8>(random.Below(2));
        s.KeySquare = square();
        s.KeyWhiteFigureSquare = square();
        s.KeyWhiteFigurePinned = square();
        s.ZugzwangTriangleSquares[0] = square();
        s.ZugzwangTriangleSquares[1] = square();
        s.SeaSnakeApproach = square();
        s.SeaSnakeTurnBack = square();
        s.SeaSnakePendulum1 = square();
        s.SeaSnakePendulum2 = square();
        s.SeaSnakeByUser = toss();
        s.BlackFigureOnDiagonal = square();
        s.LessExceptions = toss();
        s.PromotionSafety = toss();
        s.ApplyBlockDynamically = toss();
        s.BlockedFiguresEffective = toss();
        for (int at = 0; at < kSquareCount && s.BlockedFigureCount < kMaxBlockedFigures; ++at) {
            if (!IsBlack(board.m_board[at]) || board.m_board[at] == kBlackKing || toss())
                continue;
            s.BlockedFigureSquares[s.BlockedFigureCount] = static_cast<u8>(at);
            s.BlockedFigureInitialSquares[s.BlockedFigureCount++] = static_cast<u8>(at);
        }
        m_context.KeyLineFile = static_cast<u8>(random.Below(8));
        m_context.KeyDiagonalSquares[0] = square();
        m_context.KeyDiagonalSquares[1] = square();
        m_context.isExact = random.Chance(20);
    }

    void DrawForcedMate(CRandom& random) {
        THeuristicSettings& s = m_thread.heuristics;
        s.FfmMode = static_cast<u8>(random.Between(2, 9));
        s.FfmStartMode = s.FfmMode;
        s.FfmRelaxations = static_cast<u8>(random.Below(10 - s.FfmMode));
        s.FfmWithOther = static_cast<i8>(random.Between(-1, 1));
        s.FfmCustom = random.Chance(30);
        s.FfmCustomRelaxations = static_cast<u8>(random.Below(10 - s.FfmMode));
        s.FfmPreliminary = random.Chance(30);
        s.FfmAddCaptures = random.Chance(50);
    }

    TSearchContext m_context;
    TThreadContext m_thread{2};
    TChessboard m_node{};
};

}  // namespace quillmere::test
