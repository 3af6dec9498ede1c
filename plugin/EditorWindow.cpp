#include "plugin/EditorWindow.h"

#include "editor/ADEditor.h"
#include "editor/arpPattern.h"

#include <algorithm>
#include <string_view>

namespace tolm {

namespace {

constexpr std::int32_t kLinearKnobs = 2;
constexpr float kArpeggiated = 1.0f; // category

// "User Pattern", then the patterns of the factory's arpeggiated sounds under their names.
std::vector<ProgramRecord> factoryPatterns(const EditorPort& port)
{
    std::vector<ProgramRecord> records(1, port.initialRecord());
    constexpr std::string_view kUser = "User Pattern";
    records.front().name.fill('\0');
    std::copy(kUser.begin(), kUser.end(), records.front().name.begin());
    for (int program = 0; program < kProgramCount; ++program)
        if (const ProgramRecord& record = port.factoryRecord(program);
            record.values[kPatchCategory] == kArpeggiated)
            records.push_back(record);
    return records;
}

} // namespace

EditorWindow::EditorWindow(EditorPort& port) : port_(port) {}

EditorWindow::~EditorWindow() = default;

ADEditor& EditorWindow::editor()
{
    if (editor_ == nullptr) {
        patternRecords_ = factoryPatterns(port_);
        patterns_ = std::make_unique<RecordPatternTable>(patternRecords_);
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
