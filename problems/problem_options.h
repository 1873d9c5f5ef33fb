// The table of the options of a problem; its rows stand in problems/problem_options.def.
#pragma once

#include "problems/chess_problem.h"

#include <string_view>

namespace quillmere {

// What follows the keyword of an option, and the field that takes it.
enum class EOptionKind {
    kFlag,                  // nothing; the flag only
    kUseMainVariant,        // nothing; the flag, and the field of the same meaning
    kGuiCheck,              // a number or nothing: guiCheckRepeat, and the flag
    kThreads,               // "t" or "t^l"
    kRequires,              // a material
    kAllSolutionsRequires,  // a material
    kSchedulerLevels,       // a number
    kLichessLevels,         // a number
    kGlobRegMB,             // a number of megabytes
    kStopRelax,             // nothing
};

struct TProblemOptionRow {
    std::string_view keyword;
    std::string_view written;
    EOptionKind kind;
    u32 flag;
    bool isLost;
};

constexpr TProblemOptionRow kProblemOptionRows[] = {
#define QUILLMERE_PROBLEM_OPTION(keyword, written, kind, flag, lost)                               \
    {#keyword, written, EOptionKind::kind, flag, lost},
#include "problems/problem_options.def"
#undef QUILLMERE_PROBLEM_OPTION
};

// Words of the body that both the reader and the list of losses name.
constexpr std::string_view kWordExpectedSort = "EXPECTEDSORTWHITEMOVES";
constexpr std::string_view kWordExpectedSortOnly = "EXPECTEDSORTWHITEMOVESONLY";

}  // namespace quillmere
