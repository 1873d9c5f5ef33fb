#include "tests/support/reference.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace quillmere::reference {

namespace {

constexpr std::string_view kPieceLetters = "KQRBNPkqrbnp";

constexpr int kA1 = 0;
constexpr int kE1 = 4;
constexpr int kH1 = 7;
constexpr int kA8 = 56;
constexpr int kE8 = 60;
constexpr int kH8 = 63;

bool IsWhiteMan(char man) {
    return man >= 'A' && man <= 'Z';
}

bool IsBlackMan(char man) {
    return man >= 'a' && man <= 'z';
}

bool IsOwn(char man, bool isWhite) {
    return isWhite ? IsWhiteMan(man) : IsBlackMan(man);
}

char Coloured(char lowerLetter, bool isWhite) {
    return isWhite ? static_cast<char>(lowerLetter - 'a' + 'A') : lowerLetter;
}

// Squares reached by a step, or one after another along a line.
struct TSquareList {
    std::int8_t squares[8];
    int count = 0;

    const std::int8_t* begin() const { return squares; }
    const std::int8_t* end() const { return squares + count; }
    void Add(int file, int rank) { squares[count++] = static_cast<std::int8_t>(rank * 8 + file); }
};

bool IsOnBoard(int file, int rank) {
    return file >= 0 && file < 8 && rank >= 0 && rank < 8;
}

struct TSteps {
    // Lines 0 to 3 are straight, 4 to 7 diagonal.
    TSquareList lines[64][8];
    TSquareList king[64];
    TSquareList knight[64];
    // Squares from which a pawn of the colour attacks the square: [square][isWhite].
    TSquareList pawnOrigins[64][2];

    TSteps() {
        constexpr int kDirections[8][2] = {
            {1, 0}, {-1, 0}, {0, 1}, {0, -1}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
        constexpr int kJumps[8][2] = {
            {1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};
        for (int rank = 0; rank < 8; ++rank) {
            for (int file = 0; file < 8; ++file) {
                const int square = rank * 8 + file;
                for (int direction = 0; direction < 8; ++direction) {
                    const int fileStep = kDirections[direction][0];
                    const int rankStep = kDirections[direction][1];
                    if (IsOnBoard(file + fileStep, rank + rankStep)) {
                        king[square].Add(file + fileStep, rank + rankStep);
                    }
                    for (int distance = 1;
                         IsOnBoard(file + fileStep * distance, rank + rankStep * distance);
                         ++distance) {
                        lines[square][direction].Add(file + fileStep * distance,
                                                     rank + rankStep * distance);
                    }
                }
                for (const auto& jump : kJumps) {
                    if (IsOnBoard(file + jump[0], rank + jump[1])) {
                        knight[square].Add(file + jump[0], rank + jump[1]);
                    }
                }
                for (const int side : {-1, 1}) {
                    if (IsOnBoard(file + side, rank - 1)) {
                        pawnOrigins[square][1].Add(file + side, rank - 1);
                    }
                    if (IsOnBoard(file + side, rank + 1)) {
                        pawnOrigins[square][0].Add(file + side, rank + 1);
                    }
                }
            }
        }
    }
};

const TSteps kSteps;

// Every move by the way the men move, the own king's safety left aside. Orthodox positions have at
// most 218 moves; the room is for the strangest board that can be set up.
struct TMoves {
    TPlainMove moves[1024];
    int count = 0;

    TMoves() {}  // NOLINT(modernize-use-equals-default): the entries stay as they are
    const TPlainMove* begin() const { return moves; }
    const TPlainMove* end() const { return moves + count; }
    void Add(int from, int to, char promotion = 0) {
        moves[count].from = static_cast<std::uint8_t>(from);
        moves[count].to = static_cast<std::uint8_t>(to);
        moves[count].promotion = promotion;
        ++count;
    }
};

void AddPawnArrival(TMoves& moves, int from, int to) {
    if (to / 8 == 0 || to / 8 == 7) {
        for (const char kind : {'q', 'r', 'b', 'n'}) {
            moves.Add(from, to, kind);
        }
    } else {
        moves.Add(from, to);
    }
}

void AddPawnMoves(const TPosition& position, int from, TMoves& moves) {
    const bool isWhite = position.isWhiteToMove;
    const int forward = isWhite ? 8 : -8;
    const int file = from % 8;
    const int rank = from / 8;
    if (rank == 0 || rank == 7) {
        return;
    }
    if (position.squares[from + forward] == '.') {
        AddPawnArrival(moves, from, from + forward);
        if (rank == (isWhite ? 1 : 6) && position.squares[from + 2 * forward] == '.') {
            moves.Add(from, from + 2 * forward);
        }
    }
    for (const int side : {-1, 1}) {
        if (file + side < 0 || file + side > 7) {
            continue;
        }
        const int to = from + forward + side;
        if (IsOwn(position.squares[to], !isWhite)) {
            AddPawnArrival(moves, from, to);
        } else if (position.enPassantFile == file + side && rank == (isWhite ? 4 : 3)) {
            moves.Add(from, to);
        }
    }
}

void AddCastling(const TPosition& position, TMoves& moves) {
    const bool isWhite = position.isWhiteToMove;
    const int home = isWhite ? kE1 : kE8;
    const bool isShort = position.rights[isWhite ? 0 : 2];
    const bool isLong = position.rights[isWhite ? 1 : 3];
    if ((!isShort && !isLong) || IsAttacked(position, home, !isWhite)) {
        return;
    }
    const auto isFree = [&](int square) { return position.squares[square] == '.'; };
    if (isShort && isFree(home + 1) && isFree(home + 2) &&
        !IsAttacked(position, home + 1, !isWhite)) {
        moves.Add(home, home + 2);
    }
    if (isLong && isFree(home - 1) && isFree(home - 2) && isFree(home - 3) &&
        !IsAttacked(position, home - 1, !isWhite)) {
        moves.Add(home, home - 2);
    }
}

void AddSteps(const TPosition& position, int from, const TSquareList& targets, TMoves& moves) {
    for (const int to : targets) {
        if (!IsOwn(position.squares[to], position.isWhiteToMove)) {
            moves.Add(from, to);
        }
    }
}

void AddLines(const TPosition& position, int from, int firstLine, int lastLine, TMoves& moves) {
    for (int line = firstLine; line <= lastLine; ++line) {
        for (const int to : kSteps.lines[from][line]) {
            if (!IsOwn(position.squares[to], position.isWhiteToMove)) {
                moves.Add(from, to);
            }
            if (position.squares[to] != '.') {
                break;
            }
        }
    }
}

void AddMovesOf(const TPosition& position, int from, TMoves& moves) {
    switch (std::tolower(static_cast<unsigned char>(position.squares[from]))) {
    case 'k':
        AddSteps(position, from, kSteps.king[from], moves);
        AddCastling(position, moves);
        break;
    case 'q':
        AddLines(position, from, 0, 7, moves);
        break;
    case 'r':
        AddLines(position, from, 0, 3, moves);
        break;
    case 'b':
        AddLines(position, from, 4, 7, moves);
        break;
    case 'n':
        AddSteps(position, from, kSteps.knight[from], moves);
        break;
    default:
        AddPawnMoves(position, from, moves);
        break;
    }
}

void AddAllMoves(const TPosition& position, TMoves& moves) {
    // The king first: to most checks it has the answer.
    const int king = position.isWhiteToMove ? position.whiteKing : position.blackKing;
    AddMovesOf(position, king, moves);
    for (int square = 0; square < 64; ++square) {
        if (square != king && IsOwn(position.squares[square], position.isWhiteToMove)) {
            AddMovesOf(position, square, moves);
        }
    }
}

void LoseRights(TPosition& position, int square) {
    switch (square) {
    case kE1:
        position.rights[0] = position.rights[1] = false;
        break;
    case kH1:
        position.rights[0] = false;
        break;
    case kA1:
        position.rights[1] = false;
        break;
    case kE8:
        position.rights[2] = position.rights[3] = false;
        break;
    case kH8:
        position.rights[2] = false;
        break;
    case kA8:
        position.rights[3] = false;
        break;
    default:
        break;
    }
}

void Play(TPosition& position, TPlainMove move) {
    const bool isWhite = position.isWhiteToMove;
    const char man = position.squares[move.from];
    const bool isPawn = man == 'P' || man == 'p';
    const bool isCapture = position.squares[move.to] != '.';
    const int fileDistance = std::abs(move.from % 8 - move.to % 8);

    position.squares[move.from] = '.';
    position.squares[move.to] = move.promotion != 0 ? Coloured(move.promotion, isWhite) : man;
    if (isPawn && fileDistance == 1 && !isCapture) {
        position.squares[move.from / 8 * 8 + move.to % 8] = '.';
    }
    if (man == 'K' || man == 'k') {
        (isWhite ? position.whiteKing : position.blackKing) = static_cast<signed char>(move.to);
        if (fileDistance == 2) {
            const bool isShort = move.to > move.from;
            const int corner = move.from / 8 * 8 + (isShort ? 7 : 0);
            position.squares[corner] = '.';
            position.squares[isShort ? move.to - 1 : move.to + 1] = Coloured('r', isWhite);
        }
    }
    LoseRights(position, move.from);
    LoseRights(position, move.to);
    const bool isDoubleStep = isPawn && std::abs(move.from - move.to) == 16;
    position.enPassantFile = static_cast<signed char>(isDoubleStep ? move.from % 8 : -1);
    position.isWhiteToMove = !isWhite;
}

// Makes the move on the copy; false if it leaves the own king in check.
bool PlayLegal(TPosition& copy, TPlainMove move) {
    const bool isWhite = copy.isWhiteToMove;
    Play(copy, move);
    return !IsInCheck(copy, isWhite);
}

[[noreturn]] void Refuse(std::string_view text, const char* reason) {
    throw std::invalid_argument(std::string(reason) + ": " + std::string(text));
}

}  // namespace

TPosition FromFen(std::string_view fen) {
    TPosition position = {};
    std::fill(std::begin(position.squares), std::end(position.squares), '.');
    position.whiteKing = position.blackKing = -1;
    position.enPassantFile = -1;
    position.isWhiteToMove = true;

    std::size_t index = 0;
    for (int rank = 7; rank >= 0; --rank) {
        int file = 0;
        while (file < 8) {
            if (index >= fen.size()) {
                Refuse(fen, "the board is too short");
            }
            const char letter = fen[index++];
            if (letter >= '1' && letter <= '8') {
                file += letter - '0';
            } else if (kPieceLetters.find(letter) != std::string_view::npos) {
                const int square = rank * 8 + file++;
                position.squares[square] = letter;
                if (letter == 'K') {
                    position.whiteKing = static_cast<signed char>(square);
                } else if (letter == 'k') {
                    position.blackKing = static_cast<signed char>(square);
                }
            } else {
                Refuse(fen, "no man and no number");
            }
        }
        if (file > 8) {
            Refuse(fen, "a rank is too long");
        }
        if (rank > 0 && (index >= fen.size() || fen[index++] != '/')) {
            Refuse(fen, "a rank does not end");
        }
    }
    if (index < fen.size()) {
        if (fen[index++] != ' ') {
            Refuse(fen, "the board does not end");
        }
        if (index < fen.size()) {
            if (fen[index] != 'w' && fen[index] != 'b') {
                Refuse(fen, "no side to move");
            }
            position.isWhiteToMove = fen[index] == 'w';
        }
    }

    position.rights[0] = position.squares[kE1] == 'K' && position.squares[kH1] == 'R';
    position.rights[1] = position.squares[kE1] == 'K' && position.squares[kA1] == 'R';
    position.rights[2] = position.squares[kE8] == 'k' && position.squares[kH8] == 'r';
    position.rights[3] = position.squares[kE8] == 'k' && position.squares[kA8] == 'r';
    return position;
}

std::string ToFen(const TPosition& position) {
    std::string fen;
    for (int rank = 7; rank >= 0; --rank) {
        int empty = 0;
        for (int file = 0; file < 8; ++file) {
            const char man = position.squares[rank * 8 + file];
            if (man == '.') {
                ++empty;
                continue;
            }
            if (empty > 0) {
                fen += static_cast<char>('0' + empty);
            }
            empty = 0;
            fen += man;
        }
        if (empty > 0) {
            fen += static_cast<char>('0' + empty);
        }
        if (rank > 0) {
            fen += '/';
        }
    }
    fen += position.isWhiteToMove ? " w " : " b ";
    std::string rights;
    for (int right = 0; right < 4; ++right) {
        if (position.rights[right]) {
            rights += "KQkq"[right];
        }
    }
    fen += rights.empty() ? "-" : rights;
    fen += ' ';
    if (position.enPassantFile < 0) {
        fen += '-';
    } else {
        fen += static_cast<char>('a' + position.enPassantFile);
        fen += position.isWhiteToMove ? '6' : '3';
    }
    return fen + " 0 1";
}

TPosition SwapColours(const TPosition& position) {
    TPosition swapped = position;
    for (int square = 0; square < 64; ++square) {
        const char man = position.squares[square];
        const auto letter = static_cast<unsigned char>(man);
        swapped.squares[square ^ 56] =
            static_cast<char>(IsWhiteMan(man) ? std::tolower(letter) : std::toupper(letter));
    }
    swapped.isWhiteToMove = !position.isWhiteToMove;
    std::swap(swapped.rights[0], swapped.rights[2]);
    std::swap(swapped.rights[1], swapped.rights[3]);
    const auto mirrored = [](signed char square) {
        return static_cast<signed char>(square < 0 ? square : square ^ 56);
    };
    swapped.whiteKing = mirrored(position.blackKing);
    swapped.blackKing = mirrored(position.whiteKing);
    return swapped;
}

std::string ToText(TPlainMove move) {
    std::string text;
    for (const int square : {int{move.from}, int{move.to}}) {
        text += static_cast<char>('a' + square % 8);
        text += static_cast<char>('1' + square / 8);
    }
    if (move.promotion != 0) {
        text += move.promotion;
    }
    return text;
}

std::string ToText(const std::vector<TPlainMove>& moves) {
    std::string text;
    for (const TPlainMove move : moves) {
        text += text.empty() ? "" : " ";
        text += ToText(move);
    }
    return text.empty() ? "none" : text;
}

TPlainMove FindMove(const TPosition& position, std::string_view text) {
    // What is left of the text after the ornaments: [figure][origin]destination[promotion].
    std::string plain;
    for (const char letter : text) {
        if (std::strchr("+#!?x:-=", letter) == nullptr) {
            plain += letter;
        }
    }
    const bool isCastling = text.substr(0, 2) == "0-" || text.substr(0, 2) == "O-";
    const int castlingDistance = plain.size() == 2 ? 2 : -2;

    char figure = 'P';
    char promotion = 0;
    std::size_t first = 0;
    std::size_t last = plain.size();
    if (!isCastling) {
        if (!plain.empty() && std::strchr("KQRBN", plain.front()) != nullptr) {
            figure = plain.front();
            first = 1;
        }
        if (plain.size() > first + 2 && std::isalpha(static_cast<unsigned char>(plain.back()))) {
            promotion = static_cast<char>(std::tolower(static_cast<unsigned char>(plain.back())));
            --last;
        }
        if (last < first + 2) {
            Refuse(text, "no destination");
        }
    }

    std::optional<TPlainMove> found;
    for (const TPlainMove move : LegalMoves(position)) {
        const char man = position.squares[move.from];
        const bool isKing = man == 'K' || man == 'k';
        if (isCastling) {
            if (!isKing || move.to - move.from != castlingDistance) {
                continue;
            }
        } else {
            const std::string origin = ToText(move).substr(0, 2);
            const std::string destination = ToText(move).substr(2, 2);
            if (std::toupper(static_cast<unsigned char>(man)) != figure ||
                move.promotion != promotion || plain.substr(last - 2, 2) != destination) {
                continue;
            }
            bool isOriginRight = true;
            for (std::size_t index = first; index < last - 2; ++index) {
                isOriginRight = isOriginRight && origin.find(plain[index]) != std::string::npos;
            }
            if (!isOriginRight) {
                continue;
            }
        }
        if (found) {
            Refuse(text, "several moves fit");
        }
        found = move;
    }
    if (!found) {
        Refuse(text, "no move fits");
    }
    return *found;
}

bool IsAttacked(const TPosition& position, int square, bool isByWhite) {
    const char* squares = position.squares;
    const char king = Coloured('k', isByWhite);
    const char queen = Coloured('q', isByWhite);
    const char rook = Coloured('r', isByWhite);
    const char bishop = Coloured('b', isByWhite);
    const char knight = Coloured('n', isByWhite);
    const char pawn = Coloured('p', isByWhite);
    for (const int from : kSteps.knight[square]) {
        if (squares[from] == knight) {
            return true;
        }
    }
    for (const int from : kSteps.pawnOrigins[square][isByWhite ? 1 : 0]) {
        if (squares[from] == pawn) {
            return true;
        }
    }
    for (int line = 0; line < 8; ++line) {
        const char slider = line < 4 ? rook : bishop;
        int distance = 0;
        for (const int from : kSteps.lines[square][line]) {
            ++distance;
            const char man = squares[from];
            if (man == '.') {
                continue;
            }
            if (man == queen || man == slider || (man == king && distance == 1)) {
                return true;
            }
            break;
        }
    }
    return false;
}

bool IsInCheck(const TPosition& position, bool isWhite) {
    return IsAttacked(position, isWhite ? position.whiteKing : position.blackKing, !isWhite);
}

bool IsLegalPosition(const TPosition& position) {
    int whiteKings = 0;
    int blackKings = 0;
    for (int square = 0; square < 64; ++square) {
        const char man = position.squares[square];
        whiteKings += man == 'K';
        blackKings += man == 'k';
        if ((man == 'P' || man == 'p') && (square < 8 || square >= 56)) {
            return false;
        }
    }
    return whiteKings == 1 && blackKings == 1 && !IsInCheck(position, !position.isWhiteToMove);
}

int CountMen(const TPosition& position) {
    return static_cast<int>(std::count_if(std::begin(position.squares),
                                          std::end(position.squares),
                                          [](char man) { return man != '.'; }));
}

TPosition After(const TPosition& position, TPlainMove move) {
    TPosition after = position;
    Play(after, move);
    return after;
}

std::vector<TPlainMove> LegalMoves(const TPosition& position) {
    TMoves moves;
    AddAllMoves(position, moves);
    std::vector<TPlainMove> legal;
    for (const TPlainMove move : moves) {
        TPosition child = position;
        if (PlayLegal(child, move)) {
            legal.push_back(move);
        }
    }
    std::sort(legal.begin(), legal.end());
    return legal;
}

std::vector<TPlainMove> QuietSteps(const TPosition& position) {
    TPosition plain = position;
    std::fill(std::begin(plain.rights), std::end(plain.rights), false);
    plain.enPassantFile = -1;
    TMoves moves;
    AddAllMoves(plain, moves);
    std::vector<TPlainMove> steps;
    std::copy_if(moves.begin(), moves.end(), std::back_inserter(steps), [&](TPlainMove move) {
        return plain.squares[move.to] == '.';
    });
    return steps;
}

bool HasLegalMove(const TPosition& position) {
    const int king = position.isWhiteToMove ? position.whiteKing : position.blackKing;
    const auto hasMoveOf = [&](int square) {
        TMoves moves;
        AddMovesOf(position, square, moves);
        return std::any_of(moves.begin(), moves.end(), [&](TPlainMove move) {
            TPosition child = position;
            return PlayLegal(child, move);
        });
    };
    if (hasMoveOf(king)) {
        return true;
    }
    for (int square = 0; square < 64; ++square) {
        if (square != king && IsOwn(position.squares[square], position.isWhiteToMove) &&
            hasMoveOf(square)) {
            return true;
        }
    }
    return false;
}

bool IsMate(const TPosition& position) {
    return IsInCheck(position, position.isWhiteToMove) && !HasLegalMove(position);
}

bool IsStalemate(const TPosition& position) {
    return !IsInCheck(position, position.isWhiteToMove) && !HasLegalMove(position);
}

std::uint64_t Perft(const TPosition& position, int depth) {
    if (depth == 0) {
        return 1;
    }
    TMoves moves;
    AddAllMoves(position, moves);
    std::uint64_t count = 0;
    for (const TPlainMove move : moves) {
        TPosition child = position;
        if (PlayLegal(child, move)) {
            count += Perft(child, depth - 1);
        }
    }
    return count;
}

bool CBruteForce::WhiteMates(const TPosition& position, int halfMoves) {
    if (halfMoves < 0 || halfMoves >= kLevels) {
        throw std::invalid_argument("the length is out of range");
    }
    if (position.isWhiteToMove != (halfMoves % 2 != 0)) {
        throw std::invalid_argument("the side to move does not fit the length");
    }
    return position.isWhiteToMove ? WhiteNode(position, halfMoves) : BlackNode(position, halfMoves);
}

bool CBruteForce::IsPlayed(const TPosition& position, TPlainMove move) const {
    const TSimplification& without = m_simplification;
    const char man = position.squares[move.from];
    const int fileDistance = std::abs(move.from % 8 - move.to % 8);
    if (without.hasNoUnderpromotion && move.promotion != 0 && move.promotion != 'q') {
        return false;
    }
    if (without.hasNoCastling && (man == 'K' || man == 'k') && fileDistance == 2) {
        return false;
    }
    return !(without.hasNoEnPassant && (man == 'P' || man == 'p') && fileDistance == 1 &&
             position.squares[move.to] == '.');
}

bool CBruteForce::IsMated(const TPosition& position) const {
    if (!m_simplification.isStalemateMate && !IsInCheck(position, false)) {
        return false;
    }
    TMoves moves;
    AddAllMoves(position, moves);
    return std::none_of(moves.begin(), moves.end(), [&](TPlainMove move) {
        TPosition child = position;
        return IsPlayed(position, move) && PlayLegal(child, move);
    });
}

bool CBruteForce::IsMateInOne(const TPosition& position) {
    TMoves moves;
    AddAllMoves(position, moves);
    for (const TPlainMove move : moves) {
        if (!IsPlayed(position, move)) {
            continue;
        }
        TPosition child = position;
        CountMove();
        if (PlayLegal(child, move) && IsMated(child)) {
            return true;
        }
    }
    return false;
}

bool CBruteForce::WhiteNode(const TPosition& position, int halfMoves) {
    if (halfMoves == 1) {
        return IsMateInOne(position);
    }
    TMoves moves;
    AddAllMoves(position, moves);
    // Checks first: they are refuted or proved with little work.
    for (const bool wantsCheck : {true, false}) {
        for (const TPlainMove move : moves) {
            TPosition child = position;
            Play(child, move);
            if (IsInCheck(child, false) != wantsCheck || IsInCheck(child, true) ||
                !IsPlayed(position, move)) {
                continue;
            }
            CountMove();
            if (BlackNode(child, halfMoves - 1)) {
                return true;
            }
        }
    }
    return false;
}

bool CBruteForce::BlackNode(const TPosition& position, int halfMoves) {
    if (halfMoves == 0) {
        return IsMated(position);
    }
    TMoves moves;
    AddAllMoves(position, moves);
    TPlainMove& lastRefutation = m_lastRefutation[halfMoves];
    bool hasMove = false;
    for (const bool wantsLastRefutation : {true, false}) {
        for (const TPlainMove move : moves) {
            if ((move == lastRefutation) != wantsLastRefutation || !IsPlayed(position, move)) {
                continue;
            }
            TPosition child = position;
            CountMove();
            if (!PlayLegal(child, move)) {
                continue;
            }
            hasMove = true;
            if (!WhiteNode(child, halfMoves - 1)) {
                lastRefutation = move;
                return false;
            }
            if (wantsLastRefutation) {
                break;
            }
        }
    }
    return hasMove || m_simplification.isStalemateMate || IsInCheck(position, false);
}

std::vector<TPlainMove> CBruteForce::Keys(const TPosition& position, int fullMoves) {
    std::vector<TPlainMove> keys;
    for (const TPlainMove move : LegalMoves(position)) {
        if (IsPlayed(position, move) && WhiteMates(After(position, move), 2 * fullMoves - 2)) {
            keys.push_back(move);
        }
    }
    return keys;
}

int CBruteForce::ShortestMate(const TPosition& position, int upToFullMoves) {
    for (int fullMoves = 1; fullMoves <= upToFullMoves; ++fullMoves) {
        if (MateIn(position, fullMoves)) {
            return fullMoves;
        }
    }
    return 0;
}

std::vector<TPlainMove> CBruteForce::HoldingDefences(const TPosition& position, int halfMoves) {
    std::vector<TPlainMove> defences;
    for (const TPlainMove move : LegalMoves(position)) {
        if (IsPlayed(position, move) &&
            (halfMoves == 0 || !WhiteMates(After(position, move), halfMoves - 1))) {
            defences.push_back(move);
        }
    }
    return defences;
}

std::optional<TPlainMove>
CBruteForce::OnlyRefutation(const TPosition& position, TPlainMove move, int fullMoves) {
    const std::vector<TPlainMove> refutations =
        HoldingDefences(After(position, move), 2 * fullMoves - 2);
    return refutations.size() == 1 ? std::optional(refutations.front()) : std::nullopt;
}

std::optional<std::string>
FaultOfLine(const TPosition& position, const std::vector<TPlainMove>& line, int halfMoves) {
    if (static_cast<int>(line.size()) > halfMoves) {
        return "the line is longer than the stipulation: " + ToText(line);
    }
    TPosition current = position;
    for (const TPlainMove move : line) {
        const std::vector<TPlainMove> legal = LegalMoves(current);
        if (std::find(legal.begin(), legal.end(), move) == legal.end()) {
            return "illegal move " + ToText(move) + " in " + ToFen(current);
        }
        current = After(current, move);
    }
    if (current.isWhiteToMove || !IsMate(current)) {
        return "the line does not end in mate: " + ToText(line) + ", " + ToFen(current);
    }
    return std::nullopt;
}

}  // namespace quillmere::reference
