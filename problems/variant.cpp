// Reading is a walk over words: signs and move numbers between the moves are skipped, so that lines
// copied from books and from other programs are read too.

#include "problems/variant.h"

#include "core/chess_exception.h"
#include "core/notation.h"
#include "core/text.h"
#include "problems/line_text.h"
#include "problems/token_fault.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

namespace quillmere {
namespace {

constexpr ELanguage kLanguages[] = {ELanguage::kPolish, ELanguage::kEnglish, ELanguage::kUkrainian};
constexpr std::string_view kEllipsis = "\u2026";
// So many points behind a number say that black moves.
constexpr int kBlackPoints = 3;

bool IsWordStart(char c) {
    return IsLetter(c) || IsDigit(c);
}

class CVariantReader {
public:
    explicit CVariantReader(std::string_view text) : m_left(StripBlanks(text)) {}

    TProblemVariant Read() {
        ReadName();
        while (SkipToWord()) {
            if (!SkipMoveNumber())
                ReadMove();
        }
        return m_result;
    }

    bool HasSkippedText() const { return m_hasSkippedText; }
    bool HasOtherNumbers() const { return m_hasOtherNumbers; }

private:
    // The first opening brace outside of a comment begins the name; without a closing one behind it
    // the line has no name.
    void ReadName() {
        std::size_t open = 0;
        for (; open < m_left.size() && m_left[open] != '{'; ++open) {
            if (m_left[open] == '[')
                open = std::min(m_left.find(']', open), m_left.size() - 1);
        }
        const std::size_t close =
            open < m_left.size() ? m_left.find('}', open) : std::string_view::npos;
        if (close == std::string_view::npos)
            return;
        m_result.name = m_left.substr(open + 1, close - open - 1);
        m_hasSkippedText = !StripBlanks(m_left.substr(0, open)).empty();
        m_left.remove_prefix(close + 1);
    }

    // Text in square brackets that follows no move belongs to nothing, and so do single marks and
    // words of other alphabets. Points say no more than the numbers do.
    bool SkipToWord() {
        while (!m_left.empty() && !IsWordStart(m_left.front())) {
            if (m_left.front() == '[') {
                m_hasSkippedText |= !TakeBrackets().empty();
            } else if (m_left.starts_with(kEllipsis)) {
                m_left.remove_prefix(kEllipsis.size());
            } else {
                m_hasSkippedText |= m_left.front() != '.' && !IsBlank(m_left.front());
                m_left.remove_prefix(1);
            }
        }
        return !m_left.empty();
    }

    // What stands up to the closing bracket or the end of the line.
    std::string_view TakeBrackets() {
        const std::size_t end = m_left.find(']');
        const std::string_view inside = m_left.substr(1, end == m_left.npos ? end : end - 1);
        m_left.remove_prefix(end == m_left.npos ? m_left.size() : end + 1);
        return inside;
    }

    // Digits with points, or digits alone. False if the word is something else.
    bool SkipMoveNumber() {
        const std::size_t digits =
            std::find_if_not(m_left.begin(), m_left.end(), IsDigit) - m_left.begin();
        const std::string_view behind = m_left.substr(digits);
        const bool hasPoint = behind.starts_with('.') || behind.starts_with(kEllipsis);
        const bool isAlone = behind.empty() || IsBlank(behind.front()) || behind.front() == '[';
        if (digits == 0 || (!hasPoint && !isAlone))
            return false;
        const std::string_view number = m_left.substr(0, digits);
        m_left = behind;
        if (SkipPoints() && m_result.moves.empty())
            m_result.doesBlackBegin = true;
        CheckNumber(number);
        return true;
    }

    // Behind the last move a number says nothing.
    void CheckNumber(std::string_view text) {
        const std::size_t halfMoves = m_result.moves.size() + (m_result.doesBlackBegin ? 1 : 0);
        std::size_t number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        m_hasOtherNumbers |= !m_left.empty() && number != halfMoves / 2 + 1;
    }

    // Runs of points with blanks between them. Whether one of them is long enough for black.
    bool SkipPoints() {
        bool isBlack = false;
        int run = 0;
        for (std::string_view left = m_left; !left.empty();) {
            if (left.starts_with('.')) {
                left.remove_prefix(1);
                isBlack |= ++run >= kBlackPoints;
                m_left = left;
            } else if (left.starts_with(kEllipsis)) {
                left.remove_prefix(kEllipsis.size());
                isBlack = true;
                m_left = left;
            } else if (IsBlank(left.front())) {
                left.remove_prefix(1);
                run = 0;
            } else {
                break;
            }
        }
        return isBlack;
    }

    void ReadMove() {
        const auto endsWord = [](char c) { return IsBlank(c) || c == '['; };
        const std::size_t length =
            std::find_if(m_left.begin(), m_left.end(), endsWord) - m_left.begin();
        std::string_view word = m_left.substr(0, length);
        m_left.remove_prefix(length);
        while (word.ends_with('+') || word.ends_with('x'))
            word.remove_suffix(1);

        TVariantMove move;
        try {
            const bool isWhite = m_result.doesBlackBegin == (m_result.moves.size() % 2 == 1);
            TextToMove(move.move, word, isWhite);
            if (!IsOnBoard(move.move))
                throw ChessException(EMessage::kImproperFullDescription);
        } catch (const ChessException& fault) {
            throw CTokenFault(fault, std::string(word));
        }
        move.text = word;
        const std::string_view behind = StripBlanks(m_left);
        if (behind.starts_with('[')) {
            m_left = behind;
            move.comment = TakeBrackets();
        }
        m_result.moves.push_back(std::move(move));
    }

    std::string_view m_left;
    TProblemVariant m_result;
    bool m_hasSkippedText = false;
    bool m_hasOtherNumbers = false;
};

}  // namespace

std::string WrittenMoveText(const TVariantMove& move, bool isWhite) {
    const auto isBreak = [](char c) { return IsBlank(c) || c == '['; };
    TMove read;
    try {
        TextToMove(read, move.text, isWhite);
        if (MovesEqual(read, move.move) && std::ranges::none_of(move.text, isBreak))
            return move.text;
    } catch (const ChessException&) {
        // A text that is no move; the squares tell it.
    }
    return MoveToPlainText(move.move);
}

std::string_view MainVariantName(ELanguage language) {
    return MessageText(EMessage::kMainVariantName, language);
}

bool IsMainVariantName(std::string_view name) {
    return std::ranges::any_of(
        kLanguages, [&](ELanguage language) { return MainVariantName(language) == name; });
}

const TProblemVariant* FindMainVariant(const TVariants& variants) {
    const auto found = std::ranges::find_if(
        variants, [](const auto& variant) { return IsMainVariantName(variant.first); });
    return found == variants.end() ? nullptr : &found->second;
}

void NormaliseVariantNames(TVariants& variants, ELanguage language) {
    const std::string current(MainVariantName(language));
    for (const ELanguage other : kLanguages) {
        if (variants.contains(current))
            return;
        // All lines of that name: they are one main variant with its branches.
        const std::string name(MainVariantName(other));
        while (variants.contains(name)) {
            auto node = variants.extract(variants.lower_bound(name));
            node.key() = current;
            node.mapped().name = current;
            variants.insert(std::move(node));
        }
    }
}

TProblemVariant ParseVariant(std::string_view text, bool* hasSkippedText, bool* hasOtherNumbers) {
    CVariantReader reader(text);
    TProblemVariant variant = reader.Read();
    if (hasSkippedText != nullptr)
        *hasSkippedText = reader.HasSkippedText();
    if (hasOtherNumbers != nullptr)
        *hasOtherNumbers = reader.HasOtherNumbers();
    return variant;
}

std::string CleanVariantName(std::string_view name) {
    return WithoutLineEnds(name, '}');
}

std::string CleanVariantComment(std::string_view comment) {
    return WithoutLineEnds(comment, ']');
}

std::string VariantToText(const TProblemVariant& variant, bool withComments) {
    std::string text = "{" + CleanVariantName(variant.name) + "}";
    // Half-moves before the next one, counted from white's first.
    std::size_t halfMoves = variant.doesBlackBegin ? 1 : 0;
    if (variant.doesBlackBegin)
        text += " 1. ...";
    for (const TVariantMove& move : variant.moves) {
        const bool isWhite = halfMoves % 2 == 0;
        if (isWhite)
            text += " " + std::to_string(halfMoves / 2 + 1) + ".";
        text += " " + WrittenMoveText(move, isWhite);
        const std::string comment = CleanVariantComment(move.comment);
        if (withComments && !comment.empty())
            text += "[" + comment + "]";
        ++halfMoves;
    }
    return text;
}

}  // namespace quillmere
