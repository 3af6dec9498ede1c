#include "gui/Tooltip.h"

#include "gui/textWrap.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr float kMaxTextWidth = 260.0f;
constexpr Point kPadding{8.0f, 5.0f};
constexpr float kGap = 6.0f;

} // namespace

Tooltip::Tooltip(const Style& style, const std::string& text) : style_(style)
{
    for (const TextLine& line : wrapText(text, style_.field, kMaxTextWidth))
        lines_.push_back(text.substr(line.begin, line.end - line.begin));
}

Rect Tooltip::placed(const Rect& anchor, Point pointer, Point frameSize) const
{
    float width = 0.0f;
    for (const std::string& line : lines_)
        width = std::max(width, measureText(line, style_.field));
    width = std::ceil(width) + 2.0f * kPadding.x;
    const float height =
        std::ceil(static_cast<float>(lines_.size()) * lineHeight(style_.field)) + 2.0f * kPadding.y;
    const float below = anchor.bottom() + kGap;
    const bool flips = below + height > frameSize.y && anchor.y - kGap - height >= 0.0f;
    const float x = std::min(pointer.x - width / 2.0f, frameSize.x - width - kGap);
    const float y = flips ? anchor.y - kGap - height : std::min(below, frameSize.y - height);
    return {std::max(std::round(x), 0.0f), std::max(std::round(y), 0.0f), width, height};
}

void Tooltip::draw(Canvas& canvas)
{
    const Rect box = localBounds();
    canvas.fillRoundRect(box, style_.controlRadius, style_.well);
    canvas.strokeRoundRect(box, style_.controlRadius, 1.0f, style_.edge);
    Rect rest = box.inset(kPadding.x, kPadding.y);
    for (const std::string& line : lines_)
        canvas.textIn(line, rest.removeFromTop(lineHeight(style_.field)), style_.field,
                      style_.text);
}

} // namespace tolm::gui
