// Writes the documents that are made from tables of the program into the folder named by its one
// argument, normally docs/.
#include "core/platform/file_replace.h"
#include "heuristics/catalogue_document.h"
#include "session/options_document.h"

#include <cstdio>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: quillmere_generate_docs FOLDER\n", stderr);
        return 2;
    }
    const struct {
        const char* name;
        std::string text;
    } documents[] = {
        {"options.md", quillmere::OptionsDocument()},
        {"heuristics.md", quillmere::HeuristicsDocument()},
    };
    for (const auto& document : documents) {
        const std::filesystem::path file = std::filesystem::path(argv[1]) / document.name;
        if (const auto error = quillmere::ReplaceFileContent(file, document.text)) {
            std::fprintf(stderr, "%s: %s\n", file.c_str(), error.message().c_str());
            return 3;
        }
    }
    return 0;
}
