#include "editor/ADEditor.h"

#include "editor/pages.h"
#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr double kMeterSeconds = 1.0 / 30.0;
constexpr Page kLowerPages[] = {Page::modulation, Page::matrix, Page::arpeggiator, Page::effects};

class Backdrop final : public gui::View {
public:
    Backdrop() : View({0.0f, 0.0f, kWindowSize.x, kWindowSize.y}) {}
    void draw(gui::Canvas& canvas) override { canvas.fillRect(localBounds(), theme::kBack); }
};

} // namespace

ADEditor::ADEditor(EditorPort& port, const ArpPatternTable& patterns)
    : port_(port),
      history_(port),
      actions_(port, history_, patterns, *this),
      context_(port, actions_, history_),
      scale_(gui::displayScale(kWindowSize))
{
}

ADEditor::~ADEditor()
{
    close();
}

gui::Point ADEditor::windowSize() const
{
    return {std::round(kWindowSize.x * scale_), std::round(kWindowSize.y * scale_)};
}

bool ADEditor::open(gui::NativeHandle parent)
{
    close();
    auto window = gui::openWindow(parent, kWindowSize, scale_, "Tolm");
    if (window == nullptr)
        return false;
    openIn(std::move(window));
    return true;
}

void ADEditor::openIn(std::unique_ptr<gui::Window> window)
{
    close();
    window_ = std::move(window);
    build();
    port_.takeNews(); // everything was just read
    idle();
}

void ADEditor::close()
{
    pages_.fill(nullptr);
    window_.reset();
}

void ADEditor::build()
{
    gui::Frame& frame = window_->frame();
    frame.setStyle(theme::overlayStyle());
    gui::View& root = frame.content().emplace<Backdrop>();
    for (int i = 0; i < kPageCount; ++i)
        pages_[static_cast<std::size_t>(i)] = &root.add(makePage(context_, static_cast<Page>(i)));
    showPage(lowerPage_);
}

void ADEditor::showPage(Page page)
{
    lowerPage_ = page;
    for (const Page lower : kLowerPages)
        if (gui::View* view = pages_[static_cast<std::size_t>(lower)])
            view->setVisible(lower == page);
}

void ADEditor::idle()
{
    if (window_ == nullptr || busy_)
        return;
    busy_ = true;
    takeNews();
    window_->pump();
    busy_ = false;
}

void ADEditor::takeNews()
{
    const EditorNews news = port_.takeNews();
    if (news.everything || news.program) {
        context_.tellAllValues();
    } else if (news.parameters.any()) {
        for (int id = 0; id < kParameterCount; ++id)
            if (news.parameters[static_cast<std::size_t>(id)])
                context_.tellValue(id);
    }
    const double now = window_->frame().host().now();
    if (now - metersAt_ >= kMeterSeconds || now < metersAt_) {
        metersAt_ = now;
        context_.tellMeters(port_.meters());
    }
}

void ADEditor::setScale(float scale)
{
    scale_ = std::clamp(scale, 0.75f, 2.5f);
    if (window_ != nullptr)
        window_->setScale(scale_);
}

void ADEditor::showWave(int oscillator, int)
{
    context_.tellValue(oscillator == 0 ? kOsc1Wave : kOsc2Wave);
}

void ADEditor::showFilterType()
{
    context_.tellValue(kFilterType);
}

void ADEditor::showArpMode()
{
    context_.tellValue(kArpMode);
}

void ADEditor::showPages(const EditorPages& pages)
{
    const int page = std::clamp(pages.effectPage, 0, 3);
    showPage(kLowerPages[page]);
}

void ADEditor::refresh()
{
    context_.tellAllValues();
}

} // namespace tolm
