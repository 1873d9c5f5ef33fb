#include "core/platform/folder_watch.h"
#include "tests/support/temporary_folder.h"

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

class FolderWatch : public testing::Test {
protected:
    void SetUp() override {
        test::WriteFile(m_folder.Path() / "file", "old");
        fs::create_directory(m_folder.Path() / "below");
        if (!m_watch.Start(m_folder.Path()))
            GTEST_SKIP() << "the system watches no folder";
    }
    test::CTemporaryFolder m_folder;
    CFolderWatch m_watch;
};

TEST_F(FolderWatch, QuietFolder_HasNoEvent) {
    EXPECT_FALSE(m_watch.HasEvent());
    EXPECT_FALSE(m_watch.HasEvent());
}

TEST_F(FolderWatch, EachKindOfChange_IsAnEventOnce) {
    const fs::path file = m_folder.Path() / "file";
    const fs::path other = m_folder.Path() / "other";
    const std::function<void()> changes[] = {
        [&] { test::WriteFile(file, "newer"); },
        [&] {
            fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1));
        },
        [&] { fs::rename(file, other); },
        [&] { fs::resize_file(other, 1); },
        [&] { fs::remove(other); },
        [&] { test::WriteFile(file, "again"); },
    };
    int number = 0;
    for (const auto& change : changes) {
        change();
        EXPECT_TRUE(m_watch.HasEvent()) << number;
        EXPECT_FALSE(m_watch.HasEvent()) << number;
        ++number;
    }
}

TEST_F(FolderWatch, ChangesInFoldersBelow_AreNoEvents) {
    test::WriteFile(m_folder.Path() / "below" / "file", "new");
    EXPECT_FALSE(m_watch.HasEvent());
}

TEST_F(FolderWatch, ManyEvents_AreTakenAtOnce) {
    for (int i = 0; i < 2000; ++i)
        test::WriteFile(m_folder.Path() / ("file" + std::to_string(i)), "new");
    EXPECT_TRUE(m_watch.HasEvent());
    EXPECT_FALSE(m_watch.HasEvent());
}

TEST_F(FolderWatch, FolderThatIsGone_IsAnEventForEver) {
    fs::remove_all(m_folder.Path());
    EXPECT_TRUE(m_watch.HasEvent());
    EXPECT_TRUE(m_watch.HasEvent());
}

TEST(FolderWatchStart, FileOrMissingFolder_CannotBeWatched) {
    const test::CTemporaryFolder folder;
    test::WriteFile(folder.Path() / "file", "");
    CFolderWatch watch;
    EXPECT_FALSE(watch.Start(folder.Path() / "file"));
    EXPECT_FALSE(watch.Start(folder.Path() / "missing"));
    EXPECT_TRUE(watch.HasEvent());
}

TEST(StampOf, ContentAndTime_ChangeIt) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    EXPECT_FALSE(StampOf(file).isThere);
    test::WriteFile(file, "old");
    const TFileStamp old = StampOf(file);
    EXPECT_TRUE(old.isThere);
    EXPECT_EQ(old.size, 3u);
    EXPECT_EQ(StampOf(file), old);
    fs::last_write_time(file, fs::last_write_time(file) + std::chrono::nanoseconds(1));
    EXPECT_NE(StampOf(file), old);
}

}  // namespace
}  // namespace quillmere
