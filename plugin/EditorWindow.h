#pragma once
// The window as the host's editor calls reach it: sizes in device pixels, open, close and idle over
// an ADEditor. Made at the first call that needs it, so that a plug-in without a window costs
// nothing.

#include "plugin/EditorPort.h"
#include "vst2/EffectEditor.h"

#include <memory>

namespace tolm {

class ADEditor;
class ArpPatternTable;

class EditorWindow final : public vst2::EffectEditor {
public:
    // The port outlives the window.
    explicit EditorWindow(EditorPort& port);
    ~EditorWindow() override;

    vst2::ERect* getRect() override;
    // False without a parent or a display.
    bool open(void* parentWindow) override;
    void close() override;
    void idle() override;
    // Knobs are dragged up and down; circular modes are refused.
    bool setKnobMode(std::int32_t mode) override;

private:
    ADEditor& editor();

    EditorPort& port_;
    std::unique_ptr<ArpPatternTable> patterns_;
    std::unique_ptr<ADEditor> editor_;
    vst2::ERect rect_;
};

} // namespace tolm
