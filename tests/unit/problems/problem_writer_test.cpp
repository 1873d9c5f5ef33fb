#include "core/chess_exception.h"
#include "core/fen.h"
#include "problems/problem_reader.h"
#include "problems/problem_writer.h"
#include "tests/support/kept_fields.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace quillmere {
namespace {

// The written form of what was read from the text.
std::string Rewritten(const std::string& text, bool withComments = true) {
    TProblemCollection collection;
    ReadProblems(text, collection, {});
    return WriteProblems(collection, withComments);
}

std::string BodyOf(const std::string& body) {
    const std::string text = Rewritten("1 #2 {" + body + "}");
    return text.substr(text.find("{\n") + 2);
}

TEST(WriteProblems, EveryPart_StandsInItsPlace) {
    const std::string text =
        "UTF-8\n"
        "\n"
        "12 #3 requires Qq requires KR/k usepredefinedsettings safemode "
        "threads 4^2 guicheckbestdefence 3 guicheck 3 allsolutionsrequiressyzygy "
        "requiressyzygy usemainvariantassortindications stopon3sol stopondual "
        "allsolutions mirroronly nomirror\n"
        "//#TAGS\n"
        "//#sea snake\n"
        "//#my own tag\n"
        "//!VARIANTS\n"
        "//!{Wariant główny} 1.Kd2-d3 [the key] Ka8-a7+ 2.Kd3-c4x\n"
        "//!1...Ka8-b8\n"
        "//!ENDVARIANTS\n"
        "//@SortIndications: ~3.Qa1>a2++, 1.Kd3, e2-e4, 0-0, d7:e8Q+\n"
        "{ D:   Study, 1900  \n"
        "W: Ke1, Rh1, d7 B: Kg8, Ne8 Solution: 0-0, d7:e8Q, Ke1-d1, a8-a1 }\n"
        "3 { FEN: 4k3/8/8/8/8/8/4P3/4K2R\nMOVES: e2-e4 Ke8-d7 0-0 }\n"
        "2 s#4 { W: Ke1 B: Ke8 A: }\n";
    EXPECT_EQ(Rewritten(text),
              "UTF-8\n"
              "\n"
              "2 s#4\n"
              "{\n"
              "\tFEN: 4k3/8/8/8/8/8/8/4K3\n"
              "\tAnswer: \n"
              "}\n"
              "3 \n"
              "{\n"
              "\tFEN: 4k3/8/8/8/8/8/4P3/4K2R\n"
              "   Moves:     e2-e4 Ke8-d7 0-0\n"
              "}\n"
              "12 #3 NoMirror MirrorOnly AllSolutions StopOnDual StopOn3Sol StopOn4Sol "
              "UseMainVariantAsSortIndications GUICHECK 3 GUICHECKBESTDEFENCE 3 THREADS 4^2 "
              "SAFEMODE RequiresSyzygy AllSolutionsRequiresSyzygy UsePredefinedSettings "
              "Requires KR/k Requires Qq\n"
              "//#TAGS\n"
              "//#my own tag\n"
              "//#sea snake\n"
              "//!VARIANTS\n"
              "//!{} 1. ... Ka8-b8\n"
              "//!{Main variant} 1. Kd2-d3[the key] Ka8-a7 2. Kd3-c4\n"
              "//!ENDVARIANTS\n"
              "//@SortIndications: e2-e4; e1>g1; d7:e8Q+; 1.Kd3; ~3.Qa1>a2++\n"
              "{\n"
              "\tDescription: Study, 1900\n"
              "\tFEN: 4n1k1/3P4/8/8/8/8/8/4K2R\n"
              "\tAnswer: 0-0, d7:e8Q, Ke1-d1, a8-a1\n"
              "}\n");
    EXPECT_EQ(Rewritten(Rewritten(text)), Rewritten(text)) << "a fixed point";
    EXPECT_NE(Rewritten(text, false).find("//!{Main variant} 1. Kd2-d3 Ka8-a7 2. Kd3-c4\n"),
              std::string::npos)
        << "without comments";
}

TEST(WriteProblems, EmptyCollection_ReadsBack) {
    EXPECT_EQ(Rewritten(""), "UTF-8\n\n");
    EXPECT_EQ(Rewritten("UTF-8\n\n"), "UTF-8\n\n");
}

TEST(WriteProblem, Options_HaveTheirWrittenForm) {
    struct TRow {
        const char* options;
        const char* written;
    };
    const TRow rows[] = {
        {"", ""},
        {"STOPON4SOL", " StopOn4Sol UsePredefinedSettings"},
        {"USEPREDEFINEDSETTINGS", " StopOn4Sol UsePredefinedSettings"},
        {"GUICHECK", " GUICHECK"},
        {"GUICHECK 1", " GUICHECK"},
        {"GUICHECKBESTDEFENCEANDAUX 7", " GUICHECK 7"},
        {"THREADS 0", " THREADS 0"},
        {"THREADS 3^0", " THREADS 3^0"},
        {"THREADS 255", " THREADS 254"},
        {"ONLYIFAVAIL Qq", " Requires Qq"},
        {"NOGLOBREG GLOBREGMB 3 SCHEDULERLEVELS 2 LICHESSLEVELS 1 ALLSOLUTIONSREQUIRES Qq "
         "STOPRELAXHEURISTICSONFIRSTSOLUTION SH_KEYLINE(A)",
         ""},
    };
    for (const TRow& row : rows) {
        const std::string text = "1 #2 " + std::string(row.options) + " { W: Ke1 B: Ke8 }";
        const std::string expected =
            "UTF-8\n\n1 #2" + std::string(row.written) + "\n{\n\tFEN: 4k3/8/8/8/8/8/8/4K3\n}\n";
        EXPECT_EQ(Rewritten(text), expected) << row.options;
        EXPECT_EQ(Rewritten(expected), expected) << row.options;
    }
}

TEST(WriteProblem, PositionThatIsNoLegalOne_IsListed) {
    struct TRow {
        const char* body;
        const char* written;
    };
    const TRow rows[] = {
        {"W: Ke1, Ka1 B: Ke8", "\tWhite: Ka1, Ke1\n\tBlack: Ke8\n}\n"},
        {"W: a1, h8 B: b1, Nc1", "\tWhite: a1, h8\n\tBlack: b1, Nc1\n}\n"},
        {"W: Qe1 B:", "\tWhite: Qe1\n\tBlack: \n}\n"},
        {"W: Qe1 B: Answer: Qe1-e2", "\tWhite: Qe1\n\tBlack: \n\tAnswer: Qe1-e2\n}\n"},
        {"W: Ke1 B: Kf1", "\tWhite: Ke1\n\tBlack: Kf1\n}\n"},
    };
    for (const TRow& row : rows) {
        EXPECT_EQ(BodyOf(row.body), row.written) << row.body;
        EXPECT_EQ(BodyOf(std::string(row.written, std::string(row.written).size() - 2)),
                  row.written);
    }
}

TEST(WriteProblem, Answers_AreWrittenAsTheyAreReadBack) {
    struct TRow {
        const char* answers;
        const char* written;
    };
    // White Ke1, Ra1, Rh1, a7, b5; black Kb8, c5, h8.
    const TRow rows[] = {
        {"0-0, 0-0-0", "0-0, 0-0-0"},
        {"Ke1-g1, Ke1-c1", "0-0, 0-0-0"},
        {"Ra1-c1, Rh1-f1", "Ra1-c1, Rh1-f1"},
        {"a7:b8Q, a7-a8N, b5:c6", "a7:b8Q, a7-a8N, b5:c6"},
        {"Kb8-g8, e8-g8, Kb8-d8", "Kb8-g8, e8-g8, Kb8-d8"},
        {"Nd4-e6, d4-d4, Ke1-e1", "d4-e6, d4-d4, Ke1-e1"},
        {"Ke1-d9, Ke1-h0, Ke1-a0", "Ke1-d9, Ke1-h0, Ke1-a0"},
        {"Ke1-g1Q", "Ke1-g1Q"},
        {"e2-e4K", "e2-e4K"},
    };
    for (const TRow& row : rows) {
        EXPECT_EQ(BodyOf("FEN: 1k6/P7/8/1Pp5/8/8/8/R3K2R\n A: " + std::string(row.answers)),
                  "\tFEN: 1k6/P7/8/1Pp5/8/8/8/R3K2R\n\tAnswer: " + std::string(row.written) +
                      "\n}\n");
    }
}

TEST(WriteProblem, TextsOfOtherForm_StayReadable) {
    TProblemCollection collection;
    auto problem = std::make_unique<TChessProblem>();
    problem->number = 5;
    u8 squares[kSquareCount] = {};
    squares[4] = kWhiteKing;
    squares[60] = kBlackKing;
    problem->SetPosition(squares);
    problem->description = " two\nlines\r\n";
    problem->tags = {"a\nb", " ", "c "};
    TProblemVariant variant;
    variant.name = "x}y";
    variant.moves.push_back({MakeMove(4, 12), "Ke1-e2", "see [1]\nand"});
    problem->variants.emplace(variant.name, variant);
    const std::string text = WriteProblem(*problem);
    EXPECT_EQ(text,
              "5 #2\n//#TAGS\n//#a b\n//#c\n//!VARIANTS\n//!{xy} 1. Ke1-e2[see [1and]\n"
              "//!ENDVARIANTS\n{\n\tDescription: two lines\n\tFEN: 4k3/8/8/8/8/8/8/4K3\n}\n");
    EXPECT_EQ(Rewritten(text), "UTF-8\n\n" + text);
}

TEST(WriteProblem, WhatHasNoForm_IsRefused) {
    const auto isRefused = [](const TChessProblem& problem) {
        try {
            WriteProblem(problem);
        } catch (const ChessException& fault) {
            return fault.Id() == EMessage::kErrorSavingToFile &&
                   std::string(fault.what()) == "Error saving to file";
        }
        return false;
    };
    u8 squares[kSquareCount] = {};
    squares[60] = kBlackKing;
    TChessProblem problem;
    EXPECT_TRUE(isRefused(problem)) << "no figures";
    problem.SetPosition(squares);
    EXPECT_TRUE(isRefused(problem)) << "no white figure";
    squares[4] = kWhiteKing;
    problem.SetPosition(squares);
    EXPECT_FALSE(isRefused(problem));
    problem.number = -1;
    EXPECT_TRUE(isRefused(problem)) << "a number that is no word";
    problem.number = 1;
    problem.type = kHelpmate;
    EXPECT_TRUE(isRefused(problem)) << "a type without a stipulation";
    problem.type = kDirectMate;
    problem.flags = kProblemHasAnswer;
    problem.answer = {MakeMove(4, 200)};
    EXPECT_TRUE(isRefused(problem)) << "a square that no text tells";
}

TEST(DefaultProblemFile, Text_IsThatOfTheLanguage) {
    EXPECT_EQ(DefaultProblemFile(ELanguage::kPolish),
              "UTF-8\n1 #2\n{\n\tDesc: Kliknij, aby zmienić opis problemu\n\tWhite: Ke1\n"
              "\tBlack: Ke8\n}\n");
    for (const ELanguage language :
         {ELanguage::kPolish, ELanguage::kEnglish, ELanguage::kUkrainian}) {
        TProblemCollection collection;
        ReadProblems(DefaultProblemFile(language), collection, {});
        ASSERT_EQ(collection.problems.size(), 1U);
        EXPECT_EQ(collection.Find(1)->description,
                  MessageText(EMessage::kDefaultDescription, language));
    }
}

}  // namespace
}  // namespace quillmere
