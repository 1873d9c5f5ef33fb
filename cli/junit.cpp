#include "cli/junit.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>

namespace quillmere {
namespace {

constexpr std::string_view kReplacement = "\xef\xbf\xbd";  // U+FFFD
constexpr double kMillisecondsPerSecond = 1000.0;

// Length of the character that begins the text, 0 where the bytes are no UTF-8 or the character has
// no place in XML.
std::size_t XmlCharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return lead >= 0x20 || lead == '\t' || lead == '\n' || lead == '\r' ? 1 : 0;
    const std::size_t length = lead >= 0xc2 && lead < 0xe0   ? 2
                               : lead >= 0xe0 && lead < 0xf0 ? 3
                               : lead >= 0xf0 && lead < 0xf5 ? 4
                                                             : 0;
    unsigned code = length == 0 ? 0 : lead & (0xffU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0U) != 0x80)
            return 0;
        code = code << 6U | (byte(i) & 0x3fU);
    }
    const bool isOverlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool isBarred =
        (code >= 0xd800 && code < 0xe000) || code == 0xfffe || code == 0xffff || code > 0x10ffff;
    return isOverlong || isBarred ? 0 : length;
}

std::string MovesText(const std::vector<TToldMove>& moves) {
    std::string text;
    for (const TToldMove& move : moves)
        text += (text.empty() ? "" : ", ") + move.text;
    return text.empty() ? "-" : text;
}

std::string NameOf(const TTestResult& result) {
    std::string name = fmt::format("problem {}", result.number);
    if (result.pass)
        name += fmt::format(" M{}", *result.pass);
    if (!result.description.empty())
        name += ": " + result.description;
    return name;
}

std::string BodyOf(const TTestResult& result) {
    const std::string remark = EscapeXml(result.remark);
    switch (result.verdict) {
    case ETestVerdict::kDifferent:
        return fmt::format("<failure message=\"{}\">found: {}&#10;should be: {}</failure>",
                           remark.empty() ? "the solutions differ" : remark,
                           EscapeXml(MovesText(result.found)),
                           EscapeXml(MovesText(result.expected)));
    case ETestVerdict::kUndecided:
    case ETestVerdict::kFaulty:
        return fmt::format("<error message=\"{}\"/>", remark);
    case ETestVerdict::kSkipped:
        return fmt::format("<skipped message=\"{}\"/>", remark);
    case ETestVerdict::kNotStated:
        return fmt::format("<system-out>found: {}</system-out>",
                           EscapeXml(MovesText(result.found)));
    case ETestVerdict::kAsExpected:
        break;
    }
    return "";
}

double Seconds(u64 milliseconds) {
    return static_cast<double>(milliseconds) / kMillisecondsPerSecond;
}

}  // namespace

std::string EscapeXml(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const std::size_t length = XmlCharacterLength(text);
        if (length != 1) {
            out += length == 0 ? kReplacement : text.substr(0, length);
            text.remove_prefix(std::max<std::size_t>(length, 1));
            continue;
        }
        switch (const char c = text.front()) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        // A reader of XML makes blanks of these in an attribute.
        case '\t':
        case '\n':
        case '\r':
            out += fmt::format("&#{};", static_cast<int>(c));
            break;
        default:
            out += c;
        }
        text.remove_prefix(1);
    }
    return out;
}

std::string JunitReport(const std::string& suite, const std::vector<TTestResult>& results) {
    int failures = 0;
    int errors = 0;
    int skipped = 0;
    u64 milliseconds = 0;
    std::string cases;
    const std::string name = EscapeXml(suite);
    for (const TTestResult& result : results) {
        failures += result.verdict == ETestVerdict::kDifferent ? 1 : 0;
        errors +=
            result.verdict == ETestVerdict::kUndecided || result.verdict == ETestVerdict::kFaulty
                ? 1
                : 0;
        skipped += result.verdict == ETestVerdict::kSkipped ? 1 : 0;
        milliseconds += result.milliseconds;
        cases += fmt::format(
            "    <testcase classname=\"{}\" name=\"{}\" time=\"{:.3f}\">{}</testcase>\n",
            name,
            EscapeXml(NameOf(result)),
            Seconds(result.milliseconds),
            BodyOf(result));
    }
    return fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<testsuites>\n"
                       "  <testsuite name=\"{}\" tests=\"{}\" failures=\"{}\" errors=\"{}\" "
                       "skipped=\"{}\" time=\"{:.3f}\">\n{}  </testsuite>\n</testsuites>\n",
                       name,
                       results.size(),
                       failures,
                       errors,
                       skipped,
                       Seconds(milliseconds),
                       cases);
}

}  // namespace quillmere
