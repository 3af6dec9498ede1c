#include "gui/Message.h"

#include "gui/Frame.h"
#include "gui/PushButton.h"
#include "gui/modalBox.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr float kWidth = 380.0f;
constexpr float kPadding = 20.0f;
constexpr float kTitleHeight = 28.0f;
constexpr float kButtonHeight = 26.0f;
constexpr float kLeastButton = 76.0f;
constexpr float kGap = 8.0f;

} // namespace

Message::Message(MessageRequest request) : request_(std::move(request))
{
    if (request_.buttons.empty())
        request_.buttons = {"OK"};
}

Message& Message::show(Frame& frame, MessageRequest request)
{
    std::unique_ptr<Message> made(new Message(std::move(request)));
    Message& message = *made;
    message.setBounds({0.0f, 0.0f, frame.size().x, frame.size().y});
    message.layOut(frame);
    Frame::OverlayOptions options;
    options.modal = true;
    frame.showOverlay(std::move(made), std::move(options));
    frame.requestKeys(message, true);
    frame.setFocus(message.buttons_.back());
    return message;
}

void Message::layOut(const Frame& frame)
{
    const Style& style = frame.style();
    const float width = std::min(kWidth, frame.size().x - 2.0f * style.margin);
    lines_ = wrapText(request_.text, style.field, width - 2.0f * kPadding);
    const float least = 2.0f * kPadding + kTitleHeight + kGap + kButtonHeight;
    // A text that is too long for the window loses its last lines.
    const float room = frame.size().y - 2.0f * style.margin - least - kGap;
    const auto most = static_cast<std::size_t>(std::max(room / lineHeight(style.field), 1.0f));
    lines_.resize(std::min(lines_.size(), most));
    const float height =
        std::ceil(least + kGap + static_cast<float>(lines_.size()) * lineHeight(style.field));
    box_ = {std::round((frame.size().x - width) / 2.0f),
            std::round((frame.size().y - height) / 2.0f), width, height};
    float right = box_.right() - kPadding;
    buttons_.resize(request_.buttons.size());
    for (std::size_t i = buttons_.size(); i-- > 0;) {
        const std::string& label = request_.buttons[i];
        const float w = std::max(kLeastButton, std::ceil(measureText(label, style.field)) + 24.0f);
        right -= w;
        buttons_[i] = &emplace<PushButton>(
            Rect{right, box_.bottom() - kPadding - kButtonHeight, w, kButtonHeight}, label,
            [this, i] { answer(static_cast<int>(i)); });
        right -= kGap;
    }
    buttons_.back()->setDefault(true);
}

void Message::answer(int button)
{
    if (frame() == nullptr)
        return; // already answered
    const auto answered = std::move(request_.answered);
    frame()->dismissOverlay(*this);
    if (answered)
        answered(button);
}

bool Message::keyDown(const KeyEvent& event)
{
    if (event.key == Key::enter)
        answer(static_cast<int>(buttons_.size()) - 1);
    else if (event.key == Key::escape)
        answer(0);
    else
        return false;
    return true;
}

void Message::draw(Canvas& canvas)
{
    const Style& style = frame()->style();
    Rect rest = box_.inset(kPadding);
    const Rect title = rest.removeFromTop(kTitleHeight);
    drawModalBox(canvas, style, {localBounds(), box_, title}, request_.title);
    rest.removeFromTop(kGap / 2.0f);
    for (const TextLine& line : lines_)
        canvas.textIn(std::string_view(request_.text).substr(line.begin, line.end - line.begin),
                      rest.removeFromTop(lineHeight(style.field)), style.field,
                      style.secondaryText);
}

} // namespace tolm::gui
