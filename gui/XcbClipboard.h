#pragma once
// The clipboard of the X server: text of ours is served while the window lives, text of others is
// asked for and comes later. Nothing here waits for another program.

#include "gui/XcbConnection.h"

#include <functional>
#include <string>
#include <vector>

namespace tolm::gui {

class XcbClipboard {
public:
    using Receive = std::function<void(const std::string& utf8)>;
    // Longer texts of others are refused.
    static constexpr std::size_t kMaxBytes = 64 * 1024;
    static constexpr double kAnswerSeconds = 0.5;

    XcbClipboard(XcbConnection& connection, xcb_window_t window)
        : connection_(connection), window_(window)
    {
    }

    // `time` is that of the user's last action.
    void copy(const std::string& utf8, xcb_timestamp_t time);
    void paste(Receive receive, xcb_timestamp_t time, double now);
    // Requests of others, answers to ours. True when the event was one of these.
    bool handle(const xcb_generic_event_t& event);
    // Forgets askers whose answer does not come.
    void tick(double now);

private:
    void serve(const xcb_selection_request_event_t& request);
    bool deliver(const xcb_selection_request_event_t& request, xcb_atom_t property);
    void receive(const xcb_selection_notify_event_t& answer);

    XcbConnection& connection_;
    xcb_window_t window_;
    std::string text_;
    bool owns_ = false;
    std::vector<Receive> waiting_;
    double deadline_ = 0.0;
};

} // namespace tolm::gui
