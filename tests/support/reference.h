// The judge of the tests: orthodox chess written a second time, slowly and plainly.
//
// Nothing here shares a line, a type or a constant with core/ or search/, so that a mistake would
// have to be made twice to stay unseen. A position is 64 FEN letters, castling rights and en
// passant are plain fields carried from move to move (core/ derives both from the line of play),
// every move is made on a copy and judged by one attack test on the king. The mate search is an
// AND/OR brute force: no table of positions, no rule about material, no repetition test. Only the
// order in which moves are tried is chosen, and an order cannot change an answer.
//
// Squares are 0..63 with a1 = 0, h1 = 7, a8 = 56, as everywhere in the tests.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere::reference {

struct TPlainMove {
    std::uint8_t from = 0;
    std::uint8_t to = 0;
    char promotion = 0;  // 'q', 'r', 'b', 'n', or 0 for none

    friend bool operator==(const TPlainMove&, const TPlainMove&) = default;
    // NOLINTNEXTLINE(modernize-use-nullptr): a false alarm on the comparison with 0 inside
    friend auto operator<=>(const TPlainMove&, const TPlainMove&) = default;
};

struct TPosition {
    char squares[64];  // FEN letters, '.' for an empty square
    bool isWhiteToMove;
    bool rights[4];             // to castle: white short, white long, black short, black long
    signed char enPassantFile;  // of a pawn that has just made its double step, or -1
    signed char whiteKing;      // squares of the kings, -1 for none
    signed char blackKing;
};

// Texts

// Reads the board of a FEN and the side to move (white if there is no side field). Castling rights
// follow the convention of problems, king and rook at home, whatever the text says; en passant is
// not possible in the first move. Throws std::invalid_argument on a text that is no board.
TPosition FromFen(std::string_view fen);
// A FEN of six fields. The en passant field is written after every double step.
std::string ToFen(const TPosition& position);
// Colours and ranks swapped, the other side to move; castling rights go along.
TPosition SwapColours(const TPosition& position);
// "e2e4", "e7e8n".
std::string ToText(TPlainMove move);
std::string ToText(const std::vector<TPlainMove>& moves);
// The legal move that a short or long algebraic text names: "Qc5", "Rxg3", "e8=N+", "0-0",
// "Nbd2", "e2-e4". Throws std::invalid_argument unless exactly one move fits.
TPlainMove FindMove(const TPosition& position, std::string_view text);

// Rules

bool IsAttacked(const TPosition& position, int square, bool isByWhite);
bool IsInCheck(const TPosition& position, bool isWhite);
// One king a side, no pawn on the first or last rank, the side that is not to move not in check.
bool IsLegalPosition(const TPosition& position);
int CountMen(const TPosition& position);
// The move is made without a question; give only moves of LegalMoves.
TPosition After(const TPosition& position, TPlainMove move);
std::vector<TPlainMove> LegalMoves(const TPosition& position);
// Moves to empty squares, castling left out, whether they leave the own king in check or not.
std::vector<TPlainMove> QuietSteps(const TPosition& position);
bool HasLegalMove(const TPosition& position);
bool IsMate(const TPosition& position);
bool IsStalemate(const TPosition& position);
std::uint64_t Perft(const TPosition& position, int depth);

// Mates. White attacks; "within n moves" means n or fewer.

// Thrown when the brute force has made as many moves as it was allowed.
class COutOfMoves : public std::runtime_error {
public:
    COutOfMoves() : std::runtime_error("the brute force has used up its moves") {}
};

// The game with a rule taken away. Where an answer changes, that rule decides the position: this is
// how the tests know that they reach the cases that they were written for.
struct TSimplification {
    bool hasNoCastling = false;
    bool hasNoEnPassant = false;
    bool hasNoUnderpromotion = false;  // of either side
    bool isStalemateMate = false;
};

class CBruteForce {
public:
    // `moveLimit` bounds the moves made by one object over all its calls.
    explicit CBruteForce(std::uint64_t moveLimit = std::numeric_limits<std::uint64_t>::max(),
                         TSimplification simplification = {})
        : m_moveLimit(moveLimit), m_simplification(simplification) {}

    // White forces mate within `halfMoves` single moves. Odd: white is to move. Even: black is to
    // move; with 0 left black must be mated in this very position.
    bool WhiteMates(const TPosition& position, int halfMoves);

    // White to move.
    bool MateIn(const TPosition& position, int fullMoves) {
        return WhiteMates(position, 2 * fullMoves - 1);
    }
    // First moves that force mate within the number, sorted.
    std::vector<TPlainMove> Keys(const TPosition& position, int fullMoves);
    // The smallest number of moves within which white mates, up to the given one; 0 if there is
    // none.
    int ShortestMate(const TPosition& position, int upToFullMoves);

    // Black to move, an even number of half-moves: every move of black loses.
    bool BlackLosesIn(const TPosition& position, int halfMoves) {
        return WhiteMates(position, halfMoves);
    }
    // Black's first moves after which white does not mate within what is left, sorted.
    std::vector<TPlainMove> HoldingDefences(const TPosition& position, int halfMoves);
    // Black's only first move after white's `move` that holds; nothing if none or several hold.
    std::optional<TPlainMove>
    OnlyRefutation(const TPosition& position, TPlainMove move, int fullMoves);

    std::uint64_t MadeMoves() const { return m_madeMoves; }

private:
    bool WhiteNode(const TPosition& position, int halfMoves);
    bool BlackNode(const TPosition& position, int halfMoves);
    bool IsMateInOne(const TPosition& position);
    void CountMove() {
        if (++m_madeMoves > m_moveLimit) {
            throw COutOfMoves();
        }
    }

    bool IsPlayed(const TPosition& position, TPlainMove move) const;
    bool IsMated(const TPosition& position) const;

    static constexpr int kLevels = 64;
    std::uint64_t m_moveLimit;
    TSimplification m_simplification;
    std::uint64_t m_madeMoves = 0;
    // The reply that refuted the last attempt at this level is tried first the next time.
    TPlainMove m_lastRefutation[kLevels] = {};
};

// Judges a line of play from the position: every move legal, no more than `halfMoves` moves, black
// mated at the end. Returns what is wrong, or nothing.
std::optional<std::string>
FaultOfLine(const TPosition& position, const std::vector<TPlainMove>& line, int halfMoves);

}  // namespace quillmere::reference
