// Small problem files for the tests of operations on them.
#pragma once

#include "problems/problem_collection.h"

#include <string>
#include <vector>

namespace quillmere::test {

struct TSmallProblem {
    int number;
    std::string stipulation;  // "#2", "s#3", or empty
    std::string fen;
    std::string description = "";
};

inline std::string ProblemText(const TSmallProblem& problem) {
    std::string text = std::to_string(problem.number) + " " + problem.stipulation + "\n{\n";
    if (!problem.description.empty())
        text += "\tDescription: " + problem.description + "\n";
    return text + "\tFEN: " + problem.fen + "\n}\n";
}

inline std::string FileText(const std::vector<TSmallProblem>& problems) {
    std::string text = "UTF-8\n\n";
    for (const TSmallProblem& problem : problems)
        text += ProblemText(problem);
    return text;
}

inline std::vector<int> NumbersOf(const TProblemCollection& collection) {
    std::vector<int> numbers;
    for (const auto& entry : collection.problems)
        numbers.push_back(entry.first);
    return numbers;
}

}  // namespace quillmere::test
