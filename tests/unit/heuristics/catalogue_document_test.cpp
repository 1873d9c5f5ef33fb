#include "heuristics/catalogue.h"
#include "heuristics/catalogue_document.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(HeuristicsDocument, FileInDocs_IsUpToDate) {
    const auto file = std::filesystem::path(QUILLMERE_SOURCE_DIR) / "docs" / "heuristics.md";
    EXPECT_EQ(test::ReadFile(file), HeuristicsDocument())
        << "run quillmere_generate_docs with the folder docs";
}

TEST(HeuristicsDocument, Entries_HaveALineEachWithFiveCells) {
    const std::string document = HeuristicsDocument();
    for (const THeuristicRow& row : kHeuristicRows) {
        const std::size_t start = document.find("\n| `" + std::string(row.name) + "` | ");
        ASSERT_NE(start, std::string::npos) << row.name;
        const std::string line =
            document.substr(start + 1, document.find('\n', start + 1) - start - 1);
        EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 6) << line;
    }
}

}  // namespace
}  // namespace quillmere
