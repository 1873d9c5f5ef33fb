// Text of an INI file: read its values, and replace some without touching anything else.
//
// Reading is SimpleIni's. Its writer would rearrange what the user wrote (blank lines, spacing,
// line ends, repeated keys, remarks after the last key, lines that are no entries), so that a
// change is made in the bytes themselves and then checked by reading both texts.
//
// Sections and keys are compared whatever the case of their (ASCII) letters. Where a key stands
// more than once in a section, the first one counts, also over several parts of the section. Lines
// that begin with ';' or '#' are remarks. A value loses the spaces around it and a pair of double
// quotes.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Values of one section by key in lower case.
using TIniSection = std::map<std::string, std::string>;

TIniSection ReadIniSection(const std::string& bytes, std::string_view section);

struct TIniChange {
    std::string key;
    std::string value;
    // The value is a number: a remark behind the old one ("1 ; my choice") stays there.
    bool isNumber = true;
};

// The text with the values changed: in the line of the key where it stands, else in a new line
// behind the last entry of the section, else in a new section at the end. Nothing if the text
// cannot be changed without harm: it holds zero bytes (it is not text, or of 16-bit characters),
// or a line with nothing but '[', which the reader joins with the next one.
std::optional<std::string> ChangeIniValues(const std::string& bytes,
                                           std::string_view section,
                                           const std::vector<TIniChange>& changes);

// Lower case of ASCII letters, as keys are compared.
std::string LowerAscii(std::string_view text);

}  // namespace quillmere
