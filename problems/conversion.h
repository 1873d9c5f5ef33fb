// What the conversions of collections share: the remarks for the user, and the proof of what was lost.
//
// A conversion to a text reads its own text back before it hands it over, and names each field that
// did not come back. A conversion from a text names what of the text a collection cannot hold. Losses
// and mere notes are told apart, for the command line refuses to write with losses unless allowed.
#pragma once

#include "core/messages.h"
#include "problems/problem_collection.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

class CPlayBoard;

struct TConversionRemark {
    bool isLoss = false;
    i32 problem = -1;  // number; -1 for the whole file
    int line = 0;      // of the input, from 1; 0 for none
    EMessage id = EMessage::kConvertNotKept;
    std::vector<std::string> values;
};
using TConversionRemarks = std::vector<TConversionRemark>;

// "a, b, c".
std::string JoinedList(const std::vector<std::string>& items);
// One line as a text of a file has it: line ends and other control characters become blanks.
std::string AsOneLine(std::string_view text);

// Runs the reading of a text that the program has just written. A fault of it is one of the program
// itself: ChessException (kInternalFault), so that nothing is written.
void ReadBack(const std::function<void()>& read);

// Adds what was lost: each problem of `original` is compared with that of its number in `back`; one
// that is missing there was told already. `format` is its name for the user.
void AddLosses(const TProblemCollection& original,
               const TProblemCollection& back,
               std::string_view format,
               TConversionRemarks& remarks);

// What the reader of a .cp file met and no form of the problems holds: comments, text beside moves,
// problems that were replaced. Lines for the user, as of SaveLossLines.
std::vector<std::string> LossesOfReading(const TProblemCollection& collection, ELanguage language);

// The move is one of those that the side to move has.
bool IsLegal(CPlayBoard& board, TMove move);

// Empty if the position can be played from, white first; otherwise the reason.
std::string ReasonNotPlayable(const TChessProblem& problem, ELanguage language);

// A position of another format, and who is to move in it.
struct TForeignPosition {
    TChessboard board{};  // free-standing and valid
    bool isBlackToMove = false;
    // The FEN gives other rights than those that follow from the position.
    bool hasOtherRights = false;

    // The move in the squares of the problem, where white always moves first.
    TMove ToProblem(TMove move) const;
};

// Throws ChessException that names the fault of the FEN.
TForeignPosition ReadForeignPosition(const std::string& fen);
// Gives the problem the position, with colours swapped if black is to move, and notes what changed.
// The number of the problem is its final one.
void SetForeignPosition(TChessProblem& problem,
                        const TForeignPosition& position,
                        int line,
                        TConversionRemarks& remarks);

// Gives a problem its number: the wished one if it is one and free, else the next, with a note where
// the wished one was taken. Negative for no wish.
void NumberProblem(TChessProblem& problem,
                   i32 wished,
                   int line,
                   const TProblemCollection& collection,
                   TConversionRemarks& remarks);

}  // namespace quillmere
