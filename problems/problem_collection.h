// The problems of one .cp file, by number.
//
// Locking: `lock` guards the map and the sets of running problems, and is held for one operation on
// them only; nothing else is taken while it is held. Who solves a problem holds a pointer to it and
// not the lock: a problem with a running solve is never removed.
#pragma once

#include "problems/chess_problem.h"

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace quillmere {

class IChangeWatch;

// By number, ascending. The order of the file is not kept.
using TProblemMap = std::map<i32, std::unique_ptr<TChessProblem>>;

struct TProblemCollection {
    TProblemCollection();
    ~TProblemCollection();
    TProblemCollection(const TProblemCollection&) = delete;
    TProblemCollection& operator=(const TProblemCollection&) = delete;

    mutable std::mutex lock;
    TProblemMap problems;

    std::filesystem::path fileName;
    bool isChanged = false;
    // Tells of changes by other programs; null for no watch.
    std::unique_ptr<IChangeWatch> watch;
    // What a save loses that belongs to no problem: default clauses, comments.
    std::set<std::string> lostBySave;
    // Every tag of the files that were read, as they were translated, for lists to choose from.
    std::set<std::string> allTags;

    // Null if there is none.
    TChessProblem* Find(i32 number) const;
    // Replaces a problem of that number. Returns whether there was one.
    bool Insert(std::unique_ptr<TChessProblem> problem);
    // The smallest number above every other, 1 in an empty collection. Where the greatest number is
    // the last one that there is, the smallest free one from 1 on.
    i32 NextNumber() const;
};

}  // namespace quillmere
