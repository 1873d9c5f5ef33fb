#include "session/problem_indications.h"

#include <algorithm>
#include <limits>

namespace quillmere {
namespace {

// Move numbers of indications are signed 16-bit numbers.
constexpr std::size_t kMaxMoveNumber = std::numeric_limits<i16>::max();

SortIndication IndicationOf(TMove move, std::size_t moveNumber) {
    SortIndication indication;
    indication.from = move.from;
    indication.to = move.to;
    indication.promotion = move.Promotion();
    indication.captureKind = kCaptureEither;
    indication.moveNumber = static_cast<u16>(moveNumber);
    return indication;
}

void AddOnce(TSortIndications& indications, const SortIndication& indication) {
    const auto place = indications.byMoveNumber.find(static_cast<i16>(indication.moveNumber));
    if (place != indications.byMoveNumber.end() &&
        std::find(place->second.begin(), place->second.end(), indication) != place->second.end())
        return;
    AddSortIndication(indications, indication);
}

void AddVariant(TSortIndications& indications, const TProblemVariant& variant) {
    const std::size_t blackMoves = variant.doesBlackBegin ? 1 : 0;
    for (std::size_t i = blackMoves; i < variant.moves.size(); i += 2) {
        const std::size_t moveNumber = (i + blackMoves) / 2 + 1;
        if (moveNumber > kMaxMoveNumber)
            break;
        AddOnce(indications, IndicationOf(variant.moves[i].move, moveNumber));
    }
}

}  // namespace

TSortIndications BuildIndications(const TChessProblem& problem, int useVariants) {
    TSortIndications indications = problem.sortIndications;
    const TProblemVariant* const mainVariant = FindMainVariant(problem.variants);
    const bool wantsMain =
        useVariants >= kMainVariantAsIndications || problem.Has(kProblemUseMainVariant);
    if (wantsMain && mainVariant != nullptr)
        AddVariant(indications, *mainVariant);
    if (useVariants < kAllVariantsAsIndications)
        return indications;
    for (const auto& [name, variant] : problem.variants) {
        if (&variant != mainVariant)
            AddVariant(indications, variant);
    }
    return indications;
}

}  // namespace quillmere
