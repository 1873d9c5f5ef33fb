// The program's folder: where options.ini, logs, registers, tables and online replies live.
//
// It is, in this order: the folder that the user names on the command line ("--home DIR"), the one
// of the environment variable QUILLMERE_HOME, the folder "quillmere" among the configuration files
// of the user ($XDG_CONFIG_HOME, or ~/.config where that is not set or not an absolute path).
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace quillmere {

// Value of an environment variable, nothing if it is not set.
using TEnvironment = std::function<std::optional<std::string>(const std::string& name)>;

TEnvironment ProcessEnvironment();

// An empty text of `home` or of a variable counts as not given. The folder need not exist; a
// relative one belongs to the working folder. The path is empty if nothing names a folder, not
// even HOME: then there are only defaults, and nothing can be saved.
std::filesystem::path ProgramFolder(const std::string& home,
                                    const TEnvironment& environment = ProcessEnvironment());

// The place of options.ini in a program folder; empty for an empty folder.
std::filesystem::path OptionsFile(const std::filesystem::path& programFolder);

}  // namespace quillmere
