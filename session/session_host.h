// What all sessions of the program share.
//
// Locking: the lock of the collection guards both sets and the end of each session; `statusLock`
// guards the status text. Both are leaves, but for the stop slot of a problem behind the former: no
// service is called while one of them is held.
#pragma once

#include "problems/problem_collection.h"
#include "session/solve_control.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>

namespace quillmere {

struct TSessionHost {
    TSessionHost(TProblemCollection& givenCollection,
                 const TSessionServices& givenServices,
                 const TSessionSettings& givenSettings)
        : collection(givenCollection), services(givenServices), settings(givenSettings) {}

    TProblemCollection& collection;
    const TSessionServices services;
    TSessionSettings settings;
    std::atomic<TChessProblem*> displayed{nullptr};

    // Numbers of the problems with a solve that runs, and of those that have a thread alive.
    std::set<i32> problemsBeingSolved;
    std::set<i32> problemsWithPendingThreads;
    std::condition_variable sessionEnded;  // with the lock of the collection

    mutable std::mutex statusLock;
    std::string statusText;

    void SetStatus(const std::string& text) {
        {
            const std::lock_guard lock(statusLock);
            statusText = text;
        }
        services.status->PostStatus(text);
    }
    // A box; nobody looks at one in a batch.
    void Tell(EMessage title, const std::string& text) const {
        if (!settings.regressionRunning)
            services.questions->Tell(title, text);
    }
    std::string Text(EMessage id, const std::vector<std::string>& values = {}) const {
        return FormatMessage(id, settings.language, values);
    }
};

}  // namespace quillmere
