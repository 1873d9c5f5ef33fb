#include "problems/chess_problem.h"
#include "problems/tags.h"

#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>
#include <utility>

namespace quillmere {
namespace {

using enum ELanguage;
using TTags = std::set<std::string>;

constexpr std::pair<std::string_view, std::string_view> kTable[] = {
#define QUILLMERE_TAG(polish, english, ukrainian) {polish, english},
#include "problems/tags.def"
#undef QUILLMERE_TAG
};

TEST(TagTable, Rows_AreFiftyTwo) {
    EXPECT_EQ(std::size(kTable), 52U);
    for (const auto& [polish, english] : kTable) {
        EXPECT_FALSE(polish.empty());
        EXPECT_FALSE(english.empty());
    }
}

TEST(TranslateTag, KnownTag_IsInTheLanguageAskedFor) {
    for (const auto& [polish, english] : kTable)
        EXPECT_EQ(TranslateTag(polish, kEnglish), english);
    EXPECT_EQ(TranslateTag("castling", kPolish), "roszada");
    EXPECT_EQ(TranslateTag("King's walk", kPolish), "wędrówka króla");
    // Two rows share the form; the first one is taken.
    EXPECT_EQ(TranslateTag("stalemate avoidance", kPolish), "unikanie pata");
}

TEST(TranslateTag, TagWithoutForm_StaysAsItIs) {
    for (const ELanguage language : {kPolish, kEnglish, kUkrainian})
        EXPECT_EQ(TranslateTag("my own tag", language), "my own tag");
    EXPECT_EQ(TranslateTag("castling", kEnglish), "castling");
    EXPECT_EQ(TranslateTag("castling", kUkrainian), "castling");
    EXPECT_EQ(TranslateTag("Castling", kPolish), "Castling");
}

TEST(NormaliseTags, Tags_AreTranslatedAndCollected) {
    TChessProblem problem;
    problem.tags = {"klatka", "my own tag"};
    TTags allTags = {"older"};
    NormaliseTags(problem, kEnglish, allTags);
    EXPECT_EQ(problem.tags, (TTags{"my own tag", "skittles setup"}));
    EXPECT_EQ(allTags, (TTags{"older", "my own tag", "skittles setup"}));
    EXPECT_TRUE(problem.lostBySave.empty());
}

TEST(NormaliseTags, TagThatBecomesAnother_IsTold) {
    TChessProblem problem;
    problem.tags = {"unikanie pata", "zagrożenie patem"};
    TTags allTags;
    NormaliseTags(problem, kEnglish, allTags);
    EXPECT_EQ(problem.tags, TTags{"stalemate avoidance"});
    EXPECT_EQ(problem.lostBySave.size(), 1U);
}

}  // namespace
}  // namespace quillmere
