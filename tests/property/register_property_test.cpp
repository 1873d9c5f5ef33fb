// A register agrees with a plain model of it, through random calls of every public operation; and
// under limits so small that it is emptied all the time, nothing that it answers goes beyond what
// was inserted.
//
// The model keeps buckets, because the sweep's rule for linear ones shows: the element behind a
// removed one waits for the next sweep. It shares no code with the register. The boards are few and
// many of them have equal hashes, so that sorted buckets are as common as linear ones.
#include "core/chess_exception.h"
#include "core/messages.h"
#include "tests/support/random.h"
#include "tests/support/register_audit.h"
#include "tests/support/registers.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

namespace quillmere {
namespace {

using TKey = std::array<u8, kSquareCount>;
using TSetting = std::pair<u32, u32>;

TKey KeyOfSquares(const TChessboard& board) {
    TKey key{};
    std::copy(std::begin(board.m_board), std::end(board.m_board), key.begin());
    return key;
}

u32 ModelHash(const TKey& key) {
    u32 sum = 0;
    for (u32 i = 0; i < key.size(); ++i)
        sum += key[i] * (i + 1) * (i + 1);
    return sum;
}

// The model

struct TModelElement {
    TKey key;
    u16 first = 0;   // the smallest mate, or the greatest depth found not doubtful
    u16 second = 0;  // the greatest no mate, or the greatest depth found doubtful

    friend bool operator<(const TModelElement& a, const TModelElement& b) {
        return std::tie(a.key, a.first, a.second) < std::tie(b.key, b.first, b.second);
    }
    friend bool operator==(const TModelElement& a, const TModelElement& b) {
        return std::tie(a.key, a.first, a.second) == std::tie(b.key, b.first, b.second);
    }
};

class CModelTable {
public:
    struct TBucket {
        bool isSorted = false;
        std::vector<TModelElement> elements;  // in the order of insertion
    };

    u32 Count() const {
        std::size_t count = 0;
        for (const auto& [index, bucket] : m_buckets)
            count += bucket.elements.size();
        return static_cast<u32>(count);
    }
    u32 BucketCount() const { return m_nBuckets; }
    const TBucket& Bucket(u32 index) const { return m_buckets.at(index); }

    TModelElement* Find(const TKey& key) {
        if (m_nBuckets == 0)
            return nullptr;
        for (TModelElement& element : BucketOf(key).elements) {
            if (element.key == key)
                return &element;
        }
        return nullptr;
    }
    void Add(const TModelElement& element) {
        constexpr std::size_t kLinear = 8;
        if (m_nBuckets == 0)
            return;
        TBucket& bucket = BucketOf(element.key);
        bucket.elements.push_back(element);
        bucket.isSorted = bucket.isSorted || bucket.elements.size() > kLinear;
    }
    u32 Sweep(int firstLimit, int secondLimit) {
        const u32 before = Count();
        for (auto& [index, bucket] : m_buckets) {
            std::vector<TModelElement> kept;
            bool isSkipped = false;
            for (const TModelElement& element : bucket.elements) {
                const bool isRemoved =
                    !isSkipped && element.first <= firstLimit && element.second <= secondLimit;
                if (!isRemoved)
                    kept.push_back(element);
                isSkipped = isRemoved && !bucket.isSorted;
            }
            bucket.elements = kept;
        }
        return before - Count();
    }
    void Clear(bool isArrayReleased) {
        m_buckets.clear();
        if (isArrayReleased)
            m_nBuckets = 0;
        for (u32 i = 0; i < m_nBuckets; ++i)
            m_buckets[i] = {};
    }
    void Resize(u32 nBuckets, bool isKept) {
        if (isKept && nBuckets == m_nBuckets)
            return;
        m_nBuckets = nBuckets;
        Clear(false);
    }

private:
    TBucket& BucketOf(const TKey& key) { return m_buckets[ModelHash(key) % m_nBuckets]; }

    u32 m_nBuckets = 0;
    std::map<u32, TBucket> m_buckets;
};

struct TModelSetting {
    CModelTable table;
    bool keepsThreeMovers = true;
};

struct TModelRecord {
    bool flag = false;
    TMove move{};
};

// What a register is to answer, with more memory than it can fill.
class CModelRegister {
public:
    // Look-ups of the tables

    int Find(u16 nMoves, const TKey& key) {
        const TModelElement* element = m_table.Find(key);
        if (element == nullptr)
            return -2;
        if (element->second != 0 && nMoves <= element->second)
            return 0;
        return element->first != 0 && nMoves >= element->first ? 1 : -2;
    }
    int FindInRegister(u16 nMoves, const TKey& key, TSetting setting) {
        const int known = Find(nMoves, key);
        if (known != -2)
            return known;
        const TModelElement* element = FindDoubtfulElement(key, setting);
        const bool isDoubtful =
            element != nullptr && element->second != 0 && nMoves <= element->second;
        return isDoubtful ? -1 : -2;
    }
    int FindQuicker(u16 nMoves, u16 floor, const TKey& key, TSetting setting) {
        const TModelElement* element = m_table.Find(key);
        if (Find(nMoves, key) == -2 && element != nullptr && element->first > nMoves &&
            nMoves >= floor)
            return 2;
        return FindInRegister(nMoves, key, setting);
    }
    int FindNotDoubtful(u16 doubtful, u16 notDoubtful, const TKey& key, TSetting setting) {
        const TModelElement* element = FindDoubtfulElement(key, setting);
        if (element == nullptr)
            return -1;
        return element->first != 0 && notDoubtful <= element->first &&
               (element->second == 0 || element->second < doubtful);
    }
    int FindLowestMate(u16 nMoves, const TKey& key, TSetting setting) {
        const int known = FindInRegister(nMoves, key, setting);
        if (known != 1 || nMoves == 1)
            return known;
        const int below = FindLowestMate(static_cast<u16>(nMoves - 2), key, setting);
        return below < 1 ? nMoves : below;
    }

    // Inserts

    void Insert(u16 nMoves, const TKey& key, bool isMate, bool isMended) {
        if (!m_keepsThreeMovers && nMoves < 4)
            return;
        TModelElement* element = m_table.Find(key);
        if (element == nullptr) {
            m_table.Add({key, isMate ? nMoves : u16{0}, isMate ? u16{0} : nMoves});
            return;
        }
        if (!isMate)
            element->second = std::max(element->second, nMoves);
        else if (element->first == 0 || element->first > nMoves)
            element->first = nMoves;
        if (element->first == 0 || element->second < element->first)
            return;
        if (isMended)
            element->second = element->first == 1 ? u16{0} : static_cast<u16>(element->first - 2);
        else
            ++m_warnings;
    }
    void InsertDoubtful(u16 nMoves, const TKey& key, TSetting setting, bool isDoubtful) {
        if (isDoubtful && !m_keepsThreeMovers && nMoves == 3)
            return;
        if (m_settings.count(setting) == 0) {
            if (m_nSettingBuckets == 0)
                return;
            TModelSetting& made = m_settings[setting];
            made.keepsThreeMovers = m_keepsThreeMovers;
            made.table.Resize(m_nSettingBuckets, true);
            m_pins.try_emplace(setting, 0);
        }
        TModelSetting& kept = m_settings[setting];
        if (!kept.keepsThreeMovers && nMoves < 4)
            return;
        TModelElement* element = kept.table.Find(key);
        if (element == nullptr) {
            kept.table.Add({key, isDoubtful ? u16{0} : nMoves, isDoubtful ? nMoves : u16{0}});
            return;
        }
        u16& field = isDoubtful ? element->second : element->first;
        field = std::max(field, nMoves);
    }

    // Pins and emptying

    void Pin(TSetting setting) { ++m_pins[setting]; }
    u32 Remove(TSetting setting) {
        const auto pin = m_pins.find(setting);
        if (pin != m_pins.end() && pin->second > 0) {
            --pin->second;
            return 0;
        }
        const auto found = m_settings.find(setting);
        if (found == m_settings.end())
            return 0;
        const u32 removed = found->second.table.Count();
        found->second.table.Clear(false);
        found->second.keepsThreeMovers = m_keepsThreeMovers;
        return removed;
    }
    u32 RemoveUnpinned() {
        u32 removed = 0;
        for (const auto& [setting, pins] : m_pins)
            removed += pins == 0 ? Remove(setting) : 0;
        return removed;
    }
    u32 RemoveNMovers(int n) {
        u32 removed = m_table.Sweep(n, n);
        for (auto& [key, setting] : m_settings)
            removed += setting.table.Sweep(n, n < 2 ? 0 : n - 2);
        return removed;
    }
    // So few elements of so many that may be there: the first depths are given up, and a fifth is
    // free at once.
    void Empty(bool isHard, u64 now) {
        constexpr u64 kPause = 16;
        if (isHard || now - m_lastEmptying <= kPause)
            return;
        RemoveUnpinned();
        if (m_keepsThreeMovers) {
            RemoveNMovers(3);
            m_keepsThreeMovers = false;
            for (auto& [key, setting] : m_settings)
                setting.keepsThreeMovers = false;
        }
        RemoveNMovers(5);
        RemoveNMovers(4);
        m_lastEmptying = now;
    }
    void Clear(int mode) {
        if (mode >= 0) {
            m_table.Clear(mode == 0);
            m_records.clear();
            m_keepsThreeMovers = true;
        }
        if (mode <= 0)
            m_settings.clear();
    }
    void Resize(u32 nBuckets, bool isKept) {
        m_nSettingBuckets = nBuckets;
        m_table.Resize(nBuckets, isKept);
        for (auto& [key, setting] : m_settings)
            setting.table.Resize(nBuckets, isKept);
    }

    // The map store. At odd depths a mate holds upward, at even ones a defence that fails does.

    std::optional<TModelRecord> FindRecord(u16 nMoves, const TKey& key, bool isOdd) const {
        for (const auto& [depth, records] : m_records) {
            if ((depth % 2 == 1) != isOdd)
                continue;
            const auto found = records.find(key);
            if (found == records.end())
                continue;
            const bool holdsUpward = found->second.flag == isOdd;
            if (holdsUpward ? depth <= nMoves : depth >= nMoves)
                return found->second;
        }
        return std::nullopt;
    }
    // False: it must throw.
    bool InsertRecord(u16 nMoves, const TKey& key, bool flag, TMove move) {
        if (!m_keepsThreeMovers && nMoves < 4)
            return true;
        const bool isOdd = nMoves % 2 == 1;
        if (const auto known = FindRecord(nMoves, key, isOdd))
            return known->flag == flag;
        m_records[nMoves][key] = {flag, move};
        for (auto& [depth, records] : m_records) {
            const auto found = records.find(key);
            const bool isAbove = flag == isOdd;
            if (found != records.end() && (depth % 2 == 1) == isOdd && found->second.flag == flag &&
                (isAbove ? depth > nMoves : depth < nMoves))
                records.erase(found);
        }
        return true;
    }

    // For the comparison

    CModelTable& Table() { return m_table; }
    std::map<TSetting, TModelSetting>& Settings() { return m_settings; }
    const std::map<u16, std::map<TKey, TModelRecord>>& Records() const { return m_records; }
    bool KeepsThreeMovers() const { return m_keepsThreeMovers; }
    u32 Pins() const { return static_cast<u32>(m_pins.size()); }
    u32 TakeWarnings() { return std::exchange(m_warnings, 0); }

private:
    TModelElement* FindDoubtfulElement(const TKey& key, TSetting setting) {
        const auto found = m_settings.find(setting);
        return found == m_settings.end() ? nullptr : found->second.table.Find(key);
    }

    CModelTable m_table;
    std::map<TSetting, TModelSetting> m_settings;
    std::map<TSetting, u32> m_pins;
    std::map<u16, std::map<TKey, TModelRecord>> m_records;
    bool m_keepsThreeMovers = true;
    u32 m_nSettingBuckets = 0;
    u64 m_lastEmptying = 0;
    u32 m_warnings = 0;
};

// Boards and settings of the random calls

// Three families of boards with equal hashes, and others.
std::vector<TChessboard> SomeBoards() {
    constexpr int kFamily = 16;
    constexpr u32 kOthers = 24;
    std::vector<TChessboard> boards;
    for (const u8 figure : {kWhitePawn, kBlackKnight, kWhiteQueen}) {
        const auto family = test::EqualHashBoards(figure, kFamily);
        boards.insert(boards.end(), family.begin(), family.end());
    }
    for (u32 number = 0; number < kOthers; ++number)
        boards.push_back(test::NumberedBoard(1 + number));
    return boards;
}

constexpr std::array<TSetting, 5> kSettings{
    {{0, 0}, {1, 0}, {1, 7}, {0x8000'0000u, 0}, {0xffff'ffffu, 0xffff'ffffu}}};

TEST(EqualHashBoards, FamilyOfBoards_DiffersInKeysAndNotInHash) {
    const auto boards = test::EqualHashBoards(kWhiteRook, 1 << test::kEqualHashBits);
    std::set<TKey> keys;
    for (const TChessboard& board : boards) {
        keys.insert(KeyOfSquares(board));
        EXPECT_EQ(Hash(MakeRegisterItem(board)), Hash(MakeRegisterItem(boards.front())));
    }
    EXPECT_EQ(keys.size(), boards.size());
}

// Random calls against the model

class CModelWalk {
public:
    CModelWalk(u64 seed, u64 memoryLimitBytes)
        : m_random(seed),
          m_boards(SomeBoards()),
          m_left{MakeRegister(memoryLimitBytes), {}},
          m_right{MakeRegister(memoryLimitBytes), {}} {}

    void Walk(int calls) {
        constexpr int kCompareEvery = 25;
        for (int call = 0; call < calls; ++call) {
            TPair& pair = m_random.Chance(70) ? m_left : m_right;
            CallOnce(pair);
            AskAll(pair);
            if (call % kCompareEvery == 0) {
                Compare(m_left);
                Compare(m_right);
            }
            if (testing::Test::HasFailure())
                return;
        }
    }

private:
    using TRegisterPointer = std::unique_ptr<TAggregatedTemporaryChessboardRegister>;
    struct TPair {
        TRegisterPointer reg;
        CModelRegister model;
    };

    TRegisterPointer MakeRegister(u64 memoryLimitBytes) {
        TRegisterSettings settings = test::QuietSettings(memoryLimitBytes);
        settings.tickCount = m_clock.Function();
        settings.warnings = &m_warnings;
        return std::make_unique<TAggregatedTemporaryChessboardRegister>(settings);
    }

    u16 Depth() { return static_cast<u16>(m_random.Between(1, 14)); }
    const TChessboard& Board() {
        return m_boards[static_cast<std::size_t>(
            m_random.Below(static_cast<int>(m_boards.size())))];
    }
    TSetting Setting() {
        return kSettings[static_cast<std::size_t>(
            m_random.Below(static_cast<int>(kSettings.size())))];
    }

    void CallOnce(TPair& pair) {
        const int kind = m_random.Below(100);
        if (kind < 40)
            InsertVerdict(pair);
        else if (kind < 70)
            InsertDoubt(pair);
        else if (kind < 84)
            InsertRecord(pair);
        else if (kind < 96)
            RemoveSome(pair);
        else
            ChangeAll(pair);
    }

    void InsertVerdict(TPair& pair) {
        TChessboard board = Board();
        const u16 nMoves = Depth();
        const bool isMate = m_random.Chance(50);
        const bool isHeuristic = m_random.Chance(30);
        board.m_pass = static_cast<u8>(m_random.Below(3));
        const TKey key = KeyOfSquares(board);
        const bool isMended = board.m_pass < kPassComplete && !isHeuristic;
        switch (m_random.Below(3)) {
        case 0:
            pair.reg->InsertLoaded(nMoves, MakeRegisterItem(board), isMate);
            pair.model.Insert(nMoves, key, isMate, true);
            break;
        case 1: {
            auto& own = static_cast<TTemporaryChessboardRegister<false>&>(*pair.reg);
            own.Insert(nMoves, board, isMate, isHeuristic);
            pair.model.Insert(nMoves, key, isMate, isMended);
            break;
        }
        default:
            pair.reg->InsertVerdict(nMoves, board, isMate, isHeuristic);
            pair.model.Insert(nMoves, key, isMate, isMended);
            break;
        }
        EXPECT_EQ(std::exchange(m_warnings.texts, {}).size(), pair.model.TakeWarnings());
    }

    void InsertDoubt(TPair& pair) {
        const TChessboard& board = Board();
        const u16 nMoves = Depth();
        const TSetting setting = Setting();
        const bool isDoubtful = m_random.Chance(60);
        if (isDoubtful && m_random.Chance(50))
            pair.reg->InsertDoubtful(nMoves, board, setting.first, setting.second);
        else
            pair.reg->InsertDoubtfulResult(
                nMoves, board, setting.first, setting.second, isDoubtful);
        pair.model.InsertDoubtful(nMoves, KeyOfSquares(board), setting, isDoubtful);
    }

    void InsertRecord(TPair& pair) {
        const TChessboard& board = Board();
        const u16 nMoves = Depth();
        const bool flag = m_random.Chance(50);
        const TMove move = MakeMove(m_random.Below(kSquareCount), m_random.Below(kSquareCount));
        auto& store = static_cast<TChessboardRegister<bool>&>(*pair.reg);
        bool hasThrown = false;
        try {
            if (nMoves % 2 == 1)
                store.Insert(nMoves, board, flag, move);
            else
                store.InsertDefence(nMoves, board, flag, move);
        } catch (const ChessException&) {
            hasThrown = true;
        }
        EXPECT_NE(hasThrown, pair.model.InsertRecord(nMoves, KeyOfSquares(board), flag, move));
    }

    void RemoveSome(TPair& pair) {
        const TSetting setting = Setting();
        switch (m_random.Below(6)) {
        case 0:
            pair.reg->PinDoubtful(setting.first, setting.second);
            pair.model.Pin(setting);
            break;
        case 1:
        case 2:
            EXPECT_EQ(pair.reg->RemoveDoubtful(setting.first, setting.second),
                      pair.model.Remove(setting));
            break;
        case 3:
            EXPECT_EQ(pair.reg->RemoveUnpinnedDoubtful(), pair.model.RemoveUnpinned());
            break;
        case 4: {
            const int n = m_random.Below(8);
            EXPECT_EQ(pair.reg->RemoveNMovers(static_cast<u16>(n)), pair.model.RemoveNMovers(n));
            break;
        }
        default:
            m_clock.Advance(static_cast<u64>(m_random.Below(25)));
            if (m_random.Chance(25)) {
                const bool isHard = m_random.Chance(30);
                pair.reg->EmptySomeDataWhenRegisterFull(isHard);
                pair.model.Empty(isHard, m_clock.Now());
            }
            break;
        }
    }

    void ChangeAll(TPair& pair) {
        constexpr std::array<u32, 4> kBuckets{1, 4, 32, 128};
        switch (m_random.Below(8)) {
        case 0: {
            const int mode = m_random.Between(-1, 1);
            pair.reg->Clear(mode, m_random.Chance(50));
            pair.model.Clear(mode);
            break;
        }
        case 1:
            m_left.reg->Swap(*m_right.reg);
            std::swap(m_left.model, m_right.model);
            break;
        case 2:
            // As a table's own call, which leaves sub-registers and map alone.
            EXPECT_EQ(pair.reg->SweepTable(5, 9), pair.model.Table().Sweep(5, 9));
            break;
        default: {
            const u32 nBuckets = kBuckets[static_cast<std::size_t>(m_random.Below(4))];
            const bool isKept = m_random.Chance(70);
            EXPECT_TRUE(pair.reg->Resize(nBuckets, isKept));
            pair.model.Resize(nBuckets, isKept);
            break;
        }
        }
    }

    // Every look-up for one board.
    void AskAll(TPair& pair) {
        const TChessboard& board = Board();
        const TKey key = KeyOfSquares(board);
        const TSetting setting = Setting();
        const auto [heuristics, params] = setting;
        for (u16 nMoves = 1; nMoves < 16; ++nMoves) {
            const u16 other = Depth();
            EXPECT_EQ(pair.reg->FindInRegister(nMoves, board, heuristics, params),
                      pair.model.FindInRegister(nMoves, key, setting));
            EXPECT_EQ(pair.reg->FindInRegisterQuicker(nMoves, other, board, heuristics, params),
                      pair.model.FindQuicker(nMoves, other, key, setting));
            EXPECT_EQ(pair.reg->FindNotDoubtfulInRegister(nMoves, other, board, heuristics, params),
                      pair.model.FindNotDoubtful(nMoves, other, key, setting));
            const auto move = pair.model.FindRecord(nMoves, key, true);
            EXPECT_EQ(pair.reg->FindMove(nMoves, board), move ? int{move->flag} : -2);
            const auto defence = pair.model.FindRecord(nMoves, key, false);
            TMove answer{};
            EXPECT_EQ(pair.reg->FindDefence(nMoves, board, &answer),
                      defence ? int{defence->flag} : -2);
            EXPECT_TRUE(!defence ||
                        (answer.from == defence->move.from && answer.to == defence->move.to));
        }
        EXPECT_EQ(pair.reg->FindLowestMate(15, board, heuristics, params),
                  pair.model.FindLowestMate(15, key, setting));
    }

    void Compare(TPair& pair) {
        CompareTables(pair.reg->Table(), pair.model.Table());
        std::size_t settings = 0;
        pair.reg->ForEachSubRegister([&](u32 heuristics, u32 params, const auto& sub) {
            ++settings;
            ASSERT_EQ(pair.model.Settings().count({heuristics, params}), 1U);
            CompareTables(sub.Table(), pair.model.Settings()[{heuristics, params}].table);
        });
        EXPECT_EQ(settings, pair.model.Settings().size());
        CompareRecords(pair);
        EXPECT_EQ(pair.reg->KeepsThreeMovers(), pair.model.KeepsThreeMovers());
        test::ExpectRegisterAddsUp(*pair.reg, pair.model.Pins());
        EXPECT_EQ(pair.reg->BytesUsed() - test::RecountRegister(*pair.reg).bytes,
                  pair.model.Pins() * test::PinBytes());
    }

    static void CompareTables(const TRegisterCombinedMap& table, CModelTable& model) {
        ASSERT_EQ(table.HasArray() ? table.BucketCount() : 0, model.BucketCount());
        for (u32 i = 0; i < model.BucketCount(); ++i) {
            const TRegisterCombinedMap::TView view = table.View(i);
            std::vector<TModelElement> expected = model.Bucket(i).elements;
            std::vector<TModelElement> elements;
            for (u32 k = 0; k < view.count; ++k) {
                TModelElement& element = elements.emplace_back();
                std::copy(std::begin(view.elements[k].item.bytes),
                          std::end(view.elements[k].item.bytes),
                          element.key.begin());
                element.first = view.elements[k].nMovesMate;
                element.second = view.elements[k].nMovesNoMate;
                EXPECT_TRUE(!view.isSorted || k == 0 ||
                            view.elements[k - 1].item < view.elements[k].item);
            }
            EXPECT_EQ(view.isSorted, model.Bucket(i).isSorted);
            if (view.isSorted) {
                std::sort(elements.begin(), elements.end());
                std::sort(expected.begin(), expected.end());
            }
            EXPECT_TRUE(elements == expected) << "bucket " << i;
        }
    }

    static void CompareRecords(TPair& pair) {
        std::size_t records = 0;
        for (const auto& [depth, positions] : *pair.reg) {
            records += positions.size();
            for (const auto& [item, info] : positions) {
                TKey key{};
                std::copy(std::begin(item.bytes), std::end(item.bytes), key.begin());
                const auto found = pair.model.Records().at(depth).find(key);
                ASSERT_NE(found, pair.model.Records().at(depth).end());
                EXPECT_EQ(info.Flag(), found->second.flag);
                EXPECT_EQ(info.nMoves, depth);
            }
        }
        std::size_t expected = 0;
        for (const auto& [depth, positions] : pair.model.Records())
            expected += positions.size();
        EXPECT_EQ(records, expected);
    }

    test::CRandom m_random;
    test::CTestClock m_clock;
    test::CKeptWarnings m_warnings;
    std::vector<TChessboard> m_boards;
    TPair m_left;
    TPair m_right;
};

TEST(RegisterProperty, RandomCalls_AgreeWithAPlainModel) {
    for (u64 seed = 1; seed <= 60 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        // The first containers are smaller under a small limit.
        CModelWalk(seed, (seed % 2 == 0 ? 8 : 128) * test::kMegabyte).Walk(600);
    }
}

// Limits so small that the register is emptied all the time

// What was told about a position; no answer may go beyond it.
struct TTold {
    u16 leastMate = 0xffff;
    u16 greatestNoMate = 0;
    std::map<TSetting, std::pair<u16, u16>> doubt;  // greatest not doubtful, greatest doubtful
};

class CSmallWalk {
public:
    CSmallWalk(u64 seed, u64 memoryLimitBytes)
        : m_random(seed), m_register(Settings(memoryLimitBytes)) {
        m_register.Resize(1024, true);
        const auto family = test::EqualHashBoards(kWhiteRook, 1 << test::kEqualHashBits);
        m_boards.insert(m_boards.end(), family.begin(), family.end());
        for (u32 number = 1; number < kNumbered; ++number)
            m_boards.push_back(test::NumberedBoard(number));
        m_told.resize(m_boards.size());
    }

    void Walk(int calls) {
        constexpr int kRecountEvery = 64;
        for (int call = 0; call < calls && !testing::Test::HasFailure(); ++call) {
            m_clock.Advance(static_cast<u64>(m_random.Below(12)));
            InsertOne();
            CheckOne();
            EXPECT_LE(m_register.BytesUsed(), m_register.ByteLimit());
            if (call % kRecountEvery == 0)
                test::ExpectRegisterAddsUp(m_register, kSettings.size());
        }
        m_register.Clear(0, true);
        EXPECT_LE(m_register.BytesUsed(), kSettings.size() * test::PinBytes());
    }
    u32 Removed() const { return m_removed; }

private:
    static constexpr u32 kNumbered = 3'000;

    TRegisterSettings Settings(u64 memoryLimitBytes) {
        TRegisterSettings settings = test::QuietSettings(memoryLimitBytes);
        settings.tickCount = m_clock.Function();
        return settings;
    }

    // Every board has one true length of its mate; only verdicts that agree with it are told.
    static u16 TrueMate(std::size_t board) { return static_cast<u16>(3 + 2 * (board * 7 % 9)); }

    void InsertOne() {
        const auto board =
            static_cast<std::size_t>(m_random.Below(static_cast<int>(m_boards.size())));
        const auto nMoves = static_cast<u16>(3 + 2 * m_random.Below(10));
        const TSetting setting = kSettings[board % kSettings.size()];
        TTold& told = m_told[board];
        const u32 before = m_register.GetElementsIn();
        switch (m_random.Below(8)) {
        case 0:
        case 1:
        case 2: {
            const bool isMate = nMoves >= TrueMate(board);
            m_register.InsertVerdict(nMoves, m_boards[board], isMate);
            if (isMate)
                told.leastMate = std::min(told.leastMate, nMoves);
            else
                told.greatestNoMate = std::max(told.greatestNoMate, nMoves);
            break;
        }
        case 3:
        case 4:
        case 5: {
            const bool isDoubtful = m_random.Chance(60);
            m_register.InsertDoubtfulResult(
                nMoves, m_boards[board], setting.first, setting.second, isDoubtful);
            auto& [notDoubtful, doubtful] = told.doubt[setting];
            u16& field = isDoubtful ? doubtful : notDoubtful;
            field = std::max(field, nMoves);
            break;
        }
        case 6: {
            const bool isMate = nMoves >= TrueMate(board);
            auto& store = static_cast<TChessboardRegister<bool>&>(m_register);
            if (board % 16 == 0)
                store.Insert(nMoves, m_boards[board], isMate, TMove{});
            break;
        }
        default:
            if (m_random.Chance(5))
                m_register.PinDoubtful(setting.first, setting.second);
            else if (m_random.Chance(10))
                m_register.RemoveDoubtful(setting.first, setting.second);
            else if (m_random.Chance(2))
                m_register.Clear(m_random.Chance(50) ? 1 : -1, true);
            break;
        }
        m_removed += before > m_register.GetElementsIn() ? before - m_register.GetElementsIn() : 0;
    }

    void CheckOne() {
        const auto board =
            static_cast<std::size_t>(m_random.Below(static_cast<int>(m_boards.size())));
        const TTold& told = m_told[board];
        const TSetting setting = kSettings[board % kSettings.size()];
        const auto doubt = told.doubt.find(setting);
        const auto [notDoubtful, doubtful] =
            doubt == told.doubt.end() ? std::pair<u16, u16>{0, 0} : doubt->second;
        for (u16 nMoves = 1; nMoves < 25; nMoves += 2) {
            const TVerdict verdict =
                m_register.FindInRegister(nMoves, m_boards[board], setting.first, setting.second);
            EXPECT_TRUE(verdict != kMate || nMoves >= told.leastMate);
            EXPECT_TRUE(verdict != kNoMate || nMoves <= told.greatestNoMate);
            EXPECT_TRUE(verdict != kDoubtful || nMoves <= doubtful);
            EXPECT_TRUE(m_register.FindNotDoubtfulInRegister(
                            30, nMoves, m_boards[board], setting.first, setting.second) != 1 ||
                        nMoves <= notDoubtful);
            const TVerdict move = m_register.FindMove(nMoves, m_boards[board]);
            EXPECT_TRUE(move == kNothingKnown || (move == kMate) == (nMoves >= TrueMate(board)));
        }
    }

    test::CRandom m_random;
    test::CTestClock m_clock;
    TAggregatedTemporaryChessboardRegister m_register;
    std::vector<TChessboard> m_boards;
    std::vector<TTold> m_told;
    u32 m_removed = 0;
};

TEST(RegisterProperty, SmallLimits_AnswerOnlyWhatWasInserted) {
    for (const u64 kilobytes : {0, 1, 4, 12, 20, 40, 70, 110, 160, 220}) {
        SCOPED_TRACE(std::to_string(kilobytes) + " kB");
        CSmallWalk walk(kilobytes + 1, kilobytes * 1024);
        walk.Walk(4'000);
        // The law would be empty without emptying.
        EXPECT_TRUE(kilobytes < 12 || walk.Removed() > 200) << walk.Removed();
    }
}

}  // namespace
}  // namespace quillmere
