// The white bishop stays on the long diagonal of the black king (SH_DONTLEAVEMAINDIAGONAL).
#pragma once

#include "core/chessboard.h"

namespace quillmere {

// White's last move took a bishop off the long diagonal on which the black king stands. Asked under
// SH_DONTLEAVEMAINDIAGONAL; false unless the black king may not move either.
bool HasBishopLeftMainDiagonal(const TChessboard& child);

}  // namespace quillmere
