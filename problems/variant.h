// Named variants: lines of play that a problem carries, with comments to their moves.
//
// The text of a variant is "{name} 1.Kd2-d3 [comment] Ka8-a7 2.Kd3-c4": see docs/cp-format.md.
#pragma once

#include "core/messages.h"
#include "core/move.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

struct TVariantMove {
    TMove move = {};
    std::string text;     // the move as read, without trailing "+" and "x"
    std::string comment;  // may be empty
};

struct TProblemVariant {
    std::string name;
    // Black makes the first move of the line (its text has "..." behind the first number).
    bool doesBlackBegin = false;
    std::vector<TVariantMove> moves;
};

// By name. Two lines of one name (often the empty one) stand in the order in which they were read:
// a person who wrote two lines wants to see two.
using TVariants = std::multimap<std::string, TProblemVariant>;

// "Main variant" in the language.
std::string_view MainVariantName(ELanguage language);
// The name of the main variant in any of the languages.
bool IsMainVariantName(std::string_view name);
// Null if there is none.
const TProblemVariant* FindMainVariant(const TVariants& variants);

// If a main variant under another language's name exists and none under the current one, it gets the
// current one.
void NormaliseVariantNames(TVariants& variants, ELanguage language);

// One variant from its text, without the "//!" before it. The moves are read by form only
// (TextToMove), white first unless dots behind a number say that black begins. Throws CTokenFault with
// the move.
// *hasSkippedText (may be null) tells whether there was text that belongs to nothing: in front of the
// name, in square brackets before a move, or anything else but points between the moves.
// *hasOtherNumbers (may be null) tells whether a move has another number than VariantToText gives it.
TProblemVariant ParseVariant(std::string_view text,
                             bool* hasSkippedText = nullptr,
                             bool* hasOtherNumbers = nullptr);
// The text of the move as it was typed, where it still tells the move; else its squares.
std::string WrittenMoveText(const TVariantMove& move, bool isWhite);
// The text that ParseVariant reads back. Without comments it is for readers that do not know them.
std::string VariantToText(const TProblemVariant& variant, bool withComments);
// Name and comment as they are written: without the closing bracket and without line ends.
std::string CleanVariantName(std::string_view name);
std::string CleanVariantComment(std::string_view comment);

}  // namespace quillmere
