// Preset files and the browser, in a plug-in with and without a window.

#include "SynthRig.h"
#include "plugin/EditorPort.h"
#include "plugin/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;
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

class PresetLibraryTest : public ::testing::Test {
protected:
    PresetLibraryTest() : folder_(fs::path(TOLM_BUILD_DIR) / "preset-library-test")
    {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    ~PresetLibraryTest() override { fs::remove_all(folder_); }

    std::string path(const char* file) const { return (folder_ / file).string(); }
    std::vector<std::string> files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_))
            names.push_back(entry.path().filename().string());
        return names;
    }
    PresetLibrary& library() { return rig_.synth->presets(); }
    ProgramStore& store() { return rig_.core().engine().programBank(); }
    std::string nameNow() { return std::string(store().name(rig_.core().currentProgram())); }

    SynthRig rig_;
    fs::path folder_;
};

TEST_F(PresetLibraryTest, aProgramTravelsAsAFileAndTakesItsName)
{
    rig_.synth->setProgram(140);
    rig_.synth->setParameter(kFilterCutoff, 0.321f);
    ASSERT_TRUE(library().transferFile(path("Warm Pad.fxp"), FileMode::saveProgram));
    EXPECT_EQ(nameNow(), "Warm Pad");
    rig_.synth->setProgram(3);
    ASSERT_TRUE(library().transferFile(path("Warm Pad.fxp"), FileMode::loadProgram));
    EXPECT_EQ(rig_.synth->getProgram(), 3);
    EXPECT_EQ(nameNow(), "Warm Pad");
    EXPECT_EQ(rig_.synth->getParameter(kFilterCutoff), 0.321f);
    EXPECT_THAT(files(), ElementsAre("Warm Pad.fxp"));
}

TEST_F(PresetLibraryTest, aBankGoesWhereTheUserIsAndLeavesThemThere)
{
    rig_.synth->setProgram(5);
    const std::string first(store().name(0));
    ASSERT_TRUE(library().transferFile(path("all.fxb"), FileMode::saveBank));
    rig_.synth->setProgram(300);
    rig_.record().engineVersion = 13; // as after an old project: a file must not change it
    ASSERT_TRUE(library().transferFile(path("all.fxb"), FileMode::loadBank));
    EXPECT_TRUE(rig_.synth->editorPort().takeNews().everything);
    EXPECT_EQ(rig_.synth->getProgram(), 300);
    EXPECT_EQ(rig_.core().currentBank(), 2);
    EXPECT_EQ(store().name(256), first);
    EXPECT_EQ(rig_.record().engineVersion, 13);
}

TEST_F(PresetLibraryTest, dialogsSayWhatTheyAreForAndTakeOnlyPresetPaths)
{
    FakeSelector selector;
    library().fileDialog(1); // no window, no dialog
    library().useFileSelector(&selector);
    rig_.synth->setProgramName("Bell");
    for (const int mode : {0, 1, 2, 3, 4, -1})
        library().fileDialog(mode);
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
    library().fileDialog(3);
    EXPECT_TRUE(files().empty());
    selector.answer = path("Big Bell.fxp");
    library().fileDialog(3);
    EXPECT_THAT(files(), ElementsAre("Big Bell.fxp"));
    EXPECT_EQ(nameNow(), "Big Bell");
}

TEST_F(PresetLibraryTest, stepsThroughBanksAndCategories)
{
    library().chooseBank(0.5f);
    EXPECT_EQ(rig_.synth->getProgram(), 128); // the old program is not in the list
    EXPECT_TRUE(rig_.synth->editorPort().takeNews().presetList);
    EXPECT_EQ(library().label(0), "001: " + std::string(store().name(128)));
    library().previous();
    EXPECT_EQ(rig_.synth->getProgram(), 128);
    library().choose(126);
    library().next();
    library().next();
    EXPECT_EQ(rig_.synth->getProgram(), 255);

    constexpr int kPads = 8;
    for (int p = 0; p < kProgramCount; ++p)
        store().setValue(p, kPatchCategory, p == 40 || p == 350 ? 8.0f : 1.0f);
    store().setName(40, "Zenith");
    store().setName(350, "Air");
    library().chooseCategory(kPads);
    EXPECT_EQ(rig_.synth->getProgram(), 350);
    EXPECT_EQ(library().label(1), "Zenith");
    rig_.synth->setProgramName("zeal"); // small letters sort behind capitals
    EXPECT_EQ(library().label(1), "zeal");
    EXPECT_EQ(library().browser().selected, 1);
    library().chooseCategory(14);
    EXPECT_EQ(library().browser().categoryFilter, kPads);
}

} // namespace
} // namespace tolm::test
