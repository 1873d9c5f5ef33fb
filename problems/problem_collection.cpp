#include "problems/problem_collection.h"

#include "problems/change_watch.h"

#include <limits>

namespace quillmere {

TProblemCollection::TProblemCollection() = default;
TProblemCollection::~TProblemCollection() = default;

TChessProblem* TProblemCollection::Find(i32 number) const {
    const std::lock_guard guard(lock);
    const auto found = problems.find(number);
    return found == problems.end() ? nullptr : found->second.get();
}

bool TProblemCollection::Insert(std::unique_ptr<TChessProblem> problem) {
    const std::lock_guard guard(lock);
    std::unique_ptr<TChessProblem>& place = problems[problem->number];
    const bool wasThere = place != nullptr;
    place = std::move(problem);
    return wasThere;
}

i32 TProblemCollection::NextNumber() const {
    const std::lock_guard guard(lock);
    if (problems.empty())
        return 1;
    const i32 greatest = problems.rbegin()->first;
    if (greatest < std::numeric_limits<i32>::max())
        return greatest + 1;
    i32 number = 1;
    while (problems.count(number) != 0)
        ++number;
    return number;
}

}  // namespace quillmere
