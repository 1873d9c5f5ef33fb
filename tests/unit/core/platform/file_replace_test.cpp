#include "core/platform/file_replace.h"
#include "tests/support/random.h"
#include "tests/support/temporary_folder.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
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

TEST(ReplaceFileKeepingBackup, NewFile_HasNoBackup) {
    const test::CTemporaryFolder folder;
    EXPECT_FALSE(ReplaceFileKeepingBackup(folder.Path() / "a" / "file.cp", "first"));
    EXPECT_EQ(test::ReadFile(folder.Path() / "a" / "file.cp"), "first");
    EXPECT_EQ(EntryCount(folder.Path() / "a"), 1);
}

TEST(ReplaceFileKeepingBackup, SecondSave_LeavesThePreviousContentInTheBackup) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    for (const char* text : {"first", "second", "third"})
        ASSERT_FALSE(ReplaceFileKeepingBackup(file, text));
    EXPECT_EQ(test::ReadFile(file), "third");
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp.BAK"), "second");
    EXPECT_EQ(EntryCount(folder.Path()), 2);
}

// As a kill between the two renames leaves them: both names are one file.
TEST(ReplaceFileKeepingBackup, BackupThatIsTheFileItself_IsNoHindrance) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    test::WriteFile(file, "old");
    fs::create_hard_link(file, folder.Path() / "file.cp.BAK");
    ASSERT_FALSE(ReplaceFileKeepingBackup(file, "new"));
    EXPECT_EQ(test::ReadFile(file), "new");
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp.BAK"), "old");
    EXPECT_EQ(EntryCount(folder.Path()), 2);
}

TEST(ReplaceFileKeepingBackup, BackupThatStays_IsEvadedByANumber) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    fs::create_directory(folder.Path() / "file.cp.BAK");
    test::WriteFile(folder.Path() / "file.cp1.BAK", "first");
    test::WriteFile(file, "old");
    EXPECT_FALSE(ReplaceFileKeepingBackup(file, "new"));
    EXPECT_TRUE(fs::is_directory(folder.Path() / "file.cp.BAK"));
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp1.BAK"), "first");
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp2.BAK"), "old");
    EXPECT_EQ(test::ReadFile(file), "new");
    EXPECT_EQ(EntryCount(folder.Path()), 4);
}

TEST(ReplaceFileKeepingBackup, SymbolicLink_StaysALinkAndTheBackupStandsBesideIt) {
    const test::CTemporaryFolder folder;
    fs::create_directory(folder.Path() / "elsewhere");
    const fs::path target = folder.Path() / "elsewhere" / "target.cp";
    const fs::path link = folder.Path() / "file.cp";
    test::WriteFile(target, "old");
    fs::create_symlink("elsewhere/target.cp", link);
    ASSERT_FALSE(ReplaceFileKeepingBackup(link, "new"));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(test::ReadFile(target), "new");
    EXPECT_EQ(test::ReadFile(folder.Path() / "file.cp.BAK"), "old");
    EXPECT_FALSE(fs::is_symlink(folder.Path() / "file.cp.BAK"));
}

// Runs the body in a process of its own and returns its exit code, or -1 if it was killed.
template <class TBody>
int InChild(TBody body) {
    const pid_t child = fork();
    if (child == 0)
        _exit(body());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ReplaceFileKeepingBackup, Pipe_StaysAPipe) {
    const test::CTemporaryFolder folder;
    const auto pipe = folder.Path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    bool cannotOpen = false;
    EXPECT_TRUE(ReplaceFileKeepingBackup(pipe, "new", &cannotOpen));
    EXPECT_TRUE(cannotOpen);
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(ReplaceFileKeepingBackup, WriteThatBreaksOff_LeavesTheOldFileAndNothingElse) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    test::WriteFile(file, "old");
    const std::string large(1 << 20, 'x');
    EXPECT_EQ(InChild([&] {
                  const rlimit limit{4096, 4096};
                  signal(SIGXFSZ, SIG_IGN);
                  setrlimit(RLIMIT_FSIZE, &limit);
                  return ReplaceFileKeepingBackup(file, large) == std::errc::file_too_large ? 7 : 8;
              }),
              7);
    EXPECT_EQ(test::ReadFile(file), "old");
    EXPECT_EQ(EntryCount(folder.Path()), 1);
}

// Needs the right to mount; where it is missing, the case above stands for this one.
TEST(ReplaceFileKeepingBackup, FullDisk_LeavesTheOldFileAndNothingElse) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    const std::string large(1 << 20, 'x');
    const int result = InChild([&] {
        if (unshare(CLONE_NEWNS) != 0 ||
            mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", folder.Path().c_str(), "tmpfs", 0, "size=256k") != 0)
            return 9;
        test::WriteFile(file, "old");
        if (ReplaceFileKeepingBackup(file, large) != std::errc::no_space_on_device)
            return 1;
        return test::ReadFile(file) == "old" && EntryCount(folder.Path()) == 1 ? 0 : 2;
    });
    if (result == 9)
        GTEST_SKIP() << "no right to mount a small disk";
    EXPECT_EQ(result, 0);
}

TEST(ReplaceFileKeepingBackup, KillAtAnyMoment_LeavesOneWholeFileUnderTheName) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file.cp";
    const std::string texts[] = {std::string(300'000, 'a'), std::string(200'000, 'b')};
    const auto isWhole = [&](const fs::path& path) {
        const std::string text = test::ReadFile(path);
        return text == texts[0] || text == texts[1];
    };
    ASSERT_FALSE(ReplaceFileKeepingBackup(file, texts[0]));
    ASSERT_FALSE(ReplaceFileKeepingBackup(file, texts[1]));
    test::CRandom random(1);
    int killedInPending = 0;
    for (int round = 0; round < 150; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            for (std::size_t i = 0;; ++i) {
                if (ReplaceFileKeepingBackup(file, texts[i % 2]))
                    _exit(1);
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random.Between(0, 4000)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << round;
        ASSERT_TRUE(isWhole(file)) << round;
        ASSERT_TRUE(isWhole(folder.Path() / "file.cp.BAK")) << round;
        for (const auto& entry : fs::directory_iterator(folder.Path())) {
            if (entry.path().string().find("_PENDING.") != std::string::npos) {
                ++killedInPending;
                fs::remove(entry.path());
            }
        }
    }
    // Else the kills never came in mid-save.
    EXPECT_GT(killedInPending, 0);
}

TEST(ReplaceFileContent, ThreadsThatSaveAtOnce_LeaveOneWholeContent) {
    const test::CTemporaryFolder folder;
    const fs::path file = folder.Path() / "file";
    const auto save = [&file](char letter) {
        for (int i = 0; i < 100; ++i)
            EXPECT_FALSE(ReplaceFileContent(file, std::string(100'000, letter)));
    };
    std::thread other(save, 'b');
    save('a');
    other.join();
    const std::string text = test::ReadFile(file);
    EXPECT_EQ(text, std::string(100'000, text.at(0)));
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
