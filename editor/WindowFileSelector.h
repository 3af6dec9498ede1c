#pragma once
// Choosing files in the editor's own window: begins in the folder used last, remembers where it
// ended, and notes that what was saved counts as unchanged.

#include "editor/EditorShell.h"
#include "gui/Frame.h"
#include "plugin/FileSelector.h"

namespace tolm {

class WindowFileSelector final : public FileSelector {
public:
    // Both outlive the frame's overlays.
    WindowFileSelector(gui::Frame& frame, EditorShell& shell) : frame_(frame), shell_(shell) {}

    void choose(const FileRequest& request,
                std::function<void(const std::string& path)> chosen) override;

private:
    void took(const FileRequest& request, const std::string& path);

    gui::Frame& frame_;
    EditorShell& shell_;
};

} // namespace tolm
