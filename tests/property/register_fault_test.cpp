// The k-th block of memory is refused, for every k: the register stays consistent and says nothing
// that it was not told. Once only that block is refused, once all from it on.
#include "core/chess_exception.h"
#include "tests/support/register_audit.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

enum class ERefusal { kOne, kAllFromItOn };

class CFaultWalk {
public:
    CFaultWalk(ERefusal refusal, int behind)
        : m_boards(test::EqualHashBoards(kBlackPawn, 1 << test::kEqualHashBits)),
          m_told(m_boards.size()),
          m_register(Settings()) {
        if (refusal == ERefusal::kOne)
            m_gate.RefuseOneBehind(behind);
        else
            m_gate.Allow(behind);
    }

    // Linear buckets, their conversion, growth, sweeps of one or two elements and of more,
    // sub-registers, pins, the map store, all that empties, all again.
    void Walk() {
        Step("resize", [&] { m_register.Resize(4, true); });
        InsertRound(5);
        Step("sweep", [&] { m_register.RemoveNMovers(3); });
        InsertRound(9);
        Step("sweep", [&] { m_register.RemoveNMovers(5); });
        Step("sweep", [&] { m_register.RemoveNMovers(4); });
        Step("unpinned", [&] { m_register.RemoveUnpinnedDoubtful(); });
        InsertRound(3);
        Step("empty", [&] { m_register.EmptySomeDataWhenRegisterFull(false); });
        Step("resize", [&] { m_register.Resize(2, false); });
        InsertRound(11);
        Step("clear", [&] { m_register.Clear(-1, true); });
        InsertRound(7);
        Step("swap", [&] { SwapToAndFro(); });
        m_gate.Open();
        CheckAnswers();
        Step("clear", [&] { m_register.Clear(0, true); });
        EXPECT_LE(m_register.BytesUsed(), kSettings * test::PinBytes());
        // Nothing of the failures is left.
        Step("resize", [&] { m_register.Resize(4, true); });
        InsertRound(13);
        EXPECT_EQ(m_register.TableElementsIn(), m_boards.size());
        EXPECT_GT(m_register.GetDoubtfulElementsIn(), 0U);
    }
    int Asked() const { return m_gate.Asked(); }

private:
    static constexpr u32 kSettings = 3;

    struct TTold {
        u16 leastMate = 0xffff;
        u16 greatestNoMate = 0;
        u16 greatestNotDoubtful = 0;
        u16 greatestDoubtful = 0;
    };

    TRegisterSettings Settings() {
        TRegisterSettings settings = test::QuietSettings(test::kMegabyte);
        settings.tickCount = m_clock.Function();
        settings.mayAllocate = m_gate.Function();
        return settings;
    }

    void Step(const char* name, const std::function<void()>& call) {
        SCOPED_TRACE(name);
        EXPECT_NO_THROW(call());
        test::ExpectRegisterAddsUp(m_register, kSettings);
    }

    void InsertRound(u16 nMoves) {
        for (std::size_t i = 0; i < m_boards.size(); ++i) {
            const auto depth = static_cast<u16>(nMoves + 2 * (i % 3));
            Step("verdict", [&] { InsertVerdict(i, depth); });
            Step("doubt", [&] { InsertDoubt(i, depth); });
            if (i % 8 == 0)
                Step("record", [&] { InsertRecord(i, depth); });
            if (i % 32 == 0)
                Step("pin", [&] { m_register.PinDoubtful(Setting(i), 0); });
            m_clock.Advance(5);
        }
        CheckAnswers();
    }
    static u32 Setting(std::size_t i) { return static_cast<u32>(i % kSettings); }
    static bool IsMate(std::size_t i, u16 depth) { return depth >= 3 + 2 * (i % 7); }

    void InsertVerdict(std::size_t i, u16 depth) {
        m_register.InsertVerdict(depth, m_boards[i], IsMate(i, depth));
        if (IsMate(i, depth))
            m_told[i].leastMate = std::min(m_told[i].leastMate, depth);
        else
            m_told[i].greatestNoMate = std::max(m_told[i].greatestNoMate, depth);
    }
    void InsertDoubt(std::size_t i, u16 depth) {
        const bool isDoubtful = i % 2 == 0;
        m_register.InsertDoubtfulResult(depth, m_boards[i], Setting(i), 0, isDoubtful);
        u16& told = isDoubtful ? m_told[i].greatestDoubtful : m_told[i].greatestNotDoubtful;
        told = std::max(told, depth);
    }
    void InsertRecord(std::size_t i, u16 depth) {
        auto& store = static_cast<TChessboardRegister<bool>&>(m_register);
        store.Insert(depth, m_boards[i], IsMate(i, depth), TMove{});
        store.InsertDefence(static_cast<u16>(depth + 1), m_boards[i], !IsMate(i, depth), TMove{});
    }
    void SwapToAndFro() {
        TAggregatedTemporaryChessboardRegister other(test::QuietSettings(test::kMegabyte));
        m_register.Swap(other);
        test::ExpectRegisterAddsUp(other, kSettings);
        EXPECT_EQ(m_register.GetElementsIn(), 0U);
        m_register.Swap(other);
    }

    void CheckAnswers() {
        for (std::size_t i = 0; i < m_boards.size(); ++i) {
            const TTold& told = m_told[i];
            for (u16 nMoves = 1; nMoves < 21; nMoves += 2) {
                const TVerdict verdict =
                    m_register.FindInRegister(nMoves, m_boards[i], Setting(i), 0);
                EXPECT_TRUE(verdict != kMate || nMoves >= told.leastMate);
                EXPECT_TRUE(verdict != kNoMate || nMoves <= told.greatestNoMate);
                EXPECT_TRUE(verdict != kDoubtful || nMoves <= told.greatestDoubtful);
                EXPECT_TRUE(m_register.FindNotDoubtfulInRegister(
                                99, nMoves, m_boards[i], Setting(i), 0) != 1 ||
                            nMoves <= told.greatestNotDoubtful);
                const TVerdict move = m_register.FindMove(nMoves, m_boards[i]);
                EXPECT_TRUE(move == kNothingKnown || (move == kMate) == IsMate(i, nMoves));
            }
        }
    }

    test::CMemoryGate m_gate;
    test::CTestClock m_clock;
    std::vector<TChessboard> m_boards;
    std::vector<TTold> m_told;
    TAggregatedTemporaryChessboardRegister m_register;
};

void RefuseEveryBlock(ERefusal refusal) {
    constexpr int kNone = 1'000'000;
    CFaultWalk whole(refusal, kNone);
    whole.Walk();
    ASSERT_GT(whole.Asked(), 100);
    for (int behind = 0; behind < whole.Asked() && !testing::Test::HasFailure(); ++behind) {
        SCOPED_TRACE("refused behind " + std::to_string(behind));
        CFaultWalk(refusal, behind).Walk();
    }
}

TEST(RegisterFault, AnyOneBlockRefused_LeavesTheRegisterConsistent) {
    RefuseEveryBlock(ERefusal::kOne);
}

TEST(RegisterFault, AllBlocksRefusedFromOneOn_LeavesTheRegisterConsistent) {
    RefuseEveryBlock(ERefusal::kAllFromItOn);
}

TEST(RegisterFault, LimitOfNothing_StandsEveryCall) {
    TAggregatedTemporaryChessboardRegister nothing(test::QuietSettings(0));
    const TChessboard board = test::NumberedBoard(1);
    EXPECT_NO_THROW({
        nothing.Resize(16, true);
        nothing.InsertVerdict(5, board, true);
        nothing.InsertDoubtfulResult(5, board, 1, 2, false);
        nothing.PinDoubtful(1, 2);
        nothing.RemoveDoubtful(1, 2);
        nothing.EmptySomeDataWhenRegisterFull(true);
        static_cast<TChessboardRegister<bool>&>(nothing).Insert(5, board, true, TMove{});
        nothing.Clear(0, true);
    });
    EXPECT_EQ(nothing.GetElementsIn(), 0U);
    EXPECT_EQ(nothing.BytesUsed(), 0U);
}

}  // namespace
}  // namespace quillmere
