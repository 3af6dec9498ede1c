#pragma once
// What xcb hands out for us to free.

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace tolm::gui {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

// A reply, an event or an error.
template <class T>
using XcbOwned = std::unique_ptr<T, FreeMemory>;

template <class T>
XcbOwned<T> owned(T* memory)
{
    return XcbOwned<T>(memory);
}

} // namespace tolm::gui
