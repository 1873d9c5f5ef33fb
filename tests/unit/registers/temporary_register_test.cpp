#include "core/fen.h"
#include "registers/temporary_register.h"
#include "tests/support/registers.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::kMegabyte;
using test::NumberedBoard;
using test::NumberedItem;

class VerdictTable : public testing::Test {
protected:
    VerdictTable() : m_table(Settings()) {}
    void SetUp() override { ASSERT_TRUE(m_table.ResizeTable(16, true)); }

    TRegisterSettings Settings() {
        TRegisterSettings settings = test::QuietSettings(16 * kMegabyte);
        settings.tickCount = m_clock.Function();
        settings.mayAllocate = m_gate.Function();
        settings.warnings = &m_warnings;
        settings.repaint = [this] { m_repaints.push_back(m_table.TableElementsIn()); };
        return settings;
    }
    void Insert(u16 nMoves, bool bThereIsMate, u8 pass = kPassScan, bool bHeuristics = false) {
        TChessboard board = NumberedBoard(1, nMoves);
        board.m_pass = pass;
        m_table.Insert(nMoves, board, bThereIsMate, bHeuristics);
    }
    TVerdict Find(u16 nMoves, u32 number = 1) const {
        return m_table.Find(nMoves, NumberedItem(number), Hash(NumberedItem(number)));
    }
    TVerdict FindQuicker(u16 nMoves, u16 floor) const {
        return m_table.FindForQuickerMate(nMoves, floor, NumberedItem(1), Hash(NumberedItem(1)));
    }
    // The two depths of the element, mate first.
    std::vector<u16> Depths() const {
        std::vector<u16> depths;
        m_table.Table().ForEach([&](const TRegisterElement& element) {
            if (element.item == NumberedItem(1))
                depths = {element.nMovesMate, element.nMovesNoMate};
        });
        return depths;
    }

    test::CKeptOptions m_options;
    test::CTestClock m_clock;
    test::CMemoryGate m_gate;
    test::CKeptWarnings m_warnings;
    std::vector<u32> m_repaints;
    TTemporaryChessboardRegister<false> m_table;
};
using Fields = std::vector<u16>;

TEST_F(VerdictTable, Find_SaysNoMateBelowAndMateAbove) {
    Insert(7, false);
    Insert(9, true);
    EXPECT_EQ(Find(1), kNoMate);
    EXPECT_EQ(Find(7), kNoMate);
    EXPECT_EQ(Find(8), kNothingKnown);
    EXPECT_EQ(Find(9), kMate);
    EXPECT_EQ(Find(10), kMate);
    EXPECT_EQ(Find(599), kMate);
    EXPECT_EQ(Find(9, 2), kNothingKnown);
    EXPECT_EQ(m_table.TableElementsIn(), 1U);
    EXPECT_EQ(m_table.GetElementsIn(), 1U);
}

TEST_F(VerdictTable, Find_KnowsNothingWhereOneDepthIsMissing) {
    Insert(7, false);
    EXPECT_EQ(Find(9), kNothingKnown);
    m_table.ClearTable(false, true);
    Insert(9, true);
    EXPECT_EQ(Find(7), kNothingKnown);
    EXPECT_EQ(Find(9), kMate);
}

TEST_F(VerdictTable, FindForQuickerMate_TellsALongerMateFromTheFloorOn) {
    Insert(11, true);
    EXPECT_EQ(FindQuicker(9, 7), kLongerMate);
    EXPECT_EQ(FindQuicker(9, 9), kLongerMate);
    EXPECT_EQ(FindQuicker(9, 10), kNothingKnown);
    EXPECT_EQ(FindQuicker(11, 7), kMate);
    EXPECT_EQ(FindQuicker(13, 20), kMate);
    Insert(9, false);
    EXPECT_EQ(FindQuicker(9, 7), kNoMate);
}

TEST_F(VerdictTable, FindForQuickerMate_WithoutAMateKnowsNothing) {
    Insert(5, false);
    EXPECT_EQ(FindQuicker(9, 1), kNothingKnown);
    EXPECT_EQ(m_table.FindForQuickerMate(9, 1, NumberedItem(2), Hash(NumberedItem(2))),
              kNothingKnown);
}

TEST_F(VerdictTable, Depths_OnlyGetBetter) {
    Insert(13, true);
    Insert(15, true);
    EXPECT_EQ(Depths(), (Fields{13, 0}));
    Insert(11, true);
    EXPECT_EQ(Depths(), (Fields{11, 0}));
    Insert(5, false);
    Insert(3, false);
    EXPECT_EQ(Depths(), (Fields{11, 5}));
    Insert(9, false);
    EXPECT_EQ(Depths(), (Fields{11, 9}));
    EXPECT_EQ(m_table.IncoherentElements(), 0U);
}

TEST_F(VerdictTable, MateBelowANoMate_IsMendedInAPassBeforeTheComplete) {
    for (const u8 pass : {kPassScan, kPassHeuristics}) {
        m_table.ClearTable(false, true);
        Insert(7, false, pass);
        Insert(5, true, pass);
        EXPECT_EQ(Depths(), (Fields{5, 3}));
    }
    EXPECT_TRUE(m_warnings.texts.empty());
    EXPECT_EQ(m_table.IncoherentElements(), 2U);
}

TEST_F(VerdictTable, MateInOneBelowANoMate_LeavesNoNoMate) {
    Insert(7, false);
    Insert(1, true);
    EXPECT_EQ(Depths(), (Fields{1, 0}));
    EXPECT_EQ(Find(1), kMate);
}

TEST_F(VerdictTable, NoMateAboveAMate_IsMendedToo) {
    Insert(5, true);
    Insert(5, false);
    EXPECT_EQ(Depths(), (Fields{5, 3}));
    EXPECT_EQ(m_table.IncoherentElements(), 1U);
}

TEST_F(VerdictTable, CompletePass_LeavesAContradictionAndWarns) {
    Insert(7, false, kPassComplete);
    Insert(5, true, kPassComplete);
    EXPECT_EQ(Depths(), (Fields{5, 7}));
    EXPECT_EQ(Find(7), kNoMate);
    ASSERT_EQ(m_warnings.texts.size(), 1U);
    EXPECT_EQ(m_warnings.titles.front(), "Error");
    EXPECT_EQ(m_warnings.texts.front(),
              GetFENCode(NumberedBoard(1, 5)) +
                  "\n\nnMoves=5, bThereIsMate=1\nMovesMate=5, MovesNoMate=7");
    EXPECT_EQ(m_table.IncoherentElements(), 1U);
    // It is the same contradiction still: told again, but counted once.
    Insert(9, false, kPassComplete);
    EXPECT_EQ(m_warnings.texts.size(), 2U);
    EXPECT_NE(m_warnings.texts.back().find("nMoves=9, bThereIsMate=0\nMovesMate=5, MovesNoMate=9"),
              std::string::npos);
    EXPECT_EQ(m_table.IncoherentElements(), 1U);
}

TEST_F(VerdictTable, PassWithHeuristics_LeavesAContradictionToo) {
    Insert(7, false, kPassHeuristics, true);
    Insert(5, true, kPassHeuristics, true);
    EXPECT_EQ(Depths(), (Fields{5, 7}));
    EXPECT_EQ(m_warnings.texts.size(), 1U);
}

TEST_F(VerdictTable, Contradiction_IsNotToldWithTheOptionOff) {
    g_options.CheckTempRegCoherency = false;
    Insert(7, false, kPassComplete);
    Insert(5, true, kPassComplete);
    EXPECT_TRUE(m_warnings.texts.empty());
    EXPECT_EQ(Depths(), (Fields{5, 7}));
    EXPECT_EQ(m_table.IncoherentElements(), 1U);
}

TEST_F(VerdictTable, InsertLoaded_MendsSilently) {
    m_table.InsertLoaded(7, NumberedItem(1), false);
    m_table.InsertLoaded(5, NumberedItem(1), true);
    EXPECT_EQ(Depths(), (Fields{5, 3}));
    EXPECT_TRUE(m_warnings.texts.empty());
}

TEST_F(VerdictTable, OneColourPlay_IsAnotherKey) {
    TChessboard board = NumberedBoard(1);
    board.m_captureState = kOneColourParity0;
    m_table.Insert(9, board, true);
    EXPECT_EQ(Find(9), kNothingKnown);
    EXPECT_EQ(m_table.Find(9, MakeRegisterItem(board), Hash(MakeRegisterItem(board))), kMate);
}

TEST_F(VerdictTable, TableWithoutBuckets_StoresNothing) {
    TTemporaryChessboardRegister<false> table(test::QuietSettings(kMegabyte));
    table.Insert(9, NumberedBoard(1), true);
    EXPECT_EQ(table.TableElementsIn(), 0U);
    EXPECT_EQ(table.Find(9, NumberedItem(1), Hash(NumberedItem(1))), kNothingKnown);
}

TEST_F(VerdictTable, RefusedInsert_IsForgottenWithoutATrace) {
    m_gate.Refuse();
    EXPECT_NO_THROW(Insert(9, true));
    m_gate.Open();
    EXPECT_EQ(m_table.TableElementsIn(), 0U);
    EXPECT_EQ(Find(9), kNothingKnown);
    EXPECT_FALSE(m_table.TableLock().IsHeldByThisThread());
    Insert(9, true);
    EXPECT_EQ(m_table.TableElementsIn(), 1U);
}

TEST_F(VerdictTable, Sweep_LowersTheCount) {
    for (u32 i = 0; i < 100; ++i)
        m_table.Insert(i < 60 ? 5 : 9, NumberedBoard(i), true);
    u32 removed = 0;
    for (int sweep = 0; sweep < 4; ++sweep)
        removed += m_table.SweepTable(5, 5);
    EXPECT_EQ(removed, 60U);
    EXPECT_EQ(m_table.TableElementsIn(), 40U);
}

TEST_F(VerdictTable, LoweredDepths_AreSeenByTheNextSweep) {
    Insert(9, true);
    EXPECT_EQ(m_table.SweepTable(3, 3), 0U);
    Insert(5, true);
    EXPECT_EQ(m_table.SweepTable(5, 5), 1U);
    // By mending too: of mate 13 and no mate 15, mate 13 and no mate 11 are left.
    Insert(15, false);
    EXPECT_EQ(m_table.SweepTable(3, 3), 0U);
    Insert(13, true);
    EXPECT_EQ(m_table.SweepTable(13, 13), 1U);
}

TEST_F(VerdictTable, ClearTable_EmptiesTableAndMap) {
    Insert(9, true);
    m_table.TChessboardRegister<bool>::Insert(9, NumberedBoard(1), true, MakeMove(1, 2));
    EXPECT_EQ(m_table.MapElementsIn(), 1U);
    m_table.ClearTable(false, false);
    EXPECT_EQ(m_table.TableElementsIn(), 0U);
    EXPECT_EQ(m_table.MapElementsIn(), 0U);
    EXPECT_TRUE(m_table.Table().HasArray());
    m_table.ClearTable(true, false);
    EXPECT_FALSE(m_table.Table().HasArray());
    EXPECT_EQ(m_table.BytesUsed(), 0U);
}

TEST_F(VerdictTable, Resize_SetsTheCount) {
    Insert(9, true);
    EXPECT_TRUE(m_table.ResizeTable(16, true));
    EXPECT_EQ(m_table.TableElementsIn(), 1U);
    EXPECT_TRUE(m_table.ResizeTable(16, false));
    EXPECT_EQ(m_table.TableElementsIn(), 0U);
    Insert(9, true);
    EXPECT_TRUE(m_table.ResizeTable(32, true));
    EXPECT_EQ(m_table.TableElementsIn(), 0U);
}

TEST_F(VerdictTable, Clearing_RepaintsAtMostEvery600Milliseconds) {
    ASSERT_TRUE(m_table.ResizeTable(8192, true));
    for (u32 i = 0; i < 300; ++i)
        m_table.Insert(9, NumberedBoard(i), true);
    // The clock stands still.
    m_table.ClearTable(false, false);
    EXPECT_TRUE(m_repaints.empty());
    for (u32 i = 0; i < 300; ++i)
        m_table.Insert(9, NumberedBoard(i), true);
    m_table.ClearTable(false, true);
    EXPECT_TRUE(m_repaints.empty());
}

// Every look at the clock takes a step, so that each group of 1,024 buckets is one.
TEST(VerdictTableRepaint, Clearing_ShowsTheFallingCount) {
    for (const auto& [step, repaints] :
         std::vector<std::pair<u64, std::size_t>>{{600, 8}, {599, 4}, {300, 4}, {0, 0}}) {
        u64 now = 0;
        std::vector<u32> counts;
        TTemporaryChessboardRegister<false>* shown = nullptr;
        TRegisterSettings settings = test::QuietSettings(64 * kMegabyte);
        settings.tickCount = [&now, add = step] { return now += add; };
        settings.repaint = [&] { counts.push_back(shown->TableElementsIn()); };
        TTemporaryChessboardRegister<false> table(settings);
        shown = &table;
        ASSERT_TRUE(table.ResizeTable(8192, true));
        for (u32 i = 0; i < 300; ++i)
            table.Insert(9, NumberedBoard(i), true);
        table.ClearTable(false, false);
        EXPECT_EQ(counts.size(), repaints) << step;
        EXPECT_TRUE(std::is_sorted(counts.rbegin(), counts.rend()));
        EXPECT_TRUE(counts.empty() || counts.back() < 300);
        EXPECT_EQ(table.TableElementsIn(), 0U);
        // Not when it is forbidden.
        counts.clear();
        table.ClearTable(false, true);
        EXPECT_TRUE(counts.empty());
    }
}

// Doubtful verdicts

class DoubtfulTable : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_table.ResizeTable(16, true)); }
    TVerdict FindDoubtful(u16 nMoves) const { return m_table.FindDoubtful(nMoves, m_item, m_hash); }
    TVerdict FindNotDoubtful(u16 doubtful, u16 notDoubtful) const {
        return m_table.FindNotDoubtful(doubtful, notDoubtful, m_item, m_hash);
    }

    TChessboardRegisterItem m_item = NumberedItem(1);
    u32 m_hash = Hash(m_item);
    TTemporaryChessboardRegister<true> m_table{test::QuietSettings(16 * kMegabyte)};
};

TEST_F(DoubtfulTable, Doubtful_HoldsUpToItsDepth) {
    EXPECT_EQ(FindDoubtful(7), kNothingKnown);
    m_table.InsertDoubtful(7, m_item, false);
    EXPECT_EQ(FindDoubtful(5), kNoMate);
    EXPECT_EQ(FindDoubtful(7), kNoMate);
    EXPECT_EQ(FindDoubtful(9), kNothingKnown);
}

TEST_F(DoubtfulTable, NotDoubtful_IsNothingForFindDoubtful) {
    m_table.InsertDoubtful(7, m_item, true);
    EXPECT_EQ(FindDoubtful(5), kNothingKnown);
}

TEST_F(DoubtfulTable, Fields_AreRaisedAndNeverCompared) {
    m_table.InsertDoubtful(7, m_item, false);
    m_table.InsertDoubtful(5, m_item, false);
    EXPECT_EQ(FindDoubtful(7), kNoMate);
    m_table.InsertDoubtful(9, m_item, true);
    m_table.InsertDoubtful(3, m_item, true);
    EXPECT_EQ(FindDoubtful(7), kNoMate);
    m_table.InsertDoubtful(11, m_item, false);
    EXPECT_EQ(FindDoubtful(11), kNoMate);
    EXPECT_EQ(FindNotDoubtful(13, 9), 1);
    EXPECT_EQ(m_table.TableElementsIn(), 1U);
    EXPECT_EQ(m_table.IncoherentElements(), 0U);
}

TEST_F(DoubtfulTable, FindNotDoubtful_WeighsBothFields) {
    EXPECT_EQ(FindNotDoubtful(5, 5), kNothingKnown);
    m_table.InsertDoubtful(9, m_item, true);
    EXPECT_EQ(FindNotDoubtful(1, 9), 1);
    EXPECT_EQ(FindNotDoubtful(1, 11), 0);
    m_table.InsertDoubtful(5, m_item, false);
    EXPECT_EQ(FindNotDoubtful(5, 9), 0);
    EXPECT_EQ(FindNotDoubtful(7, 9), 1);
}

TEST_F(DoubtfulTable, FindNotDoubtful_WithoutTheFirstFieldIsNo) {
    m_table.InsertDoubtful(5, m_item, false);
    EXPECT_EQ(FindNotDoubtful(99, 0), 0);
    EXPECT_EQ(FindNotDoubtful(99, 1), 0);
}

}  // namespace
}  // namespace quillmere
