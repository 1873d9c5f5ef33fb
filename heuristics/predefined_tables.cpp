#include "heuristics/predefined_tables.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/text.h"
#include "heuristics/predefined_option.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace quillmere {

// The tables are filled from the rows one table at a time: each of these passes takes its own rows.
const TPredefinedTable PredefinedHeuristics = {
#define QUILLMERE_PREDEFINED_HEURISTICS(key, ...) {key, {__VA_ARGS__}},
#define QUILLMERE_PREDEFINED_LINES(key, ...)
#define QUILLMERE_PREDEFINED_MOVES(key, ...)
#include "heuristics/predefined_tables.def"
};

const TPredefinedTable PredefinedLines = {
#define QUILLMERE_PREDEFINED_HEURISTICS(key, ...)
#define QUILLMERE_PREDEFINED_LINES(key, ...) {key, {__VA_ARGS__}},
#define QUILLMERE_PREDEFINED_MOVES(key, ...)
#include "heuristics/predefined_tables.def"
};

const TPredefinedTable PredefinedMoves = {
#define QUILLMERE_PREDEFINED_HEURISTICS(key, ...)
#define QUILLMERE_PREDEFINED_LINES(key, ...)
#define QUILLMERE_PREDEFINED_MOVES(key, ...) {key, {__VA_ARGS__}},
#include "heuristics/predefined_tables.def"
};

namespace {

std::vector<std::string> RowOf(const TPredefinedTable& table, const std::string& key) {
    const auto row = table.find(key);
    return row == table.end() ? std::vector<std::string>{} : row->second;
}

std::optional<SortIndication> ReadIndication(std::string_view text, int moveNumber) {
    SortIndication indication;
    try {
        ParseSortIndication(indication, text);
    } catch (const ChessException&) {
        return std::nullopt;
    }
    indication.moveNumber = static_cast<u16>(moveNumber);
    return indication;
}

// Number of a word such as "12.Ka1-b1", which is taken off with its points; 0 if there is none. With
// more than one point the move behind it is black's.
struct TMoveNumber {
    int number = 0;
    bool isBlack = false;
};
TMoveNumber TakeNumber(std::string_view& word) {
    constexpr int kMostMoves = 9999;
    TMoveNumber result;
    std::size_t at = 0;
    for (; at < word.size() && IsDigit(word[at]); ++at)
        result.number = std::min(result.number * 10 + (word[at] - '0'), kMostMoves);
    std::size_t points = at;
    while (points < word.size() && word[points] == '.')
        ++points;
    if (points == at)
        return {};  // "0-0"
    result.isBlack = points - at > 1;
    word.remove_prefix(points);
    return result;
}

// White's moves of a line under their numbers; empty if a word does not read.
std::vector<SortIndication> ReadLine(std::string_view line) {
    std::vector<SortIndication> moves;
    int number = 1;
    bool isBlack = false;
    while (!(line = StripBlanks(line)).empty()) {
        std::string_view word = line.substr(0, std::min(line.find(' '), line.size()));
        line.remove_prefix(word.size());
        const TMoveNumber given = TakeNumber(word);
        if (given.number != 0) {
            number = given.number;
            isBlack = given.isBlack;
        }
        if (word.empty())
            continue;  // a number alone, or the points at the end of a line
        while (word.ends_with('#') || word.ends_with('!') || word.ends_with('?'))
            word.remove_suffix(1);
        const std::optional<SortIndication> indication = ReadIndication(word, number);
        if (!indication)
            return {};
        if (!isBlack)
            moves.push_back(*indication);
        number += isBlack ? 1 : 0;
        isBlack = !isBlack;
    }
    return moves;
}

int AddOnce(TSortIndications& indications, const SortIndication& indication) {
    const auto place = indications.byMoveNumber.find(static_cast<i16>(indication.moveNumber));
    if (place != indications.byMoveNumber.end() &&
        std::ranges::find(place->second, indication) != place->second.end())
        return 0;
    AddSortIndication(indications, indication);
    return 1;
}

}  // namespace

std::string PredefinedKey(const TChessboard& node) {
    return GetFENCode(node, true);
}

void TellPredefinedError(IWarningSink& warnings) {
    try {
        throw;
    } catch (const std::exception& error) {
        warnings.Warn(
            EMessage::kTitleSessionInformation, EMessage::kPredefinedFailed, {error.what()});
    } catch (...) {
        warnings.Warn(EMessage::kTitleSessionInformation, EMessage::kPredefinedFailedUnknown, {});
    }
}

void ApplyPredefinedAdditionalHeuristics(TChessboard& node,
                                         IWarningSink& warnings,
                                         const TPredefinedTable& table) {
    try {
        for (const std::string& option : RowOf(table, PredefinedKey(node)))
            ParsePredefinedOption(node, option);
    } catch (...) {
        TellPredefinedError(warnings);
    }
}

TPredefinedIndications PredefinedIndications(const TChessboard& node,
                                             const TPredefinedTable& lines,
                                             const TPredefinedTable& moves) {
    const std::string key = PredefinedKey(node);
    return {RowOf(lines, key), RowOf(moves, key)};
}

int AddPredefinedIndications(TSortIndications& indications,
                             const TChessboard& node,
                             const TPredefinedTable& lines,
                             const TPredefinedTable& moves) {
    const TPredefinedIndications texts = PredefinedIndications(node, lines, moves);
    int added = 0;
    for (const std::string& move : texts.moves) {
        if (const auto indication = ReadIndication(move, 1))
            added += AddOnce(indications, *indication);
    }
    for (const std::string& line : texts.lines) {
        for (const SortIndication& indication : ReadLine(line))
            added += AddOnce(indications, indication);
    }
    return added;
}

}  // namespace quillmere
