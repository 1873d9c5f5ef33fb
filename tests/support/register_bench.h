// Solves cases with a register of solved positions that is reached by short tasks too, under limits
// from roomy to none at all.
#pragma once

#include "registers/aggregated_register.h"
#include "search/solve.h"
#include "tests/support/bridge.h"
#include "tests/support/judged_solve.h"
#include "tests/support/random.h"
#include "tests/support/reference.h"
#include "tests/support/registers.h"
#include "tests/support/remembering_judge.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillmere::test {

// A limit under which every answer must stay the same.
struct TRegisterLimit {
    std::string name;
    u64 bytes;
    int refusedBlocks;  // of memory: 0 none, else one of so many, drawn at random
};

inline const std::vector<TRegisterLimit>& RegisterLimits() {
    static const std::vector<TRegisterLimit> limits = {
        {"roomy", 64 * kMegabyte, 0},
        {"a megabyte", kMegabyte, 0},
        {"256 kilobytes", 256 * 1024, 0},
        {"64 kilobytes", 64 * 1024, 0},
        {"16 kilobytes", 16 * 1024, 0},
        {"some blocks refused", kMegabyte, 50},
        {"no memory", kMegabyte, 1},
    };
    return limits;
}

// One register and what solves with it.
class CRegisterBench {
public:
    explicit CRegisterBench(const TRegisterLimit& limit, u16 registerRoot = 1)
        : m_name(limit.name), m_registerRoot(registerRoot) {
        TRegisterSettings settings = QuietSettings(limit.bytes);
        // The clock leaps, so that the register is emptied as often as it likes.
        settings.tickCount = [this] { return m_now += 1000; };
        settings.mayAllocate = [this, every = limit.refusedBlocks](std::size_t) {
            return every == 0 || m_random.Below(every) != 0;
        };
        m_register = std::make_unique<TAggregatedTemporaryChessboardRegister>(settings);
    }

    TSolveResult Solve(const reference::TPosition& position,
                       int halfMoves,
                       bool clearRegister,
                       bool wantTries = false) {
        TChessboard board;
        bridge::FillBoard(board, position);
        TSearchContext context;
        context.tempRegister = m_register.get();
        context.registerRoot = m_registerRoot;
        TSolveRequest request;
        request.halfMoves = static_cast<u16>(halfMoves);
        request.wantAllKeys = true;
        request.wantTries = wantTries;
        request.clearRegister = clearRegister;
        TSolveResult result = quillmere::Solve(board, request, context);
        m_mostElements = std::max(m_mostElements, m_register->GetElementsIn());
        return result;
    }
    ::testing::AssertionResult Agrees(const bridge::TJudgement& judgement,
                                      const reference::TPosition& position,
                                      int halfMoves,
                                      bool clearRegister) {
        const TSolveResult result = Solve(position, halfMoves, clearRegister);
        const std::string name = reference::ToFen(position) + ", " + std::to_string(halfMoves) +
                                 " half-moves, register: " + m_name +
                                 (clearRegister ? "" : ", kept");
        if (Register().IncoherentElements() != 0)
            return ::testing::AssertionFailure() << name << ": contradictory elements";
        return bridge::IsAnswerOf(judgement, position, halfMoves, result, name);
    }

    TAggregatedTemporaryChessboardRegister& Register() { return *m_register; }
    // After any of the solves.
    u32 MostElements() const { return m_mostElements; }

private:
    std::string m_name;
    u16 m_registerRoot;
    u64 m_now = 0;
    CRandom m_random{1};
    std::unique_ptr<TAggregatedTemporaryChessboardRegister> m_register;
    u32 m_mostElements = 0;
};

// Every limit twice: emptied before each task, and kept over all tasks.
class CRegisterBenches {
public:
    explicit CRegisterBenches(std::uint64_t judgeMoves,
                              u16 registerRoot = 1,
                              const std::vector<TRegisterLimit>& limits = RegisterLimits())
        : m_judgeMoves(judgeMoves), m_limits(limits) {
        for (const TRegisterLimit& limit : m_limits) {
            m_emptied.emplace_back(limit, registerRoot);
            m_kept.emplace_back(limit, registerRoot);
        }
    }
    // False after too many failures.
    bool Check(const reference::TPosition& position, int halfMoves, std::uint64_t seed) {
        const std::optional<bridge::TJudgement> judgement =
            bridge::JudgeFar(position, halfMoves, m_judgeMoves);
        if (!judgement)
            return true;
        ++m_cases;
        m_mates += judgement->isMate;
        for (CRegisterBench& bench : m_emptied) {
            Expect(bench.Agrees(*judgement, position, halfMoves, true), seed);
            Expect(bench.Agrees(*judgement, position, halfMoves, false), seed);
        }
        for (CRegisterBench& bench : m_kept)
            Expect(bench.Agrees(*judgement, position, halfMoves, false), seed);
        return m_failures < kMostFailures;
    }
    void ExpectUse(int mates) {
        if (bridge::kIsSanitized)
            return;
        EXPECT_GE(m_mates, mates);
        for (std::size_t i = 0; i < m_kept.size(); ++i) {
            // Where blocks are refused now and then, a short run may end on an empty table.
            if (m_limits[i].refusedBlocks <= 1) {
                EXPECT_EQ(m_kept[i].MostElements() > 0, m_limits[i].refusedBlocks == 0)
                    << m_limits[i].name;
            }
        }
        ::testing::Test::RecordProperty("cases", m_cases);
        ::testing::Test::RecordProperty("elements", static_cast<int>(m_kept[0].MostElements()));
    }
    int Cases() const { return m_cases; }

private:
    // One failing case tells what is wrong; a hundred of them tell no more.
    static constexpr int kMostFailures = 5;

    void Expect(const ::testing::AssertionResult& agrees, std::uint64_t seed) {
        EXPECT_TRUE(agrees) << "seed " << seed;
        m_failures += !agrees;
    }

    std::uint64_t m_judgeMoves;
    std::vector<TRegisterLimit> m_limits;
    std::deque<CRegisterBench> m_emptied;
    std::deque<CRegisterBench> m_kept;
    int m_cases = 0;
    int m_mates = 0;
    int m_failures = 0;
};

}  // namespace quillmere::test
