#include "heuristics/predefined_option.h"

#include "core/chess_exception.h"
#include "core/search_context.h"
#include "core/text.h"
#include "core/thread_context.h"
#include "heuristics/choice.h"
#include "heuristics/parameter_words.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace quillmere {
namespace {

constexpr std::string_view kBlockedPrefix = "DLFU(";
constexpr std::string_view kSafeMode = "SafeMode";
constexpr std::string_view kSurrounded = "AssertBKS";
constexpr std::string_view kSurroundedStrict = "AssertBKS(strict)";
constexpr std::string_view kExtEdge = "ExtEdge";
constexpr std::string_view kKingMove = "DontLetKingMove";
constexpr std::string_view kPromotedQueen = "DontLetPromotedQueenMove";
constexpr std::string_view kNoPromotedQueen = "DontLetPromotedQueenMove NO";
constexpr std::string_view kQuickerDepthPrefix = "LFQMDepth(";

// The squares up to the closing bracket. A fault tells the place in the whole string, from 0.
std::vector<u8> ReadSquares(std::string_view text) {
    std::vector<u8> squares;
    const auto isPassedOver = [](char c) { return c == ' ' || c == '\t' || c == ','; };
    for (std::size_t at = kBlockedPrefix.size();;) {
        while (at < text.size() && isPassedOver(text[at]))
            ++at;
        if (at < text.size() && text[at] == ')')
            return squares;
        const std::size_t digit = at + 1;
        if (digit >= text.size() || text[digit] < '1' || text[digit] > '8') {
            const std::string place = std::to_string(std::min(digit, text.size()));
            throw ChessException(EMessage::kInvalidSquareDescription, {place});
        }
        const int file = ToUpperLetter(text[at]) - 'A';
        if (file < 0 || file > 7)
            throw ChessException(EMessage::kInvalidSquare);
        squares.push_back(static_cast<u8>(SquareAt(file, text[digit] - '1')));
        at += 2;
    }
}

void BlockFigures(const TChessboard& node, std::string_view text, THeuristicChoice& choice) {
    std::vector<u8> squares = ReadSquares(text);
    std::stable_partition(squares.begin(), squares.end(), [&](u8 square) {
        return node.m_board[TurnedSquare(choice, square)] == kBlackPawn;
    });
    for (const u8 square : squares)
        AddBlockedFigure(choice.settings, square);
    choice.heur |= SH_DONTLETFIGUREUNBLOCK;
}

// "LFQMDepth(#4)" is a mate in 4. A number is read up to the first character that is no digit.
i16 QuickerDepthOf(std::string_view text) {
    constexpr int kMost = std::numeric_limits<i16>::max();
    std::string_view value = StripBlanks(text.substr(kQuickerDepthPrefix.size()));
    const bool isMate = !value.empty() && value.front() == '#';
    if (isMate)
        value.remove_prefix(1);
    int number = 0;
    for (; !value.empty() && IsDigit(value.front()); value.remove_prefix(1))
        number = std::min(number * 10 + (value.front() - '0'), kMost);
    const int halfMoves = std::min(isMate ? HalfMovesOfMate(number) : number, kMost);
    return halfMoves < 1 ? i16{-1} : static_cast<i16>(halfMoves);
}

}  // namespace

void ParsePredefinedOption(TChessboard& node, std::string_view text) {
    THeuristicChoice choice = ChoiceOf(node);
    if (text.starts_with(kBlockedPrefix)) {
        BlockFigures(node, text, choice);
    } else if (IsSameWord(text, kSafeMode)) {
        node.m_searchContext->isExact = true;
    } else if (text.starts_with(kSurrounded)) {
        choice.heur &= ~(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE);
        choice.heur |= SH_ASSERTBLACKKINGSURROUNDED;
        if (text == kSurroundedStrict)
            choice.settings.SurroundedStrict = true;
    } else if (text == kExtEdge) {
        choice.heur &= ~(SH_KEEPKINGONTHEEDGE | SH_ASSERTBLACKKINGSURROUNDED);
        choice.heur |= SH_KEEPKINGWITHINEXTEDGE;
    } else if (text == kKingMove) {
        choice.heur &= ~(SH_KEEPKINGWITHINEXTEDGE | SH_ASSERTBLACKKINGSURROUNDED);
        choice.heur |= SH_KEEPKINGONTHEEDGE;
        choice.settings.StrictKingMove = true;
    } else if (text == kPromotedQueen) {
        choice.heur |= SH_DONTLETPROMOTEDQUEENMOVE;
    } else if (text == kNoPromotedQueen) {
        choice.heur &= ~SH_DONTLETPROMOTEDQUEENMOVE;
    } else if (text.starts_with(kQuickerDepthPrefix)) {
        node.m_searchContext->m_shLookForQuickerMateDepth = QuickerDepthOf(text);
    } else {
        return;
    }
    StoreChoice(node, choice);
}

}  // namespace quillmere
