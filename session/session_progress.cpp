#include "session/session_progress.h"

#include "core/notation.h"
#include "core/platform/tick_count.h"
#include "core/search_context.h"
#include "registers/aggregated_register.h"
#include "session/progress_text.h"

namespace quillmere {
namespace {

constexpr u64 kFrameMilliseconds = 200;

}  // namespace

CSessionProgress::CSessionProgress(TSessionHost& host,
                                   const TChessboard& node,
                                   bool isSafeMode,
                                   int threads,
                                   const std::atomic<bool>& isStopping)
    : m_host(host), m_node(node), m_isStopping(isStopping) {
    m_figures.isSafeMode = isSafeMode;
    m_figures.threads = threads;
}

std::string CSessionProgress::ReportProgress(int depth,
                                             double percent,
                                             std::string_view suffix,
                                             int ofAtLeast) const {
    return SearchProgressText(depth, percent, suffix, ofAtLeast, m_host.settings.language) + " " +
           DataSizeText(m_figures.temporaryBytes);
}

std::string CSessionProgress::Frame() const {
    const bool isBlack = !m_node.IsWhiteToMove();
    std::string frame = ReportProgress(
        (m_node.m_nMoves + 1) / 2, m_percent, isBlack ? kBlackSearchSuffix : std::string_view(), 0);
    if (!m_settings.empty())
        frame += "\n" + m_settings;
    const std::string found = FoundSoFarText(m_found, isBlack, m_host.settings.language);
    return found.empty() ? frame : frame + "\n" + found;
}

void CSessionProgress::OnFirstMove(TMove /*move*/, int number, int count) {
    const std::lock_guard lock(m_lock);
    m_percent = count > 0 ? 100.0 * (number - 1) / count : 0;
}

void CSessionProgress::OnKey(TMove move) {
    const std::lock_guard lock(m_lock);
    const std::string text = MoveToText(m_node, move);
    m_found.push_back(text);
}

void CSessionProgress::OnPeriodicCheck(const TChessboard& node) {
    const u64 now = TickCount();
    if (m_isStopping.load(std::memory_order_relaxed) ||
        now < m_nextTick.load(std::memory_order_relaxed))
        return;
    std::string frame;
    {
        const std::unique_lock lock(m_lock, std::try_to_lock);
        if (!lock.owns_lock())
            return;
        m_nextTick.store(now + kFrameMilliseconds, std::memory_order_relaxed);
        if (const auto* solved = node.m_searchContext->tempRegister; solved != nullptr)
            m_figures.temporaryBytes = solved->Figures().bytesUsed;
        m_settings = SettingsInForceText(node, m_figures, m_host.settings.language);
        frame = Frame();
    }
    m_host.SetStatus(frame);
}

}  // namespace quillmere
