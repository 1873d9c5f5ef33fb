// SH_KEYLINE and SH_KEYDIAGONAL: black may not walk along the line that decides.
//
// There are positions in which black has one sound defence for ever, a rook that goes up and down a
// file or a bishop on a diagonal, and the solution is the way to take this line away. A reply that
// merely uses the line once more is given up: a rook's move with both ends on the key file, a
// bishop's move with both ends on the key diagonal. Two squares of one diagonal name the whole of
// it; squares that share none name nothing.
//
// What is lost are mates in which such a move fails. The cost is a look at the figure that moved.
#include "core/geometry.h"
#include "core/search_context.h"
#include "heuristics/reply_rules.h"

namespace quillmere {

bool IsOnLineOf(u8 kind, int a, int b, int square) {
    if (LineBit(a, b) != kind)
        return false;
    const int step = LineStep(a, b);
    return square == a || LineStep(a, square) == step || LineStep(square, a) == step;
}

bool rules::HasRookMovedAlongKeyLine(CBlackReply& reply) {
    if (reply.Mover() != kBlackRook)
        return false;
    const int file = reply.Child().m_searchContext->KeyLineFile;
    return FileOf(reply.Move().from) == file && FileOf(reply.Move().to) == file;
}

bool rules::HasBishopMovedAlongDiagonal(CBlackReply& reply) {
    if (reply.Mover() != kBlackBishop)
        return false;
    const u8* key = reply.Child().m_searchContext->KeyDiagonalSquares;
    return key[0] < kSquareCount && key[1] < kSquareCount &&
           IsOnLineOf(kBishop, key[0], key[1], reply.Move().from) &&
           IsOnLineOf(kBishop, key[0], key[1], reply.Move().to);
}

}  // namespace quillmere
