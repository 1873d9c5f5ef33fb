// A root for the proof-number search, with the contexts and the register that it wants.
#pragma once

#include "core/make_move.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "registers/aggregated_register.h"
#include "search/proof_number.h"
#include "search/root.h"
#include "tests/support/bridge.h"
#include "tests/support/reference.h"
#include "tests/support/registers.h"

#include <cstddef>
#include <optional>

namespace quillmere::test {

constexpr std::size_t kProofBytes = std::size_t{1} << 20;
// Made moves that no task of these tests reaches.
constexpr u64 kManyMoves = 1'000'000'000;

class CProofRoot {
public:
    CProofRoot(const reference::TPosition& position,
               int halfMoves,
               const TChessboard* word = nullptr,
               std::size_t tableBytes = kProofBytes)
        : m_store(QuietSettings(u64{8} << 20)), m_thread(static_cast<u16>(halfMoves)) {
        m_context.tempRegister = &m_store;
        m_context.registerRoot = 3;
        bridge::FillBoard(m_root, position);
        m_root.m_searchContext = &m_context;
        m_root.m_threadContext = &m_thread;
        m_root.m_pass = kPassComplete;
        SetupAnalysisRoot(m_root, static_cast<u16>(halfMoves), true);
        m_thread.rootNode = &m_root;
        m_thread.computeHeurParams = ComputeHeurParams;
        if (word != nullptr)
            TakeHeuristics(m_root, *word);
        UseWord(m_root.Heur);
        m_search.emplace(m_root, tableBytes);
    }
    CProofRoot(const CProofRoot&) = delete;
    CProofRoot& operator=(const CProofRoot&) = delete;

    void UseWord(u32 word) {
        SetHeur(m_root, word);
        m_root.m_pass = word != 0 ? kPassHeuristics : kPassComplete;
    }

    TChessboard& Root() { return m_root; }
    TSearchContext& Context() { return m_context; }
    TThreadContext& Thread() { return m_thread; }
    TAggregatedTemporaryChessboardRegister& Store() { return m_store; }
    CProofNumberSearch& Search() { return *m_search; }

private:
    TAggregatedTemporaryChessboardRegister m_store;
    TSearchContext m_context;
    TThreadContext m_thread;
    TChessboard m_root{};
    std::optional<CProofNumberSearch> m_search;
};

}  // namespace quillmere::test
