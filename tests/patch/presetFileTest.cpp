// Preset files: exact headers, names from paths, and an older file that survives a failed save.

#include "patch/presetFileTransfer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace tolm {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

struct FakePlugin final : PresetFileHost {
    std::span<const std::uint8_t, kChunkBytes> saveChunk() override
    {
        log.push_back("save as " + name);
        return std::span<const std::uint8_t, kChunkBytes>(chunk);
    }
    bool loadFileChunk(std::span<const std::uint8_t> bytes, bool isPreset) override
    {
        loaded.assign(bytes.begin(), bytes.end());
        log.push_back(isPreset ? "preset" : "bank");
        program = 99; // what the file had selected
        return accepts;
    }
    int currentProgram() const override { return program; }
    std::string_view currentProgramName() const override { return name; }
    void setProgramName(std::string_view text) override { name = text; }
    void setProgram(int index) override { log.push_back("set " + std::to_string(index)); }
    void loadProgram(int index) override { log.push_back("load " + std::to_string(index)); }

    Bytes chunk = Bytes(kChunkBytes, 0xA5);
    Bytes loaded;
    std::vector<std::string> log;
    std::string name = "Init";
    int program = 12;
    bool accepts = true;
};

class PresetFile : public ::testing::Test {
protected:
    PresetFile()
    {
        std::string pattern = (fs::temp_directory_path() / "tolm-preset-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
    }
    ~PresetFile() override { fs::remove_all(folder); }

    std::string path(const char* name) const { return (folder / name).string(); }
    static Bytes contents(const std::string& file)
    {
        std::ifstream in(file, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(in), {});
    }
    static void store(const std::string& file, const Bytes& bytes)
    {
        std::ofstream out(file, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    }
    std::size_t fileCount() const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
    }

    fs::path folder;
    FakePlugin plugin;
};

std::string text(const Bytes& bytes, std::size_t from, std::size_t size)
{
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(from + size)};
}

Bytes fromHex(std::string_view hex)
{
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(
            static_cast<std::uint8_t>(std::stoi(std::string(hex.substr(i, 2)), {}, 16)));
    return bytes;
}

TEST_F(PresetFile, savedProgramIsNamedAfterItsFile)
{
    const std::string file = path("Warm Pad.fxp");
    ASSERT_TRUE(transferFile(file, FileMode::saveProgram, plugin));
    EXPECT_EQ(plugin.name, "Warm Pad");
    EXPECT_THAT(plugin.log, ElementsAre("save as Warm Pad")); // the chunk has the new name
    const Bytes bytes = contents(file);
    ASSERT_EQ(bytes.size(), 235620u);
    // "CcnK", 235612, "FPCh", 1, "QXJT", 1, 329, "Warm Pad" and zeros to 28, 235560
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 60), fromHex("43636e4b0003985c4650436800000001"
                                                                "51584a5400000001000001495761726d"
                                                                "20506164000000000000000000000000"
                                                                "000000000000000000039828"));
    EXPECT_TRUE(std::equal(plugin.chunk.begin(), plugin.chunk.end(), bytes.begin() + 60));
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(PresetFile, savedBankCarriesItsPathAndKeepsTheProgramsName)
{
    const std::string file = path("My Sounds.fxb");
    ASSERT_TRUE(transferFile(file, FileMode::saveBank, plugin));
    EXPECT_EQ(plugin.name, "Init");
    const Bytes bytes = contents(file);
    ASSERT_EQ(bytes.size(), 235720u);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 28), fromHex("43636e4b000398c04642436800000001"
                                                                "51584a540000000100000080"));
    EXPECT_EQ(text(bytes, 28, file.size() + 1), file + '\0');
    EXPECT_EQ(Bytes(bytes.begin() + 156, bytes.begin() + 160), fromHex("00039828"));

    const auto longPath = bankFileHeader(std::string(500, 'x'));
    EXPECT_EQ(longPath[28 + 126], 'x');
    EXPECT_EQ(longPath[28 + 127], 0);
    EXPECT_EQ(longPath[157], 3); // the size field behind it is intact
    const auto longName = programFileHeader(std::string(500, 'y'));
    EXPECT_EQ(longName[28 + 26], 'y');
    EXPECT_EQ(longName[28 + 27], 0);
}

TEST_F(PresetFile, aBankIsLoadedOnTheProgramThatWasCurrent)
{
    const std::string bank = path("a.fxb");
    ASSERT_TRUE(transferFile(bank, FileMode::saveBank, plugin));
    plugin.log.clear();
    ASSERT_TRUE(transferFile(bank, FileMode::loadBank, plugin));
    plugin.accepts = false; // nothing is selected anew when the chunk was turned away
    EXPECT_FALSE(transferFile(bank, FileMode::loadBank, plugin));
    EXPECT_THAT(plugin.log, ElementsAre("bank", "set 12", "load 12", "bank"));
    EXPECT_EQ(plugin.loaded, plugin.chunk);
}

TEST_F(PresetFile, otherPluginsAndDamagedFilesChangeNothing)
{
    const std::string file = path("b.fxb");
    ASSERT_TRUE(transferFile(file, FileMode::saveBank, plugin));
    const Bytes good = contents(file);
    Bytes other = good;
    other[19] ^= 1;
    Bytes cut = good;
    cut.pop_back();
    Bytes claimsMore = good;
    claimsMore[156] = 0xFF;
    const Bytes header(good.begin(), good.begin() + 159);
    plugin.log.clear();
    for (const Bytes& bytes : {other, cut, claimsMore, header, Bytes{}}) {
        store(file, bytes);
        EXPECT_FALSE(transferFile(file, FileMode::loadBank, plugin));
    }
    EXPECT_FALSE(transferFile(path("missing.fxb"), FileMode::loadBank, plugin));
    EXPECT_FALSE(transferFile(folder.string(), FileMode::loadBank, plugin));
    EXPECT_FALSE(transferFile("/dev/zero", FileMode::loadBank, plugin));
    EXPECT_THAT(plugin.log, IsEmpty());

    Bytes freeMagics = good; // magics and versions are not looked at, more bytes do no harm
    for (std::size_t i : {0u, 1u, 2u, 3u, 8u, 12u, 15u, 23u, 27u})
        freeMagics[i] = 0x77;
    freeMagics.push_back(1);
    store(file, freeMagics);
    EXPECT_TRUE(transferFile(file, FileMode::loadBank, plugin));
}

// Writes beyond the limit fail like those on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*handler_)(int);
    rlimit old_{};
};

TEST_F(PresetFile, aFullDiskLeavesTheOlderFile)
{
    const std::string file = path("c.fxb");
    store(file, {1, 2, 3});
    for (rlim_t room : {0u, 100u, 100000u, 235719u}) {
        const FileSizeLimit limit(room);
        EXPECT_FALSE(transferFile(file, FileMode::saveBank, plugin)) << room;
        EXPECT_EQ(contents(file), (Bytes{1, 2, 3}));
        EXPECT_EQ(fileCount(), 1u); // and nothing lies around
    }
    EXPECT_TRUE(transferFile(file, FileMode::saveBank, plugin));
    EXPECT_EQ(contents(file).size(), 235720u);
}

TEST_F(PresetFile, savingLeavesLinksRightsAndStrangersAlone)
{
    const std::string real = path("real.fxb");
    const std::string link = path("link.fxb");
    store(real, {1});
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(real, link);
    store(path("real.fxb.tmp0"), {42}); // left by a crash, or another instance is writing it
    ASSERT_TRUE(transferFile(link, FileMode::saveBank, plugin));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(contents(real).size(), 235720u);
    EXPECT_EQ(fs::status(real).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(contents(path("real.fxb.tmp0")), Bytes{42});
    EXPECT_EQ(fileCount(), 3u);
}

TEST_F(PresetFile, whatCannotBeOpenedDoesNotRenameTheProgram)
{
    EXPECT_FALSE(transferFile(path("no folder/New.fxp"), FileMode::saveProgram, plugin));
    fs::create_directory(folder / "folder.fxp");
    EXPECT_FALSE(transferFile(path("folder.fxp"), FileMode::saveProgram, plugin));
    EXPECT_EQ(plugin.name, "Init");
    EXPECT_THAT(plugin.log, IsEmpty());
}

TEST(PresetFileRules, pathsAndNames)
{
    for (const char* used : {"/a/b.fxb", "x.fxp", "/old.fxp/new.txt", ".fxb"})
        EXPECT_TRUE(isPresetPath(used)) << used;
    for (const char* ignored : {"", "fxb", "/a/b.FXB", "/a/b.fx", "/a.f xp"})
        EXPECT_FALSE(isPresetPath(ignored)) << ignored;

    struct Row {
        const char* path;
        std::optional<std::string_view> name;
    };
    const Row rows[] = {
        {"/music/pads/Warm Pad.fxp", "Warm Pad"},
        {"C:\\Sounds\\Low.fxp", "Low"},
        {"ab.fxp", "ab"},
        {"a.fxp", std::nullopt},
        {"/x/.fxp", ""},
        {"/x.fxp/abc", std::nullopt},
        {"/dir\\mixed/last.v2.fxp", "last.v2"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(programNameFromPath(row.path), row.name) << row.path;
}

} // namespace
} // namespace tolm
