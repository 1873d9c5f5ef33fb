#include "core/fen.h"
#include "core/notation.h"
#include "problems/problem_options.h"
#include "problems/problem_reader.h"
#include "problems/save_losses.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using namespace std::string_literals;
using TWords = std::set<std::string>;

class CConsole : public IReaderConsole {
public:
    void OnProblemRead(i32 number) override {
        m_text += ProblemReadLine(number, ELanguage::kEnglish);
    }
    void OnRedefinition(i32 number) override {
        m_text += RedefinitionLine(number, ELanguage::kEnglish);
    }
    std::string m_text;
};

class ProblemReaderTest : public ::testing::Test {
protected:
    void Read(const std::string& text) { ReadProblems(text, m_collection, m_settings); }
    // The only problem of the text.
    const TChessProblem& ReadOne(const std::string& text) {
        m_collection.problems.clear();
        Read(text);
        EXPECT_EQ(m_collection.problems.size(), 1U) << text;
        return *m_collection.problems.begin()->second;
    }
    // The only problem, with these options, or with this body.
    const TChessProblem& WithOptions(const std::string& options) {
        return ReadOne("1 #2 " + options + " { W: Ke1 B: Ke8 }");
    }
    const TChessProblem& WithBody(const std::string& body) {
        return ReadOne("1 #2 {" + body + "}");
    }

    TProblemCollection m_collection;
    TReadSettings m_settings;
};

std::string MovesText(const std::vector<TMove>& moves) {
    std::string text;
    for (const TMove move : moves)
        text += (text.empty() ? "" : " ") + MoveToPlainText(move);
    return text;
}

// Whole files

TEST_F(ProblemReaderTest, FullExample_FillsEveryField) {
    const TChessProblem& problem =
        ReadOne("UTF-8\n"
                "\n"
                "7 #3 NoMirror AllSolutions THREADS 4^2 SAFEMODE Requires Qq\n"
                "//#TAGS\n"
                "//#sea snake\n"
                "//!VARIANTS\n"
                "//!{Main variant} 1.Kd2-d3 [the key] Ka8-a7\n"
                "//!ENDVARIANTS\n"
                "//@SortIndications: 1.Kd3; ~Qa1-a2\n"
                "{\n"
                "\tDescription: Study for mate\n"
                "\tFEN: 8/8/8/8/8/3K4/8/k7\n"
                "\tAnswer:  Kd2-d3, 0-0\n"
                "}\n");
    EXPECT_EQ(problem.number, 7);
    EXPECT_EQ(problem.type, kDirectMate);
    EXPECT_EQ(problem.maxHalfMoves, 5);
    EXPECT_EQ(problem.initialHalfMoves, 5);
    EXPECT_EQ(problem.position->m_nMoves, 5);
    EXPECT_EQ(problem.position->m_nRootMoves, 5);
    EXPECT_EQ(problem.flags,
              kProblemNoMirror | kProblemAllSolutions | kProblemSafeMode | kProblemHasAnswer);
    EXPECT_EQ(problem.threads, 4);
    EXPECT_TRUE(problem.areLevelsGiven);
    EXPECT_EQ(problem.multithreadingLevels, 2);
    EXPECT_EQ(problem.requires_, TWords{"Qq"});
    EXPECT_EQ(problem.tags, TWords{"sea snake"});
    ASSERT_EQ(problem.variants.size(), 1U);
    const TProblemVariant& variant = problem.variants.begin()->second;
    EXPECT_EQ(variant.name, "Main variant");
    ASSERT_EQ(variant.moves.size(), 2U);
    EXPECT_EQ(variant.moves[0].comment, "the key");
    EXPECT_EQ(variant.moves[1].text, "Ka8-a7");
    EXPECT_EQ(problem.sortIndications.byMoveNumber.size(), 2U);
    EXPECT_TRUE(problem.sortIndications.hasGeneralIndications);
    EXPECT_EQ(problem.description, "Study for mate");
    EXPECT_EQ(GetFENCode(*problem.position, true), "8/8/8/8/8/3K4/8/k7");
    EXPECT_EQ(MovesText(problem.answer), "d2-d3 e1-g1");
    EXPECT_TRUE(problem.lostBySave.empty());
    EXPECT_TRUE(m_collection.lostBySave.empty());
    EXPECT_EQ(m_collection.allTags, TWords{"sea snake"});
}

TEST_F(ProblemReaderTest, Problems_AreReadOneAfterTheOther) {
    CConsole console;
    m_settings.console = &console;
    Read("9 #2 { W: Ke1 B: Ke8 }\n3 s#2{W:Ke1 B:Ke8}4{W:Ke1 B:Ke8} 3 #4 { W: Kd1 B: Kd8 }");
    EXPECT_EQ(m_collection.problems.size(), 3U);
    EXPECT_EQ(console.m_text,
              "Problem 9 read from file.\nProblem 3 read from file.\nProblem 4 read from file.\n"
              "WARINING: Problem id=3 redefinition - overwriting.\nProblem 3 read from file.\n");
    EXPECT_EQ(m_collection.Find(3)->maxHalfMoves, 7);
    EXPECT_EQ(m_collection.lostBySave, TWords{LostProblem(3)});
}

TEST_F(ProblemReaderTest, TextWithoutProblems_IsAnEmptyCollection) {
    for (const char* text :
         {"", "UTF-8\n\n", " \n", "// comment\n", "//!default #2 AllSolutions\n"}) {
        Read(text);
        EXPECT_TRUE(m_collection.problems.empty()) << text;
    }
}

TEST_F(ProblemReaderTest, Fault_KeepsTheProblemsBeforeIt) {
    EXPECT_THROW(Read("1 #2 { W: Ke1 B: Ke8 } 2 #2 { W: Kx1 }"), CProblemFileFault);
    EXPECT_EQ(m_collection.problems.size(), 1U);
    EXPECT_NE(m_collection.Find(1), nullptr);
}

TEST_F(ProblemReaderTest, LineEnds_OfAllKindsAreRead) {
    const TChessProblem& problem =
        ReadOne("UTF-8\r\n1 #2\r\n//#TAGS\r\n//#a b \r\n//!VARIANTS\r\n//!{n} d2-d4 [x]\r\n"
                "//!ENDVARIANTS\r\n//@SortIndications: Kd3 \r\n{\r\nD: text \r\n"
                "FEN: 8/8/8/8/8/3K4/8/k7\r\n}\r\n");
    EXPECT_EQ(problem.description, "text");
    EXPECT_EQ(problem.tags, TWords{"a b"});
    EXPECT_EQ(problem.variants.begin()->second.moves[0].comment, "x");
}

// Encodings

TEST_F(ProblemReaderTest, Encoding_IsToldByTheFirstLine) {
    const std::string body = "1 #2\n//#TAGS\n//#\xd0\xa0\n//!VARIANTS\n//!{\xc4\x85} d2-d4 [\xb3]\n"
                             "{\nD: \xc5\x82 \n W: Ke1 B: Ke8 }";
    for (const char* head : {"UTF-8\n", " \t UTF-8\n", "\xef\xbb\xbfUTF-8\n", "\xef\xbb\xbf"}) {
        const TChessProblem& problem = ReadOne(head + body);
        EXPECT_EQ(problem.description, "\xc5\x82") << head;
        EXPECT_EQ(problem.tags, TWords{"\xd0\xa0"}) << head;
        EXPECT_EQ(problem.variants.begin()->first, "\xc4\x85") << head;
        EXPECT_EQ(problem.variants.begin()->second.moves[0].comment, "\xb3")
            << "bytes that are no UTF-8 are kept";
    }
    const TChessProblem& ansi = ReadOne(body);
    EXPECT_EQ(ansi.description, "Ĺ‚");
    EXPECT_EQ(ansi.tags, TWords{"Đ\u00a0"}) << "the no-break space belongs to the text";
    EXPECT_EQ(ansi.variants.begin()->first, "Ä…");
    EXPECT_EQ(ansi.variants.begin()->second.moves[0].comment, "ł");
    m_settings.ansiCodePage = "windows-1251";
    EXPECT_EQ(ReadOne("1 #2 { D: \xec\xe0\xf2\n W: Ke1 B: Ke8 }").description, "мат");
    // The word must stand in the first line.
    m_settings.ansiCodePage = "windows-1250";
    EXPECT_THROW(Read("\nUTF-8\n1 #2 { W: Ke1 B: Ke8 }"), CProblemFileFault);
}

TEST_F(ProblemReaderTest, UnknownCodePage_IsNamedUnlessTheFileIsUtf8) {
    m_settings.ansiCodePage = "windows-9999";
    EXPECT_EQ(ReadOne("UTF-8 1 #2 { W: Ke1 B: Ke8 }").number, 1);
    try {
        Read("2 #2 { W: Ke1 B: Ke8 }");
        FAIL();
    } catch (const ChessException& fault) {
        EXPECT_STREQ(fault.what(),
                     "The code page windows-9999 is unknown or cannot be used for problem files.");
    }
    EXPECT_EQ(m_collection.problems.size(), 1U);
}

// Head

TEST_F(ProblemReaderTest, Stipulation_GivesTypeAndHalfMoves) {
    struct TRow {
        const char* head;
        i32 number;
        i32 type;
        int halfMoves;
    };
    const TRow rows[] = {
        {"1 #1", 1, kDirectMate, 1},
        {"1#2", 1, kDirectMate, 3},
        {"2147483647 # 12", 2147483647, kDirectMate, 23},
        {"1 #32768", 1, kDirectMate, 65535},
        {"1 s#3", 1, kSelfmate, 7},
        {"1 s # 32767", 1, kSelfmate, 65535},
        {"1", 1, kNoStipulation, 255},
        {"1 NoMirror", 1, kNoStipulation, 255},
        {"007x #2y", 7, kDirectMate, 3},
        {"x", 0, kNoStipulation, 255},
    };
    for (const TRow& row : rows) {
        const TChessProblem& problem = ReadOne(row.head + " { W: Ke1 B: Ke8 }"s);
        EXPECT_EQ(problem.number, row.number) << row.head;
        EXPECT_EQ(problem.type, row.type) << row.head;
        EXPECT_EQ(problem.maxHalfMoves, row.halfMoves) << row.head;
        EXPECT_EQ(problem.initialHalfMoves, row.halfMoves) << row.head;
        EXPECT_EQ(problem.position->m_nMoves, row.halfMoves) << row.head;
        EXPECT_EQ(problem.position->m_nRootMoves, row.halfMoves) << row.head;
    }
}

TEST_F(ProblemReaderTest, FlagOptions_SetTheirBitInAnyCase) {
    const std::map<std::string, u32> flags = {
        {"NOMIRROR", 0x1},
        {"ALLSOLUTIONS", 0x2},
        {"STOPONDUAL", 0x8},
        {"STOPON3SOL", 0x10},
        {"USEMAINVARIANTASSORTINDICATIONS", 0x20},
        {"NOGLOBREG", 0x40},
        {"SAFEMODE", 0x80},
        {"MIRRORONLY", 0x100},
        {"REQUIRESSYZYGY", 0x2000},
        {"ALLSOLUTIONSREQUIRESSYZYGY", 0x4000},
        {"STOPON4SOL", 0x8000},
        {"USEPREDEFINEDSETTINGS", 0x8000},
        {"GUICHECK", 0x1000},
        {"GUICHECKBESTDEFENCEANDAUX", 0x1000},
        {"GUICHECKBESTDEFENCE", 0x800},
        {"STOPRELAXHEURISTICSONFIRSTSOLUTION", 0},
    };
    for (const auto& [keyword, flag] : flags) {
        std::string mixed = keyword;
        for (std::size_t i = 0; i < mixed.size(); i += 2)
            mixed[i] = static_cast<char>(std::tolower(mixed[i]));
        for (const std::string& word : {keyword, mixed}) {
            const TChessProblem& problem = WithOptions(word);
            EXPECT_EQ(problem.flags, flag) << word;
            EXPECT_EQ(problem.useMainVariantAsSortIndications, flag == 0x20) << word;
            EXPECT_EQ(problem.stopRelaxHeuristicsOnFirstSolution, flag == 0) << word;
        }
    }
}

TEST_F(ProblemReaderTest, NumberOptions_TakeTheDigitsUpToTheRangeOfTheirField) {
    const TChessProblem& plain = WithOptions("");
    EXPECT_EQ(plain.threads, kThreadsNotForced);
    EXPECT_FALSE(plain.areLevelsGiven);
    EXPECT_EQ(plain.schedulerLevels, kLevelsNotForced);
    EXPECT_EQ(plain.lichessLevels, kLevelsNotForced);
    EXPECT_EQ(plain.globRegMB, -1);

    EXPECT_EQ(WithOptions("THREADS 4").threads, 4);
    EXPECT_FALSE(WithOptions("THREADS 4").areLevelsGiven);
    EXPECT_EQ(WithOptions("threads 4x").threads, 4);
    EXPECT_EQ(WithOptions("THREADS x").threads, 0);
    // Numbers beyond the field, which would mean "not forced" or wrap, are its highest.
    EXPECT_EQ(WithOptions("THREADS 255").threads, 254);
    EXPECT_EQ(WithOptions("THREADS 260").threads, 254);
    EXPECT_EQ(WithOptions("THREADS 99999999999999999999999").threads, 254);
    EXPECT_EQ(WithOptions("THREADS 4^3").multithreadingLevels, 3);
    EXPECT_EQ(WithOptions("THREADS 4^").multithreadingLevels, 0);
    EXPECT_TRUE(WithOptions("THREADS 4^").areLevelsGiven);
    EXPECT_EQ(WithOptions("THREADS 4^300").multithreadingLevels, 255);
    EXPECT_EQ(WithOptions("SCHEDULERLEVELS 3").schedulerLevels, 3);
    EXPECT_EQ(WithOptions("SCHEDULERLEVELS 70000").schedulerLevels, 65534);
    EXPECT_EQ(WithOptions("LICHESSLEVELS 2").lichessLevels, 2);
    EXPECT_EQ(WithOptions("LICHESSLEVELS 65535").lichessLevels, 65534);
    EXPECT_EQ(WithOptions("GLOBREGMB 4096").globRegMB, 4096);
    EXPECT_EQ(WithOptions("GLOBREGMB 4294967296").globRegMB, 2147483647);
}

TEST_F(ProblemReaderTest, GuiCheck_TakesACountOnlyIfItIsANumber) {
    EXPECT_EQ(WithOptions("GUICHECK").guiCheckRepeat, 1);
    EXPECT_EQ(WithOptions("GUICHECK 0").guiCheckRepeat, 1);
    EXPECT_EQ(WithOptions("GUICHECK 3").guiCheckRepeat, 3);
    EXPECT_EQ(WithOptions("GUICHECKBESTDEFENCE 2 GUICHECK").guiCheckRepeat, 1);
    const TChessProblem& problem = WithOptions("GUICHECK GUICHECKBESTDEFENCE 4 SAFEMODE");
    EXPECT_EQ(problem.guiCheckRepeat, 4);
    EXPECT_EQ(problem.flags, 0x1880U);
    EXPECT_EQ(WithOptions("GUICHECK\n//#TAGS\n//#a\n").tags, TWords{"a"});
}

TEST_F(ProblemReaderTest, MaterialOptions_AreSets) {
    const TChessProblem& problem =
        WithOptions("Requires Qq ONLYIFAVAIL KR/kp requires Qq AllSolutionsRequires /*c*/ Bn//d\n");
    EXPECT_EQ(problem.requires_, (TWords{"Qq", "KR/kp"}));
    EXPECT_EQ(problem.allSolutionsRequires, TWords{"Bn"});
    EXPECT_EQ(WithOptions("Requires /x NoMirror").requires_, TWords{"/x"});
}

TEST_F(ProblemReaderTest, Heuristics_TakeParametersOrOff) {
    struct TRow {
        const char* text;
        u32 bit;
        TWords parameters;
    };
    const TRow rows[] = {
        {"SH_SAVEQUEEN/ROOK()", 0x4000, {}},
        {"SH_SaveQueen/Rook OFF", 0x4000, {"OFF"}},
        {"sh_keyline(A)", 0x1000, {"A"}},
        {"SH_KEEPKINGONTHEEDGE(STRICT, C2f, A, D3,M5)", 0x4, {"STRICT", "C2f", "A", "D3", "M5"}},
        {"SH_FINDFORCEDMATE ( #2-Preliminary incl.corner )",
         0x200,
         {"#2-Preliminary", "incl.corner"}},
        {"SH_KEYLINE off", 0x1000, {"OFF"}},
        {"SH_KEYLINE(A) SH_KEYLINE(B/*c*/C)", 0x1000, {"A", "B", "C"}},
        {"SH_DONTLETKINGMOVE(C2f)", 0x4, {"STRICT", "C2f"}},
        {"SH_DONTLETKINGMOVE OFF", 0x4, {"OFF"}},
    };
    for (const TRow& row : rows) {
        const TChessProblem& problem = WithOptions(row.text);
        ASSERT_EQ(problem.heuristicOverrides.size(), 1U) << row.text;
        EXPECT_EQ(problem.heuristicOverrides.begin()->first, row.bit) << row.text;
        EXPECT_EQ(problem.heuristicOverrides.begin()->second, row.parameters) << row.text;
    }
}

TEST_F(ProblemReaderTest, DefaultClauses_GiveOptionsToTheirStipulation) {
    Read("//!default #2 AllSolutions\n//!default  #4\tALLsolutions \n"
         "1 #2 { W: Ke1 B: Ke8 } 2 #3 { W: Ke1 B: Ke8 } 3 s#4 { W: Ke1 B: Ke8 }"
         "4 { W: Ke1 B: Ke8 }");
    EXPECT_TRUE(m_collection.Find(1)->Has(kProblemAllSolutions));
    EXPECT_FALSE(m_collection.Find(2)->Has(kProblemAllSolutions));
    EXPECT_TRUE(m_collection.Find(3)->Has(kProblemAllSolutions));
    EXPECT_FALSE(m_collection.Find(4)->Has(kProblemAllSolutions));
    EXPECT_EQ(m_collection.lostBySave, TWords{"//!default"});
    // They hold for one file only.
    EXPECT_EQ(WithOptions("").flags, 0U);
}

TEST_F(ProblemReaderTest, DefaultClause_BehindTheTopIsAComment) {
    Read("1 #2 { W: Ke1 B: Ke8 }\n//!default #2 AllSolutions\n2 #2 { W: Ke1 B: Ke8 }");
    EXPECT_FALSE(m_collection.Find(2)->Has(kProblemAllSolutions));
    EXPECT_EQ(m_collection.lostBySave, TWords{LostComment(2)});
}

// Blocks of lines

TEST_F(ProblemReaderTest, Blocks_MayAllBeLeftOut) {
    EXPECT_EQ(ReadOne("1 #2\n//#TAGS\n{ W: Ke1 B: Ke8 }").tags, TWords());
    EXPECT_EQ(ReadOne("1 #2\n//#TAGS\n//# a \n//#\n//#b\n{ W: Ke1 B: Ke8 }").tags,
              (TWords{"a", "b"}));
    EXPECT_TRUE(ReadOne("1 #2\n//!VARIANTS\n{ W: Ke1 B: Ke8 }").variants.empty());
    EXPECT_EQ(ReadOne("1 #2\n//!VARIANTS\n//!{a}\n{ W: Ke1 B: Ke8 }").variants.size(), 1U);
    EXPECT_EQ(ReadOne("1 #2\n//!VARIANTS\n//!{a}\n//!{a}\n//!ENDVARIANTS\n{ W: Ke1 B: Ke8 }")
                  .variants.size(),
              2U)
        << "two lines of one name";
    EXPECT_TRUE(
        ReadOne("1 #2\n//@Something\n{ W: Ke1 B: Ke8 }").sortIndications.byMoveNumber.empty());
}

TEST_F(ProblemReaderTest, MainVariantAndTags_AreInTheLanguageOfTheUser) {
    const std::string text = "UTF-8\n1 #2\n//#TAGS\n//#klatka\n//#mine\n//!VARIANTS\n"
                             "//!{Wariant główny} d2-d4\n//!ENDVARIANTS\n{ W: Ke1 B: Ke8 }";
    const TChessProblem& english = ReadOne(text);
    EXPECT_EQ(english.variants.begin()->first, "Main variant");
    EXPECT_EQ(english.tags, (TWords{"skittles setup", "mine"}));
    m_settings.language = ELanguage::kUkrainian;
    const TChessProblem& ukrainian = ReadOne(text);
    EXPECT_EQ(ukrainian.variants.begin()->first, "Основний варіант");
    EXPECT_EQ(ukrainian.tags, (TWords{"klatka", "mine"}));
}

// Body

TEST_F(ProblemReaderTest, Description_RunsToTheEndOfItsLine) {
    for (const char* keyword : {"D", "desc", "Description"}) {
        const TChessProblem& problem =
            WithBody("\n"s + keyword + " : \t a } // b /* { c \t\n W: Ke1 B: Ke8 ");
        EXPECT_EQ(problem.description, "a } // b /* { c");
        EXPECT_TRUE(problem.lostBySave.empty());
    }
    EXPECT_EQ(WithBody("D:\nW: Ke1 B: Ke8").description, "");
    EXPECT_EQ(WithBody("W: Ke1 B: Ke8").description, "");
}

TEST_F(ProblemReaderTest, FigureLists_GiveThePosition) {
    struct TRow {
        const char* body;
        const char* board;
    };
    const TRow rows[] = {
        {"W: Ke1 B: Ke8", "4k3/8/8/8/8/8/8/4K3"},
        {"wh: kE1, A2, Pb2, hd1, sg1, gc1, wa1 bl: KE8, a7", "4k3/p7/8/8/8/8/PP6/R1BQK1N1"},
        {"WHITE:Ke1 BLACK:", "8/8/8/8/8/8/8/4K3"},
        {"W: Ke1, Ka1, e8, h1 B: Nd4, a1q", ""},
        {"W: Ke1, Ka1, e8, h1 B: Nd4, d1", "4P3/8/8/8/3n4/8/8/K2pK2P"},
        {"W: Ke1 B: ANSWER: Ke1-e2", "8/8/8/8/8/8/8/4K3"},
        {"W: Ke1 B: SWM: Ke1-e2", "8/8/8/8/8/8/8/4K3"},
        {"W: Ke1 B: MOVES:", "8/8/8/8/8/8/8/4K3"},
    };
    for (const TRow& row : rows) {
        if (*row.board != '\0')
            EXPECT_EQ(GetFENCode(*WithBody(row.body).position, true), row.board) << row.body;
        else
            EXPECT_THROW(WithBody(row.body), CProblemFileFault) << row.body;
    }
}

TEST_F(ProblemReaderTest, Fen_TakesTheWordOfTheBoardOnly) {
    EXPECT_EQ(GetFENCode(*WithBody("FEN:4k3/8/8/8/8/8/8/4K3\n").position, true),
              "4k3/8/8/8/8/8/8/4K3");
    EXPECT_EQ(GetFENCode(*WithBody("fen: 4k3/8/8/8/8/8/8/W3K2S\t").position, true),
              "4k3/8/8/8/8/8/8/R3K2N");
}

TEST_F(ProblemReaderTest, Moves_ArePlayedFromWhiteOn) {
    const TChessProblem& problem = ReadOne(
        "1 #2 { FEN: 1r2k2r/2P4p/8/8/8/8/P7/R3K3\nMOVES: 0-0-0 0-0 c7:b8Q Rf8:b8 swm: a2-a3 }");
    EXPECT_EQ(problem.type, kNoStipulation);
    EXPECT_EQ(problem.maxHalfMoves, 255);
    EXPECT_EQ(problem.position->m_nMoves, 255);
    EXPECT_EQ(problem.currentNode->m_nMoves, 251);
    EXPECT_EQ(MovesText(problem.PlayedMoves()), "e1-c1 e8-g8 c7-b8Q f8-b8");
    EXPECT_EQ(GetFENCode(*problem.currentNode, true), "1r4k1/7p/8/8/8/8/P7/2KR4");
    EXPECT_EQ(problem.expectedSortWhiteMoves.size(), 1U);
}

TEST_F(ProblemReaderTest, Answers_AreSquaresWhateverStandsThere) {
    struct TRow {
        const char* clause;
        const char* moves;
        u32 flags;
    };
    const TRow rows[] = {
        {"SOLUTION: Kd2-d3", "d2-d3", 0x4},
        {"Answer: e7-e8Q, Xe7:d8n , a2:b3", "e7-e8Q e7-d8N a2-b3", 0x4},
        {"a:", "", 0x4},
        {"A: 0-0, 0-0-0", "e1-g1 e1-c1", 0x4},
        {"A: 0-0-0", "e1-c1", 0x4},
        {"EXPECTEDSORTWHITEMOVES: Qe1-e2,Qe1-e3", "e1-e2 e1-e3", 0x200},
        {"swm: 0-0", "e1-g1", 0x200},
        {"ExpectedSortWhiteMovesOnly: a2-a3", "a2-a3", 0x600},
    };
    for (const TRow& row : rows) {
        const TChessProblem& problem = WithBody("W: Ke1 B: Ke8 "s + row.clause);
        const bool isAnswer = row.flags == 0x4;
        EXPECT_EQ(problem.flags, row.flags) << row.clause;
        EXPECT_EQ(MovesText(problem.answer), isAnswer ? row.moves : "") << row.clause;
        EXPECT_EQ(MovesText(problem.expectedSortWhiteMoves), isAnswer ? "" : row.moves);
    }
    // A rank behind the edge is no square, and no other one either.
    for (const char* clause : {"A: Kd2-d9", "A: Kd2-h0"}) {
        const TChessProblem& problem = WithBody("W: Ke1 B: Ke8 "s + clause);
        ASSERT_EQ(problem.answer.size(), 1U);
        EXPECT_FALSE(IsOnBoard(problem.answer[0])) << clause;
    }
}

// What a save loses

TEST_F(ProblemReaderTest, LostWords_AreNoted) {
    const TChessProblem& problem = ReadOne("// one\n1 #2 // two\n SCHEDULERLEVELS 3 /* three\n */"
                                           "NoMirror\n"
                                           "//!VARIANTS\n//! [x] d2-d4\n{ W: Ke1 B: Ke8 MOVES: }\n"
                                           "// last");
    EXPECT_EQ(m_collection.lostBySave, (TWords{LostComment(1), LostComment(8)}));
    EXPECT_EQ(problem.lostBySave,
              (TWords{"SCHEDULERLEVELS",
                      LostComment(2),
                      LostComment(3),
                      LostBesideMoves(6),
                      LostStipulation("#2")}));
}

TEST_F(ProblemReaderTest, TextOfVariantsThatASaveLoses_IsNotedWithItsLine) {
    const struct {
        const char* line;
        TWords losses;
    } rows[] = {
        {"{v} 1. Ke1-e2 Ke8-e7", {}},
        {"{v} 1. Ke1-e2 \u043a\u043b\u044e\u0447", {LostBesideMoves(3)}},
        {"{v} 4. Ke1-e2", {LostMoveNumbers(3)}},
        {"? {v} 4. Ke1-e2", {LostBesideMoves(3), LostMoveNumbers(3)}},
    };
    for (const auto& row : rows) {
        const TChessProblem& problem =
            ReadOne("UTF-8 1 #2\n//!VARIANTS\n//!"s + row.line + "\n{ W: Ke1 B: Ke8 }");
        EXPECT_EQ(problem.lostBySave, row.losses) << row.line;
    }
}

TEST_F(ProblemReaderTest, Utf8ThatDoesNotSaySo_IsALoss) {
    const std::string body = "1 #2 { D: \u0142\n W: Ke1 B: Ke8 }";
    Read("UTF-8 " + body);
    Read("\xef\xbb\xbf" + body);
    Read("1 #2 { D: \xb3\n W: Ke1 B: Ke8 }");
    Read("1 #2 { D: l\n W: Ke1 B: Ke8 }");
    m_settings.ansiCodePage = "UTF-8";
    Read(body);
    EXPECT_EQ(m_collection.lostBySave, TWords{});
    m_settings.ansiCodePage = "windows-1250";
    Read(body);
    EXPECT_EQ(m_collection.lostBySave, TWords{LostEncoding("windows-1250")});
}

TEST_F(ProblemReaderTest, BytesThatTheCodePageLacks_AreALossOfTheirLine) {
    m_settings.ansiCodePage = "us-ascii";
    const TChessProblem& problem =
        ReadOne("1 #2\n//#TAGS\n//#a\n//#\xb3\n{ D: \xb3\n W: Ke1 B: Ke8 }");
    EXPECT_EQ(problem.lostBySave, (TWords{LostBytes(4), LostBytes(5)}));
    m_settings.ansiCodePage = "windows-1250";
    EXPECT_EQ(ReadOne("1 #2\n{ D: \xb3\n W: Ke1 B: Ke8 }").lostBySave, TWords{});
    EXPECT_EQ(ReadOne("UTF-8 1 #2\n{ D: \ufffd\n W: Ke1 B: Ke8 }").lostBySave, TWords{});
}

// Faults

TEST_F(ProblemReaderTest, FaultThatNamesNoWord_HasItAsToken) {
    const struct {
        const char* text;
        const char* message;
        const char* token;
    } rows[] = {
        {"1 { W: Ke1 B: Ke8 Moves: Ke1-e2 Ke8 - e1 }", "Illegal move", "Ke8 - e1"},
        {"1\n//!VARIANTS\n//!{v} 1. Ke1-e2 e4\n{ W: Ke1 B: Ke8 }", "Improper string length", "e4"},
    };
    for (const auto& row : rows) {
        try {
            Read(row.text);
            ADD_FAILURE() << row.text;
        } catch (const CProblemFileFault& fault) {
            EXPECT_TRUE(std::string(fault.what()).starts_with(row.message)) << fault.what();
            EXPECT_EQ(fault.Token(), row.token);
        }
    }
}

TEST_F(ProblemReaderTest, LineThatIsTooLong_IsNoIllegalMove) {
    std::string moves;
    for (int i = 0; i < 255; ++i)
        moves += i % 4 == 0   ? " Ke1-e2"
                 : i % 4 == 1 ? " Ke8-e7"
                 : i % 4 == 2 ? " Ke2-e1"
                              : " Ke7-e8";
    EXPECT_EQ(ReadOne("1 { W: Ke1 B: Ke8 Moves:" + moves + " }").playedNodes.size(), 255U);
    try {
        Read("1 { W: Ke1 B: Ke8 Moves:" + moves + " Ke7-e8 }");
        ADD_FAILURE();
    } catch (const CProblemFileFault& fault) {
        EXPECT_EQ(fault.Id(), EMessage::kLineTooLong);
    }
}

struct TFaultRow {
    const char* text;
    int line;
    const char* message;
};

TEST_F(ProblemReaderTest, EveryFault_TellsTextAndLine) {
    const TFaultRow rows[] = {
        // Words
        {"1 #2\n{ W: Ke1\nB: Ke8\n\n", 3, "Unexpected end of file."},
        {"1", 1, "Unexpected end of file."},
        {"1 #2\nRequires Qq", 2, "Unexpected end of file."},
        {"1 #2\n{ D: text", 2, "Unexpected end of file."},
        {"1 #2\n{ /* W: Ke1\nB: Ke8 }\n", 2, "Unexpected end of file before comment closed."},
        {"1 #2 NoMirror\n// {", 2, "Unexpected end of file before comment closed."},
        {"/* 1 #2 { W: Ke1 B: Ke8 }", 1, "Unexpected end of file before comment closed."},
        {"1 #2\n{ W / Ke1", 2, "Unexpected lexem (slash)."},
        {"1 #2\n{\n: Ke1 }", 3, "Alphanumeric identifier expected. Found: :"},
        {"#2 { W: Ke1 B: Ke8 }", 1, "Alphanumeric identifier expected. Found: #"},
        {"1 #2 { W: Ke1 B: Ke8 }\n}", 2, "Alphanumeric identifier expected. Found: }"},
        {"1 #2\nTHREADS { W: Ke1", 2, "Alphanumeric identifier expected. Found: {"},
        {"1 #2\nRequires { W: Ke1", 2, "Alphanumeric identifier expected. Found: {"},
        {"1 #2\nRequires\n//#TAGS\n", 3, "Alphanumeric identifier expected. Found: //#TAGS"},
        {"UTF-8\n1 #\u0142 {", 2, "Alphanumeric identifier expected. Found: \u0142"},
        // Head
        {"//!default #2\n1 #2 { W: Ke1 B: Ke8 }", 1, "Incorrect 'default' clause."},
        {"\n//!default #2 A B\n", 2, "Incorrect 'default' clause."},
        {"//!defaults #2 A\n", 1, "Incorrect 'default' clause."},
        {"//!default 2 AllSolutions\n", 1, "Error in 'default' clause."},
        {"//!default #0 AllSolutions\n", 1, "Error in 'default' clause."},
        {"//!default #2 NoMirror\n\n1 #2 { W: Ke1 B: Ke8 }", 3, "Unrecognizable option: NoMirror"},
        {"1 #2\nNoMiror {",
         2,
         "Opening bracket expected { or unrecognized option encountered: NoMiror"},
        {"1 #2 W: Ke1", 1, "Opening bracket expected { or unrecognized option encountered: W"},
        {"1 S#3 {", 1, "Opening bracket expected { or unrecognized option encountered: S"},
        {"1 s {", 1, "Opening bracket expected { or unrecognized option encountered: s"},
        {"1 #2\n//#foo\n{",
         2,
         "Opening bracket expected { or unrecognized option encountered: //#foo"},
        {"1 #2\n//#tags\n{",
         2,
         "Opening bracket expected { or unrecognized option encountered: //#tags"},
        {"1 #2 \xb3 {", 1, "Opening bracket expected { or unrecognized option encountered: \u0142"},
        {"UTF-8 1 #2 \xb3 {",
         1,
         "Opening bracket expected { or unrecognized option encountered: \\xb3"},
        {"1 #2 Sh_KeyLine A {",
         1,
         "Unexpected lexem after Sh_KeyLine: A (expected opening bracket or OFF)"},
        {"1 #2 SH_KEYLINE\n{ W",
         2,
         "Unexpected lexem after SH_KEYLINE: { (expected opening bracket or OFF)"},
        {"1 #2 SH_KEYLINE(A { W: Ke1 B: Ke8 }", 1, "Unexpected end of file."},
        {"2147483648 #2",
         1,
         "The problem number 2147483648 is out of range; allowed are 0 to 2147483647."},
        {"1\n#0 {", 2, "The stipulation #0 is out of range; allowed are #1 to #32768."},
        {"1 #x {", 1, "The stipulation #x is out of range; allowed are #1 to #32768."},
        {"1 #32769 {", 1, "The stipulation #32769 is out of range; allowed are #1 to #32768."},
        {"1 s#32768 {", 1, "The stipulation #32768 is out of range; allowed are #1 to #32767."},
        // Blocks of lines
        {"1 #2\n//#TAGS\n//#a\nNoMirror {", 4, "Opening bracket expected."},
        {"1 #2\n//!VARIANTS\n//!ENDVARIANTS\n//#TAGS\n{", 4, "Opening bracket expected."},
        {"1 #2\n//@sortindications: Kd3\n{", 2, "Opening bracket expected."},
        {"1 #2\n//@SortIndications:Kd3\n{", 2, "Opening bracket expected."},
        {"1 #2\n//!VARIANTS\n//!d2-d4\n//!e4\n{", 4, "Improper string length"},
        {"1 #2\n//!VARIANTS\n//!d2-z4\n{", 3, "Improper full description of move"},
        {"1 #2\n//!VARIANTS\n//!d7-d8Y\n{", 3, "Unknown figure letter: Y"},
        {"1 #2\n//@SortIndications: \n{", 2, "Invalid description of SortIndication"},
        {"1 #2\n//@SortIndications: Kd3;; Ke3\n{", 2, "Invalid description of SortIndication"},
        {"1 #2\n//@SortIndications: Kz3\n{", 2, "Invalid description of SortIndication: Kz3"},
        {"1 #2\n//@SortIndications: Kd3 Ke3\n{",
         2,
         "Move description too long (note that moves should be separated with a comma or "
         "semicolon)"},
        // Position
        {"1 #2 {\nD text\n", 2, "Colon ':' expected after description identifier."},
        {"1 #2 {\nFEN 4k3/8/8/8/8/8/8/4K3\n}", 2, "Colon ':' expected after FEN identifier."},
        {"1 #2 {\nFEN: 4k3/8/8/8/8/8/8/4K\n}", 2, "Improper FEN code"},
        {"1 #2 {\nFEN:\n4k3/8/8/8/8/8/8/4K3\n}", 2, "Improper FEN code"},
        {"1 #2 {\nFEN: 4k3/8/8/8/8/8/8/4K3}", 2, "Improper FEN code"},
        {"1 #2 {\nFEN: P3k3/8/8/8/8/8/8/4K3\n}", 2, "Improper FEN code"},
        {"1 #2 {\nFEN: 4k3/8/8/8/8/8/8/4X3\n}", 2, "Unknown figure letter: X"},
        {"1 #2 {\nKe1 }", 2, "White figures identifier expected (W, WH or WHITE)."},
        {"1 #2 {\nB: Ke1 }", 2, "White figures identifier expected (W, WH or WHITE)."},
        {"1 #2 {\nW Ke1 }", 2, "Colon ':' expected after white figures identifier."},
        {"1 #2 { W: Ke1 Qd1\nB: Ke8 }", 1, "Black figures identifier expected (B, BL or BLACK)."},
        {"1 #2 { W: Ke1\nB Ke8 }", 2, "Colon expected after black figures identifier."},
        {"1 #2 { W:\nB: Ke8 }", 2, "White figure specification is invalid: B"},
        {"1 #2 { W: Ke1,\nQde2 B: Ke8 }", 2, "White figure specification is invalid: Qde2"},
        {"1 #2 { W: Ke9 B: Ke8 }", 1, "White figure position is invalid: Ke9"},
        {"1 #2 { W: i2 B: Ke8 }", 1, "White figure position is invalid: i2"},
        {"1 #2 { W: Te1 B: Ke8 }", 1, "Unknown figure letter: T"},
        {"1 #2 { W: Ke1 B:\nK }", 2, "Black figure specification is invalid: K"},
        {"1 #2 { W: Ke1 B: Ke8, Qk8 }", 1, "Black figure position is invalid: Qk8"},
        {"1 #2 { W: Ke1, Qe1 B: Ke8 }", 1, "Square e1 already occupied."},
        {"1 #2 { W: Ke1 B: KE1 }", 1, "Square E1 already occupied."},
        {"1 #2 { W: Ke1, B: Ke8 }", 1, "White figure specification is invalid: B"},
        {"1 #2 { W: }", 1, "Alphanumeric identifier expected. Found: }"},
        // Moves
        {"1 { W: Ke1 B: Ke8\nMOVES Ke1-e2 }", 2, "Colon expected after Moves section start."},
        {"1 { W: Ke1 B: Ke8 MOVES:\nKe1 Ke2 }", 2, "Invalid lexem encountered: Ke2"},
        {"1 { W: Ke1 B: Ke8 MOVES: Kx1-e2 }", 1, "Invalid 'from' position: Kx1"},
        {"1 { W: Ke1 B: Ke8 MOVES: 12 }", 1, "Invalid 'from' position: 12"},
        {"1 { W: Ke1 B: Ke8 MOVES: Ke1-x2 }", 1, "Invalid 'to' position: x2"},
        {"1 { W: Ke1 B: Ke8 MOVES: Ke1-e2QQ }", 1, "Invalid 'to' position: e2QQ"},
        {"1 { W: Ke1 B: Ke8 MOVES: Ke1-} }", 1, "Invalid 'to' position: }"},
        {"1 { W: Ke1 B: Ke8 MOVES: Te1-e2 }", 1, "Unknown figure letter: T"},
        {"1 { W: Ke1 B: Ke8 MOVES: Ke1-e2Y }", 1, "Unknown figure letter: Y"},
        {"1 { W: Ke1 B: Ke8 MOVES: 0 0 }", 1, "Hyphen expected."},
        {"1 { W: Ke1 B: Ke8 MOVES: 0-O }", 1, "Incorrect castling symbol: O"},
        {"1 { W: Ke1 B: Ke8 MOVES: 0-0-1 }", 1, "Incorrect castling symbol: 1"},
        {"1 { W: Ke1 B: Ke8 MOVES:\n0-0 }", 2, "Illegal move"},
        {"1 { W: Ke1 B: Ke8 MOVES: Ke1-e2\nKe2-e3 }", 2, "Illegal move"},
        {"1 { W: Ke1 B: Kf1 MOVES: Ke1-e2 }", 1, "Illegal move"},
        {"1 { W: Ke1 B: Ke8 MOVES: Ke1-e2+ }", 1, "Closing bracket expected."},
        {"1 { W: Ke1 B: Ke8 MOVES: 1. Ke1-e2 }", 1, "Closing bracket expected."},
        // Solutions
        {"1 #2 { W: Ke1 B: Ke8 A Ke1-e2 }", 1, "Colon expected after correct answer identifier."},
        {"1 #2 { W: Ke1 B: Ke8 SWM Ke1-e2 }", 1, "Colon expected after correct answer identifier."},
        {"1 #2 { W: Ke1 B: Ke8\nA: K }", 2, "Invalid correct answer ('from' element): K"},
        {"1 #2 { W: Ke1 B: Ke8 A: Kx1-e2 }", 1, "Invalid correct answer ('from' element): Kx1"},
        {"1 #2 { W: Ke1 B: Ke8 A: 1. Ke1-e2 }", 1, "Invalid correct answer ('from' element): 1"},
        {"1 #2 { W: Ke1 B: Ke8 A: Ke1-e2, }", 1, "Invalid correct answer ('from' element): }"},
        {"1 #2 { W: Ke1 B: Ke8 A: Ke1 e2 }",
         1,
         "Hyphen expected to separate correct answer elements"},
        {"1 #2 { W: Ke1 B: Ke8 A: 0 }", 1, "Hyphen expected to separate correct answer elements"},
        {"1 #2 { W: Ke1 B: Ke8 A: Ke1-e }", 1, "Invalid correct answer ('to' element): e"},
        {"1 #2 { W: Ke1 B: Ke8 A: Ke1-i1 }", 1, "Invalid correct answer ('to' element): i1"},
        {"1 #2 { W: Ke1 B: Ke8 A: e7-e8Y }", 1, "Unknown figure letter: Y"},
        {"1 #2 { W: Ke1 B: Ke8 A: 0-O }", 1, "Invalid correct answer: O"},
        {"1 #2 { W: Ke1 B: Ke8 A: 0-0-1 }", 1, "Invalid correct answer: 1"},
        {"1 #2 { W: Ke1 B: Ke8 A: 0-0\nKe1-e2 }",
         2,
         "Comma should separate various solutions of the problem, but encountered: Ke1"},
        {"1 #2 { W: Ke1 B: Ke8 A: Ke1-e2 Ke1-f2 }", 1, "Closing bracket expected."},
        {"1 #2 { W: Ke1 B: Ke8\nA: Ke1-e2\nSWM: Ke1-e2 }", 3, "Closing bracket expected."},
        {"1 #2 { W: Ke1 B: Ke8\nSWM: Ke1-e2\nA: Ke1-e2 }", 3, "Closing bracket expected."},
        {"1 #2 { FEN: 4k3/8/8/8/8/8/8/4K3 w - - 0 1\n}", 1, "Closing bracket expected."},
        {"1 #2 { W: Ke1 B: Ke8 A: Ke1-e2 MOVES: Ke1-e2 }", 1, "Closing bracket expected."},
    };
    for (const TFaultRow& row : rows) {
        try {
            Read(row.text);
            ADD_FAILURE() << "no fault in: " << row.text;
        } catch (const CProblemFileFault& fault) {
            EXPECT_STREQ(fault.what(), row.message) << row.text;
            EXPECT_EQ(fault.Line(), row.line) << row.text;
        }
    }
    EXPECT_TRUE(m_collection.problems.size() <= 1);
}

TEST_F(ProblemReaderTest, ZeroByte_EndsNothingSilently) {
    EXPECT_THROW(Read("1 #2 { W: Ke1 B: Ke8 }\0 2 #2 { W: Ke1 B: Ke8 }"s), CProblemFileFault);
    EXPECT_THROW(Read("3 #2 { FEN: 4k3/8/8/8/8/8/8/4K3\0 }"s), CProblemFileFault);
    EXPECT_EQ(WithBody("D: a\0b\nW: Ke1 B: Ke8"s).description, "a\0b"s);
}

// Files

class ProblemFileTest : public ProblemReaderTest {
protected:
    std::filesystem::path File() const { return m_folder.Path() / "problems.cp"; }
    std::string FaultOf(const std::filesystem::path& path, bool createIfMissing) {
        try {
            ReadFile(path, m_collection, createIfMissing, m_settings);
        } catch (const ChessException& fault) {
            return fault.what();
        }
        return "";
    }

    test::CTemporaryFolder m_folder;
};

TEST_F(ProblemFileTest, FileThatCannotBeRead_IsNamed) {
    EXPECT_EQ(FaultOf(File(), false), "Error opening file: " + File().string());
    EXPECT_EQ(FaultOf(m_folder.Path(), false), "Error opening file: " + m_folder.Path().string());
    EXPECT_EQ(FaultOf(m_folder.Path(), true), "Error opening file: " + m_folder.Path().string());
    EXPECT_FALSE(std::filesystem::exists(File()));
    test::WriteFile(File(), "");
    EXPECT_EQ(FaultOf(File(), true), "File cannot be empty.");
}

TEST_F(ProblemFileTest, MissingFile_IsMadeIfAskedFor) {
    EXPECT_EQ(FaultOf(File(), true), "");
    EXPECT_EQ(test::ReadFile(File()),
              "UTF-8\n1 #2\n{\n\tDesc: Click here to change problem description\n\tWhite: Ke1\n"
              "\tBlack: Ke8\n}\n");
    ASSERT_NE(m_collection.Find(1), nullptr);
    EXPECT_EQ(m_collection.Find(1)->description, "Click here to change problem description");
}

TEST_F(ProblemFileTest, File_AddsToTheCollection) {
    Read("1 #2 { W: Ke1 B: Ke8 } 2 #2 { W: Ke1 B: Ke8 }");
    test::WriteFile(File(), "2 #5 { W: Ke1 B: Ke8 } 3 #2 { W: Ke1 B: Ke8 }");
    EXPECT_EQ(FaultOf(File(), false), "");
    EXPECT_EQ(m_collection.problems.size(), 3U);
    EXPECT_EQ(m_collection.Find(2)->maxHalfMoves, 9);
}

TEST(ReadSettingsOf, Options_GiveLanguageAndCodePage) {
    TOptions options;
    options.LanguageId = 0;
    options.AnsiCodePage = "windows-1251";
    const TReadSettings settings = ReadSettingsOf(options);
    EXPECT_EQ(settings.language, ELanguage::kPolish);
    EXPECT_EQ(settings.ansiCodePage, "windows-1251");
    EXPECT_EQ(ReadSettingsOf(TOptions()).ansiCodePage, TReadSettings().ansiCodePage);
}

}  // namespace
}  // namespace quillmere
