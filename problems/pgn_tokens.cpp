#include "problems/pgn_tokens.h"

#include "core/chess_exception.h"
#include "core/text.h"
#include "problems/problem_reader.h"
#include "problems/text_encoding.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace quillmere {
namespace {

constexpr bool IsWordCharacter(char c) {
    constexpr std::string_view kOthers = "+#=:-/_!?";
    return IsLetter(c) || IsDigit(c) || kOthers.find(c) != std::string_view::npos;
}

bool IsResult(std::string_view word) {
    return word == "1-0" || word == "0-1" || word == "1/2-1/2" || word == "*";
}

}  // namespace

bool IsNullMove(std::string_view word) {
    return word == "--" || word == "Z0";
}

void FailPgn(int line, EMessage id, std::vector<std::string> values) {
    throw CProblemFileFault(line, ChessException(id, std::move(values)));
}

// Also the lines that begin with '%', which other programs use for themselves.
void CPgnLexer::SkipBlanks() {
    while (!IsAtEnd()) {
        const bool isLineStart = m_at == 0 || m_text[m_at - 1] == '\n';
        if (isLineStart && Here() == '%')
            SkipLine();
        else if (IsBlank(Here()) || Here() == '\v' || Here() == '\f')
            Step();
        else
            break;
    }
}

std::string_view CPgnLexer::TakeWhile(bool (*isPart)(char)) {
    const std::size_t start = m_at;
    while (!IsAtEnd() && isPart(Here()))
        Step();
    return m_text.substr(start, m_at - start);
}

TPgnToken CPgnLexer::NextComment() {
    const int line = m_line;
    const bool isBraced = Here() == '{';
    Step();
    const std::size_t start = m_at;
    while (!IsAtEnd() && Here() != (isBraced ? '}' : '\n'))
        Step();
    if (isBraced && IsAtEnd())
        FailPgn(line, EMessage::kPgnOpenComment);
    const std::string_view text = m_text.substr(start, m_at - start);
    if (!IsAtEnd())
        Step();
    return {EPgnToken::kComment, text, line};
}

// What cannot be read, for the message: up to the next blank, whole characters, not too long.
std::string_view CPgnLexer::ShownHere() const {
    constexpr std::size_t kLongest = 24;
    std::size_t end = m_at + 1;
    while (end < m_text.size() && !IsBlank(m_text[end]) &&
           (end - m_at < kLongest || (static_cast<unsigned char>(m_text[end]) & 0xc0) == 0x80))
        ++end;
    return m_text.substr(m_at, end - m_at);
}

TPgnToken CPgnLexer::NextWord() {
    const int line = m_line;
    const std::string_view shown = ShownHere();
    if (Here() == '$') {
        Step();
        const std::string_view digits = TakeWhile(IsDigit);
        int value = -1;
        std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (digits.empty() || digits.size() > 3 || value > 255)
            FailPgn(line, EMessage::kPgnBadNag, {std::string(shown)});
        return {EPgnToken::kMark, digits, line};
    }
    const std::string_view word = TakeWhile(IsWordCharacter);
    if (word.empty())
        FailPgn(line, EMessage::kPgnBadToken, {std::string(shown)});
    if (IsResult(word))
        return {EPgnToken::kResult, word, line};
    if (std::ranges::all_of(word, IsDigit)) {
        TakeWhile([](char c) { return c == '.'; });
        return {EPgnToken::kMoveNumber, word, line};
    }
    if (std::ranges::all_of(word, [](char c) { return c == '!' || c == '?'; }))
        return {EPgnToken::kMark, word, line};
    return {EPgnToken::kWord, word, line};
}

TPgnToken CPgnLexer::Next() {
    constexpr std::string_view kEnPassant = "e.p.";
    for (;;) {
        SkipBlanks();
        if (IsAtEnd())
            return {EPgnToken::kEnd, {}, m_line};
        if (m_text.substr(m_at).starts_with(kEnPassant))
            m_at += kEnPassant.size();
        else if (Here() == '.')
            Step();
        else
            break;
    }
    const int line = m_line;
    const auto single = [&](EPgnToken kind) {
        const std::string_view text = m_text.substr(m_at, 1);
        Step();
        return TPgnToken{kind, text, line};
    };
    switch (Here()) {
    case '[':
        return single(EPgnToken::kTag);
    case '(':
        return single(EPgnToken::kOpen);
    case ')':
        return single(EPgnToken::kClose);
    case '*':
        return single(EPgnToken::kResult);
    case '{':
    case ';':
        return NextComment();
    default:
        return NextWord();
    }
}

TPgnTag CPgnLexer::ReadTag() {
    TPgnTag tag;
    SkipBlanks();
    tag.line = m_line;
    tag.name = TakeWhile([](char c) { return IsLetter(c) || IsDigit(c) || c == '_'; });
    if (tag.name.empty())
        FailPgn(m_line, EMessage::kPgnTagName);
    SkipBlanks();
    if (IsAtEnd() || Here() != '"')
        FailPgn(m_line, EMessage::kPgnTagValue, {tag.name});
    const int line = m_line;
    for (Step(); !IsAtEnd() && Here() != '"' && Here() != '\n'; Step()) {
        const bool isEscape = Here() == '\\' && m_at + 1 < m_text.size() &&
                              (m_text[m_at + 1] == '"' || m_text[m_at + 1] == '\\');
        if (isEscape)
            Step();
        tag.value += Here();
    }
    if (IsAtEnd() || Here() == '\n')
        FailPgn(line, EMessage::kPgnTagOpen, {tag.name});
    Step();
    SkipBlanks();
    if (IsAtEnd() || Here() != ']')
        FailPgn(line, EMessage::kPgnTagClose, {tag.name});
    Step();
    return tag;
}

}  // namespace quillmere
