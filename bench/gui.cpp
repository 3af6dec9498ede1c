// Drawing at scale 1: parts of the window and a whole page of them, 1120 x 720.

#include "tests/gui/primitives.h"

#include <benchmark/benchmark.h>

#include <string>

namespace tolm::gui {

namespace {

struct Page {
    Image image{1120, 720};
    GlyphCache glyphs;
};

// About what the main page holds: 14 panels, 70 knobs, 60 buttons, curves, 300 texts.
void drawPage(Canvas& canvas)
{
    using namespace sheet;
    canvas.fillRect({0, 0, 1120, 720}, kBack);
    for (int i = 0; i < 14; ++i) {
        const Point at{12.0f + 157.0f * static_cast<float>(i % 7),
                       56.0f + 280.0f * static_cast<float>(i / 7)};
        panel(canvas, {at.x, at.y, 149, 272}, "OSCILLATOR", kAmber);
        for (int k = 0; k < 5; ++k)
            knob(canvas, {at.x + 26 + 24 * static_cast<float>(k), at.y + 60}, 40, 0.7f, k % 2 == 0,
                 0.1f, kAmber, "Detune");
        for (int k = 0; k < 4; ++k)
            button(canvas, {at.x + 8, at.y + 120 + 22 * static_cast<float>(k), 120, 18},
                   "Lowpass 24 dB", k == 2, kTeal);
        curves(canvas, {at.x + 6, at.y + 210, 137, 56});
    }
    for (int i = 0; i < 220; ++i)
        canvas.text("Parameter name",
                    {12.0f + 100.0f * static_cast<float>(i % 11),
                     60.0f + 33.0f * static_cast<float>(i / 11)},
                    {9.5f}, kSecondary);
}

void page(benchmark::State& state)
{
    Page p;
    for (auto _ : state) {
        Canvas canvas(p.image, p.glyphs, 1.0f);
        drawPage(canvas);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(page)->Unit(benchmark::kMillisecond);

void pageWithoutGlyphsCached(benchmark::State& state)
{
    for (auto _ : state) {
        Page p;
        Canvas canvas(p.image, p.glyphs, 1.0f);
        drawPage(canvas);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(pageWithoutGlyphsCached)->Unit(benchmark::kMillisecond);

// What dragging a knob repaints: everything is asked to draw, only the knob's corner can be seen.
void pageClippedToOneKnob(benchmark::State& state)
{
    Page p;
    for (auto _ : state) {
        Canvas canvas(p.image, p.glyphs, 1.0f);
        canvas.clip({200, 90, 44, 56});
        drawPage(canvas);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(pageClippedToOneKnob)->Unit(benchmark::kMicrosecond);

template <class Draw>
void part(benchmark::State& state, Draw draw)
{
    Page p;
    Canvas canvas(p.image, p.glyphs, 1.0f);
    for (auto _ : state) {
        draw(canvas);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(part, knob, [](Canvas& c) {
    sheet::knob(c, {40, 40}, 40, 0.7f, false, 0.1f, sheet::kAmber, "Detune");
})->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(part, text20Glyphs, [](Canvas& c) {
    c.text("Twenty glyphs cached", {20, 40}, {10.5f}, sheet::kText);
})->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(part, rectangle500x300, [](Canvas& c) {
    c.fillRect({20, 20, 500, 300}, sheet::kWell);
})->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(part, panel500x300, [](Canvas& c) {
    sheet::panel(c, {20, 20, 500, 300}, "", sheet::kAmber);
})->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(part, radial500x300, [](Canvas& c) {
    c.fillRect({20, 20, 500, 300},
               Paint::radial({270, 170}, 300, {{0.0f, sheet::kEdge}, {1.0f, sheet::kWell}}));
})->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(part, curves, [](Canvas& c) {
    sheet::curves(c, {20, 20, 190, 58});
})->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace tolm::gui
