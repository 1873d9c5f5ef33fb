// The file of a batch run, RegressionTest.log.
//
// It is opened for each line in append mode and closed behind it, so that a run that is killed loses
// nothing that was told. Lines that belong together are handed over together and go out in one write.
//
// Locking: one lock in each log, a leaf; it guards the file, so that lines of several jobs stay whole.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace quillmere {

constexpr std::string_view kRegressionLogName = "RegressionTest.log";
constexpr std::string_view kRegressionBackupEnding = ".BAK";

class CRegressionLog {
public:
    using TSleep = std::function<void(std::chrono::milliseconds)>;

    // `sleep` null for a true one.
    explicit CRegressionLog(std::filesystem::path file, TSleep sleep = nullptr);

    const std::filesystem::path& File() const { return m_file; }

    // Makes way for a new run: the file gets the ending ".BAK" behind its name, in place of an older
    // one. Somebody may hold one of them for a moment (a scanner, an editor), so it is tried several
    // times. Throws ChessException (kRegressionLogNotRotated); no file is no fault, and a device stays.
    void Rotate();

    // The text of an earlier run that this one goes on with; empty if there is none. A last line
    // that was cut by the end of that run is marked and ended first, so that new lines stand alone.
    // Throws ChessException.
    std::string TakeUp();

    // Whole lines, each with its end. Throws ChessException (kRegressionLogNotWritten).
    void Write(std::string_view lines);

private:
    const std::filesystem::path m_file;
    const TSleep m_sleep;
    std::mutex m_mutex;
};

}  // namespace quillmere
