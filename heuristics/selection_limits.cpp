#include "heuristics/selection_limits.h"

#include <algorithm>
#include <cmath>

namespace quillmere {
namespace {

// Shares of an assumed pass
constexpr double kFirstShare = 0.0025;
constexpr double kLastShare = 0.02;
// Of all trials together, by the pass: where it can hardly be waited for, the trials are the hope.
constexpr double kTotalShare = 0.05;
constexpr double kTotalShareOfLong = 0.3;
constexpr double kLongPass = 2e8;

// Bounds in made moves: a trial below the least sees nothing, and a word that has not shown its mate
// after the most is no better than the narrow searches that come behind the choice.
constexpr double kLeastTrial = 1000;
constexpr double kMostFirst = 60e3;
constexpr double kMostTrial = 1e6;
constexpr double kMostTotal = 4e6;

}  // namespace

// Each white move multiplies the work by the white moves that are worth a search, a fourth or so, since
// most are refuted at once, and of the replies the first one mostly does it. Fitted to solves of
// compositions of 3 to 9 moves.
double AssumedPass(const TSelectionFacts& facts) {
    constexpr double kFixed = 20;
    constexpr double kLeastGrowth = 2.5;
    constexpr double kWhiteShare = 0.23;
    constexpr double kBlackShare = 0.05;
    const double growth =
        std::max(kLeastGrowth, kWhiteShare * facts.moveCount + kBlackShare * facts.blackMoves);
    const double tree = kFixed * std::pow(growth, (facts.halfMoves - 1) / 2.0);
    // With few men the same positions come again and again, and the register knows them.
    constexpr double kPerHalfMove = 60e3;
    constexpr double kMenOfTenfold = 4;
    const double positions =
        kPerHalfMove * facts.halfMoves * std::pow(10.0, facts.men / kMenOfTenfold);
    return std::min(tree, positions);
}

bool IsOutOfReach(const TSelectionFacts& facts) {
    constexpr double kPatience = 1e9;
    return AssumedPass(facts) > kPatience;
}

TTrialLimits TrialLimits(const TSelectionFacts& facts) {
    TTrialLimits limits;
    const double pass = AssumedPass(facts);
    const double share = pass < kLongPass ? kTotalShare : kTotalShareOfLong;
    const double total = std::min(share * pass, kMostTotal);
    if (facts.halfMoves < kTrialHalfMoves || total < kLeastTrial)
        return limits;
    limits.first = static_cast<u64>(std::clamp(kFirstShare * pass, kLeastTrial, kMostFirst));
    limits.last = static_cast<u64>(std::clamp(kLastShare * pass, kLeastTrial, kMostTrial));
    limits.total = static_cast<u64>(total);
    return limits;
}

}  // namespace quillmere
