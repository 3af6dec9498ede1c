// The manual is what its template and the plug-in's tables make of it today. To write it anew:
//     build/release/tolm-manual docs/manual.template.md docs/manual.md

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tolm {
namespace {

std::string contentsOf(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Manual, isUpToDate)
{
    const std::filesystem::path docs = std::filesystem::path(TOLM_SOURCE_DIR) / "docs";
    const std::filesystem::path fresh = std::filesystem::path(TOLM_BUILD_DIR) / "manual.md";
    const std::string command = std::string("\"" TOLM_MANUAL "\" \"") +
                                (docs / "manual.template.md").string() + "\" \"" + fresh.string() +
                                '"';
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string text = contentsOf(fresh);
    EXPECT_EQ(text.find("{{"), std::string::npos) << "a place without its table";
    EXPECT_TRUE(text == contentsOf(docs / "manual.md")) << "docs/manual.md is not up to date";
}

} // namespace
} // namespace tolm
