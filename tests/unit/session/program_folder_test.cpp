#include "session/program_folder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <string>

namespace quillmere {
namespace {

TEnvironment Environment(std::map<std::string, std::string> values) {
    return [values = std::move(values)](const std::string& name) -> std::optional<std::string> {
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
}

struct TCase {
    const char* name;
    std::string home;
    std::map<std::string, std::string> environment;
    std::string folder;
};

const TCase kCases[] = {
    {"the command line goes before all",
     "/given",
     {{"QUILLMERE_HOME", "/named"}, {"XDG_CONFIG_HOME", "/xdg"}, {"HOME", "/user"}},
     "/given"},
    {"a relative folder belongs to the working folder", "given", {{"HOME", "/user"}}, "given"},
    {"the variable goes before the user's folders",
     "",
     {{"QUILLMERE_HOME", "/named"}, {"XDG_CONFIG_HOME", "/xdg"}, {"HOME", "/user"}},
     "/named"},
    {"an empty variable is not set",
     "",
     {{"QUILLMERE_HOME", ""}, {"XDG_CONFIG_HOME", "/xdg"}, {"HOME", "/user"}},
     "/xdg/quillmere"},
    {"the XDG folder", "", {{"XDG_CONFIG_HOME", "/xdg"}, {"HOME", "/user"}}, "/xdg/quillmere"},
    {"a relative XDG folder is not valid",
     "",
     {{"XDG_CONFIG_HOME", "xdg"}, {"HOME", "/user"}},
     "/user/.config/quillmere"},
    {"an empty XDG folder is not set",
     "",
     {{"XDG_CONFIG_HOME", ""}, {"HOME", "/user"}},
     "/user/.config/quillmere"},
    {"the user's folder", "", {{"HOME", "/user"}}, "/user/.config/quillmere"},
    {"nothing names a folder", "", {}, ""},
    {"an empty HOME is not set", "", {{"HOME", ""}}, ""},
};

TEST(ProgramFolder, Sources_AreAskedInTheirOrder) {
    for (const TCase& row : kCases) {
        EXPECT_EQ(ProgramFolder(row.home, Environment(row.environment)), row.folder) << row.name;
    }
}

TEST(ProgramFolder, ProcessEnvironment_IsTheDefault) {
    ASSERT_EQ(setenv("QUILLMERE_HOME", "/from/the/process", 1), 0);
    EXPECT_EQ(ProgramFolder(""), "/from/the/process");
    ASSERT_EQ(unsetenv("QUILLMERE_HOME"), 0);
    EXPECT_NE(ProgramFolder(""), "/from/the/process");
}

TEST(OptionsFile, LiesInTheFolder) {
    EXPECT_EQ(OptionsFile("/user/.config/quillmere"), "/user/.config/quillmere/options.ini");
    EXPECT_EQ(OptionsFile(""), "");
}

}  // namespace
}  // namespace quillmere
