// The set of tags of another problem file, for the lists that a user chooses tags from.
#pragma once

#include "problems/problem_reader.h"

#include <filesystem>
#include <set>
#include <string>

namespace quillmere {

// Adds every tag that stands in a block behind a line "//#TAGS", translated as tags of problems are.
// Nothing else of the file is looked at, so that a file with a fault gives its tags too. Returns the
// number of tags that were not in the set before. Throws ChessException (kErrorReadingFile) if the
// file cannot be read, kUnknownCodePage; the set is then unchanged.
std::size_t ImportTags(const std::filesystem::path& path,
                       std::set<std::string>& tags,
                       const TReadSettings& settings);

}  // namespace quillmere
