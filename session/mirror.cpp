#include "session/mirror.h"

#include "core/rights.h"
#include "core/text.h"
#include "heuristics/catalogue.h"
#include "heuristics/parameter_words.h"
#include "session/run_state.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillmere {
namespace {

// A free-standing board with the squares of the image; nothing derived but what rights need.
TChessboard MirrorSquares(const TChessboard& board) {
    TChessboard image{};
    InitBoard(image);
    for (int square = 0; square < kSquareCount; ++square)
        image.m_board[MirrorSquare(static_cast<u8>(square))] = board.m_board[square];
    return image;
}

char MirrorFileLetter(char letter) {
    return static_cast<char>((letter >= 'a' ? 'a' + 'h' : 'A' + 'H') - letter);
}

bool IsFileLetter(char c) {
    return ToUpperLetter(c) >= 'A' && ToUpperLetter(c) <= 'H';
}

void MirrorMoves(std::vector<TMove>& moves) {
    std::ranges::transform(moves, moves.begin(), MirrorMove);
}

void MirrorVariants(TVariants& variants) {
    for (auto& [name, variant] : variants) {
        for (TVariantMove& move : variant.moves) {
            move.move = MirrorMove(move.move);
            move.text = MirrorSquaresOfText(std::move(move.text));
        }
    }
}

void MirrorIndications(TSortIndications& indications) {
    for (auto& [moveNumber, list] : indications.byMoveNumber) {
        for (SortIndication& indication : list) {
            indication.from = MirrorSquare(indication.from);
            indication.to = MirrorSquare(indication.to);
        }
    }
}

void MirrorOverrides(std::map<u32, std::set<std::string>>& overrides) {
    for (auto& [heuristic, parameters] : overrides) {
        std::set<std::string> image;
        for (const std::string& parameter : parameters)
            image.insert(MirrorHeuristicParameter(heuristic, parameter));
        parameters = std::move(image);
    }
}

// Light squares become dark ones.
std::string_view MirrorColourWord(std::string_view word) {
    constexpr int kWhiteSquares = 1;
    constexpr int kBlackSquares = 2;
    if (IsSameWord(word, kOneColorWords[kWhiteSquares]))
        return kOneColorWords[kBlackSquares];
    if (IsSameWord(word, kOneColorWords[kBlackSquares]))
        return kOneColorWords[kWhiteSquares];
    return word;
}

}  // namespace

std::string MirrorSquaresOfText(std::string text) {
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        const bool isRank = text[i + 1] >= '1' && text[i + 1] <= '8';
        if (!IsFileLetter(text[i]) || !isRank)
            continue;
        text[i] = MirrorFileLetter(text[i]);
        ++i;
    }
    return text;
}

std::string MirrorHeuristicParameter(u32 heuristic, std::string_view parameter) {
    using enum EHeuristicParameters;
    const THeuristicRow* row = FindHeuristicRow(heuristic);
    if (row == nullptr)
        return std::string(parameter);
    switch (row->parameters) {
    case kOneColor:
        return std::string(MirrorColourWord(parameter));
    case kFile:
        if (parameter.size() == 1 && IsFileLetter(parameter[0]))
            return {MirrorFileLetter(parameter[0])};
        break;
    case kFigureOnDiagonal:
    case kBlockedFigures:
    case kDiagonal:
    case kKeySquare:
    case kKeyWhiteFigure:
    case kSeaSnake:
    case kZugzwangMoves:
        return MirrorSquaresOfText(std::string(parameter));
    default:
        break;
    }
    return std::string(parameter);
}

bool IsMirrorPossible(const TChessProblem& problem) {
    return problem.IsPositionValid() && DerivedCastlingRights(*problem.position) == 0 &&
           DerivedCastlingRights(MirrorSquares(*problem.position)) == 0;
}

CMirroredProblem::TOriginal CMirroredProblem::OriginalOf(const TChessProblem& problem) {
    TOriginal original{*problem.position,
                       problem.answer,
                       problem.expectedSortWhiteMoves,
                       problem.heuristicOverrides,
                       problem.variants,
                       problem.sortIndications,
                       problem.solvedRecord,
                       problem.description,
                       {},
                       problem.KeyLineFile,
                       problem.SeaSnakeOnlyAfter,
                       {}};
    std::ranges::copy(problem.KeyDiagonalSquares, original.keyDiagonalSquares);
    std::ranges::copy(problem.ZugzwangBoard, original.zugzwangBoard);
    return original;
}

CMirroredProblem::CMirroredProblem(TChessProblem& problem)
    : m_problem(problem), m_original(OriginalOf(problem)) {
    try {
        Mirror();
    } catch (...) {
        Restore();
        throw;
    }
}

void CMirroredProblem::Mirror() {
    m_problem.SetPosition(MirrorSquares(m_original.position).m_board);
    MirrorMoves(m_problem.answer);
    MirrorMoves(m_problem.expectedSortWhiteMoves);
    MirrorOverrides(m_problem.heuristicOverrides);
    MirrorVariants(m_problem.variants);
    MirrorIndications(m_problem.sortIndications);
    std::ranges::transform(
        m_problem.KeyDiagonalSquares, m_problem.KeyDiagonalSquares, MirrorSquare);
    m_problem.KeyLineFile = MirrorSquare(m_problem.KeyLineFile);
    MirrorMoves(m_problem.SeaSnakeOnlyAfter);
    for (int square = 0; square < kSquareCount; ++square)
        m_problem.ZugzwangBoard[MirrorSquare(static_cast<u8>(square))] =
            m_original.zugzwangBoard[square];
    m_problem.description.insert(0, kMirrorPrefix);
    RunStateOf(m_problem).isMirrorRun = true;
}

CMirroredProblem::~CMirroredProblem() {
    Restore();
}

void CMirroredProblem::Restore() {
    RunStateOf(m_problem).isMirrorRun = false;
    m_problem.GoToStart();
    *m_problem.position = m_original.position;
    m_problem.answer.swap(m_original.answer);
    m_problem.expectedSortWhiteMoves.swap(m_original.expectedSortWhiteMoves);
    m_problem.heuristicOverrides.swap(m_original.heuristicOverrides);
    m_problem.variants.swap(m_original.variants);
    std::swap(m_problem.sortIndications, m_original.sortIndications);
    std::swap(m_problem.solvedRecord, m_original.solvedRecord);
    m_problem.description.swap(m_original.description);
    std::ranges::copy(m_original.keyDiagonalSquares, m_problem.KeyDiagonalSquares);
    m_problem.KeyLineFile = m_original.keyLineFile;
    m_problem.SeaSnakeOnlyAfter.swap(m_original.seaSnakeOnlyAfter);
    std::ranges::copy(m_original.zugzwangBoard, m_problem.ZugzwangBoard);
}

}  // namespace quillmere
