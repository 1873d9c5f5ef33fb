// Writes the documents that are made from tables of the program into the folder named by its one
// argument, normally docs/.
#include "core/platform/file_replace.h"
#include "session/options_document.h"

#include <cstdio>
#include <filesystem>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: quillmere_generate_docs FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path file = std::filesystem::path(argv[1]) / "options.md";
    if (const auto error = quillmere::ReplaceFileContent(file, quillmere::OptionsDocument())) {
        std::fprintf(stderr, "%s: %s\n", file.c_str(), error.message().c_str());
        return 3;
    }
    return 0;
}
