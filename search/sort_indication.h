// Sort indications: rules by which the user steers the order of white's moves, their text form, and
// the check of an expected order.
//
// The text of one rule is "[~] [n.] [F] [from] [-|:|>] to [promotion] [+|++]":
//
//   ~          a matching move is tried last, not first
//   n.         full move that the rule applies to; without it every move
//   F          letter of the figure; without it any figure
//   from       without it any square
//   - : >      any move, a capture, no capture; without a sign any move
//   +, ++      the move must give check, or double check or mate
//
// or "0-0", "0-0-0" in place of the squares. Several rules are separated by commas or, where there
// is no comma, by semicolons. Texts are the same in files and dialogs, and read here only.
#pragma once

#include "core/chessboard.h"
#include "core/messages.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

// Values of SortIndication::captureKind and checkKind
constexpr i8 kCaptureEither = -1;
constexpr i8 kCaptureForbidden = 0;
constexpr i8 kCaptureNeeded = 1;
constexpr u8 kCheckEither = 0;
constexpr u8 kCheckNeeded = 1;
constexpr u8 kDoubleCheckOrMateNeeded = 2;

struct SortIndication {
    u8 figure = 0;        // white figure code, 0 for any
    u8 from = kNoSquare;  // kNoSquare for any
    u8 to = kNoSquare;    // always a square once it is read
    i8 captureKind = kCaptureEither;
    u8 checkKind = kCheckEither;
    u8 promotion = 0;    // kind, 0 for any and none
    u16 moveNumber = 0;  // 0 for any; a signed 16-bit number in files, so at most 32767
    bool negated = false;

    bool operator==(const SortIndication&) const = default;
};

// The rules of a problem, under their move number in the order in which they were read.
struct TSortIndications {
    std::map<i16, std::vector<SortIndication>> byMoveNumber;
    // There is a rule for any move.
    bool hasGeneralIndications = false;

    bool operator==(const TSortIndications&) const = default;
};

// Text

// One rule. Throws ChessException; `indication` is then unchanged.
void ParseSortIndication(SortIndication& indication, std::string_view text);

// A list of rules, added to what is there. Throws ChessException; `indications` is then unchanged.
void ParseSortIndications(TSortIndications& indications, std::string_view text);

void AddSortIndication(TSortIndications& indications, const SortIndication& indication);

// The rule as a text that reads as the same rule.
std::string SortIndicationToText(const SortIndication& indication);

// Use

// White to move in the node, and the move is at least pseudo-legal. Checks are looked at in any node, near the root
// or far from it. The node needs a thread context. Does not allocate.
bool MatchesSortIndication(TChessboard& node, TMove move, const SortIndication& indication);

// Reorders the list of a white node: moves that a rule matches come first, in the order of the
// rules; those that a negated rule matches come last; all others stay between. Moves that are not
// told apart keep their order. The rules of the node's own move number go before those for any
// move; the first rule that matches decides. Does not allocate.
void ApplySortIndications(TChessboard& node, TMoveList& list, const TSortIndications& indications);

// Expected order. A matched entry is marked by 64 added to from and to.

// Marks the entries that stand at their own place in the sorted list of the root.
void MarkExpectedSortWhiteMoves(std::vector<TMove>& expected, const TMoveList& list);

// The text of the first failure, empty if every entry is marked. Takes the marks off again.
std::string CheckExpectedSortWhiteMoves(std::vector<TMove>& expected, ELanguage language);

}  // namespace quillmere
