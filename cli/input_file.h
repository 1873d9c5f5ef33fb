// A file that a command reads whole.
#pragma once

#include <string>

namespace quillmere {

// "-" is standard input; a pipe or terminal under a name is read too. Throws ChessException
// (kFileUnreadable).
std::string ReadInputFile(const std::string& file);

}  // namespace quillmere
