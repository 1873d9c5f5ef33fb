#include "core/chess_exception.h"
#include "problems/problem_lexer.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using namespace std::string_literals;
using TTokens = std::vector<std::string>;

TTokens AllTokens(std::string_view text, bool keepSpecialComments) {
    CProblemLexer lexer(text);
    TTokens tokens;
    for (;;) {
        const std::string_view token = lexer.NextToken(false, keepSpecialComments);
        if (token.empty())
            return tokens;
        tokens.emplace_back(token);
    }
}

template <typename TCall>
EMessage FaultOf(TCall call) {
    try {
        call();
    } catch (const ChessException& fault) {
        return fault.Id();
    }
    return EMessage::kCount;
}

TEST(ProblemLexer, Tokens_AreWordsAndSingleCharacters) {
    struct TRow {
        std::string text;
        TTokens tokens;
    };
    const TRow rows[] = {
        {"", {}},
        {" \t\r\n\xa0", {}},
        {"7 #3", {"7", "#", "3"}},
        {"4^2 A_b x1", {"4^2", "A_b", "x1"}},
        {"_a ^b", {"_", "a", "^", "b"}},
        {"Kd2-d3,0-0}", {"Kd2", "-", "d3", ",", "0", "-", "0", "}"}},
        {"a\xa0"
         "b",
         {"a", "b"}},
        {"a/*x*/b//c\nd", {"a", "b", "d"}},
        {"a/**/b/***/c", {"a", "b", "c"}},
        {"//!x\n//#y\n//@SortIndications\nb", {"b"}},
        {"a\0b"s, {"a", "\0"s, "b"}},
        // One character, though it is two bytes of which one is white space in other encodings.
        {"\u00e0 \u0142", {"\u00e0", "\u0142"}},
        {"\xb3\xf3", {"\xb3", "\xf3"}},
    };
    for (const TRow& row : rows)
        EXPECT_EQ(AllTokens(row.text, false), row.tokens) << row.text;
}

TEST(ProblemLexer, SpecialLines_AreTokensOnlyWhereAskedFor) {
    EXPECT_EQ(AllTokens("//!a b \n//#c{\n//@sortINDICATIONS: x\n//@Other\n// d\ne", true),
              (TTokens{"//!a b ", "//#c{", "//@sortINDICATIONS: x", "e"}));
    EXPECT_EQ(AllTokens("//#last", true), TTokens{"//#last"});
    EXPECT_EQ(AllTokens("//", true), TTokens{});
}

TEST(ProblemLexer, NextToken_AtTheEnd_IsEmptyOrAFault) {
    for (const char* text : {"", " \n", "// c\n", "/* c */"}) {
        CProblemLexer lexer(text);
        EXPECT_EQ(lexer.NextToken(false, false), "") << text;
        EXPECT_EQ(FaultOf([&] { lexer.NextToken(true, false); }), EMessage::kUnexpectedEndOfFile);
    }
}

TEST(ProblemLexer, CommentWithoutEnd_IsEmptyOrAFault) {
    for (const char* text : {"// c", "/* c", "/*/", "/* c\n *"}) {
        CProblemLexer free(text);
        EXPECT_EQ(free.NextToken(false, false), "") << text;
        CProblemLexer bound(text);
        EXPECT_EQ(FaultOf([&] { bound.NextToken(true, false); }), EMessage::kCommentNotClosed);
    }
}

TEST(ProblemLexer, LoneSlash_IsAFault) {
    for (const char* text : {"/", "/x", "/ /"}) {
        CProblemLexer lexer(text);
        EXPECT_EQ(FaultOf([&] { lexer.NextToken(false, false); }), EMessage::kUnexpectedSlash);
    }
}

TEST(ProblemLexer, NextTokenNoCR_CutsALineAtTheFirstReturn) {
    CProblemLexer lexer("//#TAGS\rrest\n//#a\rb\n");
    EXPECT_EQ(lexer.NextTokenNoCR(true, true), "//#TAGS");
    EXPECT_EQ(lexer.NextToken(true, true), "//#a\rb");
}

TEST(ProblemLexer, NextIdentifier_TakesWordsOnly) {
    CProblemLexer lexer("abc //#x\n 1a {");
    EXPECT_EQ(lexer.NextIdentifier(), "abc");
    EXPECT_EQ(lexer.NextIdentifier(), "1a");
    try {
        lexer.NextIdentifier();
        FAIL();
    } catch (const ChessException& fault) {
        EXPECT_STREQ(fault.what(), "Alphanumeric identifier expected. Found: {");
    }
}

TEST(ProblemLexer, NextFenWord_EndsAtBlankTabOrLineFeed) {
    CProblemLexer lexer(" \t8/k7 w\tx\ny//z");
    EXPECT_EQ(lexer.NextFenWord(), "8/k7");
    EXPECT_EQ(lexer.NextFenWord(), "w");
    EXPECT_EQ(lexer.NextFenWord(), "x");
    EXPECT_EQ(lexer.NextFenWord(), "") << "a line end is not passed over";
    EXPECT_EQ(lexer.NextToken(true, false), "y");
    EXPECT_EQ(lexer.NextFenWord(), "//z");
}

TEST(ProblemLexer, NextWordWithSlash_TakesLettersDigitsAndSlashes) {
    CProblemLexer lexer("\n KQ/k2 \n Qq//c\n Rr/*c*/ x");
    EXPECT_EQ(lexer.NextWordWithSlash(), "KQ/k2");
    EXPECT_EQ(lexer.NextWordWithSlash(), "Qq");
    EXPECT_EQ(lexer.NextToken(true, false), "Rr");
    EXPECT_EQ(lexer.NextToken(true, false), "x");
    EXPECT_EQ(FaultOf([&] { lexer.NextWordWithSlash(); }), EMessage::kUnexpectedEndOfFile);
    CProblemLexer last("KQ ");
    EXPECT_EQ(FaultOf([&] { last.NextWordWithSlash(); }), EMessage::kUnexpectedEndOfFile);
}

TEST(ProblemLexer, NextOptionToken_MayHoldASlashThatBeginsNoComment) {
    CProblemLexer lexer("SH_SAVEQUEEN/ROOK a//c\nb/*c*/d e/");
    EXPECT_EQ(lexer.NextOptionToken(), "SH_SAVEQUEEN/ROOK");
    EXPECT_EQ(lexer.NextOptionToken(), "a");
    EXPECT_EQ(lexer.NextOptionToken(), "b");
    EXPECT_EQ(lexer.NextOptionToken(), "d");
    EXPECT_EQ(lexer.NextOptionToken(), "e/");
}

TEST(ProblemLexer, Line_IsThatOfTheLastToken) {
    CProblemLexer lexer("a\n\n/*\n*/ b c\nd\n\n");
    const int lines[] = {1, 4, 4, 5};
    for (const int line : lines) {
        const CProblemLexer::TMark mark = lexer.Mark();
        lexer.NextToken(true, false);
        EXPECT_EQ(lexer.Line(), line);
        lexer.GoBack(mark);
        lexer.NextToken(true, false);
        EXPECT_EQ(lexer.Line(), line);
    }
    EXPECT_EQ(lexer.NextToken(false, false), "");
    EXPECT_EQ(lexer.Line(), 5) << "the end of the text is the end of its last line";
}

TEST(ProblemLexer, Lines_AreRightInAnyOrderOfTheQuestions) {
    CProblemLexer lexer("a\n\n// x\nb\n// y\nc");
    const CProblemLexer::TMark start = lexer.Mark();
    std::vector<int> lines;
    for (int i = 0; i < 3; ++i) {
        lexer.NextToken(true, false);
        lines.push_back(lexer.Line());
    }
    EXPECT_EQ(lines, (std::vector<int>{1, 4, 6}));
    EXPECT_EQ(lexer.TakeComments(), (std::vector<int>{3, 5}));
    lexer.GoBack(start);
    lexer.NextToken(true, false);
    EXPECT_EQ(lexer.Line(), 1);
}

TEST(ProblemLexer, MaterialWord_IsOneWordOfTheHead) {
    for (const char* word : {"KQk", "KQ/k", "/", "4", "K/"})
        EXPECT_TRUE(IsMaterialWord(word)) << word;
    for (const char* text :
         {"", " ", "K Q", "Qq {", "K//Q", "K/*Q", "K-Q", "K\n", " K", "K^2", "\u0142"})
        EXPECT_FALSE(IsMaterialWord(text)) << text;
}

TEST(ProblemLexer, TakeComments_TellsEachCommentOnce) {
    CProblemLexer lexer("// a\n/* b\n */ x // c\n//!d\n y");
    const CProblemLexer::TMark start = lexer.Mark();
    EXPECT_EQ(lexer.NextToken(true, false), "x");
    lexer.GoBack(start);
    EXPECT_EQ(lexer.NextToken(true, false), "x");
    EXPECT_EQ(lexer.TakeComments(), (std::vector<int>{1, 2}));
    EXPECT_EQ(lexer.NextToken(true, true), "//!d");
    EXPECT_EQ(lexer.TakeComments(), std::vector<int>{3}) << "a line that was read is no comment";
}

}  // namespace
}  // namespace quillmere
