#include "problems/problem_parts.h"

#include "core/chess_exception.h"
#include "core/text.h"
#include "problems/save_losses.h"

#include <algorithm>

namespace quillmere {

std::string DecodeText(TReading& reading, TChessProblem& problem, std::string_view bytes) {
    std::string text = reading.decoder.Decode(bytes);
    if (reading.decoder.HasLost(text))
        problem.lostBySave.insert(LostBytes(reading.lexer.Line()));
    return text;
}

u32 DecimalPrefix(std::string_view token, u32 highest) {
    u64 number = 0;
    for (const char c : token) {
        if (!IsDigit(c))
            break;
        number = std::min<u64>(number * 10 + static_cast<u64>(c - '0'), highest);
    }
    return static_cast<u32>(number);
}

std::string ToUpper(std::string_view word) {
    std::string upper(word);
    std::transform(upper.begin(), upper.end(), upper.begin(), ToUpperLetter);
    return upper;
}

int SquareOfToken(std::string_view token) {
    if (token.size() != 2)
        return kNoSquare;
    const int file = ToUpperLetter(token[0]) - 'A';
    const int rank = token[1] - '1';
    return file >= 0 && file < 8 && rank >= 0 && rank < 8 ? SquareAt(file, rank) : int{kNoSquare};
}

void ExpectToken(TReading& reading, std::string_view token, EMessage fault) {
    if (reading.lexer.NextTokenNoCR(true, false) != token)
        throw ChessException(fault);
}

}  // namespace quillmere
