#include "core/chess_exception.h"
#include "problems/variant.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using enum ELanguage;

// "Kd2-d3|the key Ka8-a7|": the moves with their comments, as a short text.
std::string MovesOf(const TProblemVariant& variant) {
    std::string text;
    for (const TVariantMove& move : variant.moves)
        text += (text.empty() ? "" : " ") + move.text + "|" + move.comment;
    return text;
}

TEST(ParseVariant, Line_IsNameMovesAndComments) {
    struct TRow {
        std::string text;
        std::string name;
        bool doesBlackBegin;
        std::string moves;
    };
    const TRow rows[] = {
        {"{Main variant} 1.Kd2-d3 [the key] Ka8-a7",
         "Main variant",
         false,
         "Kd2-d3|the key Ka8-a7|"},
        {"1.Kd2-d3 Ka8-a7 2.Qe2:e5x", "", false, "Kd2-d3| Ka8-a7| Qe2:e5|"},
        {"", "", false, ""},
        {"{}", "", false, ""},
        {"{name}", "name", false, ""},
        {"{ a } d2-d4", " a ", false, "d2-d4|"},
        // A brace without its partner belongs to no name.
        // Numbers and points in all their forms
        {"{b} 1... Ka8-a7", "b", true, "Ka8-a7|"},
        {"{b} 1. ... Ka8-a7 2.Kd2-d3", "b", true, "Ka8-a7| Kd2-d3|"},
        {"{b} 1\u2026 Ka8-a7", "b", true, "Ka8-a7|"},
        {"{b} 1.. Ka8-a7", "b", false, "Ka8-a7|"},
        {"{b} ... Ka8-a7", "b", false, "Ka8-a7|"},
        {"{b} 1...", "b", true, ""},
        {"1 Kd2-d3 2 Kd3-d4", "", false, "Kd2-d3| Kd3-d4|"},
        {"12.Kd2-d3 12...Ka8-a7", "", false, "Kd2-d3| Ka8-a7|"},
        {"1. 0-0 0-0-0", "", false, "0-0| 0-0-0|"},
        {"1.0-0", "", false, "0-0|"},
        // Marks
        {"d2-d4+ d7-d5+x e2-e4x+ ", "", false, "d2-d4| d7-d5| e2-e4|"},
        // Comments
        {"d2-d4[a] e7-e5  [b c] g1-f3[", "", false, "d2-d4|a e7-e5|b c g1-f3|"},
        {"d2-d4 [open", "", false, "d2-d4|open"},
        {"d2-d4 []", "", false, "d2-d4|"},
        {"{n} d2-d4 [a [b] e7-e5", "n", false, "d2-d4|a [b e7-e5|"},
        {"d2-d4 [see {a}] e7-e5", "", false, "d2-d4|see {a} e7-e5|"},
    };
    for (const TRow& row : rows) {
        bool hasSkippedText = true;
        const TProblemVariant variant = ParseVariant(row.text, &hasSkippedText);
        EXPECT_EQ(variant.name, row.name) << row.text;
        EXPECT_EQ(variant.doesBlackBegin, row.doesBlackBegin) << row.text;
        EXPECT_EQ(MovesOf(variant), row.moves) << row.text;
        EXPECT_FALSE(hasSkippedText) << row.text;
    }
}

TEST(ParseVariant, TextThatBelongsToNoMove_IsSkippedAndTold) {
    const struct {
        const char* text;
        const char* name;
        const char* moves;
    } rows[] = {
        {"{n} [before] d2-d4", "n", "d2-d4|"},
        {"{n} d2-d4[] [second]", "n", "d2-d4|"},
        {"{n} 1. [white] d2-d4", "n", "d2-d4|"},
        // In front of the name
        {"[before] {n} d2-d4", "n", "d2-d4|"},
        {"e2-e4 {n} d2-d4", "n", "d2-d4|"},
        {"ключ {n} 1. d2-d4", "n", "d2-d4|"},
        {"? {n} d2-d4", "n", "d2-d4|"},
        // Words and marks between the moves
        {"{n} 1. ключ d2-d4", "n", "d2-d4|"},
        {"! d2-d4 - e7-e5 , ?", "", "d2-d4| e7-e5|"},
        {"{ d2-d4", "", "d2-d4|"},
        {"} { d2-d4", "", "d2-d4|"},
    };
    for (const auto& row : rows) {
        bool hasSkippedText = false;
        const TProblemVariant variant = ParseVariant(row.text, &hasSkippedText);
        EXPECT_EQ(variant.name, row.name) << row.text;
        EXPECT_EQ(MovesOf(variant), row.moves) << row.text;
        EXPECT_TRUE(hasSkippedText) << row.text;
    }
}

TEST(ParseVariant, NumbersThatASaveChanges_AreTold) {
    const struct {
        const char* text;
        bool hasOtherNumbers;
    } rows[] = {
        {"{n} d2-d4 d7-d5", false},
        {"{n} 1. d2-d4 d7-d5 2. e2-e4", false},
        {"{n} 1. d2-d4 1... d7-d5 2 e2-e4 2... e7-e5", false},
        {"{n} 1. ... d7-d5 2. e2-e4", false},
        {"{n} 1...", false},
        {"{n} 1. d2-d4 2.", false},
        {"{n} 5. d2-d4", true},
        {"{n} 5 d2-d4", true},
        {"{n} 2... d7-d5", true},
        {"{n} 1. d2-d4 d7-d5 3. e2-e4", true},
        {"{n} 0. d2-d4", true},
        {"{n} 99999999999999999999999. d2-d4", true},
    };
    for (const auto& row : rows) {
        bool hasOtherNumbers = !row.hasOtherNumbers;
        ParseVariant(row.text, nullptr, &hasOtherNumbers);
        EXPECT_EQ(hasOtherNumbers, row.hasOtherNumbers) << row.text;
    }
}

TEST(ParseVariant, Castling_IsThatOfTheSideToMove) {
    const TProblemVariant white = ParseVariant("1.0-0 0-0-0");
    ASSERT_EQ(white.moves.size(), 2U);
    EXPECT_TRUE(MovesEqual(white.moves[0].move, MakeMove(4, 6)));
    EXPECT_TRUE(MovesEqual(white.moves[1].move, MakeMove(60, 58)));
    const TProblemVariant black = ParseVariant("1...0-0 2.0-0-0");
    ASSERT_EQ(black.moves.size(), 2U);
    EXPECT_TRUE(MovesEqual(black.moves[0].move, MakeMove(60, 62)));
    EXPECT_TRUE(MovesEqual(black.moves[1].move, MakeMove(4, 2)));
}

TEST(ParseVariant, WordThatIsNoMove_IsRefused) {
    struct TRow {
        const char* text;
        EMessage fault;
    };
    const TRow rows[] = {
        {"1.e4", EMessage::kImproperStringLength},
        {"Kd2-d3#", EMessage::kImproperStringLength},
        {"Kd2-d3 word", EMessage::kUnknownFigureLetter},
        {"1.x", EMessage::kEmptyString},
        {"Kd2-z3", EMessage::kImproperFullDescription},
        {"Kd2-d9", EMessage::kImproperFullDescription},
        {"Kd0-d1", EMessage::kImproperFullDescription},
        {"e7-e8Y", EMessage::kUnknownFigureLetter},
    };
    for (const TRow& row : rows) {
        try {
            ParseVariant(row.text);
            FAIL() << row.text;
        } catch (const ChessException& fault) {
            EXPECT_EQ(MessageName(fault.Id()), MessageName(row.fault)) << row.text;
        }
    }
}

TEST(VariantToText, Text_HasNumbersAndCommentsAndReadsBack) {
    struct TRow {
        const char* text;
        const char* written;
        const char* plain;
    };
    const TRow rows[] = {
        {"{Main variant} 1.Kd2-d3 [the key] Ka8-a7 2.Kd3-c4+",
         "{Main variant} 1. Kd2-d3[the key] Ka8-a7 2. Kd3-c4",
         "{Main variant} 1. Kd2-d3 Ka8-a7 2. Kd3-c4"},
        {"d2-d4", "{} 1. d2-d4", "{} 1. d2-d4"},
        {"{b} 1... Ka8-a7 2.d7-d8Q [x]",
         "{b} 1. ... Ka8-a7 2. d7-d8Q[x]",
         "{b} 1. ... Ka8-a7 2. d7-d8Q"},
        {"{n}", "{n}", "{n}"},
        {"{n} 1...", "{n} 1. ...", "{n} 1. ..."},
    };
    for (const TRow& row : rows) {
        const TProblemVariant variant = ParseVariant(row.text);
        EXPECT_EQ(VariantToText(variant, true), row.written);
        EXPECT_EQ(VariantToText(variant, false), row.plain);
        EXPECT_EQ(VariantToText(ParseVariant(row.written), true), row.written);
    }
}

TEST(VariantToText, SignsThatWouldEndATextEarly_AreLeftOut) {
    TProblemVariant variant;
    variant.name = "a}b\r\nc\n";
    variant.moves.push_back({MakeMove(11, 27), "d2-d4", "x]y\nz"});
    EXPECT_EQ(VariantToText(variant, true), "{abc} 1. d2-d4[xyz]");
}

TEST(VariantToText, MoveWithoutATextOfItsOwn_IsToldByItsSquares) {
    TProblemVariant variant;
    variant.moves.push_back({MakeMove(11, 27), "", ""});
    variant.moves.push_back({MakeMove(52, 60, kQueen), "no move", ""});
    variant.moves.push_back({MakeMove(4, 6), "0-0-0", ""});
    EXPECT_EQ(VariantToText(variant, true), "{} 1. d2-d4 e7-e8Q 2. e1-g1");
}

TEST(NormaliseVariantNames, MainVariant_GetsTheNameOfTheLanguage) {
    for (const ELanguage from : {kPolish, kEnglish, kUkrainian}) {
        for (const ELanguage to : {kPolish, kEnglish, kUkrainian}) {
            TVariants variants;
            for (const char* text : {"1.d2-d4", "1.e2-e4"}) {
                TProblemVariant variant = ParseVariant(text);
                variant.name = MainVariantName(from);
                variants.emplace(variant.name, variant);
            }
            variants.emplace("other", ParseVariant("{other}"));
            NormaliseVariantNames(variants, to);
            EXPECT_EQ(variants.size(), 3U);
            EXPECT_EQ(variants.count(std::string(MainVariantName(to))), 2U);
            EXPECT_EQ(variants.count("other"), 1U);
            const TProblemVariant* const main = FindMainVariant(variants);
            ASSERT_NE(main, nullptr);
            EXPECT_EQ(main->name, MainVariantName(to));
            EXPECT_EQ(MovesOf(*main), "d2-d4|") << "lines of one name keep their order";
        }
    }
}

TEST(NormaliseVariantNames, NameOfTheLanguageThatIsThere_KeepsTheOthers) {
    TVariants variants;
    for (const ELanguage language : {kPolish, kEnglish}) {
        TProblemVariant variant;
        variant.name = MainVariantName(language);
        variants.emplace(variant.name, variant);
    }
    NormaliseVariantNames(variants, kEnglish);
    EXPECT_EQ(variants.count("Main variant"), 1U);
    EXPECT_EQ(variants.count("Wariant główny"), 1U);
}

TEST(MainVariantName, EachLanguage_HasItsOwn) {
    EXPECT_EQ(MainVariantName(kPolish), "Wariant główny");
    EXPECT_EQ(MainVariantName(kEnglish), "Main variant");
    EXPECT_EQ(MainVariantName(kUkrainian), "Основний варіант");
    EXPECT_TRUE(IsMainVariantName("Wariant główny"));
    EXPECT_FALSE(IsMainVariantName("main variant"));
    EXPECT_EQ(FindMainVariant({}), nullptr);
}

}  // namespace
}  // namespace quillmere
