// The mate test of the whole search, and the count of the black king's flights.
//
// Idea: a black side in check is mated unless the king has a safe step, or the only checker can be
// taken by an unpinned man, or, if it is a distant slider, its line can be closed, or it is a pawn
// that can be taken en passant. No move is made for any of this: a pinned man can never resolve a
// check by another man, and an unpinned one always may leave its square.
//
// En passant never closes a line: the capturing pawn lands on the file of the pawn it takes, one
// square behind it, and a check discovered by a double step runs through the square that the
// pawn left, along a rank or a diagonal.
#include "core/attacks.h"
#include "core/geometry.h"
#include "core/king_zone.h"
#include "core/move_generation.h"
#include "core/rights.h"

#include <algorithm>
#include <bit>

namespace quillmere {
namespace {

// An en passant capture of the checking pawn that leaves the black king safe. Two men leave the
// capturer's rank at once, which no pin test sees, so the capture is played out on the squares.
bool CanCaptureEnPassant(TChessboard& board, int checker) {
    if (RankOf(checker) != 3 || DoubleStepSquare(board) != checker)
        return false;
    u8* b = board.m_board;
    const auto isSafe = [&](int from) {
        const int to = checker - 8;
        b[from] = 0;
        b[checker] = 0;
        b[to] = kBlackPawn;
        const bool isKingSafe = !IsAttackedByWhite(board, board.BlackKingSquare());
        b[from] = kBlackPawn;
        b[checker] = kWhitePawn;
        b[to] = 0;
        return isKingSafe;
    };
    return (FileOf(checker) > 0 && b[checker - 1] == kBlackPawn && isSafe(checker - 1)) ||
           (FileOf(checker) < 7 && b[checker + 1] == kBlackPawn && isSafe(checker + 1));
}

}  // namespace

bool BlackHasEvasion(TChessboard& board) {
    if (SafeKingSteps(board) != 0)
        return true;
    const int checker = board.m_blackInCheck;
    if (checker == kDoubleCheck)
        return false;
    const u8* b = board.m_board;
    const int king = board.BlackKingSquare();
    u8 capturers[16];
    const int count = GetBlackCapturers(board, FileOf(checker), RankOf(checker), capturers);
    for (int i = 0; i < count; ++i) {
        if (capturers[i] < kPinnedMark && capturers[i] != king)
            return true;
    }
    const u8 kind = KindOf(b[checker]);
    if ((kind & kQueen) != 0) {
        const int step = LineStep(king, checker);
        for (int square = king + step; square != checker; square += step) {
            if (CanBlackInterpose(board, square))
                return true;
        }
        return false;
    }
    return kind == kPawn && CanCaptureEnPassant(board, checker);
}

int CountFlights(TChessboard& board, int limit) {
    return std::min(std::popcount(SafeKingSteps(board)), limit);
}

}  // namespace quillmere
