// The digest of the parameters.
//
// What is doubtful under one setting may be settled under another, so the register keeps doubtful
// positions apart by the word and by this digest. It holds what the rules read besides the board
// and the word: settings, which change between the passes, and what the node remembers of the line
// that led to it. Each value is put behind the ones before, in as many bits as it wants; bits that
// are pushed out at the top come in again at the bottom, so that a long list of parameters does not
// hide the first ones. Two settings may still meet, which costs a mate that a later pass then finds,
// never a wrong verdict: doubtful claims nothing.
//
// Nodes call this, so it allocates nothing and looks at the root's board for blocked figures only.
#include "heuristics/heur_params.h"

#include "core/square_set.h"
#include "core/thread_context.h"

#include <algorithm>
#include <bit>

namespace quillmere {
namespace {

// The digest in the making.
class CFold {
public:
    // Puts a value of `bits` bits behind the others.
    void Put(int bits, u32 value) { m_value = std::rotl(m_value, bits) + value; }
    u32 Value() const { return m_value; }

private:
    u32 m_value = 0;
};

// Bits of the blocked figures: kings and pawns stand behind the others if they do not count
// among them.
constexpr int kBlockedBits = 25;
constexpr int kUncountedShift = 16;

u32 FlagOf(const TChessboard& node, ESearchFlag flag) {
    return (node.m_searchFlags & flag) != 0 ? 1 : 0;
}

// Where a black man of the root stands among the others that count.
int RankAtRoot(const u8* root, int square, bool doKingPawnsCount) {
    const auto isCounted = [&](int s) {
        return doKingPawnsCount || (KindOf(root[s]) & (kKing | kPawn)) == 0;
    };
    TSquareSet white = 0;
    TSquareSet black = 0;
    TakeMen(root, &white, &black);
    const bool isCountedItself = isCounted(square);
    int rank = isCountedItself ? 0 : kUncountedShift;
    ForEachSquare(black & (SetOf(square) - 1),
                  [&](int s) { rank += isCounted(s) == isCountedItself ? 1 : 0; });
    return rank;
}

// Which figures of the list are still there, whether the rule is in force, and, unless the figures
// are told apart by themselves alone, where those stand that have moved.
void PutBlockedFigures(CFold& fold, const TChessboard& node, const THeuristicSettings& settings) {
    const TChessboard* const root =
        node.m_threadContext != nullptr ? node.m_threadContext->rootNode : nullptr;
    const int count = std::min<int>(settings.BlockedFigureCount, kMaxBlockedFigures);
    u32 figures = 0;
    for (int i = 0; i < count; ++i) {
        const u8 initial = settings.BlockedFigureInitialSquares[i];
        if (node.m_trackedFigures[i] < 0)
            continue;
        const bool hasRank = root != nullptr && initial < kSquareCount;
        figures |=
            u32{1} << (hasRank ? RankAtRoot(root->m_board, initial, settings.BlockCountsKingPawns)
                               : i);
    }
    fold.Put(kBlockedBits, figures);
    fold.Put(1, settings.BlockedFiguresEffective);
    if (settings.BlockHashByFigure)
        return;
    for (int i = 0; i < count; ++i) {
        const i8 square = node.m_trackedFigures[i];
        if (square >= 0 && square != static_cast<i8>(settings.BlockedFigureInitialSquares[i]))
            fold.Put(6, static_cast<u32>(square));
    }
}

// The parameters of the entries that have some, from the lowest bit up.
void PutEntries(CFold& fold, const TChessboard& node, const THeuristicSettings& settings) {
    const u32 heur = node.Heur;
    if ((heur & SH_KEEPKINGONTHEEDGE) != 0) {
        fold.Put(1, settings.StrictKingMove && FlagOf(node, kSearchEdgeReleased) == 0 ? 1 : 0);
        fold.Put(1, settings.KingMoveExceptions);
        fold.Put(1, FlagOf(node, kSearchEdgeDeferred));
        fold.Put(1, settings.EdgeSquaresInclCorner);
    }
    if ((heur & SH_ONECOLORPLAYPOSSIBLE) != 0)
        fold.Put(2, node.OneColourMode());
    if ((heur & SH_ZUGZWANGTRIANGLES) != 0) {
        for (const u8 square : settings.ZugzwangTriangleSquares)
            fold.Put(6, square & 63u);
    }
    if ((heur & SH_KEEPKINGWITHINEXTEDGE) != 0) {
        fold.Put(1, settings.ExtEdgeStrict);
        fold.Put(1, FlagOf(node, kSearchEdgeReleased));
        fold.Put(1, FlagOf(node, kSearchEdgeDeferred));
        fold.Put(1, settings.EdgeSquaresInclCorner);
    }
    if ((heur & SH_SAVEQUEENROOK) != 0) {
        fold.Put(1, FlagOf(node, kSearchSaveEvent));
        fold.Put(1, FlagOf(node, kSearchSaveEventSecond));
    }
    if ((heur & SH_DONTLOSEANYFIGURES) != 0)
        fold.Put(2, settings.LoseFiguresMode);
    if ((heur & SH_ASSERTBLACKKINGSURROUNDED) != 0)
        fold.Put(1, settings.SurroundedStrict);
    if ((heur & SH_CAPTUREKNIGHT) != 0)
        fold.Put(1, settings.CaptureKnightParam != 0 ? 1 : 0);
    if ((heur & SH_SKIPWORSTWHITEMOVES) != 0)
        fold.Put(1, 1);
    if ((heur & SH_KEEPKINGNEARCORNER) != 0) {
        // -2..5 without 0 becomes 0..6.
        const int distance = settings.NearCornerDistance;
        fold.Put(3, static_cast<u32>(distance + 1 + (distance < 0 ? 1 : 0)));
    }
}

// The mode counts from 2, so the offsets bring the values down to 0: seven bits are enough for the
// mode (three), the other heuristics or the user's own numbers (three), and the preliminary run.
void PutForcedMate(CFold& fold, const THeuristicSettings& settings) {
    constexpr u32 kOffset = 28;
    constexpr u32 kCustomOffset = 18;
    const u32 mode = settings.FfmMode * 16u;
    const u32 other = static_cast<u32>(settings.FfmWithOther) * 2;
    fold.Put(7, settings.FfmCustom ? mode - kCustomOffset : mode + other - kOffset);
    fold.Put(0, settings.FfmPreliminary);
    if (settings.FfmAddCaptures)
        fold.Put(1, 1);
}

}  // namespace

void ComputeHeurParams(TChessboard& node) {
    static constexpr THeuristicSettings kDefaults;
    if (node.Heur == 0) {
        node.HeurParams = 0;
        return;
    }
    const THeuristicSettings& settings =
        node.m_threadContext != nullptr ? node.m_threadContext->heuristics : kDefaults;
    CFold fold;
    // The zugzwang may rest on the figures that cannot move, so it wants them as the rule itself does.
    if ((node.Heur & (SH_ZUGZWANG | SH_DONTLETFIGUREUNBLOCK)) != 0)
        PutBlockedFigures(fold, node, settings);
    fold.Put(1, settings.ApplyBlockDynamically);
    if ((node.Heur & SH_KEYWHITEFIGURE) != 0)
        fold.Put(6, settings.KeyWhiteFigureSquare);
    PutEntries(fold, node, settings);
    if ((node.Heur & SH_FINDFORCEDMATE) != 0)
        PutForcedMate(fold, settings);
    if ((node.Heur & SH_SINGLEQUEENMATE) != 0)
        fold.Put(2, settings.QueenMateStage);
    node.HeurParams = fold.Value();
}

}  // namespace quillmere
