#include "cli/input_file.h"

#include "core/chess_exception.h"
#include "core/platform/file_replace.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace quillmere {

std::string ReadInputFile(const std::string& file) {
    if (file == "-")
        return {std::istreambuf_iterator<char>(std::cin), {}};
    std::string text;
    std::error_code unknown;
    if (const auto type = std::filesystem::status(file, unknown).type();
        type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character) {
        // A pipe or terminal under a name, such as that of a process substitution.
        std::ifstream stream(file, std::ios::binary);
        text.assign(std::istreambuf_iterator<char>(stream), {});
        return text;
    }
    if (const std::error_code error = ReadWholeFile(file, text))
        throw ChessException(EMessage::kFileUnreadable, {file, error.message()});
    return text;
}

}  // namespace quillmere
