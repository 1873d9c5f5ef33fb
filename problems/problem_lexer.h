// The words of a problem file, one after the other.
//
// White space is tab, line feed, carriage return, blank and the byte 160 (the no-break space of the
// ANSI code pages). Comments are skipped like white space. A letter or digit begins a word, which
// goes on over letters, digits, "^" and "_"; any other character is a token of its own. A zero byte
// is a character like any other.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace quillmere {

class CProblemLexer {
public:
    // The text must outlive the lexer and its tokens, and have no carriage return before a line feed.
    explicit CProblemLexer(std::string_view text) : m_text(text) {}

    // The next token. At the end of the text, or in a comment without end, it is empty, or a fault
    // if it must exist. With keepSpecialComments a line that begins with "//!", "//#" or
    // "//@SortIndications" is a token, without its line feed. All faults are ChessException.
    std::string_view NextToken(bool mustExist, bool keepSpecialComments);
    // The same, cut at the first carriage return.
    std::string_view NextTokenNoCR(bool mustExist, bool keepSpecialComments);
    // A word. Special lines are comments here.
    std::string_view NextIdentifier();
    // Skips blanks and tabs; all up to the next blank, tab or line feed. May be empty.
    std::string_view NextFenWord();
    // Letters, digits and "/", with the white space around it skipped. May be empty. A "/" that
    // begins a comment ends the word.
    std::string_view NextWordWithSlash();
    // A token where an option may stand: special lines are kept, and a word may contain "/" unless
    // that begins a comment.
    std::string_view NextOptionToken();
    // Skips white space and comments; with keepSpecialComments not the special lines. False at the
    // end of the text or in a comment without end, which are faults if something must follow.
    bool SkipGaps(bool mustExist, bool keepSpecialComments);
    // All up to the next line feed or the end of the text.
    std::string_view RestOfLine();

    // A place to go back to.
    struct TMark {
        std::size_t at = 0;
        std::size_t tokenStart = 0;
    };
    TMark Mark() const { return {m_at, m_tokenStart}; }
    void GoBack(TMark mark);
    void Skip(std::size_t bytes) { m_at += bytes; }
    // What is not yet read.
    std::string_view Left() const { return m_text.substr(m_at); }

    // Line, from 1, of the token that was read last or is at fault.
    int Line() { return LineOf(m_tokenStart); }
    // What was read since the mark, without white space before it.
    std::string_view Since(TMark mark) const;

    // Lines, from 1, on which the comments begin that were skipped since the last call.
    std::vector<int> TakeComments();

private:
    void FindLineStarts();
    bool IsAtEnd() const { return m_at == m_text.size(); }
    bool BeginsComment(std::size_t at) const;
    void SkipWhiteSpace();
    bool SkipComment(bool mustExist);
    bool IsSpecialLine() const;
    template <typename TPredicate>
    std::string_view TakeWhile(TPredicate isPart);
    std::string_view TakeToken(bool mustExist, bool keepSpecialComments, bool mayHoldSlash);
    int LineOf(std::size_t at);

    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_tokenStart = 0;
    // Comments that begin before this place are noted already: the pointer goes back at times.
    std::size_t m_notedUpTo = 0;
    std::vector<std::size_t> m_comments;
    // Where the lines begin; empty until the first question, for most texts are never asked.
    std::vector<std::size_t> m_lineStarts;
};

// The text is one word where an option takes a material: NextWordWithSlash reads it whole.
bool IsMaterialWord(std::string_view text);

}  // namespace quillmere
