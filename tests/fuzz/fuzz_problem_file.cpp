// Any bytes read as a problem file: a text is refused with a fault that has a line, or what was read
// comes back the same when it is written, and the written text is a fixed point.

#include "core/chess_exception.h"
#include "problems/problem_reader.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"
#include "tests/fuzz/fuzz_support.h"
#include "tests/support/kept_fields.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillmere::fuzz {
namespace {

// Reads; false on a fault, whose line must exist. What was read before the fault is in `collection`.
bool Read(std::string_view text, TProblemCollection& collection) {
    try {
        ReadProblems(text, collection, {});
        return true;
    } catch (const CProblemFileFault& fault) {
        const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
        Require(fault.Line() >= 1 && fault.Line() <= lines, "the line of a fault exists");
        Require(*fault.what() != '\0', "a fault has a text");
        return false;
    }
}

void Test(std::string_view text) {
    TProblemCollection first;
    Read(text, first);
    const std::string written = WriteProblems(first);  // an exception here is a finding
    TProblemCollection second;
    Require(Read(written, second), "what was written is read");
    Require(first.problems.size() == second.problems.size(), "no problem is lost");
    for (const auto& [number, problem] : first.problems) {
        const TChessProblem* const again = second.Find(number);
        Require(again != nullptr, "a problem keeps its number");
        Require(test::FirstDifference(*problem, *again).empty(), "a problem comes back the same");
    }
    Require(WriteProblems(second) == written, "the written text is a fixed point");
    Require(SaveLossLines(second, ELanguage::kEnglish).empty(), "a written file loses nothing");
}

}  // namespace
}  // namespace quillmere::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillmere::fuzz::Test(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
