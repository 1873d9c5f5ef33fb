#include "problems/problem_fields.h"

#include "core/fen.h"
#include "core/rights.h"
#include "core/text.h"
#include "heuristics/catalogue.h"
#include "problems/problem_options.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>

namespace quillmere {
namespace {

bool IsSameWord(std::string_view a, std::string_view b) {
    return std::ranges::equal(
        a, b, [](char x, char y) { return ToUpperLetter(x) == ToUpperLetter(y); });
}

bool AreSame(const std::vector<TMove>& a, const std::vector<TMove>& b) {
    return std::ranges::equal(a, b, MovesEqual);
}

bool IsSameLine(const TProblemVariant& a, const TProblemVariant& b) {
    return a.doesBlackBegin == b.doesBlackBegin &&
           std::ranges::equal(a.moves, b.moves, [](const TVariantMove& x, const TVariantMove& y) {
               return MovesEqual(x.move, y.move) && x.comment == y.comment;
           });
}

// Names under which the lines differ, in order.
void AddVariants(const TVariants& a, const TVariants& b, std::vector<std::string>& fields) {
    std::set<std::string> names;
    for (const TVariants* variants : {&a, &b}) {
        for (const auto& [name, variant] : *variants)
            names.insert(name);
    }
    for (const std::string& name : names) {
        const auto [aBegin, aEnd] = a.equal_range(name);
        const auto [bBegin, bEnd] = b.equal_range(name);
        const bool isSame =
            std::equal(aBegin, aEnd, bBegin, bEnd, [](const auto& x, const auto& y) {
                return IsSameLine(x.second, y.second);
            });
        if (!isSame)
            fields.push_back(std::string(kVariantsField) + " {" + name + "}");
    }
}

void AddHeuristics(const TChessProblem& a,
                   const TChessProblem& b,
                   std::vector<std::string>& fields) {
    std::set<u32> bits;
    for (const TChessProblem* problem : {&a, &b}) {
        for (const auto& [bit, parameters] : problem->heuristicOverrides)
            bits.insert(bit);
    }
    for (const u32 bit : bits) {
        const auto inA = a.heuristicOverrides.find(bit);
        const auto inB = b.heuristicOverrides.find(bit);
        if (inA == a.heuristicOverrides.end() || inB == b.heuristicOverrides.end() ||
            inA->second != inB->second)
            fields.push_back(HeuristicName(bit));
    }
}

// One word a flag, the first of the table.
std::vector<TFlagWord> MakeFlagWords() {
    std::vector<TFlagWord> words;
    u32 seen = 0;
    for (const TProblemOptionRow& row : kProblemOptionRows) {
        if (row.flag == 0 || (seen & row.flag) != 0)
            continue;
        seen |= row.flag;
        words.push_back({row.flag, row.written.empty() ? row.keyword : row.written});
    }
    return words;
}

// A rank behind the edge is the only way in which the target of an answer may be none.
constexpr int kRankBehindEdge = 8;

// From -1, the rank before the first one.
int RankOfAnswer(u8 square) {
    constexpr int kSquares = std::numeric_limits<u8>::max() + 1;
    return square >= kSquares - kRankBehindEdge ? -1 : RankOf(square);
}

}  // namespace

std::span<const TFlagWord> FlagWords() {
    static const std::vector<TFlagWord> words = MakeFlagWords();
    return words;
}

std::vector<std::string> FlagWordsOf(const TChessProblem& problem) {
    std::vector<std::string> words;
    for (const TFlagWord& row : FlagWords()) {
        if ((problem.flags & row.flag) != 0)
            words.emplace_back(row.word);
    }
    return words;
}

bool SetFlagWord(TChessProblem& problem, std::string_view word) {
    for (const TFlagWord& row : FlagWords()) {
        if (!IsSameWord(row.word, word))
            continue;
        problem.flags |= row.flag;
        if (row.flag == kProblemUseMainVariant)
            problem.useMainVariantAsSortIndications = true;
        return true;
    }
    return false;
}

std::string StipulationText(const TChessProblem& problem) {
    if (problem.type == kDirectMate)
        return "#" + std::to_string((problem.maxHalfMoves + 1) / 2);
    if (problem.type == kSelfmate)
        return "s#" + std::to_string(problem.maxHalfMoves / 2);
    return "";
}

bool SetStipulationText(TChessProblem& problem, std::string_view text) {
    if (text.empty()) {
        problem.SetStipulation(kNoStipulation, kHalfMovesWithoutStipulation);
        return true;
    }
    const bool isSelfmate = text.starts_with("s#");
    if (!isSelfmate && !text.starts_with("#"))
        return false;
    text.remove_prefix(isSelfmate ? 2 : 1);
    int moves = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, moves);
    if (error != std::errc() || stop != end || moves < 1 ||
        moves > static_cast<int>(isSelfmate ? kMostMovesToSelfmate : kMostMovesToMate))
        return false;
    if (isSelfmate)
        problem.SetStipulation(kSelfmate, static_cast<u16>(2 * moves + 1));
    else
        problem.SetStipulation(kDirectMate, static_cast<u16>(HalfMovesOfMate(moves)));
    return true;
}

std::string RawMoveText(TMove move) {
    const int rank = RankOfAnswer(move.to);
    if (move.from >= kSquareCount || rank > kRankBehindEdge)
        return "";
    const auto square = [](int file, int ofRank) {
        return std::string{static_cast<char>('a' + file), static_cast<char>('1' + ofRank)};
    };
    std::string text = square(FileOf(move.from), RankOf(move.from)) + square(FileOf(move.to), rank);
    if (move.Promotion() != 0)
        text += ToLowerLetter(LetterFromFigure(move.Promotion()));
    return text;
}

bool ReadRawMove(std::string_view text, TMove& move) {
    if (text.size() != 4 && text.size() != 5)
        return false;
    for (const std::size_t at : {0, 2}) {
        if (text[at] < 'a' || text[at] > 'h' || !IsDigit(text[at + 1]))
            return false;
    }
    if (text[1] < '1' || text[1] > '8')
        return false;
    u8 promotion = 0;
    if (text.size() == 5) {
        // Any figure: answers are stored as they were read.
        constexpr std::string_view kLetters = "qrbnkp";
        if (kLetters.find(text[4]) == std::string_view::npos)
            return false;
        promotion = FigureFromLetter(text[4]);
    }
    move = MakeMove(SquareAt(text[0] - 'a', text[1] - '1'),
                    static_cast<u8>(text[2] - 'a' + (text[3] - '1') * 8),
                    promotion);
    return true;
}

TMove AnswerInNode(const TChessboard& node, TMove stored) {
    const bool isCastling =
        stored.from == kSquareE1 && (stored.to == kSquareG1 || stored.to == kSquareC1);
    if (isCastling && !node.IsWhiteToMove() && node.m_board[kSquareE8] == kBlackKing)
        return MakeMove(kSquareE8, stored.to + kSquareA8);
    return stored;
}

TMove AnswerToStore(const TChessboard& node, TMove move) {
    const bool isCastling = move.from == kSquareE8 && node.m_board[kSquareE8] == kBlackKing &&
                            (move.to == kSquareG1 + kSquareA8 || move.to == kSquareC1 + kSquareA8);
    return isCastling ? MakeMove(kSquareE1, move.to - kSquareA8) : move;
}

bool AreSameVariants(const TVariants& a, const TVariants& b) {
    std::vector<std::string> fields;
    AddVariants(a, b, fields);
    return fields.empty();
}

std::vector<std::string> DifferentFields(const TChessProblem& a, const TChessProblem& b) {
    std::vector<std::string> fields;
    const auto add = [&](bool isDifferent, std::string_view field) {
        if (isDifferent)
            fields.emplace_back(field);
    };
    // 1. The head line.
    add(a.number != b.number, "number");
    add(a.type != b.type || a.maxHalfMoves != b.maxHalfMoves, "#n");
    for (const TFlagWord& row : FlagWords())
        add(((a.flags ^ b.flags) & row.flag) != 0, row.word);
    add(a.guiCheckRepeat != b.guiCheckRepeat, "GUICHECK n");
    add(a.threads != b.threads || a.areLevelsGiven != b.areLevelsGiven ||
            (a.areLevelsGiven && a.multithreadingLevels != b.multithreadingLevels),
        "THREADS");
    add(a.schedulerLevels != b.schedulerLevels, "SCHEDULERLEVELS");
    add(a.globRegMB != b.globRegMB, "GLOBREGMB");
    add(a.lichessLevels != b.lichessLevels, "LICHESSLEVELS");
    add(a.stopRelaxHeuristicsOnFirstSolution != b.stopRelaxHeuristicsOnFirstSolution,
        "STOPRELAXHEURISTICSONFIRSTSOLUTION");
    add(a.requires_ != b.requires_, "Requires");
    add(a.allSolutionsRequires != b.allSolutionsRequires, "ALLSOLUTIONSREQUIRES");
    AddHeuristics(a, b, fields);
    // 2. The blocks before the bracket.
    add(a.tags != b.tags, kTagsField);
    AddVariants(a.variants, b.variants, fields);
    add(!(a.sortIndications == b.sortIndications), "//@SortIndications");
    // 3. What stands in the brackets.
    add(a.description != b.description, "Description");
    add(std::memcmp(a.position->m_board, b.position->m_board, kSquareCount) != 0, "FEN");
    add(!AreSame(a.PlayedMoves(), b.PlayedMoves()), "Moves");
    add(((a.flags ^ b.flags) & kProblemHasAnswer) != 0 || !AreSame(a.answer, b.answer), "Answer");
    add(((a.flags ^ b.flags) & (kProblemHasExpectedSort | kProblemExpectedSortOnly)) != 0 ||
            !AreSame(a.expectedSortWhiteMoves, b.expectedSortWhiteMoves),
        "EXPECTEDSORTWHITEMOVES");
    return fields;
}

}  // namespace quillmere
