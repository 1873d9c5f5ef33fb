#include "search/scan_pass.h"

#include "core/direct_mates.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/thread_context.h"
#include "search/mate_search.h"
#include "search/register_access.h"

namespace quillmere {
namespace {

// White is to move.
TVerdict ScanReply(TChessboard& node) {
    const bool isMate = IsMateInOne(node);
    if (isMate)
        return kMate;
    if (node.m_nMoves == 1)
        return kNoMate;
    if (!MayUseRegister(node))
        return kDoubtful;
    const TVerdict known = FindInRegister(node);
    return known == kMate || known == kNoMate ? known : kDoubtful;
}

// A copy without the word, so that only what is exact is found.
TChessboard PlainCopy(TChessboard& parent) {
    TChessboard child = parent;
    child.m_parent = &parent;
    child.Heur = 0;
    child.HeurParams = 0;
    return child;
}

}  // namespace

TVerdict ScanFirstMove(TChessboard& root, TMove move) {
    TChessboard child = PlainCopy(root);
    if (!root.IsWhiteToMove())
        return MakeBlackMoveLegal(child, move) == kMoveMade ? ScanReply(child) : kNoMate;
    if (MakeWhiteMoveLegal(child, move) != kMoveMade)
        return kNoMate;
    if (child.m_nMoves == 0)
        return CheckDefences(child);
    TMoveList replies;
    replies.count = GetLegalMoves(child, replies.moves);
    if (replies.count == 0)
        return child.m_blackInCheck >= 0 ? kMate : kNoMate;
    bool areAllMates = true;
    for (const TMove reply : replies) {
        TChessboard node = PlainCopy(child);
        if (MakeBlackMoveLegal(node, reply) != kMoveMade)
            continue;
        const TVerdict verdict = ScanReply(node);
        if (verdict == kNoMate)
            return kNoMate;
        areAllMates &= verdict == kMate;
    }
    return areAllMates ? kMate : kDoubtful;
}

}  // namespace quillmere
