#include "editor/ADEditor.h"

#include "editor/CBrowser.h"
#include "editor/CHeader.h"
#include "editor/CKeyboardCtrl.h"
#include "editor/CTabs.h"
#include "editor/WindowFileSelector.h"
#include "editor/pages.h"
#include "gui/Frame.h"
#include "gui/Message.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tolm {

namespace {

constexpr double kMeterSeconds = 1.0 / 30.0;
constexpr float kSmallestScale = 0.75f;
constexpr float kLargestScale = 2.5f;
constexpr Page kLowerPages[] = {Page::modulation, Page::matrix, Page::arpeggiator, Page::effects};
constexpr float kPageValues[] = {0.0f, 0.33f, 0.66f, 1.0f}; // what the page selector is sent

class Backdrop final : public gui::View {
public:
    Backdrop() : View({0.0f, 0.0f, kWindowSize.x, kWindowSize.y}) {}
    void draw(gui::Canvas& canvas) override { canvas.fillRect(localBounds(), theme::kBack); }
};

std::size_t indexOf(Page page)
{
    return static_cast<std::size_t>(page);
}

} // namespace

ADEditor::ADEditor(EditorPort& port, const ArpPatternTable& patterns)
    : port_(port),
      history_(port),
      actions_(port, history_, patterns, *this),
      context_(port, actions_, history_),
      shell_(context_),
      scale_(wantedScale())
{
    shell_.applySettings = [this] { applySettings(); };
    context_.toggleBrowser = [this] {
        actions_.controlChanged(kTagTwoViews, actions_.pages().secondView ? 0.0f : 1.0f);
    };
}

ADEditor::~ADEditor()
{
    close();
}

// ---- Opening and closing ---------------------------------------------------------------------

gui::Point ADEditor::windowSize() const
{
    return {std::round(kWindowSize.x * scale_), std::round(kWindowSize.y * scale_)};
}

bool ADEditor::open(gui::NativeHandle parent)
{
    if (busy_)
        return false;
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
    shell_.settings = loadSettings(port_); // another instance may have changed them
    window_ = std::move(window);
    takeBankNews(port_.takeNews()); // all else is read while building
    followProgram(false);
    build();
    fileSelector_ = std::make_unique<WindowFileSelector>(window_->frame(), shell_);
    port_.useFileSelector(fileSelector_.get());
    idle();
}

void ADEditor::close()
{
    closeWanted_ = busy_;
    if (busy_ || window_ == nullptr)
        return;
    port_.useFileSelector(nullptr);
    context_.showStatus = nullptr; // what goes with the window is not told
    actions_.controlChanged(kTagTwoViews, 0.0f);
    pages_.fill(nullptr);
    header_ = nullptr;
    browser_ = nullptr;
    tabs_ = nullptr;
    window_.reset();
    actions_.endGestures();
    fileSelector_.reset();
    noticeShown_ = false;
    if (settingsChanged_ || sizeRefused_)
        scale_ = wantedScale();
    settingsChanged_ = false;
    sizeRefused_ = false;
}

void ADEditor::build()
{
    gui::Frame& frame = window_->frame();
    frame.setStyle(theme::overlayStyle());
    frame.setKeyboardMode(shell_.settings.keyboardMode);
    context_.doubleClickTypes = shell_.settings.doubleClick == DoubleClick::type;
    buildPages(frame.content().emplace<Backdrop>());
    context_.showStatus = [this](const std::string& text) { header_->status().show(text); };
    showPages(actions_.pages());
    changesSeen_ = history_.changes();
}

void ADEditor::buildPages(gui::View& root)
{
    header_ = &root.emplace<CHeader>(shell_);
    pages_[indexOf(Page::header)] = header_;
    pages_[indexOf(Page::voice)] = &root.add(makePage(context_, Page::voice));
    tabs_ = &root.emplace<CTabs>(context_);
    for (const Page page : kLowerPages)
        pages_[indexOf(page)] = &root.add(makePage(context_, page));
    browser_ = &root.emplace<CBrowser>(shell_);
    pages_[indexOf(Page::keyboard)] = &root.add(makeKeyboardPage(context_));
}

void ADEditor::showPage(Page page)
{
    for (std::size_t i = 0; i < std::size(kLowerPages); ++i)
        if (kLowerPages[i] == page)
            actions_.controlChanged(kTagEffectPage, kPageValues[i]);
}

// ---- What the host's calls bring -------------------------------------------------------------

void ADEditor::idle()
{
    if (window_ == nullptr || busy_)
        return;
    if (!window_->isAlive()) {
        close();
        return;
    }
    busy_ = true;
    takeNews();
    window_->pump();
    busy_ = false;
    if (std::exchange(closeWanted_, false))
        close();
    else if (std::exchange(settingsChanged_, false))
        applyScale();
}

void ADEditor::takeNews()
{
    const EditorNews news = port_.takeNews();
    takeBankNews(news);
    takeValueNews(news);
    turnWheel(news.wheelDistance);
    takeMeters();
    takeNotice();
}

// A bank that was loaded has nothing to do with the steps before it.
void ADEditor::takeBankNews(const EditorNews& news)
{
    if (!news.everything)
        return;
    history_.clear();
    shell_.comparison.takeAll();
}

// The preset list holds the current program, which hosts choose too, so that previous and next go
// on from there. Building the list anew must not choose another program: a category that has not
// got this one gives way to its bank.
void ADEditor::followProgram(bool newBank)
{
    const PresetBrowser browser = port_.browser();
    const auto& list = browser.presetListIndex;
    const int program = port_.currentProgram();
    if (!newBank && list[static_cast<std::size_t>(browser.selected)] == program)
        return;
    const bool listed = !newBank && std::find(list.begin(), list.end(), program) != list.end();
    if (browser.categoryFilter == 0 || listed)
        port_.rebuildPresetList();
    else
        port_.chooseCategory(0);
}

void ADEditor::takeValueNews(const EditorNews& news)
{
    const bool all = news.everything || news.program;
    if (all) {
        followProgram(news.everything);
        context_.tellAllValues();
    }
    for (int id = 0; id < kParameterCount && !all; ++id)
        if (news.parameters[static_cast<std::size_t>(id)])
            context_.tellValue(id);
    if (all || news.presetList || history_.changes() != changesSeen_)
        shell_.tellProgram();
    else if (news.parameters.any())
        header_->compare().update();
    changesSeen_ = history_.changes();
    if (const auto learning = port_.learningId();
        learning != learningSeen_ || news.learnedController) {
        learningSeen_ = learning;
        header_->status().invalidate();
    }
}

void ADEditor::takeMeters()
{
    const double now = window_->frame().host().now();
    if (now - metersAt_ < kMeterSeconds && now >= metersAt_)
        return;
    metersAt_ = now;
    context_.tellMeters(port_.meters());
}

void ADEditor::takeNotice()
{
    if (noticeShown_)
        return;
    const std::optional<EditorNotice> notice = port_.takeNotice();
    if (!notice)
        return;
    say(notice->title.empty() ? "Info" : notice->title, notice->text);
}

void ADEditor::say(const std::string& title, const std::string& text)
{
    noticeShown_ = true;
    gui::MessageRequest request;
    request.title = title;
    request.text = text;
    request.answered = [this](int) { noticeShown_ = false; };
    gui::Message::show(window_->frame(), std::move(request));
}

// Hosts that keep the mouse wheel for themselves pass on how far it was turned.
void ADEditor::turnWheel(float distance)
{
    gui::View* const pointed = window_->frame().hovered();
    if (distance == 0.0f || pointed == nullptr)
        return;
    gui::WheelEvent event;
    event.position = pointed->boundsInFrame().centre();
    event.steps = distance;
    window_->frame().mouseWheel(event);
}

// ---- Settings and size -----------------------------------------------------------------------

float ADEditor::wantedScale() const
{
    const int percent = shell_.settings.scalePercent;
    return percent > 0
               ? std::clamp(static_cast<float>(percent) / 100.0f, kSmallestScale, kLargestScale)
               : gui::displayScale(kWindowSize);
}

// From a menu inside the window, which is not resized before its handler has returned.
void ADEditor::applySettings()
{
    saveSettings(port_, shell_.settings);
    context_.doubleClickTypes = shell_.settings.doubleClick == DoubleClick::type;
    if (window_ != nullptr)
        window_->frame().setKeyboardMode(shell_.settings.keyboardMode);
    settingsChanged_ = true;
}

// A host that keeps its window's size gets a window that fits it; the new size holds from the next
// opening.
void ADEditor::applyScale()
{
    const float before = scale_;
    scale_ = wantedScale();
    if (scale_ == before)
        return;
    const gui::Point size = windowSize();
    busy_ = true; // hosts may call from within
    const bool resized = port_.resizeHostWindow(static_cast<int>(size.x), static_cast<int>(size.y));
    busy_ = false;
    if (resized) {
        window_->setScale(scale_);
    } else {
        scale_ = before;
        sizeRefused_ = true;
        say("Info",
            "This host keeps its window as it is. The new size holds from the next opening.");
    }
    if (std::exchange(closeWanted_, false))
        close();
}

void ADEditor::setScale(float scale)
{
    scale_ = std::clamp(scale, kSmallestScale, kLargestScale);
    if (window_ != nullptr)
        window_->setScale(scale_);
}

// ---- What actions show -----------------------------------------------------------------------

void ADEditor::showWave(int oscillator, int)
{
    context_.tellValue(oscillator == 1 ? kOsc1Wave : kOsc2Wave);
}

void ADEditor::showFilterType()
{
    context_.tellValue(kFilterType);
}

void ADEditor::showArpMode()
{
    context_.tellValue(kArpMode);
}

// The browser lies over the voice area and the lower pane, which rest while it is open.
void ADEditor::showPages(const EditorPages& pages)
{
    if (window_ == nullptr || browser_ == nullptr)
        return;
    const bool browsing = pages.secondView;
    const Page lower = kLowerPages[std::clamp(pages.effectPage, 0, 3)];
    pages_[indexOf(Page::voice)]->setVisible(!browsing);
    tabs_->setVisible(!browsing);
    tabs_->invalidate();
    for (const Page page : kLowerPages)
        pages_[indexOf(page)]->setVisible(!browsing && page == lower);
    browser_->show(browsing);
}

void ADEditor::refresh()
{
    shell_.tellAll();
}

} // namespace tolm
