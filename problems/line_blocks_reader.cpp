// The blocks of whole lines between the head and the body of a problem: tags, variants and sort
// indications. Programs that do not know them take them for comments.

#include "core/chess_exception.h"
#include "core/text.h"
#include "problems/problem_parts.h"
#include "problems/save_losses.h"

#include <utility>

namespace quillmere {
namespace {

constexpr std::string_view kTagsLine = "//#TAGS";
constexpr std::string_view kTagMark = "//#";
constexpr std::string_view kVariantsLine = "//!VARIANTS";
constexpr std::string_view kEndVariantsLine = "//!ENDVARIANTS";
constexpr std::string_view kVariantMark = "//!";
constexpr std::string_view kSortIndicationsMark = "//@SortIndications: ";

// The text behind the mark. Blanks are cut off only here: a byte that is a blank in one encoding is
// half a letter in another.
std::string TextOfLine(TReading& reading,
                       TChessProblem& problem,
                       std::string_view line,
                       std::string_view mark) {
    return std::string(StripBlanks(DecodeText(reading, problem, line.substr(mark.size()))));
}

// Returns the token behind the block.
std::string_view ReadTags(TReading& reading, TChessProblem& problem) {
    for (;;) {
        const std::string_view token = reading.lexer.NextToken(true, true);
        if (!token.starts_with(kTagMark))
            return token;
        std::string tag = TextOfLine(reading, problem, token, kTagMark);
        if (!tag.empty())
            problem.tags.insert(std::move(tag));
    }
}

void ReadVariant(TReading& reading, TChessProblem& problem, std::string_view line) {
    bool hasSkippedText = false;
    bool hasOtherNumbers = false;
    TProblemVariant variant = ParseVariant(
        TextOfLine(reading, problem, line, kVariantMark), &hasSkippedText, &hasOtherNumbers);
    if (hasSkippedText)
        problem.lostBySave.insert(LostBesideMoves(reading.lexer.Line()));
    if (hasOtherNumbers)
        problem.lostBySave.insert(LostMoveNumbers(reading.lexer.Line()));
    std::string name = variant.name;
    problem.variants.emplace(std::move(name), std::move(variant));
}

// Returns the token behind the block.
std::string_view ReadVariants(TReading& reading, TChessProblem& problem) {
    for (;;) {
        const std::string_view token = reading.lexer.NextToken(true, true);
        if (StripBlanks(token) == kEndVariantsLine)
            return reading.lexer.NextToken(true, true);
        if (!token.starts_with(kVariantMark))
            return token;
        ReadVariant(reading, problem, token);
    }
}

}  // namespace

void ReadLineBlocks(TReading& reading, TChessProblem& problem) {
    std::string_view token = reading.lexer.NextToken(true, true);
    if (StripBlanks(token) == kTagsLine)
        token = ReadTags(reading, problem);
    if (StripBlanks(token) == kVariantsLine)
        token = ReadVariants(reading, problem);
    if (token.starts_with(kSortIndicationsMark)) {
        ParseSortIndications(problem.sortIndications,
                             TextOfLine(reading, problem, token, kSortIndicationsMark));
        token = reading.lexer.NextToken(true, true);
    }
    if (token != "{")
        throw ChessException(EMessage::kOpeningBracketExpected);
}

}  // namespace quillmere
