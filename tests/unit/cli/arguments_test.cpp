#include "cli/arguments.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TArguments Parse(std::vector<const char*> words) {
    words.insert(words.begin(), "quillmere");
    return ParseArguments(static_cast<int>(words.size()), words.data());
}

EMessage FaultOf(const std::vector<const char*>& words) {
    try {
        Parse(words);
    } catch (const CUsageException& fault) {
        return fault.Id();
    }
    return EMessage::kCount;
}

TEST(ParseArguments, Options_StandBeforeOrBehindThePosition) {
    for (const auto& words : std::vector<std::vector<const char*>>{
             {"solve", "--moves", "3", "--json", "8/8 w"},
             {"solve", "8/8 w", "--moves=3", "--json"},
             {"--quiet", "solve", "8/8 w", "--json", "--moves", "3"}}) {
        const TArguments arguments = Parse(words);
        EXPECT_EQ(arguments.command, "solve");
        EXPECT_EQ(arguments.positionals, std::vector<std::string>{"8/8 w"});
        EXPECT_EQ(arguments.Number("--moves", 1, 9), 3);
        EXPECT_TRUE(arguments.Has("--json"));
        EXPECT_FALSE(arguments.Has("--all"));
    }
}

TEST(ParseArguments, FenWithoutQuotes_IsKeptInItsWords) {
    const TArguments arguments = Parse({"solve", "8/8", "w", "-", "-", "--moves", "2"});
    EXPECT_EQ(arguments.positionals, (std::vector<std::string>{"8/8", "w", "-", "-"}));
}

TEST(ParseArguments, NegativeNumber_IsAValue) {
    const TArguments arguments = Parse({"options", "set", "LichessLevels", "-1"});
    EXPECT_EQ(arguments.positionals.back(), "-1");
}

TEST(ParseArguments, LastOfARepeatedOption_Counts) {
    EXPECT_EQ(Parse({"solve", "x", "--moves", "2", "--moves", "4"}).Number("--moves", 1, 9), 4);
}

TEST(ParseArguments, HelpNeedsNoArguments) {
    EXPECT_TRUE(Parse({"solve", "--help"}).Has("--help"));
    EXPECT_TRUE(Parse({"-h"}).Has("--help"));
    EXPECT_TRUE(Parse({"--version"}).Has("--version"));
}

TEST(ParseArguments, EachFault_IsNamed) {
    const std::pair<std::vector<const char*>, EMessage> kFaults[] = {
        {{"dance"}, EMessage::kUsageUnknownCommand},
        {{"--dance"}, EMessage::kUsageNoCommand},
        {{"solve", "x", "--dance"}, EMessage::kUsageUnknownOption},
        {{"solve"}, EMessage::kUsageMissingArgument},
        {{"perft", "x"}, EMessage::kUsageMissingArgument},
        {{"epd", "a", "b"}, EMessage::kUsageUnexpectedArgument},
        {{"bench", "x"}, EMessage::kUsageUnexpectedArgument},
        {{"solve", "x", "--moves"}, EMessage::kUsageBadOption},
        {{"perft", "x", "1", "--moves", "2"}, EMessage::kUsageUnknownOption},
    };
    for (const auto& [words, id] : kFaults)
        EXPECT_EQ(MessageName(FaultOf(words)), MessageName(id)) << words.back();
}

TEST(Arguments, Numbers_AreReadStrictly) {
    const auto isFault = [](const char* text) {
        const TArguments arguments = Parse({"solve", "x", "--moves", text});
        try {
            (void)arguments.Number("--moves", 1, 1000);
        } catch (const CUsageException&) {
            return true;
        }
        return false;
    };
    for (const char* text : {"0", "-1", "1001", "3x", "", "1.5", "99999999999999999999", "+3"})
        EXPECT_TRUE(isFault(text)) << text;
    for (const char* text : {"1", "1000", "007"})
        EXPECT_FALSE(isFault(text)) << text;
}

TEST(Arguments, Decimals_HaveAPointInEveryLocale) {
    const TArguments arguments = Parse({"solve", "x", "--time", "0.25"});
    EXPECT_EQ(arguments.Decimal("--time", 0, 10), 0.25);
    for (const char* text : {"0,25", "-1", "inf", "nan", "11", "1e1", "x"})
        EXPECT_THROW((void)Parse({"solve", "x", "--time", text}).Decimal("--time", 0, 10),
                     CUsageException)
            << text;
}

TEST(FindLanguage, IsFoundWhateverElseIsWrong) {
    const char* words[] = {"quillmere", "dance", "--language", "pl"};
    EXPECT_EQ(FindLanguage(4, words), ELanguage::kPolish);
    const char* joined[] = {"quillmere", "--language=uk", "--dance"};
    EXPECT_EQ(FindLanguage(3, joined), ELanguage::kUkrainian);
    const char* cut[] = {"quillmere", "--language"};
    EXPECT_EQ(FindLanguage(2, cut), std::nullopt);
}

TEST(Help, ListsEveryCommandAndOption) {
    const std::string help = ShortHelp(ELanguage::kEnglish);
    for (const char* word : {"solve", "epd", "perft", "position", "options", "bench", "--language"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
    const std::string solve = CommandHelp("solve", "", ELanguage::kEnglish);
    for (const char* word : {"--moves N", "--half-moves H", "--tries", "--time S"})
        EXPECT_NE(solve.find(word), std::string::npos) << word;
    EXPECT_NE(CommandHelp("bench", "long, short", ELanguage::kEnglish).find("long, short"),
              std::string::npos);
}

}  // namespace
}  // namespace quillmere
