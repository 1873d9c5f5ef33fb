#include "cli/epd_file.h"

#include "cli/commands.h"
#include "cli/input_file.h"
#include "core/play_board.h"
#include "core/san.h"
#include "core/text.h"
#include "problems/epd_text.h"

#include <charconv>
#include <optional>

namespace quillmere {
namespace {

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

    void Add(const TEpdOperation& operation);
    int FullMoves() const;
};

void TOperations::Add(const TEpdOperation& operation) {
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
        id = UnquoteEpd(operation.value);
    } else if (operation.name == "bm") {
        std::string_view rest = operation.value;
        while (!rest.empty()) {
            const std::string_view word = TakeEpdWord(rest);
            if (word.front() == '#')
                mateOfKey = ReadFullMoves("bm", word.substr(1));
            else
                keys.push_back(word);
        }
    } else {
        others.emplace_back(operation.name, UnquoteEpd(operation.value));
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
    const TPosition position = ReadPosition(TakeEpdPosition(text));
    TOperations operations;
    while (const std::optional<TEpdOperation> operation = TakeEpdOperation(text))
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
    std::vector<TEpdRecord> records;
    ForEachEpdLine(text, [&](std::string_view row, int line) {
        try {
            records.push_back(ReadLine(row, line));
        } catch (const ChessException& fault) {
            throw CPlacedException(name + ":" + std::to_string(line), fault);
        }
    });
    if (records.empty())
        throw ChessException(EMessage::kEpdNoPositions, {name});
    return records;
}

std::vector<TEpdRecord> ReadEpdFile(const std::string& file) {
    return ReadEpdText(ReadInputFile(file), file);
}

}  // namespace quillmere
