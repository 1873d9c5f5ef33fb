#include "core/fen_check.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/geometry.h"
#include "core/notation.h"
#include "core/text.h"

#include <string>
#include <vector>

namespace quillmere {
namespace {

constexpr int kMaxFields = 6;

[[noreturn]] void Fail(EMessage id, std::vector<std::string> values = {}) {
    throw ChessException(id, std::move(values));
}

std::vector<std::string_view> SplitFields(std::string_view text) {
    std::vector<std::string_view> fields;
    std::size_t i = 0;
    while (i < text.size()) {
        if (IsBlank(text[i])) {
            ++i;
            continue;
        }
        const std::size_t begin = i;
        while (i < text.size() && !IsBlank(text[i]))
            ++i;
        fields.push_back(text.substr(begin, i - begin));
    }
    return fields;
}

// The character at an index as it stands in the text, whole if it is of several bytes (UTF-8).
std::string CharacterAt(std::string_view text, std::size_t index) {
    std::size_t end = index + 1;
    while (end < text.size() && (static_cast<u8>(text[end]) & 0xc0) == 0x80)
        ++end;
    return std::string(text.substr(index, end - index));
}

bool IsFigureLetter(char c) {
    try {
        FigureFromLetter(c);
        return true;
    } catch (const ChessException&) {
        return false;
    }
}

// Reads the board field; the figures go to `board`.
void ReadBoardField(std::string_view field, u8* board) {
    int rank = 8;
    int files = 0;
    for (std::size_t i = 0; i <= field.size(); ++i) {
        if (i == field.size() || field[i] == '/') {
            if (files != 8)
                Fail(EMessage::kFenRankTooShort, {std::to_string(rank), std::to_string(files)});
            --rank;
            files = 0;
            if (rank == 0 && i < field.size())
                Fail(EMessage::kFenTooManyRanks, {std::to_string(i + 1)});
            continue;
        }
        const char c = field[i];
        const auto place = [&] {
            return std::vector<std::string>{
                std::to_string(rank), std::to_string(i + 1), CharacterAt(field, i)};
        };
        int width = 1;
        if (IsDigit(c)) {
            if (c == '0' || c == '9')
                Fail(EMessage::kFenBadDigit, place());
            width = c - '0';
        } else if (!IsLetter(c) || !IsFigureLetter(c)) {
            Fail(EMessage::kFenBadCharacter, place());
        }
        if (files + width > 8)
            Fail(EMessage::kFenRankTooLong, place());
        if (IsLetter(c)) {
            const u8 colour = IsUpperLetter(c) ? kWhite : kBlack;
            board[SquareAt(files, rank - 1)] = static_cast<u8>(FigureFromLetter(c) | colour);
        }
        files += width;
    }
    if (rank != 0)
        Fail(EMessage::kFenTooFewRanks, {std::to_string(8 - rank)});
}

ESide ReadSideField(std::string_view field) {
    if (field == "w")
        return ESide::kWhiteToMove;
    if (field == "b")
        return ESide::kBlackToMove;
    Fail(EMessage::kFenBadSide, {std::string(field)});
}

bool IsCastlingField(std::string_view field) {
    if (field == "-")
        return true;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (std::string_view("KQkq").find(field[i]) == std::string_view::npos ||
            field.find(field[i], i + 1) != std::string_view::npos)
            return false;
    }
    return true;
}

// Either case of the file letter is read, as the program itself writes an upper-case one.
bool IsEnPassantField(std::string_view field) {
    if (field == "-")
        return true;
    if (field.size() != 2)
        return false;
    const char file = ToUpperLetter(field[0]);
    return file >= 'A' && file <= 'H' && (field[1] == '3' || field[1] == '6');
}

bool IsCounter(std::string_view field) {
    for (const char c : field) {
        if (!IsDigit(c))
            return false;
    }
    return field.size() <= 6;
}

void CheckMen(const u8* board) {
    std::vector<int> whiteKings;
    std::vector<int> blackKings;
    for (int square = 0; square < kSquareCount; ++square) {
        const u8 figure = board[square];
        const bool isEdgeRank = RankOf(square) == 0 || RankOf(square) == 7;
        if (KindOf(figure) == kPawn && isEdgeRank)
            Fail(EMessage::kFenPawnOnEdge, {SquareToText(square)});
        if (figure == kWhiteKing)
            whiteKings.push_back(square);
        else if (figure == kBlackKing)
            blackKings.push_back(square);
    }
    if (whiteKings.size() != 1)
        Fail(EMessage::kFenWhiteKings, {std::to_string(whiteKings.size())});
    if (blackKings.size() != 1)
        Fail(EMessage::kFenBlackKings, {std::to_string(blackKings.size())});
    if (KingDistance(whiteKings[0], blackKings[0]) == 1)
        Fail(EMessage::kFenKingsAdjacent,
             {SquareToText(whiteKings[0]), SquareToText(blackKings[0])});
}

}  // namespace

ESide CheckFEN(std::string_view text) {
    const std::vector<std::string_view> fields = SplitFields(text);
    if (fields.empty())
        Fail(EMessage::kFenEmpty);
    TChessboard board{};
    InitBoard(board);
    ReadBoardField(fields[0], board.m_board);
    const ESide side = fields.size() > 1 ? ReadSideField(fields[1]) : ESide::kNotSaid;
    if (fields.size() > 2 && !IsCastlingField(fields[2]))
        Fail(EMessage::kFenBadCastling, {std::string(fields[2])});
    if (fields.size() > 3 && !IsEnPassantField(fields[3]))
        Fail(EMessage::kFenBadEnPassant, {std::string(fields[3])});
    for (std::size_t i = 4; i < fields.size() && i < kMaxFields; ++i) {
        if (!IsCounter(fields[i]))
            Fail(EMessage::kFenBadCounter, {std::to_string(i + 1), std::string(fields[i])});
    }
    if (fields.size() > kMaxFields)
        Fail(EMessage::kFenTooManyFields, {std::string(fields[kMaxFields])});
    CheckMen(board.m_board);
    ValidateBoard(board, true);
    if (side != ESide::kNotSaid)
        CheckSideNotToMove(board, side == ESide::kBlackToMove);
    return side;
}

void CheckSideNotToMove(const TChessboard& board, bool isBlackToMove) {
    if (isBlackToMove && board.m_whiteInCheck != kNotInCheck)
        Fail(EMessage::kFenWhiteInCheck, {SquareToText(board.WhiteKingSquare())});
    if (!isBlackToMove && board.m_blackInCheck != kNotInCheck)
        Fail(EMessage::kFenBlackInCheck, {SquareToText(board.BlackKingSquare())});
}

}  // namespace quillmere
