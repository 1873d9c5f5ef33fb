// Laws of the text forms, over random positions and random texts. Every failure names its seed
// and position.

#include "core/chess_exception.h"
#include "core/chessboard_id.h"
#include "core/fen.h"
#include "core/legality.h"
#include "core/notation.h"
#include "tests/support/game_line.h"
#include "tests/support/random.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using test::CGameLine;
using test::CRandom;

constexpr u64 kSeed = 20240611;

std::vector<TMove> LegalMovesOf(TChessboard& node) {
    TMoveList list;
    list.count = GetLegalMoves(node, list.moves);
    return {list.begin(), list.end()};
}

bool SameBoard(const TChessboard& a, const TChessboard& b) {
    return std::memcmp(a.m_board, b.m_board, sizeof(a.m_board)) == 0;
}

// A board with any of the twelve codes, kings included, on any square: what identifiers and the
// board field of a FEN code carry, legal or not.
TChessboard RandomBoard(CRandom& random) {
    constexpr u8 kKinds[6] = {kKing, kPawn, kBishop, kRook, kQueen, kKnight};
    TChessboard board;
    InitBoard(board);
    const int density = random.Below(65);
    for (u8& square : board.m_board) {
        if (random.Below(64) < density)
            square = (random.Below(2) != 0 ? kWhite : kBlack) | kKinds[random.Below(6)];
    }
    return board;
}

// Starts of random games: the usual one, and some rich in promotions, castlings and en passant.
const char* const kStarts[] = {
    test::kStartPosition,
    "r3k2r/pppppppp/8/8/8/8/PPPPPPPP/R3K2R",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R",
    "8/PPPk4/8/8/8/8/4Kppp/8",
    "4k3/pppppppp/8/8/8/8/PPPPPPPP/4K3",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N",
    "r3k2r/8/8/3n4/4B3/8/8/R3K2R",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8",
};

// Plays random games and shows every node to the visitor. The side that moves first changes.
template <typename TVisitor>
void ForRandomNodes(u64 seed, int games, int halfMoves, TVisitor visit) {
    CRandom random(seed);
    for (int game = 0; game < games; ++game) {
        const char* const start = kStarts[random.Below(std::size(kStarts))];
        const u16 length = static_cast<u16>(halfMoves + random.Below(2));
        CGameLine line(start, length);
        SCOPED_TRACE(::testing::Message()
                     << "seed " << seed << ", game " << game << " from " << start);
        while (line.Node().m_nMoves > 1) {
            const std::vector<TMove> moves = LegalMovesOf(line.Node());
            visit(line.Node(), moves, random);
            if (moves.empty() || ::testing::Test::HasFailure())
                break;
            line.Play(
                moves[static_cast<std::size_t>(random.Below(static_cast<int>(moves.size())))]);
        }
        if (::testing::Test::HasFailure())
            return;
    }
}

std::optional<TMove> Parsed(const TChessboard& node, const std::string& text) {
    TMove move = {};
    try {
        ParseMove(node, move, text);
    } catch (const ChessException&) {
        return std::nullopt;
    }
    return move;
}

bool Contains(const std::vector<TMove>& moves, TMove move) {
    return std::any_of(
        moves.begin(), moves.end(), [&](TMove other) { return MovesEqual(move, other); });
}

// FEN

TEST(Fen_WriteRead_IsIdentity, OverNodesOfRandomGames) {
    int nodes = 0;
    ForRandomNodes(kSeed, 200, 120, [&](TChessboard& node, const std::vector<TMove>&, CRandom&) {
        ++nodes;
        for (const bool boardOnly : {false, true}) {
            const std::string text = GetFENCode(node, boardOnly);
            TChessboard board;
            InitBoard(board);
            ASSERT_TRUE(SetFromFENCode(board, text.c_str(), nullptr, nullptr)) << text;
            ASSERT_TRUE(SameBoard(board, node)) << text;
            // What was read has the bookkeeping of what was written.
            ASSERT_EQ(std::memcmp(board.m_counts, node.m_counts, sizeof(board.m_counts)), 0);
            ASSERT_EQ(board.WhiteKingSquare(), node.WhiteKingSquare()) << text;
            ASSERT_EQ(board.BlackKingSquare(), node.BlackKingSquare()) << text;
            ASSERT_EQ(board.m_whiteInCheck, node.m_whiteInCheck) << text;
            ASSERT_EQ(board.m_blackInCheck, node.m_blackInCheck) << text;
            board.m_nMoves = node.m_nMoves;
            ASSERT_EQ(GetFENCode(board, true), GetFENCode(node, true));
        }
    });
    EXPECT_GT(nodes, 10000);
}

TEST(Fen_WriteRead_IsIdentity, FieldsSayWhatTheGameAllows) {
    int lostRights = 0;
    int doubleSteps = 0;
    ForRandomNodes(
        kSeed + 1, 200, 40, [&](TChessboard& node, const std::vector<TMove>& moves, CRandom&) {
            const std::string text = GetFENCode(node);
            bool castlingDenied = false;
            bool enPassantGiven = false;
            TChessboard board;
            InitBoard(board);
            ASSERT_TRUE(SetFromFENCode(board, text.c_str(), &castlingDenied, &enPassantGiven));
            for (const TMove move : moves) {
                const bool isKing = KindOf(node.m_board[move.from]) == kKing;
                if (isKing && FileOf(move.from) == 4 && FileOf(move.to) == 6) {
                    ASSERT_NE(text.find(node.IsWhiteToMove() ? 'K' : 'k', text.find(' ')),
                              std::string::npos)
                        << text;
                }
                const bool isPassing = KindOf(node.m_board[move.from]) == kPawn &&
                                       FileOf(move.from) != FileOf(move.to) &&
                                       node.m_board[move.to] == 0;
                if (isPassing) {
                    ASSERT_TRUE(enPassantGiven) << text;
                    std::string square = SquareToText(move.to);
                    square[0] = static_cast<char>(square[0] - 32);
                    ASSERT_NE(text.find(' ' + square + ' '), std::string::npos) << text;
                }
            }
            lostRights += castlingDenied ? 1 : 0;
            doubleSteps += enPassantGiven ? 1 : 0;
        });
    EXPECT_GT(lostRights, 100);
    EXPECT_GT(doubleSteps, 100);
}

TEST(Fen_ReadOfDamagedText_RefusesOrRoundTrips, OverMutatedCodes) {
    constexpr char kCharacters[] = "KQRBNPHWGSkqrbnphwgs12345678909/ -xXe{\t\x80\xff";
    CRandom random(kSeed + 2);
    int accepted = 0;
    int refused = 0;
    TChessboard before;
    InitBoard(before);
    ASSERT_TRUE(SetFromFENCode(before, test::kStartPosition, nullptr, nullptr));
    for (int i = 0; i < 100000; ++i) {
        std::string text = kStarts[random.Below(std::size(kStarts))];
        if (random.Below(2) != 0)
            text += " w KQkq e3 0 1";
        for (int changes = 1 + random.Below(3); changes > 0; --changes) {
            const auto place =
                static_cast<std::size_t>(random.Below(static_cast<int>(text.size())));
            const char character = kCharacters[random.Below(sizeof(kCharacters) - 1)];
            switch (random.Below(3)) {
            case 0:
                text[place] = character;
                break;
            case 1:
                text.insert(place, 1, character);
                break;
            default:
                text.erase(place, 1);
                break;
            }
        }
        TChessboard board = before;
        bool isRead = false;
        try {
            isRead = SetFromFENCode(board, text.c_str(), nullptr, nullptr);
        } catch (const ChessException&) {
        }
        ASSERT_EQ(isRead, IsValidFENCode(text.c_str())) << text;
        if (!isRead) {
            ++refused;
            ASSERT_EQ(std::memcmp(static_cast<const void*>(&board),
                                  static_cast<const void*>(&before),
                                  sizeof(board)),
                      0)
                << text;
            continue;
        }
        ++accepted;
        TChessboard again = before;
        const std::string written = GetFENCode(board, true);
        ASSERT_TRUE(SetFromFENCode(again, written.c_str(), nullptr, nullptr)) << text;
        ASSERT_TRUE(SameBoard(again, board)) << text << " became " << written;
    }
    EXPECT_GT(accepted, 1000);
    EXPECT_GT(refused, 1000);
}

// Identifiers

TEST(Id_EncodeDecode_IsIdentity, OverRandomBoards) {
    CRandom random(kSeed + 3);
    for (int i = 0; i < 20000; ++i) {
        const TChessboard board = RandomBoard(random);
        const TChessboardId id(board);
        const auto men = std::count_if(
            std::begin(board.m_board), std::end(board.m_board), [](u8 f) { return f != 0; });
        ASSERT_EQ(id.BitCount(), 64 + 4 * men);
        u8 decoded[kSquareCount] = {};
        id.ToBoard(decoded);
        ASSERT_EQ(std::memcmp(decoded, board.m_board, sizeof(decoded)), 0)
            << GetFENCode(board, true);
    }
}

TEST(Id_Alphanum6_IsIdentity, OverRandomBoards) {
    CRandom random(kSeed + 4);
    std::map<std::string, std::string> fenOfText;
    for (int i = 0; i < 20000; ++i) {
        const TChessboard board = RandomBoard(random);
        const TChessboardId id(board);
        const std::string text = id.ToAlphanum6();
        ASSERT_EQ(text.size(), static_cast<std::size_t>((id.BitCount() + 5) / 6));
        TChessboardId again;
        ASSERT_TRUE(again.FromAlphanum6(text)) << text;
        ASSERT_EQ(again.ToAlphanum6(), text);
        u8 decoded[kSquareCount] = {};
        again.ToBoard(decoded);
        ASSERT_EQ(std::memcmp(decoded, board.m_board, sizeof(decoded)), 0) << text;
        const std::string fen = GetFENCode(board, true);
        ASSERT_EQ(fenOfText.emplace(text, fen).first->second, fen) << text;
    }
}

TEST(Id_Alphanum6_IsIdentity, OverRandomTexts) {
    constexpr char kAlphabet[] = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ()";
    CRandom random(kSeed + 5);
    int boards = 0;
    for (int i = 0; i < 50000; ++i) {
        std::string text;
        for (int length = random.Below(54); length > 0; --length)
            text += random.Below(3) != 0 ? '0' : kAlphabet[random.Below(64)];
        TChessboardId id;
        ASSERT_TRUE(id.FromAlphanum6(text)) << text;
        ASSERT_EQ(id.ToAlphanum6(), text);
        u8 decoded[kSquareCount] = {};
        try {
            id.ToBoard(decoded);
        } catch (const ChessException&) {
            continue;
        }
        ++boards;
        TChessboard board;
        InitBoard(board);
        std::memcpy(board.m_board, decoded, sizeof(decoded));
        // Written again it is the same text but for what stood behind the last square.
        const std::string written = TChessboardId(board).ToAlphanum6();
        const std::size_t common = written.size() - 1;
        ASSERT_EQ(written.substr(0, common), text.substr(0, common)) << text;
    }
    EXPECT_GT(boards, 100);
}

// Moves

TEST(MoveText_WriteRead_IsIdentity, OverLegalMovesOfRandomGames) {
    int promotions = 0;
    int castlings = 0;
    int passings = 0;
    ForRandomNodes(
        kSeed + 6, 150, 100, [&](TChessboard& node, const std::vector<TMove>& moves, CRandom&) {
            std::set<std::string> texts;
            std::set<std::string> uciTexts;
            for (const TMove move : moves) {
                const std::string text = MoveToText(node, move);
                const std::optional<TMove> read = Parsed(node, text);
                ASSERT_TRUE(read.has_value()) << text << " in " << GetFENCode(node);
                ASSERT_TRUE(MovesEqual(*read, move)) << text << " in " << GetFENCode(node);
                ASSERT_TRUE(texts.insert(text).second) << text << " in " << GetFENCode(node);
                ASSERT_TRUE(uciTexts.insert(MoveToUci(move)).second)
                    << MoveToUci(move) << " in " << GetFENCode(node);
                ASSERT_LE(text.size(), 8u);
                promotions += move.Promotion() != 0 ? 1 : 0;
                castlings += text[0] == '0' ? 1 : 0;
                passings += text[2] == ':' && node.m_board[move.to] == 0 ? 1 : 0;
            }
        });
    EXPECT_GT(promotions, 100);
    EXPECT_GT(castlings, 100);
    EXPECT_GT(passings, 10);
}

// Every full description of the node's side, right or wrong: what is accepted is exactly the list
// of legal moves.
TEST(MoveText_Accepted_IsLegal, OverAllDescriptionsOfANode) {
    ForRandomNodes(
        kSeed + 7, 4, 40, [&](TChessboard& node, const std::vector<TMove>& moves, CRandom& random) {
            constexpr char kPromotions[] = {0, 'Q', 'R', 'B', 'N', 'K', 'P'};
            std::size_t accepted = 0;
            for (int from = 0; from < kSquareCount; ++from) {
                const u8 figure = node.m_board[from];
                const u8 kind = KindOf(figure);
                // An empty square is asked now and then only.
                if (kind == 0 && random.Below(16) != 0)
                    continue;
                for (int to = 0; to < kSquareCount; ++to) {
                    for (const char promotion : kPromotions) {
                        // Every other figure is refused with the first mark already.
                        if (promotion != 0 && kind != kPawn)
                            break;
                        std::string text;
                        if (kind != kPawn && kind != 0)
                            text += LetterFromFigure(figure);
                        text += SquareToText(from) + '-' + SquareToText(to);
                        if (promotion != 0)
                            text += promotion;
                        const std::optional<TMove> read = Parsed(node, text);
                        if (!read.has_value())
                            continue;
                        ++accepted;
                        ASSERT_TRUE(Contains(moves, *read)) << text << " in " << GetFENCode(node);
                    }
                }
            }
            ASSERT_EQ(accepted, moves.size()) << GetFENCode(node);
        });
}

TEST(MoveText_Accepted_IsLegal, OverRandomTexts) {
    constexpr char kCharacters[] = "KQRBNPSHWGabcdefghx:-012345678 9Oiz\x80";
    int accepted = 0;
    ForRandomNodes(
        kSeed + 8,
        30,
        60,
        [&](TChessboard& node, const std::vector<TMove>& moves, CRandom& random) {
            for (int i = 0; i < 200; ++i) {
                std::string text;
                if (!moves.empty() && random.Below(8) != 0) {
                    const int index = random.Below(static_cast<int>(moves.size()));
                    text = MoveToText(node, moves[static_cast<std::size_t>(index)]);
                }
                for (int changes = random.Below(4); changes > 0; --changes) {
                    const auto place =
                        static_cast<std::size_t>(random.Below(static_cast<int>(text.size()) + 1));
                    const char character = kCharacters[random.Below(sizeof(kCharacters) - 1)];
                    if (place < text.size() && random.Below(2) != 0)
                        text[place] = character;
                    else
                        text.insert(place, 1, character);
                }
                const std::optional<TMove> read = Parsed(node, text);
                if (!read.has_value())
                    continue;
                ++accepted;
                ASSERT_TRUE(Contains(moves, *read)) << '"' << text << "\" in " << GetFENCode(node);
            }
        });
    EXPECT_GT(accepted, 10000);
}

TEST(FindPosFrom_CompletesMoves, OverLegalMovesOfRandomGames) {
    ForRandomNodes(
        kSeed + 9, 100, 80, [&](TChessboard& node, const std::vector<TMove>& moves, CRandom&) {
            for (const TMove move : moves) {
                const u8 figure = node.m_board[move.from];
                int count = 0;
                const int from = FindPosFrom(node, KindOf(figure), move.to, &count);
                ASSERT_GE(count, 1) << MoveToUci(move) << " in " << GetFENCode(node);
                ASSERT_EQ(node.m_board[from], figure) << MoveToUci(move);
                // The only candidate is the figure that moves.
                if (count == 1) {
                    ASSERT_EQ(from, move.from) << MoveToUci(move) << " in " << GetFENCode(node);
                }
            }
        });
}

}  // namespace
}  // namespace quillmere
