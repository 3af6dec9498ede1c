#pragma once
// What the controls of one window share: the plug-in's port, the actions, and who wants to hear of
// which value. User-interface thread.

#include "editor/EditHistory.h"
#include "editor/actions.h"
#include "gui/View.h"
#include "plugin/EditorPort.h"
#include "plugin/paramText.h"

#include <array>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace tolm {

// Hears when values change, whoever changed them.
class ValueListener {
public:
    virtual ~ValueListener() = default;
    virtual void valueChanged(int id) = 0;
};

// What a live view shows about 30 times a second.
class MeterListener {
public:
    virtual ~MeterListener() = default;
    virtual void metersChanged(const EditorMeters& meters) = 0;
};

// A named position of a parameter with few of them, and a value in the middle of its range (a
// menu's stored id).
struct Choice {
    std::string text;
    float value;
};

class EditorContext {
public:
    EditorContext(EditorPort& port, Actions& actions, EditHistory& history)
        : port_(port), actions_(actions), history_(history)
    {
    }

    EditorPort& port() { return port_; }
    Actions& actions() { return actions_; }
    EditHistory& history() { return history_; }

    float value(int id) const;
    // As a player reads it, with its unit.
    std::string text(int id) const { return textOf(id, value(id)); }
    std::string textOf(int id, float value) const;
    // What a typed text means for a parameter; nothing when it does not fit.
    std::optional<float> valueFromText(int id, std::string_view text) const;
    // The named positions of a parameter, in order; empty for continuous ones.
    const std::vector<Choice>& choices(int id);
    // The position that a value stands at; -1 when none.
    int choiceAt(int id, float value);
    // What "Reset" gives: the initial patch's value.
    float defaultValue(int id) const;

    // Until `forget`. A listener may ask for many ids.
    void listen(ValueListener& listener, std::initializer_list<int> ids);
    void listen(ValueListener& listener, int firstId, int count);
    void forget(ValueListener& listener);
    void listenToMeters(MeterListener& listener) { meterListeners_.push_back(&listener); }
    void forget(MeterListener& listener);
    void tellValue(int id);
    void tellAllValues();
    void tellMeters(const EditorMeters& meters);

    // Sum of the absolute amounts of the matrix rows that reach a parameter, 0..1; 0 for none.
    float modulationOf(int id) const;

    // Right click on a control: learn, forget, reset, type, copy, paste. Position in the frame.
    void openParameterMenu(gui::View& control, int tag, gui::Point inFrame);
    // A field over the control that takes a typed value.
    void openValueField(gui::View& control, int id);
    // A field over a place in the frame, with a text to begin from, that hands on what is typed.
    void openTextField(gui::View& control, const gui::Rect& around, std::string_view text,
                       std::function<void(const std::string& typed)> typed);
    // Shown in the header while a value moves; empty to end it.
    std::function<void(const std::string& text)> showStatus;
    // Opens the browser or closes it.
    std::function<void()> toggleBrowser;
    // A double click types a value instead of resetting it; Ctrl with a click does the other.
    bool doubleClickTypes = true;

private:
    std::vector<Choice> probed(int id) const;
    void tellListeners(int id);
    // Those of the parameters that a matrix destination moves.
    void tellReached(int destination);

    EditorPort& port_;
    Actions& actions_;
    EditHistory& history_;
    std::array<std::vector<ValueListener*>, kParameterCount> valueListeners_;
    std::vector<MeterListener*> meterListeners_;
    std::array<std::vector<Choice>, kParameterCount> choices_;
    std::optional<float> copiedValue_;
};

} // namespace tolm
