// quillmere perft: counts the lines of legal moves.
#include "cli/columns.h"
#include "cli/commands.h"
#include "cli/json.h"
#include "cli/task.h"
#include "core/legality.h"
#include "core/make_move.h"
#include "core/notation.h"
#include "core/perft.h"
#include "core/play_board.h"

#include <chrono>
#include <fmt/format.h>

namespace quillmere {
namespace {

constexpr int kMaxDepth = 100;

struct TDivideRow {
    TWrittenMove move;
    u64 nodes = 0;
};

u64 CountFrom(const TPosition& position, int depth, TMove* first) {
    TSearchContext context;
    TChessboard root = position.board;
    root.m_searchContext = &context;
    SetupPerftRoot(root, !position.IsBlackToMove(), depth);
    TThreadContext thread(root.m_nMoves);
    thread.rootNode = &root;
    root.m_threadContext = &thread;
    if (first == nullptr)
        return Perft(root, depth);
    TChessboard child = root;
    child.m_parent = &root;
    if (position.IsBlackToMove())
        MakeBlackMoveLegal(child, *first);
    else
        MakeWhiteMoveLegal(child, *first);
    return Perft(child, depth - 1);
}

std::vector<TDivideRow> Divide(const TPosition& position, int depth) {
    std::vector<TDivideRow> rows;
    for (TMove move : CPlayBoard(position.board, position.IsBlackToMove()).LegalMoves()) {
        const TWrittenMove written = WriteMove(position.board, position.IsBlackToMove(), move);
        rows.push_back({written, CountFrom(position, depth, &move)});
    }
    return rows;
}

}  // namespace

EExitCode RunPerft(const TCommandCall& call) {
    const TArguments& arguments = call.arguments;
    std::vector<std::string> words = arguments.positionals;
    const auto depth = static_cast<int>(ReadNumber("DEPTH", words.back(), 0, kMaxDepth));
    words.pop_back();
    const TPosition position = ReadPosition(JoinWords(words));
    CheckSideNotToMove(position.board, position.IsBlackToMove());
    if (position.NeedsCastlingNote())
        call.console.Note(call.console.Text(EMessage::kCastlingNote));

    const auto start = std::chrono::steady_clock::now();
    std::vector<TDivideRow> rows;
    u64 nodes = 0;
    if (arguments.Has("--divide") && depth > 0) {
        rows = Divide(position, depth);
        for (const TDivideRow& row : rows)
            nodes += row.nodes;
    } else {
        nodes = CountFrom(position, depth, nullptr);
    }
    const auto elapsed = std::chrono::steady_clock::now() - start;

    if (arguments.Has("--json")) {
        TJson json = {{"schema", kSchema},
                      {"fen", WritePosition(position)},
                      {"depth", depth},
                      {"nodes", nodes}};
        if (arguments.Has("--divide")) {
            json["divide"] = TJson::array();
            for (const TDivideRow& row : rows) {
                TJson entry = MoveJson(row.move);
                entry["nodes"] = row.nodes;
                json["divide"].push_back(std::move(entry));
            }
        }
        json["ms"] = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
        call.console.Print(JsonLine(json));
        return kExitDone;
    }
    std::string out;
    for (const TDivideRow& row : rows)
        out += fmt::format("{:<10} {}\n", row.move.text, row.nodes);
    call.console.Print(out + fmt::format("{}\n", nodes));
    return kExitDone;
}

}  // namespace quillmere
