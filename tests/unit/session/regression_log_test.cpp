#include "core/chess_exception.h"
#include "session/regression_log.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace quillmere {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class RegressionLogTest : public ::testing::Test {
protected:
    fs::path File() const { return m_folder.Path() / "RegressionTest.log"; }
    fs::path Backup() const { return m_folder.Path() / "RegressionTest.log.BAK"; }

    test::CTemporaryFolder m_folder;
    std::vector<int> m_sleeps;
    CRegressionLog m_log{
        File(), [this](milliseconds time) { m_sleeps.push_back(static_cast<int>(time.count())); }};
};

TEST_F(RegressionLogTest, Write_Appends) {
    test::WriteFile(File(), "old\n");
    m_log.Write("one\n");
    m_log.Write("two\nthree\n");
    EXPECT_EQ(test::ReadFile(File()), "old\none\ntwo\nthree\n");
}

TEST_F(RegressionLogTest, Write_OpensTheFileForEachLine) {
    m_log.Write("one\n");
    fs::rename(File(), Backup());
    m_log.Write("two\n");
    EXPECT_EQ(test::ReadFile(File()), "two\n");
}

TEST_F(RegressionLogTest, Write_WhereItCannot_NamesTheFile) {
    CRegressionLog log(m_folder.Path() / "missing" / "a.log");
    try {
        log.Write("one\n");
        FAIL() << "it was written";
    } catch (const ChessException& fault) {
        EXPECT_EQ(fault.Id(), EMessage::kRegressionLogNotWritten);
        EXPECT_NE(std::string(fault.what()).find("a.log"), std::string::npos);
    }
}

TEST_F(RegressionLogTest, Rotate_KeepsTheOldLogInPlaceOfAnOlderOne) {
    test::WriteFile(File(), "old\n");
    test::WriteFile(Backup(), "older\n");
    m_log.Rotate();
    EXPECT_FALSE(fs::exists(File()));
    EXPECT_EQ(test::ReadFile(Backup()), "old\n");
    EXPECT_TRUE(m_sleeps.empty());
}

TEST_F(RegressionLogTest, Rotate_WithoutALog_LeavesTheOlderOne) {
    test::WriteFile(Backup(), "older\n");
    m_log.Rotate();
    EXPECT_EQ(test::ReadFile(Backup()), "older\n");
}

TEST_F(RegressionLogTest, Rotate_LeavesADeviceWhereItIs) {
    fs::create_symlink("/dev/null", File());
    m_log.Rotate();
    EXPECT_TRUE(fs::is_symlink(File()));
    EXPECT_FALSE(fs::exists(Backup()));
    m_log.Write("one\n");
}

TEST_F(RegressionLogTest, Rotate_OfAFolder_IsRefusedAtOnce) {
    fs::create_directory(File());
    EXPECT_THROW(m_log.Rotate(), ChessException);
    EXPECT_TRUE(m_sleeps.empty());
}

TEST_F(RegressionLogTest, Rotate_ThatFails_IsTriedAgainAfterEachSleepAndThenRefused) {
    test::WriteFile(File(), "old\n");
    // A folder with something in it can be neither deleted nor replaced.
    fs::create_directory(Backup());
    test::WriteFile(Backup() / "kept", "");
    EXPECT_THROW(m_log.Rotate(), ChessException);
    EXPECT_EQ(m_sleeps, (std::vector<int>{0, 100, 200, 300}));
    EXPECT_EQ(test::ReadFile(File()), "old\n");
}

TEST_F(RegressionLogTest, Rotate_ThatWorksAtTheThirdTry_SleepsTwice) {
    test::WriteFile(File(), "old\n");
    fs::create_directory(Backup());
    test::WriteFile(Backup() / "kept", "");
    std::vector<int> sleeps;
    CRegressionLog log(File(), [&](milliseconds time) {
        sleeps.push_back(static_cast<int>(time.count()));
        if (sleeps.size() == 2)
            fs::remove(Backup() / "kept");
    });
    log.Rotate();
    EXPECT_EQ(sleeps, (std::vector<int>{0, 100}));
    EXPECT_EQ(test::ReadFile(Backup()), "old\n");
}

TEST_F(RegressionLogTest, TakeUp_EndsACutLine) {
    const struct {
        const char* before;
        const char* after;
    } kRows[] = {
        {"", ""},
        {"one\n", "one\n"},
        {"one\ntw", "one\ntw [cut]\n"},
    };
    for (const auto& row : kRows) {
        test::WriteFile(File(), row.before);
        EXPECT_EQ(m_log.TakeUp(), row.after);
        EXPECT_EQ(test::ReadFile(File()), row.after);
    }
}

TEST_F(RegressionLogTest, TakeUp_WithoutALog_IsEmptyAndMakesNone) {
    EXPECT_EQ(m_log.TakeUp(), "");
    EXPECT_FALSE(fs::exists(File()));
}

TEST_F(RegressionLogTest, TakeUp_OfAFolder_IsAFault) {
    fs::create_directory(File());
    EXPECT_THROW(m_log.TakeUp(), ChessException);
}

TEST_F(RegressionLogTest, LinesOfSeveralThreads_StayWhole) {
    constexpr int kThreads = 4;
    constexpr int kLines = 100;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kLines; ++i)
                m_log.Write(
                    std::string(static_cast<std::size_t>(50 + t), static_cast<char>('a' + t)) +
                    "\n");
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    std::istringstream in(test::ReadFile(File()));
    int count = 0;
    for (std::string line; std::getline(in, line); ++count) {
        ASSERT_FALSE(line.empty());
        const int t = line.front() - 'a';
        EXPECT_EQ(line, std::string(static_cast<std::size_t>(50 + t), line.front()));
    }
    EXPECT_EQ(count, kThreads * kLines);
}

}  // namespace
}  // namespace quillmere
