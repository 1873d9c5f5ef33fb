// Collections compared by their positions: doubles, and problems of another file appended or removed.
//
// A position is the 64 squares of a problem's root board; neither the stipulation nor played moves
// belong to it.
#pragma once

#include "problems/collection_files.h"
#include "problems/problem_collection.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quillmere {

// Doubles

struct TSamePosition {
    i32 number = 0;
    i32 sameAs = 0;  // the smallest number with this position
};
// One entry for each problem whose position stands already under a smaller number, ascending.
std::vector<TSamePosition> FindSamePositions(const TProblemCollection& collection);
// The problem with the smallest other number that has the position of this one; null if there is
// none. `problem` need not belong to the collection.
const TChessProblem* FindSamePosition(const TProblemCollection& collection,
                                      const TChessProblem& problem);
// The question before a save (kAskSaveSamePosition), with number, stipulation and description of the
// problem that has the position already.
std::string SamePositionQuestion(const TChessProblem& existing, ELanguage language);

// Append

struct TAppended {
    std::vector<i32> numbers;  // of the problems that came in, ascending
    // Number in the other file, and number in this collection; the position is the same.
    std::vector<std::pair<i32, i32>> differOnlyByStipulation;
    std::string report;  // "Appended problems: 2" and what follows
    // What the other file holds beside the problems that came in, and keeps: lines for the user, with
    // the numbers of the other file.
    std::vector<std::string> remarks;
    std::string question;  // the report and kAskSaveOrReject
    bool wasChanged = false;
};
// Adds each problem of the other file whose position the collection does not have yet, under the next
// free number. Throws CSolveIsRunning or what reading throws; the collection is then unchanged.
TAppended AppendFile(const std::filesystem::path& other,
                     TProblemCollection& collection,
                     const TFileSettings& settings);
// Takes back what AppendFile did: the answer No to its question.
void RejectAppended(TProblemCollection& collection, const TAppended& appended);

// Remove

struct TRemoved {
    std::vector<std::unique_ptr<TChessProblem>> problems;
    bool isCurrentKept = false;  // it is present in the other file, but was not removed
    std::string report;          // "Removed problems: 2" and what follows
    std::string question;        // the report and kAskSaveOrReject
    bool wasChanged = false;
};
// Removes all problems whose position is present in the other file, but for the one that the user
// looks at (null for none). Throws CSolveIsRunning or what reading throws; the collection is then
// unchanged.
TRemoved RemovePresentInFile(const std::filesystem::path& other,
                             TProblemCollection& collection,
                             const TChessProblem* current,
                             const TFileSettings& settings);
// Takes back what RemovePresentInFile did: the answer No to its question.
void RejectRemoved(TProblemCollection& collection, TRemoved& removed);

}  // namespace quillmere
