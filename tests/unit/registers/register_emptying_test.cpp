#include "registers/aggregated_register.h"
#include "tests/support/registers.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::kMegabyte;
using test::NumberedBoard;

constexpr u32 kHeur = 4;
constexpr u32 kParams = 5;
constexpr u64 kPause = 16;

class Emptying : public testing::Test {
protected:
    Emptying() : m_register(Settings(kMegabyte)) {}
    void SetUp() override {
        g_options.RegisterInfoLog = true;
        ASSERT_TRUE(m_register.Resize(kBucketsLarge, true));
    }
    TRegisterSettings Settings(u64 bytes) {
        TRegisterSettings settings = test::QuietSettings(bytes);
        settings.tickCount = m_clock.Function();
        settings.mayAllocate = m_gate.Function();
        settings.programFolder = m_folder.Path();
        return settings;
    }
    void Fill(u16 nMoves, u32 first, u32 count) {
        for (u32 i = 0; i < count; ++i)
            m_register.Insert(nMoves, NumberedBoard(first + i), true);
    }
    // How many of the positions are still known as mates.
    u32 CountOf(u16 nMoves, u32 first, u32 count) const {
        u32 found = 0;
        for (u32 i = 0; i < count; ++i)
            found += static_cast<u32>(
                m_register.FindInRegister(nMoves, NumberedBoard(first + i), 0, 0) == kMate);
        return found;
    }
    void Empty(bool bHard = false) { m_register.EmptySomeDataWhenRegisterFull(bHard); }
    std::string TakeLog() {
        const auto file = m_folder.Path() / "registerInfo.log";
        std::string text;
        if (std::filesystem::exists(file))
            text = test::ReadFile(file);
        std::filesystem::remove(file);
        return text;
    }
    bool HasLogged(const std::string& message) {
        const std::string log = TakeLog();
        return log.find(message) != std::string::npos;
    }

    test::CKeptOptions m_options;
    test::CTemporaryFolder m_folder;
    test::CTestClock m_clock;
    test::CMemoryGate m_gate;
    TAggregatedTemporaryChessboardRegister m_register;
};

TEST_F(Emptying, ShallowestVerdicts_GoFirst) {
    Fill(9, 0, 2'000);
    Fill(5, 10'000, 5'000);
    Empty();
    EXPECT_EQ(CountOf(9, 0, 2'000), 2'000U);
    EXPECT_LT(CountOf(5, 10'000, 5'000), 1'000U);
    EXPECT_TRUE(HasLogged("EmptySomeDataWhenRegisterFull complete"));
}

TEST_F(Emptying, EnoughThreeMovers_SpareTheRest) {
    Fill(3, 0, 6'500);
    Fill(5, 10'000, 1'000);
    Empty();
    EXPECT_LT(CountOf(3, 0, 6'500), 2'000U);
    EXPECT_EQ(CountOf(5, 10'000, 1'000), 1'000U);
    // More than a third of the limit was gained, so they are worth keeping.
    EXPECT_TRUE(m_register.KeepsThreeMovers());
}

TEST_F(Emptying, UnpinnedDoubt_GoesBeforeEverything) {
    Fill(3, 0, 1'000);
    for (u32 i = 0; i < 4'500; ++i)
        m_register.InsertDoubtful(9, NumberedBoard(i), kHeur, kParams);
    ASSERT_EQ(m_register.GetDoubtfulElementsIn(), 4'500U);
    Empty();
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 0U);
    EXPECT_EQ(CountOf(3, 0, 1'000), 1'000U);
}

TEST_F(Emptying, PinnedDoubt_IsSweptByDepthOnly) {
    for (u32 i = 0; i < 500; ++i)
        m_register.InsertDoubtful(i < 250 ? 3 : 99, NumberedBoard(i), kHeur, kParams);
    m_register.PinDoubtful(kHeur, kParams);
    Empty();
    EXPECT_GE(m_register.GetDoubtfulElementsIn(), 250U);
    EXPECT_EQ(m_register.FindInRegister(99, NumberedBoard(499), kHeur, kParams), kDoubtful);
}

TEST_F(Emptying, SecondCallWithinSixteenMilliseconds_RemovesNothing) {
    Empty();
    Fill(5, 0, 100);
    TakeLog();
    for (const u64 step : {u64{0}, u64{10}, kPause - 10}) {
        m_clock.Advance(step);
        Empty();
        EXPECT_EQ(m_register.TableElementsIn(), 100U);
    }
    // It is told that it began, and no more.
    const std::string log = TakeLog();
    EXPECT_NE(log.find("EmptySomeDataWhenRegisterFull started, msg params: 0, 0\n"),
              std::string::npos);
    EXPECT_EQ(log.find("complete"), std::string::npos);
    m_clock.Advance(1);
    Empty();
    EXPECT_LT(m_register.TableElementsIn(), 100U);
    EXPECT_TRUE(HasLogged("complete"));
}

TEST_F(Emptying, FirstCallOfARegister_IsNotASecondOne) {
    Fill(5, 0, 100);
    Empty();
    EXPECT_LT(m_register.TableElementsIn(), 100U);
}

TEST_F(Emptying, HardCallWithAQuarterFree_DoesNothing) {
    const u32 limit = m_register.ElementLimit();
    Fill(5, 0, limit / 2);
    Empty(true);
    EXPECT_EQ(m_register.TableElementsIn(), limit / 2);
    const std::string log = TakeLog();
    EXPECT_NE(log.find("EmptySomeDataWhenRegisterFull started, msg params: 1, 0\n"),
              std::string::npos);
    EXPECT_EQ(log.find("complete"), std::string::npos);
    // It did not count as an emptying.
    Empty(false);
    EXPECT_LT(m_register.TableElementsIn(), limit / 2);
}

TEST_F(Emptying, ThreeMovers_AreNotKeptFromThenOnUntilTheRegisterIsCleared) {
    Fill(9, 0, 7'900);
    Empty();
    ASSERT_FALSE(m_register.KeepsThreeMovers());
    m_register.Clear(-1, true);
    const auto insert = [&](u16 nMoves, u32 number) {
        m_register.Insert(nMoves, NumberedBoard(number), true);
        m_register.InsertDoubtful(nMoves, NumberedBoard(number), kHeur, kParams);
        m_register.InsertDoubtfulResult(nMoves, NumberedBoard(number), kHeur, kParams, false);
    };
    const u32 before = m_register.GetElementsIn();
    insert(3, 100'000);
    EXPECT_EQ(m_register.GetElementsIn(), before);
    insert(4, 100'001);
    EXPECT_EQ(m_register.GetElementsIn(), before + 2);
    // An emptied setting does not bring them back.
    m_register.RemoveDoubtful(kHeur, kParams);
    m_register.TChessboardRegister<bool>::Insert(3, NumberedBoard(1), true, MakeMove(1, 2));
    insert(3, 100'000);
    EXPECT_EQ(m_register.GetElementsIn(), before + 1);

    m_register.Clear(0, true);
    EXPECT_TRUE(m_register.KeepsThreeMovers());
    ASSERT_TRUE(m_register.Resize(64, true));
    insert(3, 100'000);
    EXPECT_EQ(m_register.GetElementsIn(), 2U);
}

TEST_F(Emptying, NothingToFree_EndsAndSaysSo) {
    Fill(301, 0, m_register.ElementLimit());
    const u32 full = m_register.TableElementsIn();
    Empty();
    EXPECT_EQ(m_register.TableElementsIn(), full);
    const std::string log = TakeLog();
    EXPECT_NE(log.find("!!!! EmptySomeDataWhenRegisterFull failed.,"), std::string::npos);
    EXPECT_NE(log.find("EmptySomeDataWhenRegisterFull complete,"), std::string::npos);
    EXPECT_NE(log.find("TAggregatedTemporaryChessboardRegister::RemoveNMovers start., msg params: "
                       "255, 0\n"),
              std::string::npos);
    // The next verdict is dropped.
    m_clock.Advance(100);
    m_register.InsertVerdict(301, NumberedBoard(1'000'000), true);
    EXPECT_EQ(m_register.FindInRegister(301, NumberedBoard(1'000'000), 0, 0), kNothingKnown);
}

TEST_F(Emptying, MemoryThatTheSystemRefuses_IsSearchedForToTheEnd) {
    Fill(9, 0, 2'000);
    Fill(255, 10'000, 1'000);
    m_gate.Refuse();
    Empty();
    m_gate.Open();
    // The probe failed at every depth, so everything was given up, but for what the last sweep of
    // linear buckets skipped.
    EXPECT_EQ(CountOf(9, 0, 2'000), 0U);
    EXPECT_LT(m_register.TableElementsIn(), 500U);
    EXPECT_TRUE(HasLogged("!!!! EmptySomeDataWhenRegisterFull failed."));
}

TEST_F(Emptying, Verdicts_GoOnBeingStoredAtTheLimit) {
    const u32 limit = m_register.ElementLimit();
    u32 stored = 0;
    for (u32 i = 0; i < 5 * limit; ++i) {
        m_register.InsertVerdict(static_cast<u16>(3 + i % 20 / 2 * 2), NumberedBoard(i), true);
        m_clock.Advance(1);
        stored += static_cast<u32>(m_register.FindInRegister(599, NumberedBoard(i), 0, 0) == kMate);
        ASSERT_LE(m_register.TableElementsIn(), limit);
        ASSERT_LE(m_register.BytesUsed(), m_register.ByteLimit());
    }
    EXPECT_GT(stored, 4 * limit);
    u32 counted = 0;
    m_register.Table().ForEach([&](const TRegisterElement&) { ++counted; });
    EXPECT_EQ(counted, m_register.TableElementsIn());
    EXPECT_EQ(m_register.IncoherentElements(), 0U);
}

// Sparse sub-registers use far more than 96 bytes an element, so that the bytes run out first.
TEST_F(Emptying, RegisterFullOfBytes_GetsRoomAgain) {
    u32 failures = 0;
    for (u32 i = 0; i < 60'000; ++i) {
        m_register.InsertDoubtful(static_cast<u16>(5 + i % 8), NumberedBoard(i), i % 12, kParams);
        m_clock.Advance(1);
        ASSERT_LE(m_register.BytesUsed(), m_register.ByteLimit());
        failures += static_cast<u32>(
            m_register.FindInRegister(5, NumberedBoard(i), i % 12, kParams) != kDoubtful);
    }
    EXPECT_TRUE(HasLogged("EmptySomeDataWhenRegisterFull complete"));
    EXPECT_LT(failures, 30'000U);
    EXPECT_LE(m_register.GetElementsIn(), m_register.ElementLimit());
    u32 counted = 0;
    m_register.ForEachSubRegister([&](u32, u32, const auto& sub) {
        sub.Table().ForEach([&](const TRegisterElement&) { ++counted; });
    });
    EXPECT_EQ(counted, m_register.GetDoubtfulElementsIn());
}

TEST_F(Emptying, BytesOfARegister_ComeDownToNothing) {
    Fill(5, 0, 5'000);
    for (u32 i = 0; i < 1'000; ++i)
        m_register.InsertDoubtful(9, NumberedBoard(i), kHeur, kParams);
    m_register.TChessboardRegister<bool>::Insert(9, NumberedBoard(1), true, MakeMove(1, 2));
    EXPECT_GT(m_register.BytesUsed(), 6'000U * 68);
    m_register.Clear(0, true);
    EXPECT_LT(m_register.BytesUsed(), 100U);
}

TEST_F(Emptying, MapStoreAtTheLimit_HasTheAggregateEmptied) {
    Fill(5, 0, m_register.ElementLimit());
    ASSERT_GE(m_register.GetElementsIn(), m_register.ElementLimit());
    m_register.TChessboardRegister<bool>::Insert(9, NumberedBoard(1), true, MakeMove(1, 2));
    EXPECT_EQ(m_register.FindMove(9, NumberedBoard(1)), kMate);
    EXPECT_LT(m_register.GetElementsIn(), m_register.ElementLimit());
}

TEST_F(Emptying, SettingsThatAreDoneWith_GiveTheirBucketsBack) {
    for (u32 setting = 0; setting < 3'000; ++setting) {
        m_clock.Advance(kPause + 1);
        m_register.InsertDoubtful(9, NumberedBoard(setting), setting, kParams);
        // The first insert behind the limit is forgotten, and makes room for the next.
        m_register.InsertDoubtful(9, NumberedBoard(setting), setting, kParams);
        ASSERT_EQ(m_register.FindInRegister(9, NumberedBoard(setting), setting, kParams), kDoubtful)
            << setting;
    }
    EXPECT_TRUE(HasLogged("EmptySomeDataWhenRegisterFull complete"));
}

TEST_F(Emptying, PinnedSetting_KeepsItsPlaceEvenIfEmpty) {
    m_register.InsertDoubtful(9, NumberedBoard(1), 1, kParams);
    m_register.InsertDoubtful(9, NumberedBoard(1), 2, kParams);
    m_register.RemoveDoubtful(1, kParams);
    m_register.RemoveDoubtful(2, kParams);
    m_register.PinDoubtful(2, kParams);
    m_gate.Refuse();
    Empty();
    m_gate.Open();
    std::vector<u32> left;
    m_register.ForEachSubRegister(
        [&](u32 heuristics, u32, const auto&) { left.push_back(heuristics); });
    EXPECT_EQ(left, std::vector<u32>{2});
    EXPECT_EQ(m_register.RemoveDoubtful(2, kParams), 0U);
}

TEST_F(Emptying, SmallLimits_HoldWhateverTheSize) {
    g_options.RegisterInfoLog = false;
    for (const u64 bytes : {u64{0}, u64{100}, u64{1000}, u64{5'000}, u64{50'000}, kMegabyte / 2}) {
        TAggregatedTemporaryChessboardRegister store(Settings(bytes));
        store.Resize(kBucketsLarge, true);
        for (u32 i = 0; i < 500; ++i) {
            store.InsertVerdict(9, NumberedBoard(i), true);
            store.InsertDoubtful(9, NumberedBoard(i), i % 3, kParams);
            store.TChessboardRegister<bool>::Insert(9, NumberedBoard(i), true, MakeMove(1, 2));
            ASSERT_LE(store.BytesUsed(), bytes);
            m_clock.Advance(5);
        }
    }
}

}  // namespace
}  // namespace quillmere
