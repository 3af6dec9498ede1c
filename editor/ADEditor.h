#pragma once
// The editor: the window's contents over an EditorPort. Opened and closed by the host as often as
// it likes; what it remembers in between (undo, pages, scale) lives here. One thread at a time.

#include "editor/EditHistory.h"
#include "editor/EditorContext.h"
#include "editor/EditorShell.h"
#include "editor/actions.h"
#include "editor/layout.h"
#include "gui/Window.h"

#include <array>
#include <memory>

namespace tolm {

class CBrowser;
class CHeader;
class FileSelector;

class ADEditor final : private ActionsView {
public:
    ADEditor(EditorPort& port, const ArpPatternTable& patterns);
    ~ADEditor() override;

    // In device pixels; known before a window exists.
    gui::Point windowSize() const;
    // A child of the host's window; false when there is no display, or from within a call. An open
    // window is closed first.
    bool open(gui::NativeHandle parent);
    // The same in a window that the caller made, such as a picture.
    void openIn(std::unique_ptr<gui::Window> window);
    // Ends every gesture and lets go of every key. From within a call it happens at that call's
    // end.
    void close();
    bool isOpen() const { return window_ != nullptr; }
    // From the host, some twenty times a second: input, news, painting. Calls from within a call do
    // nothing.
    void idle();

    // 0.75 to 2.5 device pixels per logical one, until the user's setting changes.
    void setScale(float scale);
    float scale() const { return scale_; }
    // One of the four pages of the lower pane.
    void showPage(Page page);
    gui::Window* window() { return window_.get(); }
    EditorContext& context() { return context_; }
    EditorShell& shell() { return shell_; }

private:
    void showWave(int oscillator, int wave) override;
    void showFilterType() override;
    void showArpMode() override;
    void showPages(const EditorPages& pages) override;
    void refresh() override;

    void build();
    void buildPages(gui::View& root);
    void takeNews();
    void takeBankNews(const EditorNews& news);
    void followProgram(bool newBank);
    void takeValueNews(const EditorNews& news);
    void takeMeters();
    void takeNotice();
    void say(const std::string& title, const std::string& text);
    void turnWheel(float distance);
    void applySettings();
    void applyScale();
    float wantedScale() const;

    EditorPort& port_;
    EditHistory history_;
    Actions actions_;
    EditorContext context_;
    EditorShell shell_;
    std::unique_ptr<FileSelector> fileSelector_; // of the open window
    std::unique_ptr<gui::Window> window_;
    std::array<gui::View*, kPageCount> pages_{}; // of the open window
    CHeader* header_ = nullptr;
    CBrowser* browser_ = nullptr;
    gui::View* tabs_ = nullptr;
    float scale_ = 1.0f;
    double metersAt_ = 0.0;
    unsigned changesSeen_ = 0; // of the history
    std::optional<int> learningSeen_;
    bool busy_ = false;
    bool closeWanted_ = false;
    bool settingsChanged_ = false;
    bool noticeShown_ = false;
    bool sizeRefused_ = false; // by the host: the wanted scale waits for the next opening
};

} // namespace tolm
