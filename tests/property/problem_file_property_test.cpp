// Laws of problem files, over random problems and random texts. Every failure names its seed.

#include "core/legality.h"
#include "problems/problem_reader.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"
#include "tests/support/kept_fields.h"
#include "tests/support/random.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

namespace quillmere {
namespace {

using test::CRandom;

constexpr u64 kSeed = 20251107;
constexpr int kCases = 1500;
constexpr u8 kKinds[] = {kKing, kPawn, kBishop, kRook, kQueen, kKnight};

// Pieces of texts, some of which mean something elsewhere in a file.
constexpr std::string_view kWords[] = {
    "mate", "Ł. Zagórny", "{",    "//",      "/*",      "*/",    "[",  "UTF-8", "//!ENDVARIANTS",
    "ą",    "\xff",       "\r",   ",",       ";",       "1.",    "#2", "шах",   "x+",
    "\"",   "\\",         "\xa0", "ANSWER:", "//#TAGS", "(OFF)", "\t"};

// One line without blanks at its ends; `without` is left out.
std::string RandomText(CRandom& random, char without) {
    std::string text;
    for (int i = random.Below(5); i > 0; --i)
        text += std::string(kWords[random.Below(std::size(kWords))]) +
                (random.Below(2) != 0 ? " " : "");
    std::erase(text, without);
    while (!text.empty() && std::string_view(" \t\r").find(text.back()) != std::string_view::npos)
        text.pop_back();
    while (!text.empty() && std::string_view(" \t\r").find(text.front()) != std::string_view::npos)
        text.erase(0, 1);
    return text;
}

TMove RandomMove(CRandom& random) {
    constexpr u8 kPromotions[] = {0, 0, 0, kQueen, kRook, kBishop, kKnight};
    return MakeMove(random.Below(kSquareCount),
                    random.Below(kSquareCount),
                    kPromotions[random.Below(std::size(kPromotions))]);
}

// Any figures on any squares: legal now and then, when there are few of them.
void SetRandomPosition(CRandom& random, TChessProblem& problem) {
    u8 squares[kSquareCount] = {};
    squares[random.Below(kSquareCount)] = kBlackKing;
    const int figures = random.Below(3) == 0 ? random.Below(40) : random.Below(6);
    for (int i = 0; i < figures; ++i)
        squares[random.Below(kSquareCount)] =
            (random.Below(2) != 0 ? kWhite : kBlack) | kKinds[random.Below(std::size(kKinds))];
    squares[random.Below(kSquareCount)] = kWhiteKing;
    problem.SetPosition(squares);
}

void PlayRandomMoves(CRandom& random, TChessProblem& problem) {
    for (int i = random.Below(12); i > 0 && problem.IsPositionValid(); --i) {
        TMoveList list;
        list.count = GetLegalMoves(*problem.currentNode, list.moves);
        if (list.count == 0)
            return;
        ASSERT_TRUE(problem.PlayMove(list[random.Below(list.count)]));
    }
}

void SetRandomStipulation(CRandom& random, TChessProblem& problem) {
    const int moves = 1 + random.Below(random.Below(4) == 0 ? 32767 : 20);
    switch (random.Below(3)) {
    case 0:
        problem.SetStipulation(kDirectMate, static_cast<u16>(2 * moves - 1));
        break;
    case 1:
        problem.SetStipulation(kSelfmate, static_cast<u16>(2 * moves + 1));
        break;
    default:
        problem.SetStipulation(kNoStipulation, kHalfMovesWithoutStipulation);
    }
}

void SetRandomOptions(CRandom& random, TChessProblem& problem) {
    problem.flags = static_cast<u32>(random.Next() & random.Next()) & test::kKeptFlags;
    problem.useMainVariantAsSortIndications = problem.Has(kProblemUseMainVariant);
    if (problem.Has(kProblemGuiCheck) || problem.Has(kProblemGuiCheckBestDefence))
        problem.guiCheckRepeat = 1 + random.Below(4);
    if (random.Below(2) != 0) {
        problem.threads = static_cast<u8>(random.Below(255));
        problem.areLevelsGiven = random.Below(2) != 0;
        problem.multithreadingLevels = static_cast<u8>(random.Below(256));
    }
    constexpr std::string_view kMaterials[] = {"Qq", "KR/k", "2", "a/b/", "/x"};
    for (int i = random.Below(3); i > 0; --i)
        problem.requires_.insert(std::string(kMaterials[random.Below(std::size(kMaterials))]));
}

TProblemVariant RandomVariant(CRandom& random) {
    TProblemVariant variant;
    variant.name = random.Below(3) == 0 ? "Main variant" : RandomText(random, '}');
    variant.doesBlackBegin = random.Below(2) != 0;
    for (int i = random.Below(6); i > 0; --i) {
        TVariantMove move;
        move.move = RandomMove(random);
        const auto square = [](int at) {
            return std::string{static_cast<char>('a' + FileOf(at)),
                               static_cast<char>('1' + RankOf(at))};
        };
        move.text = (random.Below(2) != 0 ? "K" : "") + square(move.move.from) +
                    (random.Below(2) != 0 ? "-" : ":") + square(move.move.to);
        switch (move.move.Promotion()) {
        case kQueen:
            move.text += "Q";
            break;
        case kRook:
            move.text += "R";
            break;
        case kBishop:
            move.text += "B";
            break;
        case kKnight:
            move.text += "N";
            break;
        default:
            break;
        }
        move.comment = RandomText(random, ']');
        variant.moves.push_back(move);
    }
    return variant;
}

void SetRandomTexts(CRandom& random, TChessProblem& problem) {
    problem.description = RandomText(random, '\n');
    for (int i = random.Below(4); i > 0; --i) {
        std::string tag = RandomText(random, '\n');
        if (!tag.empty())
            problem.tags.insert(std::move(tag));
    }
    for (int i = random.Below(3); i > 0; --i) {
        TProblemVariant variant = RandomVariant(random);
        std::string name = variant.name;
        problem.variants.emplace(std::move(name), std::move(variant));
    }
    for (int i = random.Below(4); i > 0; --i) {
        SortIndication rule;
        rule.to = static_cast<u8>(random.Below(kSquareCount));
        if (random.Below(2) != 0)
            rule.from = static_cast<u8>(random.Below(kSquareCount));
        if (random.Below(2) != 0)
            rule.figure = kWhite | kKinds[random.Below(std::size(kKinds))];
        rule.captureKind = static_cast<i8>(random.Below(3) - 1);
        rule.checkKind = static_cast<u8>(random.Below(3));
        rule.promotion = random.Below(4) == 0 ? kQueen : u8{0};
        rule.moveNumber = static_cast<u16>(random.Below(3) * random.Below(10000));
        rule.negated = random.Below(2) != 0;
        AddSortIndication(problem.sortIndications, rule);
    }
}

std::unique_ptr<TChessProblem> RandomProblem(CRandom& random, i32 number) {
    auto problem = std::make_unique<TChessProblem>();
    problem->number = number;
    SetRandomPosition(random, *problem);
    SetRandomOptions(random, *problem);
    SetRandomStipulation(random, *problem);
    SetRandomTexts(random, *problem);
    if (problem->Has(kProblemHasAnswer)) {
        for (int i = random.Below(4); i > 0; --i)
            problem->answer.push_back(RandomMove(random));
    }
    if (problem->type == kNoStipulation)
        PlayRandomMoves(random, *problem);
    return problem;
}

TEST(ProblemFileLaws, WriteRead_IsIdentity) {
    int legal = 0;
    int played = 0;
    for (int i = 0; i < kCases; ++i) {
        SCOPED_TRACE("seed " + std::to_string(kSeed + i));
        CRandom random(kSeed + i);
        TProblemCollection written;
        for (int problems = random.Below(4); problems >= 0; --problems)
            written.Insert(RandomProblem(random, random.Below(1000)));
        const std::string text = WriteProblems(written);
        TProblemCollection read;
        ASSERT_NO_THROW(ReadProblems(text, read, {})) << text;
        ASSERT_EQ(read.problems.size(), written.problems.size()) << text;
        for (const auto& [number, problem] : written.problems) {
            const TChessProblem* const again = read.Find(number);
            ASSERT_NE(again, nullptr) << text;
            ASSERT_EQ(test::FirstDifference(*problem, *again), "") << text;
            legal += problem->IsPositionValid() ? 1 : 0;
            played += problem->playedNodes.empty() ? 0 : 1;
        }
        ASSERT_EQ(WriteProblems(read), text) << "a fixed point";
        ASSERT_TRUE(SaveLossLines(read, ELanguage::kEnglish).empty()) << text;
    }
    // The draws reach both forms of a position, and played moves.
    EXPECT_GT(legal, kCases / 4);
    EXPECT_LT(legal, kCases * 2);
    EXPECT_GT(played, kCases / 40);
}

// A valid file with bytes changed, put in and taken out.
TEST(ProblemFileLaws, DamagedFile_IsRefusedWithALineOrReadsAsWritten) {
    int refused = 0;
    int accepted = 0;
    for (int i = 0; i < kCases; ++i) {
        SCOPED_TRACE("seed " + std::to_string(kSeed + i));
        CRandom random(kSeed + i);
        TProblemCollection source;
        source.Insert(RandomProblem(random, 1 + random.Below(9)));
        source.Insert(RandomProblem(random, 10));
        std::string text = WriteProblems(source);
        for (int change = random.Below(2); change >= 0; --change) {
            const std::size_t at =
                static_cast<std::size_t>(random.Below(static_cast<int>(text.size())));
            if (random.Below(2) != 0)
                text[at] = static_cast<char>(random.Below(256));
            else
                text.erase(at, static_cast<std::size_t>(1 + random.Below(3)));
        }
        TProblemCollection damaged;
        try {
            ReadProblems(text, damaged, {});
            ++accepted;
        } catch (const CProblemFileFault& fault) {
            const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
            EXPECT_GE(fault.Line(), 1);
            EXPECT_LE(fault.Line(), lines);
            ++refused;
        }
        const std::string again = WriteProblems(damaged);
        TProblemCollection read;
        ASSERT_NO_THROW(ReadProblems(again, read, {})) << again;
        ASSERT_EQ(WriteProblems(read), again);
    }
    EXPECT_GT(refused, kCases / 20);
    EXPECT_GT(accepted, kCases / 20);
}

}  // namespace
}  // namespace quillmere
