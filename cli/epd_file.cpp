#include "cli/epd_file.h"

#include "cli/commands.h"
#include "core/platform/file_replace.h"
#include "core/play_board.h"
#include "core/san.h"
#include "core/text.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>

namespace quillmere {
namespace {

constexpr int kPositionFields = 4;

// Takes the first word off the front of the text.
std::string_view TakeWord(std::string_view& text) {
    text = StripBlanks(text);
    std::size_t end = 0;
    while (end < text.size() && !IsBlank(text[end]))
        ++end;
    const std::string_view word = text.substr(0, end);
    text = StripBlanks(text.substr(end));
    return word;
}

bool IsNumber(std::string_view word) {
    for (const char c : word) {
        if (!IsDigit(c))
            return false;
    }
    return !word.empty();
}

// The four or six fields of the position; the operations are left in `text`.
std::string TakePosition(std::string_view& text) {
    std::string fen;
    for (int i = 0; i < kPositionFields; ++i) {
        const std::string_view word = TakeWord(text);
        if (word.empty())
            throw ChessException(EMessage::kEpdMissingFields, {std::to_string(i)});
        fen += (i == 0 ? "" : " ") + std::string(word);
    }
    std::string_view rest = text;
    const std::string_view clock = TakeWord(rest);
    const std::string_view number = TakeWord(rest);
    if (IsNumber(clock) && IsNumber(number)) {
        fen += " " + std::string(clock) + " " + std::string(number);
        text = rest;
    }
    return fen;
}

struct TOperation {
    std::string name;
    std::string_view value;
};

// Takes one operation with its semicolon off the front; nothing at the end of the line.
std::optional<TOperation> TakeOperation(std::string_view& text) {
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

    const std::string name(TakeWord(operation));
    bool isName = IsLetter(name.front());
    for (const char c : name)
        isName = isName && (IsLetter(c) || IsDigit(c) || c == '_');
    if (!isName)
        throw ChessException(EMessage::kEpdNoOperation, {name});
    return TOperation{name, operation};
}

std::string_view Unquote(std::string_view value) {
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        return value.substr(1, value.size() - 2);
    return value;
}

int ReadFullMoves(const std::string& operation, std::string_view text) {
    int moves = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, moves);
    if (error != std::errc() || stop != end || moves < 1 || moves > kMaxFullMoves)
        throw ChessException(EMessage::kEpdBadLength,
                             {operation, std::string(text), std::to_string(kMaxFullMoves)});
    return moves;
}

// What the operations of one line say.
struct TOperations {
    std::optional<int> directMate;  // dm
    std::optional<int> mateOfKey;   // bm #n
    std::vector<std::string_view> keys;
    std::string id;
    std::vector<std::pair<std::string, std::string>> others;

    void Add(const TOperation& operation);
    int FullMoves() const;
};

void TOperations::Add(const TOperation& operation) {
    const bool isOurs = operation.name == "dm" || operation.name == "bm" || operation.name == "id";
    if (isOurs && StripBlanks(operation.value).empty())
        throw ChessException(EMessage::kEpdEmptyOperation, {operation.name});
    const bool isTwice = (operation.name == "dm" && directMate) ||
                         (operation.name == "bm" && (mateOfKey || !keys.empty())) ||
                         (operation.name == "id" && !id.empty());
    if (isTwice)
        throw ChessException(EMessage::kEpdTwice, {operation.name});
    if (operation.name == "dm") {
        directMate = ReadFullMoves("dm", operation.value);
    } else if (operation.name == "id") {
        id = Unquote(operation.value);
    } else if (operation.name == "bm") {
        std::string_view rest = operation.value;
        while (!rest.empty()) {
            const std::string_view word = TakeWord(rest);
            if (word.front() == '#')
                mateOfKey = ReadFullMoves("bm", word.substr(1));
            else
                keys.push_back(word);
        }
    } else {
        others.emplace_back(operation.name, Unquote(operation.value));
    }
}

int TOperations::FullMoves() const {
    if (directMate && mateOfKey && *directMate != *mateOfKey)
        throw ChessException(EMessage::kEpdLengthsDiffer,
                             {std::to_string(*directMate), std::to_string(*mateOfKey)});
    if (!directMate && !mateOfKey)
        throw ChessException(EMessage::kEpdNoLength);
    return directMate ? *directMate : *mateOfKey;
}

TEpdRecord ReadLine(std::string_view text, int line) {
    const TPosition position = ReadPosition(TakePosition(text));
    TOperations operations;
    while (const std::optional<TOperation> operation = TakeOperation(text))
        operations.Add(*operation);

    TEpdRecord record;
    record.line = line;
    record.id = operations.id.empty() ? "line-" + std::to_string(line) : operations.id;
    record.task = MakeTask(position, HalfMovesOfMate(operations.FullMoves()));
    record.otherOperations = std::move(operations.others);
    CPlayBoard board(position.board, position.IsBlackToMove());
    for (const std::string_view key : operations.keys)
        record.expectedKeys.push_back(ReadShortMove(board.Node(), key));
    return record;
}

}  // namespace

std::string_view TEpdRecord::Operation(std::string_view name) const {
    for (const auto& [operation, value] : otherOperations) {
        if (operation == name)
            return value;
    }
    return {};
}

std::vector<TEpdRecord> ReadEpdText(std::string_view text, const std::string& name) {
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    std::vector<TEpdRecord> records;
    for (int line = 1; !text.empty(); ++line) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view row = StripBlanks(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (row.empty() || row.front() == '#')
            continue;
        try {
            records.push_back(ReadLine(row, line));
        } catch (const ChessException& fault) {
            throw CPlacedException(name + ":" + std::to_string(line), fault);
        }
    }
    if (records.empty())
        throw ChessException(EMessage::kEpdNoPositions, {name});
    return records;
}

std::vector<TEpdRecord> ReadEpdFile(const std::string& file) {
    if (file == "-") {
        const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
        return ReadEpdText(text, file);
    }
    std::string text;
    std::error_code unknown;
    if (const auto type = std::filesystem::status(file, unknown).type();
        type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character) {
        // A pipe or terminal under a name, such as that of a process substitution.
        std::ifstream stream(file, std::ios::binary);
        text.assign(std::istreambuf_iterator<char>(stream), {});
        return ReadEpdText(text, file);
    }
    if (const std::error_code error = ReadWholeFile(file, text))
        throw ChessException(EMessage::kFileUnreadable, {file, error.message()});
    return ReadEpdText(text, file);
}

}  // namespace quillmere
