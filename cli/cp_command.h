// The command "cp": what its parts share. Each part has a file of its own, cli/cp_NAME.cpp.
#pragma once

#include "cli/collection_file.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillmere {

// One call of a part. The positionals are those behind the name of the part.
struct TCpCall {
    const TArguments& arguments;
    CConsole& console;
    std::vector<std::string> files;
};

EExitCode RunCpCheck(const TCpCall& call);
EExitCode RunCpList(const TCpCall& call);
EExitCode RunCpFormat(const TCpCall& call);
EExitCode RunCpAppend(const TCpCall& call);
EExitCode RunCpRemove(const TCpCall& call);
EExitCode RunCpConvert(const TCpCall& call);

// Tells the losses, whole lines. Without --allow-loss they are errors, and ChessException (kCpRefused)
// with the name of the file that is not written is thrown if there are any.
void TellLosses(const TCpCall& call,
                const std::vector<std::string>& losses,
                const std::string& output);

// Something stands under the name, perhaps a link that leads nowhere.
bool IsThere(const std::filesystem::path& path);
// A save under each of the names replaces nothing, or what --force allows to replace: never anything but
// regular files. Throws ChessException (kCpNotRegular, kCpOutputExists).
void CheckOutputs(const TCpCall& call, const std::vector<std::filesystem::path>& files);

// What a save of the collection would lose, as lines that begin with the file.
std::vector<std::string>
CpSaveLosses(const TCpCall& call, const std::string& file, const TProblemCollection& collection);

}  // namespace quillmere
