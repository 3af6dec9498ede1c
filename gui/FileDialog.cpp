#include "gui/FileDialog.h"

#include "gui/Frame.h"
#include "gui/ListBox.h"
#include "gui/Message.h"
#include "gui/PushButton.h"
#include "gui/TextEdit.h"
#include "gui/asciiText.h"
#include "gui/modalBox.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <system_error>

namespace tolm::gui {

namespace {

namespace fs = std::filesystem;

constexpr Point kWantedSize{640.0f, 440.0f};
constexpr float kPadding = 16.0f;
constexpr float kGap = 8.0f;
constexpr float kRow = 26.0f;
constexpr float kButtonWidth = 84.0f;
constexpr float kPlacesWidth = 150.0f;
constexpr std::size_t kMaxNameBytes = 250;

bool isFolder(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

bool isThere(const fs::path& path)
{
    std::error_code error;
    return fs::exists(path, error);
}

fs::path homeFolder()
{
    const char* home = std::getenv("HOME");
    return home != nullptr && home[0] == '/' ? fs::path(home) : fs::path();
}

} // namespace

FileDialog::FileDialog(FileRequest request) : request_(std::move(request)) {}

FileDialog& FileDialog::show(Frame& frame, FileRequest request)
{
    std::unique_ptr<FileDialog> made(new FileDialog(std::move(request)));
    FileDialog& dialog = *made;
    dialog.setBounds({0.0f, 0.0f, frame.size().x, frame.size().y});
    dialog.build(frame);
    Frame::OverlayOptions options;
    options.modal = true;
    options.dismissed = dialog.request_.cancelled;
    frame.showOverlay(std::move(made), std::move(options));
    frame.requestKeys(dialog, true);
    const fs::path& wanted = dialog.request_.folder;
    dialog.goTo(nearestFolder(wanted.empty() ? homeFolder() : wanted));
    dialog.name_->setText(dialog.request_.name);
    frame.setFocus(dialog.request_.kind == FileRequest::Kind::save
                       ? static_cast<View*>(dialog.name_)
                       : dialog.list_);
    dialog.name_->selectAll();
    return dialog;
}

void FileDialog::build(const Frame& frame)
{
    const float margin = frame.style().margin;
    const float width = std::min(kWantedSize.x, frame.size().x - 2.0f * margin);
    const float height = std::min(kWantedSize.y, frame.size().y - 2.0f * margin);
    box_ = {std::round((frame.size().x - width) / 2.0f),
            std::round((frame.size().y - height) / 2.0f), width, height};
    Rect rest = box_.inset(kPadding);
    titleBox_ = rest.removeFromTop(24.0f);
    Rect path = rest.removeFromTop(kRow);
    emplace<PushButton>(path.removeFromLeft(44.0f), "Up", [this] { goUp(); });
    path.removeFromLeft(kGap);
    pathBox_ = path;
    rest.removeFromTop(kGap);

    Rect middle = rest.removeFromTop(rest.height - 2.0f * kRow - 22.0f - kGap);
    places_ = &emplace<ListBox>(middle.removeFromLeft(kPlacesWidth), "Places");
    middle.removeFromLeft(kGap);
    list_ = &emplace<ListBox>(middle, "Files");
    noteBox_ = rest.removeFromTop(22.0f);

    Rect nameRow = rest.removeFromTop(kRow);
    nameRow.removeFromLeft(kPlacesWidth + kGap);
    TextEdit::Options options;
    options.maxBytes = kMaxNameBytes;
    options.keepsFocus = true;
    options.placeholder = "Name";
    options.spokenName = "File name";
    name_ = &emplace<TextEdit>(nameRow, std::move(options));
    rest.removeFromTop(kGap);
    const Rect last{box_.right() - kPadding - kButtonWidth, rest.y, kButtonWidth, kRow};
    emplace<PushButton>(last.moved({-kButtonWidth - kGap, 0.0f}), "Cancel", [this] { cancel(); });
    const bool saves = request_.kind == FileRequest::Kind::save;
    acceptButton_ = &emplace<PushButton>(last, saves ? "Save" : "Open", [this] { accept(); });
    acceptButton_->setDefault(true);

    list_->selected = [this](int row) { select(row); };
    list_->activated = [this](int row) { activate(row); };
    name_->otherKey = [this](const KeyEvent& event) {
        return (event.key == Key::up || event.key == Key::down) && list_->keyDown(event);
    };
    buildPlaces();
}

void FileDialog::buildPlaces()
{
    std::vector<ListRow> rows;
    const auto add = [&](const fs::path& path, const std::string& label) {
        const bool known =
            std::find(placePaths_.begin(), placePaths_.end(), path) != placePaths_.end();
        if (path.empty() || known || !isFolder(path))
            return;
        placePaths_.push_back(path);
        rows.push_back({label, {}, true});
    };
    for (const fs::path& recent : request_.recentFolders) {
        const fs::path clean = (recent / "").lexically_normal().parent_path();
        add(clean, clean.filename().string());
    }
    if (const fs::path home = homeFolder(); !home.empty()) {
        add(home, "Home");
        for (const char* name : {"Desktop", "Documents", "Music"})
            add(home / name, name);
    }
    add("/", "Computer");
    places_->setRows(std::move(rows));
    places_->selected = [this](int row) { goTo(placePaths_[static_cast<std::size_t>(row)]); };
}

// --- folders ---------------------------------------------------------------------------------

void FileDialog::goTo(const fs::path& folder)
{
    folder_ = folder;
    read();
}

void FileDialog::read()
{
    listing_ = listFolder(folder_, request_.extension);
    std::vector<ListRow> rows;
    for (const FolderItem& item : listing_.items)
        rows.push_back(
            {item.name, item.isFolder ? std::string{} : fileSizeText(item.bytes), item.isFolder});
    list_->setRows(std::move(rows));
    list_->setEmptyText(!listing_.error.empty()      ? listing_.error
                        : request_.extension.empty() ? "This folder is empty"
                                                     : "No " + request_.extension + " files here");
    const auto place = std::find(placePaths_.begin(), placePaths_.end(), folder_);
    places_->select(place == placePaths_.end() ? -1
                                               : static_cast<int>(place - placePaths_.begin()));
    say(!listing_.error.empty() ? listing_.error
        : listing_.truncated    ? "Too many entries: not all are shown"
                                : std::string{});
    invalidate();
}

void FileDialog::goUp()
{
    const fs::path from = folder_.filename();
    if (!folder_.has_parent_path() || folder_.parent_path() == folder_)
        return;
    goTo(folder_.parent_path());
    for (std::size_t i = 0; i < listing_.items.size(); ++i)
        if (listing_.items[i].isFolder && listing_.items[i].name == from.string())
            list_->select(static_cast<int>(i));
}

void FileDialog::select(int row)
{
    const FolderItem& item = listing_.items[static_cast<std::size_t>(row)];
    if (!item.isFolder)
        name_->setText(item.name);
}

void FileDialog::activate(int row)
{
    const FolderItem item = listing_.items[static_cast<std::size_t>(row)];
    if (item.isFolder) {
        goTo(folder_ / item.name);
        return;
    }
    name_->setText(item.name);
    accept();
}

// --- the answer ------------------------------------------------------------------------------

// A typed path, absolute or from the folder shown; "~" is the home folder.
fs::path FileDialog::typedFile() const
{
    const std::string& typed = name_->text();
    const fs::path home = homeFolder();
    if (!home.empty() && (typed == "~" || typed.starts_with("~/")))
        return (home / typed.substr(std::min<std::size_t>(typed.size(), 2))).lexically_normal();
    return (folder_ / typed).lexically_normal();
}

void FileDialog::accept()
{
    if (frame() == nullptr)
        return;
    const int row = list_->selection();
    if (name_->text().empty()) {
        if (row >= 0)
            activate(row);
        else
            say("Choose a file or type a name");
        return;
    }
    const fs::path file = typedFile();
    if (isFolder(file)) {
        name_->setText({});
        goTo(file.has_filename() ? file : file.parent_path());
        return;
    }
    if (request_.kind == FileRequest::Kind::open)
        open(file);
    else
        save(file);
}

void FileDialog::open(const fs::path& file)
{
    if (isThere(file)) {
        finish(file);
        return;
    }
    fs::path completed = file;
    completed += request_.extension;
    if (isThere(completed) && !isFolder(completed))
        finish(completed);
    else
        say("There is no file of this name");
}

void FileDialog::save(const fs::path& typed)
{
    fs::path file = typed;
    if (lowered(file.extension().string()) != lowered(request_.extension))
        file += request_.extension;
    if (!isFolder(file.parent_path())) {
        say("There is no such folder");
        return;
    }
    if (isFolder(file)) {
        say("A folder has this name");
        return;
    }
    if (!isThere(file)) {
        finish(file);
        return;
    }
    MessageRequest question;
    question.title = "Replace the file?";
    question.text = file.filename().string() + " exists already. What it holds will be lost.";
    question.buttons = {"Cancel", "Replace"};
    // The box lies above this dialog, which therefore is still there when it is answered.
    question.answered = [this, file](int button) {
        if (button == 1 && frame() != nullptr)
            finish(file);
    };
    Message::show(*frame(), std::move(question));
}

void FileDialog::finish(const fs::path& file)
{
    const auto chosen = std::move(request_.chosen);
    frame()->dismissOverlay(*this);
    if (chosen)
        chosen(fs::path(file));
}

void FileDialog::cancel()
{
    if (frame() == nullptr)
        return;
    const auto cancelled = std::move(request_.cancelled);
    frame()->dismissOverlay(*this);
    if (cancelled)
        cancelled();
}

void FileDialog::say(std::string note)
{
    note_ = std::move(note);
    invalidate(noteBox_);
}

bool FileDialog::keyDown(const KeyEvent& event)
{
    if (event.key == Key::escape)
        cancel();
    else if (event.key == Key::enter)
        accept();
    else if (event.key == Key::backspace && list_->hasFocus())
        goUp();
    else
        return false;
    return true;
}

void FileDialog::draw(Canvas& canvas)
{
    const Style& style = frame()->style();
    drawModalBox(canvas, style, {localBounds(), box_, titleBox_}, request_.title);
    canvas.textIn(folder_.string(), pathBox_, style.field, style.secondaryText);
    canvas.textIn(note_, noteBox_, style.label, style.warning);
    const Rect label{box_.x + kPadding, name_->bounds().y, kPlacesWidth, kRow};
    canvas.textIn("Name", label, style.field, style.secondaryText, Align::right);
}

} // namespace tolm::gui
