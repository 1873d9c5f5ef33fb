#include "problems/file_change_watch.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds kNever = std::chrono::hours(1);

class FileChangeWatch : public testing::Test {
protected:
    void SetUp() override {
        test::WriteFile(m_file, "old");
        m_watch.Start(m_file);
        EXPECT_FALSE(m_watch.Poll());
    }
    // Another content, at a time that differs also on disks with coarse times.
    void Change(const std::string& text) {
        test::WriteFile(m_file, text);
        fs::last_write_time(m_file,
                            fs::file_time_type::clock::now() + std::chrono::seconds(++m_changes));
    }
    test::CTemporaryFolder m_folder;
    fs::path m_file = m_folder.Path() / "file.cp";
    CFileChangeWatch m_watch{kNever};
    int m_changes = 0;
};

TEST_F(FileChangeWatch, Change_IsToldOnce) {
    Change("new");
    EXPECT_TRUE(m_watch.Poll());
    EXPECT_FALSE(m_watch.Poll());
    Change("newer");
    EXPECT_TRUE(m_watch.Poll());
    EXPECT_FALSE(m_watch.Poll());
}

TEST_F(FileChangeWatch, OtherFileOfTheFolder_IsNotTold) {
    test::WriteFile(m_folder.Path() / "other.cp", "new");
    test::WriteFile(m_folder.Path() / "file.cp.BAK", "new");
    EXPECT_FALSE(m_watch.Poll());
}

TEST_F(FileChangeWatch, SameTimeAndSize_IsNotTold) {
    const auto time = fs::last_write_time(m_file);
    test::WriteFile(m_file, "OLD");
    fs::last_write_time(m_file, time);
    EXPECT_FALSE(m_watch.Poll());
}

TEST_F(FileChangeWatch, FileTakenAway_IsToldWhenItIsBack) {
    fs::remove(m_file);
    EXPECT_FALSE(m_watch.Poll());
    Change("new");
    EXPECT_TRUE(m_watch.Poll());
}

TEST_F(FileChangeWatch, Replacement_IsTold) {
    const fs::path pending = m_folder.Path() / "pending";
    test::WriteFile(pending, "longer");
    fs::rename(pending, m_file);
    EXPECT_TRUE(m_watch.Poll());
}

TEST_F(FileChangeWatch, StoppedWatch_TellsNothing) {
    m_watch.Stop();
    Change("new");
    EXPECT_FALSE(m_watch.Poll());
}

TEST_F(FileChangeWatch, Start_ForgetsWhatCameBefore) {
    m_watch.Stop();
    Change("new");
    m_watch.Start(m_file);
    EXPECT_FALSE(m_watch.Poll());
}

TEST_F(FileChangeWatch, Resume_TellsWhatCameMeanwhile) {
    m_watch.Stop();
    Change("new");
    m_watch.Resume();
    EXPECT_TRUE(m_watch.Poll());
    EXPECT_FALSE(m_watch.Poll());
}

TEST_F(FileChangeWatch, ChangeBehindALink_IsSeenWithoutEvents) {
    fs::create_directory(m_folder.Path() / "links");
    const fs::path link = m_folder.Path() / "links" / "file.cp";
    fs::create_symlink(m_file, link);
    CFileChangeWatch watch{std::chrono::milliseconds(0)};
    watch.Start(link);
    EXPECT_FALSE(watch.Poll());
    Change("new");
    EXPECT_TRUE(watch.Poll());
    EXPECT_FALSE(watch.Poll());
}

TEST(FileChangeWatchWithoutFile, FileThatComesLater_IsTold) {
    const test::CTemporaryFolder folder;
    CFileChangeWatch watch{kNever};
    EXPECT_FALSE(watch.Poll());
    watch.Resume();
    EXPECT_FALSE(watch.Poll());
    watch.Start(folder.Path() / "missing" / "file.cp");
    EXPECT_FALSE(watch.Poll());
    fs::create_directory(folder.Path() / "missing");
    test::WriteFile(folder.Path() / "missing" / "file.cp", "new");
    EXPECT_TRUE(watch.Poll());
}

}  // namespace
}  // namespace quillmere
