// The routines of the commands, one for each row of cli/commands.def, and what runs them.
#pragma once

#include "cli/arguments.h"
#include "cli/console.h"
#include "cli/exit_code.h"

#include <exception>
#include <filesystem>
#include <string>

namespace quillmere {

// Everything a command gets. The options of the program are in g_options.
struct TCommandCall {
    const TArguments& arguments;
    CConsole& console;
    // The file options.ini; empty if the program has no folder.
    std::filesystem::path optionsFile;
};

// Each returns an exit code; faults are exceptions.
#define QUILLMERE_COMMAND(routine, name, arguments, least, most, help)                             \
    EExitCode Run##routine(const TCommandCall& call);
#define QUILLMERE_COMMAND_OPTION(command, name, value, help)
#include "cli/commands.def"
#undef QUILLMERE_COMMAND
#undef QUILLMERE_COMMAND_OPTION

// A fault of one line of a file; the place is told before the reason.
class CPlacedException : public ChessException {
public:
    CPlacedException(std::string place, const ChessException& reason)
        : ChessException(reason), m_place(std::move(place)) {}
    const std::string& Place() const { return m_place; }

private:
    std::string m_place;
};

// What a fault that a command threw means to the caller.
EExitCode ExitCodeOfFault(const std::exception& fault);

// The whole program. Never throws; returns the exit code.
int RunCommandLine(int argc, const char* const* argv);

}  // namespace quillmere
