#include "problems/epd_text.h"

#include "core/chess_exception.h"
#include "core/text.h"
#include "problems/text_encoding.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr int kPositionFields = 4;

bool IsNumber(std::string_view word) {
    for (const char c : word) {
        if (!IsDigit(c))
            return false;
    }
    return !word.empty();
}

}  // namespace

void ForEachEpdLine(std::string_view text,
                    const std::function<void(std::string_view line, int number)>& row) {
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = StripBlanks(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!line.empty() && line.front() != '#')
            row(line, number);
    }
}

std::string_view TakeEpdWord(std::string_view& text) {
    text = StripBlanks(text);
    std::size_t end = 0;
    while (end < text.size() && !IsBlank(text[end]))
        ++end;
    const std::string_view word = text.substr(0, end);
    text = StripBlanks(text.substr(end));
    return word;
}

std::string TakeEpdPosition(std::string_view& text) {
    std::string fen;
    for (int i = 0; i < kPositionFields; ++i) {
        const std::string_view word = TakeEpdWord(text);
        if (word.empty())
            throw ChessException(EMessage::kEpdMissingFields, {std::to_string(i)});
        fen += (i == 0 ? "" : " ") + std::string(word);
    }
    std::string_view rest = text;
    const std::string_view clock = TakeEpdWord(rest);
    const std::string_view number = TakeEpdWord(rest);
    if (IsNumber(clock) && IsNumber(number)) {
        fen += " " + std::string(clock) + " " + std::string(number);
        text = rest;
    }
    return fen;
}

std::optional<TEpdOperation> TakeEpdOperation(std::string_view& text) {
    text = StripBlanks(text);
    while (!text.empty() && text.front() == ';')
        text = StripBlanks(text.substr(1));
    if (text.empty())
        return std::nullopt;
    bool isQuoted = false;
    std::size_t end = 0;
    for (; end < text.size() && (isQuoted || text[end] != ';'); ++end)
        isQuoted ^= text[end] == '"';
    if (isQuoted)
        throw ChessException(EMessage::kEpdOpenQuote);
    std::string_view operation = text.substr(0, end);
    text = end < text.size() ? text.substr(end + 1) : std::string_view();

    const std::string name(TakeEpdWord(operation));
    bool isName = IsLetter(name.front());
    for (const char c : name)
        isName = isName && (IsLetter(c) || IsDigit(c) || c == '_');
    if (!isName)
        throw ChessException(EMessage::kEpdNoOperation, {name});
    return TEpdOperation{name, operation};
}

std::string_view UnquoteEpd(std::string_view value) {
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        return value.substr(1, value.size() - 2);
    return value;
}

std::vector<std::string> SplitEpdTexts(const TEpdOperation& operation) {
    std::vector<std::string> texts;
    std::string_view rest = StripBlanks(operation.value);
    while (!rest.empty()) {
        const std::size_t end = rest.front() == '"' ? rest.find('"', 1) : std::string_view::npos;
        if (end == std::string_view::npos)
            throw ChessException(EMessage::kConvertOpenQuote, {operation.name});
        texts.emplace_back(rest.substr(1, end - 1));
        rest = StripBlanks(rest.substr(end + 1));
    }
    return texts;
}

}  // namespace quillmere
