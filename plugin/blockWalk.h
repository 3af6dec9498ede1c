#pragma once
// How a block is cut: at every event, and then into slices that the engine takes in one call.

#include "engine/constants.h"
#include "plugin/eventQueue.h"

#include <algorithm>

namespace tolm {

// Renders [from, to) through `player.render(start, frames)`. Answers the length when one slice was
// enough, else 0.
template <class Player>
int renderSlices(Player& player, int from, int to)
{
    const int whole = to - from;
    for (int position = from; position < to;) {
        const int frames = std::min(to - position, kMaxSliceFrames);
        player.render(position, frames);
        position += frames;
    }
    return whole <= kMaxSliceFrames ? whole : 0;
}

// Plays the queue over a block in its own order, which is never sorted: an event earlier than the
// one before it acts where that one did, an event at or behind the block's end is lost. Answers
// renderSlices' word on the rest behind the last event.
template <class Player>
int walkBlock(const EventQueue& queue, int frames, Player& player)
{
    int position = 0;
    for (int i = 0; i < queue.count(); ++i) {
        const QueuedEvent& event = queue[i];
        if (event.offset >= frames)
            continue;
        if (event.offset > position) {
            renderSlices(player, position, event.offset);
            position = event.offset;
        }
        player.play(event);
    }
    return renderSlices(player, position, frames);
}

// Deals the events of a long block out to its pieces, re-based, in the order in which the whole
// block would have played them.
class EventDealer {
public:
    EventDealer(const EventQueue& events, int frames) : events_(events), frames_(frames) {}

    // Replaces the content of `queue` by the events of [start, end); pieces come in order.
    void deal(int start, int end, EventQueue& queue)
    {
        queue.clear();
        for (; next_ < events_.count(); ++next_) {
            QueuedEvent event = events_[next_];
            if (event.offset >= frames_)
                continue;
            if (event.offset >= end)
                return;
            event.offset = std::max(event.offset - start, 0);
            queue.append(event);
        }
    }

private:
    EventQueue events_;
    int frames_;
    int next_ = 0;
};

} // namespace tolm
