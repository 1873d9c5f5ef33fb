#include "problems/text_encoding.h"

#include "core/chess_exception.h"

#include <algorithm>
#include <iterator>
#include <unicode/ucnv.h>

namespace quillmere {
namespace {

// U+FFFD stands for what a code page does not know.
constexpr std::string_view kReplacementCharacter = "\xef\xbf\xbd";

// A byte becomes three bytes of UTF-8 at most; a converter may also hold back some characters.
constexpr std::size_t kBytesPerByte = 3;
constexpr std::size_t kSpareBytes = 16;
// Room for one step of a conversion; longer texts take several.
constexpr std::size_t kPieceSize = std::size_t{1} << 20;

std::string Convert(UConverter* converter, std::string_view bytes) {
    std::string text;
    UErrorCode error = U_ZERO_ERROR;
    UConverter* const utf8 = ucnv_open("UTF-8", &error);
    if (U_FAILURE(error))
        return std::string(bytes);
    // UTF-16 in between holds characters that were cut by the end of a piece.
    UChar between[512];
    UChar* betweenSource = between;
    UChar* betweenTarget = between;
    const char* source = bytes.data();
    const char* const end = source + bytes.size();
    bool isFirst = true;
    do {
        std::string piece(std::min(kPieceSize, bytes.size()) * kBytesPerByte + kSpareBytes, '\0');
        char* target = piece.data();
        error = U_ZERO_ERROR;
        ucnv_convertEx(utf8,
                       converter,
                       &target,
                       piece.data() + piece.size(),
                       &source,
                       end,
                       between,
                       &betweenSource,
                       &betweenTarget,
                       between + std::size(between),
                       isFirst ? 1 : 0,
                       1,
                       &error);
        isFirst = false;
        text.append(piece.data(), target);
    } while (error == U_BUFFER_OVERFLOW_ERROR);
    ucnv_close(utf8);
    return text;
}

bool HoldsAscii(UConverter* converter) {
    std::string ascii;
    for (char c = ' '; c <= '~'; ++c)
        ascii += c;
    ascii += "\t\n";
    return Convert(converter, ascii) == ascii;
}

}  // namespace

std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t length = byte(0) < 0xc2   ? 1
                               : byte(0) < 0xe0 ? 2
                               : byte(0) < 0xf0 ? 3
                               : byte(0) < 0xf5 ? 4
                                                : 1;
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= text.size() || (byte(i) & 0xc0) != 0x80)
            return 1;
    }
    return length;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        if (length == 1 && static_cast<unsigned char>(text.front()) >= 0x80)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

TEncodingHead ReadEncodingHead(std::string_view text) {
    const bool hasMark = text.starts_with(kByteOrderMark);
    const std::size_t markSize = hasMark ? kByteOrderMark.size() : 0;
    const std::size_t word = text.find_first_not_of(" \t", markSize);
    if (word != std::string_view::npos && text.substr(word).starts_with(kEncodingWord))
        return {true, word + kEncodingWord.size()};
    return {hasMark, markSize};
}

void CTextDecoder::TClose::operator()(UConverter* converter) const {
    ucnv_close(converter);
}

CTextDecoder::CTextDecoder() = default;
CTextDecoder::~CTextDecoder() = default;
CTextDecoder::CTextDecoder(CTextDecoder&&) noexcept = default;
CTextDecoder& CTextDecoder::operator=(CTextDecoder&&) noexcept = default;

CTextDecoder::CTextDecoder(const std::string& codePage) {
    UErrorCode error = U_ZERO_ERROR;
    // An empty name would be the default of the system, whatever that is.
    if (!codePage.empty())
        m_converter.reset(ucnv_open(codePage.c_str(), &error));
    if (m_converter == nullptr || U_FAILURE(error) || !HoldsAscii(m_converter.get()))
        throw ChessException(EMessage::kUnknownCodePage, {codePage});
}

std::string CTextDecoder::Decode(std::string_view bytes) const {
    if (IsUtf8() || IsAscii(bytes))
        return std::string(bytes);
    return Convert(m_converter.get(), bytes);
}

bool CTextDecoder::HasLost(std::string_view decoded) const {
    return !IsUtf8() && decoded.find(kReplacementCharacter) != std::string_view::npos;
}

}  // namespace quillmere
