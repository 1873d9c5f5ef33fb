// quillmere cp check: faults of the text, and what the reader takes but a person should look at.
#include "cli/cp_command.h"
#include "core/play_board.h"
#include "heuristics/catalogue.h"
#include "heuristics/heuristics_parser.h"
#include "problems/collection_merge.h"
#include "problems/conversion.h"
#include "problems/problem_fields.h"

#include <algorithm>

namespace quillmere {
namespace {

// The doubtful things of one file.
class CChecker {
public:
    CChecker(const TCpCall& call, const std::string& file, const TProblemCollection& collection)
        : m_call(call), m_file(file), m_collection(collection) {}

    // Prints a line for each and returns their number.
    int Run();

private:
    void Warn(i32 number, EMessage id, const std::vector<std::string>& values = {});
    void CheckProblem(const TChessProblem& problem);
    void CheckMoves(const TChessProblem& problem);
    void CheckVariants(const TChessProblem& problem, const std::vector<TMove>& played);
    void CheckHeuristics(const TChessProblem& problem, bool isPlayable);
    void CheckDoubles();

    const TCpCall& m_call;
    const std::string& m_file;
    const TProblemCollection& m_collection;
    int m_count = 0;
};

void CChecker::Warn(i32 number, EMessage id, const std::vector<std::string>& values) {
    const std::string text = m_call.console.Text(
        EMessage::kCpProblem, {std::to_string(number), m_call.console.Text(id, values)});
    m_call.console.Print(m_file + ": " + text + "\n");
    ++m_count;
}

// The first half-move of the variant that is not legal behind the moves before it, from 0; its length
// if all are.
std::size_t LegalLength(const TChessProblem& problem,
                        const std::vector<TMove>& played,
                        const TProblemVariant& variant) {
    const bool isBlack = variant.doesBlackBegin;
    const auto room = static_cast<int>(played.size() + variant.moves.size()) + 1;
    try {
        // A variant in which black begins, behind no moves, is what black could do if white passed.
        CPlayBoard board(*problem.position, played.empty() && isBlack, room);
        for (const TMove move : played)
            board.Play(move);
        if (board.IsBlackToMove() != isBlack)
            return 0;
        for (std::size_t i = 0; i < variant.moves.size(); ++i) {
            if (!IsLegal(board, variant.moves[i].move))
                return i;
            board.Play(variant.moves[i].move);
        }
        return variant.moves.size();
    } catch (const ChessException&) {
        return 0;  // white is in check, and cannot pass
    }
}

// Lines of a position with played moves may begin at either end of them.
void CChecker::CheckVariants(const TChessProblem& problem, const std::vector<TMove>& played) {
    for (const auto& [name, variant] : problem.variants) {
        std::size_t length = LegalLength(problem, {}, variant);
        if (!played.empty())
            length = std::max(length, LegalLength(problem, played, variant));
        if (length < variant.moves.size())
            Warn(problem.number,
                 EMessage::kCpWarnVariant,
                 {name, std::to_string(length + 1), variant.moves[length].text});
    }
}

void CChecker::CheckMoves(const TChessProblem& problem) {
    const std::vector<TMove> played = problem.PlayedMoves();
    CPlayBoard root(*problem.position, false);
    for (const TMove move : problem.expectedSortWhiteMoves) {
        if (!IsLegal(root, move))
            Warn(problem.number, EMessage::kCpWarnExpectedSort, {RawMoveText(move)});
    }
    CPlayBoard board(*problem.position, false, static_cast<int>(played.size()));
    for (const TMove move : played)
        board.Play(move);
    for (const TMove stored : problem.answer) {
        if (!IsLegal(board, AnswerInNode(board.Node(), stored)))
            Warn(problem.number, EMessage::kCpWarnAnswer, {RawMoveText(stored)});
    }
    CheckVariants(problem, played);
}

// Each setting is laid over a board of its own, since a bad one must not hide the next.
void CChecker::CheckHeuristics(const TChessProblem& problem, bool isPlayable) {
    TChessboard kings{};
    InitBoard(kings);
    kings.m_board[SquareAt(4, 0)] = kWhiteKing;
    kings.m_board[SquareAt(4, 7)] = kBlackKing;
    ValidateBoard(kings, true);
    for (const auto& [bit, parameters] : problem.heuristicOverrides) {
        CPlayBoard board(isPlayable ? *problem.position : kings, false);
        try {
            ApplyHeuristicOverride(board.Node(), bit, {parameters.begin(), parameters.end()});
        } catch (const ChessException& fault) {
            Warn(problem.number,
                 EMessage::kCpWarnHeuristic,
                 {HeuristicName(bit), fault.Text(m_call.console.Language())});
        }
    }
}

void CChecker::CheckProblem(const TChessProblem& problem) {
    const std::string reason = ReasonNotPlayable(problem, m_call.console.Language());
    if (!reason.empty())
        Warn(problem.number, EMessage::kCpWarnPosition, {reason});
    else
        CheckMoves(problem);
    if (problem.type == kSelfmate)
        Warn(problem.number, EMessage::kCpWarnSelfmate);
    CheckHeuristics(problem, reason.empty());
}

void CChecker::CheckDoubles() {
    for (const TSamePosition& same : FindSamePositions(m_collection)) {
        const TChessProblem& a = *m_collection.Find(same.number);
        const TChessProblem& b = *m_collection.Find(same.sameAs);
        const bool isSameTask = a.type == b.type && a.maxHalfMoves == b.maxHalfMoves;
        Warn(same.number,
             isSameTask ? EMessage::kCpWarnDuplicate : EMessage::kCpWarnDuplicatePosition,
             {std::to_string(same.sameAs)});
    }
}

int CChecker::Run() {
    for (const auto& [number, problem] : m_collection.problems)
        CheckProblem(*problem);
    CheckDoubles();
    for (const std::string& loss : CpSaveLosses(m_call, m_file, m_collection)) {
        m_call.console.Print(loss + "\n");
        ++m_count;
    }
    return m_count;
}

}  // namespace

// One file with a fault does not keep the others from being looked at.
EExitCode RunCpCheck(const TCpCall& call) {
    EExitCode exitCode = kExitDone;
    for (const std::string& file : call.files) {
        TProblemCollection collection;
        try {
            ReadCollection(call.arguments, call.console, file, collection);
        } catch (const CPlacedException& fault) {
            call.console.Error(fault.Place() + ": " + fault.Text(call.console.Language()));
            exitCode = kExitBadInput;
            continue;
        } catch (const ChessException& fault) {
            if (fault.Id() != EMessage::kErrorOpeningFile)
                throw;
            call.console.Error(fault.Text(call.console.Language()));
            exitCode = kExitBadInput;
            continue;
        }
        const int warnings = CChecker(call, file, collection).Run();
        call.console.Note(call.console.Text(
            EMessage::kCpCheckSummary,
            {file, std::to_string(collection.problems.size()), std::to_string(warnings)}));
    }
    return exitCode;
}

}  // namespace quillmere
