// quillmere cp convert: collections from and to other formats.
#include "cli/convert_json.h"
#include "cli/cp_command.h"
#include "cli/input_file.h"
#include "core/platform/file_replace.h"
#include "core/text.h"
#include "problems/convert_epd.h"
#include "problems/convert_pgn.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"
#include "problems/tags.h"
#include "problems/text_encoding.h"

#include <algorithm>
#include <filesystem>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

enum class EFormat { kCp, kEpd, kPgn, kJson, kJsonLines };

struct TFormatRow {
    std::string_view word;
    EFormat format;
};
// Words of --from and --to, and suffixes; ".cpx" is the twin with the comments of variants.
constexpr TFormatRow kFormats[] = {{"cp", EFormat::kCp},
                                   {"cpx", EFormat::kCp},
                                   {"epd", EFormat::kEpd},
                                   {"pgn", EFormat::kPgn},
                                   {"json", EFormat::kJson},
                                   {"jsonl", EFormat::kJsonLines}};
constexpr std::string_view kChoices = "cp, epd, pgn, json, jsonl";

const TFormatRow* FindFormat(std::string_view word) {
    const auto* row = std::ranges::find(kFormats, word, &TFormatRow::word);
    return row == std::end(kFormats) ? nullptr : row;
}

EFormat FormatOf(const TCpCall& call, const std::string& option, const std::string& file) {
    if (const std::optional<std::string> word = call.arguments.Value(option)) {
        if (const TFormatRow* row = FindFormat(*word))
            return row->format;
        throw CUsageException(EMessage::kUsageChoice, {option, *word, std::string(kChoices)});
    }
    std::string suffix = fs::path(file).extension().string();
    std::ranges::transform(suffix, suffix.begin(), ToLowerLetter);
    const TFormatRow* row = suffix.empty() ? nullptr : FindFormat(suffix.substr(1));
    if (row == nullptr)
        throw CUsageException(EMessage::kCpUnknownFormat, {file, option});
    return row->format;
}

// "in.pgn:12: problem 3: ..."
std::string RemarkText(const TCpCall& call, const TConversionRemark& remark) {
    std::string text = call.console.Text(remark.id, remark.values);
    if (remark.problem >= 0)
        text = call.console.Text(EMessage::kCpProblem, {std::to_string(remark.problem), text});
    const std::string line = remark.line > 0 ? std::to_string(remark.line) + ":" : "";
    return call.files.front() + ":" + line + " " + text;
}

// The file that is read: of a .cp file in comment compatibility mode its twin.
std::string InputOf(const TCpCall& call, EFormat format) {
    const std::string& file = call.files.front();
    if (format != EFormat::kCp || file == "-")
        return file;
    const TFileSettings settings = FileSettingsOf(call.arguments, call.console, nullptr);
    return FileToRead(file, settings.commentCompatibilityMode).string();
}

// The files that are written: a .cp file with its twin.
std::vector<fs::path> OutputsOf(const TCpCall& call, EFormat format) {
    const std::string& file = call.files.back();
    if (file == "-")
        return {};
    const TFileSettings settings = FileSettingsOf(call.arguments, call.console, nullptr);
    return FilesToWrite(file, format == EFormat::kCp && settings.commentCompatibilityMode);
}

// The text in UTF-8. A .cp file says itself what it is, and JSON is nothing else; PGN that is not UTF-8 is
// Latin-1 unless a code page is given.
std::string
Decoded(const TCpCall& call, EFormat format, const TReadSettings& settings, std::string text) {
    const bool isAsked =
        format == EFormat::kEpd || (format == EFormat::kPgn && call.arguments.Has("--code-page"));
    if (!isAsked || IsUtf8(text))
        return text;
    return CTextDecoder(settings.ansiCodePage).Decode(text);
}

void Read(const TCpCall& call,
          EFormat format,
          TProblemCollection& collection,
          TConversionRemarks& remarks) {
    const std::string file = InputOf(call, format);
    CReaderNotes console(call.arguments, call.console, file);
    const TReadSettings settings = FileSettingsOf(call.arguments, call.console, &console).reading;
    const std::string text = Decoded(call, format, settings, ReadInputFile(file));
    switch (format) {
    case EFormat::kCp:
        if (text.empty())
            throw ChessException(EMessage::kFileEmpty);
        ReadProblems(text, collection, settings);
        return;
    case EFormat::kEpd:
        ReadEpd(text, collection, remarks);
        break;
    case EFormat::kPgn:
        ReadPgn(text, collection, settings.language, remarks);
        break;
    case EFormat::kJson:
    case EFormat::kJsonLines:
        ReadJson(text, collection);
        break;
    }
    // What the reader of .cp files does with names and tags.
    for (const auto& [number, problem] : collection.problems) {
        NormaliseVariantNames(problem->variants, settings.language);
        NormaliseTags(*problem, settings.language, collection.allTags);
        console.OnProblemRead(number);
    }
}

std::string WriteCp(const TCpCall& call,
                    const TProblemCollection& collection,
                    std::vector<std::string>& losses,
                    TConversionRemarks& remarks) {
    losses = CpSaveLosses(call, call.files.front(), collection);
    std::string text = WriteProblems(collection);
    TReadSettings settings;
    settings.language = call.console.Language();
    TProblemCollection back;
    ReadBack([&] { ReadProblems(text, back, settings); });
    // Losses that the list above names already are not told twice.
    for (const auto& [number, problem] : collection.problems) {
        const std::vector<std::string> fields = UnnamedLosses(*problem, *back.Find(number));
        if (!fields.empty())
            remarks.push_back(
                {true, number, 0, EMessage::kConvertNotKept, {"CP", JoinedList(fields)}});
    }
    return text;
}

std::string Write(const TCpCall& call,
                  EFormat format,
                  const TProblemCollection& collection,
                  std::vector<std::string>& losses,
                  TConversionRemarks& remarks) {
    const ELanguage language = call.console.Language();
    if (format == EFormat::kCp)
        return WriteCp(call, collection, losses, remarks);
    for (const std::string& line : LossesOfReading(collection, language))
        losses.push_back(call.files.front() + ": " +
                         call.console.Text(EMessage::kCpIfSaved, {line}));
    switch (format) {
    case EFormat::kEpd:
        return WriteEpd(collection, language, remarks);
    case EFormat::kPgn:
        return WritePgn(collection, language, remarks);
    default:
        return WriteJson(collection, format == EFormat::kJsonLines, remarks);
    }
}

void CheckOutput(const TCpCall& call, EFormat from, EFormat to) {
    const std::vector<fs::path> outputs = OutputsOf(call, to);
    for (const fs::path& output : outputs) {
        for (const std::string& input : {call.files.front(), InputOf(call, from)}) {
            std::error_code unknown;
            if (fs::equivalent(input, output, unknown))
                throw ChessException(EMessage::kCpSameFile, {output.string()});
        }
    }
    CheckOutputs(call, outputs);
}

void WriteOutput(const TCpCall& call,
                 EFormat format,
                 TProblemCollection& collection,
                 const std::string& text) {
    const std::string& output = call.files.back();
    if (format == EFormat::kCp) {
        WriteFile(output, collection, FileSettingsOf(call.arguments, call.console, nullptr));
        return;
    }
    if (const std::error_code error = ReplaceFileKeepingBackup(output, text))
        throw ChessException(EMessage::kCpUnwritable, {output, error.message()});
}

}  // namespace

EExitCode RunCpConvert(const TCpCall& call) {
    const std::string& output = call.files[1];
    const EFormat from = FormatOf(call, "--from", call.files[0]);
    const std::string input = InputOf(call, from);
    const EFormat to = FormatOf(call, "--to", output);
    CheckOutput(call, from, to);
    // 1. Read and write in memory.
    TProblemCollection collection;
    TConversionRemarks remarks;
    WithPlace(input, [&] { Read(call, from, collection, remarks); });
    std::vector<std::string> losses;
    std::string text;
    WithPlace(input, [&] {
        if (collection.problems.empty())
            throw ChessException(EMessage::kConvertNoProblems);
        text = Write(call, to, collection, losses, remarks);
    });
    // 2. Tell what changed and what is lost.
    for (const TConversionRemark& remark : remarks) {
        std::string line = RemarkText(call, remark);
        if (remark.isLoss)
            losses.push_back(std::move(line));
        else
            call.console.Note(line);
    }
    TellLosses(call, losses, output);
    // 3. The output.
    if (output == "-") {
        call.console.Print(text);
        return kExitDone;
    }
    WriteOutput(call, to, collection, text);
    const auto leftOut =
        std::ranges::count(remarks, EMessage::kConvertLeftOut, &TConversionRemark::id);
    const auto written = static_cast<std::ptrdiff_t>(collection.problems.size()) - leftOut;
    call.console.Note(call.console.Text(EMessage::kCpWritten, {output, std::to_string(written)}));
    return kExitDone;
}

}  // namespace quillmere
