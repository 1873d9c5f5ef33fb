// FEN, both ways, and figure letters.
#pragma once

#include "core/chessboard.h"

#include <string>
#include <string_view>

namespace quillmere {

// The kind of a figure letter in either case: K king, P pawn, Q or H queen, R or W rook, B or G
// bishop, N or S knight. Throws ChessException on any other letter.
u8 FigureFromLetter(char letter);
// 'K', 'P', 'Q', 'R', 'B' or 'N' by kind; 'E' for anything else.
char LetterFromFigure(u8 figure);

// Reads the board field alone, "8/8/8/4k3/8/8/8/4K3", into 64 squares that are empty before. Nothing is
// asked of the position. False on a bad text, `squares` is then half written; throws ChessException on
// an unknown figure letter.
bool ReadBoardSquares(std::string_view text, u8* squares);

// Longest text of GetFENCode with its terminator, in bytes.
constexpr int kFenBufferSize = 120;

// Writes the FEN code, zero-terminated, to `out` (kFenBufferSize bytes). Rights are the derived
// ones; the en passant field is the square passed by the last double step, with an upper-case file
// letter. moveNumber 0 means that the number follows from the ply.
void GetFENCode(const TChessboard& board, char* out, bool boardOnly, u16 moveNumber);
std::string GetFENCode(const TChessboard& board, bool boardOnly = false, u16 moveNumber = 0);

// Reads the board part of a FEN code and validates it; the text may end behind any field. The side
// field is not read, the side to move follows from m_nMoves of the task. Pointers, m_nMoves and the
// other node fields of the board stay. *castlingDenied is set if a right is derivable, the position
// taken as a root of its own, that the text does not give; *enPassantGiven if the text names an en
// passant square; both may be null and are left alone otherwise. Returns false, with the board
// unchanged, on a bad text or an illegal position; throws ChessException, with the board unchanged,
// on an unknown figure letter.
bool SetFromFENCode(TChessboard& board,
                    const char* text,
                    bool* castlingDenied,
                    bool* enPassantGiven);

// SetFromFENCode on a board of its own; an unknown figure letter is false too. Never throws a
// ChessException.
bool IsValidFENCode(const char* text);

}  // namespace quillmere
