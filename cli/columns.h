// Small helpers for text in columns and for arguments of several words.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Characters, not bytes: names and labels are UTF-8, and columns have to stay straight.
inline std::size_t DisplayWidth(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

// Blanks up to the width; a text that is too long is followed by one.
inline std::string PadRight(std::string_view text, std::size_t width) {
    const std::size_t used = DisplayWidth(text);
    return std::string(text) + std::string(used < width ? width - used : 1, ' ');
}

// The first characters of the text that fit into the width.
inline std::string_view CutToWidth(std::string_view text, std::size_t width) {
    std::size_t end = 0;
    for (std::size_t used = 0; end < text.size(); ++end) {
        used += DisplayWidth(text.substr(end, 1));
        if (used > width)
            break;
    }
    return text.substr(0, end);
}

// The words with a blank between them: a FEN that came without quotation marks.
inline std::string JoinWords(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

}  // namespace quillmere
