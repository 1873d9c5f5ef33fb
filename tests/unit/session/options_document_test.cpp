#include "session/options.h"
#include "session/options_document.h"
#include "tests/support/temporary_folder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(OptionsDocument, FileInDocs_IsUpToDate) {
    const auto file = std::filesystem::path(QUILLMERE_SOURCE_DIR) / "docs" / "options.md";
    EXPECT_EQ(test::ReadFile(file), OptionsDocument())
        << "run: quillmere_generate_docs " << file.parent_path().string();
}

TEST(OptionsDocument, Cells_DoNotBreakTheTable) {
    for (const TOptionView& option : ListOptions(TOptions())) {
        const std::string_view help = MessageText(option.help, ELanguage::kEnglish);
        EXPECT_EQ(help.find_first_of("|\n"), std::string_view::npos) << option.key;
    }
}

}  // namespace
}  // namespace quillmere
