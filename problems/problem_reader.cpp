#include "problems/problem_reader.h"

#include "core/platform/file_replace.h"
#include "problems/problem_parts.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"
#include "problems/tags.h"
#include "problems/token_fault.h"

#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

// Line feeds for the line ends of other systems, so that no routine has to know of them.
std::string UnifyLineEnds(std::string_view text) {
    std::string unified;
    unified.reserve(text.size());
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find("\r\n");
        unified += text.substr(0, end);
        if (end != std::string_view::npos)
            text.remove_prefix(end + 1);
    }
    return unified;
}

// The reading begins behind the byte order mark and the word of the encoding line.
TReading BeginReading(std::string_view text, const TReadSettings& settings) {
    const TEncodingHead head = ReadEncodingHead(text);
    TReading reading{CProblemLexer(text),
                     head.isUtf8 ? CTextDecoder() : CTextDecoder(settings.ansiCodePage),
                     {}};
    reading.lexer.Skip(head.size);
    return reading;
}

// Letters of UTF-8 are all but never meant as letters of a code page.
bool LooksLikeUtf8(std::string_view text, const CTextDecoder& decoder) {
    return !decoder.IsUtf8() && !IsAscii(text) && IsUtf8(text) && decoder.Decode(text) != text;
}

void NoteComments(CProblemLexer& lexer, std::set<std::string>& lostBySave) {
    for (const int line : lexer.TakeComments())
        lostBySave.insert(LostComment(line));
}

// Another problem follows. At the first one a comment without end is a fault, lest a file be taken
// for an empty one.
bool HasNext(TReading& reading, bool isFirst) {
    const CProblemLexer::TMark mark = reading.lexer.Mark();
    const bool hasNext = !reading.lexer.NextToken(false, false).empty();
    reading.lexer.GoBack(mark);
    if (!hasNext && isFirst) {
        try {
            reading.lexer.NextToken(true, false);
        } catch (const ChessException& fault) {
            if (fault.Id() != EMessage::kUnexpectedEndOfFile)
                throw;
        }
    }
    return hasNext;
}

std::unique_ptr<TChessProblem> ReadProblem(TReading& reading) {
    auto problem = std::make_unique<TChessProblem>();
    ReadHead(reading, *problem);
    ReadLineBlocks(reading, *problem);
    ReadPosition(reading, *problem);
    ReadMovesAndSolution(reading, *problem);
    NoteComments(reading.lexer, problem->lostBySave);
    return problem;
}

void AddProblem(std::unique_ptr<TChessProblem> problem,
                TProblemCollection& collection,
                const TReadSettings& settings) {
    const i32 number = problem->number;
    NormaliseVariantNames(problem->variants, settings.language);
    NormaliseTags(*problem, settings.language, collection.allTags);
    const bool wasThere = collection.Insert(std::move(problem));
    if (settings.console == nullptr)
        return;
    if (wasThere)
        settings.console->OnRedefinition(number);
    settings.console->OnProblemRead(number);
}

void ReadAll(TReading& reading, TProblemCollection& collection, const TReadSettings& settings) {
    if (ReadDefaultClauses(reading))
        collection.lostBySave.insert("//!default");
    std::set<i32> numbers;
    for (bool isFirst = true; HasNext(reading, isFirst); isFirst = false) {
        NoteComments(reading.lexer, collection.lostBySave);
        std::unique_ptr<TChessProblem> problem = ReadProblem(reading);
        if (!numbers.insert(problem->number).second)
            collection.lostBySave.insert(LostProblem(problem->number));
        AddProblem(std::move(problem), collection, settings);
    }
    NoteComments(reading.lexer, collection.lostBySave);
}

// Bytes that are no UTF-8 as "\xNN".
std::string ShowText(std::string_view text) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        const auto byte = static_cast<unsigned char>(text.front());
        if (length == 1 && (byte >= 0x80 || byte == 0))
            shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        else
            shown += text.substr(0, length);
        text.remove_prefix(length);
    }
    return shown;
}

CProblemFileFault FaultOf(TReading& reading, const ChessException& reason, std::string token = "") {
    std::vector<std::string> values;
    for (const std::string& value : reason.Values())
        values.push_back(ShowText(reading.decoder.Decode(value)));
    return {reading.lexer.Line(), ChessException(reason.Id(), std::move(values)), std::move(token)};
}

}  // namespace

TReadSettings ReadSettingsOf(const TOptions& options) {
    TReadSettings settings;
    settings.language = static_cast<ELanguage>(options.LanguageId);
    settings.ansiCodePage = options.AnsiCodePage;
    return settings;
}

std::string ProblemReadLine(i32 number, ELanguage language) {
    return FormatMessage(EMessage::kProblemRead, language, {std::to_string(number)}) + "\n";
}

std::string RedefinitionLine(i32 number, ELanguage language) {
    return FormatMessage(EMessage::kProblemRedefinition, language, {std::to_string(number)}) + "\n";
}

void ReadProblems(std::string_view text,
                  TProblemCollection& collection,
                  const TReadSettings& settings) {
    std::string unified;
    if (text.find("\r\n") != std::string_view::npos) {
        unified = UnifyLineEnds(text);
        text = unified;
    }
    TReading reading = BeginReading(text, settings);
    if (LooksLikeUtf8(text, reading.decoder))
        collection.lostBySave.insert(LostEncoding(settings.ansiCodePage));
    try {
        ReadAll(reading, collection, settings);
    } catch (const CTokenFault& fault) {
        throw FaultOf(reading, fault, ShowText(fault.Token()));
    } catch (const ChessException& reason) {
        throw FaultOf(reading, reason);
    }
}

void ReadFile(const std::filesystem::path& path,
              TProblemCollection& collection,
              bool createIfMissing,
              const TReadSettings& settings) {
    std::string bytes;
    std::error_code error = ReadWholeFile(path, bytes);
    if (error == std::errc::no_such_file_or_directory && createIfMissing) {
        error = ReplaceFileContent(path, DefaultProblemFile(settings.language));
        if (!error)
            error = ReadWholeFile(path, bytes);
    }
    if (error)
        throw ChessException(EMessage::kErrorOpeningFile, {path.string()});
    if (bytes.empty())
        throw ChessException(EMessage::kFileEmpty);
    ReadProblems(bytes, collection, settings);
}

}  // namespace quillmere
