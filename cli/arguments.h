// The command line taken apart by the table cli/commands.def, and its help.
#pragma once

#include "core/chess_exception.h"
#include "core/messages.h"
#include "core/types.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Wrong usage, as against bad input: exit code 2.
class CUsageException : public ChessException {
public:
    using ChessException::ChessException;
};

struct TArguments {
    std::string command;  // empty if there is none
    std::vector<std::string> positionals;
    std::map<std::string, std::string, std::less<>> options;  // a switch has the value ""

    bool Has(std::string_view name) const { return options.contains(name); }
    std::optional<std::string> Value(std::string_view name) const;
    // A whole number within the range; nothing if the option is not given. Throws CUsageException.
    std::optional<i64> Number(std::string_view name, i64 low, i64 high) const;
    // The same for a decimal number.
    std::optional<double> Decimal(std::string_view name, double low, double high) const;
};

// A whole number of the named argument. Throws CUsageException.
i64 ReadNumber(std::string_view name, std::string_view text, i64 low, i64 high);

// Throws CUsageException.
TArguments ParseArguments(int argc, const char* const* argv);

// The value of --language wherever it stands, so that a fault of the command line is told in the
// wished language already; nothing if it is not given or unknown.
std::optional<ELanguage> FindLanguage(int argc, const char* const* argv);
std::optional<ELanguage> LanguageFromCode(std::string_view code);

// Help of the whole program, or of one command. `suites` are the names of the bench suites.
std::string ShortHelp(ELanguage language);
std::string CommandHelp(std::string_view command, std::string_view suites, ELanguage language);

}  // namespace quillmere
