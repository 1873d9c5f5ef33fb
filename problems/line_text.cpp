#include "problems/line_text.h"

#include "core/text.h"

namespace quillmere {
namespace {

// A carriage return elsewhere is kept: it ends no line of a file.
bool IsLineEnd(std::string_view text, std::size_t at) {
    return text[at] == '\n' || (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n');
}

}  // namespace

std::string WithoutLineEnds(std::string_view text, char closing) {
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!IsLineEnd(text, i) && text[i] != closing)
            line += text[i];
    }
    return line;
}

std::string OneLine(std::string_view text) {
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n')
            line += ' ';
        else if (!IsLineEnd(text, i))
            line += text[i];
    }
    return std::string(StripBlanks(line));
}

}  // namespace quillmere
