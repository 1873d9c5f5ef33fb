// Any bytes read as PGN: a text is refused with a fault of its own, or it is read, and what was read
// can be written as PGN again, where every loss is named.

#include "core/chess_exception.h"
#include "problems/convert_pgn.h"
#include "tests/fuzz/fuzz_support.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillmere::fuzz {
namespace {

void TestText(const std::string& text) {
    TProblemCollection collection;
    TConversionRemarks remarks;
    try {
        ReadPgn(text, collection, ELanguage::kEnglish, remarks);
    } catch (const ChessException& fault) {
        Require(fault.Id() != EMessage::kInternalFault, "a bad text is no fault of the program");
        return;
    }
    Require(!collection.problems.empty(), "a text that is read holds a problem");
    // An exception here is a finding: the writer reads its own text back.
    WritePgn(collection, ELanguage::kEnglish, remarks);
}

}  // namespace
}  // namespace quillmere::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillmere::fuzz::TestText(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
