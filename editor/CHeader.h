#pragma once
// The line at the top: product, program, undo, what moves, output, menus.

#include "editor/CHeaderParts.h"

namespace tolm {

class CHeader final : public gui::View, private ProgramListener, private ValueListener {
public:
    explicit CHeader(EditorShell& shell);
    ~CHeader() override;

    void draw(gui::Canvas& canvas) override;
    CStatusText& status() { return *status_; }
    COutputMeter& meter() { return *meter_; }
    CProgramField& field() { return *field_; }
    CCompareMark& compare() { return *compare_; }

private:
    void programChanged() override;
    void valueChanged(int) override { field_->invalidate(); }
    CIconButton& addButton(float x, float width, CIconButton::Options options);
    void addStepper(float x, Icon icon, int tag, const char* name);
    void addUndo(float x, bool redo);
    void addMenus();

    EditorShell& shell_;
    CProgramField* field_ = nullptr;
    CCompareMark* compare_ = nullptr;
    CStatusText* status_ = nullptr;
    COutputMeter* meter_ = nullptr;
};

// The menus behind the header's buttons. `anchor` is the button; `field` is where a name is typed.
void openProgramMenu(EditorShell& shell, gui::View& anchor, gui::View& field);
void openSettingsMenu(EditorShell& shell, gui::View& anchor);

} // namespace tolm
