// A thread with a given stack. The search recurses once a half-move, so that its stack grows with
// the stipulation and the default of the system is not enough.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace quillmere {

// Runs until its work is done. Owned by the thread that made it.
class CThreadWithStack {
public:
    // Starts `work` on a new thread with a stack of at least `stackBytes`. Throws ChessException if
    // the thread cannot be started.
    CThreadWithStack(std::size_t stackBytes, std::function<void()> work);
    // Waits for the end. An exception of `work` that Join() did not hand out is lost.
    ~CThreadWithStack();
    CThreadWithStack(const CThreadWithStack&) = delete;
    CThreadWithStack& operator=(const CThreadWithStack&) = delete;

    // Waits for the end; an exception of `work` is thrown again here. To be called once.
    void Join();

private:
    struct TState;
    void Wait();
    std::unique_ptr<TState> m_state;
};

// Runs `work` on a thread of that kind and waits for its end.
void RunOnThreadWithStack(std::size_t stackBytes, const std::function<void()>& work);

}  // namespace quillmere
