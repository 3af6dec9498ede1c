#pragma once
// The effects page: six cards from left to right in the order of the signal. A card is dragged by
// its title to another place; the others make room while it moves.

#include "editor/EditorContext.h"
#include "editor/effectRows.h"

#include <array>
#include <vector>

namespace tolm {

class CTolmFxCard;

class CTolmFxBox final : public gui::View, public ValueListener {
public:
    static constexpr int kSlots = 6;

    explicit CTolmFxBox(EditorContext& context);
    ~CTolmFxBox() override;

    // The kind 0..5 at a slot 0..5, or -1 where the stored number is none.
    int kindAt(int slot) const;
    CTolmFxCard* cardAt(int slot) { return cards_[static_cast<std::size_t>(slot)]; }
    gui::Rect slotPlace(int slot) const;
    // By a card's keys.
    void moveCard(int from, int to);

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { drop(true); }
    void captureLost() override { drop(false); }
    bool animate(double) override;
    void valueChanged(int) override;
    std::string tooltip() const override { return "Drag a title to change the order"; }

private:
    void fill();
    void place(bool atOnce);
    void openOrderMenu(int slot, gui::Point inFrame);
    void replaceKind(int slot, int kind);
    void drop(bool keep);
    int slotAt(float x) const;
    // Where the card of a slot stands while another is dragged.
    int previewSlot(int slot) const;

    EditorContext& context_;
    std::array<CTolmFxCard*, kSlots> cards_{};
    int dragged_ = -1; // slot it came from
    int target_ = -1;
    float grip_ = 0.0f; // from the card's left edge
};

// One effect: switch, type, picture and knobs. Pale while it is off.
class CTolmFxCard final : public gui::View, public ValueListener {
public:
    CTolmFxCard(EditorContext& context, CTolmFxBox& box, int kind);
    ~CTolmFxCard() override { context_.forget(*this); }

    static constexpr float kTitleHeight = 30.0f;
    int kind() const { return kind_; }
    int slot = 0;
    void setLifted(bool lifted);

    void draw(gui::Canvas& canvas) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    gui::Cursor cursor() const override { return gui::Cursor::move; }
    std::string tooltip() const override { return box_.tooltip(); }
    std::string spokenName() const override;
    void valueChanged(int) override { invalidate(); }

private:
    bool isOn() const;

    EditorContext& context_;
    CTolmFxBox& box_;
    int kind_;
    bool lifted_ = false;
};

} // namespace tolm
