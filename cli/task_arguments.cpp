#include "cli/task_arguments.h"

#include "core/platform/system_info.h"
#include "registers/register_limits.h"
#include "search/root.h"
#include "session/options.h"

#include <algorithm>
#include <string_view>

namespace quillmere {
namespace {

constexpr double kMaxSeconds = 1e9;
constexpr int kMegabyteShift = 20;

}  // namespace

TTaskRequest ReadTaskRequest(const TArguments& arguments) {
    TTaskRequest request;
    request.wantAllKeys = arguments.Has("--all");
    request.wantTries = arguments.Has("--tries");
    request.seconds = arguments.Decimal("--time", 0, kMaxSeconds).value_or(0);
    request.nodes = static_cast<u64>(arguments.Number("--nodes", 0, INT64_MAX).value_or(0));
    request.clearRegister = g_options.ClearRegisterOnStartSolving;
    return request;
}

u64 ReadMemoryBytes(const TArguments& arguments) {
    const TSystemInfo machine = ReadSystemInfo();
    const auto most = static_cast<i64>(machine.physicalMemoryBytes >> kMegabyteShift);
    const auto megabytes = arguments.Number("--memory", 1, most);
    return megabytes ? static_cast<u64>(*megabytes) << kMegabyteShift
                     : DefaultRegisterBytes(g_options, machine);
}

int ReadThreads(const TArguments& arguments) {
    const auto given = arguments.Value("--threads");
    if (!given)
        return std::clamp(ReadSystemInfo().logicalProcessors, 1, kMaxRootThreads);
    const std::string_view text = *given;
    const std::size_t sign = text.find('^');
    const i64 threads = ReadNumber("--threads", text.substr(0, sign), 1, kMaxRootThreads);
    if (sign != std::string_view::npos && ReadNumber("--threads", text.substr(sign + 1), 1, 3) > 1)
        throw CUsageException(EMessage::kUsageOneThreadLevel, {*given});
    return static_cast<int>(threads);
}

}  // namespace quillmere
