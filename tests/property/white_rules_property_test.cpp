// White's rules under any word and any parameters: they may cost an answer, never make a wrong one.
//
// Words are forced on random positions without asking whether they fit. A mate found under a word is
// a mate of the search without one; "no mate" under a word is true; everything else is doubt. The
// rules change nothing of a node but its word and its marks, and a list of theirs holds moves of the
// plain list only.
#include "core/geometry.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/rules.h"
#include "registers/aggregated_register.h"
#include "search/mate_search.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <set>
#include <string>

namespace quillmere {
namespace {

using reference::CRandom;
using reference::TPosition;

constexpr u32 kLid = SH_DONTLEAVEMAINDIAGONAL | SH_KEEPKINGONTHEEDGE;

// Words that white's side reads, each as small as it acts.
constexpr u32 kWords[] = {
    SH_SWEEPINGWHITEROOK,
    kLid,
    SH_DONTRECEDEBLACKKING,
    SH_ASSERTBLACKKINGSURROUNDED,
    SH_DONTLETPROMOTEDQUEENMOVE,
    SH_DONTLETPROMOTEDFIGUREMOVE,
    SH_DONTLETFIGUREUNBLOCK,
    SH_KEYWHITEFIGURE,
    SH_ZUGZWANG,
    SH_ZUGZWANGTRIANGLES,
    SH_SEASNAKE,
    SH_SKIPWORSTWHITEMOVES,
    SH_KEYSQUARE,
    SH_CAPTUREKNIGHT | SH_KEEPKINGWITHINEXTEDGE,
    SH_KEEPKINGONTHEEDGE | SH_SAVEQUEENROOK,
    SH_ONECOLORPLAYPOSSIBLE,
    SH_USEBLOCKBLACKPAWNSLEVEL,
};
constexpr int kWordCount = static_cast<int>(std::size(kWords));

// A root of its own, with everything that the rules read besides the board.
class CRuleRoot {
public:
    CRuleRoot(const TPosition& position, int halfMoves) : m_thread(static_cast<u16>(halfMoves)) {
        bridge::FillBoard(m_root, position);
        m_root.m_searchContext = &m_context;
        m_root.m_threadContext = &m_thread;
        m_root.m_pass = kPassComplete;
        m_thread.rootNode = &m_root;
        SetupAnalysisRoot(m_root, static_cast<u16>(halfMoves), true);
    }

    void Force(u32 heur, CRandom& random) {
        m_root.Heur = heur;
        m_root.m_pass = kPassHeuristics;
        THeuristicSettings& settings = m_thread.heuristics;
        settings.StrictKingMove = random.Chance(50);
        settings.SurroundedStrict = random.Chance(30);
        settings.AutomaticDynamicRelax = random.Chance(70);
        settings.PromotionSafety = random.Chance(30);
        settings.LessExceptions = random.Chance(70);
        settings.KeySquare = static_cast<u8>(random.Below(64));
        m_thread.blockLevel = static_cast<u16>(2 * random.Between(1, 4));
        TrackFigures();
        SetPin(random);
        SetTriangle(random);
        SetZugzwang(random);
    }

    void Share(TAggregatedTemporaryChessboardRegister& store) {
        m_context.tempRegister = &store;
        m_context.registerRoot = 1;
    }

    TVerdict Run() {
        return m_root.IsWhiteToMove() ? FindMate(m_root, true) : CheckDefences(m_root);
    }
    bool IsDecided() const { return !m_context.isNodeLimitReached; }
    TChessboard& Root() { return m_root; }
    TSearchContext& Context() { return m_context; }

private:
    void TrackFigures() {
        THeuristicSettings& settings = m_thread.heuristics;
        for (int square = 0; square < kSquareCount; ++square) {
            const u8 man = m_root.m_board[square];
            if (!IsBlack(man) || KindOf(man) == kKing ||
                settings.BlockedFigureCount == kMaxBlockedFigures)
                continue;
            const int place = settings.BlockedFigureCount++;
            settings.BlockedFigureSquares[place] = static_cast<u8>(square);
            settings.BlockedFigureInitialSquares[place] = static_cast<u8>(square);
            m_root.m_trackedFigures[place] = static_cast<i8>(square);
        }
    }
    // Any white and black man on a line with the king: the rule must see for itself what is a pin.
    void SetPin(CRandom& random) {
        THeuristicSettings& settings = m_thread.heuristics;
        const int king = m_root.BlackKingSquare();
        for (int key = 0; key < kSquareCount; ++key) {
            if (!IsWhite(m_root.m_board[key]) || key == m_root.WhiteKingSquare())
                continue;
            const int step = LineStep(king, key);
            for (int square = king + step; step != 0 && square != key; square += step) {
                if (IsBlack(m_root.m_board[square])) {
                    settings.KeyWhiteFigureSquare = static_cast<u8>(key);
                    settings.KeyWhiteFigurePinned = static_cast<u8>(square);
                }
            }
        }
        if (random.Chance(10))
            settings.KeyWhiteFigureSquare = static_cast<u8>(random.Below(64));
    }
    void SetTriangle(CRandom& random) {
        const int king = m_root.WhiteKingSquare();
        for (u8& corner : m_thread.heuristics.ZugzwangTriangleSquares)
            corner = kGeometry.kingTargets[king][random.Below(kGeometry.kingCount[king])];
    }
    // A position that one white move reaches, of this node or of a later one.
    void SetZugzwang(CRandom& random) {
        m_context.HasZugzwangPosition = random.Chance(90);
        TChessboard nodes[3];
        nodes[0] = m_root;
        int count = m_root.IsWhiteToMove() && random.Chance(50) ? 1 : 2;
        for (int i = 0; i < count; ++i) {
            TMoveList list;
            const bool isWhite = nodes[i].IsWhiteToMove();
            list.count = isWhite ? GetAllWhiteMoves(nodes[i], list.moves)
                                 : GetAllBlackMoves(nodes[i], list.moves);
            nodes[i + 1] = nodes[i];
            if (list.count == 0)
                continue;
            nodes[i + 1].m_parent = &nodes[i];
            const TMove move = list[random.Below(list.count)];
            const int made = isWhite ? MakeWhiteMoveLegal(nodes[i + 1], move)
                                     : MakeBlackMoveLegal(nodes[i + 1], move);
            if (made != kMoveMade)
                nodes[i + 1] = nodes[i];
        }
        std::memcpy(m_context.ZugzwangBoard, nodes[count].m_board, kSquareCount);
    }

    TSearchContext m_context;
    TThreadContext m_thread;
    TChessboard m_root{};
};

struct TTally {
    int mates = 0;
    int doubts = 0;
    int exact = 0;
    std::set<u32> costByWord;  // words that cost an answer
};

u32 RandomWord(CRandom& random) {
    return kWords[random.Below(kWordCount)] | kWords[random.Below(kWordCount)] |
           (random.Chance(30) ? kWords[random.Below(kWordCount)] : 0);
}

std::string NameOf(const TPosition& position, int halfMoves, u32 heur) {
    char word[16];
    std::snprintf(word, sizeof word, "0x%x", heur);
    return reference::ToFen(position) + ", " + std::to_string(halfMoves) + " half-moves, word " +
           word;
}

void CheckWord(const TPosition& position,
               int halfMoves,
               u32 heur,
               TVerdict plain,
               u64 seed,
               TTally& tally,
               TAggregatedTemporaryChessboardRegister* store = nullptr) {
    CRandom random(seed);
    CRuleRoot root(position, halfMoves);
    if (store != nullptr)
        root.Share(*store);
    root.Force(heur, random);
    const TVerdict verdict = root.Run();
    if (verdict == kMate || verdict == kNoMate) {
        EXPECT_EQ(verdict, plain) << NameOf(position, halfMoves, heur) << ", seed " << seed;
    } else {
        EXPECT_EQ(verdict, kDoubtful) << NameOf(position, halfMoves, heur) << ", seed " << seed;
    }
    tally.mates += verdict == kMate;
    tally.exact += verdict == kNoMate;
    tally.doubts += verdict == kDoubtful;
    if (verdict == kDoubtful)
        tally.costByWord.insert(heur);
}

// The plain verdict, or kNothingKnown if it is doubtful itself or would cost too much.
TVerdict PlainVerdict(const TPosition& position, int halfMoves) {
    constexpr u64 kNodeLimit = 20'000;
    CRuleRoot root(position, halfMoves);
    root.Context().nodeLimit = kNodeLimit;
    const TVerdict verdict = root.Run();
    return root.IsDecided() && verdict != kDoubtful ? verdict : kNothingKnown;
}

// What a position must have besides, for rules that seldom find their case.
using TFits = bool (*)(const TPosition& position);

int BlackKingOf(const TPosition& position) {
    return static_cast<int>(std::find(position.squares, position.squares + 64, 'k') -
                            position.squares);
}

// A white slider stands behind a black man on a line of the black king.
bool HasPin(const TPosition& position) {
    const int king = BlackKingOf(position);
    for (int direction = 0; direction < kDirections; ++direction) {
        int square = king;
        char pinned = '.';
        for (int left = kGeometry.rayLength[king][direction]; left > 0; --left) {
            square += kStep[direction];
            const char man = position.squares[square];
            if (man == '.')
                continue;
            if (pinned == '.' && man >= 'a') {
                pinned = man;
                continue;
            }
            const u8 kind = KindOf(bridge::FigureOfLetter(man));
            if (pinned != '.' && man < 'a' && (kind & kSliderBit[direction]) != 0)
                return true;
            break;
        }
    }
    return false;
}

// A white bishop stands on a long diagonal with the black king.
bool HasBishopOnMainDiagonal(const TPosition& position) {
    const int king = BlackKingOf(position);
    for (const int step : {9, 7}) {
        bool hasKing = false;
        bool hasBishop = false;
        int square = step == 9 ? 0 : 7;
        for (int i = 0; i < 8; ++i, square += step) {
            hasKing |= square == king;
            hasBishop |= position.squares[square] == 'B';
        }
        if (hasKing && hasBishop)
            return true;
    }
    return false;
}

struct TDraw {
    int count;
    int fewestMoves;
    int mostMoves;
    int mostMen;
    u64 seed;
    TFits fits = nullptr;
};

TPosition DrawPosition(const TDraw& draw, CRandom& random, int fullMoves) {
    reference::TRecipe recipe =
        reference::RandomMateRecipe(random, random.Between(3, draw.mostMen), fullMoves);
    recipe.isWhiteToMove = draw.fits != nullptr || random.Chance(75);
    TPosition position = reference::RandomPosition(random, recipe);
    while (draw.fits != nullptr && !draw.fits(position)) {
        recipe = reference::RandomMateRecipe(random, random.Between(4, draw.mostMen), fullMoves);
        recipe.isWhiteToMove = true;
        position = reference::RandomPosition(random, recipe);
    }
    return position;
}

void CheckPositions(const TDraw& draw, TTally& tally) {
    CRandom random(draw.seed);
    for (int i = 0; i < draw.count && !testing::Test::HasFailure(); ++i) {
        const int fullMoves = random.Between(draw.fewestMoves, draw.mostMoves);
        const TPosition position = DrawPosition(draw, random, fullMoves);
        const int halfMoves = position.isWhiteToMove ? 2 * fullMoves - 1 : 2 * fullMoves;
        const TVerdict plain = PlainVerdict(position, halfMoves);
        if (plain == kNothingKnown)
            continue;
        for (const u32 heur : kWords)
            CheckWord(position, halfMoves, heur, plain, random.Next(), tally);
        for (int pair = 0; pair < 6; ++pair)
            CheckWord(position, halfMoves, RandomWord(random), plain, random.Next(), tally);
    }
}

void ExpectBites(const TTally& tally, std::initializer_list<u32> words) {
    for (const u32 heur : words)
        EXPECT_TRUE(tally.costByWord.count(heur) != 0) << std::hex << heur;
}

TEST(WhiteRules, MatesInTwoAndThree_NothingWrongIsSaid) {
    TTally tally;
    CheckPositions({2500, 2, 3, 9, 20261}, tally);
    EXPECT_GT(tally.mates, 10'000);
    EXPECT_GT(tally.exact, 10'000);
    ExpectBites(tally,
                {SH_SWEEPINGWHITEROOK,
                 SH_DONTRECEDEBLACKKING,
                 SH_ASSERTBLACKKINGSURROUNDED,
                 SH_DONTLETFIGUREUNBLOCK,
                 SH_ZUGZWANG,
                 SH_ZUGZWANGTRIANGLES});
}

TEST(WhiteRules, BishopOnTheMainDiagonal_NothingWrongIsSaid) {
    TTally tally;
    CheckPositions({150, 2, 3, 9, 20266, HasBishopOnMainDiagonal}, tally);
    EXPECT_GT(tally.mates, 500);
    EXPECT_GT(tally.exact, 500);
    ExpectBites(tally, {kLid});
}

TEST(WhiteRules, MatesInFour_NothingWrongIsSaid) {
    TTally tally;
    CheckPositions({300, 4, 4, 6, 20262}, tally);
    EXPECT_GT(tally.mates, 1000);
    EXPECT_GT(tally.exact, 1000);
    ExpectBites(tally,
                {SH_SWEEPINGWHITEROOK,
                 SH_DONTRECEDEBLACKKING,
                 SH_ASSERTBLACKKINGSURROUNDED,
                 SH_DONTLETFIGUREUNBLOCK,
                 SH_ZUGZWANG,
                 SH_ZUGZWANGTRIANGLES,
                 SH_SKIPWORSTWHITEMOVES});
}

// Rules that end with few half-moves left act here only.
TEST(WhiteRules, MatesInFiveAndSix_NothingWrongIsSaid) {
    TTally tally;
    CheckPositions({60, 5, 6, 5, 20263}, tally);
    CheckPositions({60, 5, 5, 6, 20267, HasPin}, tally);
    EXPECT_GT(tally.mates, 200);
    EXPECT_GT(tally.exact, 200);
    ExpectBites(tally, {SH_KEYWHITEFIGURE});
}

// What words leave in the register must not mislead a search under other words, or without any.
TEST(WhiteRules, RegisterSharedByAllWords_NothingWrongIsSaid) {
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(16 * test::kMegabyte));
    TTally tally;
    CRandom random(20264);
    for (int i = 0; i < 150 && !HasFailure(); ++i) {
        const int fullMoves = random.Between(3, 4);
        const TPosition position = reference::RandomPosition(
            random, reference::RandomMateRecipe(random, random.Between(3, 6), fullMoves));
        const int halfMoves = 2 * fullMoves - 1;
        const TVerdict plain = PlainVerdict(position, halfMoves);
        if (plain == kNothingKnown)
            continue;
        store.Resize(kBucketsSmall, false);
        for (int word = 0; word < 12; ++word)
            CheckWord(position, halfMoves, RandomWord(random), plain, random.Next(), tally, &store);
        CRuleRoot last(position, halfMoves);
        last.Share(store);
        EXPECT_EQ(last.Run(), plain) << NameOf(position, halfMoves, 0);
    }
    EXPECT_GT(tally.doubts, 100);
    EXPECT_GT(tally.mates, 100);
}

// Single rules

// The same node but for its word, the digest and the marks of promotions.
bool IsSameNode(TChessboard a, TChessboard b) {
    constexpr u16 kMarks = kSearchPromotionAhead | kSearchPromotionPassed;
    for (TChessboard* node : {&a, &b}) {
        node->Heur = 0;
        node->HeurParams = 0;
        node->m_searchFlags &= static_cast<u16>(~kMarks);
    }
    constexpr std::size_t kPadding = 2;
    return std::memcmp(&a, &b, sizeof a - kPadding) == 0;
}

bool IsSubset(const TMoveList& list, const TMoveList& plain) {
    return std::all_of(list.begin(), list.end(), [&](TMove move) {
        const auto isIt = [move](TMove other) { return MovesEqual(move, other); };
        return std::count_if(list.begin(), list.end(), isIt) == 1 &&
               std::any_of(plain.begin(), plain.end(), isIt);
    });
}

struct TRuleTally {
    int lists = 0;
    int leftOut = 0;
    int changedWords = 0;
};

void CheckMove(TChessboard& node, TMove move, TRuleTally& tally) {
    TChessboard child = node;
    child.m_parent = &node;
    if (MakeWhiteMove(child, move) != kMoveMade)
        return;
    const TChessboard before = child;
    UpdateAfterWhiteMove(child);
    const bool isLeftOut = IsMoveLeftOut(child);
    tally.leftOut += isLeftOut;
    tally.changedWords += child.Heur != before.Heur;
    EXPECT_TRUE(IsSameNode(child, before));
    EXPECT_FALSE(isLeftOut && child.m_blackInCheck >= 0 && !BlackHasEvasion(child));
    NoteSingleQueen(child);
    EXPECT_TRUE(IsSameNode(child, before));
}

void CheckRules(TChessboard& node, TRuleTally& tally) {
    TMoveList plain;
    plain.count = GetAllWhiteMoves(node, plain.moves);
    const TChessboard before = node;
    TMoveList list;
    if (ReplaceWhiteMoves(node, list)) {
        ++tally.lists;
        EXPECT_GT(list.count, 0);
        EXPECT_TRUE(IsSubset(list, plain));
    }
    EXPECT_TRUE(IsSameNode(node, before));
    for (const TMove move : plain) {
        IsKingMoveLeftOut(node, move);
        CheckMove(node, move, tally);
    }
    EXPECT_TRUE(IsSameNode(node, before));
}

TEST(WhiteRules, NodesKeepTheirBoards) {
    CRandom random(20265);
    TRuleTally tally;
    for (int i = 0; i < 6000 && !HasFailure(); ++i) {
        // Black moves first, so that its move can be marked as an event.
        reference::TRecipe recipe =
            reference::RandomMateRecipe(random, random.Between(3, 14), random.Between(1, 4));
        recipe.isWhiteToMove = false;
        recipe.isMaterialOfGame = true;
        const TPosition position = reference::RandomPosition(random, recipe);
        CRuleRoot root(position, 2 * random.Between(2, 7));
        root.Force(RandomWord(random) | RandomWord(random), random);
        TMoveList replies;
        replies.count = GetAllBlackMoves(root.Root(), replies.moves);
        TChessboard node = root.Root();
        node.m_parent = &root.Root();
        if (MakeBlackMoveLegal(node, replies[random.Below(replies.count)]) != kMoveMade)
            continue;
        if (random.Chance(50))
            node.m_lastMove.flags |= kMoveMarkEvent;
        CheckRules(node, tally);
        if (HasFailure())
            ADD_FAILURE() << NameOf(position, node.m_nMoves + 1, node.Heur);
    }
    EXPECT_GT(tally.lists, 100);
    EXPECT_GT(tally.leftOut, 1000);
    EXPECT_GT(tally.changedWords, 100);
}

}  // namespace
}  // namespace quillmere
