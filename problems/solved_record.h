// The record of a solved position: the result of a finished solve, kept on disk under the position
// alone, so that it survives renumbering and moves between collections.
//
// Two small files in the folder "SolvedProblemsDB" of the program's folder: ".cpdb" holds the result,
// ".cspdb" results of sub-positions. Numbers in them are little-endian.
//
//   .cpdb   0  u16  half-moves of the stipulation    24  u8[3] first solution: from, to, promotion
//           2  u8   first-solution result present    27  u8    spare
//           3  u8   all-solutions result present     28  u32   date, 32 time, 36 duration: all
//           4  u32  date, 8 time, 12 duration: first 40  u32   kSolvedFormat
//          16  u32  kSolvedFormat                    44  u32   count of solutions
//          20  u32  1 if a solution was found        48        the solutions, 4 bytes each
//
//   .cspdb  64 bytes of a board and 12 bytes (0 u16 half-moves, 2 u16 kSolvedFormat, 4 move, 8 i32
//           value), over and over. Older files begin with the board of the root, and in them the 12
//           bytes stand in front of each board: the size tells which it is.
//
// Both results share one field of half-moves. When one is stored with other half-moves than the
// field holds, the other's flag is cleared: else a later look-up would claim what nobody proved.
//
// What a file says is data from outside: a file that is short, too long or contradicts itself, or
// holds a move that is illegal in the position, reads as no record.
//
// Threads: a record belongs to its problem.
#pragma once

#include "core/chessboard.h"
#include "registers/register_item.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quillmere {

// When a result was found: local date as yyyymmdd, time as hhmmss, duration in milliseconds.
struct TSolvedWhen {
    i32 date = 0;
    i32 time = 0;
    i32 durationMs = 0;

    bool operator==(const TSolvedWhen&) const = default;
};

// A result of a sub-position.
struct TSolvedSubResult {
    i16 halfMoves = 0;
    TMove move = {};  // null for none
    i32 value = 0;
};

// One position may have results of several lengths.
using TSolvedSubResults = std::multimap<TChessboardRegisterItem, TSolvedSubResult>;

constexpr std::string_view kSolvedProblemsFolder = "SolvedProblemsDB";
constexpr i32 kSolvedFormat = 982;
// Shortest stipulation, in half-moves, whose result is stored.
constexpr int kSolvedLeastHalfMoves = 13;

// The name, without suffix, of the files of a position: the six-bit form of its identifier, a point,
// and one bit for each of those characters (1 for a capital letter) in the five-bit form, because
// some disks do not tell capital letters from small ones. Throws ChessException on an unknown figure.
std::string SolvedRecordName(const TChessboardRegisterItem& board);

// The bytes are figures that stand legally with that side to move, so that they may be searched.
bool IsLegalPosition(const TChessboardRegisterItem& board, bool isWhiteToMove);
// The move is legal for that side in the position, taken as a root. False too in a position that is
// itself illegal.
bool IsLegalInPosition(const TChessboardRegisterItem& board, TMove move, bool isWhiteToMove);

struct TSolvedRecord {
    TChessboardRegisterItem board{};
    bool loaded = false;
    bool disabled = false;  // neither read nor written, and answers nothing
    bool needsLoad = false;

    u16 halfMoves = 0;  // of the stipulation that was solved
    bool hasFirst = false;
    bool hasAll = false;
    TSolvedWhen firstWhen;
    bool isFirstFound = false;  // a solution was found; false: proved that there is none
    TMove first = {};
    TSolvedWhen allWhen;
    std::vector<TMove> all;
    TSolvedSubResults whiteToMove;  // odd half-moves
    TSolvedSubResults blackToMove;  // even ones

    // Takes over the position and, if it differs from the one held, drops what belongs to the old
    // one. needsLoad is set: the files are read by EnsureLoaded. Cheap, as it is called for every
    // problem of a file.
    void SetPosition(const u8 squares[kSquareCount]);
    // Reads both files if that was not done for this position. Never throws.
    void EnsureLoaded(const std::filesystem::path& programFolder);
    // Reads ".cspdb", then ".cpdb", in place of what the record holds. False if either file is
    // missing or no good; its part of the record is then empty, the other part is there.
    bool Load(const std::filesystem::path& programFolder);
    // Writes ".cpdb", replacing it whole; the folder is made when it is missing. A failure is
    // ignored: a record only saves time. Returns whether it was written.
    bool Save(const std::filesystem::path& programFolder) const;
    // The same for ".cspdb" with the results of sub-positions; at most kMaxFileRecords of them.
    bool SaveSubResults(const std::filesystem::path& programFolder) const;

    // A negative number of half-moves asks for the flag alone.
    bool HasAllSolutions(int ofHalfMoves) const;
    // Also where the stored result answers for another length: no mate in more moves is no mate in
    // fewer, and a mate in fewer is one in more.
    bool HasFirstSolution(int ofHalfMoves) const;

    // The two results, which are of one length, can both be true; so can one alone.
    bool DoResultsAgree() const;

    // Stores a proven result and saves. One that it contradicts, which a damaged file must have
    // brought in, is dropped. `found` null: proved that there is none. The same result
    // of the same half-moves keeps the record unchanged. What another problem with this position
    // has stored meanwhile is taken over first.
    void RecordFirst(const TMove* found,
                     u16 ofHalfMoves,
                     i32 durationMs,
                     const std::filesystem::path& programFolder);
    void RecordAll(const std::vector<TMove>& found,
                   u16 ofHalfMoves,
                   i32 durationMs,
                   const std::filesystem::path& programFolder);
};

}  // namespace quillmere
