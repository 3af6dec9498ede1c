#pragma once
// How the plug-in asks its window for the path of a file.

#include <functional>
#include <string>

namespace tolm {

// What a file selector shows and offers.
struct FileRequest {
    std::string title;
    std::string extension; // without the dot; the only kind of file that is offered
    std::string description;
    std::string suggestedName;
    bool saves = false;
};

class FileSelector {
public:
    virtual ~FileSelector() = default;
    // Calls `chosen` at once or later, on the caller's thread; never when the user cancels.
    virtual void choose(const FileRequest& request,
                        std::function<void(const std::string& path)> chosen) = 0;
};

} // namespace tolm
