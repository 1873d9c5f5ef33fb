// The two files of a record: their bytes, and what of them is believed.

#include "core/chess_exception.h"
#include "core/platform/file_replace.h"
#include "problems/solved_record.h"
#include "registers/chessboard_register.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kHeaderBytes = 48;
constexpr std::size_t kMoveBytes = sizeof(TMove);
constexpr std::size_t kBoardBytes = sizeof(TChessboardRegisterItem);
constexpr std::size_t kInfoBytes = sizeof(TSubproblemRegisterInfo<bool>);
constexpr std::size_t kSubRecordBytes = kBoardBytes + kInfoBytes;
// Nothing larger is ever read into memory.
constexpr std::size_t kMostResultBytes = kHeaderBytes + kMaxMoves * kMoveBytes;
constexpr std::size_t kMostSubBytes = kBoardBytes + kMaxFileRecords * kSubRecordBytes;
// Longest stipulation, in half-moves, that is believed: a mate in 1,000.
constexpr u16 kMostHalfMoves = 1999;

constexpr std::string_view kResultSuffix = ".cpdb";
constexpr std::string_view kSubSuffix = ".cspdb";

template <class TNumber>
TNumber NumberAt(std::string_view bytes, std::size_t place) {
    TNumber number{};
    std::memcpy(&number, bytes.data() + place, sizeof(number));
    return number;
}

template <class TNumber>
void Append(std::string& bytes, TNumber number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

void Append(std::string& bytes, TMove move) {
    bytes += static_cast<char>(move.from);
    bytes += static_cast<char>(move.to);
    bytes += static_cast<char>(move.Promotion());
    bytes += '\0';
}

void Append(std::string& bytes, const TSolvedWhen& when) {
    Append(bytes, when.date);
    Append(bytes, when.time);
    Append(bytes, when.durationMs);
    Append(bytes, kSolvedFormat);
}

TMove MoveAt(std::string_view bytes, std::size_t place) {
    const auto byte = [&](std::size_t i) { return static_cast<u8>(bytes[place + i]); };
    return MakeMove(byte(0), byte(1), byte(2) & kKindMask);
}

TSolvedWhen WhenAt(std::string_view bytes, std::size_t place) {
    TSolvedWhen when;
    when.date = NumberAt<i32>(bytes, place);
    when.time = NumberAt<i32>(bytes, place + 4);
    when.durationMs = NumberAt<i32>(bytes, place + 8);
    return when;
}

// Nothing for a position without a name, which no file can belong to.
std::optional<fs::path>
FileOf(const fs::path& programFolder, const TSolvedRecord& record, std::string_view suffix) {
    if (programFolder.empty())
        return std::nullopt;
    try {
        return programFolder / kSolvedProblemsFolder /
               (SolvedRecordName(record.board) + std::string(suffix));
    } catch (const ChessException&) {
        return std::nullopt;
    }
}

bool ReadSmallFile(const std::optional<fs::path>& file, std::size_t mostBytes, std::string& bytes) {
    std::error_code error;
    return file && fs::is_regular_file(*file, error) && fs::file_size(*file, error) <= mostBytes &&
           !error && !ReadWholeFile(*file, bytes) && bytes.size() <= mostBytes;
}

// ".cpdb"

bool IsFlag(char byte) {
    return byte == 0 || byte == 1;
}

bool HasTwice(const std::vector<TMove>& moves) {
    for (auto it = moves.begin(); it != moves.end(); ++it) {
        const auto isSame = [it](TMove other) { return MovesEqual(*it, other); };
        if (std::any_of(moves.begin(), it, isSame))
            return true;
    }
    return false;
}

// What the record says can be true of its position.
bool IsBelievable(const TSolvedRecord& record) {
    const auto isLegal = [&record](TMove move) {
        return IsLegalInPosition(record.board, move, true);
    };
    // 1. The length of a mate: odd, and none that a damaged byte has made.
    if ((record.hasFirst || record.hasAll) &&
        (record.halfMoves % 2 == 0 || record.halfMoves > kMostHalfMoves))
        return false;
    // 2. The moves.
    if (record.hasFirst && record.isFirstFound && !isLegal(record.first))
        return false;
    if (record.hasAll &&
        (!std::all_of(record.all.begin(), record.all.end(), isLegal) || HasTwice(record.all)))
        return false;
    return record.DoResultsAgree();
}

std::string ResultBytes(const TSolvedRecord& record) {
    std::string bytes;
    Append(bytes, record.halfMoves);
    bytes += static_cast<char>(record.hasFirst);
    bytes += static_cast<char>(record.hasAll);
    Append(bytes, record.hasFirst ? record.firstWhen : TSolvedWhen{});
    const bool isFound = record.hasFirst && record.isFirstFound;
    Append(bytes, static_cast<u32>(isFound));
    Append(bytes, isFound ? record.first : TMove{});
    Append(bytes, record.hasAll ? record.allWhen : TSolvedWhen{});
    Append(bytes, static_cast<u32>(record.hasAll ? record.all.size() : 0));
    for (const TMove move : record.all) {
        if (record.hasAll)
            Append(bytes, move);
    }
    return bytes;
}

// False, with the record unchanged, if the bytes are no good.
bool ReadResult(std::string_view bytes, TSolvedRecord& record) {
    if (bytes.size() < kHeaderBytes || !IsFlag(bytes[2]) || !IsFlag(bytes[3]))
        return false;
    const auto isFound = NumberAt<u32>(bytes, 20);
    const auto count = NumberAt<u32>(bytes, 44);
    if (isFound > 1 || count > kMaxMoves || bytes.size() != kHeaderBytes + count * kMoveBytes)
        return false;
    TSolvedRecord read;
    read.board = record.board;
    read.halfMoves = NumberAt<u16>(bytes, 0);
    read.hasFirst = bytes[2] != 0;
    read.hasAll = bytes[3] != 0;
    if (read.hasFirst) {
        read.firstWhen = WhenAt(bytes, 4);
        read.isFirstFound = isFound != 0;
        read.first = read.isFirstFound ? MoveAt(bytes, 24) : TMove{};
    }
    if (read.hasAll) {
        read.allWhen = WhenAt(bytes, 28);
        for (u32 i = 0; i < count; ++i)
            read.all.push_back(MoveAt(bytes, kHeaderBytes + i * kMoveBytes));
    }
    if (!IsBelievable(read))
        return false;
    record.halfMoves = read.halfMoves;
    record.hasFirst = read.hasFirst;
    record.hasAll = read.hasAll;
    record.firstWhen = read.firstWhen;
    record.isFirstFound = read.isFirstFound;
    record.first = read.first;
    record.allWhen = read.allWhen;
    record.all = std::move(read.all);
    return true;
}

// ".cspdb"

// A file of one layout that was cut short may have the size of the other, and would give each board
// the result of its neighbour. Older files begin with the root; newer ones, in which the root has
// about the greatest depth and stands last, are not written so, but for a single result.
bool MayBeCutShort(std::string_view newerBytes, const TChessboardRegisterItem& root) {
    return newerBytes.size() > kSubRecordBytes &&
           NumberAt<TChessboardRegisterItem>(newerBytes, 0) == root;
}

// The result can be true of the board.
bool IsBelievable(const TChessboardRegisterItem& board, const TSolvedSubResult& result) {
    if (result.halfMoves < 0 || result.halfMoves > kMostHalfMoves)
        return false;
    const bool isWhiteToMove = result.halfMoves % 2 != 0;
    return result.move.IsNull() ? IsLegalPosition(board, isWhiteToMove)
                                : IsLegalInPosition(board, result.move, isWhiteToMove);
}

// False, with the record unchanged, if the bytes are no good.
bool ReadSubResults(std::string_view bytes, TSolvedRecord& record) {
    // 1. The layout: a board in front of all makes the older one.
    const bool isOld = bytes.size() % kSubRecordBytes == kBoardBytes;
    if (!isOld && bytes.size() % kSubRecordBytes != 0)
        return false;
    if (isOld && NumberAt<TChessboardRegisterItem>(bytes, 0) != record.board)
        return false;
    if (!isOld && MayBeCutShort(bytes, record.board))
        return false;
    // 2. The results.
    const std::size_t boardPlace = isOld ? kInfoBytes : 0;
    const std::size_t infoPlace = isOld ? 0 : kBoardBytes;
    TSolvedSubResults whiteToMove;
    TSolvedSubResults blackToMove;
    for (std::size_t place = isOld ? kBoardBytes : 0; place < bytes.size();
         place += kSubRecordBytes) {
        const auto board = NumberAt<TChessboardRegisterItem>(bytes, place + boardPlace);
        TSolvedSubResult result;
        result.halfMoves = NumberAt<i16>(bytes, place + infoPlace);
        result.move = MoveAt(bytes, place + infoPlace + 4);
        result.value = NumberAt<i32>(bytes, place + infoPlace + 8);
        if (!IsBelievable(board, result))
            return false;
        (result.halfMoves % 2 != 0 ? whiteToMove : blackToMove).emplace(board, result);
    }
    record.whiteToMove = std::move(whiteToMove);
    record.blackToMove = std::move(blackToMove);
    return true;
}

std::string SubResultBytes(const TSolvedRecord& record) {
    // By length, then by board.
    using TEntry = std::pair<const TChessboardRegisterItem, TSolvedSubResult>;
    std::vector<const TEntry*> entries;
    for (const TSolvedSubResults* results : {&record.whiteToMove, &record.blackToMove}) {
        for (const TEntry& entry : *results)
            entries.push_back(&entry);
    }
    std::stable_sort(entries.begin(), entries.end(), [](const TEntry* a, const TEntry* b) {
        if (a->second.halfMoves != b->second.halfMoves)
            return a->second.halfMoves < b->second.halfMoves;
        return a->first < b->first;
    });
    if (entries.size() > kMaxFileRecords)
        entries.resize(kMaxFileRecords);
    std::string bytes;
    for (const TEntry* entry : entries) {
        Append(bytes, entry->first);
        Append(bytes, entry->second.halfMoves);
        Append(bytes, static_cast<u16>(kSolvedFormat));
        Append(bytes, entry->second.move);
        Append(bytes, entry->second.value);
    }
    return bytes;
}

}  // namespace

bool TSolvedRecord::Load(const fs::path& programFolder) {
    TSolvedRecord read;
    read.board = board;
    read.loaded = loaded;
    read.disabled = disabled;
    read.needsLoad = needsLoad;
    std::string bytes;
    const bool hasSub =
        ReadSmallFile(FileOf(programFolder, *this, kSubSuffix), kMostSubBytes, bytes) &&
        ReadSubResults(bytes, read);
    const bool hasResult =
        ReadSmallFile(FileOf(programFolder, *this, kResultSuffix), kMostResultBytes, bytes) &&
        ReadResult(bytes, read);
    *this = std::move(read);
    return hasSub && hasResult;
}

bool TSolvedRecord::Save(const fs::path& programFolder) const {
    const auto file = FileOf(programFolder, *this, kResultSuffix);
    return file && !ReplaceFileContent(*file, ResultBytes(*this));
}

bool TSolvedRecord::SaveSubResults(const fs::path& programFolder) const {
    const auto file = FileOf(programFolder, *this, kSubSuffix);
    const std::string bytes = SubResultBytes(*this);
    return file && !MayBeCutShort(bytes, board) && !ReplaceFileContent(*file, bytes);
}

}  // namespace quillmere
