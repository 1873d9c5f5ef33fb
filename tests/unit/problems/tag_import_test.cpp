#include "problems/tag_import.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

namespace fs = std::filesystem;
using TTags = std::set<std::string>;

class TagImport : public testing::Test {
protected:
    TTags Import(const std::string& text) {
        test::WriteFile(m_file, text);
        TTags tags;
        const std::size_t count = ImportTags(m_file, tags, m_settings);
        EXPECT_EQ(count, tags.size());
        return tags;
    }
    test::CTemporaryFolder m_folder;
    fs::path m_file = m_folder.Path() / "file.cp";
    TReadSettings m_settings;
};

TEST_F(TagImport, LinesOfBlocks_AreTags) {
    const struct {
        const char* text;
        TTags tags;
    } rows[] = {
        {"UTF-8\n\n1 #2\n//#TAGS\n//#alpha\n//#beta gamma\n{\n", {"alpha", "beta gamma"}},
        {"UTF-8\n//#alpha\n1 #2\n//#TAGS\n//#beta\n//!VARIANTS\n//#gamma\n", {"beta"}},
        {"UTF-8\n//#TAGS\n//#alpha\n{\n}\n2 #2\n//#TAGS\n//#beta\n//#alpha\n", {"alpha", "beta"}},
        {"UTF-8\r\n//#TAGS\r\n//#alpha \r\n{\r\n", {"alpha"}},
        {"\xef\xbb\xbfUTF-8\n//#TAGS\n//#\xc5\xbc\xc3\xb3\xc5\x82w\n", {"żółw"}},
        {"\xef\xbb\xbf"
         "1 #2\n//#TAGS\n//#\xc5\xbc\xc3\xb3\xc5\x82w\n",
         {"żółw"}},
        {"UTF-8\n//#TAGS\n//#alpha\n\n// a comment\n//#beta\n{\n", {"alpha", "beta"}},
        {" UTF-8\n//#TAGS\n//#no line end", {"no line end"}},
        {"UTF-8\n//#TAGS\n//#\n//# \n//#alpha\n", {"alpha"}},
        {"UTF-8\n//#TAGS\n", {}},
        {"", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Import(row.text), row.tags) << row.text;
}

TEST_F(TagImport, FileWithoutTheEncodingLine_IsReadByItsCodePage) {
    EXPECT_EQ(Import("1 #2\n//#TAGS\n//#\xbf\xf3\xb3w\n"), TTags{"żółw"});
    m_settings.ansiCodePage = "no such page";
    TTags tags = {"old"};
    EXPECT_THROW(ImportTags(m_file, tags, m_settings), ChessException);
    EXPECT_EQ(tags, TTags{"old"});
}

TEST_F(TagImport, KnownTags_ComeInTheLanguageOfTheUser) {
    EXPECT_EQ(Import("UTF-8\n//#TAGS\n//#roszada\n"), TTags{"castling"});
    m_settings.language = ELanguage::kPolish;
    EXPECT_EQ(Import("UTF-8\n//#TAGS\n//#castling\n"), TTags{"roszada"});
}

// The file is read in pieces of 65,535 bytes: a line across their border stays one line.
TEST_F(TagImport, LineAcrossPieces_IsOneTag) {
    for (int shift = -12; shift <= 4; ++shift) {
        std::string text = "UTF-8\n//#TAGS\n";
        text += "//#" +
                std::string(static_cast<std::size_t>(65'535 + shift) - text.size() - 4, 'a') +
                "\n//#//#beta\n//#gamma\n";
        const TTags tags = Import(text);
        EXPECT_EQ(tags.size(), 3u) << shift;
        EXPECT_EQ(tags.count("//#beta"), 1u) << shift;
        EXPECT_EQ(tags.count("gamma"), 1u) << shift;
    }
}

TEST_F(TagImport, OnlyNewTags_AreCounted) {
    test::WriteFile(m_file, "UTF-8\n//#TAGS\n//#alpha\n//#beta\n");
    TTags tags = {"alpha", "omega"};
    EXPECT_EQ(ImportTags(m_file, tags, m_settings), 1u);
    EXPECT_EQ(tags, (TTags{"alpha", "beta", "omega"}));
}

TEST_F(TagImport, FileThatCannotBeRead_IsAFault) {
    TTags tags;
    for (const fs::path& path : {m_folder.Path() / "missing", m_folder.Path()}) {
        try {
            ImportTags(path, tags, m_settings);
            ADD_FAILURE() << path;
        } catch (const ChessException& fault) {
            EXPECT_STREQ(fault.what(), "Error reading file.");
        }
    }
}

}  // namespace
}  // namespace quillmere
