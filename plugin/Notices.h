#pragma once
// What the user should know, such as that a program was too old. Shown in the editor's window;
// while none is open, kept for it and written out once. User-interface thread.

#include "plugin/SynthCore.h"
#include "plugin/platform.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tolm {

struct Notice {
    std::string title;
    std::string text;
};

class Notices {
public:
    Notices(SynthCore& core, MessageBox& box) : core_(core), box_(box) {}

    void post(std::string_view title, std::string_view text)
    {
        if (EditorHooks* editor = core_.editor(); editor != nullptr && editor->show(title, text))
            return;
        kept_ = Notice{std::string(title), std::string(text)};
        if (std::find(written_.begin(), written_.end(), text) != written_.end())
            return;
        written_.emplace_back(text);
        box_.show(title, text);
    }

    // The latest that no window has shown, for the one that opens now; handed out once.
    std::optional<Notice> takeKept() { return std::exchange(kept_, std::nullopt); }

private:
    SynthCore& core_;
    MessageBox& box_;
    std::optional<Notice> kept_;
    std::vector<std::string> written_; // few: every text is a constant of the program
};

} // namespace tolm
