#include "heuristics/catalogue.h"

#include "core/search_context.h"
#include "heuristics/choice.h"
#include "heuristics/parameter_words.h"

#include <bit>
#include <utility>

namespace quillmere {
namespace {

constexpr std::array<THeuristicRow, kHeuristicCount> MakeRows() {
    using enum EMessage;
    using enum EHeuristicParameters;
    constexpr EMessage kNoText = EMessage::kCount;
    return {{
#define QUILLMERE_HEURISTIC(bit, constant, name, label, choice, parameters, help)                  \
    {bit, name, label, choice, parameters, help},
#include "heuristics/catalogue.def"
#undef QUILLMERE_HEURISTIC
    }};
}

#define QUILLMERE_HEURISTIC(bit, constant, name, label, choice, parameters, help)                  \
    static_assert((bit) == (constant));
#include "heuristics/catalogue.def"
#undef QUILLMERE_HEURISTIC

// One bit each, none twice, all but the three that are unused.
constexpr u32 kUnusedBits = 0x30000100;
constexpr bool AreBitsDistinct() {
    u32 seen = 0;
    for (const THeuristicRow& row : MakeRows()) {
        if (!std::has_single_bit(row.bit) || row.bit <= seen)
            return false;
        seen |= row.bit;
    }
    return seen == ~kUnusedBits;
}
static_assert(AreBitsDistinct());

// Items joined by commas.
class CItems {
public:
    void Add(std::string_view item) {
        if (item.empty())
            return;
        if (!m_text.empty())
            m_text += ',';
        m_text += item;
    }
    std::string Text() && { return std::move(m_text); }

private:
    std::string m_text;
};

// "C3"; empty for a byte that is no square.
std::string UpperSquareText(u8 square) {
    if (square >= kSquareCount)
        return {};
    return {static_cast<char>('A' + FileOf(square)), static_cast<char>('1' + RankOf(square))};
}

void AddRelaxations(CItems& items, const THeuristicSettings& settings) {
    if (settings.RelaxAfterCaptures != 0) {
        const char* const figuresOnly = settings.RelaxCapturesCountPawns ? "" : "f";
        items.Add("C" + std::to_string(settings.RelaxAfterCaptures) + figuresOnly);
    }
    if (settings.RelaxOnAdvancedPawn)
        items.Add("A");
    if (settings.DeferCheckMoves != 0) {
        items.Add("D" + std::to_string(settings.DeferCheckMoves));
        items.Add("M" + std::to_string(settings.DeferCheckLimit));
    }
}

std::string EdgeText(const THeuristicSettings& settings) {
    CItems items;
    if (settings.StrictKingMove)
        items.Add(settings.KingMoveExceptions ? kWordAlmostStrict : kWordStrictKing);
    if (settings.EdgeSquaresInclCorner)
        items.Add(kWordCorner);
    if (!settings.RelaxOnlyExtEdge)
        AddRelaxations(items, settings);
    return std::move(items).Text();
}

std::string ExtEdgeText(const THeuristicSettings& settings) {
    CItems items;
    AddRelaxations(items, settings);
    if (settings.EdgeSquaresInclCorner)
        items.Add(kWordCorner);
    if (settings.ExtEdgeStrict)
        items.Add(kWordStrict);
    return std::move(items).Text();
}

std::string BlockedFiguresText(const THeuristicSettings& settings) {
    CItems items;
    if (settings.BlockedFiguresEffective)
        items.Add(kWordEffective);
    for (int i = 0; i < settings.BlockedFigureCount && i < kMaxBlockedFigures; ++i)
        items.Add(UpperSquareText(settings.BlockedFigureSquares[i]));
    return std::move(items).Text();
}

std::string ForcedMateText(const THeuristicSettings& settings) {
    std::string text;
    const int mode = settings.FfmMode - kFirstFfmMode;
    if (mode >= 0 && mode < static_cast<int>(kFfmModeWords.size()))
        text = kFfmModeWords[static_cast<std::size_t>(mode)];
    if (settings.FfmPreliminary)
        text += kWordPreliminary;
    if (settings.FfmCustom)
        text += kWordCustom;
    return text;
}

std::string DiagonalText(const u8 (&squares)[2]) {
    const std::string first = UpperSquareText(squares[0]);
    const std::string second = UpperSquareText(squares[1]);
    return first.empty() && second.empty() ? std::string() : first + '-' + second;
}

std::string NearCornerText(int distance) {
    if (distance == 0)
        return {};
    return distance > 0 ? std::to_string(distance) + 'S' : std::to_string(-distance) + 'M';
}

std::string SeaSnakeText(const THeuristicChoice& choice) {
    const std::string approach = UpperSquareText(choice.settings.SeaSnakeApproach);
    const std::string turnBack = UpperSquareText(choice.settings.SeaSnakeTurnBack);
    const std::string count =
        choice.onlyAfterCount > 0 ? ',' + std::to_string(choice.onlyAfterCount) : std::string();
    if (approach.empty() && turnBack.empty() && count.empty())
        return {};
    return approach + ',' + turnBack + count;
}

template <std::size_t kCount>
std::string WordOf(const std::array<std::string_view, kCount>& words, u8 index) {
    return index < kCount ? std::string(words[index]) : std::string();
}

std::string StrictIf(bool isStrict) {
    return isStrict ? std::string(kWordStrict) : std::string();
}

std::string ParameterText(EHeuristicParameters parameters, const THeuristicChoice& choice) {
    using enum EHeuristicParameters;
    const THeuristicSettings& settings = choice.settings;
    switch (parameters) {
    case kNoParameters:
    case kZugzwangMoves:
        break;
    case kEdge:
        return EdgeText(settings);
    case kExtEdge:
        return ExtEdgeText(settings);
    case kOneColor:
        return WordOf(kOneColorWords, choice.OneColorMode);
    case kFigureOnDiagonal:
        return UpperSquareText(settings.BlackFigureOnDiagonal);
    case kBlockedFigures:
        return BlockedFiguresText(settings);
    case kForcedMate:
        return ForcedMateText(settings);
    case kLessExceptions:
        return StrictIf(settings.LessExceptions);
    case kFile:
        return choice.KeyLineFile < 8 ? std::string(1, static_cast<char>('A' + choice.KeyLineFile))
                                      : std::string();
    case kDiagonal:
        return DiagonalText(choice.KeyDiagonalSquares);
    case kLoseFigures:
        return WordOf(kLoseFiguresWords, settings.LoseFiguresMode);
    case kKeySquare:
        return UpperSquareText(settings.KeySquare);
    case kSurrounded:
        return StrictIf(settings.SurroundedStrict);
    case kKeyWhiteFigure:
        return UpperSquareText(settings.KeyWhiteFigureSquare);
    case kNearCorner:
        return NearCornerText(settings.NearCornerDistance);
    case kSeaSnake:
        return SeaSnakeText(choice);
    }
    return {};
}

std::string ParameterTextOf(u32 bit, const THeuristicChoice& choice) {
    const THeuristicRow* const row = FindHeuristicRow(bit);
    return row == nullptr ? std::string() : ParameterText(row->parameters, choice);
}

// The strict forms of SH_KEEPKINGONTHEEDGE have a name of their own, but only without further
// parameters.
std::string ItemText(u32 bit, const THeuristicChoice& choice) {
    const std::string parameters = ParameterTextOf(bit, choice);
    if (bit == SH_KEEPKINGONTHEEDGE) {
        if (parameters == kWordStrictKing || parameters == kWordStrict)
            return std::string(kNameDontLetKingMove);
        if (parameters == kWordAlmostStrict)
            return std::string(kNameDontLetKingMove) + '(' + std::string(kWordExceptions) + ')';
    }
    return parameters.empty() ? HeuristicName(bit) : HeuristicName(bit) + '(' + parameters + ')';
}

// Calls text(bit) for every bit of the word, from the lowest, and joins the results.
template <typename TText>
std::string JoinBits(u32 heur, TText text) {
    std::string joined;
    for (u32 rest = heur; rest != 0; rest &= rest - 1) {
        const u32 bit = rest & ~(rest - 1);
        joined += joined.empty() ? "" : ", ";
        joined += text(bit);
    }
    return joined;
}

bool IsQuick(const TChessboard& node) {
    const bool isExact = node.m_searchContext != nullptr && node.m_searchContext->isExact;
    return node.m_pass < kPassComplete && !isExact;
}

}  // namespace

const std::array<THeuristicRow, kHeuristicCount> kHeuristicRows = MakeRows();

const THeuristicRow* FindHeuristicRow(u32 bit) {
    for (const THeuristicRow& row : kHeuristicRows) {
        if (row.bit == bit)
            return &row;
    }
    return nullptr;
}

std::string HeuristicName(u32 bit) {
    const THeuristicRow* const row = FindHeuristicRow(bit);
    return row == nullptr ? "..." : std::string(row->name);
}

std::string HeuristicParameterText(u32 bit, const TChessboard& node) {
    return ParameterTextOf(bit, ChoiceOf(node));
}

std::string HeuristicsText(const TChessboard& node) {
    // A search without heuristics has nothing to say of them, so that the words behind the list do
    // not stand alone either.
    if (node.Heur == 0)
        return {};
    const THeuristicChoice choice = ChoiceOf(node);
    std::string text = JoinBits(node.Heur, [&](u32 bit) { return ItemText(bit, choice); });
    // Both words bring their own blank, the first one behind that of the list too.
    if (IsQuick(node))
        text += ",  " + std::string(kWordQuickMode);
    if (!choice.settings.ApplyBlockDynamically)
        text += " (" + std::string(kWordNoDynamicBlock) + ')';
    return text;
}

std::string HeuristicNames(u32 heur) {
    return JoinBits(heur, HeuristicName);
}

}  // namespace quillmere
