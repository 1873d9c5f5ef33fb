// What a problem says, field by field: the words for its flags and its stipulation, and the comparison
// of two problems, on which every claim about losses rests. Whoever writes a problem in some form reads
// it back and compares, rather than list by hand what the form cannot hold.
//
// Fields are named by the keywords of .cp files, the same in every language.
#pragma once

#include "problems/chess_problem.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

struct TFlagWord {
    u32 flag;  // EProblemFlag
    std::string_view word;
};
// Flags that are words of their own, in the order in which a file holds them. The two words that share
// a bit are one here.
std::span<const TFlagWord> FlagWords();
// The words of the flags that are set.
std::vector<std::string> FlagWordsOf(const TChessProblem& problem);
// Sets the flag of the word, in any case of letters. False for an unknown word.
bool SetFlagWord(TChessProblem& problem, std::string_view word);

// "#3", "s#3"; empty without a stipulation.
std::string StipulationText(const TChessProblem& problem);
// Reads such a text; empty is no stipulation. False for anything else, and nothing is changed.
bool SetStipulationText(TChessProblem& problem, std::string_view text);

// "e2e4", "e7e8q": squares as they are stored, a move to its own square too. An answer may lead over the
// edge by one rank, "e1e9" or "e1e0". Empty for any other square outside the board.
std::string RawMoveText(TMove move);
// Reads it back. False for anything else.
bool ReadRawMove(std::string_view text, TMove& move);

// The moves of an answer are stored with white's squares for castling, whichever side moves. Both
// directions: the legal move that is meant in a node, and the form to store.
TMove AnswerInNode(const TChessboard& node, TMove stored);
TMove AnswerToStore(const TChessboard& node, TMove move);

// The moves and their comments count, not how the moves were typed.
bool AreSameVariants(const TVariants& a, const TVariants& b);

// The fields that are blocks of lines; that of variants goes on with the name of one in braces.
constexpr std::string_view kTagsField = "//#TAGS";
constexpr std::string_view kVariantsField = "//!VARIANTS";

// The keywords of the fields in which two problems differ, none for equal ones. The moves of variants
// count, not how they were typed.
std::vector<std::string> DifferentFields(const TChessProblem& a, const TChessProblem& b);

}  // namespace quillmere
