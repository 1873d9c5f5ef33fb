// quillmere cp format, append, remove: what ends in a save of a .cp file.
#include "cli/cp_command.h"
#include "core/platform/file_replace.h"
#include "problems/collection_merge.h"
#include "problems/problem_writer.h"

#include <filesystem>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

bool IsSameFile(const fs::path& a, const fs::path& b) {
    std::error_code unknown;
    return fs::equivalent(a, b, unknown);
}

// Every file that a save would write holds already what it would write.
bool IsInForm(const fs::path& path,
              const TProblemCollection& collection,
              const TFileSettings& settings) {
    for (const fs::path& file : FilesToWrite(path, settings.commentCompatibilityMode)) {
        std::string bytes;
        const bool withComments = !settings.commentCompatibilityMode || file != path;
        if (ReadWholeFile(file, bytes) || bytes != WriteProblems(collection, withComments))
            return false;
    }
    return true;
}

void Save(const TCpCall& call, const std::string& file, TProblemCollection& collection) {
    WithPlace(file, [&] {
        WriteFile(file, collection, FileSettingsOf(call.arguments, call.console, nullptr));
    });
    call.console.Note(call.console.Text(EMessage::kCpWritten,
                                        {file, std::to_string(collection.problems.size())}));
}

// The end of append and remove: the report is printed once nothing can fail any more, but before a
// dry run ends.
EExitCode Finish(const TCpCall& call,
                 TProblemCollection& collection,
                 bool isChanged,
                 const std::string& report) {
    const std::string& file = call.files.front();
    if (!isChanged) {
        call.console.Print(report + "\n");
        call.console.Note(call.console.Text(EMessage::kCpNothingChanges, {file}));
        return kExitDone;
    }
    const std::vector<std::string> losses = CpSaveLosses(call, file, collection);
    if (call.arguments.Has("--dry-run")) {
        for (const std::string& loss : losses)
            call.console.Note(loss);
        call.console.Print(report + "\n");
        call.console.Note(call.console.Text(EMessage::kCpDryRun, {file}));
        return kExitDone;
    }
    TellLosses(call, losses, file);
    Save(call, file, collection);
    call.console.Print(report + "\n");
    return kExitDone;
}

}  // namespace

EExitCode RunCpFormat(const TCpCall& call) {
    const std::string& file = call.files.front();
    const std::string output = call.arguments.Value("--output").value_or(file);
    const bool isInPlace = output == file || IsSameFile(output, file);
    const bool isStream = output == "-";
    TProblemCollection collection;
    ReadCollection(call.arguments, call.console, file, collection);
    const TFileSettings settings = FileSettingsOf(call.arguments, call.console, nullptr);
    if (isInPlace && IsInForm(file, collection, settings)) {
        call.console.Note(call.console.Text(EMessage::kCpInForm, {file}));
        return kExitDone;
    }
    if (!isInPlace && !isStream)
        CheckOutputs(call, FilesToWrite(output, settings.commentCompatibilityMode));
    TellLosses(call, CpSaveLosses(call, file, collection), output);
    if (isStream)
        call.console.Print(WriteProblems(collection));
    else
        Save(call, isInPlace ? file : output, collection);
    return kExitDone;
}

EExitCode RunCpAppend(const TCpCall& call) {
    const std::string& other = call.files[1];
    TProblemCollection collection;
    ReadCollection(call.arguments, call.console, call.files[0], collection);
    CReaderNotes console(call.arguments, call.console, other);
    TAppended appended;
    WithPlace(other, [&] {
        appended =
            AppendFile(other, collection, FileSettingsOf(call.arguments, call.console, &console));
    });
    for (const std::string& remark : appended.remarks)
        call.console.Note(other + ": " + remark);
    return Finish(call, collection, !appended.numbers.empty(), appended.report);
}

EExitCode RunCpRemove(const TCpCall& call) {
    const std::string& other = call.files[1];
    TProblemCollection collection;
    ReadCollection(call.arguments, call.console, call.files[0], collection);
    CReaderNotes console(call.arguments, call.console, other);
    TRemoved removed;
    WithPlace(other, [&] {
        removed = RemovePresentInFile(
            other, collection, nullptr, FileSettingsOf(call.arguments, call.console, &console));
    });
    if (collection.problems.empty() && !removed.problems.empty())
        throw ChessException(EMessage::kCpNothingLeft, {call.files[0]});
    return Finish(call, collection, !removed.problems.empty(), removed.report);
}

}  // namespace quillmere
