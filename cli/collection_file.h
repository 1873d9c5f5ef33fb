// A collection as the commands read it: with the options of the program and of the call, the place of a
// fault before its reason, and the lines about what was read on standard error.
#pragma once

#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/console.h"
#include "problems/collection_files.h"

#include <string>
#include <utility>

namespace quillmere {

// Tells the problems that are read: each one with --verbose, a redefinition always.
class CReaderNotes : public IReaderConsole {
public:
    CReaderNotes(const TArguments& arguments, CConsole& console, std::string file)
        : m_console(console), m_file(std::move(file)), m_isVerbose(arguments.Has("--verbose")) {}
    void OnProblemRead(i32 number) override;
    void OnRedefinition(i32 number) override;

private:
    CConsole& m_console;
    std::string m_file;
    bool m_isVerbose;
};

// The settings for reading and saving, with the console of the reader (null for nobody).
TFileSettings
FileSettingsOf(const TArguments& arguments, const CConsole& console, IReaderConsole* reader);

// Runs `read`; a fault of the text of the file leaves as CPlacedException with file and line, and one
// that does not name the file with the file.
template <class TRead>
void WithPlace(const std::string& file, const TRead& read) {
    try {
        read();
    } catch (const CProblemFileFault& fault) {
        const std::string token = fault.Token().empty() ? "" : ": '" + fault.Token() + "'";
        throw CPlacedException(file + ":" + std::to_string(fault.Line()) + token, fault);
    } catch (const CPlacedException&) {
        throw;
    } catch (const ChessException& fault) {
        const bool isNamed = fault.Id() == EMessage::kErrorOpeningFile ||
                             fault.Id() == EMessage::kErrorSavingToFileReason ||
                             fault.Id() == EMessage::kFileUnreadable ||
                             fault.Id() == EMessage::kUnknownCodePage;
        if (isNamed)
            throw;
        throw CPlacedException(file, fault);
    }
}

// Reads a .cp file; in comment compatibility mode its twin. Throws CPlacedException or ChessException.
void ReadCollection(const TArguments& arguments,
                    CConsole& console,
                    const std::string& file,
                    TProblemCollection& collection);

}  // namespace quillmere
