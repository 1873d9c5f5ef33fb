#include "heuristics/heuristics_parser.h"

#include "core/chess_exception.h"
#include "core/text.h"
#include "heuristics/parameter_reader.h"
#include "heuristics/parameter_words.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace quillmere {
namespace {

// Takes a text apart, from left to right.
class CTextReader {
public:
    CTextReader(std::string_view text, const TChessboard& node)
        : m_text(text), m_node(node), m_choice(ChoiceOf(node)) {
        SwitchOffAllHeuristics(m_choice);
        m_choice.settings.ApplyBlockDynamically = true;
    }

    const THeuristicChoice& Read() {
        SkipBlanks();
        while (!IsAtEnd()) {
            ReadItem();
            SkipBlanks();
            if (IsAtEnd())
                break;
            if (m_text[m_at] != ',')
                Fail(EMessage::kHeuristicCommaExpected, m_at);
            ++m_at;
            SkipBlanks();
            if (IsAtEnd())
                Fail(EMessage::kHeuristicNameExpected, m_at);
        }
        return m_choice;
    }

private:
    bool IsAtEnd() const { return m_at == m_text.size(); }
    void SkipBlanks() {
        while (!IsAtEnd() && IsBlank(m_text[m_at]))
            ++m_at;
    }
    [[noreturn]] static void Fail(EMessage id, std::size_t at, std::string_view word = {}) {
        throw ChessException(id, {std::to_string(at), std::string(word)});
    }

    // A name runs to the next comma, bracket or blank.
    std::string_view TakeName() {
        const std::size_t start = m_at;
        while (!IsAtEnd() && !IsBlank(m_text[m_at]) &&
               std::string_view(",()").find(m_text[m_at]) == std::string_view::npos)
            ++m_at;
        return m_text.substr(start, m_at - start);
    }

    // What stands between the brackets, if any come next.
    bool TakeBrackets(std::string_view* inside) {
        SkipBlanks();
        if (IsAtEnd() || m_text[m_at] != '(')
            return false;
        const std::size_t open = m_at;
        const std::size_t close = m_text.find(')', open);
        if (close == std::string_view::npos)
            Fail(EMessage::kHeuristicBracketOpen, open);
        *inside = StripBlanks(m_text.substr(open + 1, close - open - 1));
        m_at = close + 1;
        return true;
    }

    static std::vector<std::string> SplitAtCommas(std::string_view text) {
        std::vector<std::string> parts;
        for (;;) {
            const std::size_t comma = text.find(',');
            parts.emplace_back(StripBlanks(text.substr(0, comma)));
            if (comma == std::string_view::npos)
                return parts;
            text.remove_prefix(comma + 1);
        }
    }

    // One name with its brackets, and the brackets that may stand behind the whole list.
    void ReadItem() {
        const std::size_t start = m_at;
        const std::string_view name = TakeName();
        if (name.empty())
            Fail(EMessage::kHeuristicNameExpected, start);
        const bool isQuickMode = IsSameWord(name, kWordQuickMode);
        std::string_view inside;
        std::vector<std::string> parameters;
        while (TakeBrackets(&inside)) {
            if (IsSameWord(inside, kWordNoDynamicBlock))
                m_choice.settings.ApplyBlockDynamically = false;
            else if (isQuickMode || !parameters.empty())
                Fail(EMessage::kHeuristicCommaExpected, m_at - 1);
            else
                parameters = SplitAtCommas(inside);
        }
        if (!isQuickMode)
            SwitchOn(name, start, std::move(parameters));
    }

    void SwitchOn(std::string_view name, std::size_t start, std::vector<std::string> parameters) {
        const TNamedHeuristic found = FindHeuristic(name);
        if (found.bit == 0)
            Fail(EMessage::kHeuristicUnknown, start, name);
        if ((m_choice.heur & found.bit) != 0)
            Fail(EMessage::kHeuristicTwice, start, name);
        if (!found.impliedParameter.empty())
            parameters.insert(parameters.begin(), std::string(found.impliedParameter));
        SwitchOnHeuristic(*FindHeuristicRow(found.bit), parameters, m_node, m_choice);
    }

    std::string_view m_text;
    const TChessboard& m_node;
    THeuristicChoice m_choice;
    std::size_t m_at = 0;
};

std::string HexText(u32 bit) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%x", bit);
    return text;
}

}  // namespace

TNamedHeuristic FindHeuristic(std::string_view name) {
    for (const THeuristicRow& row : kHeuristicRows) {
        if (IsSameWord(name, row.name))
            return {row.bit, {}};
    }
    if (IsSameWord(name, kNameDontLetKingMove))
        return {SH_KEEPKINGONTHEEDGE, kWordStrictKing};
    return {};
}

void ParseHeuristics(TChessboard& node, std::string_view text) {
    CTextReader reader(text, node);
    StoreChoice(node, reader.Read());
}

void ApplyHeuristicOverride(TChessboard& node,
                            u32 bit,
                            const std::vector<std::string>& parameters) {
    const THeuristicRow* const row = FindHeuristicRow(bit);
    if (row == nullptr)
        throw ChessException(EMessage::kHeuristicNoSuchBit, {HexText(bit)});
    const bool isOff = std::ranges::any_of(
        parameters, [](const std::string& word) { return IsSameWord(word, kWordOff); });
    if (isOff && parameters.size() > 1)
        throw ChessException(EMessage::kHeuristicOffWithOthers, {std::string(row->name)});
    THeuristicChoice choice = ChoiceOf(node);
    if (isOff)
        SwitchOffHeuristic(*row, choice);
    else
        SwitchOnHeuristic(*row, parameters, node, choice);
    StoreChoice(node, choice);
}

}  // namespace quillmere
