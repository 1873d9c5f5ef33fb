// SH_KEYWHITEFIGURE, the black half: the pin that holds the position.
//
// The key figure pins a black man to the black king. While it does, white's list keeps the pin. After
// a reply that is not along the line of the pin the heuristic is over when the pin does not stand any
// more, or when fewer than three half-moves are left, where it has done its work; the bit goes off the
// node and nothing is left out.
//
// A reply along the line keeps the bit: the pinned man may wander between its king and the key figure.
// If it breaks the pin even so, by taking the key figure above all, the plan has failed, and the reply
// is given up.
//
// The pinned man is whichever black man stands alone between the two, so that it is followed on its
// way along the line. What is lost are mates after the loss of the key figure. The cost is a walk
// along one line a reply.
#include "core/geometry.h"
#include "core/thread_context.h"
#include "heuristics/reply_rules.h"

namespace quillmere {
namespace {

constexpr int kLastPinHalfMoves = 3;

// One black man, and nothing else, stands between the key figure and the black king.
bool IsPinStanding(const TChessboard& node, int key) {
    const u8* b = node.m_board;
    const int king = node.BlackKingSquare();
    if (!IsWhite(b[key]) || (b[key] & LineBit(key, king)) == 0)
        return false;
    const int step = LineStep(key, king);
    int pinned = key + step;
    while (b[pinned] == 0)
        pinned += step;
    return pinned != king && IsBlack(b[pinned]) && IsLineClear(b, pinned, king, step);
}

bool IsAlongPin(const CBlackReply& reply, int key) {
    const int pinned = reply.Settings().KeyWhiteFigurePinned;
    const int other = pinned < kSquareCount ? pinned : reply.BlackNode().BlackKingSquare();
    const u8 kind = LineBit(key, other);
    return kind != 0 && IsOnLineOf(kind, key, other, reply.Move().from) &&
           IsOnLineOf(kind, key, other, reply.Move().to);
}

}  // namespace

bool EndsKeyPin(const CBlackReply& reply) {
    const int key = reply.Settings().KeyWhiteFigureSquare;
    if (key >= kSquareCount)
        return true;
    return !IsAlongPin(reply, key) &&
           (reply.Child().m_nMoves < kLastPinHalfMoves || !IsPinStanding(reply.Child(), key));
}

bool rules::IsKeyFigureGone(CBlackReply& reply) {
    const int key = reply.Settings().KeyWhiteFigureSquare;
    return key < kSquareCount && !IsPinStanding(reply.Child(), key) &&
           IsPinStanding(reply.BlackNode(), key);
}

}  // namespace quillmere
