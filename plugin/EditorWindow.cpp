#include "plugin/EditorWindow.h"

#include "editor/ADEditor.h"
#include "editor/arpPattern.h"
#include "patch/factoryPatterns.h"

namespace tolm {

namespace {

constexpr std::int32_t kLinearKnobs = 2;

} // namespace

EditorWindow::EditorWindow(EditorPort& port) : port_(port) {}

EditorWindow::~EditorWindow() = default;

ADEditor& EditorWindow::editor()
{
    if (editor_ == nullptr) {
        patterns_ = std::make_unique<RecordPatternTable>(factoryPatterns());
        editor_ = std::make_unique<ADEditor>(port_, *patterns_);
    }
    return *editor_;
}

vst2::ERect* EditorWindow::getRect()
{
    const gui::Point size = editor().windowSize();
    rect_.right = static_cast<std::int16_t>(size.x);
    rect_.bottom = static_cast<std::int16_t>(size.y);
    return &rect_;
}

bool EditorWindow::open(void* parentWindow)
{
    return parentWindow != nullptr && editor().open(parentWindow);
}

void EditorWindow::close()
{
    if (editor_ != nullptr)
        editor_->close();
}

void EditorWindow::idle()
{
    if (editor_ != nullptr)
        editor_->idle();
}

bool EditorWindow::setKnobMode(std::int32_t mode)
{
    return mode == kLinearKnobs;
}

} // namespace tolm
