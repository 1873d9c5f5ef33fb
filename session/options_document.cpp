#include "session/options_document.h"

#include "session/options.h"

namespace quillmere {
namespace {

constexpr const char* kHead =
    R"(<!-- Made by quillmere_generate_docs from session/options.def. Do not edit. -->
# Options

The settings of the program stand in the file `options.ini` of the program's folder, in the section
`[chess]`, one `Key=number` a line (`PrecalcPath` and `AnsiCodePage` are texts). `quillmere options
path` tells where the file is: `--home DIR`, else the folder of the environment variable
`QUILLMERE_HOME`, else `$XDG_CONFIG_HOME/quillmere`, else `~/.config/quillmere`.

- A key that is missing takes its default. No file at all means defaults.
- A number is read up to the first character that is no digit: `12abc` is 12, `abc` is 0. Numbers
  beyond an end of the range count as that end, unless the table tells otherwise; of a yes-or-no
  option (0 to 1) every number but 0 is 1.
- If a key stands more than once, the first one counts. Lines that begin with `;` or `#` are
  remarks.
- When the program writes to the file, other sections, unknown keys, remarks and the order of the
  lines stay as they are.
- All values, defaults and ranges below are those of the file, and so are those of
  `quillmere options list`, `get` and `set`. `set` refuses what a read would bend.

"Written by" tells who changes the key besides the user.

| Key | Default | Range | Written by | Meaning |
|---|---|---|---|---|
)";

constexpr const char* kWaitingHead = R"(
## Options that wait

The program reads and keeps these options, but the part of it that obeys them is not there yet:

| Key | Waits for |
|---|---|
)";

std::string Text(EMessage id) {
    return std::string(MessageText(id, ELanguage::kEnglish));
}

}  // namespace

std::string OptionsDocument() {
    std::string document = kHead;
    std::string waiting;
    for (const TOptionView& option : ListOptions(TOptions())) {
        const std::string key = "| `" + std::string(option.key) + "` | ";
        const std::string value = option.defaultValue.empty() ? "empty" : option.defaultValue;
        document += key + value + " | " + OptionRangeText(option, ELanguage::kEnglish) + " | " +
                    Text(option.writerText) + " | " + Text(option.help) + " |\n";
        if (option.waitsFor != EMessage::kCount) {
            waiting += key + Text(option.waitsFor) + " |\n";
        }
    }
    return waiting.empty() ? document : document + kWaitingHead + waiting;
}

}  // namespace quillmere
