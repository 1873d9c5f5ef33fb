// Games: what stands where in them, and the boards that short moves need.
#include "problems/pgn_game.h"

#include "core/play_board.h"
#include "core/san.h"
#include "core/text.h"
#include "problems/pgn_tokens.h"
#include "problems/problem_reader.h"
#include "problems/text_encoding.h"

#include <algorithm>
#include <charconv>

namespace quillmere {
namespace {

constexpr const char* kInitialPosition = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

constexpr std::string_view kLatin1 = "ISO-8859-1";

// A comment may be broken over lines anywhere that a blank stands. Blanks at its ends stay: who wrote the
// game knows whether they mean anything.
std::string CommentText(std::string_view text) {
    std::string unbroken;
    for (const char c : text) {
        if (c != '\r')
            unbroken += c == '\n' || c == '\t' ? ' ' : c;
    }
    return unbroken;
}

void Join(std::string& text, const std::string& more) {
    text += (text.empty() || more.empty() ? "" : " ") + more;
}

class CGameReader {
public:
    CGameReader(CPgnLexer& lexer, TPgnGame& game) : m_lexer(lexer), m_game(game) {}

    // A token of the game stands next.
    void Read();

private:
    void ReadTags();
    void ReadPosition();
    TPgnLine ReadLine(TPgnLine line, int depth, int startLine);
    void ReadNullMove(const TPgnToken& token, TPgnLine& line, std::unique_ptr<CPlayBoard>& board);
    void ReadVariation(const TPgnToken& token, const TPgnLine& line, bool isToNullMove, int depth);
    void CheckEnd(const TPgnToken& token, bool hasOwnMove, int depth, int startLine);
    void ReadMove(const TPgnToken& token, TPgnLine& line, std::unique_ptr<CPlayBoard>& board);
    std::unique_ptr<CPlayBoard> BoardBehind(const TPgnLine& line) const;

    CPgnLexer& m_lexer;
    TPgnGame& m_game;
};

void CGameReader::ReadTags() {
    for (TPgnToken token = m_lexer.Peek();
         token.kind == EPgnToken::kTag || token.kind == EPgnToken::kComment;
         token = m_lexer.Peek()) {
        if (token.kind == EPgnToken::kComment) {
            // Behind the last tag it belongs to the moves.
            CPgnLexer ahead = m_lexer;
            while (ahead.Peek().kind == EPgnToken::kComment)
                ahead.Next();
            if (ahead.Peek().kind != EPgnToken::kTag)
                return;
            m_game.hasLooseComments = true;
            m_lexer.Next();
            continue;
        }
        m_lexer.Next();
        TPgnTag tag = m_lexer.ReadTag();
        if (m_game.Tag(tag.name) != nullptr)
            FailPgn(tag.line, EMessage::kPgnTagTwice, {tag.name});
        m_game.tags.push_back(std::move(tag));
    }
}

void CGameReader::ReadPosition() {
    const TPgnTag* fen = m_game.Tag("FEN");
    const TPgnTag* setUp = m_game.Tag("SetUp");
    if (fen == nullptr && setUp != nullptr && setUp->value == "1")
        FailPgn(setUp->line, EMessage::kPgnNoFen);
    try {
        m_game.position = ReadForeignPosition(fen == nullptr ? kInitialPosition : fen->value);
    } catch (const ChessException& fault) {
        throw CProblemFileFault(fen == nullptr ? m_game.line : fen->line, fault);
    }
}

// Most lines are short, and a board of the longest would cost more than the whole rest of a game.
int RoomBehind(const TPgnLine& line) {
    constexpr std::size_t kLeastRoom = 32;
    return static_cast<int>(std::max(2 * line.moves.size(), kLeastRoom));
}

std::unique_ptr<CPlayBoard> CGameReader::BoardBehind(const TPgnLine& line) const {
    auto board = std::make_unique<CPlayBoard>(
        m_game.position.board, m_game.position.isBlackToMove != line.hasNullMove, RoomBehind(line));
    for (const TPgnMove& played : line.moves)
        board->Play(played.move);
    return board;
}

void CGameReader::ReadMove(const TPgnToken& token,
                           TPgnLine& line,
                           std::unique_ptr<CPlayBoard>& board) {
    if (line.moves.size() >= kMaxPgnHalfMoves)
        FailPgn(token.line, EMessage::kLineTooLong, {std::to_string(kMaxPgnHalfMoves)});
    m_game.hasMarks |= token.text.find_first_of("!?") != std::string_view::npos;
    try {
        const TMove move = ReadShortMove(board->Node(), token.text);
        if (board->MovesLeft() == 0)
            board = BoardBehind(line);
        board->Play(move);
        line.moves.push_back({move, ""});
    } catch (const ChessException& fault) {
        throw CProblemFileFault(token.line, fault);
    }
}

void CGameReader::ReadNullMove(const TPgnToken& token,
                               TPgnLine& line,
                               std::unique_ptr<CPlayBoard>& board) {
    if (!line.moves.empty() || line.hasNullMove || board->IsInCheck())
        FailPgn(token.line, EMessage::kPgnNullMove);
    line.hasNullMove = true;
    board = BoardBehind(line);
}

// An alternative to the last move of the line, or to its null move. `depth` is that of the line.
void CGameReader::ReadVariation(const TPgnToken& token,
                                const TPgnLine& line,
                                bool isToNullMove,
                                int depth) {
    if (depth >= kMaxPgnDepth)
        FailPgn(token.line, EMessage::kPgnTooDeep, {std::to_string(kMaxPgnDepth)});
    TPgnLine variation;
    variation.hasNullMove = line.hasNullMove && !isToNullMove;
    for (std::size_t i = 0; i + 1 < line.moves.size(); ++i)
        variation.moves.push_back({line.moves[i].move, ""});
    const std::size_t index = m_game.lines.size();
    m_game.lines.emplace_back();
    variation = ReadLine(std::move(variation), depth + 1, token.line);
    m_game.lines[index] = std::move(variation);
}

// The token ends the line, and may do so.
void CGameReader::CheckEnd(const TPgnToken& token, bool hasOwnMove, int depth, int startLine) {
    if (token.kind == EPgnToken::kClose) {
        if (depth == 0)
            FailPgn(token.line, EMessage::kPgnNoOpenVariation);
        if (!hasOwnMove)
            FailPgn(token.line, EMessage::kPgnEmptyVariation);
        return;
    }
    if (depth > 0)
        FailPgn(startLine, EMessage::kPgnOpenVariation);
    if (token.kind != EPgnToken::kResult)
        FailPgn(token.line, EMessage::kPgnNoResult, {std::to_string(m_game.line)});
    m_game.result = token.text;
}

// `line` holds the moves before a variation, and comes back with its own; `startLine` is where it
// begins in the text.
TPgnLine CGameReader::ReadLine(TPgnLine line, int depth, int startLine) {
    const std::size_t inherited = line.moves.size();
    const bool hadNullMove = line.hasNullMove;
    std::unique_ptr<CPlayBoard> board = BoardBehind(line);
    for (;;) {
        const TPgnToken token = m_lexer.Next();
        const bool hasOwnMove = line.moves.size() > inherited;
        const bool hasOwnNullMove = line.hasNullMove && !hadNullMove;
        switch (token.kind) {
        case EPgnToken::kComment:
            line.hasLead |= !hasOwnMove;
            Join(hasOwnMove ? line.moves.back().comment : line.lead, CommentText(token.text));
            break;
        case EPgnToken::kMark:
            m_game.hasMarks = true;
            break;
        case EPgnToken::kMoveNumber:
            break;
        case EPgnToken::kWord:
            if (IsNullMove(token.text))
                ReadNullMove(token, line, board);
            else
                ReadMove(token, line, board);
            break;
        case EPgnToken::kOpen:
            if (!hasOwnMove && !hasOwnNullMove)
                FailPgn(token.line, EMessage::kPgnVariationWithoutMove);
            ReadVariation(token, line, !hasOwnMove, depth);
            break;
        case EPgnToken::kClose:
        case EPgnToken::kResult:
        case EPgnToken::kTag:
        case EPgnToken::kEnd:
            CheckEnd(token, hasOwnMove, depth, startLine);
            return line;
        }
    }
}

void CGameReader::Read() {
    m_game.line = m_lexer.Peek().line;
    ReadTags();
    ReadPosition();
    m_game.lines.emplace_back();
    TPgnLine mainLine = ReadLine({}, 0, m_game.line);
    m_game.lines.front() = std::move(mainLine);
}

}  // namespace

const TPgnTag* TPgnGame::Tag(std::string_view name) const {
    const auto found = std::ranges::find(tags, name, &TPgnTag::name);
    return found == tags.end() ? nullptr : &*found;
}

void ForEachPgnGame(std::string_view text, const std::function<void(const TPgnGame& game)>& take) {
    std::string decoded;
    if (!IsUtf8(text)) {
        decoded = CTextDecoder(std::string(kLatin1)).Decode(text);
        text = decoded;
    }
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    CPgnLexer lexer(text);
    while (lexer.Peek().kind != EPgnToken::kEnd) {
        TPgnGame game;
        CGameReader(lexer, game).Read();
        take(game);
    }
}

}  // namespace quillmere
