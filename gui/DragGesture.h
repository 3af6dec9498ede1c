#pragma once
// How a hand turns a value: dragging up and down, the wheel, double and Ctrl clicks. A control owns
// one, feeds it with its events and hears what became of them. Changes come between begin and end,
// so that a host records one gesture.

#include "gui/events.h"

#include <algorithm>

namespace tolm::gui {

class DragListener {
public:
    virtual ~DragListener() = default;
    virtual void gestureBegan() = 0;
    // The value is 0..1.
    virtual void gestureMoved(float value) = 0;
    virtual void gestureEnded() = 0;
};

class DragGesture {
public:
    static constexpr float kFullRangePixels = 160.0f;
    static constexpr float kFineFactor = 1.0f / 8.0f; // dragging with Shift
    static constexpr float kWheelStep = 0.02f;
    static constexpr float kFineWheelStep = 0.002f; // with Shift
    static constexpr double kWheelTimeoutSeconds = 0.3;

    enum class Press : unsigned char { drag, doubleClick, controlClick };

    explicit DragGesture(DragListener& listener) : listener_(listener) {}

    // A left press at `value`. Only Press::drag begins a gesture.
    Press press(const MouseEvent& event, float value)
    {
        end();
        if (event.modifiers.control)
            return Press::controlClick;
        if (event.clicks == 2)
            return Press::doubleClick;
        start(Mode::drag, value);
        last_ = event.position;
        return Press::drag;
    }

    // Movement counts step by step, so that pressing Shift on the way does not jump. What goes
    // beyond either end is lost: coming back acts at once.
    void drag(const MouseEvent& event)
    {
        if (mode_ != Mode::drag)
            return;
        const float up = last_.y - event.position.y;
        last_ = event.position;
        move(up / kFullRangePixels * (event.modifiers.shift ? kFineFactor : 1.0f));
    }

    // Mouse released, or the capture lost.
    void end()
    {
        if (mode_ == Mode::idle)
            return;
        mode_ = Mode::idle;
        listener_.gestureEnded();
    }

    // `smallestStep` > 0: a control of few steps moves at least one of them. The gesture ends
    // kWheelTimeoutSeconds after the last turn: call tick from View::animate until it is false.
    void wheel(const WheelEvent& event, float value, double now, float smallestStep = 0.0f)
    {
        if (mode_ == Mode::drag)
            return;
        if (mode_ == Mode::idle)
            start(Mode::wheel, value);
        wheelEnd_ = now + kWheelTimeoutSeconds;
        const float step = event.modifiers.shift ? kFineWheelStep : kWheelStep;
        move(event.steps * std::max(step, smallestStep));
    }

    // True while a wheel gesture is open.
    bool tick(double now)
    {
        if (mode_ == Mode::wheel && now >= wheelEnd_)
            end();
        return mode_ == Mode::wheel;
    }

    bool isActive() const { return mode_ != Mode::idle; }
    bool isDragging() const { return mode_ == Mode::drag; }

private:
    enum class Mode : unsigned char { idle, drag, wheel };

    void start(Mode mode, float value)
    {
        mode_ = mode;
        value_ = std::clamp(value, 0.0f, 1.0f);
        listener_.gestureBegan();
    }

    void move(float by)
    {
        const float next = std::clamp(value_ + by, 0.0f, 1.0f);
        if (next == value_)
            return;
        value_ = next;
        listener_.gestureMoved(next);
    }

    DragListener& listener_;
    Mode mode_ = Mode::idle;
    float value_ = 0.0f; // not rounded to the control's steps, so that slow drags add up
    Point last_;
    double wheelEnd_ = 0.0;
};

} // namespace tolm::gui
