// Reads and writes moves as people and other programs write them: "Qg4+", "Nbd7", "exd8=N", "O-O-O", and the
// long notation of this program as well.
#pragma once

#include "core/chessboard.h"

#include <string>
#include <string_view>

namespace quillmere {

// The legal move of the node that the text names; the side follows from m_nMoves, and the node
// must have a thread context. Marks behind the move ("+", "#", "!", "?", "e.p.") are not judged,
// nor is a capture mark. Throws ChessException if the text is no move, or if no legal move or
// more than one fits.
TMove ReadShortMove(TChessboard& node, std::string_view text);

// The legal move of the node as "Nbd7", "exd8=N", "O-O-O": the form that other programs read, with as
// much of the origin as tells it from the other legal moves, and without a mark for check or mate.
// The node must have a thread context.
std::string WriteShortMove(TChessboard& node, TMove move);

}  // namespace quillmere
