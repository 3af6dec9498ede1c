#pragma once
// Pictures of what the sound is made of, some of which can be dragged: waves, filter response,
// envelopes, LFO shapes, the switches of stacked voices.

#include "editor/EditorContext.h"
#include "editor/theme.h"
#include "gui/View.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tolm {

// A dark well with a picture in it that follows some values.
class CDisplay : public gui::View, public ValueListener {
public:
    CDisplay(EditorContext& context, gui::Rect place) : View(place), context_(context) {}
    ~CDisplay() override { context_.forget(*this); }
    void valueChanged(int) override { invalidate(); }

protected:
    EditorContext& context() { return context_; }
    const EditorContext& context() const { return context_; }
    // The well and a faint grid of `columns` by `rows`; answers the area inside.
    gui::Rect drawWell(gui::Canvas& canvas, int columns, int rows) const;
    // The line of values 0 (bottom) to 1 (top), evenly spread, with a glow below it.
    static void drawCurve(gui::Canvas& canvas, const gui::Rect& area, std::span<const float> values,
                          gui::Color color);

private:
    EditorContext& context_;
};

// What an oscillator plays: one cycle of its shape, wave and pulse width.
class CWaveDisplay final : public CDisplay {
public:
    CWaveDisplay(EditorContext& context, int oscillator, gui::Rect place);
    void draw(gui::Canvas& canvas) override;
    std::string tooltip() const override;

private:
    int firstId_;
    int oscillator_;
};

// Magnitude of the filter from 20 Hz to 20 kHz at 44.1 kHz for a held key in the middle. Dragging
// moves cutoff (sideways) and resonance (up and down).
class CFilterDisplay final : public CDisplay {
public:
    CFilterDisplay(EditorContext& context, gui::Rect place);
    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { endDrag(); }
    void captureLost() override { endDrag(); }
    gui::Cursor cursor() const override { return gui::Cursor::move; }
    std::string tooltip() const override;

private:
    void endDrag();
    bool dragging_ = false;
    gui::Point last_;
};

struct EnvelopeIds {
    int attack; // decay, sustain and release follow
    Accent accent;
};

// The envelope as a curve with a handle at the end of each stage.
class CEnvelopeDisplay final : public CDisplay {
public:
    CEnvelopeDisplay(EditorContext& context, EnvelopeIds ids, gui::Rect place);
    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { endDrag(); }
    void mouseMoved(const gui::MouseEvent& event) override;
    void mouseLeft() override;
    void captureLost() override { endDrag(); }
    gui::Cursor cursor() const override { return gui::Cursor::move; }
    std::string tooltip() const override;

private:
    enum class Handle : std::uint8_t { none, attack, decay, release };
    struct Shape {
        gui::Point start, peak, sustain, hold, end;
    };
    Shape shape() const;
    Handle handleAt(gui::Point p) const;
    void endDrag();
    void nudge(int id, float by);

    EnvelopeIds ids_;
    Handle dragged_ = Handle::none;
    Handle pointed_ = Handle::none;
    gui::Point last_;
};

// Two cycles of an LFO, bent by its skew, under its fade-in, with the phase of the newest voice.
class CLfoDisplay final : public CDisplay, public MeterListener {
public:
    CLfoDisplay(EditorContext& context, int lfo, gui::Rect place);
    ~CLfoDisplay() override { context().forget(static_cast<MeterListener&>(*this)); }
    void draw(gui::Canvas& canvas) override;
    void metersChanged(const EditorMeters& meters) override;
    std::string tooltip() const override;

private:
    int firstId_;
    std::size_t lfo_;
    float phase_ = 0.0f;
    bool running_ = false;
};

// "Voice 1" to "Voice 8": which voices of a stack sound.
class CVoiceSwitches final : public CDisplay {
public:
    CVoiceSwitches(EditorContext& context, gui::Rect place);
    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseMoved(const gui::MouseEvent& event) override;
    void mouseLeft() override;
    std::string tooltip() const override;
    gui::Cursor cursor() const override { return gui::Cursor::hand; }

private:
    int indexAt(gui::Point p) const;
    int pointed_ = -1;
};

// What the matrix does, row by row, as far as there is room. A click opens the matrix.
class CModulationList final : public CDisplay {
public:
    CModulationList(EditorContext& context, gui::Rect place);
    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    std::string tooltip() const override { return "Rows of the matrix in use. Click to edit them"; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
};

} // namespace tolm
