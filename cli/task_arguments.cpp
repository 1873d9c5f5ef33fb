#include "cli/task_arguments.h"

#include "core/platform/system_info.h"
#include "registers/register_limits.h"
#include "session/options.h"

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

}  // namespace quillmere
