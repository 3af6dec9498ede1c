#pragma once
// Choosing a file to open or a name to save under, drawn inside the window: places at the left, the
// folder's contents, the name field below. Nobody waits for it; the answer comes by a call.

#include "gui/FolderListing.h"
#include "gui/View.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tolm::gui {

class ListBox;
class PushButton;
class TextEdit;

struct FileRequest {
    enum class Kind : unsigned char { open, save };

    Kind kind = Kind::open;
    std::string title;
    std::string extension;        // ".fxp": what is listed, and added to a saved name that lacks it
    std::filesystem::path folder; // where to begin; the nearest that can be read
    std::string name;             // offered in the name field
    std::vector<std::filesystem::path> recentFolders;
    // The file, which exists when opening; when saving, overwriting has been agreed to.
    std::function<void(const std::filesystem::path& file)> chosen;
    std::function<void()> cancelled;
};

class FileDialog final : public View {
public:
    static FileDialog& show(Frame& frame, FileRequest request);

    const std::filesystem::path& folder() const { return folder_; }
    ListBox& list() { return *list_; }
    ListBox& places() { return *places_; }
    TextEdit& nameField() { return *name_; }
    // What stands below the list: an error, or how much is shown.
    const std::string& note() const { return note_; }
    void goTo(const std::filesystem::path& folder);
    // The default button.
    void accept();

    void draw(Canvas& canvas) override;
    bool mouseDown(const MouseEvent&) override { return true; }
    bool mouseWheel(const WheelEvent&) override { return true; }
    bool keyDown(const KeyEvent& event) override;

private:
    explicit FileDialog(FileRequest request);
    void build(const Frame& frame);
    void buildPlaces();
    void read();
    void select(int row);
    void activate(int row);
    void goUp();
    std::filesystem::path typedFile() const;
    void open(const std::filesystem::path& file);
    void save(const std::filesystem::path& file);
    void finish(const std::filesystem::path& file);
    void cancel();
    void say(std::string note);

    FileRequest request_;
    std::filesystem::path folder_;
    FolderListing listing_;
    std::vector<std::filesystem::path> placePaths_;
    std::string note_;
    Rect box_;
    Rect titleBox_;
    Rect pathBox_;
    Rect noteBox_;
    ListBox* list_ = nullptr;
    ListBox* places_ = nullptr;
    TextEdit* name_ = nullptr;
    PushButton* acceptButton_ = nullptr;
};

} // namespace tolm::gui
