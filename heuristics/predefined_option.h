// One string of the settings of known compositions.
#pragma once

#include "core/chessboard.h"

#include <string_view>

namespace quillmere {

// Applies the string to a root node, its thread and its search context:
//
//   DLFU(a2, b3)              SH_DONTLETFIGUREUNBLOCK with these figures too, black pawns first;
//                             each once, and no more than eight in all: the rest is left out
//   SafeMode                  isExact of the search context; in any case of letters
//   AssertBKS, ...(strict)    SH_ASSERTBLACKKINGSURROUNDED in place of both edge rules
//   ExtEdge                   SH_KEEPKINGWITHINEXTEDGE in place of the two others
//   DontLetKingMove           SH_KEEPKINGONTHEEDGE with StrictKingMove in place of the two others
//   DontLetPromotedQueenMove  SH_DONTLETPROMOTEDQUEENMOVE; with " NO" behind it, takes it off
//   LFQMDepth(#4), (7)        m_shLookForQuickerMateDepth: moves of a mate, or half-moves
//
// Anything else is ignored. HeurParams follows. Throws ChessException on a bad square; the string is
// then without effect.
void ParsePredefinedOption(TChessboard& node, std::string_view text);

}  // namespace quillmere
