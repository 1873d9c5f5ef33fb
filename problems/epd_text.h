// EPD text taken apart: lines, the fields of the position, operations. What the operations mean is the
// reader's own affair: the command "epd" solves, the conversion makes problems.
//
//   FIELDS {NAME {VALUE} ";"}
//
// FIELDS are four (board, side, castling, en passant) or six (and the two counters). A value in
// quotation marks may hold semicolons. Empty lines and lines that begin with '#' are comments.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

struct TEpdOperation {
    std::string name;
    std::string_view value;  // as it stands, quotation marks too
};

// Calls `row` with each line that is no comment, without blanks at its ends, and its number from 1. A
// byte order mark in front of the text is passed over.
void ForEachEpdLine(std::string_view text,
                    const std::function<void(std::string_view line, int number)>& row);

// Takes the first word off the front of the text; empty at its end.
std::string_view TakeEpdWord(std::string_view& text);
// Takes the fields of the position off the front, with one blank between them. Throws ChessException.
std::string TakeEpdPosition(std::string_view& text);
// Takes one operation with its semicolon off the front; nothing at the end of the line. Throws
// ChessException.
std::optional<TEpdOperation> TakeEpdOperation(std::string_view& text);
// Without the quotation marks around the whole.
std::string_view UnquoteEpd(std::string_view value);
// Every one of several values in quotation marks. Throws ChessException that names the operation if
// anything else stands there.
std::vector<std::string> SplitEpdTexts(const TEpdOperation& operation);

}  // namespace quillmere
