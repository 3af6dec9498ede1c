#pragma once
// The editor: the window's contents over an EditorPort. Opened and closed by the host as often as
// it likes; what it remembers in between (undo, pages, scale) lives here. One thread at a time.

#include "editor/EditHistory.h"
#include "editor/EditorContext.h"
#include "editor/actions.h"
#include "editor/layout.h"
#include "gui/Window.h"

#include <array>
#include <memory>

namespace tolm {

class ADEditor final : private ActionsView {
public:
    ADEditor(EditorPort& port, const ArpPatternTable& patterns);
    ~ADEditor() override;

    // In device pixels; known before a window exists.
    gui::Point windowSize() const;
    // A child of the host's window; false when there is no display. An open window is closed first.
    bool open(gui::NativeHandle parent);
    // The same in a window that the caller made, such as a picture.
    void openIn(std::unique_ptr<gui::Window> window);
    void close();
    bool isOpen() const { return window_ != nullptr; }
    // From the host, some twenty times a second: input, news, painting. Calls from within a call do
    // nothing.
    void idle();

    // 0.75 to 2.5 device pixels per logical one.
    void setScale(float scale);
    float scale() const { return scale_; }
    // One of the four pages of the lower pane.
    void showPage(Page page);
    gui::Window* window() { return window_.get(); }
    EditorContext& context() { return context_; }

private:
    void showWave(int oscillator, int wave) override;
    void showFilterType() override;
    void showArpMode() override;
    void showPages(const EditorPages& pages) override;
    void refresh() override;

    void build();
    void takeNews();

    EditorPort& port_;
    EditHistory history_;
    Actions actions_;
    EditorContext context_;
    std::unique_ptr<gui::Window> window_;
    std::array<gui::View*, kPageCount> pages_{}; // of the open window
    Page lowerPage_ = Page::modulation;
    float scale_ = 1.0f;
    double metersAt_ = 0.0;
    bool busy_ = false;
};

} // namespace tolm
