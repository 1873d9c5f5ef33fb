// The program's move generation and make-moves against two generators that share no code with it:
// the judge of tests/support/ and an outside chess engine, run as a program.
#include "core/legality.h"
#include "core/make_move.h"
#include "core/perft.h"
#include "core/thread_context.h"
#include "tests/support/bridge.h"
#include "tests/support/random_positions.h"
#include "tests/support/reference.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace quillmere {
namespace {

using reference::FromFen;
using reference::ToFen;
using reference::TPlainMove;
using reference::TPosition;

struct TPerftPosition {
    std::string fen;  // as the file has it
    std::string theme;
};

std::vector<TPerftPosition> ReadPerftPositions() {
    std::ifstream file(QUILLMERE_TEST_DATA "/perft_positions.txt");
    std::vector<TPerftPosition> positions;
    std::string line;
    while (std::getline(file, line)) {
        const std::size_t mark = line.find(';');
        if (!line.empty() && line.front() != '#' && mark != std::string::npos) {
            positions.push_back({line.substr(0, mark), line.substr(mark + 2)});
        }
    }
    return positions;
}

// A root of the program for a count of `depth` half-moves, with what it points to.
struct TCountingRoot {
    TCountingRoot(const TPosition& position, int depth) : thread(static_cast<u16>(depth + 1)) {
        bridge::FillBoard(board, position);
        board.m_threadContext = &thread;
        thread.rootNode = &board;
        SetupPerftRoot(board, position.isWhiteToMove, depth);
    }
    TThreadContext thread;
    TChessboard board;
};

u64 CountMoves(const TPosition& position, int depth) {
    TCountingRoot root(position, depth);
    return Perft(root.board, depth);
}

// The count below each legal first move, for a report that leads to the fault.
std::map<std::string, u64> DivideByProgram(const TPosition& position, int depth) {
    TCountingRoot root(position, depth);
    TMove list[kMoveListSize];
    const int count = GetLegalMoves(root.board, list);
    std::map<std::string, u64> counts;
    for (int i = 0; i < count; ++i) {
        TChessboard& child = root.thread.ChildSlot(root.board.m_nMoves);
        child = root.board;
        child.m_parent = &root.board;
        const int made = position.isWhiteToMove ? MakeWhiteMoveLegal(child, list[i])
                                                : MakeBlackMoveLegal(child, list[i]);
        EXPECT_EQ(made, kMoveMade);
        counts[reference::ToText(bridge::ToPlain(list[i]))] = Perft(child, depth - 1);
    }
    return counts;
}

std::string Differences(const TPosition& position, int depth) {
    std::map<std::string, u64> program = DivideByProgram(position, depth);
    std::string text;
    for (const TPlainMove move : reference::LegalMoves(position)) {
        const u64 expected = reference::Perft(reference::After(position, move), depth - 1);
        const std::string name = reference::ToText(move);
        if (program.count(name) == 0) {
            text += "\n  missing " + name;
        } else if (program[name] != expected) {
            text += "\n  " + name + ": " + std::to_string(program[name]) + ", the judge has " +
                    std::to_string(expected);
        }
        program.erase(name);
    }
    for (const auto& [name, count] : program) {
        text += "\n  illegal " + name;
    }
    return text;
}

std::vector<TPlainMove> LegalMovesOfProgram(const TPosition& position) {
    TCountingRoot root(position, 1);
    TMove list[kMoveListSize];
    const int count = GetLegalMoves(root.board, list);
    return bridge::ToSortedPlain(std::vector<TMove>(list, list + count));
}

// The outside engine

std::string FindEngine() {
    std::vector<std::string> folders = {"/usr/games"};
    const char* variable = std::getenv("PATH");
    std::istringstream path(variable != nullptr ? variable : "");
    for (std::string folder; std::getline(path, folder, ':');) {
        folders.push_back(folder);
    }
    for (const std::string& folder : folders) {
        const std::filesystem::path program = std::filesystem::path(folder) / "stockfish";
        std::error_code error;
        if (std::filesystem::exists(program, error)) {
            return program.string();
        }
    }
    return {};
}

// Asks one run of the engine for the counts of all positions in turn.
std::vector<u64>
CountByEngine(const std::string& engine, const std::vector<std::string>& fens, int depth) {
    const std::filesystem::path script =
        std::filesystem::temp_directory_path() /
        ("quillmere-perft-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
         "-" +
         std::to_string(
             static_cast<long long>(std::chrono::steady_clock::now().time_since_epoch().count())));
    {
        std::ofstream commands(script);
        for (const std::string& fen : fens) {
            commands << "position fen " << fen << "\ngo perft " << depth << '\n';
        }
        commands << "quit\n";
    }
    std::vector<u64> counts;
    FILE* output = popen(("'" + engine + "' < '" + script.string() + "'").c_str(), "r");
    if (output != nullptr) {
        char line[256];
        unsigned long long count = 0;
        while (std::fgets(line, sizeof(line), output) != nullptr) {
            if (std::sscanf(line, "Nodes searched: %llu", &count) == 1) {
                counts.push_back(count);
            }
        }
        pclose(output);
    }
    std::filesystem::remove(script);
    return counts;
}

TEST(Perft, StartPosition_HasThePublishedCounts) {
    const TPosition start = FromFen("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w");
    const u64 expected[] = {1, 20, 400, 8902, 197281, 4865609};
    for (int depth = 0; depth <= 5; ++depth) {
        EXPECT_EQ(CountMoves(start, depth), expected[depth]) << "depth " << depth;
    }
}

TEST(Perft, CastlingAndPins_HaveThePublishedCounts) {
    const TPosition position = FromFen("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w");
    const u64 expected[] = {1, 48, 2039, 97862, 4085603};
    for (int depth = 0; depth <= 4; ++depth) {
        EXPECT_EQ(CountMoves(position, depth), expected[depth]) << "depth " << depth;
    }
}

TEST(Perft, ChosenPositions_MatchTheJudge) {
    const std::vector<TPerftPosition> positions = ReadPerftPositions();
    ASSERT_GE(positions.size(), 30u);
    for (const TPerftPosition& row : positions) {
        const TPosition position = FromFen(row.fen);
        ASSERT_TRUE(reference::IsLegalPosition(position)) << row.fen;
        const u64 program = CountMoves(position, 3);
        const u64 judge = reference::Perft(position, 3);
        EXPECT_EQ(program, judge) << ToFen(position) << ' ' << row.theme
                                  << (program == judge ? "" : Differences(position, 3));
    }
}

// A king or rook that went and came back, and a rook that stands where another was taken, have lost
// the right; it takes five half-moves to see that.
TEST(Perft, LostRights_MatchTheJudge) {
    for (const char* fen : {"4k3/8/8/8/8/8/8/4K2R w",
                            "4k3/8/8/8/8/8/8/R3K3 w",
                            "4k2r/8/8/8/8/8/8/4K3 b",
                            "r3k3/8/8/8/8/8/8/4K3 b",
                            "6k1/8/8/8/8/6n1/8/R3K2R w",
                            "r3k2r/8/6N1/8/8/8/8/6K1 b"}) {
        const TPosition position = FromFen(fen);
        ASSERT_TRUE(reference::IsLegalPosition(position)) << fen;
        EXPECT_EQ(CountMoves(position, 5), reference::Perft(position, 5)) << fen;
    }
}

TEST(Perft, ChosenPositions_MatchTheOutsideEngine) {
    const std::string engine = FindEngine();
    if (engine.empty()) {
        GTEST_SKIP() << "THE OUTSIDE ENGINE IS MISSING: install the package stockfish, or this "
                        "comparison is not made at all";
    }
    const std::vector<TPerftPosition> rows = ReadPerftPositions();
    ASSERT_GE(rows.size(), 30u);
    constexpr int kDepth = bridge::kIsSanitized ? 3 : 4;
    std::vector<std::string> fens;
    for (const TPerftPosition& row : rows) {
        ASSERT_TRUE(reference::IsLegalPosition(FromFen(row.fen))) << row.fen;
        // The engine gets the rights by the convention of problems, not those of the text.
        fens.push_back(ToFen(FromFen(row.fen)));
    }
    const std::vector<u64> counts = CountByEngine(engine, fens, kDepth);
    ASSERT_EQ(counts.size(), fens.size()) << engine << " did not answer every position";
    for (std::size_t i = 0; i < fens.size(); ++i) {
        EXPECT_EQ(CountMoves(FromFen(fens[i]), kDepth), counts[i])
            << fens[i] << ' ' << rows[i].theme;
    }
}

TEST(Perft, RandomPositions_MatchTheJudge) {
    constexpr int kCases = bridge::CasesOf(2000);
    u64 total = 0;
    for (int i = 0; i < kCases; ++i) {
        const auto seed = static_cast<std::uint64_t>(7000000 + i);
        reference::CRandom random(seed);
        const TPosition position = reference::RandomMelee(random, 3 + i % 30);
        ASSERT_EQ(reference::ToText(LegalMovesOfProgram(position)),
                  reference::ToText(reference::LegalMoves(position)))
            << "seed " << seed << ' ' << ToFen(position);
        const int depth = reference::CountMen(position) <= 10 ? 3 : 2;
        const u64 program = CountMoves(position, depth);
        const u64 judge = reference::Perft(position, depth);
        ASSERT_EQ(program, judge) << "seed " << seed << ' ' << ToFen(position) << " depth " << depth
                                  << Differences(position, depth);
        total += program;
    }
    // The positions are lively: several hundred moves were counted in each.
    EXPECT_GT(total, static_cast<u64>(kCases) * 300);
}

// Pawns of both sides face each other two files apart, so that double steps pass pawns that may
// capture, with sliders and kings on the lines that such a capture opens.
TEST(Perft, EnPassantNests_MatchTheJudge) {
    constexpr int kCases = bridge::CasesOf(1500);
    int decided = 0;
    for (int i = 0; i < kCases; ++i) {
        const auto seed = static_cast<std::uint64_t>(7100000 + i);
        reference::CRandom random(seed);
        const TPosition position = reference::RandomEnPassantNest(random, random.Chance(50));
        const u64 program = CountMoves(position, 3);
        const u64 judge = reference::Perft(position, 3);
        ASSERT_EQ(program, judge) << "seed " << seed << ' ' << ToFen(position)
                                  << Differences(position, 3);
        for (const TPlainMove move : reference::LegalMoves(position)) {
            const TPosition after = reference::After(position, move);
            if (after.enPassantFile < 0) {
                continue;
            }
            TPosition without = after;
            without.enPassantFile = -1;
            if (reference::LegalMoves(after).size() != reference::LegalMoves(without).size()) {
                ++decided;
                break;
            }
        }
    }
    EXPECT_GT(decided, kCases / 4) << "too few positions allow an en passant capture";
}

}  // namespace
}  // namespace quillmere
