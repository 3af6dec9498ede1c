// Boxes and the file dialog, over a folder of their own.

#include "gui/FileDialog.h"
#include "gui/ListBox.h"
#include "gui/Message.h"
#include "gui/PushButton.h"
#include "gui/TextEdit.h"
#include "tests/gui/frameRig.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace tolm::gui {

namespace {

namespace fs = std::filesystem;

class Overlays : public FrameTest {
protected:
    Overlays() : FrameTest({800.0f, 500.0f}) {}

    fs::path root = fs::path(testing::TempDir()) / ("tolm-files-" + std::to_string(getpid()));
    fs::path chosen;
    int cancels = 0;

    void SetUp() override
    {
        fs::create_directories(root / "bank" / "deep");
        fs::create_directories(root / ".hidden");
        for (const char* name : {"b.fxp", "A.FXP", "c.fxb", "readme.txt", ".d.fxp"})
            std::ofstream(root / name) << std::string(1960, 'x');
    }
    void TearDown() override { fs::remove_all(root); }

    FileDialog& show(FileRequest::Kind kind, std::string name = {})
    {
        FileRequest request;
        request.kind = kind;
        request.title = "Program";
        request.extension = ".fxp";
        request.folder = root / "gone" / "for ever";
        request.name = std::move(name);
        request.recentFolders = {root / "bank" / "", root / "missing"};
        request.chosen = [this](const fs::path& file) { chosen = file; };
        request.cancelled = [this] { ++cancels; };
        return FileDialog::show(frame, std::move(request));
    }
    static std::string labels(const ListBox& list)
    {
        std::string all;
        for (const ListRow& row : list.rows())
            all += row.label + (row.isFolder ? "/ " : " ");
        return all;
    }
};

TEST_F(Overlays, theDialogListsFoldersAndFilesOfOneKind)
{
    FileDialog& dialog = show(FileRequest::Kind::open);
    EXPECT_EQ(dialog.folder(), root) << "the nearest folder that is there";
    EXPECT_EQ(labels(dialog.list()), "bank/ A.FXP b.fxp ");
    EXPECT_EQ(dialog.list().rows()[1].detail, "2.0 kB");
    EXPECT_EQ(dialog.places().rows()[0].label, "bank");

    hands.keys("Down Enter");
    EXPECT_EQ(dialog.folder(), root / "bank");
    hands.keys("Backspace");
    EXPECT_EQ(dialog.folder(), root);
    EXPECT_EQ(dialog.list().selection(), 0) << "where one came from";
    hands.type("b.");
    EXPECT_EQ(dialog.nameField().text(), "b.fxp");
    hands.keys("Enter");
    EXPECT_EQ(chosen, root / "b.fxp");
    EXPECT_FALSE(frame.hasOverlay());
    hands.wait(0.0);
    EXPECT_FALSE(window.keysWanted());
    EXPECT_EQ(cancels, 0);
}

TEST_F(Overlays, typedNamesMayBePathsAndLackTheExtension)
{
    FileDialog& dialog = show(FileRequest::Kind::open);
    const auto enter = [&](const std::string& name) {
        dialog.nameField().setText(name);
        dialog.accept();
    };
    enter("nothing");
    EXPECT_EQ(dialog.note(), "There is no file of this name");
    enter("bank/deep");
    EXPECT_EQ(dialog.folder(), root / "bank" / "deep");
    enter("../../");
    EXPECT_EQ(dialog.folder(), root);
    enter("b");
    EXPECT_EQ(chosen, root / "b.fxp");
    hands.wait(0.0);

    show(FileRequest::Kind::open);
    hands.keys("Escape");
    EXPECT_EQ(cancels, 1);
    EXPECT_FALSE(frame.hasOverlay());
    hands.wait(0.0);
}

TEST_F(Overlays, savingAddsTheExtensionAndAsksBeforeItReplaces)
{
    FileDialog& dialog = show(FileRequest::Kind::save, "b");
    EXPECT_EQ(frame.focus(), &dialog.nameField());
    hands.keys("Enter");
    EXPECT_TRUE(chosen.empty());
    hands.keys("Escape");
    hands.wait(0.0);
    ASSERT_TRUE(frame.hasOverlay()) << "the question was answered with no, the dialog stays";
    EXPECT_EQ(frame.focus(), &dialog.nameField());
    hands.keys("Enter Enter");
    EXPECT_EQ(chosen, root / "b.fxp");
    hands.wait(0.0);

    FileDialog& again = show(FileRequest::Kind::save, "New One.fxp");
    hands.type("x/y");
    hands.keys("Enter");
    EXPECT_EQ(again.note(), "There is no such folder") << "typing replaced the offered name";
    again.nameField().setText("fresh.FXP");
    again.accept();
    EXPECT_EQ(chosen, root / "fresh.FXP");
    hands.wait(0.0);
}

TEST_F(Overlays, foldersThatCannotBeReadOrHoldTooMuchAreSaid)
{
    for (const char* name : {"missing", "b.fxp"})
        EXPECT_FALSE(listFolder(root / name, {}).error.empty());
    for (std::size_t i = 0; i < FolderListing::kMaxItems + 10; ++i)
        std::ofstream(root / "bank" / (std::to_string(i) + ".fxp"));
    const FolderListing many = listFolder(root / "bank", ".fxp");
    EXPECT_TRUE(many.truncated);
    EXPECT_EQ(many.items.size(), FolderListing::kMaxItems);

    FileDialog& dialog = show(FileRequest::Kind::open);
    dialog.goTo(root / "bank");
    EXPECT_EQ(dialog.note(), "Too many entries: not all are shown");
    hands.keys("End");
    window.pump();
    EXPECT_GT(dialog.list().scrollOffset(), 90'000.0f);
    fs::remove_all(root / "bank");
    dialog.goTo(root / "bank");
    EXPECT_TRUE(dialog.list().rows().empty());
    EXPECT_FALSE(dialog.note().empty());
    window.pump();
}

TEST_F(Overlays, aBoxIsAnsweredOnceByKeysOrButtons)
{
    std::vector<int> answers;
    const auto ask = [&]() -> Message& {
        MessageRequest request;
        request.title = "Initialise?";
        request.text = "The program will be lost.";
        request.buttons = {"Cancel", "Initialise"};
        request.answered = [&](int button) { answers.push_back(button); };
        return Message::show(frame, std::move(request));
    };
    ask();
    hands.keys("Enter");
    ask();
    hands.keys("Escape");
    const Point cancel = ask().button(0).boundsInFrame().centre();
    hands.press(cancel);
    hands.release({1.0f, 1.0f});
    EXPECT_EQ(answers.size(), 2u) << "a press that ends elsewhere is none";
    hands.click(cancel);
    ask();
    hands.keys("Tab Space");
    EXPECT_EQ(answers, (std::vector<int>{1, 0, 0, 0}));
    EXPECT_FALSE(frame.hasOverlay());
    hands.wait(0.0);
}

} // namespace

} // namespace tolm::gui
