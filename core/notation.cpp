// Reading happens in two steps. TextToMove knows only the form of a text; ParseMove then asks
// whether the text describes the figure that stands there ("Improper move description" if not) and
// whether that figure may go there ("Illegal move" if not). The second question is put to the move
// generator and the exact legality test, so that people and search play by one set of rules.

#include "core/notation.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/geometry.h"
#include "core/legality.h"
#include "core/move_generation.h"
#include "core/rights.h"
#include "core/text.h"

#include <cstring>

namespace quillmere {
namespace {

constexpr std::string_view kShortCastling = "0-0";
constexpr std::string_view kLongCastling = "0-0-0";
constexpr std::string_view kNullMoveText = "-";
constexpr std::string_view kNullMoveUci = "0000";

// Length of "e2-e4", a move without the letters at either end.
constexpr std::size_t kSquarePairLength = 5;

bool IsCastlingText(std::string_view text) {
    return text == kShortCastling || text == kLongCastling;
}

// A full description cut into its parts.
struct TDescription {
    std::string_view squares;  // "e2-e4", of kSquarePairLength characters
    char figureLetter = 0;     // as written, 0 for none
    u8 promotion = 0;          // kind, 0 for none
};

TDescription SplitDescription(std::string_view text) {
    TDescription description;
    if (IsLetter(text.back())) {
        description.promotion = FigureFromLetter(text.back());
        text.remove_suffix(1);
    }
    if (text.size() == kSquarePairLength + 1) {
        description.figureLetter = text.front();
        text.remove_prefix(1);
    }
    if (text.size() != kSquarePairLength)
        throw ChessException(EMessage::kImproperStringLength);
    description.squares = text;
    return description;
}

// A letter behind "h" would name a square of the next rank and is refused; a digit outside 1..8
// gives a square outside the board, which the caller sees.
u8 SquareOfDescription(char fileLetter, char rankDigit) {
    const char letter = ToUpperLetter(fileLetter);
    if (letter < 'A' || letter > 'H' || !IsDigit(rankDigit))
        throw ChessException(EMessage::kImproperFullDescription);
    return static_cast<u8>((letter - 'A') + (rankDigit - '1') * 8);
}

// The letter behind a promotion to the kind. King and pawn never occur.
char PromotionLetter(u8 kind) {
    return kind == kPawn ? ' ' : LetterFromFigure(kind);
}

// The move is in the list of its figure and leaves the own king unattacked.
bool IsPlayable(const TChessboard& node, TMove move) {
    // A king never falls; it can stand attacked only where the position came from a task in which
    // the other side moves first.
    if (KindOf(node.m_board[move.to]) == kKing)
        return false;
    TMoveList list;
    list.count = node.IsWhiteToMove() ? GetWhiteMoves(node, move.from, list.moves)
                                      : GetBlackMoves(node, move.from, list.moves);
    for (const TMove candidate : list) {
        if (MovesEqual(candidate, move)) {
            TChessboard parent = node;  // the test hangs a child below it
            return IsLegalMove(parent, move);
        }
    }
    return false;
}

// Candidates of FindPosFrom, of which the first is the result.
struct TCandidates {
    int first = kNoSquare;
    int count = 0;

    void Add(int square) {
        if (count++ == 0)
            first = square;
    }
};

void AddPawnCandidates(const TChessboard& node, u8 colour, int to, TCandidates& candidates) {
    const u8* board = node.m_board;
    const u8 pawn = colour | kPawn;
    const int ahead = colour == kWhite ? 8 : -8;
    const int behind = to - ahead;
    if (behind < 0 || behind >= kSquareCount)
        return;
    const auto addNeighbours = [&] {
        if (FileOf(to) > 0 && board[behind - 1] == pawn)
            candidates.Add(behind - 1);
        if (FileOf(to) < 7 && board[behind + 1] == pawn)
            candidates.Add(behind + 1);
    };
    if (board[to] != 0) {
        addNeighbours();
        return;
    }
    // The pawn that may be taken en passant stands right behind the square that it passed.
    if (DoubleStepSquare(node) == behind && (board[behind] & colour) == 0) {
        addNeighbours();
        return;
    }
    if (board[behind] == pawn) {
        candidates.Add(behind);
        return;
    }
    const bool canBeDoubleStep = RankOf(to) == (colour == kWhite ? 3 : 4);
    if (!canBeDoubleStep || board[behind - ahead] != pawn)
        return;
    if (board[behind] != 0)
        throw ChessException(EMessage::kErrorInFindPosFrom);
    candidates.Add(behind - ahead);
}

void AddLineCandidates(const TChessboard& node, u8 figure, int to, TCandidates& candidates) {
    const u8 kind = KindOf(figure);
    for (int square = 0; square < kSquareCount; ++square) {
        if (node.m_board[square] != figure)
            continue;
        const bool reaches = kind == kKnight
                                 ? IsKnightStep(square, to)
                                 : (LineBit(square, to) & kind) != 0 &&
                                       IsLineClear(node.m_board, square, to, LineStep(square, to));
        if (reaches)
            candidates.Add(square);
    }
}

}  // namespace

// Writing

std::string SquareToText(int square) {
    if (square < 0 || square >= kSquareCount)
        return "??";
    return {static_cast<char>('a' + FileOf(square)), static_cast<char>('1' + RankOf(square))};
}

void MoveToText(TMove move, char* out, u8 figureCode, bool isCapture) {
    std::string text;
    if (move.IsNull()) {
        text = kNullMoveText;
    } else if (IsOnBoard(move)) {
        const int fileSteps = FileOf(move.to) - FileOf(move.from);
        const u8 kind = KindOf(figureCode);
        if (kind == kKing && (fileSteps >= 2 || fileSteps <= -2)) {
            text = FileOf(move.to) == FileOf(kSquareG1) ? kShortCastling : kLongCastling;
        } else {
            if (move.Promotion() == 0 && kind != kPawn)
                text += LetterFromFigure(figureCode);
            text += SquareToText(move.from);
            text += isCapture ? ':' : '-';
            text += SquareToText(move.to);
            if (move.Promotion() != 0)
                text += PromotionLetter(move.Promotion());
        }
    }
    std::memcpy(out, text.c_str(), text.size() + 1);
}

bool IsCapture(const TChessboard& node, TMove move) {
    return node.m_board[move.to] != 0 ||
           (KindOf(node.m_board[move.from]) == kPawn && FileOf(move.from) != FileOf(move.to));
}

std::string MoveToText(const TChessboard& node, TMove move) {
    char text[kMoveTextSize];
    const bool isReal = !move.IsNull() && IsOnBoard(move);
    MoveToText(
        move, text, isReal ? node.m_board[move.from] : u8{0}, isReal && IsCapture(node, move));
    return text;
}

std::string MoveToUci(TMove move) {
    if (move.IsNull())
        return std::string(kNullMoveUci);
    std::string text = SquareToText(move.from) + SquareToText(move.to);
    if (move.Promotion() != 0)
        text += ToLowerLetter(PromotionLetter(move.Promotion()));
    return text;
}

std::string MoveToPlainText(TMove move) {
    std::string text = SquareToText(move.from) + '-' + SquareToText(move.to);
    if (move.Promotion() != 0)
        text += PromotionLetter(move.Promotion());
    return text;
}

// Reading

int String2Square(std::string_view text) {
    if (text.size() >= 2) {
        const char file = ToLowerLetter(text[0]);
        const char rank = text[1];
        if (file >= 'a' && file <= 'h' && rank >= '1' && rank <= '8')
            return SquareAt(file - 'a', rank - '1');
    }
    throw ChessException(EMessage::kBadSquareText, {std::string(text)});
}

void TextToMove(TMove& move, std::string_view text, bool whiteToMove) {
    text = StripBlanks(text);
    if (text.empty())
        throw ChessException(EMessage::kEmptyString);
    if (IsCastlingText(text)) {
        const int home = whiteToMove ? kSquareE1 : kSquareE8;
        move = MakeMove(home, text == kShortCastling ? home + 2 : home - 2);
        return;
    }
    const TDescription description = SplitDescription(text);
    const std::string_view squares = description.squares;
    const u8 from = SquareOfDescription(squares[0], squares[1]);
    const u8 to = SquareOfDescription(squares[3], squares[4]);
    move = MakeMove(from, to, description.promotion);
}

void ParseMove(const TChessboard& node, TMove& move, std::string_view text) {
    text = StripBlanks(text);
    if (text.empty())
        throw ChessException(EMessage::kEmptyString);
    std::size_t captureMark = text.find(':');
    if (captureMark == std::string_view::npos)
        captureMark = text.find('x');
    if (captureMark == 0)
        throw ChessException(EMessage::kImproperMoveDescription);
    if (text.front() != '0' &&
        (text.size() < kSquarePairLength ||
         (captureMark != std::string_view::npos && IsLetter(text[captureMark - 1]))))
        throw ChessException(EMessage::kShortNotation);

    TMove parsed = {};
    TextToMove(parsed, text, node.IsWhiteToMove());
    if (!IsOnBoard(parsed))
        throw ChessException(EMessage::kImproperMoveDescription);

    const u8 colour = node.IsWhiteToMove() ? kWhite : kBlack;
    if (IsCastlingText(text)) {
        // The generator lists a castling only for a king at home; without this test "0-0" could
        // name the move of a queen that stands there.
        if (node.m_board[parsed.from] != (colour | kKing))
            throw ChessException(EMessage::kIllegalMove);
    } else {
        const char letter = SplitDescription(text).figureLetter;
        const u8 kind = letter == 0 ? kPawn : FigureFromLetter(letter);
        if (node.m_board[parsed.from] != (colour | kind) || (node.m_board[parsed.to] & colour) != 0)
            throw ChessException(EMessage::kImproperMoveDescription);
    }
    if (!IsPlayable(node, parsed))
        throw ChessException(EMessage::kIllegalMove);
    move = parsed;
}

int FindPosFrom(const TChessboard& node, u8 figure, int to, int* count) {
    const u8 kind = KindOf(figure);
    if (to < 0 || to >= kSquareCount)
        throw ChessException(EMessage::kErrorInFindPosFrom);
    u8 colour = node.IsWhiteToMove() ? kWhite : kBlack;
    if (figure >= kWhite)
        colour = IsBlack(figure) ? kBlack : kWhite;
    TCandidates candidates;
    switch (kind) {
    case kKing:
        candidates.Add(colour == kWhite ? node.WhiteKingSquare() : node.BlackKingSquare());
        break;
    case kPawn:
        AddPawnCandidates(node, colour, to, candidates);
        break;
    case kQueen:
    case kRook:
    case kBishop:
    case kKnight:
        AddLineCandidates(node, colour | kind, to, candidates);
        break;
    default:
        throw ChessException(EMessage::kErrorInFindPosFrom);
    }
    if (count != nullptr)
        *count = candidates.count;
    return candidates.first;
}

}  // namespace quillmere
