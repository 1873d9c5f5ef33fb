// The text forms of moves and squares.
//
// The notation of the program is the long one: "Ng1-f3", "e2-e4", "e7:d8Q", "0-0". A null move is
// "-". TextToMove reads a text as such, ParseMove also judges it against a position.
#pragma once

#include "core/chessboard.h"

#include <string>
#include <string_view>

namespace quillmere {

// Longest text of MoveToText with its terminator, in bytes.
constexpr int kMoveTextSize = 16;

// Writes the move, zero-terminated, to `out` (kMoveTextSize bytes). figureCode is the moved figure.
// A king that moves two files or more is castling.
void MoveToText(TMove move, char* out, u8 figureCode, bool isCapture);
// The same for a move of the node, before it is made: figure and capture are read off the board.
std::string MoveToText(const TChessboard& node, TMove move);
// A move of the node, before it is made, captures: en passant too. Not for a null move.
bool IsCapture(const TChessboard& node, TMove move);
// "e2e4", "e7e8q": the form of engines and of the "uci" fields; "0000" for a null move.
std::string MoveToUci(TMove move);
// Plain form of the logs: "e2-e4", with a letter for a promotion.
std::string MoveToPlainText(TMove move);

// "a1" style text to a square; further characters are not looked at. Throws ChessException.
int String2Square(std::string_view text);
// 0..63 to "a1".
std::string SquareToText(int square);

// The full description to a move. The result is not judged: a rank digit of 0 or 9 gives a square
// outside 0..63 (as a wrapped byte), so every caller checks IsOnBoard(move) before it touches a
// board; a figure letter in front is passed over. Throws ChessException; `move` is then unchanged.
void TextToMove(TMove& move, std::string_view text, bool whiteToMove);
inline bool IsOnBoard(TMove move) {
    return move.from < kSquareCount && move.to < kSquareCount;
}

// Parses the full notation and judges the move in the node by the exact rules; the side follows
// from m_nMoves. The check fields must be right; a thread context is not needed. Throws
// ChessException; `move` is then unchanged.
void ParseMove(const TChessboard& node, TMove& move, std::string_view text);

// The square from which a figure of the kind reaches `to`, for completing a short move. A code
// below 64 takes its colour from the side to move. Legality is not asked, pins are not looked at,
// a king is always its own candidate. *count (may be null) is the number of candidates, the result
// the first of them or kNoSquare. Throws ChessException on a kind that is none of the six, a square
// outside the board, or a pawn's double step that is blocked.
int FindPosFrom(const TChessboard& node, u8 figure, int to, int* count);

}  // namespace quillmere
