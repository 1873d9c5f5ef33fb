// The steps of the choice, in their order.
//
// Two kinds of heuristics are told apart. What hardly ever costs a solution is turned on by the board
// alone and stands in every word. What restricts the play is a bet, and stands only where a trial under
// it saw the mate: under a word that fits the trial proves it at once, and under one that does not a
// whole pass would have been lost. Tasks under kTrialHalfMoves are over before a bet could pay, so that
// none is made there.
#include "heuristics/selection.h"

#include "core/material.h"
#include "core/search_context.h"
#include "core/thread_context.h"
#include "heuristics/block_finder.h"
#include "heuristics/conflicts.h"
#include "heuristics/corner_distance.h"
#include "heuristics/heur_params.h"
#include "heuristics/key_figures.h"
#include "heuristics/promotion_marks.h"
#include "heuristics/sea_snake_detector.h"
#include "heuristics/selection_small_material.h"
#include "heuristics/selection_tests.h"
#include "heuristics/selection_work.h"
#include "heuristics/zugzwang_triangles.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

// What the trials have in common with the word so far; the rest belongs to the candidates.
constexpr u32 kMildHeuristics = SH_AREKINGSNEAR | SH_DONTLETPROMOTEDQUEENMOVE | SH_SAVEQUEENROOK |
                                SH_DONTLETBLACKQUEENCHECKTWICE | SH_3MOVESTOMATE |
                                SH_DONTLETPROMOTEDFIGUREMOVE | SH_REDUCTIONTOGLOBREGPOS;

class CSelection {
public:
    CSelection(TChessboard& root, const TSelectionRequest& request, TSelectionRecord& record)
        : m_root(root),
          m_record(record),
          m_work(root,
                 FindSelectionFacts(root, request.moveCount, request.forcedMoves),
                 request,
                 record),
          m_facts(m_work.Facts()) {}

    void Run() {
        Reset();
        StartWord();
        FindSeaSnake();
        TurnOnThreeMoves();
        ChooseForSmallMaterial();
        NoteClass();
        FindBlocked();
        SetDynamicRelaxation();
        ChooseForcedMate();
        SaveHeavyFigures();
        HoldPromotedFigures();
        KeepKingNear();
        LetQueenCheckOnce();
        ChooseEdge();
        LoseNothing();
        ComeBackToZugzwang();
        HoldInCorner();
        UseKeyFigures();
        SweepWithRook();
        TryWords();
        CleanWord();
    }

private:
    THeuristicSettings& Settings() { return m_work.Settings(); }
    u32 Base() const { return m_root.Heur & kMildHeuristics; }
    // The word may still change: under the one that saw a mate it is proved.
    bool IsOpen() { return m_work.MayAssume() && !m_work.Trials().HasSeenMate(); }
    // Bets are made, too: there is no plan that stands.
    bool MayBet() { return IsOpen() && !m_work.Has(SH_SEASNAKE); }

    // Lays `setUp` over what stands in every word and tries it: the bet stands if the trial sees a
    // mate, else all is as it was. `setUp` answers whether there is something to bet on.
    template <class SetUp>
    void Bet(u32 bit, EMessage reason, SetUp setUp, std::vector<std::string> values = {}) {
        if (!MayBet())
            return;
        const TChessboard keptNode = m_root;
        const THeuristicSettings keptSettings = Settings();
        SetHeur(m_root, Base());
        const bool isSetUp = setUp(m_root);
        SetHeur(m_root, m_root.Heur | (isSetUp ? bit : 0));
        if (isSetUp && m_work.Trials().TryWord()) {
            m_work.Explain(bit, reason, std::move(values));
            return;
        }
        m_root = keptNode;
        Settings() = keptSettings;
    }

    // Step 1
    void Reset() {
        THeuristicSettings& s = Settings();
        s.StrictKingMove = true;
        s.KingMoveExceptions = false;
        s.NearCornerDistance = 0;
        s.ExtEdgeStrict = false;
        s.SurroundedStrict = false;
        s.RelaxAfterCaptures = 0;
        s.RelaxCapturesCountPawns = false;
        s.RelaxOnAdvancedPawn = false;
        s.LoseFiguresMode = 0;
        s.ApplyBlockDynamically = true;
        s.BlackFigureOnDiagonal = kNoSquare;
        s.FfmWithOther = -1;
        s.SeaSnakePendulum1 = s.SeaSnakePendulum2 = kNoSquare;
        s.SeaSnakeApproach = s.SeaSnakeTurnBack = kNoSquare;
        s.SeaSnakeByUser = false;
        m_root.m_searchContext->SeaSnakeOnlyAfter.clear();
    }

    // Step 2. There are no precalculated endings that a position could be reduced to.
    void StartWord() { SetHeur(m_root, 0); }

    // Step 3. What it finds stands: nothing below takes it off.
    void FindSeaSnake() {
        if (m_facts.halfMoves < kSeaSnakeHalfMoves)
            return;
        TSeaSnakeSquares squares;
        SeaSnakeDetect(m_root, squares, m_facts.halfMoves);
        if (squares.approach == kNoSquare)
            return;
        StoreSeaSnake(m_root, squares);
        m_work.Explain(SH_SEASNAKE, EMessage::kReasonSeaSnake);
    }

    // Step 4. The rule looks at white nodes three moves before the end that stand behind a reply.
    void TurnOnThreeMoves() {
        constexpr int kLeastHalfMoves = 7;
        if (!m_work.Has(SH_SEASNAKE) && m_facts.halfMoves >= kLeastHalfMoves)
            m_work.TurnOn(SH_3MOVESTOMATE, EMessage::kReasonThreeMoves);
        TThreadContext& thread = *m_root.m_threadContext;
        thread.rootWhiteMaterial = static_cast<u16>(m_facts.whiteMaterial);
        thread.rootBlackMaterial = static_cast<u16>(m_facts.blackMaterial);
        thread.rootMovableBlackMen = static_cast<u8>(m_facts.movableBlackMen);
    }

    // Step 5. A promotion may bring the figure that mates alone.
    void ChooseForSmallMaterial() {
        if ((m_facts.classWord & kClassSmallMaterial) == 0)
            return;
        const u32 added = SelectForSmallMaterial(m_work);
        if (IsPromotionAhead(m_root))
            m_work.TurnOff(added & SH_AREKINGSNEAR);
    }

    // Step 6
    void NoteClass() {
        constexpr u32 kSame = kClassManyReplies | kClassBareKing;
        m_root.m_positionFlags |= static_cast<u16>(m_facts.classWord & kSame);
        if ((m_facts.classWord & kClassTied) != 0)
            m_root.m_positionFlags |= kPositionTied;
    }

    // Step 7
    void FindBlocked() {
        const bool isWhiteWeak = m_facts.WhiteHeavy() < 3;
        const bool isBlackStrong = 3 * m_facts.blackMaterial > 2 * m_facts.whiteMaterial;
        if (m_facts.halfMoves < kBlockFinderHalfMoves || m_work.Has(SH_DONTLETFIGUREUNBLOCK) ||
            !(isWhiteWeak || isBlackStrong))
            return;
        m_work.FindBlockedFigures();
        Bet(SH_DONTLETFIGUREUNBLOCK, EMessage::kReasonBlocked, [this](TChessboard&) {
            return m_work.UseBlockedFigures();
        });
    }

    // Step 8
    void SetDynamicRelaxation() {
        const u8* c = m_root.m_counts;
        const int minors = c[kBlackBishops] + c[kBlackKnights];
        if (c[kBlackRooks] != 1 || c[kBlackQueens] != 0 || minors == 0 || m_facts.whiteFigures != 1)
            return;
        if (m_facts.whiteQueens == 1) {
            Settings().RelaxAfterCaptures = static_cast<u8>(minors + 1);
            Settings().DeferCheckMoves = 0;
        } else if (minors == 1) {
            Settings().RelaxAfterCaptures = 1;
        }
    }

    // Step 9
    void ChooseForcedMate() {
        constexpr int kLongTask = 10;
        constexpr u8 kThreatOfOne = 3;
        THeuristicSettings& s = Settings();
        s.FfmCustom = false;
        s.FfmPreliminary = false;
        if (m_facts.halfMoves <= kLongTask || !MayBet())
            return;
        if (m_work.Trials().TryOnce(CheckCandidates(), Base())) {
            m_work.ExplainCandidate(EMessage::kReasonTrial);
            return;
        }
        if ((m_facts.classWord & kClassForcedMates) == 0 || !HasFewQuietMoves())
            return;
        Bet(SH_FINDFORCEDMATE,
            EMessage::kReasonForcedMate,
            [&](TChessboard&) {
                s.FfmMode = s.FfmStartMode = kThreatOfOne;
                s.FfmRelaxations = m_facts.forcedMoves >= 2 && m_facts.movableBlackMen > 3 ? 1 : 0;
                return true;
            },
            {std::to_string(m_facts.moveCount), std::to_string(m_facts.QuietMoves())});
    }

    bool HasFewQuietMoves() const {
        return m_facts.moveCount > 0 && 3 * m_facts.QuietMoves() <= m_facts.moveCount;
    }

    // Step 10
    void SaveHeavyFigures() {
        const int heavy = m_facts.WhiteHeavy();
        const bool isNear = m_facts.kingDistance <= 2 || !IsFortress(m_facts);
        if (heavy < 1 || heavy > 2 || !IsOpen() || !isNear || !CanAttackHeavyFigures(m_root))
            return;
        m_work.TurnOn(SH_SAVEQUEENROOK, EMessage::kReasonSaveHeavy, {std::to_string(heavy)});
    }

    // Step 11
    void HoldPromotedFigures() {
        if (!IsOpen() || !CanBlackPromote(m_root, m_facts))
            return;
        const int majors = m_root.m_counts[kBlackQueens] + m_root.m_counts[kBlackRooks];
        const bool isBehind = m_facts.whiteMaterial < m_facts.blackMaterial;
        const bool anyFigure = majors <= 1 && (m_facts.whiteQueens == 0 || isBehind);
        m_work.TurnOn(anyFigure ? SH_DONTLETPROMOTEDFIGUREMOVE : SH_DONTLETPROMOTEDQUEENMOVE,
                      EMessage::kReasonPromotion);
    }

    // Step 12
    void KeepKingNear() {
        if ((m_facts.classWord & kClassKingOnEdge) == 0 && MayBet() &&
            IsWhiteKingNeeded(m_root, m_facts))
            Bet(SH_DONTRECEDEBLACKKING, EMessage::kReasonRecede, [](TChessboard&) { return true; });
    }

    // Step 13. On where there is a queen that can reach a check.
    void LetQueenCheckOnce() {
        if (MayBet() && CanQueenCheck(m_root))
            m_work.TurnOn(SH_DONTLETBLACKQUEENCHECKTWICE, EMessage::kReasonQueenChecks);
    }

    // Step 14
    void ChooseEdge() {
        if (MayBet() && m_work.Trials().TryOnce(EdgeCandidates(), Base()))
            m_work.ExplainCandidate(EMessage::kReasonTrial);
    }

    // Step 15
    void LoseNothing() {
        if (!MayBet() || !NeedsItsFigures(m_root, m_facts) || !IsWhiteFigureEnPrise(m_root))
            return;
        constexpr u8 kPawnsToo = 1;
        constexpr u8 kPromotablePawns = 2;
        const u8 pawns = m_root.m_counts[kWhitePawns];
        Bet(SH_DONTLOSEANYFIGURES, EMessage::kReasonLoseNothing, [&](TChessboard&) {
            Settings().LoseFiguresMode = pawns == 0                 ? u8{0}
                                         : IsPromotionAhead(m_root) ? kPromotablePawns
                                                                    : kPawnsToo;
            return true;
        });
    }

    // Step 16
    void ComeBackToZugzwang() {
        if (!m_root.m_searchContext->HasZugzwangPosition)
            return;
        m_work.TurnOff(SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE);
        m_work.TurnOn(SH_ZUGZWANG, EMessage::kReasonZugzwang);
    }

    // Step 17
    void HoldInCorner() {
        const i8 distance = MayBet() ? CornerDistance(m_root) : i8{0};
        if (distance == 0)
            return;
        Bet(SH_KEEPKINGNEARCORNER, EMessage::kReasonCorner, [&](TChessboard& node) {
            Settings().NearCornerDistance = distance;
            constexpr u32 kReplaced =
                SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE | SH_DONTLETPROMOTEDFIGUREMOVE;
            SetHeur(node, node.Heur & ~kReplaced);
            return true;
        });
    }

    // Step 18
    void UseKeyFigures() {
        Bet(SH_KEYWHITEFIGURE, EMessage::kReasonKeyFigure, UseKeyWhiteFigure);
        Bet(SH_KEYSQUARE, EMessage::kReasonKeySquare, UseKeySquare);
        Bet(SH_ZUGZWANGTRIANGLES, EMessage::kReasonTriangles, [this](TChessboard& node) {
            return FindZugzwangTriangle(node, Settings().ZugzwangTriangleSquares);
        });
    }

    // Step 19. The rook must be free of other plans.
    void SweepWithRook() {
        if (!MayBet() || !SuitsSweepingRook(m_root))
            return;
        Bet(SH_SWEEPINGWHITEROOK, EMessage::kReasonSweepingRook, [](TChessboard& node) {
            SetHeur(node, node.Heur & ~u32{SH_KEYWHITEFIGURE | SH_FINDFORCEDMATE});
            return true;
        });
    }

    // Before the last step: the portfolio. Under a word that was chosen here the mate is proved.
    void TryWords() {
        CSelectionTrials& trials = m_work.Trials();
        if (!MayBet())
            return;
        const u32 base = Base();
        if (trials.TryInRounds(CandidateWords(), base)) {
            m_work.ExplainCandidate(EMessage::kReasonTrial);
            return;
        }
        // Nothing was seen: what the trials had in common is suspect too, and any word costs the exact
        // entries of the register.
        if (trials.HasTried())
            m_work.TurnOff(base);
        // A word that was refuted is no bet for a pass. One that was not is, where a pass without
        // heuristics is out of reach anyway.
        const TCandidateWord* const row = trials.Undecided(CandidateWords());
        if (row == nullptr || !IsOutOfReach(m_facts))
            return;
        TakeCandidate(m_root, *row, base, m_facts);
        m_work.ExplainCandidate(EMessage::kReasonUndecided);
    }

    // Step 20
    void CleanWord() {
        THeuristicSettings& s = Settings();
        if (m_work.Has(SH_ASSERTBLACKKINGSURROUNDED))
            m_work.TurnOff(SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE);
        if (m_work.Has(SH_SEASNAKE))
            m_work.TurnOff(SH_FINDFORCEDMATE);
        if (!m_work.Has(SH_KEEPKINGONTHEEDGE))
            s.StrictKingMove = false, s.KingMoveExceptions = false;
        if (m_work.Has(SH_KEEPKINGONTHEEDGE) && s.StrictKingMove)
            m_work.TurnOff(SH_KEEPKINGWITHINEXTEDGE);
        if (!m_work.Has(SH_DONTLETFIGUREUNBLOCK))
            m_work.ForgetBlockedFigures();
        // Nothing that is left may be refused by the check of words that users give.
        if (m_root.Heur != 0 &&
            FindHeuristicConflict(m_root.Heur, s, *m_root.m_searchContext, m_root).has_value())
            m_work.TurnOff(~kMildHeuristics);
        SetHeur(m_root, m_root.Heur);
        if (m_root.Heur != 0)
            MarkPromotions(m_root);
        m_work.Tell();
        if (m_root.Heur == 0)
            m_record.whyNothing =
                m_work.MayAssume() ? EMessage::kReasonNothingFits : EMessage::kReasonTooShort;
    }

    TChessboard& m_root;
    TSelectionRecord& m_record;
    CSelectionWork m_work;
    const TSelectionFacts& m_facts;
};

}  // namespace

u16 SelectHeuristics(TChessboard& node,
                     const TSelectionRequest& request,
                     TSelectionRecord& record) {
    record = {};
    record.wasMade = true;
    const u64 before = node.m_threadContext->madeMoves;
    if (node.m_nMoves >= kSelectionHalfMoves)
        CSelection(node, request, record).Run();
    else
        record.whyNothing = EMessage::kReasonTooShort;
    record.madeMoves = node.m_threadContext->madeMoves - before;
    return node.m_positionFlags;
}

void TellSettings(const TChessboard& node, u32 chosen, TSelectionRecord& record) {
    if (node.Heur == chosen)
        return;
    const std::vector<TChosenHeuristic> before = std::move(record.heuristics);
    record.heuristics.clear();
    for (u32 bit = 1; bit != 0; bit <<= 1) {
        if ((node.Heur & bit) == 0)
            continue;
        const auto old = std::find_if(before.begin(), before.end(), [bit](const auto& heuristic) {
            return heuristic.bit == bit;
        });
        TChosenHeuristic told;
        if (old != before.end())
            told = *old;
        else
            told = {bit, {}, EMessage::kReasonPredefined, {}};
        told.text = HeuristicTextOf(node, bit);
        record.heuristics.push_back(told);
    }
    record.whyNothing = record.heuristics.empty() ? EMessage::kReasonPredefined : EMessage::kCount;
}

u16 SelectHeuristics(TChessboard& node, int moveCount, int forcedMoves) {
    TSelectionRecord record;
    return SelectHeuristics(node, {moveCount, forcedMoves, nullptr}, record);
}

}  // namespace quillmere
