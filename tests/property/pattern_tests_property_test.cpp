// The pattern tests of the root on random positions: they look and change nothing, their lists are
// lists of legal moves, and the island is what a slow walk by the rules of the game says.
#include "core/geometry.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/block_finder.h"
#include "heuristics/corner_distance.h"
#include "heuristics/heur_params.h"
#include "heuristics/island.h"
#include "heuristics/key_figures.h"
#include "heuristics/sea_snake.h"
#include "heuristics/sea_snake_detector.h"
#include "heuristics/zugzwang_triangles.h"
#include "tests/support/boards.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"
#include "tests/support/white_rules.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using reference::CRandom;
using reference::TPlainMove;
using reference::TPosition;
using test::CWhiteRuleBoard;

constexpr u16 kHalfMoves = 17;
constexpr char kNone = '.';

// Few men, pawns above all: the patterns live there.
TPosition RandomPawnPosition(CRandom& random) {
    reference::TRecipe recipe;
    recipe.whiteMen = random.Between(0, 4);
    recipe.blackMen = random.Between(1, 9);
    recipe.whiteLetters = "PPBNRQ";
    recipe.blackLetters = "PPPPPPPPBNRQ";
    recipe.kingsClose = 20;
    recipe.isMaterialOfGame = true;
    return reference::RandomPosition(random, recipe);
}

TEST(PatternTests, LeaveTheNodeAsItWas) {
    CRandom random(35001);
    int found[9] = {};
    for (int i = 0; i < bridge::CasesOf(4000); ++i) {
        const TPosition position = RandomPawnPosition(random);
        CWhiteRuleBoard board(reference::ToFen(position), kHalfMoves, SH_DONTLETFIGUREUNBLOCK);
        TChessboard& root = board.Root();
        board.Settings().BlockedFigureCount = 1;
        ComputeHeurParams(root);
        const TChessboard before = root;
        const THeuristicSettings settings = board.Settings();
        TSeaSnakeSquares snake;
        SeaSnakeDetect(root, snake, kHalfMoves);
        u8 squares[2];
        found[0] += snake.approach != kNoSquare ? 1 : 0;
        found[1] += FindZugzwangTriangle(root, squares) ? 1 : 0;
        found[2] += FindBlockedFigures(root).empty() ? 0 : 1;
        found[3] += FindKeyLine(root) != kNoSquare ? 1 : 0;
        found[4] += FindKeyDiagonal(root, squares) ? 1 : 0;
        found[5] += FindKeySquare(root) != kNoSquare ? 1 : 0;
        found[6] += FindKeyWhiteFigure(root).square != kNoSquare ? 1 : 0;
        found[7] += CornerDistance(root) != 0 ? 1 : 0;
        found[8] += SuitsSweepingRook(root) ? 1 : 0;
        ASSERT_EQ(std::memcmp(&before, &root, sizeof before), 0) << reference::ToFen(position);
        ASSERT_EQ(board.Settings(), settings) << reference::ToFen(position);
        ASSERT_TRUE(board.Context().SeaSnakeOnlyAfter.empty());
    }
    if (!bridge::kIsSanitized) {
        for (int i = 0; i < 9; ++i)
            EXPECT_GT(found[i], 0) << "pattern " << i << " never met";
    }
}

// A plan around the king, right or wrong.
void SetRandomPlan(CWhiteRuleBoard& board, CRandom& random) {
    THeuristicSettings& settings = board.Settings();
    const int king = board.Root().WhiteKingSquare();
    const auto near = [&] {
        return random.Chance(30) ? static_cast<u8>(king)
               : random.Chance(70)
                   ? kGeometry.kingTargets[king][random.Below(kGeometry.kingCount[king])]
                   : static_cast<u8>(random.Below(64));
    };
    settings.SeaSnakeApproach = near();
    settings.SeaSnakeTurnBack = near();
    settings.SeaSnakePendulum1 =
        random.Chance(50) ? static_cast<u8>(board.Root().BlackKingSquare()) : kNoSquare;
    settings.SeaSnakePendulum2 = static_cast<u8>(random.Below(64));
    settings.SeaSnakeByUser = random.Chance(30);
    for (u8& corner : settings.ZugzwangTriangleSquares)
        corner = near();
    for (int i = 2 * random.Below(3); i > 0; --i)
        board.Context().SeaSnakeOnlyAfter.push_back(MakeMove(random.Below(64), random.Below(64)));
}

TEST(PatternLists, HoldLegalMovesEachOnceAndNeverNone) {
    CRandom random(35002);
    int lists[2] = {};
    for (int i = 0; i < bridge::CasesOf(6000); ++i) {
        const TPosition position = RandomPawnPosition(random);
        if (reference::IsInCheck(position, true))
            continue;
        CWhiteRuleBoard board(reference::ToFen(position), kHalfMoves, 0);
        SetRandomPlan(board, random);
        std::set<TPlainMove> legal;
        for (const TPlainMove move : reference::LegalMoves(position))
            legal.insert(move);
        for (const bool isSnake : {true, false}) {
            TMoveList list;
            if (!(isSnake ? SeaSnakeMoves(board.Root(), list) : TriangleMoves(board.Root(), list)))
                continue;
            lists[isSnake ? 1 : 0] += 1;
            ASSERT_GT(list.count, 0) << reference::ToFen(position);
            std::set<TPlainMove> met;
            for (const TMove move : list) {
                EXPECT_TRUE(met.insert(bridge::ToPlain(move)).second);
                // The triangle lists what the generators do; the snake's moves are legal.
                EXPECT_TRUE(!isSnake || legal.count(bridge::ToPlain(move)) == 1)
                    << reference::ToFen(position) << " " << test::TextOfMove(move);
            }
        }
    }
    EXPECT_GT(lists[0], bridge::CasesOf(500));
    EXPECT_GT(lists[1], bridge::CasesOf(500));
}

// The island by the rules of the game

TPosition WithKingOn(TPosition position, int square) {
    position.squares[position.whiteKing] = kNone;
    position.squares[square] = 'K';
    position.whiteKing = static_cast<signed char>(square);
    position.enPassantFile = -1;
    return position;
}

bool IsBlackLetter(char man) {
    return man >= 'a' && man <= 'z';
}

// Every square that the king walks to while black passes.
std::set<int> WalkOf(const TPosition& position) {
    std::set<int> walked = {position.whiteKing};
    std::vector<int> todo(walked.begin(), walked.end());
    while (!todo.empty()) {
        const int from = todo.back();
        todo.pop_back();
        for (int to = 0; to < 64; ++to) {
            const int df = std::abs(to % 8 - from % 8);
            const int dr = std::abs(to / 8 - from / 8);
            const char man = position.squares[to];
            const bool isFree = man == kNone || man == 'K' || IsBlackLetter(man);
            if (std::max(df, dr) == 1 && isFree && walked.count(to) == 0 &&
                !reference::IsAttacked(WithKingOn(position, to), to, false)) {
                walked.insert(to);
                todo.push_back(to);
            }
        }
    }
    return walked;
}

bool IsIsland(const TPosition& position, int square) {
    const int home = position.whiteKing;
    const std::size_t land = WalkOf(position).size();
    TPosition trial = WithKingOn(position, square);
    trial.isWhiteToMove = false;
    if (reference::IsAttacked(trial, square, false))
        return false;
    for (const TPlainMove push : reference::LegalMoves(trial)) {
        if (trial.squares[push.from] != 'p' || push.from % 8 != push.to % 8 ||
            std::abs(push.from % 8 - square % 8) > 1)
            continue;
        const TPosition after = reference::After(trial, push);
        const std::set<int> walk = WalkOf(after);
        const bool canTake = std::any_of(
            walk.begin(), walk.end(), [&](int s) { return IsBlackLetter(after.squares[s]); });
        if (!canTake && walk.count(home) == 0 && walk.size() * 2 < land)
            return true;
    }
    return false;
}

TEST(Island, IsWhatAWalkByTheRulesSays) {
    CRandom random(35003);
    int caught = 0;
    for (int i = 0; i < bridge::CasesOf(400); ++i) {
        TPosition position = RandomPawnPosition(random);
        const std::string fen = reference::ToFen(position);
        CWhiteRuleBoard board(fen, kHalfMoves, SH_DONTLETFIGUREUNBLOCK);
        const TChessboard before = board.Root();
        for (int square = 0; square < 64; ++square) {
            const char man = position.squares[square];
            if (man != kNone && man != 'p') {
                EXPECT_THROW(CanWhiteKingBeCaughtOnAnIsland(board.Root(), square % 8, square / 8),
                             std::exception);
            } else {
                const bool isCaught =
                    CanWhiteKingBeCaughtOnAnIsland(board.Root(), square % 8, square / 8);
                EXPECT_EQ(isCaught, IsIsland(position, square))
                    << fen << " " << test::TextOfSquare(square);
                caught += isCaught ? 1 : 0;
            }
            ASSERT_EQ(std::memcmp(&before, &board.Root(), sizeof before), 0) << fen;
        }
    }
    EXPECT_GT(caught, bridge::CasesOf(20));
}

}  // namespace
}  // namespace quillmere
