#include "editor/CTolmFxPictures.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace tolm {

namespace {

constexpr std::size_t kPoints = 97;
constexpr float kGainRange = 12.0f; // dB above and below the middle
constexpr float kLowestHz = 20.0f;
constexpr float kHighestHz = 20000.0f;
using Curve = std::array<float, kPoints>;

float curve(float x, float low, float high)
{
    return low * std::pow(high / low, std::clamp(x, 0.0f, 1.0f));
}

float along(std::size_t i)
{
    return static_cast<float>(i) / static_cast<float>(kPoints - 1);
}

// Symmetrical, with the steepness of an exponential.
float toxic(float driven, float sample)
{
    return sample >= 0.0f ? 1.0f - (1.0f - sample) * std::pow(10.0f, -driven)
                          : -(1.0f - (sample + 1.0f) * std::pow(10.0f, driven));
}

// A softened half-wave: bends at zero.
float valve(float driven)
{
    const float shift = -0.25f / (1.0f - std::exp(-2.0f));
    const float t = driven + 0.25f;
    return (std::abs(t) < 0.0001f ? 0.125f : t / (1.0f - std::exp(-8.0f * t))) + shift;
}

float clip(float driven)
{
    if (driven <= 1.0f / 3.0f)
        return driven;
    const float rest = 2.0f - 3.0f * driven;
    return driven >= 2.0f / 3.0f ? 0.5f : (3.0f - rest * rest) / 6.0f;
}

} // namespace

float shapedSample(float type, float drive, float sample)
{
    const auto kind = static_cast<int>(std::clamp(type, 0.0f, 1.0f) * 8.0f);
    const float gain = curve(drive, 1.0f, 64.0f);
    switch (kind / 2) {
    case 0:
        return std::tanh(gain * sample) * curve(drive, 1.0f, 16.0f) / gain;
    case 1:
        return 0.25f * toxic(gain * sample, sample);
    case 2:
        return valve(0.5f * gain * sample) / (0.5f * gain);
    case 3:
        return curve(drive, 0.25f, 4.0f) * sample;
    default:
        return clip(0.25f * gain * sample) / (0.25f * gain);
    }
}

// The analogue prototypes: first-order shelves, and a peak whose Q counts.
float equaliserDecibels(float type, float frequency, float q, float gain, float hz)
{
    const auto kind = static_cast<int>(std::clamp(type, 0.0f, 1.0f) * 2.01f);
    const float g = std::pow(10.0f, (2.0f * gain - 1.0f) * 0.5f);
    const std::complex<float> s(0.0f, hz / curve(frequency, 10.0f, 10000.0f));
    std::complex<float> response;
    if (kind == 0) {
        const float width = 1.0f / curve(q, 0.1f, 10.0f);
        response = (s * s + s * g * width + 1.0f) / (s * s + s * width + 1.0f);
    } else if (kind == 1) {
        response = g > 1.0f ? (s + g) / (s + 1.0f) : (s + 1.0f) / (s + 1.0f / g);
    } else {
        response = g > 1.0f ? (1.0f + s * g) / (1.0f + s) : (1.0f + s) / (1.0f + s / g);
    }
    return 20.0f * std::log10(std::max(std::abs(response), 1.0e-4f));
}

CTolmFxPicture::CTolmFxPicture(EditorContext& context, int kind, gui::Rect place)
    : CDisplay(context, place), kind_(kind)
{
    context.listen(*this, row().firstId, row().lastId - row().firstId + 1);
}

void CTolmFxPicture::draw(gui::Canvas& canvas)
{
    const gui::Rect area = drawWell(canvas, kind_ == 0 ? 2 : 4, 2);
    switch (kind_) {
    case 0:
        return drawDistortion(canvas, area);
    case 1:
    case 2:
        return drawEqualiser(canvas, area);
    case 3:
        return drawPhaser(canvas, area);
    case 4:
        return drawDelay(canvas, area);
    default:
        return drawReverb(canvas, area);
    }
}

void CTolmFxPicture::drawDistortion(gui::Canvas& canvas, const gui::Rect& area) const
{
    Curve values;
    float highest = 0.0f;
    for (std::size_t i = 0; i < kPoints; ++i) {
        values[i] = shapedSample(part(0), part(2), 2.0f * along(i) - 1.0f);
        highest = std::max(highest, std::abs(values[i]));
    }
    // Drawn to its own height: what counts is the bend.
    const float scale = 0.46f / std::max(highest, 0.01f);
    std::array<gui::Point, kPoints> points;
    for (std::size_t i = 0; i < kPoints; ++i)
        points[i] = {area.x + area.width * along(i),
                     area.centre().y - area.height * scale * values[i]};
    canvas.line({area.x, area.bottom() - area.height * 0.04f},
                {area.right(), area.y + area.height * 0.04f}, 1.0f, theme::kTrack);
    canvas.stroke(gui::Path::polyline(points), {1.6f, gui::LineCap::round}, color());
}

void CTolmFxPicture::drawEqualiser(gui::Canvas& canvas, const gui::Rect& area) const
{
    std::array<gui::Point, kPoints> points;
    for (std::size_t i = 0; i < kPoints; ++i) {
        const float hz = kLowestHz * std::pow(kHighestHz / kLowestHz, along(i));
        const float db = equaliserDecibels(part(0), part(1), part(2), part(3), hz);
        points[i] = {area.x + area.width * along(i),
                     area.centre().y - area.height / 2 * std::clamp(db / kGainRange, -1.0f, 1.0f)};
    }
    gui::Path filled = gui::Path::polyline(points);
    filled.lineTo({area.right(), area.centre().y}).lineTo({area.x, area.centre().y}).close();
    canvas.fill(filled, color().withAlpha(0.16f));
    canvas.stroke(gui::Path::polyline(points), {1.6f, gui::LineCap::round}, color());
}

// Notches for a phaser's stages, teeth for the delays; both as deep as the amount.
void CTolmFxPicture::drawPhaser(gui::Canvas& canvas, const gui::Rect& area) const
{
    const auto type = static_cast<int>(std::clamp(part(0), 0.0f, 1.0f) * 6.1f);
    const float notches = type < 3 ? static_cast<float>(type + 2) : type < 5 ? 7.0f : 5.0f;
    const float depth = 0.86f * (type < 5 ? 1.0f - std::abs(2.0f * part(4) - 1.0f) * 0.4f : 0.45f) *
                        std::min(1.0f, 4.0f * part(4));
    const float sharpness = 1.0f + 5.0f * part(3);
    const float centre = 0.15f + 0.7f * part(2);
    Curve values;
    for (std::size_t i = 0; i < kPoints; ++i) {
        const float x = along(i);
        const float phase = std::numbers::pi_v<float> * notches * (x - centre + 0.5f);
        const float tooth = std::pow(std::abs(std::cos(phase)), sharpness);
        const float reach = std::exp(-6.0f * (x - centre) * (x - centre)); // of the sweep
        values[i] = 0.92f - depth * tooth * (type < 3 ? reach : 1.0f);
    }
    drawCurve(canvas, area, values, color());
}

// Echoes of the left side upwards, of the right downwards.
void CTolmFxPicture::drawDelay(gui::Canvas& canvas, const gui::Rect& area) const
{
    constexpr float kShown = 2.0f; // whole notes' width at the longest time
    canvas.line({area.x, area.centre().y}, {area.right(), area.centre().y}, 1.0f, theme::kTrack);
    for (const int side : {0, 1}) {
        const float time = std::pow(2.0f, -6.0f * std::clamp(part(4 + side), 0.0f, 1.0f));
        const float step = std::max(area.width * time / kShown, 3.0f);
        float level = area.height / 2 * std::min(1.0f, 0.25f + part(3));
        for (float x = area.x + step; x < area.right() && level > 1.0f; x += step) {
            const gui::Rect bar{x - 1.0f, side == 0 ? area.centre().y - level : area.centre().y,
                                2.0f, level};
            canvas.fillRoundRect(bar, 1.0f,
                                 color().withAlpha(std::max(0.25f, 2.0f * level / area.height)));
            level *= 0.12f + 0.85f * part(2);
        }
    }
    canvas.fillRoundRect({area.x, area.y, 2.0f, area.height}, 1.0f, theme::kSecondary);
}

// Level over two and a half seconds: silence, early answers, dying away.
void CTolmFxPicture::drawReverb(gui::Canvas& canvas, const gui::Rect& area) const
{
    constexpr float kSeconds = 2.5f;
    const float start = 0.1f * part(4);
    const float seconds = curve(part(2), 0.5f, 10.0f);
    Curve values;
    for (std::size_t i = 0; i < kPoints; ++i) {
        const float t = kSeconds * along(i) - start;
        const float level = t < 0.0f ? 0.0f : std::exp(-6.9f * t / seconds);
        const float grain = t < 0.3f ? 0.75f + 0.25f * std::cos(90.0f * t) : 1.0f;
        values[i] = level * grain * (0.45f + 0.5f * part(3));
    }
    drawCurve(canvas, area, values, color());
}

} // namespace tolm
