// A solved task as text for people.
#pragma once

#include "cli/console.h"
#include "cli/task.h"

#include <string>
#include <string_view>

namespace quillmere {

// The board with its coordinates, white below, each line with its end.
std::string Diagram(const TChessboard& board);
// "Mate in 3, white to move".
std::string StipulationText(const CConsole& console, const TTask& task);
// The passes that were planned, a line each.
// What --explain shows: the word that was chosen with its reasons, the trials made for it, and the plan.
std::string ExplainText(const CConsole& console, const TSolveResult& result);
std::string PlanText(const CConsole& console, const TSolveResult& result);
// Name of a planned pass: "1a", "1b" and so on under heuristics, "2" without.
std::string PlannedPassName(const TSolveResult& result, std::size_t index);
// The pass that proved the first key; null if none did.
const TPassRecord* ProofOf(const TSolveResult& result);
// A row of the report: the label, then the text behind it in a column.
std::string ReportRow(std::string_view label, std::string_view text);
// Key, tries, main line, verdict, register and work, a line each.
std::string ReportText(const CConsole& console, const TTask& task, const TTaskOutcome& outcome);
// Tells the console's status line how far a search is.
TProgressCallback ShowProgress(CConsole& console, const TTask& task);

// Length of the task in moves: of a mate in n it is n, of a defence task the pairs of moves.
int FullMovesOfTask(const TTask& task);
// Rounded to tenths.
double Megabytes(u64 bytes);

}  // namespace quillmere
