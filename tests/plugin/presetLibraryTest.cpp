// Preset files and the browser: exact headers, names from paths, an older file that survives a
// failed save, and what the player finds afterwards.

#include "SynthRig.h"
#include "patch/presetFileTransfer.h"
#include "plugin/EditorPort.h"
#include "plugin/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/resource.h>
#include <unistd.h>

namespace tolm::test {
namespace {

using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Bytes = std::vector<std::uint8_t>;
namespace fs = std::filesystem;

class FakeSelector final : public FileSelector {
public:
    void choose(const FileRequest& request, std::function<void(const std::string&)> chosen) override
    {
        asked.push_back(request);
        if (!answer.empty())
            chosen(answer);
    }

    std::string answer; // empty: cancelled
    std::vector<FileRequest> asked;
};

class PresetFile : public ::testing::Test {
protected:
    PresetFile()
    {
        std::string pattern = (fs::temp_directory_path() / "tolm-preset-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
    }
    ~PresetFile() override { fs::remove_all(folder); }

    std::string path(const char* file) const { return (folder / file).string(); }
    bool transfer(const char* file, FileMode mode)
    {
        return library.transferFile(path(file), mode);
    }
    Bytes contents(const char* file) const
    {
        std::ifstream in(folder / file, std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(in), {});
    }
    void store(const char* file, const Bytes& bytes) const
    {
        std::ofstream out(folder / file, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        return names;
    }
    bool loadedAnything() { return rig.synth->editorPort().takeNews().everything; }
    std::string nameNow() { return std::string(programs.name(rig.core().currentProgram())); }

    SynthRig rig;
    PresetLibrary& library = rig.synth->presets();
    ProgramStore& programs = rig.core().engine().programBank();
    fs::path folder;
};

std::string hex(const Bytes& bytes, std::size_t from, std::size_t to)
{
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = from; i < std::min(to, bytes.size()); ++i) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

TEST_F(PresetFile, aProgramTravelsAsAFileAndTakesItsName)
{
    rig.synth->setProgram(140);
    rig.synth->setParameter(kFilterCutoff, 0.321f);
    ASSERT_TRUE(transfer("Warm Pad.fxp", FileMode::saveProgram));
    EXPECT_EQ(nameNow(), "Warm Pad");
    EXPECT_THAT(files(), UnorderedElementsAre("Warm Pad.fxp"));
    const Bytes bytes = contents("Warm Pad.fxp");
    ASSERT_EQ(bytes.size(), 235620u);
    // "CcnK", 235612, "FPCh", 1, "QXJT", 1, 329, "Warm Pad" and zeros to 28, 235560
    EXPECT_EQ(hex(bytes, 0, 60), "43636e4b0003985c4650436800000001"
                                 "51584a5400000001000001495761726d"
                                 "20506164000000000000000000000000"
                                 "000000000000000000039828");
    EXPECT_EQ(Bytes(bytes.begin() + 60, bytes.end()), rig.savedChunk());
    rig.synth->setProgram(3);
    ASSERT_TRUE(transfer("Warm Pad.fxp", FileMode::loadProgram));
    EXPECT_EQ(rig.synth->getProgram(), 3);
    EXPECT_EQ(nameNow(), "Warm Pad");
    EXPECT_EQ(rig.synth->getParameter(kFilterCutoff), 0.321f);
}

TEST_F(PresetFile, aBankCarriesItsPathAndGoesWhereTheUserIs)
{
    rig.synth->setProgram(5);
    const std::string first(programs.name(0));
    const std::string fifth = nameNow();
    ASSERT_TRUE(transfer("My Sounds.fxb", FileMode::saveBank));
    EXPECT_EQ(nameNow(), fifth);
    const Bytes bytes = contents("My Sounds.fxb");
    ASSERT_EQ(bytes.size(), 235720u);
    EXPECT_EQ(hex(bytes, 0, 28), "43636e4b000398c0464243680000000151584a540000000100000080");
    EXPECT_STREQ(reinterpret_cast<const char*>(&bytes[28]), path("My Sounds.fxb").c_str());
    EXPECT_EQ(hex(bytes, 156, 160), "00039828");
    EXPECT_EQ(Bytes(bytes.begin() + 160, bytes.end()), rig.savedChunk());

    rig.synth->setProgram(300);
    rig.record().engineVersion = 13; // as after an old project: a file must not change it
    ASSERT_TRUE(transfer("My Sounds.fxb", FileMode::loadBank));
    EXPECT_TRUE(loadedAnything());
    EXPECT_EQ(rig.synth->getProgram(), 300);
    EXPECT_EQ(rig.core().currentBank(), 2);
    EXPECT_EQ(programs.name(256), first);
    EXPECT_EQ(rig.record().engineVersion, 13);
}

TEST_F(PresetFile, longTextsEndInsideTheirFields)
{
    const auto bank = bankFileHeader(std::string(500, 'x'));
    EXPECT_EQ(bank[28 + 126], 'x');
    EXPECT_EQ(bank[28 + 127], 0);
    EXPECT_EQ(bank[157], 3); // the size field behind it is intact
    const auto program = programFileHeader(std::string(500, 'y'));
    EXPECT_EQ(program[28 + 26], 'y');
    EXPECT_EQ(program[28 + 27], 0);
}

TEST_F(PresetFile, otherPluginsAndDamagedFilesChangeNothing)
{
    ASSERT_TRUE(transfer("b.fxb", FileMode::saveBank));
    const Bytes good = contents("b.fxb");
    Bytes other = good;
    other[19] ^= 1;
    Bytes cut = good;
    cut.pop_back();
    Bytes claimsMore = good;
    claimsMore[156] = 0xFF;
    const Bytes header(good.begin(), good.begin() + 159);
    loadedAnything();
    for (const Bytes& bytes : {other, cut, claimsMore, header, Bytes{}}) {
        store("b.fxb", bytes);
        EXPECT_FALSE(transfer("b.fxb", FileMode::loadBank));
    }
    EXPECT_FALSE(transfer("missing.fxb", FileMode::loadBank));
    EXPECT_FALSE(transfer(".", FileMode::loadBank));
    EXPECT_FALSE(library.transferFile("/dev/zero", FileMode::loadBank));
    EXPECT_FALSE(loadedAnything());

    Bytes freeMagics = good; // magics and versions are not looked at, more bytes do no harm
    for (std::size_t i : {0u, 1u, 2u, 3u, 8u, 12u, 15u, 23u, 27u})
        freeMagics[i] = 0x77;
    freeMagics.push_back(1);
    store("b.fxb", freeMagics);
    EXPECT_TRUE(transfer("b.fxb", FileMode::loadBank));
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
    store("c.fxb", {1, 2, 3});
    for (rlim_t room : {0u, 100u, 100000u, 235719u}) {
        const FileSizeLimit limit(room);
        EXPECT_FALSE(transfer("c.fxb", FileMode::saveBank)) << room;
        EXPECT_EQ(contents("c.fxb"), (Bytes{1, 2, 3}));
        EXPECT_THAT(files(), UnorderedElementsAre("c.fxb")); // nothing lies around
    }
    EXPECT_TRUE(transfer("c.fxb", FileMode::saveBank));
    EXPECT_EQ(contents("c.fxb").size(), 235720u);
}

TEST_F(PresetFile, savingLeavesLinksRightsAndStrangersAlone)
{
    constexpr fs::perms kOwners = fs::perms::owner_read | fs::perms::owner_write;
    store("real.fxb", {1});
    fs::permissions(path("real.fxb"), kOwners);
    fs::create_symlink(path("real.fxb"), path("link.fxb"));
    store("real.fxb.tmp0", {42}); // left by a crash, or another instance is writing it
    ASSERT_TRUE(transfer("link.fxb", FileMode::saveBank));
    EXPECT_TRUE(fs::is_symlink(path("link.fxb")));
    EXPECT_EQ(contents("real.fxb").size(), 235720u);
    EXPECT_EQ(fs::status(path("real.fxb")).permissions(), kOwners);
    EXPECT_EQ(contents("real.fxb.tmp0"), Bytes{42});
    EXPECT_EQ(files().size(), 3u);
}

TEST_F(PresetFile, whatCannotBeOpenedDoesNotRenameTheProgram)
{
    const std::string before = nameNow();
    fs::create_directory(folder / "folder.fxp");
    EXPECT_FALSE(transfer("no folder/New.fxp", FileMode::saveProgram));
    EXPECT_FALSE(transfer("folder.fxp", FileMode::saveProgram));
    EXPECT_EQ(nameNow(), before);
}

TEST_F(PresetFile, pathsSayWhatIsAPresetAndWhatItIsCalled)
{
    for (const char* used : {"/a/b.fxb", "x.fxp", "/old.fxp/new.txt", ".fxb"})
        EXPECT_TRUE(isPresetPath(used)) << used;
    for (const char* ignored : {"", "fxb", "/a/b.FXB", "/a/b.fx", "/a.f xp"})
        EXPECT_FALSE(isPresetPath(ignored)) << ignored;

    const std::pair<const char*, std::optional<std::string_view>> rows[] = {
        {"/music/pads/Warm Pad.fxp", "Warm Pad"},
        {"C:\\Sounds\\Low.fxp", "Low"},
        {"ab.fxp", "ab"},
        {"a.fxp", std::nullopt},
        {"/x/.fxp", ""},
        {"/x.fxp/abc", std::nullopt},
        {"/dir\\mixed/last.v2.fxp", "last.v2"},
    };
    for (const auto& [file, name] : rows)
        EXPECT_EQ(programNameFromPath(file), name) << file;
}

TEST_F(PresetFile, dialogsSayWhatTheyAreForAndTakeOnlyPresetPaths)
{
    FakeSelector selector;
    library.fileDialog(1); // no window, no dialog
    library.useFileSelector(&selector);
    rig.synth->setProgramName("Bell");
    for (const int mode : {0, 1, 2, 3, 4, -1})
        library.fileDialog(mode);
    ASSERT_EQ(selector.asked.size(), 4u);
    constexpr const char* kTitles[] = {"Load Bank", "Save Bank", "Load Patch", "Save Patch"};
    for (std::size_t mode = 0; mode < 4; ++mode) {
        const FileRequest& request = selector.asked[mode];
        EXPECT_EQ(request.title, kTitles[mode]);
        EXPECT_EQ(request.saves, mode % 2 == 1);
        EXPECT_EQ(request.suggestedName, mode < 2 ? "Bell.fxb" : "Bell.fxp");
        EXPECT_EQ(request.description, mode < 2 ? "Cubase Bank" : "Cubase Program");
    }
    selector.answer = path("Bell.txt");
    library.fileDialog(3);
    EXPECT_THAT(files(), IsEmpty());
    selector.answer = path("Big Bell.fxp");
    library.fileDialog(3);
    EXPECT_THAT(files(), UnorderedElementsAre("Big Bell.fxp"));
    EXPECT_EQ(nameNow(), "Big Bell");
}

TEST(PresetBrowsing, selectsProgramsAndTellsTheWindow)
{
    SynthRig rig;
    PresetLibrary& library = rig.synth->presets();
    library.chooseBank(0.5f);
    EXPECT_EQ(rig.synth->getProgram(), 128); // the old program is not in the list
    EXPECT_TRUE(rig.synth->editorPort().takeNews().presetList);
    library.choose(126);
    library.next();
    library.next();
    EXPECT_EQ(rig.synth->getProgram(), 255);
    library.previous();
    EXPECT_EQ(rig.synth->getProgram(), 254);
    library.chooseCategory(8);
    EXPECT_EQ(rig.synth->getParameter(kPatchCategory), 8.0f);
    rig.synth->setProgramName("~"); // the list is sorted anew
    EXPECT_NE(library.label(0), "~");
    EXPECT_EQ(library.label(library.browser().selected), "~");
}

} // namespace
} // namespace tolm::test
