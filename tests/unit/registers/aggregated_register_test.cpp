#include "registers/aggregated_register.h"
#include "tests/support/registers.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

using test::kMegabyte;
using test::NumberedBoard;

constexpr u32 kHeur = 0x80000010;
constexpr u32 kParams = 0xf0000001;

class AggregatedRegister : public testing::Test {
protected:
    AggregatedRegister() : m_register(Settings()) {}
    void SetUp() override { ASSERT_TRUE(m_register.Resize(64, true)); }

    TRegisterSettings Settings() {
        TRegisterSettings settings = test::QuietSettings(16 * kMegabyte);
        settings.tickCount = m_clock.Function();
        settings.mayAllocate = m_gate.Function();
        return settings;
    }
    void Insert(u16 nMoves, bool bThereIsMate, u32 number = 1) {
        m_register.InsertVerdict(nMoves, NumberedBoard(number), bThereIsMate);
    }
    void Doubt(u16 nMoves, u32 number = 1, u32 heuristics = kHeur) {
        m_register.InsertDoubtful(nMoves, NumberedBoard(number), heuristics, kParams);
    }
    void NoDoubt(u16 nMoves, u32 number = 1) {
        m_register.InsertDoubtfulResult(nMoves, NumberedBoard(number), kHeur, kParams, false);
    }
    TVerdict Find(u16 nMoves, u32 number = 1, u32 heuristics = kHeur) const {
        return m_register.FindInRegister(nMoves, NumberedBoard(number), heuristics, kParams);
    }
    TVerdict FindNotDoubtful(u16 doubtful, u16 notDoubtful) const {
        return m_register.FindNotDoubtfulInRegister(
            doubtful, notDoubtful, NumberedBoard(1), kHeur, kParams);
    }
    u32 Remove(u32 heuristics = kHeur) { return m_register.RemoveDoubtful(heuristics, kParams); }
    u32 SubRegisters() const {
        u32 count = 0;
        m_register.ForEachSubRegister([&](u32, u32, const auto&) { ++count; });
        return count;
    }

    test::CTestClock m_clock;
    test::CMemoryGate m_gate;
    TAggregatedTemporaryChessboardRegister m_register;
};

// Look-ups

TEST_F(AggregatedRegister, EmptyRegister_KnowsNothing) {
    EXPECT_EQ(Find(9), kNothingKnown);
    EXPECT_EQ(FindNotDoubtful(5, 5), -1);
    EXPECT_EQ(m_register.FindLowestMate(599, NumberedBoard(1), kHeur, kParams), kNothingKnown);
    EXPECT_EQ(m_register.GetElementsIn(), 0U);
}

TEST_F(AggregatedRegister, OwnVerdicts_HoldUnderAllHeuristics) {
    Insert(9, true);
    EXPECT_EQ(Find(9), kMate);
    EXPECT_EQ(Find(9, 1, 0), kMate);
    EXPECT_EQ(Find(7), kNothingKnown);
}

TEST_F(AggregatedRegister, DoubtfulVerdict_HoldsUnderItsHeuristicsOnly) {
    Doubt(9);
    EXPECT_EQ(Find(9), kDoubtful);
    EXPECT_EQ(Find(7), kDoubtful);
    EXPECT_EQ(Find(11), kNothingKnown);
    EXPECT_EQ(Find(9, 1, 0), kNothingKnown);
    EXPECT_EQ(m_register.FindInRegister(9, NumberedBoard(1), kHeur, 0), kNothingKnown);
    EXPECT_EQ(m_register.FindInRegister(9, NumberedBoard(1), kParams, kHeur), kNothingKnown);
}

TEST_F(AggregatedRegister, OwnNoMate_IsNotLookedForInASubRegister) {
    Doubt(9);
    Insert(7, false);
    EXPECT_EQ(Find(7), kNoMate);
    EXPECT_EQ(Find(9), kDoubtful);
}

TEST_F(AggregatedRegister, QuickerLookUp_TellsLongerMatesAndDoubt) {
    Insert(11, true);
    const auto find = [&](u16 nMoves, u16 floor) {
        return m_register.FindInRegisterQuicker(nMoves, floor, NumberedBoard(1), kHeur, kParams);
    };
    EXPECT_EQ(find(11, 7), kMate);
    EXPECT_EQ(find(9, 7), kLongerMate);
    EXPECT_EQ(find(9, 10), kNothingKnown);
    Doubt(9);
    EXPECT_EQ(find(9, 10), kDoubtful);
    EXPECT_EQ(find(9, 7), kLongerMate);
}

TEST_F(AggregatedRegister, NotDoubtful_IsToldBySubRegisterAlone) {
    Insert(9, true);
    EXPECT_EQ(FindNotDoubtful(5, 5), -1);
    Doubt(5, 2);
    EXPECT_EQ(FindNotDoubtful(5, 5), -1);
    NoDoubt(9);
    EXPECT_EQ(FindNotDoubtful(5, 9), 1);
    EXPECT_EQ(FindNotDoubtful(5, 11), 0);
    Doubt(7);
    EXPECT_EQ(FindNotDoubtful(5, 9), 0);
    EXPECT_EQ(FindNotDoubtful(9, 9), 1);
}

TEST_F(AggregatedRegister, LowestMate_IsTheDepthOfTheElement) {
    Insert(5, true);
    const auto lowest = [&](u16 nMoves) {
        return m_register.FindLowestMate(nMoves, NumberedBoard(1), kHeur, kParams);
    };
    EXPECT_EQ(lowest(9), 5);
    EXPECT_EQ(lowest(5), 5);
    EXPECT_EQ(lowest(kLowestMateStart), 5);
    EXPECT_EQ(lowest(3), kNothingKnown);
    EXPECT_EQ(lowest(8), 6);  // even depths are asked in their own row
    Insert(3, false);
    EXPECT_EQ(lowest(9), 5);
    EXPECT_EQ(lowest(3), kNoMate);
    Insert(1, true, 2);
    EXPECT_EQ(m_register.FindLowestMate(9, NumberedBoard(2), kHeur, kParams), 1);
    EXPECT_EQ(m_register.FindLowestMate(1, NumberedBoard(2), kHeur, kParams), 1);
    Doubt(9, 3);
    EXPECT_EQ(m_register.FindLowestMate(9, NumberedBoard(3), kHeur, kParams), kDoubtful);
}

TEST_F(AggregatedRegister, OneColourPlay_IsAnotherKeyForDoubtToo) {
    TChessboard board = NumberedBoard(1);
    board.m_captureState = kOneColourParity1;
    m_register.InsertDoubtful(9, board, kHeur, kParams);
    EXPECT_EQ(Find(9), kNothingKnown);
    EXPECT_EQ(m_register.FindInRegister(9, board, kHeur, kParams), kDoubtful);
}

// Counts

TEST_F(AggregatedRegister, Counts_AreTheSumOfTableDoubtAndMap) {
    Insert(9, true, 1);
    Insert(9, true, 2);
    Doubt(9, 1);
    Doubt(9, 1);
    Doubt(9, 2, 7);
    NoDoubt(9, 3);
    m_register.TChessboardRegister<bool>::Insert(9, NumberedBoard(1), true, MakeMove(1, 2));
    EXPECT_EQ(m_register.TableElementsIn(), 2U);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 3U);
    EXPECT_EQ(m_register.MapElementsIn(), 1U);
    EXPECT_EQ(m_register.GetElementsIn(), 6U);
    const TRegisterFigures figures = m_register.Figures();
    EXPECT_EQ(figures.elements, 6U);
    EXPECT_EQ(figures.doubtfulElements, 3U);
    EXPECT_EQ(figures.bytesUsed, m_register.BytesUsed());
    EXPECT_EQ(figures.byteLimit, 16 * kMegabyte);
    EXPECT_EQ(SubRegisters(), 2U);
}

TEST_F(AggregatedRegister, LimitOfNothing_StoresNothingAndEmptiesNothing) {
    const test::CKeptOptions options;
    g_options.RegisterInfoLog = true;
    const test::CTemporaryFolder folder;
    TRegisterSettings settings = test::QuietSettings(0);
    settings.programFolder = folder.Path();
    TAggregatedTemporaryChessboardRegister store(settings);
    EXPECT_FALSE(store.Resize(kBucketsSmall, true));
    store.InsertVerdict(9, NumberedBoard(1), true);
    store.InsertDoubtful(9, NumberedBoard(1), kHeur, kParams);
    store.InsertDoubtfulResult(9, NumberedBoard(1), kHeur, kParams, false);
    store.Insert(9, NumberedBoard(1), true);
    EXPECT_EQ(store.GetElementsIn(), 0U);
    EXPECT_EQ(store.FindInRegister(9, NumberedBoard(1), kHeur, kParams), kNothingKnown);
    EXPECT_EQ(store.BytesUsed(), 0U);
    // Emptying would have told of itself.
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(AggregatedRegister, RegisterBeforeItsFirstResize_StoresNothing) {
    TAggregatedTemporaryChessboardRegister store(test::QuietSettings(kMegabyte));
    store.InsertVerdict(9, NumberedBoard(1), true);
    store.InsertDoubtful(9, NumberedBoard(1), kHeur, kParams);
    EXPECT_EQ(store.GetElementsIn(), 0U);
    EXPECT_EQ(store.BytesUsed(), 0U);
}

// Pins

TEST_F(AggregatedRegister, KeyPinnedTwice_NeedsThreeRemovals) {
    Doubt(9, 1);
    Doubt(9, 2);
    m_register.PinDoubtful(kHeur, kParams);
    m_register.PinDoubtful(kHeur, kParams);
    EXPECT_EQ(Remove(), 0U);
    EXPECT_EQ(Remove(), 0U);
    EXPECT_EQ(Find(9), kDoubtful);
    EXPECT_EQ(Remove(), 2U);
    EXPECT_EQ(Find(9), kNothingKnown);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 0U);
    EXPECT_EQ(Remove(), 0U);
}

TEST_F(AggregatedRegister, RemovedSetting_KeepsItsObjectAndWorksAgain) {
    Doubt(9);
    EXPECT_EQ(Remove(), 1U);
    EXPECT_EQ(SubRegisters(), 1U);
    m_register.ForEachSubRegister([&](u32 heuristics, u32 params, const auto& sub) {
        EXPECT_EQ(heuristics, kHeur);
        EXPECT_EQ(params, kParams);
        EXPECT_TRUE(sub.Table().HasArray());
        EXPECT_EQ(sub.TableElementsIn(), 0U);
    });
    Doubt(9);
    EXPECT_EQ(Find(9), kDoubtful);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 1U);
}

TEST_F(AggregatedRegister, RemovalOfAnUnknownSetting_IsNothing) {
    EXPECT_EQ(Remove(), 0U);
    m_register.PinDoubtful(kHeur, kParams);
    EXPECT_EQ(Remove(), 0U);
    EXPECT_EQ(Remove(), 0U);
}

TEST_F(AggregatedRegister, UnpinnedSettings_GoTogether) {
    Doubt(9, 1, 1);
    Doubt(9, 2, 1);
    Doubt(9, 1, 2);
    Doubt(9, 1, 3);
    m_register.PinDoubtful(2, kParams);
    EXPECT_EQ(m_register.RemoveUnpinnedDoubtful(), 3U);
    EXPECT_EQ(Find(9, 1, 1), kNothingKnown);
    EXPECT_EQ(Find(9, 1, 2), kDoubtful);
    EXPECT_EQ(Find(9, 1, 3), kNothingKnown);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 1U);
    // The pin is still there.
    EXPECT_EQ(m_register.RemoveUnpinnedDoubtful(), 0U);
    EXPECT_EQ(Remove(2), 0U);
    EXPECT_EQ(m_register.RemoveUnpinnedDoubtful(), 1U);
}

// Sweeps

TEST_F(AggregatedRegister, RemoveNMovers_TakesSecondFieldsOneMoveShallower) {
    NoDoubt(7, 1);
    Doubt(5, 1);
    NoDoubt(7, 2);
    Doubt(6, 2);
    EXPECT_EQ(m_register.RemoveNMovers(7), 1U);
    EXPECT_EQ(Find(5, 1), kNothingKnown);
    EXPECT_EQ(Find(6, 2), kDoubtful);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 1U);
}

TEST_F(AggregatedRegister, RemoveNMovers_BelowTwoTakesSecondFieldsOfNothing) {
    NoDoubt(1, 1);
    Doubt(1, 2);
    EXPECT_EQ(m_register.RemoveNMovers(1), 1U);
    EXPECT_EQ(Find(1, 2), kDoubtful);
    EXPECT_EQ(m_register.RemoveNMovers(0), 0U);
}

TEST_F(AggregatedRegister, RemoveNMovers_TakesOwnElementsByBothFields) {
    Insert(7, true, 1);
    Insert(7, false, 2);
    Insert(9, true, 3);
    Insert(5, false, 3);
    EXPECT_EQ(m_register.RemoveNMovers(7), 2U);
    EXPECT_EQ(m_register.TableElementsIn(), 1U);
    EXPECT_EQ(Find(9, 3), kMate);
    EXPECT_EQ(Find(5, 3), kNoMate);
}

// The whole register

class ClearModes : public AggregatedRegister {
protected:
    void SetUp() override {
        AggregatedRegister::SetUp();
        Insert(9, true, 1);
        Doubt(9, 2);
        m_register.TChessboardRegister<bool>::Insert(9, NumberedBoard(1), true, MakeMove(1, 2));
    }
};

TEST_F(ClearModes, ModeOne_ClearsTheOwnTableAndTheMap) {
    m_register.Clear(1, false);
    EXPECT_EQ(m_register.TableElementsIn(), 0U);
    EXPECT_EQ(m_register.MapElementsIn(), 0U);
    EXPECT_TRUE(m_register.Table().HasArray());
    EXPECT_EQ(Find(9, 2), kDoubtful);
    EXPECT_EQ(m_register.GetElementsIn(), 1U);
}

TEST_F(ClearModes, ModeMinusOne_DestroysTheSubRegisters) {
    m_register.Clear(-1, false);
    EXPECT_EQ(Find(9, 1), kMate);
    EXPECT_EQ(Find(9, 2), kNothingKnown);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 0U);
    EXPECT_EQ(m_register.MapElementsIn(), 1U);
    EXPECT_EQ(SubRegisters(), 0U);
}

TEST_F(ClearModes, ModeZero_FreesEverythingButThePins) {
    m_register.Clear(0, true);
    EXPECT_EQ(m_register.GetElementsIn(), 0U);
    EXPECT_FALSE(m_register.Table().HasArray());
    EXPECT_EQ(SubRegisters(), 0U);
    // One node of the map of pins is left.
    EXPECT_LT(m_register.BytesUsed(), 100U);
    ASSERT_TRUE(m_register.Resize(64, true));
    Insert(9, true, 1);
    Doubt(9, 2);
    EXPECT_EQ(m_register.GetElementsIn(), 2U);
}

TEST_F(AggregatedRegister, Resize_ReachesPresentAndFutureSubRegisters) {
    Doubt(9, 1, 1);
    EXPECT_TRUE(m_register.Resize(128, true));
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 0U);
    Doubt(9, 1, 2);
    m_register.ForEachSubRegister(
        [](u32, u32, const auto& sub) { EXPECT_EQ(sub.Table().BucketCount(), 128U); });
    EXPECT_EQ(SubRegisters(), 2U);
    EXPECT_EQ(m_register.Table().BucketCount(), 128U);
}

TEST_F(AggregatedRegister, ResizeToTheSameSize_KeepsVerdictsIfAsked) {
    Insert(9, true);
    Doubt(9, 2);
    EXPECT_TRUE(m_register.Resize(64, true));
    EXPECT_EQ(m_register.GetElementsIn(), 2U);
    EXPECT_TRUE(m_register.Resize(64, false));
    EXPECT_EQ(m_register.GetElementsIn(), 0U);
    EXPECT_EQ(SubRegisters(), 1U);
}

TEST_F(AggregatedRegister, Swap_ExchangesAllContents) {
    TAggregatedTemporaryChessboardRegister other(test::QuietSettings(4 * kMegabyte));
    ASSERT_TRUE(other.Resize(16, true));
    Insert(9, true, 1);
    Doubt(9, 2);
    m_register.PinDoubtful(kHeur, kParams);
    m_register.TChessboardRegister<bool>::Insert(9, NumberedBoard(1), true, MakeMove(1, 2));
    other.InsertVerdict(5, NumberedBoard(7), false);
    const u64 used = m_register.BytesUsed();

    m_register.Swap(other);
    EXPECT_EQ(m_register.GetElementsIn(), 1U);
    EXPECT_EQ(Find(5, 7), kNoMate);
    EXPECT_EQ(m_register.ByteLimit(), 4 * kMegabyte);
    EXPECT_EQ(m_register.Table().BucketCount(), 16U);
    EXPECT_EQ(other.GetElementsIn(), 3U);
    EXPECT_EQ(other.GetDoubtfulElementsIn(), 1U);
    EXPECT_EQ(other.MapElementsIn(), 1U);
    EXPECT_EQ(other.BytesUsed(), used);
    EXPECT_EQ(other.FindInRegister(9, NumberedBoard(2), kHeur, kParams), kDoubtful);
    EXPECT_EQ(other.FindMove(9, NumberedBoard(1)), kMate);
    EXPECT_EQ(other.RemoveDoubtful(kHeur, kParams), 0U);
    EXPECT_EQ(other.RemoveDoubtful(kHeur, kParams), 1U);

    // Both go on working, each on its own account.
    Doubt(9, 3);
    other.InsertDoubtful(9, NumberedBoard(3), kHeur, kParams);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 1U);
    EXPECT_EQ(other.GetDoubtfulElementsIn(), 1U);
    m_register.Swap(m_register);
    EXPECT_EQ(Find(9, 3), kDoubtful);
}

// Failures

TEST_F(AggregatedRegister, RefusedSubRegister_LeavesNothingHalf) {
    Insert(9, true, 1);
    const u64 used = m_register.BytesUsed();
    // Its size, its buckets, its first container, the pin and its place.
    int refusals = 0;
    for (int allowed = 0; SubRegisters() == 0; ++allowed) {
        m_gate.Allow(allowed);
        EXPECT_NO_THROW(Doubt(9, 2));
        m_gate.Open();
        ASSERT_LT(allowed, 20);
        if (SubRegisters() == 0) {
            ++refusals;
            EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 0U) << allowed;
            EXPECT_EQ(Find(9, 2), kNothingKnown) << allowed;
            EXPECT_LT(m_register.BytesUsed(), used + 100) << allowed;
        }
        EXPECT_FALSE(m_register.MapLock().IsHeldByThisThread());
    }
    EXPECT_GE(refusals, 4);
    EXPECT_EQ(m_register.GetDoubtfulElementsIn(), 1U);
    EXPECT_EQ(Find(9, 2), kDoubtful);
}

}  // namespace
}  // namespace quillmere
