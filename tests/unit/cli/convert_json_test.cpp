#include "cli/convert_json.h"
#include "problems/problem_fields.h"
#include "problems/problem_writer.h"
#include "tests/support/collections.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr const char* kProblem =
    "7 #3 NoMirror THREADS 4^2 SCHEDULERLEVELS 3 LICHESSLEVELS 2 GLOBREGMB 500 GUICHECK 2 "
    "SH_KEYLINE(A) SH_ZUGZWANG OFF STOPRELAXHEURISTICSONFIRSTSOLUTION Requires Qq "
    "ALLSOLUTIONSREQUIRES Rr\n//#TAGS\n//#sea snake\n//!VARIANTS\n"
    "//!{x} 1. Rh1-h2 [a note] Kg8-f8\n//!{} 1. ... Kg8-f8\n//!ENDVARIANTS\n"
    "//@SortIndications: 1.Kd3; ~Rh1-a2++\n{\nD: \"text\"\nFEN: 6k1/8/8/8/8/8/8/K6R\n"
    "EXPECTEDSORTWHITEMOVESONLY: Rh1-h2, Ka1-h8\n}\n";

constexpr const char* kJson =
    R"({"schema":1,"number":7,"stipulation":"#3","description":"\"text\"",)"
    R"("board":"6k1/8/8/8/8/8/8/K6R","expectedFirstMoves":["h1h2","a1h8"],)"
    R"("expectedFirstMovesOnly":true,"flags":["NoMirror","GUICHECK"],"guiCheckRepeat":2,)"
    R"("threads":4,"multithreadingLevels":2,"schedulerLevels":3,"lichessLevels":2,)"
    R"("globRegMB":500,"stopRelaxHeuristicsOnFirstSolution":true,)"
    R"("heuristics":{"SH_KEYLINE":["A"],"SH_ZUGZWANG":["OFF"]},"requires":["Qq"],)"
    R"("allSolutionsRequires":["Rr"],"tags":["sea snake"],)"
    R"("variants":[{"name":"","blackBegins":true,"moves":[{"text":"Kg8-f8"}]},)"
    R"({"name":"x","blackBegins":false,"moves":[{"text":"Rh1-h2","comment":"a note"},)"
    R"({"text":"Kg8-f8"}]}],"sortIndications":["~Rh1-a2++","1.Kd3"]})";

TEST(WriteJson, EachField_HasItsPlace) {
    TProblemCollection collection;
    test::ReadCp(kProblem, collection);
    TConversionRemarks remarks;
    EXPECT_EQ(WriteJson(collection, true, remarks), std::string(kJson) + "\n");
    EXPECT_EQ(WriteJson(collection, false, remarks), "[\n" + std::string(kJson) + "\n]\n");
    EXPECT_TRUE(remarks.empty());
}

TEST(WriteJson, BytesThatAreNoText_AreToldAsALoss) {
    TProblemCollection collection;
    test::ReadCp("1 #2 {\nD: a\xff\nFEN: 6k1/8/8/8/8/8/8/K6R\n}", collection);
    TConversionRemarks remarks;
    WriteJson(collection, true, remarks);
    ASSERT_EQ(remarks.size(), 1U);
    EXPECT_EQ(FormatMessage(remarks[0].id, ELanguage::kEnglish, remarks[0].values),
              "not kept in JSON: Description.");
}

TEST(ReadJson, IllegalPositions_AreKept) {
    TProblemCollection collection;
    test::ReadCp("1 #2 {\nWhite: Ka1, Kb1, a3\nBlack: \n}\n2 {\nW: e4\nB: d5\n}", collection);
    TConversionRemarks remarks;
    const std::string text = WriteJson(collection, false, remarks);
    TProblemCollection back;
    ReadJson(text, back);
    EXPECT_EQ(WriteProblems(back), WriteProblems(collection));
    EXPECT_TRUE(remarks.empty());
}

constexpr const char* kLeast =
    R"({"schema":1,"number":1,"stipulation":"","board":"6k1/8/8/8/8/8/8/K6R"})";

TEST(ReadJson, LeastOfFields_IsABarePosition) {
    for (const std::string& text : {std::string(kLeast),
                                    "[" + std::string(kLeast) + "]",
                                    "\xef\xbb\xbf\r\n" + std::string(kLeast) + "\r\n"}) {
        TProblemCollection collection;
        ReadJson(text, collection);
        EXPECT_EQ(WriteProblems(collection), "UTF-8\n\n1 \n{\n\tFEN: 6k1/8/8/8/8/8/8/K6R\n}\n");
    }
}

struct TFaultCase {
    const char* fields;  // behind the fields of the least problem
    EMessage id;
    const char* path;
};

constexpr TFaultCase kFaults[] = {
    {R"("x":1)", EMessage::kJsonUnknown, "x"},
    {R"("number":2)", EMessage::kJsonTwice, "number"},
    {R"("description":3)", EMessage::kJsonExpectsText, "description"},
    {R"("answer":"e4")", EMessage::kJsonExpectsList, "answer"},
    {R"("answer":["e2e4","e9"])", EMessage::kJsonBadValue, "answer[1]"},
    {R"("answer":["e2e4x"])", EMessage::kJsonBadValue, "answer[0]"},
    {R"("answer":["e1a9","e1e:"])", EMessage::kJsonBadValue, "answer[1]"},
    {R"("answer":["e9e1"])", EMessage::kJsonBadValue, "answer[0]"},
    {R"("requires":["Qq","K Q"])", EMessage::kJsonBadValue, "requires[1]"},
    {R"("requires":[""])", EMessage::kJsonBadValue, "requires[0]"},
    {R"("allSolutionsRequires":["Qq {"])", EMessage::kJsonBadValue, "allSolutionsRequires[0]"},
    {R"("moves":["h1h2","h2h3"])", EMessage::kJsonBadValue, "moves[1]"},
    {R"("flags":["Mirror"])", EMessage::kJsonBadValue, "flags[0]"},
    {R"("threads":255)", EMessage::kJsonExpectsNumber, "threads"},
    {R"("threads":1.5)", EMessage::kJsonExpectsNumber, "threads"},
    {R"("threads":-1)", EMessage::kJsonExpectsNumber, "threads"},
    {R"("globRegMB":18446744073709551615)", EMessage::kJsonExpectsNumber, "globRegMB"},
    {R"("expectedFirstMovesOnly":1)", EMessage::kJsonExpectsBool, "expectedFirstMovesOnly"},
    {R"("heuristics":[])", EMessage::kJsonExpectsObject, "heuristics"},
    {R"("heuristics":{"SH_X":[]})", EMessage::kJsonUnknown, "heuristics.SH_X"},
    {R"("variants":[{"moves":[]}])", EMessage::kJsonMissing, "variants[0].name"},
    {R"("variants":[{"name":"","moves":[{"text":"Z"}]}])",
     EMessage::kJsonBadValue,
     "variants[0].moves[0].text"},
    {R"("variants":[{"name":"","moves":[{"text":"e2-e4","note":""}]}])",
     EMessage::kJsonUnknown,
     "variants[0].moves[0].note"},
    {R"("sortIndications":["Kd"])", EMessage::kJsonBadValue, "sortIndications[0]"},
};

TEST(ReadJson, EachFault_NamesItsFieldAndLine) {
    for (const TFaultCase& row : kFaults) {
        std::string text(kLeast);
        text.insert(text.size() - 1, "," + std::string(row.fields));
        TProblemCollection collection;
        try {
            ReadJson("\n" + text + "\n", collection);
            ADD_FAILURE() << row.fields;
        } catch (const CProblemFileFault& fault) {
            EXPECT_EQ(fault.Line(), 2);
            EXPECT_EQ(MessageName(fault.Id()), MessageName(row.id)) << row.fields;
            EXPECT_EQ(fault.Values().at(0), row.path);
        }
        // In an array the element stands in front.
        if (row.id == EMessage::kJsonTwice)
            continue;
        try {
            ReadJson("[" + text + "]", collection);
            ADD_FAILURE() << row.fields;
        } catch (const ChessException& fault) {
            EXPECT_EQ(fault.Values().at(0), "[0]." + std::string(row.path));
        }
    }
}

struct TTextCase {
    const char* text;
    EMessage id;
    std::vector<std::string> values;
};

const TTextCase kTexts[] = {
    {"", EMessage::kConvertNoProblems, {}},
    {"[]", EMessage::kConvertNoProblems, {}},
    {"7", EMessage::kJsonExpectsObject, {"JSON"}},
    {"{\"schema\":1,\"number\":1,\"stipulation\":\"h#2\",\"board\":\"8/8/8/8/8/8/8/8\"}",
     EMessage::kJsonBadValue,
     {"stipulation", "h#2"}},
    {"{\"schema\":1,\"number\":1,\"stipulation\":\"\",\"board\":\"8/8/8/8/8/8/8/X7\"}",
     EMessage::kJsonBadValue,
     {"board", "8/8/8/8/8/8/8/X7"}},
    {"{\"schema\":9}", EMessage::kJsonSchema, {"schema", "9", "1"}},
    {"{}", EMessage::kJsonMissing, {"schema"}},
    {"{\"schema\":1,}", EMessage::kJsonSyntax, {"13"}},
    {"{\"schema\":1", EMessage::kJsonSyntax, {"12"}},
};

TEST(ReadJson, EachBadText_IsRefused) {
    for (const TTextCase& row : kTexts) {
        TProblemCollection collection;
        try {
            ReadJson(row.text, collection);
            ADD_FAILURE() << row.text;
        } catch (const ChessException& fault) {
            EXPECT_EQ(MessageName(fault.Id()), MessageName(row.id)) << row.text;
            EXPECT_EQ(fault.Values(), row.values) << row.text;
        }
    }
}

TEST(ReadJson, NumberThatIsTooLarge_IsToldWithItsPlace) {
    TProblemCollection collection;
    try {
        ReadJson("[\n {\"threads\": 1e400}]", collection);
        ADD_FAILURE();
    } catch (const CProblemFileFault& fault) {
        EXPECT_EQ(MessageName(fault.Id()), MessageName(EMessage::kJsonNumberTooLarge));
        EXPECT_EQ(fault.Line(), 2);
        EXPECT_EQ(fault.Values().at(0), "19");
    }
}

TEST(WriteJson, AnswersBehindTheEdge_ComeBack) {
    const std::string text = "1 #2\n{ W: Ke1 B: Ke8 A: Ke1-a9, Ke1-h9, Ke1-a0, Ke1-h0, Ke1-h8 }";
    TProblemCollection collection;
    ReadProblems(text, collection, {});
    TConversionRemarks remarks;
    const std::string json = WriteJson(collection, false, remarks);
    EXPECT_TRUE(remarks.empty());
    TProblemCollection back;
    ReadJson(json, back);
    EXPECT_EQ(WriteProblems(back), WriteProblems(collection));
}

TEST(WriteJson, MoveTextThatIsNoUtf8_GivesWayToTheMove) {
    TProblemCollection collection;
    ReadProblems("UTF-8 1 #2\n//!VARIANTS\n//!{v} 1. Ke1\xff"
                 "e2\n{ W: Ke1 B: Ke8 }",
                 collection,
                 {});
    TConversionRemarks remarks;
    const std::string json = WriteJson(collection, false, remarks);
    EXPECT_TRUE(remarks.empty());
    EXPECT_NE(json.find("e1-e2"), std::string::npos) << json;
}

TEST(ReadJson, NumberThatStandsTwice_IsAFault) {
    TProblemCollection collection;
    try {
        ReadJson("[" + std::string(kLeast) + "," + kLeast + "]", collection);
        ADD_FAILURE();
    } catch (const ChessException& fault) {
        EXPECT_EQ(fault.Id(), EMessage::kJsonNumberTwice);
        EXPECT_EQ(fault.Values().at(0), "[1].number");
    }
}

}  // namespace
}  // namespace quillmere
