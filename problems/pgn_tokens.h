// The words of a PGN text. Each knows its line, for faults are told with it.
#pragma once

#include "core/messages.h"
#include "problems/pgn_game.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

enum class EPgnToken {
    kEnd,
    kTag,         // '['
    kComment,     // text: what stands in it
    kOpen,        // '('
    kClose,       // ')'
    kMark,        // a NAG, or '!' and '?' alone
    kMoveNumber,  // with its dots
    kResult,
    kWord,  // a move, a null move
};

struct TPgnToken {
    EPgnToken kind = EPgnToken::kEnd;
    std::string_view text;
    int line = 0;
};

// The text is a null move, which may stand in place of the first move of a line.
bool IsNullMove(std::string_view word);

// Throws CProblemFileFault.
[[noreturn]] void FailPgn(int line, EMessage id, std::vector<std::string> values = {});

// All faults are CProblemFileFault.
class CPgnLexer {
public:
    explicit CPgnLexer(std::string_view text) : m_text(text) {}

    TPgnToken Next();
    TPgnToken Peek() {
        const CPgnLexer before = *this;
        const TPgnToken token = Next();
        *this = before;
        return token;
    }
    // Reads a tag pair whose '[' was taken.
    TPgnTag ReadTag();

private:
    bool IsAtEnd() const { return m_at >= m_text.size(); }
    char Here() const { return m_text[m_at]; }
    void Step() {
        m_line += Here() == '\n' ? 1 : 0;
        ++m_at;
    }
    void SkipLine() {
        while (!IsAtEnd() && Here() != '\n')
            Step();
    }
    void SkipBlanks();
    std::string_view TakeWhile(bool (*isPart)(char));
    TPgnToken NextComment();
    TPgnToken NextWord();
    std::string_view ShownHere() const;

    std::string_view m_text;
    std::size_t m_at = 0;
    int m_line = 1;
};

}  // namespace quillmere
