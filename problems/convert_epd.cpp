#include "problems/convert_epd.h"

#include "core/fen.h"
#include "core/legality.h"
#include "core/play_board.h"
#include "core/san.h"
#include "core/text.h"
#include "problems/epd_text.h"
#include "problems/problem_fields.h"
#include "problems/problem_reader.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace quillmere {
namespace {

// Writing

// EPD knows no escape: a quotation mark would end the text.
std::string Quoted(std::string_view text) {
    std::string quoted = AsOneLine(text);
    std::ranges::replace(quoted, '"', '\'');
    return "\"" + quoted + "\"";
}

// The four fields of the root.
std::string PositionFields(CPlayBoard& board) {
    const std::string fen = GetFENCode(board.Node(), false, 1);
    return fen.substr(0, fen.find(" 0 1"));
}

void AddOperation(std::string& line, std::string_view name, const std::string& value) {
    if (!value.empty())
        line += " " + std::string(name) + " " + value + ";";
}

void Append(std::string& list, const std::string& item) {
    list += (list.empty() ? "" : " ") + item;
}

std::string WriteLine(const TChessProblem& problem) {
    const std::vector<TMove> played = problem.PlayedMoves();
    const auto room = static_cast<int>(played.size()) + 1;
    CPlayBoard board(*problem.position, false, room);
    std::string line = PositionFields(board);
    // 1. The stipulation.
    const std::string stipulation = StipulationText(problem);
    if (problem.type == kDirectMate)
        AddOperation(line, "dm", stipulation.substr(1));
    else if (!stipulation.empty())
        AddOperation(line, "stip", Quoted(stipulation));
    // 2. Moves and answer. What is no legal move has no short notation, and is found missing later.
    std::string moves;
    for (const TMove move : played)
        Append(moves, PlayShortMove(board, move));
    std::string answer;
    for (const TMove stored : problem.answer) {
        const TMove move = AnswerInNode(board.Node(), stored);
        if (!IsLegal(board, move))
            continue;
        CPlayBoard own(*problem.position, false, room);
        for (const TMove earlier : played)
            own.Play(earlier);
        Append(answer, PlayShortMove(own, move));
    }
    AddOperation(line, "moves", moves);
    AddOperation(line, moves.empty() ? "bm" : "answer", answer);
    // 3. The texts.
    AddOperation(line, "id", Quoted(std::to_string(problem.number)));
    std::string flags;
    for (const std::string& word : FlagWordsOf(problem))
        Append(flags, word);
    AddOperation(line, "flags", flags);
    if (!problem.description.empty())
        AddOperation(line, "c0", Quoted(problem.description));
    std::string tags;
    for (const std::string& tag : problem.tags)
        Append(tags, Quoted(tag));
    AddOperation(line, "tags", tags);
    return line + "\n";
}

// Reading

// What the operations of one line say.
struct TLine {
    std::string stipulation;
    std::vector<std::string_view> bestMoves;
    std::vector<std::string_view> moves;
    std::vector<std::string_view> answer;
    std::vector<std::string_view> flags;
    std::vector<std::string> tags;
    std::string id;
    std::string description;  // c0 to c9
    std::vector<std::string> unknown;
    std::set<std::string> seen;

    void Add(const TEpdOperation& operation);
    void SetStipulation(const std::string& text);
};

std::vector<std::string_view> Words(std::string_view text) {
    std::vector<std::string_view> words;
    while (!StripBlanks(text).empty())
        words.push_back(TakeEpdWord(text));
    return words;
}

bool IsComment(std::string_view name) {
    return name.size() == 2 && name[0] == 'c' && IsDigit(name[1]);
}

void TLine::SetStipulation(const std::string& text) {
    TChessProblem scratch;
    if (text.empty() || !SetStipulationText(scratch, text))
        throw ChessException(EMessage::kConvertBadStipulation, {text});
    if (!stipulation.empty() && stipulation != text)
        throw ChessException(EMessage::kConvertBadStipulation, {stipulation + ", " + text});
    stipulation = text;
}

void TLine::Add(const TEpdOperation& operation) {
    const std::string& name = operation.name;
    if (!seen.insert(name).second)
        throw ChessException(EMessage::kEpdTwice, {name});
    if (name == "dm") {
        SetStipulation("#" + std::string(StripBlanks(operation.value)));
    } else if (name == "stip") {
        SetStipulation(std::string(UnquoteEpd(operation.value)));
    } else if (name == "bm") {
        for (const std::string_view word : Words(operation.value)) {
            if (word.front() == '#')
                SetStipulation(std::string(word));
            else
                bestMoves.push_back(word);
        }
    } else if (name == "moves") {
        moves = Words(operation.value);
    } else if (name == "answer") {
        answer = Words(operation.value);
    } else if (name == "flags") {
        flags = Words(operation.value);
    } else if (name == "tags") {
        tags = SplitEpdTexts(operation);
    } else if (name == "id") {
        id = UnquoteEpd(operation.value);
    } else if (IsComment(name)) {
        description += (description.empty() ? "" : ", ") + std::string(UnquoteEpd(operation.value));
    } else {
        unknown.push_back(name);
    }
}

// The number that an id is; negative if it is none.
i32 NumberOfId(std::string_view id) {
    i32 number = -1;
    const char* end = id.data() + id.size();
    const auto [stop, error] = std::from_chars(id.data(), end, number);
    const bool isNumber = error == std::errc() && stop == end && number >= 0;
    return isNumber ? number : -1;
}

// The moves are read in the squares of the input.
void ReadMoves(const TLine& words, const TForeignPosition& position, TChessProblem& problem) {
    CPlayBoard board(
        position.board, position.isBlackToMove, static_cast<int>(words.moves.size()) + 1);
    const auto addAnswer = [&](std::string_view word) {
        const TMove move = ReadShortMove(board.Node(), word);
        const TMove stored = AnswerToStore(*problem.currentNode, position.ToProblem(move));
        problem.answer.push_back(stored);
        problem.flags |= kProblemHasAnswer;
    };
    for (const std::string_view word : words.bestMoves)
        addAnswer(word);
    for (const std::string_view word : words.moves) {
        const TMove move = ReadShortMove(board.Node(), word);
        if (!problem.PlayMove(position.ToProblem(move)))
            throw ChessException(EMessage::kMoveNotLegal, {std::string(word)});
        board.Play(move);
    }
    for (const std::string_view word : words.answer)
        addAnswer(word);
}

void ReadLine(std::string_view text,
              int line,
              TProblemCollection& collection,
              TConversionRemarks& remarks) {
    const TForeignPosition position = ReadForeignPosition(TakeEpdPosition(text));
    TLine words;
    while (const std::optional<TEpdOperation> operation = TakeEpdOperation(text))
        words.Add(*operation);

    auto problem = std::make_unique<TChessProblem>();
    const i32 wished = NumberOfId(words.id);
    NumberProblem(*problem, wished, line, collection, remarks);
    if (!words.moves.empty() && !words.stipulation.empty())
        throw ChessException(EMessage::kConvertBadStipulation, {words.stipulation});
    SetStipulationText(*problem, words.stipulation);
    SetForeignPosition(*problem, position, line, remarks);
    for (const std::string_view word : words.flags) {
        if (!SetFlagWord(*problem, word))
            throw ChessException(EMessage::kConvertUnknownFlag, {std::string(word)});
    }
    ReadMoves(words, position, *problem);
    problem->description = words.description;
    if (wished < 0 && !words.id.empty())
        problem->description =
            words.id + (words.description.empty() ? "" : ": ") + words.description;
    problem->tags.insert(words.tags.begin(), words.tags.end());
    if (!words.unknown.empty())
        remarks.push_back({true,
                           problem->number,
                           line,
                           EMessage::kConvertInputNotKept,
                           {JoinedList(words.unknown)}});
    collection.Insert(std::move(problem));
}

}  // namespace

std::string
WriteEpd(const TProblemCollection& collection, ELanguage language, TConversionRemarks& remarks) {
    std::string text;
    for (const auto& [number, problem] : collection.problems) {
        if (const std::string reason = ReasonNotPlayable(*problem, language); !reason.empty())
            remarks.push_back({true, number, 0, EMessage::kConvertLeftOut, {"EPD", reason}});
        else
            text += WriteLine(*problem);
    }
    TProblemCollection back;
    TConversionRemarks ignored;
    if (!text.empty())
        ReadBack([&] { ReadEpd(text, back, ignored); });
    AddLosses(collection, back, "EPD", remarks);
    return text;
}

void ReadEpd(std::string_view text, TProblemCollection& collection, TConversionRemarks& remarks) {
    bool isEmpty = true;
    ForEachEpdLine(text, [&](std::string_view row, int line) {
        isEmpty = false;
        try {
            ReadLine(row, line, collection, remarks);
        } catch (const ChessException& fault) {
            throw CProblemFileFault(line, fault);
        }
    });
    if (isEmpty)
        throw ChessException(EMessage::kConvertNoProblems);
}

}  // namespace quillmere
