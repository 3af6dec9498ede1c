#include "editor/WindowFileSelector.h"

#include "gui/FileDialog.h"

#include <cstdlib>
#include <filesystem>
#include <utility>

namespace tolm {

namespace {

std::filesystem::path homeFolder()
{
    const char* const home = std::getenv("HOME");
    return home != nullptr ? home : "/";
}

} // namespace

void WindowFileSelector::choose(const FileRequest& request,
                                std::function<void(const std::string& path)> chosen)
{
    gui::FileRequest dialog;
    dialog.kind = request.saves ? gui::FileRequest::Kind::save : gui::FileRequest::Kind::open;
    dialog.title = request.title;
    dialog.extension = "." + request.extension;
    dialog.name = request.saves ? request.suggestedName : std::string();
    const std::vector<std::string>& recent = shell_.settings.recentFolders;
    dialog.folder = recent.empty() ? homeFolder() : std::filesystem::path(recent.front());
    dialog.recentFolders.assign(recent.begin(), recent.end());
    dialog.chosen = [this, request, chosen = std::move(chosen)](const std::filesystem::path& file) {
        chosen(file.string());
        took(request, file.string());
    };
    gui::FileDialog::show(frame_, std::move(dialog));
}

void WindowFileSelector::took(const FileRequest& request, const std::string& path)
{
    shell_.settings.useFolder(std::filesystem::path(path).parent_path().string());
    saveSettings(shell_.context.port(), shell_.settings);
    if (request.saves && request.extension == "fxp")
        shell_.comparison.takeCurrent();
    else if (request.saves)
        shell_.comparison.takeAll();
    shell_.tellProgram();
}

} // namespace tolm
