// Any bytes read as sort indications: a text is refused and leaves everything as it was, or its
// rules come back the same when they are written.

#include "core/chess_exception.h"
#include "search/sort_indication.h"
#include "tests/fuzz/fuzz_support.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillmere::fuzz {
namespace {

void RequireSound(const SortIndication& rule) {
    Require(rule.to < kSquareCount, "the destination is a square");
    Require(rule.from < kSquareCount || rule.from == kNoSquare, "the source is a square or any");
    Require(rule.captureKind >= kCaptureEither && rule.captureKind <= kCaptureNeeded,
            "the kind of capture is one of three");
    Require(rule.checkKind <= kDoubleCheckOrMateNeeded, "the kind of check is one of three");
    Require(rule.moveNumber <= 32767, "the move number fits a signed key");
}

void TestRule(std::string_view text) {
    SortIndication rule = {.figure = 99, .to = 99, .negated = true};
    const SortIndication before = rule;
    try {
        ParseSortIndication(rule, text);
    } catch (const ChessException& e) {
        Require(e.Id() == EMessage::kEmptySortIndication ||
                    e.Id() == EMessage::kBadSortIndication ||
                    e.Id() == EMessage::kLongSortIndication,
                "a rule has three faults");
        Require(rule == before, "a refused rule leaves the target");
        return;
    }
    RequireSound(rule);
    SortIndication again;
    ParseSortIndication(again, SortIndicationToText(rule));  // an exception here is a finding
    Require(again == rule, "the written rule is the same rule");
}

void TestList(std::string_view text) {
    TSortIndications list;
    ParseSortIndications(list, "Kd3");
    const TSortIndications before = list;
    try {
        ParseSortIndications(list, text);
    } catch (const ChessException&) {
        Require(list == before, "a refused list leaves the target");
        return;
    }
    Require(list != before, "an accepted list has a rule");
    for (const auto& [number, rules] : list.byMoveNumber) {
        for (const SortIndication& rule : rules) {
            RequireSound(rule);
            Require(rule.moveNumber == number, "a rule stands under its number");
        }
    }
}

}  // namespace
}  // namespace quillmere::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    quillmere::fuzz::TestRule(text);
    quillmere::fuzz::TestList(text);
    return 0;
}
