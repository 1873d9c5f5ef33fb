// The hooks of a session: what the searching threads tell becomes the status text.
//
// Locking: `m_lock` guards what was told last; a leaf. A searching thread that finds another at it
// goes on without telling.
#pragma once

#include "search/solve.h"
#include "session/progress_text.h"
#include "session/session_host.h"

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

namespace quillmere {

class CSessionProgress final : public ISolveObserver, public ISearchProgress {
public:
    // `node`: where the search begins. After `isStopping` was set nothing is posted any more.
    CSessionProgress(TSessionHost& host,
                     const TChessboard& node,
                     bool isSafeMode,
                     int threads,
                     const std::atomic<bool>& isStopping);

    void OnFirstMove(TMove move, int number, int count) override;
    void OnKey(TMove move) override;
    void OnPeriodicCheck(const TChessboard& node) override;

private:
    std::string Frame() const;
    // The progress line: depth in moves, percent done, mark of a search for black's moves.
    std::string
    ReportProgress(int depth, double percent, std::string_view suffix, int ofAtLeast) const;

    TSessionHost& m_host;
    const TChessboard m_node;  // the board alone is read
    const std::atomic<bool>& m_isStopping;
    std::atomic<u64> m_nextTick{0};

    std::mutex m_lock;
    TStatusFigures m_figures;
    double m_percent = 0;
    std::string m_settings;  // in force
    std::vector<std::string> m_found;
};

}  // namespace quillmere
