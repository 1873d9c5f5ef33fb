// The program as a function: for thread tests, which want a sanitizer inside. Everything else about
// the built program is in tests/e2e.
#include "cli/commands.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace quillmere {
namespace {

struct TRun {
    int code = -1;
    std::string output;
};

TRun RunProgram(std::vector<std::string> words) {
    words.insert(words.begin(), "quillmere");
    std::vector<const char*> argv;
    for (const std::string& word : words)
        argv.push_back(word.c_str());
    testing::internal::CaptureStdout();
    TRun run;
    run.code = RunCommandLine(static_cast<int>(argv.size()), argv.data());
    run.output = testing::internal::GetCapturedStdout();
    return run;
}

// Standard input for as long as this lives.
class CInput {
public:
    explicit CInput(const std::string& text)
        : m_text(text), m_kept(std::cin.rdbuf(m_text.rdbuf())) {}
    ~CInput() {
        std::cin.rdbuf(m_kept);
        std::cin.clear();
    }
    CInput(const CInput&) = delete;
    CInput& operator=(const CInput&) = delete;

private:
    std::istringstream m_text;
    std::streambuf* m_kept;
};

TEST(SolveList, HeuristicsThatDoNotFitAPositionNameItsLine) {
    const CInput input("# the knight stands on f7 in the first only\n"
                       "5k2/5n2/8/5K2/8/R7/8/1R6 w - - 0 1\n"
                       "7k/8/4K3/8/8/8/8/1Q6 w - - 0 1\n");
    testing::internal::CaptureStderr();
    const TRun run = RunProgram(
        {"--quiet", "solve", "-", "--moves", "2", "--heuristics", "SH_DONTLETFIGUREUNBLOCK(F7)"});
    EXPECT_NE(testing::internal::GetCapturedStderr().find("line 3: "), std::string::npos);
    EXPECT_EQ(run.code, kExitBadInput);
    EXPECT_EQ(run.output, "");
}

TEST(EpdThread, Jobs_GiveTheSameLinesInTheSameOrder) {
    const test::CTemporaryFolder folder;
    const std::string file = (folder.Path() / "list.epd").string();
    std::string text;
    for (int i = 0; i < 12; ++i) {
        text += "8/8/8/8/8/Q7/4p3/5k1K w - - dm " + std::to_string(i % 4 + 1) + "; id \"p" +
                std::to_string(i) + "\";\n";
    }
    test::WriteFile(file, text);
    const TRun one = RunProgram({"--quiet", "epd", file, "--deterministic"});
    const TRun four = RunProgram({"--quiet", "epd", file, "--deterministic", "--jobs", "4"});
    EXPECT_EQ(one.code, kExitNoMate);
    EXPECT_EQ(four.code, kExitNoMate);
    EXPECT_EQ(four.output, one.output);
    EXPECT_EQ(std::count(one.output.begin(), one.output.end(), '\n'), 12);
}

}  // namespace
}  // namespace quillmere
