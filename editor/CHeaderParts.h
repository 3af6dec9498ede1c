#pragma once
// What stands in the header: buttons with an icon or a word, the program's field, the mark of a
// changed program, the value that moves, and the output meter.

#include "editor/EditorShell.h"

#include <functional>
#include <string>

namespace tolm {

enum class Icon : std::uint8_t { previous, next, undo, redo, panic, settings, none };

void drawStar(gui::Canvas& canvas, gui::Point centre, float radius, bool filled, gui::Color color);

// A button that acts when it is pressed.
class CIconButton final : public gui::View {
public:
    struct Options {
        Icon icon = Icon::none;
        std::string word;                     // without an icon
        bool opensMenu = false;               // a small arrow beside the word
        std::function<std::string()> tooltip; // asked when shown
        std::function<bool()> isUseful;       // null: always
        std::string spoken;
        std::function<void(gui::View& button)> pressed;
    };

    CIconButton(gui::Rect place, Options options) : View(place), options_(std::move(options)) {}

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { release(); }
    void captureLost() override { release(); }
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string tooltip() const override { return options_.tooltip ? options_.tooltip() : ""; }
    std::string spokenName() const override { return options_.spoken; }

private:
    bool isUseful() const { return !options_.isUseful || options_.isUseful(); }
    void release();

    Options options_;
    bool down_ = false;
};

// The current program: place, name, star, category. A click opens the browser.
class CProgramField final : public gui::View {
public:
    CProgramField(EditorShell& shell, gui::Rect place) : View(place), shell_(shell) {}

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    bool mouseWheel(const gui::WheelEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string tooltip() const override { return "Opens the browser"; }
    std::string spokenName() const override;

    // Places inside the field, for its draw and its clicks.
    gui::Rect starPlace() const;
    gui::Rect categoryPlace() const;

private:
    void openCategories();
    EditorShell& shell_;
};

// "EDITED" when the program differs from what was loaded, and a click plays the loaded sound and
// back.
class CCompareMark final : public gui::View {
public:
    CCompareMark(EditorShell& shell, gui::Rect place) : View(place), shell_(shell) { update(); }

    // Looks whether the program is changed.
    void update();
    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string tooltip() const override;
    std::string spokenName() const override { return "Compare with the loaded sound"; }

private:
    void toggle();
    EditorShell& shell_;
    bool changed_ = false;
    bool loaded_ = false;
};

// The name and value of the control that moves; else what waits for the user, such as a controller
// to be learnt.
class CStatusText final : public gui::View {
public:
    CStatusText(EditorContext& context, gui::Rect place) : View(place), context_(context) {}
    void show(const std::string& text);
    const std::string& text() const { return text_; }
    void draw(gui::Canvas& canvas) override;

private:
    EditorContext& context_;
    std::string text_;
};

// Two bars from -48 to +3 dB of full scale, with the voices that sound. A click forgets an
// overload.
class COutputMeter final : public gui::View, public MeterListener {
public:
    COutputMeter(EditorContext& context, gui::Rect place);
    ~COutputMeter() override { context_.forget(static_cast<MeterListener&>(*this)); }

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void metersChanged(const EditorMeters& meters) override;
    std::string tooltip() const override { return "Output level and sounding voices"; }
    std::string spokenName() const override { return "Output level"; }

private:
    struct Bar {
        float level = 0.0f; // 0..1 of the scale
        bool over = false;
    };
    static bool follow(Bar& bar, float peak);
    void drawBar(gui::Canvas& canvas, const gui::Rect& place, const Bar& bar) const;

    EditorContext& context_;
    Bar left_;
    Bar right_;
    int voices_ = 0;
};

} // namespace tolm
