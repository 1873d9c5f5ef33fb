// What a batch asks of the endgame tables and of the tablebase service. Neither is there yet: the
// classes below without data answer so.
#pragma once

#include "core/chessboard.h"

namespace quillmere {

class ITableAvailability {
public:
    virtual ~ITableAvailability() = default;
    // Precalculated data for the material of the board is there; kept in memory until ReleaseUsed.
    virtual bool UseTablesFor(const TChessboard& board) = 0;
    virtual void ReleaseUsed() = 0;
};

class ITablebaseService {
public:
    virtual ~ITablebaseService() = default;
    // The service answers for the position (at most 7 pieces) with a verdict. Waits for it.
    virtual bool HasVerdict(const TChessboard& board) = 0;
};

class CNoTables final : public ITableAvailability {
public:
    bool UseTablesFor(const TChessboard& /*board*/) override { return false; }
    void ReleaseUsed() override {}
};

class CNoTablebase final : public ITablebaseService {
public:
    bool HasVerdict(const TChessboard& /*board*/) override { return false; }
};

}  // namespace quillmere
