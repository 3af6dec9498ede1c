// A plug-in that does nothing but show a window: what tolm-window-host opens in its tests.

#include "gui/Window.h"
#include "vst2/abi.h"

#include <memory>

namespace tolm {

namespace {

using namespace vst2;

constexpr gui::Point kSize{240.0f, 160.0f};

class Stripes final : public gui::View {
public:
    using View::View;
    void draw(gui::Canvas& canvas) override
    {
        canvas.fillRect(localBounds(), gui::Color::rgb(0x204060));
        canvas.fillRoundRect(localBounds().inset(30.0f), 12.0f, gui::Color::rgb(0xFFB454));
    }
};

struct Instance {
    AEffect effect{};
    ERect size{0, 0, 160, 240};
    std::unique_ptr<gui::Window> window;

    bool open(void* parent)
    {
        window = gui::openWindow(parent, kSize, 1.0f, "Stripes");
        if (window)
            window->frame().content().emplace<Stripes>(gui::Rect{0.0f, 0.0f, kSize.x, kSize.y});
        return window != nullptr;
    }
};

std::intptr_t dispatch(AEffect* effect, std::int32_t opcode, std::int32_t, std::intptr_t, void* ptr,
                       float)
{
    auto* instance = static_cast<Instance*>(effect->object);
    switch (opcode) {
    case effClose:
        delete instance;
        return 1;
    case effEditGetRect:
        *static_cast<ERect**>(ptr) = &instance->size;
        return 1;
    case effEditOpen:
        return instance->open(ptr) ? 1 : 0;
    case effEditClose:
        instance->window.reset();
        return 1;
    case effEditIdle:
        instance->window->pump();
        return 1;
    default:
        return 0;
    }
}

} // namespace

} // namespace tolm

extern "C" [[gnu::visibility("default")]] tolm::vst2::AEffect*
VSTPluginMain(tolm::vst2::HostCallback)
{
    auto* instance = new tolm::Instance;
    instance->effect.magic = tolm::vst2::kEffectMagic;
    instance->effect.dispatcher = &tolm::dispatch;
    instance->effect.flags = tolm::vst2::effFlagsHasEditor | tolm::vst2::effFlagsIsSynth;
    instance->effect.numOutputs = 2;
    instance->effect.object = instance;
    return &instance->effect;
}
