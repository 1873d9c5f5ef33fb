// quillmere cp: the parts of the command and their arguments.
#include "cli/cp_command.h"

#include "problems/save_losses.h"
#include "session/options.h"

#include <algorithm>
#include <limits>

namespace quillmere {
namespace {

struct TPart {
    std::string_view name;
    EExitCode (*run)(const TCpCall& call);
    std::string_view arguments;
    std::size_t least;
    std::size_t most;
    // Options of the command that the part takes besides kSharedOptions.
    std::vector<std::string_view> options;
};

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

const TPart kParts[] = {
    {"check", RunCpCheck, "FILE...", 1, kAnyNumber, {}},
    {"list", RunCpList, "FILE", 1, 1, {"--tag", "--json"}},
    {"format", RunCpFormat, "FILE", 1, 1, {"--output", "--allow-loss", "--force"}},
    {"append", RunCpAppend, "FILE OTHER", 2, 2, {"--allow-loss", "--dry-run"}},
    {"remove", RunCpRemove, "FILE OTHER", 2, 2, {"--allow-loss", "--dry-run"}},
    {"convert", RunCpConvert, "IN OUT", 2, 2, {"--from", "--to", "--allow-loss", "--force"}},
};
// Options of this command only; those of every command are not looked at here.
constexpr std::string_view kOwnOptions[] = {
    "--tag", "--json", "--output", "--allow-loss", "--dry-run", "--from", "--to", "--force"};

const TPart& FindPart(const std::string& name) {
    const auto* part = std::ranges::find(kParts, name, &TPart::name);
    if (part != std::end(kParts))
        return *part;
    std::string names;
    for (const TPart& row : kParts)
        names += (names.empty() ? "" : ", ") + std::string(row.name);
    throw CUsageException(EMessage::kUsageChoice, {"cp", name, names});
}

void CheckArguments(const TPart& part, const TCpCall& call) {
    const std::string command = "cp " + std::string(part.name);
    if (call.files.size() < part.least)
        throw CUsageException(EMessage::kUsageMissingArgument,
                              {std::string(part.arguments), command});
    if (call.files.size() > part.most)
        throw CUsageException(EMessage::kUsageUnexpectedArgument, {call.files[part.most], command});
    for (const std::string_view option : kOwnOptions) {
        if (call.arguments.Has(option) && std::ranges::count(part.options, option) == 0)
            throw CUsageException(EMessage::kUsageUnknownOption, {std::string(option), command});
    }
}

}  // namespace

void TellLosses(const TCpCall& call,
                const std::vector<std::string>& losses,
                const std::string& output) {
    const bool isAllowed = call.arguments.Has("--allow-loss");
    for (const std::string& loss : losses) {
        if (isAllowed)
            call.console.Note(loss);
        else
            call.console.Error(loss);
    }
    if (!losses.empty() && !isAllowed)
        throw ChessException(EMessage::kCpRefused, {output});
}

bool IsThere(const std::filesystem::path& path) {
    std::error_code unknown;
    return std::filesystem::exists(std::filesystem::symlink_status(path, unknown));
}

void CheckOutputs(const TCpCall& call, const std::vector<std::filesystem::path>& files) {
    namespace fs = std::filesystem;
    for (const fs::path& file : files) {
        std::error_code unknown;
        const fs::file_status target = fs::status(file, unknown);
        if (fs::exists(target) && !fs::is_regular_file(target))
            throw ChessException(EMessage::kCpNotRegular, {file.string()});
        if (IsThere(file) && !call.arguments.Has("--force"))
            throw ChessException(EMessage::kCpOutputExists, {file.string()});
    }
}

std::vector<std::string>
CpSaveLosses(const TCpCall& call, const std::string& file, const TProblemCollection& collection) {
    std::vector<std::string> losses;
    for (const std::string& line : SaveLossLines(collection, call.console.Language()))
        losses.push_back(file + ": " + call.console.Text(EMessage::kCpIfSaved, {line}));
    return losses;
}

EExitCode RunCp(const TCommandCall& call) {
    const std::vector<std::string>& words = call.arguments.positionals;
    const TCpCall part = {call.arguments, call.console, {words.begin() + 1, words.end()}};
    const TPart& row = FindPart(words.front());
    CheckArguments(row, part);
    return row.run(part);
}

}  // namespace quillmere
