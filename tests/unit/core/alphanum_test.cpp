#include "core/alphanum.h"
#include "core/chess_exception.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(ToAlphanum5, EachValue_HasItsCharacter) {
    constexpr char kExpected[] = "0123456789abcdefghijklmnopqrstuv";
    for (u8 value = 0; value < 32; ++value)
        EXPECT_EQ(ToAlphanum5({value}, 5), std::string(1, kExpected[value]));
}

TEST(ToAlphanum5, Groups_BeginAtTheLowestBitAndSpanBytes) {
    // 00001, 00010, 00011: bits 1 0 0 0 0 0 1 0 | 0 0 1 1 0 0 0
    EXPECT_EQ(ToAlphanum5({0x41, 0x0c}, 15), "123");
}

TEST(ToAlphanum5, ShortLastGroup_IsFilledWithZeros) {
    EXPECT_EQ(ToAlphanum5({0xff}, 6), "v1");
    EXPECT_EQ(ToAlphanum5({0xff}, 3), "7");
}

TEST(ToAlphanum5, NoBits_AreAnEmptyText) {
    EXPECT_EQ(ToAlphanum5({}, 0), "");
    EXPECT_EQ(ToAlphanum5({0xff}, 0), "");
}

TEST(ToAlphanum5, MoreBitsThanBytesHold_AreAFault) {
    try {
        ToAlphanum5({0xff}, 9);
        FAIL();
    } catch (const ChessException& fault) {
        EXPECT_STREQ(fault.what(), "Error in ToAlphanum5");
    }
}

}  // namespace
}  // namespace quillmere
