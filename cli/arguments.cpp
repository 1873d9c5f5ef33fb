#include "cli/arguments.h"

#include "cli/columns.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>

namespace quillmere {
namespace {

struct TCommandRow {
    std::string_view name;
    std::string_view arguments;
    int least;
    int most;
    EMessage help;
};

struct TOptionRow {
    std::string_view command;
    std::string_view name;
    std::string_view value;
    EMessage help;
};

constexpr TCommandRow kCommands[] = {
#define QUILLMERE_COMMAND(routine, name, arguments, least, most, help)                             \
    {name, arguments, least, most, EMessage::help},
#define QUILLMERE_COMMAND_OPTION(command, name, value, help)
#include "cli/commands.def"
#undef QUILLMERE_COMMAND
#undef QUILLMERE_COMMAND_OPTION
};

constexpr TOptionRow kOptions[] = {
#define QUILLMERE_COMMAND(routine, name, arguments, least, most, help)
#define QUILLMERE_COMMAND_OPTION(command, name, value, help) {command, name, value, EMessage::help},
#include "cli/commands.def"
#undef QUILLMERE_COMMAND
#undef QUILLMERE_COMMAND_OPTION
};

constexpr int kAnyNumber = 1 << 20;

const TCommandRow* FindCommand(std::string_view name) {
    const auto* row = std::ranges::find(kCommands, name, &TCommandRow::name);
    return row == std::end(kCommands) ? nullptr : row;
}

bool BelongsTo(const TOptionRow& row, std::string_view command) {
    return row.command.empty() || row.command == command;
}

// "--help" of "-h,--help".
constexpr std::string_view LongName(const TOptionRow& row) {
    return row.name.substr(row.name.find("--"));
}

void AddOptions(CLI::App& app, std::string_view command, TArguments& arguments) {
    app.set_help_flag("");
    for (const TOptionRow& row : kOptions) {
        if (!BelongsTo(row, command))
            continue;
        const std::string names(row.name);
        const std::string name(LongName(row));
        auto& options = arguments.options;
        if (row.value.empty()) {
            app.add_flag_callback(names, [&options, name] { options[name]; });
        } else {
            app.add_option_function<std::string>(
                   names, [&options, name](const std::string& value) { options[name] = value; })
                ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
        }
    }
}

// The parser's own texts are English only; what it found wrong is told by the message table.
[[noreturn]] void ThrowParseFault(const CLI::App& app, const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    const std::string command = commands.empty() ? "" : commands.front()->get_name();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
        const std::vector<std::string> extras = app.remaining(true);
        const std::string extra = extras.empty() ? "" : extras.front();
        if (extra.size() > 1 && extra.front() == '-')
            throw CUsageException(command.empty() ? EMessage::kUsageNoCommand
                                                  : EMessage::kUsageUnknownOption,
                                  {extra, command});
        if (command.empty())
            throw CUsageException(EMessage::kUsageUnknownCommand, {extra});
        throw CUsageException(EMessage::kUsageUnexpectedArgument, {extra, command});
    }
    // Every other text begins with the name of the option and a colon.
    const std::string text = error.what();
    throw CUsageException(EMessage::kUsageBadOption, {text.substr(0, text.find(':')), command});
}

std::string HelpRow(const std::string& left, std::string_view right, std::size_t width) {
    return fmt::format("  {}{}\n", PadRight(left, width + 2), right);
}

std::string OptionLeft(const TOptionRow& row) {
    const std::string_view name = LongName(row);
    return row.value.empty() ? std::string(name) : fmt::format("{} {}", name, row.value);
}

std::string OptionRows(std::string_view command, std::string_view suites, ELanguage language) {
    std::size_t width = 0;
    for (const TOptionRow& row : kOptions)
        width = std::max(width, DisplayWidth(OptionLeft(row)));
    std::string out;
    for (const TOptionRow& row : kOptions) {
        if (row.command == command)
            out += HelpRow(
                OptionLeft(row), FormatMessage(row.help, language, {std::string(suites)}), width);
    }
    return out;
}

}  // namespace

std::optional<std::string> TArguments::Value(std::string_view name) const {
    const auto found = options.find(name);
    return found == options.end() ? std::nullopt : std::optional(found->second);
}

std::optional<i64> TArguments::Number(std::string_view name, i64 low, i64 high) const {
    const std::optional<std::string> text = Value(name);
    return text ? std::optional(ReadNumber(name, *text, low, high)) : std::nullopt;
}

std::optional<double> TArguments::Decimal(std::string_view name, double low, double high) const {
    const std::optional<std::string> text = Value(name);
    if (!text)
        return std::nullopt;
    double value = 0;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, value, std::chars_format::fixed);
    if (error != std::errc() || stop != end || !std::isfinite(value) || value < low || value > high)
        throw CUsageException(
            EMessage::kUsageNumber,
            {std::string(name), *text, fmt::format("{}", low), fmt::format("{}", high)});
    return value;
}

i64 ReadNumber(std::string_view name, std::string_view text, i64 low, i64 high) {
    i64 value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < low || value > high)
        throw CUsageException(
            EMessage::kUsageNumber,
            {std::string(name), std::string(text), std::to_string(low), std::to_string(high)});
    return value;
}

TArguments ParseArguments(int argc, const char* const* argv) {
    TArguments arguments;
    CLI::App app;
    AddOptions(app, "", arguments);
    app.require_subcommand(0, 1);
    for (const TCommandRow& row : kCommands) {
        CLI::App* command = app.add_subcommand(std::string(row.name));
        AddOptions(*command, row.name, arguments);
        command->add_option("ARGUMENT", arguments.positionals)->expected(0, kAnyNumber);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        ThrowParseFault(app, error);
    }
    const auto commands = app.get_subcommands();
    if (commands.empty())
        return arguments;
    arguments.command = commands.front()->get_name();
    if (arguments.Has("--help") || arguments.Has("--version"))
        return arguments;
    const TCommandRow& row = *FindCommand(arguments.command);
    const auto given = static_cast<int>(arguments.positionals.size());
    if (given > row.most)
        throw CUsageException(
            EMessage::kUsageUnexpectedArgument,
            {arguments.positionals[static_cast<std::size_t>(row.most)], arguments.command});
    if (given < row.least)
        throw CUsageException(EMessage::kUsageMissingArgument,
                              {std::string(row.arguments), arguments.command});
    return arguments;
}

std::optional<ELanguage> LanguageFromCode(std::string_view code) {
    if (code == "pl")
        return ELanguage::kPolish;
    if (code == "en")
        return ELanguage::kEnglish;
    if (code == "uk")
        return ELanguage::kUkrainian;
    return std::nullopt;
}

std::optional<ELanguage> FindLanguage(int argc, const char* const* argv) {
    constexpr std::string_view kOption = "--language";
    std::optional<ELanguage> found;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == kOption && i + 1 < argc)
            found = LanguageFromCode(argv[i + 1]);
        else if (argument.starts_with(kOption) && argument.substr(kOption.size()).starts_with("="))
            found = LanguageFromCode(argument.substr(kOption.size() + 1));
    }
    return found;
}

std::string ShortHelp(ELanguage language) {
    const auto text = [language](EMessage id) { return MessageText(id, language); };
    std::size_t width = 0;
    for (const TCommandRow& row : kCommands)
        width = std::max(width, row.name.size());
    std::string out = fmt::format("{}\n\n{}: quillmere COMMAND ...\n\n{}:\n",
                                  text(EMessage::kHelpAbout),
                                  text(EMessage::kHelpUsage),
                                  text(EMessage::kHelpCommands));
    for (const TCommandRow& row : kCommands)
        out += HelpRow(std::string(row.name), text(row.help), width);
    out +=
        fmt::format("\n{}:\n{}", text(EMessage::kHelpCommonOptions), OptionRows("", "", language));
    out += fmt::format("\n{}:\n"
                       "  quillmere solve \"8/8/8/8/8/Q7/4p3/5k1K w - -\" --moves 5\n"
                       "\n{}\n{}\n",
                       text(EMessage::kHelpExample),
                       text(EMessage::kHelpMore),
                       text(EMessage::kHelpExitCodes));
    return out;
}

std::string CommandHelp(std::string_view command, std::string_view suites, ELanguage language) {
    const auto text = [language](EMessage id) { return MessageText(id, language); };
    const TCommandRow& row = *FindCommand(command);
    std::string out = fmt::format("{}\n\n{}: quillmere {}{}{}\n",
                                  text(row.help),
                                  text(EMessage::kHelpUsage),
                                  row.name,
                                  row.arguments.empty() ? "" : " ",
                                  row.arguments);
    const std::string own = OptionRows(command, suites, language);
    if (!own.empty())
        out += fmt::format("\n{}:\n{}", text(EMessage::kHelpOptions), own);
    out +=
        fmt::format("\n{}:\n{}", text(EMessage::kHelpCommonOptions), OptionRows("", "", language));
    return out;
}

}  // namespace quillmere
