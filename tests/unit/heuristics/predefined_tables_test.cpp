#include "core/chess_exception.h"
#include "core/search_context.h"
#include "heuristics/predefined_tables.h"
#include "tests/support/boards.h"
#include "tests/support/white_rules.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CWhiteRuleBoard;
using test::SquareOf;

constexpr const char* kFen = "8/8/8/8/8/6pB/3KNpP1/5kbn";

struct CKeptWarnings : IWarningSink {
    struct TWarning {
        EMessage title;
        EMessage text;
        std::vector<std::string> values;
    };
    std::vector<TWarning> warnings;
    void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) override {
        warnings.push_back({title, text, values});
    }
};

TEST(PredefinedHeuristics, KeyIsThePlacementAlone) {
    for (const char* fen : {kFen, "r3k3/8/8/8/8/8/8/R3K3"}) {
        CWhiteRuleBoard board(fen, 9, 0);
        EXPECT_EQ(PredefinedKey(board.Root()), fen);
    }
}

TEST(PredefinedHeuristics, OptionsAreAppliedInOrder) {
    const TPredefinedTable table = {
        {kFen, {"DontLetKingMove", "AssertBKS(strict)", "LFQMDepth(#4)", "LFQMDepth(#3)"}},
        {"8/8/8/8/8/8/8/K1k5", {"ExtEdge"}},
    };
    CWhiteRuleBoard board(kFen, 9, SH_KEYLINE);
    CKeptWarnings warnings;
    ApplyPredefinedAdditionalHeuristics(board.Root(), warnings, table);
    EXPECT_EQ(board.Root().Heur, SH_KEYLINE | SH_ASSERTBLACKKINGSURROUNDED);
    EXPECT_TRUE(board.Settings().SurroundedStrict);
    EXPECT_TRUE(board.Settings().StrictKingMove) << "the first option came first";
    EXPECT_EQ(board.Context().m_shLookForQuickerMateDepth, 5);
    EXPECT_TRUE(warnings.warnings.empty());
}

TEST(PredefinedHeuristics, OtherPositionsAndUnknownOptionsAreLeftAlone) {
    const TPredefinedTable table = {{kFen, {"NoSuchOption", "dontletkingmove"}}};
    for (const char* fen : {kFen, "8/8/8/8/8/6pB/2K1NpP1/5kbn"}) {
        CWhiteRuleBoard board(fen, 9, SH_KEYLINE);
        const TChessboard before = board.Root();
        const THeuristicSettings settings = board.Settings();
        CKeptWarnings warnings;
        ApplyPredefinedAdditionalHeuristics(board.Root(), warnings, table);
        EXPECT_EQ(board.Root().Heur, before.Heur);
        EXPECT_EQ(board.Settings(), settings);
        EXPECT_TRUE(warnings.warnings.empty());
    }
}

TEST(PredefinedHeuristics, AnErrorIsToldAndTheRestIsKept) {
    const TPredefinedTable table = {{kFen, {"ExtEdge", "DLFU(g1,z9)", "SafeMode"}}};
    CWhiteRuleBoard board(kFen, 9, 0);
    CKeptWarnings warnings;
    ApplyPredefinedAdditionalHeuristics(board.Root(), warnings, table);
    EXPECT_EQ(board.Root().Heur, SH_KEEPKINGWITHINEXTEDGE);
    EXPECT_FALSE(board.Context().isExact) << "nothing behind the error";
    ASSERT_EQ(warnings.warnings.size(), 1u);
    const auto& warning = warnings.warnings[0];
    EXPECT_EQ(MessageText(warning.title, ELanguage::kEnglish), "Information");
    EXPECT_EQ(ChessException(warning.text, warning.values).Text(ELanguage::kEnglish),
              "Error occurred in ApplyPredefinedAdditionalHeuristics() : "
              "Invalid square description at index 9");
}

TEST(PredefinedHeuristics, AnErrorOfAnUnknownType) {
    CKeptWarnings warnings;
    try {
        throw 1;
    } catch (...) {
        TellPredefinedError(warnings);
    }
    ASSERT_EQ(warnings.warnings.size(), 1u);
    EXPECT_EQ(MessageText(warnings.warnings[0].text, ELanguage::kEnglish),
              "Error occurred in ApplyPredefinedAdditionalHeuristics()");
    EXPECT_TRUE(warnings.warnings[0].values.empty());
}

// Order of moves

std::string TextOf(const TSortIndications& indications) {
    std::string text;
    for (const auto& [number, rules] : indications.byMoveNumber) {
        for (const SortIndication& rule : rules)
            text += (text.empty() ? "" : ", ") + SortIndicationToText(rule);
    }
    return text;
}

TEST(PredefinedIndications, TextsOfThePosition) {
    const TPredefinedTable lines = {{kFen, {"1.Kd2-e3 Bg1:f2+", "1.Bh3-g4"}}};
    const TPredefinedTable moves = {{kFen, {"Ne2-d4"}}};
    CWhiteRuleBoard board(kFen, 9, 0);
    const TPredefinedIndications texts = PredefinedIndications(board.Root(), lines, moves);
    EXPECT_EQ(texts.lines, lines.at(kFen));
    EXPECT_EQ(texts.moves, moves.at(kFen));
    CWhiteRuleBoard other("8/8/8/8/8/6pB/2K1NpP1/5kbn", 9, 0);
    EXPECT_TRUE(PredefinedIndications(other.Root(), lines, moves).lines.empty());
    EXPECT_TRUE(PredefinedIndications(other.Root(), lines, moves).moves.empty());
}

TEST(PredefinedIndications, BecomeRulesOfTheSort) {
    struct TCase {
        std::vector<std::string> lines;
        std::vector<std::string> moves;
        const char* rules;
    };
    const TCase kCases[] = {
        {{"1.Kd2-e3 Bg1:f2+ 2.Ke3-e4 Bf2-e1 3. Ne2-d4 ..."}, {}, "1.Kd2-e3, 2.Ke3-e4, 3.Ne2-d4"},
        {{}, {"Ne2-d4", "Ne2-d4"}, "1.Ne2-d4"},
        {{"1.Ne2-d4"}, {"Ne2-d4"}, "1.Ne2-d4"},
        {{"1.Kd2-e3 what"}, {"nonsense"}, ""},
        {{"3...Kf1-e1 4.0-0 Ke1-d1 5.Ne2-d4#"}, {}, "4.e1>g1, 5.Ne2-d4"},
        {{}, {}, ""},
    };
    for (const TCase& c : kCases) {
        CWhiteRuleBoard board(kFen, 9, 0);
        TSortIndications indications;
        const int added = AddPredefinedIndications(
            indications, board.Root(), {{kFen, c.lines}}, {{kFen, c.moves}});
        const std::string expected = c.rules;
        EXPECT_EQ(TextOf(indications), expected);
        const auto commas = std::count(expected.begin(), expected.end(), ',');
        EXPECT_EQ(added, expected.empty() ? 0 : commas + 1);
    }
}

TEST(PredefinedIndications, StandBehindTheUsersOwn) {
    CWhiteRuleBoard board(kFen, 9, 0);
    TSortIndications indications;
    ParseSortIndications(indications, "1.Bh3-g4");
    EXPECT_EQ(
        AddPredefinedIndications(indications, board.Root(), {}, {{kFen, {"Bh3-g4", "Ne2-d4"}}}), 1);
    EXPECT_EQ(TextOf(indications), "1.Bh3-g4, 1.Ne2-d4");
}

// The rows that the program carries must read: a wrong one would be told to a user.
TEST(PredefinedRows, AreGood) {
    for (const auto& [key, options] : PredefinedHeuristics) {
        CWhiteRuleBoard board(key, 9, 0);
        CKeptWarnings warnings;
        ApplyPredefinedAdditionalHeuristics(board.Root(), warnings);
        EXPECT_TRUE(warnings.warnings.empty()) << key;
        EXPECT_EQ(PredefinedKey(board.Root()), key);
        EXPECT_FALSE(options.empty()) << key;
    }
    for (const TPredefinedTable* table : {&PredefinedLines, &PredefinedMoves}) {
        for (const auto& [key, texts] : *table) {
            CWhiteRuleBoard board(key, 9, 0);
            for (const std::string& text : texts) {
                TSortIndications indications;
                const TPredefinedTable row = {{key, {text}}};
                const int added =
                    table == &PredefinedLines
                        ? AddPredefinedIndications(indications, board.Root(), row, {})
                        : AddPredefinedIndications(indications, board.Root(), {}, row);
                EXPECT_GT(added, 0) << key << " " << text;
            }
        }
    }
}

}  // namespace
}  // namespace quillmere
