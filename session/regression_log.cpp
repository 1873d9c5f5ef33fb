#include "session/regression_log.h"

#include "core/chess_exception.h"
#include "core/platform/file_replace.h"
#include "session/regression_lines.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <thread>

namespace quillmere {
namespace {

// Before the second try and each one behind it.
constexpr std::chrono::milliseconds kRotateSleeps[] = {std::chrono::milliseconds(0),
                                                       std::chrono::milliseconds(100),
                                                       std::chrono::milliseconds(200),
                                                       std::chrono::milliseconds(300)};

std::string ReasonOf(const std::error_code& error) {
    return error.message();
}

std::error_code RenameToBackup(const std::filesystem::path& file,
                               const std::filesystem::path& backup) {
    std::error_code error;
    std::filesystem::remove(backup, error);
    if (!error)
        std::filesystem::rename(file, backup, error);
    return error;
}

void SleepTruly(std::chrono::milliseconds time) {
    std::this_thread::sleep_for(time);
}

}  // namespace

CRegressionLog::CRegressionLog(std::filesystem::path file, TSleep sleep)
    : m_file(std::move(file)), m_sleep(sleep ? std::move(sleep) : SleepTruly) {}

void CRegressionLog::Rotate() {
    const std::lock_guard hold(m_mutex);
    std::filesystem::path backup = m_file;
    backup += kRegressionBackupEnding;
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(m_file, error);
    if (std::filesystem::is_directory(status))
        error = std::make_error_code(std::errc::is_a_directory);
    else if (!std::filesystem::is_regular_file(status))
        return;  // none, or a device, which has no old content to keep
    else
        error = RenameToBackup(m_file, backup);
    for (const std::chrono::milliseconds sleep : kRotateSleeps) {
        if (!error || error == std::errc::is_a_directory)
            break;
        m_sleep(sleep);
        error = RenameToBackup(m_file, backup);
    }
    if (error)
        throw ChessException(EMessage::kRegressionLogNotRotated,
                             {m_file.string(), backup.string(), ReasonOf(error)});
}

std::string CRegressionLog::TakeUp() {
    std::string text;
    {
        const std::lock_guard hold(m_mutex);
        const std::error_code error = ReadWholeFile(m_file, text);
        if (error == std::errc::no_such_file_or_directory)
            return {};
        if (error)
            throw ChessException(EMessage::kRegressionLogNotRead,
                                 {m_file.string(), ReasonOf(error)});
    }
    if (!text.empty() && text.back() != '\n') {
        const std::string end = std::string(kCutMark) + "\n";
        Write(end);
        text += end;
    }
    return text;
}

void CRegressionLog::Write(std::string_view lines) {
    const std::lock_guard hold(m_mutex);
    errno = 0;
    std::ofstream out(m_file, std::ios::app | std::ios::binary);
    out.write(lines.data(), static_cast<std::streamsize>(lines.size()));
    out.close();
    if (!out)
        throw ChessException(EMessage::kRegressionLogNotWritten,
                             {m_file.string(), ReasonOf({errno, std::generic_category()})});
}

}  // namespace quillmere
