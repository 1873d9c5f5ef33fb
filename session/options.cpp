#include "session/options.h"

#include "core/chess_exception.h"
#include "core/platform/file_replace.h"
#include "session/ini_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <limits>
#include <optional>
#include <system_error>
#include <type_traits>
#include <variant>

namespace quillmere {

TOptions g_options;

namespace {

// The table

using TMember =
    std::variant<bool TOptions::*, i16 TOptions::*, int TOptions::*, std::string TOptions::*>;

struct TRow {
    std::string_view key;
    TMember member;
    i64 low;
    i64 high;
    EOptionRule rule;
    EOptionWriter writer;
    EMessage waitsFor;
    EMessage help;
};

// The columns of the table are the bare names of these.
constexpr EMessage kInUse = EMessage::kCount;
using enum EOptionRule;
using enum EOptionWriter;
using enum EMessage;

constexpr std::array kRows = {
#define QUILLMERE_OPTION(key, type, defaultValue, low, high, rule, writer, waitsFor)               \
    TRow{#key, &TOptions::key, low, high, rule, writer, waitsFor, kHelp##key},
#include "session/options.def"
#undef QUILLMERE_OPTION
};

const TRow* FindRow(std::string_view key) {
    const std::string lower = LowerAscii(key);
    const auto found = std::find_if(
        kRows.begin(), kRows.end(), [&](const TRow& row) { return LowerAscii(row.key) == lower; });
    return found == kRows.end() ? nullptr : &*found;
}

const TRow& RowOf(std::string_view key) {
    const TRow* row = FindRow(key);
    if (row == nullptr) {
        throw ChessException(kUnknownOption, {std::string(key)});
    }
    return *row;
}

// Between member and file

// What is added to a member to have the number of the file.
i64 FileOffset(const TRow& row) {
    return row.rule == kMinusOne ? -1 : 0;
}

std::string FileText(const TRow& row, const TOptions& options) {
    return std::visit(
        [&](auto member) {
            if constexpr (std::is_same_v<decltype(member), std::string TOptions::*>) {
                return options.*member;
            } else {
                return std::to_string(static_cast<i64>(options.*member) + FileOffset(row));
            }
        },
        row.member);
}

// The number at the begin of a text as INI readers take it: an optional sign and decimal digits up
// to the first other character, 0 if there are none. Held at the ends of 32 bits.
i64 LeadingInteger(std::string_view text) {
    constexpr i64 kMost = std::numeric_limits<int>::max();
    constexpr i64 kLeast = std::numeric_limits<int>::min();
    const bool isSigned = text.starts_with('-') || text.starts_with('+');
    const bool isNegative = text.starts_with('-');
    i64 number = 0;
    for (const char c : text.substr(isSigned ? 1 : 0)) {
        if (c < '0' || c > '9') {
            break;
        }
        number = std::min(number * 10 + (c - '0'), kMost + 1);
    }
    return std::clamp(isNegative ? -number : number, kLeast, kMost);
}

// The member for a number of the file; `defaultNumber` is the member's default.
i64 MemberNumber(const TRow& row, i64 fileNumber, i64 defaultNumber) {
    const i64 number = fileNumber - FileOffset(row);
    switch (row.rule) {
    case kBoolean:
        return number == 0 ? 0 : 1;
    case kElseDefault:
        return number < row.low || number > row.high ? defaultNumber : number;
    case kCrossChecked:
        return std::max(number, row.low);
    case kClamp:
    case kMinusOne:
    case kText:
        break;
    }
    return std::clamp(number, row.low, row.high);
}

void ReadRow(const TRow& row, const std::string& text, TOptions& options) {
    std::visit(
        [&](auto member) {
            auto& value = options.*member;
            if constexpr (std::is_same_v<decltype(member), std::string TOptions::*>) {
                value = text;
            } else {
                const auto defaultNumber = static_cast<i64>(TOptions().*member);
                const i64 number = MemberNumber(row, LeadingInteger(text), defaultNumber);
                value = static_cast<std::remove_reference_t<decltype(value)>>(number);
            }
        },
        row.member);
}

// Reading

// The keys in table order and the check of one against another; true if it had to lower a value.
bool ReadKeys(const std::filesystem::path& file, TOptions& options) {
    std::string bytes;
    // An absent or unreadable file means defaults; it is never reported as bad.
    if (ReadWholeFile(file, bytes)) {
        bytes.clear();
    }
    options = TOptions();
    const TIniSection values = ReadIniSection(bytes, kOptionsSection);
    for (const TRow& row : kRows) {
        const auto found = values.find(LowerAscii(row.key));
        if (found != values.end()) {
            ReadRow(row, found->second, options);
        }
    }
    if (options.AskForGlobalRegisterRecompression > options.UseDataPackedForRandomAccess) {
        options.AskForGlobalRegisterRecompression = options.UseDataPackedForRandomAccess;
        return true;
    }
    return false;
}

int IntegerSquareRoot(int number) {
    int root = 0;
    while ((root + 1) * (root + 1) <= number) {
        ++root;
    }
    return root;
}

// Writing

std::error_code WriteValues(const std::filesystem::path& file,
                            const std::vector<TIniChange>& changes) {
    std::string bytes;
    const std::error_code error = ReadWholeFile(file, bytes);
    // What cannot be read is not overwritten either, unless there is nothing.
    if (error && error != std::errc::no_such_file_or_directory) {
        return error;
    }
    const auto changed = ChangeIniValues(bytes, kOptionsSection, changes);
    if (!changed) {
        return std::make_error_code(std::errc::illegal_byte_sequence);
    }
    if (!error && *changed == bytes) {
        return {};
    }
    return ReplaceFileContent(file, *changed);
}

// A text as it must stand in the file to be read back the same: with spaces at an end, or within
// quotes of its own, it needs a pair of quotes around it.
std::string QuotedForFile(const std::string& text) {
    const auto isOuter = [](char c) { return c == ' ' || c == '\t'; };
    const bool isInQuotes = text.size() > 1 && text.front() == '"' && text.back() == '"';
    const bool needsQuotes =
        !text.empty() && (isOuter(text.front()) || isOuter(text.back()) || isInQuotes);
    return needsQuotes ? "\"" + text + "\"" : text;
}

TIniChange ChangeOf(const TRow& row, const std::string& fileText) {
    const bool isText = row.rule == kText;
    return {std::string(row.key), isText ? QuotedForFile(fileText) : fileText, !isText};
}

// By key and text

EMessage WriterText(EOptionWriter writer) {
    switch (writer) {
    case kSave:
        return kOptionWriterSave;
    case kMenu:
        return kOptionWriterMenu;
    case kWindow:
        return kOptionWriterWindow;
    case kMessage:
        return kOptionWriterMessage;
    case kUser:
        break;
    }
    return kOptionWriterUser;
}

// A whole number and nothing else; one beyond 64 bits is held at their end, which no range allows.
std::optional<i64> StrictInteger(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    const std::string_view digits = text.substr(isNegative || text.starts_with('+') ? 1 : 0);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) {
        return std::nullopt;
    }
    i64 number = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec == std::errc::result_out_of_range) {
        number = std::numeric_limits<i64>::max();
    }
    return isNegative ? -number : number;
}

// The text of the file for a number that a user gave.
std::string
CheckedNumber(const TRow& row, std::string_view text, const std::filesystem::path& file) {
    const i64 low = row.low + FileOffset(row);
    i64 high = row.high + FileOffset(row);
    if (row.rule == kCrossChecked) {
        high = std::min<i64>(high, ReadOptionsFile(file).UseDataPackedForRandomAccess);
    }
    const std::vector<std::string> values = {
        std::string(row.key), std::string(text), std::to_string(low), std::to_string(high)};
    const auto number = StrictInteger(text);
    if (!number) {
        throw ChessException(kOptionNotANumber, values);
    }
    if (*number < low || *number > high) {
        throw ChessException(kOptionOutOfRange, values);
    }
    return std::to_string(*number);
}

std::string CheckedText(const TRow& row, std::string_view text) {
    if (text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) {
        throw ChessException(kOptionBadText, {std::string(row.key)});
    }
    return std::string(text);
}

}  // namespace

void UpdateMemoryLimits(TOptions& options, const TSystemInfo& machine) {
    const u64 megabytes = machine.physicalMemoryBytes >> 20;
    const auto tempRatio = static_cast<u64>(options.MaxMemRatioForTempReg);
    const auto precalculatedRatio = static_cast<u64>(options.MaxMemRatioForPrecalculatedData);
    options.tempRegLimitMegabytes = megabytes * tempRatio / 100;
    options.fixedRatioLimitMegabytes = megabytes * static_cast<u64>(kFixedMemRatio) / 100;
    options.precalculatedDataLimitBytes = precalculatedRatio * machine.physicalMemoryBytes / 100;
}

void ApplyThreadSettings(TOptions& options, const TSystemInfo& machine) {
    options.threadCount = std::clamp(machine.logicalProcessors, 1, kMaxThreads);
    const bool isLarge = machine.physicalCores >= 8 ||
                         (machine.physicalCores >= 6 && machine.logicalProcessors >= 12);
    if (isLarge) {
        // With two levels, the threads of the first multiply by those of the second.
        options.threadCount = std::clamp(IntegerSquareRoot(machine.physicalCores), 4, kMaxThreads);
        options.MultithreadingLevels = 2;
    }
}

ELanguage LanguageOf(const TOptions& options) {
    return static_cast<ELanguage>(options.LanguageId);
}

void ReadOptions(const std::filesystem::path& file,
                 const TSystemInfo& machine,
                 IWarningSink& warnings,
                 TOptions& options) {
    const bool wasLowered = ReadKeys(file, options);
    UpdateMemoryLimits(options, machine);
    ApplyThreadSettings(options, machine);
    if (wasLowered) {
        warnings.Warn(kTitleWarning, kRecompressionAboveRandomAccess, {});
    }
    if (options.LogMoves) {
        warnings.Warn(kTitleWarning, kLogMovesIsOn, {});
    }
}

bool WriteOptions(const std::filesystem::path& file, const TOptions& options) {
    std::vector<TIniChange> changes;
    for (const TRow& row : kRows) {
        if (row.writer == kSave) {
            changes.push_back(ChangeOf(row, FileText(row, options)));
        }
    }
    return !WriteValues(file, changes);
}

bool WriteOneOption(const std::filesystem::path& file,
                    std::string_view key,
                    const TOptions& options) {
    const TRow& row = RowOf(key);
    return !WriteValues(file, {ChangeOf(row, FileText(row, options))});
}

TOptions ReadOptionsFile(const std::filesystem::path& file) {
    TOptions options;
    ReadKeys(file, options);
    return options;
}

std::vector<TOptionView> ListOptions(const TOptions& options) {
    const TOptions defaults;
    std::vector<TOptionView> views;
    views.reserve(kRows.size());
    for (const TRow& row : kRows) {
        TOptionView view;
        view.key = row.key;
        view.value = FileText(row, options);
        view.defaultValue = FileText(row, defaults);
        view.low = row.low + FileOffset(row);
        view.high = row.high + FileOffset(row);
        view.isText = row.rule == kText;
        view.writer = row.writer;
        view.writerText = WriterText(row.writer);
        view.help = row.help;
        view.waitsFor = row.waitsFor;
        views.push_back(view);
    }
    return views;
}

std::string GetOption(const TOptions& options, std::string_view key) {
    return FileText(RowOf(key), options);
}

void SetOption(const std::filesystem::path& file, std::string_view key, std::string_view text) {
    const TRow& row = RowOf(key);
    const std::string checked =
        row.rule == kText ? CheckedText(row, text) : CheckedNumber(row, text, file);
    if (const auto error = WriteValues(file, {ChangeOf(row, checked)})) {
        throw ChessException(kCannotWriteFile, {file.string(), error.message()});
    }
}

std::string OptionRangeText(const TOptionView& option, ELanguage language) {
    if (option.isText) {
        return std::string(MessageText(kOptionRangeText, language));
    }
    return FormatMessage(
        kOptionRangeNumbers, language, {std::to_string(option.low), std::to_string(option.high)});
}

}  // namespace quillmere
