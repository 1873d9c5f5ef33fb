// Reading PGN: what the tags and lines of a game say of a problem.
#include "core/notation.h"
#include "core/play_board.h"
#include "core/san.h"
#include "core/text.h"
#include "problems/convert_pgn.h"
#include "problems/epd_text.h"
#include "problems/pgn_game.h"
#include "problems/problem_fields.h"
#include "problems/problem_reader.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace quillmere {
namespace {

constexpr std::string_view kUnknownDate = "????.??.??";

[[noreturn]] void FailTag(const TPgnTag& tag) {
    throw CProblemFileFault(tag.line,
                            ChessException(EMessage::kPgnTagBadValue, {tag.name, tag.value}));
}

i32 NumberIn(std::string_view text) {
    i32 number = -1;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? number : -1;
}

bool IsUnknown(std::string_view value) {
    return value.empty() || value == "?" || value == "-" || value == kUnknownDate;
}

// "1857.??.??" says the year.
std::string DateText(std::string date) {
    while (date.ends_with(".??"))
        date.resize(date.size() - 3);
    return date;
}

// The problem of one game.
class CProblemOfGame {
public:
    CProblemOfGame(const TPgnGame& game, ELanguage language, TConversionRemarks& remarks)
        : m_game(game),
          m_language(language),
          m_remarks(remarks),
          m_problem(std::make_unique<TChessProblem>()),
          m_isOwn(game.Tag("Key") != nullptr && game.Tag("Stipulation") != nullptr) {}

    std::unique_ptr<TChessProblem> Make(const TProblemCollection& collection);

private:
    // The value of a tag, which then counts as used; empty if there is none.
    std::string Take(std::string_view name);
    void ReadOwnTags();
    void ReadForeignTags();
    void ReadOwnLines();
    void ReadForeignLines();
    void PlayMoves(std::size_t count);
    void ReadKey(const TPgnTag& tag);
    bool IsAnswer(const TPgnLine& line) const;
    void AddVariant(const TPgnLine& line, const std::string& name, bool isLeadComment);
    void TellUnkept();
    // Other programs put blanks inside of the braces; the own comments are exactly what was written.
    std::string Comment(const std::string& text) const {
        return m_isOwn ? text : std::string(StripBlanks(text));
    }

    const TPgnGame& m_game;
    ELanguage m_language;
    TConversionRemarks& m_remarks;
    std::unique_ptr<TChessProblem> m_problem;
    bool m_isOwn;
    std::set<std::string, std::less<>> m_used = {"SetUp", "FEN"};
};

std::string CProblemOfGame::Take(std::string_view name) {
    m_used.emplace(name);
    const TPgnTag* tag = m_game.Tag(name);
    return tag == nullptr ? "" : tag->value;
}

void CProblemOfGame::ReadOwnTags() {
    const TPgnTag& stipulation = *m_game.Tag("Stipulation");
    m_used.insert({"Stipulation", "Key", "PlayedMoves", "Round", "Result"});
    const bool isNone = stipulation.value == "-";
    if (!SetStipulationText(*m_problem, isNone ? "" : stipulation.value) ||
        stipulation.value.empty())
        FailTag(stipulation);
    if (const TPgnTag* event = m_game.Tag("Event"); event && event->value == stipulation.value)
        m_used.emplace("Event");
    if (const std::string text = Take("White"); text != "?")
        m_problem->description = StripBlanks(text);
    if (const TPgnTag* flags = m_game.Tag("Flags")) {
        std::string_view words = Take("Flags").empty() ? "" : std::string_view(flags->value);
        while (!StripBlanks(words).empty()) {
            if (!SetFlagWord(*m_problem, TakeEpdWord(words)))
                FailTag(*flags);
        }
    }
    for (int i = 1; m_game.Tag("Tag" + std::to_string(i)) != nullptr; ++i)
        m_problem->tags.insert(Take("Tag" + std::to_string(i)));
}

void CProblemOfGame::ReadForeignTags() {
    std::set<std::string, std::less<>> spent;
    SetStipulationText(*m_problem, "");
    for (const std::string_view name : {"Stipulation", "Event", "Black"}) {
        const TPgnTag* tag = m_game.Tag(name);
        bool isWhole = false;
        const std::string found = tag == nullptr ? "" : FindStipulation(tag->value, &isWhole);
        if (found.empty())
            continue;
        SetStipulationText(*m_problem, found);
        if (isWhole)
            spent.emplace(name);
        break;
    }
    m_used.insert(spent.begin(), spent.end());
    std::string& description = m_problem->description;
    for (const std::string_view name : {"White", "Black", "Event", "Site", "Date"}) {
        if (spent.contains(name))
            continue;
        std::string value = Take(name);
        if (IsUnknown(value))
            continue;
        if (name == "Date")
            value = DateText(value);
        description += (description.empty() ? "" : ", ") + value;
    }
    // A problem is won by white, which says nothing; a game has a result.
    if (m_problem->type != kNoStipulation || m_game.result == "*")
        m_used.emplace("Result");
}

void CProblemOfGame::PlayMoves(std::size_t count) {
    const std::vector<TPgnMove>& moves = m_game.lines.front().moves;
    for (std::size_t i = 0; i < std::min(count, moves.size()); ++i) {
        if (!m_problem->PlayMove(m_game.position.ToProblem(moves[i].move))) {
            m_remarks.push_back({true,
                                 m_problem->number,
                                 m_game.line,
                                 EMessage::kConvertLongGame,
                                 {std::to_string(i)}});
            return;
        }
    }
}

void CProblemOfGame::ReadKey(const TPgnTag& tag) {
    if (tag.value == "-")
        return;
    const std::vector<TPgnMove>& moves = m_game.lines.front().moves;
    const std::size_t played = m_problem->playedNodes.size();
    CPlayBoard board(
        m_game.position.board, m_game.position.isBlackToMove, static_cast<int>(played) + 1);
    for (std::size_t i = 0; i < played; ++i)
        board.Play(moves[i].move);
    std::string_view words = tag.value;
    try {
        while (!StripBlanks(words).empty()) {
            const TMove move =
                m_game.position.ToProblem(ReadShortMove(board.Node(), TakeEpdWord(words)));
            m_problem->answer.push_back(AnswerToStore(*m_problem->currentNode, move));
            m_problem->flags |= kProblemHasAnswer;
        }
    } catch (const ChessException& fault) {
        throw CProblemFileFault(tag.line, fault);
    }
}

// The line only shows an answer that the tag Key names.
bool CProblemOfGame::IsAnswer(const TPgnLine& line) const {
    if (line.hasLead || line.hasNullMove || line.moves.size() != 1 ||
        !line.moves.front().comment.empty())
        return false;
    const TMove move = m_game.position.ToProblem(line.moves.front().move);
    return std::ranges::any_of(m_problem->answer,
                               [&](TMove answer) { return MovesEqual(answer, move); });
}

// What stands in front of the first move is the name of the line, or a comment on the position.
void CProblemOfGame::AddVariant(const TPgnLine& line, const std::string& name, bool isLeadComment) {
    TProblemVariant variant;
    variant.name = name;
    variant.doesBlackBegin = line.hasNullMove;
    CPlayBoard board(
        *m_problem->position, line.hasNullMove, static_cast<int>(line.moves.size()) + 1);
    for (const TPgnMove& row : line.moves) {
        const TMove move = m_game.position.ToProblem(row.move);
        variant.moves.push_back({move, MoveToText(board.Node(), move), Comment(row.comment)});
        board.Play(move);
    }
    const std::string lead = Comment(line.lead);
    if (isLeadComment && !lead.empty() && !variant.moves.empty()) {
        std::string& comment = variant.moves.front().comment;
        comment = lead + (comment.empty() ? "" : " ") + comment;
    }
    m_problem->variants.emplace(variant.name, std::move(variant));
}

void CProblemOfGame::ReadOwnLines() {
    const TPgnLine& mainLine = m_game.lines.front();
    std::size_t played = 0;
    if (const TPgnTag* tag = m_game.Tag("PlayedMoves")) {
        const i32 count = NumberIn(tag->value);
        const bool isBad = count < 0 || static_cast<std::size_t>(count) > mainLine.moves.size() ||
                           (count > 0 && m_problem->type != kNoStipulation);
        if (isBad)
            FailTag(*tag);
        played = static_cast<std::size_t>(count);
        PlayMoves(played);
    }
    ReadKey(*m_game.Tag("Key"));
    for (const TPgnLine& line : m_game.lines) {
        const bool isPlayed =
            &line == &mainLine && played > 0 && !line.hasLead && line.moves.size() == played &&
            std::ranges::all_of(line.moves,
                                [](const TPgnMove& row) { return row.comment.empty(); });
        if (!isPlayed && !line.moves.empty() && !IsAnswer(line))
            AddVariant(line, line.lead, false);
    }
}

void CProblemOfGame::ReadForeignLines() {
    const TPgnLine& mainLine = m_game.lines.front();
    const bool isProblem = m_problem->type != kNoStipulation;
    const bool hasComments = !Comment(mainLine.lead).empty() ||
                             std::ranges::any_of(mainLine.moves, [this](const TPgnMove& row) {
                                 return !Comment(row.comment).empty();
                             });
    if (!isProblem && !mainLine.hasNullMove) {
        PlayMoves(mainLine.moves.size());
    } else if (isProblem && !mainLine.moves.empty() && !mainLine.hasNullMove) {
        const TMove key = m_game.position.ToProblem(mainLine.moves.front().move);
        m_problem->answer.push_back(key);
        m_problem->flags |= kProblemHasAnswer;
    }
    // The played moves say it all unless there are comments, or more of them than can be played.
    const bool isSaid = isProblem ? mainLine.moves.size() < 2 && !mainLine.hasNullMove
                                  : m_problem->playedNodes.size() == mainLine.moves.size();
    if (!mainLine.moves.empty() && (!isSaid || hasComments))
        AddVariant(mainLine, std::string(MainVariantName(m_language)), true);
    else if (mainLine.moves.empty() && !Comment(mainLine.lead).empty())
        m_remarks.push_back(
            {true, m_problem->number, m_game.line, EMessage::kConvertInputNotKept, {"{}"}});
    for (std::size_t i = 1; i < m_game.lines.size(); ++i)
        AddVariant(m_game.lines[i], "", true);
}

// Names what of the game has no place in a problem.
void CProblemOfGame::TellUnkept() {
    std::vector<std::string> unkept;
    for (const TPgnTag& tag : m_game.tags) {
        if (!m_used.contains(tag.name) && !IsUnknown(tag.value))
            unkept.push_back("[" + tag.name + "]");
    }
    if (m_game.hasMarks)
        unkept.emplace_back("NAG");
    if (m_game.hasLooseComments)
        unkept.emplace_back("{}");
    if (!unkept.empty())
        m_remarks.push_back({true,
                             m_problem->number,
                             m_game.line,
                             EMessage::kConvertInputNotKept,
                             {JoinedList(unkept)}});
}

std::unique_ptr<TChessProblem> CProblemOfGame::Make(const TProblemCollection& collection) {
    const TPgnTag* round = m_game.Tag("Round");
    NumberProblem(*m_problem,
                  m_isOwn && round != nullptr ? NumberIn(round->value) : -1,
                  m_game.line,
                  collection,
                  m_remarks);
    if (m_isOwn)
        ReadOwnTags();
    else
        ReadForeignTags();
    SetForeignPosition(*m_problem, m_game.position, m_game.line, m_remarks);
    if (m_isOwn)
        ReadOwnLines();
    else
        ReadForeignLines();
    TellUnkept();
    return std::move(m_problem);
}

bool StartsWithWord(std::string_view text, std::string_view lowerCase) {
    return text.size() >= lowerCase.size() &&
           std::ranges::equal(text.substr(0, lowerCase.size()), lowerCase, [](char a, char b) {
               return ToLowerLetter(a) == b;
           });
}

// The number at the front of the text, perhaps behind blanks; *end is where it ends, 0 for none.
int TakeNumber(std::string_view text, std::size_t* end) {
    std::size_t at = 0;
    while (at < text.size() && text[at] == ' ')
        ++at;
    int number = 0;
    const auto [stop, error] = std::from_chars(text.data() + at, text.data() + text.size(), number);
    *end = error == std::errc() && number > 0 ? static_cast<std::size_t>(stop - text.data()) : 0;
    return number;
}

}  // namespace

std::string FindStipulation(std::string_view text, bool* isWhole) {
    // Longer words before the words that they hold.
    struct TWord {
        std::string_view word;
        std::string_view kind;
    };
    constexpr TWord kWords[] = {{"selfmate in", "s#"},
                                {"selfmate", "s#"},
                                {"directmate in", "#"},
                                {"directmate", "#"},
                                {"checkmate in", "#"},
                                {"mate in", "#"},
                                {"s#", "s#"},
                                {"#", "#"}};
    text = StripBlanks(text);
    for (std::size_t at = 0; at < text.size(); ++at) {
        // "h#3" and "helpmate in 3" are neither.
        if (at > 0 && IsLetter(text[at - 1]))
            continue;
        for (const TWord& row : kWords) {
            const std::string_view rest = text.substr(at);
            if (!StartsWithWord(rest, row.word))
                continue;
            std::size_t end = 0;
            const int number = TakeNumber(rest.substr(row.word.size()), &end);
            std::string found = std::string(row.kind) + std::to_string(number);
            TChessProblem scratch;
            if (end == 0 || !SetStipulationText(scratch, found))
                continue;
            *isWhole = at == 0 && row.word.size() + end == text.size();
            return found;
        }
    }
    return "";
}

void ReadPgn(std::string_view text,
             TProblemCollection& collection,
             ELanguage language,
             TConversionRemarks& remarks) {
    bool isEmpty = true;
    ForEachPgnGame(text, [&](const TPgnGame& game) {
        isEmpty = false;
        collection.Insert(CProblemOfGame(game, language, remarks).Make(collection));
    });
    if (isEmpty)
        throw ChessException(EMessage::kConvertNoProblems);
}

}  // namespace quillmere
