#pragma once
// The browser: a sheet over the voice area and the lower pane. Arrow keys play through the list,
// typing searches, Enter and Escape close it.

#include "editor/CBrowserLists.h"
#include "gui/TextEdit.h"

namespace tolm {

class CBrowser final : public gui::View, private ProgramListener {
public:
    explicit CBrowser(EditorShell& shell);
    ~CBrowser() override { shell_.forget(*this); }

    // Shown, it has the keys.
    void show(bool visible);

    CBrowserModel& model() { return model_; }
    CBrowserNames& names() { return *names_; }
    CBrowserCategories& categories() { return *categories_; }
    gui::TextEdit& searchField() { return *search_; }
    gui::TextEdit& descriptionField() { return *description_; }

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent&) override { return true; }
    bool mouseWheel(const gui::WheelEvent&) override { return true; }
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    bool animate(double) override;
    std::string spokenName() const override { return "Browser"; }

private:
    void programChanged() override;
    void addFields();
    void close();
    void update();
    void showDescription();
    bool moveKey(const gui::KeyEvent& event);

    EditorShell& shell_;
    CBrowserModel model_;
    CBankSwitch* banks_ = nullptr;
    CBrowserCategories* categories_ = nullptr;
    CBrowserNames* names_ = nullptr;
    gui::TextEdit* search_ = nullptr;
    gui::TextEdit* description_ = nullptr;
};

} // namespace tolm
