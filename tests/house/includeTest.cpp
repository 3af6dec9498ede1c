// Who may include whom: the folders' table, checked against every #include line of the sources.
// Link dependencies keep a folder from calling another; this keeps it from reading its headers.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string_view>;

// Headers that include the standard library and each other only.
const Names kLeaves = {
    "engine/constants.h", "engine/tables.h",       "plugin/catalogue.h",
    "plugin/menus.h",     "patch/ProgramRecord.h",
};

// "x/" admits a folder, "x/y.h" one header. Every folder may include itself.
struct FolderRule {
    std::string_view folder;
    bool leaves;
    Names others;
};

const std::vector<FolderRule> kRules = {
    {"vst2/", false, {}},
    {"fx/", true, {}},
    {"patch/", true, {}},
    {"engine/", true, {"fx/", "patch/programStore.h"}},
    {"plugin/",
     true,
     {"vst2/", "engine/", "fx/", "patch/", "editor/ADEditor.h", "editor/arpPattern.h"}},
    // Windows and drawing know the operating system and nothing of the synth.
    {"gui/", false, {}},
    // The editor knows programs and texts, and of the plug-in only what its port shows.
    {"editor/",
     true,
     {"gui/", "patch/", "plugin/EditorPort.h", "plugin/FileSelector.h", "plugin/paramText.h"}},
    // Of the plug-in the host knows the interface, and how typed parameter texts are read.
    {"host/", false, {"vst2/abi.h", "plugin/paramText.h"}},
    // Auditioning sounds plays them through the plug-in's own core.
    {"tools/", true, {"patch/", "plugin/", "engine/", "editor/", "gui/", "host/keyName.h"}},
};

// Free to include anything.
const Names kFreeFolders = {"tests/", "bench/"};

bool admits(std::string_view entry, std::string_view header)
{
    return entry.back() == '/' ? header.starts_with(entry) : header == entry;
}

bool anyAdmits(const Names& entries, std::string_view header)
{
    return std::any_of(entries.begin(), entries.end(),
                       [header](std::string_view entry) { return admits(entry, header); });
}

bool mayInclude(const FolderRule& rule, std::string_view header)
{
    return header.starts_with(rule.folder) || anyAdmits(rule.others, header) ||
           (rule.leaves && anyAdmits(kLeaves, header));
}

// The text between quotes of an #include line, empty for any other line.
std::string quotedInclude(const std::string& line)
{
    const std::size_t hash = line.find_first_not_of(" \t");
    if (hash == std::string::npos || line.compare(hash, 8, "#include") != 0)
        return {};
    const std::size_t open = line.find('"');
    const std::size_t close = line.rfind('"');
    return open < close ? line.substr(open + 1, close - open - 1) : std::string{};
}

std::vector<std::string> linesOf(const fs::path& file)
{
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

bool isSource(const fs::path& file)
{
    return file.extension() == ".h" || file.extension() == ".cpp";
}

const fs::path kRoot = TOLM_SOURCE_DIR;

std::vector<fs::path> sourcesIn(std::string_view folder)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder))
        if (entry.is_regular_file() && isSource(entry.path()))
            files.push_back(entry.path());
    return files;
}

bool isComment(const std::string& line)
{
    return line.starts_with("// ");
}

// A header opens with its guard and then says what it is; so does a source file, unless it is the
// second half of the header that it includes first.
bool opensWell(const fs::path& file, const std::vector<std::string>& lines)
{
    if (lines.size() < 2)
        return false;
    if (file.extension() == ".h")
        return lines[0] == "#pragma once" && isComment(lines[1]);
    return isComment(lines[0]) || fs::path(quotedInclude(lines[0])).stem() == file.stem() ||
           file.string().find("/tests/") != std::string::npos;
}

} // namespace

TEST(House, everyFolderWithSourcesHasARule)
{
    for (const auto& entry : fs::directory_iterator(kRoot)) {
        const std::string folder = entry.path().filename().string() + '/';
        if (!entry.is_directory() || folder.starts_with('.') || folder.starts_with("build"))
            continue;
        const bool ruled = std::any_of(kRules.begin(), kRules.end(),
                                       [&](const FolderRule& r) { return r.folder == folder; });
        if (!ruled && !anyAdmits(kFreeFolders, folder)) {
            EXPECT_TRUE(sourcesIn(folder).empty()) << folder << " has no rule";
        }
    }
}

TEST(House, foldersIncludeWhatTheyMayAndNothingElse)
{
    for (const FolderRule& rule : kRules) {
        const std::vector<fs::path> files = sourcesIn(rule.folder);
        EXPECT_FALSE(files.empty()) << rule.folder;
        for (const fs::path& file : files)
            for (const std::string& line : linesOf(file)) {
                const std::string header = quotedInclude(line);
                if (header.empty())
                    continue;
                EXPECT_TRUE(fs::exists(kRoot / header))
                    << file << " names " << header << " by another path than from the top";
                EXPECT_TRUE(mayInclude(rule, header)) << file << " may not include " << header;
            }
    }
}

// What is open to all may not drag anything else along.
TEST(House, leavesIncludeOnlyLeaves)
{
    for (const std::string_view leaf : kLeaves) {
        const std::vector<std::string> lines = linesOf(kRoot / leaf);
        EXPECT_FALSE(lines.empty()) << leaf;
        for (const std::string& line : lines) {
            const std::string header = quotedInclude(line);
            EXPECT_TRUE(header.empty() || anyAdmits(kLeaves, header)) << leaf << ": " << header;
        }
    }
}

// The own notation of the interface must not become the operating system's business.
TEST(House, theBinaryInterfaceNeedsNothingButTheStandardLibrary)
{
    for (const fs::path& file : sourcesIn("vst2/"))
        for (const std::string& line : linesOf(file))
            if (line.starts_with("#include <")) {
                EXPECT_EQ(line.find(".h>"), std::string::npos) << file << ": " << line;
            }
}

TEST(House, everyFileSaysWhatItIs)
{
    for (const fs::directory_entry& entry : fs::directory_iterator(kRoot)) {
        const std::string folder = entry.path().filename().string();
        if (!entry.is_directory() || folder.starts_with('.') || folder.starts_with("build"))
            continue;
        for (const fs::path& file : sourcesIn(folder))
            EXPECT_TRUE(opensWell(file, linesOf(file))) << file;
    }
}

// The rules themselves: what they are there to stop is stopped.
TEST(House, aForbiddenIncludeWouldBeSeen)
{
    const auto allowed = [](std::string_view folder, std::string_view header) {
        const auto rule = std::find_if(kRules.begin(), kRules.end(),
                                       [&](const FolderRule& r) { return r.folder == folder; });
        return mayInclude(*rule, header);
    };
    EXPECT_FALSE(allowed("engine/", "vst2/abi.h"));
    EXPECT_FALSE(allowed("engine/", "patch/chunk.h"));
    EXPECT_FALSE(allowed("fx/", "engine/record.h"));
    EXPECT_FALSE(allowed("patch/", "plugin/SynthCore.h"));
    EXPECT_FALSE(allowed("host/", "vst2/AudioEffectX.h"));
    EXPECT_FALSE(allowed("host/", "plugin/catalogue.h"));
    EXPECT_FALSE(allowed("vst2/", "engine/constants.h"));
    EXPECT_FALSE(allowed("editor/", "plugin/SynthCore.h"));
    EXPECT_FALSE(allowed("gui/", "plugin/catalogue.h"));
    EXPECT_FALSE(allowed("plugin/", "editor/actions.h"));
    EXPECT_TRUE(allowed("fx/", "engine/constants.h"));
    EXPECT_EQ(quotedInclude("#include \"engine/record.h\""), "engine/record.h");
    EXPECT_EQ(quotedInclude("#include <array>"), "");
}

} // namespace tolm
