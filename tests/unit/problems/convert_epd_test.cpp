#include "problems/convert_epd.h"
#include "problems/problem_fields.h"
#include "problems/problem_writer.h"
#include "tests/support/collections.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

struct TWritten {
    std::string text;
    TConversionRemarks remarks;
};

TWritten Write(std::string_view cp) {
    TProblemCollection collection;
    test::ReadCp(cp, collection);
    TWritten written;
    written.text = WriteEpd(collection, ELanguage::kEnglish, written.remarks);
    return written;
}

std::string TextOf(const TConversionRemark& remark) {
    return FormatMessage(remark.id, ELanguage::kEnglish, remark.values);
}

struct TWriteCase {
    const char* cp;
    const char* epd;
    const char* loss;  // of the only remark; "" for none
};

const TWriteCase kWritten[] = {
    {"7 #5 NoMirror AllSolutions\n//#TAGS\n//#sea snake\n//#my tag\n{\n"
     "Description: Loyd; 1857\nFEN: 8/8/8/8/8/Q7/4p3/5k1K\nAnswer: Qa3-f8\n}",
     "8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; bm Qf8+; id \"7\"; flags NoMirror AllSolutions;"
     " c0 \"Loyd; 1857\"; tags \"my tag\" \"sea snake\";\n",
     ""},
    {"3 s#2 {\nFEN: 6k1/8/8/8/8/8/8/K6R\n}",
     "6k1/8/8/8/8/8/8/K6R w - - stip \"s#2\"; id \"3\";\n",
     ""},
    // Castling is possible where king and rook stand at home.
    {"1 #2 {\nFEN: 4k3/8/8/8/8/8/8/R3K2R\nAnswer: 0-0, 0-0-0\n}",
     "4k3/8/8/8/8/8/8/R3K2R w KQ - dm 2; bm O-O O-O-O; id \"1\";\n",
     ""},
    {"4 {\nFEN: 4k2r/8/8/8/8/8/P7/4K3\nMoves: a2-a4\nAnswer: 0-0\n}",
     "4k2r/8/8/8/8/8/P7/4K3 w k - moves a4; answer O-O; id \"4\";\n",
     ""},
    // EPD has no escape for a quotation mark.
    {"1 #2 {\nD: the \"key\"\nFEN: 6k1/8/8/8/8/8/8/K6R\n}",
     "6k1/8/8/8/8/8/8/K6R w - - dm 2; id \"1\"; c0 \"the 'key'\";\n",
     "not kept in EPD: Description."},
    {"1 #2 THREADS 4^2 SH_KEYLINE(A) SCHEDULERLEVELS 3 Requires Qq GUICHECK 4\n"
     "//!VARIANTS\n//!{x} 1. Rh1-h2\n//!ENDVARIANTS\n//@SortIndications: Rh2\n"
     "{\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Ka1-h8\n}",
     "6k1/8/8/8/8/8/8/K6R w - - dm 2; id \"1\"; flags GUICHECK;\n",
     "not kept in EPD: GUICHECK n, THREADS, SCHEDULERLEVELS, Requires, SH_KEYLINE, "
     "//!VARIANTS {x}, //@SortIndications, Answer."},
    {"1 #2 {\nWhite: Ka1\nBlack: Qh8\n}",
     "",
     "left out, since EPD cannot hold its position: Illegal number of kings."},
    {"1 #2 {\nFEN: 7k/8/8/8/8/8/8/K6R\nSWM: Rh1-h2\n}",
     "",
     "left out, since EPD cannot hold its position: FEN: white is to move, but the black king on "
     "h8 "
     "is in check."},
};

TEST(WriteEpd, EachProblem_IsOneLineAndItsLossesAreNamed) {
    for (const TWriteCase& row : kWritten) {
        const TWritten written = Write(row.cp);
        EXPECT_EQ(written.text, row.epd) << row.cp;
        ASSERT_EQ(written.remarks.size(), *row.loss == '\0' ? 0U : 1U) << row.cp;
        if (!written.remarks.empty()) {
            EXPECT_EQ(TextOf(written.remarks[0]), row.loss);
            EXPECT_TRUE(written.remarks[0].isLoss);
        }
    }
}

struct TReadCase {
    const char* epd;
    const char* cp;
    const char* remarks;  // each with a line end
};

const TReadCase kRead[] = {
    {"8/8/8/8/8/Q7/4p3/5k1K w - - bm #5 Qf8+; id \"Loyd-1\"; c0 \"Loyd\"; c1 \"1857\";",
     "1 #5\n{\n\tDescription: Loyd-1: Loyd, 1857\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n"
     "\tAnswer: Qa3-f8\n}\n",
     ""},
    {"8/8/8/8/8/Q7/4p3/5k1K w - - 0 1 id \"12\"; dm 5; acd 3; pv Qf8;",
     "12 #5\n{\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n}\n",
     "not kept from the input: acd, pv.\n"},
    // No length is no stipulation.
    {"8/8/8/8/8/Q7/4p3/5k1K w - - bm Qf8+;",
     "1 \n{\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n\tAnswer: Qa3-f8\n}\n",
     ""},
    {"5K1k/4P3/q7/8/8/8/8/8 b - - dm 5; bm Qf1+;",
     "1 #5\n{\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n\tAnswer: Qa3-f8\n}\n",
     "black is to move: the colours were swapped, since white mates in collections.\n"},
    {"4k3/8/8/8/8/8/8/R3K2R w - - dm 2;", "1 #2\n{\n\tFEN: 4k3/8/8/8/8/8/8/R3K2R\n}\n", "Castling"},
};

TEST(ReadEpd, EachLine_IsOneProblem) {
    for (const TReadCase& row : kRead) {
        TProblemCollection collection;
        TConversionRemarks remarks;
        ReadEpd(row.epd, collection, remarks);
        EXPECT_EQ(WriteProblems(collection), "UTF-8\n\n" + std::string(row.cp)) << row.epd;
        std::string text;
        for (const TConversionRemark& remark : remarks)
            text += TextOf(remark) + "\n";
        if (std::string_view(row.remarks).ends_with("\n") || *row.remarks == '\0') {
            EXPECT_EQ(text, row.remarks) << row.epd;
        } else {
            EXPECT_EQ(remarks.at(0).id, EMessage::kCastlingNote) << row.epd;
        }
    }
}

TEST(ReadEpd, NumberThatIsTaken_IsReplacedWithANote) {
    TProblemCollection collection;
    TConversionRemarks remarks;
    const std::string line = "8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; id \"4\";\n";
    ReadEpd(line + line, collection, remarks);
    EXPECT_NE(collection.Find(5), nullptr);
    ASSERT_EQ(remarks.size(), 1U);
    EXPECT_EQ(TextOf(remarks[0]), "number 4 is taken already; the problem gets number 5.");
    EXPECT_EQ(remarks[0].line, 2);
    EXPECT_FALSE(remarks[0].isLoss);
}

struct TFaultCase {
    const char* operations;
    EMessage id;
};

constexpr TFaultCase kFaults[] = {
    {"dm 0;", EMessage::kConvertBadStipulation},
    {"dm five;", EMessage::kConvertBadStipulation},
    {"dm 5; bm #4;", EMessage::kConvertBadStipulation},
    {"dm 5; dm 5;", EMessage::kEpdTwice},
    {"stip \"h#2\";", EMessage::kConvertBadStipulation},
    {"stip \"\";", EMessage::kConvertBadStipulation},
    {"dm 5; bm Qa9;", EMessage::kMoveNotUnderstood},
    {"dm 5; bm Qh5;", EMessage::kMoveNotLegal},
    {"moves Qa4 Kf4;", EMessage::kMoveNotLegal},
    {"dm 5; moves Qa4;", EMessage::kConvertBadStipulation},
    {"flags NoMirrors;", EMessage::kConvertUnknownFlag},
    {"tags sea;", EMessage::kConvertOpenQuote},
    {"tags \"sea\" snake;", EMessage::kConvertOpenQuote},
    {"c0 \"open;", EMessage::kEpdOpenQuote},
};

TEST(ReadEpd, EachFault_IsNamedWithItsLine) {
    for (const TFaultCase& row : kFaults) {
        TProblemCollection collection;
        TConversionRemarks remarks;
        try {
            ReadEpd("# a comment\n8/8/8/8/8/Q7/4p3/5k1K w - - " + std::string(row.operations),
                    collection,
                    remarks);
            ADD_FAILURE() << row.operations;
        } catch (const CProblemFileFault& fault) {
            EXPECT_EQ(fault.Line(), 2);
            EXPECT_EQ(MessageName(fault.Id()), MessageName(row.id)) << row.operations;
        }
    }
}

TEST(ReadEpd, TextWithoutPositions_IsAFault) {
    TProblemCollection collection;
    TConversionRemarks remarks;
    EXPECT_THROW(ReadEpd("# nothing\n\n", collection, remarks), ChessException);
}

}  // namespace
}  // namespace quillmere
