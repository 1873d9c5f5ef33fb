#include "heuristics/relaxation_log.h"

#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/catalogue.h"
#include "session/options.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <mutex>
#include <utility>

namespace quillmere {
namespace {

constexpr const char* kLogFileName = "TryRelaxSpecialHeuristics.log";
constexpr int kFirstYear = 1900;  // of std::tm

std::mutex& LogMutex() {
    static std::mutex mutex;
    return mutex;
}

std::string TextOfTime(const std::tm& time) {
    char text[64];
    std::snprintf(text,
                  sizeof text,
                  "%d-%02d-%02d %02d:%02d:%02d",
                  time.tm_year + kFirstYear,
                  time.tm_mon + 1,
                  time.tm_mday,
                  time.tm_hour,
                  time.tm_min,
                  time.tm_sec);
    return text;
}

}  // namespace

CRelaxationLog::CRelaxationLog(const std::filesystem::path& programFolder, TClock clock)
    : m_file(programFolder.empty() ? programFolder : programFolder / kLogFileName),
      m_clock(std::move(clock)) {}

// "%s %s th=%s %s\n"
std::string CRelaxationLog::LineOf(const TChessboard& node, bool before) const {
    return TextOfTime(m_clock()) + (before ? " BEFORE" : " AFTER ") +
           " th=" + std::to_string(node.m_threadContext->threadId) + " " + HeuristicsText(node) +
           "\n";
}

template <class TMakeLine>
void CRelaxationLog::Append(TMakeLine makeLine) noexcept {
    if (!g_options.TryRelaxSpecialHeuristicsLog || m_file.empty())
        return;
    try {
        const std::lock_guard hold(LogMutex());
        std::ofstream(m_file, std::ios::app) << makeLine();
    } catch (const std::exception&) {
        // No memory for the line: it is lost, as told in the header.
        return;
    }
}

void CRelaxationLog::Write(const TChessboard& node, bool before) noexcept {
    Append([&] { return LineOf(node, before); });
}

void CRelaxationLog::WriteLine(const std::string& line) noexcept {
    Append([&line] { return line + "\n"; });
}

void LogRelaxation(const TChessboard& node, bool before) {
    if (node.m_searchContext != nullptr && node.m_searchContext->relaxationLog != nullptr)
        node.m_searchContext->relaxationLog->Write(node, before);
}

void LogRelaxationTime(const TChessboard& node, const std::string& line) {
    if (node.m_searchContext != nullptr && node.m_searchContext->relaxationLog != nullptr)
        node.m_searchContext->relaxationLog->WriteLine(line);
}

}  // namespace quillmere
