// Problems and services for tests of sessions.
#pragma once

#include "core/fen.h"
#include "core/notation.h"
#include "problems/problem_collection.h"
#include "session/services.h"
#include "session/solve_control.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace quillmere::test {

inline void SetProblem(TChessProblem& problem, const std::string& fen, u16 halfMoves) {
    TChessboard board;
    InitBoard(board);
    if (!SetFromFENCode(board, fen.c_str(), nullptr, nullptr))
        std::abort();
    problem.SetStipulation(kDirectMate, halfMoves);
    problem.SetPosition(board.m_board);
}

inline TChessProblem&
AddProblem(TProblemCollection& collection, i32 number, const std::string& fen, u16 halfMoves) {
    auto problem = std::make_unique<TChessProblem>();
    problem->number = number;
    SetProblem(*problem, fen, halfMoves);
    TChessProblem& added = *problem;
    collection.Insert(std::move(problem));
    return added;
}

// "Qa7-f2" of the problem's current node.
inline TMove MoveOf(const TChessProblem& problem, const std::string& text) {
    TMove move{};
    TextToMove(move, text, problem.currentNode->IsWhiteToMove());
    return move;
}

inline std::vector<std::string> TextsOf(const TChessboard& board, const std::vector<TMove>& moves) {
    std::vector<std::string> texts;
    for (const TMove move : moves)
        texts.push_back(MoveToText(board, move));
    return texts;
}

// Writes down what a session asks and tells.
//
// Locking: guards the records; a leaf.
class CFakeServices final : public IStatusService,
                            public IRepaintService,
                            public IQuestionService,
                            public ITickService {
public:
    TSessionServices Services() { return {this, this, this, this}; }

    void PostStatus(const std::string& text) override {
        const std::lock_guard lock(m_mutex);
        m_statuses.push_back(text);
        m_changed.notify_all();
    }
    void Repaint() override {}
    bool DispatchMessages() override { return !m_isQuitting; }
    EReply Ask(EMessage question, const std::string& text) override {
        const std::lock_guard lock(m_mutex);
        m_asked.emplace_back(question, text);
        return m_reply;
    }
    void Tell(EMessage title, const std::string& text) override {
        const std::lock_guard lock(m_mutex);
        m_told.emplace_back(title, text);
    }
    void StartTick(int id, std::function<void()> /*tick*/) override {
        const std::lock_guard lock(m_mutex);
        ++m_ticks[id];
    }
    void StopTick(int id) override {
        const std::lock_guard lock(m_mutex);
        --m_ticks[id];
    }

    std::vector<std::pair<EMessage, std::string>> Told() const {
        const std::lock_guard lock(m_mutex);
        return m_told;
    }
    std::vector<std::pair<EMessage, std::string>> Asked() const {
        const std::lock_guard lock(m_mutex);
        return m_asked;
    }
    std::vector<std::string> Statuses() const {
        const std::lock_guard lock(m_mutex);
        return m_statuses;
    }
    // Starts that were not stopped.
    int OpenTicks() const {
        const std::lock_guard lock(m_mutex);
        int open = 0;
        for (const auto& [id, count] : m_ticks)
            open += count;
        return open;
    }
    // Waits for a status that begins so: the search is on, say.
    void WaitForStatus(const std::string& beginning) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] {
            return std::any_of(m_statuses.begin(), m_statuses.end(), [&](const std::string& text) {
                return text.starts_with(beginning);
            });
        });
    }

    EReply m_reply = EReply::kYes;
    bool m_isQuitting = false;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_statuses;
    std::vector<std::pair<EMessage, std::string>> m_told;
    std::vector<std::pair<EMessage, std::string>> m_asked;
    std::map<int, int> m_ticks;
};

}  // namespace quillmere::test
