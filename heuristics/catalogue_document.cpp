#include "heuristics/catalogue_document.h"

#include "heuristics/catalogue.h"

#include <cstdio>

namespace quillmere {
namespace {

constexpr const char* kHead =
    "<!-- Made by quillmere_generate_docs from heuristics/catalogue.def. Do not edit. -->\n"
    "# Heuristics\n"
    "\n"
    "A heuristic is an assumption about what the solution of a composition looks like. While it is "
    "on, a\n"
    "line that breaks the assumption is not searched further. So a pass with heuristics may find a "
    "mate\n"
    "quickly, and a mate that it finds is a mate; but \"no mate\" is proved by a pass without them "
    "only.\n"
    "\n"
    "Without a word from the user the program chooses one (`--heuristics auto`). Heuristics that "
    "hardly ever\n"
    "cost a solution are taken by the look of the board. Those that restrict the play are tried "
    "first, the\n"
    "strict and cheap ones before the others, and one stands only if a trial under it saw the "
    "mate. So the\n"
    "choice never changes an answer; it is the same in every run, and `--explain` tells its "
    "reasons.\n"
    "Long tasks begin with a proof-number search without heuristics; where it decides the task "
    "nothing is\n"
    "chosen. It makes the trials too, and goes on under the chosen heuristics before the passes.\n"
    "\n"
    "In texts a choice of heuristics is a list of names, parted by commas, with parameters in "
    "brackets:\n"
    "\n"
    "    SH_KEEPKINGONTHEEDGE(STRICT,C2f,A,D3,M5), SH_FINDFORCEDMATE(#2-Preliminary)\n"
    "\n"
    "- Names and parameters may be written in capital or small letters, with blanks between them. "
    "Squares\n"
    "  are those of the board as it was given.\n"
    "- `SH_DONTLETKINGMOVE` is `SH_KEEPKINGONTHEEDGE(STRICT)`, and `SH_DONTLETKINGMOVE(excptns)` "
    "is\n"
    "  `SH_KEEPKINGONTHEEDGE(ALMOST_STRICT)`. Their label is \"Don't let bl.king move (unless "
    "immed.mate)\",\n"
    "  with \"allow exc\" for the latter; that of `SH_KEEPKINGWITHINEXTEDGE(strict)` is \"Don't "
    "let bl.king\"\n"
    "  \"move unless on the edge\".\n"
    "- `QuickMode` behind the list says that the pass is an ordinary one with heuristics, not one "
    "in safe\n"
    "  mode, which takes nothing for settled while a heuristic is on. "
    "`(CannotApplyDLFUDynamically)` says\n"
    "  that the program must not apply `SH_DONTLETFIGUREUNBLOCK` on its own.\n"
    "- Both edge rules share `incl.corner` and their relaxations: `C2` lets the king go once black "
    "has lost\n"
    "  two men more than white since the start, pawns included, `C2f` two figures more; `A` once a "
    "white\n"
    "  pawn is far advanced; `D3,M5` puts the test off by 3 moves, so that it falls due below 5 "
    "half-moves.\n"
    "  Relaxations that only `SH_KEEPKINGWITHINEXTEDGE` names are for it alone.\n"
    "- For `SH_SEASNAKE` without squares, and for `SH_ZUGZWANGTRIANGLES`, which has none in texts, "
    "`solve`\n"
    "  looks for the squares itself; where it finds none the heuristic leaves nothing out.\n"
    "\n"
    "| Name | Bit | Label | Parameters | Assumption |\n"
    "|---|---|---|---|---|\n";

const char* ParametersOf(EHeuristicParameters parameters) {
    using enum EHeuristicParameters;
    switch (parameters) {
    case kNoParameters:
        break;
    case kEdge:
        return "`STRICT` or `ALMOST_STRICT`; `incl.corner`; relaxations";
    case kExtEdge:
        return "relaxations; `incl.corner`; `strict`";
    case kOneColor:
        return "`WhiteSquaresOnly`, `BlackSquaresOnly` or `SeparatedBlackBishop`";
    case kFigureOnDiagonal:
        return "square of a black figure on the diagonal, `A1`";
    case kBlockedFigures:
        return "`EFF`; one to eight squares, `A7,B6`";
    case kForcedMate:
        return "`CheckOnly`, `#1`, `#1+`, `#2`, `#2+`, `#3`, `#4` or `#5`; `-Preliminary`; "
               "`-Custom`";
    case kLessExceptions:
    case kSurrounded:
        return "`strict`";
    case kFile:
        return "file, `A` to `H`";
    case kDiagonal:
        return "two squares, `A1-H8`";
    case kLoseFigures:
        return "`incl.pawns` or `incl.pawnsBeforePromo`";
    case kKeySquare:
        return "square, `A1`";
    case kKeyWhiteFigure:
        return "square of the white figure, `A1`";
    case kNearCorner:
        return "`1S` to `5S` squares, or `1M` or `2M` moves away";
    case kSeaSnake:
        return "squares of the approach and of the turn back, `C3,D4`; number of moves played "
               "before";
    case kZugzwangMoves:
        return "the moves from the start that lead to it, `Kd3-e3,Kb8-a8,Ke3-d3`";
    }
    return "none";
}

std::string Text(EMessage id) {
    return std::string(MessageText(id, ELanguage::kEnglish));
}

std::string LabelOf(const THeuristicRow& row) {
    if (row.label == EMessage::kCount)
        return "none";
    const std::string label = '"' + Text(row.label) + '"';
    return row.choice == EMessage::kCount ? label : label + " \"" + Text(row.choice) + '"';
}

std::string HexText(u32 bit) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%x", bit);
    return text;
}

}  // namespace

std::string HeuristicsDocument() {
    std::string document = kHead;
    for (const THeuristicRow& row : kHeuristicRows) {
        document += "| `" + std::string(row.name) + "` | " + HexText(row.bit) + " | " +
                    LabelOf(row) + " | " + ParametersOf(row.parameters) + " | " + Text(row.help) +
                    " |\n";
    }
    return document;
}

}  // namespace quillmere
