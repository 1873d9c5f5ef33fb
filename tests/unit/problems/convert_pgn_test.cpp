#include "problems/convert_pgn.h"
#include "problems/problem_fields.h"
#include "problems/problem_writer.h"
#include "tests/support/collections.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr ELanguage kEnglish = ELanguage::kEnglish;

std::string TextOf(const TConversionRemark& remark) {
    return FormatMessage(remark.id, kEnglish, remark.values);
}

std::string Write(std::string_view cp, TConversionRemarks& remarks) {
    TProblemCollection collection;
    test::ReadCp(cp, collection);
    return WritePgn(collection, kEnglish, remarks);
}

// The .cp text of what was read, without the line of the encoding.
std::string Read(std::string_view pgn, TConversionRemarks& remarks) {
    TProblemCollection collection;
    ReadPgn(pgn, collection, kEnglish, remarks);
    return WriteProblems(collection).substr(7);
}

TEST(WritePgn, WholeProblem_IsWrittenAsOneGame) {
    TConversionRemarks remarks;
    const std::string text =
        Write("7 #5 NoMirror\n//#TAGS\n//#sea snake\n//!VARIANTS\n"
              "//!{Main variant} 1. Qa3-f8 [the \"key\"] Kf1-e1 2. Qf8-d6\n"
              "//!{other} 1. Qa3-f8 Kf1-e1 2. Qf8-f3\n//!{} 1. ... e2-e1Q\n//!ENDVARIANTS\n"
              "{\nD: Loyd \\ \"1857\"\nFEN: 8/8/8/8/8/Q7/4p3/5k1K\nAnswer: Qa3-f8, Qa3-a6\n}",
              remarks);
    EXPECT_EQ(text,
              "[Event \"#5\"]\n[Site \"?\"]\n[Date \"????.??.??\"]\n[Round \"7\"]\n"
              "[White \"Loyd \\\\ \\\"1857\\\"\"]\n[Black \"?\"]\n[Result \"*\"]\n[SetUp \"1\"]\n"
              "[FEN \"8/8/8/8/8/Q7/4p3/5k1K w - - 0 1\"]\n[Stipulation \"#5\"]\n"
              "[Key \"Qf8+ Qa6\"]\n[Flags \"NoMirror\"]\n[Tag1 \"sea snake\"]\n\n"
              "{Main variant} 1. Qf8+ {the \"key\"} (1. -- e1=Q) (1. Qa6) 1... Ke1 2. Qd6\n"
              "({other} 2. Qf3) *\n");
    EXPECT_TRUE(remarks.empty());
}

struct TLossCase {
    const char* cp;
    const char* loss;  // "" for none
};

const TLossCase kLosses[] = {
    // Variants without an answer, an answer without variants, several lines of one name.
    {"1 #2\n//!VARIANTS\n//!{b} 1. Rh1-h2 Kg8-f8\n//!{a} 1. Ka1-a2\n//!{a} 1. Ka1-b2 Kg8-f8\n"
     "//!{a} 1. Ka1-b2 Kg8-f7\n//!ENDVARIANTS\n{\nFEN: 6k1/8/8/8/8/8/8/K6R\n}",
     ""},
    {"1 #2 {\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Rh1-h2, Ka1-a2\n}", ""},
    // A variant of one move that is the answer as well.
    {"1 #2\n//!VARIANTS\n//!{} 1. Rh1-h2\n//!ENDVARIANTS\n"
     "{\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Rh1-h2\n}",
     ""},
    // Lines of one name that leave the main line in another order than they stand.
    {"1 #3\n//!VARIANTS\n//!{Main variant} 1. Rh1-h2 Kg8-f8 2. Rh2-h3\n"
     "//!{} 1. Rh1-h2 Kg8-f8 2. Rh2-h4\n//!{} 1. Ka1-a2\n//!ENDVARIANTS\n"
     "{\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Rh1-h2\n}",
     ""},
    // Comments in the part that is shared with the main line.
    {"1 #3\n//!VARIANTS\n//!{Main variant} 1. Rh1-h2 [one] Kg8-f8 2. Rh2-h3\n"
     "//!{x} 1. Rh1-h2 [two] Kg8-f8 2. Rh2-h4\n//!ENDVARIANTS\n"
     "{\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Rh1-h2\n}",
     ""},
    // A brace, a per cent sign and two blanks within a comment.
    {"1 #3\n//!VARIANTS\n//!{Main variant} 1. Rh1-h2 [a } b] Kg8-f8 2. Rh2-h3 [a  b % c]\n"
     "//!ENDVARIANTS\n{\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Rh1-h2\n}",
     ""},
    // Played moves, with variants from the root and castling of black as the answer.
    {"4\n//!VARIANTS\n//!{x} 1. a2-a3\n//!{y} 1. a2-a4 Ke8-e7\n//!ENDVARIANTS\n"
     "{\nFEN: 4k2r/8/8/8/8/8/P7/4K3\nMoves: a2-a4\nAnswer: 0-0\n}",
     ""},
    {"4\n//!VARIANTS\n//!{x} 1. a2-a3\n//!ENDVARIANTS\n{\nFEN: 4k2r/8/8/8/8/8/P7/4K3\n}", ""},
    // What no game can hold.
    {"1 #2 THREADS 3\n//!VARIANTS\n//!{x} 1. Rh1-g1 Kg8-f8 2. Rg1-h2\n//!ENDVARIANTS\n"
     "{\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Rh1-b2\n}",
     "not kept in PGN: THREADS, //!VARIANTS {x}, Answer."},
    {"1 #2\n//!VARIANTS\n//!{x} 1. ... Kg8-f8\n//!ENDVARIANTS\n"
     "{\nFEN: 6k1/8/8/8/8/8/8/K6R\n}",
     "not kept in PGN: //!VARIANTS {x}."},
    {"1 #2 {\nD: ?\nFEN: 6k1/8/8/8/8/8/8/K6R\n}", "not kept in PGN: Description."},
    {"1 #2 {\nWhite: Ka1\nBlack: Qh8\n}",
     "left out, since PGN cannot hold its position: Illegal number of kings."},
};

TEST(WritePgn, EachProblem_ComesBackOrItsLossIsNamed) {
    for (const TLossCase& row : kLosses) {
        TConversionRemarks remarks;
        const std::string text = Write(row.cp, remarks);
        ASSERT_EQ(remarks.size(), *row.loss == '\0' ? 0U : 1U)
            << row.cp << text << (remarks.empty() ? "" : TextOf(remarks[0]));
        if (!remarks.empty()) {
            EXPECT_EQ(TextOf(remarks[0]), row.loss) << text;
        }
    }
}

TEST(WritePgn, LongLines_AreBrokenBelow80Columns) {
    std::string comment;
    for (int i = 0; i < 80; ++i)
        comment += " word" + std::to_string(i) + (i % 3 == 0 ? " %" : "");
    TConversionRemarks remarks;
    const std::string text = Write(
        "1 #3\n//!VARIANTS\n//!{Main variant} 1. Rh1-h2 [" + comment + "] Kg8-f8 2. Rh2-h3 [" +
            comment + "]\n//!ENDVARIANTS\n{\nFEN: 6k1/8/8/8/8/8/8/K6R\nAnswer: Rh1-h2\n}",
        remarks);
    EXPECT_TRUE(remarks.empty()) << TextOf(remarks[0]);
    std::size_t longest = 0;
    for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
        end = text.find('\n', start);
        const std::string line = text.substr(start, end - start);
        longest = std::max(longest, line.size());
        EXPECT_FALSE(line.starts_with("%")) << line;
    }
    EXPECT_LT(longest, 80U);
    EXPECT_GT(longest, 70U);
}

struct TReadCase {
    const char* pgn;
    const char* cp;
    const char* remarks;  // each with a line end
};

const TReadCase kRead[] = {
    // As other programs write problems.
    {"[Event \"Mate in 5\"]\n[White \"Loyd\"]\n[Date \"1857.??.??\"]\n[Result \"1-0\"]\n"
     "[SetUp \"1\"]\n[FEN \"8/8/8/8/8/Q7/4p3/5k1K w - - 0 1\"]\n\n"
     "1. Qf8+ Ke1 2. Qd6 Kf1 (2... Kf2 3. Qf4+) 1-0\n",
     "1 #5\n//!VARIANTS\n//!{} 1. Qa3-f8 Kf1-e1 2. Qf8-d6 Ke1-f2 3. Qd6-f4\n"
     "//!{Main variant} 1. Qa3-f8 Kf1-e1 2. Qf8-d6 Ke1-f1\n//!ENDVARIANTS\n"
     "{\n\tDescription: Loyd, 1857\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n\tAnswer: Qa3-f8\n}\n",
     ""},
    // Every other form of a token; Windows line ends; a variation in a variation.
    {"% for another program\r\n[Event \"?\"]\r\n[Stipulation \"#5\"]\r\n"
     "[FEN \"8/8/8/8/8/Q7/4p3/5k1K w - - 0 1\"]\r\n\r\n"
     "{a note} 1.Qf8+!! $3 {the\r\nkey} (1.Qa6? ; a try\r\n1...Kf2 (1...Kf1-e1)) 1... Ke1\r\n*\r\n",
     "1 #5\n//!VARIANTS\n//!{} 1. Qa3-a6[a try] Kf1-f2\n//!{} 1. Qa3-a6 Kf1-e1\n"
     "//!{Main variant} 1. Qa3-f8[a note the key] Kf1-e1\n//!ENDVARIANTS\n"
     "{\n\tFEN: 8/8/8/8/8/Q7/4p3/5k1K\n\tAnswer: Qa3-f8\n}\n",
     "not kept from the input: NAG.\n"},
    // A game of chess is a position with played moves.
    {"[White \"A\"]\n[Black \"B\"]\n[Result \"1/2-1/2\"]\n[ECO \"C20\"]\n\n1.e4 e5 1/2-1/2\n",
     "1 \n{\n\tDescription: A, B\n\tFEN: rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR\n"
     "   Moves:     e2-e4 e7-e5\n}\n",
     "not kept from the input: [Result], [ECO].\n"},
    // Black mates: colours change, castling too.
    {"[Event \"#2\"]\n[FEN \"4k2r/8/8/8/8/8/8/4K3 b k - 0 1\"]\n\n1...O-O 2.Ke2 *\n",
     "1 #2\n//!VARIANTS\n//!{Main variant} 1. 0-0 Ke8-e7\n//!ENDVARIANTS\n"
     "{\n\tFEN: 4k3/8/8/8/8/8/8/4K2R\n\tAnswer: 0-0\n}\n",
     "black is to move: the colours were swapped, since white mates in collections.\n"},
    // What black could do if white passed.
    {"[Event \"#2\"]\n[FEN \"6k1/8/8/8/8/8/8/K6R w - - 0 1\"]\n\n1.Rh2 (1.-- Kf8 2.Rh3) *\n",
     "1 #2\n//!VARIANTS\n//!{} 1. ... Kg8-f8 2. Rh1-h3\n//!ENDVARIANTS\n"
     "{\n\tFEN: 6k1/8/8/8/8/8/8/K6R\n\tAnswer: Rh1-h2\n}\n",
     ""},
    // Bytes that are no UTF-8 are Latin-1.
    {"[White \"Sch\xfctz\"]\n[Event \"s#2\"]\n[FEN \"6k1/8/8/8/8/8/8/K6R w - - 0 1\"]\n\n*\n",
     "1 s#2\n{\n\tDescription: Sch\u00fctz\n\tFEN: 6k1/8/8/8/8/8/8/K6R\n}\n",
     ""},
};

TEST(ReadPgn, EachGame_IsOneProblem) {
    for (const TReadCase& row : kRead) {
        TConversionRemarks remarks;
        EXPECT_EQ(Read(row.pgn, remarks), row.cp) << row.pgn;
        std::string text;
        for (const TConversionRemark& remark : remarks)
            text += TextOf(remark) + "\n";
        EXPECT_EQ(text, row.remarks) << row.pgn;
    }
}

TEST(ReadPgn, RightsThatAPositionDoesNotGive_AreNoted) {
    TConversionRemarks remarks;
    Read("[FEN \"4k3/8/8/8/8/8/8/4K2R w - - 0 1\"]\n\n*\n", remarks);
    ASSERT_EQ(remarks.size(), 1U);
    EXPECT_EQ(remarks[0].id, EMessage::kCastlingNote);
    EXPECT_FALSE(remarks[0].isLoss);
}

TEST(ReadPgn, LongGame_KeepsTheMovesThatAPositionCanHold) {
    std::string moves;
    for (int i = 0; i < 75; ++i)
        moves += "Nf3 Nf6 Ng1 Ng8 ";
    TConversionRemarks remarks;
    TProblemCollection collection;
    ReadPgn(moves + "*", collection, kEnglish, remarks);
    EXPECT_EQ(collection.Find(1)->playedNodes.size(), 255U);
    // The rest stands in the main variant, so that the line is whole.
    EXPECT_EQ(FindMainVariant(collection.Find(1)->variants)->moves.size(), 300U);
    ASSERT_EQ(remarks.size(), 1U);
    EXPECT_EQ(TextOf(remarks[0]), "only the first 255 half-moves of the game are kept.");
}

struct TStipulationCase {
    const char* text;
    const char* found;
    bool isWhole;
};

constexpr TStipulationCase kStipulations[] = {
    {"#3", "#3", true},
    {"s#2", "s#2", true},
    {"Mate in 3", "#3", true},
    {"mate in 3 moves", "#3", false},
    {"White to play: Mate in #3", "#3", false},
    {"DirectMate 3", "#3", true},
    {"Selfmate in 4", "s#4", true},
    {"h#3", "", false},
    {"Helpmate in 3", "", false},
    {"r#2", "", false},
    {"#", "", false},
    {"#0", "", false},
    {"#99999", "", false},
    {"Stalemate 3", "", false},
    {"?", "", false},
    {"", "", false},
};

TEST(FindStipulation, EachText_IsUnderstoodOrNot) {
    for (const TStipulationCase& row : kStipulations) {
        bool isWhole = false;
        EXPECT_EQ(FindStipulation(row.text, &isWhole), row.found) << row.text;
        if (*row.found != '\0') {
            EXPECT_EQ(isWhole, row.isWhole) << row.text;
        }
    }
}

struct TFaultCase {
    const char* pgn;
    int line;
    EMessage id;
};

constexpr TFaultCase kFaults[] = {
    {"", 0, EMessage::kConvertNoProblems},
    {"[ \"?\"]\n*", 1, EMessage::kPgnTagName},
    {"\n[Event ?]\n*", 2, EMessage::kPgnTagValue},
    {"[Event \"open]\n*", 1, EMessage::kPgnTagOpen},
    {"[Event \"a\" b]\n*", 1, EMessage::kPgnTagClose},
    {"[Event \"a\"]\n[Event \"b\"]\n*", 2, EMessage::kPgnTagTwice},
    {"[SetUp \"1\"]\n*", 1, EMessage::kPgnNoFen},
    {"[Event \"a\"]\n[FEN \"8/8/8/8/8/8/8/8 w - -\"]\n*", 2, EMessage::kFenWhiteKings},
    {"[FEN \"R3k3/8/8/8/8/8/8/4K3 w - -\"]\n*", 1, EMessage::kFenBlackInCheck},
    {"1.e4 e5", 1, EMessage::kPgnNoResult},
    {"1.e4\n[Event \"next\"]\n*", 2, EMessage::kPgnNoResult},
    {"1.e4 {open\n*", 1, EMessage::kPgnOpenComment},
    {"1.e4 } *", 1, EMessage::kPgnBadToken},
    {"1.e4\n(1.d4 *", 2, EMessage::kPgnOpenVariation},
    {"1.e4 (1.d4", 1, EMessage::kPgnOpenVariation},
    {"1.e4\n) *", 2, EMessage::kPgnNoOpenVariation},
    {"(1.e4) *", 1, EMessage::kPgnVariationWithoutMove},
    {"1.e4 (1.d4 ((1.c4))) *", 1, EMessage::kPgnVariationWithoutMove},
    {"1.e4 ({a}) *", 1, EMessage::kPgnEmptyVariation},
    {"1.e4 $ *", 1, EMessage::kPgnBadNag},
    {"1.e4 $256 *", 1, EMessage::kPgnBadNag},
    {"1.e4 -- *", 1, EMessage::kPgnNullMove},
    {"1.e4\n\n<1> *", 3, EMessage::kPgnBadToken},
    {"1.e4\n1...Ke7 *", 2, EMessage::kMoveNotLegal},
    {"1.hello *", 1, EMessage::kMoveNotUnderstood},
    {"[FEN \"4k3/8/8/8/8/8/4K3/R6R w - -\"]\n1.Rd1 *", 2, EMessage::kMoveAmbiguous},
    {"[Key \"e4\"]\n[Stipulation \"mate\"]\n1.e4 *", 2, EMessage::kPgnTagBadValue},
    {"[Key \"e9\"]\n[Stipulation \"#2\"]\n1.e4 *", 1, EMessage::kMoveNotUnderstood},
    {"[Key \"-\"]\n[Stipulation \"#2\"]\n[Flags \"x\"]\n*", 3, EMessage::kPgnTagBadValue},
    {"[Key \"-\"]\n[Stipulation \"-\"]\n[PlayedMoves \"2\"]\n1.e4 *", 3, EMessage::kPgnTagBadValue},
};

EMessage FaultOf(const std::string& pgn, int* line) {
    TProblemCollection collection;
    TConversionRemarks remarks;
    try {
        ReadPgn(pgn, collection, kEnglish, remarks);
    } catch (const CProblemFileFault& fault) {
        *line = fault.Line();
        return fault.Id();
    } catch (const ChessException& fault) {
        return fault.Id();
    }
    return EMessage::kCount;
}

TEST(ReadPgn, EachFault_IsNamedWithItsLine) {
    for (const TFaultCase& row : kFaults) {
        int line = 0;
        const EMessage id = FaultOf(row.pgn, &line);
        ASSERT_NE(id, EMessage::kCount) << row.pgn;
        EXPECT_EQ(MessageName(id), MessageName(row.id)) << row.pgn;
        EXPECT_EQ(line, row.line) << row.pgn;
    }
}

TEST(ReadPgn, DeepNestingAndLongLines_AreRefused) {
    std::string deep = "1.e4 ";
    for (int i = 0; i < 40; ++i)
        deep += "(1.d4 ";
    int line = 0;
    EXPECT_EQ(FaultOf(deep, &line), EMessage::kPgnTooDeep);
    std::string endless;
    for (int i = 0; i < 501; ++i)
        endless += "Nf3 Nf6 Ng1 Ng8 ";
    EXPECT_EQ(FaultOf(endless + "*", &line), EMessage::kLineTooLong);
}

TEST(ReadPgn, NullMoveInCheck_IsRefused) {
    int line = 0;
    EXPECT_EQ(FaultOf("[FEN \"4k3/8/8/8/8/8/8/r3K3 w - -\"]\n1.-- Ke7 *", &line),
              EMessage::kPgnNullMove);
}

}  // namespace
}  // namespace quillmere
