// A first move that is plausible deserves a thread of its own: with many of them, a key that is
// sorted behind a hard try is found only when the try is refuted. With a thread for each the key is
// found in its own time.
#include "search/wished_threads.h"

#include "core/geometry.h"
#include "core/king_zone.h"
#include "core/make_move.h"

#include <algorithm>
#include <bit>

namespace quillmere {
namespace {

constexpr int kLongTask = 14;  // half-moves; below it the restart costs more than it gives
constexpr int kMostThreads = 127;

// A black rook sees the square along a file or rank.
bool IsOnLineOfBlackRook(const TChessboard& board, int square) {
    for (int rook = 0; rook < kSquareCount; ++rook) {
        const bool isOnLine = FileOf(rook) == FileOf(square) || RankOf(rook) == RankOf(square);
        if (board.m_board[rook] == kBlackRook && isOnLine && rook != square &&
            IsLineClear(board.m_board, rook, square, LineStep(rook, square)))
            return true;
    }
    return false;
}

// Checks are tried soon anyway, so a third of the quiet moves beyond their number is left out.
int PlausibleMoves(const TThreadQuestion& question) {
    const int surplus = std::max(question.quietMoves - question.checks, 0);
    return question.quietMoves - surplus / 3;
}

// The wish as such, which may be no more than there is.
int Wish(const TThreadQuestion& question) {
    const int threads = question.threads;
    const int plausible = PlausibleMoves(question);
    if (plausible <= threads)
        return plausible == 0 && question.moves > 8 * threads ? threads + threads / 2 : 0;
    if (plausible > 2 * threads)
        return std::min({plausible, (question.hasRookThreat ? 3 : 2) * threads, kMostThreads});
    const int most = 2 * question.processors;
    if (most <= threads)
        return 0;
    const bool isRich = question.hasFigures || question.blackKingMoves >= 2;
    return std::min({isRich ? 2 * threads : 3 * threads / 2, question.moves, most, kMostThreads});
}

}  // namespace

TThreadQuestion AskForThreads(
    TChessboard& root, const TMoveList& list, int quietMoves, int threads, int processors) {
    TThreadQuestion question;
    question.halfMoves = root.m_nMoves;
    question.threads = threads;
    question.moves = list.count;
    question.quietMoves = quietMoves;
    question.processors = processors;
    int men = 0;
    for (const u8 figure : root.m_board)
        men += figure != 0 ? 1 : 0;
    question.hasFigures = men > 2;
    question.blackKingMoves = std::popcount(SafeKingSteps(root));
    int rookThreats = 0;
    for (const TMove move : list) {
        TChessboard child = root;
        child.m_parent = &root;
        if (MakeWhiteMoveLegal(child, move) != kMoveMade || child.m_blackInCheck < 0)
            continue;
        ++question.checks;
        if (child.m_blackInCheck < kSquareCount && IsOnLineOfBlackRook(child, child.m_blackInCheck))
            ++rookThreats;
    }
    question.hasRookThreat = rookThreats == 1 && root.m_whiteInCheck < 0;
    return question;
}

int WishedThreads(const TThreadQuestion& question) {
    if (question.halfMoves < kLongTask)
        return 0;
    const int wish = Wish(question);
    return wish > question.threads ? wish : 0;
}

}  // namespace quillmere
