// Reading collections from JSON. Whatever is not as it is written is a fault with the path of the field.
#include "cli/convert_json.h"
#include "cli/json.h"
#include "core/chess_exception.h"
#include "core/fen.h"
#include "core/notation.h"
#include "core/text.h"
#include "heuristics/catalogue.h"
#include "heuristics/heuristics_parser.h"
#include "problems/problem_fields.h"
#include "problems/problem_lexer.h"
#include "problems/problem_reader.h"
#include "problems/text_encoding.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>

namespace quillmere {
namespace {

[[noreturn]] void Fail(EMessage id, const std::string& path, std::vector<std::string> values = {}) {
    values.insert(values.begin(), path);
    throw ChessException(id, std::move(values));
}

std::string Field(const std::string& path, std::string_view name) {
    return path.empty() ? std::string(name) : path + "." + std::string(name);
}

std::string Element(const std::string& path, std::size_t index) {
    return path + "[" + std::to_string(index) + "]";
}

std::string ReadText(const TJson& json, const std::string& path) {
    if (!json.is_string())
        Fail(EMessage::kJsonExpectsText, path);
    return json.get<std::string>();
}

bool ReadBool(const TJson& json, const std::string& path) {
    if (!json.is_boolean())
        Fail(EMessage::kJsonExpectsBool, path);
    return json.get<bool>();
}

template <class TNumber>
TNumber ReadNumber(const TJson& json, const std::string& path, i64 low, i64 high) {
    // Numbers beyond 63 bits are unsigned in the parser's eyes.
    const bool fits = json.is_number_integer() &&
                      (!json.is_number_unsigned() ||
                       json.get<u64>() <= static_cast<u64>(std::numeric_limits<i64>::max())) &&
                      json.get<i64>() >= low && json.get<i64>() <= high;
    if (!fits)
        Fail(EMessage::kJsonExpectsNumber, path, {std::to_string(low), std::to_string(high)});
    return static_cast<TNumber>(json.get<i64>());
}

// Calls `take` with each element and its path.
template <class TTake>
void ForEach(const TJson& json, const std::string& path, const TTake& take) {
    if (!json.is_array())
        Fail(EMessage::kJsonExpectsList, path);
    for (std::size_t i = 0; i < json.size(); ++i)
        take(json[i], Element(path, i));
}

std::vector<TMove> ReadMoves(const TJson& json, const std::string& path) {
    std::vector<TMove> moves;
    ForEach(json, path, [&](const TJson& element, const std::string& place) {
        const std::string text = ReadText(element, place);
        TMove move = {};
        if (!ReadRawMove(text, move))
            Fail(EMessage::kJsonBadValue, place, {text});
        moves.push_back(move);
    });
    return moves;
}

std::set<std::string> ReadTexts(const TJson& json, const std::string& path) {
    std::set<std::string> texts;
    ForEach(json, path, [&](const TJson& element, const std::string& place) {
        texts.insert(ReadText(element, place));
    });
    return texts;
}

// Words as the head of a problem holds them; anything else would be read back as something else.
std::set<std::string> ReadMaterials(const TJson& json, const std::string& path) {
    std::set<std::string> materials;
    ForEach(json, path, [&](const TJson& element, const std::string& place) {
        std::string text = ReadText(element, place);
        if (!IsMaterialWord(text))
            Fail(EMessage::kJsonBadValue, place, {text});
        materials.insert(std::move(text));
    });
    return materials;
}

// One object: fields are taken by name, and what nobody took is unknown.
class CObject {
public:
    CObject(const TJson& json, std::string path) : m_json(json), m_path(std::move(path)) {
        if (!json.is_object())
            Fail(EMessage::kJsonExpectsObject, m_path.empty() ? "JSON" : m_path);
    }
    // Calls `take` with the field and its path if it is there.
    template <class TTake>
    bool Optional(std::string_view name, const TTake& take) {
        m_taken.emplace(name);
        const auto found = m_json.find(std::string(name));
        if (found == m_json.end())
            return false;
        take(*found, Field(m_path, name));
        return true;
    }
    template <class TTake>
    void Required(std::string_view name, const TTake& take) {
        if (!Optional(name, take))
            Fail(EMessage::kJsonMissing, Field(m_path, name));
    }
    void Finish() const {
        for (const auto& [name, value] : m_json.items()) {
            if (!m_taken.contains(name))
                Fail(EMessage::kJsonUnknown, Field(m_path, name));
        }
    }

private:
    const TJson& m_json;
    std::string m_path;
    std::set<std::string, std::less<>> m_taken;
};

void ReadBoard(const TJson& json, const std::string& path, TChessProblem& problem) {
    const std::string text = ReadText(json, path);
    u8 squares[kSquareCount] = {};
    try {
        if (!ReadBoardSquares(text, squares))
            Fail(EMessage::kJsonBadValue, path, {text});
    } catch (const ChessException&) {
        Fail(EMessage::kJsonBadValue, path, {text});
    }
    problem.SetPosition(squares);
}

void ReadVariant(const TJson& json, const std::string& path, TChessProblem& problem) {
    TProblemVariant variant;
    CObject object(json, path);
    object.Required("name", [&](const TJson& field, const std::string& place) {
        variant.name = ReadText(field, place);
    });
    object.Optional("blackBegins", [&](const TJson& field, const std::string& place) {
        variant.doesBlackBegin = ReadBool(field, place);
    });
    const auto readMove = [&](const TJson& element, const std::string& place) {
        TVariantMove row;
        CObject move(element, place);
        move.Required("text", [&](const TJson& field, const std::string& at) {
            row.text = ReadText(field, at);
            const bool isWhite = (variant.moves.size() % 2 == 0) != variant.doesBlackBegin;
            try {
                TextToMove(row.move, row.text, isWhite);
            } catch (const ChessException&) {
                Fail(EMessage::kJsonBadValue, at, {row.text});
            }
        });
        move.Optional("comment", [&](const TJson& field, const std::string& at) {
            row.comment = ReadText(field, at);
        });
        move.Finish();
        variant.moves.push_back(std::move(row));
    };
    object.Required("moves", [&](const TJson& field, const std::string& place) {
        ForEach(field, place, readMove);
    });
    object.Finish();
    problem.variants.emplace(variant.name, std::move(variant));
}

void ReadHeuristics(const TJson& json, const std::string& path, TChessProblem& problem) {
    if (!json.is_object())
        Fail(EMessage::kJsonExpectsObject, path);
    for (const auto& [name, parameters] : json.items()) {
        const TNamedHeuristic heuristic = FindHeuristic(name);
        const std::string place = Field(path, name);
        if (heuristic.bit == 0 || HeuristicName(heuristic.bit) != name)
            Fail(EMessage::kJsonUnknown, place);
        problem.heuristicOverrides[heuristic.bit] = ReadTexts(parameters, place);
    }
}

void ReadIndications(const TJson& json, const std::string& path, TChessProblem& problem) {
    ForEach(json, path, [&](const TJson& element, const std::string& place) {
        const std::string text = ReadText(element, place);
        SortIndication indication;
        try {
            ParseSortIndication(indication, text);
        } catch (const ChessException&) {
            Fail(EMessage::kJsonBadValue, place, {text});
        }
        AddSortIndication(problem.sortIndications, indication);
    });
}

void ReadSchema(const TJson& field, const std::string& path) {
    constexpr i64 kMost = 1000000;
    const auto schema = ReadNumber<int>(field, path, 0, kMost);
    if (schema != kCollectionSchema)
        Fail(EMessage::kJsonSchema,
             path,
             {std::to_string(schema), std::to_string(kCollectionSchema)});
}

// The numbers of the head line, with their ranges; the value outside of them means "not forced".
void ReadNumbers(CObject& object, TChessProblem& problem) {
    constexpr i64 kMostRepeats = std::numeric_limits<i32>::max();
    const auto number = [&](std::string_view name, auto& value, i64 low, i64 high) {
        return object.Optional(name, [&](const TJson& field, const std::string& path) {
            value = ReadNumber<std::remove_reference_t<decltype(value)>>(field, path, low, high);
        });
    };
    number("guiCheckRepeat", problem.guiCheckRepeat, 1, kMostRepeats);
    number("threads", problem.threads, 0, kThreadsNotForced - 1);
    u8 levels = 0;
    if (number("multithreadingLevels", levels, 0, std::numeric_limits<u8>::max())) {
        problem.areLevelsGiven = true;
        problem.multithreadingLevels = levels;
    }
    number("schedulerLevels", problem.schedulerLevels, 0, kLevelsNotForced - 1);
    number("lichessLevels", problem.lichessLevels, 0, kLevelsNotForced - 1);
    number("globRegMB", problem.globRegMB, 0, std::numeric_limits<i32>::max());
}

// Stipulation, position, moves.
void ReadTask(CObject& object, TChessProblem& problem) {
    object.Required("stipulation", [&](const TJson& field, const std::string& path) {
        const std::string text = ReadText(field, path);
        if (!SetStipulationText(problem, text))
            Fail(EMessage::kJsonBadValue, path, {text});
    });
    object.Required("board", [&](const TJson& field, const std::string& path) {
        ReadBoard(field, path, problem);
    });
    object.Optional("moves", [&](const TJson& field, const std::string& path) {
        const std::vector<TMove> moves = ReadMoves(field, path);
        for (std::size_t i = 0; i < moves.size(); ++i) {
            if (problem.type != kNoStipulation || !problem.PlayMove(moves[i]))
                Fail(EMessage::kJsonBadValue, Element(path, i), {RawMoveText(moves[i])});
        }
    });
    object.Optional("answer", [&](const TJson& field, const std::string& path) {
        problem.answer = ReadMoves(field, path);
        problem.flags |= kProblemHasAnswer;
    });
    object.Optional("expectedFirstMoves", [&](const TJson& field, const std::string& path) {
        problem.expectedSortWhiteMoves = ReadMoves(field, path);
        problem.flags |= kProblemHasExpectedSort;
    });
    object.Optional("expectedFirstMovesOnly", [&](const TJson& field, const std::string& path) {
        if (ReadBool(field, path))
            problem.flags |= kProblemExpectedSortOnly;
    });
}

std::unique_ptr<TChessProblem> ReadProblem(const TJson& json, const std::string& path) {
    auto problem = std::make_unique<TChessProblem>();
    CObject object(json, path);
    object.Required("schema", ReadSchema);
    object.Required("number", [&](const TJson& field, const std::string& place) {
        problem->number = ReadNumber<i32>(field, place, 0, std::numeric_limits<i32>::max());
    });
    ReadTask(object, *problem);
    object.Optional("description", [&](const TJson& field, const std::string& place) {
        problem->description = ReadText(field, place);
    });
    object.Optional("flags", [&](const TJson& field, const std::string& place) {
        ForEach(field, place, [&](const TJson& element, const std::string& at) {
            const std::string word = ReadText(element, at);
            if (!SetFlagWord(*problem, word))
                Fail(EMessage::kJsonBadValue, at, {word});
        });
    });
    ReadNumbers(object, *problem);
    object.Optional("stopRelaxHeuristicsOnFirstSolution",
                    [&](const TJson& field, const std::string& place) {
                        problem->stopRelaxHeuristicsOnFirstSolution = ReadBool(field, place);
                    });
    object.Optional("heuristics", [&](const TJson& field, const std::string& place) {
        ReadHeuristics(field, place, *problem);
    });
    object.Optional("requires", [&](const TJson& field, const std::string& place) {
        problem->requires_ = ReadMaterials(field, place);
    });
    object.Optional("allSolutionsRequires", [&](const TJson& field, const std::string& place) {
        problem->allSolutionsRequires = ReadMaterials(field, place);
    });
    object.Optional("tags", [&](const TJson& field, const std::string& place) {
        problem->tags = ReadTexts(field, place);
    });
    object.Optional("variants", [&](const TJson& field, const std::string& place) {
        ForEach(field, place, [&](const TJson& element, const std::string& at) {
            ReadVariant(element, at, *problem);
        });
    });
    object.Optional("sortIndications", [&](const TJson& field, const std::string& place) {
        ReadIndications(field, place, *problem);
    });
    object.Finish();
    return problem;
}

void AddProblem(const TJson& json, const std::string& path, TProblemCollection& collection) {
    std::unique_ptr<TChessProblem> problem = ReadProblem(json, path);
    if (collection.Find(problem->number) != nullptr)
        Fail(EMessage::kJsonNumberTwice, Field(path, "number"), {std::to_string(problem->number)});
    collection.Insert(std::move(problem));
}

// Characters of a text for the parser, which remembers how far it came: not every fault of the parser
// tells its place.
class CWatchedCharacters {
public:
    using difference_type = std::ptrdiff_t;
    using value_type = char;
    using reference = const char&;
    using pointer = const char*;
    using iterator_category = std::input_iterator_tag;

    CWatchedCharacters(const char* at, const char** reached) : m_at(at), m_reached(reached) {}
    const char& operator*() const { return *m_at; }
    CWatchedCharacters& operator++() {
        *m_reached = ++m_at;
        return *this;
    }
    CWatchedCharacters operator++(int) {
        CWatchedCharacters before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CWatchedCharacters& other) const { return m_at == other.m_at; }

private:
    const char* m_at;
    const char** m_reached;
};

// A fault at the end of this part of the text.
CProblemFileFault FaultBehind(EMessage id, std::string_view before, int firstLine) {
    const std::size_t lineStart = before.rfind('\n') + 1;  // 0 where there is no line end
    const auto line = firstLine + static_cast<int>(std::ranges::count(before, '\n'));
    return {line, ChessException(id, {std::to_string(before.size() - lineStart + 1)})};
}

// Parses one value. A field that stands twice is a fault, since one of the two would be lost.
TJson Parse(std::string_view text, int firstLine) {
    std::vector<std::set<std::string>> names;
    const auto watch = [&](int /*depth*/, nlohmann::json::parse_event_t event, TJson& value) {
        if (event == TJson::parse_event_t::object_start)
            names.emplace_back();
        else if (event == TJson::parse_event_t::object_end)
            names.pop_back();
        else if (event == TJson::parse_event_t::key &&
                 !names.back().insert(value.get<std::string>()).second)
            Fail(EMessage::kJsonTwice, value.get<std::string>());
        return true;
    };
    const char* reached = text.data();
    try {
        return TJson::parse(CWatchedCharacters(text.data(), &reached),
                            CWatchedCharacters(text.data() + text.size(), &reached),
                            watch);
    } catch (const TJson::parse_error& error) {
        throw FaultBehind(
            EMessage::kJsonSyntax, text.substr(0, error.byte == 0 ? 0 : error.byte - 1), firstLine);
    } catch (const TJson::exception& error) {
        const auto size = static_cast<std::size_t>(reached - text.data());
        const bool isNumber = dynamic_cast<const TJson::out_of_range*>(&error) != nullptr;
        throw FaultBehind(isNumber ? EMessage::kJsonNumberTooLarge : EMessage::kJsonSyntax,
                          text.substr(0, size == 0 ? 0 : size - 1),
                          firstLine);
    }
}

}  // namespace

void ReadJson(std::string_view text, TProblemCollection& collection) {
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    if (StripBlanks(text).empty())
        throw ChessException(EMessage::kConvertNoProblems);
    if (StripBlanks(text).front() == '[') {
        const TJson json = Parse(text, 1);
        ForEach(json, "", [&](const TJson& element, const std::string& path) {
            AddProblem(element, path, collection);
        });
        if (json.empty())
            throw ChessException(EMessage::kConvertNoProblems);
        return;
    }
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (StripBlanks(line).empty())
            continue;
        try {
            AddProblem(Parse(line, number), "", collection);
        } catch (const CProblemFileFault&) {
            throw;
        } catch (const ChessException& fault) {
            throw CProblemFileFault(number, fault);
        }
    }
}

}  // namespace quillmere
