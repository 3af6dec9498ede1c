#pragma once
// The rail beside the lower pane: four tabs that choose its page.

#include "editor/EditorContext.h"

namespace tolm {

class CTabs final : public gui::View {
public:
    static constexpr int kCount = 4;

    explicit CTabs(EditorContext& context);

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseMoved(const gui::MouseEvent& event) override;
    void mouseLeft() override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string tooltip() const override;
    std::string spokenName() const override;

private:
    int chosen() const { return context_.actions().pages().effectPage; }
    gui::Rect place(int tab) const;
    int tabAt(gui::Point p) const;
    void choose(int tab);
    void point(int tab);
    void drawTab(gui::Canvas& canvas, int tab) const;

    EditorContext& context_;
    int pointed_ = -1;
};

} // namespace tolm
