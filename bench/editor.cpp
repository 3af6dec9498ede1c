// The real window without a display, at scale 1: opening it, painting all of it, one knob under the
// hand, and an idle turn in which nothing happens.

#include "editor/ADEditor.h"
#include "editor/OfflinePort.h"
#include "editor/arpPattern.h"
#include "patch/factoryPatterns.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace tolm {
namespace {

struct OpenEditor {
    OpenEditor() { open(); }
    void open()
    {
        auto made = std::make_unique<gui::HeadlessWindow>(kWindowSize, 1.0f);
        window = made.get();
        editor.openIn(std::move(made));
        editor.idle();
    }

    OfflinePort port;
    RecordPatternTable patterns{factoryPatterns()};
    ADEditor editor{port, patterns};
    gui::HeadlessWindow* window = nullptr;
};

void open(benchmark::State& state)
{
    OpenEditor rig;
    for (auto _ : state) {
        rig.editor.close();
        rig.open();
    }
}
BENCHMARK(open)->Name("Editor/open")->Unit(benchmark::kMillisecond);

void fullPage(benchmark::State& state)
{
    OpenEditor rig;
    constexpr Page kPages[] = {Page::modulation, Page::matrix, Page::arpeggiator, Page::effects};
    rig.editor.showPage(kPages[state.range(0)]);
    rig.editor.idle();
    for (auto _ : state) {
        rig.window->frame().content().invalidate();
        rig.editor.idle();
    }
}
BENCHMARK(fullPage)->Name("Editor/fullPage")->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

void draggedKnob(benchmark::State& state)
{
    OpenEditor rig;
    float value = 0.0f;
    for (auto _ : state) {
        value = value > 0.99f ? 0.0f : value + 0.01f;
        rig.port.setParameter(kOsc1Fat, value);
        rig.editor.idle();
    }
}
BENCHMARK(draggedKnob)->Name("Editor/movedKnob")->Unit(benchmark::kMicrosecond);

void idle(benchmark::State& state)
{
    OpenEditor rig;
    for (auto _ : state)
        rig.editor.idle();
}
BENCHMARK(idle)->Name("Editor/idle")->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace tolm
