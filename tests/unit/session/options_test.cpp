#include "core/chess_exception.h"
#include "session/options.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <rapidcheck/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace quillmere {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr TSystemInfo kSmallMachine = {u64{4} << 30, 2, 2};

class CWarnings : public IWarningSink {
public:
    void Warn(EMessage title, EMessage text, const std::vector<std::string>& values) override {
        m_titles.push_back(FormatMessage(title, ELanguage::kEnglish));
        m_texts.push_back(FormatMessage(text, ELanguage::kEnglish, values));
        m_polishTexts.push_back(FormatMessage(text, ELanguage::kPolish, values));
    }

    std::vector<std::string> m_titles;
    std::vector<std::string> m_texts;
    std::vector<std::string> m_polishTexts;
};

class OptionsFileTest : public ::testing::Test {
protected:
    fs::path File() const { return m_folder.Path() / "options.ini"; }
    void Write(const std::string& bytes) const { test::WriteFile(File(), bytes); }
    std::string Bytes() const { return test::ReadFile(File()); }
    TOptions Read(const TSystemInfo& machine = kSmallMachine) {
        TOptions options;
        m_warnings = CWarnings();
        ReadOptions(File(), machine, m_warnings, options);
        return options;
    }
    // The options of a file with these lines in its section.
    TOptions ReadLines(const std::string& lines, const TSystemInfo& machine = kSmallMachine) {
        Write("[chess]\n" + lines);
        return Read(machine);
    }
    std::string FileValue(const std::string& key) const {
        return GetOption(ReadOptionsFile(File()), key);
    }

    CWarnings m_warnings;

private:
    test::CTemporaryFolder m_folder;
};

// The table

struct TDescribedOption {
    const char* key;
    const char* defaultValue;
    i64 low;
    i64 high;
    EOptionWriter writer;
};

// Written down a second time, as the users' files know them: an accidental change of a key, of a
// default or of the order shows here.
using enum EOptionWriter;
const TDescribedOption kDescribed[] = {
    {"LanguageId", "1", 0, 2, kMenu},
    {"QuickMode", "1", 0, 1, kSave},
    {"WarningOnLichessDataRepetition", "0", 0, 1, kUser},
    {"SchedulerLevels", "5", -1, 8, kSave},
    {"CheckTempRegCoherency", "1", 0, 1, kUser},
    {"CustomScheduler", "1", 0, 1, kSave},
    {"ObserverLevels", "0", -32768, 32767, kSave},
    {"LichessLevels", "1", -1, 255, kSave},
    {"WarnAboutSecondInstanceOfProgram", "2", 0, 2, kSave},
    {"PromptHeuristics", "0", 0, 1, kSave},
    {"MaxMemRatioForTempReg", "20", 0, 100, kSave},
    {"ClearRegisterOnStartSolving", "1", 0, 1, kSave},
    {"MaxMemRatioForPrecalculatedData", "20", 0, 100, kSave},
    {"LetAnalyzeTheSameMoveInTwoThreads", "1", 0, 1, kSave},
    {"CommentCompatibilityMode", "0", 0, 1, kSave},
    {"ShowMainVariant", "1", 0, 1, kSave},
    {"UseMainVariantAsSortIndications", "0", 0, 2, kSave},
    {"LogMoves", "0", 0, 1, kSave},
    {"RegisterInfoLog", "0", 0, 1, kSave},
    {"TryRelaxSpecialHeuristicsLog", "0", 0, 1, kSave},
    {"MinimizeToTray", "2", 0, 2, kSave},
    {"AskForGlobalRegisterRecompression", "0", 0, 2, kUser},
    {"UseDataPackedForRandomAccess", "2", 0, 2, kUser},
    {"GlobalRegisterForceDiskAccess", "1", 0, 1, kSave},
    {"PrecalcPath", "", 0, 0, kUser},
    {"AskIfSaveAfterDecompressAllToMem", "0", 0, 1, kUser},
    {"MultithreadingLevels", "1", 0, 1, kSave},
    {"LogToFileTmpRegLoad", "1", 0, 1, kUser},
    {"CustomizedVersion", "0", 0, 1, kUser},
    {"EnableManualEngineControl", "0", 0, 1, kSave},
    {"ScalingWarningDismissed", "0", 0, 1, kWindow},
    {"UsePredefinedIndications", "0", 0, 2, kSave},
    {"LastProcessedMsgId", "0", 0, 2147483647, kMessage},
    {"AnsiCodePage", "windows-1250", 0, 0, kUser},
};

TEST(OptionTable, Rows_AreTheKnownOnes) {
    const auto options = ListOptions(TOptions());
    ASSERT_EQ(options.size(), std::size(kDescribed));
    for (std::size_t i = 0; i < options.size(); ++i) {
        EXPECT_EQ(options[i].key, kDescribed[i].key);
        EXPECT_EQ(options[i].defaultValue, kDescribed[i].defaultValue) << options[i].key;
        EXPECT_EQ(options[i].value, kDescribed[i].defaultValue) << options[i].key;
        EXPECT_EQ(options[i].low, kDescribed[i].low) << options[i].key;
        EXPECT_EQ(options[i].high, kDescribed[i].high) << options[i].key;
        EXPECT_EQ(options[i].writer, kDescribed[i].writer) << options[i].key;
        const bool isText = options[i].key == "PrecalcPath" || options[i].key == "AnsiCodePage";
        EXPECT_EQ(options[i].isText, isText) << options[i].key;
    }
}

TEST(OptionTable, Keys_AreUniqueWhateverTheirCase) {
    std::set<std::string> keys;
    for (const TOptionView& option : ListOptions(TOptions())) {
        std::string key(option.key);
        std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) {
            return static_cast<char>(std::tolower(c));
        });
        EXPECT_TRUE(keys.insert(key).second) << option.key;
    }
}

TEST(OptionTable, Defaults_LieInsideTheirRanges) {
    for (const TOptionView& option : ListOptions(TOptions())) {
        if (!option.isText) {
            EXPECT_LE(option.low, std::stoll(option.defaultValue)) << option.key;
            EXPECT_GE(option.high, std::stoll(option.defaultValue)) << option.key;
            EXPECT_LT(option.low, option.high) << option.key;
        }
    }
}

// True if a source file of the program names the member of "options" or "g_options"; not counting `session/`, which reads and
// writes all members alike, unless asked for.
bool IsReadInSources(const std::string& key, bool withSession) {
    const std::regex use(R"(ptions(\.|->))" + key + R"(\b)");
    for (const char* folder : {"core",
                               "search",
                               "heuristics",
                               "registers",
                               "tablebase",
                               "problems",
                               "online",
                               "session",
                               "shell",
                               "cli"}) {
        const fs::path root = fs::path(QUILLMERE_SOURCE_DIR) / folder;
        if (!fs::exists(root)) {
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            const bool isSource =
                entry.path().extension() == ".cpp" || entry.path().extension() == ".h";
            const bool isTable =
                entry.path() == fs::path(QUILLMERE_SOURCE_DIR) / "session" / "options.cpp";
            if (isSource && (withSession || !isTable) &&
                std::regex_search(test::ReadFile(entry.path()), use)) {
                return true;
            }
        }
    }
    return false;
}

TEST(OptionTable, EveryRow_IsReadOrMarkedAsWaiting) {
    for (const TOptionView& option : ListOptions(TOptions())) {
        const std::string key(option.key);
        if (option.waitsFor == EMessage::kCount) {
            EXPECT_TRUE(IsReadInSources(key, true))
                << key << " is marked kInUse, but nothing reads it";
        } else {
            EXPECT_FALSE(IsReadInSources(key, false)) << key << " is read: mark it kInUse";
        }
    }
}

TEST(OptionTable, WaitingRows_NameAFeature) {
    for (const TOptionView& option : ListOptions(TOptions())) {
        if (option.waitsFor != EMessage::kCount) {
            EXPECT_TRUE(MessageName(option.waitsFor).starts_with("kFeature")) << option.key;
        }
        EXPECT_EQ(MessageName(option.help), "kHelp" + std::string(option.key));
    }
}

// Reading

TEST_F(OptionsFileTest, ReadOptions_NoFile_GivesDefaults) {
    TOptions expected;
    UpdateMemoryLimits(expected, kSmallMachine);
    ApplyThreadSettings(expected, kSmallMachine);
    EXPECT_EQ(Read(), expected);
    EXPECT_TRUE(m_warnings.m_texts.empty());
    EXPECT_FALSE(fs::exists(File()));
    EXPECT_EQ(ReadOptionsFile(""), TOptions());
}

TEST_F(OptionsFileTest, ReadOptions_FileThatIsNone_GivesDefaultsSilently) {
    fs::create_directory(File());
    EXPECT_EQ(ReadOptionsFile(File()), TOptions());
    Read();
    EXPECT_TRUE(m_warnings.m_texts.empty());
}

TEST_F(OptionsFileTest, ReadOptions_Garbage_GivesDefaultsSilently) {
    Write("\xff\xfe\x01=[[[=\n]=\r\r[chess\n=\n==\n[]]\nQuickMode\n[chess]=\0QuickMode=0\n"s);
    EXPECT_EQ(ReadOptionsFile(File()), TOptions());
    Read();
    EXPECT_TRUE(m_warnings.m_texts.empty());
}

TEST_F(OptionsFileTest, ReadOptions_OtherSections_AreNotRead) {
    Write("QuickMode=0\n[other]\nQuickMode=0\n[chessboard]\nQuickMode=0\n");
    EXPECT_TRUE(Read().QuickMode);
}

TEST_F(OptionsFileTest, ReadOptions_SecondRead_ForgetsTheFirst) {
    TOptions options;
    Write("[chess]\nMinimizeToTray=0\nPrecalcPath=/tables\n");
    ReadOptions(File(), kSmallMachine, m_warnings, options);
    EXPECT_EQ(options.PrecalcPath, "/tables");
    Write("[chess]\n");
    ReadOptions(File(), kSmallMachine, m_warnings, options);
    EXPECT_EQ(options.MinimizeToTray, 2);
    EXPECT_EQ(options.PrecalcPath, "");
}

TEST_F(OptionsFileTest, ReadOptions_Global_IsTheDefaultTarget) {
    Write("[chess]\nLichessLevels=7\n");
    ReadOptions(File(), kSmallMachine, m_warnings);
    EXPECT_EQ(g_options.LichessLevels, 7);
    g_options.LichessLevels = 8;
    EXPECT_TRUE(WriteOptions(File()));
    EXPECT_EQ(FileValue("LichessLevels"), "8");
    g_options = TOptions();
}

struct TTextCase {
    const char* text;
    int value;
};

// LastProcessedMsgId has the widest range, ObserverLevels is signed.
TEST_F(OptionsFileTest, ReadOptions_NumberText_IsReadUpToTheFirstOtherCharacter) {
    for (const TTextCase& row : {TTextCase{"12", 12},
                                 {"12abc", 12},
                                 {"abc", 0},
                                 {"", 0},
                                 {"-12", -12},
                                 {"+12", 12},
                                 {"-", 0},
                                 {"- 12", 0},
                                 {"--12", 0},
                                 {"0x10", 0},
                                 {"007", 7},
                                 {"1 2", 1},
                                 {"1.9", 1},
                                 {"\"12\"", 12},
                                 {"12 ; remark", 12},
                                 {"\t 12 \t", 12},
                                 {"99999", 32767},
                                 {"-99999", -32768},
                                 {"4294967296", 32767},
                                 {"-4294967297", -32768},
                                 {"99999999999999999999999999999", 32767},
                                 {"-99999999999999999999999999999", -32768}}) {
        EXPECT_EQ(ReadLines("ObserverLevels=" + std::string(row.text) + "\n").ObserverLevels,
                  row.value)
            << row.text;
    }
    EXPECT_EQ(ReadLines("LastProcessedMsgId=2147483647").LastProcessedMsgId, 2147483647);
    EXPECT_EQ(ReadLines("LastProcessedMsgId=2147483648").LastProcessedMsgId, 2147483647);
}

TEST_F(OptionsFileTest, ReadOptions_EveryBoolean_TakesAnyNumberButZeroAsYes) {
    int booleans = 0;
    for (const TDescribedOption& row : kDescribed) {
        if (row.low != 0 || row.high != 1) {
            continue;
        }
        ++booleans;
        const std::string key = row.key;
        for (const TTextCase& text : {TTextCase{"0", 0},
                                      {"1", 1},
                                      {"2", 1},
                                      {"-1", 1},
                                      {"300", 1},
                                      {"256", 1},
                                      {"yes", 0},
                                      {"true", 0},
                                      {"", 0}}) {
            ReadLines(key + "=" + text.text + "\n");
            EXPECT_EQ(FileValue(key), std::to_string(text.value)) << key << "=" << text.text;
        }
    }
    EXPECT_EQ(booleans, 19);
}

TEST_F(OptionsFileTest, ReadOptions_NumberBeyondTheRange_IsTheEndOfTheRange) {
    for (const TDescribedOption& row : kDescribed) {
        const std::string key = row.key;
        if (row.high <= 1 || key == "LanguageId" || key == "AskForGlobalRegisterRecompression") {
            continue;
        }
        ReadLines(key + "=" + std::to_string(row.high) + "\n");
        EXPECT_EQ(FileValue(key), std::to_string(row.high)) << key;
        ReadLines(key + "=" + std::to_string(row.high + 1) + "\n");
        EXPECT_EQ(FileValue(key), std::to_string(row.high)) << key;
        ReadLines(key + "=" + std::to_string(row.low) + "\n");
        EXPECT_EQ(FileValue(key), std::to_string(row.low)) << key;
        ReadLines(key + "=" + std::to_string(row.low - 1) + "\n");
        EXPECT_EQ(FileValue(key), std::to_string(row.low)) << key;
    }
}

TEST_F(OptionsFileTest, ReadOptions_UnknownLanguage_IsEnglish) {
    EXPECT_EQ(LanguageOf(ReadLines("LanguageId=0\n")), ELanguage::kPolish);
    EXPECT_EQ(LanguageOf(ReadLines("LanguageId=1\n")), ELanguage::kEnglish);
    EXPECT_EQ(LanguageOf(ReadLines("LanguageId=2\n")), ELanguage::kUkrainian);
    EXPECT_EQ(LanguageOf(ReadLines("LanguageId=3\n")), ELanguage::kEnglish);
    EXPECT_EQ(LanguageOf(ReadLines("LanguageId=-1\n")), ELanguage::kEnglish);
    EXPECT_EQ(LanguageOf(ReadLines("")), ELanguage::kEnglish);
}

TEST_F(OptionsFileTest, ReadOptions_SchedulerLevels_AreOneMoreThanInTheFile) {
    EXPECT_EQ(ReadLines("").SchedulerLevels, 6);
    EXPECT_EQ(ReadLines("SchedulerLevels=5\n").SchedulerLevels, 6);
    EXPECT_EQ(ReadLines("SchedulerLevels=0\n").SchedulerLevels, 1);
    EXPECT_EQ(ReadLines("SchedulerLevels=8\n").SchedulerLevels, 9);
    EXPECT_EQ(ReadLines("SchedulerLevels=9\n").SchedulerLevels, 9);
    EXPECT_EQ(ReadLines("SchedulerLevels=-2\n").SchedulerLevels, 0);
    EXPECT_EQ(ReadLines("SchedulerLevels=-2147483648\n").SchedulerLevels, 0);
    EXPECT_EQ(ReadLines("SchedulerLevels=2147483647\n").SchedulerLevels, 9);
}

TEST_F(OptionsFileTest, ReadOptions_OnlySchedulerMinusOne_IsOffAndSavedAsMinusOne) {
    Write("[chess]\nSchedulerLevels=-1\n");
    const TOptions options = Read();
    EXPECT_EQ(options.SchedulerLevels, 0);
    EXPECT_TRUE(WriteOptions(File(), options));
    EXPECT_TRUE(Bytes().starts_with("[chess]\nSchedulerLevels=-1\n")) << Bytes();
}

TEST_F(OptionsFileTest, ReadOptions_MultithreadingLevels_AreABooleanInTheFile) {
    const TSystemInfo large = {u64{64} << 30, 16, 16};
    EXPECT_EQ(ReadLines("MultithreadingLevels=0\n").MultithreadingLevels, 0);
    EXPECT_EQ(ReadLines("MultithreadingLevels=1\n").MultithreadingLevels, 1);
    EXPECT_EQ(ReadLines("MultithreadingLevels=3\n").MultithreadingLevels, 1);
    EXPECT_EQ(ReadLines("MultithreadingLevels=3\n", large).MultithreadingLevels, 2);
    EXPECT_EQ(ReadLines("").MultithreadingLevels, 1);
    EXPECT_EQ(ReadLines("", large).MultithreadingLevels, 2);
}

TEST_F(OptionsFileTest, WriteOptions_MultithreadingLevels_AreWrittenAsANumberButReadAsOne) {
    TOptions options;
    options.MultithreadingLevels = 2;
    ASSERT_TRUE(WriteOptions(File(), options));
    EXPECT_NE(Bytes().find("\nMultithreadingLevels=2\n"), std::string::npos);
    EXPECT_EQ(Read().MultithreadingLevels, 1);
}

TEST_F(OptionsFileTest, ReadOptions_UseMainVariantAboveTwo_IsTwo) {
    EXPECT_EQ(ReadLines("UseMainVariantAsSortIndications=7\n").UseMainVariantAsSortIndications, 2);
    EXPECT_EQ(ReadLines("UseMainVariantAsSortIndications=1\n").UseMainVariantAsSortIndications, 1);
}

TEST_F(OptionsFileTest, ReadOptions_PrecalcPath_IsTakenAsText) {
    EXPECT_EQ(ReadLines("PrecalcPath=/a b/ą;c # d\n").PrecalcPath, "/a b/ą;c # d");
    EXPECT_EQ(ReadLines("PrecalcPath = \" 12 \"\n").PrecalcPath, " 12 ");
    EXPECT_EQ(ReadLines("PrecalcPath=\n").PrecalcPath, "");
}

// The check of one option against another, and the warnings

constexpr const char* kCrossWarning =
    "Value of parameter AskForGlobalRegisterRecompression should not be greater than "
    "UseDataPackedForRandomAccess.";

TEST_F(OptionsFileTest, ReadOptions_RecompressionAboveAccess_IsLoweredWithAWarning) {
    const TOptions options =
        ReadLines("AskForGlobalRegisterRecompression=2\nUseDataPackedForRandomAccess=1\n");
    EXPECT_EQ(options.AskForGlobalRegisterRecompression, 1);
    EXPECT_EQ(options.UseDataPackedForRandomAccess, 1);
    EXPECT_EQ(m_warnings.m_titles, std::vector<std::string>{"Warning"});
    EXPECT_EQ(m_warnings.m_texts, std::vector<std::string>{kCrossWarning});
    EXPECT_EQ(m_warnings.m_polishTexts,
              std::vector<std::string>{
                  "Wartość parametru AskForGlobalRegisterRecompression nie powinna być większa niż "
                  "UseDataPackedForRandomAccess."});
}

TEST_F(OptionsFileTest, ReadOptions_RecompressionAboveEveryRange_IsLoweredWithAWarning) {
    EXPECT_EQ(ReadLines("AskForGlobalRegisterRecompression=9\n").AskForGlobalRegisterRecompression,
              2);
    EXPECT_EQ(m_warnings.m_texts, std::vector<std::string>{kCrossWarning});
    ReadLines("UseDataPackedForRandomAccess=0\nAskForGlobalRegisterRecompression=1\n");
    EXPECT_EQ(m_warnings.m_texts, std::vector<std::string>{kCrossWarning});
}

TEST_F(OptionsFileTest, ReadOptions_RecompressionNotAboveAccess_GivesNoWarning) {
    const TOptions options =
        ReadLines("AskForGlobalRegisterRecompression=1\nUseDataPackedForRandomAccess=1\n");
    EXPECT_EQ(options.AskForGlobalRegisterRecompression, 1);
    EXPECT_EQ(ReadLines("AskForGlobalRegisterRecompression=-5\n").AskForGlobalRegisterRecompression,
              0);
    EXPECT_TRUE(m_warnings.m_texts.empty());
}

TEST_F(OptionsFileTest, ReadOptions_LogMovesOn_IsWarnedAbout) {
    ReadLines("LogMoves=1\n");
    EXPECT_EQ(m_warnings.m_titles, std::vector<std::string>{"Warning"});
    EXPECT_EQ(m_warnings.m_texts,
              std::vector<std::string>{
                  "Program has been opened with the option to write log of full analysis - this "
                  "option is not recommended (it makes solving last much longer and produces large "
                  "log files)"});
    ReadLines("LogMoves=0\n");
    EXPECT_TRUE(m_warnings.m_texts.empty());
}

TEST_F(OptionsFileTest, ReadOptions_WhenItWarns_EverythingIsRead) {
    class CLookingSink : public IWarningSink {
    public:
        void Warn(EMessage, EMessage, const std::vector<std::string>&) override {
            ++m_warnings;
            EXPECT_EQ(g_options.LanguageId, 2);
            EXPECT_EQ(g_options.LastProcessedMsgId, 44);
            EXPECT_EQ(g_options.tempRegLimitMegabytes, 409U);
            EXPECT_EQ(g_options.threadCount, 4);
            EXPECT_EQ(g_options.AskForGlobalRegisterRecompression, 0);
        }
        int m_warnings = 0;
    };
    Write("[chess]\nLogMoves=1\nLanguageId=2\nLastProcessedMsgId=44\nMaxMemRatioForTempReg=10\n"
          "AskForGlobalRegisterRecompression=1\nUseDataPackedForRandomAccess=0\n");
    CLookingSink sink;
    ReadOptions(File(), {u64{4} << 30, 4, 4}, sink);
    EXPECT_EQ(sink.m_warnings, 2);
    g_options = TOptions();
}

// What comes from the machine

TEST(UpdateMemoryLimits, Limits_AreInIntegerArithmetic) {
    TOptions options;
    options.MaxMemRatioForTempReg = 33;
    options.MaxMemRatioForPrecalculatedData = 7;
    const u64 bytes = (u64{1000} << 20) + 1048575;
    UpdateMemoryLimits(options, {bytes, 1, 1});
    EXPECT_EQ(options.tempRegLimitMegabytes, 330U);
    EXPECT_EQ(options.fixedRatioLimitMegabytes, 200U);
    EXPECT_EQ(options.precalculatedDataLimitBytes, 73473720U);  // 7 * 1049624575 / 100
}

TEST(UpdateMemoryLimits, FixedLimit_DoesNotFollowTheOption) {
    TOptions options;
    options.MaxMemRatioForTempReg = 0;
    options.MaxMemRatioForPrecalculatedData = 100;
    const u64 bytes = u64{3} << 40;
    UpdateMemoryLimits(options, {bytes, 1, 1});
    EXPECT_EQ(options.tempRegLimitMegabytes, 0U);
    EXPECT_EQ(options.fixedRatioLimitMegabytes, 629145U);  // 3145728 * 20 / 100
    EXPECT_EQ(options.precalculatedDataLimitBytes, bytes);
}

struct TMachineCase {
    int cores;
    int logical;
    int threads;
    int levels;
};

TEST(ApplyThreadSettings, Threads_FollowTheMachine) {
    for (const TMachineCase& row : {TMachineCase{1, 1, 1, 1},
                                    {4, 8, 8, 1},
                                    {5, 20, 20, 1},
                                    {6, 6, 6, 1},
                                    {6, 11, 11, 1},
                                    {6, 12, 4, 2},
                                    {7, 7, 7, 1},
                                    {7, 14, 4, 2},
                                    {8, 8, 4, 2},
                                    {16, 32, 4, 2},
                                    {24, 24, 4, 2},
                                    {25, 50, 5, 2},
                                    {35, 35, 5, 2},
                                    {36, 36, 6, 2},
                                    {128, 256, 11, 2},
                                    {4, 300, 255, 1}}) {
        TOptions options;
        ApplyThreadSettings(options, {u64{1} << 30, row.logical, row.cores});
        EXPECT_EQ(options.threadCount, row.threads) << row.cores << " " << row.logical;
        EXPECT_EQ(options.MultithreadingLevels, row.levels) << row.cores << " " << row.logical;
    }
}

// Writing

TEST_F(OptionsFileTest, WriteOptions_NewFile_HoldsTheSavedKeysInTableOrder) {
    ASSERT_TRUE(WriteOptions(File(), TOptions()));
    std::string expected = "[chess]\n";
    for (const TDescribedOption& row : kDescribed) {
        if (row.writer == kSave) {
            expected += std::string(row.key) + "=" + row.defaultValue + "\n";
        }
    }
    EXPECT_EQ(Bytes(), expected);
}

TEST_F(OptionsFileTest, WriteOptions_MissingFolder_IsMade) {
    const fs::path file = File().parent_path() / "new" / "quillmere" / "options.ini";
    EXPECT_TRUE(WriteOptions(file, TOptions()));
    EXPECT_TRUE(fs::exists(file));
}

// tests/data/options: NAME.before.ini, saved with the defaults but a few, must be NAME.after.ini.
TEST_F(OptionsFileTest, WriteOptions_ForeignContent_StaysByteForByte) {
    for (const char* name : {"windows", "by_hand"}) {
        const fs::path data = fs::path(QUILLMERE_TEST_DATA) / "options";
        fs::copy_file(data / (std::string(name) + ".before.ini"),
                      File(),
                      fs::copy_options::overwrite_existing);
        TOptions options;
        options.SchedulerLevels = 0;
        options.QuickMode = false;
        options.LichessLevels = -1;
        options.PrecalcPath = "/not written by a save";
        options.LanguageId = 2;
        ASSERT_TRUE(WriteOptions(File(), options));
        EXPECT_EQ(Bytes(), test::ReadFile(data / (std::string(name) + ".after.ini"))) << name;
    }
}

TEST_F(OptionsFileTest, WriteOptions_NothingLeftBeside) {
    ASSERT_TRUE(WriteOptions(File(), TOptions()));
    ASSERT_TRUE(WriteOptions(File(), TOptions()));
    const fs::directory_iterator entries(File().parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(OptionsFileTest, WriteOptions_PlaceThatCannotBeWritten_IsFalseAndSilent) {
    fs::create_directory(File());
    EXPECT_FALSE(WriteOptions(File(), TOptions()));
    EXPECT_TRUE(fs::is_directory(File()));
    EXPECT_FALSE(WriteOptions("", TOptions()));
    const fs::path blocked = File().parent_path() / "file";
    test::WriteFile(blocked, "text");
    EXPECT_FALSE(WriteOptions(blocked / "options.ini", TOptions()));
    EXPECT_EQ(test::ReadFile(blocked), "text");
}

TEST_F(OptionsFileTest, WriteOptions_FileThatIsNoText_IsLeftAlone) {
    const std::string bytes("\xff\xfe[\0c\0h\0e\0s\0s\0]\0", 16);
    Write(bytes);
    EXPECT_FALSE(WriteOptions(File(), TOptions()));
    EXPECT_EQ(Bytes(), bytes);
}

TEST_F(OptionsFileTest, WriteOneOption_WritesThisKeyOnly) {
    Write("[chess]\nQuickMode=0\n");
    TOptions options;
    options.LanguageId = 0;
    options.QuickMode = true;
    EXPECT_TRUE(WriteOneOption(File(), "LanguageId", options));
    EXPECT_EQ(Bytes(), "[chess]\nQuickMode=0\nLanguageId=0\n");
    options.LastProcessedMsgId = 12;
    EXPECT_TRUE(WriteOneOption(File(), "LastProcessedMsgId", options));
    EXPECT_EQ(Read().LastProcessedMsgId, 12);
    EXPECT_THROW(WriteOneOption(File(), "Nothing", options), ChessException);
}

RC_GTEST_FIXTURE_PROP(OptionsFileTest, Options_WriteRead_IsIdentity, ()) {
    TOptions options;
    const auto setAny = [](auto& member, i64 low, i64 high) {
        using TValue = std::remove_reference_t<decltype(member)>;
        if constexpr (std::is_same_v<TValue, std::string>) {
            member = *rc::gen::container<std::string>(rc::gen::oneOf(
                rc::gen::inRange<char>(' ', '~'), rc::gen::element('"', ';', ' ', '\t', '=')));
        } else {
            member = static_cast<TValue>(*rc::gen::inRange<i64>(low, high + 1));
        }
    };
#define QUILLMERE_OPTION(key, type, defaultValue, low, high, rule, writer, waitsFor)               \
    setAny(options.key, low, high);
#include "session/options.def"
#undef QUILLMERE_OPTION
    const auto written = ListOptions(options);
    const auto chosen = *rc::gen::elementOf(written);

    RC_ASSERT(WriteOptions(File(), options));
    RC_ASSERT(WriteOneOption(File(), chosen.key, options));
    const auto read = ListOptions(ReadOptionsFile(File()));
    for (std::size_t i = 0; i < read.size(); ++i) {
        const bool isWritten = written[i].writer == kSave || written[i].key == chosen.key;
        RC_ASSERT(read[i].value == (isWritten ? written[i].value : written[i].defaultValue));
    }
}

// By key and text

std::string SetError(const fs::path& file, std::string_view key, std::string_view text) {
    try {
        SetOption(file, key, text);
    } catch (const ChessException& error) {
        return error.what();
    }
    return "";
}

TEST_F(OptionsFileTest, SetOption_ValueInRange_IsWrittenAsTheFileHoldsIt) {
    SetOption(File(), "SchedulerLevels", "-1");
    EXPECT_EQ(Bytes(), "[chess]\nSchedulerLevels=-1\n");
    EXPECT_EQ(Read().SchedulerLevels, 0);
    SetOption(File(), "maxmemratiofortempreg", "+007");
    EXPECT_EQ(Bytes(), "[chess]\nSchedulerLevels=-1\nMaxMemRatioForTempReg=7\n");
    EXPECT_EQ(FileValue("MAXMEMRATIOFORTEMPREG"), "7");
}

TEST_F(OptionsFileTest, SetOption_EndsOfEveryRange_AreTakenAndTheNextAreNot) {
    for (const TDescribedOption& row : kDescribed) {
        const std::string key = row.key;
        if (key == "PrecalcPath" || key == "AnsiCodePage") {
            continue;
        }
        for (const i64 value : {row.low, row.high}) {
            EXPECT_EQ(SetError(File(), key, std::to_string(value)), "") << key;
            EXPECT_EQ(FileValue(key), std::to_string(value));
        }
        const std::string before = Bytes();
        for (const i64 value : {row.low - 1, row.high + 1}) {
            EXPECT_EQ(SetError(File(), key, std::to_string(value)),
                      "Option " + key + ": " + std::to_string(value) +
                          " is out of range; allowed are " + std::to_string(row.low) + " to " +
                          std::to_string(row.high) + ".");
        }
        EXPECT_EQ(Bytes(), before);
    }
}

TEST_F(OptionsFileTest, SetOption_BadValue_IsRefusedWithKeyValueAndRange) {
    Write("[chess]\nQuickMode=1\n");
    EXPECT_EQ(SetError(File(), "Nothing", "1"), "There is no option \"Nothing\".");
    EXPECT_EQ(SetError(File(), "", "1"), "There is no option \"\".");
    EXPECT_EQ(SetError(File(), "lichesslevels", "256"),
              "Option LichessLevels: 256 is out of range; allowed are -1 to 255.");
    for (const char* text :
         {"", "abc", "12abc", " 1", "1 ", "1.5", "-", "+", "0x1", "--1", "yes"}) {
        EXPECT_EQ(SetError(File(), "QuickMode", text),
                  "Option QuickMode: \"" + std::string(text) +
                      "\" is not a whole number; allowed are 0 to 1.");
    }
    for (const char* text : {"4294967297", "18446744073709551617", "-18446744073709551615"}) {
        EXPECT_EQ(SetError(File(), "LastProcessedMsgId", text),
                  "Option LastProcessedMsgId: " + std::string(text) +
                      " is out of range; allowed are 0 to 2147483647.");
    }
    EXPECT_EQ(Bytes(), "[chess]\nQuickMode=1\n");
}

TEST_F(OptionsFileTest, SetOption_Recompression_MayNotPassAccessInTheFile) {
    Write("[chess]\nUseDataPackedForRandomAccess=1\n");
    EXPECT_EQ(SetError(File(), "AskForGlobalRegisterRecompression", "2"),
              "Option AskForGlobalRegisterRecompression: 2 is out of range; allowed are 0 to 1.");
    EXPECT_EQ(SetError(File(), "AskForGlobalRegisterRecompression", "1"), "");
    Read();
    EXPECT_TRUE(m_warnings.m_texts.empty());
}

TEST_F(OptionsFileTest, SetOption_Text_ComesBackTheSame) {
    for (const char* text : {"/a b/c;d # e",
                             "",
                             " both ends ",
                             "\"quoted\"",
                             "\"",
                             "\"\"",
                             "tab\t",
                             "=",
                             "[chess]",
                             "; no remark",
                             "C:\\tables\\",
                             "źółw"}) {
        SetOption(File(), "PrecalcPath", text);
        EXPECT_EQ(FileValue("PrecalcPath"), text);
    }
    const std::string before = Bytes();
    for (const std::string_view text :
         {std::string_view("a\nb"), std::string_view("a\r"), std::string_view("a\0b", 3)}) {
        EXPECT_EQ(SetError(File(), "PrecalcPath", text),
                  "Option PrecalcPath: a text must not contain line ends or zero characters.");
    }
    EXPECT_EQ(Bytes(), before);
}

TEST_F(OptionsFileTest, SetOption_PlaceThatCannotBeWritten_IsToldWithTheFile) {
    fs::create_directory(File());
    const std::string error = SetError(File(), "QuickMode", "0");
    EXPECT_TRUE(error.starts_with("Cannot write the file " + File().string() + ": ")) << error;
}

TEST_F(OptionsFileTest, SetOption_DoesNotTouchTheVariables) {
    const TOptions before = g_options;
    SetOption(File(), "QuickMode", "0");
    EXPECT_EQ(g_options, before);
}

TEST(GetOption, UnknownKey_IsRefused) {
    EXPECT_EQ(GetOption(TOptions(), "schedulerlevels"), "5");
    EXPECT_THROW(GetOption(TOptions(), "Scheduler"), ChessException);
}

TEST(OptionRangeText, Range_IsInTheLanguageAskedFor) {
    const auto options = ListOptions(TOptions());
    EXPECT_EQ(OptionRangeText(options[3], ELanguage::kEnglish), "-1 to 8");
    EXPECT_EQ(OptionRangeText(options[3], ELanguage::kPolish), "od -1 do 8");
    EXPECT_EQ(OptionRangeText(options[24], ELanguage::kEnglish), "any text");
}

}  // namespace
}  // namespace quillmere
