#include "session/requires.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/text.h"
#include "session/regression_lines.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr int kFirstRequiresSquare = 8;
constexpr int kRequiresWhiteKing = 61;  // f8
constexpr int kRequiresBlackKing = 63;  // h8
constexpr int kMostTablebaseMen = 7;

int CountMen(const TChessboard& board) {
    return static_cast<int>(
        std::ranges::count_if(board.m_board, [](u8 figure) { return figure != 0; }));
}

// The text of a log line without its end, as a reason.
std::string ReasonOf(std::string_view line) {
    return std::string(StripBlanks(line));
}

}  // namespace

std::optional<TChessboard> RequiresBoard(const std::string& letters) {
    TChessboard board{};
    InitBoard(board);
    int square = kFirstRequiresSquare;
    try {
        for (const char letter : letters) {
            const u8 kind = FigureFromLetter(letter);
            if (kind == kKing || square >= kRequiresWhiteKing)
                return std::nullopt;
            board.m_board[square++] =
                static_cast<u8>(kind | (IsUpperLetter(letter) ? kWhite : kBlack));
        }
        board.m_board[kRequiresWhiteKing] = kWhiteKing;
        board.m_board[kRequiresBlackKing] = kBlackKing;
        ValidateBoard(board, true);
    } catch (const ChessException&) {
        return std::nullopt;
    }
    return board;
}

TClauseResult
CheckTableClauses(const TChessProblem& problem, bool allSolutions, ITableAvailability& tables) {
    const auto isMissing = [&](const std::string& letters) {
        const std::optional<TChessboard> board = RequiresBoard(letters);
        return !board || !tables.UseTablesFor(*board);
    };
    TClauseResult result;
    result.allSolutions = allSolutions;
    if (std::ranges::any_of(problem.requires_, isMissing)) {
        result.isSkipped = true;
        result.lines = kRequiresLine;
        result.reason = ReasonOf(kRequiresLine);
        return result;
    }
    if (allSolutions && std::ranges::any_of(problem.allSolutionsRequires, isMissing)) {
        result.allSolutions = false;
        result.lines = kAllSolutionsRequiresLine;
    }
    return result;
}

TClauseResult
CheckTablebaseClauses(const TChessProblem& problem, bool allSolutions, ITablebaseService& service) {
    TClauseResult result;
    result.allSolutions = allSolutions;
    const bool isNeeded = problem.Has(kProblemRequiresSyzygy);
    const bool isNeededForAll = problem.Has(kProblemAllSolutionsRequiresSyzygy);
    if ((!isNeeded && !isNeededForAll) || CountMen(*problem.position) > kMostTablebaseMen ||
        service.HasVerdict(*problem.position))
        return result;
    if (isNeeded) {
        result.isSkipped = true;
        result.lines = kRequiresSyzygyLine;
        result.reason = ReasonOf(kRequiresSyzygyLine);
        return result;
    }
    result.allSolutions = false;
    result.lines = kAllSolutionsRequiresSyzygyLine;
    return result;
}

}  // namespace quillmere
