#include "heuristics/catalogue.h"
#include "heuristics/heur_params.h"
#include "heuristics/relaxation.h"
#include "heuristics/relaxation_log.h"
#include "tests/support/registers.h"
#include "tests/support/search_board.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

std::tm FixedTime() {
    std::tm time{};
    time.tm_year = 124;
    time.tm_mon = 2;
    time.tm_mday = 9;
    time.tm_hour = 7;
    time.tm_min = 5;
    return time;
}

class RelaxationLog : public testing::Test {
protected:
    void SetUp() override {
        g_options.TryRelaxSpecialHeuristicsLog = true;
        m_board.Thread().threadId = 12;
        SetHeur(m_board.Root(), SH_SAVEQUEENROOK | SH_AREKINGSNEAR);
    }

    // Runs one step with the log hung in; the two lines that are expected.
    std::string Relax(CRelaxationLog& log) {
        m_board.Context().relaxationLog = &log;
        const std::string before = HeuristicsText(m_board.Root());
        EXPECT_EQ(TryRelaxSpecialHeuristics(m_board.Root()), 1);
        return "2024-03-09 07:05:00 BEFORE th=12 " + before +
               "\n2024-03-09 07:05:00 AFTER  th=12 " + HeuristicsText(m_board.Root()) + "\n";
    }

    test::CKeptOptions m_options;
    test::CTemporaryFolder m_folder;
    test::CSearchBoard m_board{"8/8/8/3k4/8/8/8/KR5R w - - 0 1", 9};
    std::filesystem::path m_file = m_folder.Path() / "TryRelaxSpecialHeuristics.log";
};

TEST_F(RelaxationLog, Relaxation_IsTwoLinesAppended) {
    test::WriteFile(m_file, "older\n");
    CRelaxationLog log(m_folder.Path(), FixedTime);
    const std::string expected = Relax(log);
    EXPECT_EQ(test::ReadFile(m_file), "older\n" + expected);
}

TEST_F(RelaxationLog, DecisionByTime_IsToldBetweenThem) {
    CRelaxationLog log(m_folder.Path(), FixedTime);
    m_board.Context().relaxationLog = &log;
    LogRelaxation(m_board.Root(), true);
    LogRelaxationTime(m_board.Root(), "Time dependent relaxation near the limit");
    LogRelaxation(m_board.Root(), false);
    const std::string word = HeuristicsText(m_board.Root());
    EXPECT_EQ(test::ReadFile(m_file),
              "2024-03-09 07:05:00 BEFORE th=12 " + word +
                  "\nTime dependent relaxation near the limit\n2024-03-09 07:05:00 AFTER  th=12 " +
                  word + "\n");
}

TEST_F(RelaxationLog, OptionOff_WritesNothing) {
    g_options.TryRelaxSpecialHeuristicsLog = false;
    CRelaxationLog log(m_folder.Path(), FixedTime);
    Relax(log);
    EXPECT_FALSE(std::filesystem::exists(m_file));
}

TEST_F(RelaxationLog, MissingFolder_LosesTheLines) {
    CRelaxationLog nowhere(m_folder.Path() / "nowhere", FixedTime);
    Relax(nowhere);
    SetHeur(m_board.Root(), SH_SAVEQUEENROOK | SH_AREKINGSNEAR);
    CRelaxationLog none({}, FixedTime);
    Relax(none);
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Path()));
}

TEST_F(RelaxationLog, LastStep_IsToldToo) {
    SetHeur(m_board.Root(), SH_AREKINGSNEAR);
    CRelaxationLog log(m_folder.Path(), FixedTime);
    m_board.Context().relaxationLog = &log;
    ASSERT_EQ(TryRelaxSpecialHeuristics(m_board.Root()), 0);
    EXPECT_TRUE(
        test::ReadFile(m_file).ends_with("AFTER  th=12 " + HeuristicsText(m_board.Root()) + "\n"));
}

}  // namespace
}  // namespace quillmere
