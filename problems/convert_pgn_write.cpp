// Writing PGN: lines of play, their order, and the text broken at 79 columns.
#include "core/fen.h"
#include "core/play_board.h"
#include "problems/convert_pgn.h"
#include "problems/problem_fields.h"

#include <algorithm>

namespace quillmere {
namespace {

// Closing brackets may follow, and a line has less than 80 columns.
constexpr std::size_t kColumns = 76;
constexpr std::string_view kNullMove = "--";

// One line of play as it will be written; only legal moves.
struct TLine {
    bool hasLead = false;  // the name stands in front of the first move, even an empty one
    std::string lead;
    bool hasNullMove = false;
    std::vector<TMove> moves;
    std::vector<std::string> comments;
    // The move of the main line that this one is an alternative to.
    std::size_t branch = 0;
};

// Breaks the movetext. A blank within a comment may become a line end, which reads as a blank; but no
// line begins with '%', by which other programs mean something else.
class CMoveText {
public:
    // A token with a blank or a line end before it, and the brackets that were opened.
    void Add(std::string_view token) {
        const std::string text = m_opened + std::string(token);
        m_opened.clear();
        const bool isTooLong = m_column + 1 + Width(text) > kColumns && text.front() != '%';
        if (m_column > 0 && isTooLong)
            EndLine();
        else if (m_column > 0)
            Put(" ");
        Put(text);
    }
    void Open(char bracket) { m_opened += bracket; }
    void Close(char bracket) { Put(std::string(1, bracket)); }
    void AddComment(std::string_view comment);
    std::string Text() const { return m_text + "\n"; }

private:
    static std::size_t Width(std::string_view text) {
        return static_cast<std::size_t>(std::ranges::count_if(
            text, [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
    }
    void Put(std::string_view text) {
        m_text += text;
        m_column += Width(text);
    }
    void EndLine() {
        m_text += '\n';
        m_column = 0;
    }
    void AddWords(std::string_view comment);

    std::string m_text;
    std::string m_opened;  // brackets that the next token follows without a blank
    std::size_t m_column = 0;
};

// Every blank counts, so that the comment reads back as it is: two blanks hold an empty word.
void CMoveText::AddWords(std::string_view comment) {
    for (;;) {
        const std::size_t end = comment.find(' ');
        if (end == 0 && m_opened.empty())
            Put(" ");
        else
            Add(comment.substr(0, end));
        if (end == std::string_view::npos)
            return;
        comment.remove_prefix(end + 1);
    }
}

void CMoveText::AddComment(std::string_view comment) {
    const std::string text = AsOneLine(comment);
    // A brace would end the comment; the other form of comment goes to the end of the line.
    if (text.find('}') != std::string::npos) {
        Add(";" + text);
        EndLine();
        return;
    }
    Open('{');
    AddWords(text);
    Close('}');
}

// Lines

std::unique_ptr<CPlayBoard>
BoardOf(const TChessProblem& problem, bool blackBegins, std::size_t room) {
    return std::make_unique<CPlayBoard>(*problem.position, blackBegins, static_cast<int>(room) + 1);
}

// The variant as far as its moves are legal.
TLine LineOf(const TChessProblem& problem, const TProblemVariant& variant) {
    TLine line;
    line.hasLead = !variant.name.empty();
    line.lead = variant.name;
    line.hasNullMove = variant.doesBlackBegin;
    if (line.hasNullMove && BoardOf(problem, false, 0)->IsInCheck())
        return line;
    const auto board = BoardOf(problem, line.hasNullMove, variant.moves.size());
    for (const TVariantMove& row : variant.moves) {
        const std::vector<TMove> legal = board->LegalMoves();
        if (std::ranges::none_of(legal, [&](TMove m) { return MovesEqual(m, row.move); }))
            break;
        board->Play(row.move);
        line.moves.push_back(row.move);
        line.comments.push_back(row.comment);
    }
    return line;
}

TLine LineOfMoves(const std::vector<TMove>& moves) {
    TLine line;
    line.moves = moves;
    line.comments.resize(moves.size());
    return line;
}

struct TGame {
    TLine main;
    std::vector<TLine> others;
};

bool BeginsWith(const TLine& line, TMove move) {
    return !line.hasNullMove && !line.moves.empty() && MovesEqual(line.moves.front(), move);
}

// Variants with the main variant first, as far as they have moves at all.
std::vector<TLine> VariantLines(const TChessProblem& problem) {
    std::vector<TLine> lines;
    const TProblemVariant* mainVariant = FindMainVariant(problem.variants);
    if (mainVariant != nullptr)
        lines.push_back(LineOf(problem, *mainVariant));
    for (const auto& [name, variant] : problem.variants) {
        if (&variant != mainVariant)
            lines.push_back(LineOf(problem, variant));
    }
    std::erase_if(lines, [](const TLine& line) { return line.moves.empty(); });
    return lines;
}

// Where a variation leaves the main line: as late as possible, so that other programs show it well. Its
// comments before that place would be lost, and lines of one name keep their order.
void FindBranches(TGame& game) {
    std::map<std::string, std::size_t> latest;
    for (auto line = game.others.rbegin(); line != game.others.rend(); ++line) {
        const std::size_t last = game.main.moves.empty() ? 0 : game.main.moves.size() - 1;
        std::size_t branch = 0;
        while (line->hasNullMove == game.main.hasNullMove && branch < last &&
               branch + 1 < line->moves.size() && line->comments[branch].empty() &&
               MovesEqual(line->moves[branch], game.main.moves[branch]))
            ++branch;
        const auto [place, isFirst] = latest.try_emplace(line->lead, branch);
        place->second = line->branch = std::min(branch, place->second);
    }
}

TGame GameOf(const TChessProblem& problem, const std::vector<TMove>& answers) {
    TGame game;
    std::vector<TLine> lines = VariantLines(problem);
    const std::vector<TMove> played = problem.PlayedMoves();
    const bool isAnswerShown = problem.type != kNoStipulation;
    // A line that could be taken for the mere display of an answer says that it is a variant.
    for (TLine& line : lines)
        line.hasLead |= problem.type == kNoStipulation ||
                        (isAnswerShown && line.moves.size() == 1 && !line.hasNullMove);
    // 1. The main line.
    const auto canLead = [](const TLine& line) { return !line.hasNullMove; };
    const bool hasMainVariant = FindMainVariant(problem.variants) != nullptr;
    if (!played.empty()) {
        game.main = LineOfMoves(played);
    } else if (!lines.empty() && canLead(lines.front()) && (hasMainVariant || answers.empty())) {
        game.main = std::move(lines.front());
        lines.erase(lines.begin());
    } else if (isAnswerShown && !answers.empty()) {
        game.main = LineOfMoves({answers.front()});
    } else if (const auto found = std::ranges::find_if(lines, canLead); found != lines.end()) {
        game.main = std::move(*found);
        lines.erase(found);
    }
    // 2. The other lines, for which there must be a main line.
    if (game.main.moves.empty())
        return game;
    for (const TMove answer : isAnswerShown ? answers : std::vector<TMove>()) {
        const bool isThere =
            BeginsWith(game.main, answer) ||
            std::ranges::any_of(lines, [&](const TLine& line) { return BeginsWith(line, answer); });
        if (!isThere)
            lines.push_back(LineOfMoves({answer}));
    }
    game.others = std::move(lines);
    FindBranches(game);
    return game;
}

// Movetext

class CGameText {
public:
    CGameText(const TChessProblem& problem, const TGame& game) : m_problem(problem), m_game(game) {}

    // True if the main line ends in mate.
    bool Write() {
        const bool isMate = WriteLine(m_game.main, 0, &m_game.others);
        return isMate;
    }
    CMoveText& Text() { return m_text; }

private:
    bool WriteLine(const TLine& line, std::size_t first, const std::vector<TLine>* variations);

    const TChessProblem& m_problem;
    const TGame& m_game;
    CMoveText m_text;
};

// The moves from `first` on.
bool CGameText::WriteLine(const TLine& line,
                          std::size_t first,
                          const std::vector<TLine>* variations) {
    const auto board = BoardOf(m_problem, line.hasNullMove, line.moves.size());
    if (line.hasLead)
        m_text.AddComment(line.lead);
    bool needsNumber = true;
    if (line.hasNullMove && first == 0) {
        m_text.Add("1.");
        m_text.Add(kNullMove);
        needsNumber = false;
    }
    bool isMate = false;
    for (std::size_t i = 0; i < line.moves.size(); ++i) {
        const bool isBlack = board->IsBlackToMove();
        const std::string text = PlayShortMove(*board, line.moves[i]);
        isMate = text.ends_with('#');
        if (i < first)
            continue;
        const std::size_t number = (i + (line.hasNullMove ? 1 : 0)) / 2 + 1;
        if (!isBlack || needsNumber)
            m_text.Add(std::to_string(number) + (isBlack ? "..." : "."));
        m_text.Add(text);
        needsNumber = !line.comments[i].empty();
        if (needsNumber)
            m_text.AddComment(line.comments[i]);
        for (std::size_t k = 0; variations != nullptr && k < variations->size(); ++k) {
            const TLine& variation = (*variations)[k];
            if (variation.branch != i)
                continue;
            m_text.Open('(');
            WriteLine(variation, i, nullptr);
            m_text.Close(')');
            needsNumber = true;
        }
    }
    return isMate;
}

// Tags

std::string TagLine(std::string_view name, std::string_view value) {
    std::string line = "[" + std::string(name) + " \"";
    for (const char c : AsOneLine(value)) {
        if (c == '"' || c == '\\')
            line += '\\';
        line += c;
    }
    return line + "\"]\n";
}

void AppendWord(std::string& list, std::string_view word) {
    list += (list.empty() ? "" : " ") + std::string(word);
}

// The answers that are legal, as moves of the node behind the played moves, and their texts.
std::vector<TMove> LegalAnswers(const TChessProblem& problem, std::string& texts) {
    const auto boardBehind = [&] {
        const std::vector<TMove> played = problem.PlayedMoves();
        auto board = BoardOf(problem, false, played.size());
        for (const TMove move : played)
            board->Play(move);
        return board;
    };
    const auto board = boardBehind();
    const std::vector<TMove> legal = board->LegalMoves();
    std::vector<TMove> answers;
    for (const TMove stored : problem.answer) {
        const TMove answer = AnswerInNode(board->Node(), stored);
        if (std::ranges::none_of(legal, [&](TMove move) { return MovesEqual(move, answer); }))
            continue;
        answers.push_back(answer);
        AppendWord(texts, PlayShortMove(*boardBehind(), answer));
    }
    return answers;
}

std::string GameText(const TChessProblem& problem) {
    const std::string stipulation = StipulationText(problem);
    std::string key;
    const std::vector<TMove> answers = LegalAnswers(problem, key);
    const TGame game = GameOf(problem, answers);
    CGameText moves(problem, game);
    const std::string_view result = moves.Write() ? "1-0" : "*";
    moves.Text().Add(result);

    std::string text = TagLine("Event", stipulation.empty() ? "?" : stipulation);
    text += TagLine("Site", "?");
    text += TagLine("Date", "????.??.??");
    text += TagLine("Round", std::to_string(problem.number));
    text += TagLine("White", problem.description.empty() ? "?" : problem.description);
    text += TagLine("Black", "?");
    text += TagLine("Result", result);
    text += TagLine("SetUp", "1");
    text += TagLine("FEN", GetFENCode(BoardOf(problem, false, 0)->Node(), false, 1));
    text += TagLine("Stipulation", stipulation.empty() ? "-" : stipulation);
    text += TagLine("Key", key.empty() ? "-" : key);
    if (problem.type == kNoStipulation)
        text += TagLine("PlayedMoves", std::to_string(problem.playedNodes.size()));
    std::string flags;
    for (const std::string& word : FlagWordsOf(problem))
        AppendWord(flags, word);
    if (!flags.empty())
        text += TagLine("Flags", flags);
    int number = 0;
    for (const std::string& tag : problem.tags)
        text += TagLine("Tag" + std::to_string(++number), tag);
    return text + "\n" + moves.Text().Text();
}

}  // namespace

std::string
WritePgn(const TProblemCollection& collection, ELanguage language, TConversionRemarks& remarks) {
    std::string text;
    for (const auto& [number, problem] : collection.problems) {
        if (const std::string reason = ReasonNotPlayable(*problem, language); !reason.empty())
            remarks.push_back({true, number, 0, EMessage::kConvertLeftOut, {"PGN", reason}});
        else
            text += (text.empty() ? "" : "\n") + GameText(*problem);
    }
    TProblemCollection back;
    TConversionRemarks ignored;
    if (!text.empty())
        ReadBack([&] { ReadPgn(text, back, language, ignored); });
    AddLosses(collection, back, "PGN", remarks);
    return text;
}

}  // namespace quillmere
