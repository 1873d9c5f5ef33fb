// Small tests of characters and the trimming of a text, the same in every locale and for every
// byte: a byte of 128 and above is neither a letter nor a digit nor a blank.
#pragma once

#include <string_view>

namespace quillmere {

constexpr bool IsUpperLetter(char c) {
    return c >= 'A' && c <= 'Z';
}
constexpr bool IsLowerLetter(char c) {
    return c >= 'a' && c <= 'z';
}
constexpr bool IsLetter(char c) {
    return IsUpperLetter(c) || IsLowerLetter(c);
}
constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
// Line ends count as blanks, since texts come from lines of files and from the clipboard.
constexpr bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

constexpr char ToUpperLetter(char c) {
    return IsLowerLetter(c) ? static_cast<char>(c - 32) : c;
}
constexpr char ToLowerLetter(char c) {
    return IsUpperLetter(c) ? static_cast<char>(c + 32) : c;
}

// The text without the blanks at both ends.
constexpr std::string_view StripBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace quillmere
