// Files chosen in the window: where the dialog begins, what is handed on, what counts as saved.

#include "EditorRig.h"
#include "editor/WindowFileSelector.h"
#include "gui/FileDialog.h"
#include "gui/TextEdit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace tolm::test {
namespace {

class Files : public ::testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(folder);
        rig.editor.shell().settings.recentFolders = {folder.string()};
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    gui::FileDialog* ask(bool saves)
    {
        const FileRequest request{"Title", "fxp", "Programs", "Mine.fxp", saves};
        selector.choose(request, [this](const std::string& path) { chosen.push_back(path); });
        return rig.overlay<gui::FileDialog>();
    }

    EditorRig rig;
    WindowFileSelector selector{rig.frame(), rig.editor.shell()};
    std::filesystem::path folder =
        std::filesystem::path(testing::TempDir()) / ("tolm-selector-" + std::to_string(getpid()));
    std::vector<std::string> chosen;
};

TEST_F(Files, savingSuggestsANameAndMakesTheProgramUnchanged)
{
    rig.change(kFilterCutoff, 0.111f);
    EXPECT_TRUE(rig.editor.shell().comparison.isCurrentChanged());
    gui::FileDialog* const box = ask(true);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->folder(), folder);
    EXPECT_EQ(box->nameField().text(), "Mine.fxp");
    EXPECT_TRUE(chosen.empty());
    box->accept();
    rig.wait();
    EXPECT_THAT(chosen, ::testing::ElementsAre((folder / "Mine.fxp").string()));
    EXPECT_FALSE(rig.editor.shell().comparison.isCurrentChanged());
    EXPECT_THAT(rig.port.userFiles["settings.txt"], ::testing::HasSubstr(folder.string()));
}

TEST_F(Files, loadingOffersNoNameAndCancellingChoosesNothing)
{
    gui::FileDialog* const box = ask(false);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->nameField().text(), "");
    rig.keys("Escape");
    EXPECT_FALSE(rig.frame().hasOverlay());
    // A dialog that is open when the window closes is forgotten with it.
    ask(false);
    rig.editor.close();
    EXPECT_TRUE(chosen.empty());
}

} // namespace
} // namespace tolm::test
