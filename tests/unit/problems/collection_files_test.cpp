#include "problems/change_watch.h"
#include "problems/collection_files.h"
#include "problems/file_change_watch.h"
#include "problems/save_losses.h"
#include "tests/support/problem_texts.h"
#include "tests/support/temporary_folder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

const std::string kTwo =
    test::FileText({{1, "#2", "8/8/8/4k3/8/8/8/KQ6"}, {5, "#3", "8/8/8/4k3/8/8/8/KR6", "Study"}});
const std::string kOne = test::FileText({{7, "#4", "8/8/8/4k3/8/8/8/KB6"}});
const std::string kWithComment =
    "UTF-8\n\n1 #2\n//!VARIANTS\n//!{line} 1.Qb1-b8 [the key] Ke5-d5\n//!ENDVARIANTS\n"
    "{\n\tFEN: 8/8/8/4k3/8/8/8/KQ6\n}\n";
// Two problems, and one with a fault behind them.
const std::string kFaulty = kTwo + "9 #2\n{\n\tFEN: 8/8\n}\n";

// Notes what it is told; a test sets what it answers.
struct TNotedWatch final : IChangeWatch {
    explicit TNotedWatch(std::vector<std::string>& noted) : notes(noted) {}
    void Start(const fs::path& file) override {
        notes.push_back("start " + file.filename().string());
    }
    void Stop() override { notes.emplace_back("stop"); }
    void Resume() override { notes.emplace_back("resume"); }
    bool Poll() override { return std::exchange(isFired, false); }

    std::vector<std::string>& notes;
    bool isFired = false;
};

class CollectionFiles : public testing::Test {
protected:
    fs::path PathOf(const std::string& name) const { return m_folder.Path() / name; }
    fs::path Write(const std::string& name, const std::string& text) const {
        test::WriteFile(PathOf(name), text);
        return PathOf(name);
    }
    std::string Read(const std::string& name) const { return test::ReadFile(PathOf(name)); }
    bool Exists(const std::string& name) const { return fs::exists(PathOf(name)); }
    std::size_t EntryCount() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(m_folder.Path()), fs::directory_iterator()));
    }
    TNotedWatch& Watch() {
        auto watch = std::make_unique<TNotedWatch>(m_notes);
        TNotedWatch& result = *watch;
        m_collection.watch = std::move(watch);
        return result;
    }

    test::CTemporaryFolder m_folder;
    TProblemCollection m_collection;
    TFileSettings m_settings;
    std::vector<std::string> m_notes;
};

// Names

TEST_F(CollectionFiles, Names_FollowTheCompatibilityMode) {
    using TPaths = std::vector<fs::path>;
    EXPECT_EQ(TwinOf("a/b.cp"), "a/b.cpx");
    EXPECT_EQ(FilesToWrite("b.cp", false), TPaths{"b.cp"});
    EXPECT_EQ(FilesToWrite("b.cp", true), (TPaths{"b.cpx", "b.cp"}));
    EXPECT_EQ(FileToRead(PathOf("b.cp"), false), PathOf("b.cp"));
    EXPECT_EQ(FileToRead(PathOf("b.cp"), true), PathOf("b.cpx"));
    Write("b.cp", kOne);
    EXPECT_EQ(FileToRead(PathOf("b.cp"), true), PathOf("b.cp"));
    Write("b.cpx", kOne);
    EXPECT_EQ(FileToRead(PathOf("b.cp"), true), PathOf("b.cpx"));
    EXPECT_EQ(FileToRead(PathOf("b.cp"), false), PathOf("b.cp"));
}

// Open

TEST_F(CollectionFiles, Open_TellsItsStepsAndTakesTheFile) {
    std::vector<std::string> status;
    m_settings.postStatus = [&](const std::string& text) { status.push_back(text); };
    Watch();
    OpenFile(Write("one.cp", kOne), m_collection, false, m_settings);
    m_collection.isChanged = true;
    const TOpened opened = OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    EXPECT_EQ(opened.problemCount, 2u);
    EXPECT_EQ(opened.status, "The opened file contains 2 chess problem(s)");
    EXPECT_EQ(status,
              (std::vector<std::string>{"Opening file...",
                                        "The opened file contains 1 chess problem(s)",
                                        "Opening file...",
                                        "The opened file contains 2 chess problem(s)"}));
    EXPECT_EQ(test::NumbersOf(m_collection), (std::vector<int>{1, 5}));
    EXPECT_EQ(m_collection.fileName, PathOf("two.cp"));
    EXPECT_FALSE(m_collection.isChanged);
    EXPECT_EQ(m_notes, (std::vector<std::string>{"start one.cp", "start two.cp"}));
}

TEST_F(CollectionFiles, OpenThatFailsAtOnce_ChangesNothing) {
    Watch();
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    m_collection.isChanged = true;
    const struct {
        fs::path path;
        EMessage fault;
    } rows[] = {{PathOf("missing.cp"), EMessage::kErrorOpeningFile},
                {m_folder.Path(), EMessage::kErrorOpeningFile},
                {Write("empty.cp", ""), EMessage::kFileEmpty}};
    for (const auto& row : rows) {
        try {
            OpenFile(row.path, m_collection, false, m_settings);
            ADD_FAILURE() << row.path;
        } catch (const ChessException& fault) {
            EXPECT_EQ(fault.Id(), row.fault) << row.path;
        }
        EXPECT_EQ(test::NumbersOf(m_collection), (std::vector<int>{1, 5}));
        EXPECT_EQ(m_collection.fileName, PathOf("two.cp"));
        EXPECT_TRUE(m_collection.isChanged);
        EXPECT_EQ(m_notes, std::vector<std::string>{"start two.cp"});
    }
}

TEST_F(CollectionFiles, FaultInTheText_KeepsWhatWasReadAndTellsTheLossOfASave) {
    OpenFile(Write("one.cp", kOne), m_collection, false, m_settings);
    try {
        OpenFile(Write("faulty.cp", kFaulty), m_collection, false, m_settings);
        FAIL();
    } catch (const CProblemFileFault& fault) {
        EXPECT_EQ(fault.Id(), EMessage::kImproperFenCode);
    }
    EXPECT_EQ(test::NumbersOf(m_collection), (std::vector<int>{1, 5}));
    EXPECT_EQ(m_collection.fileName, PathOf("faulty.cp"));
    EXPECT_EQ(SaveLossLines(m_collection, ELanguage::kEnglish),
              std::vector<std::string>{"File: the problem with the fault in line 14 and "
                                       "everything behind it are not written"});
    // Another file is opened without that loss.
    OpenFile(PathOf("one.cp"), m_collection, false, m_settings);
    EXPECT_TRUE(SaveLossLines(m_collection, ELanguage::kEnglish).empty());
}

TEST_F(CollectionFiles, MissingFile_IsMadeWhereAskedFor) {
    for (const bool isCompatible : {false, true}) {
        m_settings.commentCompatibilityMode = isCompatible;
        const fs::path path = PathOf(isCompatible ? "b.cp" : "a.cp");
        EXPECT_EQ(OpenFile(path, m_collection, true, m_settings).problemCount, 1u);
        EXPECT_TRUE(fs::exists(path));
        EXPECT_EQ(fs::exists(TwinOf(path)), isCompatible);
        EXPECT_EQ(m_collection.fileName, path);
    }
}

// Save

TEST_F(CollectionFiles, SecondSave_LeavesThePreviousContentInTheBackup) {
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    m_collection.isChanged = true;
    SaveFile(PathOf("two.cp"), m_collection, m_settings);
    EXPECT_FALSE(m_collection.isChanged);
    EXPECT_EQ(Read("two.cp.BAK"), kTwo);
    const std::string first = Read("two.cp");
    m_collection.Find(1)->description = "changed";
    SaveFile(PathOf("two.cp"), m_collection, m_settings);
    EXPECT_EQ(Read("two.cp.BAK"), first);
    EXPECT_NE(Read("two.cp"), first);
    EXPECT_EQ(EntryCount(), 2u);
}

TEST_F(CollectionFiles, Save_ClosesTheWatchMeanwhile) {
    Watch();
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    m_notes.clear();
    SaveFile(PathOf("two.cp"), m_collection, m_settings);
    EXPECT_EQ(m_notes, (std::vector<std::string>{"stop", "start two.cp", "resume"}));
    m_notes.clear();
    SaveFile(PathOf("other.cp"), m_collection, m_settings);
    EXPECT_EQ(m_notes, (std::vector<std::string>{"stop", "resume", "start other.cp"}));
    EXPECT_EQ(m_collection.fileName, PathOf("other.cp"));
    m_notes.clear();
    WriteFile(PathOf("third.cp"), m_collection, m_settings);
    EXPECT_EQ(m_notes, (std::vector<std::string>{"stop", "resume"}));
    EXPECT_EQ(m_collection.fileName, PathOf("other.cp"));
}

TEST_F(CollectionFiles, CompatibilityMode_WritesBothAndReadsTheTwin) {
    Watch();
    m_settings.commentCompatibilityMode = true;
    OpenFile(Write("a.cp", kWithComment), m_collection, false, m_settings);
    m_notes.clear();
    SaveFile(PathOf("a.cp"), m_collection, m_settings);
    EXPECT_NE(Read("a.cpx").find("[the key]"), std::string::npos);
    EXPECT_EQ(Read("a.cp").find("[the key]"), std::string::npos);
    EXPECT_EQ(Read("a.cp.BAK"), kWithComment);
    EXPECT_FALSE(Exists("a.cpx.BAK"));
    EXPECT_EQ(m_notes, (std::vector<std::string>{"stop", "start a.cpx", "resume"}));
    TProblemCollection again;
    OpenFile(PathOf("a.cp"), again, false, m_settings);
    EXPECT_EQ(again.Find(1)->variants.begin()->second.moves.at(0).comment, "the key");
    EXPECT_EQ(again.fileName, PathOf("a.cp"));
    m_settings.commentCompatibilityMode = false;
    OpenFile(PathOf("a.cp"), again, false, m_settings);
    EXPECT_EQ(again.Find(1)->variants.begin()->second.moves.at(0).comment, "");
}

TEST_F(CollectionFiles, FileThatCannotBeWritten_StaysAndIsNamed) {
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    m_collection.isChanged = true;
    Watch();
    fs::create_directory(PathOf("folder.cp"));
    for (const char* name : {"folder.cp", "two.cp/below.cp"}) {
        m_notes.clear();
        try {
            SaveFile(PathOf(name), m_collection, m_settings);
            ADD_FAILURE() << name;
        } catch (const ChessException& fault) {
            EXPECT_EQ(fault.what(), "Error opening file: " + PathOf(name).string());
        }
        EXPECT_TRUE(m_collection.isChanged);
        EXPECT_EQ(m_collection.fileName, PathOf("two.cp"));
        EXPECT_EQ(m_notes, (std::vector<std::string>{"stop", "resume"}));
    }
    EXPECT_EQ(EntryCount(), 2u);
}

// The twin is written first; what is behind the fault is told, and the work still counts as unsaved.
TEST_F(CollectionFiles, SecondFileThatCannotBeWritten_LeavesUnsavedWork) {
    m_settings.commentCompatibilityMode = true;
    OpenFile(Write("a.cp", kWithComment), m_collection, false, m_settings);
    m_collection.isChanged = true;
    fs::remove(PathOf("a.cp"));
    fs::create_directory(PathOf("a.cp"));
    try {
        SaveFile(PathOf("a.cp"), m_collection, m_settings);
        FAIL();
    } catch (const ChessException& fault) {
        EXPECT_EQ(fault.Values().at(0), PathOf("a.cp").string());
    }
    EXPECT_TRUE(m_collection.isChanged);
    EXPECT_NE(Read("a.cpx").find("[the key]"), std::string::npos);
}

TEST_F(CollectionFiles, PositionThatCannotBeWritten_TouchesNoFile) {
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    auto problem = std::make_unique<TChessProblem>();
    problem->number = 9;
    u8 squares[kSquareCount] = {};
    squares[5] = kBlackKing;
    problem->SetPosition(squares);
    m_collection.Insert(std::move(problem));
    for (const bool isCompatible : {false, true}) {
        m_settings.commentCompatibilityMode = isCompatible;
        EXPECT_THROW(SaveFile(PathOf("two.cp"), m_collection, m_settings), ChessException);
        EXPECT_EQ(Read("two.cp"), kTwo);
        EXPECT_EQ(EntryCount(), 1u);
    }
}

TEST_F(CollectionFiles, RunningSolve_RefusesWithItsQuestion) {
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    m_settings.isSolveRunning = [] { return true; };
    const std::function<void()> operations[] = {
        [&] { OpenFile(PathOf("two.cp"), m_collection, false, m_settings); },
        [&] { ReloadFile(m_collection, m_settings); },
        [&] { WriteFile(PathOf("two.cp"), m_collection, m_settings); },
        [&] { SaveFile(PathOf("two.cp"), m_collection, m_settings); },
    };
    for (const auto& operation : operations) {
        try {
            operation();
            ADD_FAILURE();
        } catch (const CSolveIsRunning& refusal) {
            EXPECT_STREQ(refusal.what(),
                         "All pending threads of mate search will be stopped.\n"
                         "Do you want to continue?");
        }
    }
    EXPECT_EQ(Read("two.cp"), kTwo);
    EXPECT_EQ(EntryCount(), 1u);
}

// The child saves over and over until it is killed; what stands under the names is always whole.
TEST_F(CollectionFiles, KillInMidSave_LeavesWholeFiles) {
    m_settings.commentCompatibilityMode = true;
    OpenFile(Write("a.cp", kWithComment), m_collection, false, m_settings);
    for (i32 number = 2; number < 300; ++number) {
        auto problem = std::make_unique<TChessProblem>();
        problem->number = number;
        problem->SetPosition(m_collection.Find(1)->position->m_board);
        m_collection.Insert(std::move(problem));
    }
    SaveFile(PathOf("a.cp"), m_collection, m_settings);
    const std::size_t count = m_collection.problems.size();
    int interrupted = 0;
    for (int round = 0; round < 40; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            for (;;)
                SaveFile(PathOf("a.cp"), m_collection, m_settings);
        }
        usleep(static_cast<useconds_t>(round * 1000));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        for (const bool isCompatible : {false, true}) {
            TFileSettings settings;
            settings.commentCompatibilityMode = isCompatible;
            TProblemCollection read;
            ASSERT_EQ(OpenFile(PathOf("a.cp"), read, false, settings).problemCount, count) << round;
        }
        for (const auto& entry : fs::directory_iterator(m_folder.Path())) {
            if (entry.path().string().find("_PENDING.") != std::string::npos) {
                ++interrupted;
                fs::remove(entry.path());
            }
        }
    }
    EXPECT_GT(interrupted, 0);
}

TEST_F(CollectionFiles, WriteThatBreaksOff_KeepsTheOldFile) {
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    m_collection.Find(1)->description = std::string(10'000, 'x');
    const pid_t child = fork();
    if (child == 0) {
        const rlimit limit{4096, 4096};
        signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
        try {
            SaveFile(PathOf("two.cp"), m_collection, m_settings);
        } catch (const ChessException& fault) {
            _exit(fault.Id() == EMessage::kErrorSavingToFileReason ? 7 : 8);
        }
        _exit(9);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 7);
    EXPECT_EQ(Read("two.cp"), kTwo);
    EXPECT_EQ(EntryCount(), 1u);
}

// New

TEST_F(CollectionFiles, NewFile_AsksBeforeItReplaces) {
    const fs::path path = PathOf("new.cp");
    std::string asked;
    bool answer = false;
    const TAskYesNo ask = [&](EMessage question, const std::string& text) {
        EXPECT_EQ(question, EMessage::kAskReplaceWithNewFile);
        asked = text;
        return answer;
    };
    EXPECT_TRUE(NewFile(path, ask, m_settings));
    EXPECT_EQ(asked, "");
    const std::string text = Read("new.cp");
    EXPECT_EQ(OpenFile(path, m_collection, false, m_settings).problemCount, 1u);
    Write("new.cp", kTwo);
    EXPECT_FALSE(NewFile(path, ask, m_settings));
    EXPECT_EQ(asked,
              "File " + path.string() +
                  " already exists.\nDo you want to replace it with a new file?");
    EXPECT_EQ(Read("new.cp"), kTwo);
    answer = true;
    EXPECT_TRUE(NewFile(path, ask, m_settings));
    EXPECT_EQ(Read("new.cp"), text);
    EXPECT_EQ(Read("new.cp.BAK"), kTwo);
    Write("new.cp", kTwo);
    EXPECT_TRUE(NewFile(path, nullptr, m_settings));
    EXPECT_EQ(Read("new.cp"), text);
}

TEST_F(CollectionFiles, NewFileInCompatibilityMode_AsksForTheTwinToo) {
    m_settings.commentCompatibilityMode = true;
    Write("new.cpx", kTwo);
    int asked = 0;
    EXPECT_FALSE(NewFile(
        PathOf("new.cp"), [&](EMessage, const std::string&) { return ++asked == 2; }, m_settings));
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(EntryCount(), 1u);
}

// At closing, and changes from outside

TEST_F(CollectionFiles, QuestionAtClose_HasCancelUnlessTheProgramEnds) {
    EXPECT_FALSE(QuestionAtClose(m_collection, false, ELanguage::kEnglish));
    m_collection.isChanged = true;
    const auto question = QuestionAtClose(m_collection, false, ELanguage::kEnglish);
    ASSERT_TRUE(question);
    EXPECT_EQ(question->text,
              "There are changes in the current problem.\nDo you want to save them?");
    EXPECT_TRUE(question->hasCancel);
    EXPECT_FALSE(QuestionAtClose(m_collection, true, ELanguage::kEnglish)->hasCancel);
}

TEST_F(CollectionFiles, ForeignChange_AsksOrTellsByUnsavedChanges) {
    EXPECT_EQ(PollForeignChange(m_collection, ELanguage::kEnglish).kind, EForeignChange::kNone);
    TNotedWatch& watch = Watch();
    EXPECT_EQ(PollForeignChange(m_collection, ELanguage::kEnglish).kind, EForeignChange::kNone);
    watch.isFired = true;
    const TForeignChange saved = PollForeignChange(m_collection, ELanguage::kEnglish);
    EXPECT_EQ(saved.kind, EForeignChange::kAskReload);
    EXPECT_EQ(
        saved.text,
        "The opened file has been changed by an external application.\n\nIt is strongly "
        "recommended to reopen it (close and open it again)\n\nDo you want to reload the file?");
    watch.isFired = m_collection.isChanged = true;
    const TForeignChange unsaved = PollForeignChange(m_collection, ELanguage::kEnglish);
    EXPECT_EQ(unsaved.kind, EForeignChange::kTellOnly);
    EXPECT_EQ(unsaved.text,
              "The opened file has been changed by an external application.\n\nIt is strongly "
              "recommended to reopen it (close and open it again)\n\nAny unsaved changes will be "
              "lost.\nIf you want to save them, it is recommended to save to another file (File... "
              "Save As).");
    EXPECT_EQ(PollForeignChange(m_collection, ELanguage::kEnglish).kind, EForeignChange::kNone);
}

TEST_F(CollectionFiles, OwnReadsAndWrites_AreNoForeignChanges) {
    m_collection.watch = std::make_unique<CFileChangeWatch>();
    const auto poll = [&] { return PollForeignChange(m_collection, ELanguage::kEnglish).kind; };
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    EXPECT_EQ(poll(), EForeignChange::kNone);
    m_collection.Find(1)->description = "changed";
    SaveFile(PathOf("two.cp"), m_collection, m_settings);
    EXPECT_EQ(poll(), EForeignChange::kNone);
    Write("two.cp", kOne);
    EXPECT_EQ(poll(), EForeignChange::kAskReload);
    EXPECT_EQ(ReloadFile(m_collection, m_settings).problemCount, 1u);
    EXPECT_EQ(test::NumbersOf(m_collection), std::vector<int>{7});
    EXPECT_EQ(poll(), EForeignChange::kNone);
}

// A change in front of a save that fails is still to be told.
TEST_F(CollectionFiles, FailedSave_KeepsTheForeignChange) {
    m_collection.watch = std::make_unique<CFileChangeWatch>();
    OpenFile(Write("two.cp", kTwo), m_collection, false, m_settings);
    Write("two.cp", kOne);
    fs::create_directory(PathOf("folder"));
    EXPECT_THROW(SaveFile(PathOf("folder"), m_collection, m_settings), ChessException);
    EXPECT_EQ(PollForeignChange(m_collection, ELanguage::kEnglish).kind,
              EForeignChange::kAskReload);
}

}  // namespace
}  // namespace quillmere
