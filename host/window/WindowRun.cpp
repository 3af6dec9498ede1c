#include "host/window/WindowRun.h"

#include "host/Failure.h"
#include "host/Plugin.h"
#include "host/window/ParentWindow.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <png.h>
#include <thread>
#include <vector>

namespace tolm {

namespace {

constexpr double kSampleRateHz = 44100.0;
constexpr int kBlockFrames = 512;

struct Guest {
    std::unique_ptr<Plugin> plugin;
    std::unique_ptr<ParentWindow> parent;
};

void writePicture(const Screenshot& shot, const std::string& path)
{
    if (shot.pixels.empty())
        throw Failure("the window cannot be read from the screen");
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_BGRA;
    image.width = static_cast<png_uint_32>(shot.width);
    image.height = static_cast<png_uint_32>(shot.height);
    // Depth 24 leaves the fourth byte undefined.
    std::vector<std::uint32_t> pixels = shot.pixels;
    for (std::uint32_t& pixel : pixels)
        pixel |= 0xFF000000;
    if (png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr) == 0)
        throw Failure("cannot write " + quoted(path));
}

void open(Guest& guest, const WindowOptions& options)
{
    const ERect size = guest.plugin->editorSize();
    const int width = size.right - size.left;
    const int height = size.bottom - size.top;
    if (width <= 0 || height <= 0)
        throw Failure("the plug-in does not say how large its window is");
    guest.parent = std::make_unique<ParentWindow>(width, height, options.depth);
    ParentWindow& parent = *guest.parent;
    if (!options.refuseSize)
        guest.plugin->onSizeWindow([&parent](int w, int h) {
            parent.resize(w, h);
            return true;
        });
    if (!guest.plugin->openEditor(parent.handle()))
        throw Failure("the plug-in does not open its window");
    parent.sync();
    if (parent.child() == 0)
        throw Failure("the plug-in has put nothing into the window");
}

void idle(const std::vector<Guest>& guests, const WindowOptions& options)
{
    const auto pause = std::chrono::duration<double>(1.0 / options.idlesPerSecond);
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(options.seconds);
    do {
        for (const Guest& guest : guests)
            guest.plugin->idleEditor();
        std::this_thread::sleep_for(pause);
    } while (std::chrono::steady_clock::now() < end);
}

void close(Guest& guest, const WindowOptions& options)
{
    if (options.parentFirst)
        guest.parent->destroy();
    guest.plugin->closeEditor();
    guest.plugin->onSizeWindow(nullptr);
    if (!options.parentFirst && guest.parent->child() != 0)
        throw Failure("the plug-in has left its window behind");
    guest.parent.reset();
}

} // namespace

void runWindow(const WindowOptions& options)
{
    std::vector<Guest> guests(static_cast<std::size_t>(options.instances));
    for (Guest& guest : guests) {
        guest.plugin = std::make_unique<Plugin>(options.plugin, kSampleRateHz, kBlockFrames);
        if (!guest.plugin->hasEditor())
            throw Failure(quoted(options.plugin) + " has no window");
        guest.plugin->start();
    }
    for (int cycle = 0; cycle < options.cycles; ++cycle) {
        for (Guest& guest : guests)
            open(guest, options);
        idle(guests, options);
        if (cycle == 0 && !options.picture.empty())
            writePicture(guests.front().parent->shot(), options.picture);
        for (Guest& guest : guests)
            close(guest, options);
    }
    std::printf("%d x %d windows opened and closed\n", options.cycles, options.instances);
}

} // namespace tolm
