// A white figure that pins an important black one (SH_KEYWHITEFIGURE).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// White's moves that keep the pin of `KeyWhiteFigureSquare` on `KeyWhiteFigurePinned`. False: there
// is no list, because the pin does not stand, because every move keeps it, or because none does.
// White is not in check.
bool KeyFigureMoves(TChessboard& node, TMoveList& list);

}  // namespace quillmere
