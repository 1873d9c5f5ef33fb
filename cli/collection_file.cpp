#include "cli/collection_file.h"

#include "session/options.h"

namespace quillmere {

void CReaderNotes::OnProblemRead(i32 number) {
    if (m_isVerbose)
        m_console.Note(m_file + ": " +
                       m_console.Text(EMessage::kProblemRead, {std::to_string(number)}));
}

void CReaderNotes::OnRedefinition(i32 number) {
    m_console.Note(m_file + ": " +
                   m_console.Text(EMessage::kProblemRedefinition, {std::to_string(number)}));
}

TFileSettings
FileSettingsOf(const TArguments& arguments, const CConsole& console, IReaderConsole* reader) {
    TFileSettings settings;
    settings.reading = ReadSettingsOf(g_options);
    settings.reading.language = console.Language();
    settings.reading.ansiCodePage =
        arguments.Value("--code-page").value_or(settings.reading.ansiCodePage);
    settings.reading.console = reader;
    settings.commentCompatibilityMode = g_options.CommentCompatibilityMode;
    return settings;
}

void ReadCollection(const TArguments& arguments,
                    CConsole& console,
                    const std::string& file,
                    TProblemCollection& collection) {
    CReaderNotes notes(arguments, console, file);
    const TFileSettings settings = FileSettingsOf(arguments, console, &notes);
    WithPlace(FileToRead(file, settings.commentCompatibilityMode).string(),
              [&] { ReadProblemFile(file, collection, false, settings); });
    collection.fileName = file;
}

}  // namespace quillmere
