// The files of a collection: open, save, new, and what is asked and told meanwhile.
//
// In comment compatibility mode a file has a twin whose name has an "x" behind it. The twin holds
// the comments of variants, the file itself does not, so that it stays readable for readers that do
// not know them. The twin is read; both are written.
//
// The operations return data and the text for the user, so that a window and the command line show
// the same. They are for one thread at a time, the one that the collection belongs to.
#pragma once

#include "core/messages.h"
#include "problems/problem_collection.h"
#include "problems/problem_reader.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillmere {

struct TFileSettings {
    TReadSettings reading;
    bool commentCompatibilityMode = false;  // the option of that name
    // Some problem of the collection is being solved; null for never.
    std::function<bool()> isSolveRunning;
    // Shows a status line; null for nobody.
    std::function<void(const std::string& text)> postStatus;
};

// Asks the user; true for Yes. Null where nobody is to be asked, which counts as Yes.
using TAskYesNo = std::function<bool(EMessage question, const std::string& text)>;

// Refuses an operation while a solve runs. Its text is the question whether to stop the solves
// (kAskStopPendingThreads): on Yes the caller stops them and calls again.
class CSolveIsRunning : public ChessException {
public:
    CSolveIsRunning() : ChessException(EMessage::kAskStopPendingThreads) {}
};
// Throws CSolveIsRunning if a solve runs.
void RequireNoSolve(const TFileSettings& settings);

// Names

// The name with "x" behind it.
std::filesystem::path TwinOf(const std::filesystem::path& path);
// The file that is read for this name: in compatibility mode the twin, but the file itself where
// only that exists, so that nobody is shown an empty file in place of their own.
std::filesystem::path FileToRead(const std::filesystem::path& path, bool commentCompatibilityMode);
// The files that are written for this name, in that order.
std::vector<std::filesystem::path> FilesToWrite(const std::filesystem::path& path,
                                                bool commentCompatibilityMode);

// Reading

// Reads FileToRead into the collection. Throws as ReadFile of problems/problem_reader.h.
void ReadProblemFile(const std::filesystem::path& path,
                     TProblemCollection& collection,
                     bool createIfMissing,
                     const TFileSettings& settings);

struct TOpened {
    std::size_t problemCount = 0;
    std::string status;  // "The opened file contains 2 chess problem(s)"
};

// Opens the file in place of what the collection holds; asked before: a solve (CSolveIsRunning is
// thrown) and unsaved changes (QuestionAtClose). The watch goes over to the file. After a fault of
// its text (CProblemFileFault) the collection holds what was read, and says that a save would lose
// the rest; after any other exception it is unchanged.
TOpened OpenFile(const std::filesystem::path& path,
                 TProblemCollection& collection,
                 bool createIfMissing,
                 const TFileSettings& settings);

// Writing

// Writes the whole collection: each file replaced at once, with the old content in its backup. The
// watch is closed meanwhile. Throws CSolveIsRunning, or ChessException (kErrorSavingToFile,
// kErrorOpeningFile, kErrorSavingToFileReason); the file that could not be written is then the old one, whole.
void WriteFile(const std::filesystem::path& path,
               TProblemCollection& collection,
               const TFileSettings& settings);
// Save, and Save As: WriteFile, after which the collection has this name and no changes.
void SaveFile(const std::filesystem::path& path,
              TProblemCollection& collection,
              const TFileSettings& settings);
// Writes a file with the default problem, in compatibility mode with its twin. If there is one, the
// user is asked; a replaced one stays as backup. False if the user keeps the old file, and nothing is
// changed. Throws ChessException (kErrorOpeningFile, kErrorSavingToFileReason).
bool NewFile(const std::filesystem::path& path,
             const TAskYesNo& askOverwrite,
             const TFileSettings& settings);

// At closing

struct TCloseQuestion {
    std::string text;  // kAskSaveCurrentChanges; buttons Yes and No
    bool hasCancel = true;
};
// Nothing if there is nothing to save.
std::optional<TCloseQuestion>
QuestionAtClose(const TProblemCollection& collection, bool isProgramEnding, ELanguage language);

// Changes by other programs

enum class EForeignChange {
    kNone,
    kTellOnly,   // there are unsaved changes: a box, and nothing is reloaded
    kAskReload,  // a question; on Yes ReloadFile
};
struct TForeignChange {
    EForeignChange kind = EForeignChange::kNone;
    std::string text;
};
// To be called from the loop of a window.
TForeignChange PollForeignChange(TProblemCollection& collection, ELanguage language);
// OpenFile with the name that the collection has.
TOpened ReloadFile(TProblemCollection& collection, const TFileSettings& settings);

}  // namespace quillmere
