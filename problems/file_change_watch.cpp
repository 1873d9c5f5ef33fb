#include "problems/file_change_watch.h"

namespace quillmere {

void CFileChangeWatch::Start(const std::filesystem::path& file) {
    m_file = file;
    Resume();
    // Behind the start of the folder's watch, so that no change falls between the two.
    m_known = StampOf(file);
}

void CFileChangeWatch::Stop() {
    m_folder.Stop();
    m_isOn = false;
}

void CFileChangeWatch::Resume() {
    if (m_file.empty())
        return;
    m_folder.Start(m_file.parent_path());
    m_isOn = true;
    // What happened while nobody watched is seen at the first poll.
    m_lastLook = {};
}

bool CFileChangeWatch::Poll() {
    if (!m_isOn)
        return false;
    const TClock::time_point now = TClock::now();
    if (!m_folder.HasEvent() && now - m_lastLook < m_lookAnyway)
        return false;
    m_lastLook = now;
    const TFileStamp stamp = StampOf(m_file);
    if (!stamp.isThere || stamp == m_known)
        return false;
    m_known = stamp;
    return true;
}

}  // namespace quillmere
