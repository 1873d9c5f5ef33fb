// The printable form of bit strings in names of files, five bits a character.
//
// It knows digits and small letters only, so that names differ also on disks that do not tell
// capital letters from small ones.
#pragma once

#include "core/types.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillmere {

// The characters "0" to "9" and "a" to "v" of groups of five bits, the lowest bit of the first byte
// first; a group may span two bytes, and a last short one is filled with zeros. Throws ChessException
// (kErrorInToAlphanum5) if the bytes hold fewer bits than `bitCount`.
std::string ToAlphanum5(const std::vector<u8>& bytes, std::size_t bitCount);

}  // namespace quillmere
