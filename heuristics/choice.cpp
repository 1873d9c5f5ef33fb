#include "heuristics/choice.h"

#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"

#include <algorithm>
#include <cassert>

namespace quillmere {
namespace {

// The figures are where the list says: this is a root.
void TrackBlockedFigures(TChessboard& node, const THeuristicSettings& settings) {
    for (int i = 0; i < kMaxBlockedFigures; ++i) {
        const u8 square = settings.BlockedFigureSquares[i];
        const bool isUsed = i < settings.BlockedFigureCount && square < kSquareCount;
        node.m_trackedFigures[i] = isUsed ? static_cast<i8>(square) : i8{-1};
    }
}

bool IsSameList(const THeuristicSettings& a, const THeuristicSettings& b) {
    return a.BlockedFigureCount == b.BlockedFigureCount &&
           std::equal(std::begin(a.BlockedFigureSquares),
                      std::end(a.BlockedFigureSquares),
                      std::begin(b.BlockedFigureSquares));
}

}  // namespace

THeuristicChoice ChoiceOf(const TChessboard& node) {
    THeuristicChoice choice;
    choice.heur = node.Heur;
    choice.OneColorMode = node.OneColourMode();
    if (node.m_threadContext != nullptr)
        choice.settings = node.m_threadContext->heuristics;
    if (node.m_searchContext != nullptr) {
        const TSearchContext& context = *node.m_searchContext;
        std::ranges::copy(context.KeyDiagonalSquares, choice.KeyDiagonalSquares);
        choice.KeyLineFile = context.KeyLineFile;
        choice.onlyAfterCount = context.SeaSnakeOnlyAfter.size();
    }
    return choice;
}

void StoreChoice(TChessboard& node, const THeuristicChoice& choice) {
    assert(node.m_threadContext != nullptr && node.m_searchContext != nullptr);
    TSearchContext& context = *node.m_searchContext;
    if (!IsSameList(node.m_threadContext->heuristics, choice.settings))
        TrackBlockedFigures(node, choice.settings);
    node.m_threadContext->heuristics = choice.settings;
    std::ranges::copy(choice.KeyDiagonalSquares, context.KeyDiagonalSquares);
    context.KeyLineFile = choice.KeyLineFile;
    node.m_captureState =
        static_cast<u8>((node.m_captureState & ~kOneColourMask) | choice.OneColorMode);
    SetHeur(node, choice.heur);
}

bool AddBlockedFigure(THeuristicSettings& settings, u8 square) {
    const auto end = settings.BlockedFigureSquares + settings.BlockedFigureCount;
    if (std::find(settings.BlockedFigureSquares, end, square) != end)
        return true;
    if (settings.BlockedFigureCount >= kMaxBlockedFigures)
        return false;
    settings.BlockedFigureInitialSquares[settings.BlockedFigureCount] = square;
    settings.BlockedFigureSquares[settings.BlockedFigureCount++] = square;
    return true;
}

void ClearBlockedFigures(THeuristicSettings& settings) {
    settings.BlockedFigureCount = 0;
    settings.BlockedFiguresEffective = false;
    std::ranges::fill(settings.BlockedFigureSquares, kNoSquare);
    std::ranges::fill(settings.BlockedFigureInitialSquares, kNoSquare);
}

}  // namespace quillmere
