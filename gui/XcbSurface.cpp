#include "gui/XcbSurface.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace tolm::gui {

namespace {

constexpr std::size_t kSliceBytes = 256 * 1024; // of a copy on its way to the server
constexpr std::uint32_t kOpaque = 0xFF000000;

// An 8-bit channel at a mask's place and width.
std::uint32_t channel(std::uint32_t value, std::uint32_t mask)
{
    const int width = std::popcount(mask);
    const int shift = std::countr_zero(mask);
    const std::uint32_t scaled =
        width >= 8 ? (value << (width - 8)) | (value >> (16 - width)) : value >> (8 - width);
    return (scaled << shift) & mask;
}

} // namespace

XcbSurface::XcbSurface(XcbConnection& connection, xcb_window_t window, const PixelFormat& format)
    : connection_(connection),
      window_(window),
      format_(format),
      gc_(xcb_generate_id(connection.get()))
{
    const std::uint32_t noExposures = 0;
    xcb_create_gc(connection_.get(), gc_, window_, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    const auto* shm = xcb_get_extension_data(connection_.get(), &xcb_shm_id);
    if (shm == nullptr || shm->present == 0 || !format_.isPlain())
        return;
    shmFirstEvent_ = shm->first_event;
    shmMajor_ = shm->major_opcode;
    shmAllowed_ = true;
}

XcbSurface::~XcbSurface()
{
    detach();
}

void XcbSurface::resize(int width, int height)
{
    detach();
    width_ = width;
    height_ = height;
    const auto bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    if (shmAllowed_ && bytes > 0)
        shmAllowed_ = attach(bytes);
}

// The server may be on another machine or see other memory: only its answer tells.
bool XcbSurface::attach(std::size_t bytes)
{
    const int id = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (id < 0)
        return false;
    void* const memory = shmat(id, nullptr, 0);
    bool attached = memory != reinterpret_cast<void*>(-1);
    if (attached) {
        segment_ = xcb_generate_id(connection_.get());
        const auto cookie =
            xcb_shm_attach_checked(connection_.get(), segment_, static_cast<std::uint32_t>(id), 1);
        attached = !owned(xcb_request_check(connection_.get(), cookie)) && !connection_.isBroken();
        if (!attached)
            shmdt(memory);
    }
    // It lives as long as somebody is attached, whatever becomes of this process.
    shmctl(id, IPC_RMID, nullptr);
    pixels_ = attached ? static_cast<std::uint32_t*>(memory) : nullptr;
    return attached;
}

void XcbSurface::detach()
{
    busy_ = false;
    if (pixels_ == nullptr)
        return;
    xcb_shm_detach(connection_.get(), segment_);
    shmdt(pixels_);
    pixels_ = nullptr;
}

void XcbSurface::show(const Image& image, std::span<const Rect> rects)
{
    if (image.width() != width_ || image.height() != height_ || rects.empty())
        return;
    if (pixels_ != nullptr) {
        showShared(image, rects);
        return;
    }
    for (const Rect& rect : rects)
        showSlices(image, {static_cast<int>(rect.x), static_cast<int>(rect.y),
                           static_cast<int>(rect.width), static_cast<int>(rect.height)});
}

void XcbSurface::showShared(const Image& image, std::span<const Rect> rects)
{
    for (std::size_t i = 0; i < rects.size(); ++i) {
        const auto x = static_cast<std::size_t>(rects[i].x);
        const auto width = static_cast<std::size_t>(rects[i].width);
        const int top = static_cast<int>(rects[i].y);
        const int bottom = top + static_cast<int>(rects[i].height);
        for (int y = top; y < bottom; ++y) {
            const auto from = image.row(y).subspan(x, width);
            std::uint32_t* to =
                pixels_ + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + x;
            std::transform(from.begin(), from.end(), to,
                           [](std::uint32_t pixel) { return pixel | kOpaque; });
        }
        // The last one reports: the server works in order.
        const std::uint8_t reports = i + 1 == rects.size() ? 1 : 0;
        xcb_shm_put_image(connection_.get(), window_, gc_, static_cast<std::uint16_t>(width_),
                          static_cast<std::uint16_t>(height_), static_cast<std::uint16_t>(x),
                          static_cast<std::uint16_t>(top), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(bottom - top), static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(top), format_.depth, XCB_IMAGE_FORMAT_Z_PIXMAP,
                          reports, segment_, 0);
    }
    busy_ = true;
}

void XcbSurface::showSlices(const Image& image, const Area& area)
{
    const std::size_t bytes = format_.bitsPerPixel / 8u;
    const std::size_t stride = (static_cast<std::size_t>(area.width) * bytes + 3) / 4 * 4;
    const std::size_t allowed =
        static_cast<std::size_t>(xcb_get_maximum_request_length(connection_.get())) * 4 - 64;
    const int most =
        static_cast<int>(std::max<std::size_t>(std::min(allowed, kSliceBytes) / stride, 1));
    for (int done = 0; done < area.height;) {
        const int rows = std::min(most, area.height - done);
        slice_.assign(stride * static_cast<std::size_t>(rows), 0);
        for (int i = 0; i < rows; ++i)
            convertRow(image.row(area.y + done + i)
                           .subspan(static_cast<std::size_t>(area.x),
                                    static_cast<std::size_t>(area.width)),
                       slice_.data() + stride * static_cast<std::size_t>(i));
        xcb_put_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, gc_,
                      static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(rows),
                      static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y + done),
                      0, format_.depth, static_cast<std::uint32_t>(slice_.size()), slice_.data());
        done += rows;
    }
}

void XcbSurface::convertRow(std::span<const std::uint32_t> from, std::uint8_t* to) const
{
    for (const std::uint32_t pixel : from) {
        std::uint32_t value = pixel | kOpaque;
        if (!format_.isPlain()) {
            const std::uint32_t colors = format_.red | format_.green | format_.blue;
            value = channel(pixel >> 16 & 0xFF, format_.red) |
                    channel(pixel >> 8 & 0xFF, format_.green) |
                    channel(pixel & 0xFF, format_.blue) | (format_.depth == 32 ? ~colors : 0);
        }
        if (format_.bitsPerPixel == 16) {
            auto half = static_cast<std::uint16_t>(value);
            if (format_.swapped)
                half = static_cast<std::uint16_t>(half << 8 | half >> 8);
            std::memcpy(to, &half, 2);
            to += 2;
            continue;
        }
        if (format_.swapped)
            value = value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
        std::memcpy(to, &value, 4);
        to += 4;
    }
}

bool XcbSurface::handle(const xcb_generic_event_t& event)
{
    if (shmFirstEvent_ == 0 || (event.response_type & 0x7F) != shmFirstEvent_ + XCB_SHM_COMPLETION)
        return false;
    busy_ = false;
    return true;
}

void XcbSurface::handleError(const xcb_generic_error_t& error)
{
    if (shmMajor_ == 0 || error.major_code != shmMajor_)
        return;
    detach();
    shmAllowed_ = false;
}

} // namespace tolm::gui
