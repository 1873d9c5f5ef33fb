#include "problems/problem_options.h"
#include "problems/problem_reader.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using TLines = std::vector<std::string>;

TLines LossesOf(const std::string& text) {
    TProblemCollection collection;
    ReadProblems(text, collection, {});
    return SaveLossLines(collection, ELanguage::kEnglish);
}

TEST(SaveLossLines, FileThatIsKeptWhole_HasNone) {
    EXPECT_EQ(LossesOf("UTF-8\n7 #3 NoMirror MirrorOnly THREADS 4^2 GUICHECK 3 Requires Qq "
                       "OnlyIfAvail Rr GuiCheckBestDefenceAndAux\n"
                       "//#TAGS\n//#a\n//!VARIANTS\n//!{x} 1.Kd2-d3 [the key]\n//!ENDVARIANTS\n"
                       "//@SortIndications: Kd3\n{ D: // text /* }\nW: Ke1 B: Ke8 A: 0-0 }"
                       "8 { W: Ke1 B: Ke8 MOVES: Ke1-e2 }"),
              TLines{});
}

// Fields that come back otherwise, and are no named loss.
TEST(UnnamedLosses, AreThoseThatNoLineNames) {
    TChessProblem problem;
    problem.schedulerLevels = 3;
    problem.flags |= kProblemHasExpectedSort | kProblemExpectedSortOnly;
    problem.description = " blanks ";
    problem.tags = {"a ", "b"};
    TProblemVariant variant;
    variant.name = "}v";
    problem.variants.emplace(variant.name, variant);
    TChessProblem back;
    back.description = "blanks";
    back.tags = {"a", "b"};
    variant.name = "v";
    back.variants.emplace(variant.name, variant);
    EXPECT_EQ(UnnamedLosses(problem, back), TLines{});
    // One more difference in each field, beside the one that is named.
    problem.guiCheckRepeat = 5;
    problem.description = " other ";
    problem.tags.insert("");
    problem.variants.begin()->second.doesBlackBegin = true;
    EXPECT_EQ(
        UnnamedLosses(problem, back),
        (TLines{"GUICHECK n", "//#TAGS", "//!VARIANTS {v}", "//!VARIANTS {}v}", "Description"}));
}

TEST(SaveLossLines, EverythingLost_IsNamed) {
    EXPECT_EQ(
        LossesOf("UTF-8 // one\n"
                 "//!default #2 AllSolutions\n"
                 "7 #2 SchedulerLevels 3 NoGlobReg GlobRegMB 5 AllSolutionsRequires Qq // two\n"
                 "StopRelaxHeuristicsOnFirstSolution LichessLevels 2\n"
                 "SH_KEYLINE(A) sh_savequeen/rook OFF\n"
                 "//#TAGS\n//#unikanie pata\n//#zagrożenie patem\n"
                 "//!VARIANTS\n"
                 "//! [x] d2-d4\n"
                 "{ W: Ke1 B: Ke8 /* three */ SWM: Ke1-e2 }\n"
                 "//# four\n"
                 "8 s#3 { W: Ke1 B: Ke8 MOVES: Ke1-e2 SWM: }\n"
                 "9 #3 { W: Ke1 B: Ke8 }\n"
                 "9 #3 { W: Ke1 B: Ke8 EXPECTEDSORTWHITEMOVESONLY: Ke1-e2 }\n"),
        (TLines{
            "File: //!default is not written",
            "File: only the last problem with the number 9 is written",
            "File: the comment in line 1 is not written",
            "File: the comment in line 12 is not written",
            "Problem 7: ALLSOLUTIONSREQUIRES is not written",
            "Problem 7: SCHEDULERLEVELS is not written",
            "Problem 7: LICHESSLEVELS is not written",
            "Problem 7: GLOBREGMB is not written",
            "Problem 7: NOGLOBREG is not written",
            "Problem 7: STOPRELAXHEURISTICSONFIRSTSOLUTION is not written",
            "Problem 7: SH_KEYLINE is not written",
            "Problem 7: SH_SAVEQUEEN/ROOK is not written",
            "Problem 7: EXPECTEDSORTWHITEMOVES is not written",
            "Problem 7: the tag \"zagrożenie patem\" is written as another one that means the "
            "same",
            "Problem 7: text beside the moves of the variant in line 10 is not written",
            "Problem 7: the comment in line 3 is not written",
            "Problem 7: the comment in line 11 is not written",
            "Problem 8: EXPECTEDSORTWHITEMOVES is not written",
            "Problem 8: the stipulation s#3 is not written, since there are played moves",
            "Problem 9: EXPECTEDSORTWHITEMOVESONLY is not written",
        }));
}

TEST(SaveLossLines, LossesOfTheWriter_AreThoseThatAreListed) {
    // Each lost option alone: what is written and read again has lost it, and nothing else.
    for (const TProblemOptionRow& row : kProblemOptionRows) {
        const bool hasMaterial =
            row.kind == EOptionKind::kRequires || row.kind == EOptionKind::kAllSolutionsRequires;
        const std::string option = std::string(row.keyword) + (hasMaterial ? " Qq" : "") +
                                   (row.keyword.ends_with("LEVELS") || row.keyword == "GLOBREGMB" ||
                                            row.keyword == "THREADS"
                                        ? " 3"
                                        : "");
        TProblemCollection collection;
        ReadProblems("1 #2 " + option + " { W: Ke1 B: Ke8 }", collection, {});
        const TLines losses = SaveLossLines(collection, ELanguage::kEnglish);
        const bool isWritten =
            WriteProblems(collection) != "UTF-8\n\n1 #2\n{\n\tFEN: 4k3/8/8/8/8/8/8/4K3\n}\n";
        EXPECT_EQ(losses.empty(), isWritten) << option;
        EXPECT_EQ(row.isLost, !isWritten) << option;
    }
}

TEST(SaveLossesOf, DataThatWereNotRead_AreFoundInTheFields) {
    TChessProblem problem;
    EXPECT_EQ(SaveLossesOf(problem, ELanguage::kEnglish), TLines{});
    problem.flags = kProblemNoGlobReg;
    problem.schedulerLevels = 2;
    problem.globRegMB = 0;
    problem.areLevelsGiven = true;
    problem.heuristicOverrides[0x1000] = {"A"};
    problem.expectedSortWhiteMoves = {MakeMove(1, 2)};
    problem.description = "two\nlines";
    problem.tags = {" a"};
    TProblemVariant variant;
    variant.name = "x}";
    variant.moves.push_back({MakeMove(4, 12), "Ke1-e2", "[1]"});
    problem.variants.emplace(variant.name, variant);
    EXPECT_EQ(
        SaveLossesOf(problem, ELanguage::kEnglish),
        (TLines{
            "SCHEDULERLEVELS is not written",
            "GLOBREGMB is not written",
            "NOGLOBREG is not written",
            "THREADS is not written",
            "SH_KEYLINE is not written",
            "EXPECTEDSORTWHITEMOVES is not written",
            "the text \"two\nlines\" is written without line ends and without blanks around it",
            "the text \" a\" is written without line ends and without blanks around it",
            "the name \"x}\" of a variant is written without closing brackets and line ends",
            "the comment \"[1]\" of a move is written without closing brackets and line ends",
        }));
}

TEST(SaveLossLines, Lines_AreInTheLanguageAskedFor) {
    TProblemCollection collection;
    ReadProblems("1 #2 NoGlobReg { W: Ke1 B: Ke8 }", collection, {});
    EXPECT_EQ(SaveLossLines(collection, ELanguage::kPolish),
              TLines{"Zadanie 1: NOGLOBREG nie jest zapisywane"});
}

}  // namespace
}  // namespace quillmere
