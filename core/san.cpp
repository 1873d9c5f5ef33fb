#include "core/san.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/legality.h"
#include "core/notation.h"
#include "core/text.h"

#include <string>

namespace quillmere {
namespace {

// What the text says of the move; -1 and 0 where it says nothing.
struct TPattern {
    bool isCastling = false;
    bool isKingSide = false;
    u8 kind = kPawn;
    int fromFile = -1;
    int fromRank = -1;
    int to = -1;
    u8 promotion = 0;
};

constexpr bool IsFileLetter(char c) {
    return c >= 'a' && c <= 'h';
}
constexpr bool IsRankDigit(char c) {
    return c >= '1' && c <= '8';
}

std::string_view StripMarks(std::string_view text) {
    for (bool again = true; again;) {
        again = false;
        text = StripBlanks(text);
        for (const std::string_view mark : {"e.p.", "ep", "+", "#", "!", "?"}) {
            if (text.ends_with(mark)) {
                text.remove_suffix(mark.size());
                again = true;
            }
        }
    }
    return text;
}

bool ReadCastling(std::string_view text, TPattern& pattern) {
    if (text != "O-O" && text != "0-0" && text != "O-O-O" && text != "0-0-0")
        return false;
    pattern.isCastling = true;
    pattern.kind = kKing;
    pattern.isKingSide = text.size() == 3;
    return true;
}

// Cuts "=Q", "(Q)", "/Q" or a plain letter behind the rank off the end. A false result means that
// something stands there that is no promotion.
bool ReadPromotion(std::string_view& text, TPattern& pattern) {
    if (text.size() > 3 && text.ends_with(")") && text[text.size() - 3] == '(')
        text.remove_suffix(1);
    if (text.empty() || !IsLetter(text.back()))
        return true;
    try {
        pattern.promotion = FigureFromLetter(text.back());
    } catch (const ChessException&) {
        return false;
    }
    text.remove_suffix(1);
    if (!text.empty() && (text.back() == '=' || text.back() == '(' || text.back() == '/'))
        text.remove_suffix(1);
    return pattern.promotion != kKing && pattern.promotion != kPawn;
}

// Reads the figure, the origin as far as it is told, and the destination.
bool ReadSquares(std::string_view text, TPattern& pattern) {
    if (!text.empty() && IsUpperLetter(text.front())) {
        try {
            pattern.kind = FigureFromLetter(text.front());
        } catch (const ChessException&) {
            return false;
        }
        text.remove_prefix(1);
    }
    if (text.size() < 2 || !IsFileLetter(text[text.size() - 2]) || !IsRankDigit(text.back()))
        return false;
    pattern.to = SquareAt(text[text.size() - 2] - 'a', text.back() - '1');
    text.remove_suffix(2);
    if (!text.empty() && (text.back() == 'x' || text.back() == ':' || text.back() == '-'))
        text.remove_suffix(1);
    if (!text.empty() && IsFileLetter(text.front())) {
        pattern.fromFile = text.front() - 'a';
        text.remove_prefix(1);
    }
    if (!text.empty() && IsRankDigit(text.front())) {
        pattern.fromRank = text.front() - '1';
        text.remove_prefix(1);
    }
    return text.empty();
}

bool Fits(const TPattern& pattern, const TChessboard& node, TMove move) {
    if (KindOf(node.m_board[move.from]) != pattern.kind)
        return false;
    const int fileStep = FileOf(move.to) - FileOf(move.from);
    const bool isCastling = pattern.kind == kKing && (fileStep == 2 || fileStep == -2);
    if (pattern.isCastling || isCastling)
        return pattern.isCastling && isCastling && pattern.isKingSide == (fileStep == 2);
    return move.to == pattern.to && move.Promotion() == pattern.promotion &&
           (pattern.fromFile < 0 || pattern.fromFile == FileOf(move.from)) &&
           (pattern.fromRank < 0 || pattern.fromRank == RankOf(move.from));
}

// As much of the origin as tells the move from those of other figures of its kind: nothing, the file,
// the rank or both.
std::string OriginText(TChessboard& node, TMove move) {
    TMoveList legal;
    legal.count = GetLegalMoves(node, legal.moves);
    bool isAlone = true;
    bool isFileShared = false;
    bool isRankShared = false;
    for (const TMove other : legal) {
        if (other.to != move.to || other.from == move.from ||
            node.m_board[other.from] != node.m_board[move.from])
            continue;
        isAlone = false;
        isFileShared |= FileOf(other.from) == FileOf(move.from);
        isRankShared |= RankOf(other.from) == RankOf(move.from);
    }
    const std::string square = SquareToText(move.from);
    if (isAlone)
        return "";
    if (!isFileShared)
        return square.substr(0, 1);
    return isRankShared ? square : square.substr(1);
}

}  // namespace

TMove ReadShortMove(TChessboard& node, std::string_view text) {
    const std::string written(StripBlanks(text));
    std::string_view rest = StripMarks(text);
    TPattern pattern;
    if (!ReadCastling(rest, pattern) &&
        (!ReadPromotion(rest, pattern) || !ReadSquares(rest, pattern)))
        throw ChessException(EMessage::kMoveNotUnderstood, {written});

    TMoveList legal;
    legal.count = GetLegalMoves(node, legal.moves);
    TMove found = {};
    std::string names;
    int count = 0;
    for (const TMove move : legal) {
        if (!Fits(pattern, node, move))
            continue;
        found = move;
        ++count;
        names += (names.empty() ? "" : ", ") + MoveToText(node, move);
    }
    if (count == 0)
        throw ChessException(EMessage::kMoveNotLegal, {written});
    if (count > 1)
        throw ChessException(EMessage::kMoveAmbiguous, {written, names});
    return found;
}

std::string WriteShortMove(TChessboard& node, TMove move) {
    const u8 kind = KindOf(node.m_board[move.from]);
    const int fileStep = FileOf(move.to) - FileOf(move.from);
    if (kind == kKing && (fileStep == 2 || fileStep == -2))
        return fileStep > 0 ? "O-O" : "O-O-O";
    const bool isCapture = IsCapture(node, move);
    std::string text;
    if (kind != kPawn)
        text = LetterFromFigure(kind) + OriginText(node, move);
    else if (isCapture)
        text = SquareToText(move.from).substr(0, 1);
    text += isCapture ? "x" : "";
    text += SquareToText(move.to);
    if (move.Promotion() != 0)
        text += std::string("=") + LetterFromFigure(move.Promotion());
    return text;
}

}  // namespace quillmere
