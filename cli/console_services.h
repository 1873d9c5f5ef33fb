// What a session asks of the program around it, on the console.
#pragma once

#include "cli/console.h"
#include "session/services.h"

namespace quillmere {

// Threads: as the services demand; the console has its own lock.
class CConsoleServices final : public IStatusService,
                               public IRepaintService,
                               public IQuestionService,
                               public ITickService {
public:
    // The console must outlive this.
    explicit CConsoleServices(CConsole& console) : m_console(console) {}

    TSessionServices Services();

    // The first line of the text becomes the status line.
    void PostStatus(const std::string& text) override;
    void Repaint() override {}
    // Nobody sits before a command: the answers of the table of batch answers.
    EReply Ask(EMessage question, const std::string& text) override;
    // A note; but a fault is told by the command itself, with its exit code.
    void Tell(EMessage title, const std::string& text) override;
    // A console has nothing that is repainted once a second.
    void StartTick(int /*id*/, std::function<void()> /*tick*/) override {}
    void StopTick(int /*id*/) override {}

private:
    CConsole& m_console;
};

}  // namespace quillmere
