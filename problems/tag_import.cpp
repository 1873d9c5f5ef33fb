#include "problems/tag_import.h"

#include "core/text.h"
#include "problems/tags.h"
#include "problems/text_encoding.h"

#include <fstream>
#include <string_view>

namespace quillmere {
namespace {

namespace fs = std::filesystem;

// Bytes read at once, so that a large file is never in memory as a whole.
constexpr std::size_t kPieceBytes = 65'535;
// Longer lines are no tags, and are not kept either.
constexpr std::size_t kMostLineBytes = 1 << 20;

constexpr std::string_view kBlockHead = "//#TAGS";
constexpr std::string_view kTagStart = "//#";

constexpr std::string_view kCommentStart = "//";
// Lines that the reader takes for no comment end a block.
constexpr std::string_view kVariantStart = "//!";
constexpr std::string_view kSortStart = "//@";
constexpr std::string_view kLongCommentStart = "/*";
constexpr std::string_view kLongCommentEnd = "*/";

// The line is the head of a block, or has it behind the head of a problem.
bool IsBlockHead(std::string_view line) {
    return line.ends_with(kBlockHead) &&
           line.find(kCommentStart) == line.size() - kBlockHead.size();
}

// Takes the lines of a file one after the other.
class CTagLines {
public:
    CTagLines(std::set<std::string>& tags, const TReadSettings& settings)
        : m_tags(tags), m_settings(settings) {}

    void OnLine(std::string_view line) {
        if (m_isFirst)
            OnFirstLine(line);
        m_isFirst = false;
        line = WithoutLongComments(line);
        if (IsBlockHead(line)) {
            m_isInBlock = true;
        } else if (line.starts_with(kTagStart)) {
            if (m_isInBlock)
                OnTag(m_decoder.Decode(line.substr(kTagStart.size())));
        } else if (!IsGap(line)) {
            m_isInBlock = false;
        }
    }

private:
    void OnFirstLine(std::string_view& line) {
        const TEncodingHead head = ReadEncodingHead(line);
        line.remove_prefix(head.size);
        if (!head.isUtf8)
            m_decoder = CTextDecoder(m_settings.ansiCodePage);
    }
    // The line behind the comments at its start; inside of a block they may go over several lines.
    std::string_view WithoutLongComments(std::string_view line) {
        line = StripBlanks(line);
        while (m_isInComment || (m_isInBlock && line.starts_with(kLongCommentStart))) {
            const std::size_t from = m_isInComment ? 0 : kLongCommentStart.size();
            const std::size_t end = line.find(kLongCommentEnd, from);
            m_isInComment = end == std::string_view::npos;
            if (m_isInComment)
                return {};
            line = StripBlanks(line.substr(end + kLongCommentEnd.size()));
        }
        return line;
    }
    // Nothing but a comment stands on the line.
    static bool IsGap(std::string_view line) {
        return line.empty() || (line.starts_with(kCommentStart) &&
                                !line.starts_with(kVariantStart) && !line.starts_with(kSortStart));
    }
    void OnTag(const std::string& text) {
        const std::string_view tag = StripBlanks(text);
        if (!tag.empty())
            m_tags.insert(TranslateTag(tag, m_settings.language));
    }

    std::set<std::string>& m_tags;
    const TReadSettings& m_settings;
    CTextDecoder m_decoder;
    bool m_isFirst = true;
    bool m_isInBlock = false;
    bool m_isInComment = false;
};

void ReadLines(std::istream& in, CTagLines& lines) {
    std::string piece(kPieceBytes, '\0');
    std::string line;
    while (in.read(piece.data(), static_cast<std::streamsize>(piece.size())) || in.gcount() > 0) {
        for (const char c : std::string_view(piece.data(), static_cast<std::size_t>(in.gcount()))) {
            if (c == '\n') {
                lines.OnLine(line);
                line.clear();
            } else if (line.size() < kMostLineBytes) {
                line += c;
            }
        }
    }
    if (!line.empty())
        lines.OnLine(line);
}

}  // namespace

std::size_t
ImportTags(const fs::path& path, std::set<std::string>& tags, const TReadSettings& settings) {
    std::error_code error;
    std::ifstream in;
    // A folder would open, and a pipe would wait.
    if (fs::is_regular_file(path, error))
        in.open(path, std::ios::binary);
    if (!in.is_open())
        throw ChessException(EMessage::kErrorReadingFile);
    std::set<std::string> found;
    CTagLines lines(found, settings);
    ReadLines(in, lines);
    if (in.bad())
        throw ChessException(EMessage::kErrorReadingFile);
    const std::size_t before = tags.size();
    tags.merge(found);
    return tags.size() - before;
}

}  // namespace quillmere
