// Description and position of a problem.
//
// A FEN code must be a legal position, a list of figures need not: that is how positions are kept
// which cannot be solved.

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/text.h"
#include "problems/problem_parts.h"

#include <algorithm>
#include <iterator>

namespace quillmere {
namespace {

// The words and messages of one side's list.
struct TSide {
    u8 colour;
    std::string_view keywords[3];
    EMessage keywordExpected;
    EMessage colonExpected;
    EMessage badFigure;
    EMessage badPosition;
};

constexpr TSide kWhiteSide = {kWhite,
                              {"W", "WH", "WHITE"},
                              EMessage::kWhiteIdentifierExpected,
                              EMessage::kColonAfterWhite,
                              EMessage::kBadWhiteFigure,
                              EMessage::kBadWhitePosition};
constexpr TSide kBlackSide = {kBlack,
                              {"B", "BL", "BLACK"},
                              EMessage::kBlackIdentifierExpected,
                              EMessage::kColonAfterBlack,
                              EMessage::kBadBlackFigure,
                              EMessage::kBadBlackPosition};

bool IsDescriptionKeyword(std::string_view word) {
    return word == "D" || word == "DESC" || word == "DESCRIPTION";
}

void ReadDescription(TReading& reading, TChessProblem& problem) {
    ExpectToken(reading, ":", EMessage::kColonAfterDescription);
    const std::string text = DecodeText(reading, problem, reading.lexer.RestOfLine());
    problem.description = StripBlanks(text);
}

void ReadFen(TReading& reading, TChessProblem& problem) {
    ExpectToken(reading, ":", EMessage::kColonAfterFen);
    const std::string word(reading.lexer.NextFenWord());
    TChessboard board;
    InitBoard(board);
    // A zero byte would end the code before its end.
    const bool isWhole = word.find('\0') == std::string::npos;
    if (!isWhole || !SetFromFENCode(board, word.c_str(), nullptr, nullptr))
        throw ChessException(EMessage::kImproperFenCode);
    problem.SetPosition(board.m_board);
}

void ReadFigure(std::string_view token, const TSide& side, u8* squares) {
    if (token.size() != 2 && token.size() != 3)
        throw ChessException(side.badFigure, {std::string(token)});
    const bool hasLetter = token.size() == 3;
    const std::string_view squareText = token.substr(hasLetter ? 1 : 0);
    const int square = SquareOfToken(squareText);
    if (square == kNoSquare)
        throw ChessException(side.badPosition, {std::string(token)});
    const u8 kind = hasLetter ? FigureFromLetter(token[0]) : kPawn;
    if (squares[square] != 0)
        throw ChessException(EMessage::kSquareOccupied, {std::string(squareText)});
    squares[square] = side.colour | kind;
}

// The next token closes a list without figures.
bool IsListEmpty(TReading& reading) {
    const CProblemLexer::TMark mark = reading.lexer.Mark();
    const std::string word = ToUpper(reading.lexer.NextTokenNoCR(true, false));
    reading.lexer.GoBack(mark);
    return word == "}" || IsMovesKeyword(word) || IsSolutionKeyword(word);
}

void ReadFigures(TReading& reading, const TSide& side, std::string_view keyword, u8* squares) {
    const auto isKeyword = [&](std::string_view word) { return word == keyword; };
    if (std::none_of(std::begin(side.keywords), std::end(side.keywords), isKeyword))
        throw ChessException(side.keywordExpected);
    ExpectToken(reading, ":", side.colonExpected);
    // White has a figure at least, or there is no problem.
    if (side.colour == kBlack && IsListEmpty(reading))
        return;
    for (;;) {
        ReadFigure(reading.lexer.NextIdentifier(), side, squares);
        const CProblemLexer::TMark mark = reading.lexer.Mark();
        if (reading.lexer.NextTokenNoCR(true, false) != ",") {
            reading.lexer.GoBack(mark);
            return;
        }
    }
}

}  // namespace

void ReadPosition(TReading& reading, TChessProblem& problem) {
    std::string keyword = ToUpper(reading.lexer.NextIdentifier());
    if (IsDescriptionKeyword(keyword)) {
        ReadDescription(reading, problem);
        keyword = ToUpper(reading.lexer.NextIdentifier());
    }
    if (keyword == "FEN") {
        ReadFen(reading, problem);
        return;
    }
    u8 squares[kSquareCount] = {};
    ReadFigures(reading, kWhiteSide, keyword, squares);
    ReadFigures(reading, kBlackSide, ToUpper(reading.lexer.NextIdentifier()), squares);
    problem.SetPosition(squares);
}

}  // namespace quillmere
