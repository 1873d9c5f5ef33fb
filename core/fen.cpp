// A text is read into a board of its own and copied back only when everything was right, so that
// a faulty text never leaves a half-set board behind.

#include "core/fen.h"

#include "core/chess_exception.h"
#include "core/rights.h"
#include "core/text.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace quillmere {
namespace {

// Shown for a code that is none of the twelve. Lower case for either colour: a lower-case "e"
// occurs nowhere else in a FEN code written here, so that a search for it finds a damaged board.
constexpr char kNoFigureLetter = 'e';

// Bits of DerivedCastlingRights, and the letters of the castling field in their order
constexpr char kRightLetters[] = {'K', 'Q', 'k', 'q'};
constexpr int kAllRights = 15;

// A single byte outside ASCII is no text in UTF-8, and a control byte would spoil the line.
std::string ShownLetter(char letter) {
    if (letter > ' ' && letter <= '~')
        return {letter};
    constexpr char kDigits[] = "0123456789abcdef";
    const u8 byte = static_cast<u8>(letter);
    return {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
}

char BoardLetter(u8 figure) {
    const u8 colour = figure & static_cast<u8>(~kKindMask);
    const char letter = LetterFromFigure(figure);
    if (letter == 'E' || (colour != kWhite && colour != kBlack))
        return kNoFigureLetter;
    return colour == kWhite ? letter : ToLowerLetter(letter);
}

std::string BoardField(const TChessboard& board) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        int emptyRun = 0;
        const auto closeRun = [&] {
            if (emptyRun > 0)
                text += static_cast<char>('0' + emptyRun);
            emptyRun = 0;
        };
        for (int file = 0; file < 8; ++file) {
            const u8 figure = board.m_board[SquareAt(file, rank)];
            if (figure == 0) {
                ++emptyRun;
            } else {
                closeRun();
                text += BoardLetter(figure);
            }
        }
        closeRun();
        if (rank > 0)
            text += '/';
    }
    return text;
}

std::string CastlingField(const TChessboard& board) {
    const int rights = DerivedCastlingRights(board);
    std::string text;
    for (int i = 0; i < 4; ++i) {
        if ((rights >> i & 1) != 0)
            text += kRightLetters[i];
    }
    return text.empty() ? "-" : text;
}

std::string EnPassantField(const TChessboard& board) {
    const int pawn = DoubleStepSquare(board);
    if (pawn == kNoSquare)
        return "-";
    // With white to move it was black that stepped, downwards.
    const int passed = board.IsWhiteToMove() ? pawn + 8 : pawn - 8;
    return {static_cast<char>('A' + FileOf(passed)), static_cast<char>('1' + RankOf(passed))};
}

// Cuts the first field off the text and the blanks behind it.
std::string_view TakeField(std::string_view& text) {
    std::size_t length = 0;
    while (length < text.size() && !IsBlank(text[length]))
        ++length;
    const std::string_view field = text.substr(0, length);
    text = StripBlanks(text.substr(length));
    return field;
}

// Reads one rank into eight squares; false if it does not fill exactly eight files. Throws on an
// unknown figure letter.
bool ReadRank(std::string_view text, u8* squares) {
    int file = 0;
    for (const char c : text) {
        if (c >= '1' && c <= '8') {
            file += c - '0';
        } else if (IsLetter(c)) {
            const u8 colour = IsUpperLetter(c) ? kWhite : kBlack;
            const u8 figure = colour | FigureFromLetter(c);
            if (file < 8)
                squares[file] = figure;
            ++file;
        } else {
            return false;
        }
        if (file > 8)
            return false;
    }
    return file == 8;
}

// Rights that the fields behind the board name, as bits of DerivedCastlingRights. The letters
// count wherever they stand.
int NamedRights(std::string_view fields) {
    int rights = 0;
    for (int i = 0; i < 4; ++i) {
        if (fields.find(kRightLetters[i]) != std::string_view::npos)
            rights |= 1 << i;
    }
    return rights;
}

}  // namespace

bool ReadBoardSquares(std::string_view text, u8* squares) {
    for (int rank = 7; rank >= 0; --rank) {
        const std::size_t end = text.find('/');
        // Every rank but the last ends in a slash, and only these.
        if ((end == std::string_view::npos) != (rank == 0)) {
            // The fault may stand behind an unknown letter, which is reported first.
            ReadRank(text.substr(0, end), squares + SquareAt(0, rank));
            return false;
        }
        if (!ReadRank(text.substr(0, end), squares + SquareAt(0, rank)))
            return false;
        if (rank > 0)
            text.remove_prefix(end + 1);
    }
    return true;
}

u8 FigureFromLetter(char letter) {
    switch (ToUpperLetter(letter)) {
    case 'K':
        return kKing;
    case 'P':
        return kPawn;
    case 'Q':
    case 'H':
        return kQueen;
    case 'R':
    case 'W':
        return kRook;
    case 'B':
    case 'G':
        return kBishop;
    case 'N':
    case 'S':
        return kKnight;
    default:
        throw ChessException(EMessage::kUnknownFigureLetter, {ShownLetter(letter)});
    }
}

char LetterFromFigure(u8 figure) {
    switch (KindOf(figure)) {
    case kKing:
        return 'K';
    case kPawn:
        return 'P';
    case kQueen:
        return 'Q';
    case kRook:
        return 'R';
    case kBishop:
        return 'B';
    case kKnight:
        return 'N';
    default:
        return 'E';
    }
}

std::string GetFENCode(const TChessboard& board, bool boardOnly, u16 moveNumber) {
    std::string text = BoardField(board);
    if (boardOnly)
        return text;
    text += board.IsWhiteToMove() ? " w " : " b ";
    text += CastlingField(board);
    text += ' ';
    text += EnPassantField(board);
    text += " 0 ";
    // A board outside of an analysis may have fewer half-moves at its root than it has itself.
    text += std::to_string(moveNumber != 0 ? moveNumber : std::max(board.Ply(), 0) / 2 + 1);
    return text;
}

void GetFENCode(const TChessboard& board, char* out, bool boardOnly, u16 moveNumber) {
    const std::string text = GetFENCode(board, boardOnly, moveNumber);
    std::memcpy(out, text.c_str(), text.size() + 1);
}

bool SetFromFENCode(TChessboard& board,
                    const char* text,
                    bool* castlingDenied,
                    bool* enPassantGiven) {
    if (text == nullptr)
        return false;
    std::string_view fields = StripBlanks(text);
    const std::string_view boardField = TakeField(fields);
    const int namedRights = fields.empty() ? kAllRights : NamedRights(fields);
    TakeField(fields);  // side to move
    TakeField(fields);  // castling
    const std::string_view enPassantField = TakeField(fields);

    // A brace marks the text of a whole problem, which has slashes of its own.
    if (boardField.find('{') != std::string_view::npos ||
        boardField.find('/') == std::string_view::npos)
        return false;

    TChessboard scratch = board;
    std::memset(scratch.m_board, 0, sizeof(scratch.m_board));
    if (!ReadBoardSquares(boardField, scratch.m_board))
        return false;
    try {
        ValidateBoard(scratch, true);
    } catch (const ChessException&) {
        // The text counts as no FEN code; the reason is of no use to who asks "is this one?".
        return false;
    }

    // What was read has no history: its rights are those of a root of its own.
    scratch.m_parent = nullptr;
    scratch.m_threadContext = nullptr;
    const int derivedRights = DerivedCastlingRights(scratch);
    scratch.m_parent = board.m_parent;
    scratch.m_threadContext = board.m_threadContext;
    board = scratch;

    if (castlingDenied != nullptr && (derivedRights & ~namedRights) != 0)
        *castlingDenied = true;
    if (enPassantGiven != nullptr && !enPassantField.empty() && enPassantField.front() != '-')
        *enPassantGiven = true;
    return true;
}

bool IsValidFENCode(const char* text) {
    TChessboard scratch = {};
    InitBoard(scratch);
    try {
        return SetFromFENCode(scratch, text, nullptr, nullptr);
    } catch (const ChessException&) {
        return false;  // an unknown figure letter
    }
}

}  // namespace quillmere
