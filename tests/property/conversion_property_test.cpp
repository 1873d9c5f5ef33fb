// Laws of the conversions of collections, over random problems: JSON gives everything back, EPD and
// PGN give back what they do not name as lost, and every move in short notation is the one that an
// independent reader finds. Every failure names its seed.

#include "cli/convert_json.h"
#include "core/fen.h"
#include "core/notation.h"
#include "core/play_board.h"
#include "core/san.h"
#include "heuristics/catalogue.h"
#include "problems/convert_epd.h"
#include "problems/convert_pgn.h"
#include "problems/problem_fields.h"
#include "problems/problem_reader.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"
#include "tests/support/random.h"
#include "tests/support/random_positions.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CRandom;

constexpr u64 kSeed = 20261121;
constexpr ELanguage kEnglish = ELanguage::kEnglish;

std::string RandomText(CRandom& random, std::string_view letters) {
    std::string text;
    for (int i = random.Below(30); i > 0; --i)
        text += random.Letter(letters);
    // Texts of a file have no blanks at their ends.
    const std::size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? ""
                                      : text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

TMove RandomLegalMove(CRandom& random, CPlayBoard& board) {
    const std::vector<TMove> legal = board.LegalMoves();
    return legal[static_cast<std::size_t>(random.Below(static_cast<int>(legal.size())))];
}

TProblemVariant RandomVariant(CRandom& random, const TChessProblem& problem, bool hasComments) {
    TProblemVariant variant;
    CPlayBoard board(*problem.position, false, 12);
    for (int i = random.Between(1, 10); i > 0 && !board.LegalMoves().empty(); --i) {
        TVariantMove row;
        row.move = RandomLegalMove(random, board);
        row.text = MoveToText(board.Node(), row.move);
        if (hasComments && random.Chance(30))
            row.comment = RandomText(random, "ab }%;{()[\"\\1.");
        variant.moves.push_back(row);
        board.Play(row.move);
    }
    return variant;
}

// Everything that a collection may hold, on a legal position.
std::unique_ptr<TChessProblem> RandomProblem(CRandom& random, i32 number) {
    auto problem = std::make_unique<TChessProblem>();
    problem->number = number;
    const char* const stipulations[] = {"#1", "#2", "#17", "s#3", ""};
    SetStipulationText(*problem, stipulations[random.Below(5)]);
    reference::TPosition position = reference::RandomMelee(random, random.Between(3, 16));
    while (!position.isWhiteToMove)
        position = reference::RandomMelee(random, random.Between(3, 16));
    TChessboard board;
    InitBoard(board);
    EXPECT_TRUE(SetFromFENCode(board, reference::ToFen(position).c_str(), nullptr, nullptr));
    problem->SetPosition(board.m_board);
    if (problem->type == kNoStipulation) {
        CPlayBoard play(*problem->position, false, 8);
        for (int i = random.Below(6); i > 0 && !play.LegalMoves().empty(); --i) {
            const TMove move = RandomLegalMove(random, play);
            EXPECT_TRUE(problem->PlayMove(move));
            play.Play(move);
        }
    }
    for (const TFlagWord& row : FlagWords()) {
        if (random.Chance(15))
            SetFlagWord(*problem, row.word);
    }
    if (random.Chance(60)) {
        CPlayBoard play(*problem->position, false, 8);
        for (const TMove move : problem->PlayedMoves())
            play.Play(move);
        for (int i = random.Between(1, 3); i > 0 && !play.LegalMoves().empty(); --i) {
            const TMove move = RandomLegalMove(random, play);
            problem->answer.push_back(AnswerToStore(play.Node(), move));
            problem->flags |= kProblemHasAnswer;
        }
    }
    problem->description = RandomText(random, "ab ;#?\"\\[]{}");
    for (int i = random.Below(3); i > 0; --i) {
        if (const std::string tag = RandomText(random, "ab ;\\x"); !tag.empty())
            problem->tags.insert(tag);
    }
    for (int i = random.Below(4); i > 0; --i) {
        TProblemVariant variant = RandomVariant(random, *problem, true);
        const char* const names[] = {"", "a", "Main variant", "b; (c"};
        variant.name = names[random.Below(4)];
        problem->variants.emplace(variant.name, variant);
    }
    return problem;
}

void AddRare(CRandom& random, TChessProblem& problem) {
    problem.threads = static_cast<u8>(random.Below(255));
    problem.areLevelsGiven = random.Chance(50);
    if (problem.areLevelsGiven)
        problem.multithreadingLevels = static_cast<u8>(random.Below(9));
    problem.globRegMB = random.Below(1000);
    problem.schedulerLevels = static_cast<u16>(random.Below(9));
    problem.requires_.insert("Qq");
    problem
        .heuristicOverrides[kHeuristicRows[static_cast<std::size_t>(random.Below(kHeuristicCount))]
                                .bit]
        .insert("OFF");
    problem.expectedSortWhiteMoves = {MakeMove(random.Below(64), random.Below(64))};
    problem.flags |= kProblemHasExpectedSort;
    AddSortIndication(problem.sortIndications, {0, kNoSquare, 12, kCaptureEither, 0, 0, 3, false});
}

TEST(WriteJson, RandomProblems_AllComeBack) {
    for (u64 seed = kSeed; seed < kSeed + 300; ++seed) {
        CRandom random(seed);
        TProblemCollection collection;
        for (i32 number = 1; number <= 3; ++number) {
            auto problem = RandomProblem(random, number);
            AddRare(random, *problem);
            collection.Insert(std::move(problem));
        }
        TConversionRemarks remarks;
        const bool areLines = random.Chance(50);
        const std::string text = WriteJson(collection, areLines, remarks);
        TProblemCollection back;
        ReadJson(text, back);
        EXPECT_TRUE(remarks.empty()) << "seed " << seed;
        EXPECT_EQ(WriteJson(back, areLines, remarks), text) << "seed " << seed;
        EXPECT_EQ(WriteProblems(back), WriteProblems(collection)) << "seed " << seed;
    }
}

TEST(WritePgn, RandomProblems_ComeBackWhole) {
    int withVariants = 0;
    for (u64 seed = kSeed; seed < kSeed + 1000; ++seed) {
        CRandom random(seed);
        TProblemCollection collection;
        collection.Insert(RandomProblem(random, 7));
        TChessProblem& problem = *collection.Find(7);
        if (problem.description == "?")
            problem.description.clear();
        withVariants += problem.variants.empty() ? 0 : 1;
        TConversionRemarks remarks;
        const std::string text = WritePgn(collection, kEnglish, remarks);
        std::string lost;
        for (const TConversionRemark& remark : remarks)
            lost += FormatMessage(remark.id, kEnglish, remark.values);
        EXPECT_EQ(lost, "") << "seed " << seed << "\n" << WriteProblems(collection) << text;
        TProblemCollection back;
        ReadPgn(text, back, kEnglish, remarks);
        EXPECT_EQ(WriteProblems(back), WriteProblems(collection)) << "seed " << seed << text;
    }
    EXPECT_GT(withVariants, 500);
}

TEST(WriteEpd, RandomProblems_ComeBackButForVariantsAndMarks) {
    for (u64 seed = kSeed; seed < kSeed + 1000; ++seed) {
        CRandom random(seed);
        TProblemCollection collection;
        collection.Insert(RandomProblem(random, 7));
        TChessProblem& problem = *collection.Find(7);
        problem.variants.clear();
        std::ranges::replace(problem.description, '"', '\'');
        TConversionRemarks remarks;
        const std::string text = WriteEpd(collection, kEnglish, remarks);
        EXPECT_TRUE(remarks.empty()) << "seed " << seed << text;
        TProblemCollection back;
        ReadEpd(text, back, remarks);
        EXPECT_EQ(WriteProblems(back), WriteProblems(collection)) << "seed " << seed << text;
    }
}

// The .cp text is the judge here, so that the comparison of fields is judged too.
TEST(DifferentFields, EachChange_IsSeen) {
    for (u64 seed = kSeed; seed < kSeed + 500; ++seed) {
        CRandom random(seed);
        TProblemCollection first;
        TProblemCollection second;
        first.Insert(RandomProblem(random, 7));
        second.Insert(RandomProblem(random, 7));
        const bool isSame = WriteProblems(first) == WriteProblems(second);
        EXPECT_EQ(DifferentFields(*first.Find(7), *second.Find(7)).empty(), isSame);
        EXPECT_TRUE(DifferentFields(*first.Find(7), *first.Find(7)).empty());
    }
}

TEST(WriteShortMove, RandomPositions_AnIndependentReaderFindsTheMove) {
    int told = 0;
    for (u64 seed = kSeed; seed < kSeed + 2000; ++seed) {
        CRandom random(seed);
        const reference::TPosition position = reference::RandomMelee(random, random.Between(3, 32));
        TChessboard board;
        InitBoard(board);
        ASSERT_TRUE(SetFromFENCode(board, reference::ToFen(position).c_str(), nullptr, nullptr));
        CPlayBoard play(board, !position.isWhiteToMove);
        for (const TMove move : play.LegalMoves()) {
            const std::string text = WriteShortMove(play.Node(), move);
            EXPECT_EQ(reference::ToText(reference::FindMove(position, text)), MoveToUci(move))
                << "seed " << seed << " " << text;
            EXPECT_TRUE(MovesEqual(ReadShortMove(play.Node(), text), move)) << text;
            // Nothing stands there that is not needed.
            const bool hasOrigin = text.size() >= 4 && KindOf(board.m_board[move.from]) != kPawn &&
                                   text.find('O') == std::string::npos;
            if (!hasOrigin)
                continue;
            std::string shorter = text;
            shorter.erase(1, 1);
            if (text[1] == 'x')
                continue;
            ++told;
            EXPECT_THROW(ReadShortMove(play.Node(), shorter), ChessException) << text;
        }
    }
    EXPECT_GT(told, 1000);
}

}  // namespace
}  // namespace quillmere
