#pragma once
// What the plug-in tells its editor. Calls come from whatever thread made the change, the audio
// thread included: implementations note the news and draw later, and never block or allocate.

#include <cstdint>
#include <string_view>

namespace tolm {

class EditorHooks {
public:
    virtual ~EditorHooks() = default;

    virtual void parameterChanged(int id, float value) = 0;
    virtual void keyShown(int key, bool down) = 0;
    // After a list of events in which keys were shown.
    virtual void keysChanged() = 0;
    virtual void noteActivity() = 0;
    virtual void programChanged(int program) = 0;
    // The preset list is new: its entries, the selected one, the program's description.
    virtual void programNamesChanged() = 0;
    // After a chunk was loaded.
    virtual void everythingChanged() = 0;
    virtual void mouseWheelMoved(std::intptr_t value, float distance) = 0;
    // A note to the user, from the user-interface thread. False while no window is open that could
    // show it; the note is then kept for the next.
    virtual bool show(std::string_view /*title*/, std::string_view /*text*/) { return false; }
};

} // namespace tolm
