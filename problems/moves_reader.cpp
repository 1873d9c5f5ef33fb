// Played moves and stated solutions. Both are long notation taken apart into tokens, since the
// lexer knows no moves: "Kd2-d3" is "Kd2", "-", "d3", and "0-0" is "0", "-", "0".

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/rights.h"
#include "core/text.h"
#include "problems/problem_fields.h"
#include "problems/problem_options.h"
#include "problems/problem_parts.h"
#include "problems/save_losses.h"
#include "problems/token_fault.h"

#include <utility>
#include <vector>

namespace quillmere {
namespace {

constexpr std::string_view kCastlingDigit = "0";

bool IsHyphen(std::string_view token) {
    return token == "-" || token == ":";
}

std::string_view NextToken(TReading& reading) {
    return reading.lexer.NextTokenNoCR(true, false);
}

// Takes the token if it comes next.
bool TakeToken(TReading& reading, std::string_view wanted) {
    const CProblemLexer::TMark mark = reading.lexer.Mark();
    if (NextToken(reading) == wanted)
        return true;
    reading.lexer.GoBack(mark);
    return false;
}

// The rest of a castling, whose first digit was read: true for the long one.
bool ReadCastling(TReading& reading, EMessage hyphenExpected, EMessage badDigit) {
    const auto readDigit = [&] {
        const std::string_view digit = NextToken(reading);
        if (digit != kCastlingDigit)
            throw ChessException(badDigit, {std::string(digit)});
    };
    ExpectToken(reading, "-", hyphenExpected);
    readDigit();
    const bool isLong = TakeToken(reading, "-");
    if (isLong)
        readDigit();
    return isLong;
}

TMove CastlingFrom(int kingSquare, bool isLong) {
    return MakeMove(kingSquare, isLong ? kingSquare - 2 : kingSquare + 2);
}

// Played moves

bool CanStartMove(std::string_view token) {
    if (token == kCastlingDigit)
        return true;
    const bool isWord = IsLetter(token.front()) || IsDigit(token.front());
    return isWord && (token.size() == 2 || token.size() == 3) && !IsSolutionKeyword(ToUpper(token));
}

TMove ReadPlainMove(TReading& reading, std::string_view fromToken) {
    const int from = SquareOfToken(fromToken.substr(fromToken.size() - 2));
    if (from == kNoSquare)
        throw ChessException(EMessage::kInvalidFrom, {std::string(fromToken)});
    // The figure is on the board; its letter must only be one.
    if (fromToken.size() == 3)
        FigureFromLetter(fromToken[0]);
    const std::string_view sign = NextToken(reading);
    if (!IsHyphen(sign))
        throw ChessException(EMessage::kInvalidLexem, {std::string(sign)});
    const std::string_view toToken = NextToken(reading);
    const int to = toToken.size() == 3 || toToken.size() == 2 ? SquareOfToken(toToken.substr(0, 2))
                                                              : int{kNoSquare};
    if (to == kNoSquare)
        throw ChessException(EMessage::kInvalidTo, {std::string(toToken)});
    return MakeMove(from, to, toToken.size() == 3 ? FigureFromLetter(toToken[2]) : u8{0});
}

TMove ReadPlayedMove(TReading& reading, const TChessProblem& problem, std::string_view token) {
    if (token != kCastlingDigit)
        return ReadPlainMove(reading, token);
    const bool isLong =
        ReadCastling(reading, EMessage::kHyphenExpected, EMessage::kBadCastlingSymbol);
    return CastlingFrom(problem.currentNode->IsWhiteToMove() ? kSquareE1 : kSquareE8, isLong);
}

void ReadMoves(TReading& reading, TChessProblem& problem) {
    ExpectToken(reading, ":", EMessage::kColonAfterMoves);
    if (const std::string stipulation = StipulationText(problem); !stipulation.empty())
        problem.lostBySave.insert(LostStipulation(stipulation));
    problem.SetStipulation(kNoStipulation, kHalfMovesWithoutStipulation);
    for (;;) {
        const CProblemLexer::TMark mark = reading.lexer.Mark();
        const std::string_view token = NextToken(reading);
        if (!CanStartMove(token)) {
            reading.lexer.GoBack(mark);
            return;
        }
        const TMove move = ReadPlayedMove(reading, problem, token);
        if (problem.playedNodes.size() == kHalfMovesWithoutStipulation)
            throw ChessException(EMessage::kLineTooLong,
                                 {std::to_string(kHalfMovesWithoutStipulation)});
        if (!problem.PlayMove(move))
            throw CTokenFault(ChessException(EMessage::kIllegalMove),
                              reading.decoder.Decode(reading.lexer.Since(mark)));
    }
}

// Solutions

// A square behind the edge by rank is none of the others, and kept; one by file would be read as
// another square.
int SquareOfAnswer(std::string_view token) {
    const int file = ToUpperLetter(token[0]) - 'A';
    if (file < 0 || file >= 8 || !IsDigit(token[1]))
        return -1;
    return static_cast<u8>(file + (token[1] - '1') * 8);
}

TMove ReadPlainAnswer(TReading& reading, std::string_view fromToken) {
    const bool isLong = fromToken.size() == 2 || fromToken.size() == 3;
    const int from = isLong ? SquareOfToken(fromToken.substr(fromToken.size() - 2)) : kNoSquare;
    if (from == kNoSquare)
        throw ChessException(EMessage::kBadAnswerFrom, {std::string(fromToken)});
    if (!IsHyphen(NextToken(reading)))
        throw ChessException(EMessage::kAnswerHyphenExpected);
    const std::string_view toToken = NextToken(reading);
    const int to = toToken.size() == 2 || toToken.size() == 3 ? SquareOfAnswer(toToken) : -1;
    if (to < 0)
        throw ChessException(EMessage::kBadAnswerTo, {std::string(toToken)});
    return MakeMove(from, to, toToken.size() == 3 ? FigureFromLetter(toToken[2]) : u8{0});
}

// White's castling, whichever side moves.
TMove ReadCastlingAnswer(TReading& reading) {
    const bool isLong =
        ReadCastling(reading, EMessage::kAnswerHyphenExpected, EMessage::kBadAnswer);
    const CProblemLexer::TMark mark = reading.lexer.Mark();
    const std::string_view next = NextToken(reading);
    if (next != "}" && next != ",")
        throw ChessException(EMessage::kAnswerCommaExpected, {std::string(next)});
    reading.lexer.GoBack(mark);
    return CastlingFrom(kSquareE1, isLong);
}

std::vector<TMove> ReadAnswers(TReading& reading) {
    ExpectToken(reading, ":", EMessage::kColonAfterAnswer);
    std::vector<TMove> answers;
    const CProblemLexer::TMark mark = reading.lexer.Mark();
    const bool isEmpty = NextToken(reading) == "}";
    reading.lexer.GoBack(mark);
    while (!isEmpty) {
        const std::string_view token = NextToken(reading);
        answers.push_back(token == kCastlingDigit ? ReadCastlingAnswer(reading)
                                                  : ReadPlainAnswer(reading, token));
        if (!TakeToken(reading, ","))
            break;
    }
    return answers;
}

void ReadSolution(TReading& reading, TChessProblem& problem, std::string_view keyword) {
    std::vector<TMove> moves = ReadAnswers(reading);
    if (keyword == "SOLUTION" || keyword == "ANSWER" || keyword == "A") {
        problem.flags |= kProblemHasAnswer;
        problem.answer = std::move(moves);
        return;
    }
    problem.flags |= kProblemHasExpectedSort;
    if (keyword == kWordExpectedSortOnly)
        problem.flags |= kProblemExpectedSortOnly;
    problem.expectedSortWhiteMoves = std::move(moves);
}

}  // namespace

bool IsMovesKeyword(std::string_view word) {
    return word == "MOVES";
}

bool IsSolutionKeyword(std::string_view word) {
    return word == "SOLUTION" || word == "ANSWER" || word == "A" || word == "SWM" ||
           word == kWordExpectedSort || word == kWordExpectedSortOnly;
}

void ReadMovesAndSolution(TReading& reading, TChessProblem& problem) {
    std::string word = ToUpper(NextToken(reading));
    if (IsMovesKeyword(word)) {
        ReadMoves(reading, problem);
        word = ToUpper(NextToken(reading));
    }
    if (IsSolutionKeyword(word)) {
        ReadSolution(reading, problem, word);
        word = NextToken(reading);
    }
    if (word != "}")
        throw ChessException(EMessage::kClosingBracketExpected);
}

}  // namespace quillmere
