// The search against the judge: verdicts, keys, defences, tries and main lines.
//
// Every case prints its position and its seed when it fails. The shares of mates and of positions
// that a rule decides are asserted, so that the draw cannot grow harmless unnoticed.
#include "core/chess_exception.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/families.h"
#include "tests/support/judged_solve.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

namespace quillmere {
namespace {

using bridge::AgreesWith;
using bridge::Judge;
using bridge::TJudgement;
using reference::CBruteForce;
using reference::CRandom;
using reference::FromFen;
using reference::ToFen;
using reference::TPosition;
using reference::TSimplification;

// One failing case tells what is wrong; a hundred of them tell no more.
constexpr int kMostFailures = 5;

std::uint64_t SeedOf(int group, int number) {
    return static_cast<std::uint64_t>(group) * 1'000'000 + static_cast<std::uint64_t>(number);
}

bool HasBlackMen(const TPosition& position) {
    return std::any_of(std::begin(position.squares), std::end(position.squares), [](char man) {
        return man >= 'a' && man <= 'z' && man != 'k';
    });
}

// Random positions by number of men and length

constexpr int kCasesToThreeMoves = 400;  // for each length 1 to 3 and number of men 3 to 7
constexpr int kCasesOfFourMoves = 120;
static_assert(3 * 5 * kCasesToThreeMoves >= 5000);
static_assert(5 * kCasesOfFourMoves >= 500);

class RandomMates : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(RandomMates, AgreeWithTheJudge) {
    const auto [fullMoves, men] = GetParam();
    const int halfMoves = 2 * fullMoves - 1;
    const int wanted = bridge::CasesOf(fullMoves <= 3 ? kCasesToThreeMoves : kCasesOfFourMoves);
    int none = 0;
    int shorter = 0;
    int exact = 0;
    int withBlackMen = 0;
    int failures = 0;
    int passedOver = 0;
    for (int number = 0; none + shorter + exact < wanted; ++number) {
        ASSERT_LT(number, 100 * wanted) << "the draw does not reach its shares";
        const std::uint64_t seed = SeedOf(10 * fullMoves + men, number);
        CRandom random(seed);
        const TPosition position =
            reference::RandomPosition(random, reference::RandomMateRecipe(random, men, fullMoves));
        const std::optional<TJudgement> judgement = Judge(position, halfMoves);
        if (!judgement) {
            ++passedOver;
            continue;
        }
        // Keep room for mates of the full length.
        int& kind = !judgement->isMate ? none : judgement->isExact ? exact : shorter;
        const int share = !judgement->isMate ? 60 : judgement->isExact ? 100 : 30;
        if (100 * kind >= share * wanted) {
            continue;
        }
        ++kind;
        withBlackMen += HasBlackMen(position);
        const auto agrees = AgreesWith(*judgement, position, halfMoves);
        EXPECT_TRUE(agrees) << "seed " << seed;
        ASSERT_LT(failures += !agrees, kMostFailures);
    }
    if (bridge::kIsSanitized) {
        return;
    }
    EXPECT_GE(10 * (shorter + exact), 3 * wanted);
    EXPECT_GE(10 * exact, wanted);
    EXPECT_GE(5 * withBlackMen, men > 3 ? wanted : 0);
    EXPECT_LE(10 * passedOver, wanted);
}

INSTANTIATE_TEST_SUITE_P(Search,
                         RandomMates,
                         ::testing::Combine(::testing::Range(1, 5), ::testing::Range(3, 8)),
                         [](const auto& row) {
                             return "In" + std::to_string(std::get<0>(row.param)) + "With" +
                                    std::to_string(std::get<1>(row.param)) + "Men";
                         });

// Families where a side rule decides

struct TDraw {
    int random;      // cases drawn from the family
    int beforeMate;  // and taken back from one of its mates
};

constexpr TDraw kDraws[] = {{0, 0}, {2000, 1000}, {800, 500}, {150, 150}, {40, 40}, {12, 12}};

class FamilyMates : public ::testing::TestWithParam<reference::TFamily> {};

TEST_P(FamilyMates, AgreeWithTheJudge) {
    const reference::TFamily& family = GetParam();
    int failures = 0;
    for (int fullMoves = 1; fullMoves <= family.fullMoves; ++fullMoves) {
        const int random = bridge::CasesOf(kDraws[fullMoves].random);
        const int all = random + bridge::CasesOf(kDraws[fullMoves].beforeMate);
        int mates = 0;
        int passedOver = 0;
        for (int number = 0; number < all; ++number) {
            const std::uint64_t seed = SeedOf(100 + fullMoves, number);
            CRandom draw(seed);
            const TPosition position =
                number < random ? family.draw(draw, true) : DrawBeforeMate(draw, family, fullMoves);
            const std::optional<TJudgement> judgement = Judge(position, 2 * fullMoves - 1);
            if (!judgement) {
                ++passedOver;
                continue;
            }
            mates += judgement->isMate;
            const auto agrees = AgreesWith(*judgement, position, 2 * fullMoves - 1);
            EXPECT_TRUE(agrees) << "seed " << seed;
            ASSERT_LT(failures += !agrees, kMostFailures);
        }
        EXPECT_LE(10 * passedOver, all) << fullMoves;
        if (fullMoves == 1) {
            EXPECT_GE(mates, all - random) << "a position before a mate has a mate in one";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Search,
                         FamilyMates,
                         ::testing::ValuesIn(reference::Families()),
                         [](const auto& row) { return std::string(row.param.name); });

// Positions in which the answer changes when one rule is taken away: the search must know the rule.
struct TDecidingRule {
    std::string name;
    std::string family;
    TSimplification without;
    int halfMoves;
    int draws;
    int wanted;
};

class DecidingRule : public ::testing::TestWithParam<TDecidingRule> {};

TEST_P(DecidingRule, AgreesWithTheJudge) {
    const TDecidingRule& rule = GetParam();
    const reference::TFamily& family = reference::FindFamily(rule.family);
    const int draws = bridge::CasesOf(rule.draws);
    const bool isWhiteToMove = rule.halfMoves % 2 != 0;
    int decided = 0;
    int failures = 0;
    for (int number = 0; number < draws; ++number) {
        const std::uint64_t seed = SeedOf(200 + rule.halfMoves, number);
        CRandom random(seed);
        const TPosition position = family.draw(random, isWhiteToMove);
        const std::optional<TJudgement> judgement = Judge(position, rule.halfMoves);
        if (!judgement) {
            continue;
        }
        CBruteForce simple(60'000'000, rule.without);
        const bool isDecided =
            isWhiteToMove ? simple.Keys(position, (rule.halfMoves + 1) / 2) != judgement->keys
                          : simple.HoldingDefences(position, rule.halfMoves) != judgement->defences;
        if (!isDecided) {
            continue;
        }
        ++decided;
        const auto agrees = AgreesWith(*judgement, position, rule.halfMoves);
        EXPECT_TRUE(agrees) << "seed " << seed;
        ASSERT_LT(failures += !agrees, kMostFailures);
    }
    if (!bridge::kIsSanitized) {
        EXPECT_GE(decided, rule.wanted) << "the rule decides too few positions";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Search,
    DecidingRule,
    ::testing::ValuesIn(std::vector<TDecidingRule>{
        {"CastlingIn1", "Castling", {.hasNoCastling = true}, 1, 10000, 40},
        {"CastlingIn2", "Castling", {.hasNoCastling = true}, 3, 5000, 60},
        {"CastlingIn3", "Castling", {.hasNoCastling = true}, 5, 400, 10},
        {"BlackCastlingIn2", "BlackCastling", {.hasNoCastling = true}, 3, 10000, 20},
        {"BlackCastlingFirst", "BlackCastling", {.hasNoCastling = true}, 2, 5000, 20},
        {"EnPassantIn1", "EnPassant", {.hasNoEnPassant = true}, 1, 3000, 20},
        {"EnPassantIn2", "EnPassant", {.hasNoEnPassant = true}, 3, 15000, 20},
        {"EnPassantIn3", "EnPassant", {.hasNoEnPassant = true}, 5, 600, 5},
        {"EnPassantAfterBlack", "EnPassant", {.hasNoEnPassant = true}, 2, 15000, 20},
        {"EnPassantAfterBlackIn2", "EnPassant", {.hasNoEnPassant = true}, 4, 2000, 8},
        {"UnderpromotionIn2", "BlackPromotion", {.hasNoUnderpromotion = true}, 3, 4000, 30},
        {"UnderpromotionIn3", "BlackPromotion", {.hasNoUnderpromotion = true}, 5, 400, 8},
        {"UnderpromotionFirst", "BlackPromotion", {.hasNoUnderpromotion = true}, 2, 3000, 60},
        {"UnderpromotionFirstIn2", "BlackPromotion", {.hasNoUnderpromotion = true}, 4, 1500, 60},
        {"WhiteUnderpromotion", "PawnsOnly", {.hasNoUnderpromotion = true}, 5, 800, 15},
        {"StalemateIn2", "Stalemate", {.isStalemateMate = true}, 3, 1000, 200},
        {"StalemateIn3", "Stalemate", {.isStalemateMate = true}, 5, 150, 40},
        {"StalemateOfMinors", "MinorAndPawn", {.isStalemateMate = true}, 5, 300, 30},
        {"StalemateFirst", "Stalemate", {.isStalemateMate = true}, 4, 500, 40},
    }),
    [](const auto& row) { return row.param.name; });

// Mate-defence tasks: black moves first, an even number of half-moves.

class RandomDefences : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(RandomDefences, AgreeWithTheJudge) {
    const auto [halfMoves, men] = GetParam();
    const int wanted = bridge::CasesOf(halfMoves <= 4 ? 300 : 80);
    int lost = 0;
    int held = 0;
    int failures = 0;
    for (int number = 0; lost + held < wanted; ++number) {
        ASSERT_LT(number, 200 * wanted) << "the draw does not reach its shares";
        const std::uint64_t seed = SeedOf(300 + 10 * halfMoves + men, number);
        CRandom random(seed);
        reference::TRecipe recipe = reference::RandomMateRecipe(random, men, halfMoves / 2);
        recipe.isWhiteToMove = false;
        const TPosition position = reference::RandomPosition(random, recipe);
        const std::optional<TJudgement> judgement = Judge(position, halfMoves);
        if (!judgement || (!judgement->isMate && 10 * held >= 7 * wanted)) {
            continue;
        }
        ++(judgement->isMate ? lost : held);
        const auto agrees = AgreesWith(*judgement, position, halfMoves);
        EXPECT_TRUE(agrees) << "seed " << seed;
        ASSERT_LT(failures += !agrees, kMostFailures);
    }
    if (!bridge::kIsSanitized) {
        EXPECT_GE(10 * lost, 3 * wanted);
    }
}

INSTANTIATE_TEST_SUITE_P(Search,
                         RandomDefences,
                         ::testing::Combine(::testing::Values(2, 4, 6), ::testing::Range(3, 8)),
                         [](const auto& row) {
                             return "Of" + std::to_string(std::get<0>(row.param)) + "With" +
                                    std::to_string(std::get<1>(row.param)) + "Men";
                         });

class FamilyDefences : public ::testing::TestWithParam<reference::TFamily> {};

TEST_P(FamilyDefences, AgreeWithTheJudge) {
    const reference::TFamily& family = GetParam();
    int failures = 0;
    for (const int halfMoves : {2, 4}) {
        const int cases = bridge::CasesOf(halfMoves == 2 ? 600 : 200);
        for (int number = 0; number < cases; ++number) {
            const std::uint64_t seed = SeedOf(400 + halfMoves, number);
            CRandom random(seed);
            const TPosition position = family.draw(random, false);
            const std::optional<TJudgement> judgement = Judge(position, halfMoves);
            if (!judgement) {
                continue;
            }
            const auto agrees = AgreesWith(*judgement, position, halfMoves);
            EXPECT_TRUE(agrees) << "seed " << seed;
            ASSERT_LT(failures += !agrees, kMostFailures);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Search,
                         FamilyDefences,
                         ::testing::ValuesIn(reference::Families()),
                         [](const auto& row) { return std::string(row.param.name); });

// Repetitions: few men, so that lines run back into themselves. The bound must not change anything.

TEST(Repetition, ShortLines_AgreeWithTheJudgeUnderEveryBound) {
    const reference::TFamily& family = reference::FindFamily("FewMen");
    const int cases = bridge::CasesOf(60);
    int mates = 0;
    int failures = 0;
    for (int number = 0; number < cases; ++number) {
        const std::uint64_t seed = SeedOf(500, number);
        CRandom random(seed);
        const int fullMoves = random.Between(3, 4);
        const TPosition position =
            number % 2 == 0 ? family.draw(random, true) : DrawBeforeMate(random, family, fullMoves);
        const std::optional<TJudgement> judgement = Judge(position, 2 * fullMoves - 1, 100'000'000);
        if (!judgement) {
            continue;
        }
        mates += judgement->isMate;
        for (const u16 bound : {u16{0}, u16{3}, u16{5}, u16{65535}}) {
            const auto agrees = AgreesWith(*judgement, position, 2 * fullMoves - 1, bound);
            EXPECT_TRUE(agrees) << "seed " << seed;
            ASSERT_LT(failures += !agrees, kMostFailures);
        }
    }
    EXPECT_GE(5 * mates, cases);
}

TEST(Repetition, MinorEndings_AgreeWithTheJudgeUnderEveryBound) {
    int failures = 0;
    int mates = 0;
    for (const char* name : {"TwoKnights", "OneMinor", "MinorAndPawn", "PawnsOnly", "Stalemate"}) {
        const reference::TFamily& family = reference::FindFamily(name);
        const int fullMoves = std::min(4, family.fullMoves);
        const int cases = bridge::CasesOf(30);
        for (int number = 0; number < cases; ++number) {
            const std::uint64_t seed = SeedOf(510, number);
            CRandom random(seed);
            const TPosition position = DrawBeforeMate(random, family, fullMoves);
            const std::optional<TJudgement> judgement = Judge(position, 2 * fullMoves - 1);
            if (!judgement) {
                continue;
            }
            mates += judgement->isMate;
            for (const u16 bound : {u16{0}, u16{5}, u16{65535}}) {
                const auto agrees = AgreesWith(*judgement, position, 2 * fullMoves - 1, bound);
                EXPECT_TRUE(agrees) << name << " seed " << seed;
                ASSERT_LT(failures += !agrees, kMostFailures);
            }
        }
    }
    EXPECT_GE(mates, bridge::CasesOf(20));
}

// The fortress repeats for ever; a search that skipped black's way back would see a mate.
TEST(Repetition, BlackReturnsForEver_IsNoMateInAnyLength) {
    const TPosition position = FromFen("k7/p2K4/P7/8/8/8/8/2B5 w");
    for (int fullMoves = 1; fullMoves <= 6; ++fullMoves) {
        for (const u16 bound : {u16{0}, u16{65535}}) {
            EXPECT_EQ(bridge::NameOf(bridge::SolveAll(position, 2 * fullMoves - 1, bound).verdict),
                      "no mate")
                << fullMoves << " moves, bound " << bound;
        }
    }
    EXPECT_EQ(CBruteForce().ShortestMate(position, 5), 0);
}

// Tries

TEST(Tries, RandomPositions_AgreeWithTheJudge) {
    const int cases = bridge::CasesOf(400);
    int tries = 0;
    for (int number = 0; number < cases; ++number) {
        const std::uint64_t seed = SeedOf(600, number);
        CRandom random(seed);
        const int fullMoves = number % 4 == 0 ? 3 : 2;
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(5, 7), fullMoves));
        TChessboard board;
        bridge::FillBoard(board, position);
        TSearchContext context;
        TSolveRequest request;
        request.halfMoves = static_cast<u16>(2 * fullMoves - 1);
        request.wantAllKeys = true;
        request.wantTries = true;
        const TSolveResult result = Solve(board, request, context);
        std::vector<std::string> found;
        for (const TTry& move : result.tries) {
            found.push_back(ToText(bridge::ToPlain(move.move)) + "/" +
                            ToText(bridge::ToPlain(move.refutation)));
        }
        std::sort(found.begin(), found.end());
        std::vector<std::string> expected;
        CBruteForce judge;
        for (const reference::TPlainMove move : LegalMoves(position)) {
            if (const auto refutation = judge.OnlyRefutation(position, move, fullMoves)) {
                expected.push_back(ToText(move) + "/" + ToText(*refutation));
            }
        }
        std::sort(expected.begin(), expected.end());
        ASSERT_EQ(found, expected) << ToFen(position) << " in " << fullMoves << ", seed " << seed;
        tries += static_cast<int>(expected.size());
    }
    EXPECT_GT(tries, cases / 2);
}

// Positions that are told by name

struct TNamedPosition {
    std::string name;
    std::string fen;
    int halfMoves;
    std::string answer;  // keys, or holding defences
};

class NamedPosition : public ::testing::TestWithParam<TNamedPosition> {};

TEST_P(NamedPosition, HasItsAnswer) {
    const TNamedPosition& row = GetParam();
    const TPosition position = FromFen(row.fen);
    const std::optional<TJudgement> judgement = Judge(position, row.halfMoves, 500'000'000);
    ASSERT_TRUE(judgement) << "the judge cannot follow " << row.fen;
    EXPECT_EQ(ToText(row.halfMoves % 2 != 0 ? judgement->keys : judgement->defences), row.answer)
        << "the judge does not agree with the row";
    EXPECT_TRUE(AgreesWith(*judgement, position, row.halfMoves));
    EXPECT_TRUE(AgreesWith(*judgement, position, row.halfMoves, 0));
}

INSTANTIATE_TEST_SUITE_P(
    Search,
    NamedPosition,
    ::testing::ValuesIn(std::vector<TNamedPosition>{
        // One minor figure mates where black's own men take its king's flights.
        {"KnightAgainstPawn", "8/8/8/8/8/p2N4/k1K5/8 w", 5, "d3b4"},
        {"KnightAgainstPawnIsNotIn2", "8/8/8/8/8/p2N4/k1K5/8 w", 3, "none"},
        {"TwoKnightsAgainstRook", "8/8/8/8/3N4/r7/8/k1K1N3 w", 5, "e1c2"},
        {"TwoKnightsAgainstKnight", "5N2/6k1/3N4/6K1/8/8/8/n7 w", 11, "f8e6"},
        // Only the knight holds, by guarding the square of the mate.
        {"OnlyTheKnightPromotionHolds", "8/8/8/8/8/1KN5/2p1Q3/k7 b", 2, "c2c1n"},
        // Mates in one by the only figure, or by no figure at all, against flights.
        {"KingDiscoversTheRook", "8/2p1p3/2pkp3/4p3/8/3K4/8/3R4 w", 1, "d3c4"},
        {"RookTakesBesideTheKing", "8/3np3/R1pk2P1/1P1np3/8/7K/8/8 w", 1, "a6c6"},
        {"BishopAgainstTwoFlights", "8/8/8/1b1p4/1k1P4/nP1p4/K7/2B5 w", 1, "c1d2"},
        {"LongCastlingMates", "8/8/8/8/2p2B2/3kP1N1/1P6/R3K3 w", 1, "e1c1"},
        {"ShortCastlingMates", "8/8/4pPp1/3Ppk2/4p1pP/4p3/8/4K2R w", 1, "e1g1 h1f1"},
        // A first move may lose time: its mate goes through the position of the root again.
        {"RookLosesAMove",
         "1k6/8/1K6/8/8/8/8/3R4 w",
         5,
         "d1a1 d1b1 d1c1 d1e1 d1f1 d1g1 d1h1 d1d2 d1d3 d1d4 d1d5 d1d6 d1d7 d1d8 b6c6"},
        {"KingLosesAMove", "k7/3P4/1K2P2P/8/8/8/8/8 w", 5, "b6a6 b6c6 e6e7 h6h7 d7d8q d7d8r"},
        // Ends without a move.
        {"BlackIsStalemated", "k7/2Q5/1K6/8/8/8/8/8 b", 2, "none"},
        {"BlackIsMated", "k7/1Q6/1K6/8/8/8/8/8 b", 2, "none"},
        {"WhiteHasNoMove", "8/8/8/8/8/5k2/5p2/5K2 w", 3, "none"},
        {"WhiteIsMated", "8/8/8/8/8/5k2/8/r4K2 w", 3, "none"},
    }),
    [](const auto& row) { return row.param.name; });

// Positions with black to move in which a rule about material or promotion is nearly wrong. They
// are asked as they stand, in several lengths, and once more from a white move earlier, where the
// nodes of the search meet them and not the root.
struct TNarrowPosition {
    std::string theme;
    std::vector<std::string> fens;
};

class NarrowPositions : public ::testing::TestWithParam<TNarrowPosition> {};

TEST_P(NarrowPositions, AgreeWithTheJudge) {
    for (const std::string& fen : GetParam().fens) {
        const TPosition position = FromFen(fen);
        ASSERT_TRUE(IsLegalPosition(position)) << fen;
        for (const int halfMoves : {2, 4, 6}) {
            if (const std::optional<TJudgement> judgement = Judge(position, halfMoves)) {
                EXPECT_TRUE(AgreesWith(*judgement, position, halfMoves));
            }
        }
        for (int number = 0; number < 12; ++number) {
            CRandom random(SeedOf(700, number));
            TPosition earlier = position;
            if (!TakeBack(random, earlier)) {
                continue;
            }
            for (const int halfMoves : {3, 5}) {
                const std::optional<TJudgement> judgement = Judge(earlier, halfMoves);
                ASSERT_TRUE(judgement);
                EXPECT_TRUE(AgreesWith(*judgement, earlier, halfMoves));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Search,
    NarrowPositions,
    ::testing::ValuesIn(std::vector<TNarrowPosition>{
        // Black must take, and two knights mate the bare king at once.
        {"TwoKnightsAfterASacrifice",
         {"5K1R/7k/5N2/8/5N2/8/8/8 b",
          "7R/5K1k/8/6N1/5N2/8/8/8 b",
          "Qk6/8/NK2N3/8/8/8/8/8 b",
          "8/8/8/2N5/1N6/8/k1K5/Q7 b",
          "8/8/8/8/6N1/7N/8/3K1Qk1 b",
          "8/8/8/8/4N3/8/5K1k/5N1R b"}},
        // One minor figure mates a king that is shut in by two of its figures.
        {"OneMinorAgainstTwoFigures",
         {"8/8/8/8/4B3/8/7b/5Knk b",
          "5bbk/8/5BK1/8/8/8/8/8 b",
          "8/8/8/8/8/1KB5/8/kbb5 b",
          "6bk/7n/6K1/8/8/8/1B6/8 b",
          "8/8/8/8/8/2B5/b1K5/kr6 b",
          "B7/8/8/8/8/6r1/5K1b/7k b",
          "8/8/8/8/3B4/1r6/b7/k1K5 b",
          "8/8/2B5/8/8/7K/5r2/6bk b"}},
        // The knight mates because black's pawn must move.
        {"KnightAgainstPawn",
         {"8/8/8/8/8/7p/5K2/5N1k b",
          "8/8/8/8/6N1/7p/8/5K1k b",
          "8/8/8/8/8/p7/2K5/k1N5 b",
          "8/8/8/8/1N6/p7/8/k1K5 b"}},
        // Bishop or knight hold, by stalemate or by a guard, where the queen is mated later.
        {"PromotionToLess",
         {"8/8/8/8/8/3K4/1p1Q4/k2Q4 b",
          "8/8/8/8/8/4R2K/4R1p1/7k b",
          "8/8/8/8/5B2/5K2/5Rp1/2R2n1k b",
          "8/8/8/8/2N5/K2R4/1p1R4/k7 b",
          "8/7R/8/8/8/2N5/2p5/1R2k1K1 b",
          "8/8/8/8/Q7/p1K5/pp6/k1R5 b",
          "8/8/8/8/8/4Rp1K/6p1/5R1k b",
          "8/8/8/8/3R4/K7/1p1R4/k7 b",
          "8/8/3R4/8/8/5K1p/6pp/2R4k b",
          "8/8/8/8/8/K1P5/1p1p3R/k2R4 b",
          "8/8/8/8/7K/4P3/4R1p1/4R2k b"}},
    }),
    [](const auto& row) { return row.param.theme; });

TEST(NamedPositions, BothSidesOfNoMove_HaveTheirVerdicts) {
    using bridge::NameOf;
    using bridge::SolveAll;
    EXPECT_EQ(NameOf(SolveAll(FromFen("k7/2Q5/1K6/8/8/8/8/8 b"), 2).verdict), "no mate");
    EXPECT_EQ(NameOf(SolveAll(FromFen("k7/1Q6/1K6/8/8/8/8/8 b"), 2).verdict), "mate");
    EXPECT_EQ(NameOf(SolveAll(FromFen("8/8/8/8/8/5k2/5p2/5K2 w"), 1).verdict), "no mate");
    EXPECT_EQ(NameOf(SolveAll(FromFen("8/8/8/8/8/5k2/8/r4K2 w"), 1).verdict), "no mate");
}

}  // namespace
}  // namespace quillmere
