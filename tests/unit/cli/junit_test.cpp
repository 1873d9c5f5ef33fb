#include "cli/junit.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

TEST(EscapeXml, EveryByte_GivesAllowedText) {
    const struct {
        std::string text;
        const char* escaped;
    } kRows[] = {
        {"a<b>&\"'", "a&lt;b&gt;&amp;&quot;'"},
        {"tab\tline\nend\r", "tab&#9;line&#10;end&#13;"},
        {"zażółć", "zażółć"},
        {"\xf0\x9f\x98\x80", "\xf0\x9f\x98\x80"},
        {std::string("\0\x01", 2), "\uFFFD\uFFFD"},
        {"\xff", "\uFFFD"},
        {"a\xc5", "a\uFFFD"},
        {"\xc0\xaf", "\uFFFD\uFFFD"},
        {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xef\xbf\xbf", "\uFFFD\uFFFD\uFFFD"},
        {"\xf4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
    };
    for (const auto& row : kRows)
        EXPECT_EQ(EscapeXml(row.text), row.escaped) << row.text;
}

TTestResult Result(i32 number, ETestVerdict verdict) {
    TTestResult result;
    result.number = number;
    result.pass = 0;
    result.verdict = verdict;
    result.milliseconds = 1500;
    return result;
}

TEST(JunitReport, CountsAndTellsEachKindOfResult) {
    TTestResult different = Result(2, ETestVerdict::kDifferent);
    different.description = "a \"hard\" one";
    different.found = {{"Qa1-a2", "a1a2"}};
    TTestResult skipped = Result(4, ETestVerdict::kSkipped);
    skipped.pass.reset();
    skipped.remark = "a selfmate";
    skipped.milliseconds = 0;
    TTestResult undecided = Result(5, ETestVerdict::kUndecided);
    undecided.remark = "the limit";
    const std::string report = JunitReport("a&b.cp",
                                           {Result(1, ETestVerdict::kAsExpected),
                                            different,
                                            Result(3, ETestVerdict::kNotStated),
                                            skipped,
                                            undecided,
                                            Result(6, ETestVerdict::kFaulty)});
    EXPECT_EQ(
        report,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuites>\n"
        "  <testsuite name=\"a&amp;b.cp\" tests=\"6\" failures=\"1\" errors=\"2\" "
        "skipped=\"1\" time=\"7.500\">\n"
        "    <testcase classname=\"a&amp;b.cp\" name=\"problem 1 M0\" time=\"1.500\">"
        "</testcase>\n"
        "    <testcase classname=\"a&amp;b.cp\" name=\"problem 2 M0: a &quot;hard&quot; one\" "
        "time=\"1.500\"><failure message=\"the solutions differ\">found: Qa1-a2&#10;"
        "should be: -</failure></testcase>\n"
        "    <testcase classname=\"a&amp;b.cp\" name=\"problem 3 M0\" time=\"1.500\">"
        "<system-out>found: -</system-out></testcase>\n"
        "    <testcase classname=\"a&amp;b.cp\" name=\"problem 4\" time=\"0.000\">"
        "<skipped message=\"a selfmate\"/></testcase>\n"
        "    <testcase classname=\"a&amp;b.cp\" name=\"problem 5 M0\" time=\"1.500\">"
        "<error message=\"the limit\"/></testcase>\n"
        "    <testcase classname=\"a&amp;b.cp\" name=\"problem 6 M0\" time=\"1.500\">"
        "<error message=\"\"/></testcase>\n"
        "  </testsuite>\n</testsuites>\n");
}

}  // namespace
}  // namespace quillmere
