#include "heuristics/unset_patterns.h"

#include "core/thread_context.h"
#include "heuristics/heur_params.h"
#include "heuristics/sea_snake_detector.h"
#include "heuristics/zugzwang_triangles.h"

#include <algorithm>

namespace quillmere {

void FindUnsetPatterns(TChessboard& root) {
    THeuristicSettings& settings = root.m_threadContext->heuristics;
    if ((root.Heur & SH_SEASNAKE) != 0 && settings.SeaSnakeApproach == kNoSquare &&
        settings.SeaSnakeTurnBack == kNoSquare) {
        TSeaSnakeSquares squares;
        SeaSnakeDetect(root, squares, root.m_nMoves);
        StoreSeaSnake(root, squares);
    }
    u8(&triangle)[2] = settings.ZugzwangTriangleSquares;
    if ((root.Heur & SH_ZUGZWANGTRIANGLES) != 0 && triangle[0] == kNoSquare &&
        triangle[1] == kNoSquare) {
        FindZugzwangTriangle(root, triangle);
        ComputeHeurParams(root);
    }
}

}  // namespace quillmere
