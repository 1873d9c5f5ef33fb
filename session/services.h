// What a solve session asks of the program around it: a window, the command line, or a test.
//
// Threads: session threads call these while the thread that started them waits or goes on; an
// implementation hands over to its own thread if it must. None of them may throw.
#pragma once

#include "core/messages.h"

#include <functional>
#include <string>

namespace quillmere {

class IStatusService {
public:
    virtual ~IStatusService() = default;
    // Replaces the status text; empty takes it away.
    virtual void PostStatus(const std::string& text) = 0;
};

class IRepaintService {
public:
    virtual ~IRepaintService() = default;
    virtual void Repaint() = 0;
    // Handles what waits in a window's message loop. False after a quit message, which ends waits.
    virtual bool DispatchMessages() { return true; }
};

enum class EReply { kYes, kNo, kCancel };

class IQuestionService {
public:
    virtual ~IQuestionService() = default;
    // Asks and waits. `question` is the row of the text (for tables of answers), `text` its filled form.
    virtual EReply Ask(EMessage question, const std::string& text) = 0;
    // A box with one button.
    virtual void Tell(EMessage title, const std::string& text) = 0;
};

class ITickService {
public:
    virtual ~ITickService() = default;
    // Calls `tick` once a second until StopTick of the same id. After StopTick has returned, no call
    // is under way.
    virtual void StartTick(int id, std::function<void()> tick) = 0;
    virtual void StopTick(int id) = 0;
};

// None is null. Whoever made them owns them.
struct TSessionServices {
    IStatusService* status = nullptr;
    IRepaintService* repaint = nullptr;
    IQuestionService* questions = nullptr;
    ITickService* tick = nullptr;
};

}  // namespace quillmere
