#include "cli/console.h"

#include "cli/columns.h"
#include "core/chess_exception.h"
#include "core/platform/terminal.h"

#include <cstdio>

namespace quillmere {
namespace {

void WriteError(std::string_view text) {
    // Nobody is left to be told if standard error fails.
    (void)std::fwrite(text.data(), 1, text.size(), stderr);
    (void)std::fflush(stderr);
}

}  // namespace

CConsole::~CConsole() {
    Status("");
}

std::string CConsole::Text(EMessage id, const std::vector<std::string>& values) const {
    return FormatMessage(id, m_settings.language, values);
}

void CConsole::Print(std::string_view text) {
    Status("");
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw ChessException(EMessage::kOutputFailed);
}

void CConsole::Note(std::string_view text) {
    if (m_settings.isQuiet)
        return;
    const std::lock_guard lock(m_mutex);
    ClearStatus();
    WriteError(std::string(text) + "\n");
}

void CConsole::Error(std::string_view text) {
    const std::lock_guard lock(m_mutex);
    ClearStatus();
    std::string line = "quillmere: " + std::string(text) + "\n";
    // One line, whatever a file name or a bad text holds.
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        if (static_cast<unsigned char>(line[i]) < ' ')
            line[i] = ' ';
    }
    WriteError(line);
}

void CConsole::Status(std::string_view text) {
    if (!m_settings.wantsProgress)
        return;
    const std::lock_guard lock(m_mutex);
    ClearStatus();
    if (text.empty())
        return;
    // A line that goes on in the next row could not be taken away; the last column makes some do so.
    const int columns = ErrorTerminalColumns();
    WriteError(columns > 1 ? CutToWidth(text, static_cast<std::size_t>(columns) - 1) : text);
    m_hasStatus = true;
}

std::string CConsole::Bold(std::string_view text) const {
    return m_settings.wantsColour ? "\x1b[1m" + std::string(text) + "\x1b[0m" : std::string(text);
}

void CConsole::ClearStatus() {
    if (m_hasStatus)
        WriteError("\r\x1b[K");
    m_hasStatus = false;
}

}  // namespace quillmere
