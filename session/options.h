// The settings of the program and their file, options.ini.
//
// All settings live in one record, g_options, whose members are the rows of session/options.def.
// They are read once at start, before any solve, changed at run time by the fronts of the program,
// and written back only on demand. A missing key takes its default; the file is never reported as
// bad, and no file at all means defaults.
//
// Two notions of a value. The member is what the program works with. The file holds the same
// number, except SchedulerLevels, where it holds one less. Whatever a user sees or sets by key
// and text (ListOptions, GetOption, SetOption, the ranges they tell) is in the file's notion, so
// that it never differs from what stands in the file after a save.
//
// Threads: the solving threads read g_options without a lock. Only one thread, the one that talks
// to the user, writes it, and not while a solve runs whose outcome depends on the setting.
#pragma once

#include "core/messages.h"
#include "core/platform/system_info.h"
#include "core/types.h"
#include "core/warning_sink.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillmere {

struct TOptions {
    // The rows of the table; meaning and range stand there and in docs/options.md. The member
    // MultithreadingLevels may be raised above its range by the machine or by the user.
    // NOLINTBEGIN(readability-redundant-string-init): one macro for numbers and texts
#define QUILLMERE_OPTION(key, type, defaultValue, low, high, rule, writer, waitsFor)               \
    type key = defaultValue;
#include "session/options.def"
#undef QUILLMERE_OPTION
    // NOLINTEND(readability-redundant-string-init)

    // From the machine, never from the file: threads of one problem, 1 to kMaxThreads.
    int threadCount = 1;

    // Derived from the percentages and the physical memory; see UpdateMemoryLimits.
    u64 tempRegLimitMegabytes = 0;        // temporary data of one problem
    u64 fixedRatioLimitMegabytes = 0;     // the same with kFixedMemRatio for the percentage
    u64 precalculatedDataLimitBytes = 0;  // all precalculated data

    bool operator==(const TOptions&) const = default;
};

constexpr int kMaxThreads = 255;
constexpr int kFixedMemRatio = 20;  // percent
constexpr std::string_view kOptionsFileName = "options.ini";
constexpr std::string_view kOptionsSection = "chess";

extern TOptions g_options;

enum class EOptionRule { kClamp, kBoolean, kMinusOne, kElseDefault, kCrossChecked, kText };
enum class EOptionWriter { kSave, kMenu, kWindow, kMessage, kUser };

// One row of the table as a user sees it: every value is the file's.
struct TOptionView {
    std::string_view key;
    std::string value;
    std::string defaultValue;
    // Ends of the range; not used if isText.
    i64 low = 0;
    i64 high = 0;
    bool isText = false;
    EOptionWriter writer = EOptionWriter::kUser;
    EMessage writerText = EMessage::kCount;
    EMessage help = EMessage::kCount;
    // The feature that will read the option, EMessage::kCount if it is read already.
    EMessage waitsFor = EMessage::kCount;
};

// Start and save

// Reads the file into `options`: the keys in table order, the limits, the check of one option
// against another, the thread settings of the machine; then tells the warnings. When `warnings`
// is called, `options` is complete, so it may take the language from there. An empty path counts
// as a file that is absent.
void ReadOptions(const std::filesystem::path& file,
                 const TSystemInfo& machine,
                 IWarningSink& warnings,
                 TOptions& options = g_options);

// Writes the keys of EOptionWriter::kSave and leaves everything else in the file as it is. A
// failure is silent, as nobody waits for it when a window closes; the result tells it, and the
// old file then stands unharmed.
bool WriteOptions(const std::filesystem::path& file, const TOptions& options = g_options);

// The same for one key, whoever its writer is. The key must be one of the table.
bool WriteOneOption(const std::filesystem::path& file,
                    std::string_view key,
                    const TOptions& options = g_options);

// Values that follow from others

// To be called again whenever a percentage changes.
void UpdateMemoryLimits(TOptions& options, const TSystemInfo& machine);
// Thread count and, on a large machine, MultithreadingLevels.
void ApplyThreadSettings(TOptions& options, const TSystemInfo& machine);
ELanguage LanguageOf(const TOptions& options);

// By key and text. Keys are found whatever the case of their letters. Faults are ChessExceptions
// that name the key, the value and what is allowed.

// The values of the file as ReadOptions takes them, but without what comes from the machine, and
// without warnings.
TOptions ReadOptionsFile(const std::filesystem::path& file);
std::vector<TOptionView> ListOptions(const TOptions& options);
std::string GetOption(const TOptions& options, std::string_view key);
// Checks strictly (where a read would bend the value), then writes this one key to the file.
// g_options is not changed. On a fault nothing is written.
void SetOption(const std::filesystem::path& file, std::string_view key, std::string_view text);
// The allowed values in words, for instance "0 to 100".
std::string OptionRangeText(const TOptionView& option, ELanguage language);

}  // namespace quillmere
