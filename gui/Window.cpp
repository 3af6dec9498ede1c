// The window that is a picture only.

#include "gui/Window.h"

#include <cmath>

namespace tolm::gui {

namespace {

Image imageFor(Point size, float scale)
{
    return {static_cast<int>(std::lround(size.x * scale)),
            static_cast<int>(std::lround(size.y * scale))};
}

} // namespace

HeadlessWindow::HeadlessWindow(Point size, float scale)
    : image_(imageFor(size, scale)), frame_(*this, size, scale)
{
}

void HeadlessWindow::pump()
{
    frame_.tick();
    if (frame_.isDirty())
        frame_.paint(image_, glyphs_);
}

void HeadlessWindow::setScale(float scale)
{
    image_ = imageFor(frame_.size(), scale);
    frame_.setScale(scale);
}

} // namespace tolm::gui
