// Reads .cp files (docs/cp-format.md has the grammar).
//
// Reading is one pass over one buffer. The first fault ends it; the problems before it stay in the
// collection, the one in parse is dropped. No chess legality is checked but that of FEN codes and of
// played moves. A text without any problem is an empty collection.
#pragma once

#include "core/chess_exception.h"
#include "core/messages.h"
#include "problems/problem_collection.h"
#include "session/options.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace quillmere {

// What the reader tells besides its result.
class IReaderConsole {
public:
    virtual ~IReaderConsole() = default;
    virtual void OnProblemRead(i32 number) = 0;
    virtual void OnRedefinition(i32 number) = 0;
};

struct TReadSettings {
    ELanguage language = ELanguage::kEnglish;
    // Of files that do not begin with the line "UTF-8"; any name that ICU knows.
    std::string ansiCodePage = "windows-1250";
    IReaderConsole* console = nullptr;  // null for nobody
};

// A fault of the text. The message itself names the token; the line is told apart.
//
// Values that are no UTF-8 are decoded like the texts of the file; bytes that are no text at all are
// shown as "\xNN".
class CProblemFileFault : public ChessException {
public:
    CProblemFileFault(int line, const ChessException& reason, std::string token = "")
        : ChessException(reason), m_line(line), m_token(std::move(token)) {}
    int Line() const { return m_line; }  // from 1
    // What is at fault, where neither the message nor the line alone tells; else empty.
    const std::string& Token() const { return m_token; }

private:
    int m_line;
    std::string m_token;
};

// The settings of the user, without a console.
TReadSettings ReadSettingsOf(const TOptions& options);

// The lines that a console shows, with the line end.
std::string ProblemReadLine(i32 number, ELanguage language);
std::string RedefinitionLine(i32 number, ELanguage language);

// Reads a text, as if it were a file. Throws CProblemFileFault, or ChessException
// (kUnknownCodePage) before anything is read.
void ReadProblems(std::string_view text,
                  TProblemCollection& collection,
                  const TReadSettings& settings);

// Reads the whole file and adds its problems to the collection; a number that exists is replaced.
// With createIfMissing a file that does not exist is made first (DefaultProblemFile). Throws ChessException
// (kErrorOpeningFile, kFileEmpty, kUnknownCodePage) or CProblemFileFault.
void ReadFile(const std::filesystem::path& path,
              TProblemCollection& collection,
              bool createIfMissing,
              const TReadSettings& settings);

}  // namespace quillmere
