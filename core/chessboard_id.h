// The compact identifier of a position, and its printable form.
#pragma once

#include "core/chessboard.h"

#include <string>
#include <string_view>

namespace quillmere {

// A bit string of at most 320 bits, the least significant bit of each byte first. Per square from
// a1 to h8: one 0 bit if it is empty; else a 1 bit and the four bits of the figure's code, lowest
// bit first. So a position with f figures takes 64 + 4 f bits.
class TChessboardId {
public:
    TChessboardId() = default;
    // Throws ChessException on a figure code that is none of the twelve, or on overflow.
    explicit TChessboardId(const TChessboard& board);

    // Appends a bit. Throws ChessException past 320 bits.
    void AddBit(bool bit);
    // Decodes to 64 figure codes; bits behind square 63 are ignored. Throws ChessException on a
    // string that ends too early or holds an unknown code; then `board` is unchanged.
    void ToBoard(u8 board[kSquareCount]) const;

    // Six bits a character: "0" to "9", "a" to "z", "A" to "Z", "(" and ")".
    std::string ToAlphanum6() const;
    // False on any other character, or on a text of more than 320 bits; the id is then unchanged.
    bool FromAlphanum6(std::string_view text);

    i16 BitCount() const { return m_bitCount; }
    bool Bit(int index) const { return (m_bits[index / 8] >> (index % 8) & 1) != 0; }

    friend bool operator==(const TChessboardId&, const TChessboardId&) = default;

private:
    i16 m_bitCount = 0;
    u8 m_bits[40] = {};
};

}  // namespace quillmere
