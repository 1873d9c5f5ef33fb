// Laws of the words of the heuristics, over random settings. Every failure names its seed.

#include "core/chess_exception.h"
#include "heuristics/catalogue.h"
#include "heuristics/choice.h"
#include "heuristics/heur_params.h"
#include "heuristics/heuristics_parser.h"
#include "tests/support/random.h"
#include "tests/support/search_board.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CRandom;
using test::CSearchBoard;

constexpr u64 kSeed = 20261121;
constexpr const char* kBoard = "rnbqk3/pp6/8/8/8/8/8/RR5K";

u8 RandomSquare(CRandom& random) {
    return random.Chance(20) ? kNoSquare : static_cast<u8>(random.Below(kSquareCount));
}

u32 RandomWord(CRandom& random) {
    u32 word = 0;
    const int density = random.Below(101);
    for (const THeuristicRow& row : kHeuristicRows)
        word |= random.Chance(density) ? row.bit : 0;
    return word;
}

void RandomizeEdgeRules(CRandom& random, u32 word, THeuristicSettings& settings) {
    settings.StrictKingMove = random.Chance(50);
    settings.KingMoveExceptions = settings.StrictKingMove && random.Chance(50);
    settings.ExtEdgeStrict = random.Chance(50);
    settings.EdgeSquaresInclCorner = random.Chance(50);
    settings.RelaxAfterCaptures = static_cast<u8>(random.Chance(50) ? random.Below(256) : 0);
    settings.RelaxCapturesCountPawns = settings.RelaxAfterCaptures != 0 && random.Chance(50);
    settings.RelaxOnAdvancedPawn = random.Chance(50);
    settings.DeferCheckMoves = static_cast<u16>(random.Chance(50) ? random.Below(65536) : 0);
    if (settings.DeferCheckMoves != 0)
        settings.DeferCheckLimit = static_cast<u16>(random.Below(65536));
    const bool hasRelaxations = settings.RelaxAfterCaptures != 0 || settings.RelaxOnAdvancedPawn ||
                                settings.DeferCheckMoves != 0;
    const bool areBothOn =
        (word & SH_KEEPKINGONTHEEDGE) != 0 && (word & SH_KEEPKINGWITHINEXTEDGE) != 0;
    settings.RelaxOnlyExtEdge = areBothOn && hasRelaxations && random.Chance(50);
}

void RandomizeBlockedFigures(CRandom& random, THeuristicSettings& settings) {
    ClearBlockedFigures(settings);
    settings.BlockedFiguresEffective = random.Chance(50);
    for (int i = random.Below(kMaxBlockedFigures + 1); i > 0; --i)
        AddBlockedFigure(settings, static_cast<u8>(random.Below(kSquareCount)));
    settings.ApplyBlockDynamically = random.Chance(50);
}

// Any settings that a text carries, as a reader of texts leaves them.
THeuristicChoice RandomChoice(CRandom& random, std::size_t onlyAfterCount) {
    THeuristicChoice choice;
    THeuristicSettings& settings = choice.settings;
    choice.heur = RandomWord(random);
    choice.onlyAfterCount = onlyAfterCount;
    choice.OneColorMode = static_cast<u8>(random.Below(4));
    choice.KeyLineFile = random.Chance(20) ? kNoSquare : static_cast<u8>(random.Below(8));
    for (u8& square : choice.KeyDiagonalSquares)
        square = RandomSquare(random);
    RandomizeEdgeRules(random, choice.heur, settings);
    RandomizeBlockedFigures(random, settings);
    settings.BlackFigureOnDiagonal = RandomSquare(random);
    settings.FfmMode = static_cast<u8>(random.Between(2, 9));
    settings.FfmPreliminary = random.Chance(50);
    settings.FfmCustom = random.Chance(50);
    settings.LessExceptions = random.Chance(50);
    settings.LoseFiguresMode = static_cast<u8>(random.Below(3));
    settings.KeySquare = RandomSquare(random);
    settings.SurroundedStrict = random.Chance(50);
    settings.KeyWhiteFigureSquare = RandomSquare(random);
    settings.NearCornerDistance = static_cast<i8>(random.Between(-2, 5));
    settings.SeaSnakeApproach = RandomSquare(random);
    do
        settings.SeaSnakeTurnBack = RandomSquare(random);
    while (settings.SeaSnakeTurnBack == settings.SeaSnakeApproach);
    return choice;
}

// What the text of a choice carries, written field by field where its bit is on.
std::vector<int> CarriedFields(const THeuristicChoice& choice) {
    const THeuristicSettings& s = choice.settings;
    std::vector<int> fields = {static_cast<int>(choice.heur), s.ApplyBlockDynamically};
    const auto add = [&](u32 bits, std::initializer_list<int> values) {
        if ((choice.heur & bits) != 0)
            fields.insert(fields.end(), values);
    };
    add(SH_KEEPKINGONTHEEDGE, {s.StrictKingMove, s.KingMoveExceptions});
    add(SH_KEEPKINGWITHINEXTEDGE, {s.ExtEdgeStrict});
    add(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE,
        {s.EdgeSquaresInclCorner,
         s.RelaxAfterCaptures,
         s.RelaxCapturesCountPawns,
         s.RelaxOnAdvancedPawn,
         s.DeferCheckMoves,
         s.DeferCheckLimit,
         s.RelaxOnlyExtEdge});
    add(SH_ONECOLORPLAYPOSSIBLE, {choice.OneColorMode});
    add(SH_DONTLEAVEMAINDIAGONAL, {s.BlackFigureOnDiagonal});
    add(SH_DONTLETFIGUREUNBLOCK, {s.BlockedFiguresEffective, s.BlockedFigureCount});
    for (int i = 0; i < kMaxBlockedFigures; ++i)
        add(SH_DONTLETFIGUREUNBLOCK, {s.BlockedFigureSquares[i], s.BlockedFigureInitialSquares[i]});
    add(SH_FINDFORCEDMATE, {s.FfmMode, s.FfmPreliminary, s.FfmCustom});
    add(SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE, {s.LessExceptions});
    add(SH_KEYLINE, {choice.KeyLineFile});
    add(SH_KEYDIAGONAL, {choice.KeyDiagonalSquares[0], choice.KeyDiagonalSquares[1]});
    add(SH_DONTLOSEANYFIGURES, {s.LoseFiguresMode});
    add(SH_KEYSQUARE, {s.KeySquare});
    add(SH_ASSERTBLACKKINGSURROUNDED, {s.SurroundedStrict});
    add(SH_KEYWHITEFIGURE, {s.KeyWhiteFigureSquare});
    add(SH_KEEPKINGNEARCORNER, {s.NearCornerDistance});
    add(SH_SEASNAKE, {s.SeaSnakeApproach, s.SeaSnakeTurnBack});
    return fields;
}

TEST(HeuristicsTextProperty, TextReadBack_IsTheSameTextAndTheSameSettings) {
    int words = 0;
    for (u64 seed = kSeed; seed < kSeed + 5000; ++seed) {
        SCOPED_TRACE(seed);
        CRandom random(seed);
        CSearchBoard written(kBoard, 3);
        CSearchBoard read(kBoard, 3);
        const int onlyAfter = random.Below(4);
        for (CSearchBoard* board : {&written, &read}) {
            board->Context().SeaSnakeOnlyAfter.resize(static_cast<std::size_t>(onlyAfter));
            board->Context().isExact = (seed & 1) != 0;
            board->Root().m_pass = static_cast<u8>(seed / 2 % 3);
        }
        THeuristicChoice choice = RandomChoice(random, static_cast<std::size_t>(onlyAfter));
        // The dynamic application is told behind a word only.
        choice.settings.ApplyBlockDynamically |= choice.heur == 0;
        StoreChoice(written.Root(), choice);
        // What was there before must not shine through.
        StoreChoice(read.Root(), RandomChoice(random, static_cast<std::size_t>(onlyAfter)));
        const std::string text = HeuristicsText(written.Root());
        ParseHeuristics(read.Root(), text);
        ASSERT_EQ(HeuristicsText(read.Root()), text);
        ASSERT_EQ(CarriedFields(ChoiceOf(read.Root())), CarriedFields(choice)) << text;
        words += choice.heur != 0 ? 1 : 0;
    }
    EXPECT_GT(words, 4000);
}

TEST(HeuristicsTextProperty, DamagedText_IsReadOrChangesNothing) {
    int faults = 0;
    for (u64 seed = kSeed; seed < kSeed + 5000; ++seed) {
        SCOPED_TRACE(seed);
        CRandom random(seed);
        CSearchBoard board(kBoard, 3);
        StoreChoice(board.Root(), RandomChoice(random, 0));
        std::string text = HeuristicsText(board.Root());
        for (int i = random.Between(1, 4); i > 0 && !text.empty(); --i) {
            const auto at = static_cast<std::size_t>(random.Below(static_cast<int>(text.size())));
            if (random.Chance(50))
                text.erase(at, static_cast<std::size_t>(random.Between(1, 3)));
            else
                text[at] = random.Letter("(),-#ACDMSf19 \xff");
        }
        CSearchBoard other(kBoard, 3);
        StoreChoice(other.Root(), RandomChoice(random, 0));
        const std::vector<int> before = CarriedFields(ChoiceOf(other.Root()));
        const THeuristicSettings settings = other.Thread().heuristics;
        try {
            ParseHeuristics(other.Root(), text);
            const std::string printed = HeuristicsText(other.Root());
            ParseHeuristics(other.Root(), printed);
            EXPECT_EQ(HeuristicsText(other.Root()), printed) << text;
        } catch (const ChessException&) {
            ++faults;
            EXPECT_EQ(CarriedFields(ChoiceOf(other.Root())), before) << text;
            EXPECT_EQ(other.Thread().heuristics, settings) << text;
        }
    }
    EXPECT_GT(faults, 1000);
    EXPECT_LT(faults, 4900);
}

TEST(HeurParamsProperty, EqualSettings_FoldEqual) {
    for (u64 seed = kSeed; seed < kSeed + 2000; ++seed) {
        CRandom random(seed);
        CSearchBoard first(kBoard, 3);
        CSearchBoard second(kBoard, 3);
        const THeuristicChoice choice = RandomChoice(random, 0);
        for (CSearchBoard* board : {&first, &second})
            StoreChoice(board->Root(), choice);
        EXPECT_EQ(first.Root().HeurParams, second.Root().HeurParams) << seed;
        EXPECT_TRUE(choice.heur != 0 || first.Root().HeurParams == 0) << seed;
    }
}

// Each field that the digest holds changes it, whatever else is on.
TEST(HeurParamsProperty, EachFieldOfABitThatIsOn_ChangesTheDigest) {
    using TChange = std::function<void(TChessboard&, THeuristicSettings&)>;
    const struct {
        const char* name;
        u32 bit;
        TChange change;
    } rows[] = {
        {"ApplyBlockDynamically",
         SH_AREKINGSNEAR,
         [](auto&, auto& s) { s.ApplyBlockDynamically ^= true; }},
        {"BlockedFiguresEffective",
         SH_ZUGZWANG,
         [](auto&, auto& s) { s.BlockedFiguresEffective ^= true; }},
        {"tracked figure",
         SH_ZUGZWANG,
         [](auto& node, auto& s) {
             ClearBlockedFigures(s);
             AddBlockedFigure(s, 56);
             node.m_trackedFigures[0] = node.m_trackedFigures[0] == 20 ? i8{21} : i8{20};
         }},
        {"KeyWhiteFigureSquare",
         SH_KEYWHITEFIGURE,
         [](auto&, auto& s) { s.KeyWhiteFigureSquare ^= 1; }},
        {"SurroundedStrict",
         SH_ASSERTBLACKKINGSURROUNDED,
         [](auto&, auto& s) { s.SurroundedStrict ^= true; }},
        {"CaptureKnightParam", SH_CAPTUREKNIGHT, [](auto&, auto& s) { s.CaptureKnightParam ^= 1; }},
        {"NearCornerDistance",
         SH_KEEPKINGNEARCORNER,
         [](auto&, auto& s) { s.NearCornerDistance = s.NearCornerDistance == 3 ? i8{-1} : i8{3}; }},
        {"LoseFiguresMode", SH_DONTLOSEANYFIGURES, [](auto&, auto& s) { s.LoseFiguresMode ^= 1; }},
        {"StrictKingMove", SH_KEEPKINGONTHEEDGE, [](auto&, auto& s) { s.StrictKingMove ^= true; }},
        {"KingMoveExceptions",
         SH_KEEPKINGONTHEEDGE,
         [](auto&, auto& s) { s.KingMoveExceptions ^= true; }},
        {"deferred test, edge",
         SH_KEEPKINGONTHEEDGE,
         [](auto& node, auto&) { node.m_searchFlags ^= kSearchEdgeDeferred; }},
        {"EdgeSquaresInclCorner, edge",
         SH_KEEPKINGONTHEEDGE,
         [](auto&, auto& s) { s.EdgeSquaresInclCorner ^= true; }},
        {"OneColorMode",
         SH_ONECOLORPLAYPOSSIBLE,
         [](auto& node, auto&) { node.m_captureState ^= 1; }},
        {"first triangle square",
         SH_ZUGZWANGTRIANGLES,
         [](auto&, auto& s) { s.ZugzwangTriangleSquares[0] ^= 8; }},
        {"second triangle square",
         SH_ZUGZWANGTRIANGLES,
         [](auto&, auto& s) { s.ZugzwangTriangleSquares[1] ^= 1; }},
        {"ExtEdgeStrict",
         SH_KEEPKINGWITHINEXTEDGE,
         [](auto&, auto& s) { s.ExtEdgeStrict ^= true; }},
        {"released edge",
         SH_KEEPKINGWITHINEXTEDGE,
         [](auto& node, auto&) { node.m_searchFlags ^= kSearchEdgeReleased; }},
        {"deferred test, ext. edge",
         SH_KEEPKINGWITHINEXTEDGE,
         [](auto& node, auto&) { node.m_searchFlags ^= kSearchEdgeDeferred; }},
        {"save event",
         SH_SAVEQUEENROOK,
         [](auto& node, auto&) { node.m_searchFlags ^= kSearchSaveEvent; }},
        {"second save event",
         SH_SAVEQUEENROOK,
         [](auto& node, auto&) { node.m_searchFlags ^= kSearchSaveEventSecond; }},
        {"FfmMode", SH_FINDFORCEDMATE, [](auto&, auto& s) { s.FfmMode ^= 1; }},
        {"FfmPreliminary", SH_FINDFORCEDMATE, [](auto&, auto& s) { s.FfmPreliminary ^= true; }},
        {"FfmCustom", SH_FINDFORCEDMATE, [](auto&, auto& s) { s.FfmCustom ^= true; }},
        {"FfmAddCaptures", SH_FINDFORCEDMATE, [](auto&, auto& s) { s.FfmAddCaptures ^= true; }},
        {"FfmWithOther",
         SH_FINDFORCEDMATE,
         [](auto&, auto& s) {
             s.FfmCustom = false;
             s.FfmWithOther = s.FfmWithOther == 1 ? i8{0} : i8{1};
         }},
        {"QueenMateStage", SH_SINGLEQUEENMATE, [](auto&, auto& s) { s.QueenMateStage ^= 1; }},
    };
    for (const auto& row : rows) {
        for (u64 seed = kSeed; seed < kSeed + 300; ++seed) {
            CRandom random(seed);
            CSearchBoard board(kBoard, 3);
            THeuristicChoice choice = RandomChoice(random, 0);
            choice.heur |= row.bit;
            StoreChoice(board.Root(), choice);
            // A row may first bring the settings into a state of its own.
            row.change(board.Root(), board.Thread().heuristics);
            ComputeHeurParams(board.Root());
            const u32 before = board.Root().HeurParams;
            row.change(board.Root(), board.Thread().heuristics);
            ComputeHeurParams(board.Root());
            EXPECT_NE(board.Root().HeurParams, before) << row.name << " seed " << seed;
        }
    }
}

}  // namespace
}  // namespace quillmere
