#include "heuristics/parameter_reader.h"

#include "core/chess_exception.h"
#include "core/colour_swap.h"
#include "core/notation.h"
#include "core/play_board.h"
#include "core/text.h"
#include "heuristics/parameter_words.h"
#include "heuristics/pinned_figure.h"

#include <algorithm>
#include <limits>

namespace quillmere {
namespace {

// The parameters of the kind go back to their defaults, those that others read too unless kept.
void ResetParameters(EHeuristicParameters kind, bool doKeepShared, THeuristicChoice& choice) {
    using enum EHeuristicParameters;
    const THeuristicSettings defaults;
    THeuristicSettings& settings = choice.settings;
    if ((kind == kEdge || kind == kExtEdge) && !doKeepShared) {
        settings.EdgeSquaresInclCorner = false;
        settings.RelaxAfterCaptures = 0;
        settings.RelaxCapturesCountPawns = false;
        settings.RelaxOnAdvancedPawn = false;
        settings.DeferCheckMoves = 0;
        settings.DeferCheckLimit = 0;
        settings.RelaxOnlyExtEdge = false;
    }
    switch (kind) {
    case kNoParameters:
    case kZugzwangMoves:  // the position stays: it may be the problem's own
        break;
    case kEdge:
        settings.StrictKingMove = false;
        settings.KingMoveExceptions = false;
        break;
    case kExtEdge:
        settings.ExtEdgeStrict = false;
        break;
    case kOneColor:
        choice.OneColorMode = kOneColourOff;
        break;
    case kFigureOnDiagonal:
        settings.BlackFigureOnDiagonal = kNoSquare;
        break;
    case kBlockedFigures:
        ClearBlockedFigures(settings);
        break;
    case kForcedMate:
        settings.FfmMode = defaults.FfmMode;
        settings.FfmStartMode = defaults.FfmStartMode;
        settings.FfmPreliminary = false;
        settings.FfmCustom = false;
        break;
    case kLessExceptions:
        if (!doKeepShared)
            settings.LessExceptions = false;
        break;
    case kFile:
        choice.KeyLineFile = kNoSquare;
        break;
    case kDiagonal:
        std::ranges::fill(choice.KeyDiagonalSquares, kNoSquare);
        break;
    case kLoseFigures:
        settings.LoseFiguresMode = 0;
        break;
    case kKeySquare:
        settings.KeySquare = kNoSquare;
        break;
    case kSurrounded:
        settings.SurroundedStrict = false;
        break;
    case kKeyWhiteFigure:
        settings.KeyWhiteFigureSquare = kNoSquare;
        settings.KeyWhiteFigurePinned = kNoSquare;
        settings.KeyWhiteFigureChecked = false;
        break;
    case kNearCorner:
        settings.NearCornerDistance = 0;
        break;
    case kSeaSnake:
        settings.SeaSnakeApproach = kNoSquare;
        settings.SeaSnakeTurnBack = kNoSquare;
        settings.SeaSnakeByUser = false;
        break;
    }
}

// The parameters of one entry, and the faults that they may have.
class CParameterReader {
public:
    CParameterReader(const THeuristicRow& row,
                     const TChessboard& node,
                     THeuristicChoice& choice,
                     bool isSharedOn)
        : m_row(row), m_node(node), m_choice(choice), m_isSharedOn(isSharedOn) {}

    void Read(const std::vector<std::string>& parameters);

private:
    [[noreturn]] void Fail(EMessage id, const std::string& word) const {
        throw ChessException(id, {word, std::string(m_row.name)});
    }
    [[noreturn]] void FailUnknown(const std::string& word) const {
        Fail(EMessage::kHeuristicParameterUnknown, word);
    }

    [[noreturn]] void FailTooMany(const std::string& word, int limit) const {
        throw ChessException(EMessage::kHeuristicTooManyParameters,
                             {word, std::string(m_row.name), std::to_string(limit)});
    }

    u8 SquareOf(const std::string& word) const;
    int NumberOf(const std::string& word, std::string_view digits, int low, int high) const;
    // 1 and up for the words of a list behind its empty first one.
    template <std::size_t kCount>
    u8 IndexOf(const std::array<std::string_view, kCount>& words, const std::string& word) const;

    void ReadWord(const std::string& word, int index);
    void ReadEdgeWord(const std::string& word);
    void ReadExtEdgeWord(const std::string& word);
    void ReadSharedEdgeWord(const std::string& word);
    void ReadBlockedWord(const std::string& word);
    void ReadForcedMateWord(const std::string& word);
    void ReadFile(const std::string& word);
    void ReadDiagonal(const std::string& word, int index);
    void ReadNearCorner(const std::string& word);
    void ReadSeaSnake(const std::string& word, int index);
    void StoreZugzwangPosition();
    void Claim(char letter, const std::string& word);
    void SettleRelaxOnlyExtEdge();

    const THeuristicRow& m_row;
    const TChessboard& m_node;
    THeuristicChoice& m_choice;
    bool m_isSharedOn;
    bool m_hasRelaxations = false;
    std::string m_claimed;
    std::vector<std::string> m_zugzwangMoves;
    std::string m_deferLimit;
};

u8 SquareFromText(std::string_view text) {
    if (text.size() != 2 || !IsLetter(text[0]) || !IsDigit(text[1]))
        return kNoSquare;
    const int file = ToUpperLetter(text[0]) - 'A';
    const int rank = text[1] - '1';
    return file < 8 && rank >= 0 && rank < 8 ? static_cast<u8>(SquareAt(file, rank)) : kNoSquare;
}

bool HasRelaxations(const THeuristicSettings& settings) {
    return settings.RelaxAfterCaptures != 0 || settings.RelaxOnAdvancedPawn ||
           settings.DeferCheckMoves != 0;
}

// How many parameters at most.
int LimitOf(EHeuristicParameters parameters) {
    using enum EHeuristicParameters;
    switch (parameters) {
    case kNoParameters:
    case kZugzwangMoves:  // no limit
        return 0;
    case kDiagonal:
        return 2;
    case kForcedMate:
    case kSeaSnake:
        return 3;
    case kEdge:
    case kExtEdge:
        return 6;
    case kBlockedFigures:
        return 1 + kMaxBlockedFigures;
    default:
        return 1;
    }
}

u8 CParameterReader::SquareOf(const std::string& word) const {
    const u8 square = SquareFromText(word);
    if (square == kNoSquare)
        Fail(EMessage::kHeuristicSquareExpected, word);
    return square;
}

int CParameterReader::NumberOf(const std::string& word,
                               std::string_view digits,
                               int low,
                               int high) const {
    if (digits.empty() || !std::ranges::all_of(digits, IsDigit))
        FailUnknown(word);
    // Far above every limit, far below an overflow.
    constexpr int kEnough = 1000000;
    int number = 0;
    for (const char c : digits)
        number = std::min(number * 10 + (c - '0'), kEnough);
    if (number < low || number > high) {
        throw ChessException(
            EMessage::kHeuristicNumberOutOfRange,
            {word, std::string(m_row.name), std::to_string(low), std::to_string(high)});
    }
    return number;
}

template <std::size_t kCount>
u8 CParameterReader::IndexOf(const std::array<std::string_view, kCount>& words,
                             const std::string& word) const {
    for (u8 i = 1; i < kCount; ++i) {
        if (IsSameWord(word, words[i]))
            return i;
    }
    FailUnknown(word);
}

void CParameterReader::ReadEdgeWord(const std::string& word) {
    const bool isExceptions =
        IsSameWord(word, kWordAlmostStrict) || IsSameWord(word, kWordExceptions);
    if (!isExceptions && !IsSameWord(word, kWordStrictKing)) {
        ReadSharedEdgeWord(word);
        return;
    }
    m_choice.settings.StrictKingMove = true;
    if (isExceptions)
        m_choice.settings.KingMoveExceptions = true;
}

void CParameterReader::ReadExtEdgeWord(const std::string& word) {
    if (IsSameWord(word, kWordStrict))
        m_choice.settings.ExtEdgeStrict = true;
    else
        ReadSharedEdgeWord(word);
}

// A parameter with a number, or one of several words, can be given once only.
void CParameterReader::Claim(char letter, const std::string& word) {
    if (m_claimed.find(letter) != std::string::npos)
        Fail(EMessage::kHeuristicParameterTwice, word);
    m_claimed += letter;
}

// C2, C2f, A, D3, M5, incl.corner
void CParameterReader::ReadSharedEdgeWord(const std::string& word) {
    THeuristicSettings& settings = m_choice.settings;
    if (IsSameWord(word, kWordCorner)) {
        settings.EdgeSquaresInclCorner = true;
        return;
    }
    const char letter = ToUpperLetter(word[0]);
    std::string_view number = std::string_view(word).substr(1);
    if (letter == 'C') {
        const bool isFigures = !number.empty() && ToUpperLetter(number.back()) == 'F';
        if (isFigures)
            number.remove_suffix(1);
        settings.RelaxAfterCaptures =
            static_cast<u8>(NumberOf(word, number, 1, std::numeric_limits<u8>::max()));
        settings.RelaxCapturesCountPawns = !isFigures;
    } else if (letter == 'A' && number.empty()) {
        settings.RelaxOnAdvancedPawn = true;
    } else if (letter == 'D') {
        settings.DeferCheckMoves =
            static_cast<u16>(NumberOf(word, number, 1, std::numeric_limits<u16>::max()));
    } else if (letter == 'M') {
        settings.DeferCheckLimit =
            static_cast<u16>(NumberOf(word, number, 0, std::numeric_limits<u16>::max()));
        m_deferLimit = word;
    } else {
        FailUnknown(word);
    }
    Claim(letter, word);
    m_hasRelaxations = true;
}

void CParameterReader::ReadBlockedWord(const std::string& word) {
    if (IsSameWord(word, kWordEffective)) {
        m_choice.settings.BlockedFiguresEffective = true;
        return;
    }
    const u8 square = SquareOf(word);
    if (!AddBlockedFigure(m_choice.settings, square))
        FailTooMany(word, kMaxBlockedFigures);
}

// "#2-Preliminary-Custom", whole or in parts, each part with or without its hyphen.
void CParameterReader::ReadForcedMateWord(const std::string& word) {
    THeuristicSettings& settings = m_choice.settings;
    for (std::string_view rest = word; !rest.empty();) {
        const std::size_t hyphen = rest.find('-', 1);
        std::string_view part = rest.substr(0, hyphen);
        rest = hyphen == std::string_view::npos ? std::string_view() : rest.substr(hyphen);
        const bool isMode = part[0] != '-';
        part = StripBlanks(isMode ? part : part.substr(1));
        const auto mode = std::ranges::find_if(
            kFfmModeWords, [&](std::string_view known) { return IsSameWord(part, known); });
        if (IsSameWord(part, kWordPreliminary.substr(1))) {
            settings.FfmPreliminary = true;
        } else if (IsSameWord(part, kWordCustom.substr(1))) {
            settings.FfmCustom = true;
        } else if (isMode && mode != kFfmModeWords.end()) {
            Claim('#', word);
            settings.FfmMode = static_cast<u8>(mode - kFfmModeWords.begin() + kFirstFfmMode);
            settings.FfmStartMode = settings.FfmMode;
        } else {
            FailUnknown(word);
        }
    }
}

void CParameterReader::ReadFile(const std::string& word) {
    const int file = ToUpperLetter(word[0]) - 'A';
    if (word.size() != 1 || file < 0 || file > 7)
        Fail(EMessage::kHeuristicFileExpected, word);
    m_choice.KeyLineFile = static_cast<u8>(file);
}

// "A1-H8", or the two squares one by one.
void CParameterReader::ReadDiagonal(const std::string& word, int index) {
    u8(&squares)[2] = m_choice.KeyDiagonalSquares;
    const std::size_t hyphen = word.find('-');
    if (hyphen == std::string::npos) {
        squares[index] = SquareOf(word);
        return;
    }
    if (index != 0)
        FailUnknown(word);
    // One of the two may be missing where the other one was never set.
    const std::string_view texts[2] = {StripBlanks(std::string_view(word).substr(0, hyphen)),
                                       StripBlanks(std::string_view(word).substr(hyphen + 1))};
    for (int i = 0; i < 2; ++i) {
        if (!texts[i].empty() && SquareFromText(texts[i]) == kNoSquare)
            Fail(EMessage::kHeuristicSquareExpected, word);
        squares[i] = SquareFromText(texts[i]);
    }
}

void CParameterReader::ReadNearCorner(const std::string& word) {
    const char unit = ToUpperLetter(word.back());
    const std::string_view number = std::string_view(word).substr(0, word.size() - 1);
    if (unit == 'S')
        m_choice.settings.NearCornerDistance =
            static_cast<i8>(NumberOf(word, number, 1, kMaxCornerSquares));
    else if (unit == 'M')
        m_choice.settings.NearCornerDistance =
            static_cast<i8>(-NumberOf(word, number, 1, kMaxCornerMoves));
    else
        FailUnknown(word);
}

// The approach, the turn back, and how many moves come before. The moves themselves are not in the
// text: the number is only compared with those that the search context holds.
void CParameterReader::ReadSeaSnake(const std::string& word, int index) {
    if (index < 2) {
        u8& square =
            index == 0 ? m_choice.settings.SeaSnakeApproach : m_choice.settings.SeaSnakeTurnBack;
        square = SquareOf(word);
        m_choice.settings.SeaSnakeByUser = true;
        return;
    }
    const int count = NumberOf(word, word, 0, std::numeric_limits<u16>::max());
    if (static_cast<std::size_t>(count) != m_choice.onlyAfterCount) {
        throw ChessException(
            EMessage::kHeuristicOtherOnlyAfter,
            {word, std::string(m_row.name), std::to_string(m_choice.onlyAfterCount)});
    }
}

// The moves are the user's, so they are played on the user's board, which may be the other way up. The
// last one is the attacker's: it is the defender who is in zugzwang.
void CParameterReader::StoreZugzwangPosition() {
    if (m_zugzwangMoves.empty())
        return;
    const bool isSwapped = m_choice.areColoursSwapped;
    const bool isAttackerFirst = m_node.IsWhiteToMove();
    try {
        CPlayBoard board(isSwapped ? SwapColours(m_node) : m_node,
                         isSwapped == isAttackerFirst,
                         static_cast<int>(m_zugzwangMoves.size()));
        for (const std::string& text : m_zugzwangMoves) {
            TMove move{};
            ParseMove(board.Node(), move, text);
            board.Play(move);
        }
        if (board.IsBlackToMove() == isSwapped)
            throw ChessException(EMessage::kConflictZugzwangMove);
        const TChessboard& end = board.Node();
        for (int square = 0; square < kSquareCount; ++square) {
            m_choice.ZugzwangBoard[isSwapped ? SwapSquare(square) : square] =
                isSwapped ? SwapFigure(end.m_board[square]) : end.m_board[square];
        }
        m_choice.HasZugzwangPosition = true;
    } catch (const ChessException&) {
        throw ChessException(EMessage::kConflictZugzwangMove);
    }
}

void CParameterReader::ReadWord(const std::string& word, int index) {
    using enum EHeuristicParameters;
    THeuristicSettings& settings = m_choice.settings;
    const auto requireStrict = [&] {
        if (!IsSameWord(word, kWordStrict))
            FailUnknown(word);
        return true;
    };
    switch (m_row.parameters) {
    case kNoParameters:
        FailUnknown(word);
    case kEdge:
        return ReadEdgeWord(word);
    case kExtEdge:
        return ReadExtEdgeWord(word);
    case kOneColor:
        m_choice.OneColorMode = IndexOf(kOneColorWords, word);
        break;
    case kFigureOnDiagonal:
        settings.BlackFigureOnDiagonal = SquareOf(word);
        break;
    case kBlockedFigures:
        return ReadBlockedWord(word);
    case kForcedMate:
        return ReadForcedMateWord(word);
    case kLessExceptions:
        settings.LessExceptions = requireStrict();
        break;
    case kFile:
        return ReadFile(word);
    case kDiagonal:
        return ReadDiagonal(word, index);
    case kLoseFigures:
        settings.LoseFiguresMode = IndexOf(kLoseFiguresWords, word);
        break;
    case kKeySquare:
        settings.KeySquare = SquareOf(word);
        break;
    case kSurrounded:
        settings.SurroundedStrict = requireStrict();
        break;
    case kKeyWhiteFigure:
        settings.KeyWhiteFigureSquare = SquareOf(word);
        settings.KeyWhiteFigurePinned = TurnedSquare(
            m_choice,
            PinnedByKeyFigure(m_node, TurnedSquare(m_choice, settings.KeyWhiteFigureSquare)));
        break;
    case kNearCorner:
        return ReadNearCorner(word);
    case kSeaSnake:
        return ReadSeaSnake(word, index);
    case kZugzwangMoves:
        m_zugzwangMoves.push_back(word);
        break;
    }
}

// The relaxations are one group for both edge rules. When only the wide one names it, it is not
// meant for the narrow one.
void CParameterReader::SettleRelaxOnlyExtEdge() {
    using enum EHeuristicParameters;
    THeuristicSettings& settings = m_choice.settings;
    const bool areBothOn = (m_choice.heur & SH_KEEPKINGONTHEEDGE) != 0 &&
                           (m_choice.heur & SH_KEEPKINGWITHINEXTEDGE) != 0;
    if (!areBothOn || !HasRelaxations(settings))
        settings.RelaxOnlyExtEdge = false;
    else if (m_row.parameters == kEdge)
        settings.RelaxOnlyExtEdge = !m_hasRelaxations;
}

void CParameterReader::Read(const std::vector<std::string>& parameters) {
    const bool hadRelaxations = HasRelaxations(m_choice.settings);
    ResetParameters(m_row.parameters, m_isSharedOn, m_choice);
    const int limit = LimitOf(m_row.parameters);
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const std::string& word = parameters[i];
        if (word.empty())
            continue;
        if (limit > 0 && static_cast<int>(i) >= limit)
            FailTooMany(word, limit);
        for (std::size_t j = 0; j < i; ++j) {
            // A line may come back to a move.
            if (m_row.parameters != EHeuristicParameters::kZugzwangMoves &&
                IsSameWord(word, parameters[j]))
                Fail(EMessage::kHeuristicParameterTwice, word);
        }
        ReadWord(word, static_cast<int>(i));
    }
    if (m_claimed.find('M') != std::string::npos && m_claimed.find('D') == std::string::npos)
        Fail(EMessage::kHeuristicLimitWithoutDefer, m_deferLimit);
    StoreZugzwangPosition();
    m_choice.heur |= m_row.bit;
    if (m_row.parameters == EHeuristicParameters::kExtEdge && m_isSharedOn && !hadRelaxations &&
        m_hasRelaxations)
        m_choice.settings.RelaxOnlyExtEdge = true;
    SettleRelaxOnlyExtEdge();
}

// Another entry that is on reads the same parameters.
bool IsSharedOn(const THeuristicRow& row, u32 heur) {
    using enum EHeuristicParameters;
    constexpr u32 kEdgeRules = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE;
    constexpr u32 kPromotionRules = SH_DONTLETPROMOTEDQUEENMOVE | SH_DONTLETPROMOTEDFIGUREMOVE;
    const u32 others = heur & ~row.bit;
    if (row.parameters == kEdge || row.parameters == kExtEdge)
        return (others & kEdgeRules) != 0;
    return row.parameters == kLessExceptions && (others & kPromotionRules) != 0;
}

}  // namespace

void SwitchOnHeuristic(const THeuristicRow& row,
                       const std::vector<std::string>& parameters,
                       const TChessboard& node,
                       THeuristicChoice& choice) {
    CParameterReader(row, node, choice, IsSharedOn(row, choice.heur)).Read(parameters);
}

void SwitchOffHeuristic(const THeuristicRow& row, THeuristicChoice& choice) {
    choice.heur &= ~row.bit;
    if (row.parameters == EHeuristicParameters::kBlockedFigures ||
        row.parameters == EHeuristicParameters::kOneColor)
        ResetParameters(row.parameters, false, choice);
}

void SwitchOffAllHeuristics(THeuristicChoice& choice) {
    choice.heur = 0;
    for (const THeuristicRow& row : kHeuristicRows)
        ResetParameters(row.parameters, false, choice);
}

}  // namespace quillmere
