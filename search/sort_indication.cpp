#include "search/sort_indication.h"

#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/make_move.h"
#include "core/move_generation.h"
#include "core/notation.h"
#include "core/rights.h"
#include "core/text.h"
#include "search/move_number.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quillmere {
namespace {

constexpr u8 kExpectedMark = 64;
constexpr int kMaxMoveNumber = std::numeric_limits<i16>::max();

// Reads one rule from left to right; the steps are called in the order of the parts.
class CReader {
public:
    explicit CReader(std::string_view text) : m_text(StripBlanks(text)), m_left(m_text) {
        if (m_text.empty())
            throw ChessException(EMessage::kEmptySortIndication);
    }

    SortIndication Read() {
        ReadCheckMarks();
        m_result.negated = Take('~');
        ReadMoveNumber();
        SkipBlanks();
        ReadFigure();
        if (!m_left.empty() && m_left.front() == '0') {
            ReadCastling();
            return m_result;
        }
        if (m_left.size() > 1 && IsLetter(m_left.front()) &&
            m_left.find_first_of(":>-") != std::string_view::npos)
            m_result.from = TakeSquare();
        ReadSign();
        m_result.to = TakeSquare();
        if (!m_left.empty() && IsLetter(m_left.front()))
            m_result.promotion = TakePromotion();
        if (!m_left.empty())
            throw ChessException(EMessage::kLongSortIndication);
        return m_result;
    }

private:
    [[noreturn]] void Refuse() const {
        throw ChessException(EMessage::kBadSortIndication, {std::string(m_text)});
    }

    void SkipBlanks() { m_left = StripBlanks(m_left); }

    bool Take(char sign) {
        if (m_left.empty() || m_left.front() != sign)
            return false;
        m_left.remove_prefix(1);
        return true;
    }

    // The marks stand at the end, and are read first.
    void ReadCheckMarks() {
        for (u8 marks = 0; marks < kDoubleCheckOrMateNeeded && m_left.ends_with('+'); ++marks) {
            m_left.remove_suffix(1);
            m_result.checkKind = marks + 1;
        }
        SkipBlanks();
    }

    void ReadMoveNumber() {
        const std::size_t point = m_left.find('.');
        if (point == std::string_view::npos)
            return;
        const std::string_view digits = StripBlanks(m_left.substr(0, point));
        if (digits.empty())
            Refuse();
        int number = 0;
        for (const char c : digits) {
            if (!IsDigit(c))
                Refuse();
            number = number * 10 + (c - '0');
            if (number > kMaxMoveNumber)
                Refuse();
        }
        m_result.moveNumber = static_cast<u16>(number);
        m_left.remove_prefix(point + 1);
    }

    // A letter directly before a digit begins a square.
    void ReadFigure() {
        const bool isFigure = !m_left.empty() && IsLetter(m_left.front()) &&
                              !(m_left.size() > 1 && IsDigit(m_left[1]));
        if (isFigure)
            m_result.figure = kWhite | TakeKind();
    }

    void ReadCastling() {
        if (m_left != "0-0" && m_left != "0-0-0")
            Refuse();
        m_result.from = kSquareE1;
        m_result.to = m_left == "0-0" ? kSquareG1 : kSquareC1;
        m_result.captureKind = kCaptureForbidden;
    }

    void ReadSign() {
        if (Take(':'))
            m_result.captureKind = kCaptureNeeded;
        else if (Take('>'))
            m_result.captureKind = kCaptureForbidden;
        else
            Take('-');
    }

    u8 TakeSquare() {
        if (m_left.size() < 2 || !IsLetter(m_left[0]))
            Refuse();
        const std::string_view square = m_left.substr(0, 2);
        m_left.remove_prefix(2);
        try {
            return static_cast<u8>(String2Square(square));
        } catch (const ChessException&) {
            Refuse();
        }
    }

    u8 TakeKind() {
        const char letter = m_left.front();
        m_left.remove_prefix(1);
        try {
            return FigureFromLetter(letter);
        } catch (const ChessException&) {
            Refuse();
        }
    }

    u8 TakePromotion() {
        const u8 kind = TakeKind();
        if (std::find(std::begin(kPromotionKinds), std::end(kPromotionKinds), kind) ==
            std::end(kPromotionKinds))
            Refuse();
        return kind;
    }

    std::string_view m_text;
    std::string_view m_left;
    SortIndication m_result;
};

bool HasNeededCheck(TChessboard& node, TMove move, u8 checkKind) {
    if (checkKind == kCheckEither)
        return true;
    TChessboard child = node;
    child.m_parent = &node;
    if (MakeWhiteMoveLegal(child, move) != kMoveMade || child.m_blackInCheck < 0)
        return false;
    return checkKind == kCheckNeeded || child.m_blackInCheck == kDoubleCheck ||
           !BlackHasEvasion(child);
}

// Where the rules put a move: below kRankUntouched first, above it last.
constexpr int kRankUntouched = std::numeric_limits<int>::max() - 1;
constexpr int kRankLast = std::numeric_limits<int>::max();

// The rules of one number, whose ranks begin at *rank. True if one of them decided.
bool FindRank(
    TChessboard& node, TMove move, const TSortIndications& indications, int moveNumber, int* rank) {
    const auto rules = indications.byMoveNumber.find(static_cast<i16>(moveNumber));
    if (rules == indications.byMoveNumber.end())
        return false;
    for (const SortIndication& rule : rules->second) {
        if (MatchesSortIndication(node, move, rule)) {
            if (rule.negated)
                *rank = kRankLast;
            return true;
        }
        ++*rank;
    }
    return false;
}

int RankOfMove(TChessboard& node, TMove move, const TSortIndications& indications) {
    int rank = 0;
    const int number = MoveNumberOf(node);
    const bool isDecided = FindRank(node, move, indications, number, &rank) ||
                           FindRank(node, move, indications, 0, &rank);
    return isDecided ? rank : kRankUntouched;
}

}  // namespace

void ParseSortIndication(SortIndication& indication, std::string_view text) {
    indication = CReader(text).Read();
}

void AddSortIndication(TSortIndications& indications, const SortIndication& indication) {
    indications.byMoveNumber[static_cast<i16>(indication.moveNumber)].push_back(indication);
    indications.hasGeneralIndications |= indication.moveNumber == 0;
}

void ParseSortIndications(TSortIndications& indications, std::string_view text) {
    const char separator = text.find(',') != std::string_view::npos ? ',' : ';';
    TSortIndications result = indications;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find(separator);
        SortIndication indication;
        ParseSortIndication(indication, text.substr(0, end));
        AddSortIndication(result, indication);
        if (end != std::string_view::npos)
            text.remove_prefix(end + 1);
    }
    indications = std::move(result);
}

std::string SortIndicationToText(const SortIndication& indication) {
    std::string text = indication.negated ? "~" : "";
    if (indication.moveNumber != 0)
        text += std::to_string(indication.moveNumber) + ".";
    if (indication.figure != 0)
        text += LetterFromFigure(indication.figure);
    if (indication.from != kNoSquare)
        text += SquareToText(indication.from);
    if (indication.captureKind != kCaptureEither)
        text += indication.captureKind == kCaptureNeeded ? ':' : '>';
    else if (indication.from != kNoSquare)
        text += '-';
    text += SquareToText(indication.to);
    if (indication.promotion != 0)
        text += LetterFromFigure(indication.promotion);
    return text + std::string(indication.checkKind, '+');
}

bool MatchesSortIndication(TChessboard& node, TMove move, const SortIndication& indication) {
    const auto fits = [](u8 wanted, u8 any, u8 value) { return wanted == any || wanted == value; };
    const bool isCapture = IsCapture(node, move);
    return fits(indication.figure, 0, node.m_board[move.from]) &&
           fits(indication.from, kNoSquare, move.from) && indication.to == move.to &&
           fits(indication.promotion, 0, move.Promotion()) &&
           (indication.captureKind == kCaptureEither ||
            isCapture == (indication.captureKind == kCaptureNeeded)) &&
           (indication.moveNumber == 0 || indication.moveNumber == MoveNumberOf(node)) &&
           HasNeededCheck(node, move, indication.checkKind);
}

void ApplySortIndications(TChessboard& node, TMoveList& list, const TSortIndications& indications) {
    if (indications.byMoveNumber.empty())
        return;
    int ranks[kMoveListSize];
    // Each move goes in front of those of a higher rank that stand before it.
    for (int i = 0; i < list.count; ++i) {
        const TMove move = list[i];
        const int rank = RankOfMove(node, move, indications);
        int place = i;
        for (; place > 0 && ranks[place - 1] > rank; --place) {
            ranks[place] = ranks[place - 1];
            list[place] = list[place - 1];
        }
        ranks[place] = rank;
        list[place] = move;
    }
}

void MarkExpectedSortWhiteMoves(std::vector<TMove>& expected, const TMoveList& list) {
    const std::size_t count = std::min(expected.size(), static_cast<std::size_t>(list.count));
    for (std::size_t i = 0; i < count; ++i) {
        if (MovesEqual(expected[i], list[static_cast<int>(i)])) {
            expected[i].from += kExpectedMark;
            expected[i].to += kExpectedMark;
        }
    }
}

std::string CheckExpectedSortWhiteMoves(std::vector<TMove>& expected, ELanguage language) {
    const auto isMarked = [](TMove move) { return move.from >= kExpectedMark; };
    const auto failed = std::find_if_not(expected.begin(), expected.end(), isMarked);
    const auto number = failed - expected.begin() + 1;
    const bool hasFailed = failed != expected.end();
    for (TMove& move : expected) {
        if (isMarked(move)) {
            move.from -= kExpectedMark;
            move.to -= kExpectedMark;
        }
    }
    return hasFailed
               ? FormatMessage(EMessage::kExpectedSortFailed, language, {std::to_string(number)})
               : std::string();
}

}  // namespace quillmere
