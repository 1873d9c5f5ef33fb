#include "core/chess_exception.h"
#include "core/messages.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>

namespace quillmere {
namespace {

constexpr ELanguage kLanguages[kLanguageCount] = {
    ELanguage::kPolish, ELanguage::kEnglish, ELanguage::kUkrainian};

EMessage MessageAt(int index) {
    return static_cast<EMessage>(index);
}

constexpr int kMessageCount = static_cast<int>(EMessage::kCount);

std::set<std::string> PlacesOf(std::string_view text) {
    static const std::regex place(R"(\{[0-9]\})");
    const std::string copy(text);
    std::set<std::string> places;
    for (std::sregex_iterator it(copy.begin(), copy.end(), place), end; it != end; ++it) {
        places.insert(it->str());
    }
    return places;
}

// Length of the UTF-8 form that begins here, 0 if it is none.
std::size_t Utf8Length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t length = byte(0) < 0x80                      ? 1
                               : byte(0) >= 0xc2 && byte(0) < 0xe0 ? 2
                               : byte(0) >= 0xe0 && byte(0) < 0xf0 ? 3
                               : byte(0) >= 0xf0 && byte(0) < 0xf5 ? 4
                                                                   : 0;
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= text.size() || (byte(i) & 0xc0) != 0x80) {
            return 0;
        }
    }
    return length;
}

TEST(MessageTable, EnglishForm_IsNeverEmpty) {
    for (int i = 0; i < kMessageCount; ++i) {
        EXPECT_FALSE(MessageForm(MessageAt(i), ELanguage::kEnglish).empty())
            << MessageName(MessageAt(i));
    }
}

TEST(MessageTable, Places_AreEqualInAllForms) {
    for (int i = 0; i < kMessageCount; ++i) {
        const EMessage id = MessageAt(i);
        const auto english = PlacesOf(MessageForm(id, ELanguage::kEnglish));
        for (const ELanguage language : kLanguages) {
            const std::string_view form = MessageForm(id, language);
            if (!form.empty()) {
                EXPECT_EQ(PlacesOf(form), english) << MessageName(id) << ": " << form;
            }
        }
    }
}

TEST(MessageTable, Places_CountUpFromZero) {
    for (int i = 0; i < kMessageCount; ++i) {
        int next = 0;
        for (const std::string& place : PlacesOf(MessageText(MessageAt(i), ELanguage::kEnglish))) {
            EXPECT_EQ(place, "{" + std::to_string(next++) + "}") << MessageName(MessageAt(i));
        }
    }
}

TEST(MessageTable, Names_AreUniqueAndFollowTheEnum) {
    std::set<std::string_view> names;
    for (int i = 0; i < kMessageCount; ++i) {
        EXPECT_TRUE(names.insert(MessageName(MessageAt(i))).second) << MessageName(MessageAt(i));
    }
    EXPECT_EQ(MessageName(EMessage::kIllegalMove), "kIllegalMove");
    EXPECT_EQ(MessageText(EMessage::kIllegalMove, ELanguage::kEnglish), "Illegal move");
}

TEST(MessageTable, Texts_AreCleanUtf8) {
    for (int i = 0; i < kMessageCount; ++i) {
        for (const ELanguage language : kLanguages) {
            std::string_view form = MessageForm(MessageAt(i), language);
            if (form.empty()) {
                continue;
            }
            EXPECT_NE(form.front(), ' ') << form;
            // The blank behind the one conflict of the heuristics is part of its text.
            if (MessageAt(i) != EMessage::kConflictKingMoveAndEdge) {
                EXPECT_NE(form.back(), ' ') << form;
            }
            EXPECT_EQ(form.find("  "), std::string_view::npos) << form;
            while (!form.empty()) {
                const std::size_t length = Utf8Length(form);
                ASSERT_GT(length, 0U) << MessageName(MessageAt(i));
                form.remove_prefix(length);
            }
        }
    }
}

TEST(MessageText, EmptyForm_FallsBackOnEnglish) {
    for (int i = 0; i < kMessageCount; ++i) {
        const EMessage id = MessageAt(i);
        for (const ELanguage language : kLanguages) {
            const std::string_view form = MessageForm(id, language);
            EXPECT_EQ(MessageText(id, language),
                      form.empty() ? MessageForm(id, ELanguage::kEnglish) : form);
        }
    }
}

TEST(MessageText, UnknownLanguage_IsEnglish) {
    EXPECT_EQ(MessageText(EMessage::kIllegalMove, static_cast<ELanguage>(3)), "Illegal move");
    EXPECT_EQ(MessageText(EMessage::kIllegalMove, static_cast<ELanguage>(-1)), "Illegal move");
}

TEST(MessageText, EachLanguage_HasItsOwnForm) {
    EXPECT_EQ(MessageText(EMessage::kIllegalMove, ELanguage::kPolish), "Niedozwolony ruch");
    EXPECT_EQ(MessageText(EMessage::kIllegalMove, ELanguage::kUkrainian), "Недозволений хід");
}

TEST(FormatMessage, Values_StandAtTheirPlaces) {
    EXPECT_EQ(FormatMessage(EMessage::kTooManyMoves, ELanguage::kEnglish, {"300", "248"}),
              "The position could need lists of 300 moves; at most 248 are handled.");
    EXPECT_EQ(FormatMessage(EMessage::kUnknownFigureLetter, ELanguage::kPolish, {"w"}),
              "Nieznana litera figury: w");
}

TEST(FormatMessage, PlaceWithoutValue_StaysAsItIs) {
    EXPECT_EQ(FormatMessage(EMessage::kTooManyMoves, ELanguage::kEnglish, {"300"}),
              "The position could need lists of 300 moves; at most {1} are handled.");
    EXPECT_EQ(FormatMessage(EMessage::kUnknownFigureLetter, ELanguage::kEnglish),
              "Unknown figure letter: {0}");
}

TEST(FormatMessage, SpareValues_AreNotShown) {
    EXPECT_EQ(FormatMessage(EMessage::kIllegalMove, ELanguage::kEnglish, {"a", "b"}),
              "Illegal move");
}

TEST(FormatMessage, ValueThatLooksLikeAPlace_IsTakenLiterally) {
    EXPECT_EQ(FormatMessage(EMessage::kTooManyMoves, ELanguage::kEnglish, {"{1}", "{0}"}),
              "The position could need lists of {1} moves; at most {0} are handled.");
}

TEST(ChessException, Text_IsInTheLanguageAskedFor) {
    const ChessException error(EMessage::kUnknownFigureLetter, {"z"});
    EXPECT_EQ(error.Id(), EMessage::kUnknownFigureLetter);
    EXPECT_EQ(error.Values(), std::vector<std::string>{"z"});
    EXPECT_STREQ(error.what(), "Unknown figure letter: z");
    EXPECT_EQ(error.Text(ELanguage::kPolish), "Nieznana litera figury: z");
}

// A fault that is thrown with a text of its own would reach the user in one language only.
TEST(MessageTable, EveryThrow_IsAChessException) {
    static const std::regex foreignThrow(R"(\bthrow\s+(std::|"|[a-z_]+_error\b))");
    namespace fs = std::filesystem;
    int files = 0;
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
            if (entry.path().extension() == ".cpp" || entry.path().extension() == ".h") {
                ++files;
                EXPECT_FALSE(std::regex_search(test::ReadFile(entry.path()), foreignThrow))
                    << entry.path();
            }
        }
    }
    EXPECT_GT(files, 10);
}

}  // namespace
}  // namespace quillmere
