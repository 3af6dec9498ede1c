// Files chosen in the window: where the dialog begins, what is handed on, what counts as saved.

#include "EditorRig.h"
#include "editor/WindowFileSelector.h"
#include "gui/FileDialog.h"
#include "gui/TextEdit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tolm::test {
namespace {

class Files : public ::testing::Test {
protected:
    void SetUp() override
    {
        const std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        folder_ = std::filesystem::temp_directory_path() / ("tolm-files-" + test);
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        rig_.editor.shell().settings.recentFolders = {folder_.string()};
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    // The dialog that is above all else.
    gui::FileDialog* dialog()
    {
        rig_.frame().mouseMoved({{560.0f, 360.0f}, gui::MouseButton::none, {}, 1, 0});
        for (gui::View* view = rig_.frame().hovered(); view != nullptr; view = view->parent())
            if (auto* const found = dynamic_cast<gui::FileDialog*>(view))
                return found;
        return nullptr;
    }
    void ask(bool saves)
    {
        const FileRequest request{"Title", "fxp", "Programs", "Mine.fxp", saves};
        selector_.choose(request, [this](const std::string& path) { chosen_.push_back(path); });
    }

    EditorRig rig_;
    WindowFileSelector selector_{rig_.frame(), rig_.editor.shell()};
    std::filesystem::path folder_;
    std::vector<std::string> chosen_;
};

TEST_F(Files, savingSuggestsANameAndMakesTheProgramUnchanged)
{
    rig_.editor.context().actions().controlChanged(kFilterCutoff, 0.111f);
    EXPECT_TRUE(rig_.editor.shell().comparison.isCurrentChanged());
    ask(true);
    gui::FileDialog* const box = dialog();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->folder(), folder_);
    EXPECT_EQ(box->nameField().text(), "Mine.fxp");
    EXPECT_TRUE(chosen_.empty());
    box->accept();
    rig_.idle();
    EXPECT_THAT(chosen_, ::testing::ElementsAre((folder_ / "Mine.fxp").string()));
    EXPECT_FALSE(rig_.editor.shell().comparison.isCurrentChanged());
    EXPECT_THAT(rig_.port.userFiles["settings.txt"], ::testing::HasSubstr(folder_.string()));
}

TEST_F(Files, loadingOffersNoNameAndCancellingChoosesNothing)
{
    std::ofstream(folder_ / "Other.fxp") << "x";
    ask(false);
    gui::FileDialog* box = dialog();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->nameField().text(), "");
    rig_.key(gui::Key::escape);
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(chosen_.empty());
    // A dialog that is open when the window closes is forgotten with it.
    ask(false);
    rig_.editor.close();
    EXPECT_TRUE(chosen_.empty());
}

} // namespace
} // namespace tolm::test
