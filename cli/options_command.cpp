// quillmere options: the option table and its file.
#include "cli/commands.h"
#include "cli/json.h"
#include "session/options.h"

#include <algorithm>
#include <fmt/format.h>

namespace quillmere {
namespace {

void PrintList(const TCommandCall& call) {
    const ELanguage language = call.console.Language();
    const std::vector<TOptionView> rows = ListOptions(ReadOptionsFile(call.optionsFile));
    std::size_t width = 0;
    for (const TOptionView& row : rows)
        width = std::max(width, row.key.size());
    for (const TOptionView& row : rows) {
        const std::string range = OptionRangeText(row, language);
        if (call.arguments.Has("--json")) {
            TJson json = {{"schema", kSchema},
                          {"key", row.key},
                          {"value", row.value},
                          {"default", row.defaultValue},
                          {"help", MessageText(row.help, language)}};
            if (!row.isText) {
                json["low"] = row.low;
                json["high"] = row.high;
            }
            call.console.Print(JsonLine(json));
        } else {
            call.console.Print(fmt::format("{:<{}}  {:>6}  {:<18} {}\n",
                                           row.key,
                                           width,
                                           row.value,
                                           range,
                                           MessageText(row.help, language)));
        }
    }
}

void ExpectArguments(const TArguments& arguments, std::size_t count, const char* missing) {
    if (arguments.positionals.size() < count)
        throw CUsageException(EMessage::kUsageMissingArgument, {missing, "options"});
    if (arguments.positionals.size() > count)
        throw CUsageException(EMessage::kUsageUnexpectedArgument,
                              {arguments.positionals[count], "options"});
}

// Where the option is to be written, or its place told: without a folder there is none.
const std::filesystem::path& NamedFile(const TCommandCall& call) {
    if (call.optionsFile.empty())
        throw ChessException(EMessage::kNoProgramFolder);
    return call.optionsFile;
}

}  // namespace

EExitCode RunOptions(const TCommandCall& call) {
    const TArguments& arguments = call.arguments;
    const std::string action = arguments.positionals.empty() ? "list" : arguments.positionals[0];
    if (action == "list") {
        if (!arguments.positionals.empty())
            ExpectArguments(arguments, 1, "list");
        PrintList(call);
    } else if (action == "get") {
        ExpectArguments(arguments, 2, "KEY");
        const std::string& key = arguments.positionals[1];
        const std::string value = GetOption(ReadOptionsFile(call.optionsFile), key);
        if (arguments.Has("--json"))
            call.console.Print(JsonLine({{"schema", kSchema}, {"key", key}, {"value", value}}));
        else
            call.console.Print(value + "\n");
    } else if (action == "set") {
        ExpectArguments(arguments, 3, arguments.positionals.size() < 2 ? "KEY" : "VALUE");
        SetOption(NamedFile(call), arguments.positionals[1], arguments.positionals[2]);
    } else if (action == "path") {
        ExpectArguments(arguments, 1, "path");
        call.console.Print(NamedFile(call).string() + "\n");
    } else {
        throw CUsageException(EMessage::kUsageChoice, {"options", action, "list, get, set, path"});
    }
    return kExitDone;
}

}  // namespace quillmere
