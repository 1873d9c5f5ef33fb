#include "registers/chessboard_register.h"

#include "core/chess_exception.h"
#include "core/platform/file_replace.h"
#include "registers/aggregated_register.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <exception>
#include <utility>

namespace quillmere {
namespace {

using TInfo = TSubproblemRegisterInfo<bool>;

constexpr std::size_t kFileRecordBytes = sizeof(TChessboardRegisterItem) + sizeof(TInfo);
static_assert(kMaxFileRecords * kFileRecordBytes == 1'048'572);

TInfo MakeInfo(u16 nMoves, TMove move, bool flag) {
    return TInfo{nMoves, kRegisterStamp, move, flag ? 1U : 0U};
}

bool IsOdd(u16 nMoves) {
    return (nMoves & 1) != 0;
}

// Records that hold from their depth upward: a mate, and a defence that does not hold. The others,
// no mate and a defence that holds, are good for their depth and all below it.
bool HoldsUpward(const TInfo& info) {
    return info.Flag() == IsOdd(info.nMoves);
}

// A record of depth `recorded` answers a question about `asked`.
bool IsAnswer(const TInfo& info, u16 recorded, u16 asked) {
    return HoldsUpward(info) ? recorded <= asked : recorded >= asked;
}

}  // namespace

TChessboardRegister<bool>::TChessboardRegister(const TRegisterSettings& settings)
    : TChessboardRegister(std::make_shared<TRegisterEnvironment>(settings), nullptr) {
    m_bNoPersistence = false;
}

TChessboardRegister<bool>::TChessboardRegister(TEnvironmentPointer environment,
                                               TAggregatedTemporaryChessboardRegister* owner)
    : TSubproblemMapByDepth(allocator_type(environment->memory)),
      m_environment(std::move(environment)),
      m_owner(owner),
      m_bNoPersistence(true) {}

TChessboardRegister<bool>::~TChessboardRegister() {
    // The account goes before the base does.
    clear();
}

void TChessboardRegister<bool>::Log(const char* message,
                                    i32 firstParameter,
                                    i32 secondParameter) const {
    m_environment->log.Write(
        message, firstParameter, secondParameter, MapElementsIn(), GetDoubtfulElementsIn());
}

bool TChessboardRegister<bool>::IsFull(u32 elements) const {
    return elements >= ElementLimit() || Memory().IsFull();
}

void TChessboardRegister<bool>::AnswerFailedInsert() {
    Log("Exception caught in method TChessboardRegister::Insert");
    if (m_owner != nullptr)
        m_owner->EmptySomeDataWhenRegisterFull(false);
}

void TChessboardRegister<bool>::ClearMap() {
    const CExclusiveHold hold(m_mapLock);
    clear();
    m_elementsIn.store(0, std::memory_order_relaxed);
    m_bKeepThreeMovers.store(true, std::memory_order_relaxed);
}

// Verdicts

void TChessboardRegister<bool>::Insert(
    u16 nMoves, const TChessboard& board, bool bThereIsMate, TMove move, bool bSave) {
    assert(IsOdd(nMoves));
    InsertRecord(
        ESide::kMove, MakeRegisterItem(board), MakeInfo(nMoves, move, bThereIsMate), bSave);
}

void TChessboardRegister<bool>::InsertDefence(
    u16 nMoves, const TChessboard& board, bool bDefenceHolds, TMove move, bool bSave) {
    assert(!IsOdd(nMoves));
    InsertRecord(
        ESide::kDefence, MakeRegisterItem(board), MakeInfo(nMoves, move, bDefenceHolds), bSave);
}

bool TChessboardRegister<bool>::IsRoomMade() {
    const auto isFull = [&] {
        return IsFull(m_owner != nullptr ? m_owner->GetElementsIn() : GetElementsIn());
    };
    if (!isFull())
        return true;
    if (m_owner != nullptr)
        m_owner->EmptySomeDataWhenRegisterFull(false);
    return !isFull();
}

void TChessboardRegister<bool>::InsertRecord(ESide side,
                                             const TChessboardRegisterItem& item,
                                             const TInfo& info,
                                             bool bSave) {
    // Step 1. While memory is short, shallow results are not worth their place.
    if (!KeepsThreeMovers() && info.nMoves < kShallowHalfMoves)
        return;
    // Step 2. The limit.
    if (!IsRoomMade())
        return;
    try {
        {
            // Exclusive from the question to the answer, so that no other verdict comes between.
            const CExclusiveHold hold(m_mapLock);
            // Step 3. What is known already.
            if (const TInfo* known = FindRecord(side, info.nMoves, item)) {
                if (known->Flag() == info.Flag())
                    return;
                throw ChessException(side == ESide::kMove ? EMessage::kIncoherentInsert
                                                          : EMessage::kIncoherentInsertDefence);
            }
            // Steps 4 and 5.
            Store(side, item, info);
        }
        // Step 6.
        if (bSave)
            SaveFile();
    } catch (const ChessException&) {
        throw;
    } catch (const std::exception&) {
        AnswerFailedInsert();
    }
}

void TChessboardRegister<bool>::Store(ESide side,
                                      const TChessboardRegisterItem& item,
                                      const TInfo& info) {
    TSubproblemMap& positions = try_emplace(info.nMoves, Memory()).first->second;
    if (!positions.try_emplace(item, info).second)
        return;
    // Defences are not counted.
    if (side == ESide::kMove)
        m_elementsIn.fetch_add(1, std::memory_order_relaxed);
    if (m_bPruneOnInsert)
        Prune(side, item, info);
}

void TChessboardRegister<bool>::Prune(ESide side,
                                      const TChessboardRegisterItem& item,
                                      const TInfo& info) {
    for (auto& [depth, positions] : static_cast<TSubproblemMapByDepth&>(*this)) {
        if (IsOdd(depth) != IsOdd(info.nMoves) || depth == info.nMoves)
            continue;
        const auto found = positions.find(item);
        // Superfluous: the new record answers all that this one answers.
        if (found == positions.end() || found->second.Flag() != info.Flag() ||
            !IsAnswer(info, info.nMoves, depth))
            continue;
        positions.erase(found);
        if (side == ESide::kMove)
            m_elementsIn.fetch_sub(1, std::memory_order_relaxed);
    }
}

const TInfo* TChessboardRegister<bool>::FindRecord(ESide side,
                                                   u16 nMoves,
                                                   const TChessboardRegisterItem& item) const {
    for (const auto& [depth, positions] : static_cast<const TSubproblemMapByDepth&>(*this)) {
        if (IsOdd(depth) != (side == ESide::kMove))
            continue;
        const auto found = positions.find(item);
        if (found != positions.end() && IsAnswer(found->second, depth, nMoves))
            return &found->second;
    }
    return nullptr;
}

TVerdict TChessboardRegister<bool>::FindAnswer(ESide side,
                                               u16 nMoves,
                                               const TChessboard& board,
                                               TMove* move) const {
    const TChessboardRegisterItem item = MakeRegisterItem(board);
    const CSharedHold hold(m_mapLock);
    const TInfo* record = FindRecord(side, nMoves, item);
    if (record == nullptr)
        return kNothingKnown;
    if (move != nullptr)
        *move = record->move;
    return record->Flag() ? kMate : kNoMate;
}

TVerdict TChessboardRegister<bool>::FindMove(u16 nMoves, const TChessboard& board) const {
    return FindAnswer(ESide::kMove, nMoves, board, nullptr);
}

TVerdict
TChessboardRegister<bool>::FindDefence(u16 nMoves, const TChessboard& board, TMove* move) const {
    return FindAnswer(ESide::kDefence, nMoves, board, move);
}

// The problem and its file

bool TChessboardRegister<bool>::SetProblem(const TChessboard& board) {
    const TChessboardRegisterItem squares = RegisterItemOfSquares(board.m_board);
    if (squares == m_problem)
        return false;
    m_problemId = TChessboardId(board);
    m_problem = squares;
    ClearMap();
    m_problemRecord = {};
    m_problemSolutions.clear();
    SetFilePaths("", "");
    return true;
}

void TChessboardRegister<bool>::SetFilePaths(const std::string& registerFile,
                                             const std::string& recordFile) {
    m_registerFile = registerFile;
    m_recordFile = recordFile;
}

bool TChessboardRegister<bool>::SaveFile() {
    if (m_bNoPersistence)
        return false;
    std::string bytes;
    u32 records = 0;
    {
        const CSharedHold hold(m_mapLock);
        for (const auto& [depth, positions] : static_cast<const TSubproblemMapByDepth&>(*this)) {
            for (auto it = positions.begin(); it != positions.end() && records < kMaxFileRecords;
                 ++it, ++records) {
                bytes.append(reinterpret_cast<const char*>(&it->first), sizeof(it->first));
                bytes.append(reinterpret_cast<const char*>(&it->second), sizeof(it->second));
            }
        }
    }
    return !BackupBeforeSave(m_registerFile) && !ReplaceFileContent(m_registerFile, bytes) &&
           records < kMaxFileRecords;
}

bool TChessboardRegister<bool>::LoadFile() {
    if (m_bNoPersistence)
        return false;
    ClearMap();
    std::string bytes;
    if (ReadWholeFile(m_registerFile, bytes))
        return false;
    m_bPruneOnInsert = false;
    const bool isWhole = InsertFileRecords(bytes);
    m_bPruneOnInsert = true;
    return isWhole;
}

bool TChessboardRegister<bool>::InsertFileRecords(const std::string& bytes) {
    std::size_t place = 0;
    try {
        for (; place + kFileRecordBytes <= bytes.size(); place += kFileRecordBytes) {
            TChessboardRegisterItem item{};
            TInfo info{};
            std::memcpy(&item, bytes.data() + place, sizeof(item));
            std::memcpy(&info, bytes.data() + place + sizeof(item), sizeof(info));
            InsertRecord(IsOdd(info.nMoves) ? ESide::kMove : ESide::kDefence,
                         item,
                         MakeInfo(info.nMoves, info.move, info.Flag()),
                         false);
        }
    } catch (const ChessException&) {
        // A record that contradicts an earlier one: the file is damaged from here on.
        return false;
    }
    return place == bytes.size();
}

void TChessboardRegister<bool>::SwapMap(TChessboardRegister& other) {
    TSubproblemMapByDepth::swap(other);
    std::swap(m_environment, other.m_environment);
    std::swap(m_problem, other.m_problem);
    std::swap(m_bPruneOnInsert, other.m_bPruneOnInsert);
    std::swap(m_bNoPersistence, other.m_bNoPersistence);
    std::swap(m_problemId, other.m_problemId);
    std::swap(m_problemRecord, other.m_problemRecord);
    std::swap(m_problemSolutions, other.m_problemSolutions);
    std::swap(m_registerFile, other.m_registerFile);
    std::swap(m_recordFile, other.m_recordFile);
    other.m_bKeepThreeMovers.store(m_bKeepThreeMovers.exchange(other.m_bKeepThreeMovers));
    other.m_elementsIn.store(m_elementsIn.exchange(other.m_elementsIn));
}

}  // namespace quillmere
