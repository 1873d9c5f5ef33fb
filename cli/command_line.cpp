// From argv to a command, and from its faults to one line and an exit code.
#include "cli/bench_suites.h"
#include "cli/commands.h"
#include "core/platform/system_info.h"
#include "core/platform/terminal.h"
#include "session/options.h"
#include "session/program_folder.h"

#include <cstdlib>
#include <exception>

namespace quillmere {
namespace {

using TRoutine = EExitCode (*)(const TCommandCall&);

TRoutine FindRoutine(std::string_view command) {
#define QUILLMERE_COMMAND(routine, name, arguments, least, most, help)                             \
    if (command == (name))                                                                         \
        return Run##routine;
#define QUILLMERE_COMMAND_OPTION(command, name, value, help)
#include "cli/commands.def"
#undef QUILLMERE_COMMAND
#undef QUILLMERE_COMMAND_OPTION
    return nullptr;
}

// Keeps the warnings until it is known in which language and whether at all they are told.
class CKeptWarnings : public IWarningSink {
public:
    void Warn(EMessage /*title*/, EMessage text, const std::vector<std::string>& values) override {
        m_warnings.emplace_back(text, values);
    }
    void Tell(CConsole& console) const {
        for (const auto& [text, values] : m_warnings)
            console.Note(console.Text(text, values));
    }

private:
    std::vector<std::pair<EMessage, std::vector<std::string>>> m_warnings;
};

// A fault of the program or its machine rather than of what it was given.
bool IsInternal(EMessage id) {
    return id == EMessage::kThreadNotStarted || id == EMessage::kOutputFailed ||
           id == EMessage::kRegisterIncoherent || id == EMessage::kInternalFault;
}

std::string FaultText(const CConsole& console, const std::exception& fault) {
    const auto* chess = dynamic_cast<const ChessException*>(&fault);
    if (chess == nullptr)
        return console.Text(EMessage::kInternalFault, {fault.what()});
    const auto* placed = dynamic_cast<const CPlacedException*>(&fault);
    const std::string text = chess->Text(console.Language());
    return placed == nullptr ? text : placed->Place() + ": " + text;
}

EExitCode TellFault(CConsole& console, const std::exception& fault) {
    console.Error(FaultText(console, fault));
    return ExitCodeOfFault(fault);
}

ELanguage ReadLanguage(const TArguments& arguments) {
    if (const auto code = arguments.Value("--language")) {
        if (const auto language = LanguageFromCode(*code))
            return *language;
        throw CUsageException(EMessage::kUsageChoice, {"--language", *code, "pl, en, uk"});
    }
    return LanguageOf(g_options);
}

TConsoleSettings MakeSettings(const TArguments& arguments) {
    TConsoleSettings settings;
    settings.language = ReadLanguage(arguments);
    settings.isQuiet = arguments.Has("--quiet");
    settings.wantsProgress =
        !settings.isQuiet && !arguments.Has("--no-progress") && IsErrorTerminal();
    const char* noColour = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe): no thread yet
    settings.wantsColour = IsOutputTerminal() && (noColour == nullptr || *noColour == '\0');
    return settings;
}

EExitCode RunParsed(const TArguments& arguments,
                    const std::filesystem::path& optionsFile,
                    const CKeptWarnings& warnings) {
    CConsole console(MakeSettings(arguments));
    try {
        if (arguments.Has("--version")) {
            console.Print("quillmere " QUILLMERE_VERSION "\n");
            return kExitDone;
        }
        if (arguments.command.empty()) {
            console.Print(ShortHelp(console.Language()));
            return kExitDone;
        }
        if (arguments.Has("--help")) {
            console.Print(CommandHelp(arguments.command, BenchSuiteNames(), console.Language()));
            return kExitDone;
        }
        // Whoever looks at the options or mends them sees the values themselves.
        if (arguments.command != "options")
            warnings.Tell(console);
        return FindRoutine(arguments.command)({arguments, console, optionsFile});
    } catch (const std::exception& fault) {
        return TellFault(console, fault);
    }
}

}  // namespace

EExitCode ExitCodeOfFault(const std::exception& fault) {
    if (dynamic_cast<const CUsageException*>(&fault) != nullptr)
        return kExitUsage;
    const auto* chess = dynamic_cast<const ChessException*>(&fault);
    return chess == nullptr || IsInternal(chess->Id()) ? kExitFault : kExitBadInput;
}

int RunCommandLine(int argc, const char* const* argv) {
    TConsoleSettings early;
    try {
        early.language = FindLanguage(argc, argv).value_or(ELanguage::kEnglish);
        const TArguments arguments = ParseArguments(argc, argv);
        const std::filesystem::path optionsFile =
            OptionsFile(ProgramFolder(arguments.Value("--home").value_or("")));
        CKeptWarnings warnings;
        ReadOptions(optionsFile, ReadSystemInfo(), warnings);
        return RunParsed(arguments, optionsFile, warnings);
    } catch (const std::exception& fault) {
        CConsole console(early);
        return TellFault(console, fault);
    }
}

}  // namespace quillmere
