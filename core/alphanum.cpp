#include "core/alphanum.h"

#include "core/chess_exception.h"

#include <algorithm>

namespace quillmere {
namespace {

constexpr std::size_t kBitsOfCharacter = 5;
constexpr std::size_t kBitsOfByte = 8;
constexpr char kAlphabet[] = "0123456789abcdefghijklmnopqrstuv";
static_assert(sizeof(kAlphabet) == (1 << kBitsOfCharacter) + 1);

}  // namespace

std::string ToAlphanum5(const std::vector<u8>& bytes, std::size_t bitCount) {
    if (bitCount > bytes.size() * kBitsOfByte)
        throw ChessException(EMessage::kErrorInToAlphanum5);
    std::string text;
    for (std::size_t start = 0; start < bitCount; start += kBitsOfCharacter) {
        unsigned value = 0;
        const std::size_t end = std::min(start + kBitsOfCharacter, bitCount);
        for (std::size_t index = start; index < end; ++index) {
            const unsigned bit = bytes[index / kBitsOfByte] >> (index % kBitsOfByte) & 1u;
            value |= bit << (index - start);
        }
        text += kAlphabet[value];
    }
    return text;
}

}  // namespace quillmere
