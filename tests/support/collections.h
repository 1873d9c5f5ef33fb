// Collections for the tests, from the text of a .cp file.
#pragma once

#include "problems/problem_reader.h"

#include <string>
#include <string_view>

namespace quillmere::test {

inline void ReadCp(std::string_view problems, TProblemCollection& collection) {
    ReadProblems("UTF-8\n\n" + std::string(problems), collection, {});
}

}  // namespace quillmere::test
