#include "core/chess_exception.h"
#include "problems/text_encoding.h"

#include <gtest/gtest.h>
#include <string>

namespace quillmere {
namespace {

TEST(CTextDecoder, CodePage_BecomesUtf8) {
    struct TRow {
        const char* codePage;
        const char* bytes;
        const char* text;
    };
    const TRow rows[] = {
        {"windows-1250", "za\xbf\xf3\xb3\xe6", "zażółć"},
        {"windows-1250", "plain [1]", "plain [1]"},
        {"windows-1250", "", ""},
        {"windows-1250", "\xa0", "\u00a0"},
        {"windows-1251", "\xf8\xe0\xf5\xe8", "шахи"},
        {"windows-1252", "M\xfcller", "Müller"},
        {"cp1250", "\xb9", "ą"},
        {"ISO-8859-2", "\xb1", "ą"},
        {"UTF-8", "ą", "ą"},
        // Second bytes of letters that are brackets by themselves.
        {"Shift_JIS", "\x83\x5b\x83\x5d", "ゼゾ"},
    };
    for (const TRow& row : rows)
        EXPECT_EQ(CTextDecoder(row.codePage).Decode(row.bytes), row.text) << row.codePage;
}

TEST(CTextDecoder, LongText_IsDecodedWhole) {
    std::string bytes(3000001, '\xb9');
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        text += "ą";
    EXPECT_EQ(CTextDecoder("windows-1250").Decode(bytes), text);
}

TEST(CTextDecoder, Utf8_KeepsItsBytesWhateverTheyAre) {
    const std::string bytes = "\xd0\xa0 \xff\xfe \xc4\x85 \xc4";
    EXPECT_EQ(CTextDecoder().Decode(bytes), bytes);
    EXPECT_TRUE(CTextDecoder().IsUtf8());
    EXPECT_FALSE(CTextDecoder("windows-1250").IsUtf8());
}

TEST(CTextDecoder, CodePageThatCannotBeUsed_IsNamed) {
    for (const std::string codePage : {"windows-9999", "no such page", "", "UTF-16", "IBM037"}) {
        try {
            const CTextDecoder decoder(codePage);
            FAIL() << codePage;
        } catch (const ChessException& fault) {
            EXPECT_EQ(fault.Id(), EMessage::kUnknownCodePage) << codePage;
            EXPECT_EQ(fault.Values(), std::vector<std::string>{codePage});
        }
    }
}

}  // namespace
}  // namespace quillmere
