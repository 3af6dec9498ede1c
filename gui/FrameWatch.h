#pragma once
// A pointer to a view for the length of a handler: null once the view has left the frame.

#include "gui/Frame.h"

namespace tolm::gui {

class Frame::Watch {
public:
    Watch(Frame& frame, View* view) : watched_(frame.watched_), index_(watched_.size())
    {
        watched_.push_back(view);
    }
    ~Watch() { watched_.pop_back(); }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    View* view() const { return watched_[index_]; }
    void moveTo(View* view) { watched_[index_] = view; }

private:
    std::vector<View*>& watched_;
    std::size_t index_;
};

} // namespace tolm::gui
