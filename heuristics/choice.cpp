#include "heuristics/choice.h"

#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/blocked_list.h"
#include "heuristics/heur_params.h"

#include <algorithm>
#include <cassert>

namespace quillmere {
namespace {

bool IsSameList(const THeuristicSettings& a, const THeuristicSettings& b) {
    return a.BlockedFigureCount == b.BlockedFigureCount &&
           std::equal(std::begin(a.BlockedFigureSquares),
                      std::end(a.BlockedFigureSquares),
                      std::begin(b.BlockedFigureSquares));
}

// Between the squares of the user and those of the board, in both directions.
void TurnSquares(THeuristicChoice& choice) {
    THeuristicSettings& s = choice.settings;
    const auto turn = [&choice](u8& square) { square = TurnedSquare(choice, square); };
    std::ranges::for_each(s.ZugzwangTriangleSquares, turn);
    std::ranges::for_each(s.BlockedFigureSquares, turn);
    std::ranges::for_each(s.BlockedFigureInitialSquares, turn);
    std::for_each(
        s.PendingBlockRemovals, s.PendingBlockRemovals + s.PendingBlockRemovalCount, turn);
    for (u8* square : {&s.KeySquare,
                       &s.KeyWhiteFigureSquare,
                       &s.KeyWhiteFigurePinned,
                       &s.SeaSnakePendulum1,
                       &s.SeaSnakePendulum2,
                       &s.SeaSnakeApproach,
                       &s.SeaSnakeTurnBack,
                       &s.BlackFigureOnDiagonal})
        turn(*square);
    std::ranges::for_each(choice.KeyDiagonalSquares, turn);
}

}  // namespace

u8 TurnedSquare(const THeuristicChoice& choice, u8 square) {
    constexpr u8 kTurn = 56;
    return choice.areColoursSwapped && square < kSquareCount ? square ^ kTurn : square;
}

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
        choice.areColoursSwapped = context.areColoursSwapped;
        choice.HasZugzwangPosition = context.HasZugzwangPosition;
        std::ranges::copy(context.ZugzwangBoard, choice.ZugzwangBoard);
    }
    TurnSquares(choice);
    return choice;
}

void StoreChoice(TChessboard& node, const THeuristicChoice& given) {
    assert(node.m_threadContext != nullptr && node.m_searchContext != nullptr);
    THeuristicChoice choice = given;
    TurnSquares(choice);
    TSearchContext& context = *node.m_searchContext;
    const bool isSameList = IsSameList(node.m_threadContext->heuristics, choice.settings);
    node.m_threadContext->heuristics = choice.settings;
    if (!isSameList)
        TrackBlockedFigures(node);
    std::ranges::copy(choice.KeyDiagonalSquares, context.KeyDiagonalSquares);
    context.KeyLineFile = choice.KeyLineFile;
    context.HasZugzwangPosition = choice.HasZugzwangPosition;
    std::ranges::copy(choice.ZugzwangBoard, context.ZugzwangBoard);
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
