#include "core/chessboard.h"

#include "core/attacks.h"
#include "core/chess_exception.h"
#include "core/figure_lists.h"
#include "core/material.h"
#include "core/search_context.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace quillmere {
namespace {

void ClearFigureLists(TChessboard& board) {
    std::fill_n(board.m_whiteRooks, 2, static_cast<i8>(-1));
    std::fill_n(board.m_whiteBishops, 2, static_cast<i8>(-1));
    std::fill_n(board.m_whiteKnights, 2, static_cast<i8>(-1));
    board.m_whiteQueen = -1;
    board.m_figureListValid = 1;
}

}  // namespace

void EnterWhiteFigure(TChessboard& board, u8 figure, int square) {
    const i8 entry = static_cast<i8>(square);
    const auto enterPair = [&](i8* pair) {
        if (pair[0] < 0)
            pair[0] = entry;
        else if (pair[1] < 0)
            pair[1] = entry;
        else
            board.m_figureListValid = 0;
    };
    switch (figure) {
    case kWhiteQueen:
        if (board.m_whiteQueen < 0)
            board.m_whiteQueen = entry;
        else
            board.m_figureListValid = 0;
        break;
    case kWhiteRook:
        enterPair(board.m_whiteRooks);
        break;
    case kWhiteKnight:
        enterPair(board.m_whiteKnights);
        break;
    case kWhiteBishop:
        // Two bishops of one colour of squares are an overflow.
        if (board.m_whiteBishops[0] >= 0 &&
            SquareParity(board.m_whiteBishops[0]) == SquareParity(square))
            board.m_figureListValid = 0;
        else
            enterPair(board.m_whiteBishops);
        break;
    default:
        break;
    }
}

void InitBoard(TChessboard& board) {
    std::memset(static_cast<void*>(&board), 0, sizeof(board));
    std::fill_n(board.m_trackedFigures, 8, static_cast<i8>(-1));
    ClearFigureLists(board);
    board.m_whiteInCheck = kNotInCheck;
    board.m_blackInCheck = kNotInCheck;
    board.m_pass = kPassHeuristics;
}

bool IsFigureListValid(TChessboard& board) {
    ClearFigureLists(board);
    for (int square = 0; square < kSquareCount && board.m_figureListValid != 0; ++square)
        EnterWhiteFigure(board, board.m_board[square], square);
    return board.m_figureListValid != 0;
}

void ValidateBoard(TChessboard& board, bool clearSearchState) {
    std::fill_n(board.m_counts, static_cast<int>(kCountFields), static_cast<u8>(0));
    ClearFigureLists(board);
    int whiteKings = 0;
    int blackKings = 0;
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 figure = board.m_board[square];
        if (figure == 0)
            continue;
        if (figure == kWhiteKing) {
            ++whiteKings;
            board.m_whiteKingFile = static_cast<i8>(FileOf(square));
            board.m_whiteKingRank = static_cast<i8>(RankOf(square));
            continue;
        }
        if (figure == kBlackKing) {
            ++blackKings;
            board.m_blackKingFile = static_cast<i8>(FileOf(square));
            board.m_blackKingRank = static_cast<i8>(RankOf(square));
            continue;
        }
        const int rank = RankOf(square);
        if (KindOf(figure) == kPawn && (rank == 0 || rank == 7))
            throw ChessException(EMessage::kPawnOnEdgeRank);
        const int count = WhiteCountOf(KindOf(figure));
        const u8 colour = figure & (kWhite | kBlack);
        if (count < 0 || (colour != kWhite && colour != kBlack) || (figure & 0x20) != 0)
            throw ChessException(EMessage::kUnknownFigureCode);
        ++board.m_counts[count + (IsBlack(figure) ? 1 : 0)];
        if (board.m_figureListValid != 0)
            EnterWhiteFigure(board, figure, square);
    }
    if (whiteKings != 1 || blackKings != 1)
        throw ChessException(EMessage::kIllegalKingCount);
    board.m_whiteInCheck =
        GetChecksOnWhiteKing(board, board.m_whiteKingFile, board.m_whiteKingRank, nullptr, nullptr);
    board.m_blackInCheck =
        GetChecksOnBlackKing(board, board.m_blackKingFile, board.m_blackKingRank, nullptr, nullptr);
    board.m_captureState &= kOneColourMask | kCaptureStateKeepMask;
    board.m_searchFlags =
        static_cast<u16>((board.m_searchFlags & ~kSearchEdgeMask) |
                         (EdgeDistance(board.BlackKingSquare()) << kSearchEdgeShift));
    if (board.m_whiteInCheck >= 0 && board.m_blackInCheck >= 0)
        throw ChessException(EMessage::kBothKingsAttacked);
    if (clearSearchState) {
        board.m_positionFlags = 0;
        board.Heur = 0;
    }
}

void SetupAnalysisRoot(TChessboard& board, u16 halfMoves, bool clearSearchState) {
    board.m_nMoves = halfMoves;
    board.m_nRootMoves = halfMoves;
    board.m_parent = nullptr;
    board.m_lastMove = TMove{};
    board.m_searchFlags = kSearchFresh;
    ValidateBoard(board, clearSearchState);
    if (clearSearchState)
        board.HeurParams = 0;
    if (board.IsWhiteToMove() && board.m_blackInCheck >= 0)
        throw ChessException(EMessage::kBlackKingCheckedInMateTask);
    if (!board.IsWhiteToMove() && board.m_whiteInCheck >= 0)
        throw ChessException(EMessage::kWhiteKingCheckedInDefenceTask);
    const int bound = std::max(UpperBoundOfWhiteMoves(board), UpperBoundOfBlackMoves(board));
    if (bound > kMaxMoves)
        throw ChessException(EMessage::kTooManyMoves,
                             {std::to_string(bound), std::to_string(kMaxMoves)});
    board.m_positionFlags &= static_cast<u16>(~kPositionBareKing);
    if (IsBlackBare(board))
        board.m_positionFlags |= kPositionBareKing;
    if (board.m_searchContext != nullptr)
        board.m_searchContext->ResetAnalysis();
}

}  // namespace quillmere
