// What a save of a collection loses: words of the grammar that the writer does not write, comments
// of the file, and what a text must give up to stand in one line.
//
// What only the reader sees is entered in lostBySave of the problem or of the collection. An entry is
// a word of the grammar as it is ("GLOBREGMB"), or what one of the functions below makes.
#pragma once

#include "problems/problem_collection.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Entries of lostBySave; lines count from 1.
std::string LostComment(int line);
std::string LostBesideMoves(int line);  // text of a variant that belongs to no move
std::string LostMoveNumbers(int line);  // a variant that is not numbered from 1 on
std::string LostBytes(int line);        // unknown to the code page of the file
// A text in UTF-8 that was read in this code page, since it does not say what it is.
std::string LostEncoding(std::string_view codePage);
std::string LostStipulation(std::string_view text);  // "#3", of a problem with played moves
std::string LostTag(std::string_view tag);  // became the same as another tag by translation
std::string LostProblem(i32 number);        // replaced by a later one of the file
std::string LostRest(int line);             // reading ended at a fault in this line

// The entry is of a text in the file that no problem keeps, and that a copy of the problem in another
// collection never had: a comment, or what stands beside the moves of a variant.
bool IsLostRemark(std::string_view entry);
bool IsLostEncoding(std::string_view entry);

// The fields of the problem that did not come back from its own text and that SaveLossesOf does not
// name; as of DifferentFields.
std::vector<std::string> UnnamedLosses(const TChessProblem& problem, const TChessProblem& back);

// One loss each, as a phrase without the problem's number, in a fixed order. Empty where a save
// keeps everything.
std::vector<std::string> SaveLossesOf(const TChessProblem& problem, ELanguage language);

// The losses of the whole collection as lines for a user: "Problem 7: ...", those of the file as
// such first, then by number.
std::vector<std::string> SaveLossLines(const TProblemCollection& collection, ELanguage language);

}  // namespace quillmere
