#include "problems/collection_merge.h"
#include "problems/save_losses.h"
#include "tests/support/problem_texts.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <limits>

namespace quillmere {
namespace {

namespace fs = std::filesystem;
using TNumbers = std::vector<int>;

constexpr const char* kQueenFen = "8/8/8/4k3/8/8/8/KQ6";
constexpr const char* kRookFen = "8/8/8/4k3/8/8/8/KR6";
constexpr const char* kBishopFen = "8/8/8/4k3/8/8/8/KB6";
constexpr const char* kKnightFen = "8/8/8/4k3/8/8/8/KN6";

constexpr const char* kQuestion = "\n\nDo you want to save changes? (select 'No' to reject them)";

class CollectionMerge : public testing::Test {
protected:
    void Fill(const std::vector<test::TSmallProblem>& problems) {
        ReadProblems(test::FileText(problems), m_collection, m_settings.reading);
    }
    fs::path Other(const std::vector<test::TSmallProblem>& problems, const char* behind = "") {
        const fs::path path = m_folder.Path() / "other.cp";
        test::WriteFile(path, test::FileText(problems) + behind);
        return path;
    }

    test::CTemporaryFolder m_folder;
    TProblemCollection m_collection;
    TFileSettings m_settings;
};

// Doubles

TEST_F(CollectionMerge, SamePositions_AreFoundUnderTheSmallestNumber) {
    Fill({{3, "#2", kQueenFen},
          {4, "#2", kRookFen},
          {5, "#4", kQueenFen},
          {8, "", kQueenFen},
          {9, "#2", kRookFen},
          {10, "#2", kBishopFen}});
    std::vector<std::pair<int, int>> found;
    for (const TSamePosition& same : FindSamePositions(m_collection))
        found.emplace_back(same.number, same.sameAs);
    EXPECT_EQ(found, (std::vector<std::pair<int, int>>{{5, 3}, {8, 3}, {9, 4}}));
    EXPECT_EQ(FindSamePosition(m_collection, *m_collection.Find(3))->number, 5);
    EXPECT_EQ(FindSamePosition(m_collection, *m_collection.Find(8))->number, 3);
    EXPECT_EQ(FindSamePosition(m_collection, *m_collection.Find(10)), nullptr);
}

TEST_F(CollectionMerge, SamePositionQuestion_NamesTheProblem) {
    Fill({{3, "#2", kQueenFen, "Study"}, {4, "s#3", kRookFen}, {5, "", kRookFen}});
    const struct {
        int number;
        const char* name;
    } rows[] = {{3, "3 #2 Study"}, {4, "4 s#3"}, {5, "5"}};
    for (const auto& row : rows) {
        EXPECT_EQ(SamePositionQuestion(*m_collection.Find(row.number), ELanguage::kEnglish),
                  std::string("The same position already exists in this file as the following "
                              "problem:\n") +
                      row.name + "\n\nDo you want to save changes anyway?");
    }
}

// Append

TEST_F(CollectionMerge, Append_TakesNewPositionsUnderTheNextNumbers) {
    Fill({{3, "#2", kQueenFen}, {7, "#2", kRookFen}});
    const TAppended appended = AppendFile(
        Other({{1, "#2", kBishopFen, "first"}, {2, "#2", kQueenFen}, {3, "#3", kKnightFen}}),
        m_collection,
        m_settings);
    EXPECT_EQ(appended.numbers, (TNumbers{8, 9}));
    EXPECT_EQ(test::NumbersOf(m_collection), (TNumbers{3, 7, 8, 9}));
    EXPECT_EQ(m_collection.Find(8)->description, "first");
    EXPECT_EQ(m_collection.Find(8)->number, 8);
    EXPECT_EQ(m_collection.Find(9)->maxHalfMoves, 5);
    EXPECT_EQ(appended.report, "Appended problems: 2");
    EXPECT_EQ(appended.question, std::string("Appended problems: 2") + kQuestion);
    EXPECT_TRUE(m_collection.isChanged);
}

TEST_F(CollectionMerge, Append_TellsWhatDiffersOnlyByStipulation) {
    Fill({{3, "#2", kQueenFen}, {4, "#5", kQueenFen}, {7, "#2", kRookFen}});
    const TAppended appended = AppendFile(Other({{1, "#3", kQueenFen},
                                                 {2, "#5", kQueenFen},
                                                 {4, "", kRookFen},
                                                 {5, "#2", kBishopFen},
                                                 {6, "s#2", kBishopFen},
                                                 {8, "#2", kBishopFen}}),
                                          m_collection,
                                          m_settings);
    EXPECT_EQ(appended.numbers, TNumbers{8});
    EXPECT_EQ(appended.report,
              "Appended problems: 1\nMoreover some problems differ only by stipulation (#n): \n"
              "1 vs. #3\n4 vs. #7\n6 vs. #8");
    EXPECT_EQ(appended.question, appended.report + kQuestion);
}

TEST_F(CollectionMerge, CommentsOfTheOtherFile_AreNoLosses) {
    const fs::path other = m_folder.Path() / "commented.cp";
    test::WriteFile(other,
                    "// one\n5 #2 SchedulerLevels 3 // two\n//!VARIANTS\n//!{v} 4. Ke1-e2 !\n"
                    "{ D: \u0142\n FEN: 3k4/8/8/8/8/8/8/3QK3\n}\n");
    const TAppended appended = AppendFile(other, m_collection, m_settings);
    EXPECT_EQ(appended.remarks,
              (std::vector<std::string>{
                  "File: the comment in line 1 is not written",
                  "Problem 5: text beside the moves of the variant in line 4 is not written",
                  "Problem 5: the moves of the variant in line 4 are numbered from 1 on",
                  "Problem 5: the comment in line 2 is not written"}));
    EXPECT_EQ(m_collection.lostBySave, std::set<std::string>{});
    EXPECT_EQ(m_collection.Find(1)->lostBySave,
              (std::set<std::string>{"SCHEDULERLEVELS", LostEncoding("windows-1250")}));
}

TEST_F(CollectionMerge, AppendOfNothing_IsNoChange) {
    Fill({{3, "#2", kQueenFen}});
    EXPECT_TRUE(
        AppendFile(Other({{1, "#2", kQueenFen}}), m_collection, m_settings).numbers.empty());
    EXPECT_FALSE(m_collection.isChanged);
}

TEST_F(CollectionMerge, RejectedAppend_LeavesNoTrace) {
    Fill({{3, "#2", kQueenFen}});
    for (const bool wasChanged : {false, true}) {
        m_collection.isChanged = wasChanged;
        const TAppended appended =
            AppendFile(Other({{1, "#2", kBishopFen}}), m_collection, m_settings);
        EXPECT_EQ(test::NumbersOf(m_collection), (TNumbers{3, 4}));
        RejectAppended(m_collection, appended);
        EXPECT_EQ(test::NumbersOf(m_collection), TNumbers{3});
        EXPECT_EQ(m_collection.isChanged, wasChanged);
    }
}

TEST_F(CollectionMerge, GreatestNumber_IsNotPassed) {
    constexpr int kGreatest = std::numeric_limits<i32>::max();
    Fill({{1, "#2", kQueenFen}, {kGreatest, "#2", kRookFen}});
    AppendFile(Other({{1, "#2", kBishopFen}, {2, "#2", kKnightFen}}), m_collection, m_settings);
    EXPECT_EQ(test::NumbersOf(m_collection), (TNumbers{1, 2, 3, kGreatest}));
}

// Remove

TEST_F(CollectionMerge, Remove_TakesPositionsOfTheOtherFile) {
    Fill({{3, "#2", kQueenFen}, {4, "#5", kQueenFen}, {7, "#2", kRookFen}});
    TRemoved removed = RemovePresentInFile(
        Other({{1, "#3", kQueenFen}, {2, "#3", kBishopFen}}), m_collection, nullptr, m_settings);
    EXPECT_EQ(test::NumbersOf(m_collection), TNumbers{7});
    EXPECT_EQ(removed.problems.size(), 2u);
    EXPECT_EQ(removed.report, "Removed problems: 2");
    EXPECT_EQ(removed.question, std::string("Removed problems: 2") + kQuestion);
    EXPECT_TRUE(m_collection.isChanged);
    RejectRemoved(m_collection, removed);
    EXPECT_EQ(test::NumbersOf(m_collection), (TNumbers{3, 4, 7}));
    EXPECT_EQ(m_collection.Find(4)->maxHalfMoves, 9);
    EXPECT_FALSE(m_collection.isChanged);
}

TEST_F(CollectionMerge, CurrentProblem_IsNotRemoved) {
    Fill({{3, "#2", kQueenFen}, {4, "#5", kQueenFen}, {7, "#2", kRookFen}});
    const TRemoved removed = RemovePresentInFile(
        Other({{1, "#3", kQueenFen}}), m_collection, m_collection.Find(4), m_settings);
    EXPECT_EQ(test::NumbersOf(m_collection), (TNumbers{4, 7}));
    EXPECT_TRUE(removed.isCurrentKept);
    EXPECT_EQ(removed.question,
              std::string("Removed problems: 1\nWarning: the current problem cannot be removed.") +
                  kQuestion);
    // One that is not present in the other file gives no warning.
    EXPECT_EQ(RemovePresentInFile(
                  Other({{1, "#3", kQueenFen}}), m_collection, m_collection.Find(7), m_settings)
                  .report,
              "Removed problems: 1");
}

// Faults

TEST_F(CollectionMerge, FaultOfTheOtherFile_ChangesNothing) {
    Fill({{3, "#2", kQueenFen}});
    const fs::path faulty = Other({{1, "#2", kBishopFen}, {2, "#2", kQueenFen}}, "9 #2 {");
    const fs::path missing = m_folder.Path() / "missing.cp";
    EXPECT_THROW(AppendFile(faulty, m_collection, m_settings), CProblemFileFault);
    EXPECT_THROW(AppendFile(missing, m_collection, m_settings), ChessException);
    EXPECT_THROW(RemovePresentInFile(faulty, m_collection, nullptr, m_settings), CProblemFileFault);
    EXPECT_THROW(RemovePresentInFile(missing, m_collection, nullptr, m_settings), ChessException);
    EXPECT_FALSE(fs::exists(missing));
    m_settings.isSolveRunning = [] { return true; };
    EXPECT_THROW(AppendFile(faulty, m_collection, m_settings), CSolveIsRunning);
    EXPECT_THROW(RemovePresentInFile(faulty, m_collection, nullptr, m_settings), CSolveIsRunning);
    EXPECT_EQ(test::NumbersOf(m_collection), TNumbers{3});
    EXPECT_FALSE(m_collection.isChanged);
}

}  // namespace
}  // namespace quillmere
