// The encodings of problem files: UTF-8 where the file says so, else an ANSI code page.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct UConverter;

namespace quillmere {

// What a file in UTF-8 begins with: the mark, or a line with the word, or both.
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view kEncodingWord = "UTF-8";

// Bytes of the character at the start of a text that is not empty: a whole one of UTF-8, else 1.
std::size_t CharacterLength(std::string_view text);
// Every character is a whole one of UTF-8.
bool IsUtf8(std::string_view text);
bool IsAscii(std::string_view text);

struct TEncodingHead {
    bool isUtf8 = false;   // by the mark or by the word
    std::size_t size = 0;  // bytes of both, with the blanks before the word
};
TEncodingHead ReadEncodingHead(std::string_view text);

// Turns the bytes of one file into texts of the program.
//
// Bytes of a UTF-8 file stay as they are, even where they are no UTF-8: a save gives back what was
// read. Bytes that a code page does not know become U+FFFD.
//
// Threads: belongs to one thread.
class CTextDecoder {
public:
    // UTF-8.
    CTextDecoder();
    // A code page by any name that ICU knows. It must hold ASCII at its own place, for numbers and
    // words of the format are looked for in the bytes. Throws ChessException (kUnknownCodePage).
    explicit CTextDecoder(const std::string& codePage);
    ~CTextDecoder();
    CTextDecoder(CTextDecoder&&) noexcept;
    CTextDecoder& operator=(CTextDecoder&&) noexcept;

    // Also decodes the name of a token for a message, where the byte alone would be no text.
    std::string Decode(std::string_view bytes) const;
    bool IsUtf8() const { return m_converter == nullptr; }
    // The decoded text has places where its bytes are unknown to the code page.
    bool HasLost(std::string_view decoded) const;

private:
    struct TClose {
        void operator()(UConverter* converter) const;
    };
    std::unique_ptr<UConverter, TClose> m_converter;
};

}  // namespace quillmere
