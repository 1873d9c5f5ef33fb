// Collections from and to PGN, one game a problem.
//
// The tags of a game that is written here:
//
//   Event, Stipulation  "#3", "s#2"; "?" and "-" without a stipulation
//   White               the description, "?" for none
//   Round               the number
//   Result              "1-0" where the main line ends in mate, else "*"
//   SetUp, FEN          the position
//   Key                 the answer in short notation, "-" where none is stated
//   PlayedMoves         without a stipulation: half-moves of the main line that were played
//   Flags               the flags of the head line
//   Tag1, Tag2...       the tags
//
// The main line is the main variant, else the first answer, else the first variant; without a
// stipulation the played moves. Other variants are variations, each with its name as the comment in
// front of its first move, and other answers are variations of one move. A variant in which black
// begins starts with a null move, "--".
//
// A game without the tags Key and Stipulation comes from elsewhere. Its stipulation is looked for in
// the tags Stipulation, Event and Black ("#3", "Mate in 3", "DirectMate 3", "Selfmate 3"); then the
// first move is the answer, and the main line the main variant. A game without a stipulation becomes a
// position with played moves. The description is made of White, Event, Site and Date.
#pragma once

#include "problems/conversion.h"

namespace quillmere {

// Problems that PGN cannot hold at all are left out with a remark. Lines have less than 80 columns
// but for tags and long words.
std::string
WritePgn(const TProblemCollection& collection, ELanguage language, TConversionRemarks& remarks);

// Adds the games to the collection. Throws CProblemFileFault with the line, ChessException
// (kConvertNoProblems).
void ReadPgn(std::string_view text,
             TProblemCollection& collection,
             ELanguage language,
             TConversionRemarks& remarks);

// The stipulation that a text of another program names, "#3" or "s#3"; empty if it names none.
// *isWhole tells that the text says nothing else.
std::string FindStipulation(std::string_view text, bool* isWhole);

}  // namespace quillmere
