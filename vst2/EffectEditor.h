#pragma once
// What the dispatcher asks of a plug-in's window. All calls come on the host's user-interface
// thread, `open` possibly before `getRect`.

#include "vst2/abi.h"

namespace tolm::vst2 {

class EffectEditor {
public:
    virtual ~EffectEditor() = default;

    // Null when the size is not known yet; the record stays the editor's.
    virtual ERect* getRect() = 0;
    virtual bool open(void* parentWindow) = 0;
    virtual void close() = 0;
    virtual void idle() = 0;
    virtual bool setKnobMode(std::int32_t mode) = 0;
};

} // namespace tolm::vst2
