// The two streams of a command: results on standard output, everything else on standard error.
//
// Threads: Status and Note may be called by the threads that search or watch a search while the
// command itself waits; all else belongs to the command's own thread.
#pragma once

#include "core/messages.h"

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

struct TConsoleSettings {
    ELanguage language = ELanguage::kEnglish;
    bool isQuiet = false;
    bool wantsProgress = false;  // a status line that is written over and over
    bool wantsColour = false;    // on standard output
};

class CConsole {
public:
    explicit CConsole(const TConsoleSettings& settings) : m_settings(settings) {}
    ~CConsole();
    CConsole(const CConsole&) = delete;
    CConsole& operator=(const CConsole&) = delete;

    ELanguage Language() const { return m_settings.language; }
    bool WantsProgress() const { return m_settings.wantsProgress; }
    std::string Text(EMessage id, const std::vector<std::string>& values = {}) const;

    // Results. A line at a time, so that a reader at the other end of a pipe sees each when it is
    // known. Throws ChessException (kOutputFailed) if the system does not take it.
    void Print(std::string_view text);

    // A note or summary, one line; nothing if quiet.
    void Note(std::string_view text);
    // The one line that says why the program gives up; never silenced.
    void Error(std::string_view text);
    // Replaces the status line; an empty text takes it away.
    void Status(std::string_view text);

    // Emphasis for a terminal; the text as it is otherwise.
    std::string Bold(std::string_view text) const;

private:
    void ClearStatus();

    TConsoleSettings m_settings;
    // Locking: guards standard error and m_hasStatus; a leaf.
    std::mutex m_mutex;
    bool m_hasStatus = false;
};

}  // namespace quillmere
