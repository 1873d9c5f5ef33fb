#include "problems/problem_lexer.h"

#include "core/chess_exception.h"
#include "core/text.h"
#include "problems/text_encoding.h"

#include <algorithm>
#include <string>

namespace quillmere {
namespace {

constexpr char kNoBreakSpace = static_cast<char>(160);
constexpr std::string_view kSortIndicationsLine = "//@SortIndications";

bool IsWhiteSpace(char c) {
    return IsBlank(c) || c == kNoBreakSpace;
}

bool IsWordStart(char c) {
    return IsLetter(c) || IsDigit(c);
}

bool IsWordPart(char c) {
    return IsWordStart(c) || c == '^' || c == '_';
}

bool BeginsWithoutCase(std::string_view text, std::string_view start) {
    return text.size() >= start.size() &&
           std::equal(start.begin(), start.end(), text.begin(), [](char a, char b) {
               return ToUpperLetter(a) == ToUpperLetter(b);
           });
}

}  // namespace

bool CProblemLexer::BeginsComment(std::size_t at) const {
    return at + 1 < m_text.size() && m_text[at] == '/' &&
           (m_text[at + 1] == '/' || m_text[at + 1] == '*');
}

void CProblemLexer::SkipWhiteSpace() {
    while (!IsAtEnd() && IsWhiteSpace(m_text[m_at]))
        ++m_at;
}

bool CProblemLexer::IsSpecialLine() const {
    const std::string_view left = Left();
    if (left.size() < 3 || !left.starts_with("//"))
        return false;
    if (left[2] == '@')
        return BeginsWithoutCase(left, kSortIndicationsLine);
    return left[2] == '!' || left[2] == '#';
}

// False at a comment without end, which then is the end of the text.
bool CProblemLexer::SkipComment(bool mustExist) {
    if (m_at >= m_notedUpTo) {
        m_comments.push_back(m_at);
        m_notedUpTo = m_at + 1;
    }
    const bool isLine = m_text[m_at + 1] == '/';
    const std::string_view closing = isLine ? "\n" : "*/";
    const std::size_t end = m_text.find(closing, m_at + 2);
    if (end == std::string_view::npos) {
        if (mustExist)
            throw ChessException(EMessage::kCommentNotClosed);
        m_at = m_text.size();
        return false;
    }
    m_at = end + closing.size();
    return true;
}

template <typename TPredicate>
std::string_view CProblemLexer::TakeWhile(TPredicate isPart) {
    const std::size_t start = m_at;
    while (!IsAtEnd() && isPart(m_at))
        ++m_at;
    return m_text.substr(start, m_at - start);
}

bool CProblemLexer::SkipGaps(bool mustExist, bool keepSpecialComments) {
    for (;;) {
        SkipWhiteSpace();
        m_tokenStart = m_at;
        if (IsAtEnd()) {
            if (mustExist)
                throw ChessException(EMessage::kUnexpectedEndOfFile);
            return false;
        }
        if (!BeginsComment(m_at) || (keepSpecialComments && IsSpecialLine()))
            return true;
        if (!SkipComment(mustExist))
            return false;
    }
}

std::string_view
CProblemLexer::TakeToken(bool mustExist, bool keepSpecialComments, bool mayHoldSlash) {
    if (!SkipGaps(mustExist, keepSpecialComments))
        return {};
    if (BeginsComment(m_at))
        return RestOfLine();
    if (m_text[m_at] == '/')
        throw ChessException(EMessage::kUnexpectedSlash);
    if (!IsWordStart(m_text[m_at])) {
        const std::string_view character = m_text.substr(m_at, CharacterLength(Left()));
        m_at += character.size();
        return character;
    }
    return TakeWhile([&](std::size_t at) {
        return IsWordPart(m_text[at]) || (mayHoldSlash && m_text[at] == '/' && !BeginsComment(at));
    });
}

std::string_view CProblemLexer::NextToken(bool mustExist, bool keepSpecialComments) {
    return TakeToken(mustExist, keepSpecialComments, false);
}

std::string_view CProblemLexer::NextTokenNoCR(bool mustExist, bool keepSpecialComments) {
    const std::string_view token = NextToken(mustExist, keepSpecialComments);
    return token.substr(0, token.find('\r'));
}

std::string_view CProblemLexer::NextIdentifier() {
    const std::string_view token = NextTokenNoCR(true, false);
    if (token.empty() || !IsWordStart(token.front()))
        throw ChessException(EMessage::kIdentifierExpected, {std::string(token)});
    return token;
}

std::string_view CProblemLexer::NextFenWord() {
    const auto isGap = [&](std::size_t at) { return m_text[at] == ' ' || m_text[at] == '\t'; };
    TakeWhile(isGap);
    m_tokenStart = m_at;
    return TakeWhile([&](std::size_t at) { return !isGap(at) && m_text[at] != '\n'; });
}

std::string_view CProblemLexer::NextWordWithSlash() {
    SkipWhiteSpace();
    m_tokenStart = m_at;
    const std::string_view word = TakeWhile([&](std::size_t at) {
        return IsWordStart(m_text[at]) || (m_text[at] == '/' && !BeginsComment(at));
    });
    SkipWhiteSpace();
    if (IsAtEnd())
        throw ChessException(EMessage::kUnexpectedEndOfFile);
    return word;
}

std::string_view CProblemLexer::NextOptionToken() {
    return TakeToken(true, true, true);
}

std::string_view CProblemLexer::RestOfLine() {
    return TakeWhile([&](std::size_t at) { return m_text[at] != '\n'; });
}

void CProblemLexer::GoBack(TMark mark) {
    m_at = mark.at;
    m_tokenStart = mark.tokenStart;
}

int CProblemLexer::LineOf(std::size_t at) {
    // The end of the text counts as the end of its last line.
    if (at == m_text.size()) {
        while (at > 0 && IsWhiteSpace(m_text[at - 1]))
            --at;
    }
    if (m_lineStarts.empty())
        FindLineStarts();
    return static_cast<int>(std::ranges::upper_bound(m_lineStarts, at) - m_lineStarts.begin());
}

// Places are asked for in any order, and a text with a remark on each line must not be counted anew
// for each.
void CProblemLexer::FindLineStarts() {
    std::size_t start = 0;
    do {
        m_lineStarts.push_back(start);
        start = m_text.find('\n', start) + 1;
    } while (start != 0);
}

std::string_view CProblemLexer::Since(TMark mark) const {
    std::string_view text = m_text.substr(mark.at, m_at - mark.at);
    while (!text.empty() && IsWhiteSpace(text.front()))
        text.remove_prefix(1);
    return text;
}

std::vector<int> CProblemLexer::TakeComments() {
    std::vector<int> lines;
    for (const std::size_t at : m_comments)
        lines.push_back(LineOf(at));
    m_comments.clear();
    return lines;
}

bool IsMaterialWord(std::string_view text) {
    // The word needs something behind it, as it has in a file.
    const std::string line = std::string(text) + " {";
    return !text.empty() && CProblemLexer(line).NextWordWithSlash() == text;
}

}  // namespace quillmere
