#include "session/problem_indications.h"
#include "tests/support/sessions.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

std::string TextOf(const TSortIndications& indications) {
    std::string text;
    for (const auto& [number, rules] : indications.byMoveNumber) {
        for (const SortIndication& rule : rules)
            text += (text.empty() ? "" : ", ") + SortIndicationToText(rule);
    }
    return text;
}

void AddVariant(TChessProblem& problem, const std::string& text) {
    TProblemVariant variant = ParseVariant(text);
    problem.variants.emplace(variant.name, variant);
}

TChessProblem& Fill(TChessProblem& problem) {
    ParseSortIndications(problem.sortIndications, "Qa1-a2+, 2.Ra1-a3");
    AddVariant(problem, "{Main variant} 1.Kd2-d3 Ka8-a7 2.Kd3-c4 Ka7-a6 3.b7-b8Q");
    AddVariant(problem, "{Try} 1.Kd2-e3 Ka8-a7 2.Kd3-c4");
    AddVariant(problem, "{Set play} 1...Ka8-a7 2.Kd2-c2");
    return problem;
}

struct TRow {
    int option;
    u32 flags;
    const char* expected;
};

TEST(ProblemIndications, Variants_CountWhereTheyAreAskedFor) {
    constexpr TRow kRows[] = {
        {0, 0, "Qa1-a2+, 2.Ra1-a3"},
        {1, 0, "Qa1-a2+, 1.d2-d3, 2.Ra1-a3, 2.d3-c4, 3.b7-b8Q"},
        {0, kProblemUseMainVariant, "Qa1-a2+, 1.d2-d3, 2.Ra1-a3, 2.d3-c4, 3.b7-b8Q"},
        {2, 0, "Qa1-a2+, 1.d2-d3, 1.d2-e3, 2.Ra1-a3, 2.d3-c4, 2.d2-c2, 3.b7-b8Q"},
    };
    for (const TRow& row : kRows) {
        TChessProblem problem;
        Fill(problem).flags = row.flags;
        EXPECT_EQ(TextOf(BuildIndications(problem, row.option)), row.expected)
            << row.option << " " << row.flags;
        // The problem's own stay as the file gave them.
        EXPECT_EQ(TextOf(problem.sortIndications), "Qa1-a2+, 2.Ra1-a3");
    }
}

TEST(ProblemIndications, NoVariants_GiveTheOwnIndicationsOnly) {
    TChessProblem problem;
    EXPECT_EQ(TextOf(BuildIndications(problem, 2)), "");
    ParseSortIndications(problem.sortIndications, "1.Qa1-a2");
    EXPECT_EQ(TextOf(BuildIndications(problem, 2)), "1.Qa1-a2");
}

}  // namespace
}  // namespace quillmere
