// The pieces that the JSON outputs share. Every object is one line and carries kSchema, which rises
// when a field changes its meaning or goes away; new fields may come at any time.
#pragma once

#include "cli/task.h"
#include "core/play_board.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

using TJson = nlohmann::ordered_json;

constexpr int kSchema = 2;

TJson MoveJson(const TWrittenMove& move);
TJson LineJson(const std::vector<TWrittenMove>& line);
// `keys` with their `bestDefence`, `defences`, `tries` and `mainLine` of a solved task.
void AddResultJson(TJson& json, const TTask& task, const TSolveResult& result);
// `plan`, `passes` as they were run, and `proof`, the pass that proved the first key.
// `selection`: the chosen word with its reasons, in English, and the trials; null where nothing was chosen.
void AddSelectionJson(TJson& json, const TSolveResult& result);
void AddPassesJson(TJson& json, const TSolveResult& result);
// `registerElements` and `memoryMB`, of the end of the search; 0 where no register was used.
void AddRegisterJson(TJson& json, const TTaskOutcome& outcome);
// One line with its end. Bytes that are no UTF-8 are replaced, so that the output always parses.
std::string JsonLine(const TJson& json);

}  // namespace quillmere
