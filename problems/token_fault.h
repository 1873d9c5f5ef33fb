// A fault whose text names no word of the file, with the word that has it.
#pragma once

#include "core/chess_exception.h"

#include <string>
#include <utility>

namespace quillmere {

class CTokenFault : public ChessException {
public:
    CTokenFault(const ChessException& reason, std::string token)
        : ChessException(reason), m_token(std::move(token)) {}
    const std::string& Token() const { return m_token; }

private:
    std::string m_token;
};

}  // namespace quillmere
