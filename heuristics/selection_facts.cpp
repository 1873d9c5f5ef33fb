#include "heuristics/selection_facts.h"

#include "core/geometry.h"
#include "core/king_zone.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/material.h"
#include "core/move_generation.h"

#include <bit>

namespace quillmere {
namespace {

constexpr int kQueenWorth = 9;
constexpr int kRookWorth = 5;
constexpr int kMinorWorth = 3;

// `colour` is 0 for white, 1 for black: the counts of a kind stand beside each other.
int MaterialOf(const TChessboard& node, int colour) {
    const u8* c = node.m_counts + colour;
    return kQueenWorth * c[kWhiteQueens] + kRookWorth * c[kWhiteRooks] +
           kMinorWorth * (c[kWhiteBishops] + c[kWhiteKnights]) + c[kWhitePawns];
}

// What black could play if white passed.
void CountReplies(TChessboard& root, TSelectionFacts& facts) {
    if (root.m_whiteInCheck != kNotInCheck)
        return;
    TChessboard node = root;
    MakeNullMove(node);
    TMoveList replies;
    replies.count = GetLegalMoves(node, replies.moves);
    facts.blackMoves = replies.count;
    u64 movers = 0;
    for (const TMove reply : replies) {
        if (reply.from != node.BlackKingSquare())
            movers |= u64{1} << reply.from;
    }
    facts.movableBlackMen = std::popcount(movers);
}

bool IsOneWhiteBishop(const TChessboard& node) {
    return node.m_counts[kWhiteBishops] == 1 && CountWhiteMen(node) == 2;
}

// Men that stand in each other's way: enough of them, and next to nothing to play for black.
bool IsClosed(const TChessboard& node, const TSelectionFacts& facts) {
    constexpr int kManyMen = 12;
    constexpr int kFewMoves = 4;
    return CountWhiteMen(node) + CountBlackMen(node) >= kManyMen && facts.blackMoves <= kFewMoves;
}

// Black has men besides the king, and one of them at most can move.
bool IsTied(const TChessboard& node, const TSelectionFacts& facts) {
    return !IsBlackBare(node) && facts.movableBlackMen <= 1;
}

// A task long enough, and a white side that can check again and again.
bool SuitsForcedMates(const TSelectionFacts& facts) {
    constexpr int kFewFlights = 3;
    return facts.WhiteHeavy() > 0 && facts.flights <= kFewFlights;
}

u32 ClassWordOf(const TChessboard& node, const TSelectionFacts& facts) {
    constexpr int kSmallMaterial = 8;
    constexpr int kManyReplies = 12;
    const bool hasReplies = node.m_whiteInCheck == kNotInCheck;
    const auto bit = [](bool isOn, u32 value) { return isOn ? value : 0; };
    const int men = CountBlackMenAroundKing(node);
    return bit(facts.whiteFigures + facts.blackFigures < kSmallMaterial, kClassSmallMaterial) |
           bit(facts.edgeDistance <= 1, kClassKingOnEdge) |
           bit(men >= kGeometry.kingCount[node.BlackKingSquare()] - 1, kClassWalledKing) |
           bit(hasReplies && IsClosed(node, facts), kClassClosed) |
           bit(SuitsForcedMates(facts), kClassForcedMates) |
           bit(facts.blackMoves >= kManyReplies, kClassManyReplies) |
           bit(facts.whiteFigures + facts.blackFigures == 0, kClassPawnsOnly) |
           bit(IsOneWhiteBishop(node), kClassLoneBishop) |
           bit(hasReplies && IsTied(node, facts), kClassTied) |
           bit(IsBlackBare(node), kClassBareKing);
}

}  // namespace

TSelectionFacts FindSelectionFacts(TChessboard& root, int moveCount, int forcedMoves) {
    TSelectionFacts facts;
    facts.halfMoves = root.m_nMoves;
    facts.moveCount = moveCount;
    facts.forcedMoves = forcedMoves;
    facts.men = CountWhiteMen(root) + CountBlackMen(root);
    facts.whiteMaterial = MaterialOf(root, 0);
    facts.blackMaterial = MaterialOf(root, 1);
    facts.whiteFigures = CountWhiteFigures(root);
    facts.blackFigures = CountBlackFigures(root);
    facts.whiteQueens = root.m_counts[kWhiteQueens];
    facts.whiteRooks = root.m_counts[kWhiteRooks];
    CountReplies(root, facts);
    facts.flights = std::popcount(SafeKingSteps(root));
    facts.edgeDistance = EdgeDistance(root.BlackKingSquare());
    facts.kingDistance = KingDistance(root.WhiteKingSquare(), root.BlackKingSquare());
    facts.classWord = ClassWordOf(root, facts);
    return facts;
}

}  // namespace quillmere
