// Holds docs/cp-format.md to the program: its examples are read, and it names every word.

#include "problems/problem_options.h"
#include "problems/problem_parts.h"
#include "problems/problem_reader.h"
#include "problems/problem_writer.h"
#include "problems/save_losses.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillmere {
namespace {

std::string Document() {
    return test::ReadFile(std::string(QUILLMERE_SOURCE_DIR) + "/docs/cp-format.md");
}

// The blocks that are whole files.
std::vector<std::string> Examples() {
    constexpr std::string_view kOpening = "```cp\n";
    constexpr std::string_view kClosing = "```\n";
    const std::string document = Document();
    std::vector<std::string> examples;
    for (std::size_t at = document.find(kOpening); at != std::string::npos;
         at = document.find(kOpening, at)) {
        at += kOpening.size();
        examples.push_back(document.substr(at, document.find(kClosing, at) - at));
    }
    return examples;
}

TEST(CpFormatDocument, Examples_AreReadAndKeptBySaves) {
    const std::vector<std::string> examples = Examples();
    ASSERT_EQ(examples.size(), 2U);
    for (const std::string& example : examples) {
        TProblemCollection collection;
        ASSERT_NO_THROW(ReadProblems(example, collection, {})) << example;
        EXPECT_FALSE(collection.problems.empty());
        EXPECT_TRUE(SaveLossLines(collection, ELanguage::kEnglish).empty());
        for (const auto& [number, problem] : collection.problems)
            EXPECT_TRUE(problem->IsPositionValid()) << number;
    }
}

TEST(CpFormatDocument, EveryOption_HasItsLine) {
    const std::string document = ToUpper(Document());
    const std::size_t losses = document.find("## WHAT A SAVE LOSES");
    ASSERT_NE(losses, std::string::npos);
    for (const TProblemOptionRow& row : kProblemOptionRows) {
        const std::string word(row.keyword);
        const bool hasLine = document.find("| `" + word + "`") != std::string::npos ||
                             document.find("| `" + word + " ") != std::string::npos;
        EXPECT_TRUE(hasLine) << word;
        const bool isListed = document.find("`" + word + "`", losses) != std::string::npos;
        EXPECT_EQ(isListed, row.isLost) << word;
    }
}

}  // namespace
}  // namespace quillmere
