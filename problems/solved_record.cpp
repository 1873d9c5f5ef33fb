#include "problems/solved_record.h"

#include "core/alphanum.h"
#include "core/chess_exception.h"
#include "core/chessboard_id.h"
#include "core/legality.h"
#include "core/platform/local_time.h"
#include "core/text.h"

#include <algorithm>
#include <cstring>

namespace quillmere {
namespace {

// Shortest lengths with that side to move.
constexpr u16 kWhiteToMoveHalfMoves = 3;
constexpr u16 kBlackToMoveHalfMoves = 2;

TSolvedWhen Now(i32 durationMs) {
    const std::tm now = LocalTime();
    TSolvedWhen when;
    when.date = (now.tm_year + 1900) * 10000 + (now.tm_mon + 1) * 100 + now.tm_mday;
    when.time = now.tm_hour * 10000 + now.tm_min * 100 + now.tm_sec;
    when.durationMs = durationMs;
    return when;
}

// A move as it is kept: without the marks of the search.
TMove PlainMove(TMove move) {
    return MakeMove(move.from, move.to, move.Promotion());
}

bool IsFigure(u8 figure) {
    const u8 kind = KindOf(figure);
    return (figure == (kWhite | kind) || figure == (kBlack | kind)) &&
           (kind == kKing || kind == kPawn || kind == kBishop || kind == kRook || kind == kQueen ||
            kind == kKnight);
}

// False if the bytes are no legal position with that side to move; `position` is then undefined.
bool SetUp(const TChessboardRegisterItem& board, bool isWhiteToMove, TChessboard& position) {
    if (!std::all_of(std::begin(board.bytes), std::end(board.bytes), [](u8 figure) {
            return figure == 0 || IsFigure(figure);
        }))
        return false;
    InitBoard(position);
    std::copy(std::begin(board.bytes), std::end(board.bytes), position.m_board);
    try {
        SetupAnalysisRoot(
            position, isWhiteToMove ? kWhiteToMoveHalfMoves : kBlackToMoveHalfMoves, true);
        return true;
    } catch (const ChessException&) {
        return false;
    }
}

// Takes over the result on the disk, if there is one: a problem with the same position may have
// stored it after this record was read.
void TakeOverStored(TSolvedRecord& record, const std::filesystem::path& programFolder) {
    TSolvedRecord stored;
    stored.SetPosition(record.board.bytes);
    stored.Load(programFolder);
    if (!stored.hasFirst && !stored.hasAll)
        return;
    stored.needsLoad = false;
    stored.loaded = true;
    record = std::move(stored);
}

}  // namespace

std::string SolvedRecordName(const TChessboardRegisterItem& board) {
    TChessboard position;
    InitBoard(position);
    std::copy(std::begin(board.bytes), std::end(board.bytes), position.m_board);
    const std::string name = TChessboardId(position).ToAlphanum6();
    std::vector<u8> capitals((name.size() + 7) / 8);
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (IsUpperLetter(name[i]))
            capitals[i / 8] |= static_cast<u8>(1u << (i % 8));
    }
    return name + "." + ToAlphanum5(capitals, name.size());
}

bool IsLegalPosition(const TChessboardRegisterItem& board, bool isWhiteToMove) {
    TChessboard position;
    return SetUp(board, isWhiteToMove, position);
}

bool IsLegalInPosition(const TChessboardRegisterItem& board, TMove move, bool isWhiteToMove) {
    TChessboard position;
    if (!SetUp(board, isWhiteToMove, position))
        return false;
    TMoveList list;
    list.count = GetLegalMoves(position, list.moves);
    return std::any_of(
        list.begin(), list.end(), [move](TMove legal) { return MovesEqual(legal, move); });
}

void TSolvedRecord::SetPosition(const u8 squares[kSquareCount]) {
    const bool isKnown = needsLoad || loaded;
    if (isKnown && std::memcmp(board.bytes, squares, kSquareCount) == 0)
        return;
    const bool wasDisabled = disabled;
    if (isKnown)
        *this = TSolvedRecord{};
    std::memcpy(board.bytes, squares, kSquareCount);
    disabled = wasDisabled;
    needsLoad = true;
}

void TSolvedRecord::EnsureLoaded(const std::filesystem::path& programFolder) {
    if (loaded || disabled)
        return;
    Load(programFolder);
    loaded = true;
    needsLoad = false;
}

bool TSolvedRecord::HasAllSolutions(int ofHalfMoves) const {
    return !disabled && hasAll && (ofHalfMoves < 0 || ofHalfMoves == halfMoves);
}

bool TSolvedRecord::HasFirstSolution(int ofHalfMoves) const {
    if (disabled || !hasFirst)
        return false;
    if (ofHalfMoves < 0)
        return true;
    return isFirstFound ? ofHalfMoves >= halfMoves : ofHalfMoves <= halfMoves;
}

bool TSolvedRecord::DoResultsAgree() const {
    if (!hasFirst || !hasAll)
        return true;
    if (!isFirstFound)
        return all.empty();
    return std::any_of(
        all.begin(), all.end(), [this](TMove move) { return MovesEqual(move, first); });
}

void TSolvedRecord::RecordFirst(const TMove* found,
                                u16 ofHalfMoves,
                                i32 durationMs,
                                const std::filesystem::path& programFolder) {
    if (disabled)
        return;
    TakeOverStored(*this, programFolder);
    const bool isFound = found != nullptr;
    if (hasFirst && halfMoves == ofHalfMoves && isFirstFound == isFound &&
        (!isFound || MovesEqual(first, *found)))
        return;
    if (halfMoves != ofHalfMoves)
        hasAll = false;
    halfMoves = ofHalfMoves;
    hasFirst = true;
    isFirstFound = isFound;
    first = isFound ? PlainMove(*found) : TMove{};
    firstWhen = Now(durationMs);
    hasAll = hasAll && DoResultsAgree();
    Save(programFolder);
}

void TSolvedRecord::RecordAll(const std::vector<TMove>& found,
                              u16 ofHalfMoves,
                              i32 durationMs,
                              const std::filesystem::path& programFolder) {
    if (disabled)
        return;
    TakeOverStored(*this, programFolder);
    if (hasAll && halfMoves == ofHalfMoves &&
        std::equal(all.begin(), all.end(), found.begin(), found.end(), MovesEqual))
        return;
    if (halfMoves != ofHalfMoves)
        hasFirst = false;
    halfMoves = ofHalfMoves;
    hasAll = true;
    all.clear();
    std::transform(found.begin(), found.end(), std::back_inserter(all), PlainMove);
    allWhen = Now(durationMs);
    hasFirst = hasFirst && DoResultsAgree();
    Save(programFolder);
}

}  // namespace quillmere
