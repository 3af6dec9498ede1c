#include "gui/XcbClipboard.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tolm::gui {

void XcbClipboard::copy(const std::string& utf8, xcb_timestamp_t time)
{
    text_ = utf8;
    owns_ = true;
    xcb_set_selection_owner(connection_.get(), window_, connection_.atom(XcbAtom::clipboard), time);
}

void XcbClipboard::paste(Receive receive, xcb_timestamp_t time, double now)
{
    if (owns_) {
        const std::string text = text_;
        receive(text);
        return;
    }
    waiting_.push_back(std::move(receive));
    deadline_ = now + kAnswerSeconds;
    if (waiting_.size() == 1)
        xcb_convert_selection(connection_.get(), window_, connection_.atom(XcbAtom::clipboard),
                              connection_.atom(XcbAtom::utf8String),
                              connection_.atom(XcbAtom::clipboardProperty), time);
}

void XcbClipboard::tick(double now)
{
    if (!waiting_.empty() && now > deadline_)
        waiting_.clear();
}

bool XcbClipboard::handle(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
        serve(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        return true;
    case XCB_SELECTION_NOTIFY:
        receive(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
        return true;
    case XCB_SELECTION_CLEAR:
        owns_ = false;
        text_.clear();
        return true;
    default:
        return false;
    }
}

void XcbClipboard::serve(const xcb_selection_request_event_t& request)
{
    // Old programs name no property and mean the target's name.
    const xcb_atom_t property = request.property != XCB_NONE ? request.property : request.target;
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.time = request.time;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = deliver(request, property) ? property : static_cast<xcb_atom_t>(XCB_NONE);
    // An event on the wire is 32 bytes, more than this one's fields.
    std::array<char, 32> bytes{};
    std::copy_n(reinterpret_cast<const char*>(&answer), sizeof answer, bytes.data());
    xcb_send_event(connection_.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes.data());
}

bool XcbClipboard::deliver(const xcb_selection_request_event_t& request, xcb_atom_t property)
{
    if (!owns_ || request.selection != connection_.atom(XcbAtom::clipboard))
        return false;
    const xcb_atom_t utf8 = connection_.atom(XcbAtom::utf8String);
    if (request.target == connection_.atom(XcbAtom::targets)) {
        const std::array<xcb_atom_t, 2> targets = {connection_.atom(XcbAtom::targets), utf8};
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, property,
                            XCB_ATOM_ATOM, 32, targets.size(), targets.data());
        return true;
    }
    if (request.target != utf8 || text_.size() > kMaxBytes)
        return false;
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, property, utf8,
                        8, static_cast<std::uint32_t>(text_.size()), text_.data());
    return true;
}

void XcbClipboard::receive(const xcb_selection_notify_event_t& answer)
{
    const auto waiting = std::exchange(waiting_, {});
    if (answer.property == XCB_NONE || waiting.empty())
        return;
    const auto reply = owned(
        xcb_get_property_reply(connection_.get(),
                               xcb_get_property(connection_.get(), 1, window_, answer.property,
                                                XCB_ATOM_ANY, 0, kMaxBytes / 4),
                               nullptr));
    // Longer text would come in portions, or is left over here.
    if (!reply || reply->format != 8 || reply->bytes_after != 0 ||
        reply->type == connection_.atom(XcbAtom::incr)) {
        xcb_delete_property(connection_.get(), window_, answer.property);
        return;
    }
    const std::string text(static_cast<const char*>(xcb_get_property_value(reply.get())),
                           static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    for (const Receive& receive : waiting)
        receive(text);
}

} // namespace tolm::gui
