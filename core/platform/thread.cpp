#include "core/platform/thread.h"

#include "core/chess_exception.h"

#include <exception>
#include <pthread.h>

namespace quillmere {
namespace {

struct TTask {
    const std::function<void()>& work;
    std::exception_ptr failure;
};

void* RunTask(void* argument) {
    auto* task = static_cast<TTask*>(argument);
    try {
        task->work();
    } catch (...) {
        task->failure = std::current_exception();
    }
    return nullptr;
}

}  // namespace

void RunOnThreadWithStack(std::size_t stackBytes, const std::function<void()>& work) {
    TTask task{work, nullptr};
    pthread_attr_t attributes;
    pthread_t thread{};
    bool isStarted = pthread_attr_init(&attributes) == 0;
    if (isStarted) {
        constexpr std::size_t kPage = 4096;
        const std::size_t rounded = (stackBytes + kPage - 1) / kPage * kPage;
        isStarted = pthread_attr_setstacksize(&attributes, rounded) == 0 &&
                    pthread_create(&thread, &attributes, RunTask, &task) == 0;
        pthread_attr_destroy(&attributes);
    }
    if (!isStarted)
        throw ChessException(EMessage::kThreadNotStarted);
    pthread_join(thread, nullptr);
    if (task.failure)
        std::rethrow_exception(task.failure);
}

}  // namespace quillmere
