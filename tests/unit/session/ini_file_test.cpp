#include "session/ini_file.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

// Reading

struct TReadCase {
    const char* name;
    std::string bytes;
    std::string value;  // of the key "key" in the section "chess", "-" if there is none
};

const TReadCase kReadCases[] = {
    {"plain", "[chess]\nKey=12\n", "12"},
    {"no text at all", "", "-"},
    {"no line end at the end", "[chess]\nKey=12", "12"},
    {"spaces", " [ chess ] \n\t Key \t=  12 \t\n", "12"},
    {"case of letters", "[CHESS]\nkEY=12\n", "12"},
    {"CRLF", "[chess]\r\nKey=12\r\n", "12"},
    {"CR", "[chess]\rKey=12\r", "12"},
    {"byte order mark", "\xEF\xBB\xBF[chess]\nKey=12\n", "12"},
    {"the first key counts", "[chess]\nKey=1\nkey=2\n", "1"},
    {"over all parts of a section", "[chess]\nA=1\n[x]\nKey=3\n[Chess]\nKey=1\nKey=2\n", "1"},
    {"another section", "[other]\nKey=12\n", "-"},
    {"no section", "Key=12\n[chess]\n", "-"},
    {"remarks", "; [other]\n[chess]\n;Key=1\n  # Key=2\nKey=3\n", "3"},
    {"quotes", "[chess]\nKey=\" 12 \"\n", " 12 "},
    {"a quote", "[chess]\nKey=\"\n", "\""},
    {"no sign of equality", "[chess]\nKey\nKey 1\nKey=2\n", "2"},
    {"empty", "[chess]\nKey=\n", ""},
    {"head without its bracket", "[chess]\nA=1\n[chess\nKey=2\n", "-"},
    {"text behind the head", "[chess] Key=1\nKey=2\n", "2"},
    {"signs of equality", "[chess]\nKey==a=b\n", "=a=b"},
    {"text of several lines is none", "[chess]\nKey=<<<END\nx\nEND\n", "<<<END"},
};

TEST(ReadIniSection, Value_IsFoundAsInEveryIniFile) {
    for (const TReadCase& row : kReadCases) {
        const TIniSection section = ReadIniSection(row.bytes, "chess");
        const auto found = section.find("key");
        EXPECT_EQ(found == section.end() ? "-" : found->second, row.value) << row.name;
    }
}

// Changing

struct TChangeCase {
    const char* name;
    std::string before;
    std::string after;  // Key set to 5
};

const TChangeCase kChangeCases[] = {
    {"no text at all", "", "[chess]\nKey=5\n"},
    {"a byte order mark alone", "\xEF\xBB\xBF", "\xEF\xBB\xBF[chess]\nKey=5\n"},
    {"behind a byte order mark", "\xEF\xBB\xBF[chess]\nKey=1\n", "\xEF\xBB\xBF[chess]\nKey=5\n"},
    {"same value", "[chess]\nKey=5\n", "[chess]\nKey=5\n"},
    {"spaces stay", "  [ chess ]\t\n\t Key \t=  1 \t\n", "  [ chess ]\t\n\t Key \t=  5 \t\n"},
    {"case of letters stays", "[CHESS]\nkEY=1\n", "[CHESS]\nkEY=5\n"},
    {"CRLF stays", "[chess]\r\nKey=1\r\nB=2\r\n", "[chess]\r\nKey=5\r\nB=2\r\n"},
    {"new line with CRLF", "[chess]\r\nB=2\r\n", "[chess]\r\nB=2\r\nKey=5\r\n"},
    {"new line with CR", "[chess]\rB=2\r", "[chess]\rB=2\rKey=5\r"},
    {"new section with CRLF", "[x]\r\n", "[x]\r\n\r\n[chess]\r\nKey=5\r\n"},
    {"no line end at the end, old line", "[chess]\nKey=1", "[chess]\nKey=5"},
    {"no line end at the end, new line", "[chess]\nB=2", "[chess]\nB=2\nKey=5\n"},
    {"no line end at the end, new section", "[x]\nB=2", "[x]\nB=2\n\n[chess]\nKey=5\n"},
    {"head at the end", "[chess]", "[chess]\nKey=5\n"},
    {"empty value", "[chess]\nKey=\nB=1\n", "[chess]\nKey=5\nB=1\n"},
    {"empty value with spaces", "[chess]\nKey=  \nB=1\n", "[chess]\nKey=5  \nB=1\n"},
    {"remark behind the number", "[chess]\nKey=1 ; why\n", "[chess]\nKey=5 ; why\n"},
    {"remark after two spaces", "[chess]\nKey=12abc \t# a;b\n", "[chess]\nKey=5 \t# a;b\n"},
    {"remark instead of a number", "[chess]\nKey=;why\n", "[chess]\nKey=5 ;why\n"},
    {"words are no remark", "[chess]\nKey=1 2 3\n", "[chess]\nKey=5\n"},
    {"quotes", "[chess]\nKey=\"1\"\n", "[chess]\nKey=5\n"},
    {"only the first key counts", "[chess]\nKey=1\nKey=2\n", "[chess]\nKey=5\nKey=2\n"},
    {"in a later part",
     "[chess]\nB=1\n[x]\n[chess]\nKey=2\n",
     "[chess]\nB=1\n[x]\n[chess]\nKey=5\n"},
    {"new line in the first part",
     "[chess]\nB=1\n\n[x]\nKey=1\n[chess]\nC=2\n",
     "[chess]\nB=1\nKey=5\n\n[x]\nKey=1\n[chess]\nC=2\n"},
    {"before the remarks of the next section",
     "[chess]\nB=1\n\n; about x\n[x]\nC=1\n",
     "[chess]\nB=1\nKey=5\n\n; about x\n[x]\nC=1\n"},
    {"other sections with the same key",
     "[x]\nKey=1\n[chess]\nKey=1\n[y]\nKey=1\n",
     "[x]\nKey=1\n[chess]\nKey=5\n[y]\nKey=1\n"},
    {"head without its bracket",
     "[chess]\nA=1\n[chess\nKey=2\n",
     "[chess]\nA=1\nKey=5\n[chess\nKey=2\n"},
    {"lines that are no entries",
     "junk\n[chess]\nKey\n=1\n\x01\xff\nKey=1\n",
     "junk\n[chess]\nKey\n=1\n\x01\xff\nKey=5\n"},
};

TEST(ChangeIniValues, OneValue_ChangesAndNothingElse) {
    for (const TChangeCase& row : kChangeCases) {
        const auto after = ChangeIniValues(row.before, "chess", {{"Key", "5", true}});
        EXPECT_EQ(after.value_or("refused"), row.after) << row.name;
    }
}

TEST(ChangeIniValues, Text_ReplacesTheWholeValue) {
    EXPECT_EQ(ChangeIniValues("[chess]\nPath=/a ;b\n", "chess", {{"Path", "/c ;d", false}}),
              "[chess]\nPath=/c ;d\n");
    EXPECT_EQ(ChangeIniValues("[chess]\nPath=x\n", "chess", {{"Path", "\" x \"", false}}),
              "[chess]\nPath=\" x \"\n");
}

TEST(ChangeIniValues, NewKeys_StandInTheOrderGiven) {
    EXPECT_EQ(ChangeIniValues("[chess]\nB=1\n[x]\n", "chess", {{"C", "2"}, {"B", "3"}, {"A", "4"}}),
              "[chess]\nB=3\nC=2\nA=4\n[x]\n");
}

TEST(ChangeIniValues, TextWithZeroBytes_IsRefused) {
    EXPECT_FALSE(ChangeIniValues(std::string("[chess]\nKey=1\0\n", 15), "chess", {{"Key", "5"}}));
    const std::string utf16("\xff\xfe[\0c\0h\0e\0s\0s\0]\0", 16);
    EXPECT_FALSE(ChangeIniValues(utf16, "chess", {{"Key", "5"}}));
}

TEST(ChangeIniValues, LoneBracketThatTheChangeWouldDependOn_IsRefused) {
    EXPECT_FALSE(ChangeIniValues("[\nchess]\nKey=2\n", "chess", {{"Key", "5"}}));
    EXPECT_FALSE(ChangeIniValues("[x]\n[\n", "chess", {{"Key", "5"}}));
    EXPECT_EQ(ChangeIniValues("[chess]\nKey=1\n[\n", "chess", {{"Key", "5"}}),
              "[chess]\nKey=5\n[\n");
}

// Whatever stands in the file: the value is changed, and every other line is there as it was.

constexpr std::string_view kMark = "\xEF\xBB\xBF";

// Lines with their line ends.
std::vector<std::string> LinesOf(const std::string& bytes) {
    std::vector<std::string> lines;
    for (std::size_t begin = bytes.starts_with(kMark) ? kMark.size() : 0; begin < bytes.size();) {
        const std::size_t end = std::min(bytes.find_first_of("\r\n", begin), bytes.size());
        const std::size_t next = bytes.compare(end, 2, "\r\n") == 0 ? end + 2 : end + 1;
        lines.push_back(bytes.substr(begin, next - begin));
        begin = next;
    }
    return lines;
}

// Length of the longest sequence of lines that both have in the same order.
std::size_t CommonLines(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (const std::string& line : a) {
        std::size_t diagonal = 0;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = line == b[j - 1] ? diagonal + 1 : std::max(above, row[j - 1]);
            diagonal = above;
        }
    }
    return row.back();
}

rc::Gen<std::string> IniText() {
    const auto line =
        rc::gen::weightedOneOf<std::string>({{20,
                                              rc::gen::element<std::string>("[chess]",
                                                                            "  [ CHESS ] ; x",
                                                                            "[chess",
                                                                            "[other]",
                                                                            "[]",
                                                                            "]",
                                                                            "chess]",
                                                                            "Key=1",
                                                                            "key = 0 ; why",
                                                                            "KEY=\"7\"",
                                                                            "Key",
                                                                            "Key=",
                                                                            "Key=  ",
                                                                            "=5",
                                                                            "Other=1",
                                                                            "Other==[chess]",
                                                                            "junk",
                                                                            "; remark",
                                                                            "  # remark",
                                                                            ";",
                                                                            "",
                                                                            " \t",
                                                                            "x=<<<END",
                                                                            "\"=\"")},
                                             {1, rc::gen::string<std::string>()}});
    const auto lineEnd = rc::gen::weightedElement<std::string>({{6, "\n"}, {3, "\r\n"}, {1, "\r"}});
    return rc::gen::map(rc::gen::tuple(rc::gen::container<std::vector<std::string>>(line),
                                       rc::gen::container<std::vector<std::string>>(60, lineEnd),
                                       rc::gen::arbitrary<bool>(),
                                       rc::gen::arbitrary<bool>()),
                        [](const auto& parts) {
                            const auto& [lines, ends, hasMark, isOpen] = parts;
                            std::string bytes(hasMark ? kMark : "");
                            for (std::size_t i = 0; i < lines.size(); ++i) {
                                const bool isLast = i + 1 == lines.size();
                                bytes += lines[i] + (isLast && isOpen ? "" : ends[i % ends.size()]);
                            }
                            bytes.erase(std::remove(bytes.begin(), bytes.end(), '\0'), bytes.end());
                            return bytes;
                        });
}

RC_GTEST_PROP(ChangeIniValuesProperty, AnyText_KeepsEveryForeignLine, ()) {
    const std::string before = *IniText();
    const auto after = ChangeIniValues(before, "chess", {{"Key", "5"}, {"Path", "/a", false}});
    RC_ASSERT(after.has_value());

    const TIniSection section = ReadIniSection(*after, "chess");
    RC_ASSERT(section.at("key").starts_with("5"));
    RC_ASSERT(section.at("path") == "/a");

    RC_ASSERT(after->starts_with(kMark) == before.starts_with(kMark));

    // Of the lines with their line ends, one may have been changed, and the last one may have got
    // its line end; the others are found again in their order.
    const auto lines = LinesOf(before);
    const bool isOpen = !lines.empty() && lines.back().find_first_of("\r\n") == std::string::npos;
    const bool hasKey = LowerAscii(before).find("key") != std::string::npos;
    const std::size_t mayDiffer = (isOpen ? 1U : 0U) + (hasKey ? 1U : 0U);
    RC_ASSERT(CommonLines(lines, LinesOf(*after)) + mayDiffer >= lines.size());
}

RC_GTEST_PROP(ChangeIniValuesProperty, SameChangeAgain_ChangesNothing, ()) {
    const std::string before = *IniText();
    const std::vector<TIniChange> changes = {{"Key", "5"}, {"New", "-1"}};
    const auto once = ChangeIniValues(before, "chess", changes);
    RC_ASSERT(once.has_value());
    RC_ASSERT(ChangeIniValues(*once, "chess", changes) == once);
}

RC_GTEST_PROP(ChangeIniValuesProperty, AnyBytes_AreReadWithoutHarm, (const std::string& bytes)) {
    ReadIniSection(bytes, "chess");
    const auto after = ChangeIniValues(bytes, "chess", {{"Key", "5"}});
    if (after) {
        RC_ASSERT(ReadIniSection(*after, "chess").at("key").starts_with("5"));
    } else {
        RC_ASSERT(bytes.find_first_of(std::string_view("\0[", 2)) != std::string::npos);
    }
}

}  // namespace
}  // namespace quillmere
