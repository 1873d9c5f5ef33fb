// The direct mate tests against the judge. They are asked a million times in every search and take
// many short cuts: only moves that can check are made, and quiet checks are left out where the black
// king has too many flights.
#include "core/direct_mates.h"
#include "core/thread_context.h"
#include "tests/support/bridge.h"
#include "tests/support/crowded_positions.h"
#include "tests/support/families.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using reference::CBruteForce;
using reference::CRandom;
using reference::ToFen;
using reference::TPosition;

bool AskProgram(const TPosition& position, int fullMoves) {
    const u16 halfMoves = static_cast<u16>(2 * fullMoves - 1);
    TThreadContext thread(halfMoves);
    TChessboard board;
    bridge::FillBoard(board, position);
    board.m_threadContext = &thread;
    thread.rootNode = &board;
    SetupAnalysisRoot(board, halfMoves, true);
    return fullMoves == 1 ? IsMateInOne(board) : IsMateInTwo(board);
}

// No queen, at most one other white figure, the black king off the edge: where quiet checks may be
// left out.
bool IsExclusionNear(const TPosition& position) {
    const auto count = [&](char man) {
        return std::count(std::begin(position.squares), std::end(position.squares), man);
    };
    const int file = position.blackKing % 8;
    const int rank = position.blackKing / 8;
    return count('Q') == 0 && count('R') + count('B') + count('N') <= 1 && file > 0 && file < 7 &&
           rank > 0 && rank < 7;
}

class DirectMates : public ::testing::TestWithParam<reference::TFamily> {};

TEST_P(DirectMates, AgreeWithTheJudge) {
    const reference::TFamily& family = GetParam();
    for (const int fullMoves : {1, 2}) {
        const int random = bridge::CasesOf(fullMoves == 1 ? 8000 : 600);
        const int beforeMate = bridge::CasesOf(fullMoves == 1 ? 1500 : 300);
        int mates = 0;
        for (int number = 0; number < random + beforeMate; ++number) {
            const auto seed = static_cast<std::uint64_t>(8000000 + 100000 * fullMoves + number);
            CRandom draw(seed);
            const TPosition position =
                number < random ? family.draw(draw, true) : DrawBeforeMate(draw, family, fullMoves);
            const bool isMate = CBruteForce().MateIn(position, fullMoves);
            ASSERT_EQ(AskProgram(position, fullMoves), isMate)
                << family.name << " in " << fullMoves << ", seed " << seed << ' '
                << ToFen(position);
            mates += isMate;
        }
        if (!bridge::kIsSanitized) {
            EXPECT_GE(mates, fullMoves == 1 ? beforeMate : 1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Families,
                         DirectMates,
                         ::testing::ValuesIn(reference::Families()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(DirectMates, HemmedInKings_AgreeWithTheJudge) {
    const reference::TFamily& family = reference::FindFamily("HemmedIn");
    const int cases = bridge::CasesOf(20000);
    int mates = 0;
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(8500000 + number);
        CRandom random(seed);
        const TPosition position =
            number % 2 == 0 ? DrawBeforeMate(random, family, 1) : family.draw(random, true);
        const bool isMate = CBruteForce().MateIn(position, 1);
        ASSERT_EQ(AskProgram(position, 1), isMate) << "seed " << seed << ' ' << ToFen(position);
        mates += isMate && IsExclusionNear(position);
    }
    EXPECT_GE(4 * mates, cases) << "too few mates near the exclusion";
}

TEST(DirectMates, RandomPositions_AgreeWithTheJudge) {
    const int cases = bridge::CasesOf(30000);
    int mates = 0;
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(8600000 + number);
        CRandom random(seed);
        TPosition position = reference::RandomMelee(random, 3 + number % 30);
        if (!position.isWhiteToMove) {
            position = SwapColours(position);
        }
        const bool isMate = CBruteForce().MateIn(position, 1);
        ASSERT_EQ(AskProgram(position, 1), isMate) << "seed " << seed << ' ' << ToFen(position);
        mates += isMate;
    }
    EXPECT_GE(50 * mates, cases);
}

// What a mating move is, where all mating moves of its position are alike.
struct TMateKinds {
    int mates = 0;
    int enPassant = 0;
    int castling = 0;
    int knightPromotions = 0;
    int promotions = 0;
    int doubleChecks = 0;
    int discovered = 0;  // by the moved man's leaving only
    int evasions = 0;    // white was in check

    void Count(const TPosition& position) {
        std::vector<reference::TPlainMove> keys = CBruteForce().Keys(position, 1);
        mates += !keys.empty();
        if (keys.size() != 1)
            return;
        const reference::TPlainMove key = keys.front();
        const TPosition after = After(position, key);
        const char man = position.squares[key.from];
        int checkers = 0;
        bool isMovedManChecking = false;
        for (int square = 0; square < 64; ++square) {
            if (after.squares[square] < 'A' || after.squares[square] > 'Z')
                continue;
            // All others become black men, which still stand in the way.
            TPosition alone = after;
            for (int other = 0; other < 64; ++other) {
                if (other != square && alone.squares[other] >= 'A' && alone.squares[other] <= 'Z')
                    alone.squares[other] = 'p';
            }
            const bool isChecking = IsAttacked(alone, after.blackKing, true);
            checkers += isChecking;
            isMovedManChecking |= isChecking && square == key.to;
        }
        const bool isCastling = man == 'K' && (key.from - key.to == 2 || key.to - key.from == 2);
        castling += isCastling;
        enPassant += man == 'P' && key.from % 8 != key.to % 8 && position.squares[key.to] == '.';
        knightPromotions += key.promotion == 'n';
        promotions += key.promotion != 0;
        doubleChecks += checkers > 1;
        discovered += !isMovedManChecking && !isCastling;
        evasions += IsInCheck(position, true);
    }
};

// Every kind of mate must be met as the only one of its position.
TEST(DirectMates, CrowdedPositions_AgreeWithTheJudge) {
    const int cases = bridge::CasesOf(150'000);
    TMateKinds kinds;
    for (int number = 0; number < cases; ++number) {
        const auto seed = static_cast<std::uint64_t>(8'700'000 + number);
        CRandom random(seed);
        // Castling and captures in passing hardly ever mate in a crowd that is drawn evenly.
        const reference::TFamily* family = number % 10 == 0   ? &reference::FindFamily("EnPassant")
                                           : number % 10 == 1 ? &reference::FindFamily("Castling")
                                                              : nullptr;
        const std::unique_ptr<test::CCrowdedNode> crowded =
            family == nullptr ? std::make_unique<test::CCrowdedNode>(random, 1)
                              : std::make_unique<test::CCrowdedNode>(
                                    random, 1, family->draw(random, family->name == "Castling"));
        const bool isMate = CBruteForce().MateIn(crowded->Position(), 1);
        ASSERT_EQ(IsMateInOne(crowded->Node()), isMate)
            << "seed " << seed << ' ' << ToFen(crowded->Position());
        if (isMate)
            kinds.Count(crowded->Position());
    }
    RecordProperty("enPassant", kinds.enPassant);
    RecordProperty("castling", kinds.castling);
    if (bridge::kIsSanitized)
        return;
    EXPECT_GE(10 * kinds.mates, cases);
    EXPECT_GE(kinds.enPassant, 5);
    EXPECT_GE(kinds.castling, 5);
    EXPECT_GE(kinds.knightPromotions, 10);
    EXPECT_GE(kinds.promotions, 100);
    EXPECT_GE(kinds.doubleChecks, 50);
    EXPECT_GE(kinds.discovered, 100);
    EXPECT_GE(kinds.evasions, 100);
}

}  // namespace
}  // namespace quillmere
