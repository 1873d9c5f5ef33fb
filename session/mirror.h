// The mirror image of a problem, left to right: file f becomes 7 - f, ranks stay.
//
// A mate in n is one in its mirror image too, move by move, so that a second solve of the mirrored
// position tests everything that depends on the numbering of squares. For the image to be a true one,
// everything about squares is mirrored: the position, the answer, the expected order of first moves,
// the variants, the sort indications, and the squares, files and colours of squares that the settings
// of heuristics name.
//
// Castling has no mirror image: the king stands on the fourth file, and rooks go by different ways.
// Where a king and a rook stand at home in the position or would do so in its image, there is none.
#pragma once

#include "core/move.h"
#include "problems/chess_problem.h"

#include <string>
#include <string_view>

namespace quillmere {

// A value outside 0..63, as an unjudged move may have, keeps its rank likewise; kNoSquare stays.
constexpr u8 MirrorSquare(u8 square) {
    return square == kNoSquare ? square : static_cast<u8>(square ^ 7);
}
// Promotion, marks and the fourth byte stay.
constexpr TMove MirrorMove(TMove move) {
    return TMove{MirrorSquare(move.from), MirrorSquare(move.to), move.flags, move.enPassant};
}
// Each word of a letter a to h and a digit 1 to 8 in "Ka1-b2", in either case.
std::string MirrorSquaresOfText(std::string text);
// A parameter of the heuristic; words that name no square, file or colour stay.
std::string MirrorHeuristicParameter(u32 heuristic, std::string_view parameter);

constexpr std::string_view kMirrorPrefix = "Mirror: ";

// The position is legal, and neither it nor its image has a castling right.
bool IsMirrorPossible(const TChessProblem& problem);

// Holds a problem in its mirror image, with kMirrorPrefix before its description and isMirrorRun set
// in its run state, and gives everything back byte by byte at the end. The problem must be mirrorable
// and stand at its start; nobody else may use it meanwhile but for the solve.
class CMirroredProblem {
public:
    explicit CMirroredProblem(TChessProblem& problem);
    ~CMirroredProblem();
    CMirroredProblem(const CMirroredProblem&) = delete;
    CMirroredProblem& operator=(const CMirroredProblem&) = delete;

private:
    // What the image replaces.
    struct TOriginal {
        TChessboard position;
        std::vector<TMove> answer;
        std::vector<TMove> expectedSortWhiteMoves;
        std::map<u32, std::set<std::string>> heuristicOverrides;
        TVariants variants;
        TSortIndications sortIndications;
        TSolvedRecord solvedRecord;
        std::string description;
        u8 keyDiagonalSquares[2];
        u8 keyLineFile;
        std::vector<TMove> seaSnakeOnlyAfter;
        u8 zugzwangBoard[kSquareCount];
    };

    static TOriginal OriginalOf(const TChessProblem& problem);
    void Mirror();
    void Restore();

    TChessProblem& m_problem;
    TOriginal m_original;
};

}  // namespace quillmere
