// The heuristics after black's replies against the judge.
//
// Every bit whose rule acts there, alone and in pairs, with parameters drawn at random, is forced on
// positions that have nothing to do with it: the rules may be as wrong about the solution as they
// like, and must be right even so. A mate that is found is a mate; "no mate", which a search under
// assumptions may say only where none of them was used, is true as well. And no rule moves a man.
#include "core/legality.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/rules.h"
#include "search/mate_search.h"
#include "tests/support/bridge.h"
#include "tests/support/families.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {
namespace {

using reference::CBruteForce;
using reference::CRandom;
using reference::TPosition;

constexpr std::uint64_t kMoveLimit = 3'000'000;
constexpr int kMostFailures = 5;

// A word without a rule: what a search doubts under it owes nothing to the rules of the replies.
constexpr u32 kIdleWord = SH_KEYSQUARE;

struct TBit {
    u32 bit;
    const char* name;
    // Its rule leaves replies out often enough with random parameters for the suite to see it.
    bool isSeen;
    // The men that the rule is about, as in TRecipe.
    std::string_view whiteLetters = "QRBNP";
    std::string_view blackLetters = "QRBNP";
    // The rule acts with this many half-moves at the root, black to move; 0 for any number.
    int halfMoves = 0;
};

constexpr TBit kBits[] = {
    {SH_AREKINGSNEAR, "kings near", true, "RRBNP"},
    {SH_KEEPKINGONTHEEDGE, "edge", true},
    {SH_KEEPKINGWITHINEXTEDGE, "ext. edge", true},
    {SH_DONTLETFIGUREUNBLOCK, "blocked figures", true},
    {SH_DONTLETPROMOTEDQUEENMOVE, "promoted queen", true, "QRBNP", "PPPB"},
    {SH_KEYLINE, "key line", true, "QRBNP", "RRP"},
    {SH_KEYDIAGONAL, "key diagonal", true, "QRBNP", "BBP"},
    {SH_SAVEQUEENROOK, "save queen/rook", true, "QRBNP", "QRBN"},
    {SH_DONTLOSEANYFIGURES, "lost figures", true},
    {SH_DONTLETBLACKQUEENCHECKTWICE, "queen checks twice", true, "QRBNP", "QQP"},
    {SH_SINGLEQUEENMATE, "single queen", false},
    {SH_3MOVESTOMATE, "three moves", true, "RBNP", "PBN", 6},
    {SH_KEYWHITEFIGURE, "key white figure", false},
    {SH_CAPTUREKNIGHT, "capture knight", true, "QRBNPP", "NNB"},
    {SH_DONTLETPROMOTEDFIGUREMOVE, "promoted figure", true, "QRBNP", "PPPB"},
    {SH_KEEPKINGNEARCORNER, "near corner", true},
    {SH_SEASNAKE, "sea snake", true},
    {SH_REDUCTIONTOGLOBREGPOS, "reduction", false},
};

int SquareOfMan(CRandom& random, const TChessboard& board, u8 colour) {
    std::vector<int> squares;
    for (int square = 0; square < kSquareCount; ++square) {
        if ((board.m_board[square] & colour) != 0)
            squares.push_back(square);
    }
    return squares[static_cast<std::size_t>(random.Below(static_cast<int>(squares.size())))];
}

// A root under test, with the parameters of all heuristics drawn.
class CForcedRoot {
public:
    CForcedRoot(CRandom& random, const TPosition& position, int halfMoves)
        : m_thread(static_cast<u16>(halfMoves)) {
        bridge::FillBoard(m_root, position);
        m_root.m_searchContext = &m_context;
        m_root.m_threadContext = &m_thread;
        m_root.m_pass = kPassHeuristics;
        m_thread.rootNode = &m_root;
        SetupAnalysisRoot(m_root, static_cast<u16>(halfMoves), true);
        m_root.m_pass = kPassHeuristics;
        DrawCounts(random);
        DrawEdges(random);
        DrawSquares(random);
        DrawOthers(random);
        DrawTracked(random);
    }
    TChessboard& Root() { return m_root; }
    void Force(u32 heur) { SetHeur(m_root, heur); }

private:
    THeuristicSettings& Settings() { return m_thread.heuristics; }

    void DrawCounts(CRandom& random) {
        for (std::size_t kind = 0; kind < 5; ++kind) {
            const int more = random.Chance(30) ? random.Below(3) : 0;
            Settings().InitialWhiteCounts[kind] = static_cast<u8>(m_root.m_counts[2 * kind] + more);
            Settings().InitialBlackCounts[kind] =
                static_cast<u8>(m_root.m_counts[2 * kind + 1] + (random.Chance(20) ? 1 : 0));
        }
    }
    void DrawEdges(CRandom& random) {
        THeuristicSettings& s = Settings();
        s.StrictKingMove = random.Chance(40);
        s.KingMoveExceptions = s.StrictKingMove && random.Chance(40);
        s.ExtEdgeStrict = random.Chance(30);
        s.EdgeSquaresInclCorner = random.Chance(30);
        s.NearCornerDistance = static_cast<i8>(random.Between(-2, 5));
        s.RelaxAfterCaptures = static_cast<u8>(random.Chance(50) ? 0 : random.Between(1, 2));
        s.RelaxCapturesCountPawns = random.Chance(50);
        s.RelaxOnlyExtEdge = random.Chance(20);
        s.RelaxOnAdvancedPawn = random.Chance(40);
        s.SkipDeferIfBalanceFixed = random.Chance(40);
        s.DeferCheckMoves = static_cast<u16>(random.Chance(50) ? 0 : random.Between(1, 2));
    }
    void DrawSquares(CRandom& random) {
        THeuristicSettings& s = Settings();
        const int key = SquareOfMan(random, m_root, kBlack);
        m_context.KeyLineFile = static_cast<u8>(FileOf(key));
        m_context.KeyDiagonalSquares[0] = static_cast<u8>(key);
        m_context.KeyDiagonalSquares[1] =
            static_cast<u8>((key + (random.Chance(50) ? 9 : 7)) % kSquareCount);
        s.KeyWhiteFigureSquare = static_cast<u8>(SquareOfMan(random, m_root, kWhite));
        s.KeyWhiteFigurePinned = static_cast<u8>(SquareOfMan(random, m_root, kBlack));
        s.SeaSnakePendulum1 = static_cast<u8>(SquareOfMan(random, m_root, kBlack));
        s.SeaSnakePendulum2 = static_cast<u8>(random.Below(kSquareCount));
        s.SeaSnakeByUser = random.Chance(70);
    }
    void DrawOthers(CRandom& random) {
        THeuristicSettings& s = Settings();
        s.LoseFiguresMode = static_cast<u8>(random.Below(3));
        s.LoseFiguresAllowance = static_cast<u8>(random.Below(2));
        s.LessExceptions = random.Chance(50);
        s.PromotionSafety = random.Chance(30);
        s.ActiveHeur = random.Chance(20) ? u32{SH_SWEEPINGWHITEROOK} : 0;
    }
    void DrawTracked(CRandom& random) {
        int count = 0;
        for (int square = 0; square < kSquareCount && count < kMaxBlockedFigures; ++square) {
            if (!IsBlack(m_root.m_board[square]) || !random.Chance(40))
                continue;
            m_root.m_trackedFigures[count] = static_cast<i8>(square);
            Settings().BlockedFigureSquares[count] = static_cast<u8>(square);
            Settings().BlockedFigureInitialSquares[count] = static_cast<u8>(square);
            Settings().BlockedFigureCount = static_cast<u8>(++count);
        }
    }

    TSearchContext m_context;
    TThreadContext m_thread;
    TChessboard m_root{};
};

struct TTally {
    int cases = 0;
    int mates = 0;
    int noMates = 0;
    int doubtful = 0;
    int lostMates = 0;  // doubtful, and there is a mate
    int ruled = 0;      // doubtful with the word, not with the idle one
};

bool HasFailedOften() {
    const auto* result = testing::UnitTest::GetInstance()->current_test_info()->result();
    return result->total_part_count() >= kMostFailures;
}

std::optional<bool> IsMateOfJudge(const TPosition& position, int halfMoves) {
    try {
        return CBruteForce(kMoveLimit).WhiteMates(position, halfMoves);
    } catch (const reference::COutOfMoves&) {
        return std::nullopt;
    }
}

TVerdict Search(TChessboard& node) {
    return node.IsWhiteToMove() ? FindMate(node, true) : CheckDefences(node);
}

std::string NameOfCase(const TPosition& position, int halfMoves, u32 heur) {
    return reference::ToFen(position) + ", " + std::to_string(halfMoves) + " half-moves, word " +
           std::to_string(heur);
}

void CheckCase(CRandom& random, const TPosition& position, int halfMoves, u32 heur, TTally& tally) {
    const std::optional<bool> isMate = IsMateOfJudge(position, halfMoves);
    CForcedRoot forced(random, position, halfMoves);
    if (!isMate || (position.isWhiteToMove && forced.Root().m_blackInCheck >= 0))
        return;
    ++tally.cases;
    forced.Force(kIdleWord);
    const bool isIdleExact = Search(forced.Root()) != kDoubtful;
    forced.Force(heur);
    u8 before[kSquareCount];
    std::copy(std::begin(forced.Root().m_board), std::end(forced.Root().m_board), before);
    const TVerdict verdict = Search(forced.Root());
    EXPECT_EQ(std::memcmp(before, forced.Root().m_board, kSquareCount), 0)
        << NameOfCase(position, halfMoves, heur) << ": the board has changed";
    if (verdict == kMate) {
        ++tally.mates;
        EXPECT_TRUE(*isMate) << NameOfCase(position, halfMoves, heur) << ": no mate";
    } else if (verdict == kNoMate) {
        ++tally.noMates;
        EXPECT_FALSE(*isMate) << NameOfCase(position, halfMoves, heur) << ": a mate";
    } else {
        ++tally.doubtful;
        tally.lostMates += *isMate ? 1 : 0;
        tally.ruled += isIdleExact ? 1 : 0;
    }
}

TPosition DrawPosition(CRandom& random, const TBit& bit, int fullMoves, bool isWhiteToMove) {
    if (isWhiteToMove && random.Chance(25)) {
        const auto& families = reference::Families();
        const auto& family =
            families[static_cast<std::size_t>(random.Below(static_cast<int>(families.size())))];
        return reference::DrawBeforeMate(random, family, std::min(fullMoves, family.fullMoves));
    }
    reference::TRecipe recipe =
        reference::RandomMateRecipe(random, random.Between(4, 8), fullMoves);
    recipe.isWhiteToMove = isWhiteToMove;
    // What the rules are about: black promotions, queens that check, knights, men to lose.
    recipe.whiteLetters = bit.whiteLetters;
    recipe.blackLetters = bit.blackLetters;
    recipe.blackMen += random.Chance(50) ? 1 : 0;
    recipe.blackPawnsFarAhead = random.Chance(30) ? 80 : 0;
    return reference::RandomPosition(random, recipe);
}

// The men are those of `bit`, one of the word.
void CheckBits(const TBit& bit, u32 heur, std::uint64_t seed, int cases, TTally& tally) {
    CRandom random(seed);
    for (int i = 0; i < cases && !HasFailedOften(); ++i) {
        const bool isWhiteToMove = bit.halfMoves == 0 && random.Chance(75);
        // Mates in two to four for white; black has the same number of moves before the mate.
        const int fullMoves = bit.halfMoves != 0  ? bit.halfMoves / 2
                              : random.Chance(10) ? 4
                                                  : random.Between(2, 3);
        const int halfMoves = isWhiteToMove ? HalfMovesOfMate(fullMoves) : 2 * fullMoves;
        CheckCase(
            random, DrawPosition(random, bit, fullMoves, isWhiteToMove), halfMoves, heur, tally);
    }
}

TEST(BlackRules, EveryBitAloneNeverLies) {
    constexpr int kCases = 120;
    std::uint64_t seed = 1000;
    for (const TBit& bit : kBits) {
        TTally tally;
        CheckBits(bit, bit.bit, seed++, kCases, tally);
        EXPECT_GT(tally.cases, kCases / 2) << bit.name;
        EXPECT_GT(tally.mates, 5) << bit.name;
        EXPECT_GT(tally.noMates, 5) << bit.name;
        if (bit.isSeen) {
            EXPECT_GT(tally.ruled, 0) << bit.name << " was never used";
        }
    }
}

TEST(BlackRules, PairsNeverLie) {
    constexpr int kPairs = 150;
    constexpr int kCases = 8;
    CRandom random(77);
    TTally tally;
    for (int i = 0; i < kPairs; ++i) {
        const TBit& bit = kBits[random.Below(static_cast<int>(std::size(kBits)))];
        const u32 heur = bit.bit | kBits[random.Below(static_cast<int>(std::size(kBits)))].bit;
        CheckBits(bit, heur, random.Next(), kCases, tally);
    }
    EXPECT_GT(tally.mates, 50);
    EXPECT_GT(tally.noMates, 50);
    EXPECT_GT(tally.ruled, 50);
    EXPECT_GT(tally.lostMates, 0);
}

TEST(BlackRules, AllTogetherNeverLie) {
    u32 heur = 0;
    for (const TBit& bit : kBits)
        heur |= bit.bit;
    TTally tally;
    for (const TBit& bit : kBits)
        CheckBits(bit, heur, 4242 + bit.bit, 30, tally);
    EXPECT_GT(tally.mates, 50);
    EXPECT_GT(tally.noMates, 50);
    EXPECT_GT(tally.ruled, 50);
}

}  // namespace
}  // namespace quillmere
