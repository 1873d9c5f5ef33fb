#include "core/search_context.h"
#include "heuristics/conflicts.h"
#include "heuristics/heuristics_parser.h"
#include "tests/support/search_board.h"

#include <functional>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

using test::CSearchBoard;

// The rook on b1 pins the knight on b6.
constexpr const char* kBoard = "1k6/8/pn6/8/8/8/8/RR5K";

std::string ConflictOf(u32 heur, const std::function<void(CSearchBoard&)>& change) {
    CSearchBoard board(kBoard, 3);
    change(board);
    const auto conflict =
        FindHeuristicConflict(heur, board.Thread().heuristics, board.Context(), board.Root());
    return conflict ? FormatMessage(conflict->message, ELanguage::kEnglish, conflict->values) : "";
}

TEST(FindHeuristicConflict, Conflicts_AreToldInTheirWords) {
    using TChange = std::function<void(THeuristicSettings&, TSearchContext&)>;
    const struct {
        u32 heur;
        TChange change;
        const char* text;
    } rows[] = {
        {SH_KEEPKINGONTHEEDGE,
         [](auto& s, auto&) { s.KingMoveExceptions = true; },
         "Heuristics 'Don't let black king move' is off, while 'allow exc' is on.\nIt requires "
         "correction."},
        {SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE,
         [](auto& s, auto&) { s.StrictKingMove = true; },
         "Conflict of heuristics (\"Don't let black king move\" and \"Don't let black king out of "
         "the edge and/or ext.edge\") "},
        {SH_KEEPKINGNEARCORNER,
         [](auto&, auto&) {},
         "Invalid maximum distance from corner in the parameter of heuristics 'Keep king near "
         "corner'"},
        {SH_KEEPKINGNEARCORNER,
         [](auto& s, auto&) { s.NearCornerDistance = 6; },
         "Invalid maximum distance from corner in the parameter of heuristics 'Keep king near "
         "corner'"},
        {SH_KEEPKINGNEARCORNER,
         [](auto& s, auto&) { s.NearCornerDistance = -3; },
         "Invalid maximum distance from corner in the parameter of heuristics 'Keep king near "
         "corner'"},
        {SH_KEEPKINGONTHEEDGE,
         [](auto& s, auto&) { s.RelaxAfterCaptures = 16; },
         "Invalid number of figures to capture for relaxation of edge heuristics"},
        {SH_KEEPKINGONTHEEDGE,
         [](auto& s, auto&) { s.DeferCheckMoves = 32768; },
         "Invalid number of moves to defer"},
        {SH_KEEPKINGONTHEEDGE,
         [](auto& s, auto&) { s.DeferCheckMoves = 3; },
         "Defer check is meaningful only when 'on advanced pawn' or 'on figure captured' "
         "selected."},
        {SH_DONTLOSEANYFIGURES,
         [](auto& s, auto&) { s.LoseFiguresMode = 3; },
         "Only one of additional options of Don't lose any figures (incl. pawns + incl.promotable "
         "pawns) can be selected."},
        {SH_DONTLEAVEMAINDIAGONAL,
         [](auto& s, auto&) { s.BlackFigureOnDiagonal = 0; },
         "Improper field (Black figure not let leave main diagonal)"},
        {SH_DONTLETFIGUREUNBLOCK,
         [](auto& s, auto&) {
             s.BlockedFigureCount = 2;
             s.BlockedFigureSquares[0] = 40;
             s.BlockedFigureSquares[1] = 20;
         },
         "Improper field: Figure not let unblock #2"},
        {SH_KEYWHITEFIGURE, [](auto&, auto&) {}, "Invalid key white figure"},
        {SH_KEYWHITEFIGURE,
         [](auto& s, auto&) { s.KeyWhiteFigureSquare = 0; },
         "Invalid key white figure (pinned piece not found)"},
        {SH_KEYLINE, [](auto&, auto&) {}, "Invalid field Key line"},
        {SH_KEYDIAGONAL, [](auto&, auto&) {}, "Invalid field Key diagonal"},
        {SH_KEYDIAGONAL,
         [](auto&, auto& c) {
             c.KeyDiagonalSquares[0] = 0;
             c.KeyDiagonalSquares[1] = 10;
         },
         "Invalid field Key diagonal"},
        {SH_FINDFORCEDMATE,
         [](auto& s, auto&) { s.FfmMode = 4, s.FfmRelaxations = 6; },
         "Number of heuristics relaxations for FFM is too large (max = 5)"},
        {SH_FINDFORCEDMATE,
         [](auto& s, auto&) { s.FfmMode = 9, s.FfmCustom = true, s.FfmCustomRelaxations = 1; },
         "Number of heuristics relaxations for FFM is too large (max = 0)"},
        {SH_FINDFORCEDMATE | SH_SEASNAKE,
         [](auto&, auto&) {},
         "FindForcedMate cannot be used together with SeaSnake."},
        {SH_ZUGZWANG, [](auto&, auto&) {}, "Invalid move for SH_ZUGZWANG"},
        {0, [](auto&, auto&) {}, "No heuristics selected."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ConflictOf(row.heur,
                             [&](CSearchBoard& board) {
                                 row.change(board.Thread().heuristics, board.Context());
                             }),
                  row.text);
    }
}

TEST(FindHeuristicConflict, SoundSettings_HaveNone) {
    const char* const texts[] = {
        "SH_DONTLETKINGMOVE(excptns)",
        "SH_KEEPKINGONTHEEDGE(C15,D3), SH_KEEPKINGWITHINEXTEDGE(C15,D3)",
        "SH_KEEPKINGWITHINEXTEDGE(A,D32767)",
        "SH_KEEPKINGNEARCORNER(5S)",
        "SH_KEEPKINGNEARCORNER(2M)",
        "SH_DONTLOSEANYFIGURES(incl.pawnsBeforePromo)",
        "SH_DONTLEAVEMAINDIAGONAL(B6)",
        "SH_DONTLETFIGUREUNBLOCK(A6,B6)",
        "SH_KEYWHITEFIGURE(B1)",
        "SH_KEYLINE(H)",
        "SH_KEYDIAGONAL(H1-A8)",
        "SH_FINDFORCEDMATE",
        "SH_SEASNAKE",
    };
    for (const char* const text : texts) {
        CSearchBoard board(kBoard, 3);
        ParseHeuristics(board.Root(), text);
        EXPECT_FALSE(FindHeuristicConflict(
            board.Root().Heur, board.Thread().heuristics, board.Context(), board.Root()))
            << text;
    }
    EXPECT_EQ(ConflictOf(SH_ZUGZWANG,
                         [](CSearchBoard& board) { board.Context().HasZugzwangPosition = true; }),
              "");
}

}  // namespace
}  // namespace quillmere
