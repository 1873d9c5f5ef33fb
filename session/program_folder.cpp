#include "session/program_folder.h"

#include "session/options.h"

#include <cstdlib>

namespace quillmere {

TEnvironment ProcessEnvironment() {
    return [](const std::string& name) -> std::optional<std::string> {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in the program changes the environment
        const char* value = std::getenv(name.c_str());
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    };
}

std::filesystem::path ProgramFolder(const std::string& home, const TEnvironment& environment) {
    if (!home.empty()) {
        return home;
    }
    const std::string named = environment("QUILLMERE_HOME").value_or("");
    if (!named.empty()) {
        return named;
    }
    const std::filesystem::path config = environment("XDG_CONFIG_HOME").value_or("");
    if (config.is_absolute()) {
        return config / "quillmere";
    }
    const std::filesystem::path user = environment("HOME").value_or("");
    return user.empty() ? user : user / ".config" / "quillmere";
}

std::filesystem::path OptionsFile(const std::filesystem::path& programFolder) {
    return programFolder.empty() ? programFolder : programFolder / kOptionsFileName;
}

}  // namespace quillmere
