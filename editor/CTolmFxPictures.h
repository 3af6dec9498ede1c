#pragma once
// Small pictures of what an effect does: transfer curve, response, notches, echoes, dying away.

#include "editor/displays.h"
#include "editor/effectRows.h"

namespace tolm {

class CTolmFxPicture final : public CDisplay {
public:
    CTolmFxPicture(EditorContext& context, int kind, gui::Rect place);
    void draw(gui::Canvas& canvas) override;
    View* hitTest(gui::Point) override { return nullptr; } // the card is dragged through it

private:
    void drawDistortion(gui::Canvas& canvas, const gui::Rect& area) const;
    void drawEqualiser(gui::Canvas& canvas, const gui::Rect& area) const;
    void drawPhaser(gui::Canvas& canvas, const gui::Rect& area) const;
    void drawDelay(gui::Canvas& canvas, const gui::Rect& area) const;
    void drawReverb(gui::Canvas& canvas, const gui::Rect& area) const;
    gui::Color color() const { return theme::color(row().accent); }
    const EffectRow& row() const { return kEffectRows[static_cast<std::size_t>(kind_)]; }
    // By distance from the type.
    float part(int offset) const { return context().value(row().firstId + offset); }

    int kind_;
};

// What the distortion's shaper makes of a sample -1..1, without its filter; `type` and `drive` as
// stored.
float shapedSample(float type, float drive, float sample);
// Gain of an equaliser band in dB at a frequency in Hz, by its stored values.
float equaliserDecibels(float type, float frequency, float q, float gain, float hz);

} // namespace tolm
