#include "core/platform/thread.h"

#include "core/chess_exception.h"

#include <exception>
#include <pthread.h>
#include <utility>

namespace quillmere {

struct CThreadWithStack::TState {
    std::function<void()> work;
    std::exception_ptr failure;
    pthread_t thread{};
    bool isRunning = false;
};

CThreadWithStack::CThreadWithStack(std::size_t stackBytes, std::function<void()> work)
    : m_state(std::make_unique<TState>()) {
    const auto run = [](void* argument) -> void* {
        auto* state = static_cast<TState*>(argument);
        try {
            state->work();
        } catch (...) {
            state->failure = std::current_exception();
        }
        return nullptr;
    };
    m_state->work = std::move(work);
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) == 0) {
        constexpr std::size_t kPage = 4096;
        const std::size_t rounded = (stackBytes + kPage - 1) / kPage * kPage;
        m_state->isRunning = pthread_attr_setstacksize(&attributes, rounded) == 0 &&
                             pthread_create(&m_state->thread, &attributes, run, m_state.get()) == 0;
        pthread_attr_destroy(&attributes);
    }
    if (!m_state->isRunning)
        throw ChessException(EMessage::kThreadNotStarted);
}

CThreadWithStack::~CThreadWithStack() {
    Wait();
}

void CThreadWithStack::Wait() {
    if (m_state->isRunning)
        pthread_join(m_state->thread, nullptr);
    m_state->isRunning = false;
}

void CThreadWithStack::Join() {
    Wait();
    if (m_state->failure)
        std::rethrow_exception(m_state->failure);
}

void RunOnThreadWithStack(std::size_t stackBytes, const std::function<void()>& work) {
    CThreadWithStack(stackBytes, work).Join();
}

}  // namespace quillmere
