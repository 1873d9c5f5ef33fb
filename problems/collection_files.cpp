#include "problems/collection_files.h"

#include "core/platform/file_replace.h"
#include "problems/change_watch.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"

#include <utility>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

// A file that changes while it is read is read again, but not for ever.
constexpr int kMostReadings = 3;

// Closes the watch for the time of a save. Unless the file was written, it goes on with what it
// knew: a change by another program in front of a save that failed is still to be told.
class CWatchPause {
public:
    explicit CWatchPause(TProblemCollection& collection) : m_watch(collection.watch.get()) {
        if (m_watch != nullptr)
            m_watch->Stop();
    }
    ~CWatchPause() {
        if (m_watch != nullptr)
            m_watch->Resume();
    }
    CWatchPause(const CWatchPause&) = delete;
    CWatchPause& operator=(const CWatchPause&) = delete;

    void OnWritten(const fs::path& watchedFile) {
        if (m_watch != nullptr)
            m_watch->Start(watchedFile);
    }

private:
    IChangeWatch* m_watch;
};

bool Exists(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

fs::file_time_type WriteTimeOf(const fs::path& path) {
    std::error_code ignored;
    return fs::last_write_time(path, ignored);
}

void Replace(const fs::path& file, const std::string& text) {
    bool cannotOpen = false;
    const std::error_code error = ReplaceFileKeepingBackup(file, text, &cannotOpen);
    if (error && cannotOpen)
        throw ChessException(EMessage::kErrorOpeningFile, {file.string()});
    if (error)
        throw ChessException(EMessage::kErrorSavingToFileReason, {file.string(), error.message()});
}

// The contents of the two collections change places, but for the watch.
void TakeContents(TProblemCollection& from, TProblemCollection& to) {
    const std::lock_guard guard(to.lock);
    to.problems.swap(from.problems);
    to.fileName.swap(from.fileName);
    to.lostBySave.swap(from.lostBySave);
    to.allTags.merge(from.allTags);
    to.isChanged = false;
}

}  // namespace

void RequireNoSolve(const TFileSettings& settings) {
    if (settings.isSolveRunning && settings.isSolveRunning())
        throw CSolveIsRunning();
}

fs::path TwinOf(const fs::path& path) {
    fs::path twin = path;
    return twin += "x";
}

fs::path FileToRead(const fs::path& path, bool commentCompatibilityMode) {
    if (!commentCompatibilityMode)
        return path;
    const fs::path twin = TwinOf(path);
    return !Exists(twin) && Exists(path) ? path : twin;
}

std::vector<fs::path> FilesToWrite(const fs::path& path, bool commentCompatibilityMode) {
    if (!commentCompatibilityMode)
        return {path};
    return {TwinOf(path), path};
}

void ReadProblemFile(const fs::path& path,
                     TProblemCollection& collection,
                     bool createIfMissing,
                     const TFileSettings& settings) {
    if (createIfMissing && !Exists(FileToRead(path, settings.commentCompatibilityMode)))
        NewFile(path, nullptr, settings);
    ReadFile(
        FileToRead(path, settings.commentCompatibilityMode), collection, false, settings.reading);
}

TOpened OpenFile(const fs::path& path,
                 TProblemCollection& collection,
                 bool createIfMissing,
                 const TFileSettings& settings) {
    RequireNoSolve(settings);
    if (settings.postStatus)
        settings.postStatus(
            std::string(MessageText(EMessage::kOpeningFile, settings.reading.language)));
    const auto watched = [&] { return FileToRead(path, settings.commentCompatibilityMode); };
    for (int reading = 1;; ++reading) {
        const fs::file_time_type before = WriteTimeOf(watched());
        TProblemCollection read;
        std::optional<CProblemFileFault> fault;
        try {
            ReadProblemFile(path, read, createIfMissing, settings);
        } catch (const CProblemFileFault& caught) {
            fault = caught;
            read.lostBySave.insert(LostRest(caught.Line()));
        }
        read.fileName = path;
        TakeContents(read, collection);
        if (collection.watch != nullptr)
            collection.watch->Start(watched());
        if (reading < kMostReadings && WriteTimeOf(watched()) != before)
            continue;
        if (fault)
            throw CProblemFileFault(*fault);
        break;
    }
    TOpened opened;
    opened.problemCount = collection.problems.size();
    opened.status = FormatMessage(EMessage::kOpenedFileContains,
                                  settings.reading.language,
                                  {std::to_string(opened.problemCount)});
    if (settings.postStatus)
        settings.postStatus(opened.status);
    return opened;
}

void WriteFile(const fs::path& path,
               TProblemCollection& collection,
               const TFileSettings& settings) {
    RequireNoSolve(settings);
    // 1. The texts, before anything is touched.
    const auto files = FilesToWrite(path, settings.commentCompatibilityMode);
    std::vector<std::string> texts;
    for (const fs::path& file : files) {
        const bool withComments = !settings.commentCompatibilityMode || file != path;
        texts.push_back(WriteProblems(collection, withComments));
    }
    // 2. The files. The first one is the one that is read and watched.
    CWatchPause pause(collection);
    for (std::size_t i = 0; i < files.size(); ++i) {
        Replace(files[i], texts[i]);
        if (i == 0 && path == collection.fileName)
            pause.OnWritten(files[i]);
    }
}

void SaveFile(const fs::path& path, TProblemCollection& collection, const TFileSettings& settings) {
    WriteFile(path, collection, settings);
    const bool isOtherName = path != collection.fileName;
    collection.fileName = path;
    collection.isChanged = false;
    if (isOtherName && collection.watch != nullptr)
        collection.watch->Start(FileToRead(path, settings.commentCompatibilityMode));
}

bool NewFile(const fs::path& path, const TAskYesNo& askOverwrite, const TFileSettings& settings) {
    const auto files = FilesToWrite(path, settings.commentCompatibilityMode);
    bool isThere = false;
    for (const fs::path& file : files)
        isThere = isThere || Exists(file);
    if (isThere && askOverwrite &&
        !askOverwrite(EMessage::kAskReplaceWithNewFile,
                      FormatMessage(EMessage::kAskReplaceWithNewFile,
                                    settings.reading.language,
                                    {path.string()})))
        return false;
    const std::string text = DefaultProblemFile(settings.reading.language);
    for (const fs::path& file : files)
        Replace(file, text);
    return true;
}

std::optional<TCloseQuestion>
QuestionAtClose(const TProblemCollection& collection, bool isProgramEnding, ELanguage language) {
    if (!collection.isChanged)
        return std::nullopt;
    return TCloseQuestion{std::string(MessageText(EMessage::kAskSaveCurrentChanges, language)),
                          !isProgramEnding};
}

TForeignChange PollForeignChange(TProblemCollection& collection, ELanguage language) {
    if (collection.watch == nullptr || !collection.watch->Poll())
        return {};
    if (collection.isChanged)
        return {EForeignChange::kTellOnly,
                std::string(MessageText(EMessage::kFileChangedSaveElsewhere, language))};
    return {EForeignChange::kAskReload,
            std::string(MessageText(EMessage::kFileChangedAskReload, language))};
}

TOpened ReloadFile(TProblemCollection& collection, const TFileSettings& settings) {
    // A copy, as the name is replaced too.
    const fs::path path = collection.fileName;
    return OpenFile(path, collection, false, settings);
}

}  // namespace quillmere
