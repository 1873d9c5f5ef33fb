#include "registers/register_log.h"

#include "session/options.h"

#include <exception>
#include <fstream>

namespace quillmere {
namespace {

constexpr const char* kLogFileName = "registerInfo.log";

}  // namespace

CRegisterLog::CRegisterLog(const std::filesystem::path& programFolder)
    : m_file(programFolder.empty() ? programFolder : programFolder / kLogFileName) {}

void CRegisterLog::Write(const char* message,
                         i32 firstParameter,
                         i32 secondParameter,
                         u32 elementsIn,
                         u32 doubtfulElementsIn) noexcept {
    if (!g_options.RegisterInfoLog || m_file.empty())
        return;
    try {
        const std::lock_guard hold(m_lock);
        std::ofstream out(m_file, std::ios::app);
        out << message << ", msg params: " << firstParameter << ", " << secondParameter << '\n'
            << "\t\t\tElementsIn= " << elementsIn << ", DoubtfulElementsIn=" << doubtfulElementsIn
            << '\n';
    } catch (const std::exception&) {
        // No memory for the stream: the message is lost, as told in the header.
        return;
    }
}

}  // namespace quillmere
