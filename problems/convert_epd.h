// Collections from and to EPD, one problem a line:
//
//   8/8/8/8/8/Q7/4p3/5k1K w - - dm 5; bm Qf8+; id "7"; c0 "Samuel Loyd, 1857"; tags "sea snake";
//
//   dm n        mate in n; "bm #n" is read as well
//   bm MOVE...  the answer
//   id "N"      the number; a name that is no number goes in front of the description
//   stip "s#n"  a selfmate, for which EPD has no word
//   flags W...  the flags of the head line, one word each
//   moves M...  the moves played, in a problem without a stipulation
//   answer M... the answer behind played moves
//   c0 "..."    the description; what c1 to c9 say is put behind it
//   tags "..."  the tags, each in quotation marks
//
// Without dm, "bm #n" and stip there is no stipulation.
#pragma once

#include "problems/conversion.h"

namespace quillmere {

// Problems that EPD cannot hold at all are left out with a remark.
std::string
WriteEpd(const TProblemCollection& collection, ELanguage language, TConversionRemarks& remarks);

// Adds the problems to the collection. Throws CProblemFileFault with the line, ChessException
// (kConvertNoProblems).
void ReadEpd(std::string_view text, TProblemCollection& collection, TConversionRemarks& remarks);

}  // namespace quillmere
