// The log of ended solves: "chessGUI.log" in the program's folder, a line each:
//
//     "2024-03-09 17:05:00, 4711: Engine has completed: 1.Qa1-a8, version: 0.1.0"
//
// Locking: one lock for the whole process, a leaf; it guards the file, which is opened for appending
// for each line and closed behind it, so that a process that is killed loses nothing.
#pragma once

#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>

namespace quillmere {

constexpr std::string_view kEngineLogName = "chessGUI.log";

// The line with its end. Line ends of the text become blanks: a line is an entry.
std::string EngineLogLine(const std::tm& time, int processId, std::string_view text);
// "Engine stopped: ..." or "Engine has completed: ...", with the version of the program.
std::string EngineEndText(const std::string& answer, bool isStopped, const std::string& version);

// Writes the end of a solve. Makes the folder if it is missing; an empty folder is for no log. A
// line that cannot be written is lost silently: the log must not disturb a solve.
void LogEngineEnd(const std::filesystem::path& programFolder,
                  const std::string& answer,
                  bool isStopped);

}  // namespace quillmere
