// Collections from and to JSON, in which everything of a collection has its place.
//
// A file is one array of problems, one a line, or, as JSON lines, one problem a line and no array. Each
// problem is an object; docs/cli.md has the fields. Fields that say nothing are left out. Moves are
// "e2e4" or "e7e8q".
#pragma once

#include "problems/conversion.h"

#include <string>
#include <string_view>

namespace quillmere {

// Rises when a field changes its meaning or goes away.
constexpr int kCollectionSchema = 1;

// Texts that are no UTF-8 are told as losses.
std::string
WriteJson(const TProblemCollection& collection, bool areLines, TConversionRemarks& remarks);

// Reads either form and adds the problems. Nothing unknown is passed over. Throws CProblemFileFault
// where the line is known, else ChessException that names the place, "[2].variants[0].moves[1].text";
// ChessException (kConvertNoProblems) for a text without problems.
void ReadJson(std::string_view text, TProblemCollection& collection);

}  // namespace quillmere
