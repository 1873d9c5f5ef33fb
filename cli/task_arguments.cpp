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
    request.quickMateDepth = ReadQuickMateDepth(arguments);
    request.clearRegister = g_options.ClearRegisterOnStartSolving;
    return request;
}

i16 ReadQuickMateDepth(const TArguments& arguments) {
    constexpr std::string_view kName = "--quick-mate-depth";
    const auto text = arguments.Value(kName);
    if (!text)
        return kQuickMateDepthUnset;
    // A number that is out of range has words of its own; what is none is told like any other.
    const bool isNumber =
        !text->empty() &&
        text->find_first_not_of("0123456789", text->front() == '-') == std::string::npos &&
        *text != "-";
    try {
        return static_cast<i16>(
            HalfMovesOfMate(static_cast<int>(ReadNumber(kName, *text, 1, kMaxQuickMateMoves))));
    } catch (const CUsageException&) {
        if (!isNumber)
            throw;
        throw CUsageException(EMessage::kQuickMateDepthOutOfRange);
    }
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
