#include "core/platform/file_replace.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

std::ptrdiff_t EntryCount(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

TEST(ReplaceFileContent, NewFile_IsMadeWithItsFolders) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "a" / "b" / "file";
    EXPECT_FALSE(ReplaceFileContent(file, "text"));
    EXPECT_EQ(test::ReadFile(file), "text");
    EXPECT_EQ(EntryCount(file.parent_path()), 1);
}

TEST(ReplaceFileContent, AllBytes_ArriveUnchanged) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    std::string bytes(300'000, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(i * 7);
    }
    ASSERT_FALSE(ReplaceFileContent(file, bytes));
    std::string back = "old";
    ASSERT_FALSE(ReadWholeFile(file, back));
    EXPECT_EQ(back, bytes);
}

TEST(ReplaceFileContent, OldFile_KeepsItsAccessRights) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    test::WriteFile(file, "old");
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    ASSERT_FALSE(ReplaceFileContent(file, "new"));
    struct stat status {};
    ASSERT_EQ(stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    EXPECT_EQ(test::ReadFile(file), "new");
}

TEST(ReplaceFileContent, SymbolicLink_StaysALink) {
    const test::CTemporaryFolder folder;
    fs::create_directory(folder.Path() / "real");
    fs::create_symlink("real/file", folder.Path() / "first");
    fs::create_symlink("first", folder.Path() / "second");
    // First the link leads to nothing, then to a file.
    for (const char* text : {"one", "two"}) {
        ASSERT_FALSE(ReplaceFileContent(folder.Path() / "second", text));
        EXPECT_TRUE(fs::is_symlink(folder.Path() / "second"));
        EXPECT_TRUE(fs::is_symlink(folder.Path() / "first"));
        EXPECT_EQ(test::ReadFile(folder.Path() / "real" / "file"), text);
    }
    EXPECT_EQ(EntryCount(folder.Path() / "real"), 1);
}

TEST(ReplaceFileContent, FileInPlaceOfTheFolder_IsAnError) {
    const test::CTemporaryFolder folder;
    test::WriteFile(folder.Path() / "file", "text");
    EXPECT_TRUE(ReplaceFileContent(folder.Path() / "file" / "options.ini", "new"));
    EXPECT_EQ(test::ReadFile(folder.Path() / "file"), "text");
}

TEST(ReplaceFileContent, FolderInPlaceOfTheFile_IsAnErrorAndLeavesNothing) {
    const test::CTemporaryFolder folder;
    fs::create_directory(folder.Path() / "options.ini");
    EXPECT_EQ(ReplaceFileContent(folder.Path() / "options.ini", "new"), std::errc::is_a_directory);
    EXPECT_EQ(EntryCount(folder.Path()), 1);
}

TEST(ReplaceFileContent, FileThatMayNotBeWritten_IsAnErrorAndStays) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root may write everything";
    }
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    test::WriteFile(file, "old");
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    EXPECT_EQ(ReplaceFileContent(file, "new"), std::errc::permission_denied);
    EXPECT_EQ(test::ReadFile(file), "old");
    EXPECT_EQ(EntryCount(folder.Path()), 1);
}

TEST(ReplaceFileContent, EmptyPath_IsAnError) {
    EXPECT_TRUE(ReplaceFileContent("", "text"));
}

TEST(BackupBeforeSave, File_TakesThePlaceOfTheOlderBackup) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    test::WriteFile(file, "new");
    test::WriteFile(folder.Path() / "file.cp.BAK", "old");
    EXPECT_FALSE(BackupBeforeSave(file));
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp.BAK"), "new");
    EXPECT_EQ(EntryCount(folder.Path()), 1);
}

TEST(BackupBeforeSave, BackupThatStays_IsEvadedByANumber) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    fs::create_directory(folder.Path() / "file.cp.BAK");
    test::WriteFile(folder.Path() / "file.cp1.BAK", "first");
    test::WriteFile(file, "new");
    EXPECT_FALSE(BackupBeforeSave(file));
    EXPECT_TRUE(fs::is_directory(folder.Path() / "file.cp.BAK"));
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp1.BAK"), "first");
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp2.BAK"), "new");
}

TEST(BackupBeforeSave, NoFileOrAFolder_IsLeftAlone) {
    const test::CTemporaryFolder folder;
    EXPECT_FALSE(BackupBeforeSave(folder.Path() / "missing"));
    fs::create_directory(folder.Path() / "folder");
    EXPECT_FALSE(BackupBeforeSave(folder.Path() / "folder"));
    EXPECT_TRUE(fs::is_directory(folder.Path() / "folder"));
    EXPECT_EQ(EntryCount(folder.Path()), 1);
}

TEST(ReadWholeFile, MissingFile_IsNoSuchFile) {
    const test::CTemporaryFolder folder;
    std::string bytes = "old";
    EXPECT_EQ(ReadWholeFile(folder.Path() / "missing", bytes),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(bytes, "");
}

TEST(ReadWholeFile, FolderOrPipe_IsAnErrorAtOnce) {
    const test::CTemporaryFolder folder;
    const fs::path pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::string bytes;
    EXPECT_EQ(ReadWholeFile(folder.Path(), bytes), std::errc::is_a_directory);
    EXPECT_EQ(ReadWholeFile(pipe, bytes), std::errc::invalid_argument);
}

}  // namespace
}  // namespace quillmere
