#include "problems/conversion.h"

#include "core/chess_exception.h"
#include "core/colour_swap.h"
#include "core/fen.h"
#include "core/fen_check.h"
#include "core/play_board.h"
#include "problems/problem_fields.h"
#include "problems/save_losses.h"

#include <algorithm>

namespace quillmere {
namespace {

// Entries that are words of the grammar, without a blank, stand in the record as well.
void CopyOthers(const std::set<std::string>& from, std::set<std::string>& to) {
    for (const std::string& entry : from) {
        if (entry.find(' ') != std::string::npos)
            to.insert(entry);
    }
}

}  // namespace

std::string JoinedList(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items)
        text += (text.empty() ? "" : ", ") + item;
    return text;
}

std::string AsOneLine(std::string_view text) {
    std::string line(text);
    for (char& c : line) {
        if (static_cast<unsigned char>(c) < ' ')
            c = ' ';
    }
    return line;
}

void ReadBack(const std::function<void()>& read) {
    try {
        read();
    } catch (const ChessException& fault) {
        throw ChessException(EMessage::kInternalFault, {fault.what()});
    }
}

void AddLosses(const TProblemCollection& original,
               const TProblemCollection& back,
               std::string_view format,
               TConversionRemarks& remarks) {
    for (const auto& [number, problem] : original.problems) {
        const TChessProblem* other = back.Find(number);
        if (other == nullptr)
            continue;
        const std::vector<std::string> fields = DifferentFields(*problem, *other);
        if (!fields.empty())
            remarks.push_back({true,
                               number,
                               0,
                               EMessage::kConvertNotKept,
                               {std::string(format), JoinedList(fields)}});
    }
}

std::vector<std::string> LossesOfReading(const TProblemCollection& collection, ELanguage language) {
    TProblemCollection lost;
    lost.lostBySave = collection.lostBySave;
    for (const auto& [number, problem] : collection.problems) {
        auto shadow = std::make_unique<TChessProblem>();
        shadow->number = number;
        CopyOthers(problem->lostBySave, shadow->lostBySave);
        if (!shadow->lostBySave.empty())
            lost.Insert(std::move(shadow));
    }
    return SaveLossLines(lost, language);
}

bool IsLegal(CPlayBoard& board, TMove move) {
    const std::vector<TMove> legal = board.LegalMoves();
    return std::ranges::any_of(legal, [&](TMove other) { return MovesEqual(other, move); });
}

std::string ReasonNotPlayable(const TChessProblem& problem, ELanguage language) {
    try {
        TChessboard board = *problem.position;
        ValidateBoard(board, true);
        CheckSideNotToMove(board, false);
        const CPlayBoard root(board, false);
        return "";
    } catch (const ChessException& fault) {
        return fault.Text(language);
    }
}

TMove TForeignPosition::ToProblem(TMove move) const {
    return isBlackToMove ? SwapMove(move) : move;
}

TForeignPosition ReadForeignPosition(const std::string& fen) {
    TForeignPosition position;
    InitBoard(position.board);
    position.isBlackToMove = CheckFEN(fen) == ESide::kBlackToMove;
    bool castlingDenied = false;
    bool enPassantGiven = false;
    if (!SetFromFENCode(position.board, fen.c_str(), &castlingDenied, &enPassantGiven))
        throw ChessException(EMessage::kInternalFault, {fen});
    CheckSideNotToMove(position.board, position.isBlackToMove);
    position.hasOtherRights = castlingDenied || enPassantGiven;
    return position;
}

void SetForeignPosition(TChessProblem& problem,
                        const TForeignPosition& position,
                        int line,
                        TConversionRemarks& remarks) {
    u8 squares[kSquareCount];
    for (int square = 0; square < kSquareCount; ++square) {
        if (position.isBlackToMove)
            squares[SwapSquare(square)] = SwapFigure(position.board.m_board[square]);
        else
            squares[square] = position.board.m_board[square];
    }
    problem.SetPosition(squares);
    if (position.isBlackToMove)
        remarks.push_back({false, problem.number, line, EMessage::kConvertSwapped, {}});
    if (position.hasOtherRights)
        remarks.push_back({false, problem.number, line, EMessage::kCastlingNote, {}});
}

void NumberProblem(TChessProblem& problem,
                   i32 wished,
                   int line,
                   const TProblemCollection& collection,
                   TConversionRemarks& remarks) {
    if (wished >= 0 && collection.Find(wished) == nullptr) {
        problem.number = wished;
        return;
    }
    problem.number = collection.NextNumber();
    if (wished >= 0)
        remarks.push_back({false,
                           -1,
                           line,
                           EMessage::kConvertNumberTaken,
                           {std::to_string(wished), std::to_string(problem.number)}});
}

}  // namespace quillmere
