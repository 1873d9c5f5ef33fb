#include "session/ini_file.h"

#include <algorithm>
#include <cstddef>

// The members are compiled here, which spares linking with the distribution's library and the
// code page library behind it.
#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION
#include <SimpleIni.h>

namespace quillmere {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kSpaces = " \t";

// Reading

// Every section with every value of every key, in the order of the file.
using TIniContent = std::map<std::string, std::map<std::string, std::vector<std::string>>>;

TIniContent ReadIniContent(const std::string& bytes) {
    CSimpleIniA ini;
    ini.SetMultiKey(true);
    ini.SetMultiLine(false);
    ini.SetQuotes(true);
    TIniContent content;
    if (ini.LoadData(bytes) < 0) {
        return content;
    }
    CSimpleIniA::TNamesDepend sections;
    ini.GetAllSections(sections);
    for (const auto& section : sections) {
        auto& entries = content[LowerAscii(section.pItem)];
        CSimpleIniA::TNamesDepend keys;
        ini.GetAllKeys(section.pItem, keys);
        for (const auto& key : keys) {
            CSimpleIniA::TNamesDepend values;
            ini.GetAllValues(section.pItem, key.pItem, values);
            values.sort(CSimpleIniA::Entry::LoadOrder());
            auto& texts = entries[LowerAscii(key.pItem)];
            for (const auto& value : values) {
                texts.emplace_back(value.pItem);
            }
        }
    }
    return content;
}

// Lines, seen as the reader sees them

struct TLine {
    std::size_t begin = 0;
    std::size_t end = 0;   // behind the text, before the line end
    std::size_t next = 0;  // behind the line end
};

TLine LineAt(const std::string& bytes, std::size_t begin) {
    const std::size_t end = std::min(bytes.find_first_of("\r\n", begin), bytes.size());
    std::size_t next = end;
    if (next < bytes.size()) {
        next += bytes.compare(end, 2, "\r\n") == 0 ? 2 : 1;
    }
    return {begin, end, next};
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kSpaces);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
}

std::size_t TextBegin(const std::string& bytes) {
    return bytes.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0 ? kByteOrderMark.size() : 0;
}

bool IsRemark(std::string_view trimmed) {
    return trimmed.starts_with(';') || trimmed.starts_with('#');
}

// Where a key stands, or where a new one would.
struct TPlace {
    // Bytes of the value; nothing if the key is missing.
    std::optional<std::pair<std::size_t, std::size_t>> value;
    // Behind the line of the last entry of the section's first part, or of its head; nothing if
    // the section is missing.
    std::optional<std::size_t> newLine;
};

TPlace FindPlace(const std::string& bytes, std::string_view section, std::string_view key) {
    TPlace place;
    bool isInside = false;
    int parts = 0;
    for (std::size_t begin = TextBegin(bytes); begin < bytes.size();) {
        const TLine line = LineAt(bytes, begin);
        begin = line.next;
        const std::string_view raw(bytes.data() + line.begin, line.end - line.begin);
        const std::string_view text = Trimmed(raw);
        if (text.empty() || IsRemark(text)) {
            continue;
        }
        if (text.starts_with('[')) {
            // A head without its bracket ends the section before, and begins none that has a name.
            const std::size_t close = text.find(']');
            isInside = close != std::string_view::npos &&
                       LowerAscii(Trimmed(text.substr(1, close - 1))) == LowerAscii(section);
            parts += isInside ? 1 : 0;
            if (isInside && parts == 1) {
                place.newLine = line.next;
            }
            continue;
        }
        const std::size_t equals = raw.find('=');
        if (!isInside || equals == std::string_view::npos || text.starts_with('=')) {
            continue;
        }
        if (parts == 1) {
            place.newLine = line.next;
        }
        if (LowerAscii(Trimmed(raw.substr(0, equals))) == LowerAscii(key)) {
            const std::string_view value = raw.substr(equals + 1);
            const std::size_t first = std::min(value.find_first_not_of(kSpaces), value.size());
            const std::size_t length = Trimmed(value).size();
            const std::size_t from = line.begin + equals + 1 + first;
            place.value = std::pair(length == 0 ? line.begin + equals + 1 : from, length);
            return place;
        }
    }
    return place;
}

// Writing

// The remark behind a number, with the spaces before it; empty if there is none.
std::string RemarkBehind(std::string_view value) {
    if (IsRemark(value)) {
        return std::string(1, ' ').append(value);
    }
    for (std::size_t i = value.find_first_of(kSpaces); i < value.size();
         i = value.find_first_of(kSpaces, i + 1)) {
        if (IsRemark(Trimmed(value.substr(i)))) {
            return std::string(value.substr(i));
        }
    }
    return {};
}

// The line end of the line before a place; where that is open, that of the first line. With another
// one, an inserted line could grow together with its neighbour ("\r" before "\n").
std::string LineEndAt(const std::string& bytes, std::size_t place) {
    if (place >= 2 && bytes.compare(place - 2, 2, "\r\n") == 0) {
        return "\r\n";
    }
    if (place >= 1 && (bytes[place - 1] == '\n' || bytes[place - 1] == '\r')) {
        return {bytes[place - 1]};
    }
    const TLine first = LineAt(bytes, 0);
    return first.next == first.end ? "\n" : bytes.substr(first.end, first.next - first.end);
}

// Inserts a line at a place that is the begin of a line or the end of the text.
void InsertLine(std::string& bytes, std::size_t place, const std::string& text) {
    const std::string lineEnd = LineEndAt(bytes, place);
    const bool isBehindOpenLine =
        place > TextBegin(bytes) && bytes[place - 1] != '\n' && bytes[place - 1] != '\r';
    bytes.insert(place, (isBehindOpenLine ? lineEnd : "") + text + lineEnd);
}

// Makes one change; hands back the whole value that now stands in the file.
std::string ChangeValue(std::string& bytes, std::string_view section, const TIniChange& change) {
    const TPlace place = FindPlace(bytes, section, change.key);
    if (place.value) {
        const auto [from, length] = *place.value;
        const std::string_view old(bytes.data() + from, length);
        std::string value = change.value + (change.isNumber ? RemarkBehind(old) : "");
        bytes.replace(from, length, value);
        return value;
    }
    if (place.newLine) {
        InsertLine(bytes, *place.newLine, change.key + "=" + change.value);
        return change.value;
    }
    if (bytes.size() > TextBegin(bytes)) {
        InsertLine(bytes, bytes.size(), "");
    }
    InsertLine(bytes, bytes.size(), std::string(1, '[').append(section).append("]"));
    InsertLine(bytes, bytes.size(), change.key + "=" + change.value);
    return change.value;
}

std::string WithoutQuotes(const std::string& value) {
    const bool isQuoted = value.size() > 1 && value.front() == '"' && value.back() == '"';
    return isQuoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return lower;
}

TIniSection ReadIniSection(const std::string& bytes, std::string_view section) {
    TIniSection values;
    const TIniContent content = ReadIniContent(bytes);
    const auto found = content.find(LowerAscii(section));
    if (found != content.end()) {
        for (const auto& [key, texts] : found->second) {
            values.emplace(key, texts.front());
        }
    }
    return values;
}

std::optional<std::string> ChangeIniValues(const std::string& bytes,
                                           std::string_view section,
                                           const std::vector<TIniChange>& changes) {
    if (bytes.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    std::string changed = bytes;
    TIniContent wanted = ReadIniContent(bytes);
    auto& entries = wanted[LowerAscii(section)];
    for (const TIniChange& change : changes) {
        const std::string value = WithoutQuotes(ChangeValue(changed, section, change));
        auto& texts = entries[LowerAscii(change.key)];
        if (texts.empty()) {
            texts.push_back(value);
        } else {
            texts.front() = value;
        }
    }
    if (ReadIniContent(changed) != wanted) {
        return std::nullopt;
    }
    return changed;
}

}  // namespace quillmere
