// The parts of a problem file, each read by a routine of its own: inside of the reader only.
//
// All throw ChessException at the first fault; the lexer then knows the line.
#pragma once

#include "problems/chess_problem.h"
#include "problems/problem_lexer.h"
#include "problems/text_encoding.h"

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace quillmere {

// One file in reading.
struct TReading {
    CProblemLexer lexer;
    CTextDecoder decoder;
    // Options of the default clauses by the moves of the stipulation.
    std::map<u32, std::set<std::string>> defaults;
};

// Default clauses at the top of the file. Returns whether there were any.
bool ReadDefaultClauses(TReading& reading);
// Number, stipulation and options, up to the first stopper, which stays unread.
void ReadHead(TReading& reading, TChessProblem& problem);
// Tags, variants, sort indications, and the opening bracket.
void ReadLineBlocks(TReading& reading, TChessProblem& problem);
// Description, then FEN or two lists of figures.
void ReadPosition(TReading& reading, TChessProblem& problem);
// Played moves and solution, where there are any, and the closing bracket.
void ReadMovesAndSolution(TReading& reading, TChessProblem& problem);

// What the parts share

// A text of the problem; bytes that the code page does not know are entered as lost.
std::string DecodeText(TReading& reading, TChessProblem& problem, std::string_view bytes);

// The decimal digits at the start of the token, `highest` if they tell more; 0 without digits.
u32 DecimalPrefix(std::string_view token, u32 highest);
std::string ToUpper(std::string_view word);
// A square as "a1" in any case, kNoSquare for anything else.
int SquareOfToken(std::string_view token);
// Reads the token, or throws `fault`.
void ExpectToken(TReading& reading, std::string_view token, EMessage fault);
// The keyword (in capitals) begins the section of played moves, or a solution clause.
bool IsMovesKeyword(std::string_view word);
bool IsSolutionKeyword(std::string_view word);

}  // namespace quillmere
